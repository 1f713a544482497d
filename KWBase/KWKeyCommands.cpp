#include <KWBase/KWChannelView.h>
#include <KWBase/KWChannelViewGesture.h>
#include <KWBase/KWKeyChange.h>
#include <KWBase/KWKeyCommands.h>
#include <KWFoundation/KWFirstException.h>
#include <KWFoundation/KWUndoManager.h>

#include <QClipboard>
#include <QGuiApplication>
#include <QKeyEvent>
#include <QMimeData>
#include <algorithm>
#include <cmath>
#include <unordered_set>
#include <utility>

// What the commands stand on: who is told of them, how they are undone, and the selection. What
// they do to keys is in KWKeyCommandsEdits.cpp.

namespace {

/// Selects keys and tells the view's delegate, as the view does.
void selectInView(KWChannelView& view, const std::vector<KWTime>& keys) {
    const QPointer<KWChannelView> alive(&view);
    KWFirstException raised;
    raised.during([&] { view.setSelectedKeys(keys); });
    if (alive)
        raised.during([&] {
            if (KWChannelViewDelegate* const told = view.delegate())
                told->selectionDidChange(
                    KWNotification(KWChannelKeySelectionChangedNotification, &view));
        });
    raised.rethrow();
}

/// Undoing selects `keys`, and redoing what was selected then. The step may outlive the view, and
/// the view may show another channel by then.
void registerSelection(const std::shared_ptr<KWChannel>& channel,
                       const QPointer<KWChannelView>& view, std::vector<KWTime> keys,
                       KWFirstException& raised) {
    KWUndoManager* const manager = channel->undoManager();
    if (!manager)
        return;
    const auto putBack = [target = std::weak_ptr(channel), view, keys = std::move(keys)] {
        const auto alive = target.lock();
        if (!alive || !view || view->primaryChannel() != alive || view->isGestureActive())
            return;
        KWFirstException thrown;
        registerSelection(alive, view, view->selectedKeys(), thrown);
        KWRunGesture([&] { selectInView(*view, keys); });
        thrown.rethrow();
    };
    manager->registerUndo(channel, putBack, raised);
}

/// One step of undo with a name, unless the host has a group of its own open.
class NamedStep {
  public:
    NamedStep(KWUndoManager* manager, std::string name) : _name(std::move(name)) {
        if (!manager)
            return;
        _keptAlive = manager->weak_from_this().lock();
        manager->beginUndoGrouping();
        _manager = manager;
    }
    NamedStep(const NamedStep&) = delete;
    NamedStep& operator=(const NamedStep&) = delete;
    ~NamedStep() {
        KWRunGesture([this] {
            if (!_manager || _manager->groupingLevel() == 0)
                return;
            if (_manager->groupingLevel() == 1)
                _manager->setActionName(_name);
            _manager->endUndoGrouping();
        });
    }

  private:
    KWUndoManager* _manager = nullptr;
    std::shared_ptr<KWObject> _keptAlive;
    std::string _name;
};

bool isStep(double step) {
    return step > 0 && std::isfinite(step);
}

} // namespace

KWKeyCommands::KWKeyCommands(KWChannelView& view, QObject* parent)
    : KWChannelEditSource(parent), _view(&view) {
    connect(&view, &KWChannelView::primaryChannelChanged, this, &KWKeyCommands::observeChannel);
    connect(&view, &KWChannelView::selectedKeysChanged, this, &KWKeyCommands::noteChange);
    connect(&view, &KWChannelView::currentTimeChanged, this, &KWKeyCommands::noteChange);
    connect(&view, &KWChannelView::gestureWillBegin, this, &KWKeyCommands::noteChange);
    connect(&view, &KWChannelView::gestureDidEnd, this, &KWKeyCommands::noteChange);
    // By then it is no curve view any more.
    connect(&view, &QObject::destroyed, this, [this] {
        _view.clear();
        observeChannel();
    });
    connect(QGuiApplication::clipboard(), &QClipboard::dataChanged, this,
            &KWKeyCommands::noteChange);
    observeChannel();
}

KWKeyCommands::~KWKeyCommands() {
    resign();
}

KWChannelView* KWKeyCommands::view() const {
    return _view;
}

void KWKeyCommands::setTimeStep(double seconds) {
    if (isStep(seconds))
        _timeStep = seconds;
}

void KWKeyCommands::setValueStep(double step) {
    if (isStep(step))
        _valueStep = step;
}

// --- Changes by others.

