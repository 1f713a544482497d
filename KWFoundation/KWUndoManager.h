#pragma once

#include <KWFoundation/KWExport.h>
#include <KWFoundation/KWFirstException.h>
#include <KWFoundation/KWObject.h>

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

/// Posted by an undo manager, with itself as object, whenever its stacks or names change, provided
/// that it lives in a std::shared_ptr.
inline constexpr std::string_view KWUndoManagerDidChangeNotification =
    "KWUndoManagerDidChangeNotification";

/// Keeps the inverses of edits, in steps. An edit registers its inverse as it is made; while a step
/// is being undone, what is registered becomes the step that redoes it, and the other way about.
///
/// Each registration is a step of its own, unless a group is open: everything registered between
/// beginUndoGrouping and its endUndoGrouping is one step. Groups nest; an empty one leaves no step.
class KW_EXPORT KWUndoManager : public KWObject {
  public:
    using Action = std::function<void()>;

    KWUndoManager();
    ~KWUndoManager() override;

    /// Registers the inverse of an edit of `target`, which is kept alive while the action runs and
    /// not otherwise: once it is gone the action is skipped and does not count. Outside an undo or
    /// redo this empties the redo stack. Nothing happens when the target is gone already.
    ///
    /// The action is registered before the observers of this manager are told, and stays so when
    /// one of them throws. After any other exception nothing has changed.
    void registerUndo(std::weak_ptr<KWObject> target, Action action);

    /// The same for an edit that registers its inverse before it is made. What an observer of this
    /// manager throws is kept in `raised`, so that the edit is not left out: it is made, and then
    /// rethrows.
    void registerUndo(std::weak_ptr<KWObject> target, Action action, KWFirstException& raised);

    /// Forgets every action registered for `target`, in both stacks and in open groups.
    void removeAllActionsWithTarget(const KWObject& target);

    void removeAllActions();

    /// A group that an action opens and leaves open is closed with the step.
    void beginUndoGrouping();
    /// std::logic_error when no group is open.
    void endUndoGrouping();
    /// How many groups are open.
    int groupingLevel() const { return _level; }

    /// Whether there is a step with a target alive, no group open, and no undo or redo under way.
    bool canUndo() const;
    bool canRedo() const;

    /// Undoes the latest step, its actions in reverse order; nothing happens when canUndo() is
    /// false. If an action throws, the exception passes through and the step is lost with what has
    /// been registered for its redo; the rest of the stacks stays.
    void undo();
    void redo();

    bool isUndoing() const { return _state == State::undoing; }
    bool isRedoing() const { return _state == State::redoing; }

    /// Names the group that is open, or the latest step when none is: the text that a menu shows
    /// behind "Undo". A step's redo has its name, and so nothing is named while a step runs.
    void setActionName(std::string name);
    /// The name of the step that undo() would undo now; "" when there is none.
    std::string undoActionName() const;
    std::string redoActionName() const;

    // The names of all steps that can be undone, the latest first, and of those that can be redone,
    // the next first: what a history shows. Empty while a group is open or a step runs.

    std::vector<std::string> undoActionNames() const;
    std::vector<std::string> redoActionNames() const;

    /// Names the state that the steps have led to: each new step leads to a number not used before,
    /// undo and redo bring numbers back. A document that remembers the one it was saved at knows
    /// when it is there again. A step counts once its group is closed; edits that register nothing
    /// are not seen.
    std::uint64_t stateIdentifier() const;

  private:
    struct Entry {
        std::weak_ptr<KWObject> target;
        Action action;
    };
    /// A list whose first entry, mostly the only one, needs no memory of its own.
    class Entries {
      public:
        bool empty() const { return !_first.action; }
        void push_back(Entry entry);
        Entry takeBack();
        bool isAlive() const;
        void takeThoseOf(const KWObject& target, std::vector<Entry>& taken);

      private:
        Entry _first; ///< without an action in an empty list
        std::vector<Entry> _others;
    };
    struct Step {
        Entries entries;
        std::string name;
        std::uint64_t state = 0; ///< where it leads to when it is made or redone
    };
    using Stack = std::vector<Step>;
    enum class State { idle, undoing, redoing };

    static const Step* latestAlive(const Stack& stack);
    bool canRun(const Stack& stack) const;
    std::vector<std::string> namesOf(const Stack& stack) const;
    void run(Stack& from, Stack& to, State state);
    void runEntries();
    Step finishRunning();
    void pushNew(Step step);
    void setStateIdentifier(std::uint64_t state);
    void didChange();

    Stack _undo;
    Stack _redo;
    Step _open;    ///< what is being registered: the open group, or the inverse of what runs
    Step _running; ///< what is left of the step under way
    int _level = 0;
    State _state = State::idle;
    std::uint64_t _firstState = 0; ///< the one with nothing to undo
    std::uint64_t _lastState = 0;  ///< the latest number given
};
