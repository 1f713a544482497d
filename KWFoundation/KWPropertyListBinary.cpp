#include <KWFoundation/KWPropertyListForms.h>
#include <KWFoundation/KWText.h>

#include <algorithm>
#include <bit>
#include <cstring>
#include <limits>
#include <vector>

// Binary form, version 00: a marker, the objects, a table of their offsets and a trailer of 32
// bytes. All numbers are big-endian.

namespace {

using Index = KWPropertyList::Index;
using Kind = KWPropertyList::Kind;
using Bytes = std::span<const std::byte>;

constexpr std::size_t headerSize = 8;
constexpr std::size_t trailerSize = 32;

/// A number of 1 to 8 bytes. Eight bytes are read whatever the size: before the end of a list there
/// is always its trailer.
std::uint64_t bigEndian(const std::byte* place, std::uint64_t size) {
    std::uint64_t value = 0;
    std::memcpy(&value, place, 8);
    return __builtin_bswap64(value) >> (64 - 8 * size);
}

std::size_t countSize(std::uint64_t count) {
    return count < 15 ? 0 : count <= 0xff ? 2 : count <= 0xffff ? 3 : count <= 0xffffffff ? 5 : 9;
}

} // namespace

/// Reads every object of the offset table once, in the table's order. All that a container claims
/// to hold must be in the file, and objects may not overlap, so the work and the memory are bounded
/// by the file's size.
class KWBinaryPropertyListReader {
  public:
    explicit KWBinaryPropertyListReader(KWPropertyList& list)
        : _list(list), _source(list._source) {}

    void read() {
        readTrailer();
        _list._offsetSize = static_cast<std::uint8_t>(_offsetSize);
        _list._tableOffset = _tableOffset;
        _list._nodes.resize(_objectCount);
        // Room for as many references as the objects could hold; what is not used is never touched.
        _list._children.reserve((_tableOffset - headerSize) / _referenceSize);
        std::uint64_t bytesRead = 0;
        for (std::uint64_t object = 0; object < _objectCount; ++object) {
            _start = objectOffset(object);
            _place = _start + 1;
            // Written where it stays: to copy a node just after its parts have been written would
            // have the processor wait for each of them.
            Node& node = _list._nodes[object];
            if (!readShortScalar(node)) {
                node = {};
                readObject(node);
                if (node.kind == Kind::dictionary)
                    _dictionaries.push_back(static_cast<Index>(object));
            }
            bytesRead += _place - _start;
            if (bytesRead > _tableOffset)
                fail(_start, "objects overlap");
        }
        checkDictionaryKeys();
        _list._root = static_cast<Index>(_topObject);
    }

  private:
    using Node = KWPropertyList::Node;

    [[noreturn]] void fail(std::uint64_t offset, std::string reason) const {
        throw KWArchiveError(KWArchiveError::Kind::damaged, _list._file, offset, {},
                             std::move(reason));
    }

    void readTrailer() {
        if (_source.size() < headerSize + trailerSize)
            fail(_source.size(), "the file ends before a binary property list could");
        const std::uint64_t place = _source.size() - trailerSize;
        const std::byte* trailer = at(place);
        _offsetSize = bigEndian(trailer + 6, 1);
        _referenceSize = bigEndian(trailer + 7, 1);
        _objectCount = bigEndian(trailer + 8, 8);
        _topObject = bigEndian(trailer + 16, 8);
        _tableOffset = bigEndian(trailer + 24, 8);
        if (_offsetSize < 1 || _offsetSize > 8 || _referenceSize < 1 || _referenceSize > 8)
            fail(place + 6,
                 "the trailer's sizes of offsets and references are not between 1 and 8; "
                 "the file may be cut short");
        if (_tableOffset < headerSize || _tableOffset > place)
            fail(place + 24, "the offset table lies outside the file; the file may be cut short");
        if (_objectCount > (place - _tableOffset) / _offsetSize)
            fail(place + 8, "the trailer counts more objects than the offset table holds");
        if (_objectCount >= KWPropertyList::none)
            fail(place + 8, "the trailer counts more objects than any list may have");
        if (_topObject >= _objectCount)
            fail(place + 16, "the top object is not among the objects");
    }

