#include <KWBase/KWChannelView.h>

#include <apps/kwedit/window/KWEditCurvesPane.h>
#include <apps/kwedit/window/KWEditIcons.h>
#include <apps/kwedit/window/KWEditOutlinePane.h>
#include <apps/kwedit/window/KWEditStageView.h>
#include <apps/kwedit/window/KWEditWindow.h>
#include <apps/kwedit/window/KWElementInspector.h>
#include <apps/kwedit/window/KWHistoryPanel.h>
#include <apps/kwedit/window/KWInspectorPanel.h>
#include <apps/kwedit/window/KWTour.h>
#include <apps/kwedit/window/KWTransportBar.h>

#include <QAbstractButton>
#include <QAbstractItemView>
#include <QAbstractSpinBox>
#include <QApplication>
#include <QComboBox>
#include <QFileInfo>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QMenuBar>
#include <QScreen>
#include <QStatusBar>
#include <QTimer>

// What the window is made of, and what it shows of the state. The commands are in
// KWEditWindowCommands.cpp, the documents in KWEditWindowDocuments.cpp.

KWEditWindow::KWEditWindow(KWEditSurroundings& surroundings)
    : _around(surroundings), _commands(new KWEditCommands(*this)) {
    setObjectName(QStringLiteral("window"));
    setAttribute(Qt::WA_DeleteOnClose);
    QIcon icon(QStringLiteral(":/kwedit/kwedit-48.png"));
    icon.addFile(QStringLiteral(":/kwedit/kwedit-256.png"));
    setWindowIcon(icon);
    setAcceptDrops(true);
    setUnifiedTitleAndToolBarOnMac(true);
    makePanes();
    makeStatusBar();
    _commands->fill(*menuBar());
    connectFileCommands();
    connectEditCommands();
    connectElementCommands();
    connectKeyCommands();
    connectViewCommands();
    connectPlayCommands();
    connectHelpCommands();
    connectSession();
    _session.document().setAutosaveFolder(_around.autosaveFolder());
    qApp->installEventFilter(this);
    readSettings();
    updateTitle();
    updateCommands();
}

KWEditWindow::~KWEditWindow() {
    qApp->removeEventFilter(this);
    // The panes speak with the session as they go.
    delete _curves;
    delete takeCentralWidget();
}

void KWEditWindow::makePanes() {
    QAction* const elementActions[] = {
        _commands->action("element.add"),        _commands->action("element.addFiles"),
        _commands->action("element.addChannel"), _commands->action("element.rename"),
        _commands->action("element.raise"),      _commands->action("element.lower"),
        _commands->action("element.remove")};
    const std::pair<const char*, KWEditIcon> icons[] = {
        {"element.add", KWEditIcon::add},          {"element.addFiles", KWEditIcon::picture},
        {"element.addChannel", KWEditIcon::curve}, {"element.rename", KWEditIcon::rename},
        {"element.raise", KWEditIcon::moveDown},   {"element.lower", KWEditIcon::moveUp},
        {"element.remove", KWEditIcon::trash}};
    for (const auto& [id, icon] : icons)
        _commands->action(id)->setIcon(kwEditIcon(icon, this));
    _outline = new KWEditOutlinePane(_session, elementActions);
    _history = new KWHistoryPanel(_session);
    _stage = new KWEditStageView(_session.document(), _session.transport());
    _transportBar = new KWTransportBar(_session.transport());
    _curves = new KWEditCurvesPane(_session);
    _inspectors =
        new KWInspectorPanel(_session.document(), _session.transport(), _session.timing());
    _panes = new KWEditPanes({_outline, _history, _stage, _transportBar, _curves, _inspectors});
    setCentralWidget(_panes);
    _session.addGestureQuestion([this] { return _stage->isGestureActive(); });
    _session.addGestureQuestion([this] { return _curves->view().isGestureActive(); });
}

void KWEditWindow::makeStatusBar() {
    _state = new QLabel;
    _state->setObjectName(QStringLiteral("state"));
    _state->setContentsMargins(0, 0, 8, 0);
    statusBar()->addPermanentWidget(_state);
    statusBar()->setSizeGripEnabled(false);
}

