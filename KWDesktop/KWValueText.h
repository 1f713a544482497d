#pragma once

#include <KWFoundation/KWExport.h>

#include <cstdint>
#include <optional>
#include <string>

class KWFormatter;

// Values of channels as text, in the user's unit. A unit type is a channel's: KWUnitTypeLength,
// KWUnitTypeAngle, or any other code for none.

/// The shared formatter of lengths or of angles; null for no unit.
KW_EXPORT const KWFormatter* KWFormatterForUnitType(std::int32_t unitType);

/// Seven significant digits, and the short name of the user's unit where there is one.
KW_EXPORT std::string KWTextFromValue(float value, std::int32_t unitType);

/// The value that a text typed by a user means, in meters, radians or without a unit: a finite
/// number, decimal and with an optional exponent, followed by nothing or by a known name of a unit
/// of that type. Nothing for any other text, and for a value that is too large for a float; a slip
/// of the hand must not zero a channel.
KW_EXPORT std::optional<float> KWValueFromText(const std::string& text, std::int32_t unitType);

/// One sentence for the user on why a text was not taken.
KW_EXPORT std::string KWValueTextFault(const std::string& text, std::int32_t unitType);
