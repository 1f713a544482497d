#pragma once

#include <KWFoundation/KWArchiveError.h>
#include <KWFoundation/KWExport.h>
#include <KWFoundation/KWFile.h>
#include <KWFoundation/KWTypes.h>

#include <bit>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>
#include <vector>

/// A property list, in memory, in one flat table: node by node, with containers that name their
/// children by index. It is what both forms on disk, binary and XML, are read into and written
/// from.
///
/// A node may be the child of several containers. What comes from a file is checked as it is read,
/// once: afterwards every index, count and extent is right, but a hostile binary file may still
/// hold a container inside itself, so whoever walks the nodes bounds the depth.
class KW_EXPORT KWPropertyList {
  public:
    using Index = std::uint32_t;
    static constexpr Index none = 0xffffffff;

    enum class Kind : std::uint8_t {
        null,
        boolean,
        integer, ///< signed 64-bit, or unsigned above that
        real,    ///< of 4 or 8 bytes
        date,    ///< seconds since 2001-01-01 UTC
        data,
        string,
        uid, ///< an index into a keyed archive's objects
        array,
        set,
        dictionary,
    };

    enum class Format { binary, xml };

    KWPropertyList();
    KWPropertyList(KWPropertyList&&) noexcept;
    KWPropertyList& operator=(KWPropertyList&&) noexcept;
    ~KWPropertyList();

    /// Reads either form, told apart by the first bytes. The list refers to the bytes, which must
    /// live as long as it does. `file` is for messages. Raises KWArchiveError: damaged, with the
    /// offset; unsupported for a property list of another form, or nested too deeply.
    static KWPropertyList parse(std::span<const std::byte> bytes, std::string file = {});
    /// The same of a file, whose contents the list keeps.
    static KWPropertyList parseFile(const std::filesystem::path& path);

    /// The form that was read; binary for a list that was built.
    Format format() const { return _format; }
    const std::string& file() const { return _file; }

    // --- Reading. The kind must be right for the question asked.

    Index root() const { return _root; }
    std::size_t nodeCount() const { return _nodes.size(); }
    /// No less than the bytes of all strings and data together.
    std::uint64_t contentSize() const { return _source.size() + _store.size(); }
    Kind kind(Index node) const { return _nodes[node].kind; }
    /// Where the node starts in the file it was read from.
    std::uint64_t offset(Index node) const;

    bool boolValue(Index node) const { return _nodes[node].integer != 0; }
    std::int64_t intValue(Index node) const { return _nodes[node].integer; }
    /// Whether an integer is above the signed range; its bits are then those of an unsigned one.
    bool isUnsigned(Index node) const { return _nodes[node].flag != 0; }
    /// Of a real or a date.
    double realValue(Index node) const {
        return isSingle(node) ? static_cast<double>(singleValue(node)) : _nodes[node].real;
    }
    /// Whether a real has 4 bytes.
    bool isSingle(Index node) const {
        return _nodes[node].flag != 0 && _nodes[node].kind == Kind::real;
    }
    /// Of a real of 4 bytes, bit for bit.
    float singleValue(Index node) const {
        return std::bit_cast<float>(static_cast<std::uint32_t>(_nodes[node].integer));
    }
    std::uint64_t uidValue(Index node) const {
        return static_cast<std::uint64_t>(_nodes[node].integer);
    }
    std::string_view stringValue(Index node) const;
    /// Whether a string has ASCII characters only.
    bool isASCII(Index node) const { return _nodes[node].wide == 0; }
    std::span<const std::byte> dataValue(Index node) const;

    /// How many elements an array or set has, or entries a dictionary.
    std::uint32_t count(Index node) const { return _nodes[node].count; }
    /// The elements of an array or set; of a dictionary its keys, then as many values.
    std::span<const Index> children(Index node) const {
        const Node& n = _nodes[node];
        return {_children.data() + n.integer,
                n.kind == Kind::dictionary ? 2 * std::size_t{n.count} : n.count};
    }
    /// The value under a key, or none. Of equal keys the last one counts.
    Index valueForKey(Index dictionary, std::string_view key) const;

