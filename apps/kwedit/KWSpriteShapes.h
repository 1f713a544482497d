#pragma once

#include <QColor>
#include <QPainter>
#include <QString>

// The built-in shapes, drawn into the square from (0, 0) at the upper left to (1, 1), where the
// painter's transform puts it.

/// Whether a shape is one area in one colour, so that it can be drawn straight into a frame. The
/// others are drawn into a picture first: their parts overlap, and are slow to draw.
bool kwIsPlainShape(const QString& shape);

/// `second` invalid for a darker `color`.
void kwDrawShape(QPainter& painter, const QString& shape, const QColor& color,
                 const QColor& second);

/// What lies on a shape and does not turn with it: the light on a ball. False when there is none.
bool kwDrawShapeLight(QPainter& painter, const QString& shape);

/// What stands for content that is missing.
void kwDrawPlaceholder(QPainter& painter);
