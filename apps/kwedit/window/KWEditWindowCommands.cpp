#include <KWBase/KWChannelView.h>
#include <KWBase/KWChannelViewNavigator.h>
#include <KWBase/KWConstantChannel.h>
#include <KWBase/KWKeyCommands.h>

#include <apps/kwedit/window/KWEditAppearance.h>
#include <apps/kwedit/window/KWEditCurvesPane.h>
#include <apps/kwedit/window/KWEditLanguage.h>
#include <apps/kwedit/window/KWEditOutlinePane.h>
#include <apps/kwedit/window/KWEditStageView.h>
#include <apps/kwedit/window/KWEditWindow.h>
#include <apps/kwedit/window/KWElementChannelsView.h>
#include <apps/kwedit/window/KWElementInspector.h>
#include <apps/kwedit/window/KWInspectorPanel.h>
#include <apps/kwedit/window/KWShortcutsDialog.h>
#include <apps/kwedit/window/KWTour.h>

#include <QActionGroup>
#include <QApplication>
#include <QDir>
#include <QFileInfo>
#include <QMessageBox>
#include <algorithm>

// What the commands do, menu by menu.

namespace {

/// In metres on the stage.
void placeAt(const KWElement& element, const QPointF& point, KWTime time) {
    const KWSpriteChannels channels(element.name(), element.channelArray().get());
    if (const auto x = channels.channel(KWSpriteRole::x))
        x->setValueForTime(static_cast<float>(point.x()), time);
    if (const auto y = channels.channel(KWSpriteRole::y))
        y->setValueForTime(static_cast<float>(point.y()), time);
}

} // namespace

void KWEditWindow::connectFileCommands() {
    KWEditCommands& commands = *_commands;
    commands.connectTo("file.new", this, [this] { _around.openWindow({}); });
    commands.connectTo("file.open", this, [this] {
        openFiles(_around.questions.documentsToOpen(this, _session.document().folder()));
    });
    commands.connectTo("file.close", this, [this] { close(); });
    commands.connectTo("file.save", this, [this] { save(); });
    commands.connectTo("file.saveAs", this, [this] { saveAs(); });
    commands.connectTo("file.saveCopy", this, [this] { saveCopy(); });
    commands.connectTo("file.revert", this, [this] { revert(); });
    using Kind = KWExportDialog::Kind;
    commands.connectTo("file.exportFrames", this, [this] { showExport(Kind::frames); });
    commands.connectTo("file.exportMovie", this, [this] { showExport(Kind::movie); });
    commands.connectTo("file.exportValues", this, [this] { showExport(Kind::values); });
    commands.connectTo("file.quit", this, [] { QApplication::closeAllWindows(); });
    fillRecentFiles();
    connect(&_around.recentFiles, &KWRecentFiles::changed, this, &KWEditWindow::fillRecentFiles);
}

void KWEditWindow::fillRecentFiles() {
    QMenu& menu = *_commands->submenu("file.recent");
    menu.clear();
    const QStringList files = _around.recentFiles.files();
    for (const QString& file : files) {
        QAction* const action = menu.addAction(QFileInfo(file).fileName());
        action->setStatusTip(QDir::toNativeSeparators(file));
        connect(action, &QAction::triggered, this, [this, file] { openFiles({file}); });
    }
    menu.setEnabled(!files.isEmpty());
    if (files.isEmpty())
        return;
    menu.addSeparator();
    connect(menu.addAction(tr("Clear List")), &QAction::triggered, &_around.recentFiles,
            &KWRecentFiles::clear);
}

KWExportDialog* KWEditWindow::showExport(KWExportDialog::Kind kind) {
    auto* const dialog = new KWExportDialog(_session, kind, this);
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->open();
    return dialog;
}

// --- Edit.

void KWEditWindow::connectEditCommands() {
    _commands->connectTo("edit.undo", this, [this] { undo(); });
    _commands->connectTo("edit.redo", this, [this] { redo(); });
    _commands->connectTo("edit.cancel", this, [this] {
        _stage->cancelGesture();
        _curves->view().cancelGesture();
    });
    _commands->connectTo("edit.copyChannel", this, [this] {
        _curves->editor().copyChannel();
        updateCommands();
    });
    _commands->connectTo("edit.pasteChannel", this, [this] { _curves->editor().pasteChannel(); });
}

