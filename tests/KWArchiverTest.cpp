#include "ArchiveTestClasses.h"
#include "SequentialBytes.h"
#include "TestFiles.h"

#include <KWFoundation/KWArchiver.h>
#include <KWFoundation/KWUnarchiver.h>

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <functional>
#include <limits>

namespace {

/// What an archiver writes behind the header.
std::string written(const std::function<void(KWArchiver&)>& write) {
    KWArchiver archiver;
    write(archiver);
    const std::string all = stringOf(archiver.archiverData());
    return all.substr(bytesOf(littleEndianHeader).size());
}

std::string text(std::string_view bytes) {
    return stringOf(bytesOf(bytes));
}

template <class T>
std::string number(const char* type, T value) {
    return written([&](KWArchiver& it) { it.encodeValueOfObjCTypeAt(type, &value); }).substr(3);
}

/// Writes and reads itself in order: a name, parts, and a part that it does not own.
class Knot final : public KWObject {
  public:
    const KWClass& isa() const override {
        static constinit KWClass theClass{"Knot", &KWObject::classObject, 0, nullptr};
        return theClass;
    }
    void encodeWithCoder(KWCoder& coder) const override {
        coder.encodeConditionalObject(peer.lock());
        coder.encodeObject(part);
    }
    std::weak_ptr<KWObject> peer;
    std::shared_ptr<KWObject> part;
};

} // namespace

TEST(KWArchiver, WritesTheWorkedExampleByteForByte) {
    EXPECT_EQ(KWArchiver::archivedDataWithRootObject(std::make_shared<Example>()),
              exampleStream(false));
}

TEST(KWArchiver, WritesIntegersInTheirShortestForm) {
    const auto integer = [](std::int32_t value) { return number("i", value); };
    EXPECT_EQ(integer(0), text("00"));
    EXPECT_EQ(integer(127), text("7f"));
    EXPECT_EQ(integer(-110), text("92"));
    EXPECT_EQ(integer(128), text("81 8000"));
    EXPECT_EQ(integer(-111), text("81 91ff"));
    EXPECT_EQ(integer(300), text("81 2c01"));
    EXPECT_EQ(integer(-1), text("ff"));
    EXPECT_EQ(integer(-32767), text("81 0180"));
    EXPECT_EQ(integer(-32768), text("82 0080ffff"));
    EXPECT_EQ(integer(65535), text("82 ffff0000"));
    EXPECT_EQ(number("I", std::uint32_t{4294967295}), text("ff"));
    EXPECT_EQ(number("S", std::uint16_t{65535}), text("ff"));
    EXPECT_EQ(number("q", std::int64_t{1} << 40), text("87 0000000000010000"));
    EXPECT_EQ(number("c", std::int8_t{-124}), text("84"));
}

TEST(KWArchiver, WritesWholeRealsAsIntegers) {
    EXPECT_EQ(number("f", 0.5F), text("83 0000003f"));
    EXPECT_EQ(number("f", 2.0F), text("02"));
    EXPECT_EQ(number("f", 1000.0F), text("81 e803"));
    EXPECT_EQ(number("f", -0.0F), text("00"));
    EXPECT_EQ(number("d", 21692800.0), text("82 80014b01"));
    EXPECT_EQ(number("d", 16777217.0), text("83 0000001000007041"));
    EXPECT_EQ(number("f", 3.4e38F).substr(0, 1), text("83"));
    EXPECT_EQ(number("d", 2147483646.0), text("83 0000 80ff ffff df41"));
    // As floats these are beyond the largest integer.
    EXPECT_EQ(number("d", 2147483600.0), text("83 0000 00f4 ffff df41"));
    EXPECT_EQ(number("d", -2147483600.0), text("83 0000 00f4 ffff dfc1"));
    EXPECT_EQ(number("d", static_cast<double>(NAN)).size(), 9u);
    EXPECT_EQ(number("f", std::numeric_limits<float>::infinity()), text("83 0000807f"));
}

TEST(KWArchiver, WritesOneTypeStringForAGroup) {
    const float a = 1;
    const float b = 0.25F;
    EXPECT_EQ(written([&](KWArchiver& it) {
                  it.encodeValuesOfObjCTypesAt("ff", {&a, &b});
              }),
              text("84 02 \"ff\" 01 83 0000803e"));
}

