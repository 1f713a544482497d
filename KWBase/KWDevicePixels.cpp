#include <KWBase/KWDevicePixels.h>

#include <QImage>
#include <QPaintEngine>
#include <QPainter>
#include <QPen>
#include <algorithm>
#include <cmath>
#include <span>

namespace {

bool drawsPixels(const QPainter& painter, const QTransform& device) {
    return painter.paintEngine()->type() == QPaintEngine::Raster &&
           device.type() <= QTransform::TxScale && device.m11() > 0 &&
           qFuzzyCompare(device.m11(), std::fabs(device.m22())) && painter.opacity() == 1 &&
           painter.compositionMode() == QPainter::CompositionMode_SourceOver;
}

/// The pixels along one side that a stretch covers: those in the middle wholly, those at the ends
/// in part.
class Stretch {
  public:
    struct Part {
        int from;
        int to;
        double share;
    };

    Stretch(double from, double to) {
        const auto first = static_cast<int>(std::floor(from));
        const auto last = static_cast<int>(std::floor(to));
        if (first == last) {
            add(first, first + 1, to - from);
            return;
        }
        add(first, first + 1, first + 1 - from);
        add(first + 1, last, 1);
        add(last, last + 1, to - last);
    }

    std::span<const Part> parts() const { return {_parts, _count}; }
    int from() const { return _parts[0].from; }
    int length() const { return _count == 0 ? 0 : _parts[_count - 1].to - from(); }

  private:
    void add(int from, int to, double share) {
        if (from < to && share > 0)
            _parts[_count++] = {from, to, share};
    }

    Part _parts[3] = {};
    std::size_t _count = 0;
};

QRgb premultiplied(const QColor& color, double share) {
    const int alpha = qRound(static_cast<double>(color.alphaF()) * share * 255);
    return qPremultiply((color.rgb() & RGB_MASK) | static_cast<QRgb>(alpha) << 24);
}

} // namespace

KWDevicePixels::KWDevicePixels(QPainter& painter)
    : _painter(painter), _transform(painter.deviceTransform()),
      _isPossible(drawsPixels(painter, _transform)) {
    if (!_isPossible)
        return;
    painter.save();
    painter.setTransform(_transform.inverted(), true);
    painter.setRenderHint(QPainter::Antialiasing, false);
}

KWDevicePixels::~KWDevicePixels() {
    if (_isPossible)
        _painter.restore();
}

void KWDevicePixels::fill(const QRectF& pixels, const QColor& color) {
    // What lies out of sight may be far away.
    constexpr double limit = 1e6;
    const QRectF rect = pixels.intersected(QRectF(-limit, -limit, 2 * limit, 2 * limit));
    if (rect.isEmpty())
        return;
    const Stretch across(rect.left(), rect.right());
    const Stretch down(rect.top(), rect.bottom());
    // One picture is laid down at once, where filled rectangles would be spread over threads.
    QImage image(across.length(), down.length(), QImage::Format_ARGB32_Premultiplied);
    for (const Stretch::Part& y : down.parts()) {
        for (const Stretch::Part& x : across.parts()) {
            const QRgb pixel = premultiplied(color, x.share * y.share);
            for (int row = y.from - down.from(); row < y.to - down.from(); ++row) {
                auto* const line = reinterpret_cast<QRgb*>(image.scanLine(row));
                std::fill(line + (x.from - across.from()), line + (x.to - across.from()), pixel);
            }
        }
    }
    _painter.drawImage(across.from(), down.from(), image);
}

void KWDrawStraightLine(QPainter& painter, const QLineF& line) {
    const QPen pen = painter.pen();
    KWDevicePixels pixels(painter);
    if (!pixels) {
        painter.drawLine(line);
        return;
    }
    const double half = pen.widthF() / 2;
    const bool isUpright = line.x1() == line.x2();
    const QRectF covered = QRectF(line.p1(), line.p2())
                               .normalized()
                               .adjusted(isUpright ? -half : 0, isUpright ? 0 : -half,
                                         isUpright ? half : 0, isUpright ? 0 : half);
    pixels.fill(pixels.transform().mapRect(covered), pen.color());
}
