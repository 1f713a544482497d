#include <apps/kwedit/KWSpriteShapes.h>

#include <QPainterPath>
#include <QRadialGradient>
#include <algorithm>
#include <cmath>
#include <numbers>

namespace {

QPainterPath polygon(std::initializer_list<QPointF> points) {
    QPainterPath path;
    path.addPolygon(QPolygonF(QList<QPointF>(points)));
    path.closeSubpath();
    return path;
}

QPolygonF star() {
    constexpr int points = 5;
    constexpr double inner = 0.19098300562505255; // where the lines between far points cross
    QPolygonF corners;
    for (int k = 0; k < 2 * points; ++k) {
        const double angle = std::numbers::pi * (k / static_cast<double>(points) - 0.5);
        const double radius = k % 2 == 0 ? 0.5 : inner;
        corners << QPointF(0.5 + radius * std::cos(angle), 0.5 + radius * std::sin(angle));
    }
    return corners;
}

/// A path of its own each time: one keeps what it was painted as, and several threads paint.
void fillPolygon(QPainter& painter, const QPolygonF& corners, const QColor& color) {
    QPainterPath path;
    path.addPolygon(corners);
    path.closeSubpath();
    painter.fillPath(path, color);
}

QPainterPath disc(const QPointF& centre, double radius) {
    QPainterPath path;
    path.addEllipse(centre, radius, radius);
    return path;
}

/// Six gores in turn, white ones between coloured ones, seen a little from the side.
void drawBall(QPainter& painter, const QColor& color, const QColor& second) {
    const QPointF pole(0.42, 0.40);
    const QPainterPath whole = disc({0.5, 0.5}, 0.5);
    painter.fillPath(whole, QColor(0xfb, 0xf8, 0xf2));
    for (int gore = 0; gore < 3; ++gore) {
        // Far beyond the disc, which cuts it.
        const double from = 2 * std::numbers::pi * (gore / 3.0);
        const double to = from + std::numbers::pi / 3;
        const auto outside = [&](double angle) {
            return pole + 2 * QPointF(std::cos(angle), std::sin(angle));
        };
        QPainterPath wedge(pole);
        wedge.lineTo(outside(from));
        wedge.lineTo(outside((from + to) / 2));
        wedge.lineTo(outside(to));
        wedge.closeSubpath();
        painter.fillPath(wedge.intersected(whole), gore == 1 ? second : color);
    }
    painter.fillPath(disc(pole, 0.065), QColor(0xfb, 0xf8, 0xf2));
}

void drawLight(QPainter& painter) {
    QRadialGradient shade(QPointF(0.38, 0.30), 0.78, QPointF(0.36, 0.26));
    shade.setColorAt(0, QColor(255, 255, 255, 120));
    shade.setColorAt(0.25, QColor(255, 255, 255, 20));
    shade.setColorAt(0.45, QColor(20, 10, 40, 0));
    shade.setColorAt(0.8, QColor(20, 10, 40, 90));
    shade.setColorAt(1, QColor(20, 10, 40, 150));
    painter.fillPath(disc({0.5, 0.5}, 0.5), shade);
    QRadialGradient spot(QPointF(0.34, 0.24), 0.13);
    spot.setColorAt(0, QColor(255, 255, 255, 215));
    spot.setColorAt(0.5, QColor(255, 255, 255, 90));
    spot.setColorAt(1, QColor(255, 255, 255, 0));
    painter.fillPath(disc({0.34, 0.24}, 0.13), spot);
}

void drawGlow(QPainter& painter, const QColor& color) {
    QRadialGradient glow(QPointF(0.5, 0.5), 0.5);
    constexpr int steps = 16; // of a bell, which has no edge to see
    for (int k = 0; k <= steps; ++k) {
        const double distance = k / static_cast<double>(steps);
        const double bell = 0.5 + 0.5 * std::cos(std::numbers::pi * distance);
        QColor step = color;
        step.setAlphaF(static_cast<float>(color.alphaF() * bell * std::sqrt(bell)));
        glow.setColorAt(distance, step);
    }
    painter.fillRect(QRectF(0, 0, 1, 1), glow);
}

/// How many lines a quarter of a circle is drawn with, so that they are nowhere farther from it
/// than a pixel that eyes can tell. Curves are slow: a painter splits them anew for each band.
int linesOfQuarter(double pixels) {
    constexpr double farthest = 0.004;
    const double lines = std::numbers::pi / 4 / std::sqrt(2 * farthest / std::max(pixels, 1.0));
    return std::clamp(static_cast<int>(std::ceil(lines)), 2, 256);
}

/// The larger half of what the unit square is wide and high in pixels.
double radiusInPixels(const QPainter& painter) {
    const QTransform transform = painter.deviceTransform();
    return 0.5 * std::max(std::hypot(transform.m11(), transform.m12()),
                          std::hypot(transform.m21(), transform.m22()));
}

/// The unit square with round corners; with the largest ones it is a disc.
QPolygonF roundedSquare(double radius, int lines) {
    QPolygonF corners;
    const QPointF centres[] = {
        {1 - radius, 1 - radius}, {radius, 1 - radius}, {radius, radius}, {1 - radius, radius}};
    for (int quarter = 0; quarter < 4; ++quarter)
        for (int k = 0; k <= lines; ++k) {
            const double angle = std::numbers::pi / 2 * (quarter + k / static_cast<double>(lines));
            corners << centres[quarter] + radius * QPointF(std::cos(angle), std::sin(angle));
        }
    return corners;
}

QPolygonF cornersOf(const QString& shape, double pixels) {
    if (shape == QLatin1String("rounded"))
        return roundedSquare(0.2, linesOfQuarter(0.4 * pixels));
    if (shape == QLatin1String("ellipse"))
        return roundedSquare(0.5, linesOfQuarter(pixels));
    if (shape == QLatin1String("triangle"))
        return QPolygonF({{0.5, 0}, {1, 1}, {0, 1}});
    if (shape == QLatin1String("diamond"))
        return QPolygonF({{0.5, 0}, {1, 0.5}, {0.5, 1}, {0, 0.5}});
    static const QPolygonF pointed = star();
    return shape == QLatin1String("star") ? pointed : QPolygonF({{0, 0}, {1, 0}, {1, 1}, {0, 1}});
}

} // namespace

