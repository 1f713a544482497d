#pragma once

#include <KWFoundation/KWPropertyList.h>

#include <algorithm>
#include <bit>
#include <string>
#include <utility>
#include <vector>

/// A property list as one text in which every difference shows, the bits of reals included.
/// `widths` tells 4-byte reals from 8-byte ones, which the XML form does not.
inline std::string textOf(const KWPropertyList& list, KWPropertyList::Index node,
                          bool widths = true) {
    using Kind = KWPropertyList::Kind;
    switch (list.kind(node)) {
    case Kind::null:
        return "null";
    case Kind::boolean:
        return list.boolValue(node) ? "true" : "false";
    case Kind::integer:
        return list.isUnsigned(node) ? std::to_string(list.uidValue(node)) + "u"
                                     : std::to_string(list.intValue(node));
    case Kind::real:
        return (widths && list.isSingle(node) ? "single" : "real") +
               std::to_string(std::bit_cast<std::uint64_t>(list.realValue(node)));
    case Kind::date:
        return "date" + std::to_string(std::bit_cast<std::uint64_t>(list.realValue(node)));
    case Kind::uid:
        return "uid" + std::to_string(list.uidValue(node));
    case Kind::string:
        return "\"" + std::string(list.stringValue(node)) + "\"";
    case Kind::data: {
        std::string text = "<";
        for (const std::byte byte : list.dataValue(node))
            text += std::to_string(std::to_integer<int>(byte)) + " ";
        return text + ">";
    }
    case Kind::array:
    case Kind::set: {
        std::string text = list.kind(node) == Kind::array ? "(" : "{(";
        for (const auto child : list.children(node))
            text += textOf(list, child, widths) + ",";
        return text + ")";
    }
    case Kind::dictionary: {
        std::vector<std::pair<std::string, std::string>> entries;
        const auto children = list.children(node);
        for (std::size_t k = 0; k < list.count(node); ++k)
            entries.emplace_back(std::string(list.stringValue(children[k])),
                                 textOf(list, children[list.count(node) + k], widths));
        std::ranges::sort(entries);
        std::string text = "{";
        for (const auto& [key, value] : entries)
            text += key + "=" + value + ";";
        return text + "}";
    }
    }
    return {};
}

inline std::string textOf(const KWPropertyList& list, bool widths = true) {
    return textOf(list, list.root(), widths);
}
