#include <KWBase/KWAlgebricChannel.h>
#include <KWBase/KWConstantChannel.h>
#include <KWBase/KWKeyFramedChannel.h>
#include <KWFoundation/KWUnknownObject.h>

#include <apps/common/KWDocument.h>
#include <gtest/gtest.h>
#include <tests/ArchiveBuilder.h>

#include <algorithm>
#include <filesystem>
#include <fstream>

namespace {

using Kind = KWArchiveError::Kind;
using Number = ArchiveBuilder::Number;
constexpr auto binary = KWDocument::Form::binary;
constexpr auto xml = KWDocument::Form::xml;

std::shared_ptr<KWElement>
element(const std::string& name, const std::vector<std::pair<std::string, std::string>>& channels) {
    auto made = std::make_shared<KWElement>(name);
    for (const auto& [group, channel] : channels)
        made->addChannelToGroupNamed(
            channelWithNameInitialValueColor<KWConstantChannel>(channel, 1, 0), group);
    return made;
}

std::vector<std::string> paths(const KWDocument& document) {
    std::vector<std::string> list;
    for (const KWDocument::Place& place : document.channels())
        list.push_back(place.path);
    return list;
}

std::vector<std::string> elementNames(const KWDocument& document) {
    std::vector<std::string> names;
    for (const KWDocument::Element& each : document.elements())
        names.push_back(each.name);
    return names;
}

using Strings = std::vector<std::string>;

Strings candidates(const std::vector<KWDocument::Place>& places, const std::string& address) {
    try {
        KWDocument::placeAt(places, address);
    } catch (const KWAddressError& error) {
        return error.candidates();
    }
    ADD_FAILURE() << address << " names a channel";
    return {};
}

KWAddressError::Reason reason(const std::vector<KWDocument::Place>& places,
                              const std::string& address) {
    try {
        KWDocument::placeAt(places, address);
    } catch (const KWAddressError& error) {
        return error.reason();
    }
    throw std::logic_error(address + " names a channel");
}

/// Replaces the channel at an address by an algebraic one, which must be possible.
std::shared_ptr<KWChannel> replaced(KWDocument& document, const std::string& address) {
    const auto places = document.channels();
    const auto made = std::make_shared<KWAlgebricChannel>();
    EXPECT_TRUE(document.replaceChannel(KWDocument::placeAt(places, address), made)) << address;
    return made;
}

/// An object tree as text, the same for archives of the same contents whatever their numbers.
std::string contents(const KWData& data) {
    const KWPropertyList list = KWPropertyList::parse(data);
    const auto objects = list.children(list.valueForKey(list.root(), "$objects"));
    std::vector<std::uint64_t> seen;
    std::string text;
    const auto show = [&](auto&& self, KWPropertyList::Index node) -> void {
        switch (list.kind(node)) {
        case KWPropertyList::Kind::uid: {
            const std::uint64_t uid = list.uidValue(node);
            const auto known = std::find(seen.begin(), seen.end(), uid);
            text += "#" + std::to_string(known - seen.begin());
            if (known == seen.end()) {
                seen.push_back(uid);
                self(self, objects[uid]);
            }
            break;
        }
        case KWPropertyList::Kind::dictionary: {
            const auto children = list.children(node);
            std::vector<std::pair<std::string, KWPropertyList::Index>> entries;
            for (std::size_t i = 0; i < children.size() / 2; ++i)
                entries.emplace_back(list.stringValue(children[i]),
                                     children[children.size() / 2 + i]);
            std::sort(entries.begin(), entries.end());
            text += "{";
            for (const auto& [key, value] : entries) {
                text += key + "=";
                self(self, value);
                text += ";";
            }
            text += "}";
            break;
        }
        case KWPropertyList::Kind::array:
            text += "[";
            for (const KWPropertyList::Index child : list.children(node))
                self(self, child);
            text += "]";
            break;
        case KWPropertyList::Kind::string:
            text += "'" + std::string(list.stringValue(node)) + "'";
            break;
        case KWPropertyList::Kind::real:
            text += (list.isSingle(node) ? "f" : "d") + std::to_string(list.realValue(node)) + " ";
            break;
        case KWPropertyList::Kind::boolean:
            text += list.boolValue(node) ? "yes " : "no ";
            break;
        case KWPropertyList::Kind::data:
            text += "<" + std::to_string(list.dataValue(node).size()) + ">";
            break;
        default:
            text += std::to_string(list.intValue(node)) + " ";
        }
    };
    show(show, list.valueForKey(list.root(), "$top"));
    return text;
}

/// A host's document: a dictionary-like object with two lamps of an unknown class, one of which is
/// referred to twice, and settings of all kinds.
KWData foreignDocument(ArchiveBuilder& builder) {
    const Number parent = builder.reserve();
    const auto lamp = [&](std::string_view name, float value) {
        const Number array = builder.addChannelArray({builder.addConstantChannel("level", value)});
        return builder.addInstance({"HostLamp", "HostThing", "NSObject"},
                                   {{"name", builder.reference(builder.addString(name))},
                                    {"parent", builder.reference(parent)},
                                    {"lightChannels", builder.reference(array)},
                                    {"watts", builder.list.addFloat(40.5F)},
                                    {"isOn", builder.list.addBool(true)},
                                    {"serial", builder.list.addInt(-1)}});
    };
    const Number first = lamp("left", 1);
    const Number second = lamp("right", 2);
    const Number list = builder.addList({first, second, first});
    builder.setObject(parent, builder.instance(builder.addClass({"HostStage", "NSObject"}),
                                               {{"lamps", builder.reference(list)},
                                                {"selected", builder.reference(second)},
                                                {"nothing", builder.reference(0)}}));
    return builder.finish({{"stage", builder.reference(parent)},
                           {"windowCount", builder.list.addInt(3)},
                           {"scale", builder.list.addFloat(1.5F)},
                           {"title", builder.list.addString("main")},
                           {"isOpen", builder.list.addBool(false)}});
}

class KWDocumentFiles : public testing::Test {
  protected:
    KWDocumentFiles() {
        std::string name = testing::TempDir() + "kwdocumentXXXXXX";
        folder = mkdtemp(name.data());
    }
    ~KWDocumentFiles() override { std::filesystem::remove_all(folder); }
    std::filesystem::path folder;
};

} // namespace

