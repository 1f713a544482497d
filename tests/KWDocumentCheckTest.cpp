#include <apps/common/KWDocumentCheck.h>
#include <gtest/gtest.h>
#include <samples/Samples.h>
#include <tests/ArchiveBuilder.h>
#include <tests/DocumentTestSupport.h>

#include <limits>

namespace {

using Severity = KWDocumentFault::Severity;
using Strings = std::vector<std::string>;
using Keys = ArchiveBuilder::Keys;

constexpr float notANumber = std::numeric_limits<float>::quiet_NaN();
constexpr float infinite = std::numeric_limits<float>::infinity();

Strings lines(const std::vector<KWDocumentFault>& faults) {
    Strings text;
    for (const KWDocumentFault& fault : faults)
        text.push_back((fault.severity == Severity::warning ? "warning: " : "") + fault.line());
    return text;
}

Strings check(const KWDocument& document) {
    return lines(kwCheckDocument(document));
}

/// Of a channel "c" alone.
Strings checkKeys(const Keys& keys, std::int32_t mode = 0, std::int32_t repeat = 0) {
    ArchiveBuilder builder;
    return check(KWDocument::read(
        builder.finishWithRoot(builder.addKeyFramedChannel("c", keys, mode, repeat))));
}

const auto neutral = ArchiveBuilder::neutralKeys;

} // namespace

TEST(KWDocumentCheck, FindsNothingInADocumentInOrder) {
    for (const auto form : {KWDocument::Form::binary, KWDocument::Form::sequential}) {
        EXPECT_EQ(check(KWDocument::read(bouncingBall().data(form))), Strings{});
        EXPECT_EQ(check(KWDocument::read(lightShow().data(form))), Strings{});
    }
    EXPECT_EQ(check(KWDocument()), Strings{});
}

TEST(KWDocumentCheck, CountsKeysValuesAndShapes) {
    EXPECT_EQ(checkKeys({{0, 1}, {0}, {}}),
              (Strings{"c: 2 keys, but 1 value", "c: 2 keys, but 0 shapes"}));
    Keys more = neutral({0}, {1, 2});
    more.shapes.resize(2, more.shapes.front());
    EXPECT_EQ(checkKeys(more), (Strings{"c: 1 key, but 2 values", "c: 1 key, but 2 shapes"}));
    EXPECT_EQ(checkKeys(neutral({}, {})), Strings{});
}

TEST(KWDocumentCheck, WantsRisingTimes) {
    EXPECT_EQ(checkKeys(neutral({0, 2, 1, 1}, {0, 0, 0, 0})),
              (Strings{"c: key 3: its time 1 is before 2, that of the key before",
                       "c: key 4: its time 1 is that of the key before too"}));
    EXPECT_EQ(checkKeys(neutral({0, -0.0F}, {0, 0})),
              Strings{"c: key 2: its time -0 is that of the key before too"});
}

TEST(KWDocumentCheck, WantsFiniteNumbers) {
    EXPECT_EQ(checkKeys(neutral({0, notANumber, infinite}, {-infinite, 0, notANumber})),
              (Strings{"c: key 2: its time nan is not finite",
                       "c: key 3: its time inf is not "
                       "finite",
                       "c: key 1: its value -inf is not finite",
                       "c: key 3: its value nan is not finite"}));
    const auto curve = std::make_shared<KWKeyFramedChannel>("curve");
    const HJHermiteParam shape{.tension = infinite, .bias = notANumber, .continuity = -infinite};
    curve->setValueForKeyframe(0, KWTime(0));
    curve->setValueHermiteValueForKeyframe(1, KWKeyFramedChannel::hermiteDataFrom(&shape),
                                           KWTime(1));
    EXPECT_EQ(check(documentWith({elementWith("Lamp", {curve, constantChannel("v", infinite)})})),
              (Strings{"Lamp/curve: key 2: its tension inf is not finite",
                       "Lamp/curve: key 2: its bias nan is not finite",
                       "Lamp/curve: key 2: its continuity -inf is not finite",
                       "Lamp/v: its value inf is not finite"}));
}

