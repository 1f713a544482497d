#pragma once

#include <KWFoundation/KWCoder.h>
#include <KWFoundation/KWUnarchiver.h>
#include <KWFoundation/KWUnknownObject.h>

#include <deque>
#include <span>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

/// The reading half of a sequential archive: bytes, the tables of shared strings and labels, and
/// the contents of the classes that the form itself knows. The unarchiver's calls are thin over it.
class KWTypedStreamReader {
  public:
    KWTypedStreamReader(KWCoder& coder, std::span<const std::byte> bytes,
                        KWUnarchivingOptions options, std::string file);

    bool isBigEndian() const { return _isBigEndian; }
    bool isAtEnd() const { return _place == _bytes.size(); }
    std::int64_t versionForClassName(std::string_view name) const;

    // Each reads its types, then what they describe.
    KWArchiveValue readObjectValue();
    void readValues(std::string_view types, std::initializer_list<void*> addresses);
    void readArrayValue(std::string_view type, std::size_t count, void* address);
    KWData readBytesValue();
    KWData readDataContents();
    bool readFloats(std::vector<float>& list);
    bool readRealObjects(std::vector<float>& list, const KWRealClass& aClass);
    bool readRecords(std::vector<std::byte>& list, std::size_t recordSize);

    /// Whatever stands next: the types, and what they describe.
    KWArchiveField readAnything();

    [[noreturn]] void damaged(std::string reason) const;

  private:
    static constexpr std::uint32_t none = 0xffffffff;

    enum class Cluster {
        object,
        string,
        mutableString,
        data,
        mutableData,
        array,
        mutableArray,
        number
    };

    struct Class {
        std::string name;
        std::int32_t version = 0;
        std::uint32_t superclass = none; ///< a place in _classes
        Cluster cluster = Cluster::object;
        const KWClass* known = nullptr;
    };

    /// Something that a later number may refer to. Elements of lists are kept as little as will do.
    struct Label {
        enum class Kind : std::uint8_t { object, aClass, cString, real, number, data, list };
        Kind kind;
        char code = 0;           ///< of a number: its type
        std::uint32_t index = 0; ///< a place in _objects, _classes, _strings, _lists; data's length
        std::uint64_t bits = 0;  ///< of a number or real; data's place in the stream
    };

    struct Object {
        bool isBusy = true;
        KWArchiveValue value;
    };

    /// A step on the way to what is being read.
    struct Step {
        std::uint32_t aClass;
        std::uint32_t index;
    };
    /// One object inside another, for as long as it is being read.
    struct Level;

    [[noreturn]] void fail(KWArchiveError::Kind kind, std::string reason) const;
    std::string path() const;
    void spend(std::uint64_t bytes);

    // Bytes, numbers, strings.
    std::size_t remaining() const { return _bytes.size() - _place; }
    void require(std::size_t count) const;
    std::int8_t peekHead() const;
    template <class T>
    T take();
    void readHeader();
    std::int64_t readInteger();
    std::int64_t integerAfter(std::int8_t head);
    double readReal(bool isSingle, float* exact);
    std::string_view readPlainString();
    const std::string_view* readSharedString();
    const std::string_view* readCString();
    std::string_view readType();
    void expectType(std::string_view wanted);
    std::uint32_t labelAfter(std::int8_t head);

    // Values by type.
    void readOne(std::string_view type, void* address);
    void readNumber(char code, void* address);
    KWNumber readNumber(char code);
    KWArchiveField readField(std::string_view type);
    void readFields(std::vector<KWArchiveField>& items, std::string_view types);

    // Objects.
    std::uint32_t readClass();
    std::uint32_t newObject();
    KWArchiveValue readObject(bool weakly);
    KWArchiveValue valueOfLabel(std::uint32_t label, bool weakly);
    KWArchiveValue readContents(std::uint32_t aClass, Object& object);
    KWArchiveValue readKnown(const Class& aClass, Object& object);
    KWArchiveValue readUnknown(std::uint32_t aClass, Object& object);
    KWArchiveValue readString(bool isMutable);
    KWArchiveValue readArray(bool isMutable);
    KWNumber readNumberContents();
    void fillUnknown(KWUnknownObject& object, std::uint32_t aClass) const;
    void endObject();

    // Lists.
    struct Floats;
    struct Reals;
    struct Records;
    template <class Element>
    bool readList(Element& element);
    template <class New, class Known>
    void readElement(New readNew, Known readKnown);
    KWArchiveValue listValue(const Label& label);
    static KWNumber numberOf(const Label& label);

    KWCoder& _coder;
    std::span<const std::byte> _bytes;
    KWUnarchivingOptions _options;
    std::string _file;
    std::size_t _place = 0;
    bool _isBigEndian = false;
    std::vector<std::string_view> _strings;
    std::vector<Class> _classes;
    std::unordered_map<std::string, std::int32_t> _versions;
    std::vector<Label> _labels;
    std::deque<Object> _objects;
    /// Lists that were read without objects, as the labels of their elements.
    std::vector<std::vector<std::uint32_t>> _lists;
    /// The classes of elements that are real numbers.
    std::vector<KWRealClass> _realClasses;
    std::vector<Step> _steps;
    std::uint64_t _budget = 0;
};
