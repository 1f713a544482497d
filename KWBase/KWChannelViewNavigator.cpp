#include <KWBase/KWAxisRange.h>
#include <KWBase/KWChannelView.h>
#include <KWBase/KWChannelViewGesture.h>
#include <KWBase/KWChannelViewNavigator.h>
#include <KWDesktop/KWViewPoint.h>

#include <QGuiApplication>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QNativeGestureEvent>
#include <QPointingDevice>
#include <QWheelEvent>
#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <optional>
#include <vector>

namespace {

/// A notch of a wheel turns by so much, in eighths of a degree, and shows so much less.
constexpr double notch = 120;
constexpr double notchFactor = 1.25;
/// How far a notch moves, in pixels, where it pans.
constexpr double notchDistance = 40;

KWAxisRange timesOf(const KWDisplayedRange& range) {
    return {static_cast<double>(range.hMin), static_cast<double>(range.hMax)};
}

KWAxisRange valuesOf(const KWDisplayedRange& range) {
    return {static_cast<double>(range.vMin), static_cast<double>(range.vMax)};
}

KWDisplayedRange rangeOf(KWAxisRange times, KWAxisRange values) {
    return {static_cast<float>(times.low), static_cast<float>(times.high),
            static_cast<float>(values.low), static_cast<float>(values.high)};
}

/// The least rectangle around points, of which some have no time.
class Bounds {
  public:
    void add(float time, float value) {
        if (!std::isfinite(time) || !std::isfinite(value))
            return;
        extend(_times, time);
        addValue(value);
    }
    void addValue(float value) {
        if (std::isfinite(value))
            extend(_values, value);
    }
    const std::optional<KWAxisRange>& times() const { return _times; }
    const std::optional<KWAxisRange>& values() const { return _values; }

  private:
    static void extend(std::optional<KWAxisRange>& range, float to) {
        const auto bound = static_cast<double>(to);
        if (!range)
            range = KWAxisRange{bound, bound};
        range->low = std::min(range->low, bound);
        range->high = std::max(range->high, bound);
    }

    std::optional<KWAxisRange> _times;
    std::optional<KWAxisRange> _values;
};

/// An archive may have brought keys without values, which are nowhere.
void addKeys(Bounds& bounds, const KWKeyFramedChannel& channel) {
    const std::uint32_t count = std::min(channel.keyframeCount(), channel.valueCount());
    for (std::uint32_t index = 0; index < count; ++index)
        bounds.add(channel.keyframeAtIndex(index)->time(),
                   channel.convertValueToUserUnit(channel.valueForKeyframeAtIndex(index)));
}

void addCurve(Bounds& bounds, const KWChannel& channel, KWAxisRange times) {
    std::array<float, 257> at{};
    std::array<float, 257> values{};
    for (std::size_t i = 0; i < at.size(); ++i)
        at[i] = static_cast<float>(times.low + times.span() * static_cast<double>(i) / 256);
    try {
        channel.valuesForTimes(at, values);
    } catch (const std::exception&) {
        return; // it has no curve that could be shown
    }
    for (const float value : values)
        bounds.addValue(channel.convertValueToUserUnit(value));
}

template <class Function>
void forEachChannel(const KWChannelView& view, Function each) {
    if (view.primaryChannel())
        each(*view.primaryChannel());
    for (const std::shared_ptr<KWChannel>& channel : view.secondaryChannels())
        each(*channel);
}

Bounds boundsOfAll(const KWChannelView& view, KWAxisRange times) {
    Bounds bounds;
    forEachChannel(view, [&](const KWChannel& channel) {
        if (const auto* const keyed = dynamic_cast<const KWKeyFramedChannel*>(&channel))
            addKeys(bounds, *keyed);
    });
    if (!bounds.times())
        forEachChannel(view, [&](const KWChannel& channel) {
            if (!dynamic_cast<const KWKeyFramedChannel*>(&channel))
                addCurve(bounds, channel, times);
        });
    return bounds;
}

Bounds boundsOfSelection(const KWChannelView& view) {
    Bounds bounds;
    const auto* const channel =
        dynamic_cast<const KWKeyFramedChannel*>(view.primaryChannel().get());
    if (!channel)
        return bounds;
    for (const KWTime key : view.selectedKeys()) {
        const std::uint32_t index = channel->indexOfKeyframe(key);
        if (index != KWNotFound && index < channel->valueCount())
            bounds.add(key.time(),
                       channel->convertValueToUserUnit(channel->valueForKeyframeAtIndex(index)));
    }
    return bounds;
}

std::optional<KWDisplayedRange> rangeAround(const Bounds& bounds, const KWDisplayedRange& shown) {
    if (!bounds.values())
        return std::nullopt;
    KWAxisRange times = KWUsableAxisRange(timesOf(shown), KWTimeAxis);
    if (bounds.times())
        times = KWFramedAxisRange(bounds.times()->low, bounds.times()->high, KWTimeAxis);
    return rangeOf(times,
                   KWFramedAxisRange(bounds.values()->low, bounds.values()->high, KWValueAxis));
}

/// Under X11 the wheels of mice, too, tell pixels, and they mean little.
bool isFromTrackpad(const QWheelEvent& event) {
    if (event.phase() != Qt::NoScrollPhase)
        return true;
    const QPointingDevice* const device = event.pointingDevice();
    if (device && device->type() == QInputDevice::DeviceType::TouchPad)
        return true;
    return !event.pixelDelta().isNull() && QGuiApplication::platformName() != QStringLiteral("xcb");
}

struct AxisFactors {
    double times;
    double values;
};

AxisFactors factorsFor(double factor, Qt::KeyboardModifiers modifiers) {
    const bool timesOnly = modifiers & Qt::ControlModifier;
    const bool valuesOnly = modifiers & Qt::ShiftModifier;
    return {valuesOnly && !timesOnly ? 1.0 : factor, timesOnly && !valuesOnly ? 1.0 : factor};
}

} // namespace

