#include <KWBase/KWKeyFramedChannel.h>
#include <KWFoundation/KWArchiveError.h>
#include <KWFoundation/KWFile.h>

#include <apps/common/KWConversionLosses.h>
#include <apps/kwedit/KWEditDocument.h>

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <algorithm>

// The file, what is modified, and the copy for the case of a crash. KWEditDocumentEdits.cpp has the
// edits.

namespace {

std::filesystem::path systemPath(const QString& path) {
    return QFile::encodeName(path).toStdString();
}

bool fail(QString* error, const QString& text) {
    if (error)
        *error = text;
    return false;
}

/// Also for somebody who may write everything: a file that nobody may write is meant to stay.
bool isProtected(const QString& path) {
    const QFileInfo info(path);
    constexpr auto anyWrite = QFile::WriteOwner | QFile::WriteGroup | QFile::WriteOther;
    return !info.isWritable() || !(info.permissions() & anyWrite);
}

std::unique_ptr<KWDocument> newModel() {
    auto model = std::make_unique<KWDocument>();
    const auto stage = std::make_shared<KWElement>(KWEditDocument::tr("Stage").toStdString());
    KWStage settings;
    settings.backdrop = KWStage::Backdrop::plain;
    stage->setAttributes(settings.appliedTo(*stage));
    model->addElement(stage);
    return model;
}

} // namespace

