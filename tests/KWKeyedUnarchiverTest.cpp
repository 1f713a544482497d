#include "KeyedArchiveText.h"
#include "PropertyListText.h"
#include "Thoroughness.h"
#include "UnarchiverTestSupport.h"

#include <KWFoundation/KWKeyedArchiver.h>
#include <KWFoundation/KWKeyedUnarchiver.h>
#include <KWFoundation/KWUnknownObject.h>

#include <gtest/gtest.h>

#include <cmath>
#include <random>

namespace {

using Format = KWPropertyList::Format;
using Index = KWPropertyList::Index;
using Kind = KWArchiveError::Kind;

void expectError(const KWData& bytes, Kind kind, const std::string& part,
                 KWUnarchivingOptions options = {}) {
    expectErrorOf<KWKeyedUnarchiver>(bytes, kind, part, options);
}

KWArchiveValue read(const std::vector<std::string>& objects) {
    return KWKeyedUnarchiver::unarchiveValueWithData(archive(objects));
}

KWData written(const KWArchiveValue& root, Format format) {
    return KWKeyedArchiver::archivedDataWithRootObject(root, format);
}

} // namespace

TEST(KWKeyedUnarchiver, ReadsBackAGraphWithSharingCyclesAndNil) {
    const Registration known(Part::classObject());
    const auto root = std::make_shared<Part>("root");
    const auto shared = std::make_shared<Part>("shared");
    root->parts = {shared, shared, std::make_shared<Part>("last")};
    root->gain = 0.1F;
    shared->peer = root;
    shared->other = KWArchiveValue::immutableArray({nullptr, KWNumber(2.5F), "text"});
    for (const Format format : {Format::binary, Format::xml}) {
        const auto back = std::dynamic_pointer_cast<Part>(
            KWKeyedUnarchiver::unarchiveObjectWithData(written(root, format)));
        ASSERT_TRUE(back);
        EXPECT_EQ(back->name, "root");
        EXPECT_EQ(std::bit_cast<std::uint32_t>(back->gain), std::bit_cast<std::uint32_t>(0.1F));
        ASSERT_EQ(back->parts.size(), 3u);
        EXPECT_EQ(back->parts[0], back->parts[1]);
        EXPECT_EQ(back->parts[2]->name, "last");
        EXPECT_EQ(back->parts[0]->peer.lock(), back);
        const auto* other = back->parts[0]->other.array();
        ASSERT_TRUE(other);
        EXPECT_FALSE(other->isMutable);
        EXPECT_TRUE(other->elements[0].isNil());
        EXPECT_EQ(other->elements[1].number()->floatValue(), 2.5F);
        EXPECT_EQ(other->elements[2].string()->text, "text");
    }
}

TEST(KWKeyedUnarchiver, AConditionalObjectNobodyWroteReadsAsNil) {
    const Registration known(Part::classObject());
    const auto root = std::make_shared<Part>("root");
    const auto loose = std::make_shared<Part>("loose");
    root->peer = loose;
    const auto back = std::dynamic_pointer_cast<Part>(
        KWKeyedUnarchiver::unarchiveObjectWithData(written(root, Format::binary)));
    EXPECT_FALSE(back->peer.lock());
}

TEST(KWKeyedUnarchiver, ReadsAllThreeFormsOfAnAbsentObject) {
    const Registration known(Part::classObject());
    const std::string record = classRecord("Part NSObject");
    for (const std::string& peer : {field("peer", uid(0)), field("peer", uid(3)), std::string()}) {
        const auto value = read({instance(peer, 2), record, "<string>$null</string>"});
        EXPECT_FALSE(std::dynamic_pointer_cast<Part>(value.object())->peer.lock());
    }
}

TEST(KWKeyedUnarchiver, AnObjectThatDeclinesIsNil) {
    const Registration known(Part::classObject());
    EXPECT_TRUE(KWKeyedUnarchiver::unarchiveValueWithData(
                    written(std::make_shared<Part>("nobody"), Format::binary))
                    .isNil());
}

