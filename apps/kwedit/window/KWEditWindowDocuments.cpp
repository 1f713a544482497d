#include <apps/kwedit/window/KWEditCurvesPane.h>
#include <apps/kwedit/window/KWEditStageView.h>
#include <apps/kwedit/window/KWEditWindow.h>

#include <QCloseEvent>
#include <QDir>
#include <QDragEnterEvent>
#include <QFileInfo>
#include <QMimeData>

// Opening, saving and closing.

namespace {

bool isDocument(const QString& path) {
    static const QStringList endings{QStringLiteral("kwdoc"), QStringLiteral("xml"),
                                     QStringLiteral("plist"), QStringLiteral("typedstream")};
    return endings.contains(QFileInfo(path).suffix().toLower());
}

QStringList pathsOf(const QMimeData& data) {
    QStringList paths;
    const QList<QUrl> urls = data.urls();
    for (const QUrl& url : urls)
        if (url.isLocalFile())
            paths << url.toLocalFile();
    return paths;
}

} // namespace

QString KWEditSurroundings::autosaveFolder() const {
    return settings.value(QStringLiteral("autosave/folder"), KWEditAutosave::defaultFolder())
        .toString();
}

bool KWEditWindow::isUntouched() const {
    const KWEditDocument& document = _session.document();
    return document.filePath().isEmpty() && !document.isModified() && !document.canRedo();
}

bool KWEditWindow::open(const QString& path) {
    QString error;
    _curves->prepareForNewDocument();
    if (!_session.document().open(path, &error)) {
        complain(tr("%1 cannot be opened.").arg(QFileInfo(path).fileName()), error);
        if (!QFileInfo::exists(path))
            _around.recentFiles.remove(path);
        return false;
    }
    _around.recentFiles.add(_session.document().filePath());
    _session.refresh();
    _curves->editFirstCurve();
    if (_session.document().model().channels().empty() &&
        _session.document().channelElements().empty())
        tell(tr("There is nothing in this archive that kwedit knows."));
    else if (_session.document().isReadOnly())
        tell(tr("The file is read-only: save the document under another name to keep changes."));
    return true;
}

bool KWEditWindow::recover(const KWEditAutosave::Leftover& leftover) {
    QString error;
    _curves->prepareForNewDocument();
    if (_session.document().recover(leftover, &error)) {
        _session.refresh();
        _curves->editFirstCurve();
        tell(tr("Recovered. Save the document to keep it."));
        return true;
    }
    complain(tr("The copy of a document cannot be opened."), error);
    return false;
}

void KWEditWindow::openFiles(const QStringList& paths) {
    for (const QString& path : paths) {
        if (isUntouched())
            open(path);
        else
            _around.openWindow(path);
    }
}

bool KWEditWindow::save() {
    KWEditDocument& document = _session.document();
    if (document.filePath().isEmpty() || document.isReadOnly())
        return saveAs();
    bool replacesChanged = false;
    if (document.hasFileChanged()) {
        if (!_around.questions.mayGoOn(
                this, tr("Another program has changed %1.").arg(document.fileName()),
                tr("Saving replaces what it has written."), tr("Save Anyway")))
            return false;
        replacesChanged = true;
    }
    QString error;
    if (!document.save(&error, replacesChanged)) {
        complain(tr("%1 cannot be saved.").arg(document.fileName()), error);
        return false;
    }
    _around.recentFiles.add(document.filePath());
    tell(tr("Saved."));
    return true;
}

bool KWEditWindow::confirmLosses(KWEditDocument::Form form) {
    const QStringList losses = _session.document().lossesIn(form);
    return losses.isEmpty() ||
           _around.questions.mayGoOn(this, tr("In this form the document loses something."),
                                     losses.mid(0, 10).join(QLatin1Char('\n')), tr("Save Anyway"));
}

bool KWEditWindow::writeTo(const KWEditQuestions::Target& target, bool isCopy) {
    KWEditDocument& document = _session.document();
    QString error;
    if (!confirmLosses(target.form))
        return false;
    const bool isWritten = isCopy ? document.saveCopy(target.path, target.form, &error)
                                  : document.saveAs(target.path, target.form, &error);
    if (!isWritten) {
        complain(tr("%1 cannot be saved.").arg(QFileInfo(target.path).fileName()), error);
        return false;
    }
    if (!isCopy)
        _around.recentFiles.add(document.filePath());
    tell(isCopy ? tr("Saved a copy as %1.").arg(QDir::toNativeSeparators(target.path))
                : tr("Saved."));
    return true;
}

bool KWEditWindow::saveAs() {
    const KWEditDocument& document = _session.document();
    const QString path =
        document.filePath().isEmpty()
            ? QDir(document.folder()).filePath(tr("Untitled") + QStringLiteral(".kwdoc"))
            : document.filePath();
    const auto target = _around.questions.whereToSave(this, tr("Save As"), path, document.form());
    return target && writeTo(*target, false);
}

bool KWEditWindow::saveCopy() {
    const KWEditDocument& document = _session.document();
    const auto target = _around.questions.whereToSave(this, tr("Save a Copy"), document.filePath(),
                                                      document.form());
    return target && writeTo(*target, true);
}

bool KWEditWindow::revert() {
    const QString path = _session.document().filePath();
    if (path.isEmpty() ||
        !_around.questions.mayGoOn(this, tr("Go back to the saved document?"),
                                   tr("Every change since then is lost."), tr("Revert")))
        return false;
    return open(path);
}

bool KWEditWindow::mayClose() {
    if (!_session.document().isModified())
        return true;
    const QString name = _session.document().fileName().isEmpty() ? tr("this document")
                                                                  : _session.document().fileName();
    switch (_around.questions.whatOfUnsaved(this, name)) {
    case KWEditQuestions::Unsaved::save:
        return save();
    case KWEditQuestions::Unsaved::discard:
        return true;
    case KWEditQuestions::Unsaved::cancel:
        break;
    }
    return false;
}

void KWEditWindow::closeEvent(QCloseEvent* event) {
    _stage->cancelGesture();
    if (!mayClose())
        return event->ignore();
    writeSettings();
    event->accept();
}

// --- Files from elsewhere: documents are opened, everything else becomes sprites.

void KWEditWindow::dragEnterEvent(QDragEnterEvent* event) {
    if (!pathsOf(*event->mimeData()).isEmpty())
        event->acceptProposedAction();
}

void KWEditWindow::dropEvent(QDropEvent* event) {
    const QStringList paths = pathsOf(*event->mimeData());
    event->acceptProposedAction();
    QStringList documents;
    QStringList contents;
    for (const QString& path : paths)
        (isDocument(path) ? documents : contents) << path;
    openFiles(documents);
    addFiles(contents);
}
