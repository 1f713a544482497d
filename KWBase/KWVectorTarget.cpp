#include <KWBase/KWVectorTarget.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <cstdint>

#if defined(__x86_64__) || defined(__i386__)
#include <cpuid.h>
#define KW_HAS_CPUID
#endif

namespace {

struct Targets {
    std::array<KWVectorTarget, 5> list;
    std::size_t count = 0;
};

#ifdef KW_HAS_CPUID

struct Registers {
    unsigned a = 0;
    unsigned b = 0;
    unsigned c = 0;
    unsigned d = 0;
};

/// Zeros where the processor does not have that leaf.
Registers leaf(unsigned number) {
    Registers r;
    if (!__get_cpuid_count(number, 0, &r.a, &r.b, &r.c, &r.d))
        return {};
    return r;
}

bool hasBits(std::uint64_t value, std::initializer_list<unsigned> bits) {
    return std::all_of(bits.begin(), bits.end(),
                       [value](unsigned bit) { return (value >> bit & 1) != 0; });
}

/// Which registers the system saves when it changes threads.
std::uint64_t savedState(const Registers& features) {
    if (!hasBits(features.c, {27})) // XGETBV
        return 0;
    std::uint32_t low = 0;
    std::uint32_t high = 0;
    __asm__ volatile("xgetbv" : "=a"(low), "=d"(high) : "c"(0));
    return std::uint64_t{high} << 32 | low;
}

Targets findTargets() {
    const Registers features = leaf(1);
    const Registers more = leaf(7);
    const std::uint64_t saved = savedState(features);
    const bool hasSsse3 = hasBits(features.c, {0, 9});                     // SSE3, SSSE3
    const bool hasSse4 = hasSsse3 && hasBits(features.c, {1, 19, 20, 25}); // PCLMUL, 4.1, 4.2, AES
    const bool hasAvx2 = hasSse4 && hasBits(saved, {1, 2}) &&              // XMM, YMM
                         hasBits(features.c, {12, 28, 29}) &&              // FMA, AVX, F16C
                         hasBits(more.b, {3, 5, 8}) &&                     // BMI1, AVX2, BMI2
                         hasBits(leaf(0x80000001).c, {5});                 // LZCNT
    const bool hasAvx512 = hasAvx2 && hasBits(saved, {5, 6, 7}) &&         // masks, ZMM
                           hasBits(more.b, {16, 17, 28, 30, 31});          // F, DQ, CD, BW, VL
    Targets found;
    const auto add = [&found](bool has, KWVectorTarget target) {
        if (has)
            found.list[found.count++] = target;
    };
    add(hasAvx512, KWVectorTarget::avx512);
    add(hasAvx2, KWVectorTarget::avx2);
    add(hasSse4, KWVectorTarget::sse4);
    add(hasSsse3, KWVectorTarget::ssse3);
    add(true, KWVectorTarget::baseline);
    return found;
}

#else

Targets findTargets() {
    return {{KWVectorTarget::baseline}, 1};
}

#endif

const Targets& targets() {
    static const Targets found = findTargets();
    return found;
}

/// -1 as long as none has been set.
std::atomic<int> targetInUse = -1;

} // namespace

std::span<const KWVectorTarget> KWVectorTargets() {
    return std::span(targets().list).first(targets().count);
}

KWVectorTarget KWVectorTargetInUse() {
    int target = targetInUse.load(std::memory_order_relaxed);
    if (target < 0) [[unlikely]] {
        target = static_cast<int>(targets().list[0]);
        targetInUse.store(target, std::memory_order_relaxed);
    }
    return static_cast<KWVectorTarget>(target);
}

void KWUseVectorTarget(KWVectorTarget target) {
    targetInUse.store(static_cast<int>(target), std::memory_order_relaxed);
}

const char* KWVectorTargetName(KWVectorTarget target) {
    static constexpr const char* names[] = {"baseline", "SSSE3", "SSE4", "AVX2", "AVX-512"};
    return names[static_cast<int>(target)];
}
