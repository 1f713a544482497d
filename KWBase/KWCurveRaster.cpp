#include <KWBase/KWCurveRaster.h>
#include <KWBase/KWFloat4.h>

#include <QImage>
#include <QPainter>
#include <algorithm>
#include <cmath>
#include <cstddef>
#include <limits>

namespace {

/// A sharper bend than this, by the cosine, has a wedge.
constexpr float gentlest = 0.87f;
/// A miter is at most this many half widths long, else the wedge is cut off.
constexpr float miterLimit = 2;

float cross(float ax, float ay, float bx, float by) {
    return ax * by - ay * bx;
}

} // namespace

KWCurveRaster::KWCurveRaster(const QColor& color, double width)
    : _half(static_cast<float>(width / 2)), _reach(miterLimit * static_cast<float>(width / 2) + 1) {
    const QRgb rgb = color.rgb();
    const double alpha = color.alphaF();
    for (int share = 0; share < 256; ++share)
        _pixels[share] =
            qPremultiply((rgb & RGB_MASK) | static_cast<QRgb>(qRound(alpha * share)) << 24);
}

void KWCurveRaster::draw(QPainter& painter, std::span<const QPointF> line) {
    takeLine(line);
    if (_points.size() < 2)
        return;
    findJoints();
    const std::size_t segments = _normals.size();
    const auto end = static_cast<int>(std::ceil(_points.back().x + _reach));
    auto left = static_cast<int>(std::floor(_points.front().x - _reach));
    std::size_t first = 0;
    for (; left < end; left += _width) {
        while (first < segments && _points[first + 1].x + _reach < static_cast<float>(left))
            ++first;
        beginStrip(left, first);
        const float right = _left + static_cast<float>(_width) + _reach;
        for (std::size_t i = first; i < segments && _points[i].x < right; ++i) {
            addSegment(i);
            if (i != 0 && !_joints[i].isGentle)
                addWedge(i);
        }
        finishStrip(painter);
    }
}

void KWCurveRaster::takeLine(std::span<const QPointF> line) {
    _points.clear();
    for (const QPointF& point : line) {
        const Point p{static_cast<float>(point.x()), static_cast<float>(point.y())};
        if (_points.empty() || p.x != _points.back().x || p.y != _points.back().y)
            _points.push_back(p);
    }
}

void KWCurveRaster::findJoints() {
    const std::size_t segments = _points.size() - 1;
    _normals.resize(segments);
    _lengths.resize(segments);
    for (std::size_t i = 0; i < segments; ++i) {
        const float dx = _points[i + 1].x - _points[i].x;
        const float dy = _points[i + 1].y - _points[i].y;
        const float length = std::sqrt(dx * dx + dy * dy);
        _lengths[i] = length;
        _normals[i] = {-dy / length * _half, dx / length * _half};
    }
    _joints.assign(_points.size(), {{0, 0}, false});
    const float square = _half * _half;
    for (std::size_t i = 1; i < segments; ++i) {
        const Point a = _normals[i - 1];
        const Point b = _normals[i];
        const float cosine = (a.x * b.x + a.y * b.y) / square;
        const float scale = 1 / (1 + cosine);
        const Point miter{(a.x + b.x) * scale, (a.y + b.y) * scale};
        // The mitred edge must not reach into the far half of a short segment.
        const float reached = _half * std::sqrt(std::max(0.0f, 1 - cosine) * scale);
        const bool fits = std::min(_lengths[i - 1], _lengths[i]) > 2 * reached;
        _joints[i] = {miter, cosine > gentlest && fits};
    }
}

/// Takes the widest strip that is not much higher than wide.
void KWCurveRaster::beginStrip(int left, std::size_t first) {
    _left = static_cast<float>(left);
    for (_width = widestStrip;; _width /= 2) {
        findRows(first, _left + static_cast<float>(_width) + _reach);
        if (_rows <= 2 * _width || _width == narrowestStrip)
            break;
    }
    const std::size_t size = static_cast<std::size_t>(_rows) * static_cast<std::size_t>(_width);
    if (_shares.size() < size) {
        _shares.resize(size);
        _image.resize(size);
    }
}

/// The rows of a strip whose line lies between two places.
void KWCurveRaster::findRows(std::size_t first, float right) {
    const float left = _left - _reach;
    float low = std::numeric_limits<float>::max();
    float high = -low;
    for (std::size_t i = first; i < _normals.size() && _points[i].x < right; ++i) {
        const Point from = _points[i];
        const Point to = _points[i + 1];
        // Of a long segment only the stretch inside counts.
        const float slope = to.x > from.x ? (to.y - from.y) / (to.x - from.x) : 0;
        const float y0 = from.x < left ? from.y + (left - from.x) * slope : from.y;
        const float y1 = to.x > right ? from.y + (right - from.x) * slope : to.y;
        low = std::min({low, y0, y1});
        high = std::max({high, y0, y1});
    }
    _top = static_cast<int>(std::floor(low - _reach)) - 1;
    _rows = low > high ? 0 : static_cast<int>(std::ceil(high + _reach)) + 2 - _top;
}

