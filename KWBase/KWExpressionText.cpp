#include <KWBase/KWExpressionText.h>

#include <algorithm>
#include <array>
#include <numeric>
#include <utility>

namespace {

using namespace std::string_view_literals;

/// How many bytes the character has that the text begins with; 0 when they are no UTF-8.
std::size_t characterLength(std::string_view text) {
    const auto byte = [text](std::size_t i) { return static_cast<unsigned char>(text[i]); };
    const unsigned lead = byte(0);
    if (lead < 0x80)
        return 1;
    const std::size_t length = lead >= 0xF0 ? 4 : lead >= 0xE0 ? 3 : 2;
    if (lead < 0xC2 || lead > 0xF4 || text.size() < length)
        return 0;
    for (std::size_t i = 1; i < length; ++i)
        if ((byte(i) & 0xC0) != 0x80)
            return 0;
    const bool isOverlong = (lead == 0xE0 && byte(1) < 0xA0) || (lead == 0xF0 && byte(1) < 0x90);
    const bool isBeyondUnicode = lead == 0xF4 && byte(1) >= 0x90;
    return isOverlong || isBeyondUnicode ? 0 : length;
}

/// How many bytes the blank has, of any kind, that the text begins with; 0 when none is there.
std::size_t blankLength(std::string_view text) {
    const char first = text.front();
    if (first == ' ' || (first >= '\t' && first <= '\r'))
        return 1;
    if (static_cast<unsigned char>(first) < 0x80)
        return 0;
    constexpr std::array blanks{
        "\u0085"sv, "\u00A0"sv, "\u1680"sv, "\u2000"sv, "\u2001"sv, "\u2002"sv, "\u2003"sv,
        "\u2004"sv, "\u2005"sv, "\u2006"sv, "\u2007"sv, "\u2008"sv, "\u2009"sv, "\u200A"sv,
        "\u2028"sv, "\u2029"sv, "\u202F"sv, "\u205F"sv, "\u3000"sv,
    };
    for (std::string_view blank : blanks)
        if (text.starts_with(blank))
            return blank.size();
    return 0;
}

/// A letter of two bytes, of Greek or Latin-1, in lower case; as it is when it has none.
unsigned lowerCase(unsigned letter) {
    const bool isLatin = letter >= 0xC0 && letter <= 0xDE && letter != 0xD7;
    const bool isGreek = letter >= 0x391 && letter <= 0x3AB && letter != 0x3A2;
    if (isLatin || isGreek)
        return letter + 0x20;
    if (letter == 0x386) // the accented ones
        return 0x3AC;
    if (letter >= 0x388 && letter <= 0x38A)
        return letter + 0x25;
    if (letter == 0x38C)
        return 0x3CC;
    if (letter == 0x38E || letter == 0x38F)
        return letter + 0x3F;
    return letter;
}

/// Every letter keeps its number of bytes.
void makeLowerCase(std::string& text) {
    for (std::size_t i = 0; i < text.size(); ++i) {
        const auto byte = static_cast<unsigned char>(text[i]);
        if (byte >= 'A' && byte <= 'Z') {
            text[i] = static_cast<char>(byte + 0x20);
        } else if ((byte == 0xC3 || byte == 0xCE) &&
                   characterLength(std::string_view(text).substr(i)) == 2) {
            const unsigned low = static_cast<unsigned char>(text[i + 1]) & 0x3F;
            const unsigned letter = lowerCase((byte & 0x1Fu) << 6 | low);
            text[i] = static_cast<char>(0xC0 | letter >> 6);
            text[i + 1] = static_cast<char>(0x80 | (letter & 0x3F));
        }
    }
}

/// A text, and for each of its bytes and for its end the place in the text as it was typed.
struct Marked {
    explicit Marked(std::string_view text) : bytes(text), origins(text.size() + 1) {
        std::iota(origins.begin(), origins.end(), 0u);
    }

    std::string bytes;
    std::vector<std::uint32_t> origins;
};

/// Rewrites a text in its own place, from its beginning to its end; it never becomes longer.
class Rewriter {
  public:
    explicit Rewriter(Marked& text) : _text(text) {}

    bool isAtEnd() const { return _read == _text.bytes.size(); }
    std::string_view rest() const { return std::string_view(_text.bytes).substr(_read); }

    void skip(std::size_t count) { _read += count; }

    void skipBlanks() {
        while (!isAtEnd()) {
            const std::size_t length = blankLength(rest());
            if (length == 0)
                return;
            skip(length);
        }
    }

    void keep(std::size_t count) {
        for (; count > 0; --count)
            replace(1, _text.bytes[_read]);
    }

    void keepUpTo(char stop) { keep(std::min(rest().find(stop), rest().size())); }

