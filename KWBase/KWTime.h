#pragma once

#include <KWFoundation/KWBoxedValue.h>
#include <KWFoundation/KWCoder.h>
#include <KWFoundation/KWExport.h>

#include <compare>
#include <cstdint>
#include <functional>
#include <string>

/// Which arm of a KWTimeValue's data holds.
enum : std::uint8_t { KWTimeFormatSeconds = 0, KWTimeFormatScaled = 1 };

/// A time as a real number of seconds, or exactly: a count of ticks at a scale.
struct KWTimeValue {
    std::uint8_t format = KWTimeFormatSeconds;
    union {
        double seconds;
        struct {
            std::int32_t timeScale; ///< ticks per second
            std::int64_t timeValue; ///< ticks
        } scaled;
    } data{};
};

/// The type of a KWTimeValue as archives and run-time type descriptions spell it.
inline constexpr const char* KWTimeValueTypeEncoding =
    "{_KWTimeValue=\"format\"C\"data\"(?=\"seconds\"d\"scaled\"{?=\"timeScale\"l\"timeValue\"q})}";

KW_EXPORT KWTimeValue KWTimeValueZeroSecond();
KW_EXPORT KWTimeValue KWTimeValueMakeFromSeconds(double seconds);
KW_EXPORT KWTimeValue KWTimeValueMakeScaled(std::int32_t timeScale, std::int64_t timeValue);

/// The same time in ticks of another scale, cut toward zero; the intermediate product wraps at 64
/// bits. std::domain_error when the value's own scale is zero. A value in seconds prints "Not
/// implemented !" and is answered unchanged.
KW_EXPORT KWTimeValue KWTimeValueConvertToNewScale(KWTimeValue value, std::int32_t newScale);

/// -1, 0 or 1 as `a` is before, at or after `b`. Both in seconds: 0 when either is NaN. Both
/// scaled: `b` is first converted to `a`'s scale and loses what does not fit it, so the order of
/// arguments matters. Of mixed formats the answer has no meaning.
KW_EXPORT int KWTimeValueCompare(KWTimeValue a, KWTimeValue b);

// Placeholders that hosts link against. Subtract and ConvertToScaled print "Not implemented !" on
// standard output and answer their first argument; the others answer zero seconds.
KW_EXPORT KWTimeValue KWTimeValueSubtract(KWTimeValue a, KWTimeValue b);
KW_EXPORT KWTimeValue KWTimeValueConvertToScaled(KWTimeValue value);
KW_EXPORT KWTimeValue KWTimeValueConvertToSeconds(KWTimeValue value);
KW_EXPORT KWTimeValue KWTimeValueZeroScaled();
KW_EXPORT KWTimeValue KWTimeValueAdd(KWTimeValue a, KWTimeValue b);
KW_EXPORT KWTimeValue KWTimeValueScale(KWTimeValue value, double factor);

/// A time in seconds, as channels take it. Equality is that of floats: 0.0 and -0.0 are one time,
/// and a NaN equals nothing.
///
/// Aligned to eight bytes so that an optional time travels in registers, each part in one of its
/// own; packed into one it would stall every evaluation for as long as the evaluation takes.
class alignas(8) KWTime {
  public:
    constexpr KWTime(float time = 0) : _time(time) {}
    static constexpr KWTime timeWithReal(float time) { return KWTime(time); }

    constexpr float time() const { return _time; }
    constexpr void setTime(float time) { _time = time; }

    constexpr bool isEqual(KWTime other) const { return _time == other._time; }

    /// The raw bits of the float; 0.0 and -0.0 differ here though they are equal.
    KW_EXPORT std::uint32_t hash() const;

    /// 0 when equal, -1 when earlier than `other`, else 1; a NaN on either side gives 1.
    constexpr int compare(KWTime other) const {
        return _time == other._time ? 0 : _time < other._time ? -1 : 1;
    }

    /// Six decimals and a line feed.
    KW_EXPORT std::string description() const;

    friend constexpr bool operator==(KWTime a, KWTime b) { return a._time == b._time; }
    friend constexpr std::partial_ordering operator<=>(KWTime a, KWTime b) {
        return a._time <=> b._time;
    }

  private:
    float _time;
};

template <>
struct std::hash<KWTime> {
    std::size_t operator()(KWTime time) const noexcept { return std::hash<float>()(time.time()); }
};

template <>
struct KWValueClass<KWTime> {
    KW_EXPORT static const KWClass& classObject();
    KW_EXPORT static void encode(const KWTime& time, KWCoder& coder);
    KW_EXPORT static bool decode(KWTime& time, KWCoder& coder);

    /// For lists of times.
    KW_EXPORT static KWRealClass realClass();
};
