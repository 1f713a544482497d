#include "ArchiveTestClasses.h"
#include "PropertyListText.h"
#include "TestFiles.h"

#include <KWFoundation/KWKeyedArchiver.h>
#include <KWFoundation/KWLog.h>

#include <gtest/gtest.h>
#include <plist/plist.h>

#include <array>

namespace {

using Format = KWPropertyList::Format;
using Index = KWPropertyList::Index;

/// The archive's "$objects" as one text an entry.
std::vector<std::string> objectsOf(const KWPropertyList& list) {
    std::vector<std::string> texts;
    for (const Index node : list.children(list.valueForKey(list.root(), "$objects")))
        texts.push_back(textOf(list, node));
    return texts;
}

std::vector<std::string> objectsOf(const KWArchiveValue& root) {
    KWKeyedArchiver archiver;
    archiver.encodeObjectForKey(root, "root");
    return objectsOf(archiver.finishPropertyList());
}

} // namespace

TEST(KWKeyedArchiver, WritesTheFourKeysOfTheFrame) {
    KWKeyedArchiver archiver;
    archiver.encodeObjectForKey("hello", "root");
    archiver.encodeInt32ForKey(7, "number");
    const KWPropertyList list = archiver.finishPropertyList();
    EXPECT_EQ(textOf(list), "{$archiver=\"NSKeyedArchiver\";$objects=(\"$null\",\"hello\",);"
                            "$top={number=7;root=uid1;};$version=100000;}");
}

TEST(KWKeyedArchiver, WritesTheWorkedExample) {
    const std::vector<std::string> expected{
        "\"$null\"",
        "{$class=uid4;d=real4611686018427387904;gain=single4602678819172646912;keys=-5;name=uid2;"
        "on=true;peer=uid3;}",
        "\"gain\"", "\"$null\"",
        "{$classes=(\"KWKeyFramedChannel\",\"KWChannel\",\"NSObject\",);"
        "$classname=\"KWKeyFramedChannel\";}"};
    EXPECT_EQ(objectsOf(std::make_shared<Example>()), expected);
}

TEST(KWKeyedArchiver, TheRootIsTheFirstObjectOfTheFile) {
    const KWData bytes = KWKeyedArchiver::archivedDataWithRootObject("x");
    EXPECT_EQ(bytes[bytes.size() - 9], std::byte{0});
    EXPECT_EQ(bytes[8], std::byte{0xd4});
}

TEST(KWKeyedArchiver, NilIsTheFirstSlot) {
    EXPECT_EQ(objectsOf(KWArchiveValue::mutableArray({nullptr, nullptr}))[1],
              "{$class=uid2;NS.objects=(uid0,uid0,);}");
}

TEST(KWKeyedArchiver, WritesValuesUnderThePublicClassesOfThePlatform) {
    const auto text = [](const KWArchiveValue& value) {
        const auto objects = objectsOf(value);
        return objects.size() > 2 ? objects[1] + objects[2] : objects[1];
    };
    EXPECT_EQ(text(KWNumber(true)), "true");
    EXPECT_EQ(text(KWNumber(std::int32_t{5})), "5");
    EXPECT_EQ(text(KWNumber(~std::uint64_t{0})), "18446744073709551615u");
    EXPECT_EQ(text(KWData{std::byte{1}}), "<1 >");
    EXPECT_EQ(text(KWArchiveValue::immutableArray({})),
              "{$class=uid2;NS.objects=();}"
              "{$classes=(\"NSArray\",\"NSObject\",);$classname=\"NSArray\";}");
    EXPECT_EQ(
        text(KWArchiveValue::mutableArray({})),
        "{$class=uid2;NS.objects=();}{$classes=(\"NSMutableArray\",\"NSArray\",\"NSObject\",);"
        "$classname=\"NSMutableArray\";}");
    EXPECT_EQ(text(std::make_shared<const KWArchiveString>(KWArchiveString{"s", true})),
              "{$class=uid2;NS.string=\"s\";}{$classes=(\"NSMutableString\",\"NSString\","
              "\"NSObject\",);$classname=\"NSMutableString\";}");
    EXPECT_EQ(text(std::make_shared<const KWArchiveData>(KWArchiveData{{std::byte{2}}, true})),
              "{$class=uid2;NS.data=<2 >;}{$classes=(\"NSMutableData\",\"NSData\",\"NSObject\",);"
              "$classname=\"NSMutableData\";}");
}

TEST(KWKeyedArchiver, TheTextOfNilItselfIsKeptApartFromNil) {
    EXPECT_EQ(objectsOf("$null")[1], "{$class=uid2;NS.string=\"$null\";}");
}

