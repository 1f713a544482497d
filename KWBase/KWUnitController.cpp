#include <KWBase/KWFrameworkTables.h>
#include <KWBase/KWUnitController.h>
#include <KWFoundation/KWBundle.h>
#include <KWFoundation/KWNotificationCenter.h>

#include <array>
#include <span>
#include <utility>

namespace {

constexpr double pi = 3.141592653589793;

struct Unit {
    std::int32_t code;
    std::string_view shortKey;
    std::string_view longKey;
    // The names by which it is recognised.
    std::string_view recognisedShortKey = shortKey;
    std::string_view recognisedLongKey = longKey;
};

constexpr std::array<Unit, 7> lengthUnits{{
    {KWLengthUnitMeter, "meter-unit", "meter-long-unit"},
    {KWLengthUnitDecimeter, "decimeter-unit", "decimeter-long-unit"},
    {KWLengthUnitCentimeter, "centimeter-unit", "centimeter-long-unit"},
    {KWLengthUnitMillimeter, "millimeter-unit", "millimeter-long-unit"},
    {KWLengthUnitInch, "inche-unit", "inche-long-unit", "inch-unit", "inch-long-unit"},
    {KWLengthUnitFoot, "foot-unit", "foot-long-unit"},
    {KWLengthUnitMile, "mile-unit", "mile-long-unit"},
}};

constexpr std::array<Unit, 3> angleUnits{{
    {KWAngleUnitRadian, "radian-unit", "radian-long-unit"},
    {KWAngleUnitDegree, "degree-unit", "degree-long-unit"},
    {KWAngleUnitGrade, "grade-unit", "grade-long-unit"},
}};

constexpr std::string_view unknownLengthKey = "m";
constexpr std::string_view unknownAngleKey = "deg";

[[maybe_unused]] const bool areTablesAnnounced = [] {
    KWBundle::frameworkBundle().addTableLoader(&KWAddFrameworkTables);
    return true;
}();

std::string localized(std::string_view key) {
    return KWBundle::frameworkBundle().localizedStringForKeyValueTable(key, key, "translate");
}

/// The key that `member` points to of the unit with that code, else `unknownKey`.
std::string_view keyOfUnit(std::span<const Unit> units, std::int32_t code,
                           std::string_view Unit::*member, std::string_view unknownKey) {
    for (const Unit& unit : units)
        if (unit.code == code)
            return unit.*member;
    return unknownKey;
}

struct UnitNames {
    std::int32_t code;
    std::string shortName;
    std::string longName;
};

template <std::size_t count>
std::array<UnitNames, count> namesOf(const std::array<Unit, count>& units) {
    std::array<UnitNames, count> names;
    for (std::size_t i = 0; i < count; ++i)
        names[i] = {units[i].code, localized(units[i].recognisedShortKey),
                    localized(units[i].recognisedLongKey)};
    return names;
}

/// The names that are recognised, of both kinds at once, so that they are of one language.
struct NameLists {
    std::array<UnitNames, lengthUnits.size()> lengths = namesOf(lengthUnits);
    std::array<UnitNames, angleUnits.size()> angles = namesOf(angleUnits);
};

const NameLists& nameLists() {
    static const NameLists& lists = *new NameLists;
    return lists;
}

std::int32_t unitNamed(std::span<const UnitNames> units, std::string_view name,
                       std::int32_t otherwise) {
    for (const UnitNames& unit : units)
        if (unit.shortName == name || unit.longName == name)
            return unit.code;
    return otherwise;
}

double metersFromUnit(double value, std::int32_t unit) {
    switch (unit) {
    case KWLengthUnitMeter:
        return value;
    case KWLengthUnitDecimeter:
        return value / 10.0;
    case KWLengthUnitCentimeter:
        return value / 100.0;
    case KWLengthUnitMillimeter:
        return value / 1000.0;
    case KWLengthUnitInch:
        return value * 0.0254;
    case KWLengthUnitFoot:
        return value * 0.304801;
    case KWLengthUnitMile:
        return value * 1609.0;
    default:
        return 0.0;
    }
}

double unitFromMeters(double meters, std::int32_t unit) {
    switch (unit) {
    case KWLengthUnitMeter:
        return meters;
    case KWLengthUnitDecimeter:
        return meters * 10.0;
    case KWLengthUnitCentimeter:
        return meters * 100.0;
    case KWLengthUnitMillimeter:
        return meters * 1000.0;
    case KWLengthUnitInch:
        return meters / 0.0254;
    case KWLengthUnitFoot:
        return meters / 0.304801;
    case KWLengthUnitMile:
        return meters / 1609.0;
    default:
        return 0.0;
    }
}

double radiansFromUnit(double value, std::int32_t unit) {
    switch (unit) {
    case KWAngleUnitRadian:
        return value;
    case KWAngleUnitDegree:
        return value * pi / 180.0;
    case KWAngleUnitGrade:
        return value * pi / 200.0;
    default:
        return 0.0;
    }
}

double unitFromRadians(double radians, std::int32_t unit) {
    switch (unit) {
    case KWAngleUnitRadian:
        return radians;
    case KWAngleUnitDegree:
        return radians / pi * 180.0;
    case KWAngleUnitGrade:
        return radians / pi * 200.0;
    default:
        return 0.0;
    }
}

} // namespace