void KWEditWindow::undo() {
    if (!_session.isGestureActive())
        _session.document().undo();
}

void KWEditWindow::redo() {
    if (!_session.isGestureActive())
        _session.document().redo();
}

// --- Elements.

void KWEditWindow::connectElementCommands() {
    _commands->connectTo("element.add", this,
                         [this] { addShape(tr("Sprite"), QStringLiteral("rounded")); });
    _commands->connectTo("element.addFiles", this, [this] {
        addFiles(_around.questions.filesToPlace(this, _session.document().folder()));
    });
    _commands->connectTo("element.addChannel", this, [this] {
        _inspectors->elementInspector().channelsView().askForChannel();
    });
    _commands->connectTo("element.rename", this, [this] { renameSelected(); });
    _commands->connectTo("element.raise", this, [this] { moveSelected(1); });
    _commands->connectTo("element.lower", this, [this] { moveSelected(-1); });
    _commands->connectTo("element.remove", this, [this] { removeSelected(); });
    fillShapes();
}

void KWEditWindow::fillShapes() {
    const QStringList shapes = KWSpriteContent::shapeNames();
    for (const QString& shape : shapes) {
        const QString title = KWElementInspector::shapeTitle(shape);
        QAction* const action = _commands->submenu("element.shape")->addAction(title);
        action->setIcon(KWElementInspector::shapeIcon(shape, QColor(0x80, 0x90, 0xa8)));
        connect(action, &QAction::triggered, this,
                [this, shape, title] { addShape(title, shape); });
    }
}

/// Each in a color of its own and a little away from the one before, so that all are seen, and with
/// its first channel at hand.
void KWEditWindow::addShape(const QString& name, const QString& shape) {
    constexpr QRgb colors[] = {0xff4c8dd9, 0xffe4573d, 0xff57b36a, 0xfff0b429,
                               0xff9b6dd6, 0xff35b8c0, 0xffe77fb3, 0xff8a8f98};
    int count = 0;
    for (const auto& element : _session.document().model().elements())
        if (const auto ours = std::dynamic_pointer_cast<KWElement>(element.object))
            count += KWSpriteContent::of(*ours).kind != KWSpriteContent::Kind::none;
    KWSpriteContent content;
    content.kind = KWSpriteContent::Kind::shape;
    content.shape = shape;
    content.color = QColor::fromRgb(colors[count % 8]);
    const KWEditDocument::Step step(_session.document(), tr("Add Sprite"));
    const auto element = addSprite(name, content);
    if (!element)
        return;
    const double away = 0.4 * (count % 8);
    if (count > 0)
        placeAt(*element, QPointF(away, -away), KWTime(0));
    const KWSpriteChannels channels(element->name(), element->channelArray().get());
    _curves->edit(channels.channel(KWSpriteRole::x));
}

std::shared_ptr<KWElement> KWEditWindow::addSprite(const QString& name,
                                                   const KWSpriteContent& content) {
    KWEditDocument& document = _session.document();
    QStringList taken;
    for (const auto& element : document.model().elements())
        taken << QString::fromStdString(element.name);
    QString free = name;
    for (int number = 2; taken.contains(free); ++number)
        free = QStringLiteral("%1 %2").arg(name).arg(number);
    auto element = document.addSprite(free, content);
    _session.refresh();
    _session.selectElement(element);
    return element;
}

void KWEditWindow::addFiles(const QStringList& files, const QPointF& point) {
    if (files.isEmpty())
        return;
    KWEditDocument& document = _session.document();
    const KWEditDocument::Step step(document, tr("Add Sprites"));
    for (const QString& file : files) {
        KWSpriteContent content;
        content.kind = KWSpriteContent::Kind::file;
        content.file = KWElementInspector::contentPath(document, file);
        const auto element = addSprite(QFileInfo(file).completeBaseName(), content);
        if (element && !point.isNull())
            placeAt(*element, point, _session.transport().time());
    }
}

