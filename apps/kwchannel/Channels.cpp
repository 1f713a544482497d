#include <KWBase/KWAlgebricChannel.h>
#include <KWBase/KWUnitController.h>

#include <apps/common/Errors.h>
#include <apps/common/Output.h>
#include <apps/common/Text.h>
#include <apps/kwchannel/Channels.h>

#include <algorithm>
#include <array>

namespace {

struct UnitNames {
    std::int32_t code;
    std::array<std::string_view, 3> names;
};

// What scripts may count on, whatever the user's language.
constexpr UnitNames lengthUnits[] = {
    {KWLengthUnitMeter, {"m", "meter", "meters"}},
    {KWLengthUnitDecimeter, {"dm", "decimeter", "decimeters"}},
    {KWLengthUnitCentimeter, {"cm", "centimeter", "centimeters"}},
    {KWLengthUnitMillimeter, {"mm", "millimeter", "millimeters"}},
    {KWLengthUnitInch, {"in", "inch", "inches"}},
    {KWLengthUnitFoot, {"ft", "foot", "feet"}},
    {KWLengthUnitMile, {"mi", "mile", "miles"}},
};
constexpr UnitNames angleUnits[] = {
    {KWAngleUnitRadian, {"rad", "radian", "radians"}},
    {KWAngleUnitDegree, {"deg", "degree", "degrees"}},
    {KWAngleUnitGrade, {"gr", "grade", "grades"}},
};

constexpr std::int32_t noUnit = -1;

std::int32_t codeOf(std::span<const UnitNames> units, std::string_view name) {
    for (const UnitNames& unit : units)
        if (std::find(unit.names.begin(), unit.names.end(), name) != unit.names.end())
            return unit.code;
    return noUnit;
}

} // namespace

std::string inputPath(const std::string& argument) {
    return argument == "-" ? "/dev/stdin" : argument;
}

KWDocument openDocument(const std::string& path) {
    return KWDocument::open(inputPath(path));
}

std::string formName(KWDocument::Form form) {
    switch (form) {
    case KWDocument::Form::xml:
        return "xml";
    case KWDocument::Form::sequential:
        return "sequential";
    case KWDocument::Form::binary:
        break;
    }
    return "binary";
}

KWDocument::Form formNamed(std::string_view name) {
    for (const auto form : {KWDocument::Form::xml, KWDocument::Form::sequential})
        if (formName(form) == name)
            return form;
    return KWDocument::Form::binary;
}

std::vector<Place> channelsToEvaluate(const KWDocument& document,
                                      const std::vector<std::string>& addresses) {
    std::vector<Place> all = document.channels();
    std::vector<Place> chosen;
    if (addresses.empty()) {
        std::size_t unknown = 0;
        for (Place& place : all) {
            if (kwIsOfUnknownKind(*place.channel))
                ++unknown;
            else
                chosen.push_back(std::move(place));
        }
        if (unknown > 0)
            complain(counted(unknown, "channel") +
                     " of unknown kinds left out; see kwchannel info");
        if (chosen.empty())
            throw DataError(document.file() + ": there is no channel to evaluate");
    }
    for (const std::string& address : addresses)
        chosen.push_back(KWDocument::placeAt(all, address));

    std::size_t withoutExpression = 0;
    for (const Place& place : chosen) {
        const auto* const algebric = dynamic_cast<const KWAlgebricChannel*>(place.channel.get());
        withoutExpression += algebric && !algebric->sourceText();
        if (kwIsOfUnknownKind(*place.channel))
            throw DataError(document.file() + ": channel " + inQuotes(place.path) +
                            " cannot be evaluated: its class " +
                            inQuotes(kwClassName(*place.channel)) + " is not known here");
        const std::string why = kwIrregularity(*place.channel);
        if (!why.empty())
            throw DataError(
                document.file() + ": channel " + inQuotes(place.path) + " is irregular: " + why +
                (addresses.empty() ? "; name the channels you want to leave it out" : ""));
    }
    if (withoutExpression > 0)
        complain(counted(withoutExpression, "channel") +
                 " without an expression, 0 at every time; see kwchannel info");
    return chosen;
}

void setUnits(const std::vector<std::string>& names) {
    KWUnitController& shared = KWUnitController::sharedUnitController();
    shared.setDefaultLengthUnit(KWLengthUnitMeter);
    shared.setDefaultAngleUnit(KWAngleUnitRadian);

    // A name that is none answers the default unit, so one that no unit has is the default here.
    KWUnitController reader;
    reader.setDefaultLengthUnit(noUnit);
    reader.setDefaultAngleUnit(noUnit);
    bool hasLength = false;
    bool hasAngle = false;
    for (const std::string& name : names) {
        std::int32_t length = codeOf(lengthUnits, name);
        std::int32_t angle = codeOf(angleUnits, name);
        if (length == noUnit && angle == noUnit) {
            length = reader.lengthUnitFromString(name);
            angle = length == noUnit ? reader.angleUnitFromString(name) : noUnit;
        }
        if (length == noUnit && angle == noUnit)
            throw UseError("there is no unit " + inQuotes(name) +
                           "; there are m, dm, cm, mm, in, ft, mi, rad, deg, gr");
        bool& isTaken = length != noUnit ? hasLength : hasAngle;
        if (isTaken)
            throw UseError(std::string("--unit names two units of ") +
                           (length != noUnit ? "length" : "angle"));
        isTaken = true;
        if (length != noUnit)
            shared.setDefaultLengthUnit(length);
        else
            shared.setDefaultAngleUnit(angle);
    }
}

std::string unitName(const KWChannel& channel) {
    const KWUnitController& shared = KWUnitController::sharedUnitController();
    const auto nameIn = [](std::span<const UnitNames> units, std::int32_t code) {
        for (const UnitNames& unit : units)
            if (unit.code == code)
                return std::string(unit.names[0]);
        return std::string();
    };
    if (channel.unitType() == KWUnitTypeLength)
        return nameIn(lengthUnits, shared.defaultLengthUnit());
    if (channel.unitType() == KWUnitTypeAngle)
        return nameIn(angleUnits, shared.defaultAngleUnit());
    return {};
}
