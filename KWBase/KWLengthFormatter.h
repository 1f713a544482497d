#pragma once

#include <KWBase/KWUnitFormatter.h>

/// Shows lengths, kept in meters, in the default length unit of the shared unit controller,
/// followed by the unit's short name. Reads them in the unit whose short or long name follows the
/// number.
class KW_EXPORT KWLengthFormatter : public KWUnitFormatter {
  public:
    /// Made at the first call, never released.
    static std::shared_ptr<KWLengthFormatter> defaultFormatter();

    /// Seven significant digits, a space, the name; "" for a value that is not a number.
    std::string stringForObjectValue(const KWArchiveValue& value) const override;

    /// A float in meters. Without a name, and with one that is not known, the number counts as one
    /// of the default unit; a text without a number reads as 0. Any text is taken; nil gives nil
    /// and false. `error` is never set.
    bool getObjectValueForStringErrorDescription(KWArchiveValue& value,
                                                 const std::optional<std::string>& string,
                                                 std::string* error = nullptr) const override;
};
