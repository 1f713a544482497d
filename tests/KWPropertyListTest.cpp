#include "PropertyListText.h"
#include "RandomPropertyList.h"
#include "TestFiles.h"

#include <KWFoundation/KWPropertyList.h>

#include <gtest/gtest.h>
#include <plist/plist.h>

#include <cstring>
#include <limits>
#include <string>

namespace {

using Format = KWPropertyList::Format;
using Index = KWPropertyList::Index;
using Kind = KWArchiveError::Kind;

KWPropertyList listOf(Index (*make)(KWPropertyList&)) {
    KWPropertyList list;
    const Index value = make(list);
    list.setRoot(value);
    return list;
}

/// The bytes of one object in a binary list that holds nothing else.
std::string objectBytes(Index (*make)(KWPropertyList&)) {
    const std::string file = stringOf(listOf(make).data(Format::binary));
    return file.substr(8, file.size() - 8 - 32 - 1);
}

std::string xmlOf(std::string_view value) {
    return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<plist version=\"1.0\">" +
           std::string(value) + "</plist>";
}

std::string textOfXML(std::string_view value) {
    const KWData bytes = dataOf(xmlOf(value));
    return textOf(KWPropertyList::parse(bytes));
}

void expectError(const std::string& file, Kind kind, const std::string& part) {
    const KWData bytes = dataOf(file);
    try {
        KWPropertyList::parse(bytes, "sample.plist");
        FAIL() << "read without an error";
    } catch (const KWArchiveError& error) {
        EXPECT_EQ(error.kind(), kind) << error.what();
        EXPECT_NE(std::string(error.what()).find(part), std::string::npos) << error.what();
        EXPECT_EQ(error.file(), "sample.plist");
    }
}

} // namespace

TEST(KWPropertyList, WritesIntegersInTheirShortestForm) {
    EXPECT_EQ(objectBytes([](auto& l) { return l.addInt(0); }), std::string("\x10\x00", 2));
    EXPECT_EQ(objectBytes([](auto& l) { return l.addInt(255); }), "\x10\xff");
    EXPECT_EQ(objectBytes([](auto& l) { return l.addInt(256); }), std::string("\x11\x01\x00", 3));
    EXPECT_EQ(objectBytes([](auto& l) { return l.addInt(100000); }),
              std::string("\x12\x00\x01\x86\xa0", 5));
    EXPECT_EQ(objectBytes([](auto& l) { return l.addInt(-5); }),
              "\x13\xff\xff\xff\xff\xff\xff\xff\xfb");
    EXPECT_EQ(objectBytes([](auto& l) { return l.addUnsigned(~std::uint64_t{0}); }),
              "\x14" + std::string(8, '\0') + std::string(8, '\xff'));
}

TEST(KWPropertyList, KeepsTheWidthOfReals) {
    EXPECT_EQ(objectBytes([](auto& l) { return l.addFloat(0.5F); }),
              std::string("\x22\x3f\x00\x00\x00", 5));
    EXPECT_EQ(objectBytes([](auto& l) { return l.addDouble(2.0); }),
              "\x23\x40" + std::string(7, '\0'));
}

TEST(KWPropertyList, KeepsEveryBitOfASingleReal) {
    const auto signalling = std::bit_cast<float>(0x7fa12345u);
    KWPropertyList list;
    list.setRoot(list.addFloat(signalling));
    const KWData bytes = list.data(Format::binary);
    const KWPropertyList back = KWPropertyList::parse(bytes);
    EXPECT_EQ(std::bit_cast<std::uint32_t>(back.singleValue(back.root())), 0x7fa12345u);
}

TEST(KWPropertyList, CountsFromFifteenOnStandBehindTheMarker) {
    EXPECT_EQ(objectBytes([](auto& l) { return l.addString("NSKeyedArchiver"); }),
              "\x5f\x10\x0fNSKeyedArchiver");
    EXPECT_EQ(objectBytes([](auto& l) { return l.addString("KWTime"); }), "\x56KWTime");
}

TEST(KWPropertyList, WritesOtherTextThanASCIIAsUTF16) {
    EXPECT_EQ(objectBytes([](auto& l) { return l.addString("a\u00e9"); }),
              std::string("\x62\x00\x61\x00\xe9", 5));
    EXPECT_EQ(objectBytes([](auto& l) { return l.addString("\U0001F600"); }),
              "\x62\xd8\x3d\xde\x00"s);
}

