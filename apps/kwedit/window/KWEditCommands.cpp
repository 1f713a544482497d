#include <apps/kwedit/window/KWEditCommands.h>

#include <QCoreApplication>
#include <QMenuBar>
#include <algorithm>
#include <stdexcept>

namespace {

using Menu = KWEditMenu;
constexpr auto plain = KWEditCommand::plain;
constexpr auto checkable = KWEditCommand::checkable;
constexpr auto isSubmenu = KWEditCommand::submenu;
constexpr auto separator = KWEditCommand::separator;
constexpr auto inCurves = KWEditCommand::inCurves;
constexpr auto repeats = KWEditCommand::repeats;

constexpr const char* menuTitles[] = {QT_TRANSLATE_NOOP("KWEditCommands", "&File"),
                                      QT_TRANSLATE_NOOP("KWEditCommands", "&Edit"),
                                      QT_TRANSLATE_NOOP("KWEditCommands", "E&lement"),
                                      QT_TRANSLATE_NOOP("KWEditCommands", "&Keys"),
                                      QT_TRANSLATE_NOOP("KWEditCommands", "&View"),
                                      QT_TRANSLATE_NOOP("KWEditCommands", "&Playback"),
                                      QT_TRANSLATE_NOOP("KWEditCommands", "&Help")};

QString translated(const char* text) {
    return QCoreApplication::translate("KWEditCommands", text);
}

} // namespace