TEST(KWDocumentCheck, WantsKnownCodes) {
    for (const std::int32_t good : {0, 1, 2})
        EXPECT_EQ(checkKeys(neutral({0}, {0}), good, good), Strings{});
    EXPECT_EQ(checkKeys(neutral({0}, {0}), 3, -1),
              (Strings{"c: mode 3 is not known", "c: repeat mode -1 is not known"}));
    ArchiveBuilder builder;
    EXPECT_EQ(
        check(KWDocument::read(builder.finishWithRoot(builder.addConstantChannel("c", 1, 7)))),
        Strings{"c: unit type 7 is not known"});
}

TEST(KWDocumentCheck, WantsShapesOfTheRightLength) {
    const auto curve = std::make_shared<KWKeyFramedChannel>("curve");
    curve->setValueHermiteValueForKeyframe(1, KWData(35), KWTime(1));
    EXPECT_EQ(check(documentWith({elementWith("Lamp", {curve})})),
              Strings{"Lamp/curve: the shape of key 1 has 35 bytes"});

    ArchiveBuilder builder;
    Keys odd = neutral({0, 1}, {0, 1});
    odd.shapes[1].resize(40);
    const auto one = builder.addKeyFramedChannel("one", odd);
    const auto same = builder.addKeyFramedChannel("same", neutral({0}, {1}));
    const auto other = builder.addKeyFramedChannel("same", odd);
    const KWData data = builder.finishWithRoot(builder.addList({one, same, other}));
    const KWDocument document = KWDocument::read(data);
    const auto faults = lines(kwCheckStoredShapes(data, document));
    ASSERT_EQ(faults.size(), 2U);
    EXPECT_EQ(faults[0], "one: key 2: its shape has 40 bytes instead of 36");
    EXPECT_TRUE(faults[1].starts_with("same (object ")) << faults[1];
}

TEST(KWDocumentCheck, WantsGroupsAndChannelsToNameEachOther) {
    const auto lamp = elementWith("Lamp", {constantChannel("a", 1)},
                                  {constantChannel("b", 1), constantChannel("c", 1)});
    const auto array = lamp->channelArray();
    const auto group = array->channelGroupAtIndex(0);
    const auto stray = std::make_shared<KWChannelGroup>("stray");
    (*array->ungroupedChannels())[0]->setChannelGroup(group);
    (*group->channels())[0]->setChannelGroup(nullptr);
    (*group->channels())[1]->setChannelGroup(stray);
    EXPECT_EQ(check(documentWith({lamp})),
              (Strings{"Lamp/a: it names a group, but stands in none",
                       "Lamp/Group/b: it does not name the group it is in",
                       "Lamp/Group/c: the group it names is not the one it is in"}));
}

TEST(KWDocumentCheck, WantsTheElementToOwnItsChannels) {
    const auto lamp = elementWith("Lamp", {constantChannel("a", 1), constantChannel("b", 1)});
    const auto other = elementWith("Other", {});
    const auto list = lamp->channelArray()->ungroupedChannels();
    (*list)[0]->setOwner(nullptr);
    (*list)[1]->setOwner(other.get());
    EXPECT_EQ(check(documentWith({lamp, other})),
              (Strings{"Lamp/a: it has no owner", "Lamp/b: its owner is not its element"}));
}

TEST(KWDocumentCheck, WantsEachChannelAndArrayAtOnePlace) {
    const auto channel = constantChannel("a", 1);
    const auto lamp = elementWith("Lamp", {channel}, {channel});
    EXPECT_EQ(check(documentWith({lamp})),
              (Strings{"Lamp/a: it names a group, but stands in none",
                       "Lamp/Group/a: is the same channel as \"Lamp/a\""}));

    ArchiveBuilder builder;
    const auto array = builder.addChannelArray({builder.addConstantChannel("x", 1)});
    const auto list =
        builder.addList({builder.addElement("a", array), builder.addElement("b", array)});
    EXPECT_EQ(check(KWDocument::read(builder.finishWithRoot(list))),
              (Strings{"a/x: its owner is not its element",
                       "b: shares its channels with the element \"a\""}));
}

