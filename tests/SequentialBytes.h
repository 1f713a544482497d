#pragma once

#include <KWFoundation/KWTypes.h>

#include <algorithm>
#include <cstddef>
#include <string>
#include <string_view>

/// Bytes as people write them down: pairs of hexadecimal digits, text in quotes, blanks anywhere.
/// Digits in angle brackets are a number, the most significant first, in the archive's byte order.
inline KWData bytesOf(std::string_view text, bool bigEndian = true) {
    KWData bytes;
    std::size_t number = 0;
    const auto digit = [](char c) { return c <= '9' ? c - '0' : (c | 0x20) - 'a' + 10; };
    for (std::size_t k = 0; k < text.size();) {
        if (text[k] == ' ' || text[k] == '\n') {
            ++k;
        } else if (text[k] == '<') {
            number = bytes.size();
            ++k;
        } else if (text[k] == '>') {
            if (!bigEndian)
                std::reverse(bytes.begin() + static_cast<std::ptrdiff_t>(number), bytes.end());
            ++k;
        } else if (text[k] == '"') {
            for (++k; text[k] != '"'; ++k)
                bytes.push_back(static_cast<std::byte>(text[k]));
            ++k;
        } else {
            bytes.push_back(static_cast<std::byte>(16 * digit(text[k]) + digit(text[k + 1])));
            k += 2;
        }
    }
    return bytes;
}

inline const std::string littleEndianHeader = "04 0b \"streamtyped\" 81 e803 ";
inline const std::string bigEndianHeader = "04 0b \"typedstream\" 81 03e8 ";

/// A whole archive in either byte order.
inline KWData sequentialStream(std::string_view body, bool bigEndian) {
    KWData bytes = bytesOf(bigEndian ? bigEndianHeader : littleEndianHeader);
    const KWData rest = bytesOf(body, bigEndian);
    bytes.insert(bytes.end(), rest.begin(), rest.end());
    return bytes;
}

/// The worked example of the form: a channel's class with a value of each kind.
inline const std::string exampleBody =
    "84 01 \"@\" 84 84 84 12 \"KWKeyFramedChannel\" 01 84 84 09 \"KWChannel\" 02"
    "84 84 08 \"NSObject\" 00 85"
    "92 84 84 84 08 \"NSString\" 01 95 84 01 \"+\" 04 \"gain\" 86"
    "92 85"
    "84 01 \"f\" 83 <3f000000>"
    "84 01 \"i\" 81 <012c>"
    "84 01 \"d\" 02"
    "84 01 \"c\" 01"
    "92 84 84 84 0e \"NSMutableArray\" 00 84 84 07 \"NSArray\" 00 95"
    "99 04"
    "92 84 84 84 08 \"NSNumber\" 00 84 84 07 \"NSValue\" 00 95 84 01 \"*\" 84 98 98 83 <3fc00000> "
    "86"
    "92 84 9c a0 9e 98 07 86"
    "92 96 92 92 86"
    "92 84 84 84 06 \"NSData\" 00 95 99 03 84 04 \"[3c]\" \"abc\" 86"
    "86";

inline KWData exampleStream(bool bigEndian) {
    return sequentialStream(exampleBody, bigEndian);
}
