#include <KWFoundation/KWKeyedArchiveReader.h>
#include <KWFoundation/KWKeyedUnarchiver.h>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <cstring>
#include <limits>

namespace {

using Index = KWPropertyList::Index;
using Kind = KWPropertyList::Kind;
constexpr Index none = KWPropertyList::none;

std::shared_ptr<KWObject> rootObject(KWKeyedUnarchiver unarchiver) {
    const KWArchiveValue value = unarchiver.decodeObjectForKey("root");
    auto object = value.object();
    if (!object)
        unarchiver.failDecoding("expected an object, found " + value.kindName(), "root");
    return object;
}

} // namespace

KWKeyedUnarchiver::KWKeyedUnarchiver(std::span<const std::byte> bytes, Options options,
                                     std::string file)
    : KWKeyedUnarchiver(KWPropertyList::parse(bytes, std::move(file)), options) {}

KWKeyedUnarchiver::KWKeyedUnarchiver(KWPropertyList list, Options options)
    : _reader(std::make_unique<KWKeyedArchiveReader>(*this, std::move(list), options)) {}

KWKeyedUnarchiver::~KWKeyedUnarchiver() = default;

KWArchiveValue KWKeyedUnarchiver::unarchiveValueWithData(std::span<const std::byte> bytes,
                                                         Options options, std::string file) {
    return KWKeyedUnarchiver(bytes, options, std::move(file)).decodeObjectForKey("root");
}

KWArchiveValue KWKeyedUnarchiver::unarchiveValueWithFile(const std::filesystem::path& path,
                                                         Options options) {
    return KWKeyedUnarchiver(KWPropertyList::parseFile(path), options).decodeObjectForKey("root");
}

std::shared_ptr<KWObject>
KWKeyedUnarchiver::unarchiveObjectWithData(std::span<const std::byte> bytes, Options options,
                                           std::string file) {
    return rootObject(KWKeyedUnarchiver(bytes, options, std::move(file)));
}

std::shared_ptr<KWObject>
KWKeyedUnarchiver::unarchiveObjectWithFile(const std::filesystem::path& path, Options options) {
    return rootObject(KWKeyedUnarchiver(KWPropertyList::parseFile(path), options));
}

KWPropertyList::Format KWKeyedUnarchiver::format() const {
    return _reader->list.format();
}

std::vector<std::string> KWKeyedUnarchiver::topKeys() const {
    std::vector<std::string> keys;
    const Index top = _reader->list.valueForKey(_reader->list.root(), "$top");
    for (const Index key : _reader->list.children(top).first(_reader->list.count(top)))
        keys.emplace_back(_reader->list.stringValue(key));
    return keys;
}

bool KWKeyedUnarchiver::containsValueForKey(std::string_view key) const {
    return _reader->entry(key) != none;
}

KWArchiveValue KWKeyedUnarchiver::decodeObjectForKey(std::string_view key) {
    return _reader->objectForKey(key, true);
}

KWArchiveValue KWKeyedUnarchiver::decodeBackPointerForKey(std::string_view key) {
    return _reader->objectForKey(key, false);
}

bool KWKeyedUnarchiver::decodeBoolForKey(std::string_view key) {
    return _reader->at(key, [&] {
        const Index node = _reader->numberEntry(key);
        return node != none && _reader->number(node).boolValue();
    });
}

std::int32_t KWKeyedUnarchiver::decodeInt32ForKey(std::string_view key) {
    using Limits = std::numeric_limits<std::int32_t>;
    return static_cast<std::int32_t>(_reader->integer(key, Limits::min(), Limits::max()));
}

std::int64_t KWKeyedUnarchiver::decodeInt64ForKey(std::string_view key) {
    using Limits = std::numeric_limits<std::int64_t>;
    return _reader->integer(key, Limits::min(), Limits::max());
}

float KWKeyedUnarchiver::decodeFloatForKey(std::string_view key) {
    return _reader->at(key, [&] {
        const Index node = _reader->numberEntry(key);
        return node == none ? 0.0F : _reader->number(node).floatValue();
    });
}

