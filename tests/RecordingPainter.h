#pragma once

#include <QColor>
#include <QImage>
#include <QPaintDevice>
#include <QPaintEngine>
#include <QPainter>
#include <QPainterPath>
#include <QPen>
#include <QPolygonF>
#include <QRectF>
#include <QString>
#include <string>
#include <vector>

/// Something that was drawn, in points from the lower left corner, y upwards.
struct Drawn {
    enum Kind { line, curve, fill, rectangle, text, other };

    Kind kind = other;
    QPolygonF points; ///< of a line or curve; the corners of a rectangle; the text's lower left
    QColor stroke;    ///< also a text's
    double width = 0;
    QColor brush;
    QString string;
    double fontSize = 0;

    QRectF bounds() const { return points.boundingRect(); }
};

/// A device that keeps what is drawn into it, and draws nothing.
class RecordingDevice : public QPaintDevice {
  public:
    RecordingDevice(int width, int height) : _width(width), _height(height), _engine(*this) {}

    QPaintEngine* paintEngine() const override { return &_engine; }
    std::vector<Drawn> drawn;

    std::vector<Drawn> ofKind(Drawn::Kind kind) const {
        std::vector<Drawn> found;
        for (const Drawn& one : drawn)
            if (one.kind == kind)
                found.push_back(one);
        return found;
    }

  protected:
    int metric(PaintDeviceMetric which) const override {
        switch (which) {
        case PdmWidth:
            return _width;
        case PdmHeight:
            return _height;
        case PdmDevicePixelRatio:
        case PdmNumColors:
            return 1;
        case PdmDevicePixelRatioScaled:
            return static_cast<int>(devicePixelRatioFScale());
        case PdmDepth:
            return 32;
        default:
            return 96;
        }
    }

  private:
    class Engine : public QPaintEngine {
      public:
        explicit Engine(RecordingDevice& device)
            : QPaintEngine(QPaintEngine::AllFeatures), _device(device) {}
        Type type() const override { return User; }
        bool begin(QPaintDevice*) override { return true; }
        bool end() override { return true; }
        void updateState(const QPaintEngineState&) override {}

        void drawLines(const QLineF* lines, int count) override {
            for (int i = 0; i < count; ++i)
                add(Drawn::line, QPolygonF({lines[i].p1(), lines[i].p2()}));
        }
        void drawPolygon(const QPointF* points, int count, PolygonDrawMode mode) override {
            add(mode == PolylineMode ? Drawn::curve : Drawn::other,
                QPolygonF(QList<QPointF>(points, points + count)));
        }
        void drawRects(const QRectF* rects, int count) override {
            for (int i = 0; i < count; ++i)
                add(painter()->pen().style() == Qt::NoPen ? Drawn::fill : Drawn::rectangle,
                    QPolygonF({rects[i].topLeft(), rects[i].topRight(), rects[i].bottomRight(),
                               rects[i].bottomLeft()}));
        }
        void drawTextItem(const QPointF& baseline, const QTextItem& item) override {
            Drawn& text = add(Drawn::text, QPolygonF({baseline + QPointF(0, item.descent())}));
            text.string = item.text();
            text.fontSize = item.font().pixelSize();
        }
        void drawPath(const QPainterPath& path) override {
            add(Drawn::other, path.toFillPolygon());
        }
        void drawPixmap(const QRectF& where, const QPixmap&, const QRectF&) override {
            add(Drawn::other, QPolygonF(where));
        }
        void drawImage(const QRectF& where, const QImage&, const QRectF&,
                       Qt::ImageConversionFlags) override {
            add(Drawn::other, QPolygonF(where));
        }

      private:
        Drawn& add(Drawn::Kind kind, const QPolygonF& points) {
            const QPainter& from = *painter();
            Drawn one;
            one.kind = kind;
            for (const QPointF& point : from.deviceTransform().map(points))
                one.points << QPointF(point.x(), _device._height - point.y());
            if (from.pen().style() != Qt::NoPen) {
                one.stroke = from.pen().color();
                one.width = from.pen().widthF();
            }
            if (from.brush().style() != Qt::NoBrush)
                one.brush = from.brush().color();
            _device.drawn.push_back(one);
            return _device.drawn.back();
        }

        RecordingDevice& _device;
    };

    int _width;
    int _height;
    mutable Engine _engine;
};

/// A colour by its shares, as the palette of a view is stated.
inline QColor rgb(double red, double green, double blue, double alpha = 1) {
    return QColor::fromRgbF(static_cast<float>(red), static_cast<float>(green),
                            static_cast<float>(blue), static_cast<float>(alpha));
}