    /// Writes one byte for the next `count`.
    void replace(std::size_t count, char byte) {
        _text.bytes[_written] = byte;
        _text.origins[_written] = _text.origins[_read];
        ++_written;
        _read += count;
    }

    void finish() {
        const std::uint32_t end = _text.origins.back();
        _text.bytes.resize(_written);
        _text.origins.resize(_written + 1);
        _text.origins.back() = end;
    }

  private:
    Marked& _text;
    std::size_t _read = 0;
    std::size_t _written = 0;
};

// What the platform's scanner did: it skips blanks wherever it begins to look.

void removeSpaces(Marked& text) {
    Rewriter rewriter(text);
    for (;;) {
        rewriter.skipBlanks();
        if (rewriter.isAtEnd())
            break;
        rewriter.keepUpTo(' ');
    }
    rewriter.finish();
}

void replaceVariable(Marked& text) {
    Rewriter rewriter(text);
    for (;;) {
        rewriter.skipBlanks();
        rewriter.keepUpTo('t');
        if (rewriter.isAtEnd())
            break;
        if (rewriter.rest().starts_with("t("))
            rewriter.keep(2);
        else if (rewriter.rest().starts_with("tan"))
            rewriter.keep(3);
        else
            rewriter.replace(1, 'x');
    }
    rewriter.finish();
}

void encode(Marked& text) {
    Rewriter rewriter(text);
    while (!rewriter.isAtEnd()) {
        const std::string_view rest = rewriter.rest();
        const std::size_t length = characterLength(rest);
        if (static_cast<unsigned char>(rest.front()) < 0x80)
            rewriter.keep(1);
        else if (rest.starts_with("\u03C0") || rest.starts_with("\u220F"))
            rewriter.replace(length, '\xB8');
        else
            rewriter.replace(std::max<std::size_t>(length, 1), '?');
    }
    rewriter.finish();
}

void clean(Marked& text, std::int32_t mode) {
    makeLowerCase(text.bytes);
    if (mode == 1)
        replaceVariable(text);
    removeSpaces(text);
}

} // namespace

std::string cleanedAlgebricString(std::string_view text) {
    Marked marked(text);
    clean(marked, 0);
    return std::move(marked.bytes);
}

std::string cleanedXStringFromTString(std::string_view text) {
    Marked marked(text);
    clean(marked, 1);
    return std::move(marked.bytes);
}

std::string tStringFromXString(std::string_view text) {
    std::string replaced(text);
    std::replace(replaced.begin(), replaced.end(), 'x', 't');
    return replaced;
}

std::string KWExpressionBytes(std::string_view text) {
    Marked marked(text);
    encode(marked);
    return std::move(marked.bytes);
}

KWNormalisedText::KWNormalisedText(std::string_view text, std::int32_t mode) {
    Marked marked(text);
    clean(marked, mode);
    encode(marked);
    bytes = std::move(marked.bytes);
    origins = std::move(marked.origins);
}

std::optional<std::string> KWPlainExpressionBytes(std::string_view text, std::int32_t mode) {
    std::string bytes(text.size(), '\0');
    std::size_t written = 0;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const char c = text[i];
        if (c < ' ' || c > '~' || (c >= 'A' && c <= 'Z'))
            return std::nullopt;
        if (c == ' ')
            continue;
        const bool isVariable = c == 't' && mode == 1 && !text.substr(i).starts_with("t(") &&
                                !text.substr(i).starts_with("tan");
        bytes[written++] = isVariable ? 'x' : c;
    }
    bytes.resize(written);
    return bytes;
}

std::int16_t KWExpressionFault::code() const {
    switch (kind) {
    case Kind::parentheses:
    case Kind::unknown:
    case Kind::missing:
        return static_cast<std::int16_t>(kind);
    case Kind::missingOperator:
        return static_cast<std::int16_t>(Kind::parentheses);
    case Kind::tooLong:
    case Kind::tooDeep:
        return static_cast<std::int16_t>(Kind::unknown);
    default:
        return 0;
    }
}

std::string KWExpressionFault::sentence() const {
    switch (kind) {
    case Kind::none:
        return "";
    case Kind::parentheses:
        return "the parentheses do not match";
    case Kind::unknown:
        return "a character or a name is not understood";
    case Kind::missing:
        return "an operand is missing";
    case Kind::tooLong:
        return "the expression is longer than 32,767 bytes";
    case Kind::tooDeep:
        return "the expression is nested more than 1,000 deep";
    case Kind::noText:
        return "there is no expression";
    case Kind::badMode:
        return "the mode of the expression is neither 0 nor 1";
    case Kind::missingOperator:
        return "an operator is missing beside a parenthesis";
    case Kind::noInterpreter:
        return "the channel has no interpreter";
    case Kind::noRule:
        return "there is no rule for the derivative";
    case Kind::tooLarge:
        return "the derivative has more than 4,000,000 parts";
    }
    return "";
}