TEST(KWPropertyList, EqualStringsAreOneNode) {
    KWPropertyList list;
    EXPECT_EQ(list.addString("time"), list.addString("time"));
    EXPECT_NE(list.addString("time"), list.addString("Time"));
    for (int k = 0; k < 1000; ++k)
        list.addString(std::to_string(k));
    EXPECT_EQ(list.addString("time"), Index{0});
}

TEST(KWPropertyList, RealsOfDifferentWidthOrSignOfZeroAreDifferentNodes) {
    KWPropertyList list;
    EXPECT_NE(list.addFloat(0.5F), list.addDouble(0.5));
    EXPECT_NE(list.addDouble(0.0), list.addDouble(-0.0));
    EXPECT_NE(list.addInt(1), list.addBool(true));
    EXPECT_NE(list.addInt(7), list.addUID(7));
    EXPECT_EQ(list.addDouble(0.25), list.addDouble(0.25));
}

TEST(KWPropertyList, ReferencesTakeAsManyBytesAsTheObjectsNeed) {
    for (const unsigned count : {3u, 200u, 300u, 70000u}) {
        KWPropertyList list;
        std::vector<Index> elements;
        for (unsigned k = 0; k < count; ++k)
            elements.push_back(list.addString(std::to_string(k)));
        list.setRoot(list.addArray(elements));
        const KWData bytes = list.data(Format::binary);
        const KWPropertyList back = KWPropertyList::parse(bytes);
        EXPECT_EQ(textOf(back), textOf(list));
        EXPECT_EQ(std::to_integer<unsigned>(bytes[bytes.size() - 25]), count < 255     ? 1u
                                                                       : count < 65535 ? 2u
                                                                                       : 3u);
    }
}

TEST(KWPropertyList, RandomListsComeBackFromTheBinaryFormAsTheyWere) {
    for (unsigned seed = 0; seed < 300; ++seed) {
        const KWPropertyList list = RandomPropertyList(seed, {}).make();
        const KWData bytes = list.data(Format::binary);
        EXPECT_TRUE(textOf(KWPropertyList::parse(bytes)) == textOf(list)) << seed;
    }
}

TEST(KWPropertyList, RandomListsComeBackFromTheXMLFormButForTheWidthOfReals) {
    for (unsigned seed = 0; seed < 300; ++seed) {
        const KWPropertyList list = RandomPropertyList(seed, {}).make();
        const KWData bytes = list.data(Format::xml);
        EXPECT_TRUE(textOf(KWPropertyList::parse(bytes), false) == textOf(list, false)) << seed;
    }
}

TEST(KWPropertyList, XMLReadsBackToTheSameBytes) {
    for (unsigned seed = 0; seed < 50; ++seed) {
        const KWData first = RandomPropertyList(seed, {}).make().data(Format::xml);
        EXPECT_EQ(KWPropertyList::parse(first).data(Format::xml), first) << seed;
    }
}

TEST(KWPropertyList, ReadsTheXMLFormAsPeopleWriteIt) {
    EXPECT_EQ(textOfXML("<array><integer> -12 </integer><integer>+3</integer>"
                        "<integer>0x1F</integer><integer>18446744073709551615</integer></array>"),
              "(-12,3,31,18446744073709551615u,)");
    EXPECT_EQ(textOfXML("<array><true/><false></false><string> a &amp; b </string></array>"),
              "(true,false,\" a & b \",)");
    EXPECT_EQ(textOfXML("<data>\n YQ==\n</data>"), "<97 >");
    EXPECT_EQ(textOfXML("<dict><key>CF$UID</key><integer>8</integer></dict>"), "uid8");
    EXPECT_EQ(textOfXML("<date>2001-01-01T00:00:00Z</date>"), "date0");
    EXPECT_EQ(textOfXML("<real>inf</real>"), textOfXML("<real>+infinity</real>"));
}

TEST(KWPropertyList, ReadsXMLInUTF16) {
    std::string text = "\xff\xfe";
    for (const char c : std::string("<?xml version='1.0'?><plist><string>hi</string></plist>"))
        text += std::string{c, '\0'};
    const KWData bytes = dataOf(text);
    EXPECT_EQ(textOf(KWPropertyList::parse(bytes)), "\"hi\"");
}

