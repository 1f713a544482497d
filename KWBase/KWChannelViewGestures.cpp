#include <KWBase/KWChannelView.h>
#include <KWBase/KWChannelViewGesture.h>
#include <KWFoundation/KWFirstException.h>

#include <QMouseEvent>
#include <QPointer>
#include <algorithm>
#include <cmath>
#include <tuple>

// What a press begins, and what each move of the mouse makes of it.

namespace {

using Gesture = KWChannelViewGesture;

/// Whether times or values between them can be told apart.
bool hasSpan(float min, float max) {
    const float span = max - min;
    return std::isfinite(min) && std::isfinite(span) && span != 0;
}

} // namespace

std::shared_ptr<KWKeyFramedChannel> KWChannelView::keyFramedChannel() const {
    return std::dynamic_pointer_cast<KWKeyFramedChannel>(_primaryChannel);
}

// --- The press.

void KWChannelView::press(const QMouseEvent& event) {
    setAnchor();
    switch (_channelViewMode) {
    case KWChannelViewModeSelect:
        return pressToSelect(event);
    case KWChannelViewModeAddKey:
        return pressToAddKey(event);
    case KWChannelViewModePan:
        if (event.modifiers() & Qt::ShiftModifier)
            return startZoomingWithEvent(event);
        return startScrollingWithEvent(event);
    default:
        return;
    }
}

void KWChannelView::pressToSelect(const QMouseEvent& event) {
    const QPointF point = viewPoint(event);
    const std::optional<KWKeyCell> cell = findKeyCellForMouseLocation(point);
    if (cell && !keyFramedChannel())
        return;
    const std::shared_ptr<Gesture> gesture = beginGesture(point);
    if (!gesture)
        return;
    KWFirstException raised;
    raised.during([&] { watchKeys(gesture); });
    // A handle may be left from a drawing that is out of date.
    if (!cell || !keyFramedChannel() || !keyFramedChannel()->isKeyframe(KWTime(cell->time()))) {
        startSelectingWithEvent(event);
    } else {
        selectPressedKey(KWTime(cell->time()), event.modifiers() & Qt::ShiftModifier, raised);
        if (!gesture->isOver)
            startMovingWithEvent(event);
    }
    raised.rethrow();
}

void KWChannelView::selectPressedKey(KWTime key, bool adds, KWFirstException& raised) {
    const std::shared_ptr<Gesture> gesture = _gesture;
    raised.during([&] { dropDeadKeys(); });
    if (gesture->isOver || isSelectedTime(key.time()))
        return;
    std::vector<KWTime> keys;
    if (adds)
        keys = _selectedKeys;
    keys.push_back(key);
    raised.during([&] { replaceSelectedKeys(std::move(keys)); });
    if (!gesture->isOver)
        raised.during([&] { notifyDelegateOfSelection(); });
    if (!gesture->isOver)
        setNeedsDisplay(true);
}

void KWChannelView::pressToAddKey(const QMouseEvent& event) {
    const QPointF point = viewPoint(event);
    const KWTime key = plotGeometry().timeForNewKey(KWPlotPointFromPoint(point).x);
    if (!std::isfinite(key.time()) ||
        !std::isfinite(plotGeometry().valueForNewKey(KWPlotPointFromPoint(point).y)))
        return;
    const std::shared_ptr<Gesture> gesture = beginGesture(point);
    if (!gesture)
        return;
    KWFirstException raised;
    raised.during([&] { watchKeys(gesture); });
    if (gesture->move)
        raised.during(
            [&] { gesture->move->makeKey(key, [&] { createKeyForMouseLocation(point); }); });
    if (gesture->isCancelled && !gesture->isOver)
        cancelGesture();
    if (!gesture->isOver)
        raised.during([&] { replaceSelectedKeys({key}); });
    if (!gesture->isOver) {
        setNeedsDisplay(true);
        startMovingWithEvent(event);
    }
    // Whoever was told of the new key may have edited others.
    if (!gesture->isOver)
        endGestureIfDisturbed();
    raised.rethrow();
}

