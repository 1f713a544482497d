#include <KWBase/KWAngleFormatter.h>
#include <KWBase/KWUnitController.h>

std::shared_ptr<KWAngleFormatter> KWAngleFormatter::defaultFormatter() {
    static const std::shared_ptr<KWAngleFormatter>& shared =
        *new std::shared_ptr<KWAngleFormatter>(std::make_shared<KWAngleFormatter>());
    return shared;
}

std::string KWAngleFormatter::stringForObjectValue(const KWArchiveValue& value) const {
    const KWNumber* const number = value.number();
    if (!number)
        return {};
    const KWUnitController& units = KWUnitController::sharedUnitController();
    const KWNumber shown(units.convertAngleFromUnit(number->floatValue(), KWAngleUnitRadian));
    return shown.stringValue() + ' ' + units.shortAngleUnitRepresentation(units.defaultAngleUnit());
}

bool KWAngleFormatter::getObjectValueForStringErrorDescription(
    KWArchiveValue& value, const std::optional<std::string>& string, std::string*) const {
    if (!string) {
        value = nullptr;
        return false;
    }
    const KWUnitController& units = KWUnitController::sharedUnitController();
    const KWScannedNumber scanned = KWScanNumber(*string);
    const std::int32_t unit =
        scanned.run.empty() ? units.defaultAngleUnit() : units.angleUnitFromString(scanned.run);
    value = KWNumber(units.convertAngleFromUnitToUnit(static_cast<float>(scanned.number), unit,
                                                      KWAngleUnitRadian));
    return true;
}
