#include <apps/kwedit/window/KWEditCommands.h>

#include <QCoreApplication>
#include <QMenuBar>
#include <algorithm>
#include <stdexcept>

namespace {

using Menu = KWEditMenu;
constexpr auto plain = KWEditCommand::plain;
constexpr auto checkable = KWEditCommand::checkable;
constexpr auto submenu = KWEditCommand::submenu;
constexpr auto separator = KWEditCommand::separator;
constexpr auto inCurves = KWEditCommand::inCurves;
constexpr auto repeats = KWEditCommand::repeats;

#define KW_TEXT(text) QT_TRANSLATE_NOOP("KWEditCommands", text)

// clang-format off
constexpr KWEditCommand commands[] = {
    {"file.new", Menu::file, KW_TEXT("&New"), "Ctrl+N", KW_TEXT("Opens a window on an empty stage")},
    {"file.open", Menu::file, KW_TEXT("&Open..."), "Ctrl+O", KW_TEXT("Opens a document")},
    {"file.recent", Menu::file, KW_TEXT("Open &Recent"), "", KW_TEXT("Documents that were open lately"), submenu},
    {"file.close", Menu::file, KW_TEXT("&Close"), "Ctrl+W", KW_TEXT("Closes this window")},
    {"file.save", Menu::file, KW_TEXT("&Save"), "Ctrl+S", KW_TEXT("Writes the document to its file"), separator},
    {"file.saveAs", Menu::file, KW_TEXT("Save &As..."), "Ctrl+Shift+S", KW_TEXT("Gives the document another file or form")},
    {"file.saveCopy", Menu::file, KW_TEXT("Save a Co&py..."), "Ctrl+Alt+S", KW_TEXT("Writes a copy elsewhere; this document stays as it is")},
    {"file.revert", Menu::file, KW_TEXT("Re&vert to Saved"), "", KW_TEXT("Reads the document from its file again")},
    {"file.exportFrames", Menu::file, KW_TEXT("Export &Frames..."), "Ctrl+E", KW_TEXT("Renders frames as PNG files"), separator},
    {"file.exportMovie", Menu::file, KW_TEXT("Export &Movie..."), "Ctrl+Shift+E", KW_TEXT("Renders a movie")},
    {"file.exportValues", Menu::file, KW_TEXT("Export Va&lues..."), "Ctrl+Alt+E", KW_TEXT("Writes the values of all channels, frame by frame, as CSV or JSON")},
    {"file.quit", Menu::file, KW_TEXT("&Quit"), "Ctrl+Q", KW_TEXT("Closes all windows"), separator},

    {"edit.undo", Menu::edit, KW_TEXT("&Undo"), "Ctrl+Z", KW_TEXT("Takes the latest step back"), repeats},
    {"edit.redo", Menu::edit, KW_TEXT("&Redo"), "Ctrl+Shift+Z; Ctrl+Y", KW_TEXT("Does again what was undone"), repeats},
    {"edit.cancel", Menu::edit, KW_TEXT("Cance&l Drag"), "", KW_TEXT("Puts back what is being dragged; Escape does it too")},
    {"edit.copyChannel", Menu::edit, KW_TEXT("&Copy Channel"), "Ctrl+Alt+C", KW_TEXT("Keeps a copy of the channel that is edited"), separator},
    {"edit.pasteChannel", Menu::edit, KW_TEXT("&Paste Channel"), "Ctrl+Alt+V", KW_TEXT("Puts the copied channel in place of the one that is edited")},

    {"element.add", Menu::element, KW_TEXT("&New Sprite"), "Ctrl+Alt+N", KW_TEXT("Adds a sprite with the usual channels")},
    {"element.shape", Menu::element, KW_TEXT("New &Shape"), "", KW_TEXT("Adds a sprite of a given shape"), submenu},
    {"element.addFiles", Menu::element, KW_TEXT("New from &Files..."), "Ctrl+I", KW_TEXT("Adds a sprite for each picture or movie")},
    {"element.addChannel", Menu::element, KW_TEXT("New &Channel..."), "Ctrl+Shift+N", KW_TEXT("Adds a channel to the selected element"), separator},
    {"element.rename", Menu::element, KW_TEXT("&Rename..."), "F2", KW_TEXT("Gives the selected element or channel another name"), separator},
    {"element.raise", Menu::element, KW_TEXT("Bring For&ward"), "Ctrl+]", KW_TEXT("Moves the element in front of the next one"), repeats},
    {"element.lower", Menu::element, KW_TEXT("Send &Backward"), "Ctrl+[", KW_TEXT("Moves the element behind the one before"), repeats},
    {"element.remove", Menu::element, KW_TEXT("&Delete"), "Ctrl+Backspace", KW_TEXT("Removes the selected element or channel"), separator},

    {"keys.cut", Menu::keys, KW_TEXT("Cu&t"), "Ctrl+X", KW_TEXT("Takes the selected keys to the clipboard")},
    {"keys.copy", Menu::keys, KW_TEXT("&Copy"), "Ctrl+C", KW_TEXT("Copies the selected keys")},
    {"keys.paste", Menu::keys, KW_TEXT("&Paste"), "Ctrl+V", KW_TEXT("Puts copied keys at the current time")},
    {"keys.duplicate", Menu::keys, KW_TEXT("&Duplicate"), "Ctrl+D", KW_TEXT("Repeats the selected keys behind themselves")},
    {"keys.delete", Menu::keys, KW_TEXT("De&lete"), "Delete", KW_TEXT("Removes the selected keys"), inCurves},
    {"keys.selectAll", Menu::keys, KW_TEXT("Select &All"), "Ctrl+A", KW_TEXT("Selects every key of the channel"), separator},
    {"keys.selectNone", Menu::keys, KW_TEXT("Select &None"), "Ctrl+Shift+A", KW_TEXT("Selects no key")},
    {"keys.invert", Menu::keys, KW_TEXT("&Invert Selection"), "Ctrl+Shift+I", KW_TEXT("Selects the other keys")},
    {"keys.next", Menu::keys, KW_TEXT("Select Ne&xt"), "Ctrl+Right", KW_TEXT("Selects the next key"), separator | repeats},
    {"keys.previous", Menu::keys, KW_TEXT("Select Pre&vious"), "Ctrl+Left", KW_TEXT("Selects the key before"), repeats},
    {"keys.nudgeRight", Menu::keys, KW_TEXT("Later by a Frame"), "Right", KW_TEXT("Moves the selected keys by a frame; ten with Shift"), separator | inCurves | repeats},
    {"keys.nudgeLeft", Menu::keys, KW_TEXT("Earlier by a Frame"), "Left", KW_TEXT("Moves the selected keys back by a frame; ten with Shift"), inCurves | repeats},
    {"keys.nudgeUp", Menu::keys, KW_TEXT("Higher by a Step"), "Up", KW_TEXT("Raises the selected keys by a hundredth of what is shown; a tenth with Shift"), inCurves | repeats},
    {"keys.nudgeDown", Menu::keys, KW_TEXT("Lower by a Step"), "Down", KW_TEXT("Lowers the selected keys by a hundredth of what is shown; a tenth with Shift"), inCurves | repeats},
    {"keys.nudgeRightFar", Menu::keys, KW_TEXT("Later by Ten Frames"), "Shift+Right", KW_TEXT("Moves the selected keys by ten frames"), inCurves | repeats},
    {"keys.nudgeLeftFar", Menu::keys, KW_TEXT("Earlier by Ten Frames"), "Shift+Left", KW_TEXT("Moves the selected keys back by ten frames"), inCurves | repeats},
    {"keys.nudgeUpFar", Menu::keys, KW_TEXT("Higher by Ten Steps"), "Shift+Up", KW_TEXT("Raises the selected keys by a tenth of what is shown"), inCurves | repeats},
    {"keys.nudgeDownFar", Menu::keys, KW_TEXT("Lower by Ten Steps"), "Shift+Down", KW_TEXT("Lowers the selected keys by a tenth of what is shown"), inCurves | repeats},
    {"keys.insert", Menu::keys, KW_TEXT("&Set Key Here"), "K", KW_TEXT("Sets a key on the curve at the current time"), separator | inCurves},
    {"keys.exact", Menu::keys, KW_TEXT("Exact Time and Val&ue"), "Ctrl+K", KW_TEXT("Goes to the fields for time and value of the selected keys")},
    {"keys.snap", Menu::keys, KW_TEXT("Snap to &Grid"), "S", KW_TEXT("Dragged keys jump to half the steps of the grid"), checkable | inCurves},

    {"view.elements", Menu::view, KW_TEXT("Ele&ments"), "Alt+1", KW_TEXT("Shows or hides the list of elements"), checkable},
    {"view.stage", Menu::view, KW_TEXT("&Stage"), "Alt+2", KW_TEXT("Shows or hides the stage"), checkable},
    {"view.transport", Menu::view, KW_TEXT("T&ransport"), "Alt+3", KW_TEXT("Shows or hides the transport bar"), checkable},
    {"view.curves", Menu::view, KW_TEXT("&Curves"), "Alt+4", KW_TEXT("Shows or hides the curve editor"), checkable},
    {"view.inspectors", Menu::view, KW_TEXT("&Inspectors"), "Alt+5", KW_TEXT("Shows or hides the inspectors"), checkable},
    {"view.history", Menu::view, KW_TEXT("&History"), "Alt+6", KW_TEXT("Shows or hides the list of steps"), checkable},
    {"view.float", Menu::view, KW_TEXT("Curves in a &Window of Their Own"), "Alt+0", KW_TEXT("Takes the curve editor out of the window, or puts it back"), checkable},
    {"view.frameAll", Menu::view, KW_TEXT("Frame &All Keys"), "A", KW_TEXT("Shows all keys of the curves"), separator | inCurves},
    {"view.frameSelection", Menu::view, KW_TEXT("Frame Se&lected Keys"), "F", KW_TEXT("Shows the selected keys"), inCurves},
    {"view.showAllCurves", Menu::view, KW_TEXT("Show All Cur&ves of the Element"), "Ctrl+Shift+C", KW_TEXT("Draws the curves of the element's other channels too")},
    {"view.hideOtherCurves", Menu::view, KW_TEXT("Hide &Other Curves"), "Ctrl+Shift+H", KW_TEXT("Draws only the curve that is edited")},
    {"view.zoomIn", Menu::view, KW_TEXT("&Zoom In"), "Ctrl++; Ctrl+=", KW_TEXT("Shows the stage larger"), separator | repeats},
    {"view.zoomOut", Menu::view, KW_TEXT("Zoom Ou&t"), "Ctrl+-", KW_TEXT("Shows the stage smaller"), repeats},
    {"view.zoomToFit", Menu::view, KW_TEXT("Zoom to &Fit"), "Ctrl+0", KW_TEXT("Shows the whole stage")},
    {"view.actualSize", Menu::view, KW_TEXT("Actual Size (&1:1)"), "Ctrl+1", KW_TEXT("One pixel of the stage on one of the screen")},
    {"view.drawing", Menu::view, KW_TEXT("Stage Drawin&g"), "", KW_TEXT("What the stage is drawn with"), submenu},
    {"view.language", Menu::view, KW_TEXT("Languag&e"), "", KW_TEXT("The language of the menus"), submenu},
    {"view.fullScreen", Menu::view, KW_TEXT("F&ull Screen"), "F11", KW_TEXT("The window alone on the screen"), checkable | separator},

    {"play.toggle", Menu::playback, KW_TEXT("&Play"), "Space", KW_TEXT("Plays or pauses"), checkable},
    {"play.next", Menu::playback, KW_TEXT("&Next Frame"), ".", KW_TEXT("One frame on"), separator | repeats},
    {"play.previous", Menu::playback, KW_TEXT("Pre&vious Frame"), ",", KW_TEXT("One frame back"), repeats},
    {"play.nextKey", Menu::playback, KW_TEXT("Next &Key"), "Shift+.", KW_TEXT("On to the next key of the channel"), repeats},
    {"play.previousKey", Menu::playback, KW_TEXT("Previous Ke&y"), "Shift+,", KW_TEXT("Back to the key before"), repeats},
    {"play.beginning", Menu::playback, KW_TEXT("To the &Beginning"), "Home", KW_TEXT("To the first frame of the range")},
    {"play.end", Menu::playback, KW_TEXT("To the &End"), "End", KW_TEXT("To the last frame of the range")},
    {"play.loop", Menu::playback, KW_TEXT("&Loop"), "L", KW_TEXT("Begins again at the end"), checkable | separator},

    {"help.tour", Menu::help, KW_TEXT("&Tour"), "F1", KW_TEXT("Walks through one edit")},
    {"help.shortcuts", Menu::help, KW_TEXT("&Commands and Shortcuts"), "Ctrl+F1", KW_TEXT("Lists every command")},
    {"help.about", Menu::help, KW_TEXT("&About kwedit"), "", KW_TEXT("Which version this is"), separator},
};
// clang-format on
#undef KW_TEXT

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

std::span<const KWEditCommand> KWEditCommands::table() {
    return commands;
}

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
    for (const KWEditCommand& command : commands)
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
