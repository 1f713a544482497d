#include "SequentialBytes.h"
#include "Thoroughness.h"
#include "UnarchiverTestSupport.h"

#include <KWFoundation/KWArchiver.h>
#include <KWFoundation/KWKeyedArchiver.h>
#include <KWFoundation/KWUnarchiver.h>
#include <KWFoundation/KWUnknownObject.h>

#include <gtest/gtest.h>

namespace {

using Kind = KWArchiveError::Kind;

KWData stream(const std::string& body) {
    return bytesOf(littleEndianHeader + body);
}

void expectError(const KWData& bytes, Kind kind, const std::string& part,
                 KWUnarchivingOptions options = {}) {
    expectErrorOf<KWUnarchiver>(bytes, kind, part, options);
}

const std::string stringClass = "84 84 84 08 \"NSString\" 01 84 84 08 \"NSObject\" 00 85 ";
const std::string arrayClass = "84 84 84 07 \"NSArray\" 00 84 84 08 \"NSObject\" 00 85 ";

} // namespace

TEST(KWUnarchiver, ReadsTheWorkedExampleInBothByteOrders) {
    for (const bool bigEndian : {false, true}) {
        const KWData bytes = exampleStream(bigEndian);
        KWUnarchiver it(bytes, keeping);
        EXPECT_EQ(it.isBigEndian(), bigEndian);
        const auto object = std::dynamic_pointer_cast<KWUnknownObject>(it.decodeObject().object());
        ASSERT_TRUE(object);
        EXPECT_TRUE(it.isAtEnd());
        EXPECT_EQ(it.versionForClassName("KWKeyFramedChannel"), 1);
        EXPECT_EQ(it.versionForClassName("KWChannel"), 2);
        EXPECT_EQ(it.versionForClassName("KWTime"), KWNotFound);
        EXPECT_EQ(object->classChain(),
                  (std::vector<std::string>{"KWKeyFramedChannel", "KWChannel", "NSObject"}));
        EXPECT_EQ(object->classVersions(), (std::vector<std::int32_t>{1, 2, 0}));
        const auto& fields = object->fields();
        ASSERT_EQ(fields.size(), 8u);
        const auto value = [&](std::size_t k) { return fields[k].items.at(0).value; };
        EXPECT_EQ(value(0).string()->text, "gain");
        EXPECT_TRUE(value(1).isNil());
        EXPECT_EQ(value(2).number()->floatValue(), 0.5F);
        EXPECT_EQ(value(3).number()->int64Value(), 300);
        EXPECT_EQ(value(4).number()->doubleValue(), 2.0);
        EXPECT_EQ(fields[5].key, "c");
        EXPECT_EQ(value(5).number()->int64Value(), 1);
        const auto& list = value(6).array()->elements;
        EXPECT_EQ(list[0].number()->floatValue(), 1.5F);
        EXPECT_EQ(list[1].number()->floatValue(), 7.0F);
        EXPECT_EQ(list[2].identity(), value(0).identity());
        EXPECT_EQ(list[3].object(), object);
        EXPECT_EQ(value(7).data()->bytes, dataOf("abc"));
        // Written again it is the little-endian example, to the byte.
        EXPECT_EQ(KWArchiver::archivedDataWithRootObject(object), exampleStream(false));
    }
}

TEST(KWUnarchiver, ReadsNumbersOfEveryWidth) {
    KWArchiver archiver;
    const std::int64_t wide = INT64_MIN;
    const std::uint16_t most = 65535;
    const double real = 0.1;
    const float single = 0.1F;
    const std::int8_t small = -124;
    archiver.encodeValueOfObjCTypeAt("q", &wide);
    archiver.encodeValueOfObjCTypeAt("S", &most);
    archiver.encodeValueOfObjCTypeAt("d", &real);
    archiver.encodeValuesOfObjCTypesAt("fc", {&single, &small});
    archiver.encodeValueOfObjCTypeAt("f", &single);
    archiver.encodeValueOfObjCTypeAt("S", &most);
    KWUnarchiver it(archiver.archiverData());
    std::int64_t wideBack = 0;
    std::uint16_t mostBack = 0;
    double realBack = 0;
    float singleBack = 0;
    std::int8_t smallBack = 0;
    std::int32_t integer = 0;
    it.decodeValueOfObjCTypeAt("q", &wideBack);
    it.decodeValueOfObjCTypeAt("S", &mostBack);
    it.decodeValueOfObjCTypeAt("d", &realBack);
    it.decodeValuesOfObjCTypesAt("fc", {&singleBack, &smallBack});
    EXPECT_EQ(wideBack, wide);
    EXPECT_EQ(mostBack, most);
    EXPECT_EQ(realBack, real);
    EXPECT_EQ(singleBack, single);
    EXPECT_EQ(smallBack, small);
    // In another width than they were written.
    it.decodeValueOfObjCTypeAt("d", &realBack);
    it.decodeValueOfObjCTypeAt("i", &integer);
    EXPECT_EQ(realBack, static_cast<double>(single));
    EXPECT_EQ(integer, 65535);
    EXPECT_TRUE(it.isAtEnd());
}

