#include <KWBase/KWChannelViewGeometry.h>

#include <algorithm>
#include <cmath>
#include <limits>

inline namespace kwbase {

float convertLinear(float value, float fromMin, float fromSpan, float toMin, float toSpan) {
    return toSpan / fromSpan * (value - fromMin) + toMin;
}

float findStep(float min, float max, std::int32_t mode, std::uint32_t wanted) {
    if (mode < 1 || mode > 3)
        return 1;
    constexpr double ln10 = 2.302585092994046;
    const float range = max - min;
    const auto n = static_cast<float>(wanted);
    const auto p =
        static_cast<float>(std::exp(std::ceil(std::log10(static_cast<double>(range / n))) * ln10));
    if (mode == 1)
        return p;
    const float e1 = std::fabs(std::trunc(range / p - n));
    const float e2 = std::fabs(std::trunc(2 * range / p - n));
    if (mode == 2)
        return e2 > e1 ? p : p * 0.5f;
    const float e5 = std::fabs(std::trunc(5 * range / p - n));
    if (e2 > e1)
        return e5 > e1 ? p : p / 5;
    return e5 > e2 ? p * 0.5f : p / 5;
}

float findFirst(float min, float step) {
    return step * std::ceil(min / step);
}

} // namespace kwbase

namespace {

/// Cut toward zero; the nearest that there is for what no integer holds.
std::int64_t integerPart(float number) {
    constexpr float limit = 9.2e18f;
    if (std::isnan(number))
        return 0;
    return static_cast<std::int64_t>(std::clamp(number, -limit, limit));
}

bool isFinitePositive(float number) {
    return number > 0 && std::isfinite(number);
}

} // namespace

std::vector<KWGridLine> KWGridLines(float min, float max, float step) {
    const float range = max - min;
    if (!isFinitePositive(range) || !isFinitePositive(step))
        return {};
    const float first = findFirst(min, step);
    if (!std::isfinite(first))
        return {};
    const std::int64_t interval = integerPart(range / step / 5);
    const std::int64_t start = integerPart(first / step);
    const double count = static_cast<double>(range) / static_cast<double>(step);
    // At most one more than `count` lines, and then some for what rounding adds.
    if (!(count < 1e15))
        return {};
    // There are not even ten major lines, and none of them is left out.
    const std::int64_t stride = 1 + static_cast<std::int64_t>(count) / (KWGridLineLimit - 16);
    std::int64_t next = 0;
    std::int64_t nextMajor = std::numeric_limits<std::int64_t>::max();
    if (interval != 0)
        nextMajor = start % interval > 0 ? interval - start % interval : -(start % interval);
    std::vector<KWGridLine> lines;
    while (lines.size() < KWGridLineLimit) {
        const std::int64_t k = std::min(next, nextMajor);
        const float at = first + static_cast<float>(k) * step;
        if (!(max > at))
            break;
        lines.push_back({at, k == nextMajor});
        if (k == next)
            next += stride;
        if (k == nextMajor)
            nextMajor += interval;
    }
    return lines;
}

float KWSnap(float value, float step) {
    const float multiple = std::rint(value / step);
    constexpr float limit = 2147483648.0f;
    if (!(multiple >= -limit && multiple < limit && std::isfinite(step)))
        return value;
    return step * static_cast<float>(static_cast<std::int32_t>(multiple));
}

HJKeyMoveRange KWDragRange(HJKeyMoveRange range, float point) {
    return {range.minimum < -point ? range.minimum + point : 0,
            range.maximum > point ? range.maximum - point : 0};
}

float KWHoldInDragRange(float offset, HJKeyMoveRange range) {
    return range.minimum > offset ? range.minimum : std::min(range.maximum, offset);
}

HJRect KWStoredBounds(const HJRect& bounds, const KWChannel& channel) {
    HJRect stored = bounds;
    if (bounds.width < 0) {
        stored.x = bounds.x + bounds.width;
        stored.width = bounds.x - stored.x;
    }
    const float first = channel.convertValueFromUserUnit(bounds.y);
    const float second = channel.convertValueFromUserUnit(bounds.y + bounds.height);
    if (first == bounds.y && second == bounds.y + bounds.height && !(bounds.height < 0))
        return stored;
    stored.y = std::min(first, second);
    stored.height = std::max(first, second) - stored.y;
    return stored;
}

KWPlotPoint KWKeyCellOrigin(KWPlotPoint key) {
    return {std::floor(key.x - 3.5f) + 0.5f, std::floor(key.y - 3.5f) + 0.5f};
}

KWPlotPoint KWCoordinatesOrigin(KWPlotPoint point, float width, float height,
                                const KWPlotRect& plot) {
    const float right = plot.xMax - plot.xMin - width;
    const float top = plot.yMax - plot.yMin - height;
    const float x = std::max(2.0f, point.x + 16);
    const float y = std::max(2.0f, point.y - (16 + height));
    return {x >= right ? right : x, y >= top ? top : y};
}

