#pragma once

#include <QAction>
#include <QHash>
#include <QMenu>
#include <QObject>
#include <functional>
#include <span>
#include <string_view>
#include <vector>

class QMenuBar;

/// The menus of the window, from left to right.
enum class KWEditMenu { file, edit, element, keys, view, playback, help };

/// One command of the window. Texts are in English, as translators find them.
struct KWEditCommand {
    enum Trait : unsigned {
        plain = 0,
        checkable = 1,
        submenu = 2,   ///< no command but a menu of its own, which the window fills
        separator = 4, ///< a line before it
        inCurves = 8,  ///< its shortcut is for the curve editor alone: keys that type elsewhere
        repeats = 16,  ///< goes on while the shortcut is held down
    };

    const char* id; ///< such as "file.save"
    KWEditMenu menu;
    const char* text;     ///< with the mark of its access key
    const char* shortcut; ///< portable texts with "; " between; "" for none
    const char* tip;      ///< a sentence without its full stop
    unsigned traits = plain;
};

/// Every command of the window: one table, from which the menus, the shortcuts, the tool tips and
/// the list in the Help menu are made. What a command does is set with connectTo().
class KWEditCommands : public QObject {
    Q_OBJECT

  public:
    static std::span<const KWEditCommand> table();
    static QString title(KWEditMenu menu);
    /// Translated, without the mark of the access key and the dots.
    static QString plainText(const KWEditCommand& command);
    static QString tip(const KWEditCommand& command);

    /// The actions belong to this. Shortcuts count in the whole window but for those of the curve
    /// editor, which count where useInCurves() says.
    explicit KWEditCommands(QWidget& window);

    /// std::out_of_range for an unknown one.
    QAction* action(std::string_view id) const;
    QMenu* submenu(std::string_view id) const;
    void connectTo(std::string_view id, const QObject* context,
                   const std::function<void()>& run) const;
    void setEnabled(std::string_view id, bool isEnabled) const;
    void setChecked(std::string_view id, bool isChecked) const;

    void fill(QMenuBar& bar);
    /// Where the shortcuts of the curve editor count.
    void useInCurves(QWidget& curves) const;

  private:
    struct Entry {
        const KWEditCommand* command;
        QAction* action;
        QMenu* submenu;
    };
    const Entry& entry(std::string_view id) const;
    void add(const KWEditCommand& command, QWidget& window);

    std::vector<Entry> _entries;
    QHash<int, QMenu*> _menus;
};