    // --- Building. Nodes are numbered as they are added. Equal strings become one node, and so do
    // equal numbers and small data that come close after one another.

    Index addNull();
    Index addBool(bool value);
    Index addInt(std::int64_t value);
    Index addUnsigned(std::uint64_t value);
    Index addFloat(float value);
    Index addDouble(double value);
    Index addDate(double value);
    Index addUID(std::uint64_t value);
    Index addString(std::string_view text);
    /// Copies the bytes.
    Index addData(std::span<const std::byte> bytes);
    Index addArray(std::span<const Index> elements);
    Index addSet(std::span<const Index> elements);
    /// As many keys, all strings, as values.
    Index addDictionary(std::span<const Index> keys, std::span<const Index> values);
    void setRoot(Index node) { _root = node; }

    // --- Writing.

    /// The list in that form. Raises KWArchiveError (unsupported) where the form cannot carry
    /// something: XML has no control characters, no sets, no nulls and no unlimited depth.
    KWData data(Format format) const;

    /// The same into a file, whole or not at all, block by block.
    void writeToFile(const std::filesystem::path& path, Format format) const;

  private:
    struct Node {
        Kind kind = Kind::null;
        /// A boolean of the kind's own: a single real, an unsigned integer, text or bytes in _store
        /// instead of the source.
        std::uint8_t flag = 0;
        /// Of a string: whether any character is not ASCII.
        std::uint8_t wide = 0;
        /// Elements, entries or bytes.
        std::uint32_t count = 0;
        union {
            std::int64_t integer = 0;
            double real;
        };
    };
    friend class KWBinaryPropertyListReader;
    friend class KWXMLPropertyListReader;

    /// For lists that are made longer first and written then: leaves new elements as they are.
    template <class T>
    struct Unwritten : std::allocator<T> {
        template <class U>
        struct rebind {
            using other = Unwritten<U>;
        };
        Unwritten() = default;
        template <class U>
        explicit Unwritten(const Unwritten<U>&) {}
        T* allocate(std::size_t count) {
            return static_cast<T*>(allocateMemory(count * sizeof(T)));
        }
        void deallocate(T* place, std::size_t count) noexcept {
            freeMemory(place, count * sizeof(T));
        }
        template <class U>
        void construct(U*) noexcept {
            static_assert(std::is_trivially_copyable_v<U>);
        }
        template <class U, class... Arguments>
        void construct(U* place, Arguments&&... arguments) {
            std::construct_at(place, std::forward<Arguments>(arguments)...);
        }
    };

    // Of many bytes, in large pages where the system has them.
    static void* allocateMemory(std::size_t size);
    static void freeMemory(void* place, std::size_t size) noexcept;

    Index append(const Node& node);
    Index appendScalar(const Node& node);
    Index appendContainer(Kind kind, std::span<const Index> first, std::span<const Index> second);
    std::int64_t store(std::span<const std::byte> bytes);
    void growStringTable();

    std::vector<Node, Unwritten<Node>> _nodes;
    std::vector<Index, Unwritten<Index>> _children;
    std::vector<std::byte> _store;
    /// Places of the nodes in the file, where they cannot be read off it.
    std::vector<std::uint64_t> _offsets;
    /// Strings by hash, open addressing; and the scalars added last.
    std::vector<Index> _stringTable;
    std::size_t _stringCount = 0;
    std::vector<Index> _recentScalars;

    std::span<const std::byte> _source;
    KWFileContents _contents;
    /// Of the offset table of a binary source.
    std::uint64_t _tableOffset = 0;
    std::uint8_t _offsetSize = 0;

    Index _root = none;
    Format _format = Format::binary;
    std::string _file;
};