/// In a function of the class, so that the tool that gathers the texts knows whose they are.
// clang-format off
std::span<const KWEditCommand> KWEditCommands::table() {
    static constexpr KWEditCommand commands[] = {
        {"file.new", Menu::file, QT_TR_NOOP("&New"), "Ctrl+N", QT_TR_NOOP("Opens a window on an empty stage")},
        {"file.open", Menu::file, QT_TR_NOOP("&Open..."), "Ctrl+O", QT_TR_NOOP("Opens a document")},
        {"file.recent", Menu::file, QT_TR_NOOP("Open &Recent"), "", QT_TR_NOOP("Documents that were open lately"), isSubmenu},
        {"file.close", Menu::file, QT_TR_NOOP("&Close"), "Ctrl+W", QT_TR_NOOP("Closes this window")},
        {"file.save", Menu::file, QT_TR_NOOP("&Save"), "Ctrl+S", QT_TR_NOOP("Writes the document to its file"), separator},
        {"file.saveAs", Menu::file, QT_TR_NOOP("Save &As..."), "Ctrl+Shift+S", QT_TR_NOOP("Gives the document another file or form")},
        {"file.saveCopy", Menu::file, QT_TR_NOOP("Save a Co&py..."), "Ctrl+Alt+S", QT_TR_NOOP("Writes a copy elsewhere; this document stays as it is")},
        {"file.revert", Menu::file, QT_TR_NOOP("Re&vert to Saved"), "", QT_TR_NOOP("Reads the document from its file again")},
        {"file.exportFrames", Menu::file, QT_TR_NOOP("Export &Frames..."), "Ctrl+E", QT_TR_NOOP("Renders frames as PNG files"), separator},
        {"file.exportMovie", Menu::file, QT_TR_NOOP("Export &Movie..."), "Ctrl+Shift+E", QT_TR_NOOP("Renders a movie")},
        {"file.exportValues", Menu::file, QT_TR_NOOP("Export Va&lues..."), "Ctrl+Alt+E", QT_TR_NOOP("Writes the values of all channels, frame by frame, as CSV or JSON")},
        {"file.quit", Menu::file, QT_TR_NOOP("&Quit"), "Ctrl+Q", QT_TR_NOOP("Closes all windows"), separator},

        {"edit.undo", Menu::edit, QT_TR_NOOP("&Undo"), "Ctrl+Z", QT_TR_NOOP("Takes the latest step back"), repeats},
        {"edit.redo", Menu::edit, QT_TR_NOOP("&Redo"), "Ctrl+Shift+Z; Ctrl+Y", QT_TR_NOOP("Does again what was undone"), repeats},
        {"edit.cancel", Menu::edit, QT_TR_NOOP("Cance&l Drag"), "", QT_TR_NOOP("Puts back what is being dragged; Escape does it too")},
        {"edit.copyChannel", Menu::edit, QT_TR_NOOP("&Copy Channel"), "Ctrl+Alt+C", QT_TR_NOOP("Keeps a copy of the channel that is edited"), separator},
        {"edit.pasteChannel", Menu::edit, QT_TR_NOOP("&Paste Channel"), "Ctrl+Alt+V", QT_TR_NOOP("Puts the copied channel in place of the one that is edited")},

        {"element.add", Menu::element, QT_TR_NOOP("&New Sprite"), "Ctrl+Alt+N", QT_TR_NOOP("Adds a sprite with the usual channels")},
        {"element.shape", Menu::element, QT_TR_NOOP("New &Shape"), "", QT_TR_NOOP("Adds a sprite of a given shape"), isSubmenu},
        {"element.addFiles", Menu::element, QT_TR_NOOP("New from &Files..."), "Ctrl+I", QT_TR_NOOP("Adds a sprite for each picture or movie")},
        {"element.addChannel", Menu::element, QT_TR_NOOP("New &Channel..."), "Ctrl+Shift+N", QT_TR_NOOP("Adds a channel to the selected element"), separator},
        {"element.rename", Menu::element, QT_TR_NOOP("&Rename..."), "F2", QT_TR_NOOP("Gives the selected element or channel another name"), separator},
        {"element.raise", Menu::element, QT_TR_NOOP("Bring For&ward"), "Ctrl+]", QT_TR_NOOP("Moves the element in front of the next one"), repeats},
        {"element.lower", Menu::element, QT_TR_NOOP("Send &Backward"), "Ctrl+[", QT_TR_NOOP("Moves the element behind the one before"), repeats},
        {"element.remove", Menu::element, QT_TR_NOOP("&Delete"), "Ctrl+Backspace", QT_TR_NOOP("Removes the selected element or channel"), separator},

        {"keys.cut", Menu::keys, QT_TR_NOOP("Cu&t"), "Ctrl+X", QT_TR_NOOP("Takes the selected keys to the clipboard")},
        {"keys.copy", Menu::keys, QT_TR_NOOP("&Copy"), "Ctrl+C", QT_TR_NOOP("Copies the selected keys")},
        {"keys.paste", Menu::keys, QT_TR_NOOP("&Paste"), "Ctrl+V", QT_TR_NOOP("Puts copied keys at the current time")},
        {"keys.duplicate", Menu::keys, QT_TR_NOOP("&Duplicate"), "Ctrl+D", QT_TR_NOOP("Repeats the selected keys behind themselves")},
        {"keys.delete", Menu::keys, QT_TR_NOOP("De&lete"), "Delete", QT_TR_NOOP("Removes the selected keys"), inCurves},
        {"keys.selectAll", Menu::keys, QT_TR_NOOP("Select &All"), "Ctrl+A", QT_TR_NOOP("Selects every key of the channel"), separator},
        {"keys.selectNone", Menu::keys, QT_TR_NOOP("Select &None"), "Ctrl+Shift+A", QT_TR_NOOP("Selects no key")},
        {"keys.invert", Menu::keys, QT_TR_NOOP("&Invert Selection"), "Ctrl+Shift+I", QT_TR_NOOP("Selects the other keys")},
        {"keys.next", Menu::keys, QT_TR_NOOP("Select Ne&xt"), "Ctrl+Right", QT_TR_NOOP("Selects the next key"), separator | repeats},
        {"keys.previous", Menu::keys, QT_TR_NOOP("Select Pre&vious"), "Ctrl+Left", QT_TR_NOOP("Selects the key before"), repeats},
        {"keys.nudgeRight", Menu::keys, QT_TR_NOOP("Later by a Frame"), "Right", QT_TR_NOOP("Moves the selected keys by a frame; ten with Shift"), separator | inCurves | repeats},
        {"keys.nudgeLeft", Menu::keys, QT_TR_NOOP("Earlier by a Frame"), "Left", QT_TR_NOOP("Moves the selected keys back by a frame; ten with Shift"), inCurves | repeats},
        {"keys.nudgeUp", Menu::keys, QT_TR_NOOP("Higher by a Step"), "Up", QT_TR_NOOP("Raises the selected keys by a hundredth of what is shown; a tenth with Shift"), inCurves | repeats},
        {"keys.nudgeDown", Menu::keys, QT_TR_NOOP("Lower by a Step"), "Down", QT_TR_NOOP("Lowers the selected keys by a hundredth of what is shown; a tenth with Shift"), inCurves | repeats},
        {"keys.nudgeRightFar", Menu::keys, QT_TR_NOOP("Later by Ten Frames"), "Shift+Right", QT_TR_NOOP("Moves the selected keys by ten frames"), inCurves | repeats},
        {"keys.nudgeLeftFar", Menu::keys, QT_TR_NOOP("Earlier by Ten Frames"), "Shift+Left", QT_TR_NOOP("Moves the selected keys back by ten frames"), inCurves | repeats},
        {"keys.nudgeUpFar", Menu::keys, QT_TR_NOOP("Higher by Ten Steps"), "Shift+Up", QT_TR_NOOP("Raises the selected keys by a tenth of what is shown"), inCurves | repeats},
        {"keys.nudgeDownFar", Menu::keys, QT_TR_NOOP("Lower by Ten Steps"), "Shift+Down", QT_TR_NOOP("Lowers the selected keys by a tenth of what is shown"), inCurves | repeats},
        {"keys.insert", Menu::keys, QT_TR_NOOP("&Set Key Here"), "K", QT_TR_NOOP("Sets a key on the curve at the current time"), separator | inCurves},
        {"keys.exact", Menu::keys, QT_TR_NOOP("Exact Time and Val&ue"), "Ctrl+K", QT_TR_NOOP("Goes to the fields for time and value of the selected keys")},
        {"keys.snap", Menu::keys, QT_TR_NOOP("Snap to &Grid"), "S", QT_TR_NOOP("Dragged keys jump to half the steps of the grid"), checkable | inCurves},

        {"view.elements", Menu::view, QT_TR_NOOP("Ele&ments"), "Alt+1", QT_TR_NOOP("Shows or hides the list of elements"), checkable},
        {"view.stage", Menu::view, QT_TR_NOOP("&Stage"), "Alt+2", QT_TR_NOOP("Shows or hides the stage"), checkable},
        {"view.transport", Menu::view, QT_TR_NOOP("T&ransport"), "Alt+3", QT_TR_NOOP("Shows or hides the transport bar"), checkable},
        {"view.curves", Menu::view, QT_TR_NOOP("&Curves"), "Alt+4", QT_TR_NOOP("Shows or hides the curve editor"), checkable},
        {"view.inspectors", Menu::view, QT_TR_NOOP("&Inspectors"), "Alt+5", QT_TR_NOOP("Shows or hides the inspectors"), checkable},
        {"view.history", Menu::view, QT_TR_NOOP("&History"), "Alt+6", QT_TR_NOOP("Shows or hides the list of steps"), checkable},
        {"view.float", Menu::view, QT_TR_NOOP("Curves in a &Window of Their Own"), "Alt+0", QT_TR_NOOP("Takes the curve editor out of the window, or puts it back"), checkable},
        {"view.frameAll", Menu::view, QT_TR_NOOP("Frame &All Keys"), "A", QT_TR_NOOP("Shows all keys of the curves"), separator | inCurves},
        {"view.frameSelection", Menu::view, QT_TR_NOOP("Frame Se&lected Keys"), "F", QT_TR_NOOP("Shows the selected keys"), inCurves},
        {"view.showAllCurves", Menu::view, QT_TR_NOOP("Show All Cur&ves of the Element"), "Ctrl+Shift+C", QT_TR_NOOP("Draws the curves of the element's other channels too")},
        {"view.hideOtherCurves", Menu::view, QT_TR_NOOP("Hide &Other Curves"), "Ctrl+Shift+H", QT_TR_NOOP("Draws only the curve that is edited")},
        {"view.zoomIn", Menu::view, QT_TR_NOOP("&Zoom In"), "Ctrl++; Ctrl+=", QT_TR_NOOP("Shows the stage larger"), separator | repeats},
        {"view.zoomOut", Menu::view, QT_TR_NOOP("Zoom Ou&t"), "Ctrl+-", QT_TR_NOOP("Shows the stage smaller"), repeats},
        {"view.zoomToFit", Menu::view, QT_TR_NOOP("Zoom to &Fit"), "Ctrl+0", QT_TR_NOOP("Shows the whole stage")},
        {"view.actualSize", Menu::view, QT_TR_NOOP("Actual Size (&1:1)"), "Ctrl+1", QT_TR_NOOP("One pixel of the stage on one of the screen")},
        {"view.drawing", Menu::view, QT_TR_NOOP("Stage Drawin&g"), "", QT_TR_NOOP("What the stage is drawn with"), isSubmenu},
        {"view.appearance", Menu::view, QT_TR_NOOP("A&ppearance"), "", QT_TR_NOOP("Whether the window is light or dark"), isSubmenu},
        {"view.language", Menu::view, QT_TR_NOOP("Languag&e"), "", QT_TR_NOOP("The language of the menus"), isSubmenu},
        {"view.fullScreen", Menu::view, QT_TR_NOOP("F&ull Screen"), "F11", QT_TR_NOOP("The window alone on the screen"), checkable | separator},

        {"play.toggle", Menu::playback, QT_TR_NOOP("&Play"), "Space", QT_TR_NOOP("Plays or pauses"), checkable},
        {"play.next", Menu::playback, QT_TR_NOOP("&Next Frame"), ".", QT_TR_NOOP("One frame on"), separator | repeats},
        {"play.previous", Menu::playback, QT_TR_NOOP("Pre&vious Frame"), ",", QT_TR_NOOP("One frame back"), repeats},
        {"play.nextKey", Menu::playback, QT_TR_NOOP("Next &Key"), "Shift+.", QT_TR_NOOP("On to the next key of the channel"), repeats},
        {"play.previousKey", Menu::playback, QT_TR_NOOP("Previous Ke&y"), "Shift+,", QT_TR_NOOP("Back to the key before"), repeats},
        {"play.beginning", Menu::playback, QT_TR_NOOP("To the &Beginning"), "Home", QT_TR_NOOP("To the first frame of the range")},
        {"play.end", Menu::playback, QT_TR_NOOP("To the &End"), "End", QT_TR_NOOP("To the last frame of the range")},
        {"play.loop", Menu::playback, QT_TR_NOOP("&Loop"), "L", QT_TR_NOOP("Begins again at the end"), checkable | separator},

        {"help.tour", Menu::help, QT_TR_NOOP("&Tour"), "F1", QT_TR_NOOP("Walks through one edit")},
        {"help.shortcuts", Menu::help, QT_TR_NOOP("&Commands and Shortcuts"), "Ctrl+F1", QT_TR_NOOP("Lists every command")},
        {"help.about", Menu::help, QT_TR_NOOP("&About kwedit"), "", QT_TR_NOOP("Which version this is"), separator},
    };
    return commands;
}
// clang-format on