KWChannelViewNavigator::KWChannelViewNavigator(KWChannelView& view, QObject* parent)
    : QObject(parent), _view(&view) {
    view.installEventFilter(this);
    connect(&view, &KWChannelView::primaryChannelChanged, this,
            &KWChannelViewNavigator::frameFirstChannel);
    connect(&view, &KWChannelView::gestureWillBegin, this, [this] {
        _isArmed = false;
        endDrag();
    });
    // The view then sets a cursor of its own.
    connect(&view, &KWChannelView::settingsChanged, this, [this] {
        if (_drag == Drag::none)
            _cursor = Cursor::own;
    });
    // By then it is no curve view any more.
    connect(&view, &QObject::destroyed, this, [this] {
        _view.clear();
        endDrag();
    });
}

KWChannelViewNavigator::~KWChannelViewNavigator() {
    endDrag();
    showCursor(Cursor::own);
}

KWChannelView* KWChannelViewNavigator::view() const {
    return _view;
}

void KWChannelViewNavigator::setFramesFirstChannel(bool frames) {
    _framesFirstChannel = frames;
    _isArmed = frames;
}

void KWChannelViewNavigator::setTimeStep(double seconds) {
    _timeStep = seconds > 0 && std::isfinite(seconds) ? seconds : 0;
}

void KWChannelViewNavigator::setGrabDistance(int pixels) {
    _grabDistance = std::max(pixels, 0);
}

void KWChannelViewNavigator::setRuler(Qt::Edge edge, int height) {
    _rulerEdge = edge;
    _rulerHeight = std::max(height, 0);
}

// --- What is displayed.

/// Whether nothing is under way that a change of the range would disturb.
bool KWChannelViewNavigator::isFree() const {
    return _view && !_view->isGestureActive() && _drag == Drag::none;
}

void KWChannelViewNavigator::show(const KWDisplayedRange& range) {
    _isArmed = false;
    _view->setDisplayedBounds(
        {range.hMin, range.vMin, range.hMax - range.hMin, range.vMax - range.vMin});
}

bool KWChannelViewNavigator::frameAll() {
    if (!isFree())
        return false;
    const KWDisplayedRange shown = _view->plotGeometry().range;
    const KWAxisRange times = KWUsableAxisRange(timesOf(shown), KWTimeAxis);
    const auto range = rangeAround(boundsOfAll(*_view, times), shown);
    if (range)
        show(*range);
    return range.has_value();
}

bool KWChannelViewNavigator::frameSelection() {
    if (!isFree())
        return false;
    const auto range = rangeAround(boundsOfSelection(*_view), _view->plotGeometry().range);
    if (range)
        show(*range);
    return range.has_value();
}