TEST(KWKeyedArchiver, KeysThatBeginWithADollarGetAnother) {
    KWKeyedArchiver archiver;
    archiver.encodeInt32ForKey(1, "$num");
    const KWPropertyList list = archiver.finishPropertyList();
    EXPECT_EQ(textOf(list, list.valueForKey(list.root(), "$top")), "{$$num=1;}");
}

TEST(KWKeyedArchiver, AKeyUsedTwiceKeepsItsLastValueAndSaysSo) {
    std::vector<std::string> lines;
    const KWLogHandler before =
        KWSetLogHandler([&](std::string_view line) { lines.emplace_back(line); });
    KWKeyedArchiver archiver;
    archiver.encodeInt32ForKey(1, "n");
    archiver.encodeInt32ForKey(2, "n");
    KWSetLogHandler(before);
    const KWPropertyList list = archiver.finishPropertyList();
    EXPECT_EQ(textOf(list, list.valueForKey(list.root(), "$top")), "{n=2;}");
    EXPECT_EQ(lines.size(), 1u);
}

TEST(KWKeyedArchiver, OneSlotForEachThingNotForEachEqualThing) {
    const KWArchiveValue shared("same");
    const auto objects =
        objectsOf(KWArchiveValue::immutableArray({shared, shared, KWArchiveValue("same")}));
    EXPECT_EQ(objects[1], "{$class=uid4;NS.objects=(uid2,uid2,uid3,);}");
}

TEST(KWKeyedArchiver, AnObjectInsideItselfIsWrittenOnce) {
    const auto part = std::make_shared<Part>("loop");
    part->parts.push_back(part);
    const auto objects = objectsOf(part);
    EXPECT_EQ(objects[3], "{$class=uid4;NS.objects=(uid1,);}");
    part->parts.clear();
}

TEST(KWKeyedArchiver, ConditionalObjectsAreThereOnlyIfOthersWriteThem) {
    const auto root = std::make_shared<Part>("root");
    const auto held = std::make_shared<Part>("held");
    const auto loose = std::make_shared<Part>("loose");
    root->peer = held;
    root->parts = {held};
    held->peer = loose;
    const auto objects = objectsOf(root);
    // root, its name and list; held, its name and list, the lists' class; the loose peer's slot
    EXPECT_EQ(objects[1].find("peer=uid4"), objects[1].rfind("peer="));
    EXPECT_EQ(objects[8], "\"$null\"");
    EXPECT_NE(objects[4].find("peer=uid8"), std::string::npos);
}

TEST(KWKeyedArchiver, AConditionalMentionBeforeTheObjectHoldsOnceItIsWritten) {
    KWKeyedArchiver archiver;
    const auto part = std::make_shared<Part>("later");
    archiver.encodeConditionalObjectForKey(part, "first");
    archiver.encodeConditionalObjectForKey(part, "second");
    archiver.encodeObjectForKey(part, "root");
    const KWPropertyList list = archiver.finishPropertyList();
    EXPECT_EQ(textOf(list, list.valueForKey(list.root(), "$top")),
              "{first=uid1;root=uid1;second=uid1;}");
    EXPECT_EQ(objectsOf(list)[2], "\"later\"");
}

TEST(KWKeyedArchiver, ListsGiveTheBytesOfTheGeneralWay) {
    const std::array<float, 6> numbers{0, 1.5F, -2, 1.5F, 0, std::bit_cast<float>(0x7fc00001u)};
    std::vector<std::byte> records(36 * 4);
    records[40] = std::byte{9};
    KWKeyedArchiver direct;
    KWKeyedArchiver general;
    for (int twice = 0; twice < 2; ++twice) {
        const std::string n = std::to_string(twice);
        direct.encodeFloatsForKey(numbers, "floats" + n);
        general.KWCoder::encodeFloatsForKey(numbers, "floats" + n);
        direct.encodeRealObjectsForKey(numbers, KWValueClass<Moment>::realClass(), "$moments" + n);
        general.KWCoder::encodeRealObjectsForKey(numbers, KWValueClass<Moment>::realClass(),
                                                 "$moments" + n);
        direct.encodeRecordsForKey(records, 36, "records" + n);
        general.KWCoder::encodeRecordsForKey(records, 36, "records" + n);
        direct.encodeFloatsForKey({}, "none" + n);
        general.KWCoder::encodeFloatsForKey({}, "none" + n);
        direct.encodeRealObjectsForKey({}, KWValueClass<Moment>::realClass(), "nothing" + n);
        general.KWCoder::encodeRealObjectsForKey({}, KWValueClass<Moment>::realClass(),
                                                 "nothing" + n);
    }
    EXPECT_EQ(direct.finishEncoding(), general.finishEncoding());
}