QString KWEditCommands::title(KWEditMenu menu) {
    return translated(menuTitles[static_cast<std::size_t>(menu)]);
}

QString KWEditCommands::plainText(const KWEditCommand& command) {
    QString text = translated(command.text);
    text.remove(QLatin1Char('&'));
    if (text.endsWith(QLatin1String("...")))
        text.chop(3);
    return text;
}

QString KWEditCommands::tip(const KWEditCommand& command) {
    return translated(command.tip);
}

KWEditCommands::KWEditCommands(QWidget& window) : QObject(&window) {
    for (const KWEditCommand& command : table())
        add(command, window);
}

void KWEditCommands::add(const KWEditCommand& command, QWidget& window) {
    if (command.traits & KWEditCommand::submenu) {
        auto* const menu = new QMenu(translated(command.text), &window);
        menu->menuAction()->setStatusTip(tip(command));
        _entries.push_back({&command, menu->menuAction(), menu});
        return;
    }
    auto* const action = new QAction(translated(command.text), this);
    action->setObjectName(QString::fromLatin1(command.id));
    action->setCheckable(command.traits & KWEditCommand::checkable);
    action->setAutoRepeat(command.traits & KWEditCommand::repeats);
    action->setShortcuts(QKeySequence::listFromString(QString::fromLatin1(command.shortcut),
                                                      QKeySequence::PortableText));
    const QString keys = action->shortcut().toString(QKeySequence::NativeText);
    action->setToolTip(keys.isEmpty() ? tip(command)
                                      : tip(command) + QStringLiteral(" (%1)").arg(keys));
    action->setStatusTip(tip(command));
    const bool isOfCurves = command.traits & KWEditCommand::inCurves;
    action->setShortcutContext(isOfCurves ? Qt::WidgetShortcut : Qt::WindowShortcut);
    if (!isOfCurves)
        window.addAction(action);
    _entries.push_back({&command, action, nullptr});
}

