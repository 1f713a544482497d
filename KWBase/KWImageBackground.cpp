#include <KWBase/KWImageBackground.h>

#include <QPainter>
#include <cmath>
#include <utility>

namespace {

/// How many pixels of the device a pixel of the image becomes along an axis; 0 when that is no
/// whole number, or when the painter turns or shears.
struct Magnification {
    int across = 0;
    int down = 0;
};

int wholeNumber(double scale) {
    const double rounded = std::round(scale);
    constexpr double most = 16;
    return rounded >= 1 && rounded <= most && std::fabs(scale - rounded) < 1e-6
               ? static_cast<int>(rounded)
               : 0;
}

Magnification magnificationOf(const QPainter& painter, const QImage& image) {
    const QTransform device = painter.deviceTransform();
    if (device.type() > QTransform::TxScale)
        return {};
    const double ratio = image.devicePixelRatio();
    return {wholeNumber(std::fabs(device.m11()) / ratio),
            wholeNumber(std::fabs(device.m22()) / ratio)};
}

QRectF rectOf(const KWSliceRect& rect, double y) {
    return {static_cast<double>(rect.x), y, static_cast<double>(rect.width),
            static_cast<double>(rect.height)};
}

/// Draws one cell. Stretched it is interpolated; along an axis on which it keeps its size its
/// pixels stay as sharp as they are, and so meet the neighbour's.
void drawSlice(QPainter& painter, const QImage& image, const QRectF& source,
               const QRectF& destination, const Magnification& scale) {
    const double ratio = image.devicePixelRatio();
    const QRectF pixels(source.topLeft() * ratio, source.size() * ratio);
    const bool isSharpAcross = source.width() == destination.width() && scale.across != 0;
    const bool isSharpDown = source.height() == destination.height() && scale.down != 0;
    // What reaches out of the image may lie where no int does.
    const QRect whole = QRectF(image.rect()).contains(pixels) ? pixels.toRect() : QRect();
    // How long the cell becomes on the device, along the axis on which it is stretched.
    const double length = ratio * (isSharpDown ? destination.width() * scale.across
                                               : destination.height() * scale.down);
    constexpr double longest = 16384;
    if (isSharpAcross == isSharpDown || scale.across == 0 || scale.down == 0 || length > longest ||
        whole.isEmpty() || QRectF(whole) != pixels) {
        painter.setRenderHint(QPainter::SmoothPixmapTransform, !isSharpAcross || !isSharpDown);
        painter.drawImage(destination, image, pixels);
        return;
    }
    // What interpolates both ways mixes a little of the next row into each, also where rows lie on
    // rows. So it is stretched one way first.
    const int along = static_cast<int>(std::lround(length));
    const QSize stretched =
        isSharpDown ? QSize(along, whole.height()) : QSize(whole.width(), along);
    const QImage piece =
        image.copy(whole).scaled(stretched, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
    painter.setRenderHint(QPainter::SmoothPixmapTransform, false);
    painter.drawImage(destination, piece, QRectF(piece.rect()));
}

} // namespace

KWImageBackground::KWImageBackground(QImage image, const std::array<std::int32_t, 4>& cuts,
                                     bool drawsCenterRegion)
    : _image(std::move(image)), _drawsCenterRegion(drawsCenterRegion) {
    const QSizeF size = _image.deviceIndependentSize();
    _grid = KWSliceGridForCuts(static_cast<float>(size.width()), static_cast<float>(size.height()),
                               cuts);
}

std::int64_t KWImageBackground::smallestWidth() const {
    return std::int64_t{_grid.widths[0]} + _grid.widths[2] + 1;
}

std::int64_t KWImageBackground::smallestHeight() const {
    return std::int64_t{_grid.heights[0]} + _grid.heights[2] + 1;
}

bool KWImageBackground::drawInRect(QPainter& painter, const QRectF& rect) const {
    const KWLayoutFrame frame{static_cast<float>(rect.x()), static_cast<float>(rect.y()),
                              static_cast<float>(rect.width()), static_cast<float>(rect.height())};
    const auto slices = KWSlicesForRect(_grid, frame);
    if (!slices)
        return false;
    if (_image.isNull())
        return true;
    painter.save();
    // Edges that antialiasing would leave half covered would show as seams.
    painter.setRenderHint(QPainter::Antialiasing, false);
    painter.setCompositionMode(QPainter::CompositionMode_SourceOver);
    // The cells lie y upwards in the rectangle, and are drawn y downwards.
    const double bottom = static_cast<double>(slices->front().destination.y);
    const KWSliceRect& topmost = slices->back().destination;
    const double top = static_cast<double>(topmost.y + topmost.height);
    if (painter.combinedTransform().m22() < 0) {
        painter.translate(0, bottom + top);
        painter.scale(1, -1);
    }
    const double imageHeight = _image.deviceIndependentSize().height();
    const Magnification scale = magnificationOf(painter, _image);
    for (std::size_t i = 0; i < slices->size(); ++i) {
        const auto& [source, destination] = (*slices)[i];
        const bool isCenter = i == 4;
        if ((isCenter && !_drawsCenterRegion) || source.width <= 0 || source.height <= 0 ||
            destination.width <= 0 || destination.height <= 0)
            continue;
        const QRectF from =
            rectOf(source, imageHeight - static_cast<double>(source.y + source.height));
        const QRectF to = rectOf(
            destination, bottom + top - static_cast<double>(destination.y + destination.height));
        drawSlice(painter, _image, from, to, scale);
    }
    painter.restore();
    return true;
}