TEST(KWDocumentCheck, TellsOfNilInLists) {
    const auto lamp = elementWith("Lamp", {constantChannel("a", 1)}, {constantChannel("b", 1)});
    lamp->channelArray()->ungroupedChannels()->push_back(nullptr);
    lamp->channelArray()->channelGroupAtIndex(0)->channels()->insert(
        lamp->channelArray()->channelGroupAtIndex(0)->channels()->begin(), nullptr);
    lamp->channelArray()->channelGroups()->push_back(nullptr);
    EXPECT_EQ(check(documentWith({lamp})),
              (Strings{"Lamp: channel 2 of the list is nil",
                       "Lamp/Group: channel 1 of the list is nil", "Lamp: group 2 is nil"}));
    EXPECT_EQ(check(KWDocument::read(KWArchiver::archivedDataWithRootObject(
                  KWArchiveValue::mutableArray({constantChannel("a", 1), nullptr})))),
              Strings{"element 2 of its list is nil"});
    EXPECT_EQ(check(KWDocument::read(KWArchiver::archivedDataWithRootObject(nullptr))),
              Strings{"its root is nil"});
}

TEST(KWDocumentCheck, WarnsOfNamesThatPeopleTrip) {
    const auto lamp = elementWith(
        "Lamp", {constantChannel("1", 1), constantChannel("1", 1), constantChannel("", 1)});
    lamp->channelArray()->addGroupWithName("");
    lamp->channelArray()->addGroupWithName("G");
    lamp->channelArray()->addGroupWithName("G");
    EXPECT_EQ(check(documentWith({lamp, elementWith("", {})})),
              (Strings{"warning: Lamp: group 1 has no name",
                       "warning: Lamp: several groups are called \"G\"",
                       "warning: Lamp/1#1: other channels have the same path",
                       "warning: Lamp/1#2: other channels have the same path",
                       "warning: Lamp: the channel has no name",
                       "warning: (KWElement): the element has no name"}));
}

TEST(KWDocumentCheck, WarnsOfListsThatAreNotThereAndOfUnknownClasses) {
    const auto lamp = elementWith("Lamp", {constantChannel("a", 1)});
    const KWDocument old = KWDocument::read(
        documentWith({lamp}).data(KWDocument::Form::sequential, {{"KWChannelArray", 0}}));
    EXPECT_EQ(check(old), Strings{"warning: Lamp: has no list of groups, not even an empty one"});

    ArchiveBuilder builder;
    const auto odd = builder.addInstance({"HostChannel", "KWChannel", "NSObject"},
                                         {{"name", builder.reference(builder.addString("odd"))}});
    EXPECT_EQ(check(KWDocument::read(builder.finishWithRoot(odd))),
              Strings{"warning: odd: its class \"HostChannel\" is not known here, so it is not "
                      "looked into"});
}

TEST(KWDocumentCheck, LooksIntoExpressions) {
    const KWDocument document = documentWith(
        {elementWith("Lamp", {algebricChannel("a", "ln(t)")}, {algebricChannel("b", "T")})});
    for (const auto form : {KWDocument::Form::binary, KWDocument::Form::sequential})
        EXPECT_EQ(check(KWDocument::read(document.data(form))), Strings{});
    EXPECT_EQ(
        check(documentWith({elementWith("Lamp", {std::make_shared<KWAlgebricChannel>("a")})})),
        Strings{"warning: Lamp/a: it has no expression, so it is 0 at every time"});
}

TEST(KWDocumentCheck, TellsOfAnExpressionThatAKeyedArchiveHasNotBroughtBack) {
    const KWDocument bare =
        KWDocument::read(KWArchiver::archivedDataWithRootObject(algebricChannel("a", "2*t")));
    EXPECT_EQ(check(bare), Strings{});
    EXPECT_EQ(check(KWDocument::read(bare.data(KWDocument::Form::binary))),
              Strings{"warning: a: it has no expression, so it is 0 at every time"});
}

TEST(KWDocumentCheck, WantsAnInterpreterWithAKnownMode) {
    ArchiveBuilder builder;
    const auto odd = builder.addAlgebricChannel("odd", 2);
    const auto none = builder.addInstance({"KWAlgebricChannel", "KWChannel", "NSObject"},
                                          {{"name", builder.reference(builder.addString("none"))},
                                           {"unitType", builder.list.addInt(32)}});
    EXPECT_EQ(check(KWDocument::read(builder.finishWithRoot(builder.addList({odd, none})))),
              (Strings{"odd: mode 2 of its expression is not known",
                       "warning: odd: it has no expression, so it is 0 at every time",
                       "none: it has no interpreter, so it takes no expression"}));
}
