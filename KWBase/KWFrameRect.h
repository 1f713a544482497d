#pragma once

#include <QColor>
#include <QPainter>
#include <QRectF>

/// Draws a frame of this width inside a rectangle; no point is covered twice.
inline void KWFrameRectWithWidth(QPainter& painter, const QRectF& rect, qreal width,
                                 const QColor& color) {
    const qreal inner = rect.height() - 2 * width;
    painter.fillRect(QRectF(rect.left(), rect.top(), rect.width(), width), color);
    painter.fillRect(QRectF(rect.left(), rect.bottom() - width, rect.width(), width), color);
    painter.fillRect(QRectF(rect.left(), rect.top() + width, width, inner), color);
    painter.fillRect(QRectF(rect.right() - width, rect.top() + width, width, inner), color);
}