TEST(KWKeyedArchiver, BoxedValuesGiveTheBytesOfTheListOfThem) {
    const std::array<float, 3> numbers{1, 2, 3};
    std::vector<KWArchiveValue> boxed;
    for (const float number : numbers)
        boxed.emplace_back(std::make_shared<KWBoxedValue<Moment>>(Moment{number}));
    KWKeyedArchiver list;
    list.encodeRealObjectsForKey(numbers, KWValueClass<Moment>::realClass(), "root");
    EXPECT_EQ(list.finishEncoding(),
              KWKeyedArchiver::archivedDataWithRootObject(KWArchiveValue::mutableArray(boxed)));
}

TEST(KWKeyedArchiver, RefusesObjectsNestedMoreThanAThousandDeep) {
    const auto nested = [](int depth) {
        KWArchiveValue value("inmost");
        for (int k = 1; k < depth; ++k)
            value = KWArchiveValue::immutableArray({value});
        return value;
    };
    EXPECT_NO_THROW(KWKeyedArchiver::archivedDataWithRootObject(nested(1000)));
    try {
        KWKeyedArchiver::archivedDataWithRootObject(nested(1001));
        FAIL();
    } catch (const KWArchiveError& error) {
        EXPECT_EQ(error.kind(), KWArchiveError::Kind::unsupported);
    }
}

TEST(KWKeyedArchiver, IsFinishedOnce) {
    KWKeyedArchiver archiver;
    archiver.finishEncoding();
    EXPECT_THROW(archiver.finishEncoding(), std::logic_error);
    EXPECT_THROW(archiver.encodeInt32ForKey(1, "n"), std::logic_error);
    EXPECT_THROW(archiver.encodeObjectForKey(nullptr, "n"), std::logic_error);
}

TEST(KWKeyedArchiver, DoesNotReadOrWriteWithoutKeys) {
    KWKeyedArchiver archiver;
    EXPECT_TRUE(archiver.allowsKeyedCoding());
    EXPECT_THROW(archiver.decodeObjectForKey("root"), std::logic_error);
}

TEST(KWKeyedArchiver, WritesFilesWholeOrNotAtAll) {
    const TemporaryFolder folder;
    const auto path = folder.path() / "document";
    KWKeyedArchiver::archiveRootObjectToFile("first", path);
    const std::string before = contentsOf(path);
    KWArchiveValue tooDeep("inmost");
    for (int k = 0; k < 2000; ++k)
        tooDeep = KWArchiveValue::immutableArray({tooDeep});
    EXPECT_THROW(KWKeyedArchiver::archiveRootObjectToFile(tooDeep, path), KWArchiveError);
    EXPECT_EQ(contentsOf(path), before);
    KWKeyedArchiver::archiveRootObjectToFile("a\x01", path);
    EXPECT_THROW(KWKeyedArchiver::archiveRootObjectToFile("a\x01", path, Format::xml),
                 KWArchiveError);
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(folder.path()), {}), 1);
}

TEST(KWKeyedArchiver, LibplistAndPlistlibReadItsArchives) {
    const auto root = std::make_shared<Part>("root \u00e9");
    root->parts = {std::make_shared<Part>("one"), std::make_shared<Part>("two")};
    root->other = KWNumber(0.25F);
    const std::string binary = stringOf(KWKeyedArchiver::archivedDataWithRootObject(root));
    plist_t list = nullptr;
    plist_from_bin(binary.data(), static_cast<std::uint32_t>(binary.size()), &list);
    ASSERT_NE(list, nullptr);
    EXPECT_EQ(plist_dict_get_size(list), 4u);
    const plist_t objects = plist_dict_get_item(list, "$objects");
    const plist_t name = plist_array_get_item(objects, 2);
    EXPECT_STREQ(plist_get_string_ptr(name, nullptr), "root \u00e9");
    plist_free(list);

    const TemporaryFolder folder;
    KWKeyedArchiver::archiveRootObjectToFile(root, folder.path() / "a.plist");
    EXPECT_EQ(runPython("import plistlib,sys\n"
                        "v=plistlib.load(open(sys.argv[1]+'/a.plist','rb'))\n"
                        "o=v['$objects'];r=o[v['$top']['root'].data]\n"
                        "assert v['$version']==100000 and v['$archiver']=='NSKeyedArchiver'\n"
                        "assert o[r['name'].data]=='root \\u00e9'\n"
                        "assert o[r['other'].data]==0.25\n"
                        "parts=[o[u.data] for u in o[r['parts'].data]['NS.objects']]\n"
                        "assert [o[p['name'].data] for p in parts]==['one','two']\n"
                        "assert o[r['$class'].data]=={'$classname':'Part',"
                        "'$classes':['Part','NSObject']}\n",
                        folder.path()),
              0);
}
