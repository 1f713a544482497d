#pragma once

#include <KWBase/KWLayoutArithmetic.h>
#include <KWFoundation/KWExport.h>
#include <KWFoundation/KWObject.h>

#include <QImage>
#include <QRectF>
#include <array>
#include <cstdint>

class QPainter;

/// A small image that fills a rectangle of any size, as a stretchable frame. Two vertical and two
/// horizontal lines cut it into nine cells: the corners keep their size, the edges are stretched
/// along one axis, the centre along both.
///
/// The image's own size in points is its size in pixels divided by its device pixel ratio: an image
/// of twice the size with the ratio 2 has the same cuts, and is sharp on a screen of that ratio.
class KW_EXPORT KWImageBackground : public KWObject {
  public:
    /// The cuts, in points of the image: the left and the right line, from the left edge; the upper
    /// and the lower line, from the upper edge, each naming the last row above it. They are not
    /// checked: a column or row without a size is not drawn.
    KWImageBackground(QImage image, const std::array<std::int32_t, 4>& cuts,
                      bool drawsCenterRegion = true);

    const QImage& image() const { return _image; }
    /// The image's boundaries and the sizes of its columns and rows, y upwards.
    const KWSliceGrid& grid() const { return _grid; }
    bool drawsCenterRegion() const { return _drawsCenterRegion; }
    /// Who shows the background has to draw itself anew.
    void setDrawsCenterRegion(bool draws) { _drawsCenterRegion = draws; }

    /// The size of the smallest rectangle that anything is drawn in.
    std::int64_t smallestWidth() const;
    std::int64_t smallestHeight() const;

    /// Draws into a rectangle of the painter's own coordinates, whichever way its y grows; the
    /// image stands upright where y grows down the page and where it grows up. Fractions of the
    /// rectangle are dropped. False, and nothing drawn, when it is smaller than the corners and a
    /// point between them, or not finite. The painter's state stays as it is.
    bool drawInRect(QPainter& painter, const QRectF& rect) const;

  private:
    QImage _image;
    bool _drawsCenterRegion;
    KWSliceGrid _grid;
};