TEST(KWDocument, ANewOneIsAnEmptyList) {
    const KWDocument document;
    EXPECT_TRUE(document.elements().empty());
    EXPECT_TRUE(document.channels().empty());
    EXPECT_TRUE(KWDocument::read(document.data(binary)).elements().empty());
}

TEST(KWDocument, ItsElementsComeBackInOrder) {
    for (const auto format : {binary, xml}) {
        KWDocument document;
        document.addElement(element("Ball", {{"", "size"}, {"Position", "x"}, {"Position", "y"}}));
        document.addElement(element("Lamp", {{"", "level"}}));
        const KWDocument read = KWDocument::read(document.data(format), "it");
        EXPECT_EQ(read.form(), format);
        EXPECT_EQ(read.file(), "it");
        EXPECT_EQ(elementNames(read), (Strings{"Ball", "Lamp"}));
        EXPECT_EQ(paths(read),
                  (Strings{"Ball/size", "Ball/Position/x", "Ball/Position/y", "Lamp/level"}));
    }
}

TEST(KWDocument, ItsElementsShareOneUndoManager) {
    KWDocument document;
    document.addElement(element("Ball", {{"", "size"}}));
    const KWDocument read = KWDocument::read(document.data(binary));
    for (const KWDocument* each : {static_cast<const KWDocument*>(&document), &read}) {
        const auto channel = each->channels().front().channel;
        EXPECT_EQ(channel->undoManager(), each->undoManager().get());
    }
}

TEST(KWDocument, TakesElementsIntoAListOnly) {
    KWDocument document;
    EXPECT_THROW(document.addElement(nullptr), std::invalid_argument);
    ArchiveBuilder builder;
    KWDocument single =
        KWDocument::read(builder.finishWithRoot(builder.addConstantChannel("alone", 1)));
    EXPECT_THROW(single.addElement(element("Ball", {})), std::logic_error);
}

