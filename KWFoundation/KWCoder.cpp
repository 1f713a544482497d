#include <KWFoundation/KWCoder.h>

#include <cstdlib>
#include <stdexcept>

namespace {

[[noreturn]] void refuse() {
    throw std::logic_error("this coder does not take such a call");
}

/// One element of a list of real objects, for coders that box each.
class RealObject final : public KWObject {
  public:
    RealObject(const KWRealClass& aClass, float value) : _class(aClass), _value(value) {}
    const KWClass& isa() const override { return _class.aClass; }
    void encodeWithCoder(KWCoder& coder) const override {
        coder.encodeDoubleForKey(static_cast<double>(_value), _class.key);
    }

  private:
    const KWRealClass& _class;
    float _value;
};

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
    std::vector<KWArchiveValue> elements;
    elements.reserve(list.size());
    for (const float value : list)
        elements.emplace_back(KWNumber(value));
    encodeObjectForKey(KWArchiveValue::mutableArray(std::move(elements)), key);
}

void KWCoder::encodeRealObjectsForKey(std::span<const float> list, const KWRealClass& aClass,
                                      std::string_view key) {
    std::vector<KWArchiveValue> elements;
    elements.reserve(list.size());
    for (const float value : list)
        elements.emplace_back(std::make_shared<RealObject>(aClass, value));
    encodeObjectForKey(KWArchiveValue::mutableArray(std::move(elements)), key);
}

void KWCoder::encodeRecordsForKey(std::span<const std::byte> list, std::size_t recordSize,
                                  std::string_view key) {
    std::vector<KWArchiveValue> elements;
    for (; !list.empty(); list = list.subspan(recordSize))
        elements.emplace_back(KWData(list.begin(), list.begin() + std::ptrdiff_t(recordSize)));
    encodeObjectForKey(KWArchiveValue::mutableArray(std::move(elements)), key);
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

std::optional<std::string> KWCoder::decodeStringForKey(std::string_view key) {
    const KWArchiveValue value = decodeObjectForKey(key);
    if (value.isNil())
        return std::nullopt;
    if (!value.string())
        failKind("a string", value, key);
    return value.string()->text;
}

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