TEST(KWPropertyList, SortsTheKeysOfTheXMLForm) {
    KWPropertyList list;
    const Index keys[] = {list.addString("b"), list.addString("a")};
    const Index values[] = {list.addInt(1), list.addInt(2)};
    list.setRoot(list.addDictionary(keys, values));
    const std::string text = stringOf(list.data(Format::xml));
    EXPECT_LT(text.find("<key>a</key>"), text.find("<key>b</key>"));
}

TEST(KWPropertyList, XMLErrorsTellWhatAndWhere) {
    expectError("", Kind::damaged, "empty");
    expectError("hello", Kind::damaged, "not a property list");
    expectError(xmlOf("<array>"), Kind::damaged, "mismatched tag");
    expectError(xmlOf(""), Kind::damaged, "no value");
    expectError(xmlOf("<true/><true/>"), Kind::damaged, "more than one value");
    expectError(xmlOf("<lamp/>"), Kind::damaged, "<lamp> is no element");
    expectError(xmlOf("<dict><integer>1</integer></dict>"), Kind::damaged, "where a key belongs");
    expectError(xmlOf("<dict><key>a</key></dict>"), Kind::damaged, "no value");
    expectError(xmlOf("<array><key>a</key></array>"), Kind::damaged, "where a value belongs");
    expectError(xmlOf("<integer>12a</integer>"), Kind::damaged, "no whole number");
    expectError(xmlOf("<integer>18446744073709551616</integer>"), Kind::damaged, "64 bits");
    expectError(xmlOf("<real>one</real>"), Kind::damaged, "no real number");
    expectError(xmlOf("<data>*</data>"), Kind::damaged, "base64");
    expectError(xmlOf("<date>yesterday</date>"), Kind::damaged, "no date");
    expectError(xmlOf("<array>text</array>"), Kind::damaged, "text between");
    expectError(xmlOf("<string><true/></string>"), Kind::damaged, "inside <string>");
    expectError("<html></html>", Kind::damaged, "<html>");
    expectError("<!DOCTYPE plist [<!ENTITY a \"b\">]><plist><string>&a;</string></plist>",
                Kind::damaged, "entities");
}

TEST(KWPropertyList, XMLThatIsCutShortSaysSo) {
    const std::string text = xmlOf("<dict><key>caf\u00e9</key><array><true/></array></dict>");
    for (std::size_t size = text.find("<plist"); size < text.size(); ++size)
        expectError(text.substr(0, size), Kind::damaged, "; the file may be cut short");
    const KWData bytes = dataOf(xmlOf("<array>"));
    try {
        KWPropertyList::parse(bytes);
        FAIL();
    } catch (const KWArchiveError& error) {
        EXPECT_EQ(error.reason(), "mismatched tag");
    }
}

TEST(KWPropertyList, AnXMLErrorNamesTheByte) {
    const std::string text = xmlOf("<array><true/><lamp/></array>");
    const KWData bytes = dataOf(text);
    try {
        KWPropertyList::parse(bytes);
        FAIL();
    } catch (const KWArchiveError& error) {
        EXPECT_EQ(error.offset(), text.find("<lamp/>"));
    }
}

TEST(KWPropertyList, RefusesListsNestedMoreThanAThousandDeep) {
    const auto nested = [](int depth) {
        std::string text;
        for (int k = 0; k < depth; ++k)
            text += "<array>";
        for (int k = 0; k < depth; ++k)
            text += "</array>";
        return xmlOf(text);
    };
    const KWData bytes = dataOf(nested(1000));
    EXPECT_EQ(KWPropertyList::parse(bytes).nodeCount(), 1000u);
    expectError(nested(1001), Kind::unsupported, "nested more than 1000 deep");
    expectError(nested(1000000), Kind::unsupported, "nested more than 1000 deep");
}

TEST(KWPropertyList, RefusesToWriteDeeperXMLOrAListThatHoldsItself) {
    KWPropertyList list;
    Index inner = list.addArray({});
    for (int k = 0; k < 1001; ++k)
        inner = list.addArray({&inner, 1});
    list.setRoot(inner);
    EXPECT_THROW(list.data(Format::xml), KWArchiveError);

    // A binary list can name itself as its element.
    std::string file = "bplist00\xa1";
    file += '\0';
    file += '\x08';
    file += std::string(6, '\0') + "\x01\x01" + std::string(7, '\0') + "\x01" +
            std::string(8, '\0') + std::string(7, '\0') + "\x0a";
    const KWData bytes = dataOf(file);
    const KWPropertyList cyclic = KWPropertyList::parse(bytes);
    EXPECT_EQ(cyclic.children(cyclic.root())[0], cyclic.root());
    EXPECT_THROW(cyclic.data(Format::xml), KWArchiveError);
}