TEST(KWKeyedUnarchiver, NumbersSatisfyEachOther) {
    KWKeyedArchiver archiver;
    archiver.encodeInt32ForKey(3, "int");
    archiver.encodeDoubleForKey(2.75, "real");
    archiver.encodeBoolForKey(true, "bool");
    archiver.encodeObjectForKey(KWNumber(-1.5F), "object");
    archiver.encodeObjectForKey(nullptr, "nil");
    const KWData bytes = archiver.finishEncoding();
    KWKeyedUnarchiver it(bytes);
    EXPECT_EQ(it.decodeDoubleForKey("int"), 3.0);
    EXPECT_EQ(it.decodeFloatForKey("int"), 3.0F);
    EXPECT_EQ(it.decodeInt32ForKey("real"), 2);
    EXPECT_EQ(it.decodeInt64ForKey("bool"), 1);
    EXPECT_TRUE(it.decodeBoolForKey("real"));
    EXPECT_EQ(it.decodeFloatForKey("object"), -1.5F);
    EXPECT_EQ(it.decodeInt32ForKey("object"), -1);
    EXPECT_EQ(it.decodeObjectForKey("int").number()->int64Value(), 3);
    EXPECT_EQ(it.decodeInt32ForKey("nil"), 0);
    EXPECT_TRUE(it.containsValueForKey("nil"));
    EXPECT_TRUE(it.decodeObjectForKey("nil").isNil());
}

TEST(KWKeyedUnarchiver, WhatIsAbsentReadsAsNothing) {
    const KWData bytes = KWKeyedArchiver().finishEncoding();
    KWKeyedUnarchiver it(bytes);
    EXPECT_FALSE(it.containsValueForKey("k"));
    EXPECT_TRUE(it.decodeObjectForKey("k").isNil());
    EXPECT_EQ(it.decodeInt32ForKey("k"), 0);
    EXPECT_EQ(it.decodeInt64ForKey("k"), 0);
    EXPECT_EQ(it.decodeFloatForKey("k"), 0.0F);
    EXPECT_EQ(it.decodeDoubleForKey("k"), 0.0);
    EXPECT_FALSE(it.decodeBoolForKey("k"));
    EXPECT_TRUE(it.decodeBytesForKey("k").empty());
    EXPECT_FALSE(it.decodeStringForKey("k"));
    std::vector<float> list{1};
    EXPECT_FALSE(it.decodeFloatsForKey(list, "k"));
    EXPECT_TRUE(list.empty());
}

TEST(KWKeyedUnarchiver, ANumberThatDoesNotFitIsAnError) {
    KWKeyedArchiver archiver;
    archiver.encodeInt64ForKey(std::int64_t{1} << 31, "wide");
    archiver.encodeDoubleForKey(1e10, "real");
    archiver.encodeDoubleForKey(NAN, "nan");
    archiver.encodeDoubleForKey(2147483647.5, "edge");
    const KWData bytes = archiver.finishEncoding();
    KWKeyedUnarchiver it(bytes);
    EXPECT_THROW(it.decodeInt32ForKey("wide"), KWArchiveError);
    EXPECT_EQ(it.decodeInt64ForKey("wide"), std::int64_t{1} << 31);
    EXPECT_THROW(it.decodeInt32ForKey("real"), KWArchiveError);
    EXPECT_THROW(it.decodeInt32ForKey("nan"), KWArchiveError);
    EXPECT_EQ(it.decodeInt32ForKey("edge"), 2147483647);
}

TEST(KWKeyedUnarchiver, KeysThatBeginWithADollarAreFound) {
    KWKeyedArchiver archiver;
    archiver.encodeInt32ForKey(5, "$num");
    const KWData bytes = archiver.finishEncoding();
    KWKeyedUnarchiver it(bytes);
    EXPECT_EQ(it.decodeInt32ForKey("$num"), 5);
    EXPECT_EQ(it.topKeys(), std::vector<std::string>{"$$num"});
}

TEST(KWKeyedUnarchiver, BytesAndTheTextOfNilComeBack) {
    KWKeyedArchiver archiver;
    const KWData some = dataOf("abc");
    archiver.encodeBytesForKey(some, "bytes");
    archiver.encodeObjectForKey("$null", "text");
    const KWData bytes = archiver.finishEncoding();
    KWKeyedUnarchiver it(bytes);
    EXPECT_EQ(it.decodeBytesForKey("bytes"), some);
    EXPECT_EQ(it.decodeStringForKey("text"), "$null");
}

