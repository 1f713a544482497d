#include <KWFoundation/KWText.h>

#include <apps/common/Errors.h>
#include <apps/common/Text.h>

#include <algorithm>
#include <cmath>

namespace {

/// How many bytes of well-formed UTF-8 begin the text; 0 for none.
std::size_t sequenceLength(std::string_view text) {
    const auto byte = [text](std::size_t i) { return static_cast<unsigned char>(text[i]); };
    const unsigned char first = byte(0);
    if (first < 0x80)
        return 1;
    const std::size_t length = first >= 0xf0 ? 4 : first >= 0xe0 ? 3 : 2;
    if (first < 0xc2 || first > 0xf4 || text.size() < length)
        return 0;
    for (std::size_t i = 1; i < length; ++i)
        if ((byte(i) & 0xc0) != 0x80)
            return 0;
    if (length == 3)
        return (first == 0xe0 && byte(1) < 0xa0) || (first == 0xed && byte(1) >= 0xa0) ? 0 : 3;
    if (length == 4)
        return (first == 0xf0 && byte(1) < 0x90) || (first == 0xf4 && byte(1) >= 0x90) ? 0 : 4;
    return length;
}

void appendEscaped(std::string& text, char c) {
    constexpr char digits[] = "0123456789abcdef";
    const auto byte = static_cast<unsigned char>(c);
    text += {'\\', 'x', digits[byte >> 4], digits[byte & 15]};
}

} // namespace

std::string printable(std::string_view text) {
    std::string shown;
    while (!text.empty()) {
        const std::size_t length = sequenceLength(text);
        const auto first = static_cast<unsigned char>(text[0]);
        // U+0080 to U+009F are control characters too.
        const bool isControl =
            first < 0x20 || first == 0x7f ||
            (length == 2 && first == 0xc2 && static_cast<unsigned char>(text[1]) < 0xa0);
        if (length == 0 || isControl) {
            const std::size_t taken = std::max<std::size_t>(length, 1);
            for (std::size_t i = 0; i < taken; ++i)
                appendEscaped(shown, text[i]);
            text.remove_prefix(taken);
            continue;
        }
        shown += text.substr(0, length);
        text.remove_prefix(length);
    }
    return shown;
}

std::size_t columnCount(std::string_view text) {
    return static_cast<std::size_t>(std::count_if(text.begin(), text.end(), [](char c) {
        return (static_cast<unsigned char>(c) & 0xc0) != 0x80;
    }));
}

std::string inQuotes(std::string_view text) {
    std::string inside;
    for (const char c : text) {
        if (c == '"' || c == '\\')
            inside += '\\';
        inside += c;
    }
    return std::string("\"").append(printable(inside)).append("\"");
}

std::string floatText(float value) {
    if (std::isnan(value))
        return "nan";
    return KWExactStringFromFloat(value);
}

void appendFloat(std::string& text, float value) {
    text += floatText(value);
}

double numberArgument(std::string_view option, const std::string& text) {
    const std::optional<double> number = KWDoubleFromString(text);
    if (!number)
        throw UseError(std::string(option) + " needs a number, not " + inQuotes(text));
    return *number;
}

double finiteArgument(std::string_view option, const std::string& text) {
    const double number = numberArgument(option, text);
    if (!std::isfinite(number))
        throw UseError(std::string(option) + " needs a finite number, not " + inQuotes(text));
    return number;
}

std::string counted(std::size_t count, std::string_view thing) {
    return std::to_string(count) + " " + std::string(thing) + (count == 1 ? "" : "s");
}

std::string dataText(std::span<const std::byte> bytes) {
    constexpr std::size_t longest = 32;
    constexpr char digits[] = "0123456789abcdef";
    std::string text = counted(bytes.size(), "byte") + " <";
    for (const std::byte byte : bytes.first(std::min(bytes.size(), longest))) {
        text += digits[std::to_integer<unsigned>(byte) >> 4];
        text += digits[std::to_integer<unsigned>(byte) & 15];
    }
    return text + (bytes.size() > longest ? "..." : "") + ">";
}

std::string numbered(std::uint64_t number) {
    return std::string("[").append(std::to_string(number)).append("]");
}

std::string Table::text() const {
    std::vector<std::size_t> widths;
    for (const std::vector<std::string>& row : _rows) {
        widths.resize(std::max(widths.size(), row.size()));
        for (std::size_t i = 0; i < row.size(); ++i)
            widths[i] = std::max(widths[i], columnCount(row[i]));
    }
    std::string text;
    for (const std::vector<std::string>& row : _rows) {
        std::string line;
        for (std::size_t i = 0; i < row.size(); ++i) {
            const std::string space(widths[i] - columnCount(row[i]), ' ');
            const bool isRight = i < _columns.size() && _columns[i] == Align::right;
            line += (i > 0 ? "  " : "") + (isRight ? space + row[i] : row[i] + space);
        }
        line.erase(line.find_last_not_of(' ') + 1);
        text += line + "\n";
    }
    return text;
}
