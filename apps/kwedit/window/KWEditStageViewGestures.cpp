#include <apps/kwedit/window/KWEditSpriteMove.h>
#include <apps/kwedit/window/KWEditStageSurface.h>
#include <apps/kwedit/window/KWEditStageView.h>

#include <QApplication>
#include <QDragEnterEvent>
#include <QGestureEvent>
#include <QMimeData>
#include <QMouseEvent>
#include <QNativeGestureEvent>
#include <QPinchGesture>
#include <QUrl>
#include <QWheelEvent>
#include <algorithm>
#include <cmath>

namespace {

/// One notch of a wheel, in Qt's eighths of a degree, and what it multiplies the zoom with.
constexpr double notch = 120;
constexpr double notchFactor = 1.2;
/// Points that an arrow key pans by.
constexpr double panStep = 40;

bool isTrackpad(const QWheelEvent& event) {
    const bool isTouch = event.pointingDevice() &&
                         event.pointingDevice()->type() == QInputDevice::DeviceType::TouchPad;
    return isTouch || event.phase() != Qt::NoScrollPhase;
}

/// The largest power of ten that is no larger than a pixel.
double roundStep(double metresOfPixel) {
    if (!(metresOfPixel > 0) || !std::isfinite(metresOfPixel))
        return 1e-4;
    return std::pow(10, std::floor(std::log10(metresOfPixel) + 1e-9));
}

QStringList localFiles(const QMimeData* data) {
    QStringList files;
    if (data)
        for (const QUrl& url : data->urls())
            if (url.isLocalFile())
                files << url.toLocalFile();
    return files;
}

} // namespace

// --- The wheel and gestures.

void KWEditStageView::wheelEvent(QWheelEvent* event) {
    const bool zooms = event->modifiers() & (Qt::ControlModifier | Qt::MetaModifier);
    if (isTrackpad(*event) && !zooms) {
        const QPoint pixels = event->pixelDelta();
        panBy(pixels.isNull() ? QPointF(event->angleDelta()) / 4 : QPointF(pixels));
        return event->accept();
    }
    const QPoint turned = event->angleDelta();
    if ((event->modifiers() & Qt::ShiftModifier) || turned.y() == 0) {
        const double along = turned.y() != 0 ? turned.y() : turned.x();
        if (along == 0)
            return event->ignore();
        panBy({along / notch * panStep, 0});
        return event->accept();
    }
    zoomAt(event->position(), std::pow(notchFactor, turned.y() / notch));
    event->accept();
}

void KWEditStageView::pinch(const QPinchGesture& gesture) {
    const QPointF position = mapFromGlobal(gesture.centerPoint());
    if (gesture.changeFlags() & QPinchGesture::ScaleFactorChanged)
        zoomAt(position, gesture.scaleFactor());
    if (gesture.changeFlags() & QPinchGesture::CenterPointChanged)
        panBy(gesture.centerPoint() - gesture.lastCenterPoint());
}

bool KWEditStageView::nativeGesture(const QNativeGestureEvent& event) {
    switch (event.gestureType()) {
    case Qt::ZoomNativeGesture:
        zoomAt(event.position(), 1 + event.value());
        return true;
    case Qt::SmartZoomNativeGesture:
        zoomToFit();
        return true;
    case Qt::BeginNativeGesture:
    case Qt::EndNativeGesture:
        return true;
    default:
        return false;
    }
}

bool KWEditStageView::event(QEvent* event) {
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
    } else if (event->type() == QEvent::ShortcutOverride) {
        // The space bar pans with the mouse, and plays on its own; Escape lets go of a drag. The
        // window may have both as shortcuts.
        const int key = static_cast<QKeyEvent*>(event)->key();
        if (key == Qt::Key_Space || (key == Qt::Key_Escape && _move)) {
            event->accept();
            return true;
        }
    }
    return QWidget::event(event);
}

// --- The mouse.

void KWEditStageView::updateCursor() {
    if (_press == Press::pan)
        return setCursor(Qt::ClosedHandCursor);
    if (_isSpaceDown)
        return setCursor(Qt::OpenHandCursor);
    if (_move)
        return setCursor(Qt::SizeAllCursor);
    unsetCursor();
}