TEST(KWKeyedUnarchiver, ReadsTheFormsOfOtherWriters) {
    const std::string text = field("NS.string", "<string>abc</string>");
    EXPECT_EQ(read({instance(text, 2), classRecord("NSString NSObject")}).string()->text, "abc");
    const std::string bytes = field("NS.bytes", "<data>YWJj</data>");
    EXPECT_EQ(read({instance(bytes, 2), classRecord("NSString NSObject")}).string()->text, "abc");
    EXPECT_EQ(read({instance(bytes, 2), classRecord("NSData NSObject")}).data()->bytes,
              dataOf("abc"));
    const std::string referred = field("NS.data", uid(3));
    EXPECT_EQ(read({instance(referred, 2), classRecord("NSData NSObject"), "<data>YWJj</data>"})
                  .data()
                  ->bytes,
              dataOf("abc"));
    for (const char* key : {"NS.number", "NS.intval", "NS.dblval"})
        EXPECT_EQ(read({instance(field(key, "<integer>7</integer>"), 2),
                        classRecord("NSNumber NSValue NSObject")})
                      .number()
                      ->int64Value(),
                  7);
    const std::string numbered = field("NS.object.0", uid(3)) + field("NS.object.1", uid(0));
    const KWArchiveValue array =
        read({instance(numbered, 2), classRecord("NSArray NSObject"), "<string>x</string>"});
    ASSERT_EQ(array.array()->elements.size(), 2u);
    EXPECT_EQ(array.array()->elements[0].string()->text, "x");
}

TEST(KWKeyedUnarchiver, AHintNamesAClassInPlaceOfAnUnknownOne) {
    const Registration known(Part::classObject());
    std::string record = classRecord("NewPart Part NSObject");
    record.insert(
        record.size() - 7,
        "<key>$classhints</key><array><string>Other</string><string>Part</string></array>");
    const auto value = read({instance("", 2), record});
    EXPECT_TRUE(std::dynamic_pointer_cast<Part>(value.object()));
}

TEST(KWKeyedUnarchiver, AClassRecordMayHaveANameAlone) {
    const Registration known(Part::classObject());
    const auto value =
        read({instance("", 2), "<dict><key>$classname</key><string>Part</string></dict>"});
    EXPECT_TRUE(std::dynamic_pointer_cast<Part>(value.object()));
}

TEST(KWKeyedUnarchiver, AnUnknownClassIsAnErrorThatNamesItAndItsPlace) {
    const Registration known(Part::classObject());
    const auto root = std::make_shared<Part>("root");
    const KWData bytes = archive({instance(field("other", uid(3)), 2), classRecord("Part NSObject"),
                                  instance("", 4), classRecord("Gadget Thing NSObject")});
    expectError(bytes, Kind::unsupported, "in root.other: the class \"Gadget\" is not known");
}

TEST(KWKeyedUnarchiver, KeepsUnknownObjectsAndWritesThemBackUnchanged) {
    const Registration known(Part::classObject());
    const std::string fields =
        field("text", "<string>{{1, 2}, {3, 4}}</string>") + field("n", "<integer>-3</integer>") +
        field("x", "<real>0.5</real>") + field("on", "<true/>") +
        field("bytes", "<data>YQ==</data>") +
        field("refs", "<array>" + uid(3) + uid(0) + uid(3) + "</array>") +
        field("map", "<dict><key>a</key>" + uid(3) + "<key>b</key><integer>1</integer></dict>") +
        field("empty", "<array/>") + field("part", uid(5)) + field("nil", uid(0)) +
        field("self", uid(1)) + field("$$odd", "<integer>9</integer>");
    const KWData bytes = archive({instance(fields, 2), classRecord("Gadget Thing NSObject"),
                                  instance(field("owner", uid(1)), 4),
                                  classRecord("Other NSObject"), instance(field("name", uid(7)), 6),
                                  classRecord("Part NSObject"), "<string>inner</string>"});
    const KWArchiveValue root = KWKeyedUnarchiver::unarchiveValueWithData(bytes, keeping);
    const auto gadget = std::dynamic_pointer_cast<KWUnknownObject>(root.object());
    ASSERT_TRUE(gadget);
    EXPECT_EQ(gadget->classChain(), (std::vector<std::string>{"Gadget", "Thing", "NSObject"}));
    EXPECT_EQ(gadget->fields().size(), 12u);
    EXPECT_EQ(gadget->field("part")->value.kindName(), "Part");
    EXPECT_EQ(gadget->field("self")->value.object(), gadget);
    EXPECT_TRUE(gadget->field("nil")->value.isNil());
    EXPECT_EQ(gadget->field("nothing"), nullptr);
    EXPECT_EQ(gadget->field("refs")->items[0].value.object(),
              gadget->field("map")->items[0].value.object());

    // Written and read again it is the same once more, to the byte.
    const KWData once = written(root, Format::binary);
    const KWData twice =
        written(KWKeyedUnarchiver::unarchiveValueWithData(once, keeping), Format::binary);
    EXPECT_EQ(once, twice);
    const KWPropertyList list = KWPropertyList::parse(once);
    const Index object = list.children(list.valueForKey(list.root(), "$objects"))[1];
    EXPECT_EQ(textOf(list, list.valueForKey(object, "text")), "\"{{1, 2}, {3, 4}}\"");
    EXPECT_EQ(textOf(list, list.valueForKey(object, "refs")), "(uid2,uid0,uid2,)");
    EXPECT_EQ(textOf(list, list.valueForKey(object, "self")), "uid1");
    EXPECT_EQ(textOf(list, list.valueForKey(object, "$$odd")), "9");
}