KWDisplayedRange KWRangeAroundBounds(const HJRect& bounds) {
    const double marginH = static_cast<double>(bounds.width) / 10.0;
    const double marginV = static_cast<double>(bounds.height) / 10.0;
    return {static_cast<float>(static_cast<double>(bounds.x) - marginH),
            static_cast<float>(static_cast<double>(bounds.x + bounds.width) + marginH),
            static_cast<float>(static_cast<double>(bounds.y) - marginV),
            static_cast<float>(static_cast<double>(bounds.y + bounds.height) + marginV)};
}

// --- The mapping.

float KWChannelViewGeometry::xForTime(float time) const {
    return plot.xMin + (time - range.hMin) * (plot.xMax - plot.xMin) / (range.hMax - range.hMin);
}

float KWChannelViewGeometry::yForValue(float value) const {
    return plot.yMin + (value - range.vMin) * (plot.yMax - plot.yMin) / (range.vMax - range.vMin);
}

float KWChannelViewGeometry::timeForX(float x) const {
    return range.hMin + (x - plot.xMin) * (range.hMax - range.hMin) / (plot.xMax - plot.xMin);
}

float KWChannelViewGeometry::valueForY(float y) const {
    return range.vMin + (y - plot.yMin) * (range.vMax - range.vMin) / (plot.yMax - plot.yMin);
}

float KWChannelViewGeometry::timeForDistance(float points) const {
    return points * (range.hMax - range.hMin) / (plot.xMax - plot.xMin);
}

float KWChannelViewGeometry::valueForDistance(float points) const {
    return points * (range.vMax - range.vMin) / (plot.yMax - plot.yMin);
}

float KWChannelViewGeometry::timeForNewKey(float x) const {
    return range.hMin + (range.hMax - range.hMin) / (plot.xMax - plot.xMin) * (x - plot.xMin);
}

float KWChannelViewGeometry::timeLineX(float time) const {
    const float x = (plot.xMax - plot.xMin) * (time - range.hMin) / (range.hMax - range.hMin);
    return std::floor(x) + 0.5f;
}

// --- What gestures make of it.

KWDisplayedRange KWChannelViewGeometry::panned(const KWDisplayedRange& anchor, KWPlotPoint from,
                                               KWPlotPoint to) const {
    const float dt = timeForDistance(to.x - from.x);
    const float dv = valueForDistance(to.y - from.y);
    return {anchor.hMin - dt, anchor.hMax - dt, anchor.vMin - dv, anchor.vMax - dv};
}

KWDisplayedRange KWChannelViewGeometry::zoomed(const KWDisplayedRange& anchor, KWPlotPoint fixed,
                                               KWPlotPoint from, KWPlotPoint to) {
    const auto factor = [](float distance) {
        constexpr auto largest = static_cast<double>(std::numeric_limits<float>::max());
        return std::clamp(static_cast<double>(distance) / 100.0 + 1.0, 0.01, largest);
    };
    const auto moved = [](float bound, float center, double by) {
        const double zoomed = static_cast<double>(bound - center) / by;
        return static_cast<float>(zoomed + static_cast<double>(center));
    };
    const double fx = factor(to.x - from.x);
    const double fy = factor(to.y - from.y);
    return {moved(anchor.hMin, fixed.x, fx), moved(anchor.hMax, fixed.x, fx),
            moved(anchor.vMin, fixed.y, fy), moved(anchor.vMax, fixed.y, fy)};
}

HJRect KWChannelViewGeometry::rubberBandBounds(KWPlotPoint from, KWPlotPoint to) const {
    const float dx = to.x - from.x;
    const float dy = to.y - from.y;
    const float left = dx >= 0 ? from.x : from.x + dx;
    const float bottom = dy >= 0 ? from.y : from.y + dy;
    const float timePerPoint = timeForDistance(1);
    const float valuePerPoint = valueForDistance(1);
    return {range.hMin + (left - plot.xMin) * timePerPoint,
            range.vMin + (bottom - plot.yMin) * valuePerPoint, std::fabs(dx) * timePerPoint,
            std::fabs(dy) * valuePerPoint};
}

// --- The grid.

float KWChannelViewGeometry::timeStep(std::int32_t mode, std::uint32_t wanted) const {
    return findStep(range.hMin, range.hMax, mode, wanted);
}

float KWChannelViewGeometry::valueStep(std::int32_t mode, std::uint32_t wanted) const {
    return findStep(range.vMin, range.vMax, mode, wanted);
}

std::vector<KWGridLine> KWChannelViewGeometry::timeLines(std::int32_t mode,
                                                         std::uint32_t wanted) const {
    return KWGridLines(range.hMin, range.hMax, timeStep(mode, wanted));
}

std::vector<KWGridLine> KWChannelViewGeometry::valueLines(std::int32_t mode,
                                                          std::uint32_t wanted) const {
    std::vector<KWGridLine> lines = KWGridLines(range.vMin, range.vMax, valueStep(mode, wanted));
    if (!lines.empty())
        lines.front().isMajor = false;
    return lines;
}