TEST(KWPropertyList, RefusesXMLThatGrowsBeyondMeasure) {
    KWPropertyList list;
    Index inner = list.addString("ha");
    for (int k = 0; k < 40; ++k) {
        const Index twice[] = {inner, inner};
        inner = list.addArray(twice);
    }
    list.setRoot(inner);
    EXPECT_THROW(list.data(Format::xml), KWArchiveError);
}

TEST(KWPropertyList, RefusesXMLOfOneLongTextManyTimesOver) {
    KWPropertyList list;
    const Index text = list.addString(std::string(1 << 20, 'x'));
    const std::vector<Index> elements(500, text);
    list.setRoot(list.addArray(elements));
    EXPECT_THROW(list.data(Format::xml), KWArchiveError);
}

TEST(KWPropertyList, BytesThatAreNoUTF8BecomeTheSameTextInBothForms) {
    KWPropertyList list;
    list.setRoot(list.addString("caf\xe9 \xff!"));
    for (const Format format : {Format::binary, Format::xml}) {
        const KWData bytes = list.data(format);
        EXPECT_EQ(textOf(KWPropertyList::parse(bytes)), "\"caf\ufffd \ufffd!\"");
    }
}

TEST(KWPropertyList, XMLRefusesWhatItCannotCarry) {
    const auto refused = [](Index (*make)(KWPropertyList&)) {
        EXPECT_THROW(listOf(make).data(Format::xml), KWArchiveError);
    };
    refused([](auto& l) { return l.addNull(); });
    refused([](auto& l) { return l.addSet({}); });
    refused([](auto& l) { return l.addString("a\x01"); });
    refused([](auto& l) { return l.addString("\xef\xbf\xbe"); });
    refused([](auto& l) { return l.addDate(0.5); });
    refused([](auto& l) { return l.addDate(1e30); });
    refused([](auto& l) { return l.addDate(std::numeric_limits<double>::quiet_NaN()); });
}

TEST(KWPropertyList, BinaryErrorsTellWhatAndWhere) {
    const std::string good = stringOf(listOf([](auto& l) {
                                          const Index key = l.addString("k");
                                          const Index value = l.addInt(5);
                                          return l.addDictionary({&key, 1}, {&value, 1});
                                      }).data(Format::binary));
    ASSERT_EQ(good.substr(8), std::string("\xd1\x01\x02\x51k\x10\x05\x08\x0b\x0d", 10) +
                                  std::string(6, '\0') + "\x01\x01" + std::string(7, '\0') +
                                  "\x03" + std::string(8, '\0') + std::string(7, '\0') + "\x0f");
    const auto with = [&](std::size_t place, char byte) {
        std::string bad = good;
        bad[place] = byte;
        return bad;
    };
    expectError(good.substr(0, 39), Kind::damaged, "ends before");
    expectError(with(7, '1'), Kind::unsupported, "unknown version");
    expectError(with(good.size() - 26, 0), Kind::damaged,
                "not between 1 and 8; the file may be cut short");
    expectError(with(good.size() - 17, 9), Kind::damaged, "more objects than the offset table");
    expectError(with(good.size() - 9, 3), Kind::damaged, "top object");
    expectError(with(good.size() - 1, 7), Kind::damaged,
                "outside the file; the file may be cut short");
    expectError(with(9, 3), Kind::damaged, "a reference to object 3 of 3");
    expectError(with(9, 2), Kind::damaged, "key is not a string");
    expectError(with(11, '\x5e'), Kind::damaged, "more bytes than the file holds");
    expectError(with(12, '\x80'), Kind::damaged, "ASCII");
    expectError(with(13, '\x15'), Kind::damaged, "16 bytes");
    expectError(with(13, '\x24'), Kind::damaged, "neither 4 nor 8");
    expectError(with(13, '\x70'), Kind::damaged, "unknown kind");
    expectError(with(17, '\xff'), Kind::damaged, "outside the objects");
}

TEST(KWPropertyList, RefusesObjectsThatOverlap) {
    // Each object is the same long array: read one by one they would fill any memory.
    std::string file = "bplist00\xaf\x11\x01\x00";
    file[11] = '\0';
    file.resize(12);
    file += std::string(256, '\0');
    const std::size_t table = file.size();
    file += std::string(200, '\x08');
    file += std::string(6, '\0') + "\x01\x01" + std::string(7, '\0') + "\xc8" +
            std::string(8, '\0') + std::string(6, '\0') + static_cast<char>(table >> 8) +
            static_cast<char>(table & 0xff);
    expectError(file, Kind::damaged, "overlap");
}