TEST(KWDocument, OpensABareArrayGroupOrChannelAsAnElement) {
    ArchiveBuilder builder;
    const Number channel = builder.addConstantChannel("alone", 2);
    const KWDocument one = KWDocument::read(builder.finishWithRoot(channel));
    EXPECT_EQ(paths(one), Strings{"alone"});
    EXPECT_EQ(one.elements().front().className, "KWConstantChannel");

    ArchiveBuilder grouped;
    const Number group = grouped.addGroup("Colour", {grouped.addConstantChannel("red", 1)});
    EXPECT_EQ(paths(KWDocument::read(grouped.finishWithRoot(group))), Strings{"Colour/red"});

    ArchiveBuilder whole;
    const Number array =
        whole.addChannelArray({whole.addConstantChannel("level", 1)},
                              {whole.addGroup("Colour", {whole.addConstantChannel("red", 1)})});
    EXPECT_EQ(paths(KWDocument::read(whole.finishWithRoot(array))),
              (Strings{"level", "Colour/red"}));

    ArchiveBuilder list;
    const Number both =
        list.addList({list.addConstantChannel("level", 1),
                      list.addGroup("Colour", {list.addConstantChannel("red", 1)})});
    EXPECT_EQ(paths(KWDocument::read(list.finishWithRoot(both))), (Strings{"level", "Colour/red"}));
}

TEST(KWDocument, FindsTheElementsOfUnknownHosts) {
    ArchiveBuilder builder;
    const KWDocument document = KWDocument::read(foreignDocument(builder));
    EXPECT_EQ(elementNames(document), (Strings{"left", "right"}));
    EXPECT_EQ(document.elements().front().className, "HostLamp");
    EXPECT_EQ(paths(document), (Strings{"left/level", "right/level"}));
}

TEST(KWDocument, WritesBackWhatItDoesNotKnow) {
    ArchiveBuilder builder;
    const KWData data = foreignDocument(builder);
    for (const auto format : {binary, xml}) {
        const KWData written = KWDocument::read(data).data(format);
        if (format == binary) {
            EXPECT_EQ(contents(written), contents(data));
        }
        const KWDocument again = KWDocument::read(written);
        EXPECT_EQ(paths(again), (Strings{"left/level", "right/level"}));
    }
}

TEST(KWDocument, KeepsAnEditInAHostsDocument) {
    ArchiveBuilder builder;
    const KWDocument document = KWDocument::read(foreignDocument(builder));
    const auto places = document.channels();
    KWDocument::placeAt(places, "right/level").channel->setValueForTime(9.25F, KWTime(0));
    const auto read = KWDocument::read(document.data(binary)).channels();
    EXPECT_EQ(KWDocument::placeAt(read, "right/level").channel->valueForTime(KWTime(0)), 9.25F);
    EXPECT_EQ(KWDocument::placeAt(read, "left/level").channel->valueForTime(KWTime(0)), 1.0F);
}

TEST(KWDocument, TellsApartTheArraysOfOneObject) {
    ArchiveBuilder builder;
    const Number a = builder.addChannelArray({builder.addConstantChannel("x", 1)});
    const Number b = builder.addChannelArray({builder.addConstantChannel("x", 2)});
    const Number host = builder.addInstance({"Host", "NSObject"},
                                            {{"name", builder.reference(builder.addString("rig"))},
                                             {"arms", builder.reference(a)},
                                             {"legs", builder.reference(b)}});
    EXPECT_EQ(paths(KWDocument::read(builder.finishWithRoot(host))),
              (Strings{"rig.arms/x", "rig.legs/x"}));
}

TEST(KWDocument, FindsElementsInsideElements) {
    ArchiveBuilder builder;
    const auto host = [&](std::string_view name, ArchiveBuilder::Fields more) {
        more.emplace_back("name", builder.reference(builder.addString(name)));
        more.emplace_back("channels", builder.reference(builder.addChannelArray(
                                          {builder.addConstantChannel("x", 1)})));
        return builder.addInstance({"Host", "NSObject"}, std::move(more));
    };
    const Number inner = host("inner", {});
    const Number outer = host("outer", {{"child", builder.reference(inner)}});
    EXPECT_EQ(elementNames(KWDocument::read(builder.finishWithRoot(outer))),
              (Strings{"outer", "inner"}));
}

