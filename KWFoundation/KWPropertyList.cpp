#include <KWFoundation/KWPropertyList.h>
#include <KWFoundation/KWPropertyListForms.h>

#if __has_include(<sys/mman.h>)
#include <sys/mman.h>
#endif

#include <algorithm>
#include <array>
#include <bit>
#include <cstring>
#include <limits>
#include <new>
#include <random>
#include <stdexcept>

namespace {

using Index = KWPropertyList::Index;
using Kind = KWPropertyList::Kind;

/// Scalars that are met again within so many others become one node.
constexpr std::size_t recentScalarCount = 1024;
/// Data up to this size is compared with recent data.
constexpr std::size_t smallDataSize = 64;

std::uint64_t mix(std::uint64_t value) {
    value *= 0x9e3779b97f4a7c15u;
    return value ^ (value >> 32);
}

/// The words of some bytes, the last one filled up with zeros.
template <class Function>
void forEachWord(std::span<const std::byte> bytes, Function function) {
    for (; !bytes.empty(); bytes = bytes.subspan(std::min<std::size_t>(8, bytes.size()))) {
        std::uint64_t word = 0;
        std::memcpy(&word, bytes.data(), std::min<std::size_t>(8, bytes.size()));
        function(word);
    }
}

/// Decides which small data become one node, so it is the same on every day.
std::uint64_t hashOfData(std::span<const std::byte> bytes) {
    std::uint64_t hash = mix(bytes.size() + 1);
    forEachWord(bytes, [&](std::uint64_t word) { hash = mix(hash ^ word); });
    return hash;
}

/// Places a string in the table of strings. What a file holds must not be able to make strings meet
/// in one place, so each process has secrets of its own.
std::uint64_t hashOfString(std::string_view text) {
    static const std::array<std::uint64_t, 2> secrets = [] {
        std::random_device random;
        const auto word = [&] { return std::uint64_t{random()} << 32 | random() | 1; };
        return std::array{word(), word()};
    }();
    __extension__ using Wide = unsigned __int128;
    const auto fold = [](std::uint64_t a, std::uint64_t b) {
        const Wide product = Wide{a} * b;
        return static_cast<std::uint64_t>(product) ^ static_cast<std::uint64_t>(product >> 64);
    };
    std::uint64_t hash = secrets[0] ^ text.size();
    forEachWord(std::as_bytes(std::span(text)),
                [&](std::uint64_t word) { hash = fold(hash ^ word, secrets[1]) + secrets[0]; });
    return fold(hash, secrets[1]);
}

bool startsWith(std::span<const std::byte> bytes, std::string_view text) {
    return bytes.size() >= text.size() && std::memcmp(bytes.data(), text.data(), text.size()) == 0;
}

bool looksLikeXML(std::span<const std::byte> bytes) {
    using namespace std::string_view_literals;
    if (startsWith(bytes, "\xfe\xff"sv) || startsWith(bytes, "\xff\xfe"sv))
        return true;
    if (startsWith(bytes, "\xef\xbb\xbf"sv))
        bytes = bytes.subspan(3);
    for (const std::byte byte : bytes) {
        const char c = static_cast<char>(byte);
        if (c != ' ' && c != '\t' && c != '\n' && c != '\r')
            return c == '<';
    }
    return false;
}

class DataSink final : public KWByteSink {
  public:
    explicit DataSink(KWData& data) : _data(data) {}
    void expect(std::uint64_t bytes) override { _data.reserve(bytes); }

  private:
    void take(std::span<const std::byte> bytes) override {
        _data.insert(_data.end(), bytes.begin(), bytes.end());
    }
    KWData& _data;
};

class FileSink final : public KWByteSink {
  public:
    explicit FileSink(KWAtomicFile& file) : _file(file) {}

  private:
    void take(std::span<const std::byte> bytes) override { _file.write(bytes); }
    KWAtomicFile& _file;
};

void write(const KWPropertyList& list, KWPropertyList::Format format, KWByteSink& sink) {
    if (format == KWPropertyList::Format::xml)
        KWWriteXMLPropertyList(list, sink);
    else
        KWWriteBinaryPropertyList(list, sink);
    sink.finish();
}

} // namespace

KWPropertyList::KWPropertyList() = default;
KWPropertyList::KWPropertyList(KWPropertyList&&) noexcept = default;
KWPropertyList& KWPropertyList::operator=(KWPropertyList&&) noexcept = default;
KWPropertyList::~KWPropertyList() = default;