void KWEditWindow::connectSession() {
    KWEditDocument& document = _session.document();
    connect(&document, &KWEditDocument::modifiedChanged, this, &KWEditWindow::updateTitle);
    connect(&document, &KWEditDocument::fileChanged, this, &KWEditWindow::updateTitle);
    connect(&document, &KWEditDocument::replaced, this, &KWEditWindow::updateTitle);
    connect(&document, &KWEditDocument::autosaveFailed, this, [this](const QString& reason) {
        tell(tr("No copy could be kept for the case of a crash: %1").arg(reason));
    });
    connect(&document, &KWEditDocument::structureChanged, this, &KWEditWindow::updateCommands);
    connect(&_session, &KWEditSession::elementsChanged, this, &KWEditWindow::updateCommands);
    connect(&_session, &KWEditSession::selectionChanged, this, [this] {
        _stage->setSelectedElements(_session.selectedElements());
        _inspectors->elementInspector().setElements(_session.selectedElements());
        updateCommands();
    });
    connect(_outline, &KWEditOutlinePane::channelSelected, _curves, &KWEditCurvesPane::edit);
    connect(_curves, &KWEditCurvesPane::channelChanged, this,
            [this](const std::shared_ptr<KWChannel>& channel) {
                if (channel)
                    _session.selectElement(_outline->elementOf(channel));
                updateKeyTimes();
                updateCommands();
            });
    connect(_transportBar, &KWTransportBar::framesPerSecondEdited, &_session.timing(),
            &KWEditStageTiming::setRate);
    connect(_curves, &KWEditCurvesPane::message, this, &KWEditWindow::tell);
    connect(_curves, &KWEditCurvesPane::closed, this, [this] { setCurvesFloating(false); });
    connect(_stage, &KWEditStageView::elementPicked, &_session, &KWEditSession::selectElement);
    connect(_stage, &KWEditStageView::statusMessage, this, &KWEditWindow::tell);
    connect(_stage, &KWEditStageView::gestureActiveChanged, this, &KWEditWindow::updateCommands);
    connect(_stage, &KWEditStageView::filesDropped, this, &KWEditWindow::addFiles);
    connect(_stage, &KWEditStageView::magnificationChanged, this, [this](double magnification) {
        _state->setText(QStringLiteral("%1 %").arg(qRound(magnification * 100)));
    });
    connect(_stage, &KWEditStageView::problemsChanged, this, [this] {
        const QStringList problems = _stage->problems();
        if (!problems.isEmpty())
            tell(problems.constLast());
    });
    connect(&_session, &KWEditSession::channelsUpdated, this, &KWEditWindow::updateKeyTimes);
}

// --- What is shown of the state.

void KWEditWindow::updateTitle() {
    const KWEditDocument& document = _session.document();
    const QString name = document.fileName().isEmpty() ? tr("Untitled") : document.fileName();
    QString title = name + QStringLiteral("[*]");
    if (document.isReadOnly())
        title += QStringLiteral(" (") + tr("read-only") + QLatin1Char(')');
    setWindowTitle(title + QStringLiteral(" — kwedit"));
    setWindowFilePath(document.filePath());
    setWindowModified(document.isModified());
    updateCommands();
}

void KWEditWindow::updateCommands() {
    if (!_panes || !_state)
        return;
    const KWEditDocument& document = _session.document();
    const bool isFree = !_session.isGestureActive();
    const QString undone = document.undoName();
    const QString redone = document.redoName();
    _commands->action("edit.undo")
        ->setText(undone.isEmpty() ? tr("&Undo") : tr("&Undo %1").arg(undone));
    _commands->action("edit.redo")
        ->setText(redone.isEmpty() ? tr("&Redo") : tr("&Redo %1").arg(redone));
    _commands->setEnabled("edit.undo", document.canUndo() && isFree);
    _commands->setEnabled("edit.redo", document.canRedo() && isFree);
    _commands->setEnabled("edit.cancel", !isFree);
    _commands->setEnabled("file.revert", !document.filePath().isEmpty() && document.isModified());
    const bool isElementSelected = !_session.selectedElements().empty();
    for (const char* const id : {"element.addChannel", "element.rename", "element.raise",
                                 "element.lower", "element.remove"})
        _commands->setEnabled(id, isElementSelected && document.takesElements());
    for (const char* const id : {"element.add", "element.addFiles"})
        _commands->setEnabled(id, document.takesElements());
    const bool hasChannel = _curves->channel() != nullptr;
    for (const char* const id : {"edit.copyChannel", "view.showAllCurves", "view.hideOtherCurves"})
        _commands->setEnabled(id, hasChannel);
    _commands->setEnabled("edit.pasteChannel", hasChannel && _curves->editor().copiedChannel());
}

/// The transport bar marks the keys of the channel that is edited. This is called with each frame
/// that plays, and channels may have a million keys.
void KWEditWindow::updateKeyTimes() {
    const auto keyed = std::dynamic_pointer_cast<KWKeyFramedChannel>(_curves->channel());
    const std::uint64_t edits = keyed ? keyed->editCount() : 0;
    if (keyed && keyed == _markedChannel.lock() && edits == _markedEdits)
        return;
    _markedChannel = keyed;
    _markedEdits = edits;
    std::vector<float> times;
    if (keyed)
        for (const KWTime& time : keyed->allKeyframes())
            times.push_back(time.time());
    _transportBar->setKeyTimes(times);
}

