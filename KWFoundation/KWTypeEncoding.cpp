#include <KWFoundation/KWTypeEncoding.h>

#include <algorithm>
#include <charconv>
#include <cstdint>

namespace {

/// Structs in arrays in structs; real archives have two or three.
constexpr int maximumDepth = 32;

std::size_t typeLength(std::string_view types, int depth) {
    if (types.empty() || depth > maximumDepth)
        return 0;
    const char code = types[0];
    if (KWIsIntegerType(code) || KWIsRealType(code) ||
        std::string_view("*@#:%+").find(code) != std::string_view::npos)
        return 1;
    std::size_t at = 1;
    if (code == '[') {
        while (at < types.size() && types[at] >= '0' && types[at] <= '9')
            ++at;
        if (at == 1)
            return 0;
        const std::size_t element = typeLength(types.substr(at), depth + 1);
        at += element;
        return element > 0 && at < types.size() && types[at] == ']' ? at + 1 : 0;
    }
    if (code != '{')
        return 0;
    while (at < types.size() && types[at] != '=' && types[at] != '}')
        ++at;
    if (at < types.size() && types[at] == '=')
        ++at;
    while (at < types.size() && types[at] != '}') {
        const std::size_t field = typeLength(types.substr(at), depth + 1);
        if (field == 0)
            return 0;
        at += field;
    }
    return at < types.size() ? at + 1 : 0;
}

} // namespace

std::string_view KWFirstType(std::string_view types) {
    return types.substr(0, typeLength(types, 0));
}

bool KWArrayType(std::string_view type, std::size_t& count, std::string_view& element) {
    std::uint32_t number = 0;
    const auto end = std::from_chars(type.data() + 1, type.data() + type.size(), number);
    count = number;
    element = type.substr(static_cast<std::size_t>(end.ptr - type.data()));
    element.remove_suffix(1);
    return end.ec == std::errc();
}

std::string_view KWStructFields(std::string_view type) {
    const std::size_t equals = type.find_first_of("=}");
    if (equals == std::string_view::npos || type[equals] == '}')
        return {};
    return type.substr(equals + 1, type.size() - equals - 2);
}

std::size_t KWNumberSize(char code) {
    switch (code) {
    case 'c':
    case 'C':
    case 'B':
        return 1;
    case 's':
    case 'S':
        return 2;
    case 'q':
    case 'Q':
    case 'd':
        return 8;
    default:
        return 4;
    }
}

KWTypeLayout KWLayoutOfType(std::string_view type) {
    const char code = type[0];
    if (KWIsIntegerType(code) || KWIsRealType(code))
        return {KWNumberSize(code), KWNumberSize(code), true};
    if (code == '[') {
        std::size_t count = 0;
        std::string_view element;
        KWArrayType(type, count, element);
        KWTypeLayout layout = KWLayoutOfType(element);
        layout.size *= count;
        return layout;
    }
    if (code != '{')
        return {0, 1, false};
    KWTypeLayout layout;
    KWForEachStructField(type,
                         [&](std::string_view, const KWTypeLayout& field, std::size_t offset) {
                             layout.isPlain = layout.isPlain && field.isPlain;
                             layout.alignment = std::max(layout.alignment, field.alignment);
                             layout.size = offset + field.size;
                         });
    layout.size = (layout.size + layout.alignment - 1) / layout.alignment * layout.alignment;
    return layout;
}

bool KWTypesAgree(std::string_view written, std::string_view wanted) {
    if (written == wanted)
        return true;
    if (written.size() != 1 || wanted.size() != 1)
        return false;
    return (KWIsIntegerType(written[0]) && KWIsIntegerType(wanted[0])) ||
           (KWIsRealType(written[0]) && KWIsRealType(wanted[0]));
}