KWEditDocument::KWEditDocument(QObject* parent)
    : QObject(parent), _autosaveFolder(KWEditAutosave::defaultFolder()) {
    _autosaveTimer.setSingleShot(true);
    setAutosaveDelay(20'000);
    connect(&_autosaveTimer, &QTimer::timeout, this, [this] { autosave(); });
    _channelChanges = KWNotificationCenter::defaultCenter().addObserver(
        KWChannelChangedNotification, nullptr,
        [this](const KWNotification& notice) { channelDidChange(notice); });
    take(newModel());
}

KWEditDocument::~KWEditDocument() {
    forgetAutosave();
}

// --- What is open.

void KWEditDocument::take(std::unique_ptr<KWDocument> model) {
    forgetAutosave();
    _hasAutosaveFailed = false;
    _undoTarget = std::make_shared<KWObject>();
    _foreign.clear(); // before the document that they edit
    _model = std::move(model);
    standInForOthers();
    _managerChanges = KWNotificationCenter::defaultCenter().addObserver(
        KWUndoManagerDidChangeNotification, undoManager().get(),
        [this](const KWNotification&) { managerDidChange(); });
    markSaved();
}

void KWEditDocument::standInForOthers() {
    const auto& elements = _model->elements();
    for (std::size_t index = 0; index < elements.size(); ++index) {
        const bool isOurs = std::dynamic_pointer_cast<KWElement>(elements[index].object) != nullptr;
        if (!isOurs)
            _foreign.push_back(std::make_shared<KWForeignElement>(*_model, index));
    }
}

std::vector<std::shared_ptr<KWChannelElement>> KWEditDocument::channelElements() const {
    std::vector<std::shared_ptr<KWChannelElement>> shown;
    for (const auto& element : _model->elements()) {
        if (auto ours = std::dynamic_pointer_cast<KWElement>(element.object)) {
            shown.push_back(std::move(ours));
            continue;
        }
        const auto found =
            std::find_if(_foreign.begin(), _foreign.end(),
                         [&element](const auto& foreign) { return foreign->standsFor(element); });
        if (found != _foreign.end())
            shown.push_back(*found);
    }
    return shown;
}

void KWEditDocument::setFile(const QString& path, Form form, bool isReadOnly) {
    _filePath = path.isEmpty() ? QString() : QFileInfo(path).absoluteFilePath();
    _form = form;
    _isReadOnly = isReadOnly;
    noteFileStamp();
    Q_EMIT fileChanged();
}

void KWEditDocument::startNew() {
    take(newModel());
    setFile({}, Form::binary, false);
    Q_EMIT replaced();
}

bool KWEditDocument::open(const QString& path, QString* error, Access access) {
    try {
        auto model = std::make_unique<KWDocument>(KWDocument::open(systemPath(path)));
        const Form form = model->form();
        take(std::move(model));
        setFile(path, form, access == Access::readOnly || isProtected(path));
    } catch (const std::exception& failure) {
        return fail(error, QString::fromUtf8(failure.what()));
    }
    Q_EMIT replaced();
    return true;
}

// --- Saving.

bool KWEditDocument::writeTo(const QString& path, Form form, QString* error) const {
    try {
        const KWConversionLosses losses = kwConversionLosses(*_model, form);
        if (!losses.refusals.empty())
            return fail(error, tr("%1: it cannot be written in this form: %2")
                                   .arg(path, QString::fromStdString(losses.refusals.front())));
        KWWriteFileAtomically(systemPath(path), _model->data(form));
        return true;
    } catch (const std::exception& failure) {
        return fail(error, QString::fromUtf8(failure.what()));
    }
}

bool KWEditDocument::save(QString* error, bool replacesChanged) {
    if (_filePath.isEmpty())
        return fail(error, tr("the document has no file yet"));
    if (_isReadOnly)
        return fail(error, tr("%1: the document is read-only").arg(_filePath));
    if (!replacesChanged && hasFileChanged())
        return fail(error, tr("%1: another program has changed the file").arg(_filePath));
    if (!writeTo(_filePath, _form, error))
        return false;
    noteFileStamp();
    markSaved();
    return true;
}

bool KWEditDocument::saveAs(const QString& path, Form form, QString* error) {
    if (!writeTo(path, form, error))
        return false;
    setFile(path, form, false);
    markSaved();
    return true;
}

bool KWEditDocument::saveCopy(const QString& path, Form form, QString* error) const {
    return writeTo(path, form, error);
}

QString KWEditDocument::folder() const {
    return _filePath.isEmpty() ? QDir::currentPath() : QFileInfo(_filePath).absolutePath();
}

QString KWEditDocument::fileName() const {
    return QFileInfo(_filePath).fileName();
}

KWEditDocument::FileStamp KWEditDocument::stampOf(const QString& path) {
    const QFileInfo info(path);
    if (path.isEmpty() || !info.exists())
        return {};
    return {info.size(), info.lastModified().toMSecsSinceEpoch()};
}

void KWEditDocument::noteFileStamp() {
    _stamp = stampOf(_filePath);
}

bool KWEditDocument::hasFileChanged() const {
    const FileStamp now = stampOf(_filePath);
    // One that is gone is simply written anew.
    return now.size >= 0 && now != _stamp;
}

QStringList KWEditDocument::lossesIn(Form form) const {
    QStringList lines;
    const KWConversionLosses losses = kwConversionLosses(*_model, form);
    for (const auto* list : {&losses.refusals, &losses.losses})
        for (const std::string& line : *list)
            lines << QString::fromStdString(line);
    return lines;
}

QString KWEditDocument::formName(Form form) {
    return form == Form::xml          ? QStringLiteral("xml")
           : form == Form::sequential ? QStringLiteral("sequential")
                                      : QStringLiteral("binary");
}

KWEditDocument::Form KWEditDocument::formNamed(const QString& name) {
    for (const Form form : {Form::xml, Form::sequential})
        if (name == formName(form))
            return form;
    return Form::binary;
}

std::shared_ptr<const KWDocument> KWEditDocument::snapshot() const {
    return std::make_shared<KWDocument>(
        KWDocument::read(_model->data(_model->form()), _filePath.toStdString()));
}

// --- What is modified.

void KWEditDocument::markSaved() {
    _savedState = undoManager()->stateIdentifier();
    _savedEdits = _unregisteredEdits;
    forgetAutosave();
    updateModified();
}

void KWEditDocument::updateModified() {
    const bool isModified =
        undoManager()->stateIdentifier() != _savedState || _unregisteredEdits != _savedEdits;
    if (isModified != _isModified) {
        _isModified = isModified;
        Q_EMIT modifiedChanged(isModified);
    }
    if (!_isModified)
        forgetAutosave();
}

void KWEditDocument::managerDidChange() {
    updateModified();
    if (_isModified && !_autosaveTimer.isActive())
        _autosaveTimer.start();
    Q_EMIT structureChanged();
}

bool KWEditDocument::isOfThisDocument(const KWChannel& channel) const {
    return channel.undoManager() == undoManager().get();
}

/// Keyframed channels register the inverse of each edit, or have it bracketed by someone who does;
/// a drag that is taken back ends with notices and no step. Of the others most edits register by
/// the time that the event loop runs again. One that has not by then will not, unless it is still
/// under way. What is undone leads to a state that has a name.
void KWEditDocument::channelDidChange(const KWNotification& notice) {
    auto channel = std::dynamic_pointer_cast<KWChannel>(
        notice.object() ? notice.object()->weak_from_this().lock() : nullptr);
    if (!channel || !isOfThisDocument(*channel))
        return;
    const bool isReplayed = undoManager()->isUndoing() || undoManager()->isRedoing();
    const bool registers = dynamic_cast<const KWKeyFramedChannel*>(channel.get()) != nullptr;
    if (!_isCheckPending && !isReplayed && !registers) {
        _isCheckPending = true;
        _stateAtNotice = undoManager()->stateIdentifier();
        QTimer::singleShot(0, this, [this, channel, manager = undoManager()] {
            _isCheckPending = false;
            if (manager == undoManager() && manager->stateIdentifier() == _stateAtNotice &&
                manager->groupingLevel() == 0 && !channel->isManipulating())
                noteEdit();
        });
    }
    Q_EMIT channelChanged(channel);
}

void KWEditDocument::noteEdit() {
    ++_unregisteredEdits;
    updateModified();
    if (!_autosaveTimer.isActive())
        _autosaveTimer.start();
}

// --- The copy.

void KWEditDocument::setAutosaveFolder(const QString& folder) {
    forgetAutosave();
    _autosaveFolder = folder;
    if (_isModified)
        _autosaveTimer.start();
}

void KWEditDocument::setAutosaveDelay(int milliseconds) {
    // What it takes to write a large document comes on top, and a minute is what may be lost.
    _autosaveTimer.setInterval(std::clamp(milliseconds, 1, 50'000));
}

bool KWEditDocument::autosave(QString* error) {
    _autosaveTimer.stop();
    if (!_isModified || _autosaveFolder.isEmpty())
        return true;
    QString reason;
    if (!_autosave)
        _autosave = KWEditAutosave::create(_autosaveFolder, &reason);
    try {
        if (_autosave &&
            _autosave->write(_model->data(_model->form()), _filePath, formName(_form), &reason))
            return true;
    } catch (const std::exception& failure) {
        reason = QString::fromUtf8(failure.what());
    }
    if (!_hasAutosaveFailed)
        Q_EMIT autosaveFailed(reason);
    _hasAutosaveFailed = true;
    return fail(error, reason);
}

void KWEditDocument::forgetAutosave() {
    _autosaveTimer.stop();
    if (_autosave)
        _autosave->remove();
    _autosave.reset();
}

bool KWEditDocument::recover(const KWEditAutosave::Leftover& leftover, QString* error) {
    std::unique_ptr<KWDocument> model;
    try {
        model = std::make_unique<KWDocument>(KWDocument::open(systemPath(leftover.file->path())));
    } catch (const std::exception& failure) {
        return fail(error, QString::fromUtf8(failure.what()));
    }
    take(std::move(model));
    setFile(leftover.documentPath, formNamed(leftover.documentForm),
            QFileInfo::exists(leftover.documentPath) && isProtected(leftover.documentPath));
    _autosave = leftover.file;
    ++_unregisteredEdits;
    updateModified();
    Q_EMIT replaced();
    return true;
}