void KWEditWindow::tell(const QString& message) {
    statusBar()->showMessage(message, 8000);
}

void KWEditWindow::complain(const QString& text, const QString& reason) {
    _around.questions.complain(this, text, reason);
}

// --- Settings.

void KWEditWindow::readSettings() {
    QSettings& settings = _around.settings;
    const QByteArray geometry = settings.value(QStringLiteral("window/geometry")).toByteArray();
    if (geometry.isEmpty() || !restoreGeometry(geometry)) {
        const QSize room = screen()->availableSize();
        resize(QSize(1440, 900).boundedTo(room * 0.94));
    }
    _panes->restore(settings.value(QStringLiteral("window/panes")).toByteArray());
    _inspectors->restoreState(settings.value(QStringLiteral("window/inspectors")).toByteArray());
}

void KWEditWindow::writeSettings() {
    QSettings& settings = _around.settings;
    settings.setValue(QStringLiteral("window/geometry"), saveGeometry());
    settings.setValue(QStringLiteral("window/panes"), _panes->state());
    settings.setValue(QStringLiteral("window/inspectors"), _inspectors->saveState());
}

// --- Keys that both type and command.

namespace {

/// Whether a widget has a use of its own for a key without Ctrl or Alt, such as Space on a button.
bool usesKey(const QWidget& widget, int key) {
    const bool isText = widget.inherits("QLineEdit") || widget.inherits("QTextEdit") ||
                        widget.inherits("QPlainTextEdit") || widget.inherits("QAbstractSpinBox");
    if (isText)
        return true;
    const bool isPress = key == Qt::Key_Space || key == Qt::Key_Return || key == Qt::Key_Enter;
    if (qobject_cast<const QAbstractButton*>(&widget))
        return isPress;
    if (qobject_cast<const QComboBox*>(&widget))
        return isPress || key == Qt::Key_Home || key == Qt::Key_End;
    if (qobject_cast<const QAbstractItemView*>(&widget))
        return isPress || key == Qt::Key_Home || key == Qt::Key_End || key == Qt::Key_F2;
    return widget.inherits("QAbstractSlider") && (key == Qt::Key_Home || key == Qt::Key_End);
}

/// What a field held when its text was last entered.
constexpr char enteredText[] = "kwEnteredText";

/// A field with nothing of its own to take back, because it was not changed since Return, leaves
/// undo to the document.
bool isForTheDocument(const QWidget& widget, const QKeyEvent& key) {
    const auto* const edit = qobject_cast<const QLineEdit*>(&widget);
    if (!edit)
        return false;
    const bool isAsEntered = edit->property(enteredText) == QVariant(edit->text());
    return (key.matches(QKeySequence::Undo) && (isAsEntered || !edit->isUndoAvailable())) ||
           (key.matches(QKeySequence::Redo) && (isAsEntered || !edit->isRedoAvailable()));
}

/// Once whoever heard of Return has written what came of it.
void noteEntered(QWidget& widget) {
    if (auto* const edit = qobject_cast<QLineEdit*>(&widget))
        QTimer::singleShot(0, edit, [edit] { edit->setProperty(enteredText, edit->text()); });
}

} // namespace

bool KWEditWindow::eventFilter(QObject* watched, QEvent* event) {
    auto* const widget = qobject_cast<QWidget*>(watched);
    const bool isOurs = widget && (widget->window() == this || widget->window() == _curves);
    if (event->type() == QEvent::ShortcutOverride && isOurs) {
        const auto* const key = static_cast<QKeyEvent*>(event);
        if (isForTheDocument(*widget, *key)) {
            event->ignore();
            return true;
        }
        const bool isPlain = !(key->modifiers() & (Qt::ControlModifier | Qt::AltModifier));
        // In the list of elements Space has nothing to do but to play.
        const bool isToPlay = widget == &_outline->outline() && key->key() == Qt::Key_Space;
        if (isPlain && !isToPlay && usesKey(*widget, key->key())) {
            event->accept();
            return true;
        }
    }
    if (event->type() == QEvent::KeyPress && isOurs) {
        const int key = static_cast<QKeyEvent*>(event)->key();
        if (key == Qt::Key_Return || key == Qt::Key_Enter)
            noteEntered(*widget);
    }
    return QMainWindow::eventFilter(watched, event);
}