void KWEditStageView::mousePressEvent(QMouseEvent* event) {
    if (_press != Press::none)
        return;
    const bool isLeft = event->button() == Qt::LeftButton;
    const bool pans = event->button() == Qt::MiddleButton || (isLeft && _isSpaceDown);
    if (!pans && !isLeft)
        return event->ignore();
    _pressButton = event->button();
    _pressPosition = _lastPosition = event->position();
    if (pans) {
        _press = Press::pan;
        _hasSpacePanned = _isSpaceDown;
        return updateCursor();
    }
    const std::shared_ptr<KWElement> element = elementAt(event->position());
    const QPointer<KWEditStageView> self(this);
    _press = Press::click;
    _picksOnRelease = element && isSelected(*element);
    if (_picksOnRelease) {
        _press = Press::armed;
        return;
    }
    Q_EMIT elementPicked(element);
    // Picked and dragged at once.
    if (self && _press == Press::click && element && isSelected(*element))
        _press = Press::armed;
}

void KWEditStageView::mouseMoveEvent(QMouseEvent* event) {
    if (_press == Press::none)
        return event->ignore();
    if (!(event->buttons() & _pressButton)) {
        // The release went elsewhere.
        if (_press == Press::move)
            endMove();
        _press = Press::none;
        return updateCursor();
    }
    const QPointF moved = event->position() - _lastPosition;
    _lastPosition = event->position();
    if (_press == Press::pan)
        return panBy(moved);
    const bool isFar =
        (event->position() - _pressPosition).manhattanLength() >= QApplication::startDragDistance();
    if (_press == Press::armed && isFar)
        _press = beginMove() ? Press::move : Press::click;
    if (_press == Press::move)
        continueMove(event->position(), event->modifiers());
}

void KWEditStageView::mouseReleaseEvent(QMouseEvent* event) {
    if (event->button() != _pressButton || _press == Press::none)
        return;
    const Press press = std::exchange(_press, Press::none);
    _pressButton = Qt::NoButton;
    if (press == Press::move)
        endMove();
    updateCursor();
    // Of several that are selected, the one that was clicked stays.
    if (press == Press::armed && _picksOnRelease)
        Q_EMIT elementPicked(elementAt(event->position()));
}

void KWEditStageView::mouseDoubleClickEvent(QMouseEvent* event) {
    if (event->button() == Qt::LeftButton && !elementAt(event->position()))
        return zoomToFit();
    mousePressEvent(event);
}

// --- Moving.

void KWEditStageView::tellRefusals(const KWEditSpriteMove& move) {
    if (!move.refusals().isEmpty())
        Q_EMIT statusMessage(move.refusals().join(QLatin1Char(' ')));
}

bool KWEditStageView::beginMove() {
    _transport->pause();
    ensureFrame();
    auto move = std::make_unique<KWEditSpriteMove>(*_document, _selected, _transport->time());
    const QPointer<KWEditStageView> self(this);
    tellRefusals(*move);
    if (!self || !move->canMove())
        return false;
    _move = std::move(move);
    updateCursor();
    Q_EMIT gestureActiveChanged(true);
    return _move != nullptr;
}

/// Shift keeps to one axis of the stage.
void KWEditStageView::continueMove(const QPointF& position, Qt::KeyboardModifiers modifiers) {
    const QTransform toStage = scene().stageTransform().inverted();
    QPointF metres = toStage.map(position * ratio()) - toStage.map(_pressPosition * ratio());
    // A pixel is nothing to tell whether the hand has moved along an axis.
    const double pixel = std::hypot(toStage.m11(), toStage.m12());
    const auto isStill = [pixel](double along) { return std::abs(along) < pixel * 0.5; };
    if (modifiers & Qt::ShiftModifier)
        (std::abs(metres.x()) < std::abs(metres.y()) ? metres.rx() : metres.ry()) = 0;
    if (isStill(metres.x()))
        metres.setX(0);
    if (isStill(metres.y()))
        metres.setY(0);
    _move->moveBy(metres, roundStep(pixel));
    setNeedsFrame();
}

void KWEditStageView::endMove() {
    if (!_move)
        return;
    const std::unique_ptr<KWEditSpriteMove> move = std::move(_move);
    if (_press == Press::move)
        _press = Press::click; // the button may still be down
    move->commit();
    updateCursor();
    setNeedsFrame();
    Q_EMIT gestureActiveChanged(false);
}

void KWEditStageView::cancelGesture() {
    if (_press != Press::none)
        _press = Press::click;
    if (!_move)
        return;
    _move.reset();
    updateCursor();
    setNeedsFrame();
    Q_EMIT gestureActiveChanged(false);
}