TEST(KWKeyedUnarchiver, AGraphOfUnknownObjectsCanBeLetGo) {
    // Parents and children that refer to each other, in fields and in lists.
    const KWData bytes =
        archive({instance(field("children", uid(3)), 2), classRecord("Gadget NSObject"),
                 instance(field("NS.objects", "<array>" + uid(5) + "</array>"), 4),
                 classRecord("NSArray NSObject"),
                 instance(field("parent", uid(1)) + field("list", uid(3)), 2)});
    expectError(bytes, Kind::damaged, "holds itself", keeping);
    const KWData honest =
        archive({instance(field("children", uid(3)), 2), classRecord("Gadget NSObject"),
                 instance(field("NS.objects", "<array>" + uid(5) + uid(1) + "</array>"), 4),
                 classRecord("NSArray NSObject"), instance(field("parent", uid(1)), 2)});
    std::weak_ptr<KWObject> watched;
    {
        const auto root = KWKeyedUnarchiver::unarchiveObjectWithData(honest, keeping);
        const auto gadget = std::dynamic_pointer_cast<KWUnknownObject>(root);
        const auto& children = gadget->field("children")->value.array()->elements;
        EXPECT_EQ(children[1].object(), root);
        watched = children[0].object();
        EXPECT_FALSE(watched.expired());
    }
    EXPECT_TRUE(watched.expired());
}

TEST(KWKeyedUnarchiver, RefusesAFrameThatIsNone) {
    const auto xml = [](const std::string& text) { return dataOf("<plist>" + text + "</plist>"); };
    expectError(xml("<array/>"), Kind::damaged, "not a keyed archive");
    expectError(xml("<dict/>"), Kind::damaged, "$objects");
    expectError(xml("<dict><key>$objects</key><array/></dict>"), Kind::damaged, "$top");
    expectError(xml("<dict><key>$objects</key><array/><key>$top</key><dict/>"
                    "<key>$version</key><integer>7</integer></dict>"),
                Kind::unsupported, "version");
    expectError(dataOf("\x04\x0bstreamtyped"), Kind::unsupported, "sequential");
}

TEST(KWKeyedUnarchiver, RefusesReferencesThatLeadNowhere) {
    expectError(archive({}), Kind::damaged, "object 1 of 1");
    const Registration known(Part::classObject());
    const std::string record = classRecord("Part NSObject");
    expectError(archive({instance("", 9)}), Kind::damaged, "object 9 of 2");
    expectError(archive({"<dict/>"}), Kind::damaged, "without a class");
    expectError(archive({instance("", 2), "<string>Part</string>"}), Kind::damaged,
                "no class record");
    expectError(archive({instance("", 2), "<dict/>"}), Kind::damaged, "without a name");
    expectError(archive({instance(field("name", "<true/>"), 2), record}), Kind::damaged,
                "expected a string, found a number");
    expectError(archive({instance(field("parts", "<array/>"), 2), record}), Kind::damaged,
                "in root.parts: expected a reference to an object, found a list");
    expectError(archive({instance(field("peer", uid(3)), 2), record, "<string>s</string>"}),
                Kind::damaged, "in root.peer: expected Part, found a string");
    expectError(archive({"<array/>"}), Kind::damaged, "found a list");
}