void KWKeyCommands::observeChannel() {
    if (const auto before = _observed.lock())
        before->removeObserverForKeyPath(*this, "valid");
    _observed.reset();
    if (_view && _view->primaryChannel()) {
        _observed = _view->primaryChannel();
        _view->primaryChannel()->addObserverForKeyPathOptionsContext(*this, "valid", 0, this);
    }
    noteChange();
}

void KWKeyCommands::observeValueForKeyPathOfObjectChangeContext(std::string_view, KWObject*,
                                                                const KWKeyValueChange&,
                                                                const void*) {
    noteChange();
}

void KWKeyCommands::noteChange() {
    if (std::exchange(_isChangeNoted, true))
        return;
    QMetaObject::invokeMethod(
        this,
        [this] {
            _isChangeNoted = false;
            KWRunGesture([this] { Q_EMIT changed(); });
        },
        Qt::QueuedConnection);
}

// --- The arrow keys.

void KWKeyCommands::setHandlesArrowKeys(bool handles) {
    _handlesArrowKeys = handles;
    if (!_view)
        return;
    _view->removeEventFilter(this);
    if (handles)
        _view->installEventFilter(this);
}

bool KWKeyCommands::eventFilter(QObject* watched, QEvent* event) {
    const bool isKey =
        event->type() == QEvent::KeyPress || event->type() == QEvent::ShortcutOverride;
    // A view that is half gone is no curve view any more.
    if (isKey && qobject_cast<KWChannelView*>(watched) && watched == _view &&
        arrowKey(*static_cast<QKeyEvent*>(event)))
        return true;
    return KWChannelEditSource::eventFilter(watched, event);
}

bool KWKeyCommands::arrowKey(QKeyEvent& event) {
    if (event.modifiers() & ~(Qt::ShiftModifier | Qt::KeypadModifier) || !canCopy())
        return false;
    const int steps = event.modifiers() & Qt::ShiftModifier ? 10 : 1;
    int times = 0;
    int values = 0;
    switch (event.key()) {
    case Qt::Key_Left:
        times = -steps;
        break;
    case Qt::Key_Right:
        times = steps;
        break;
    case Qt::Key_Up:
        values = steps;
        break;
    case Qt::Key_Down:
        values = -steps;
        break;
    default:
        return false;
    }
    event.accept();
    // A shortcut of the window must not take the key away.
    if (event.type() == QEvent::KeyPress)
        nudge(times, values);
    return true;
}

// --- What there is to act on.

/// Null while nothing is to be done.
std::shared_ptr<KWKeyFramedChannel> KWKeyCommands::channel() const {
    if (!_view || _isPerforming || _view->isGestureActive())
        return nullptr;
    auto channel = std::dynamic_pointer_cast<KWKeyFramedChannel>(_view->primaryChannel());
    return channel && KWHasOrderlyKeys(*channel) ? channel : nullptr;
}

/// The selected keys in the order of their selection, each once.
std::vector<KWTime> KWKeyCommands::selection() const {
    const auto channel = this->channel();
    if (!channel)
        return {};
    std::vector<KWTime> keys;
    std::unordered_set<KWTime> seen;
    for (const KWTime key : _view->selectedKeys())
        if (channel->isKeyframe(key) && seen.insert(key).second)
            keys.push_back(key);
    return keys;
}

std::vector<KWTime> KWKeyCommands::keys() const {
    std::vector<KWTime> keys = selection();
    std::sort(keys.begin(), keys.end());
    return keys;
}

bool KWKeyCommands::canSelectAll() const {
    const auto channel = this->channel();
    return channel && selection().size() < channel->keyframeCount();
}

bool KWKeyCommands::canSelectNone() const {
    return channel() && !_view->selectedKeys().empty();
}

bool KWKeyCommands::canInvertSelection() const {
    const auto channel = this->channel();
    return channel && channel->keyframeCount() != 0;
}

bool KWKeyCommands::canSelectNextKey() const {
    return canStep(true);
}

bool KWKeyCommands::canSelectPreviousKey() const {
    return canStep(false);
}

bool KWKeyCommands::canCopy() const {
    const auto channel = this->channel();
    if (!channel)
        return false;
    const std::vector<KWTime> keys = _view->selectedKeys();
    return std::any_of(keys.begin(), keys.end(),
                       [&](KWTime key) { return channel->isKeyframe(key); });
}

bool KWKeyCommands::canSetTime() const {
    return selection().size() == 1;
}

// --- The selection.

