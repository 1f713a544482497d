#pragma once

#include <KWFoundation/KWArchiveError.h>
#include <KWFoundation/KWArchiveValue.h>
#include <KWFoundation/KWExport.h>
#include <KWFoundation/KWObject.h>
#include <KWFoundation/KWTypes.h>

#include <cstdint>
#include <initializer_list>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

/// A class whose instances are archived as one real number each, such as a time. It lets whole
/// lists of them pass a coder without an object for each.
struct KWRealClass {
    /// The class under whose name the instances stand in an archive.
    const KWClass& aClass;
    /// The key of the number, a double, in a keyed archive.
    std::string_view key;
    /// An instance with that number, and the number of an instance.
    std::shared_ptr<KWObject> (*box)(float number);
    float (*unbox)(const KWObject& object);
};

/// Writes an object's contents to an archive, or reads them back. Here and in other headers of
/// archives, "the platform" is the desktop platform whose keyed and sequential archives these are.
///
/// A class asks allowsKeyedCoding() and uses one family of calls: with keys, in any order when
/// reading, or without, in one fixed order. Calls of the family that a coder lacks, and reading
/// from one that writes, raise std::logic_error.
///
/// Reading raises KWArchiveError when the archive holds something of another kind than was asked
/// for. What is absent reads as nil, 0 or false.
class KW_EXPORT KWCoder {
  public:
    KWCoder();
    virtual ~KWCoder();
    KWCoder(const KWCoder&) = delete;
    KWCoder& operator=(const KWCoder&) = delete;

    virtual bool allowsKeyedCoding() const = 0;

    /// The version that a class has in this archive: the one it was written with when reading, the
    /// one it shall be written as when writing. KWNotFound for a class that the archive does not
    /// have. Keyed archives hold no versions and answer 0.
    virtual std::int64_t versionForClassName(std::string_view className) const;

    // --- Writing with keys. A key used twice in one object keeps its last value.

    virtual void encodeObjectForKey(const KWArchiveValue& value, std::string_view key);
    /// Writes a reference to `object` that holds only if the object is also written
    /// unconditionally, before or after; else it reads back as nil.
    virtual void encodeConditionalObjectForKey(const std::shared_ptr<KWObject>& object,
                                               std::string_view key);
    virtual void encodeBoolForKey(bool value, std::string_view key);
    virtual void encodeInt32ForKey(std::int32_t value, std::string_view key);
    virtual void encodeInt64ForKey(std::int64_t value, std::string_view key);
    virtual void encodeFloatForKey(float value, std::string_view key);
    virtual void encodeDoubleForKey(double value, std::string_view key);
    virtual void encodeBytesForKey(std::span<const std::byte> bytes, std::string_view key);

    // --- Reading with keys.

    virtual bool containsValueForKey(std::string_view key) const;
    virtual KWArchiveValue decodeObjectForKey(std::string_view key);
    /// The same, for a pointer that does not keep its object alive, such as one to a whole. What is
    /// read in another way counts as kept alive where a reader that keeps unknown objects sees to
    /// it that nothing keeps itself alive through them. A coder need not tell the two apart.
    virtual KWArchiveValue decodeBackPointerForKey(std::string_view key);
    virtual bool decodeBoolForKey(std::string_view key);
    /// Any number will do; one that does not fit in the type is an error.
    virtual std::int32_t decodeInt32ForKey(std::string_view key);
    virtual std::int64_t decodeInt64ForKey(std::string_view key);
    virtual float decodeFloatForKey(std::string_view key);
    virtual double decodeDoubleForKey(std::string_view key);
    virtual KWData decodeBytesForKey(std::string_view key);

    // --- Lists of small things, written and read without boxing each; the bytes in the archive are
    // those of the general way, a mutable array of objects. The readers fill `list` and answer
    // true, or answer false and leave it empty when there is nothing or nil under the key.

    /// Floats, as numbers.
    virtual void encodeFloatsForKey(std::span<const float> list, std::string_view key);
    virtual bool decodeFloatsForKey(std::vector<float>& list, std::string_view key);
    /// Instances of a class of one real number each, each an object of its own.
    virtual void encodeRealObjectsForKey(std::span<const float> list, const KWRealClass& aClass,
                                         std::string_view key);
    virtual bool decodeRealObjectsForKey(std::vector<float>& list, const KWRealClass& aClass,
                                         std::string_view key);
    /// Blocks of `recordSize` bytes each, one behind the other in `list`.
    virtual void encodeRecordsForKey(std::span<const std::byte> list, std::size_t recordSize,
                                     std::string_view key);
    /// Blocks that came shorter are filled up with zeros, longer ones cut.
    virtual bool decodeRecordsForKey(std::vector<std::byte>& list, std::size_t recordSize,
                                     std::string_view key);

    // --- Without keys: values in one fixed order. Each call writes the types of what it writes,
    // and what one call wrote one call reads. Types are the codes of the platform's run time: c C s
    // S i I l L q Q B for integers (l has four bytes), f d for reals, * for a C string, @ for an
    // object, [12f] for an array, {name=ff} for a struct. An address of a number, array or struct
    // is that of a C object of that type; of @ that of a KWArchiveValue, of * that of a
    // std::optional<std::string>.

