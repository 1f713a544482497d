#pragma once

#include <QColor>
#include <QLineF>
#include <QRectF>
#include <QTransform>

class QPainter;

/// Has a painter draw in its device's own pixels, not antialiased, as long as this lives. That is
/// possible where pixels are what is drawn, upright and square; elsewhere nothing happens. The
/// shares that antialiasing would find are then worked out here, where what is drawn is so simple
/// that this takes a fraction of the time.
class KWDevicePixels {
  public:
    explicit KWDevicePixels(QPainter& painter);
    ~KWDevicePixels();
    KWDevicePixels(const KWDevicePixels&) = delete;
    KWDevicePixels& operator=(const KWDevicePixels&) = delete;

    /// Whether it is possible.
    explicit operator bool() const { return _isPossible; }

    /// From the painter's points to the device's pixels, and how many pixels a point is wide.
    const QTransform& transform() const { return _transform; }
    double scale() const { return _transform.m11(); }

    /// Fills a rectangle of pixels. Those it covers in part get as much of the colour.
    void fill(const QRectF& pixels, const QColor& color);

  private:
    QPainter& _painter;
    QTransform _transform;
    bool _isPossible;
};

/// Draws a horizontal or vertical line in the painter's pen, with square ends that do not reach
/// beyond its own.
void KWDrawStraightLine(QPainter& painter, const QLineF& line);
