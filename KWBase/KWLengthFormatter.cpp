#include <KWBase/KWLengthFormatter.h>
#include <KWBase/KWUnitController.h>

std::shared_ptr<KWLengthFormatter> KWLengthFormatter::defaultFormatter() {
    static const std::shared_ptr<KWLengthFormatter>& shared =
        *new std::shared_ptr<KWLengthFormatter>(std::make_shared<KWLengthFormatter>());
    return shared;
}

std::string KWLengthFormatter::stringForObjectValue(const KWArchiveValue& value) const {
    const KWNumber* const number = value.number();
    if (!number)
        return {};
    const KWUnitController& units = KWUnitController::sharedUnitController();
    const KWNumber shown(units.convertLengthFromUnit(number->floatValue(), KWLengthUnitMeter));
    return shown.stringValue() + ' ' +
           units.shortLengthUnitRepresentation(units.defaultLengthUnit());
}

bool KWLengthFormatter::getObjectValueForStringErrorDescription(
    KWArchiveValue& value, const std::optional<std::string>& string, std::string*) const {
    if (!string) {
        value = nullptr;
        return false;
    }
    const KWUnitController& units = KWUnitController::sharedUnitController();
    const KWScannedNumber scanned = KWScanNumber(*string);
    const std::int32_t unit =
        scanned.run.empty() ? units.defaultLengthUnit() : units.lengthUnitFromString(scanned.run);
    value = KWNumber(units.convertLengthFromUnitToUnit(static_cast<float>(scanned.number), unit,
                                                       KWLengthUnitMeter));
    return true;
}
