#pragma once

#include <KWBase/KWFloat4.h>
#include <KWBase/KWKeyFramedChannel.h>

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>

/// A regular channel's lists as evaluation reads them. Not kept across edits.
struct KWKeyFrameCurve {
    const float* keys;
    const float* values;
    const KWKeyFrameTangents* tangents;
    std::uint32_t count;
    std::int32_t mode;
    std::int32_t repeat;

    /// floorf without a call; the baseline instruction set has no rounding instruction.
    static float floorOf(float x) {
        if (!(std::fabs(x) < 8388608.0f)) // already whole, infinite or NaN
            return x;
        float whole = static_cast<float>(static_cast<std::int32_t>(x));
        whole -= whole > x ? 1.0f : 0.0f;
        return std::copysign(whole, x);
    }

    /// The time inside the keyed range that stands for `t` by the repeat mode; `t` itself where
    /// that maps nothing.
    static float mappedTime(float t, float first, float last, std::int32_t mode,
                            std::int32_t repeat) {
        if ((repeat != KWRepeatModeCycle && repeat != KWRepeatModePingPong) || !(first < last))
            return t;
        const float length = last - first;
        const float turns = floorOf((t - first) / length);
        if (repeat == KWRepeatModeCycle) {
            t = static_cast<float>(static_cast<double>(t) -
                                   static_cast<double>(turns) * static_cast<double>(length));
        } else {
            const std::int32_t count = saturated(turns);
            t = t - length * static_cast<float>(count);
            if ((count & 1) != 0)
                t = last - (t - first);
        }
        // Rounding can end just below the first key, where a Hermite curve has nothing to start at.
        if (mode == KWKeyFrameModeHermite && t < first)
            t = first;
        return t;
    }

    /// How many of ascending keys are at or before `t`; all of them for NaN. The number of steps
    /// depends on `count` alone and no step branches.
    static std::uint32_t countNotAfter(const float* keys, std::uint32_t count, float t) {
        if (count == 0 || t != t) [[unlikely]]
            return count;
        const float* base = keys;
        std::size_t left = count;
        while (left > 1) {
            const std::size_t half = left / 2;
            base += static_cast<std::size_t>(base[half] <= t) * half;
            left -= half;
        }
        return static_cast<std::uint32_t>(base - keys) + static_cast<std::uint32_t>(*base <= t);
    }

    float mappedTime(float t) const {
        return mappedTime(t, keys[0], keys[count - 1], mode, repeat);
    }

    /// From key i, which must not be the last, to the next one.
    KWKeyFrameStretch stretch(std::uint32_t i) const {
        return {keys[i], keys[i + 1], values[i], values[i + 1], tangents[i]};
    }

    KWKeyFramePlace place(std::uint32_t i) const { return {stretch(i), keys[i + 1] - keys[i], i}; }

    float valueInside(std::uint32_t i, float t) const { return valueInside(stretch(i), t, mode); }

    static float valueInside(const KWKeyFrameStretch& x, float t, std::int32_t mode) {
        if (mode == KWKeyFrameModeHermite) {
            const float s = 1.0f - (x.to - t) / (x.to - x.from);
            return blend(s, x.fromValue, x.toValue, x.tangents.start, x.tangents.end);
        }
        if (mode == KWKeyFrameModeLinear)
            return x.toValue + ((x.to - t) / (x.to - x.from)) * (x.fromValue - x.toValue);
        return mode == KWKeyFrameModeStep ? x.fromValue : 0.0f;
    }

    /// A Hermite curve at a time that lies in the stretch, with the bits of valueInside but for
    /// those of a NaN. The four parts of the sum are computed side by side.
    static float hermiteInside(const KWKeyFramePlace& place, float t) {
        const KWKeyFrameStretch& x = place.stretch;
        const KWFloat4 s = KWFloat4All(1.0f - (x.to - t) / place.length);
        const KWFloat4 s2 = s * s;
        const KWFloat4 s3 = s * s2;
        constexpr KWFloat4 ofS3{2.0f, -2.0f, 1.0f, 1.0f};
        constexpr KWFloat4 ofS2{-3.0f, 3.0f, -2.0f, -1.0f};
        // Nothing changes when -0 is added.
        const KWFloat4 rest{1.0f, -0.0f, s[2], -0.0f};
        const KWFloat4 sum = (s3 * ofS3 + s2 * ofS2) + rest;
        const KWFloat4 parts = sum * KWFloat4Load(&x.fromValue);
        return ((parts[0] + parts[1]) + parts[2]) + parts[3];
    }

    /// The cubic with those end values and slopes, at s from 0 to 1. Real is a float, or several.
    template <class Real>
    static Real blend(Real s, Real from, Real to, Real start, Real end) {
        const Real s2 = s * s;
        const Real s3 = s * s2;
        return (((2.0f * s3 + -3.0f * s2 + 1.0f) * from + (-2.0f * s3 + 3.0f * s2) * to) +
                (s3 - 2.0f * s2 + s) * start) +
               (s3 - s2) * end;
    }

  private:
    static std::int32_t saturated(float x) {
        using Limits = std::numeric_limits<std::int32_t>;
        if (x >= 2147483648.0f)
            return Limits::max();
        if (x <= -2147483648.0f)
            return Limits::min();
        return x == x ? static_cast<std::int32_t>(x) : 0;
    }
};

// Loaded as four floats in a row.
static_assert(offsetof(KWKeyFrameStretch, tangents) ==
              offsetof(KWKeyFrameStretch, fromValue) + 2 * sizeof(float));
static_assert(sizeof(KWKeyFrameStretch) ==
              offsetof(KWKeyFrameStretch, fromValue) + 4 * sizeof(float));

inline KWKeyFrameCurve KWKeyFramedChannel::curve() const {
    return {_frames.keys.data(),
            _frames.values.data(),
            _tangents.data(),
            static_cast<std::uint32_t>(_frames.keys.size()),
            _mode,
            _repeat};
}

/// Whether the time lies in the stretch behind the place, which is the new place then.
inline bool KWKeyFramedChannel::stepOn(KWKeyFramePlace& place, float time) const {
    const std::size_t i = place.segment + std::size_t{1};
    const float* const keys = _frames.keys.data();
    if (!_regular || i + 1 >= _frames.keys.size() || !(time >= keys[i] && time < keys[i + 1]))
        return false;
    const float* const values = _frames.values.data();
    place = {{keys[i], keys[i + 1], values[i], values[i + 1], _tangents[i]},
             keys[i + 1] - keys[i],
             static_cast<std::uint32_t>(i)};
    return true;
}

inline std::uint32_t KWKeyFramedChannel::countNotAfter(const KWKeyFrameCurve& curve,
                                                       float time) const {
    if (!(time >= curve.keys[0])) // NaN counts as after all
        return time == time ? 0 : curve.count;
    if (time >= curve.keys[curve.count - 1])
        return curve.count;
    if (const KWKeyFrameIndex* const index = _index.index()) [[likely]]
        return index->countNotAfter(curve.keys, time);
    _index.noteSearch({curve.keys, curve.count});
    return KWKeyFrameCurve::countNotAfter(curve.keys, curve.count, time);
}