TEST(KWUnarchiver, ReadsArraysStructsBytesAndCStrings) {
    struct Record {
        char c = 'x';
        std::int16_t list[2] = {300, -5};
        double d = 0.5;
    };
    const Record record;
    const std::optional<std::string> words("on");
    const std::optional<std::string> none;
    KWArchiver archiver;
    archiver.encodeValueOfObjCTypeAt("{r=c[2s]d}", &record);
    archiver.encodeBytes(dataOf("bytes"));
    archiver.encodeDataObject(dataOf("data"));
    archiver.encodeDataObject({});
    archiver.encodeValuesOfObjCTypesAt("***", {&words, &none, &words});
    archiver.encodeArrayOfObjCTypeCountAt("d", 1, &record.d);
    KWUnarchiver it(archiver.archiverData());
    Record back{.c = 0, .list = {0, 0}, .d = 0};
    it.decodeValueOfObjCTypeAt("{r=c[2s]d}", &back);
    EXPECT_EQ(back.c, 'x');
    EXPECT_EQ(back.list[0], 300);
    EXPECT_EQ(back.list[1], -5);
    EXPECT_EQ(back.d, 0.5);
    EXPECT_EQ(it.decodeBytes(), dataOf("bytes"));
    EXPECT_EQ(it.decodeDataObject(), dataOf("data"));
    EXPECT_EQ(it.decodeDataObject(), KWData());
    std::optional<std::string> a;
    std::optional<std::string> b("x");
    std::optional<std::string> c;
    it.decodeValuesOfObjCTypesAt("***", {&a, &b, &c});
    EXPECT_EQ(a, words);
    EXPECT_EQ(b, none);
    EXPECT_EQ(c, words);
    double d = 0;
    it.decodeArrayOfObjCTypeCountAt("d", 1, &d);
    EXPECT_EQ(d, 0.5);
}

TEST(KWUnarchiver, ReadsTheValuesOfThePlatform) {
    // A nested array, a wide integer and a real, as newer systems write them.
    const KWArchiveValue list = KWUnarchiver::unarchiveValueWithData(
        stream("84 01 \"@\" " + arrayClass +
               "84 01 \"i\" 02 92 84 84 84 08 \"NSString\" 01 94"
               "84 01 \"+\" 03 \"top\" 86 92 84 93 95 02 92 84 84 84 08 \"NSNumber\" 00"
               "84 84 07 \"NSValue\" 00 94 84 01 \"*\" 84 84 01 \"q\" 9b 01 86"
               "92 84 99 9a 9b 9b 02 86 86 86"));
    ASSERT_EQ(list.array()->elements.size(), 2u);
    EXPECT_EQ(list.array()->elements[0].string()->text, "top");
    const auto& inner = list.array()->elements[1].array()->elements;
    EXPECT_EQ(inner.at(0).number()->int64Value(), 1);
    EXPECT_EQ(inner.at(1).number()->int64Value(), 2);
}

TEST(KWUnarchiver, AnObjectMayHoldMoreThanItsClassReads) {
    const Registration known(KWValueClass<Moment>::classObject());
    // Nothing is read here without keys, so all of it is passed over.
    class Silent final : public KWObject {
      public:
        const KWClass& isa() const override {
            static constinit KWClass theClass{"Silent", &KWObject::classObject, 0,
                                              KWClass::make<Silent>};
            return theClass;
        }
    };
    const Registration silent(Silent().isa());
    const KWArchiveValue value = KWUnarchiver::unarchiveValueWithData(stream(
        "84 01 \"@\" 84 84 84 06 \"Silent\" 02 85 84 01 \"i\" 05 92 92 84 02 \"ff\" 01 02 86"));
    EXPECT_EQ(value.kindName(), "Silent");
}

