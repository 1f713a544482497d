#include <KWBase/KWImageEditorView.h>
#include <KWDesktop/KWViewPoint.h>

#include <QGestureEvent>
#include <QMouseEvent>
#include <QNativeGestureEvent>
#include <QPinchGesture>
#include <QPointer>
#include <QWheelEvent>
#include <algorithm>
#include <cmath>

namespace {

/// One notch of a wheel, in Qt's eighths of a degree, and what it multiplies the zoom with.
constexpr double notch = 120;
constexpr double notchFactor = 1.2;

// How far users get: the content never gets smaller than this part of the view, and they can always
// see single pixels.
constexpr double leastZoom = 0.05;
constexpr double mostZoom = 32;
constexpr double pointsForPixel = 64;

} // namespace

void KWImageEditorView::zoomAt(const QPointF& viewPoint, double factor) {
    const KWImageEditorViewGeometry layout = geometry();
    if (layout.contentSize.isEmpty() || layout.viewSize.isEmpty() || !(factor > 0))
        return;
    const double most = std::max(mostZoom, pointsForPixel / layout.fitScale());
    // Set by the host, it may be beyond already.
    const double zoomed =
        std::clamp(_zoom * factor, std::min(_zoom, leastZoom), std::max(_zoom, most));
    // In a letterbox, it is the content's edge that stays.
    QPointF anchor = layout.view2image(viewPoint);
    anchor.setX(std::clamp(anchor.x(), 0.0, layout.contentSize.width()));
    anchor.setY(std::clamp(anchor.y(), 0.0, layout.contentSize.height()));
    setLayout(zoomed, layout.zoomedAround(anchor, zoomed).zoomOffset);
}

void KWImageEditorView::panBy(const QPointF& delta) {
    const KWImageEditorViewGeometry layout = geometry();
    if (layout.contentSize.isEmpty())
        return;
    const QPointF before = _zoomOffset;
    QPointF offset = layout.pannedBy(delta).zoomOffset;
    // The content stays in sight.
    const auto held = [](double wanted, double was) {
        return std::clamp(wanted, std::min(0.0, was), std::max(1.0, was));
    };
    offset = {held(offset.x(), before.x()), held(offset.y(), before.y())};
    setZoomOffset(offset);
}

void KWImageEditorView::wheelEvent(QWheelEvent* event) {
    const double turned = event->angleDelta().y();
    if (turned == 0)
        return event->ignore();
    zoomAt(KWViewPointFromPosition(event->position(), height()),
           std::pow(notchFactor, turned / notch));
    event->accept();
}

void KWImageEditorView::mousePressEvent(QMouseEvent* event) {
    const bool pans = event->button() == Qt::LeftButton || event->button() == Qt::MiddleButton;
    if (!pans)
        return event->ignore();
    if (_panButton != Qt::NoButton)
        return;
    _panButton = event->button();
    _panPosition = event->position();
}

void KWImageEditorView::mouseMoveEvent(QMouseEvent* event) {
    if (_panButton == Qt::NoButton || !(event->buttons() & _panButton))
        return event->ignore();
    const QPointF moved = event->position() - _panPosition;
    _panPosition = event->position();
    panBy({moved.x(), -moved.y()});
}

void KWImageEditorView::mouseReleaseEvent(QMouseEvent* event) {
    if (event->button() == _panButton)
        _panButton = Qt::NoButton;
}

void KWImageEditorView::mouseDoubleClickEvent(QMouseEvent* event) {
    if (event->button() != Qt::LeftButton)
        return event->ignore();
    fit();
}

void KWImageEditorView::pinch(const QPinchGesture& gesture) {
    const QPointer<KWImageEditorView> self(this);
    const QPointF position = mapFromGlobal(gesture.centerPoint());
    if (gesture.changeFlags() & QPinchGesture::ScaleFactorChanged)
        zoomAt(KWViewPointFromPosition(position, height()), gesture.scaleFactor());
    if (self && (gesture.changeFlags() & QPinchGesture::CenterPointChanged)) {
        const QPointF moved = gesture.centerPoint() - gesture.lastCenterPoint();
        panBy({moved.x(), -moved.y()});
    }
}

bool KWImageEditorView::nativeGesture(const QNativeGestureEvent& event) {
    switch (event.gestureType()) {
    case Qt::ZoomNativeGesture:
        zoomAt(KWViewPointFromPosition(event.position(), height()), 1 + event.value());
        return true;
    case Qt::SmartZoomNativeGesture:
        fit();
        return true;
    case Qt::BeginNativeGesture:
    case Qt::EndNativeGesture:
        return true;
    default:
        return false;
    }
}

bool KWImageEditorView::event(QEvent* event) {
    if (event->type() == QEvent::NativeGesture) {
        if (nativeGesture(*static_cast<QNativeGestureEvent*>(event)))
            return true;
    } else if (event->type() == QEvent::Gesture) {
        auto* const gestures = static_cast<QGestureEvent*>(event);
        if (QGesture* const gesture = gestures->gesture(Qt::PinchGesture)) {
            pinch(*static_cast<QPinchGesture*>(gesture));
            gestures->accept(gesture);
            return true;
        }
    }
    return QWidget::event(event);
}
