#include <KWBase/KWKeyFrameKernels.h>

#include <algorithm>
#include <bit>

// AVX3_DL adds nothing to AVX3 that is used here.
#define HWY_DISABLED_TARGETS HWY_AVX3_DL
#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "KWBase/KWKeyFrameKernels.cpp"
#include <hwy/foreach_target.h> // comes first
#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace KWKeyFrameTargets {
namespace HWY_NAMESPACE {

#if HWY_TARGET == HWY_AVX2 || HWY_TARGET == HWY_AVX3
namespace {

namespace hn = hwy::HWY_NAMESPACE;

using S = hn::ScalableTag<float>;
using I = hn::RebindToSigned<S>;
using VS = hn::Vec<S>;
using VI = hn::Vec<I>;
using MS = hn::Mask<S>;

static_assert(hn::MaxLanes(S()) <= KWKeyFrameKernels::lanes);

struct Stretch {
    VS from, to, fromValue, toValue, start, end;
};

HWY_INLINE std::uint64_t bitsOf(MS mask) {
    std::uint8_t bytes[8] = {};
    hn::StoreMaskBits(S(), mask, bytes);
    return bytes[0] | static_cast<std::uint64_t>(bytes[1]) << 8;
}

// Every operation is one of KWKeyFrameCurve's, in its order.

HWY_INLINE VS blend(VS s, const Stretch& x) {
    const auto number = [](float value) HWY_ATTR { return hn::Set(S(), value); };
    const VS s2 = hn::Mul(s, s);
    const VS s3 = hn::Mul(s, s2);
    const VS part = hn::Add(hn::Mul(number(2), s3), hn::Mul(number(-3), s2));
    const VS ofFrom = hn::Add(part, number(1));
    // Its opposite; from 0, as both are +0 at the stretch's start.
    const VS ofTo = hn::Sub(number(0), part);
    const VS ofStart = hn::Add(hn::Sub(s3, hn::Mul(number(2), s2)), s);
    const VS values = hn::Add(hn::Mul(ofFrom, x.fromValue), hn::Mul(ofTo, x.toValue));
    return hn::Add(hn::Add(values, hn::Mul(ofStart, x.start)), hn::Mul(hn::Sub(s3, s2), x.end));
}

template <std::int32_t mode>
HWY_INLINE VS valueInside(const Stretch& x, VS t) {
    if constexpr (mode == KWKeyFrameModeStep)
        return x.fromValue;
    const VS share = hn::Div(hn::Sub(x.to, t), hn::Sub(x.to, x.from));
    if constexpr (mode == KWKeyFrameModeLinear)
        return hn::Add(x.toValue, hn::Mul(share, hn::Sub(x.fromValue, x.toValue)));
    else
        return blend(hn::Sub(hn::Set(S(), 1.0f), share), x);
}

template <std::int32_t mode>
std::size_t runIn(const KWKeyFrameStretch& stretch, const float* times, float* values,
                  std::size_t count, bool& hasNaN) {
    const S s;
    const Stretch x{hn::Set(s, stretch.from),           hn::Set(s, stretch.to),
                    hn::Set(s, stretch.fromValue),      hn::Set(s, stretch.toValue),
                    hn::Set(s, stretch.tangents.start), hn::Set(s, stretch.tangents.end)};
    MS isNaN = hn::FirstN(s, 0);
    std::size_t k = 0;
    std::intptr_t outside = -1;
    // What comes next waits for the times alone, not for their values.
    for (; k < count && outside < 0; k += hn::Lanes(s)) {
        const VS t = hn::LoadU(s, times + k);
        outside = hn::FindFirstTrue(s, hn::Not(hn::And(hn::Ge(t, x.from), hn::Lt(t, x.to))));
        const VS value = valueInside<mode>(x, t);
        hn::StoreU(value, s, values + k);
        isNaN = hn::Or(isNaN, hn::IsNaN(value));
    }
    hasNaN = !hn::AllFalse(s, isNaN);
    if (outside >= 0)
        k -= hn::Lanes(s) - static_cast<std::size_t>(outside);
    return std::min(k, count);
}

std::size_t run(const KWKeyFrameStretch& stretch, std::int32_t mode, const float* times,
                float* values, std::size_t count, bool& hasNaN) {
    switch (mode) {
    case KWKeyFrameModeHermite:
        return runIn<KWKeyFrameModeHermite>(stretch, times, values, count, hasNaN);
    case KWKeyFrameModeLinear:
        return runIn<KWKeyFrameModeLinear>(stretch, times, values, count, hasNaN);
    case KWKeyFrameModeStep:
        return runIn<KWKeyFrameModeStep>(stretch, times, values, count, hasNaN);
    default:
        return 0;
    }
}

using S8 = hn::RebindToSigned<hn::Repartition<double, S>>;
using V8 = hn::Vec<S8>;

/// A byte further than each index times the stride, of half of the lanes.
template <class Half>
HWY_INLINE V8 offsets(Half index, std::size_t stride) {
    return hn::ShiftLeftSame(hn::PromoteTo(S8(), index),
                             static_cast<int>(std::countr_zero(stride)));
}

/// Floats that lie in pairs at the list's start plus the stride times each index: the first ones
/// and the second ones. A look-up of pairs takes half the time of two look-ups.
HWY_INLINE void lookUpPairs(const float* list, std::size_t stride, VI index, VS& first,
                            VS& second) {
    const S s;
    const hn::Half<I> half;
    const auto* base = reinterpret_cast<const std::int64_t*>(list);
    const V8 low = hn::GatherOffset(S8(), base, offsets(hn::LowerHalf(half, index), stride));
    const V8 high = hn::GatherOffset(S8(), base, offsets(hn::UpperHalf(half, index), stride));
    first = hn::ConcatEven(s, hn::BitCast(s, high), hn::BitCast(s, low));
    second = hn::ConcatOdd(s, hn::BitCast(s, high), hn::BitCast(s, low));
}

HWY_INLINE VI oneMoreIf(MS mask, VI n) {
    return hn::Sub(n, hn::BitCast(I(), hn::VecFromMask(S(), mask)));
}

/// The keys before and after times that all lie inside the keyed range.
struct Found {
    VI index; ///< of the key before
    VS from;
    VS to;
};

HWY_INLINE Found findBySteps(const KWKeyFrameCurve& curve, VI base, VS t) {
    const S s;
    // The last key, which is after all times, ends this.
    for (;;) {
        const VI next = hn::Add(base, hn::Set(I(), 1));
        const MS goes = hn::Le(hn::GatherIndex(s, curve.keys, next), t);
        if (hn::AllFalse(s, goes))
            break;
        base = oneMoreIf(goes, base);
    }
    Found found{base, {}, {}};
    lookUpPairs(curve.keys, sizeof(float), base, found.from, found.to);
    return found;
}

HWY_INLINE Found findByHalving(const KWKeyFrameCurve& curve, VS t) {
    const S s;
    const I i;
    VI base = hn::Zero(i);
    for (std::uint32_t left = curve.count; left > 1;) {
        const std::uint32_t half = left / 2;
        const VI middle = hn::Add(base, hn::Set(i, static_cast<std::int32_t>(half)));
        const MS goes = hn::Le(hn::GatherIndex(s, curve.keys, middle), t);
        base = hn::IfThenElse(hn::RebindMask(i, goes), middle, base);
        left -= half;
    }
    return findBySteps(curve, base, t);
}

/// Looks at the last key before the bucket and the three that follow, which nearly always are
/// enough. An index has at least four keys.
HWY_INLINE Found find(const KWKeyFrameCurve& curve, const KWKeyFrameIndex& index, VS t) {
    const S s;
    const I i;
    if (index.isCrowded())
        return findByHalving(curve, t);
    const VS place = hn::Mul(hn::Sub(t, hn::Set(s, index.first())), hn::Set(s, index.scale()));
    const VI start = hn::GatherIndex(i, index.starts(), hn::ConvertTo(i, place));
    const VI last = hn::Set(i, static_cast<std::int32_t>(curve.count) - 4);
    const VI base = hn::Min(hn::Max(hn::Sub(start, hn::Set(i, 1)), hn::Zero(i)), last);
    VS key0, key1, key2, key3;
    lookUpPairs(curve.keys, sizeof(float), base, key0, key1);
    lookUpPairs(curve.keys + 2, sizeof(float), base, key2, key3);
    const MS isPast1 = hn::Le(key1, t);
    const MS isPast2 = hn::Le(key2, t);
    const VI before = oneMoreIf(isPast2, oneMoreIf(isPast1, base));
    if (!hn::AllFalse(s, hn::Le(key3, t))) [[unlikely]]
        return findBySteps(curve, before, t);
    return {before, hn::IfThenElse(isPast2, key2, hn::IfThenElse(isPast1, key1, key0)),
            hn::IfThenElse(isPast2, key3, hn::IfThenElse(isPast1, key2, key1))};
}

template <std::int32_t mode>
std::uint64_t scatteredIn(const KWKeyFrameCurve& curve, const KWKeyFrameIndex& index,
                          const float* times, float* values, std::size_t count,
                          std::int32_t& segment) {
    const S s;
    const VS first = hn::Set(s, curve.keys[0]);
    const VS last = hn::Set(s, curve.keys[curve.count - 1]);
    const auto* tangents = reinterpret_cast<const float*>(curve.tangents);
    const bool holds = curve.repeat == KWRepeatModeNone;
    std::uint64_t wrong = 0;
    std::int32_t indices[KWKeyFrameKernels::lanes] = {};
    for (std::size_t k = 0; k < count; k += hn::Lanes(s)) {
        const VS given = hn::LoadU(s, times + k);
        const MS isBefore = hn::Lt(given, first);
        const MS isBehind = hn::Ge(given, last);
        const MS isInside = hn::And(hn::Ge(given, first), hn::Lt(given, last));
        const VS t = hn::IfThenElse(isInside, given, first);
        const Found found = find(curve, index, t);
        Stretch x;
        x.from = found.from;
        x.to = found.to;
        lookUpPairs(curve.values, sizeof(float), found.index, x.fromValue, x.toValue);
        lookUpPairs(tangents, sizeof(KWKeyFrameTangents), found.index, x.start, x.end);
        VS value = valueInside<mode>(x, t);
        MS isRight = isInside;
        if (holds) {
            value = hn::IfThenElse(isBefore, hn::Set(s, curve.values[0]), value);
            value = hn::IfThenElse(isBehind, hn::Set(s, curve.values[curve.count - 1]), value);
            isRight = hn::Or(isRight, hn::Or(isBefore, isBehind));
        }
        isRight = hn::And(isRight, hn::Eq(value, value));
        hn::StoreU(value, s, values + k);
        hn::StoreU(found.index, I(), indices);
        if (!hn::AllTrue(s, isRight))
            wrong |= bitsOf(hn::Not(isRight)) << k;
    }
    segment = indices[(count - 1) % hn::Lanes(s)];
    return count < 64 ? wrong & ((std::uint64_t{1} << count) - 1) : wrong;
}

std::uint64_t scattered(const KWKeyFrameCurve& curve, const KWKeyFrameIndex& index,
                        const float* times, float* values, std::size_t count,
                        std::int32_t& segment) {
    switch (curve.mode) {
    case KWKeyFrameModeHermite:
        return scatteredIn<KWKeyFrameModeHermite>(curve, index, times, values, count, segment);
    case KWKeyFrameModeLinear:
        return scatteredIn<KWKeyFrameModeLinear>(curve, index, times, values, count, segment);
    case KWKeyFrameModeStep:
        return scatteredIn<KWKeyFrameModeStep>(curve, index, times, values, count, segment);
    default:
        return ~std::uint64_t{0} >> (64 - count);
    }
}

} // namespace

const KWKeyFrameKernels* table() {
    static constexpr KWKeyFrameKernels kernels = {.run = run, .scattered = scattered};
    return &kernels;
}

#else

const KWKeyFrameKernels* table() {
    return nullptr;
}

#endif

} // namespace HWY_NAMESPACE
} // namespace KWKeyFrameTargets
HWY_AFTER_NAMESPACE();

#if HWY_ONCE

#include <KWBase/KWVectorDispatch.h>

namespace KWKeyFrameTargets {
static const KWKeyFrameKernels* best() {
    KW_RETURN_FOR_VECTOR_TARGET(table())
}
} // namespace KWKeyFrameTargets

const KWKeyFrameKernels* KWKeyFrameKernels::best() {
    return KWKeyFrameTargets::best();
}

#endif