    std::uint64_t objectOffset(std::uint64_t object) const {
        const std::uint64_t entry = _tableOffset + object * _offsetSize;
        const std::uint64_t offset = bigEndian(at(entry), _offsetSize);
        if (offset < headerSize || offset >= _tableOffset)
            fail(entry,
                 "the offset of object " + std::to_string(object) + " is outside the objects");
        return offset;
    }

    const std::byte* at(std::uint64_t place) const { return _source.data() + place; }

    /// Checks that `count` pieces of `size` bytes lie between the place reached and the table.
    void require(std::uint64_t count, std::uint64_t size) const {
        if (count > (_tableOffset - _place) / size)
            fail(_start, "an object claims more bytes than the file holds");
    }

    std::uint64_t take(std::uint64_t size) {
        require(1, size);
        const std::uint64_t value = bigEndian(at(_place), size);
        _place += size;
        return value;
    }

    /// The count of a string, block or container: in the marker, or an integer behind it.
    std::uint64_t takeCount(unsigned low) {
        if (low != 15)
            return low;
        const auto marker = static_cast<unsigned>(take(1));
        const std::uint64_t size = std::uint64_t{1} << (marker & 15);
        if (marker >> 4 != 1 || size > 8)
            fail(_place - 1, "a count is not an integer");
        const std::uint64_t count = take(size);
        if (count > std::numeric_limits<std::uint32_t>::max())
            fail(_start, "an object claims more bytes than the file holds");
        return count;
    }

    /// Reads what most objects of a keyed archive are, and what needs no more than its marker and
    /// the eight bytes behind: UIDs, reals and integers of 8 bytes at most. False for all else,
    /// whatever is wrong with it.
    bool readShortScalar(Node& node) {
        const auto marker = std::to_integer<unsigned>(*at(_start));
        const unsigned low = marker & 15;
        std::uint64_t size = 0;
        Kind kind = Kind::uid;
        if (marker >> 4 == 0x8 && low < 8) {
            size = low + 1;
        } else if (marker == 0x22 || marker == 0x23) {
            kind = Kind::real;
            size = std::uint64_t{1} << low;
        } else if (marker >= 0x10 && marker <= 0x13) {
            kind = Kind::integer;
            size = std::uint64_t{1} << low;
        }
        if (size == 0 || size > _tableOffset - _place)
            return false;
        node = {
            kind, marker == 0x22, 0, 0, {static_cast<std::int64_t>(bigEndian(at(_place), size))}};
        _place += size;
        return true;
    }

    void readObject(Node& node) {
        const auto marker = std::to_integer<unsigned>(*at(_start));
        const unsigned low = marker & 15;
        switch (marker >> 4) {
        case 0x0:
            if (marker != 0x00 && marker != 0x08 && marker != 0x09)
                fail(_start, "an object of an unknown kind");
            node.kind = marker == 0x00 ? Kind::null : Kind::boolean;
            node.integer = marker == 0x09;
            return;
        case 0x1:
            return readInteger(node, low);
        case 0x2:
            if (low != 2 && low != 3)
                fail(_start, "a real of neither 4 nor 8 bytes");
            node.kind = Kind::real;
            node.flag = low == 2;
            // The bits of either width; a single stays one.
            node.integer = static_cast<std::int64_t>(take(low == 2 ? 4 : 8));
            return;
        case 0x3:
            if (low != 3)
                fail(_start, "a date of other than 8 bytes");
            node.kind = Kind::date;
            node.real = std::bit_cast<double>(take(8));
            return;
        case 0x4:
            node.kind = Kind::data;
            return readBytes(node, takeCount(low));
        case 0x5:
            node.kind = Kind::string;
            return readASCII(node, takeCount(low));
        case 0x6:
            node.kind = Kind::string;
            return readUTF16(node, takeCount(low));
        case 0x8:
            if (low > 7)
                fail(_start, "a UID of more than 8 bytes");
            node.kind = Kind::uid;
            node.integer = static_cast<std::int64_t>(take(low + 1));
            return;
        case 0xa:
            node.kind = Kind::array;
            return readChildren(node, takeCount(low), 1);
        case 0xc:
            node.kind = Kind::set;
            return readChildren(node, takeCount(low), 1);
        case 0xd:
            node.kind = Kind::dictionary;
            return readChildren(node, takeCount(low), 2);
        default:
            fail(_start, "an object of an unknown kind");
        }
    }

