#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

/// Four floats at a time, by the compiler's own vectors: every operation is the IEEE operation of
/// each lane, so a lane has the bits that the same formula gives for one float.
typedef float KWFloat4 __attribute__((vector_size(16)));
/// Four indices, or four answers of a comparison: all bits set for true.
typedef std::int32_t KWInt4 __attribute__((vector_size(16)));

inline KWFloat4 KWFloat4All(float x) {
    return KWFloat4{x, x, x, x};
}

inline KWFloat4 KWFloat4Load(const float* from) {
    KWFloat4 four;
    std::memcpy(&four, from, sizeof(four));
    return four;
}

inline void KWFloat4Store(float* to, KWFloat4 four) {
    std::memcpy(to, &four, sizeof(four));
}

/// One bit a lane, the first lane lowest.
inline unsigned KWInt4Bits(KWInt4 mask) {
#if defined(__SSE2__)
    return static_cast<unsigned>(_mm_movemask_ps(reinterpret_cast<__m128>(mask)));
#else
    unsigned bits = 0;
    for (int lane = 0; lane < 4; ++lane)
        bits |= mask[lane] ? 1u << lane : 0u;
    return bits;
#endif
}

/// Four pairs of floats, the ones at `list` plus `stride` bytes times each index, taken apart: the
/// four first and the four second ones.
inline void KWFloat4GatherPairs(const void* list, std::size_t stride, const std::int32_t* index,
                                KWFloat4& first, KWFloat4& second) {
    typedef double Double2 __attribute__((vector_size(16)));
    const auto* bytes = static_cast<const std::byte*>(list);
    double pairs[4];
    for (int lane = 0; lane < 4; ++lane)
        std::memcpy(&pairs[lane], bytes + static_cast<std::size_t>(index[lane]) * stride, 8);
    const Double2 low{pairs[0], pairs[1]};
    const Double2 high{pairs[2], pairs[3]};
    const auto a = reinterpret_cast<KWFloat4>(low);
    const auto b = reinterpret_cast<KWFloat4>(high);
    first = __builtin_shufflevector(a, b, 0, 2, 4, 6);
    second = __builtin_shufflevector(a, b, 1, 3, 5, 7);
}
