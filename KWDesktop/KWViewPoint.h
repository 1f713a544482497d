#pragma once

#include <QPointF>
#include <QRectF>

// A view whose geometry is y-up counts its points from the lower left corner, Qt's positions count
// from the upper left one. Both are in logical pixels, `height` is the widget's. Each function is
// its own inverse, with one name for each way, since a reader wants to know which way it goes.

/// The y-up point at a Qt position.
inline QPointF KWViewPointFromPosition(QPointF position, qreal height) {
    return {position.x(), height - position.y()};
}

/// The Qt position of a y-up point.
inline QPointF KWPositionFromViewPoint(QPointF point, qreal height) {
    return {point.x(), height - point.y()};
}

/// The y-up rectangle, with its origin in the lower left corner, of a rectangle of Qt positions.
inline QRectF KWViewRectFromPositions(const QRectF& positions, qreal height) {
    return {positions.x(), height - positions.y() - positions.height(), positions.width(),
            positions.height()};
}

/// The rectangle of Qt positions of a y-up rectangle.
inline QRectF KWPositionsFromViewRect(const QRectF& rect, qreal height) {
    return KWViewRectFromPositions(rect, height);
}
