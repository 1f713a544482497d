#pragma once

#include <KWFoundation/KWArchiveCluster.h>
#include <KWFoundation/KWArchiveCycles.h>
#include <KWFoundation/KWCoder.h>
#include <KWFoundation/KWKeyedUnarchiver.h>
#include <KWFoundation/KWPropertyList.h>
#include <KWFoundation/KWUnknownObject.h>

#include <cstdlib>
#include <deque>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

/// The reading half of a keyed archive: from references to values and objects. The unarchiver's
/// calls are thin over it.
struct KWKeyedArchiveReader {
    using Index = KWPropertyList::Index;
    using Kind = KWPropertyList::Kind;
    using Slot = std::uint32_t;
    static constexpr Index none = KWPropertyList::none;

    using Cluster = KWArchiveCluster;

    /// A class as an archive records it.
    struct ClassRecord {
        std::vector<std::string> chain;
        std::vector<std::string> hints;
        Cluster cluster = Cluster::object;
        const KWClass* known = nullptr;

        bool isArray() const { return KWIsArrayCluster(cluster); }
    };

    /// What has become of an entry of "$objects" so far. Values are only there when done, objects
    /// from the moment they are made.
    struct Decoded {
        bool isBusy = true;
        KWArchiveValue value;
    };

    /// One step on the way from the top to what is being read: a key, or a place in a list.
    struct Step {
        std::string_view key;
        std::uint32_t index;
    };

    KWKeyedArchiveReader(KWKeyedUnarchiver& unarchiver, KWPropertyList source,
                         KWUnarchivingOptions wanted);

    /// One object or list inside another, for as long as it is being read; an error beyond the
    /// limit.
    struct Level {
        Level(KWKeyedArchiveReader& owningReader, Index node);
        ~Level() { --reader.depth; }
        Level(const Level&) = delete;
        Level& operator=(const Level&) = delete;
        KWKeyedArchiveReader& reader;
    };

    // --- Errors.

    std::string keyPath() const;

    [[noreturn]] void fail(KWArchiveError::Kind kind, Index node, std::string reason) const;
    [[noreturn]] void damaged(Index node, std::string reason) const;
    [[noreturn]] void wrongKind(Index node, std::string_view wanted) const;

    /// Charges what is handed out by copy against what an honest archive of this size could ask
    /// for: a small file may refer to one large list from many places.
    void spend(std::uint64_t bytes);

    // --- The frame.

    void readFrame();

    /// The value under a key, or none; large dictionaries are charged for.
    Index find(Index dictionary, std::string_view key);

    // --- References.

    /// The object that a reference names; none for nil.
    Index target(Index reference) const;

    Decoded& stateOf(Slot slot);

    /// A back reference for an object that is still being read.
    KWArchiveValue valueOf(Index reference);

    bool isNumber(Index node) const;

    KWNumber number(Index node) const;

    KWArchiveValue string(Index node, bool isMutable);

    KWArchiveValue data(Index node, bool isMutable);

    KWArchiveValue read(Index node, Decoded& state);

    /// Some writers store a date bare; here it is an object of the date class, which nobody knows.
    KWArchiveValue readDate(Index node) const;

    [[noreturn]] void unknownClass(Index node, const std::string& name) const;

    // --- Classes.

    const ClassRecord& classOf(Index instance);

    ClassRecord readClass(Index node);

    std::vector<std::string> names(Index record, std::string_view key);

    // --- Instances.

    KWArchiveValue readInstance(Index node, Decoded& state);

    /// The value under one of a cluster's own keys, which may be in the object or referred to.
    Index content(Index instance, std::string_view key);

    KWArchiveValue readString(Index node, bool isMutable);

    KWArchiveValue readData(Index node, bool isMutable);

    KWArchiveValue readNumber(Index node);

    /// The references that a list holds: in one list, or under a key each.
    std::vector<Index> numberedElements(Index node);

    template <class Function>
    void forEachElement(Index node, Function function) {
        const Index elements = find(node, "NS.objects");
        if (elements != none && list.kind(elements) != Kind::array)
            wrongKind(elements, "a list");
        const std::vector<Index> numbered =
            elements == none ? numberedElements(node) : std::vector<Index>();
        const auto references =
            elements == none ? std::span<const Index>(numbered) : list.children(elements);
        function(references);
    }

    KWArchiveValue readArray(Index node, bool isMutable);

    KWArchiveValue readKnown(Index node, const ClassRecord& record, Decoded& state);

    bool initialise(const std::shared_ptr<KWObject>& object, Index node);

    KWArchiveValue readUnknown(Index node, const ClassRecord& record, Decoded& state);

    KWArchiveField field(std::string key, Index node);

    // --- What the coder's calls come to.

    /// What a class gets that asks for an object; `isHeld` tells whether it is one to keep alive.
    KWArchiveValue objectForKey(std::string_view key, bool isHeld);

    /// The entry of the object being read under a key; none when there is none.
    Index entry(std::string_view key);

    /// A number under a key: in the object, or referred to. none when absent or nil.
    Index numberEntry(std::string_view key);

    template <class Function>
    auto at(std::string_view key, Function function) {
        struct Restore {
            std::vector<Step>& path;
            std::size_t size;
            ~Restore() { path.resize(size); }
        } restore{path, path.size()};
        path.push_back({key, 0});
        return function();
    }

    std::int64_t integer(std::string_view key, std::int64_t lowest, std::int64_t highest);

    /// Finds the list under a key and hands its references to `function`, each with its place known
    /// to messages. False when there is none.
    template <class Function>
    bool eachElement(std::string_view key, std::size_t elementSize, Function function) {
        return at(key, [&] {
            const Index reference = entry(key);
            const Index node = reference == none ? none : target(reference);
            if (node == none)
                return false;
            if (list.kind(node) != Kind::dictionary || !classOf(node).isArray())
                damaged(node, "expected an array");
            forEachElement(node, [&](std::span<const Index> references) {
                spend(references.size() * std::uint64_t{elementSize});
                path.push_back({{}, 0});
                function(references);
                path.pop_back();
            });
            return true;
        });
    }

    /// What an element of a list refers to; an error for nil.
    Index element(Index reference, std::size_t index);

    float floatElement(Index node);

    float realElement(Index node, const KWRealClass& aClass);

    struct Free {
        void operator()(Slot* memory) const { std::free(memory); }
    };

    KWKeyedUnarchiver& owner;
    KWPropertyList list;
    KWUnarchivingOptions options;
    std::span<const Index> objects;
    /// For each object one more than its place in `decoded`, or 0. Most objects of a large archive
    /// are elements of lists that are never asked for one by one; theirs costs nothing.
    std::unique_ptr<Slot, Free> states;
    std::deque<Decoded> decoded;
    KWArchiveCycles cycles;
    std::unordered_map<Index, ClassRecord> classes;
    Index frame = none;
    std::vector<Step> path;
    std::uint64_t budget = 0;
    int depth = 0;
};
