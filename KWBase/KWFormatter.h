#pragma once

#include <KWFoundation/KWArchiveValue.h>
#include <KWFoundation/KWExport.h>
#include <KWFoundation/KWObject.h>

#include <memory>
#include <optional>
#include <string>

/// Shows a value as text and reads it back: what a text field puts between its value and what the
/// user sees. Formatters keep no state and may be shared by any number of fields.
class KW_EXPORT KWFormatter : public KWObject {
  public:
    /// The shared formatter of the class. There is none of this one: null.
    static std::shared_ptr<KWFormatter> defaultFormatter() { return nullptr; }

    /// The text for a value; "" for a value of a kind that the formatter does not show.
    virtual std::string stringForObjectValue(const KWArchiveValue& value) const = 0;

    /// Reads a text into `value`. False for a text that cannot be read, `error`, where it is not
    /// null, then saying why if the formatter has something to say.
    virtual bool getObjectValueForStringErrorDescription(KWArchiveValue& value,
                                                         const std::optional<std::string>& string,
                                                         std::string* error = nullptr) const = 0;
};