    /// Up to 4 bytes unsigned, 8 signed; 16 for what only fits unsigned.
    void readInteger(Node& node, unsigned low) {
        if (low > 4)
            fail(_start, "an integer of more than 16 bytes");
        node.kind = Kind::integer;
        const std::uint64_t high = low == 4 ? take(8) : 0;
        node.integer = static_cast<std::int64_t>(take(low == 4 ? 8 : std::uint64_t{1} << low));
        if (low != 4)
            return;
        node.flag = high == 0 && node.integer < 0;
        if (high != 0 && (~high != 0 || node.integer >= 0))
            throw KWArchiveError(KWArchiveError::Kind::unsupported, _list._file, _start, {},
                                 "an integer of more than 64 bits");
    }

    void readBytes(Node& node, std::uint64_t count) {
        require(count, 1);
        node.count = static_cast<std::uint32_t>(count);
        node.integer = static_cast<std::int64_t>(_place);
        _place += count;
    }

    void readASCII(Node& node, std::uint64_t count) {
        readBytes(node, count);
        if (std::any_of(at(_place - count), at(_place),
                        [](std::byte b) { return (b & std::byte{0x80}) != std::byte{0}; }))
            fail(_start, "a string said to be ASCII is not");
    }

    void readUTF16(Node& node, std::uint64_t count) {
        require(count, 2);
        const std::string text =
            KWUTF8FromUTF16({reinterpret_cast<const char*>(at(_place)), std::size_t{2 * count}});
        if (text.size() > std::numeric_limits<std::uint32_t>::max())
            fail(_start, "a string longer than any may be");
        node.flag = 1;
        node.wide = 1;
        node.count = static_cast<std::uint32_t>(text.size());
        node.integer = _list.store(std::as_bytes(std::span(text)));
        _place += 2 * count;
    }

    void readChildren(Node& node, std::uint64_t count, std::uint64_t perEntry) {
        require(count, _referenceSize * perEntry);
        node.count = static_cast<std::uint32_t>(count);
        node.integer = static_cast<std::int64_t>(_list._children.size());
        readReferences(count * perEntry);
        _place += count * perEntry * _referenceSize;
    }

    void readReferences(std::uint64_t count) {
        const std::size_t known = _list._children.size();
        _list._children.resize(known + count);
        Index* const children = _list._children.data() + known;
        const std::byte* place = at(_place);
        const std::uint64_t size = _referenceSize;
        bool isRight = true;
        for (std::uint64_t k = 0; k < count; ++k, place += size) {
            const std::uint64_t child = bigEndian(place, size);
            isRight &= child < _objectCount;
            children[k] = static_cast<Index>(child);
        }
        if (!isRight) [[unlikely]]
            failAtReference(count);
    }

    [[noreturn, gnu::cold]] void failAtReference(std::uint64_t count) const {
        std::uint64_t place = _place;
        std::uint64_t child = 0;
        for (std::uint64_t k = 0; k < count; ++k, place += _referenceSize) {
            child = bigEndian(at(place), _referenceSize);
            if (child >= _objectCount)
                break;
        }
        fail(place, "a reference to object " + std::to_string(child) + " of " +
                        std::to_string(_objectCount));
    }

