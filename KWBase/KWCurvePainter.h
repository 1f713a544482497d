#pragma once

#include <QPointF>
#include <span>

class QPainter;

/// How far above and below what is seen lines are followed, in points. Wider than any curve's line,
/// so that where one is cut off cannot be seen.
inline constexpr double KWCurveMargin = 16;

/// Draws a line through points, their x never falling, in the painter's pen, whose colour and width
/// alone are used. A point that is not finite makes a gap. What lies further than a margin above
/// `top` or below `bottom` is left out, so that points may be as far away as they like. A line of
/// one point is none.
void KWDrawCurve(QPainter& painter, std::span<const QPointF> points, double bottom, double top);
