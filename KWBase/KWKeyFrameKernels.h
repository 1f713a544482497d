#pragma once

#include <KWBase/KWKeyFrameCurve.h>

#include <cstddef>
#include <cstdint>

/// Evaluates a curve at many times by the wide vectors of one kind of processor. Each lane gets the
/// bits that KWKeyFrameCurve gives for one float, but of a NaN only that it is one.
///
/// Times and values reach a vector further than the count, and whatever lies there is read and
/// written over.
struct KWKeyFrameKernels {
    /// The most lanes that a vector has.
    static constexpr std::size_t lanes = 16;
    /// The most times of one call of `scattered`.
    static constexpr std::size_t block = 64;

    /// Evaluates the times, from the first on, until one lies outside the stretch, and answers how
    /// many those are. `hasNaN` becomes true when a value is NaN; perhaps one that is not counted.
    std::size_t (*run)(const KWKeyFrameStretch& stretch, std::int32_t mode, const float* times,
                       float* values, std::size_t count, bool& hasNaN);

    /// Evaluates times wherever they lie, and answers those, a bit each, that have no right value:
    /// one that is NaN, and one outside the keyed range unless its ends hold. The index is that of
    /// the curve. `segment` becomes that of the last time, or any other when that is outside.
    std::uint64_t (*scattered)(const KWKeyFrameCurve& curve, const KWKeyFrameIndex& index,
                               const float* times, float* values, std::size_t count,
                               std::int32_t& segment);

    /// The kernels for this processor; null when its vectors are short or cannot look up.
    static const KWKeyFrameKernels* best();
};
