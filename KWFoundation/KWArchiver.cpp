#include <KWFoundation/KWArchiver.h>
#include <KWFoundation/KWFile.h>
#include <KWFoundation/KWTypedStreamWriter.h>

#include <stdexcept>

KWArchiver::KWArchiver() : _writer(std::make_unique<KWTypedStreamWriter>(*this)) {}

KWArchiver::~KWArchiver() = default;

KWData KWArchiver::archivedDataWithRootObject(const KWArchiveValue& root) {
    KWArchiver archiver;
    archiver.encodeRootObject(root);
    return archiver.archiverData();
}

void KWArchiver::archiveRootObjectToFile(const KWArchiveValue& root,
                                         const std::filesystem::path& path) {
    KWWriteFileAtomically(path, archivedDataWithRootObject(root));
}

void KWArchiver::setVersionForClassName(std::int32_t version, std::string_view className) {
    _writer->versions()[std::string(className)] = version;
}

std::int64_t KWArchiver::versionForClassName(std::string_view className) const {
    if (const auto older = _writer->versions().find(std::string(className));
        older != _writer->versions().end())
        return older->second;
    const KWClass* known = KWClassNamed(className);
    return known ? known->version() : std::int64_t{KWNotFound};
}

void KWArchiver::encodeRootObject(const KWArchiveValue& root) {
    _writer->writeRoot(root);
}

const KWData& KWArchiver::archiverData() const {
    return _writer->bytes();
}

void KWArchiver::encodeObject(const KWArchiveValue& value) {
    _writer->writeObjectValue(value);
}

void KWArchiver::encodeConditionalObject(const std::shared_ptr<KWObject>& object) {
    if (!_writer->isInRoot())
        throw std::logic_error("a conditional object can only be archived inside a root object");
    _writer->writeConditionalValue(object);
}

void KWArchiver::encodeValuesOfObjCTypesAt(const char* types,
                                           std::initializer_list<const void*> addresses) {
    _writer->writeValues(types, addresses);
}

void KWArchiver::encodeArrayOfObjCTypeCountAt(const char* type, std::uint32_t count,
                                              const void* address) {
    _writer->writeArrayValue(type, count, address);
}

void KWArchiver::encodeBytes(std::span<const std::byte> bytes) {
    _writer->writeBytesValue(bytes);
}

void KWArchiver::encodeDataObject(std::span<const std::byte> bytes) {
    _writer->writeDataContents(bytes);
}

void KWArchiver::encodeFloats(std::span<const float> list) {
    _writer->writeFloats(list);
}

void KWArchiver::encodeRealObjects(std::span<const float> list, const KWRealClass& aClass) {
    _writer->writeRealObjects(list, aClass);
}

void KWArchiver::encodeRecords(std::span<const std::byte> list, std::size_t recordSize) {
    _writer->writeRecords(list, recordSize);
}