TEST(KWDocument, ANamelessHostHasNoPartInThePath) {
    ArchiveBuilder builder;
    const Number array = builder.addChannelArray({builder.addConstantChannel("x", 1)});
    const Number host =
        builder.addInstance({"Host", "NSObject"}, {{"name", builder.list.addInt(7)},
                                                   {"channels", builder.reference(array)}});
    EXPECT_EQ(paths(KWDocument::read(builder.finishWithRoot(host))), Strings{"x"});
}

TEST(KWDocument, ListsSharedArraysOnce) {
    ArchiveBuilder builder;
    const Number array = builder.addChannelArray({builder.addConstantChannel("x", 1)});
    const Number list =
        builder.addList({builder.addElement("a", array), builder.addElement("b", array)});
    const KWDocument document = KWDocument::read(builder.finishWithRoot(list));
    EXPECT_EQ(elementNames(document), (Strings{"a", "b"}));
    EXPECT_EQ(paths(document), Strings{"a/x"});
}

TEST(KWDocument, NumbersChannelsOfTheSamePath) {
    KWDocument document;
    document.addElement(element("Lamp", {{"", "level"}, {"", "level"}, {"", "other"}}));
    EXPECT_EQ(paths(document), (Strings{"Lamp/level#1", "Lamp/level#2", "Lamp/other"}));
    const auto places = document.channels();
    EXPECT_EQ(KWDocument::placeAt(places, "Lamp/level#2").channel, places[1].channel);
    EXPECT_EQ(KWDocument::placeAt(places, "level#1").channel, places[0].channel);
    EXPECT_EQ(candidates(places, "level"), (Strings{"Lamp/level#1", "Lamp/level#2"}));
    EXPECT_EQ(candidates(places, "Lamp/level"), (Strings{"Lamp/level#1", "Lamp/level#2"}));
}

TEST(KWDocument, FindsAChannelByPathTrailingPartOrName) {
    KWDocument document;
    document.addElement(element("Ball", {{"Position", "x"}, {"Position", "y"}, {"", "a/b"}}));
    document.addElement(element("Lamp", {{"Position", "x"}}));
    const auto places = document.channels();
    const auto path = [&](const std::string& address) {
        return KWDocument::placeAt(places, address).path;
    };
    EXPECT_EQ(path("Ball/Position/x"), "Ball/Position/x");
    EXPECT_EQ(path("Position/y"), "Ball/Position/y");
    EXPECT_EQ(path("y"), "Ball/Position/y");
    EXPECT_EQ(path("a/b"), "Ball/a/b");
    EXPECT_EQ(path("b"), "Ball/a/b");
    EXPECT_EQ(candidates(places, "x"), (Strings{"Ball/Position/x", "Lamp/Position/x"}));
    EXPECT_EQ(reason(places, "x"), KWAddressError::Reason::ambiguous);
    EXPECT_EQ(reason(places, "Position/z"), KWAddressError::Reason::notFound);
    EXPECT_EQ(candidates(places, "Position/x"), (Strings{"Ball/Position/x", "Lamp/Position/x"}));
}

TEST(KWDocument, AWholePathWinsOverATrailingPart) {
    KWDocument document;
    document.addElement(element("", {{"", "x"}}));
    document.addElement(element("Ball", {{"", "x"}}));
    const auto places = document.channels();
    EXPECT_EQ(KWDocument::placeAt(places, "x").path, "x");
}

TEST(KWDocument, NamesTheNearestChannelsForOneThatIsNotThere) {
    KWDocument document;
    document.addElement(element("Ball", {{"", "rotation"}, {"", "size"}}));
    const auto places = document.channels();
    EXPECT_EQ(candidates(places, "rotatoin"), Strings{"Ball/rotation"});
    EXPECT_EQ(candidates(places, "ROT"), Strings{"Ball/rotation"});
    EXPECT_EQ(candidates(places, "quite something else"), Strings{});
    EXPECT_EQ(candidates(places, ""), Strings{});
}

