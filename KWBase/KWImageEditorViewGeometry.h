#pragma once

#include <KWFoundation/KWExport.h>

#include <QPointF>
#include <QRectF>
#include <QSizeF>
#include <array>

/// How a frame was drawn: the viewport in points, and the two matrices, column by column as OpenGL
/// has them. All zero before the first frame.
struct KWImageMatrices {
    std::array<int, 4> viewport{};
    std::array<double, 16> modelview{};
    std::array<double, 16> projection{};

    bool operator==(const KWImageMatrices&) const = default;

    // The depth is 0 on the way in and dropped on the way out. Not a number comes out where the
    // matrices give no point.

    /// The image point at a view point, by gluUnProject().
    KW_EXPORT QPointF view2image(const QPointF& view) const;
    /// The view point of an image point, by gluProject().
    KW_EXPORT QPointF image2view(const QPointF& image) const;
};

/// How an image view lays its content out. View points are in logical pixels from the lower left
/// corner, image points in the content's units from its own; y goes upwards in both.
struct KW_EXPORT KWImageEditorViewGeometry {
    QSizeF viewSize;
    /// Of the image or the movie; empty for none.
    QSizeF contentSize;
    /// 1 shows the whole content, as large as it fits.
    double zoom = 1;
    /// What is shown in the middle of the view: fractions of the content's width from its left and
    /// of its height from its top.
    QPointF zoomOffset{0.5, 0.5};

    /// View points for each unit of the content at zoom 1.
    double fitScale() const;
    /// View points for each unit of the content.
    double scale() const { return fitScale() * zoom; }
    /// The image point in the middle of the view.
    QPointF center() const;
    /// What part of the image plane the view shows, which reaches beyond the content where there is
    /// a letterbox; its origin is the lower left corner. Without a content it is empty.
    QRectF visibleRect() const;
    /// Where the content lies in the view.
    QRectF contentRect() const;

    /// An identity modelview, and a projection of the visible rectangle, from -2 to 1 in depth. The
    /// projection is an identity too where that is empty or not finite.
    KWImageMatrices matrices() const;

    QPointF view2image(const QPointF& view) const;
    QPointF image2view(const QPointF& image) const;

    /// With another zoom, and the zoom offset at which an image point stays where it is in the
    /// view.
    KWImageEditorViewGeometry zoomedAround(const QPointF& image, double newZoom) const;
    /// Moved along with the pointer by this many view points.
    KWImageEditorViewGeometry pannedBy(const QPointF& delta) const;
};