    virtual void encodeObject(const KWArchiveValue& value);
    /// Writes `object` if something in the archive holds it unconditionally, else nil.
    virtual void encodeConditionalObject(const std::shared_ptr<KWObject>& object);
    /// Several types in one string, with an address each. std::invalid_argument for types that are
    /// none of the above.
    virtual void encodeValuesOfObjCTypesAt(const char* types,
                                           std::initializer_list<const void*> addresses);
    void encodeValueOfObjCTypeAt(const char* type, const void* address) {
        encodeValuesOfObjCTypesAt(type, {address});
    }
    virtual void encodeArrayOfObjCTypeCountAt(const char* type, std::uint32_t count,
                                              const void* address);
    virtual void encodeBytes(std::span<const std::byte> bytes);
    virtual void encodeDataObject(std::span<const std::byte> bytes);

    virtual KWArchiveValue decodeObject();
    /// As decodeBackPointerForKey, without a key.
    virtual KWArchiveValue decodeBackPointer();
    /// A single number may be read in another width than it was written in.
    virtual void decodeValuesOfObjCTypesAt(const char* types,
                                           std::initializer_list<void*> addresses);
    void decodeValueOfObjCTypeAt(const char* type, void* address) {
        decodeValuesOfObjCTypesAt(type, {address});
    }
    virtual void decodeArrayOfObjCTypeCountAt(const char* type, std::uint32_t count, void* address);
    virtual KWData decodeBytes();
    virtual KWData decodeDataObject();

    // Lists of small things, as with keys: without boxing each, false for nil. Records are words of
    // four bytes in the order of the machine that writes; those of a machine of the other order are
    // turned when they are read.
    virtual void encodeFloats(std::span<const float> list);
    virtual bool decodeFloats(std::vector<float>& list);
    virtual void encodeRealObjects(std::span<const float> list, const KWRealClass& aClass);
    virtual bool decodeRealObjects(std::vector<float>& list, const KWRealClass& aClass);
    virtual void encodeRecords(std::span<const std::byte> list, std::size_t recordSize);
    virtual bool decodeRecords(std::vector<std::byte>& list, std::size_t recordSize);

    // --- Typed reading, in terms of the above.

    // Where there are no keys, `what` names the value in messages.

    /// The string under the key; std::nullopt for nil.
    std::optional<std::string> decodeStringForKey(std::string_view key) {
        return stringOf(decodeObjectForKey(key), key);
    }
    std::optional<std::string> decodeString(std::string_view what) {
        return stringOf(decodeObject(), what);
    }

    /// The object under the key, which must be a T; null for nil.
    template <class T>
    std::shared_ptr<T> decodeObjectOfClassForKey(std::string_view key) {
        return objectOfClass<T>(decodeObjectForKey(key), key);
    }
    template <class T>
    std::shared_ptr<T> decodeObjectOfClass(std::string_view what) {
        return objectOfClass<T>(decodeObject(), what);
    }

    /// The same, for a pointer that does not keep its object alive.
    template <class T>
    std::shared_ptr<T> decodeBackPointerOfClassForKey(std::string_view key) {
        return objectOfClass<T>(decodeBackPointerForKey(key), key);
    }
    template <class T>
    std::shared_ptr<T> decodeBackPointerOfClass(std::string_view what) {
        return objectOfClass<T>(decodeBackPointer(), what);
    }

    /// The list under the key, whose elements must be Ts and not nil; std::nullopt for nil.
    template <class T>
    std::optional<std::vector<std::shared_ptr<T>>>
    decodeObjectsOfClassForKey(std::string_view key) {
        return objectsOfClass<T>(decodeObjectForKey(key), key);
    }
    template <class T>
    std::optional<std::vector<std::shared_ptr<T>>> decodeObjectsOfClass(std::string_view what) {
        return objectsOfClass<T>(decodeObject(), what);
    }

    /// Tells the reader that this many bytes are being made of something that it has handed out,
    /// for an initWithCoder that makes many times the size of it. An archive may refer to one value
    /// from many places: KWArchiveError when all that is made is more than one of its size may ask
    /// for.
    virtual void spendMemory(std::uint64_t bytes);

    /// Raises the KWArchiveError that names the archive, the place being read and the reason. For
    /// an initWithCoder that finds values it cannot use; `key` is theirs, empty without keys.
    [[noreturn]] virtual void failDecoding(const std::string& reason, std::string_view key) const;

  protected:
    template <class T>
    std::shared_ptr<T> objectOfClass(const KWArchiveValue& value, std::string_view key) const {
        if (value.isNil())
            return nullptr;
        auto object = std::dynamic_pointer_cast<T>(value.object());
        if (!object)
            failKind(T::classObject().name(), value, key);
        return object;
    }
    template <class T>
    std::optional<std::vector<std::shared_ptr<T>>> objectsOfClass(const KWArchiveValue& value,
                                                                  std::string_view key) const {
        if (value.isNil())
            return std::nullopt;
        std::vector<std::shared_ptr<T>> list;
        for (const KWArchiveValue& element : arrayElements(value, key)) {
            list.push_back(objectOfClass<T>(element, key));
            if (!list.back())
                failDecoding("a list element is nil", key);
        }
        return list;
    }
    std::optional<std::string> stringOf(const KWArchiveValue& value, std::string_view key) const;
    [[noreturn]] void failKind(std::string_view wanted, const KWArchiveValue& found,
                               std::string_view key) const;
    const std::vector<KWArchiveValue>& arrayElements(const KWArchiveValue& value,
                                                     std::string_view key) const;
};

/// The deepest nesting of objects in objects, and of lists in lists, that any archive may have.
inline constexpr int KWArchiveMaximumDepth = 1000;