void KWChannelViewNavigator::frameFirstChannel() {
    if (_framesFirstChannel && _isArmed && _view && _view->primaryChannel())
        frameAll();
}

bool KWChannelViewNavigator::zoomAt(const QPointF& position, double timeFactor,
                                    double valueFactor) {
    if (!isFree())
        return false;
    const auto [range, plot] = _view->plotGeometry();
    const auto width = static_cast<double>(plot.xMax - plot.xMin);
    const auto height = static_cast<double>(plot.yMax - plot.yMin);
    if (!(width > 0) || !(height > 0))
        return false;
    const QPointF point = KWViewPointFromPosition(position, _view->height());
    const auto zoomed = [](KWAxisRange axis, double share, double factor, KWAxisKind kind) {
        axis = KWUsableAxisRange(axis, kind);
        return KWZoomedAxisRange(axis, axis.low + share * axis.span(), factor, kind);
    };
    const KWDisplayedRange shown =
        rangeOf(zoomed(timesOf(range), (point.x() - static_cast<double>(plot.xMin)) / width,
                       timeFactor, KWTimeAxis),
                zoomed(valuesOf(range), (point.y() - static_cast<double>(plot.yMin)) / height,
                       valueFactor, KWValueAxis));
    show(shown);
    return true;
}

bool KWChannelViewNavigator::zoomBy(double timeFactor, double valueFactor) {
    return _view && zoomAt(QRectF(_view->rect()).center(), timeFactor, valueFactor);
}

bool KWChannelViewNavigator::panBy(const QPointF& distance) {
    if (!isFree())
        return false;
    const auto [range, plot] = _view->plotGeometry();
    const auto width = static_cast<double>(plot.xMax - plot.xMin);
    const auto height = static_cast<double>(plot.yMax - plot.yMin);
    if (!(width > 0) || !(height > 0))
        return false;
    const KWAxisRange times = timesOf(range);
    const KWAxisRange values = valuesOf(range);
    show(rangeOf(KWPannedAxisRange(times, -distance.x() * times.span() / width, KWTimeAxis),
                 KWPannedAxisRange(values, distance.y() * values.span() / height, KWValueAxis)));
    return true;
}

// --- Events.

bool KWChannelViewNavigator::eventFilter(QObject* watched, QEvent* event) {
    // Events come to a view that is half gone, too, and is no curve view any more.
    if (!qobject_cast<KWChannelView*>(watched) || watched != _view || _view->isGestureActive())
        return QObject::eventFilter(watched, event);
    bool isTaken = true;
    KWRunAndLog("What navigates in a curve view has come upon an exception: ",
                [&] { isTaken = takeEvent(*event); });
    return isTaken;
}

bool KWChannelViewNavigator::takeEvent(QEvent& event) {
    const QPointer<QObject> receiver(_view.data());
    switch (event.type()) {
    case QEvent::Wheel:
        return wheel(static_cast<QWheelEvent&>(event));
    case QEvent::NativeGesture:
        return pinch(static_cast<QNativeGestureEvent&>(event));
    case QEvent::MouseButtonPress:
    case QEvent::MouseButtonDblClick:
        return press(static_cast<QMouseEvent&>(event));
    case QEvent::MouseMove:
        return move(static_cast<QMouseEvent&>(event));
    case QEvent::MouseButtonRelease:
        return release(static_cast<QMouseEvent&>(event));
    case QEvent::ShortcutOverride:
    case QEvent::KeyPress:
        return key(static_cast<QKeyEvent&>(event));
    case QEvent::Leave:
        if (_drag == Drag::none)
            showCursor(Cursor::own);
        break;
    case QEvent::FocusOut:
    case QEvent::Hide:
    case QEvent::WindowDeactivate:
    case QEvent::WindowBlocked:
        endDrag();
        break;
    case QEvent::EnabledChange:
        if (!_view->isEnabled())
            endDrag();
        break;
    default:
        break;
    }
    // What has no receiver any more must not be delivered.
    return !receiver;
}

