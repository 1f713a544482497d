#pragma once

#include <cstddef>
#include <string>
#include <string_view>

// The type codes of the platform's run time, as sequential archives use them.

/// The first type of a string of types, such as "f" of "ff", "[3f]" or "{Point=ff}"; empty when the
/// string does not begin with a whole type of a kind that archives can hold, or nests too deeply.
std::string_view KWFirstType(std::string_view types);

/// Of an array type "[12f]": how many elements, and of what. False for a count beyond 32 bits.
bool KWArrayType(std::string_view type, std::size_t& count, std::string_view& element);

/// Of a struct type "{Point=ff}" the types of its fields, "ff"; empty for a struct without any.
std::string_view KWStructFields(std::string_view type);

/// How a value lies in memory: as in a C struct on this machine. Objects, C strings and classes are
/// not plain values and have no layout here.
struct KWTypeLayout {
    std::size_t size = 0;
    std::size_t alignment = 1;
    bool isPlain = true;
};
KWTypeLayout KWLayoutOfType(std::string_view type);

/// Of a struct type calls `function` with the type of each field, its layout, and its offset in
/// memory.
template <class Function>
void KWForEachStructField(std::string_view type, Function function) {
    std::size_t offset = 0;
    for (std::string_view rest = KWStructFields(type); !rest.empty();) {
        const std::string_view field = KWFirstType(rest);
        const KWTypeLayout layout = KWLayoutOfType(field);
        offset = (offset + layout.alignment - 1) / layout.alignment * layout.alignment;
        function(field, layout, offset);
        offset += layout.size;
        rest.remove_prefix(field.size());
    }
}

inline bool KWIsIntegerType(char code) {
    return std::string_view("cCsSiIlLqQB").find(code) != std::string_view::npos;
}
inline bool KWIsRealType(char code) {
    return code == 'f' || code == 'd';
}

/// How many bytes a number of that code has in memory. A long has 4, as it had where archives come
/// from.
std::size_t KWNumberSize(char code);

/// Whether a value written with one type can be read with another: the same, or integers of other
/// widths and signs, or reals of another width.
bool KWTypesAgree(std::string_view written, std::string_view wanted);