void KWEditWindow::removeSelected() {
    KWEditDocument& document = _session.document();
    const auto item = _outline->selectedItem();
    const auto element = _outline->elementOf(item);
    if (const auto channel = std::dynamic_pointer_cast<KWChannel>(item); channel && element) {
        document.removeChannel(element, channel);
        return;
    }
    const auto selected = _session.selectedElements();
    const auto stage = document.stageElement();
    if (selected.empty())
        return;
    if (std::find(selected.begin(), selected.end(), stage) != selected.end() &&
        !_around.questions.mayGoOn(
            this,
            tr("“%1” holds the settings of the stage.").arg(QString::fromStdString(stage->name())),
            tr("Without it the stage has its usual size, backdrop and range."), tr("Delete")))
        return;
    const KWEditDocument::Step step(document, tr("Remove Elements"));
    for (const auto& each : selected)
        document.removeElement(each);
}

void KWEditWindow::renameSelected() {
    KWEditDocument& document = _session.document();
    const auto item = _outline->selectedItem();
    if (const auto channel = std::dynamic_pointer_cast<KWChannel>(item)) {
        const QString name = _around.questions.name(this, tr("Rename Channel"), tr("Name:"),
                                                    QString::fromStdString(channel->name()));
        if (!name.isNull())
            document.renameChannel(channel, name);
        return;
    }
    if (_session.selectedElements().empty())
        return;
    const auto element = _session.selectedElements().front();
    const QString name = _around.questions.name(this, tr("Rename Element"), tr("Name:"),
                                                QString::fromStdString(element->name()));
    if (!name.isNull())
        document.renameElement(element, name);
}

/// Behind an element in the document is in front of it on the stage.
void KWEditWindow::moveSelected(int places) {
    KWEditDocument& document = _session.document();
    const auto& elements = document.model().elements();
    for (const auto& element : _session.selectedElements()) {
        const auto found =
            std::find_if(elements.begin(), elements.end(),
                         [&element](const auto& entry) { return entry.object == element; });
        const auto index = found - elements.begin();
        const auto wanted = places > 0 ? index + places + 1 : index + places;
        if (found != elements.end() && wanted >= 0 &&
            wanted <= static_cast<std::ptrdiff_t>(elements.size()))
            document.moveElement(element, static_cast<std::size_t>(wanted));
    }
}

// --- View.

void KWEditWindow::connectViewCommands() {
    using Pane = KWEditPanes::Pane;
    const std::pair<const char*, Pane> panes[] = {
        {"view.elements", Pane::elements},     {"view.stage", Pane::stage},
        {"view.transport", Pane::transport},   {"view.curves", Pane::curves},
        {"view.inspectors", Pane::inspectors}, {"view.history", Pane::history}};
    for (const auto& [id, pane] : panes) {
        QAction* const action = _commands->action(id);
        action->setChecked(_panes->isPaneVisible(pane));
        connect(action, &QAction::toggled, this,
                [this, pane = pane](bool isOn) { _panes->setPaneVisible(pane, isOn); });
        connect(_panes, &KWEditPanes::paneVisibilityChanged, action,
                [action, pane = pane](Pane changed, bool isVisible) {
                    if (changed == pane)
                        action->setChecked(isVisible);
                });
    }
    connect(_commands->action("view.float"), &QAction::toggled, this,
            &KWEditWindow::setCurvesFloating);
    _commands->connectTo("view.frameAll", this, [this] { _curves->navigator().frameAll(); });
    _commands->connectTo("view.frameSelection", this,
                         [this] { _curves->navigator().frameSelection(); });
    _commands->connectTo("view.showAllCurves", this,
                         [this] { _curves->showAllCurvesOfTheElement(); });
    _commands->connectTo("view.hideOtherCurves", this, [this] { _curves->hideOtherCurves(); });
    _commands->connectTo("view.zoomIn", this, [this] { _stage->zoomIn(); });
    _commands->connectTo("view.zoomOut", this, [this] { _stage->zoomOut(); });
    _commands->connectTo("view.zoomToFit", this, [this] { _stage->zoomToFit(); });
    _commands->connectTo("view.actualSize", this, [this] { _stage->actualSize(); });
    connect(_commands->action("view.fullScreen"), &QAction::toggled, this, [this](bool isOn) {
        setWindowState(windowState().setFlag(Qt::WindowFullScreen, isOn));
    });
    fillDrawings();
    fillAppearances();
    fillLanguages();
}

void KWEditWindow::setCurvesFloating(bool isFloating) {
    if (isFloating == _curves->isFloating())
        return;
    _commands->setChecked("view.float", isFloating);
    if (isFloating) {
        _curves->setFloating(true, this);
        _panes->setPaneEmptied(KWEditPanes::Pane::curves, true);
    } else {
        _curves->setFloating(false, this);
        _panes->putBack(KWEditPanes::Pane::curves, _curves);
    }
}