bool KWChannelViewNavigator::wheel(QWheelEvent& event) {
    if (!_view->isEnabled())
        return false;
    event.accept();
    const Qt::KeyboardModifiers modifiers = event.modifiers();
    const QPointF angle(event.angleDelta());
    const bool zooms = modifiers & (Qt::ControlModifier | Qt::ShiftModifier);
    if (isFromTrackpad(event) && !zooms) {
        const QPointF pixels(event.pixelDelta());
        panBy(pixels.isNull() ? angle / notch * notchDistance : pixels);
        return true;
    }
    // What goes on by itself once the fingers are off is the end of a pan.
    if (event.phase() == Qt::ScrollMomentum)
        return true;
    // With Alt held Qt exchanges the axes, with Shift some platforms do.
    const bool mayBeSwapped = modifiers & (Qt::AltModifier | Qt::ShiftModifier);
    const double turned = angle.y() != 0 || !mayBeSwapped ? angle.y() : angle.x();
    if (turned != 0) {
        const AxisFactors factors = factorsFor(std::pow(notchFactor, turned / notch), modifiers);
        zoomAt(event.position(), factors.times, factors.values);
    } else if (angle.x() != 0) {
        panBy({angle.x() / notch * notchDistance, 0});
    }
    return true;
}

bool KWChannelViewNavigator::pinch(QNativeGestureEvent& event) {
    if (!_view->isEnabled())
        return false;
    if (event.gestureType() == Qt::BeginNativeGesture ||
        event.gestureType() == Qt::EndNativeGesture) {
        event.accept();
        return true;
    }
    if (event.gestureType() != Qt::ZoomNativeGesture)
        return false;
    event.accept();
    // One event of a pinch is a small part of it.
    const AxisFactors factors =
        factorsFor(std::clamp(1 + event.value(), 0.1, 10.0), event.modifiers());
    zoomAt(event.position(), factors.times, factors.values);
    return true;
}

bool KWChannelViewNavigator::press(QMouseEvent& event) {
    if (_drag != Drag::none) {
        event.accept();
        return true;
    }
    if (!_view->isEnabled())
        return false;
    if (event.button() == Qt::MiddleButton) {
        event.accept();
        beginPan(event.position());
        return true;
    }
    if (event.button() != Qt::LeftButton || event.modifiers() != Qt::NoModifier ||
        !canDragTimeAt(event.position()))
        return false;
    event.accept();
    beginScrub(event.position());
    return true;
}

bool KWChannelViewNavigator::move(QMouseEvent& event) {
    const bool isHeld = event.buttons() & (_drag == Drag::pan ? Qt::MiddleButton : Qt::LeftButton);
    const QPointer<KWChannelView> view(_view);
    const QPointer<KWChannelViewNavigator> self(this);
    // The release went to somebody else.
    if (_drag != Drag::none && !isHeld)
        endDrag();
    if (!self || !view)
        return !view;
    if (_drag == Drag::none) {
        if (_view->isEnabled() && event.buttons() == Qt::NoButton)
            showCursorAt(event.position());
        return false;
    }
    event.accept();
    dragTo(event.position());
    // As the view does itself.
    if (self && _view)
        Q_EMIT _view->pointerMoved(_view->timeAtPosition(event.position()),
                                   _view->valueAtPosition(event.position()));
    return true;
}

bool KWChannelViewNavigator::release(QMouseEvent& event) {
    if (_drag == Drag::none)
        return false;
    event.accept();
    if (event.button() != (_drag == Drag::pan ? Qt::MiddleButton : Qt::LeftButton))
        return true;
    const QPointer<KWChannelViewNavigator> self(this);
    endDrag();
    if (self && _view && _drag == Drag::none)
        showCursorAt(event.position());
    return true;
}

/// A drag keeps the keyboard, and the shortcuts of the window, from doing anything else.
bool KWChannelViewNavigator::key(QKeyEvent& event) {
    if (_drag == Drag::none)
        return false;
    event.accept();
    if (event.type() == QEvent::KeyPress && event.key() == Qt::Key_Escape)
        cancelDrag();
    return true;
}

// --- Drags.

bool KWChannelViewNavigator::isInRuler(const QPointF& position) const {
    if (_rulerHeight == 0 || !QRectF(_view->rect()).contains(position))
        return false;
    return _rulerEdge == Qt::BottomEdge ? position.y() >= _view->height() - _rulerHeight
                                        : position.y() < _rulerHeight;
}

