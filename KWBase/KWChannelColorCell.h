#pragma once

#include <KWFoundation/KWExport.h>

#include <QColor>
#include <QImage>
#include <QVariant>

class QPainter;
class QRectF;

/// A swatch of a channel's colour, for tables and outlines that list channels.
class KW_EXPORT KWChannelColorCell {
  public:
    KWChannelColorCell() = default;
    /// The image is not used.
    explicit KWChannelColorCell(const QImage&) {}
    /// The colour is not used: what is drawn is always the object value.
    explicit KWChannelColorCell(const QColor&) {}

    /// The colour to draw, a QColor; set by the table before it draws a row. Nothing at first.
    const QVariant& objectValue() const { return _objectValue; }
    void setObjectValue(const QVariant& value) { _objectValue = value; }

    /// Draws a square of 10 by 10 points in the middle of the frame, reaching beyond a smaller
    /// frame, with a black border one point wide inside it. Nothing at all when the object value is
    /// not a QColor: the name of a colour is none. `view` is the painter of the view to draw in.
    void drawWithFrameInView(const QRectF& frame, QPainter& view) const;

  private:
    QVariant _objectValue;
};