TEST(KWKeyedUnarchiver, NamesTheElementOfAListThatIsWrong) {
    const Registration known(Part::classObject());
    const KWData bytes =
        archive({instance(field("parts", uid(3)), 2), classRecord("Part NSObject"),
                 instance(field("NS.objects", "<array>" + uid(5) + uid(40) + "</array>"), 4),
                 classRecord("NSArray NSObject"), instance("", 2)});
    expectError(bytes, Kind::damaged, "in root.parts[1]: a reference to object 40 of 6");
}

TEST(KWKeyedUnarchiver, RefusesAnArrayInItself) {
    expectError(archive({instance(field("NS.objects", "<array>" + uid(1) + "</array>"), 2),
                         classRecord("NSArray NSObject")}),
                Kind::damaged, "a value that holds itself");
}

TEST(KWKeyedUnarchiver, RefusesObjectsNestedMoreThanAThousandDeep) {
    const Registration known(Part::classObject());
    const auto nested = [](int depth) {
        std::vector<std::string> objects;
        for (int k = 1; k <= depth; ++k)
            objects.push_back(instance(k < depth ? field("other", uid(k + 1)) : "", depth + 1));
        objects.push_back(classRecord("Part NSObject"));
        return archive(objects);
    };
    EXPECT_NO_THROW(KWKeyedUnarchiver::unarchiveValueWithData(nested(1000)));
    expectError(nested(1001), Kind::unsupported, "nested more than 1000 deep");
    expectError(nested(20000), Kind::unsupported, "nested more than 1000 deep");
}

TEST(KWKeyedUnarchiver, SharedListsInListsDoNotGrow) {
    // Twice the one before, forty times over.
    std::vector<std::string> objects;
    for (int k = 1; k <= 40; ++k)
        objects.push_back(
            instance(field("NS.objects", "<array>" + uid(k + 1) + uid(k + 1) + "</array>"), 42));
    objects.push_back("<string>ha</string>");
    objects.push_back(classRecord("NSArray NSObject"));
    KWArchiveValue value = read(objects);
    int depth = 0;
    for (; value.array(); ++depth)
        value = KWArchiveValue(value.array()->elements[1]);
    EXPECT_EQ(depth, 40);
}

TEST(KWKeyedUnarchiver, OneLongListReferredToFromEverywhereIsRefused) {
    // Each of many objects would get its own copy of the list.
    KWPropertyList list;
    const Index null = list.addString("$null");
    std::vector<Index> objects{null};
    const Index classKey = list.addString("$class");
    const auto record = [&](const char* name) {
        const Index names[] = {list.addString(name), list.addString("NSObject")};
        const Index keys[] = {list.addString("$classname"), list.addString("$classes")};
        const Index values[] = {names[0], list.addArray(names)};
        return list.addDictionary(keys, values);
    };
    objects.push_back(record("NSArray"));
    const std::vector<Index> same(200000, list.addUID(3));
    const Index arrayKeys[] = {list.addString("NS.objects"), classKey};
    const Index arrayValues[] = {list.addArray(same), list.addUID(1)};
    objects.push_back(list.addDictionary(arrayKeys, arrayValues));
    objects.push_back(list.addFloat(1));
    std::vector<Index> keys;
    std::vector<Index> values;
    for (int k = 0; k < 20000; ++k) {
        keys.push_back(list.addString("k" + std::to_string(k)));
        values.push_back(list.addUID(2));
    }
    const Index frame[] = {list.addString("$top"), list.addString("$objects")};
    const Index parts[] = {list.addDictionary(keys, values), list.addArray(objects)};
    list.setRoot(list.addDictionary(frame, parts));
    KWKeyedUnarchiver it(std::move(list));
    std::vector<std::vector<float>> copies;
    const auto readAll = [&] {
        for (int k = 0; k < 20000; ++k) {
            copies.emplace_back();
            it.decodeFloatsForKey(copies.back(), "k" + std::to_string(k));
        }
    };
    EXPECT_THROW(readAll(), KWArchiveError);
    EXPECT_LT(copies.size(), 1000u);
}