/// By pixels of the stage, to the right and upwards.
void KWEditStageView::nudge(const QPointF& pixels) {
    _transport->pause();
    KWEditSpriteMove move(*_document, _selected, _transport->time());
    const QPointer<KWEditStageView> self(this);
    tellRefusals(move);
    if (!self || !move.canMove())
        return;
    const double pixel = 1 / scene().stage().scale;
    move.moveBy(pixels * pixel, roundStep(pixel) / 100);
    move.commit();
    setNeedsFrame();
}

void KWEditStageView::hideEvent(QHideEvent* event) {
    cancelGesture();
    _press = Press::none;
    _isSpaceDown = false;
    updateCursor();
    QWidget::hideEvent(event);
}

// --- The keyboard.

/// Round through the sprites: 1 to the front, -1 to the back.
void KWEditStageView::pickNext(int step) {
    ensureFrame();
    const auto count = static_cast<int>(scene().spriteCount());
    if (count == 0)
        return;
    int now = step > 0 ? -1 : count;
    for (int k = 0; k < count; ++k)
        if (isSelected(*scene().element(static_cast<std::size_t>(k))))
            now = k;
    const int next = ((now + step) % count + count) % count;
    Q_EMIT elementPicked(scene().element(static_cast<std::size_t>(next)));
}

void KWEditStageView::keyPressEvent(QKeyEvent* event) {
    const bool isPlain = !(event->modifiers() & ~(Qt::ShiftModifier | Qt::KeypadModifier));
    const double far = event->modifiers() & Qt::ShiftModifier ? 10 : 1;
    const auto move = [&](const QPointF& direction) {
        if (_selected.empty())
            panBy({-direction.x() * panStep, direction.y() * panStep});
        else if (_press == Press::none)
            nudge(direction * far);
    };
    if (!isPlain)
        return QWidget::keyPressEvent(event);
    switch (event->key()) {
    case Qt::Key_Space:
        if (event->isAutoRepeat())
            return;
        _isSpaceDown = true;
        _hasSpacePanned = false;
        return updateCursor();
    case Qt::Key_Escape:
        if (_move)
            return cancelGesture();
        if (_selected.empty())
            break;
        Q_EMIT elementPicked(nullptr);
        return;
    case Qt::Key_Plus:
    case Qt::Key_Equal:
        return zoomIn();
    case Qt::Key_Minus:
        return zoomOut();
    case Qt::Key_0:
        return zoomToFit();
    case Qt::Key_1:
        return actualSize();
    case Qt::Key_Left:
        return move({-1, 0});
    case Qt::Key_Right:
        return move({1, 0});
    case Qt::Key_Up:
        return move({0, 1});
    case Qt::Key_Down:
        return move({0, -1});
    case Qt::Key_PageUp:
        return pickNext(1);
    case Qt::Key_PageDown:
        return pickNext(-1);
    default:
        break;
    }
    QWidget::keyPressEvent(event);
}

void KWEditStageView::keyReleaseEvent(QKeyEvent* event) {
    if (event->key() != Qt::Key_Space || event->isAutoRepeat() || !_isSpaceDown)
        return QWidget::keyReleaseEvent(event);
    _isSpaceDown = false;
    updateCursor();
    if (!_hasSpacePanned && _press == Press::none)
        _transport->togglePlaying();
}

void KWEditStageView::focusInEvent(QFocusEvent* event) {
    QWidget::focusInEvent(event);
    _showsFocus = event->reason() == Qt::TabFocusReason ||
                  event->reason() == Qt::BacktabFocusReason ||
                  event->reason() == Qt::ShortcutFocusReason;
    showOver();
}

void KWEditStageView::focusOutEvent(QFocusEvent* event) {
    QWidget::focusOutEvent(event);
    _isSpaceDown = false;
    _showsFocus = false;
    updateCursor();
    showOver();
}

// --- Files.

void KWEditStageView::dragEnterEvent(QDragEnterEvent* event) {
    if (localFiles(event->mimeData()).isEmpty())
        return event->ignore();
    _isDropTarget = true;
    showOver();
    event->setDropAction(Qt::CopyAction);
    event->accept();
}

void KWEditStageView::dragLeaveEvent(QDragLeaveEvent* event) {
    QWidget::dragLeaveEvent(event);
    _isDropTarget = false;
    showOver();
}

void KWEditStageView::dropEvent(QDropEvent* event) {
    _isDropTarget = false;
    showOver();
    const QStringList files = localFiles(event->mimeData());
    if (files.isEmpty())
        return event->ignore();
    event->setDropAction(Qt::CopyAction);
    event->accept();
    Q_EMIT filesDropped(files, stagePoint(event->position()));
}