TEST(KWDocument, SaysWhyAChannelIsIrregular) {
    using Keys = ArchiveBuilder::Keys;
    constexpr float notANumber = std::numeric_limits<float>::quiet_NaN();
    const auto why = [](const Keys& keys) {
        ArchiveBuilder builder;
        const KWDocument document =
            KWDocument::read(builder.finishWithRoot(builder.addKeyFramedChannel("c", keys)));
        return kwIrregularity(*document.channels().front().channel);
    };
    const auto neutral = ArchiveBuilder::neutralKeys;
    EXPECT_EQ(why(neutral({0, 1, 2}, {0, 1, 2})), "");
    EXPECT_EQ(why(neutral({}, {})), "");
    EXPECT_EQ(why(neutral({0, 1, 1}, {0, 1, 2})), "keys 2 and 3 share the time 1");
    EXPECT_EQ(why(neutral({0, 2, 1.5F}, {0, 1, 2})), "key 3 at 1.5 stands behind a later one");
    EXPECT_EQ(why(neutral({notANumber}, {0})), "the time of key 1 is not a number");
    EXPECT_EQ(why(neutral({0, 1}, {0})), "keys, values and shapes are not equally many");
    EXPECT_EQ(why({{0}, {1}, {}}), "keys, values and shapes are not equally many");
    EXPECT_EQ(kwIrregularity(KWConstantChannel()), "");
}

TEST(KWDocument, SaysWhichShapeIsOdd) {
    KWKeyFramedChannel channel;
    channel.setValueHermiteValueForKeyframe(1, KWKeyFramedChannel::hermiteData(), KWTime(0));
    channel.setValueHermiteValueForKeyframe(1, KWData(35), KWTime(1));
    EXPECT_EQ(kwIrregularity(channel), "the shape of key 2 has 35 bytes");
}

TEST(KWDocument, KnowsChannelsOfUnknownKinds) {
    ArchiveBuilder builder;
    const Number odd = builder.addInstance(
        {"HostChannel", "KWChannel", "NSObject"},
        {{"name", builder.reference(builder.addString("odd"))}, {"wave", builder.list.addInt(3)}});
    const Number list = builder.addElement(
        "Lamp", builder.addChannelArray({odd, builder.addConstantChannel("level", 1)}));
    const KWData data = builder.finishWithRoot(builder.addList({list}));
    const KWDocument document = KWDocument::read(data);
    const auto places = document.channels();
    ASSERT_EQ(places.size(), 2U);
    EXPECT_EQ(places[0].path, "Lamp/odd");
    EXPECT_TRUE(kwIsOfUnknownKind(*places[0].channel));
    EXPECT_EQ(kwClassName(*places[0].channel), "HostChannel");
    EXPECT_FALSE(kwIsOfUnknownKind(*places[1].channel));
    EXPECT_NE(contents(document.data(binary)).find("wave=3"), std::string::npos);
}

TEST(KWDocument, CannotBeWrittenWithAChannelThatCannot) {
    ArchiveBuilder builder;
    const KWDocument document = KWDocument::read(
        builder.finishWithRoot(builder.addKeyFramedChannel("c", {{0, 1}, {0}, {}})), "bad.kwdoc");
    try {
        document.data(binary);
        FAIL() << "it has been written";
    } catch (const KWArchiveError& error) {
        EXPECT_EQ(error.kind(), Kind::unsupported);
        EXPECT_EQ(error.file(), "bad.kwdoc");
        EXPECT_EQ(error.reason(), "Key-value mismatch");
    }
}

TEST(KWDocument, LongChainsOfHostObjectsNestNoCalls) {
    ArchiveBuilder builder;
    Number next = builder.addString("end");
    for (int i = 0; i < 900; ++i)
        next = builder.addInstance({"Host", "NSObject"}, {{"next", builder.reference(next)}});
    const KWDocument document = KWDocument::read(builder.finishWithRoot(next));
    EXPECT_TRUE(document.elements().empty());
}

TEST(KWDocument, RefusesWhatIsNoArchive) {
    const std::string text = "not an archive at all, but long enough to have a trailer anyway";
    const auto bytes = std::as_bytes(std::span(text));
    EXPECT_THROW(KWDocument::read(bytes, "it"), KWArchiveError);
    EXPECT_THROW(KWDocument::read({}, "it"), KWArchiveError);
}

TEST_F(KWDocumentFiles, SavesAndOpensAFile) {
    KWDocument document;
    document.addElement(element("Ball", {{"", "size"}}));
    const auto file = folder / "ball.kwdoc";
    document.save(file, binary);
    const KWDocument read = KWDocument::open(file);
    EXPECT_EQ(read.file(), file.string());
    EXPECT_EQ(paths(read), Strings{"Ball/size"});
    EXPECT_EQ(read.data(binary), document.data(binary));
}

