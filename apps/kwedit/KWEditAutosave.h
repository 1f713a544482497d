#pragma once

#include <KWFoundation/KWTypes.h>

#include <QDateTime>
#include <QList>
#include <QString>
#include <memory>

/// The file in which a document that has not been saved lies meanwhile, in a folder of the user's
/// own, with a note of which document it is. It is locked for as long as this object lives, so that
/// files whose process has gone can be told from those of one that runs, on the same machine.
class KWEditAutosave {
  public:
    /// What a process that is gone has left.
    struct Leftover {
        QString documentPath; ///< "" for a document that was never saved
        QString documentForm; ///< as KWEditDocument::formName() spells it
        QDateTime time;       ///< of the copy
        /// Holds the lock: as long as it lives no other process offers the same.
        std::shared_ptr<KWEditAutosave> file;
    };

    /// $XDG_STATE_HOME/kwedit/autosave, or that below ~/.local/state.
    static QString defaultFolder();

    /// A file of its own in the folder, which is made where it is not there. Null, and the reason,
    /// when that cannot be done.
    static std::shared_ptr<KWEditAutosave> create(const QString& folder, QString* error);
    /// What lies there and belongs to nobody, the newest first. Files that are not whole are
    /// removed.
    static QList<Leftover> leftovers(const QString& folder);

    /// The copy stays where it has not been removed.
    ~KWEditAutosave();
    KWEditAutosave(const KWEditAutosave&) = delete;
    KWEditAutosave& operator=(const KWEditAutosave&) = delete;

    const QString& path() const { return _path; }
    /// Puts the bytes in the file's place, whole or not at all. False, and the reason, on failure.
    bool write(const KWData& bytes, const QString& documentPath, const QString& documentForm,
               QString* error);
    /// Takes the copy away; another may be written later.
    void remove();

  private:
    KWEditAutosave(QString path, int lock);

    QString _path;
    int _lock;
};
