#pragma once

#include <KWFoundation/KWExport.h>

#include <string>
#include <string_view>

/// The texts that people read, by key, in their language. A table is a property-list "strings"
/// file: lines of `"key" = "text";` with comments as in C; a backslash stands before a quote,
/// before itself, and before n and t for the end of a line and a tab.
///
/// The language is the first of the environment's LANGUAGE, LC_ALL, LC_MESSAGES and LANG that names
/// one, looked up once ("C" and "POSIX" are English); a language without the table, or without the
/// key, falls back to English. Of a name such as "de_AT.UTF-8" only the language counts.
///
/// Everything here may be called from any thread.
class KW_EXPORT KWBundle {
  public:
    /// The bundle of this framework. Its tables are built in.
    static KWBundle& frameworkBundle();

    /// The text of `key` in the table, in the preferred language, else in English, else `value`.
    /// An empty `value` stands for the key itself.
    std::string localizedStringForKeyValueTable(std::string_view key, std::string_view value,
                                                std::string_view table) const;

    /// The language in force, such as "de".
    std::string language() const;

    /// Takes another language from now on; "" takes the environment's. Names that others have
    /// looked up already stay as they are.
    void setLanguage(std::string_view language);

    /// Adds a table, or adds to it, in one language. The text is that of a strings file. Throws
    /// KWException "Malformed strings table" with the line in its reason; nothing is then added.
    void addTable(std::string_view language, std::string_view table, std::string_view text);

    /// Has `loader` called once, before the next look-up, to add tables; it may not look anything
    /// up. So a library announces its tables as it is loaded and they are read when they are
    /// needed. An exception that it throws is logged.
    void addTableLoader(void (*loader)(KWBundle&));

  private:
    KWBundle();
    ~KWBundle();
    struct Tables;
    Tables* _tables;
};
