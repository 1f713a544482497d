#include <tests/ArchiveBuilder.h>
#include <tests/CommandRunner.h>

#include <nlohmann/json.hpp>

namespace {

using nlohmann::json;
using Number = ArchiveBuilder::Number;

const char* const committedSamples[] = {"bouncing-ball.kwdoc", "light-show.kwdoc",
                                        "hard-curves-museum.kwdoc", "irregular-museum.kwdoc"};

} // namespace

TEST_F(KWChannelCommand, DumpShowsObjectsOnceWithTheirWidths) {
    ArchiveBuilder builder;
    const Number self = builder.reserve();
    const Number shared =
        builder.addInstance({"Inner", "NSObject"}, {{"single", builder.list.addFloat(0.5F)},
                                                    {"wide", builder.list.addDouble(0.5)},
                                                    {"whole", builder.list.addInt(-5)},
                                                    {"flag", builder.list.addBool(true)},
                                                    {"none", builder.reference(0)},
                                                    {"lost", builder.reference(999)}});
    const KWData bytes(40, std::byte{0xab});
    builder.setObject(
        self, builder.instance(builder.addClass({"Outer", "Middle", "NSObject"}),
                               {{"me", builder.reference(self)},
                                {"first", builder.reference(shared)},
                                {"second", builder.reference(shared)},
                                {"bytes", builder.list.addData(bytes)},
                                {"text", builder.reference(builder.addString("a \"b\"\n"))}}));
    writeFile(path("odd.plist"), stringOf(builder.finishWithRoot(self)));

    const std::string dump = output({"dump", path("odd.plist")});
    EXPECT_CONTAINS(dump, "keyed archive, binary");
    EXPECT_CONTAINS(dump, "\n  root = [1] Outer : Middle : NSObject\n");
    EXPECT_CONTAINS(dump, "\n    me = -> [1] Outer : Middle : NSObject\n");
    EXPECT_CONTAINS(dump, "\n    first = [3] Inner : NSObject\n");
    EXPECT_CONTAINS(dump, "\n    second = -> [3] Inner : NSObject\n");
    EXPECT_CONTAINS(dump, "\n      single = float 0.5\n");
    EXPECT_CONTAINS(dump, "\n      wide = double 0.5\n");
    EXPECT_CONTAINS(dump, "\n      whole = -5\n");
    EXPECT_CONTAINS(dump, "\n      flag = true\n");
    EXPECT_CONTAINS(dump, "\n      none = nil\n");
    EXPECT_CONTAINS(dump, "\n      lost = [999] OUT OF RANGE\n");
    EXPECT_CONTAINS(dump, "    bytes = 40 bytes <abababab");
    EXPECT_CONTAINS(dump, "ab...>\n");
    EXPECT_CONTAINS(dump, "\"a \\\"b\\\"\\x0a\"\n");

    const std::string flat = output({"dump", "--objects", path("odd.plist")});
    EXPECT_CONTAINS(flat, "\n[0] \"$null\"\n");
    EXPECT_CONTAINS(flat, "\n[1] Outer : Middle : NSObject\n  me = -> [1]\n");
    EXPECT_CONTAINS(flat, "\n[3] Inner : NSObject\n");
}

TEST_F(KWChannelCommand, DumpShowsWhatIsNestedDeeplyFurtherDown) {
    ArchiveBuilder builder;
    Number next = builder.addString("the end");
    for (int i = 0; i < 100000; ++i)
        next = builder.addInstance({"Link", "NSObject"}, {{"next", builder.reference(next)}});
    writeFile(path("deep.plist"), stringOf(builder.finishWithRoot(next)));
    const std::string dump = output({"dump", path("deep.plist")});
    EXPECT_CONTAINS(dump, "\"the end\"");
    std::size_t longest = 0;
    for (const std::string& line : lines(dump))
        longest = std::max(longest, line.size());
    EXPECT_LT(longest, 200U);
    EXPECT_EQ(lines(output({"dump", "--depth", "5", path("deep.plist")})).size(),
              static_cast<std::size_t>(std::count(dump.begin(), dump.end(), '\n')) + 100000 / 5 -
                  100000 / 40);
}

TEST_F(KWChannelCommand, DumpRefusesAPropertyListThatIsNoArchive) {
    KWPropertyList list;
    list.setRoot(list.addString("hello"));
    writeFile(path("plain.plist"), stringOf(list.data(KWPropertyList::Format::binary)));
    EXPECT_CONTAINS(failure(1, {"dump", path("plain.plist")}), "no keyed archive");
    writeFile(path("text"), "hello");
    failure(1, {"dump", path("text")});
}

TEST_F(KWChannelCommand, EverySampleCanBeDumped) {
    for (const char* name : committedSamples) {
        EXPECT_CONTAINS(output({"dump", sample(name)}),
                        "KWKeyFramedChannel : KWChannel : NSObject");
        EXPECT_CONTAINS(output({"dump", "--objects", sample(name)}), "\n[1] ");
    }
}

