#pragma once

#include <KWFoundation/KWExport.h>
#include <KWFoundation/KWNotificationCenter.h>
#include <KWFoundation/KWUndoManager.h>

#include <QUndoStack>
#include <memory>

/// Shows an undo manager as a QUndoStack, to be handed to what Qt has for one: actions made by
/// createUndoAction() and createRedoAction(), a QUndoGroup, a host's own menu. It keeps no history:
/// it has at most two commands, the step that the manager would undo next and the one that it would
/// redo next, under their action names, and undo() and redo() are the manager's.
///
/// While an undo group of the manager is open, what stands there stays; undo() then does nothing.
/// It is clean until the manager changes, and again from setClean() to the next change: whether an
/// undo leads back to a clean state the manager does not know. Commands of the host's own have no
/// place here: one that is pushed runs and is dropped.
class KW_EXPORT KWUndoStackAdapter : public QUndoStack {
    Q_OBJECT

  public:
    /// std::invalid_argument for null.
    explicit KWUndoStackAdapter(std::shared_ptr<KWUndoManager> manager, QObject* parent = nullptr);
    ~KWUndoStackAdapter() override;

    const std::shared_ptr<KWUndoManager>& undoManager() const { return _manager; }

    /// Reads the manager again. Needed only when the targets of steps have gone away, of which the
    /// manager gives no notice.
    Q_SLOT void refresh();

  private:
    class Command;
    struct Shown {
        bool canUndo = false;
        bool canRedo = false;
        QString undoText;
        QString redoText;
        bool operator==(const Shown&) const = default;
    };

    void managerDidChange();
    void run(void (KWUndoManager::*step)());
    Shown wanted() const;
    void show(const Shown& wanted);

    const std::shared_ptr<KWUndoManager> _manager;
    KWNotificationToken _changes;
    Shown _shown;
    int _underWay = 0; ///< commands that Qt is undoing or redoing
    bool _showing = false;
};