TEST(KWUnarchiver, RandomGraphsComeBack) {
    const Registration known(Part::classObject());
    const Registration moment(KWValueClass<Moment>::classObject());
    for (unsigned seed = 0; seed < 100; ++seed) {
        const auto parts = randomParts(seed);
        const KWData bytes = KWArchiver::archivedDataWithRootObject(parts[0]);
        const auto root =
            std::dynamic_pointer_cast<Part>(KWUnarchiver::unarchiveObjectWithData(bytes));
        expectParts(root, parts);
        EXPECT_EQ(KWArchiver::archivedDataWithRootObject(root), bytes);
        Part::partAll();
    }
}

TEST(KWUnarchiver, ListsThatOthersReferToAreTheSameLists) {
    const Registration moment(KWValueClass<Moment>::classObject());
    // The general way writes shared elements and shared lists; the list readers meet them.
    const auto one = std::make_shared<KWBoxedValue<Moment>>(Moment{1});
    const auto two = std::make_shared<KWBoxedValue<Moment>>(Moment{2.5F});
    const KWArchiveValue moments = KWArchiveValue::mutableArray({one, two, one});
    const KWArchiveValue block(dataOf("abcd"));
    const KWArchiveValue blocks = KWArchiveValue::mutableArray({block, block});
    const KWArchiveValue numbers =
        KWArchiveValue::mutableArray({KWNumber(std::int32_t{3}), KWNumber(0.5)});
    KWArchiver archiver;
    for (const KWArchiveValue& value : {moments, blocks, numbers})
        for (int twice = 0; twice < 2; ++twice)
            archiver.encodeObject(value);
    for (const KWArchiveValue& value : {moments, blocks, numbers})
        archiver.encodeObject(value);
    archiver.encodeObject(two);
    archiver.encodeObject(block);
    KWUnarchiver it(archiver.archiverData());
    std::vector<float> floats;
    std::vector<std::byte> records;
    for (int twice = 0; twice < 2; ++twice) {
        EXPECT_TRUE(it.decodeRealObjects(floats, KWValueClass<Moment>::realClass()));
        EXPECT_EQ(floats, (std::vector<float>{1, 2.5F, 1}));
    }
    for (int twice = 0; twice < 2; ++twice) {
        EXPECT_TRUE(it.decodeRecords(records, 4));
        EXPECT_EQ(stringOf(records), "abcdabcd");
    }
    for (int twice = 0; twice < 2; ++twice) {
        EXPECT_TRUE(it.decodeFloats(floats));
        EXPECT_EQ(floats, (std::vector<float>{3, 0.5F}));
    }
    const KWArchiveValue back = it.decodeObject();
    EXPECT_EQ(back.array()->elements[0].object(), back.array()->elements[2].object());
    EXPECT_EQ(it.decodeObject().array()->elements[0].data()->bytes, dataOf("abcd"));
    const KWArchiveValue numbersBack = it.decodeObject();
    EXPECT_EQ(*numbersBack.array()->elements[0].number(), KWNumber(std::int32_t{3}));
    EXPECT_EQ(*numbersBack.array()->elements[1].number(), KWNumber(0.5));
    EXPECT_EQ(it.decodeObject().object(), back.array()->elements[1].object());
    EXPECT_EQ(it.decodeObject().data()->bytes, dataOf("abcd"));
    EXPECT_TRUE(it.isAtEnd());
}

TEST(KWUnarchiver, TurnsTheWordsOfRecordsFromABigEndianMachine) {
    const std::string data =
        "84 01 \"@\" 84 84 84 07 \"NSArray\" 00 84 84 08 \"NSObject\" 00 85 84 01 \"i\" 01"
        "92 84 84 84 06 \"NSData\" 00 94 95 08 84 04 \"[8c]\" 3f000000 00000001 86 86";
    const KWData bytes = bytesOf(bigEndianHeader + data);
    KWUnarchiver it(bytes);
    std::vector<std::byte> records;
    EXPECT_TRUE(it.decodeRecords(records, 8));
    EXPECT_EQ(records, bytesOf("0000003f 01000000"));
}

