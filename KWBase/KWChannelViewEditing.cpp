#include <KWBase/KWChannelView.h>
#include <KWBase/KWChannelViewGesture.h>
#include <KWBase/KWCursorImage.h>
#include <KWDesktop/KWViewPoint.h>
#include <KWFoundation/KWFirstException.h>
#include <KWFoundation/KWLog.h>

#include <QEvent>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPointer>
#include <string>
#include <utility>

// The events of the mouse and the keyboard, and the life of a gesture: how it begins, who ends it,
// how it is undone. What gestures do is in KWChannelViewGestures.cpp.

namespace {

using Gesture = KWChannelViewGesture;

/// The Delete key sends 127; the key of that name on the platform where the view comes from stands
/// where others have Backspace.
bool isDeleteKey(const QKeyEvent& event) {
    const QString text = event.text();
    if (text.isEmpty())
        return event.key() == Qt::Key_Delete || event.key() == Qt::Key_Backspace;
    return text.front() == QChar(127) || text.front() == QChar(8);
}

} // namespace

void KWRunGesture(const std::function<void()>& work) noexcept {
    std::string what = "no standard exception";
    try {
        return work();
    } catch (const std::exception& exception) {
        what = exception.what();
    } catch (...) {
    }
    KWLog("An observer of an edit in a curve view has thrown: " + what);
}

// --- The life of a gesture.

bool KWChannelView::isGestureActive() const {
    return _gesture && !_gesture->isOver;
}

/// Null when the signal has ended it.
std::shared_ptr<Gesture> KWChannelView::beginGesture(const QPointF& point) {
    const QPointer<KWChannelView> self(this);
    announceGestureEnd();
    if (!self || _gesture)
        return nullptr;
    const auto gesture = std::make_shared<Gesture>();
    gesture->from = {static_cast<float>(point.x()), static_cast<float>(point.y())};
    gesture->to = gesture->from;
    gesture->range = _range;
    gesture->selection = _selectedKeys;
    _gesture = gesture;
    KWRunGesture([this] { Q_EMIT gestureWillBegin(); });
    return gesture->isOver ? nullptr : gesture;
}

/// The press that is being looked into, or a new gesture; null when that is not to be.
std::shared_ptr<Gesture> KWChannelView::gestureForStart(const QMouseEvent& event) {
    if (!isGestureActive())
        return beginGesture(viewPoint(event));
    return _gesture->kind == Gesture::Kind::pressed ? _gesture : nullptr;
}

/// From here on the gesture ends when somebody else edits keys of the primary channel.
void KWChannelView::watchKeys(const std::shared_ptr<Gesture>& gesture) {
    const auto channel = keyFramedChannel();
    if (!channel || gesture->move)
        return;
    gesture->move = std::make_unique<KWKeyMove>(channel);
    if (channel->weak_from_this().expired())
        return;
    // Removals are heard of by the invalidation that follows them. Of what is set there is a notice
    // before it is done, and so its author's edit comes after the end of this gesture.
    gesture->notices = KWNotificationCenter::defaultCenter().addObserver(
        KWChannelChangedNotification, channel.get(), [this](const KWNotification&) {
            if (isGestureActive() && _gesture->move && !_gesture->move->isWriting())
                endGesture();
        });
}

void KWChannelView::endGestureIfDisturbed() {
    if (isGestureActive() && _gesture->move && !_gesture->move->isWriting() &&
        _gesture->move->isDisturbed())
        endGesture();
}

void KWChannelView::endGesture(bool tellsDelegate) {
    const QPointer<KWChannelView> self(this);
    if (isGestureActive()) {
        const std::shared_ptr<Gesture> gesture = _gesture;
        gesture->isOver = true;
        gesture->notices.disconnect();
        if (gesture->kind == Gesture::Kind::moving) {
            KWRunGesture([this] { setShowsPointCoordinates(false); });
            if (self)
                setNeedsDisplay(true);
        } else if (gesture->kind == Gesture::Kind::selecting) {
            _selecting = false;
            setNeedsDisplay(true);
            if (tellsDelegate)
                KWRunGesture([this] { notifyDelegateOfSelection(); });
        }
    }
    if (self)
        announceGestureEnd();
}

void KWChannelView::cutGestureShort() {
    endGesture(false);
}

/// Of a gesture that is over.
void KWChannelView::announceGestureEnd() {
    if (!_gesture || !_gesture->isOver)
        return;
    _gesture = nullptr;
    KWRunGesture([this] { Q_EMIT gestureDidEnd(); });
}

void KWChannelView::cancelGesture() {
    if (!isGestureActive())
        return;
    const std::shared_ptr<Gesture> gesture = _gesture;
    gesture->isCancelled = true;
    if (gesture->move && gesture->move->isWriting())
        return;
    KWFirstException raised;
    putBack(*gesture, raised);
    KWRunGesture([&raised] { raised.rethrow(); });
    if (!gesture->isOver)
        cutGestureShort();
}

void KWChannelView::putBack(const Gesture& gesture, KWFirstException& raised) {
    if (gesture.move)
        gesture.move->putBack(raised);
    if (!gesture.isOver)
        raised.during([&] { setDisplayedRange(gesture.range); });
    if (!gesture.isOver)
        raised.during([&] { replaceSelectedKeys(gesture.selection); });
}

// --- The mouse.

QPointF KWChannelView::viewPoint(const QMouseEvent& event) const {
    return KWViewPointFromPosition(event.position(), height());
}

