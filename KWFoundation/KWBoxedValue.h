#pragma once

#include <KWFoundation/KWObject.h>

/// How a small value class is archived: specialise it with
///
///     static const KWClass& classObject();                // its factory makes a KWBoxedValue<T>
///     static void encode(const T& value, KWCoder& coder);
///     static bool decode(T& value, KWCoder& coder);       // false for nil
template <class T>
struct KWValueClass;

/// A value where an object is called for, such as an element of an archived list.
template <class T>
class KWBoxedValue final : public KWObject {
  public:
    KWBoxedValue() = default;
    explicit KWBoxedValue(const T& initial) : value(initial) {}

    static const KWClass& classObject() { return KWValueClass<T>::classObject(); }
    const KWClass& isa() const override { return classObject(); }
    void encodeWithCoder(KWCoder& coder) const override { KWValueClass<T>::encode(value, coder); }
    bool initWithCoder(KWCoder& coder) override { return KWValueClass<T>::decode(value, coder); }

    T value{};
};