TEST(KWKeyedUnarchiver, ListsComeBackBitForBit) {
    const Registration known(KWValueClass<Moment>::classObject());
    std::mt19937 random(5);
    std::vector<float> numbers(1000);
    for (float& number : numbers)
        number = std::bit_cast<float>(static_cast<std::uint32_t>(random()));
    std::vector<std::byte> records(36 * 100);
    for (std::byte& byte : records)
        byte = static_cast<std::byte>(random());
    KWKeyedArchiver archiver;
    archiver.encodeFloatsForKey(numbers, "floats");
    archiver.encodeRealObjectsForKey(numbers, KWValueClass<Moment>::realClass(), "moments");
    archiver.encodeRecordsForKey(records, 36, "records");
    const KWData bytes = archiver.finishEncoding();
    KWKeyedUnarchiver it(bytes);
    std::vector<float> floats;
    std::vector<float> moments;
    std::vector<std::byte> blocks;
    EXPECT_TRUE(it.decodeFloatsForKey(floats, "floats"));
    EXPECT_TRUE(it.decodeRealObjectsForKey(moments, KWValueClass<Moment>::realClass(), "moments"));
    EXPECT_TRUE(it.decodeRecordsForKey(blocks, 36, "records"));
    ASSERT_EQ(floats.size(), numbers.size());
    ASSERT_EQ(moments.size(), numbers.size());
    for (std::size_t k = 0; k < numbers.size(); ++k) {
        EXPECT_EQ(std::bit_cast<std::uint32_t>(floats[k]),
                  std::bit_cast<std::uint32_t>(numbers[k]));
        // A time passes as a double, which makes a signalling NaN a quiet one.
        if (!std::isnan(numbers[k])) {
            EXPECT_EQ(std::bit_cast<std::uint32_t>(moments[k]),
                      std::bit_cast<std::uint32_t>(numbers[k]));
        }
    }
    EXPECT_EQ(blocks, records);
    // The general way gives the same.
    const KWArchiveValue general = it.decodeObjectForKey("moments");
    EXPECT_TRUE(general.array()->isMutable);
    for (std::size_t k = 0; k < numbers.size(); k += 100)
        EXPECT_EQ(std::bit_cast<std::uint32_t>(std::dynamic_pointer_cast<KWBoxedValue<Moment>>(
                                                   general.array()->elements[k].object())
                                                   ->value.seconds),
                  std::bit_cast<std::uint32_t>(moments[k]));
}

TEST(KWKeyedUnarchiver, ListsTakeTheElementsOfOtherWriters) {
    const Registration known(KWValueClass<Moment>::classObject());
    const std::string list = "<array>" + uid(4) + uid(5) + uid(6) + "</array>";
    const auto bytes = archive(
        {instance(field("NS.objects", list), 2), classRecord("NSArray NSObject"),
         classRecord("Moment NSObject"), instance(field("seconds", "<integer>2</integer>"), 3),
         "<dict><key>$class</key>" + uid(3) + field("seconds", "<real>0.5</real>") + "</dict>",
         instance("", 3)});
    KWKeyedUnarchiver it(bytes);
    std::vector<float> moments;
    EXPECT_TRUE(it.decodeRealObjectsForKey(moments, KWValueClass<Moment>::realClass(), "root"));
    EXPECT_EQ(moments, (std::vector<float>{2, 0.5F, 0}));

    const auto numbers =
        archive({instance(field("NS.objects", list), 2), classRecord("NSArray NSObject"),
                 classRecord("NSNumber NSObject"), "<integer>2</integer>", "<true/>",
                 instance(field("NS.dblval", "<real>0.25</real>"), 3)});
    KWKeyedUnarchiver other(numbers);
    std::vector<float> floats;
    EXPECT_TRUE(other.decodeFloatsForKey(floats, "root"));
    EXPECT_EQ(floats, (std::vector<float>{2, 1, 0.25F}));
}

TEST(KWKeyedUnarchiver, RecordsOfAnotherLengthAreFilledUpOrCut) {
    const std::string list = "<array>" + uid(3) + uid(4) + "</array>";
    const auto bytes =
        archive({instance(field("NS.objects", list), 2), classRecord("NSArray NSObject"),
                 "<data>YQ==</data>", "<data>YWJjZGU=</data>"});
    KWKeyedUnarchiver it(bytes);
    std::vector<std::byte> records;
    EXPECT_TRUE(it.decodeRecordsForKey(records, 3, "root"));
    EXPECT_EQ(stringOf(records), "a\0\0abc"s);
}