KWTime KWChannelView::createKeyForMouseLocation(const QPointF& point) {
    const KWPlotPoint at = KWPlotPointFromPoint(point);
    const KWTime time = plotGeometry().timeForNewKey(at.x);
    const float value = plotGeometry().valueForNewKey(at.y);
    if (const auto channel = keyFramedChannel())
        if (std::isfinite(time.time()) && std::isfinite(value))
            channel->setValueForKeyframe(channel->convertValueFromUserUnit(value), time);
    return time;
}

std::optional<KWKeyCell> KWChannelView::findKeyCellForMouseLocation(const QPointF& point) const {
    const auto found = std::find_if(_keyCells.begin(), _keyCells.end(), [&](const DrawnKey& key) {
        const double x = point.x() - static_cast<double>(key.origin.x);
        const double y = point.y() - static_cast<double>(key.origin.y);
        constexpr auto size = static_cast<double>(KWKeyCellSize);
        return x >= 0 && x < size && y > 0 && y <= size;
    });
    if (found == _keyCells.end())
        return std::nullopt;
    return cellOfDrawnKey(*found);
}

void KWChannelView::dropDeadKeys() {
    const auto channel = keyFramedChannel();
    std::vector<KWTime> alive = _selectedKeys;
    std::erase_if(alive, [&](KWTime key) { return !channel || !channel->isKeyframe(key); });
    if (alive.size() != _selectedKeys.size())
        replaceSelectedKeys(std::move(alive));
}

// --- What it begins.

void KWChannelView::startMovingWithEvent(const QMouseEvent& event) {
    if (!keyFramedChannel())
        return;
    const std::shared_ptr<Gesture> gesture = gestureForStart(event);
    if (!gesture)
        return;
    KWFirstException raised;
    raised.during([&] { watchKeys(gesture); });
    raised.during([&] { dropDeadKeys(); });
    const auto channel = keyFramedChannel();
    if (gesture->isOver || !channel)
        return raised.rethrow();
    const KWChannelViewGeometry view = plotGeometry();
    gesture->lattice = {0.5f * view.timeStep(_stepMode, _xGridWanted),
                        0.5f * view.valueStep(_stepMode, _yGridWanted)};
    gesture->room =
        KWDragRange(channel->moveRangeForSelectedKeyframes(_selectedKeys), view.timeForDistance(1));
    bool isTaken = false;
    raised.during([&] { isTaken = gesture->move->take(_selectedKeys); });
    if (isTaken)
        gesture->kind = Gesture::Kind::moving;
    if (isTaken && !_selectedKeys.empty()) {
        _spTime = _selectedKeys.front().time();
        _spValue = channel->valueForKeyframe(_selectedKeys.front());
        raised.during([&] { setShowsPointCoordinates(_showTransient); });
        if (!gesture->isOver)
            setNeedsDisplay(true);
    }
    if (!isTaken)
        endGesture();
    raised.rethrow();
}

void KWChannelView::startSelectingWithEvent(const QMouseEvent& event) {
    const std::shared_ptr<Gesture> gesture = gestureForStart(event);
    if (!gesture)
        return;
    KWFirstException raised;
    raised.during([&] { watchKeys(gesture); });
    gesture->kind = Gesture::Kind::selecting;
    _selecting = true;
    _selectionRect = QRectF(viewPoint(event), QSizeF(0, 0));
    if (event.modifiers() & Qt::ShiftModifier) {
        raised.during([&] { dropDeadKeys(); });
        if (gesture->isOver)
            return raised.rethrow();
        gesture->kept = _selectedKeys;
        gesture->keptSet.insert(_selectedKeys.begin(), _selectedKeys.end());
    } else {
        raised.during([&] { replaceSelectedKeys({}); });
    }
    if (!gesture->isOver)
        setNeedsDisplay(true);
    raised.rethrow();
}

void KWChannelView::startScrollingWithEvent(const QMouseEvent& event) {
    if (const std::shared_ptr<Gesture> gesture = gestureForStart(event))
        gesture->kind = Gesture::Kind::scrolling;
}

