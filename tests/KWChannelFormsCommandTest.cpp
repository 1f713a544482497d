#include <KWFoundation/KWKeyedArchiver.h>

#include <tests/ArchiveBuilder.h>
#include <tests/CommandRunner.h>
#include <tests/DocumentTestSupport.h>
#include <tests/SequentialBytes.h>
#include <tests/Thoroughness.h>

#include <nlohmann/json.hpp>

using nlohmann::json;

namespace {

/// What follows the first line.
std::string body(const std::string& text) {
    return text.substr(text.find('\n') + 1);
}

} // namespace

/// Documents in the sequential form, and from one form into the other.
class KWChannelForms : public KWChannelCommand {
  protected:
    std::string sequential(const std::string& document) {
        const std::string file = path("doc.stream");
        const Result result =
            run({"convert", document, "--to", "sequential", "--lossy", "-o", file});
        EXPECT_EQ(result.code, 0) << result.err;
        return file;
    }
    json evaluated(const std::string& document) {
        return json::parse(
            output({"eval", document, "--from", "-1", "--to", "12", "--step", "0.13", "--json"}));
    }
};

TEST_F(KWChannelForms, RoundTripsKeepAllValuesAndModes) {
    for (const std::string& document : {ball, show, museum}) {
        const std::string stream = sequential(document);
        EXPECT_EQ(evaluated(stream), evaluated(document));
        EXPECT_CONTAINS(output({"info", stream}), "sequential archive");
        EXPECT_EQ(json::parse(output({"info", "--json", stream}))["format"], "sequential");
        if (document != museum) {
            EXPECT_EQ(body(output({"info", stream})), body(output({"info", document})));
        }
        output({"convert", stream, "--to", "binary", "-o", path("back.kwdoc")});
        EXPECT_EQ(evaluated(path("back.kwdoc")), evaluated(document));
        EXPECT_EQ(body(output({"info", path("back.kwdoc")})), body(output({"info", stream})));
        output({"convert", path("back.kwdoc"), "--to", "sequential", "-o", path("again.stream")});
        EXPECT_EQ(contentsOf(path("again.stream")), contentsOf(stream));
    }
}

TEST_F(KWChannelForms, FromXMLEqualTextsAreWrittenOnce) {
    output({"convert", show, "--to", "xml", "-o", path("show.xml")});
    output({"convert", path("show.xml"), "-o", path("back.kwdoc")});
    const std::string bytes = contentsOf(path("back.kwdoc"));
    EXPECT_EQ(bytes.find("NSObject"), bytes.rfind("NSObject"));
    EXPECT_EQ(evaluated(path("back.kwdoc")), evaluated(show));
}

TEST_F(KWChannelForms, BakesASequentialDocument) {
    const std::vector<std::string> range = {"--from", "0", "--to", "3", "--rate", "24"};
    std::vector<std::string> first = {"bake", ball};
    std::vector<std::string> second = {"bake", sequential(ball)};
    first.insert(first.end(), range.begin(), range.end());
    second.insert(second.end(), range.begin(), range.end());
    EXPECT_EQ(output(second), output(first));
}

TEST_F(KWChannelForms, WhatWouldBeLostNeedsLossy) {
    const Result refused =
        run({"convert", museum, "--to", "sequential", "-o", path("museum.stream")});
    EXPECT_EQ(refused.code, 1);
    EXPECT_EQ(lines(refused.err).size(), 2U) << refused.err;
    EXPECT_CONTAINS(refused.err, museum + ": would be lost: Values/minus zero: the value is -0");
    EXPECT_CONTAINS(lines(refused.err).back(), "1 thing would be lost; --lossy");
    EXPECT_TRUE(filesLeft().empty());

    const Result done =
        run({"convert", museum, "--to", "sequential", "--lossy", "-o", path("museum.stream")});
    EXPECT_EQ(done.code, 0);
    EXPECT_EQ(lines(done.err).size(), 1U) << done.err;
    EXPECT_CONTAINS(done.err, ": lost: Values/minus zero");
    EXPECT_CONTAINS(output({"info", path("museum.stream")}), "64 channels");
}

