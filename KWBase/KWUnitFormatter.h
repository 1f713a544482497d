#pragma once

#include <KWBase/KWFormatter.h>

#include <string_view>

/// A number at the start of a text and what follows it: how the unit formatters read.
struct KWScannedNumber {
    double number = 0; ///< 0 where there is none
    bool isThere = false;
    /// From the next character that is no white space to the next that is; "" when there is none.
    std::string_view run;
    bool isAll = true; ///< nothing but white space follows the run
};

/// Reads a decimal number with an optional sign, fraction and exponent, and the run of characters
/// behind it; white space before either is skipped, that of every script. Infinities, NaNs and
/// hexadecimal numbers are none. A number too large for a double reads as infinity. `run` points
/// into `text`.
KW_EXPORT KWScannedNumber KWScanNumber(std::string_view text);

/// The base of the formatters of numbers that have a unit.
class KW_EXPORT KWUnitFormatter : public KWFormatter {};
