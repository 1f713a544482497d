#include <apps/kwedit/window/KWEditStageSurface.h>
#include <apps/kwedit/window/KWEditStageView.h>

#include <QPaintEvent>
#include <QPainter>
#include <QPainterPath>
#include <algorithm>
#include <array>
#include <cmath>

namespace {

// Of the checkerboard that KWImageEditorView draws, in points from the upper left corner.
constexpr double checkerPoints = 30;
const QColor lightChecker(255, 255, 255);
const QColor darkChecker(200, 200, 200);

} // namespace

/// Neutral, so that it does not tint what is judged beside it, and darker than most frames.
QColor KWEditStageView::surround() const {
    const bool isDark = palette().color(QPalette::Window).lightness() < 128;
    return isDark ? QColor(0x1c, 0x1c, 0x1c) : QColor(0x3a, 0x3a, 0x3a);
}

void KWEditStageView::paintEvent(QPaintEvent*) {
    if (_surface)
        return;
    QPainter painter(this);
    ensureFrame();
    painter.save();
    painter.scale(1 / ratio(), 1 / ratio());
    drawFrame(painter);
    painter.restore();
    drawOver(painter);
}

/// The painter's points are pixels of the screen.
void KWEditStageView::drawFrame(QPainter& painter) const {
    const QRect view(0, 0, static_cast<int>(std::ceil(width() * ratio())),
                     static_cast<int>(std::ceil(height() * ratio())));
    for (const QRect& band : QRegion(view) - QRegion(_seen))
        painter.fillRect(band, surround());
    if (_image.isNull())
        return;
    const KWStage& stage = _scene->stage();
    const bool isOpaque = stage.backdrop != KWStage::Backdrop::none && stage.color.alpha() == 255 &&
                          (stage.backdrop == KWStage::Backdrop::plain ||
                           (stage.color2.alpha() == 255 && stage.floor.alpha() == 255));
    if (!isOpaque)
        drawCheckers(painter, _seen);
    painter.setCompositionMode(isOpaque ? QPainter::CompositionMode_Source
                                        : QPainter::CompositionMode_SourceOver);
    painter.drawImage(_seen.topLeft(), _image);
    painter.setCompositionMode(QPainter::CompositionMode_SourceOver);
}

void KWEditStageView::drawCheckers(QPainter& painter, const QRect& pixels) const {
    painter.fillRect(pixels, lightChecker);
    const double side = checkerPoints * ratio();
    const auto edge = [side](int k) { return static_cast<int>(std::lround(k * side)); };
    const auto cell = [side](int pixel) { return static_cast<int>(std::floor(pixel / side)); };
    for (int row = cell(pixels.top()); edge(row) <= pixels.bottom(); ++row)
        for (int column = cell(pixels.left()); edge(column) <= pixels.right(); ++column) {
            if ((row + column) % 2 == 0)
                continue;
            const QRect square(QPoint(edge(column), edge(row)),
                               QPoint(edge(column + 1) - 1, edge(row + 1) - 1));
            painter.fillRect(square & pixels, darkChecker);
        }
}

/// What lies over the frame: its border, the selection, and what a drag or the keyboard point at.
void KWEditStageView::drawOver(QPainter& painter) {
    ensureFrame();
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    if (!_frame.isEmpty()) {
        // One pixel of the screen, around the frame.
        const double pixel = 1 / ratio();
        const QRectF around =
            QRectF(QPointF(_frame.topLeft()) * pixel, QSizeF(_frame.size()) * pixel)
                .adjusted(-pixel / 2, -pixel / 2, pixel / 2, pixel / 2);
        painter.setPen(QPen(QColor(0, 0, 0, 150), pixel));
        painter.drawRect(around);
    }
    for (const std::shared_ptr<KWElement>& element : _selected)
        if (element)
            drawOutline(painter, *element);
    const QColor highlight = palette().color(QPalette::Highlight);
    if (_isDropTarget || _showsFocus) {
        painter.setBrush(Qt::NoBrush);
        const double width = _isDropTarget ? 3 : 1;
        QColor color = highlight;
        color.setAlpha(_isDropTarget ? 255 : 170);
        painter.setPen(QPen(color, width, Qt::SolidLine, Qt::SquareCap, Qt::MiterJoin));
        painter.drawRect(QRectF(rect()).adjusted(width / 2, width / 2, -width / 2, -width / 2));
    }
    painter.restore();
}

/// Light on dark, to be seen on anything; and the pivot.
void KWEditStageView::drawOutline(QPainter& painter, const KWElement& element) {
    const QPolygonF outline = outlineOf(element);
    if (outline.size() < 4)
        return;
    const QPointF share = KWSpriteContent::of(element).pivot;
    const QPointF pivot =
        outline[0] + (outline[1] - outline[0]) * share.x() + (outline[3] - outline[0]) * share.y();
    painter.setBrush(Qt::NoBrush);
    for (const QPen& pen : {QPen(QColor(0, 0, 0, 110), 3.5), QPen(QColor(0x4d, 0xa6, 0xff), 1.5)}) {
        QPen joined = pen;
        joined.setJoinStyle(Qt::MiterJoin);
        painter.setPen(joined);
        painter.drawPolygon(outline);
        painter.drawEllipse(pivot, 3.5, 3.5);
    }
}

void KWEditStageView::changeEvent(QEvent* event) {
    QWidget::changeEvent(event);
    if (event->type() == QEvent::PaletteChange)
        setNeedsFrame();
}

void KWEditStageView::showEvent(QShowEvent* event) {
    QWidget::showEvent(event);
    // It may be another screen than before.
    setNeedsFrame();
    tellMagnification();
}
