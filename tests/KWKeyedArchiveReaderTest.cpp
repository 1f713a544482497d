#include "ArchiveTestClasses.h"
#include "PropertyListText.h"
#include "TestFiles.h"

#include <KWFoundation/KWKeyedArchiver.h>
#include <KWFoundation/KWKeyedUnarchiver.h>
#include <KWFoundation/KWUnknownObject.h>

#include <gtest/gtest.h>

#include <functional>

// Small archives that ask for large amounts of memory, time or stack.

namespace {

using Index = KWPropertyList::Index;

/// Makes the frame of an archive around objects that a test adds.
class HostileArchive {
  public:
    KWPropertyList list;

    /// The node stands in "$objects" as often as is said; answers its first slot.
    std::uint64_t add(Index node, std::size_t times = 1) {
        const std::uint64_t slot = _objects.size();
        _objects.insert(_objects.end(), times, node);
        return slot;
    }

    Index reference(std::uint64_t slot) { return list.addUID(slot); }

    Index dictionary(const std::vector<std::pair<std::string, Index>>& entries) {
        std::vector<Index> keys;
        std::vector<Index> values;
        for (const auto& [key, value] : entries) {
            keys.push_back(list.addString(key));
            values.push_back(value);
        }
        return list.addDictionary(keys, values);
    }

    std::uint64_t addClass(const std::string& name, std::size_t junkNames = 0) {
        std::vector<Index> names(1 + junkNames, list.addString(name));
        return add(dictionary({{"$classname", names[0]}, {"$classes", list.addArray(names)}}));
    }

    /// A list, under the top key, of `count` references to slots from `first` on.
    KWPropertyList finish(std::uint64_t first, std::size_t count) {
        std::vector<Index> references;
        for (std::size_t k = 0; k < count; ++k)
            references.push_back(reference(first + k));
        const std::uint64_t arrayClass = addClass("NSArray");
        const std::uint64_t root = add(dictionary(
            {{"NS.objects", list.addArray(references)}, {"$class", reference(arrayClass)}}));
        return finish(root);
    }

    KWPropertyList finish(std::uint64_t root) {
        list.setRoot(dictionary({{"$top", dictionary({{"root", reference(root)}})},
                                 {"$objects", list.addArray(_objects)}}));
        return std::move(list);
    }

  private:
    std::vector<Index> _objects{list.addString("$null")};
};

constexpr KWUnarchivingOptions keeping{.keepsUnknownObjects = true};

void expectRefused(KWPropertyList list) {
    KWKeyedUnarchiver unarchiver(std::move(list), keeping);
    try {
        unarchiver.decodeObjectForKey("root");
        FAIL() << "read without an error";
    } catch (const KWArchiveError& error) {
        EXPECT_EQ(error.kind(), KWArchiveError::Kind::unsupported) << error.what();
    }
}

} // namespace

TEST(KWKeyedArchiveReader, CountsListsInsideObjectsAsLevels) {
    HostileArchive archive;
    const std::uint64_t aClass = archive.addClass("Gadget");
    std::uint64_t inner = archive.add(archive.dictionary({{"$class", archive.reference(aClass)}}));
    for (int k = 0; k < 100; ++k) {
        Index nested = archive.reference(inner);
        for (int m = 0; m < 900; ++m)
            nested = archive.list.addArray({&nested, 1});
        inner =
            archive.add(archive.dictionary({{"a", nested}, {"$class", archive.reference(aClass)}}));
    }
    expectRefused(archive.finish(inner));
}

TEST(KWKeyedArchiveReader, RefusesOneTextInManySlots) {
    HostileArchive archive;
    const Index text = archive.list.addString(std::string(1 << 20, 'x'));
    const std::uint64_t first = archive.add(text, 2000);
    expectRefused(archive.finish(first, 2000));
}

TEST(KWKeyedArchiveReader, RefusesOneBlockOfDataInManySlots) {
    HostileArchive archive;
    const Index data = archive.list.addData(KWData(1 << 20));
    const std::uint64_t first = archive.add(data, 2000);
    expectRefused(archive.finish(first, 2000));
}