TEST_F(KWChannelForms, WhatCannotGoIsRefusedWithLossyToo) {
    ArchiveBuilder builder;
    const auto lamp = builder.addInstance({"HostLamp", "NSObject"}, {});
    writeFile(path("host.plist"), stringOf(builder.finishWithRoot(lamp)));
    for (const char* document : {"host.plist", "irregular"}) {
        const std::string file = document == std::string("irregular") ? irregular : path(document);
        const Result result =
            run({"convert", file, "--to", "sequential", "--lossy", "-o", path("out")});
        EXPECT_EQ(result.code, 1);
        EXPECT_CONTAINS(result.err, file + ": cannot be written: ");
        EXPECT_CONTAINS(lines(result.err).back(), "not converted");
    }
    EXPECT_EQ(filesLeft(), std::vector<std::string>{"host.plist"});

    const auto host = streamObject({"Host", "NSObject"}, {0, 0}, {});
    writeFile(path("host.stream"), stringOf(KWArchiver::archivedDataWithRootObject(host)));
    const Result keyed = run({"convert", path("host.stream"), "--to", "xml", "-o", "-"});
    EXPECT_EQ(keyed.code, 1);
    EXPECT_EQ(keyed.out, "");
    EXPECT_CONTAINS(keyed.err, "1 object of the class \"Host\"");
    EXPECT_EQ(output({"convert", path("host.stream"), "--to", "sequential", "-o", "-"}),
              contentsOf(path("host.stream")));
}

TEST_F(KWChannelForms, WritesOlderVersionsOfClasses) {
    std::vector<std::string> command = {"convert",
                                        ball,
                                        "--to",
                                        "sequential",
                                        "--class-version",
                                        "KWChannel=1",
                                        "--class-version",
                                        "KWKeyFramedChannel=0",
                                        "-o",
                                        path("old.stream")};
    const Result refused = run(command);
    EXPECT_EQ(refused.code, 1);
    EXPECT_CONTAINS(refused.err, "Ball/radius: its unit type: a channel of version 1 has none");
    EXPECT_CONTAINS(refused.err, "Ball/Position/x: its repeat mode: a keyframed channel of");
    command.emplace_back("--lossy");
    EXPECT_EQ(run(command).code, 0);
    const std::string dump = output({"dump", path("old.stream")});
    EXPECT_CONTAINS(dump, "KWKeyFramedChannel v0 : KWChannel v1 : NSObject v0\n");
    EXPECT_CONTAINS(output({"info", path("old.stream")}), "8 channels");
}

TEST_F(KWChannelForms, ClassVersionsThatMakeNoSenseAreWrongUse) {
    const auto use = [&](const std::string& version, const char* form) {
        return failure(2, {"convert", ball, "--to", form, "--class-version", version, "-o", "-"});
    };
    EXPECT_CONTAINS(use("KWChannel", "sequential"), "a class and its version");
    EXPECT_CONTAINS(use("KWChannel=x", "sequential"), "a class and its version");
    EXPECT_CONTAINS(use("KWChannel=-1", "sequential"), "a class and its version");
    EXPECT_CONTAINS(use("Nothing=1", "sequential"), "there is no class \"Nothing\"");
    EXPECT_CONTAINS(use("KWChannel=3", "sequential"), "the newest version of KWChannel is 2");
    EXPECT_CONTAINS(use("KWChannel=1", "binary"), "needs --to sequential");
}

TEST_F(KWChannelForms, DumpShowsAStreamAsItStands) {
    const std::string expected = "@ = [1] KWKeyFramedChannel v1 : KWChannel v2 : NSObject v0\n"
                                 "  @ = [2] NSString v1 : NSObject v0 { + \"gain\" }\n"
                                 "  @ = nil\n"
                                 "  f = 0.5\n"
                                 "  i = 300\n"
                                 "  d = 2\n"
                                 "  c = 1\n"
                                 "  @ = [3] NSMutableArray v0 : NSArray v0 : NSObject v0\n"
                                 "    i = 4\n"
                                 "    @ = [4] NSNumber v0 : NSValue v0 : NSObject v0 { * \"f\", f "
                                 "1.5 }\n"
                                 "    @ = [5] NSNumber v0 : NSValue v0 : NSObject v0 { * \"f\", f "
                                 "7 }\n"
                                 "    @ = -> [2] NSString\n"
                                 "    @ = -> [1] KWKeyFramedChannel\n"
                                 "  @ = [6] NSData v0 : NSObject v0 { i 3, [3c] 3 bytes <616263> "
                                 "}\n";
    writeFile(path("little"), stringOf(exampleStream(false)));
    writeFile(path("big"), stringOf(exampleStream(true)));
    EXPECT_EQ(output({"dump", path("little")}),
              "sequential archive, little-endian, 6 objects\n" + expected);
    EXPECT_EQ(output({"dump", path("big")}),
              "sequential archive, big-endian, 6 objects\n" + expected);
}