TEST_F(KWChannelCommand, ConvertThereAndBackKeepsEveryValue) {
    for (const char* name : committedSamples) {
        output({"convert", sample(name), "-o", path("there.xml")});
        EXPECT_TRUE(contentsOf(path("there.xml")).starts_with("<?xml"));
        output({"convert", path("there.xml"), "-o", path("back.kwdoc")});
        EXPECT_TRUE(contentsOf(path("back.kwdoc")).starts_with("bplist00"));
        const json there = json::parse(output({"info", "--json", path("there.xml")}));
        const json back = json::parse(output({"info", "--json", path("back.kwdoc")}));
        const json first = json::parse(output({"info", "--json", sample(name)}));
        EXPECT_EQ(there["format"], "xml");
        EXPECT_EQ(there["elements"], first["elements"]);
        EXPECT_EQ(back["elements"], first["elements"]);
        if (std::string(name) == "irregular-museum.kwdoc")
            continue;
        const auto bake = [&](const std::string& file) {
            return output({"bake", file, "--from", "-0.75", "--to", "4", "--rate", "8"});
        };
        EXPECT_EQ(bake(path("back.kwdoc")), bake(sample(name)));
        EXPECT_EQ(bake(path("there.xml")), bake(sample(name)));
    }
}

TEST_F(KWChannelCommand, ConvertToTheSameFormKeepsTheDump) {
    output({"convert", museum, "-o", path("same.kwdoc")});
    EXPECT_EQ(output({"dump", path("same.kwdoc")}), output({"dump", museum}));
}

TEST_F(KWChannelCommand, ConvertChoosesTheFormByOptionOrEnding) {
    output({"convert", ball, "-o", path("a.kwdoc"), "--to", "xml"});
    EXPECT_TRUE(contentsOf(path("a.kwdoc")).starts_with("<?xml"));
    output({"convert", ball, "-o", path("b.xml"), "--to", "binary"});
    EXPECT_TRUE(contentsOf(path("b.xml")).starts_with("bplist00"));
    EXPECT_EQ(output({"convert", ball, "-o", "-", "--to", "xml"}), contentsOf(path("a.kwdoc")));
}

TEST_F(KWChannelCommand, AHostsDocumentIsReadAndConvertedWithAllItHolds) {
    ArchiveBuilder builder;
    const Number odd =
        builder.addInstance({"HostChannel", "KWChannel", "NSObject"},
                            {{"name", builder.reference(builder.addString("wave"))}});
    const Number array = builder.addChannelArray({builder.addConstantChannel("level", 2.5F), odd});
    const Number lamp = builder.addInstance({"HostLamp", "NSObject"},
                                            {{"name", builder.reference(builder.addString("Lamp"))},
                                             {"channels", builder.reference(array)},
                                             {"watts", builder.list.addFloat(40.5F)}});
    writeFile(path("host.plist"), stringOf(builder.finish({{"lamp", builder.reference(lamp)},
                                                           {"windows", builder.list.addInt(3)}})));

    const std::string info = output({"info", path("host.plist")});
    EXPECT_CONTAINS(info, "Lamp     HostLamp\n");
    EXPECT_CONTAINS(info, "HostChannel");
    EXPECT_CONTAINS(info, "of a class that is not known here");

    const Result all = run({"eval", path("host.plist"), "--at", "0"});
    EXPECT_EQ(all.code, 0);
    EXPECT_EQ(all.out, "Lamp/level  2.5\n");
    EXPECT_CONTAINS(all.err, "1 channel of unknown kinds left out");
    EXPECT_CONTAINS(failure(1, {"eval", path("host.plist"), "wave", "--at", "0"}),
                    "its class \"HostChannel\" is not known here");

    output({"convert", path("host.plist"), "-o", path("host.xml")});
    const std::string dump = output({"dump", path("host.xml")});
    EXPECT_CONTAINS(dump, "[3] HostChannel");
    EXPECT_CONTAINS(dump, "windows = 3\n");
    EXPECT_CONTAINS(dump, "40.5\n");
}

TEST_F(KWChannelCommand, ListsThatStandAtManyPlacesAreNotMultiplied) {
    // Each list holds the one before it twice: written out in full they would fill any memory.
    ArchiveBuilder builder;
    ArchiveBuilder::Index list = builder.list.addArray({});
    for (int i = 0; i < 60; ++i) {
        const ArchiveBuilder::Index twice[] = {list, list};
        list = builder.list.addArray(twice);
    }
    const Number host = builder.addInstance({"Host", "NSObject"}, {{"lists", list}});
    writeFile(path("many.plist"),
              stringOf(builder.finish({{"root", builder.reference(host)}, {"inlined", list}})));
    EXPECT_LT(lines(output({"dump", path("many.plist")})).size(), 200U);
    EXPECT_NE(run({"info", path("many.plist")}).code, -SIGKILL);
}
