#include <KWFoundation/KWCoder.h>

#include <cstdlib>
#include <stdexcept>

namespace {

[[noreturn]] void refuse() {
    throw std::logic_error("this coder does not take such a call");
}

// Lists as the general way has them: an object, or a value, for each element.

KWArchiveValue boxed(std::span<const float> list) {
    std::vector<KWArchiveValue> elements;
    elements.reserve(list.size());
    for (const float value : list)
        elements.emplace_back(KWNumber(value));
    return KWArchiveValue::mutableArray(std::move(elements));
}

KWArchiveValue boxed(std::span<const float> list, const KWRealClass& aClass) {
    std::vector<KWArchiveValue> elements;
    elements.reserve(list.size());
    for (const float value : list)
        elements.emplace_back(aClass.box(value));
    return KWArchiveValue::mutableArray(std::move(elements));
}

KWArchiveValue boxed(std::span<const std::byte> list, std::size_t recordSize) {
    std::vector<KWArchiveValue> elements;
    for (; !list.empty(); list = list.subspan(recordSize))
        elements.emplace_back(KWData(list.begin(), list.begin() + std::ptrdiff_t(recordSize)));
    return KWArchiveValue::mutableArray(std::move(elements));
}

} // namespace

KWCoder::KWCoder() = default;
KWCoder::~KWCoder() = default;

void KWCoder::encodeObjectForKey(const KWArchiveValue&, std::string_view) {
    refuse();
}
void KWCoder::encodeConditionalObjectForKey(const std::shared_ptr<KWObject>&, std::string_view) {
    refuse();
}
void KWCoder::encodeBoolForKey(bool, std::string_view) {
    refuse();
}
void KWCoder::encodeInt32ForKey(std::int32_t, std::string_view) {
    refuse();
}
void KWCoder::encodeInt64ForKey(std::int64_t, std::string_view) {
    refuse();
}
void KWCoder::encodeFloatForKey(float, std::string_view) {
    refuse();
}
void KWCoder::encodeDoubleForKey(double, std::string_view) {
    refuse();
}
void KWCoder::encodeBytesForKey(std::span<const std::byte>, std::string_view) {
    refuse();
}

bool KWCoder::containsValueForKey(std::string_view) const {
    refuse();
}
KWArchiveValue KWCoder::decodeObjectForKey(std::string_view) {
    refuse();
}
KWArchiveValue KWCoder::decodeBackPointerForKey(std::string_view key) {
    return decodeObjectForKey(key);
}
bool KWCoder::decodeBoolForKey(std::string_view) {
    refuse();
}
std::int32_t KWCoder::decodeInt32ForKey(std::string_view) {
    refuse();
}
std::int64_t KWCoder::decodeInt64ForKey(std::string_view) {
    refuse();
}
float KWCoder::decodeFloatForKey(std::string_view) {
    refuse();
}
double KWCoder::decodeDoubleForKey(std::string_view) {
    refuse();
}
KWData KWCoder::decodeBytesForKey(std::string_view) {
    refuse();
}

void KWCoder::encodeFloatsForKey(std::span<const float> list, std::string_view key) {
    encodeObjectForKey(boxed(list), key);
}
void KWCoder::encodeRealObjectsForKey(std::span<const float> list, const KWRealClass& aClass,
                                      std::string_view key) {
    encodeObjectForKey(boxed(list, aClass), key);
}
void KWCoder::encodeRecordsForKey(std::span<const std::byte> list, std::size_t recordSize,
                                  std::string_view key) {
    encodeObjectForKey(boxed(list, recordSize), key);
}

bool KWCoder::decodeFloatsForKey(std::vector<float>&, std::string_view) {
    refuse();
}
bool KWCoder::decodeRealObjectsForKey(std::vector<float>&, const KWRealClass&, std::string_view) {
    refuse();
}
bool KWCoder::decodeRecordsForKey(std::vector<std::byte>&, std::size_t, std::string_view) {
    refuse();
}

std::int64_t KWCoder::versionForClassName(std::string_view) const {
    return 0;
}

void KWCoder::encodeObject(const KWArchiveValue&) {
    refuse();
}
void KWCoder::encodeConditionalObject(const std::shared_ptr<KWObject>&) {
    refuse();
}
void KWCoder::encodeValuesOfObjCTypesAt(const char*, std::initializer_list<const void*>) {
    refuse();
}
void KWCoder::encodeArrayOfObjCTypeCountAt(const char*, std::uint32_t, const void*) {
    refuse();
}
void KWCoder::encodeBytes(std::span<const std::byte>) {
    refuse();
}
void KWCoder::encodeDataObject(std::span<const std::byte>) {
    refuse();
}

KWArchiveValue KWCoder::decodeObject() {
    refuse();
}
KWArchiveValue KWCoder::decodeBackPointer() {
    return decodeObject();
}
void KWCoder::decodeValuesOfObjCTypesAt(const char*, std::initializer_list<void*>) {
    refuse();
}
void KWCoder::decodeArrayOfObjCTypeCountAt(const char*, std::uint32_t, void*) {
    refuse();
}
KWData KWCoder::decodeBytes() {
    refuse();
}
KWData KWCoder::decodeDataObject() {
    refuse();
}

void KWCoder::encodeFloats(std::span<const float> list) {
    encodeObject(boxed(list));
}
void KWCoder::encodeRealObjects(std::span<const float> list, const KWRealClass& aClass) {
    encodeObject(boxed(list, aClass));
}
void KWCoder::encodeRecords(std::span<const std::byte> list, std::size_t recordSize) {
    encodeObject(boxed(list, recordSize));
}

bool KWCoder::decodeFloats(std::vector<float>&) {
    refuse();
}
bool KWCoder::decodeRealObjects(std::vector<float>&, const KWRealClass&) {
    refuse();
}
bool KWCoder::decodeRecords(std::vector<std::byte>&, std::size_t) {
    refuse();
}

std::optional<std::string> KWCoder::stringOf(const KWArchiveValue& value,
                                             std::string_view key) const {
    if (value.isNil())
        return std::nullopt;
    if (!value.string())
        failKind("a string", value, key);
    return value.string()->text;
}

void KWCoder::spendMemory(std::uint64_t) {}

void KWCoder::failDecoding(const std::string& reason, std::string_view key) const {
    throw KWArchiveError(KWArchiveError::Kind::damaged, {}, std::nullopt, std::string(key), reason);
}

void KWCoder::failKind(std::string_view wanted, const KWArchiveValue& found,
                       std::string_view key) const {
    failDecoding("expected " + std::string(wanted) + ", found " + found.kindName(), key);
    std::abort(); // a virtual function's promise not to return is not known to the compiler
}

const std::vector<KWArchiveValue>& KWCoder::arrayElements(const KWArchiveValue& value,
                                                          std::string_view key) const {
    if (!value.array())
        failKind("an array", value, key);
    return value.array()->elements;
}