TEST_F(KWDocumentFiles, LeavesTheOldFileWhenSavingFails) {
    const auto file = folder / "old.kwdoc";
    std::ofstream(file) << "old";
    ArchiveBuilder builder;
    const KWDocument document = KWDocument::read(
        builder.finishWithRoot(builder.addKeyFramedChannel("c", {{0, 1}, {0}, {}})));
    EXPECT_THROW(document.save(file, binary), KWArchiveError);
    std::string text;
    std::ifstream(file) >> text;
    EXPECT_EQ(text, "old");
    EXPECT_THROW(document.save(folder / "missing" / "new.kwdoc", binary), KWArchiveError);
}

TEST_F(KWDocumentFiles, AMissingFileCannotBeRead) {
    try {
        KWDocument::open(folder / "none.kwdoc");
        FAIL() << "it opened";
    } catch (const KWArchiveError& error) {
        EXPECT_EQ(error.kind(), Kind::cannotRead);
    }
}

TEST(KWDocument, ReplacesAChannelOfAnElement) {
    KWDocument document;
    document.addElement(element("Ball", {{"", "size"}, {"Position", "x"}}));
    const auto before = document.channels();
    before[1].channel->setUnitType(KWUnitTypeLength);
    before[1].channel->setChannelColorIndex(4);
    const auto made = replaced(document, "x");
    EXPECT_EQ(paths(document), (Strings{"Ball/size", "Ball/Position/x"}));
    EXPECT_EQ(document.channels()[1].channel, made);
    EXPECT_EQ(made->unitType(), KWUnitTypeLength);
    EXPECT_EQ(made->channelColorIndex(), 4);
    EXPECT_EQ(made->channelGroup(), before[1].group);
    EXPECT_EQ(made->owner(), before[0].channel->owner());
    document.undoManager()->undo();
    EXPECT_EQ(document.channels()[1].channel, before[1].channel);
    EXPECT_FALSE(document.replaceChannel(before[0], nullptr));
    EXPECT_FALSE(document.replaceChannel(before[0], before[0].channel));
    EXPECT_FALSE(document.replaceChannel(before[0], before[1].channel)) << "it has an owner";
}

TEST(KWDocument, ReplacesChannelsOutsideOfElements) {
    ArchiveBuilder builder;
    KWDocument hosts = KWDocument::read(foreignDocument(builder));
    const auto host = replaced(hosts, "right/level");
    EXPECT_EQ(host->name(), "level");
    EXPECT_EQ(hosts.channels()[1].channel, host);

    // Its channels do not name the group that they stand in.
    ArchiveBuilder bare;
    const Number group = bare.addGroup("Colour", {bare.addConstantChannel("red", 1)});
    const Number array =
        bare.addChannelArray({}, {bare.addGroup("Size", {bare.addConstantChannel("height", 1)})});
    const Number list = bare.addList({bare.addConstantChannel("a", 1),
                                      bare.addConstantChannel("b", 1, KWUnitTypeAngle), group,
                                      array, bare.addElement("Lamp", array)});
    KWDocument lists = KWDocument::read(bare.finishWithRoot(list));
    for (const char* address : {"a", "b", "red", "height"}) {
        const auto made = replaced(lists, address);
        EXPECT_EQ(made->name(), address);
        const auto places = lists.channels();
        EXPECT_EQ(KWDocument::placeAt(places, address).channel, made);
    }
    EXPECT_EQ(lists.channels()[1].channel->unitType(), KWUnitTypeAngle);
    EXPECT_EQ(paths(KWDocument::read(lists.data(xml))), paths(lists));

    ArchiveBuilder alone;
    KWDocument one = KWDocument::read(alone.finishWithRoot(alone.addConstantChannel("alone", 1)));
    const auto places = one.channels();
    EXPECT_EQ(one.channels().size(), 1U);
    replaced(one, "alone");
    EXPECT_EQ(one.elements().front().className, "KWAlgebricChannel");
    EXPECT_FALSE(one.replaceChannel(places[0], std::make_shared<KWAlgebricChannel>()))
        << "it is no longer there";
}
