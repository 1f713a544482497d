#pragma once

#include <KWFoundation/KWNotificationCenter.h>

#include <apps/common/KWDocument.h>
#include <apps/kwedit/KWEditAutosave.h>
#include <apps/kwedit/KWForeignElement.h>
#include <apps/kwedit/KWSprite.h>

#include <QDateTime>
#include <QObject>
#include <QStringList>
#include <QTimer>
#include <functional>
#include <memory>

/// The document of an editor's window: a KWDocument with its file, its undo, its copy for the case
/// of a crash, and signals. What goes wrong is answered as one sentence that names the file, and
/// leaves everything as it was, the file too.
///
/// Edits made through this class can be undone and redone under their names. Edits of channels made
/// elsewhere take part by their owners' undo manager, which is undoManager().
class KWEditDocument : public QObject {
    Q_OBJECT
    Q_PROPERTY(bool modified READ isModified NOTIFY modifiedChanged)
    Q_PROPERTY(QString filePath READ filePath NOTIFY fileChanged)

  public:
    using Form = KWDocument::Form;
    enum class Access { asTheFileAllows, readOnly };

    /// A new document: an empty stage.
    explicit KWEditDocument(QObject* parent = nullptr);
    /// Takes the copy with it: who wants to keep the changes saves.
    ~KWEditDocument() override;

    // --- The file.

    void startNew();
    /// In place of what is open. On failure that stays, and false is answered.
    bool open(const QString& path, QString* error = nullptr,
              Access access = Access::asTheFileAllows);
    /// In the form it has. False without a file, for one that is read-only, and when another
    /// program has changed the file since, unless `replacesChanged`.
    bool save(QString* error = nullptr, bool replacesChanged = false);
    /// The document then is this file, with write access, in this form.
    bool saveAs(const QString& path, Form form, QString* error = nullptr);
    /// A copy elsewhere; nothing changes here.
    bool saveCopy(const QString& path, Form form, QString* error = nullptr) const;

    /// Absolute; "" for a new document.
    const QString& filePath() const { return _filePath; }
    /// Where relative names of content start from: the file's folder, or the current one.
    QString folder() const;
    /// The file's name without its folders; "" for a new document.
    QString fileName() const;
    Form form() const { return _form; }
    bool isReadOnly() const { return _isReadOnly; }
    bool hasFileChanged() const;
    /// What this document would lose in that form; empty for nothing.
    QStringList lossesIn(Form form) const;

    /// "binary", "xml" or "sequential".
    static QString formName(Form form);
    static Form formNamed(const QString& name);

    // --- The contents.

    KWDocument& model() { return *_model; }
    const KWDocument& model() const { return *_model; }
    /// As it is now, for another thread: sharing nothing with this one. KWArchiveError when it
    /// cannot be archived.
    std::shared_ptr<const KWDocument> snapshot() const;
    /// The element that is the stage; null for none.
    std::shared_ptr<KWElement> stageElement() const;
    /// The elements that have channels to edit, in the document's order: its own and, for what
    /// other programs keep channels in, a stand-in, by which those are edited with undo as well.
    std::vector<std::shared_ptr<KWChannelElement>> channelElements() const;
    KWStage stage() const { return KWStage::of(stageElement().get()); }

    // --- Undo.

    const std::shared_ptr<KWUndoManager>& undoManager() const { return _model->undoManager(); }
    /// Whether there is anything that the file has not. Undoing and redoing to where it was saved
    /// leads back.
    bool isModified() const { return _isModified; }
    bool canUndo() const { return undoManager()->canUndo(); }
    bool canRedo() const { return undoManager()->canRedo(); }
    QString undoName() const;
    QString redoName() const;
    void undo() { undoManager()->undo(); }
    void redo() { undoManager()->redo(); }

    /// All edits while it lives are one step. Steps nest; the outermost gives the name.
    class Step {
      public:
        Step(KWEditDocument& document, const QString& name);
        ~Step();
        Step(const Step&) = delete;
        Step& operator=(const Step&) = delete;

      private:
        std::shared_ptr<KWUndoManager> _manager;
    };

    /// Makes an edit that can be undone: `change` now and to redo it, `inverse` to undo it. Both
    /// keep what they need alive.
    void perform(const QString& name, std::function<void()> change, std::function<void()> inverse);

