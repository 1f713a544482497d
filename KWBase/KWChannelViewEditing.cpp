#include <KWBase/KWChannelView.h>
#include <KWBase/KWChannelViewGesture.h>
#include <KWBase/KWCursorImage.h>
#include <KWDesktop/KWViewPoint.h>
#include <KWFoundation/KWFirstException.h>
#include <KWFoundation/KWLog.h>

#include <QApplication>
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
/// where others have Backspace. With Ctrl other keys send these characters too: H the one, 8 the
/// other.
bool isDeleteKey(const QKeyEvent& event) {
    const bool isBackspace = event.key() == Qt::Key_Backspace;
    const bool isKey = isBackspace || event.key() == Qt::Key_Delete;
    const QString text = event.text();
    if (text.isEmpty())
        return isKey;
    if (!isKey && event.modifiers() & (Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier))
        return false;
    return text.front() == QChar(127) || (isBackspace && text.front() == QChar(8));
}

} // namespace

void KWRunAndLog(std::string_view words, const std::function<void()>& work) noexcept {
    std::string what = "no standard exception";
    try {
        return work();
    } catch (const std::exception& exception) {
        what = exception.what();
    } catch (...) {
    }
    KWLog(std::string(words) + what);
}

void KWRunGesture(const std::function<void()>& work) noexcept {
    KWRunAndLog("An observer of an edit in a curve view has thrown: ", work);
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
    gesture->from = KWPlotPointFromPoint(point);
    gesture->to = gesture->from;
    gesture->range = _range;
    gesture->selection = _selectedKeys;
    gesture->grabber = mouseGrabber();
    gesture->popup = QApplication::activePopupWidget();
    _gesture = gesture;
    // The release may go to somebody else.
    qApp->installEventFilter(this);
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
    // Removals are heard of by the invalidation that follows them. Of a key that is set there is a
    // notice before it is done, and there are notices without an edit: once their author is done,
    // the count of edits tells.
    gesture->notices = KWNotificationCenter::defaultCenter().addObserver(
        KWChannelChangedNotification, channel.get(), [this](const KWNotification&) {
            if (!isGestureActive() || !_gesture->move || _gesture->move->isWriting() ||
                std::exchange(_gesture->isToBeChecked, true))
                return;
            QMetaObject::invokeMethod(
                this,
                [this, asked = std::weak_ptr(_gesture)] {
                    if (const std::shared_ptr<Gesture> one = asked.lock())
                        one->isToBeChecked = false;
                    endGestureIfDisturbed();
                },
                Qt::QueuedConnection);
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
        qApp->removeEventFilter(this);
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
    const QPointer<KWChannelView> self(this);
    endGestureIfDisturbed();
    if (!self || !isGestureActive())
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
    raised.during(
        [&] { channel->removeValuesForKeyframes(KWKeyMove::inOrderOfRemoval(_selectedKeys)); });
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

bool KWChannelView::hasLostMouse() const {
    const QWidget* const grabber = mouseGrabber();
    if (grabber && grabber != this && grabber != _gesture->grabber)
        return true;
    const QWidget* const popup = QApplication::activePopupWidget();
    return popup && popup != _gesture->popup;
}

// While there is a gesture, everything that comes to anybody in the application. Nobody tells a
// widget that the mouse has been taken from it.
bool KWChannelView::eventFilter(QObject* watched, QEvent* event) {
    if (!isGestureActive())
        return QWidget::eventFilter(watched, event);
    bool ends = hasLostMouse();
    // What comes to a window is on its way to a widget.
    if (watched != this && watched->isWidgetType()) {
        if (event->type() == QEvent::MouseButtonRelease)
            ends = ends || static_cast<const QMouseEvent*>(event)->button() == Qt::LeftButton;
        else if (event->type() == QEvent::MouseMove)
            ends = ends || !(static_cast<const QMouseEvent*>(event)->buttons() & Qt::LeftButton);
    }
    if (!ends)
        return QWidget::eventFilter(watched, event);
    const QPointer<QObject> receiver(watched);
    endGesture();
    // What has no receiver any more must not be delivered.
    return !receiver;
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