void KWCurveRaster::addSegment(std::size_t segment) {
    const Joint& start = _joints[segment];
    const Joint& end = _joints[segment + 1];
    const Point n0 = start.isGentle ? start.miter : _normals[segment];
    const Point n1 = end.isGentle ? end.miter : _normals[segment];
    const Point p0 = _points[segment];
    const Point p1 = _points[segment + 1];
    const Point a{p0.x + n0.x, p0.y + n0.y};
    const Point b{p1.x + n1.x, p1.y + n1.y};
    const Point c{p1.x - n1.x, p1.y - n1.y};
    const Point d{p0.x - n0.x, p0.y - n0.y};
    addEdge(a, b);
    if (!end.isGentle)
        addEdge(b, c);
    addEdge(c, d);
    if (!start.isGentle)
        addEdge(d, a);
}

/// Runs around the wedge the same way as addSegment around a segment, so that both add up.
void KWCurveRaster::addWedge(std::size_t joint) {
    const Point p = _points[joint];
    Point from = _normals[joint - 1];
    Point to = _normals[joint];
    Point miter = _joints[joint].miter;
    if (cross(from.x, from.y, to.x, to.y) > 0) {
        std::swap(from, to);
        from = {-from.x, -from.y};
        to = {-to.x, -to.y};
        miter = {-miter.x, -miter.y};
    }
    const Point a{p.x + from.x, p.y + from.y};
    const Point b{p.x + to.x, p.y + to.y};
    addEdge(p, a);
    const float limit = miterLimit * _half;
    if (miter.x * miter.x + miter.y * miter.y <= limit * limit) {
        const Point tip{p.x + miter.x, p.y + miter.y};
        addEdge(a, tip);
        addEdge(tip, b);
    } else {
        addEdge(a, b);
    }
    addEdge(b, p);
}

/// Adds what lies below an edge, taken away when it runs to the left.
void KWCurveRaster::addEdge(Point from, Point to) {
    if (from.x == to.x)
        return;
    const float direction = from.x < to.x ? 1.0f : -1.0f;
    if (direction < 0)
        std::swap(from, to);
    const float slope = (to.y - from.y) / (to.x - from.x);
    const float x0 = std::max(from.x - _left, 0.0f);
    const float x1 = std::min(to.x - _left, static_cast<float>(_width));
    if (!(x0 < x1))
        return;
    const auto top = static_cast<float>(_top);
    const float lowest = std::min(from.y, to.y) - top;
    const float highest = std::max(from.y, to.y) - top;
    const auto yAt = [&](float x) {
        return std::clamp(from.y - top + (x + _left - from.x) * slope, lowest, highest);
    };
    const auto last = static_cast<int>(std::ceil(x1)) - 1;
    float x = x0;
    float y = yAt(x0);
    for (auto column = static_cast<int>(x0); column <= last; ++column) {
        const float nextX = column == last ? x1 : static_cast<float>(column + 1);
        const float nextY = yAt(nextX);
        addEdgeInColumn(column, (nextX - x) * direction, std::min(y, nextY), std::max(y, nextY));
        x = nextX;
        y = nextY;
    }
}

/// An edge that crosses `share` of a column between two heights. Of a row it covers what lies below
/// it; a row's cell gets how much more that is than in the row above.
void KWCurveRaster::addEdgeInColumn(int column, float share, float low, float high) {
    auto row = static_cast<int>(low);
    float* cell = _shares.data() + std::ptrdiff_t{row} * _width + column;
    auto rowTop = static_cast<float>(row);
    if (high <= rowTop + 1) {
        const float above = share * (0.5f * (low + high) - rowTop);
        cell[0] += share - above;
        cell[_width] += above;
        return;
    }
    const float perRow = share / (high - low);
    const float inFirst = rowTop + 1 - low;
    float covered = 0.5f * perRow * inFirst * inFirst;
    *cell += covered;
    for (++rowTop, cell += _width; rowTop + 1 < high; ++rowTop, cell += _width) {
        const float before = covered;
        covered = perRow * (rowTop + 0.5f - low);
        *cell += covered - before;
    }
    const float inLast = high - rowTop;
    const float last = perRow * (rowTop - low + inLast * (1 - 0.5f * inLast));
    *cell += last - covered;
    cell[_width] += share - last;
}

/// The sums down the columns are the shares of the pixels. Leaves zeros.
void KWCurveRaster::finishStrip(QPainter& painter) {
    if (_rows == 0)
        return;
    static_assert(narrowestStrip % 4 == 0);
    float sums[widestStrip] = {};
    float* shares = _shares.data();
    quint32* pixels = _image.data();
    for (int row = 0; row < _rows; ++row, shares += _width, pixels += _width) {
        for (int i = 0; i < _width; i += 4) {
            const KWFloat4 sum = KWFloat4Load(sums + i) + KWFloat4Load(shares + i);
            KWFloat4Store(sums + i, sum);
            KWFloat4Store(shares + i, KWFloat4{});
            const KWFloat4 size = sum < 0.0f ? -sum : sum;
            const KWFloat4 share = size > 1.0f ? KWFloat4All(1.0f) : size;
            const KWInt4 steps = __builtin_convertvector(share * 255.0f + 0.5f, KWInt4);
            // Most pixels beside a line are empty, and those inside it full.
            if (KWInt4Bits(steps != 0) == 0)
                std::fill_n(pixels + i, 4, _pixels[0]);
            else
                for (int lane = 0; lane < 4; ++lane)
                    pixels[i + lane] = _pixels[steps[lane]];
        }
    }
    const QImage image(reinterpret_cast<const uchar*>(_image.data()), _width, _rows,
                       qsizetype{_width} * 4, QImage::Format_ARGB32_Premultiplied);
    painter.drawImage(static_cast<int>(_left), _top, image);
}