TEST(KWArchiver, WritesArraysStructsBytesAndCStrings) {
    const std::array<float, 3> list{1, 2, 3};
    EXPECT_EQ(
        written([&](KWArchiver& it) { it.encodeArrayOfObjCTypeCountAt("f", 3, list.data()); }),
        text("84 04 \"[3f]\" 01 02 03"));
    EXPECT_EQ(written([&](KWArchiver& it) { it.encodeArrayOfObjCTypeCountAt("c", 3, "xyz"); }),
              text("84 04 \"[3c]\" \"xyz\""));
    struct {
        char c = 'x';
        float f = 2;
    } record;
    EXPECT_EQ(written([&](KWArchiver& it) { it.encodeValueOfObjCTypeAt("{r=cf}", &record); }),
              text("84 06 \"{r=cf}\" \"x\" 02"));
    EXPECT_EQ(written([&](KWArchiver& it) { it.encodeBytes(dataOf("ab")); }),
              text("84 01 \"+\" 02 \"ab\""));
    EXPECT_EQ(written([&](KWArchiver& it) { it.encodeDataObject(dataOf("ab")); }),
              text("84 01 \"i\" 02 84 04 \"[2c]\" \"ab\""));
    const std::optional<std::string> words("on");
    const std::optional<std::string> none;
    EXPECT_EQ(written([&](KWArchiver& it) {
                  it.encodeValuesOfObjCTypesAt("***", {&words, &none, &words});
              }),
              text("84 03 \"***\" 84 84 02 \"on\" 85 92"));
}

TEST(KWArchiver, RefusesTypesThatDescribeNothing) {
    KWArchiver archiver;
    const float a = 1;
    for (const char* types : {"?", "", "ff", "[f]", "^f", "{p=?}", "#"})
        EXPECT_THROW(archiver.encodeValueOfObjCTypeAt(types, &a), std::invalid_argument) << types;
}

TEST(KWArchiver, EmptyListsAndTexts) {
    EXPECT_EQ(written([](KWArchiver& it) { it.encodeObject(KWArchiveValue::mutableArray({})); }),
              text("84 01 \"@\" 84 84 84 0e \"NSMutableArray\" 00 84 84 07 \"NSArray\" 00"
                   "84 84 08 \"NSObject\" 00 85 84 01 \"i\" 00 86"));
    EXPECT_EQ(
        written([](KWArchiver& it) {
            it.encodeObject(std::make_shared<const KWArchiveString>(KWArchiveString{"", true}));
        }),
        text("84 01 \"@\" 84 84 84 0f \"NSMutableString\" 01 84 84 08 \"NSString\" 01"
             "84 84 08 \"NSObject\" 00 85 84 01 \"+\" 00 86"));
}

TEST(KWArchiver, AConditionalObjectIsWrittenWhereItIsFirstMetIfAnybodyHoldsIt) {
    const auto knot = std::make_shared<Knot>();
    const auto inner = std::make_shared<Knot>();
    knot->peer = inner;
    knot->part = inner;
    inner->peer = knot;
    const std::string start = "84 01 \"@\" 84 84 84 04 \"Knot\" 00 84 84 08 \"NSObject\" 00 85";
    // The peer in full, in it the way back; then the part, which is the same.
    EXPECT_EQ(stringOf(KWArchiver::archivedDataWithRootObject(knot)),
              text(littleEndianHeader + start + "92 84 93 92 92 92 85 86 92 95 86"));
    const auto loose = std::make_shared<Knot>();
    knot->peer = loose;
    knot->part = nullptr;
    EXPECT_EQ(stringOf(KWArchiver::archivedDataWithRootObject(knot)),
              text(littleEndianHeader + start + "92 85 92 85 86"));
}

TEST(KWArchiver, AConditionalObjectNeedsARoot) {
    KWArchiver archiver;
    EXPECT_THROW(archiver.encodeConditionalObject(nullptr), std::logic_error);
}

TEST(KWArchiver, WritesAClassAsOfAnOlderVersion) {
    KWRegisterClass(Part::classObject());
    KWArchiver archiver;
    EXPECT_EQ(archiver.versionForClassName("Part"), 3);
    EXPECT_EQ(archiver.versionForClassName("Nothing"), KWNotFound);
    archiver.setVersionForClassName(1, "Part");
    EXPECT_EQ(archiver.versionForClassName("Part"), 1);
    KWUnregisterClass(Part::classObject());
}