const KWEditCommands::Entry& KWEditCommands::entry(std::string_view id) const {
    const auto found = std::find_if(_entries.begin(), _entries.end(),
                                    [id](const Entry& entry) { return entry.command->id == id; });
    if (found == _entries.end())
        throw std::out_of_range("there is no such command");
    return *found;
}

QAction* KWEditCommands::action(std::string_view id) const {
    return entry(id).action;
}

QMenu* KWEditCommands::submenu(std::string_view id) const {
    return entry(id).submenu;
}

void KWEditCommands::connectTo(std::string_view id, const QObject* context,
                               const std::function<void()>& run) const {
    connect(action(id), &QAction::triggered, context, run);
}

void KWEditCommands::setEnabled(std::string_view id, bool isEnabled) const {
    action(id)->setEnabled(isEnabled);
}

void KWEditCommands::setChecked(std::string_view id, bool isChecked) const {
    action(id)->setChecked(isChecked);
}

void KWEditCommands::fill(QMenuBar& bar) {
    for (const Entry& entry : _entries) {
        const int key = static_cast<int>(entry.command->menu);
        QMenu*& menu = _menus[key];
        if (!menu) {
            menu = bar.addMenu(title(entry.command->menu));
            menu->setToolTipsVisible(false);
        }
        if (entry.command->traits & KWEditCommand::separator)
            menu->addSeparator();
        menu->addAction(entry.action);
    }
}

void KWEditCommands::useInCurves(QWidget& curves) const {
    for (const Entry& entry : _entries)
        if (entry.command->traits & KWEditCommand::inCurves)
            curves.addAction(entry.action);
}
