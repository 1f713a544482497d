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

bool KWUndoManager::Step::isAlive() const {
    return std::any_of(entries.begin(), entries.end(),
                       [](const Entry& entry) { return !entry.target.expired(); });
}

void KWUndoManager::registerUndo(std::weak_ptr<KWObject> target, Action action) {
    if (target.expired() || !action)
        return;
    Entry entry{std::move(target), std::move(action)};
    if (_state != State::idle) {
        _open.entries.push_back(std::move(entry));
        return;
    }
    Stack forgotten;
    forgotten.swap(_redo);
    if (_level > 0) {
        _open.entries.push_back(std::move(entry));
        if (forgotten.empty())
            return;
    } else {
        _undo.emplace_back().entries.push_back(std::move(entry));
    }
    forgotten.clear();
    didChange();
}

void KWUndoManager::takeEntries(std::vector<Entry>& entries, const KWObject& target,
                                std::vector<Entry>& taken) {
    // The dead are taken along: the target may be in its destructor, where it is one of them.
    const auto first =
        std::stable_partition(entries.begin(), entries.end(), [&target](const Entry& entry) {
            const auto locked = entry.target.lock();
            return locked && locked.get() != &target;
        });
    taken.insert(taken.end(), std::make_move_iterator(first),
                 std::make_move_iterator(entries.end()));
    entries.erase(first, entries.end());
}

void KWUndoManager::removeAllActionsWithTarget(const KWObject& target) {
    std::vector<Entry> taken;
    takeEntries(_open.entries, target, taken);
    takeEntries(_running.entries, target, taken);
    const std::size_t unseen = taken.size();
    for (Stack* stack : {&_undo, &_redo}) {
        for (Step& step : *stack)
            takeEntries(step.entries, target, taken);
        std::erase_if(*stack, [](const Step& step) { return step.entries.empty(); });
    }
    const bool changes = taken.size() > unseen;
    const auto self = weak_from_this().lock();
    taken.clear();
    if (changes)
        didChange();
}

void KWUndoManager::removeAllActions() {
    Stack undo;
    Stack redo;
    std::vector<Entry> running;
    std::vector<Entry> open;
    undo.swap(_undo);
    redo.swap(_redo);
    running.swap(_running.entries);
    open.swap(_open.entries);
    const bool changes = !undo.empty() || !redo.empty();
    const auto self = weak_from_this().lock();
    undo.clear();
    redo.clear();
    running.clear();
    open.clear();
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
    if (!step.isAlive())
        return;
    _undo.push_back(std::move(step));
    didChange();
}

bool KWUndoManager::canRun(const Stack& stack) const {
    return latestAlive(stack) && _level == 0 && _state == State::idle;
}

const KWUndoManager::Step* KWUndoManager::latestAlive(const Stack& stack) {
    const auto found =
        std::find_if(stack.rbegin(), stack.rend(), [](const Step& step) { return step.isAlive(); });
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
    while (!from.back().isAlive()) {
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
        try {
            didChange();
        } catch (...) {
            // The action's own exception says more.
        }
        throw;
    }
    std::string name = std::move(_running.name);
    _running = Step();
    Step inverse = finishRunning();
    inverse.name = std::move(name);
    if (!inverse.entries.empty())
        to.push_back(std::move(inverse));
    dead.clear();
    didChange();
}

void KWUndoManager::runEntries() {
    // One entry at a time is taken out, for an action may remove those that are still to come.
    while (!_running.entries.empty()) {
        const Entry entry = std::move(_running.entries.back());
        _running.entries.pop_back();
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
    const auto step = std::find_if(_undo.rbegin(), _undo.rend(),
                                   [](const Step& candidate) { return candidate.isAlive(); });
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

void KWUndoManager::didChange() {
    const auto self = weak_from_this().lock();
    if (self)
        KWNotificationCenter::defaultCenter().postNotificationNameObject(
            KWUndoManagerDidChangeNotification, this);
}