TEST_F(KWChannelForms, DumpShowsValuesOfEveryType) {
    const auto stream = bytesOf(littleEndianHeader +
                                "84 01 \"@\" 84 84 84 04 \"Host\" 07 85"
                                "84 0c \"{_Point=ff}i\" 01 02 03"
                                "84 04 \"[3f]\" 01 02 03"
                                "84 05 \"[20i]\" 0102030405060708090a0b0c0d0e0f1011121314"
                                "84 0c \"[2{_Pair=@i}\" \"]\" 85 05 85 06"
                                "84 01 \":\" 84 04 \"sel:\""
                                "84 01 \"#\" 93"
                                "84 01 \"+\" 02 ff00"
                                "84 05 \"[40c]\" "
                                "00000000000000000000000000000000000000000000000000000000000000"
                                "000000000000000000"
                                "86"
                                "84 01 \"i\" 05");
    std::string bytes = stringOf(stream);
    // The type is thirteen letters long.
    bytes.replace(bytes.find("\x0c[2{"), 1, "\x0d");
    writeFile(path("types"), bytes);
    EXPECT_EQ(output({"dump", path("types")}),
              "sequential archive, little-endian, 1 object\n"
              "@ = [1] Host v7\n"
              "  {_Point=ff}i = {1, 2}, 3\n"
              "  [3f] = {1, 2, 3}\n"
              "  [20i] = {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16, ... 20 in all}\n"
              "  [2{_Pair=@i}] = {{nil, 5}, {nil, 6}}\n"
              "  : = \"sel:\"\n"
              "  # = class Host v7\n"
              "  + = 2 bytes <ff00>\n"
              "  [40c] = 40 bytes <" +
                  std::string(64, '0') +
                  "...>\n"
                  "i = 5\n");
}

TEST_F(KWChannelForms, DumpPutsWhatIsDeepFurtherDown) {
    KWArchiveValue list = KWArchiveValue::mutableArray({});
    for (int k = 0; k < 4; ++k)
        list = KWArchiveValue::mutableArray({list});
    writeFile(path("deep"), stringOf(KWArchiver::archivedDataWithRootObject(list)));
    const std::string chain = " NSMutableArray v0 : NSArray v0 : NSObject v0";
    EXPECT_EQ(output({"dump", "--depth", "2", path("deep")}),
              "sequential archive, little-endian, 5 objects\n"
              "@ = [1]" +
                  chain + "\n  i = 1\n  @ = [2]" + chain +
                  "\n    i = 1\n    @ = -> further down: [3] NSMutableArray\n[3]" + chain +
                  "\n  i = 1\n  @ = [4]" + chain + "\n    i = 1\n    @ = [5]" + chain +
                  " { i 0 }\n");
    EXPECT_EQ(output({"dump", "--objects", path("deep")}),
              "sequential archive, little-endian, 5 objects\n@ = -> [1] NSMutableArray\n[1]" +
                  chain + "\n  i = 1\n  @ = -> [2] NSMutableArray\n[2]" + chain +
                  "\n  i = 1\n  @ = -> [3] NSMutableArray\n[3]" + chain +
                  "\n  i = 1\n  @ = -> [4] NSMutableArray\n[4]" + chain +
                  "\n  i = 1\n  @ = -> [5] NSMutableArray\n[5]" + chain + " { i 0 }\n");
}

