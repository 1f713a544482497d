#pragma once

#include <KWBase/KWKeyFramedChannel.h>
#include <KWFoundation/KWExport.h>

#include <cstdint>
#include <vector>

// The arithmetic of the curve view. Nothing here needs a window. Where not said otherwise it is
// done in single precision, each operation rounded, in the order in which it is described.

/// A point of a view, in points; y grows upwards.
struct KWPlotPoint {
    float x = 0;
    float y = 0;

    friend bool operator==(const KWPlotPoint&, const KWPlotPoint&) = default;
};

/// What a view displays: times in seconds from left to right, values in the user's unit from bottom
/// to top. Nothing keeps a range from being empty, upside down or not finite.
struct KWDisplayedRange {
    float hMin = 0;
    float hMax = 10;
    float vMin = -2;
    float vMax = 2;

    friend bool operator==(const KWDisplayedRange&, const KWDisplayedRange&) = default;
};

/// Where it displays that, in points.
struct KWPlotRect {
    float xMin = 0;
    float xMax = 0;
    float yMin = 0;
    float yMax = 0;

    friend bool operator==(const KWPlotRect&, const KWPlotRect&) = default;
};

/// One line of a grid.
struct KWGridLine {
    float at = 0; ///< the time or the value
    bool isMajor = false;

    friend bool operator==(const KWGridLine&, const KWGridLine&) = default;
};

inline namespace kwbase {

/// toSpan / fromSpan * (value - fromMin) + toMin.
KW_EXPORT float convertLinear(float value, float fromMin, float fromSpan, float toMin,
                              float toSpan);

/// The round step that divides min to max into about as many parts as wanted. The mode names the
/// steps there are: 1 powers of ten, 2 those and their halves, 3 those, their halves and their
/// fifths. The power is the smallest that gives at most as many parts as wanted; of steps that come
/// equally close the finest is taken. Any other mode gives 1. Nothing wanted gives infinity. The
/// power is found in double, from a quotient in single precision.
KW_EXPORT float findStep(float min, float max, std::int32_t mode, std::uint32_t wanted);

/// The first multiple of step at or above min.
KW_EXPORT float findFirst(float min, float step);

} // namespace kwbase

/// No grid has more lines than this: of more, as many are left out between one and the next as
/// needed, but no major ones. They all fall on the same points anyway.
inline constexpr std::uint32_t KWGridLineLimit = 20'000;

/// The lines of a grid from min up to but not including max, rising: first + k * step for k = 0, 1,
/// 2 and so on. Lines are counted from 0; a line is major when its count is a multiple of a fifth
/// of the steps that there are between min and max. With fewer than five such steps none is. None
/// at all in a range that is empty, upside down or not finite, or with a step that is not positive
/// or not finite.
KW_EXPORT std::vector<KWGridLine> KWGridLines(float min, float max, float step);

/// The multiple of the step that is nearest, of two the even one. The value itself when the
/// multiple has no 32-bit number.
KW_EXPORT float KWSnap(float value, float step);

/// How far keys may be dragged in time: what the channel says, kept one point, `point` seconds,
/// away from the neighbours. A side with less room than that is 0.
KW_EXPORT HJKeyMoveRange KWDragRange(HJKeyMoveRange range, float point);

/// An offset held inside such a range; the lower end goes before the upper.
KW_EXPORT float KWHoldInDragRange(float offset, HJKeyMoveRange range);

/// Bounds of times and user-unit values as a channel, which compares stored values, is asked for
/// them; turned upright when they are upside down. Where the user's unit is the stored one they
/// come back as they are.
KW_EXPORT HJRect KWStoredBounds(const HJRect& bounds, const KWChannel& channel);

/// The lower left corner of a key's handle, a square around the key's point that stands on half
/// points.
KW_EXPORT KWPlotPoint KWKeyCellOrigin(KWPlotPoint key);
/// How wide and high a handle is, in points.
inline constexpr float KWKeyCellSize = 7;

/// Where the text that shows a point's coordinates begins at its lower left: 16 points right of and
/// below the point, at least 2 from the left and the bottom, and pulled back from where it would
/// reach beyond the plot's width or height.
KW_EXPORT KWPlotPoint KWCoordinatesOrigin(KWPlotPoint point, float width, float height,
                                          const KWPlotRect& plot);

/// A channel's bounds with a tenth of each span added on each side; the tenth in double.
KW_EXPORT KWDisplayedRange KWRangeAroundBounds(const HJRect& bounds);

/// What is displayed, and where: the mapping between times and values on the one hand and points on
/// the other, and what the gestures make of it. Without a span on either hand the answers are not
/// finite.
struct KW_EXPORT KWChannelViewGeometry {
    KWDisplayedRange range;
    KWPlotRect plot;

    float xForTime(float time) const;
    float yForValue(float value) const;
    float timeForX(float x) const;
    float valueForY(float y) const;

    /// The seconds and the value that a distance in points stands for.
    float timeForDistance(float points) const;
    float valueForDistance(float points) const;

    /// Time and value of the key that a press at a point makes. They are timeForX and valueForY but
    /// for the order of the time's operations.
    float timeForNewKey(float x) const;
    float valueForNewKey(float y) const { return valueForY(y); }

    /// Where the line of a time stands: on a half point, counted from 0 and not from the plot's
    /// left.
    float timeLineX(float time) const;

    /// The range that was displayed at the press, `anchor`, moved along with the pointer.
    KWDisplayedRange panned(const KWDisplayedRange& anchor, KWPlotPoint from, KWPlotPoint to) const;

    /// The range that was displayed at the press, zoomed around what was under the pointer,
    /// `fixed` = (time, value): 100 points to the right show half the time, 100 points up half the
    /// values, and no drag shows more than 100 times as much. The factors are in double.
    static KWDisplayedRange zoomed(const KWDisplayedRange& anchor, KWPlotPoint fixed,
                                   KWPlotPoint from, KWPlotPoint to);

    /// The times and values inside a rubber band dragged from one point to another.
    HJRect rubberBandBounds(KWPlotPoint from, KWPlotPoint to) const;

    /// The steps of the grid.
    float timeStep(std::int32_t mode, std::uint32_t wanted) const;
    float valueStep(std::int32_t mode, std::uint32_t wanted) const;

    /// The grid's lines at times, and at values. The lowest line of the values is never major.
    std::vector<KWGridLine> timeLines(std::int32_t mode, std::uint32_t wanted) const;
    std::vector<KWGridLine> valueLines(std::int32_t mode, std::uint32_t wanted) const;
};
