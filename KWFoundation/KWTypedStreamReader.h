#pragma once

#include <KWFoundation/KWArchiveCluster.h>
#include <KWFoundation/KWArchiveCycles.h>
#include <KWFoundation/KWCoder.h>
#include <KWFoundation/KWUnarchiver.h>
#include <KWFoundation/KWUnknownObject.h>

#include <algorithm>
#include <array>
#include <bit>
#include <cstring>
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
    /// `isHeld` tells whether the object is one to keep alive.
    KWArchiveValue readObjectValue(bool isHeld);
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

    /// Counts memory that is made of the archive; an error when it is out of all proportion.
    void spend(std::uint64_t bytes);

  private:
    static constexpr std::uint32_t none = 0xffffffff;

    using Cluster = KWArchiveCluster;

    struct Class {
        std::string name;
        std::int32_t version = 0;
        std::uint32_t superclass = none; ///< a place in _classes
        Cluster cluster = Cluster::object;
        const KWClass* known = nullptr;
    };

    /// Something that a later number may refer to. Elements of lists are kept as little as will do.
    struct Label {
        enum class Kind : std::uint8_t {
            object,
            aClass,
            cString,
            real,
            number,
            data,
            record,
            list
        };
        Kind kind;
        char code = 0;           ///< of a number: its type
        std::uint32_t index = 0; ///< a place in the tables below; data's length
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
    struct Level {
        Level(KWTypedStreamReader& owner, std::uint32_t aClass) : reader(owner) {
            reader.requireDepth();
            reader._steps.push_back({aClass, none});
        }
        ~Level() { reader._steps.pop_back(); }
        Level(const Level&) = delete;
        Level& operator=(const Level&) = delete;
        KWTypedStreamReader& reader;
    };
    /// A struct or array inside an object of an unknown class.
    struct InnerLevel {
        explicit InnerLevel(KWTypedStreamReader& owner) : reader(owner) {
            reader.requireDepth();
            ++reader._innerDepth;
        }
        ~InnerLevel() { --reader._innerDepth; }
        InnerLevel(const InnerLevel&) = delete;
        InnerLevel& operator=(const InnerLevel&) = delete;
        KWTypedStreamReader& reader;
    };

    [[noreturn]] void fail(KWArchiveError::Kind kind, std::string reason) const;
    std::string path() const;
    static std::string shownTypes(std::string_view types);
    void requireDepth() const;

    // Bytes, numbers, strings.
    std::size_t remaining() const { return _bytes.size() - _place; }
    void require(std::size_t count) const;
    std::int8_t peekHead() const;
    template <class T>
    T take() {
        require(sizeof(T));
        std::array<std::byte, sizeof(T)> bytes;
        std::memcpy(bytes.data(), _bytes.data() + _place, sizeof(T));
        _place += sizeof(T);
        if (_isBigEndian)
            std::ranges::reverse(bytes);
        return std::bit_cast<T>(bytes);
    }
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
    KWArchiveField readSimpleField(std::string_view type);
    KWArchiveField readStructField(std::string_view type);
    KWArchiveField readArrayField(std::string_view type);
    void readFields(std::vector<KWArchiveField>& items, std::string_view types);

    // Objects.
    std::uint32_t readClass();
    std::uint32_t newObject();
    KWArchiveValue readObject();
    KWArchiveValue takeObject(bool isHeld);
    KWArchiveValue valueOfLabel(std::uint32_t label);
    KWArchiveValue readContents(std::uint32_t aClass, Object& object);
    KWArchiveValue readKnown(const Class& aClass, Object& object);
    KWArchiveValue readUnknown(std::uint32_t aClass, Object& object);
    KWArchiveValue readString(bool isMutable);
    KWArchiveValue readArray(bool isMutable);
    /// Says where the value stands if it is a float.
    KWNumber readNumberContents(std::size_t* floatPlace = nullptr);
    void fillUnknown(KWUnknownObject& object, std::uint32_t aClass);
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
    KWArchiveCycles _cycles;
    std::size_t _place = 0;
    bool _isBigEndian = false;
    std::vector<std::string_view> _strings;
    std::vector<Class> _classes;
    std::unordered_map<std::string, std::int32_t> _versions;
    std::vector<Label> _labels;
    std::deque<Object> _objects;
    /// Lists that were read without objects, as the labels of their elements.
    std::vector<std::vector<std::uint32_t>> _lists;
    /// Elements of such lists that an archive describes as numbers, as they lie in memory here.
    std::vector<KWData> _records;
    /// The classes of elements that are real numbers.
    std::vector<KWRealClass> _realClasses;
    std::vector<Step> _steps;
    /// Structs and arrays of an unknown object's contents, one inside the other.
    std::size_t _innerDepth = 0;
    std::uint64_t _budget = 0;
};
