#pragma once

#include <KWFoundation/KWTypes.h>

#include <string>
#include <string_view>

/// Bytes as people write them down: pairs of hexadecimal digits, text in quotes, blanks anywhere.
inline KWData bytesOf(std::string_view text) {
    KWData bytes;
    const auto digit = [](char c) { return c <= '9' ? c - '0' : (c | 0x20) - 'a' + 10; };
    for (std::size_t k = 0; k < text.size();) {
        if (text[k] == ' ' || text[k] == '\n') {
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

/// The worked example of the form: a channel's class with a value of each kind.
inline const std::string exampleBody =
    "84 01 \"@\" 84 84 84 12 \"KWKeyFramedChannel\" 01 84 84 09 \"KWChannel\" 02"
    "84 84 08 \"NSObject\" 00 85"
    "92 84 84 84 08 \"NSString\" 01 95 84 01 \"+\" 04 \"gain\" 86"
    "92 85"
    "84 01 \"f\" 83 F"
    "84 01 \"i\" 81 H"
    "84 01 \"d\" 02"
    "84 01 \"c\" 01"
    "92 84 84 84 0e \"NSMutableArray\" 00 84 84 07 \"NSArray\" 00 95"
    "99 04"
    "92 84 84 84 08 \"NSNumber\" 00 84 84 07 \"NSValue\" 00 95 84 01 \"*\" 84 98 98 83 G 86"
    "92 84 9c a0 9e 98 07 86"
    "92 96 92 92 86"
    "92 84 84 84 06 \"NSData\" 00 95 99 03 84 04 \"[3c]\" \"abc\" 86"
    "86";

inline KWData exampleStream(bool bigEndian) {
    std::string text = exampleBody;
    const auto put = [&](const std::string& mark, const std::string& bytes) {
        text.replace(text.find(" " + mark), 1 + mark.size(), " " + bytes);
    };
    put("F", bigEndian ? "3f000000" : "0000003f");
    put("H", bigEndian ? "012c" : "2c01");
    put("G", bigEndian ? "3fc00000" : "0000c03f");
    return bytesOf((bigEndian ? bigEndianHeader : littleEndianHeader) + text);
}
