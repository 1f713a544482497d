#include <KWFoundation/KWNotificationCenter.h>
#include <KWFoundation/KWUndoManager.h>

#include <algorithm>
#include <iterator>
#include <stdexcept>
#include <utility>

// Destroying an action destroys what it holds, and that may come back to the manager. So whatever
// is forgotten is first moved out, and goes when the stacks are whole again.

KWUndoManager::KWUndoManager() = default;
KWUndoManager::~KWUndoManager() = default;

void KWUndoManager::Entries::push_back(Entry entry) {
    if (empty())
        _first = std::move(entry);
    else
        _others.push_back(std::move(entry));
}

KWUndoManager::Entry KWUndoManager::Entries::takeBack() {
    if (_others.empty())
        return std::exchange(_first, Entry());
    Entry last = std::move(_others.back());
    _others.pop_back();
    return last;
}

bool KWUndoManager::Entries::isAlive() const {
    return !_first.target.expired() ||
           std::any_of(_others.begin(), _others.end(),
                       [](const Entry& entry) { return !entry.target.expired(); });
}

void KWUndoManager::Entries::takeThoseOf(const KWObject& target, std::vector<Entry>& taken) {
    // The dead are taken along: the target may be in its destructor, where it is one of them.
    const auto stays = [&target](const Entry& entry) {
        const auto locked = entry.target.lock();
        return locked && locked.get() != &target;
    };
    const auto leaving = std::stable_partition(_others.begin(), _others.end(), stays);
    taken.insert(taken.end(), std::make_move_iterator(leaving),
                 std::make_move_iterator(_others.end()));
    _others.erase(leaving, _others.end());
    if (empty() || stays(_first))
        return;
    taken.push_back(std::exchange(_first, Entry()));
    if (_others.empty())
        return;
    _first = std::move(_others.front());
    _others.erase(_others.begin());
}

void KWUndoManager::registerUndo(std::weak_ptr<KWObject> target, Action action) {
    KWFirstException raised;
    registerUndo(std::move(target), std::move(action), raised);
    raised.rethrow();
}

void KWUndoManager::registerUndo(std::weak_ptr<KWObject> target, Action action,
                                 KWFirstException& raised) {
    if (target.expired() || !action)
        return;
    Entry entry{std::move(target), std::move(action)};
    if (_state != State::idle || _level > 0) {
        _open.entries.push_back(std::move(entry));
        if (_state != State::idle || _redo.empty())
            return;
    } else {
        Step step;
        step.entries.push_back(std::move(entry));
        pushNew(std::move(step));
    }
    Stack forgotten;
    forgotten.swap(_redo);
    forgotten.clear();
    raised.during([this] { didChange(); });
}

void KWUndoManager::removeAllActionsWithTarget(const KWObject& target) {
    std::vector<Entry> taken;
    _open.entries.takeThoseOf(target, taken);
    _running.entries.takeThoseOf(target, taken);
    const std::size_t unseen = taken.size();
    const std::uint64_t current = stateIdentifier();
    for (Stack* stack : {&_undo, &_redo}) {
        for (Step& step : *stack)
            step.entries.takeThoseOf(target, taken);
        std::erase_if(*stack, [](const Step& step) { return step.entries.empty(); });
    }
    const bool changes = taken.size() > unseen;
    setStateIdentifier(current);
    const auto self = weak_from_this().lock();
    taken.clear();
    if (changes)
        didChange();
}

void KWUndoManager::removeAllActions() {
    Stack undo;
    Stack redo;
    _firstState = stateIdentifier();
    undo.swap(_undo);
    redo.swap(_redo);
    Entries running = std::exchange(_running.entries, Entries());
    Entries open = std::exchange(_open.entries, Entries());
    const bool changes = !undo.empty() || !redo.empty();
    const auto self = weak_from_this().lock();
    undo.clear();
    redo.clear();
    running = Entries();
    open = Entries();
    if (changes)
        didChange();
}

void KWUndoManager::beginUndoGrouping() {
    ++_level;
}

void KWUndoManager::endUndoGrouping() {
    if (_level == 0)
        throw std::logic_error("no undo group is open");
    // While a step runs, all that is registered is one step anyway.
    if (--_level > 0 || _state != State::idle)
        return;
    Step step = std::exchange(_open, Step());
    if (!step.entries.isAlive())
        return;
    pushNew(std::move(step));
    didChange();
}