bool kwIsPlainShape(const QString& shape) {
    return shape != QLatin1String("glow") && shape != QLatin1String("ball");
}

void kwDrawShape(QPainter& painter, const QString& shape, const QColor& color,
                 const QColor& second) {
    if (shape == QLatin1String("ball"))
        drawBall(painter, color, second.isValid() ? second : color.darker(135));
    else if (shape == QLatin1String("glow"))
        drawGlow(painter, color);
    else
        fillPolygon(painter, cornersOf(shape, radiusInPixels(painter)), color);
}

bool kwDrawShapeLight(QPainter& painter, const QString& shape) {
    if (shape != QLatin1String("ball"))
        return false;
    drawLight(painter);
    return true;
}

void kwDrawPlaceholder(QPainter& painter) {
    constexpr double line = 0.03;
    painter.fillRect(QRectF(0, 0, 1, 1), QColor(60, 60, 66, 200));
    const QColor magenta(255, 64, 160);
    QPainterPath frame;
    frame.addRect(QRectF(0, 0, 1, 1));
    frame.addRect(QRectF(line, line, 1 - 2 * line, 1 - 2 * line));
    painter.fillPath(frame, magenta);
    painter.fillPath(polygon({{0, 0}, {line, 0}, {1, 1 - line}, {1, 1}, {1 - line, 1}, {0, line}}),
                     magenta);
    painter.fillPath(polygon({{1, 0}, {1, line}, {line, 1}, {0, 1}, {0, 1 - line}, {1 - line, 0}}),
                     magenta);
}
