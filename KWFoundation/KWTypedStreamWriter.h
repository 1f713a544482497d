#pragma once

#include <KWFoundation/KWCoder.h>
#include <KWFoundation/KWUnknownObject.h>

#include <span>
#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <utility>
#include <vector>

/// The writing half of a sequential archive: bytes, the tables of shared strings and labels, and
/// the contents of the classes that the form itself knows.
class KWTypedStreamWriter {
  public:
    explicit KWTypedStreamWriter(KWCoder& coder);

    const KWData& bytes() const { return _bytes; }
    std::unordered_map<std::string, std::int32_t>& versions() { return _versions; }

    void writeRoot(const KWArchiveValue& root);
    bool isInRoot() const { return _isInRoot; }

    // Each writes its types, then what they describe.
    void writeObjectValue(const KWArchiveValue& value);
    void writeConditionalValue(const std::shared_ptr<KWObject>& object);
    void writeValues(std::string_view types, std::initializer_list<const void*> addresses);
    void writeArrayValue(std::string_view type, std::size_t count, const void* address);
    void writeBytesValue(std::span<const std::byte> bytes);
    void writeDataContents(std::span<const std::byte> bytes);
    void writeFloats(std::span<const float> list);
    void writeRealObjects(std::span<const float> list, const KWRealClass& aClass);
    void writeRecords(std::span<const std::byte> list, std::size_t recordSize);

  private:
    /// A class's name and version, then its superclasses'.
    using Chain = std::vector<std::pair<std::string, std::int32_t>>;
    struct WrittenClass {
        std::int64_t label;
        std::int32_t version;
    };

    void put(std::uint8_t byte) { _bytes.push_back(static_cast<std::byte>(byte)); }
    void putHead(std::int8_t head) { put(static_cast<std::uint8_t>(head)); }
    void putBytes(const void* bytes, std::size_t count);
    void writeInteger(std::int64_t value);
    void writeFloat(float value);
    void writeDouble(double value);
    void writePlainString(std::string_view text);
    void writeSharedString(std::string_view text);
    void writeCString(const std::string* text);
    void writeNumber(char code, const void* address);
    void writeNumber(char code, const KWNumber& number);
    const void* writeOne(std::string_view type, const void* address);

    std::int64_t newLabel() { return _nextLabel++; }
    void writeClass(const Chain& chain, std::size_t from = 0);
    void requireDepth() const;
    Chain chainOf(const KWClass& aClass) const;
    void writeObject(const KWArchiveValue& value);
    void beginObject(const Chain& chain);
    void endObject();
    void writeContents(const KWArchiveValue& value);
    void writeNumberObject(const KWNumber& number);
    void writeUnknown(const KWUnknownObject& object);
    void writeField(std::string_view type, const KWArchiveField& field);
    template <class Begin, class Value>
    void writeList(std::size_t count, Begin begin, Value value);

    KWCoder& _coder;
    KWData _bytes;
    std::unordered_map<std::string, std::int64_t> _strings;
    std::unordered_map<std::string, std::int64_t> _cStringLabels;
    std::unordered_map<std::string, WrittenClass> _classes;
    std::unordered_map<const void*, std::int64_t> _objectLabels;
    std::unordered_map<std::string, std::int32_t> _versions;
    /// Everything that has a label by its address stays alive, so that no address comes twice.
    std::vector<KWArchiveValue> _alive;
    /// What the first walk has met unconditionally.
    std::unordered_set<const void*> _reached;
    std::int64_t _nextLabel;
    bool _isInRoot = false;
    bool _isFirstWalk = false;
    int _depth = 0;
};