TEST(KWUnarchiver, TakesRecordsThatAreDescribedAsNumbers) {
    const std::string body =
        "84 01 \"@\" 84 84 84 07 \"NSArray\" 00 84 84 08 \"NSObject\" 00 85 84 01 \"i\" 01"
        "92 84 84 84 07 \"NSValue\" 00 94 84 01 \"*\" 84 84 06 \"{p=ff}\" 98 02 83 3f000000 86 86";
    const KWData bytes = bytesOf(bigEndianHeader + body);
    KWUnarchiver it(bytes);
    std::vector<std::byte> records;
    EXPECT_TRUE(it.decodeRecords(records, 8));
    EXPECT_EQ(records, bytesOf("00000040 0000003f"));
}

TEST(KWUnarchiver, UnknownObjectsOfEveryTypeAreWrittenBackUnchanged) {
    const KWData bytes = stream(
        "84 01 \"@\" 84 84 84 06 \"Gadget\" 07 84 84 05 \"Thing\" 03 85"
        "84 07 \"@@*:%#+\" 92 85 84 84 02 \"on\" 84 03 \"go:\" 84 04 \"atom\" 93 02 \"ab\""
        "84 0b \"{p=f[2s]cd}\" 83 0000003f 01 02 05 03"
        "84 04 \"[3i]\" 01 02 03 84 04 \"[2@]\" 85 92 84 06 \"CcSsBI\" 05 06 07 08 01 09 86");
    const KWArchiveValue root = KWUnarchiver::unarchiveValueWithData(bytes, keeping);
    ASSERT_TRUE(root.object());
    EXPECT_EQ(KWArchiver::archivedDataWithRootObject(root), bytes);
    EXPECT_THROW(KWKeyedArchiver::archivedDataWithRootObject(root), KWArchiveError);
}

TEST(KWUnarchiver, ReadsTheObjectOfAFileOrSaysWhyNot) {
    expectObjectOfFileOrReason<KWUnarchiver>(KWArchiver::archiveRootObjectToFile);
}

TEST(KWUnarchiver, RefusesAHeaderThatIsNone) {
    expectError({}, Kind::damaged, "empty");
    expectError(dataOf("bplist00"), Kind::damaged, "does not start as one");
    expectError(bytesOf("03 0b \"streamtyped\""), Kind::unsupported, "older kind");
    expectError(bytesOf("04 0b \"streamtyped\""), Kind::damaged, "ends in the middle");
}

TEST(KWUnarchiver, RefusesWhatClaimsMoreThanThereIs) {
    const std::string array = "84 01 \"@\" " + arrayClass + "84 01 \"i\" ";
    expectError(stream(array + "82 ffffff7f"), Kind::damaged, "claims 2147483647 elements");
    expectError(stream(array + "ff"), Kind::damaged, "claims -1 elements");
    expectError(stream("84 01 \"@\" " + stringClass + "84 01 \"+\" 82 ffffff7f \"a\""),
                Kind::damaged, "claims 2147483647 bytes");
    expectError(stream("84 82 ffffff7f"), Kind::damaged, "claims");
    expectError(stream("84 01 \"@\" 84 84 84 06 \"NSData\" 00 85 84 01 \"i\" 82 ffffff7f"),
                Kind::damaged, "claims");
    expectError(stream("84 01 \"@\" 84 84 84 06 \"Gadget\" 00 85 84 0d \"[4000000000c]\" 00"),
                Kind::damaged, "more values than there are bytes", keeping);
    expectError(stream("84 01 \"@\" 84 84 84 06 \"Gadget\" 00 85 84 0e \"[4000000000{}]\""),
                Kind::damaged, "", keeping);
}

TEST(KWUnarchiver, RefusesReferencesToWhatWasNeverMade) {
    expectError(stream("84 01 \"@\" 92"), Kind::damaged, "label 0 of 0");
    expectError(stream("84 01 \"@\" 81 e803"), Kind::damaged, "label 1110 of 0");
    expectError(stream("05"), Kind::damaged, "string 115 of 0");
    expectError(stream("84 01 \"@\" 84 85"), Kind::damaged, "without a class");
    expectError(stream("84 01 \"@\" 84 92"), Kind::damaged, "no class");
    expectError(stream("84 01 \"@\" " + arrayClass + "84 01 \"i\" 01 92 93"), Kind::damaged,
                "no object");
    expectError(stream("84 01 \"@\" " + arrayClass + "84 01 \"i\" 01 92 92"), Kind::damaged,
                "holds itself");
    expectError(stream("84 01 \"@\" 80"), Kind::damaged, "a number was expected");
    expectError(stream("84 01 \"@\" 86"), Kind::damaged, "a number was expected");
    expectError(stream("84 01 \"i\" 05"), Kind::damaged, "expected a value of type \"@\"");
    expectError(stream("84 01 \"@\" " + stringClass + "84 01 \"i\" 05"), Kind::damaged,
                "in NSString: expected a value of type \"+\", found \"i\"");
}

