#include <KWFoundation/KWText.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <system_error>

namespace {

// The longest text is that of the largest double with six decimals: 309 digits, the point, the
// sign.
using NumberBuffer = std::array<char, 352>;

template <class... Arguments>
std::string textOf(Arguments... arguments) {
    NumberBuffer buffer;
    const auto result = std::to_chars(buffer.data(), buffer.data() + buffer.size(), arguments...);
    return std::string(buffer.data(), result.ptr);
}

/// The number behind an 'e', held within bounds that no text's length can outweigh.
std::int64_t saturatedExponent(std::string_view text) {
    constexpr std::int64_t limit = 100'000'000'000'000'000;
    const bool negative = text.starts_with('-');
    if (negative || text.starts_with('+'))
        text.remove_prefix(1);
    std::int64_t exponent = 0;
    for (char c : text)
        exponent = std::min(limit, exponent * 10 + (c - '0'));
    return negative ? -exponent : exponent;
}

/// What a well-formed number without sign that no double can hold reads as: infinity or zero, as
/// its first digit that counts stands before or behind the point.
double limitOfUnrepresentable(std::string_view text) {
    const std::size_t exponentAt = text.find_first_of("eE");
    const std::string_view mantissa = text.substr(0, exponentAt);
    const std::size_t point = std::min(mantissa.find('.'), mantissa.size());
    const std::size_t first = mantissa.find_first_of("123456789");
    if (first == std::string_view::npos)
        return 0;
    const auto place = static_cast<std::int64_t>(point) - static_cast<std::int64_t>(first);
    const std::int64_t exponent =
        exponentAt == std::string_view::npos ? 0 : saturatedExponent(text.substr(exponentAt + 1));
    return place + exponent > 0 ? std::numeric_limits<double>::infinity() : 0;
}

bool isHighSurrogate(std::uint32_t unit) {
    return unit >= 0xD800 && unit <= 0xDBFF;
}

bool isLowSurrogate(std::uint32_t unit) {
    return unit >= 0xDC00 && unit <= 0xDFFF;
}

void appendUTF8(std::string& text, std::uint32_t character) {
    const auto append = [&text](std::uint32_t byte) { text.push_back(static_cast<char>(byte)); };
    if (character < 0x80) {
        append(character);
    } else if (character < 0x800) {
        append(0xC0 | character >> 6);
        append(0x80 | (character & 0x3F));
    } else if (character < 0x10000) {
        append(0xE0 | character >> 12);
        append(0x80 | (character >> 6 & 0x3F));
        append(0x80 | (character & 0x3F));
    } else {
        append(0xF0 | character >> 18);
        append(0x80 | (character >> 12 & 0x3F));
        append(0x80 | (character >> 6 & 0x3F));
        append(0x80 | (character & 0x3F));
    }
}

struct Decoded {
    std::uint32_t character;
    std::size_t length; ///< 0 when the bytes are no character
};

/// The character that `text` begins with. Surrogates written as characters pass.
Decoded firstCharacter(std::string_view text) {
    const auto byte = [&text](std::size_t i) {
        return static_cast<std::uint32_t>(static_cast<unsigned char>(text[i]));
    };
    const std::uint32_t lead = byte(0);
    if (lead < 0x80)
        return {lead, 1};
    const std::size_t length = lead >= 0xF0 ? 4 : lead >= 0xE0 ? 3 : 2;
    if (lead < 0xC2 || lead > 0xF4 || text.size() < length)
        return {0, 0};
    std::uint32_t character = lead & (0xFFu >> (length + 1));
    for (std::size_t i = 1; i < length; ++i) {
        if ((byte(i) & 0xC0) != 0x80)
            return {0, 0};
        character = character << 6 | (byte(i) & 0x3F);
    }
    constexpr std::array<std::uint32_t, 5> least{0, 0, 0x80, 0x800, 0x10000};
    if (character < least[length] || character > 0x10FFFF)
        return {0, 0};
    return {character, length};
}

} // namespace

std::string KWStringFromFloat(float value) {
    return textOf(static_cast<double>(value), std::chars_format::general, 7);
}

std::string KWExactStringFromFloat(float value) {
    return textOf(value);
}

std::string KWExactStringFromDouble(double value) {
    return textOf(value);
}

std::string KWFixedStringFromDouble(double value) {
    return textOf(value, std::chars_format::fixed, 6);
}

std::optional<double> KWDoubleFromString(std::string_view text) {
    const bool negative = text.starts_with('-');
    if (negative || text.starts_with('+'))
        text.remove_prefix(1);
    // from_chars would take a second minus sign and a NaN's payload in parentheses.
    if (text.empty() || text.front() == '-' || text.back() == ')')
        return std::nullopt;
    double value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (error == std::errc::invalid_argument || end != text.data() + text.size())
        return std::nullopt;
    if (error == std::errc::result_out_of_range)
        value = limitOfUnrepresentable(text);
    return negative ? -value : value;
}

std::string KWUTF8FromUTF16(std::string_view bigEndianBytes) {
    std::string text;
    text.reserve(bigEndianBytes.size() / 2);
    const auto unitAt = [bigEndianBytes](std::size_t i) {
        return static_cast<std::uint32_t>(static_cast<unsigned char>(bigEndianBytes[i])) << 8 |
               static_cast<unsigned char>(bigEndianBytes[i + 1]);
    };
    const std::size_t whole = bigEndianBytes.size() / 2 * 2;
    for (std::size_t i = 0; i < whole; i += 2) {
        std::uint32_t character = unitAt(i);
        if (isHighSurrogate(character) && i + 2 < whole && isLowSurrogate(unitAt(i + 2))) {
            i += 2;
            character = 0x10000 + ((character - 0xD800) << 10) + (unitAt(i) - 0xDC00);
        }
        appendUTF8(text, character);
    }
    if (whole != bigEndianBytes.size())
        appendUTF8(text, 0xFFFD);
    return text;
}

std::u16string KWUTF16FromUTF8(std::string_view text) {
    std::u16string units;
    units.reserve(text.size());
    while (!text.empty()) {
        const Decoded decoded = firstCharacter(text);
        if (decoded.length == 0) {
            units.push_back(u'\uFFFD');
        } else if (decoded.character < 0x10000) {
            units.push_back(static_cast<char16_t>(decoded.character));
        } else {
            const std::uint32_t beyond = decoded.character - 0x10000;
            units.push_back(static_cast<char16_t>(0xD800 + (beyond >> 10)));
            units.push_back(static_cast<char16_t>(0xDC00 + (beyond & 0x3FF)));
        }
        text.remove_prefix(std::max<std::size_t>(decoded.length, 1));
    }
    return units;
}