void KWEditWindow::fillDrawings() {
    using Renderer = KWEditStageView::Renderer;
    auto* const group = new QActionGroup(this);
    const std::pair<Renderer, QString> drawings[] = {{Renderer::automatic, tr("&Automatic")},
                                                     {Renderer::raster, tr("By the &Processor")},
                                                     {Renderer::openGL, tr("With &OpenGL")}};
    const int chosen = _around.settings.value(QStringLiteral("stage/drawing"), 0).toInt();
    int index = 0;
    for (const auto& [renderer, title] : drawings) {
        QAction* const action = _commands->submenu("view.drawing")->addAction(title);
        action->setCheckable(true);
        action->setChecked(index == chosen);
        if (index == chosen)
            _stage->setRenderer(renderer);
        group->addAction(action);
        connect(action, &QAction::triggered, this, [this, renderer = renderer, index] {
            _stage->setRenderer(renderer);
            _around.settings.setValue(QStringLiteral("stage/drawing"), index);
            if (renderer == Renderer::openGL && !_stage->isUsingOpenGL())
                tell(tr("OpenGL does not work here."));
        });
        ++index;
    }
}

void KWEditWindow::fillAppearances() {
    auto* const group = new QActionGroup(this);
    const QString setting = QStringLiteral("appearance");
    QMenu* const menu = _commands->submenu("view.appearance");
    for (const KWEditAppearance& appearance : KWEditAppearance::all()) {
        QAction* const action = menu->addAction(appearance.title());
        action->setCheckable(true);
        group->addAction(action);
        connect(action, &QAction::triggered, this, [this, setting, appearance] {
            _around.settings.setValue(setting, appearance.name());
            appearance.apply();
        });
        // It may have been chosen in another window.
        connect(menu, &QMenu::aboutToShow, action, [this, setting, appearance, action] {
            const QString name = _around.settings.value(setting).toString();
            action->setChecked(KWEditAppearance::named(name) == appearance);
        });
    }
}

void KWEditWindow::fillLanguages() {
    auto* const group = new QActionGroup(this);
    const QString chosen = _around.settings.value(QStringLiteral("language")).toString();
    for (const KWEditLanguage& language : KWEditLanguage::all()) {
        QAction* const action = _commands->submenu("view.language")->addAction(language.title());
        action->setCheckable(true);
        action->setChecked(language.code == chosen);
        group->addAction(action);
        connect(action, &QAction::triggered, this, [this, code = language.code] {
            _around.settings.setValue(QStringLiteral("language"), code);
            tell(tr("The language changes when kwedit is started again."));
        });
    }
}

// --- Playback.

void KWEditWindow::connectPlayCommands() {
    KWEditTransport& transport = _session.transport();
    _commands->connectTo("play.toggle", this, [&transport] { transport.togglePlaying(); });
    connect(&transport, &KWEditTransport::playingChanged, this,
            [this](bool isPlaying) { _commands->setChecked("play.toggle", isPlaying); });
    _commands->connectTo("play.next", this, [&transport] { transport.step(1); });
    _commands->connectTo("play.previous", this, [&transport] { transport.step(-1); });
    _commands->connectTo("play.beginning", this, [&transport] { transport.gotoBeginning(); });
    _commands->connectTo("play.end", this, [&transport] { transport.gotoEnd(); });
    _commands->connectTo("play.nextKey", this, [this, &transport] {
        if (const auto time = _curves->keyAfter(transport.currentTime()))
            transport.scrub(*time);
    });
    _commands->connectTo("play.previousKey", this, [this, &transport] {
        if (const auto time = _curves->keyBefore(transport.currentTime()))
            transport.scrub(*time);
    });
    _commands->setChecked("play.loop", transport.isLooping());
    connect(_commands->action("play.loop"), &QAction::toggled, &transport,
            &KWEditTransport::setLooping);
    connect(&transport, &KWEditTransport::loopingChanged, this,
            [this](bool isLooping) { _commands->setChecked("play.loop", isLooping); });
}

// --- Help.