TEST(KWUnarchiver, RefusesAClassInTwoVersions) {
    expectError(stream("84 01 \"@\" 84 84 84 06 \"Gadget\" 01 85 92 84 84 93 02 85 86 86"),
                Kind::damaged, "two versions, 1 and 2", keeping);
}

TEST(KWUnarchiver, AnUnknownClassIsAnErrorThatNamesItAndItsPlace) {
    expectError(stream("84 01 \"@\" " + arrayClass +
                       "84 01 \"i\" 02 92 85 92 84 84 84 06 \"Gadget\" 00 94 86 86"),
                Kind::unsupported, "in NSArray[1].Gadget: the class \"Gadget\" is not known");
}

TEST(KWUnarchiver, RefusesObjectsNestedTooDeeply) {
    std::string million = stringOf(stream("84 01 \"@\" " + arrayClass + "84 01 \"i\" 01"));
    const std::string level = stringOf(bytesOf("92 84 93 95 01"));
    std::string deep;
    for (int k = 0; k < 1000000; ++k)
        deep += level;
    expectError(dataOf(million + deep), Kind::unsupported, "nested more than 1000 deep");

    std::string objects = stringOf(stream("84 01 \"@\" 84 84 84 06 \"Gadget\" 00 85"));
    const std::string object = stringOf(bytesOf("92 84 93"));
    for (int k = 0; k < 1000000; ++k)
        objects += object;
    expectError(dataOf(objects), Kind::unsupported, "nested more than 1000 deep", keeping);

    std::string classes = stringOf(stream("84 01 \"@\" 84"));
    for (int k = 0; k < 100000; ++k)
        classes += stringOf(bytesOf("84 84 05")) + std::to_string(10000 + k % 90000) +
                   std::string(1, '\0');
    expectError(dataOf(classes + stringOf(bytesOf("85 86"))), Kind::unsupported, "", keeping);
}

TEST(KWUnarchiver, DoesNotReadWithKeys) {
    const KWData bytes = stream("");
    KWUnarchiver it(bytes);
    EXPECT_FALSE(it.allowsKeyedCoding());
    EXPECT_THROW(it.decodeObjectForKey("root"), std::logic_error);
    EXPECT_THROW(it.encodeObject(nullptr), std::logic_error);
}

TEST(KWUnarchiver, NothingCutOrFlippedBreaksIt) {
    const Registration known(Part::classObject());
    const Registration moment(KWValueClass<Moment>::classObject());
    const auto root = std::make_shared<Part>("root");
    root->numbers = {1, 2.5F};
    root->moments = {0.5F, 7};
    root->records = KWData(16, std::byte{1});
    root->parts = {std::make_shared<Part>()};
    root->parts[0]->peer = root;
    root->other = KWArchiveValue::mutableArray({KWNumber(0.25), "text", dataOf("bytes"), nullptr});
    for (const KWData& whole :
         {KWArchiver::archivedDataWithRootObject(root), exampleStream(true)}) {
        for (std::size_t place = 0; place < whole.size(); place += placeStep) {
            std::vector<KWData> variants{
                KWData(whole.begin(), whole.begin() + std::ptrdiff_t(place))};
            for (int bit = 0; bit < 8; ++bit) {
                variants.push_back(whole);
                variants.back()[place] ^= static_cast<std::byte>(1 << bit);
            }
            for (const KWData& bad : variants)
                for (const KWUnarchivingOptions options :
                     {KWUnarchivingOptions(), keeping,
                      KWUnarchivingOptions{.knowsNoClasses = true}}) {
                    try {
                        KWUnarchiver::unarchiveValueWithData(bad, options);
                    } catch (const KWArchiveError&) {
                    }
                }
        }
    }
}
