#include <KWDesktop/KWUndoStackAdapter.h>
#include <KWFoundation/KWLog.h>

#include <exception>
#include <stdexcept>
#include <string>

class KWUndoStackAdapter::Command final : public QUndoCommand {
  public:
    Command(KWUndoStackAdapter& adapter, const QString& name)
        : QUndoCommand(name), _adapter(adapter) {}

    void undo() override { _adapter.run(&KWUndoManager::undo); }
    void redo() override { _adapter.run(&KWUndoManager::redo); }

  private:
    KWUndoStackAdapter& _adapter;
};

KWUndoStackAdapter::KWUndoStackAdapter(std::shared_ptr<KWUndoManager> manager, QObject* parent)
    : QUndoStack(parent), _manager(std::move(manager)) {
    if (!_manager)
        throw std::invalid_argument("an undo stack adapter needs an undo manager");
    _changes = KWNotificationCenter::defaultCenter().addObserver(
        KWUndoManagerDidChangeNotification, _manager.get(),
        [this](const KWNotification&) { managerDidChange(); });
    // Qt's own operations cannot be overridden, but all of them end with this signal.
    connect(this, &QUndoStack::indexChanged, this, &KWUndoStackAdapter::refresh);
    refresh();
    setClean();
}

KWUndoStackAdapter::~KWUndoStackAdapter() {
    // Qt's part of this clears itself and signals it, when this part is gone.
    disconnect(this, &QUndoStack::indexChanged, this, &KWUndoStackAdapter::refresh);
}

void KWUndoStackAdapter::managerDidChange() {
    resetClean();
    refresh();
}

void KWUndoStackAdapter::refresh() {
    // Not while Qt holds one of the commands.
    if (_underWay == 0 && !_showing)
        show(wanted());
}

/// Runs a step for one of Qt's commands.
void KWUndoStackAdapter::run(void (KWUndoManager::*step)()) {
    if (_showing)
        return;
    ++_underWay;
    try {
        (*_manager.*step)();
    } catch (const std::exception& exception) {
        KWLog(std::string("A step could not be undone or redone: ") + exception.what());
    } catch (...) {
        KWLog("A step could not be undone or redone");
    }
    --_underWay;
    // An undo from within an undo leaves Qt with nothing to signal.
    QMetaObject::invokeMethod(this, &KWUndoStackAdapter::refresh, Qt::QueuedConnection);
}

KWUndoStackAdapter::Shown KWUndoStackAdapter::wanted() const {
    Shown wanted;
    if (_manager->groupingLevel() > 0) {
        // The manager cannot undo right now, and will be able to as before.
        wanted = _shown;
    } else {
        wanted.canUndo = _manager->canUndo();
        wanted.canRedo = _manager->canRedo();
        wanted.undoText = QString::fromStdString(_manager->undoActionName());
        wanted.redoText = QString::fromStdString(_manager->redoActionName());
    }
    return wanted;
}

void KWUndoStackAdapter::show(const Shown& wanted) {
    const int wantedCount = int{wanted.canUndo} + int{wanted.canRedo};
    if (wanted == _shown && count() == wantedCount && index() == int{wanted.canUndo})
        return;
    const bool wasClean = isClean();
    _shown = wanted;
    _showing = true;
    const bool wereBlocked = blockSignals(true);
    clear();
    if (wanted.canUndo)
        push(new Command(*this, wanted.undoText));
    if (wanted.canRedo) {
        push(new Command(*this, wanted.redoText));
        setIndex(int{wanted.canUndo});
    }
    if (wasClean)
        setClean();
    else
        resetClean();
    blockSignals(wereBlocked);
    _showing = false;
    Q_EMIT indexChanged(index());
    Q_EMIT canUndoChanged(canUndo());
    Q_EMIT undoTextChanged(undoText());
    Q_EMIT canRedoChanged(canRedo());
    Q_EMIT redoTextChanged(redoText());
}