void KWEditWindow::connectHelpCommands() {
    _commands->connectTo("help.tour", this, [this] { startTour(); });
    _commands->connectTo("help.shortcuts", this, [this] {
        auto* const dialog = new KWShortcutsDialog(this);
        dialog->setAttribute(Qt::WA_DeleteOnClose);
        dialog->show();
    });
    _commands->connectTo("help.about", this, [this] {
        QMessageBox::about(this, tr("About kwedit"),
                           tr("<b>kwedit %1</b><br>Edits documents of animated sprites, "
                              "with the views of KWBase.")
                               .arg(QCoreApplication::applicationVersion()));
    });
}

KWTour* KWEditWindow::startTour() {
    delete _tour;
    setCurvesFloating(false);
    for (const auto pane : {KWEditPanes::Pane::elements, KWEditPanes::Pane::stage,
                            KWEditPanes::Pane::transport, KWEditPanes::Pane::curves})
        _panes->setPaneVisible(pane, true);
    _tour = new KWTour(*this);
    return _tour;
}

// --- Keys.

void KWEditWindow::connectKeyCommands() {
    _commands->useInCurves(_curves->view());
    KWKeyCommands& keys = _curves->keys();
    const std::pair<const char*, bool (KWKeyCommands::*)()> plain[] = {
        {"keys.cut", &KWKeyCommands::cut},
        {"keys.copy", &KWKeyCommands::copy},
        {"keys.paste", &KWKeyCommands::paste},
        {"keys.duplicate", &KWKeyCommands::duplicate},
        {"keys.delete", &KWKeyCommands::deleteKeys},
        {"keys.selectAll", &KWKeyCommands::selectAll},
        {"keys.selectNone", &KWKeyCommands::selectNone},
        {"keys.invert", &KWKeyCommands::selectInverse},
    };
    for (const auto& [id, command] : plain)
        _commands->connectTo(id, this, [&keys, command = command] { (keys.*command)(); });
    _commands->connectTo("keys.next", this, [&keys] { keys.selectNextKey(); });
    _commands->connectTo("keys.previous", this, [&keys] { keys.selectPreviousKey(); });
    const std::tuple<const char*, int, int> nudges[] = {
        {"keys.nudgeRight", 1, 0},  {"keys.nudgeLeft", -1, 0},     {"keys.nudgeUp", 0, 1},
        {"keys.nudgeDown", 0, -1},  {"keys.nudgeRightFar", 10, 0}, {"keys.nudgeLeftFar", -10, 0},
        {"keys.nudgeUpFar", 0, 10}, {"keys.nudgeDownFar", 0, -10}};
    for (const auto& [id, times, values] : nudges)
        _commands->connectTo(
            id, this, [&keys, times = times, values = values] { keys.nudge(times, values); });
    _commands->connectTo("keys.insert", this, [this] { _curves->setKeyAtCurrentTime(); });
    _commands->connectTo("keys.exact", this, [this] { _curves->enterExactly(); });
    QAction* const snap = _commands->action("keys.snap");
    KWChannelView& view = _curves->view();
    snap->setChecked(view.snaps());
    connect(snap, &QAction::toggled, &view, &KWChannelView::setSnaps);
    connect(&view, &KWChannelView::settingsChanged, snap,
            [snap, &view] { snap->setChecked(view.snaps()); });
    connect(&keys, &KWKeyCommands::changed, this, &KWEditWindow::updateKeyCommands);
    updateKeyCommands();
}

void KWEditWindow::updateKeyCommands() {
    const KWKeyCommands& keys = _curves->keys();
    for (const char* const id :
         {"keys.cut", "keys.copy", "keys.duplicate", "keys.delete", "keys.exact", "keys.nudgeRight",
          "keys.nudgeLeft", "keys.nudgeUp", "keys.nudgeDown", "keys.nudgeRightFar",
          "keys.nudgeLeftFar", "keys.nudgeUpFar", "keys.nudgeDownFar", "view.frameSelection"})
        _commands->setEnabled(id, keys.canCopy());
    _commands->setEnabled("keys.paste", keys.canPaste());
    _commands->setEnabled("keys.selectAll", keys.canSelectAll());
    _commands->setEnabled("keys.selectNone", keys.canSelectNone());
    _commands->setEnabled("keys.invert", keys.canInvertSelection());
    _commands->setEnabled("keys.next", keys.canSelectNextKey());
    _commands->setEnabled("keys.previous", keys.canSelectPreviousKey());
}