    void checkDictionaryKeys() const {
        for (const Index node : _dictionaries)
            for (const Index key : _list.children(node).first(_list.count(node)))
                if (_list.kind(key) != Kind::string)
                    fail(_list.offset(node), "a dictionary key is not a string");
    }

    KWPropertyList& _list;
    Bytes _source;
    std::uint64_t _offsetSize = 0;
    std::uint64_t _referenceSize = 0;
    std::uint64_t _objectCount = 0;
    std::uint64_t _topObject = 0;
    std::uint64_t _tableOffset = 0;
    /// The object being read, and how far.
    std::uint64_t _start = 0;
    std::uint64_t _place = 0;
    /// In order; their keys are looked at when all objects are known.
    std::vector<Index> _dictionaries;
};

void KWReadBinaryPropertyList(KWPropertyList& list) {
    KWBinaryPropertyListReader(list).read();
}

namespace {

std::size_t integerSize(std::int64_t value, bool isUnsigned) {
    if (isUnsigned)
        return 16;
    if (value < 0 || value > 0xffffffff)
        return 8;
    return value <= 0xff ? 1 : value <= 0xffff ? 2 : 4;
}

std::size_t uidSize(std::uint64_t value) {
    return value <= 0xff ? 1 : value <= 0xffff ? 2 : value <= 0xffffffff ? 4 : 8;
}

/// The UTF-16 units of UTF-8 text that KWUTF16FromUTF8 would make.
std::size_t utf16Count(std::string_view text) {
    return KWUTF16FromUTF8(text).size();
}

/// Fewest bytes that hold more values than `count`.
std::size_t sizeFor(std::uint64_t count) {
    std::size_t size = 1;
    while (size < 8 && count >> (8 * size) != 0)
        ++size;
    return size;
}

/// What both passes over a list, measuring and writing, need to know of it.
struct Layout {
    explicit Layout(const KWPropertyList& source)
        : list(source), count(source.nodeCount()), referenceSize(sizeFor(count)) {}

    /// The root is written first, everything else in the order it was added.
    std::uint64_t reference(Index node) const {
        const Index root = list.root();
        return node == root ? 0 : node < root ? node + 1 : node;
    }
    Index node(std::uint64_t object) const {
        const Index root = list.root();
        return object == 0 ? root : static_cast<Index>(object <= root ? object - 1 : object);
    }

    std::uint64_t objectSize(Index node) const {
        const std::uint64_t n = list.count(node);
        switch (list.kind(node)) {
        case Kind::null:
        case Kind::boolean:
            return 1;
        case Kind::integer:
            return 1 + integerSize(list.intValue(node), list.isUnsigned(node));
        case Kind::real:
            return list.isSingle(node) ? 5 : 9;
        case Kind::date:
            return 9;
        case Kind::uid:
            return 1 + uidSize(list.uidValue(node));
        case Kind::data:
            return 1 + countSize(n) + n;
        case Kind::string: {
            const std::string_view text = list.stringValue(node);
            if (list.isASCII(node))
                return 1 + countSize(n) + n;
            const std::size_t units = utf16Count(text);
            return 1 + countSize(units) + 2 * units;
        }
        case Kind::array:
        case Kind::set:
            return 1 + countSize(n) + n * referenceSize;
        case Kind::dictionary:
            return 1 + countSize(n) + 2 * n * referenceSize;
        }
        return 0;
    }