KWPropertyList KWPropertyList::parse(std::span<const std::byte> bytes, std::string file) {
    using enum KWArchiveError::Kind;
    KWPropertyList list;
    list._source = bytes;
    list._file = std::move(file);
    const auto fail = [&](KWArchiveError::Kind kind, const char* reason) {
        throw KWArchiveError(kind, list._file, std::nullopt, {}, reason);
    };
    if (bytes.empty())
        fail(damaged, "the file is empty");
    if (startsWith(bytes, "bplist00")) {
        list._format = Format::binary;
        KWReadBinaryPropertyList(list);
    } else if (startsWith(bytes, "bplist")) {
        fail(unsupported, "a binary property list of an unknown version");
    } else if (startsWith(bytes, "\x04\x0bstreamtyped") ||
               startsWith(bytes, "\x04\x0btypedstream")) {
        fail(unsupported, "a sequential archive where a property list was expected");
    } else if (looksLikeXML(bytes)) {
        list._format = Format::xml;
        KWReadXMLPropertyList(list);
    } else {
        fail(damaged, "not a property list: it starts neither as the binary nor as the XML form");
    }
    return list;
}

KWPropertyList KWPropertyList::parseFile(const std::filesystem::path& path) {
    KWFileContents contents = KWFileContents::read(path);
    KWPropertyList list = parse(contents.bytes(), path.string());
    list._contents = std::move(contents);
    return list;
}

std::uint64_t KWPropertyList::offset(Index node) const {
    if (!_offsets.empty())
        return node < _offsets.size() ? _offsets[node] : 0;
    if (_offsetSize == 0)
        return 0;
    std::uint64_t value = 0;
    for (std::size_t k = 0; k < _offsetSize; ++k)
        value = value << 8 |
                std::to_integer<std::uint64_t>(_source[_tableOffset + node * _offsetSize + k]);
    return value;
}

std::span<const std::byte> KWPropertyList::dataValue(Index node) const {
    const Node& n = _nodes[node];
    const std::span<const std::byte> bytes = n.flag != 0 ? std::span(_store) : _source;
    return bytes.subspan(static_cast<std::size_t>(n.integer), n.count);
}

std::string_view KWPropertyList::stringValue(Index node) const {
    const auto bytes = dataValue(node);
    return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
}

Index KWPropertyList::valueForKey(Index dictionary, std::string_view key) const {
    const auto entries = children(dictionary);
    for (std::size_t k = count(dictionary); k-- > 0;)
        if (stringValue(entries[k]) == key)
            return entries[count(dictionary) + k];
    return none;
}

// A list of many nodes is written from its beginning to its end once: page by page, most of that
// time would go into getting the pages.

namespace {
constexpr std::size_t largePage = std::size_t{1} << 21;
constexpr bool isLarge(std::size_t size) {
    return size >= 2 * largePage;
}
} // namespace

void* KWPropertyList::allocateMemory(std::size_t size) {
    if (!isLarge(size))
        return ::operator new(size);
    void* const place = ::operator new (size, std::align_val_t{largePage});
#ifdef MADV_HUGEPAGE
    madvise(place, size, MADV_HUGEPAGE);
#endif
    return place;
}

void KWPropertyList::freeMemory(void* place, std::size_t size) noexcept {
    if (isLarge(size))
        ::operator delete (place, std::align_val_t{largePage});
    else
        ::operator delete(place);
}

Index KWPropertyList::append(const Node& node) {
    if (_nodes.size() >= none)
        throw std::length_error("a property list has no room for more nodes");
    _nodes.push_back(node);
    return static_cast<Index>(_nodes.size() - 1);
}

/// Numbers, UIDs and booleans: the node itself is all there is.
Index KWPropertyList::appendScalar(const Node& node) {
    if (_recentScalars.empty())
        _recentScalars.assign(recentScalarCount, none);
    const std::uint64_t hash =
        mix(static_cast<std::uint64_t>(node.integer) + (std::uint64_t{node.flag} << 8) +
            static_cast<std::uint64_t>(node.kind));
    Index& recent = _recentScalars[hash % recentScalarCount];
    if (recent != none) {
        const Node& known = _nodes[recent];
        if (known.kind == node.kind && known.flag == node.flag && known.integer == node.integer)
            return recent;
    }
    return recent = append(node);
}

Index KWPropertyList::addNull() {
    return appendScalar({});
}

Index KWPropertyList::addBool(bool value) {
    return appendScalar({.kind = Kind::boolean, .integer = value ? 1 : 0});
}

Index KWPropertyList::addInt(std::int64_t value) {
    return appendScalar({.kind = Kind::integer, .integer = value});
}