TEST_F(KWChannelForms, ValidateIsQuietAboutADocumentInOrder) {
    for (const std::string& document : {ball, show, sequential(ball)}) {
        const Result result = run({"validate", document});
        EXPECT_EQ(result.code, 0);
        EXPECT_EQ(result.out, "");
        EXPECT_CONTAINS(result.err, document + ": ");
        EXPECT_CONTAINS(result.err, " channels, no faults\n");
    }
}

TEST_F(KWChannelForms, ValidateShowsEachFaultOfTheIrregularMuseum) {
    const Result result = run({"validate", irregular});
    EXPECT_EQ(result.code, 1);
    EXPECT_EQ(result.err, "kwchannel: " + irregular + ": 9 channels, 18 faults\n");
    EXPECT_EQ(lines(result.out).size(), 18U);
    for (const char* line :
         {"equal times: key 3: its time 1 is that of the key before too",
          "unsorted: key 3: its time 1 is before 2, that of the key before",
          "no time: key 2: its time nan is not finite", "fewer values: 3 keys, but 2 values",
          "fewer shapes: 3 keys, but 1 shape", "more values: 2 keys, but 3 values",
          "no shapes at all: 2 keys, but 0 shapes",
          "odd shapes: key 1: its shape has 35 bytes instead of 36",
          "odd shapes: key 2: its shape has 40 bytes instead of 36",
          "in order: it does not name the group it is in"})
        EXPECT_CONTAINS(result.out, std::string("Museum/Wing/") + line + "\n");
}

TEST_F(KWChannelForms, ValidateAnswersJSON) {
    const Result result = run({"validate", "--json", irregular});
    EXPECT_EQ(result.code, 1);
    const json faults = json::parse(result.out);
    EXPECT_EQ(faults["file"], irregular);
    EXPECT_EQ(faults["channels"], 9);
    ASSERT_EQ(faults["faults"].size(), 18U);
    EXPECT_EQ(faults["faults"][2], (json{{"severity", "fault"},
                                         {"place", "Museum/Wing/equal times"},
                                         {"key", 3},
                                         {"text", "its time 1 is that of the key before too"}}));
    EXPECT_EQ(json::parse(run({"validate", "--json", ball}).out)["faults"], json::array());
}

TEST_F(KWChannelForms, ValidateTellsFaultsFromWarnings) {
    const Result result = run({"validate", museum});
    EXPECT_EQ(result.code, 1);
    EXPECT_CONTAINS(result.err, ": 64 channels, 31 faults, 3 warnings\n");
    EXPECT_CONTAINS(result.out, "warning: Names/group/slash/same#1: other channels have");
    EXPECT_CONTAINS(result.out, "Values/not a number: its value nan is not finite\n");
}

TEST_F(KWChannelForms, CutStreamsAreOneErrorThatNamesThem) {
    const std::string whole = contentsOf(sequential(ball));
    const std::string file = path("cut.stream");
    for (std::size_t size = 0; size < whole.size(); size += placeStep * (1 + whole.size() / 40)) {
        writeFile(file, whole.substr(0, size));
        for (const char* command : {"info", "dump", "validate"})
            EXPECT_CONTAINS(failure(1, {command, file}), file);
        EXPECT_CONTAINS(failure(1, {"convert", file, "-o", path("out")}), file);
    }
    EXPECT_EQ(filesLeft().size(), 2U);
}

TEST_F(KWChannelForms, FlippedBitsAreAnErrorOrAnotherDocument) {
    const std::string whole = contentsOf(sequential(ball));
    const std::string file = path("flipped.stream");
    int damaged = 0;
    for (std::size_t i = 0; i < whole.size(); i += placeStep * (1 + whole.size() / 120)) {
        std::string bytes = whole;
        bytes[i] = static_cast<char>(bytes[i] ^ (1 << (i % 8)));
        writeFile(file, bytes);
        for (const char* command : {"info", "dump", "validate"}) {
            const Result result = run({command, file});
            if (result.code == 0)
                continue;
            ++damaged;
            EXPECT_EQ(result.code, 1) << "byte " << i << ": " << result.err;
            EXPECT_CONTAINS(lines(result.err).back(), file);
        }
    }
    EXPECT_GT(damaged, 0);
}