/// Whether it is another one than before.
bool KWKeyCommands::select(std::vector<KWTime> keys) {
    if (!_view || _view->selectedKeys() == keys)
        return false;
    KWRunGesture([&] { selectInView(*_view, keys); });
    return true;
}

bool KWKeyCommands::selectAll() {
    _fault.clear();
    const auto channel = this->channel();
    return channel && channel->keyframeCount() != 0 && select(channel->allKeyframes());
}

bool KWKeyCommands::selectNone() {
    _fault.clear();
    return channel() && select({});
}

bool KWKeyCommands::selectInverse() {
    _fault.clear();
    const auto channel = this->channel();
    if (!channel || channel->keyframeCount() == 0)
        return false;
    const std::vector<KWTime> selected = selection();
    const std::unordered_set<KWTime> left(selected.begin(), selected.end());
    std::vector<KWTime> keys = channel->allKeyframes();
    std::erase_if(keys, [&](KWTime key) { return left.contains(key); });
    return select(std::move(keys));
}

bool KWKeyCommands::selectNextKey(bool extends) {
    return step(true, extends);
}

bool KWKeyCommands::selectPreviousKey(bool extends) {
    return step(false, extends);
}

namespace {

/// The index of the key to step to; none where that is no index.
std::uint32_t stepIndex(const KWKeyFramedChannel& channel, const std::vector<KWTime>& selected,
                        KWTime now, bool forwards) {
    if (!selected.empty()) {
        const auto [first, last] = std::minmax_element(selected.begin(), selected.end());
        const std::uint32_t index = channel.indexOfKeyframe(forwards ? *last : *first);
        return forwards ? index + 1 : index - 1;
    }
    // Keys at or before the time, of which KWBeforeFirstKeyframe is one less than none.
    const std::uint32_t preceding = channel.keyframeIndexPrecedingTime(now);
    if (preceding == KWNoKeyframes || !forwards || channel.isKeyframe(now))
        return preceding;
    return preceding + 1;
}

} // namespace

bool KWKeyCommands::canStep(bool forwards) const {
    const auto channel = this->channel();
    return channel && stepIndex(*channel, selection(), KWTime(_view->currentTime()), forwards) <
                          channel->keyframeCount();
}

bool KWKeyCommands::step(bool forwards, bool extends) {
    _fault.clear();
    const auto channel = this->channel();
    if (!channel)
        return false;
    std::vector<KWTime> keys = selection();
    const auto key =
        channel->keyframeAtIndex(stepIndex(*channel, keys, KWTime(_view->currentTime()), forwards));
    if (!key)
        return false;
    if (!extends)
        keys.clear();
    keys.push_back(*key);
    return select(std::move(keys));
}

// --- Edits.

bool KWKeyCommands::refuse(const QString& sentence) {
    _fault = sentence;
    KWRunGesture([this, sentence] { Q_EMIT failed(sentence); });
    return false;
}

/// Makes a change, if it is one, and selects keys. Whoever is told may do anything.
bool KWKeyCommands::perform(KWKeyChange change, std::vector<KWTime> selected, const QString& name) {
    const auto channel = this->channel();
    change = KWNormalKeyChange(*channel, std::move(change));
    const std::optional<KWChannelEdit> kind = KWKindOfKeyChange(*channel, change);
    if (!kind)
        return select(std::move(selected));
    const QPointer<KWKeyCommands> self(this);
    const QPointer<KWChannelView> view(_view);
    const std::vector<KWTime> before = view->selectedKeys();
    const std::uint64_t edits = channel->editCount();
    bool isDone = false;
    _isPerforming = true;
    KWRunGesture([&] {
        // A manipulation of the host's is a step of the host's.
        const bool isRegistered = !channel->isManipulating();
        const NamedStep step(isRegistered ? channel->undoManager() : nullptr, name.toStdString());
        KWFirstException raised;
        raised.during([&] {
            const Edit edit(*this, *kind, channel);
            if (!self || !view || view->primaryChannel() != channel || view->isGestureActive() ||
                channel->editCount() != edits)
                return;
            isDone = true;
            KWApplyKeyChange(*channel, change, raised);
            if (view && view->primaryChannel() == channel && view->selectedKeys() != selected)
                raised.during([&] { selectInView(*view, selected); });
        });
        if (isDone && isRegistered && view && before != selected)
            registerSelection(channel, view, before, raised);
        raised.rethrow();
    });
    if (self)
        _isPerforming = false;
    return isDone;
}
