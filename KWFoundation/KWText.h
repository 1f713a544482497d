#pragma once

#include <KWFoundation/KWExport.h>

#include <optional>
#include <string>
#include <string_view>

// Numbers and text. Nothing here looks at the process's locale: a decimal point is a point, on
// every machine and in every country.

/// A float as people read it: seven significant digits, as C's "%.7g" in the "C" locale ("0.1",
/// "1e+10", "inf", "nan").
KW_EXPORT std::string KWStringFromFloat(float value);

/// The shortest text that reads back as the same float, bit for bit (a NaN's payload aside).
KW_EXPORT std::string KWExactStringFromFloat(float value);

/// The shortest text that reads back as the same double.
KW_EXPORT std::string KWExactStringFromDouble(double value);

/// Six decimals, as C's "%f" in the "C" locale.
KW_EXPORT std::string KWFixedStringFromDouble(double value);

/// The number that the whole of `text` spells, decimal or with an exponent, with or without a sign;
/// "inf", "infinity" and "nan" in any case are numbers too. Empty when anything is left over or
/// nothing is there. Numbers too large for a double read as infinity, too small ones as zero.
KW_EXPORT std::optional<double> KWDoubleFromString(std::string_view text);

/// UTF-16 code units, big-endian bytes, as UTF-8. A lone surrogate becomes its own three bytes, so
/// that KWUTF16FromUTF8 gives it back. Half a code unit at the end becomes U+FFFD.
KW_EXPORT std::string KWUTF8FromUTF16(std::string_view bigEndianBytes);

/// UTF-8 as UTF-16 code units. Bytes that are no UTF-8 become U+FFFD, one for each.
KW_EXPORT std::u16string KWUTF16FromUTF8(std::string_view text);
