#pragma once

#include <KWFoundation/KWExport.h>
#include <KWFoundation/KWObject.h>

#include <cstdint>
#include <string>
#include <string_view>

/// Length units; the gaps belong to the numbering.
enum : std::int32_t {
    KWLengthUnitMeter = 0,
    KWLengthUnitDecimeter = 1,
    KWLengthUnitCentimeter = 2,
    KWLengthUnitMillimeter = 3,
    KWLengthUnitInch = 32,
    KWLengthUnitFoot = 33, ///< 0.304801 m
    KWLengthUnitMile = 34, ///< 1609 m
};

enum : std::int32_t {
    KWAngleUnitRadian = 0,
    KWAngleUnitDegree = 1,
    KWAngleUnitGrade = 2, ///< 200 to the half turn
};

/// Posted by a unit controller, with itself as object, after one of its default units has become
/// another: what is shown in the user's unit is out of date.
inline constexpr std::string_view KWUnitControllerDefaultUnitDidChangeNotification =
    "KWUnitControllerDefaultUnitDidChangeNotification";

/// Converts between the units that people pick and the internal ones, meter and radian, and knows
/// the units' names. One default unit of each kind stands for what the user wants to see.
class KW_EXPORT KWUnitController : public KWObject {
  public:
    /// The one that channels and formatters use; made at the first call, never released.
    static KWUnitController& sharedUnitController();

    /// Defaults: meter and degree.
    KWUnitController();
    ~KWUnitController() override;

    static const KWClass& classObject();
    const KWClass& isa() const override { return classObject(); }

    // Codes are not checked; see the conversions for what an unknown one gives. A unit that is
    // another than before is told of by KWUnitControllerDefaultUnitDidChangeNotification.
    std::int32_t defaultLengthUnit() const { return _defaultLengthUnit; }
    void setDefaultLengthUnit(std::int32_t unit);
    std::int32_t defaultAngleUnit() const { return _defaultAngleUnit; }
    void setDefaultAngleUnit(std::int32_t unit);

    /// In double, rounded once at the end. An unknown target gives 0; an unknown source counts as a
    /// length of 0.
    float convertLengthFromUnitToUnit(float value, std::int32_t from, std::int32_t to) const;
    float convertAngleFromUnitToUnit(float value, std::int32_t from, std::int32_t to) const;

    // From or to the default unit of the kind.
    float convertLengthToUnit(float value, std::int32_t to) const;
    float convertLengthFromUnit(float value, std::int32_t from) const;
    float convertAngleToUnit(float value, std::int32_t to) const;
    float convertAngleFromUnit(float value, std::int32_t from) const;

    // Between the default unit and the internal one.
    float convertLengthToInternalUnit(float value) const;
    float convertLengthFromInternalUnit(float value) const;
    float convertAngleToInternalUnit(float value) const;
    float convertAngleFromInternalUnit(float value) const;

    /// The unit's name in the user's language, such as "centimeter" or "cm"; of an unknown code the
    /// text for "m" or "deg".
    std::string longLengthUnitRepresentation(std::int32_t unit) const;
    std::string shortLengthUnitRepresentation(std::int32_t unit) const;
    std::string longAngleUnitRepresentation(std::int32_t unit) const;
    std::string shortAngleUnitRepresentation(std::int32_t unit) const;

    /// The unit with exactly this short or long name, in the language in force when a name was
    /// first asked for; the default unit of the kind when there is none. An inch is recognised by
    /// names of its own ("inch-unit", "inch-long-unit"), apart from those it is shown with.
    std::int32_t lengthUnitFromString(std::string_view name) const;
    std::int32_t angleUnitFromString(std::string_view name) const;

  private:
    void setDefaultUnit(std::int32_t& field, std::int32_t unit);

    std::int32_t _defaultLengthUnit = KWLengthUnitMeter;
    std::int32_t _defaultAngleUnit = KWAngleUnitDegree;
};
