#include <KWBase/KWUnitFormatter.h>
#include <KWFoundation/KWText.h>

#include <algorithm>
#include <array>

namespace {

// White space outside ASCII, in UTF-8: French texts have U+00A0 or U+202F before a unit.
constexpr std::array<std::string_view, 19> wideSpaces{
    "\xC2\x85",     "\xC2\xA0",     "\xE1\x9A\x80", "\xE2\x80\x80", "\xE2\x80\x81",
    "\xE2\x80\x82", "\xE2\x80\x83", "\xE2\x80\x84", "\xE2\x80\x85", "\xE2\x80\x86",
    "\xE2\x80\x87", "\xE2\x80\x88", "\xE2\x80\x89", "\xE2\x80\x8A", "\xE2\x80\xA8",
    "\xE2\x80\xA9", "\xE2\x80\xAF", "\xE2\x81\x9F", "\xE3\x80\x80",
};

/// The length of the white space character at the start of the text, 0 for none.
std::size_t spaceAt(std::string_view text) {
    if (text.empty())
        return 0;
    if (text.front() == ' ' || (text.front() >= '\t' && text.front() <= '\r'))
        return 1;
    const auto* const found =
        std::find_if(wideSpaces.begin(), wideSpaces.end(),
                     [text](std::string_view space) { return text.starts_with(space); });
    return found == wideSpaces.end() ? 0 : found->size();
}

std::string_view withoutLeadingSpace(std::string_view text) {
    while (const std::size_t length = spaceAt(text))
        text.remove_prefix(length);
    return text;
}

std::size_t digitsAt(std::string_view text) {
    const auto* const end =
        std::find_if(text.begin(), text.end(), [](char c) { return c < '0' || c > '9'; });
    return static_cast<std::size_t>(end - text.begin());
}

std::size_t signAt(std::string_view text) {
    return text.starts_with('-') || text.starts_with('+') ? 1 : 0;
}

/// The length of the number at the start of the text, 0 for none.
std::size_t numberAt(std::string_view text) {
    std::size_t length = signAt(text);
    std::size_t digits = digitsAt(text.substr(length));
    length += digits;
    if (text.substr(length).starts_with('.')) {
        const std::size_t fraction = digitsAt(text.substr(length + 1));
        digits += fraction;
        length += 1 + fraction;
    }
    if (digits == 0)
        return 0;
    const std::string_view rest = text.substr(length);
    if (rest.starts_with('e') || rest.starts_with('E')) {
        const std::size_t sign = signAt(rest.substr(1));
        if (const std::size_t exponent = digitsAt(rest.substr(1 + sign)))
            length += 1 + sign + exponent;
    }
    return length;
}

} // namespace

KWScannedNumber KWScanNumber(std::string_view text) {
    KWScannedNumber scanned;
    text = withoutLeadingSpace(text);
    const std::size_t length = numberAt(text);
    if (const auto number = KWDoubleFromString(text.substr(0, length))) {
        scanned.number = *number;
        scanned.isThere = true;
    }
    text = withoutLeadingSpace(text.substr(length));
    std::size_t run = 0;
    while (run < text.size() && spaceAt(text.substr(run)) == 0)
        ++run;
    scanned.run = text.substr(0, run);
    scanned.isAll = withoutLeadingSpace(text.substr(run)).empty();
    return scanned;
}