void KWChannelView::mousePressEvent(QMouseEvent* event) {
    const bool isLeft = event->button() == Qt::LeftButton;
    if (!isLeft && isGestureActive())
        return event->accept();
    const QPointer<KWChannelView> self(this);
    // One that is still there has not seen its button go up.
    endGesture();
    if (!self)
        return event->accept();
    QWidget::mousePressEvent(event);
    if (!isLeft)
        return;
    event->setAccepted(_channelViewMode >= KWChannelViewModeSelect &&
                       _channelViewMode <= KWChannelViewModePan);
    KWRunGesture([&] { press(*event); });
    if (!self)
        return event->accept();
    if (isGestureActive() && _gesture->kind == Gesture::Kind::pressed)
        endGesture();
}

void KWChannelView::mouseDoubleClickEvent(QMouseEvent* event) {
    mousePressEvent(event);
}

void KWChannelView::mouseMoveEvent(QMouseEvent* event) {
    const QPointer<KWChannelView> self(this);
    if (!isGestureActive()) {
        QWidget::mouseMoveEvent(event);
    } else if (!(event->buttons() & Qt::LeftButton)) {
        endGesture();
    } else {
        event->accept();
        const std::shared_ptr<Gesture> gesture = _gesture;
        KWRunGesture([&] { drag(*gesture, viewPoint(*event)); });
    }
    if (self)
        KWRunGesture([&] {
            Q_EMIT pointerMoved(timeAtPosition(event->position()),
                                valueAtPosition(event->position()));
        });
    // Qt offers what nobody has accepted to the parent of a view that must not be gone then.
    if (!self)
        event->accept();
}

void KWChannelView::mouseReleaseEvent(QMouseEvent* event) {
    if (!isGestureActive())
        return QWidget::mouseReleaseEvent(event);
    event->accept();
    if (event->button() == Qt::LeftButton)
        endGesture();
}

void KWChannelView::leaveEvent(QEvent* event) {
    const QPointer<KWChannelView> self(this);
    KWRunGesture([this] { Q_EMIT pointerLeft(); });
    if (self)
        QWidget::leaveEvent(event);
}

// --- The keyboard.

void KWChannelView::keyPressEvent(QKeyEvent* event) {
    event->accept();
    if (isGestureActive()) {
        if (event->key() == Qt::Key_Escape)
            cancelGesture();
    } else if (isDeleteKey(*event)) {
        KWRunGesture([this] { deleteSelectedKeys(); });
    }
}

void KWChannelView::deleteSelectedKeys() {
    if (!keyFramedChannel() || _selectedKeys.empty())
        return;
    const std::shared_ptr<Gesture> gesture = beginGesture({});
    const auto channel = keyFramedChannel();
    if (!gesture || !channel)
        return;
    KWFirstException raised;
    raised.during([&] { channel->removeValuesForKeyframes(_selectedKeys); });
    if (!gesture->isOver)
        raised.during([&] { replaceSelectedKeys({}); });
    if (!gesture->isOver)
        endGesture();
    raised.rethrow();
}

void KWChannelView::deleteKeyForTime(KWTime time) {
    const auto channel = keyFramedChannel();
    if (!channel)
        return;
    const QPointer<KWChannelView> self(this);
    KWFirstException raised;
    raised.during([&] { channel->removeValueForKeyframe(time); });
    if (self)
        setNeedsDisplay(true);
    raised.rethrow();
}

// --- Other events.

void KWChannelView::focusOutEvent(QFocusEvent* event) {
    const QPointer<KWChannelView> self(this);
    if (event->reason() == Qt::ActiveWindowFocusReason || event->reason() == Qt::PopupFocusReason)
        endGesture();
    if (self)
        QWidget::focusOutEvent(event);
}

void KWChannelView::hideEvent(QHideEvent* event) {
    const QPointer<KWChannelView> self(this);
    endGesture();
    if (self)
        QWidget::hideEvent(event);
}

bool KWChannelView::event(QEvent* event) {
    const QPointer<KWChannelView> self(this);
    switch (event->type()) {
    case QEvent::UngrabMouse:
    case QEvent::WindowDeactivate:
    case QEvent::WindowBlocked:
        endGesture();
        break;
    case QEvent::EnabledChange:
        if (!isEnabled())
            endGesture();
        break;
    case QEvent::ShortcutOverride: {
        // A shortcut of the window must neither interfere with a gesture nor take the view's keys.
        auto* const key = static_cast<QKeyEvent*>(event);
        const bool isPlain = !(key->modifiers() & ~(Qt::ShiftModifier | Qt::KeypadModifier));
        if (isGestureActive() || (isPlain && isDeleteKey(*key) && keyFramedChannel()))
            event->accept();
        break;
    }
    case QEvent::KeyPress:
        // Otherwise Tab would move the focus.
        if (isGestureActive()) {
            keyPressEvent(static_cast<QKeyEvent*>(event));
            return true;
        }
        break;
    case QEvent::ContextMenu:
    case QEvent::Wheel:
        if (isGestureActive()) {
            event->accept();
            return true;
        }
        break;
    default:
        break;
    }
    return self ? QWidget::event(event) : true;
}

void KWChannelView::resetCursorRects() {
    switch (_channelViewMode) {
    case KWChannelViewModeSelect:
        return setCursor(Qt::ArrowCursor);
    case KWChannelViewModeAddKey:
        return setCursor(KWCursorImage(KWCursorName::arrowAdd));
    case KWChannelViewModePan:
        return setCursor(KWCursorImage(KWCursorName::hand));
    default:
        return unsetCursor();
    }
}
