#include <KWBase/KWImageEditorViewGeometry.h>

#include <GL/glu.h>

#include <cmath>
#include <limits>

namespace {

using Project = GLint (*)(GLdouble, GLdouble, GLdouble, const GLdouble*, const GLdouble*,
                          const GLint*, GLdouble*, GLdouble*, GLdouble*);

QPointF converted(Project project, const KWImageMatrices& matrices, const QPointF& point) {
    constexpr double none = std::numeric_limits<double>::quiet_NaN();
    double x = none;
    double y = none;
    double depth = 0;
    if (project(point.x(), point.y(), 0, matrices.modelview.data(), matrices.projection.data(),
                matrices.viewport.data(), &x, &y, &depth) == GL_FALSE)
        return {none, none};
    return {x, y};
}

constexpr std::array<double, 16> identity{1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1};
constexpr double nearPlane = -2;
constexpr double farPlane = 1;

/// What glOrtho() multiplies an identity with; it refuses an empty volume.
std::array<double, 16> orthographic(double left, double right, double bottom, double top) {
    std::array<double, 16> matrix = identity;
    const double width = right - left;
    const double height = top - bottom;
    if (!(std::isfinite(width) && std::isfinite(height)) || width == 0 || height == 0)
        return matrix;
    matrix[0] = 2 / width;
    matrix[5] = 2 / height;
    matrix[10] = -2 / (farPlane - nearPlane);
    matrix[12] = -(right + left) / width;
    matrix[13] = -(top + bottom) / height;
    matrix[14] = -(farPlane + nearPlane) / (farPlane - nearPlane);
    return matrix;
}

} // namespace

QPointF KWImageMatrices::view2image(const QPointF& view) const {
    return converted(gluUnProject, *this, view);
}

QPointF KWImageMatrices::image2view(const QPointF& image) const {
    return converted(gluProject, *this, image);
}

double KWImageEditorViewGeometry::fitScale() const {
    const double viewAspect = viewSize.width() / viewSize.height();
    return contentSize.width() / contentSize.height() > viewAspect
               ? viewSize.width() / contentSize.width()
               : viewSize.height() / contentSize.height();
}

QPointF KWImageEditorViewGeometry::center() const {
    return {contentSize.width() * zoomOffset.x(), (1 - zoomOffset.y()) * contentSize.height()};
}

QRectF KWImageEditorViewGeometry::visibleRect() const {
    const double halfWidth = 0.5 * viewSize.width() / zoom / fitScale();
    const double halfHeight = 0.5 * viewSize.height() / zoom / fitScale();
    return {center().x() - halfWidth, center().y() - halfHeight, 2 * halfWidth, 2 * halfHeight};
}

QRectF KWImageEditorViewGeometry::contentRect() const {
    const QPointF origin = image2view({0, 0});
    return {origin.x(), origin.y(), contentSize.width() * scale(), contentSize.height() * scale()};
}

KWImageMatrices KWImageEditorViewGeometry::matrices() const {
    const double halfWidth = 0.5 * viewSize.width() / zoom / fitScale();
    const double halfHeight = 0.5 * viewSize.height() / zoom / fitScale();
    const QPointF middle = center();
    return {{0, 0, static_cast<int>(viewSize.width()), static_cast<int>(viewSize.height())},
            identity,
            orthographic(middle.x() - halfWidth, middle.x() + halfWidth, middle.y() - halfHeight,
                         middle.y() + halfHeight)};
}

QPointF KWImageEditorViewGeometry::view2image(const QPointF& view) const {
    return center() + (view - QPointF(viewSize.width() / 2, viewSize.height() / 2)) / scale();
}

QPointF KWImageEditorViewGeometry::image2view(const QPointF& image) const {
    return (image - center()) * scale() + QPointF(viewSize.width() / 2, viewSize.height() / 2);
}

namespace {

KWImageEditorViewGeometry centeredAt(KWImageEditorViewGeometry geometry, const QPointF& middle) {
    geometry.zoomOffset = {middle.x() / geometry.contentSize.width(),
                           1 - middle.y() / geometry.contentSize.height()};
    return geometry;
}

} // namespace

KWImageEditorViewGeometry KWImageEditorViewGeometry::zoomedAround(const QPointF& image,
                                                                  double newZoom) const {
    KWImageEditorViewGeometry zoomed = *this;
    zoomed.zoom = newZoom;
    return centeredAt(zoomed, image - (image - center()) * (zoom / newZoom));
}

KWImageEditorViewGeometry KWImageEditorViewGeometry::pannedBy(const QPointF& delta) const {
    return centeredAt(*this, center() - delta / scale());
}
