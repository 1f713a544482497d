#include <KWFoundation/KWFile.h>
#include <KWFoundation/KWTypedStreamReader.h>
#include <KWFoundation/KWUnarchiver.h>

#include <cstring>

bool KWUnarchiver::isArchive(std::span<const std::byte> bytes) {
    for (const std::string_view start : {"\x04\x0bstreamtyped", "\x04\x0btypedstream"})
        if (bytes.size() >= start.size() &&
            std::memcmp(bytes.data(), start.data(), start.size()) == 0)
            return true;
    return false;
}

KWUnarchiver::KWUnarchiver(std::span<const std::byte> bytes, Options options, std::string file)
    : _reader(std::make_unique<KWTypedStreamReader>(*this, bytes, options, std::move(file))) {}

KWUnarchiver::~KWUnarchiver() = default;

KWArchiveValue KWUnarchiver::unarchiveValueWithData(std::span<const std::byte> bytes,
                                                    Options options, std::string file) {
    return KWUnarchiver(bytes, options, std::move(file)).decodeObject();
}

KWArchiveValue KWUnarchiver::unarchiveValueWithFile(const std::filesystem::path& path,
                                                    Options options) {
    const KWFileContents contents = KWFileContents::read(path);
    return unarchiveValueWithData(contents.bytes(), options, path.string());
}

std::shared_ptr<KWObject> KWUnarchiver::unarchiveObjectWithData(std::span<const std::byte> bytes,
                                                                Options options, std::string file) {
    KWUnarchiver unarchiver(bytes, options, std::move(file));
    const KWArchiveValue value = unarchiver.decodeObject();
    auto object = value.object();
    if (!object)
        unarchiver.failDecoding("expected an object, found " + value.kindName(), {});
    return object;
}

std::shared_ptr<KWObject> KWUnarchiver::unarchiveObjectWithFile(const std::filesystem::path& path,
                                                                Options options) {
    const KWFileContents contents = KWFileContents::read(path);
    return unarchiveObjectWithData(contents.bytes(), options, path.string());
}

bool KWUnarchiver::isBigEndian() const {
    return _reader->isBigEndian();
}

bool KWUnarchiver::isAtEnd() const {
    return _reader->isAtEnd();
}

KWArchiveField KWUnarchiver::decodeAnything() {
    return _reader->readAnything();
}

std::int64_t KWUnarchiver::versionForClassName(std::string_view className) const {
    return _reader->versionForClassName(className);
}

KWArchiveValue KWUnarchiver::decodeObject() {
    return _reader->readObjectValue(true);
}

KWArchiveValue KWUnarchiver::decodeBackPointer() {
    return _reader->readObjectValue(false);
}

void KWUnarchiver::decodeValuesOfObjCTypesAt(const char* types,
                                             std::initializer_list<void*> addresses) {
    _reader->readValues(types, addresses);
}

void KWUnarchiver::decodeArrayOfObjCTypeCountAt(const char* type, std::uint32_t count,
                                                void* address) {
    _reader->readArrayValue(type, count, address);
}

KWData KWUnarchiver::decodeBytes() {
    return _reader->readBytesValue();
}

KWData KWUnarchiver::decodeDataObject() {
    return _reader->readDataContents();
}

bool KWUnarchiver::decodeFloats(std::vector<float>& list) {
    return _reader->readFloats(list);
}

bool KWUnarchiver::decodeRealObjects(std::vector<float>& list, const KWRealClass& aClass) {
    return _reader->readRealObjects(list, aClass);
}

bool KWUnarchiver::decodeRecords(std::vector<std::byte>& list, std::size_t recordSize) {
    return _reader->readRecords(list, recordSize);
}

void KWUnarchiver::spendMemory(std::uint64_t bytes) {
    _reader->spend(bytes);
}

void KWUnarchiver::failDecoding(const std::string& reason, std::string_view key) const {
    _reader->damaged(key.empty() ? reason : std::string(key) + ": " + reason);
}