TEST(KWKeyedUnarchiver, ListsRefuseElementsOfOtherKinds) {
    const Registration known(KWValueClass<Moment>::classObject());
    const auto wrong = [](const std::string& element) {
        return archive({instance(field("NS.objects", "<array>" + uid(3) + "</array>"), 2),
                        classRecord("NSArray NSObject"), element, classRecord("Moment NSObject")});
    };
    std::vector<float> list;
    std::vector<std::byte> records;
    for (const std::string& element : {std::string("<string>s</string>"), "<data>YQ==</data>"s,
                                       "<string>$null</string>"s, instance("", 2)}) {
        const KWData bytes = wrong(element);
        KWKeyedUnarchiver it(bytes);
        EXPECT_THROW(it.decodeFloatsForKey(list, "root"), KWArchiveError) << element;
        EXPECT_THROW(it.decodeRealObjectsForKey(list, KWValueClass<Moment>::realClass(), "root"),
                     KWArchiveError)
            << element;
        if (element != "<data>YQ==</data>") {
            EXPECT_THROW(it.decodeRecordsForKey(records, 36, "root"), KWArchiveError) << element;
        }
    }
    const KWData bytes = archive({"<string>no list</string>"});
    KWKeyedUnarchiver it(bytes);
    EXPECT_THROW(it.decodeFloatsForKey(list, "root"), KWArchiveError);
}

TEST(KWKeyedUnarchiver, AnErrorCanBeAskedForAgain) {
    const Registration known(Part::classObject());
    const KWData bytes =
        archive({instance(field("other", uid(9)), 2), classRecord("Part NSObject")});
    KWKeyedUnarchiver it(bytes, {}, "f");
    std::vector<std::string> texts;
    for (int twice = 0; twice < 2; ++twice) {
        try {
            it.decodeObjectForKey("root");
        } catch (const KWArchiveError& error) {
            texts.emplace_back(error.what());
        }
    }
    ASSERT_EQ(texts.size(), 2u);
    EXPECT_EQ(texts[0], texts[1]);
}

TEST(KWKeyedUnarchiver, ARootOfAnotherKindIsNoObject) {
    const KWData bytes = written("text", Format::binary);
    try {
        KWKeyedUnarchiver::unarchiveObjectWithData(bytes, {}, "f.doc");
        FAIL();
    } catch (const KWArchiveError& error) {
        EXPECT_EQ(error.reason(), "expected an object, found a string");
        EXPECT_EQ(error.keyPath(), "root");
    }
}

TEST(KWKeyedUnarchiver, ReadsTheObjectOfAFileOrSaysWhyNot) {
    for (const Format format : {Format::binary, Format::xml})
        expectObjectOfFileOrReason<KWKeyedUnarchiver>(
            [format](const KWArchiveValue& root, const std::filesystem::path& path) {
                KWKeyedArchiver::archiveRootObjectToFile(root, path, format);
            });
}

TEST(KWKeyedUnarchiver, NothingCutOrFlippedBreaksIt) {
    const Registration known(Part::classObject());
    const Registration moment(KWValueClass<Moment>::classObject());
    const auto root = std::make_shared<Part>("root \u00e9");
    root->parts = {std::make_shared<Part>("one"), std::make_shared<Part>("two")};
    root->parts[0]->peer = root;
    root->other = KWArchiveValue::mutableArray(
        {std::make_shared<KWBoxedValue<Moment>>(Moment{2}), KWNumber(0.5F), dataOf("bytes")});
    for (const Format format : {Format::binary, Format::xml}) {
        const KWData whole = written(root, format);
        for (std::size_t place = 0; place < whole.size(); place += placeStep) {
            std::vector<KWData> variants{
                KWData(whole.begin(), whole.begin() + std::ptrdiff_t(place))};
            for (const int bits : {0x01, 0x80, 1 << (place / placeStep % 7), 0xff}) {
                variants.push_back(whole);
                variants.back()[place] ^= static_cast<std::byte>(bits);
            }
            for (const KWData& bad : variants)
                for (const KWUnarchivingOptions options : {KWUnarchivingOptions(), keeping}) {
                    try {
                        KWKeyedUnarchiver::unarchiveValueWithData(bad, options);
                    } catch (const KWArchiveError&) {
                    }
                    Part::partAll();
                }
        }
    }
}

TEST(KWKeyedUnarchiver, RandomGraphsComeBack) {
    const Registration known(Part::classObject());
    const Registration moment(KWValueClass<Moment>::classObject());
    for (unsigned seed = 0; seed < 100; ++seed) {
        const auto parts = randomParts(seed);
        const auto format = seed % 2 ? Format::binary : Format::xml;
        expectParts(std::dynamic_pointer_cast<Part>(
                        KWKeyedUnarchiver::unarchiveObjectWithData(written(parts[0], format))),
                    parts);
        Part::partAll();
    }
}