    const KWPropertyList& list;
    std::uint64_t count;
    std::size_t referenceSize;
};

void putCount(KWByteSink& sink, unsigned marker, std::uint64_t count) {
    if (count < 15) {
        sink.put(static_cast<std::byte>(marker << 4 | count));
        return;
    }
    const std::size_t size = countSize(count) - 1;
    sink.put(static_cast<std::byte>(marker << 4 | 15));
    sink.put(static_cast<std::byte>(0x10 | std::countr_zero(size)));
    sink.putBigEndian(count, size);
}

void putObject(const Layout& layout, Index node, KWByteSink& sink) {
    const KWPropertyList& list = layout.list;
    const auto putChildren = [&] {
        for (const Index child : list.children(node))
            sink.putBigEndian(layout.reference(child), layout.referenceSize);
    };
    switch (list.kind(node)) {
    case Kind::null:
        sink.put(std::byte{0x00});
        return;
    case Kind::boolean:
        sink.put(list.boolValue(node) ? std::byte{0x09} : std::byte{0x08});
        return;
    case Kind::integer: {
        const std::size_t size = integerSize(list.intValue(node), list.isUnsigned(node));
        sink.put(static_cast<std::byte>(0x10 | std::countr_zero(size)));
        if (size == 16)
            sink.putBigEndian(0, 8);
        sink.putBigEndian(static_cast<std::uint64_t>(list.intValue(node)),
                          std::min<std::size_t>(size, 8));
        return;
    }
    case Kind::real:
        if (list.isSingle(node)) {
            sink.put(std::byte{0x22});
            sink.putBigEndian(std::bit_cast<std::uint32_t>(list.singleValue(node)), 4);
            return;
        }
        sink.put(std::byte{0x23});
        sink.putBigEndian(std::bit_cast<std::uint64_t>(list.realValue(node)), 8);
        return;
    case Kind::date:
        sink.put(std::byte{0x33});
        sink.putBigEndian(std::bit_cast<std::uint64_t>(list.realValue(node)), 8);
        return;
    case Kind::uid: {
        const std::size_t size = uidSize(list.uidValue(node));
        sink.put(static_cast<std::byte>(0x80 | (size - 1)));
        sink.putBigEndian(list.uidValue(node), size);
        return;
    }
    case Kind::data: {
        const Bytes bytes = list.dataValue(node);
        putCount(sink, 0x4, bytes.size());
        sink.put(bytes.data(), bytes.size());
        return;
    }
    case Kind::string: {
        const std::string_view text = list.stringValue(node);
        if (list.isASCII(node)) {
            putCount(sink, 0x5, text.size());
            sink.put(text);
            return;
        }
        const std::u16string units = KWUTF16FromUTF8(text);
        putCount(sink, 0x6, units.size());
        for (const char16_t unit : units)
            sink.putBigEndian(unit, 2);
        return;
    }
    case Kind::array:
        putCount(sink, 0xa, list.count(node));
        putChildren();
        return;
    case Kind::set:
        putCount(sink, 0xc, list.count(node));
        putChildren();
        return;
    case Kind::dictionary:
        putCount(sink, 0xd, list.count(node));
        putChildren();
        return;
    }
}

} // namespace

void KWWriteBinaryPropertyList(const KWPropertyList& list, KWByteSink& sink) {
    const Layout layout(list);
    std::vector<std::uint64_t> offsets(layout.count);
    std::uint64_t tableOffset = headerSize;
    for (std::uint64_t object = 0; object < layout.count; ++object) {
        offsets[object] = tableOffset;
        tableOffset += layout.objectSize(layout.node(object));
    }
    const std::size_t offsetSize = sizeFor(tableOffset);
    sink.expect(tableOffset + layout.count * offsetSize + trailerSize);

    sink.put("bplist00");
    for (std::uint64_t object = 0; object < layout.count; ++object)
        putObject(layout, layout.node(object), sink);
    for (const std::uint64_t offset : offsets)
        sink.putBigEndian(offset, offsetSize);
    sink.putBigEndian(0, 6);
    sink.putBigEndian(offsetSize, 1);
    sink.putBigEndian(layout.referenceSize, 1);
    sink.putBigEndian(layout.count, 8);
    sink.putBigEndian(0, 8);
    sink.putBigEndian(tableOffset, 8);
}