TEST(KWKeyedArchiveReader, RefusesOneListInManySlots) {
    HostileArchive archive;
    const std::vector<Index> nils(100000, archive.reference(0));
    const std::uint64_t aClass = archive.addClass("NSArray");
    const Index array = archive.dictionary(
        {{"NS.objects", archive.list.addArray(nils)}, {"$class", archive.reference(aClass)}});
    const std::uint64_t first = archive.add(array, 1000);
    expectRefused(archive.finish(first, 1000));
}

TEST(KWKeyedArchiveReader, RefusesOneLargeObjectInManySlots) {
    HostileArchive archive;
    std::vector<std::pair<std::string, Index>> entries;
    for (int k = 0; k < 20000; ++k)
        entries.emplace_back("k" + std::to_string(k), archive.reference(0));
    const std::uint64_t aClass = archive.addClass("Gadget");
    entries.emplace_back("$class", archive.reference(aClass));
    const std::uint64_t first = archive.add(archive.dictionary(entries), 1000);
    expectRefused(archive.finish(first, 1000));
}

TEST(KWKeyedArchiveReader, RefusesALongChainOfClassesInManyObjects) {
    HostileArchive archive;
    const std::uint64_t aClass = archive.addClass("Gadget", 50000);
    const Index object = archive.dictionary({{"$class", archive.reference(aClass)}});
    const std::uint64_t first = archive.add(object, 1000);
    expectRefused(archive.finish(first, 1000));
}

TEST(KWKeyedArchiveReader, RefusesToSearchOneLargeElementAgainAndAgain) {
    const Registration known(KWValueClass<Moment>::classObject());
    HostileArchive archive;
    const std::uint64_t aClass = archive.addClass("Moment");
    std::vector<std::pair<std::string, Index>> entries{{"seconds", archive.list.addDouble(1)}};
    for (int k = 0; k < 20000; ++k)
        entries.emplace_back("k" + std::to_string(k), archive.reference(0));
    entries.emplace_back("$class", archive.reference(aClass));
    const std::uint64_t first = archive.add(archive.dictionary(entries), 20000);
    KWKeyedUnarchiver unarchiver(archive.finish(first, 20000));
    std::vector<float> moments;
    EXPECT_THROW(
        unarchiver.decodeRealObjectsForKey(moments, KWValueClass<Moment>::realClass(), "root"),
        KWArchiveError);
}

TEST(KWKeyedArchiveReader, ReadsNumberedElementsInOneWalk) {
    HostileArchive archive;
    std::vector<std::pair<std::string, Index>> entries;
    const std::uint64_t text = archive.add(archive.list.addString("x"));
    for (int k = 49999; k >= 0; --k)
        entries.emplace_back("NS.object." + std::to_string(k), archive.reference(text));
    entries.emplace_back("NS.object.60000", archive.reference(text));
    const std::uint64_t aClass = archive.addClass("NSArray");
    entries.emplace_back("$class", archive.reference(aClass));
    const std::uint64_t root = archive.add(archive.dictionary(entries));
    KWKeyedUnarchiver unarchiver(archive.finish(root));
    EXPECT_EQ(unarchiver.decodeObjectForKey("root").array()->elements.size(), 50000u);
}

TEST(KWKeyedArchiveReader, AnHonestArchiveOfManySmallObjectsIsRead) {
    HostileArchive archive;
    const std::uint64_t aClass = archive.addClass("Gadget");
    std::uint64_t first = 0;
    for (int k = 0; k < 50000; ++k) {
        const std::uint64_t name = archive.add(archive.list.addString("a name that is its own"));
        const std::uint64_t slot = archive.add(archive.dictionary(
            {{"name", archive.reference(name)}, {"$class", archive.reference(aClass)}}));
        first = k == 0 ? slot - 1 : first;
    }
    KWKeyedUnarchiver unarchiver(archive.finish(first, 100000), keeping);
    EXPECT_EQ(unarchiver.decodeObjectForKey("root").array()->elements.size(), 100000u);
}