TEST(KWPropertyList, NothingCutOrFlippedBreaksIt) {
    const KWData good = RandomPropertyList(7, {}).make(3).data(Format::binary);
    const KWData xml = RandomPropertyList(7, {}).make(3).data(Format::xml);
    for (const KWData& whole : {good, xml}) {
        const std::size_t step = std::max<std::size_t>(1, whole.size() / 3000);
        for (std::size_t place = 0; place < whole.size(); place += step) {
            KWData cut(whole.begin(), whole.begin() + std::ptrdiff_t(place));
            KWData flipped = whole;
            flipped[place] ^= static_cast<std::byte>(1u << (place % 8));
            for (const KWData& bad : {cut, flipped}) {
                try {
                    const KWPropertyList list = KWPropertyList::parse(bad);
                    EXPECT_LE(list.nodeCount(), whole.size());
                } catch (const KWArchiveError&) {
                }
            }
        }
    }
}

TEST(KWPropertyList, LibplistReadsWhatIsWritten) {
    for (unsigned seed = 0; seed < 60; ++seed) {
        const KWPropertyList list =
            RandomPropertyList(seed,
                               {.single = false, .unsignedInteger = false, .nonFinite = false})
                .make();
        const std::string binary = stringOf(list.data(Format::binary));
        plist_t read = nullptr;
        plist_from_bin(binary.data(), static_cast<std::uint32_t>(binary.size()), &read);
        ASSERT_NE(read, nullptr) << seed;
        char* again = nullptr;
        std::uint32_t size = 0;
        plist_to_bin(read, &again, &size);
        const KWData bytes = dataOf({again, size});
        EXPECT_TRUE(textOf(KWPropertyList::parse(bytes), false) == textOf(list, false)) << seed;
        plist_to_bin_free(again);
        plist_free(read);
    }
}

TEST(KWPropertyList, PlistlibReadsWhatIsWrittenAndTheReverse) {
    // Python's reader gets one form and writes the other; to it 0.0 and -0.0 are one number,
    // and a line end in XML is always a line feed.
    const TemporaryFolder folder;
    for (unsigned seed = 0; seed < 12; ++seed) {
        const KWPropertyList list =
            RandomPropertyList(
                seed,
                {.single = false, .uid = false, .negativeZero = false, .carriageReturn = false})
                .make();
        const std::string name = std::to_string(seed);
        list.writeToFile(folder.path() / (name + ".plist"), Format::binary);
        list.writeToFile(folder.path() / (name + ".xml"), Format::xml);
    }
    const std::string script =
        "import plistlib,glob,os,sys\n"
        "for p in glob.glob(sys.argv[1]+'/*.plist')+glob.glob(sys.argv[1]+'/*.xml'):\n"
        "  v=plistlib.load(open(p,'rb'))\n"
        "  plistlib.dump(v,open(p+'.b','wb'),fmt=plistlib.FMT_BINARY)\n"
        "  plistlib.dump(v,open(p+'.x','wb'),fmt=plistlib.FMT_XML)\n";
    ASSERT_EQ(runPython(script, folder.path()), 0);
    for (unsigned seed = 0; seed < 12; ++seed) {
        const KWPropertyList list =
            RandomPropertyList(
                seed,
                {.single = false, .uid = false, .negativeZero = false, .carriageReturn = false})
                .make();
        for (const char* form : {".plist", ".xml"})
            for (const char* again : {".b", ".x"}) {
                const auto path = folder.path() / (std::to_string(seed) + form + again);
                EXPECT_TRUE(textOf(KWPropertyList::parseFile(path)) == textOf(list)) << path;
            }
    }
}

TEST(KWPropertyList, AFileThatIsNotThereIsAnErrorOfReading) {
    const TemporaryFolder folder;
    try {
        KWPropertyList::parseFile(folder.path() / "nothing");
        FAIL();
    } catch (const KWArchiveError& error) {
        EXPECT_EQ(error.kind(), Kind::cannotRead);
        EXPECT_EQ(error.reason(), "No such file or directory");
        EXPECT_EQ(error.file(), (folder.path() / "nothing").string());
    }
}
