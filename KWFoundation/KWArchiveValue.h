#pragma once

#include <KWFoundation/KWExport.h>
#include <KWFoundation/KWTypes.h>

#include <bit>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

class KWObject;
class KWArchiveValue;

/// A number with the width it was made with: a boolean, an integer or a real of a C type.
class KW_EXPORT KWNumber {
  public:
    /// The C type, by the code that archives use for it. `boolean` is apart from `int8`: a keyed
    /// archive tells them apart, a sequential one does not.
    enum class Type : char {
        boolean = 'B',
        int8 = 'c',
        uint8 = 'C',
        int16 = 's',
        uint16 = 'S',
        int32 = 'i',
        uint32 = 'I',
        int64 = 'q',
        uint64 = 'Q',
        float32 = 'f',
        float64 = 'd',
    };

    explicit KWNumber(bool value) : _type(Type::boolean), _integer(value ? 1 : 0) {}
    explicit KWNumber(std::int32_t value) : _type(Type::int32), _integer(value) {}
    explicit KWNumber(std::int64_t value) : _type(Type::int64), _integer(value) {}
    explicit KWNumber(std::uint64_t value)
        : _type(Type::uint64), _integer(static_cast<std::int64_t>(value)) {}
    explicit KWNumber(float value) : _type(Type::float32), _float(value) {}
    explicit KWNumber(double value) : _type(Type::float64), _double(value) {}
    /// An integer of one of the integer types; the value is not checked against the type's range.
    KWNumber(Type type, std::int64_t value) : _type(type), _integer(value) {}

    Type type() const { return _type; }
    bool isReal() const { return _type == Type::float32 || _type == Type::float64; }

    /// The value as C's conversion gives it; a real outside the integer type's range gives the
    /// nearest end of the range, a NaN 0.
    bool boolValue() const;
    std::int64_t int64Value() const;
    double doubleValue() const;
    float floatValue() const;

    /// As people read it: "%.7g" for a float, "%.16g" for a double, digits for an integer, and "1"
    /// or "0" for a boolean.
    std::string stringValue() const;

    /// The same type and the same bits.
    friend bool operator==(const KWNumber& a, const KWNumber& b);

  private:
    Type _type;
    union {
        std::int64_t _integer;
        float _float;
        double _double;
    };
};

/// A string, block of bytes or list as an archive holds it: shared by all that refer to it, and
/// remembering whether it was of the platform's mutable class.
struct KWArchiveString {
    std::string text;
    bool isMutable = false;
};
struct KWArchiveData {
    KWData bytes;
    bool isMutable = false;
};
struct KWArchiveArray {
    std::vector<KWArchiveValue> elements;
    bool isMutable = false;
};

/// What a coder carries: nil, a string, a number, bytes, a list of values, or an object.
///
/// A value read from an archive may point back at an object that holds it, directly or through
/// others. Such a reference does not keep its object alive, so that whole graphs can be let go.
class KW_EXPORT KWArchiveValue {
  public:
    /// nil.
    KWArchiveValue() = default;
    KWArchiveValue(std::nullptr_t) {}
    KWArchiveValue(const char* text) : KWArchiveValue(std::string(text)) {}
    KWArchiveValue(std::string_view text) : KWArchiveValue(std::string(text)) {}
    KWArchiveValue(std::string text)
        : _value(std::make_shared<const KWArchiveString>(KWArchiveString{std::move(text)})) {}
    KWArchiveValue(const std::optional<std::string>& text) {
        if (text)
            *this = KWArchiveValue(*text);
    }
    KWArchiveValue(KWNumber number) : _value(number) {}
    KWArchiveValue(KWData bytes)
        : _value(std::make_shared<const KWArchiveData>(KWArchiveData{std::move(bytes)})) {}
    KWArchiveValue(std::shared_ptr<const KWArchiveString> string);
    KWArchiveValue(std::shared_ptr<const KWArchiveData> data);
    KWArchiveValue(std::shared_ptr<const KWArchiveArray> array);
    /// A null pointer is nil.
    KWArchiveValue(std::shared_ptr<KWObject> object);
    template <class T>
    requires std::is_base_of_v<KWObject, T> KWArchiveValue(const std::shared_ptr<T>& object)
        : KWArchiveValue(std::static_pointer_cast<KWObject>(object)) {}

    /// A list of the mutable class, as the model's own lists are archived.
    static KWArchiveValue mutableArray(std::vector<KWArchiveValue> elements);
    static KWArchiveValue immutableArray(std::vector<KWArchiveValue> elements);
    /// A reference that does not keep its object alive.
    static KWArchiveValue backReference(std::weak_ptr<KWObject> object);

    /// True for nil and for a reference back at an object that is gone.
    bool isNil() const;
    /// Whether it is a reference that does not keep its object alive.
    bool isBackReference() const { return std::holds_alternative<std::weak_ptr<KWObject>>(_value); }

    // Each answers null when the value is something else.
    const KWArchiveString* string() const;
    const KWNumber* number() const;
    const KWArchiveData* data() const;
    const KWArchiveArray* array() const;
    std::shared_ptr<KWObject> object() const;

    /// A word for messages: "nil", "a string", "a number", "data", "an array", or the class name.
    std::string kindName() const;

    /// What makes two mentions of one string, list or object the same thing in an archive: an
    /// address, null for numbers and nil, which have none.
    const void* identity() const;

  private:
    std::variant<std::monostate, std::shared_ptr<const KWArchiveString>, KWNumber,
                 std::shared_ptr<const KWArchiveData>, std::shared_ptr<const KWArchiveArray>,
                 std::shared_ptr<KWObject>, std::weak_ptr<KWObject>>
        _value;
};
