#pragma once

#include <cstdint>
#include <string_view>

// What the reader and the writer of the XML form share.

namespace KWXML {

inline constexpr std::string_view uidKey = "CF$UID";
inline constexpr std::string_view base64Digits =
    "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
inline constexpr std::int64_t secondsPerDay = 86400;
/// Days from 1970-01-01 to 2001-01-01, where a property list's time begins.
inline constexpr std::int64_t epochDays = 11323;

// The proleptic Gregorian calendar, in days from 1970-01-01 (Hinnant, "chrono-compatible low-level
// date algorithms").
inline std::int64_t daysFromCivil(std::int64_t year, unsigned month, unsigned day) {
    year -= month <= 2;
    const std::int64_t era = (year >= 0 ? year : year - 399) / 400;
    const std::int64_t yearOfEra = year - era * 400;
    const std::int64_t dayOfYear = (153 * (month > 2 ? month - 3 : month + 9) + 2) / 5 + day - 1;
    return era * 146097 + yearOfEra * 365 + yearOfEra / 4 - yearOfEra / 100 + dayOfYear - 719468;
}

struct Civil {
    std::int64_t year;
    unsigned month;
    unsigned day;
};

inline Civil civilFromDays(std::int64_t days) {
    days += 719468;
    const std::int64_t era = (days >= 0 ? days : days - 146096) / 146097;
    const std::int64_t dayOfEra = days - era * 146097;
    const std::int64_t yearOfEra =
        (dayOfEra - dayOfEra / 1460 + dayOfEra / 36524 - dayOfEra / 146096) / 365;
    const std::int64_t dayOfYear = dayOfEra - (365 * yearOfEra + yearOfEra / 4 - yearOfEra / 100);
    const std::int64_t shifted = (5 * dayOfYear + 2) / 153;
    const auto month = static_cast<unsigned>(shifted < 10 ? shifted + 3 : shifted - 9);
    return {yearOfEra + era * 400 + (month <= 2), month,
            static_cast<unsigned>(dayOfYear - (153 * shifted + 2) / 5 + 1)};
}

} // namespace KWXML