KWUnitController::KWUnitController() = default;
KWUnitController::~KWUnitController() = default;

KWUnitController& KWUnitController::sharedUnitController() {
    static const std::shared_ptr<KWUnitController>& shared =
        *new std::shared_ptr<KWUnitController>(std::make_shared<KWUnitController>());
    return *shared;
}

const KWClass& KWUnitController::classObject() {
    static constinit KWClass theClass{"KWUnitController", &KWObject::classObject, 0,
                                      KWClass::make<KWUnitController>};
    return theClass;
}

void KWUnitController::setDefaultLengthUnit(std::int32_t unit) {
    setDefaultUnit(_defaultLengthUnit, unit);
}

void KWUnitController::setDefaultAngleUnit(std::int32_t unit) {
    setDefaultUnit(_defaultAngleUnit, unit);
}

void KWUnitController::setDefaultUnit(std::int32_t& field, std::int32_t unit) {
    if (std::exchange(field, unit) != unit)
        KWNotificationCenter::defaultCenter().postNotificationNameObject(
            KWUnitControllerDefaultUnitDidChangeNotification, this);
}

float KWUnitController::convertLengthFromUnitToUnit(float value, std::int32_t from,
                                                    std::int32_t to) const {
    return static_cast<float>(unitFromMeters(metersFromUnit(static_cast<double>(value), from), to));
}

float KWUnitController::convertAngleFromUnitToUnit(float value, std::int32_t from,
                                                   std::int32_t to) const {
    return static_cast<float>(
        unitFromRadians(radiansFromUnit(static_cast<double>(value), from), to));
}

float KWUnitController::convertLengthToUnit(float value, std::int32_t to) const {
    return convertLengthFromUnitToUnit(value, _defaultLengthUnit, to);
}

float KWUnitController::convertLengthFromUnit(float value, std::int32_t from) const {
    return convertLengthFromUnitToUnit(value, from, _defaultLengthUnit);
}

float KWUnitController::convertAngleToUnit(float value, std::int32_t to) const {
    return convertAngleFromUnitToUnit(value, _defaultAngleUnit, to);
}

float KWUnitController::convertAngleFromUnit(float value, std::int32_t from) const {
    return convertAngleFromUnitToUnit(value, from, _defaultAngleUnit);
}

float KWUnitController::convertLengthToInternalUnit(float value) const {
    return convertLengthToUnit(value, KWLengthUnitMeter);
}

float KWUnitController::convertLengthFromInternalUnit(float value) const {
    return convertLengthFromUnit(value, KWLengthUnitMeter);
}

float KWUnitController::convertAngleToInternalUnit(float value) const {
    return convertAngleToUnit(value, KWAngleUnitRadian);
}

float KWUnitController::convertAngleFromInternalUnit(float value) const {
    return convertAngleFromUnit(value, KWAngleUnitRadian);
}

std::string KWUnitController::longLengthUnitRepresentation(std::int32_t unit) const {
    return localized(keyOfUnit(lengthUnits, unit, &Unit::longKey, unknownLengthKey));
}

std::string KWUnitController::shortLengthUnitRepresentation(std::int32_t unit) const {
    return localized(keyOfUnit(lengthUnits, unit, &Unit::shortKey, unknownLengthKey));
}

std::string KWUnitController::longAngleUnitRepresentation(std::int32_t unit) const {
    return localized(keyOfUnit(angleUnits, unit, &Unit::longKey, unknownAngleKey));
}

std::string KWUnitController::shortAngleUnitRepresentation(std::int32_t unit) const {
    return localized(keyOfUnit(angleUnits, unit, &Unit::shortKey, unknownAngleKey));
}

std::int32_t KWUnitController::lengthUnitFromString(std::string_view name) const {
    return unitNamed(nameLists().lengths, name, _defaultLengthUnit);
}

std::int32_t KWUnitController::angleUnitFromString(std::string_view name) const {
    return unitNamed(nameLists().angles, name, _defaultAngleUnit);
}
