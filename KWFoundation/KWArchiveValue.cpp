#include <KWFoundation/KWArchiveValue.h>
#include <KWFoundation/KWObject.h>
#include <KWFoundation/KWText.h>
#include <KWFoundation/KWUnknownObject.h>

#include <charconv>
#include <cmath>
#include <limits>

namespace {

template <class Integer>
Integer nearestInteger(double value) {
    if (std::isnan(value))
        return 0;
    if (value >= -static_cast<double>(std::numeric_limits<Integer>::min()))
        return std::numeric_limits<Integer>::max();
    if (value < static_cast<double>(std::numeric_limits<Integer>::min()))
        return std::numeric_limits<Integer>::min();
    return static_cast<Integer>(value);
}

} // namespace

bool KWNumber::boolValue() const {
    return isReal() ? doubleValue() != 0 : _integer != 0;
}

std::int64_t KWNumber::int64Value() const {
    return isReal() ? nearestInteger<std::int64_t>(doubleValue()) : _integer;
}

double KWNumber::doubleValue() const {
    switch (_type) {
    case Type::float32:
        return static_cast<double>(_float);
    case Type::float64:
        return _double;
    case Type::uint64:
        return static_cast<double>(static_cast<std::uint64_t>(_integer));
    default:
        return static_cast<double>(_integer);
    }
}

float KWNumber::floatValue() const {
    switch (_type) {
    case Type::float32:
        return _float;
    case Type::float64:
        return static_cast<float>(_double);
    case Type::uint64:
        return static_cast<float>(static_cast<std::uint64_t>(_integer));
    default:
        return static_cast<float>(_integer);
    }
}

std::string KWNumber::stringValue() const {
    switch (_type) {
    case Type::float32:
        return KWStringFromFloat(_float);
    case Type::float64: {
        char text[32];
        const auto end =
            std::to_chars(text, text + sizeof text, _double, std::chars_format::general, 16);
        return {text, end.ptr};
    }
    case Type::uint64:
        return std::to_string(static_cast<std::uint64_t>(_integer));
    default:
        return std::to_string(_integer);
    }
}

bool operator==(const KWNumber& a, const KWNumber& b) {
    if (a._type != b._type)
        return false;
    if (a._type == KWNumber::Type::float32)
        return std::bit_cast<std::uint32_t>(a._float) == std::bit_cast<std::uint32_t>(b._float);
    return a._integer == b._integer;
}

KWArchiveValue::KWArchiveValue(std::shared_ptr<const KWArchiveString> string) {
    if (string)
        _value = std::move(string);
}

KWArchiveValue::KWArchiveValue(std::shared_ptr<const KWArchiveData> data) {
    if (data)
        _value = std::move(data);
}

KWArchiveValue::KWArchiveValue(std::shared_ptr<const KWArchiveArray> array) {
    if (array)
        _value = std::move(array);
}

KWArchiveValue::KWArchiveValue(std::shared_ptr<KWObject> object) {
    if (object)
        _value = std::move(object);
}

KWArchiveValue KWArchiveValue::mutableArray(std::vector<KWArchiveValue> elements) {
    return std::make_shared<const KWArchiveArray>(KWArchiveArray{std::move(elements), true});
}

KWArchiveValue KWArchiveValue::immutableArray(std::vector<KWArchiveValue> elements) {
    return std::make_shared<const KWArchiveArray>(KWArchiveArray{std::move(elements), false});
}

KWArchiveValue KWArchiveValue::backReference(std::weak_ptr<KWObject> object) {
    KWArchiveValue value;
    value._value = std::move(object);
    return value;
}

bool KWArchiveValue::isNil() const {
    if (const auto* weak = std::get_if<std::weak_ptr<KWObject>>(&_value))
        return weak->expired();
    return std::holds_alternative<std::monostate>(_value);
}

const KWArchiveString* KWArchiveValue::string() const {
    const auto* held = std::get_if<std::shared_ptr<const KWArchiveString>>(&_value);
    return held ? held->get() : nullptr;
}

const KWNumber* KWArchiveValue::number() const {
    return std::get_if<KWNumber>(&_value);
}

const KWArchiveData* KWArchiveValue::data() const {
    const auto* held = std::get_if<std::shared_ptr<const KWArchiveData>>(&_value);
    return held ? held->get() : nullptr;
}

const KWArchiveArray* KWArchiveValue::array() const {
    const auto* held = std::get_if<std::shared_ptr<const KWArchiveArray>>(&_value);
    return held ? held->get() : nullptr;
}

std::shared_ptr<KWObject> KWArchiveValue::object() const {
    if (const auto* held = std::get_if<std::shared_ptr<KWObject>>(&_value))
        return *held;
    if (const auto* weak = std::get_if<std::weak_ptr<KWObject>>(&_value))
        return weak->lock();
    return nullptr;
}

std::string KWArchiveValue::kindName() const {
    if (isNil())
        return "nil";
    if (string())
        return "a string";
    if (number())
        return "a number";
    if (data())
        return "data";
    if (array())
        return "an array";
    const auto held = object();
    const KWUnknownObject* unknown = held->unknownContents();
    return unknown ? unknown->className() : std::string(held->isa().name());
}

const void* KWArchiveValue::identity() const {
    if (const auto* held = string())
        return held;
    if (const auto* held = data())
        return held;
    if (const auto* held = array())
        return held;
    return object().get();
}
