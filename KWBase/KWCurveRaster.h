#pragma once

#include <QColor>
#include <QPointF>
#include <QtGlobal>
#include <span>
#include <vector>

class QPainter;

/// Strokes lines that run from left to right into a painter that draws device pixels. Each pixel
/// gets the share of it that the line covers, at most once, so that translucent lines have no knots
/// where their parts meet. That is what the raster painter does with wide lines too, at ten to a
/// hundred times the cost.
///
/// The line is laid down strip by strip. In a strip each side of it adds what it covers to the row
/// where it lies; the sums down a column are then the covered shares of its pixels.
class KWCurveRaster {
  public:
    /// The width is in device pixels.
    KWCurveRaster(const QColor& color, double width);

    /// `line` is in device pixels, its x never falling; all of it finite and not far from what is
    /// seen. The painter's transformation is the device's own.
    void draw(QPainter& painter, std::span<const QPointF> line);

  private:
    struct Point {
        float x;
        float y;
    };
    /// Where two parts of the line meet. At a gentle bend they share a mitred edge, which needs no
    /// drawing; at a sharp one each ends squarely and a wedge fills the outer side.
    struct Joint {
        Point miter;
        bool isGentle;
    };

    /// Wide where the line is flat, narrow where it is steep, so that little is empty.
    static constexpr int widestStrip = 64;
    static constexpr int narrowestStrip = 8;

    void takeLine(std::span<const QPointF> line);
    void findJoints();
    void beginStrip(int left, std::size_t first);
    void findRows(std::size_t first, float right);
    void addSegment(std::size_t segment);
    void addWedge(std::size_t joint);
    void addEdge(Point from, Point to);
    void addEdgeInColumn(int column, float share, float low, float high);
    void finishStrip(QPainter& painter);

    quint32 _pixels[256]; ///< the colour, premultiplied, at each share
    float _half;          ///< of the width

    std::vector<Point> _points;
    std::vector<Point> _normals; ///< of each segment, half the width long
    std::vector<float> _lengths;
    std::vector<Joint> _joints; ///< at each point; the ends' are not gentle

    // The strip.
    float _reach; ///< how far from a point what it draws may lie
    float _left = 0;
    int _width = 0;
    int _top = 0;
    int _rows = 0;
    std::vector<float> _shares; ///< zero between strips
    std::vector<quint32> _image;
};