Index KWPropertyList::addUnsigned(std::uint64_t value) {
    return appendScalar({.kind = Kind::integer,
                         .flag = value > std::uint64_t{std::numeric_limits<std::int64_t>::max()},
                         .integer = static_cast<std::int64_t>(value)});
}

Index KWPropertyList::addFloat(float value) {
    return appendScalar(
        {.kind = Kind::real, .flag = 1, .integer = std::bit_cast<std::uint32_t>(value)});
}

Index KWPropertyList::addDouble(double value) {
    return appendScalar({.kind = Kind::real, .real = value});
}

Index KWPropertyList::addDate(double value) {
    return appendScalar({.kind = Kind::date, .real = value});
}

Index KWPropertyList::addUID(std::uint64_t value) {
    return appendScalar({.kind = Kind::uid, .integer = static_cast<std::int64_t>(value)});
}

std::int64_t KWPropertyList::store(std::span<const std::byte> bytes) {
    if (bytes.size() > std::numeric_limits<std::uint32_t>::max())
        throw std::length_error("a string or block of bytes is too large for a property list");
    const auto place = static_cast<std::int64_t>(_store.size());
    _store.insert(_store.end(), bytes.begin(), bytes.end());
    return place;
}

Index KWPropertyList::addString(std::string_view text) {
    if (2 * _stringCount >= _stringTable.size())
        growStringTable();
    const auto bytes = std::as_bytes(std::span(text));
    std::size_t place = hashOfString(text) & (_stringTable.size() - 1);
    while (_stringTable[place] != none) {
        if (stringValue(_stringTable[place]) == text)
            return _stringTable[place];
        place = (place + 1) & (_stringTable.size() - 1);
    }
    const bool wide = std::ranges::any_of(text, [](char c) { return (c & 0x80) != 0; });
    ++_stringCount;
    return _stringTable[place] = append({.kind = Kind::string,
                                         .flag = 1,
                                         .wide = wide,
                                         .count = static_cast<std::uint32_t>(text.size()),
                                         .integer = store(bytes)});
}

void KWPropertyList::growStringTable() {
    const std::vector<Index> old = std::move(_stringTable);
    _stringTable.assign(std::max<std::size_t>(64, 2 * old.size()), none);
    for (const Index node : old) {
        if (node == none)
            continue;
        std::size_t place = hashOfString(stringValue(node)) & (_stringTable.size() - 1);
        while (_stringTable[place] != none)
            place = (place + 1) & (_stringTable.size() - 1);
        _stringTable[place] = node;
    }
}

Index KWPropertyList::addData(std::span<const std::byte> bytes) {
    Index* recent = nullptr;
    if (bytes.size() <= smallDataSize) {
        if (_recentScalars.empty())
            _recentScalars.assign(recentScalarCount, none);
        recent = &_recentScalars[hashOfData(bytes) % recentScalarCount];
        if (*recent != none && kind(*recent) == Kind::data &&
            std::ranges::equal(dataValue(*recent), bytes))
            return *recent;
    }
    const Index node = append({.kind = Kind::data,
                               .flag = 1,
                               .count = static_cast<std::uint32_t>(bytes.size()),
                               .integer = store(bytes)});
    if (recent)
        *recent = node;
    return node;
}

Index KWPropertyList::appendContainer(Kind kind, std::span<const Index> first,
                                      std::span<const Index> second) {
    if (first.size() > std::numeric_limits<std::uint32_t>::max())
        throw std::length_error("a list is too long for a property list");
    const auto place = static_cast<std::int64_t>(_children.size());
    _children.insert(_children.end(), first.begin(), first.end());
    _children.insert(_children.end(), second.begin(), second.end());
    return append(
        {.kind = kind, .count = static_cast<std::uint32_t>(first.size()), .integer = place});
}

Index KWPropertyList::addArray(std::span<const Index> elements) {
    return appendContainer(Kind::array, elements, {});
}

Index KWPropertyList::addSet(std::span<const Index> elements) {
    return appendContainer(Kind::set, elements, {});
}

Index KWPropertyList::addDictionary(std::span<const Index> keys, std::span<const Index> values) {
    if (keys.size() != values.size())
        throw std::invalid_argument("a dictionary needs as many keys as values");
    return appendContainer(Kind::dictionary, keys, values);
}

KWData KWPropertyList::data(Format format) const {
    KWData data;
    DataSink sink(data);
    write(*this, format, sink);
    return data;
}

void KWPropertyList::writeToFile(const std::filesystem::path& path, Format format) const {
    KWAtomicFile file(path);
    FileSink sink(file);
    write(*this, format, sink);
    file.commit();
}
