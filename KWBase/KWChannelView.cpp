#include <KWBase/KWChannelView.h>
#include <KWBase/KWChannelViewBindings.h>
#include <KWBase/KWChannelViewGesture.h>
#include <KWDesktop/KWViewPoint.h>
#include <KWFoundation/KWNotificationCenter.h>

#include <QAbstractButton>
#include <QAction>
#include <QCheckBox>
#include <QPointer>
#include <algorithm>
#include <cmath>
#include <limits>
#include <stdexcept>

namespace {

constexpr int stepCountLimit = 1'000'000;

/// Whether two numbers are the same, be it that both are none: views that follow each other would
/// tell each other without end of a NaN that is not even equal to itself.
bool isSame(float a, float b) {
    return a == b || (std::isnan(a) && std::isnan(b));
}

bool isSame(const KWDisplayedRange& a, const KWDisplayedRange& b) {
    return isSame(a.hMin, b.hMin) && isSame(a.hMax, b.hMax) && isSame(a.vMin, b.vMin) &&
           isSame(a.vMax, b.vMax);
}

/// What a grid resolution from 0 to 1 asks for.
int gridCount(float resolution) {
    const double count = static_cast<double>(resolution) * 40.0 + 1.0;
    if (std::isnan(count))
        return 0;
    return static_cast<int>(
        std::clamp(count, 0.0, static_cast<double>(std::numeric_limits<int>::max())));
}

bool isChecked(const QObject* sender) {
    if (const auto* box = qobject_cast<const QCheckBox*>(sender))
        return box->checkState() == Qt::Checked;
    if (const auto* button = qobject_cast<const QAbstractButton*>(sender))
        return button->isChecked();
    const auto* action = qobject_cast<const QAction*>(sender);
    return action && action->isChecked();
}

} // namespace

KWChannelView::KWChannelView(QWidget* parent)
    : QWidget(parent), _backgroundColor(QColor::fromRgbF(0.1f, 0.0f, 0.3f)),
      _gridColor(QColor::fromRgbF(0.35f, 0.35f, 0.5f)),
      _bindings(std::make_unique<KWChannelViewBindings>()) {
    setAttribute(Qt::WA_OpaquePaintEvent);
    setFocusPolicy(Qt::StrongFocus);
    setMouseTracking(true);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
    resetCursorRects();
}

KWChannelView::~KWChannelView() {
    cutGestureShort();
    resign();
}

void KWChannelView::awakeFromNib() {
    setEditingMode(KWChannelViewModeSelect);
}

KWChannelViewDelegate* KWChannelView::delegate() const {
    const auto link = _delegate.lock();
    return link ? link->delegate : nullptr;
}

void KWChannelView::setDelegate(KWChannelViewDelegate* delegate) {
    _delegate = delegate ? delegate->link() : std::weak_ptr<const KWChannelViewDelegate::Link>();
}

void KWChannelView::notifyDelegateOfSelection() {
    if (KWChannelViewDelegate* const told = delegate())
        told->selectionDidChange(KWNotification(KWChannelKeySelectionChangedNotification, this));
}

// --- What is displayed.

HJRect KWChannelView::displayedBounds() const {
    return {_range.hMin, _range.vMin, _range.hMax - _range.hMin, _range.vMax - _range.vMin};
}

void KWChannelView::setDisplayedBounds(const HJRect& bounds) {
    setDisplayedRange({bounds.x, bounds.x + bounds.width, bounds.y, bounds.y + bounds.height});
}

QRectF KWChannelView::displayedRectangle() const {
    const HJRect bounds = displayedBounds();
    return {static_cast<double>(bounds.x), static_cast<double>(bounds.y),
            static_cast<double>(bounds.width), static_cast<double>(bounds.height)};
}

void KWChannelView::setDisplayedRectangle(const QRectF& bounds) {
    setDisplayedBounds({static_cast<float>(bounds.x()), static_cast<float>(bounds.y()),
                        static_cast<float>(bounds.width()), static_cast<float>(bounds.height())});
}

void KWChannelView::fitChannel(const QObject*) {
    const auto* const channel = dynamic_cast<const KWKeyFramedChannel*>(_primaryChannel.get());
    if (!channel)
        return;
    HJRect bounds;
    try {
        bounds = channel->boundingRectInUserUnit();
    } catch (const std::out_of_range&) {
        return; // out of order, and with keys that have no value
    }
    setDisplayedRange(KWRangeAroundBounds(bounds));
}

void KWChannelView::setDisplayedRange(const KWDisplayedRange& range) {
    const bool changes = !isSame(range, _range);
    _range = range;
    setNeedsDisplay(true);
    if (changes)
        Q_EMIT displayedBoundsChanged();
}

void KWChannelView::setAnchor() {
    _anchor = _range;
}

void KWChannelView::setCurrentTime(float time) {
    const bool changes = !isSame(time, _currentTime);
    _currentTime = time;
    setNeedsDisplay(true);
    if (changes)
        Q_EMIT currentTimeChanged(time);
}