    // --- Edits. Each is a step under its name. Those of elements do nothing, and answer nothing,
    // where the document's root is no list, or the element or channel is not in it.

    bool takesElements() const { return _model->takesElements(); }
    /// Behind all others without an index.
    std::shared_ptr<KWElement> addElement(const QString& name,
                                          const KWElement::Attributes& attributes = {},
                                          std::size_t index = KWNotFound);
    /// An element with position, rotation, scale and opacity, ready to be moved.
    std::shared_ptr<KWElement> addSprite(const QString& name, const KWSpriteContent& content);
    bool removeElement(const std::shared_ptr<KWElement>& element);
    /// Before the one that stands at `index` now.
    bool moveElement(const std::shared_ptr<KWElement>& element, std::size_t index);
    void renameElement(const std::shared_ptr<KWElement>& element, const QString& name);
    void setAttributes(const std::shared_ptr<KWElement>& element,
                       const KWElement::Attributes& attributes, const QString& stepName);
    void setContent(const std::shared_ptr<KWElement>& element, const KWSpriteContent& content);
    /// Makes the stage's element where there is none.
    void setStage(const KWStage& stage);
    /// Behind the others of the group, which is made where there is none; "" for no group.
    bool addChannel(const std::shared_ptr<KWElement>& element,
                    const std::shared_ptr<KWChannel>& channel, const QString& group = {});
    bool removeChannel(const std::shared_ptr<KWElement>& element,
                       const std::shared_ptr<KWChannel>& channel);
    void renameChannel(const std::shared_ptr<KWChannel>& channel, const QString& name);
    /// For an edit that registers nothing to be undone: the document is modified until it is saved.
    void noteEdit();

    // --- The copy for the case of a crash.

    /// Where copies go; the user's own folder at first. "" for none.
    void setAutosaveFolder(const QString& folder);
    /// How long after a change its copy is made, in milliseconds; 20 s at first, a minute at most.
    void setAutosaveDelay(int milliseconds);
    /// Writes the copy now when there is anything to write. False on failure.
    bool autosave(QString* error = nullptr);
    /// Opens what a crash has left, as the modified document it was. The file it came from is
    /// untouched, and the copy stays until this is saved or closed.
    bool recover(const KWEditAutosave::Leftover& leftover, QString* error = nullptr);

  Q_SIGNALS:
    /// Another document is open: everything is new.
    void replaced();
    /// Elements, attributes, names or which channels there are may have changed, or the steps that
    /// can be undone.
    void structureChanged();
    /// A channel's value is about to change; read it later.
    void channelChanged(const std::shared_ptr<KWChannel>& channel);
    void modifiedChanged(bool isModified);
    /// Path, form or access.
    void fileChanged();
    /// Once for each document.
    void autosaveFailed(const QString& reason);

  private:
    void take(std::unique_ptr<KWDocument> model);
    void setFile(const QString& path, Form form, bool isReadOnly);
    void noteFileStamp();
    bool writeTo(const QString& path, Form form, QString* error) const;
    void managerDidChange();
    void channelDidChange(const KWNotification& notice);
    void updateModified();
    void markSaved();
    void forgetAutosave();
    bool isOfThisDocument(const KWChannel& channel) const;
    void standInForOthers();

    std::unique_ptr<KWDocument> _model;
    std::vector<std::shared_ptr<KWForeignElement>> _foreign; ///< by the index of their element
    std::shared_ptr<KWObject> _undoTarget; ///< lives as long as the document that is open
    KWNotificationToken _managerChanges;
    KWNotificationToken _channelChanges;

    QString _filePath;
    Form _form = Form::binary;
    bool _isReadOnly = false;
    struct FileStamp {
        qint64 size = -1;
        qint64 time = 0;
        bool operator==(const FileStamp&) const = default;
    };
    FileStamp _stamp;
    static FileStamp stampOf(const QString& path);

    bool _isModified = false;
    std::uint64_t _savedState = 0;
    std::uint64_t _unregisteredEdits = 0;
    std::uint64_t _savedEdits = 0;
    bool _isCheckPending = false;
    std::uint64_t _stateAtNotice = 0;

    QString _autosaveFolder;
    QTimer _autosaveTimer;
    std::shared_ptr<KWEditAutosave> _autosave;
    bool _hasAutosaveFailed = false;
};
