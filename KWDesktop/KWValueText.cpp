#include <KWBase/KWAngleFormatter.h>
#include <KWBase/KWChannel.h>
#include <KWBase/KWLengthFormatter.h>
#include <KWBase/KWUnitController.h>
#include <KWDesktop/KWValueText.h>
#include <KWFoundation/KWText.h>

#include <QCoreApplication>
#include <QString>
#include <cmath>

namespace {

/// Whether a text names a unit of the type, other than by standing for the default one.
bool isUnitName(std::string_view name, std::int32_t unitType) {
    const KWUnitController& units = KWUnitController::sharedUnitController();
    // What answers no unit that there is finds none for an unknown name.
    constexpr std::int32_t none = -1;
    KWUnitController finder;
    if (unitType == KWUnitTypeLength) {
        finder.setDefaultLengthUnit(none);
        return finder.lengthUnitFromString(name) != none ||
               name == units.shortLengthUnitRepresentation(units.defaultLengthUnit());
    }
    if (unitType == KWUnitTypeAngle) {
        finder.setDefaultAngleUnit(none);
        return finder.angleUnitFromString(name) != none ||
               name == units.shortAngleUnitRepresentation(units.defaultAngleUnit());
    }
    return false;
}

bool isWellFormed(const KWScannedNumber& scanned, std::int32_t unitType) {
    return scanned.isThere && scanned.isAll &&
           (scanned.run.empty() || isUnitName(scanned.run, unitType));
}

} // namespace

const KWFormatter* KWFormatterForUnitType(std::int32_t unitType) {
    if (unitType == KWUnitTypeLength)
        return KWLengthFormatter::defaultFormatter().get();
    if (unitType == KWUnitTypeAngle)
        return KWAngleFormatter::defaultFormatter().get();
    return nullptr;
}

std::string KWTextFromValue(float value, std::int32_t unitType) {
    const KWFormatter* const formatter = KWFormatterForUnitType(unitType);
    return formatter ? formatter->stringForObjectValue(KWNumber(value)) : KWStringFromFloat(value);
}

std::optional<float> KWValueFromText(const std::string& text, std::int32_t unitType) {
    const KWScannedNumber scanned = KWScanNumber(text);
    if (!isWellFormed(scanned, unitType))
        return std::nullopt;
    auto value = static_cast<float>(scanned.number);
    if (const KWFormatter* const formatter = KWFormatterForUnitType(unitType)) {
        KWArchiveValue object;
        formatter->getObjectValueForStringErrorDescription(object, text);
        value = object.number()->floatValue();
    }
    if (!std::isfinite(value))
        return std::nullopt;
    return value;
}

std::string KWValueTextFault(const std::string& text, std::int32_t unitType) {
    const KWScannedNumber scanned = KWScanNumber(text);
    const auto sentence = [&text](const char* pattern) {
        constexpr int longest = 40;
        QString shown = QString::fromStdString(text).simplified();
        if (shown.size() > longest)
            shown = shown.left(longest) + QChar(0x2026);
        return QCoreApplication::translate("KWValueText", pattern).arg(shown).toStdString();
    };
    if (isWellFormed(scanned, unitType))
        return sentence(QT_TRANSLATE_NOOP("KWValueText", "\u201c%1\u201d is too large."));
    if (!scanned.isThere)
        return sentence(QT_TRANSLATE_NOOP("KWValueText", "\u201c%1\u201d is not a number."));
    if (scanned.run.starts_with(','))
        return sentence(QT_TRANSLATE_NOOP(
            "KWValueText", "\u201c%1\u201d is not a number: the decimal sign is a point."));
    if (!KWFormatterForUnitType(unitType))
        return sentence(QT_TRANSLATE_NOOP(
            "KWValueText", "\u201c%1\u201d is not a number alone, and this value has no unit."));
    return sentence(
        QT_TRANSLATE_NOOP("KWValueText", "\u201c%1\u201d is not a number with a known unit."));
}