bool KWChannelViewNavigator::canDragTimeAt(const QPointF& position) const {
    const KWChannelViewGeometry geometry = _view->plotGeometry();
    if (!std::isfinite(geometry.timeForX(static_cast<float>(position.x()))))
        return false;
    if (isInRuler(position))
        return true;
    const auto line = static_cast<double>(geometry.timeLineX(_view->currentTime()));
    return _view->editingMode() == KWChannelViewModeSelect &&
           std::fabs(position.x() - line) <= _grabDistance &&
           !_view->findKeyCellForMouseLocation(KWViewPointFromPosition(position, _view->height()));
}

void KWChannelViewNavigator::beginPan(const QPointF& position) {
    _isArmed = false;
    _drag = Drag::pan;
    _from = position;
    _bounds = _view->displayedBounds();
    _range = _view->plotGeometry().range;
    showCursor(Cursor::pan);
}

void KWChannelViewNavigator::beginScrub(const QPointF& position) {
    _drag = Drag::scrub;
    _from = position;
    _time = _view->currentTime();
    const auto line = static_cast<double>(_view->plotGeometry().xForTime(_time));
    // By the line itself it is taken where it is, and does not jump to the pointer.
    const bool takesLine = std::fabs(position.x() - line) <= _grabDistance + 1;
    _grabOffset = takesLine ? line - position.x() : 0;
    showCursor(Cursor::scrub);
    const QPointer<KWChannelViewNavigator> self(this);
    Q_EMIT scrubbingBegan();
    if (self && _drag == Drag::scrub && !takesLine)
        scrubTo(position);
}

void KWChannelViewNavigator::dragTo(const QPointF& position) {
    if (_drag == Drag::scrub)
        return scrubTo(position);
    const KWPlotRect plot = _view->plotGeometry().plot;
    const auto width = static_cast<double>(plot.xMax - plot.xMin);
    const auto height = static_cast<double>(plot.yMax - plot.yMin);
    const QPointF distance = position - _from;
    const KWAxisRange times = timesOf(_range);
    const KWAxisRange values = valuesOf(_range);
    if (width > 0 && height > 0)
        show(
            rangeOf(KWPannedAxisRange(times, -distance.x() * times.span() / width, KWTimeAxis),
                    KWPannedAxisRange(values, distance.y() * values.span() / height, KWValueAxis)));
}

void KWChannelViewNavigator::scrubTo(const QPointF& position) {
    const auto [range, plot] = _view->plotGeometry();
    const KWAxisRange times = timesOf(range);
    double time = times.low + (position.x() + _grabOffset - static_cast<double>(plot.xMin)) *
                                  times.span() / static_cast<double>(plot.xMax - plot.xMin);
    if (_timeStep > 0)
        time = std::round(time / _timeStep) * _timeStep + 0.0;
    if (std::isfinite(time) && std::fabs(time) <= KWFarthestBound)
        setTime(static_cast<float>(time));
}

void KWChannelViewNavigator::setTime(float time) {
    if (time == _view->currentTime())
        return;
    const QPointer<KWChannelViewNavigator> self(this);
    _view->setCurrentTime(time);
    if (self && _drag == Drag::scrub)
        Q_EMIT timeScrubbed(time);
}

void KWChannelViewNavigator::endDrag() {
    const Drag drag = std::exchange(_drag, Drag::none);
    if (drag == Drag::none)
        return;
    showCursor(Cursor::own);
    if (drag == Drag::scrub)
        Q_EMIT scrubbingEnded();
}

void KWChannelViewNavigator::cancelDrag() {
    const QPointer<KWChannelViewNavigator> self(this);
    if (_drag == Drag::pan)
        _view->setDisplayedBounds(_bounds);
    else if (_drag == Drag::scrub)
        setTime(_time);
    if (self)
        endDrag();
}

void KWChannelViewNavigator::showCursorAt(const QPointF& position) {
    showCursor(canDragTimeAt(position) ? Cursor::scrub : Cursor::own);
}

void KWChannelViewNavigator::showCursor(Cursor cursor) {
    if (cursor == std::exchange(_cursor, cursor) || !_view)
        return;
    switch (cursor) {
    case Cursor::own:
        return _view->resetCursorRects();
    case Cursor::pan:
        return _view->setCursor(Qt::ClosedHandCursor);
    case Cursor::scrub:
        return _view->setCursor(Qt::SplitHCursor);
    }
}
