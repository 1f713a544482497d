#include <KWBase/KWChannelColorCell.h>
#include <KWBase/KWFrameRect.h>

#include <QPainter>

void KWChannelColorCell::drawWithFrameInView(const QRectF& frame, QPainter& view) const {
    if (_objectValue.typeId() != QMetaType::QColor)
        return;
    const QRectF swatch(frame.x() + frame.width() * 0.5 - 5, frame.y() + frame.height() * 0.5 - 5,
                        10, 10);
    view.fillRect(swatch, _objectValue.value<QColor>());
    KWFrameRectWithWidth(view, swatch, 1, Qt::black);
}