void KWUndoManager::pushNew(Step step) {
    step.state = ++_lastState;
    _undo.push_back(std::move(step));
}

std::uint64_t KWUndoManager::stateIdentifier() const {
    return _undo.empty() ? _firstState : _undo.back().state;
}

void KWUndoManager::setStateIdentifier(std::uint64_t state) {
    (_undo.empty() ? _firstState : _undo.back().state) = state;
}

bool KWUndoManager::canRun(const Stack& stack) const {
    return latestAlive(stack) && _level == 0 && _state == State::idle;
}

const KWUndoManager::Step* KWUndoManager::latestAlive(const Stack& stack) {
    const auto found = std::find_if(stack.rbegin(), stack.rend(),
                                    [](const Step& step) { return step.entries.isAlive(); });
    return found == stack.rend() ? nullptr : &*found;
}

bool KWUndoManager::canUndo() const {
    return canRun(_undo);
}

bool KWUndoManager::canRedo() const {
    return canRun(_redo);
}

void KWUndoManager::undo() {
    run(_undo, _redo, State::undoing);
}

void KWUndoManager::redo() {
    run(_redo, _undo, State::redoing);
}

void KWUndoManager::run(Stack& from, Stack& to, State state) {
    if (!canRun(from))
        return;
    const auto self = weak_from_this().lock();
    Stack dead;
    while (!from.back().entries.isAlive()) {
        dead.push_back(std::move(from.back()));
        from.pop_back();
    }
    _running = std::move(from.back());
    from.pop_back();
    _state = state;
    try {
        runEntries();
    } catch (...) {
        const Step lost = std::exchange(_running, Step());
        const Step lostInverse = finishRunning();
        setStateIdentifier(++_lastState); // nobody has been here before
        try {
            didChange();
        } catch (...) {
            // The action's own exception says more.
        }
        throw;
    }
    std::string name = std::move(_running.name);
    const std::uint64_t reached = _running.state;
    _running = Step();
    Step inverse = finishRunning();
    inverse.name = std::move(name);
    inverse.state = reached;
    if (!inverse.entries.empty())
        to.push_back(std::move(inverse));
    dead.clear();
    didChange();
}

void KWUndoManager::runEntries() {
    // One entry at a time is taken out, for an action may remove those that are still to come.
    while (!_running.entries.empty()) {
        const Entry entry = _running.entries.takeBack();
        if (const auto target = entry.target.lock())
            entry.action();
    }
}

KWUndoManager::Step KWUndoManager::finishRunning() {
    _state = State::idle;
    _level = 0;
    return std::exchange(_open, Step());
}

void KWUndoManager::setActionName(std::string name) {
    // The step that is being made has the name of the one that runs.
    if (_state != State::idle)
        return;
    if (_level > 0) {
        _open.name = std::move(name);
        return;
    }
    // Steps that do not count are not named.
    const auto step = std::find_if(_undo.rbegin(), _undo.rend(), [](const Step& candidate) {
        return candidate.entries.isAlive();
    });
    if (step == _undo.rend() || step->name == name)
        return;
    step->name = std::move(name);
    didChange();
}

std::string KWUndoManager::undoActionName() const {
    return canUndo() ? latestAlive(_undo)->name : std::string();
}

std::string KWUndoManager::redoActionName() const {
    return canRedo() ? latestAlive(_redo)->name : std::string();
}

std::vector<std::string> KWUndoManager::namesOf(const Stack& stack) const {
    std::vector<std::string> names;
    if (canRun(stack))
        for (auto step = stack.rbegin(); step != stack.rend(); ++step)
            if (step->entries.isAlive())
                names.push_back(step->name);
    return names;
}

std::vector<std::string> KWUndoManager::undoActionNames() const {
    return namesOf(_undo);
}

std::vector<std::string> KWUndoManager::redoActionNames() const {
    return namesOf(_redo);
}

void KWUndoManager::didChange() {
    if (!weak_from_this().expired())
        KWNotificationCenter::defaultCenter().postNotificationNameObject(
            KWUndoManagerDidChangeNotification, this);
}