double KWKeyedUnarchiver::decodeDoubleForKey(std::string_view key) {
    return _reader->at(key, [&] {
        const Index node = _reader->numberEntry(key);
        return node == none ? 0.0 : _reader->number(node).doubleValue();
    });
}

KWData KWKeyedUnarchiver::decodeBytesForKey(std::string_view key) {
    return _reader->at(key, [&] {
        Index node = _reader->entry(key);
        if (node != none && _reader->list.kind(node) == Kind::uid)
            node = _reader->target(node);
        if (node == none)
            return KWData();
        if (_reader->list.kind(node) != Kind::data)
            _reader->wrongKind(node, "data");
        const auto bytes = _reader->list.dataValue(node);
        _reader->spend(bytes.size());
        return KWData(bytes.begin(), bytes.end());
    });
}

bool KWKeyedUnarchiver::decodeFloatsForKey(std::vector<float>& list, std::string_view key) {
    list.clear();
    KWKeyedArchiveReader& it = *_reader;
    return it.eachElement(key, sizeof(float), [&](std::span<const Index> references) {
        list.reserve(references.size());
        for (const Index reference : references) {
            const Index node = it.element(reference, list.size());
            if (it.list.kind(node) == Kind::real && it.list.isSingle(node))
                list.push_back(it.list.singleValue(node));
            else
                list.push_back(it.floatElement(node));
        }
    });
}

bool KWKeyedUnarchiver::decodeRealObjectsForKey(std::vector<float>& list, const KWRealClass& aClass,
                                                std::string_view key) {
    list.clear();
    KWKeyedArchiveReader& it = *_reader;
    return it.eachElement(key, sizeof(float), [&](std::span<const Index> references) {
        // Elements mostly look alike: the number's key, "$class", and one class. Once an element
        // has been read in full, those of the same looks need no look-up by text.
        list.reserve(references.size());
        std::array<Index, 2> keys{none, none};
        std::uint64_t classSlot = 0;
        for (const Index reference : references) {
            const Index node = it.element(reference, list.size());
            const auto entries = it.list.kind(node) == Kind::dictionary ? it.list.children(node)
                                                                        : std::span<const Index>();
            if (entries.size() == 4 && entries[0] == keys[0] && entries[1] == keys[1] &&
                it.list.kind(entries[2]) == Kind::real && it.list.kind(entries[3]) == Kind::uid &&
                it.list.uidValue(entries[3]) == classSlot) {
                list.push_back(static_cast<float>(it.list.realValue(entries[2])));
                continue;
            }
            list.push_back(it.realElement(node, aClass));
            if (entries.size() == 4 && it.list.stringValue(entries[0]) == aClass.key &&
                it.list.stringValue(entries[1]) == "$class") {
                keys = {entries[0], entries[1]};
                classSlot = it.list.uidValue(entries[3]);
            }
        }
    });
}

bool KWKeyedUnarchiver::decodeRecordsForKey(std::vector<std::byte>& list, std::size_t recordSize,
                                            std::string_view key) {
    list.clear();
    KWKeyedArchiveReader& it = *_reader;
    return it.eachElement(key, recordSize, [&](std::span<const Index> references) {
        list.resize(references.size() * recordSize);
        std::size_t place = 0;
        for (std::size_t k = 0; k < references.size(); ++k, place += recordSize) {
            const Index node = it.element(references[k], k);
            if (it.list.kind(node) == Kind::data) {
                const auto bytes = it.list.dataValue(node);
                std::memcpy(list.data() + place, bytes.data(), std::min(bytes.size(), recordSize));
                continue;
            }
            const KWArchiveValue value = it.valueOf(references[k]);
            if (!value.data())
                it.damaged(node, "expected data, found " + value.kindName());
            std::memcpy(list.data() + place, value.data()->bytes.data(),
                        std::min(value.data()->bytes.size(), recordSize));
        }
    });
}

void KWKeyedUnarchiver::spendMemory(std::uint64_t bytes) {
    _reader->spend(bytes);
}

void KWKeyedUnarchiver::failDecoding(const std::string& reason, std::string_view key) const {
    _reader->at(key, [&]() -> bool {
        const Index node = _reader->entry(key);
        _reader->damaged(node == none ? _reader->frame : node, reason);
    });
    std::abort();
}