void KWChannelView::startZoomingWithEvent(const QMouseEvent& event) {
    const std::shared_ptr<Gesture> gesture = gestureForStart(event);
    if (!gesture)
        return;
    gesture->kind = Gesture::Kind::zooming;
    gesture->fixed = {plotGeometry().timeForX(gesture->from.x),
                      plotGeometry().valueForY(gesture->from.y)};
}

// --- What each move of the mouse makes of it.

void KWChannelView::drag(Gesture& gesture, const QPointF& point) {
    // Qt repeats a position when something else about the mouse changes.
    if (KWPlotPointFromPoint(point) == gesture.to)
        return;
    gesture.to = KWPlotPointFromPoint(point);
    switch (gesture.kind) {
    case Gesture::Kind::moving:
        return dragKeys(gesture);
    case Gesture::Kind::selecting:
        return dragRubberBand(gesture);
    case Gesture::Kind::scrolling:
        return dragRange(plotGeometry().panned(_anchor, gesture.from, gesture.to));
    case Gesture::Kind::zooming:
        return dragRange(
            KWChannelViewGeometry::zoomed(_anchor, gesture.fixed, gesture.from, gesture.to));
    case Gesture::Kind::pressed:
        return;
    }
}

void KWChannelView::dragKeys(Gesture& gesture) {
    const KWChannelViewGeometry view = plotGeometry();
    const float time = view.timeForDistance(gesture.to.x - gesture.from.x);
    const float value = view.valueForDistance(gesture.to.y - gesture.from.y);
    std::optional<KWKeyMove::Lattice> lattice;
    if (_snap)
        lattice = gesture.lattice;
    KWFirstException raised;
    bool hasMoved = false;
    if (std::isfinite(time))
        hasMoved =
            gesture.move->moveBy(KWHoldInDragRange(time, gesture.room), value, lattice, raised);
    if (hasMoved && !gesture.isOver) {
        const KWTime first = gesture.move->keys().front();
        _spTime = first.time();
        raised.during([&] { _spValue = gesture.move->channel()->valueForKeyframe(first); });
        raised.during([&] { replaceSelectedKeys(gesture.move->keys()); });
    }
    if (!gesture.isOver && gesture.isCancelled)
        cancelGesture();
    else if (!gesture.isOver && gesture.move->isDisturbed())
        endGesture();
    raised.rethrow();
}

void KWChannelView::dragRubberBand(Gesture& gesture) {
    const KWPlotPoint from = gesture.from;
    const KWPlotPoint to = gesture.to;
    _selectionRect = QRectF(static_cast<double>(from.x), static_cast<double>(from.y),
                            static_cast<double>(to.x - from.x), static_cast<double>(to.y - from.y));
    KWFirstException raised;
    if (gesture.move && gesture.move->isDisturbed())
        return endGesture();
    if (gesture.move) {
        const KWKeyFramedChannel& channel = *gesture.move->channel();
        std::vector<KWTime> keys = gesture.kept;
        raised.during([&] {
            const HJRect band = plotGeometry().rubberBandBounds(from, to);
            for (const KWTime key : channel.keyframesForBoundingRect(KWStoredBounds(band, channel)))
                if (!gesture.keptSet.contains(key))
                    keys.push_back(key);
        });
        raised.during([&] { replaceSelectedKeys(std::move(keys)); });
    }
    if (!gesture.isOver)
        setNeedsDisplay(true);
    raised.rethrow();
}

/// An axis of which nothing would be left stays as it is: no drag would lead out of that.
void KWChannelView::dragRange(KWDisplayedRange range) {
    const bool hasTimes = hasSpan(range.hMin, range.hMax);
    const bool hasValues = hasSpan(range.vMin, range.vMax);
    if (!hasTimes)
        std::tie(range.hMin, range.hMax) = std::tie(_range.hMin, _range.hMax);
    if (!hasValues)
        std::tie(range.vMin, range.vMax) = std::tie(_range.vMin, _range.vMax);
    if (hasTimes || hasValues)
        setDisplayedRange(range);
}
