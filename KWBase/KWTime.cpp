#include <KWBase/KWTime.h>
#include <KWFoundation/KWText.h>

#include <bit>
#include <cstdio>
#include <limits>
#include <stdexcept>

namespace {

void printNotImplemented() {
    std::fputs("Not implemented !", stdout);
}

template <class Number>
int compareNumbers(Number a, Number b) {
    return a < b ? -1 : a > b ? 1 : 0;
}

/// Archives find the class from the first moment on; this is all the work there is at start-up.
[[maybe_unused]] const bool isRegistered = [] {
    KWRegisterClass(KWValueClass<KWTime>::classObject());
    return true;
}();

} // namespace

KWTimeValue KWTimeValueZeroSecond() {
    return KWTimeValueMakeFromSeconds(0);
}

KWTimeValue KWTimeValueMakeFromSeconds(double seconds) {
    KWTimeValue value;
    // The longer arm first, so that none of the bytes is left unset.
    value.data.scaled = {0, 0};
    value.format = KWTimeFormatSeconds;
    value.data.seconds = seconds;
    return value;
}

KWTimeValue KWTimeValueMakeScaled(std::int32_t timeScale, std::int64_t timeValue) {
    KWTimeValue value;
    value.format = KWTimeFormatScaled;
    value.data.scaled = {timeScale, timeValue};
    return value;
}

KWTimeValue KWTimeValueConvertToNewScale(KWTimeValue value, std::int32_t newScale) {
    if (value.format != KWTimeFormatScaled) {
        printNotImplemented();
        return value;
    }
    const std::int64_t scale = value.data.scaled.timeScale;
    if (scale == 0)
        throw std::domain_error("a time value with a time scale of zero");
    // Unsigned, where wrapping is defined.
    const std::uint64_t product = static_cast<std::uint64_t>(value.data.scaled.timeValue) *
                                  static_cast<std::uint64_t>(std::int64_t{newScale});
    // The one quotient that does not fit is that of the least number by -1; it wraps.
    const std::int64_t quotient = scale == -1 ? static_cast<std::int64_t>(-product)
                                              : static_cast<std::int64_t>(product) / scale;
    return KWTimeValueMakeScaled(newScale, quotient);
}

int KWTimeValueCompare(KWTimeValue a, KWTimeValue b) {
    if (a.format == KWTimeFormatScaled) {
        if (b.format != KWTimeFormatScaled)
            printNotImplemented();
        else if (a.data.scaled.timeScale != b.data.scaled.timeScale)
            b = KWTimeValueConvertToNewScale(b, a.data.scaled.timeScale);
        return compareNumbers(a.data.scaled.timeValue, b.data.scaled.timeValue);
    }
    if (b.format != KWTimeFormatSeconds)
        b = KWTimeValueConvertToSeconds(b);
    return compareNumbers(a.data.seconds, b.data.seconds);
}

KWTimeValue KWTimeValueSubtract(KWTimeValue a, KWTimeValue) {
    printNotImplemented();
    return a;
}

KWTimeValue KWTimeValueConvertToScaled(KWTimeValue value) {
    printNotImplemented();
    return value;
}

KWTimeValue KWTimeValueConvertToSeconds(KWTimeValue) {
    return KWTimeValueZeroSecond();
}

KWTimeValue KWTimeValueZeroScaled() {
    return KWTimeValueZeroSecond();
}

KWTimeValue KWTimeValueAdd(KWTimeValue, KWTimeValue) {
    return KWTimeValueZeroSecond();
}

KWTimeValue KWTimeValueScale(KWTimeValue, double) {
    return KWTimeValueZeroSecond();
}

std::uint32_t KWTime::hash() const {
    return std::bit_cast<std::uint32_t>(_time);
}

std::string KWTime::description() const {
    return KWFixedStringFromDouble(static_cast<double>(_time)) + "\n";
}

const KWClass& KWValueClass<KWTime>::classObject() {
    static constinit KWClass theClass{"KWTime", &KWObject::classObject, 0,
                                      KWClass::make<KWBoxedValue<KWTime>>};
    return theClass;
}

void KWValueClass<KWTime>::encode(const KWTime& time, KWCoder& coder) {
    if (coder.allowsKeyedCoding()) {
        coder.encodeDoubleForKey(static_cast<double>(time.time()), realClass().key);
    } else {
        const float seconds = time.time();
        coder.encodeValueOfObjCTypeAt("f", &seconds);
    }
}

bool KWValueClass<KWTime>::decode(KWTime& time, KWCoder& coder) {
    if (coder.allowsKeyedCoding()) {
        time.setTime(static_cast<float>(coder.decodeDoubleForKey(realClass().key)));
    } else {
        float seconds = 0;
        coder.decodeValueOfObjCTypeAt("f", &seconds);
        time.setTime(seconds);
    }
    return true;
}

KWRealClass KWValueClass<KWTime>::realClass() {
    return {classObject(), "time",
            [](float time) -> std::shared_ptr<KWObject> {
                return std::make_shared<KWBoxedValue<KWTime>>(KWTime(time));
            },
            [](const KWObject& object) {
                return dynamic_cast<const KWBoxedValue<KWTime>&>(object).value.time();
            }};
}