TEST(KWArchiver, ListsGiveTheBytesOfTheGeneralWay) {
    const std::array<float, 7> numbers{0, 1.5F, -2, 1.5F, 1000, 1e30F, -0.25F};
    std::vector<std::byte> records(36 * 4);
    records[40] = std::byte{9};
    for (const bool few : {false, true}) {
        const auto list = few ? std::span<const float>(numbers).first(1) : numbers;
        KWArchiver direct;
        KWArchiver general;
        for (int twice = 0; twice < 2; ++twice) {
            direct.encodeFloats(list);
            general.KWCoder::encodeFloats(list);
            direct.encodeRealObjects(list, KWValueClass<Moment>::realClass());
            general.KWCoder::encodeRealObjects(list, KWValueClass<Moment>::realClass());
            direct.encodeRecords(records, 36);
            general.KWCoder::encodeRecords(records, 36);
            direct.encodeFloats({});
            general.KWCoder::encodeFloats({});
            direct.encodeRealObjects({}, KWValueClass<Moment>::realClass());
            general.KWCoder::encodeRealObjects({}, KWValueClass<Moment>::realClass());
        }
        direct.encodeObject("afterwards");
        general.encodeObject("afterwards");
        EXPECT_EQ(direct.archiverData(), general.archiverData());
    }
}

TEST(KWArchiver, RefusesObjectsNestedMoreThanAThousandDeep) {
    const auto nested = [](int depth) {
        KWArchiveValue value("inmost");
        for (int k = 1; k < depth; ++k)
            value = KWArchiveValue::immutableArray({value});
        return value;
    };
    EXPECT_NO_THROW(KWArchiver::archivedDataWithRootObject(nested(1000)));
    EXPECT_THROW(KWArchiver::archivedDataWithRootObject(nested(1001)), KWArchiveError);
}

TEST(KWArchiver, DoesNotWriteWithKeys) {
    KWArchiver archiver;
    EXPECT_FALSE(archiver.allowsKeyedCoding());
    EXPECT_THROW(archiver.encodeInt32ForKey(1, "n"), std::logic_error);
    EXPECT_THROW(archiver.decodeObject(), std::logic_error);
}

TEST(KWArchiver, WhatIsMadeOnlyToBeArchivedIsNotTakenForSomethingElse) {
    class Maker final : public KWObject {
      public:
        const KWClass& isa() const override {
            static constinit KWClass theClass{"Maker", &KWObject::classObject, 0, nullptr};
            return theClass;
        }
        void encodeWithCoder(KWCoder& coder) const override {
            for (int k = 0; k < 100; ++k)
                coder.encodeObject(std::to_string(k));
        }
    };
    const KWData bytes = KWArchiver::archivedDataWithRootObject(std::make_shared<Maker>());
    const auto back = std::dynamic_pointer_cast<KWUnknownObject>(
        KWUnarchiver::unarchiveObjectWithData(bytes, {.keepsUnknownObjects = true}));
    ASSERT_TRUE(back);
    ASSERT_EQ(back->fields().size(), 100u);
    for (std::size_t k = 0; k < 100; ++k)
        EXPECT_EQ(back->fields()[k].items.at(0).value.string()->text, std::to_string(k));
}

TEST(KWArchiver, RefusesAClassInTwoVersions) {
    const auto unknown = [](std::int32_t version) {
        auto object = std::make_shared<KWUnknownObject>();
        object->setClassChain({"Gadget", "NSObject"});
        object->setClassVersions({version, 0});
        return object;
    };
    EXPECT_NO_THROW(KWArchiver::archivedDataWithRootObject(
        KWArchiveValue::mutableArray({unknown(1), unknown(1)})));
    EXPECT_THROW(KWArchiver::archivedDataWithRootObject(
                     KWArchiveValue::mutableArray({unknown(1), unknown(2)})),
                 KWArchiveError);
}

TEST(KWArchiver, WritesNoListThatWouldNotBeReadForItsDepth) {
    class Bottom final : public KWObject {
      public:
        const KWClass& isa() const override {
            static constinit KWClass theClass{"Bottom", &KWObject::classObject, 0, nullptr};
            return theClass;
        }
        void encodeWithCoder(KWCoder& coder) const override {
            coder.encodeFloats(std::array<float, 2>{1, 2});
        }
    };
    const auto nested = [](int depth) {
        KWArchiveValue value(std::make_shared<Bottom>());
        for (int k = 1; k < depth; ++k)
            value = KWArchiveValue::immutableArray({value});
        return KWArchiver::archivedDataWithRootObject(value);
    };
    EXPECT_NO_THROW(nested(999));
    EXPECT_THROW(nested(1000), KWArchiveError);
}
