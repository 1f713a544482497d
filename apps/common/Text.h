#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

/// The text with every control character, and every byte that is no UTF-8, spelled as "\x1b", so
/// that names from a file can go to a terminal.
std::string printable(std::string_view text);

/// Columns on a terminal, taking every character as one wide.
std::size_t columnCount(std::string_view text);

/// The text in quotes, printable, with quotes and backslashes escaped.
std::string inQuotes(std::string_view text);

/// The shortest text that reads back as the same float; "nan", "inf" and "-inf" for those.
void appendFloat(std::string& text, float value);
std::string floatText(float value);

/// The finite or other number that a whole argument spells; UseError that names the option for any
/// other text.
double numberArgument(std::string_view option, const std::string& text);
/// The same, and UseError also for what is not finite.
double finiteArgument(std::string_view option, const std::string& text);

/// "1 key", "2 keys".
std::string counted(std::size_t count, std::string_view thing);

/// "3 bytes <616263>"; of many bytes the first 32 alone.
std::string dataText(std::span<const std::byte> bytes);

/// How an object is referred to: "[12]".
std::string numbered(std::uint64_t number);

/// Lines of cells, shown in aligned columns two spaces apart.
class Table {
  public:
    enum class Align { left, right };

    /// Columns beyond the given ones are aligned to the left.
    explicit Table(std::vector<Align> columns) : _columns(std::move(columns)) {}

    void addRow(std::vector<std::string> cells) { _rows.push_back(std::move(cells)); }
    std::string text() const;

  private:
    std::vector<Align> _columns;
    std::vector<std::vector<std::string>> _rows;
};
