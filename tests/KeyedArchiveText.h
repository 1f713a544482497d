#pragma once

#include "TestFiles.h"

#include <string>
#include <vector>

/// A keyed archive written by hand: its objects as XML, from slot 1 on, which is the root.
inline KWData archive(const std::vector<std::string>& objects, const std::string& top = "root") {
    std::string text = "<plist><dict><key>$version</key><integer>100000</integer>"
                       "<key>$archiver</key><string>NSKeyedArchiver</string><key>$top</key><dict>"
                       "<key>" +
                       top +
                       "</key><dict><key>CF$UID</key><integer>1</integer></dict>"
                       "</dict><key>$objects</key><array><string>$null</string>";
    for (const std::string& object : objects)
        text += object;
    return dataOf(text + "</array></dict></plist>");
}

inline std::string uid(int slot) {
    return "<dict><key>CF$UID</key><integer>" + std::to_string(slot) + "</integer></dict>";
}

inline std::string classRecord(const std::string& names) {
    const std::string first = names.substr(0, names.find(' '));
    std::string text =
        "<dict><key>$classname</key><string>" + first + "</string><key>$classes</key><array>";
    for (std::size_t start = 0; start != std::string::npos;) {
        const std::size_t end = names.find(' ', start);
        text += "<string>" + names.substr(start, end - start) + "</string>";
        start = end == std::string::npos ? end : end + 1;
    }
    return text + "</array></dict>";
}

inline std::string instance(const std::string& fields, int classSlot) {
    return "<dict>" + fields + "<key>$class</key>" + uid(classSlot) + "</dict>";
}

inline std::string field(const std::string& key, const std::string& value) {
    return "<key>" + key + "</key>" + value;
}
