#include <KWBase/KWCurvePainter.h>
#include <KWBase/KWCurveRaster.h>
#include <KWBase/KWDevicePixels.h>

#include <QPainter>
#include <QPen>
#include <algorithm>
#include <cmath>
#include <vector>

namespace {

using Line = std::vector<QPointF>;

/// Cuts a line into the pieces that run inside a band of heights.
class BandClipper {
  public:
    BandClipper(double low, double high) : _low(low), _high(high) {}

    std::vector<Line> clip(std::span<const QPointF> points) {
        const auto isInside = [this](const QPointF& point) {
            return point.y() >= _low && point.y() <= _high && std::isfinite(point.x());
        };
        if (points.size() > 1 && std::all_of(points.begin(), points.end(), isInside))
            return {Line(points.begin(), points.end())};
        const QPointF* before = nullptr;
        for (const QPointF& point : points) {
            if (!std::isfinite(point.y()) || !std::isfinite(point.x())) {
                finish();
                before = nullptr;
                continue;
            }
            if (before)
                add(*before, point);
            before = &point;
        }
        finish();
        return std::move(_lines);
    }

  private:
    void add(const QPointF& from, const QPointF& to) {
        const bool isOutside =
            (from.y() < _low && to.y() < _low) || (from.y() > _high && to.y() > _high);
        if (isOutside) {
            finish();
            return;
        }
        if (_line.empty())
            _line.push_back(cut(from, to));
        _line.push_back(cut(to, from));
        if (_line.back() != to)
            finish();
    }

    /// `point`, or where the way from it to `other` enters the band.
    QPointF cut(const QPointF& point, const QPointF& other) const {
        if (point.y() >= _low && point.y() <= _high)
            return point;
        const double y = point.y() < _low ? _low : _high;
        const double share = (y - point.y()) / (other.y() - point.y());
        return {point.x() + (other.x() - point.x()) * share, y};
    }

    void finish() {
        if (_line.size() > 1)
            _lines.push_back(std::move(_line));
        _line.clear();
    }

    double _low;
    double _high;
    Line _line;
    std::vector<Line> _lines;
};

/// Of the points in one column of pixels the first, the lowest, the highest and the last, in their
/// order: all that can be seen of them.
Line thinned(const Line& line) {
    Line kept;
    for (std::size_t i = 0; i < line.size();) {
        const double column = std::floor(line[i].x());
        std::size_t low = i;
        std::size_t high = i;
        std::size_t end = i + 1;
        for (; end < line.size() && line[end].x() < column + 1; ++end) {
            if (line[end].y() < line[low].y())
                low = end;
            if (line[end].y() > line[high].y())
                high = end;
        }
        std::size_t picked[] = {i, std::min(low, high), std::max(low, high), end - 1};
        const auto last = std::unique(std::begin(picked), std::end(picked));
        std::for_each(std::begin(picked), last, [&](std::size_t k) { kept.push_back(line[k]); });
        i = end;
    }
    return kept;
}

} // namespace

void KWDrawCurve(QPainter& painter, std::span<const QPointF> points, double bottom, double top) {
    std::vector<Line> lines = BandClipper(bottom - KWCurveMargin, top + KWCurveMargin).clip(points);
    const QPen pen = painter.pen();
    KWDevicePixels pixels(painter);
    if (!pixels) {
        for (const Line& line : lines)
            painter.drawPolyline(line.data(), static_cast<int>(line.size()));
        return;
    }
    KWCurveRaster raster(pen.color(), pen.widthF() * pixels.scale());
    for (Line& line : lines) {
        for (QPointF& point : line)
            point = pixels.transform().map(point);
        raster.draw(painter, thinned(line));
    }
}