KWChannelViewGeometry KWChannelView::plotGeometry() const {
    const KWPlotRect whole{0, static_cast<float>(width()), 0, static_cast<float>(height())};
    return {_range, _plot.value_or(whole)};
}

float KWChannelView::timeAtPosition(const QPointF& position) const {
    return plotGeometry().timeForX(
        KWPlotPointFromPoint(KWViewPointFromPosition(position, height())).x);
}

float KWChannelView::valueAtPosition(const QPointF& position) const {
    return plotGeometry().valueForY(
        KWPlotPointFromPoint(KWViewPointFromPosition(position, height())).y);
}

QPointF KWChannelView::positionOfTimeAndValue(float time, float value) const {
    const KWChannelViewGeometry mapping = plotGeometry();
    return KWPositionFromViewPoint({static_cast<double>(mapping.xForTime(time)),
                                    static_cast<double>(mapping.yForValue(value))},
                                   height());
}

// --- Settings.

template <class T>
void KWChannelView::setSetting(T& field, T value) {
    if (field == value)
        return;
    field = value;
    Q_EMIT settingsChanged();
}

void KWChannelView::setStepCount(int count) {
    setNeedsDisplay(true);
    setSetting(_stepCount, static_cast<std::uint32_t>(std::clamp(count, 1, stepCountLimit)));
}

void KWChannelView::setXGridCount(int count) {
    setNeedsDisplay(true);
    setSetting(_xGridWanted, static_cast<std::uint32_t>(std::max(count, 0)));
}

void KWChannelView::setYGridCount(int count) {
    setNeedsDisplay(true);
    setSetting(_yGridWanted, static_cast<std::uint32_t>(std::max(count, 0)));
}

void KWChannelView::setXGridResolution(float resolution) {
    setXGridCount(gridCount(resolution));
}

void KWChannelView::setYGridResolution(float resolution) {
    setYGridCount(gridCount(resolution));
}

void KWChannelView::setGridResolution(float resolution) {
    setXGridResolution(resolution);
    setYGridResolution(resolution);
}

void KWChannelView::setShowsGrid(bool shows) {
    setSetting(_showsGrid, shows);
}

void KWChannelView::setShowsTwoLevelGrid(bool shows) {
    setSetting(_showsTwoLevelGrid, shows);
}

void KWChannelView::setShowsLegend(bool shows) {
    setSetting(_showsLegend, shows);
}

void KWChannelView::setBackgroundColor(const QColor& color) {
    // Behind a translucent background Qt has to draw the parent's first.
    setAttribute(Qt::WA_OpaquePaintEvent, color.alpha() == 255);
    setSetting(_backgroundColor, color);
}

void KWChannelView::setGridColor(const QColor& color) {
    setSetting(_gridColor, color);
}

void KWChannelView::setShowsPointCoordinates(bool shows) {
    setSetting(_showPointCoords, shows);
}

void KWChannelView::setShowsTransientPointCoordinates(bool shows) {
    setSetting(_showTransient, shows);
}

void KWChannelView::setPointTimeValue(float time, float value) {
    _spTime = time;
    _spValue = value;
}

void KWChannelView::setEditingMode(std::int32_t mode) {
    const QPointer<KWChannelView> self(this);
    setSetting(_channelViewMode, mode);
    if (self)
        resetCursorRects();
}

void KWChannelView::setSnaps(bool snaps) {
    setSetting(_snap, snaps);
}

void KWChannelView::changeSnap(const QObject* sender) {
    setSnaps(isChecked(sender));
}

void KWChannelView::setClampsValues(bool clamps) {
    setSetting(_clampsValues, clamps);
}

void KWChannelView::setLiveUpdate(bool live) {
    setSetting(_liveUpdate, live);
}

// --- The selection.

void KWChannelView::setSelectedKeys(const std::vector<KWTime>& keys) {
    setNeedsDisplay(true);
    replaceSelectedKeys(keys);
}

void KWChannelView::replaceSelectedKeys(std::vector<KWTime> keys) {
    const bool changes =
        !std::equal(keys.begin(), keys.end(), _selectedKeys.begin(), _selectedKeys.end(),
                    [](KWTime a, KWTime b) { return isSame(a.time(), b.time()); });
    _selectedKeys = std::move(keys);
    if (!changes)
        return;
    _selectedTimes.clear();
    for (const KWTime key : _selectedKeys)
        if (!std::isnan(key.time()))
            _selectedTimes.push_back(key.time());
    std::sort(_selectedTimes.begin(), _selectedTimes.end());
    Q_EMIT selectedKeysChanged();
}

bool KWChannelView::isSelectedTime(float time) const {
    return std::binary_search(_selectedTimes.begin(), _selectedTimes.end(), time);
}

// --- The widget.

void KWChannelView::setNeedsDisplay(bool needs) {
    if (needs)
        update();
}

QSize KWChannelView::sizeHint() const {
    return {480, 300};
}

QSize KWChannelView::minimumSizeHint() const {
    return {80, 50};
}
