#include <KWFoundation/KWKeyedArchiver.h>

#include <apps/common/KWConversionLosses.h>
#include <gtest/gtest.h>
#include <samples/Samples.h>
#include <tests/ArchiveBuilder.h>
#include <tests/DocumentTestSupport.h>

namespace {

using Form = KWDocument::Form;
using Strings = std::vector<std::string>;

Strings losses(const KWDocument& document, Form form, const KWClassVersions& versions = {}) {
    const KWConversionLosses found = kwConversionLosses(document, form, versions);
    EXPECT_EQ(found.refusals, Strings{});
    return found.losses;
}

Strings refusals(const KWDocument& document, Form form) {
    return kwConversionLosses(document, form).refusals;
}

KWDocument sequentialOf(const KWDocument& document) {
    return KWDocument::read(document.data(Form::sequential));
}

std::shared_ptr<KWKeyFramedChannel> keyFramed(const std::string& name) {
    auto channel = std::make_shared<KWKeyFramedChannel>(name);
    for (int k = 0; k < 3; ++k)
        channel->setValueForKeyframe(1, KWTime(static_cast<float>(k)));
    return channel;
}

} // namespace

TEST(KWConversionLosses, AnOrdinaryDocumentLosesNothing) {
    for (const Form form : {Form::binary, Form::xml, Form::sequential}) {
        EXPECT_EQ(losses(bouncingBall(), form), Strings{});
        EXPECT_EQ(losses(lightShow(), form), Strings{});
        EXPECT_EQ(losses(sequentialOf(bouncingBall()), form), Strings{});
    }
}

TEST(KWConversionLosses, AnOwnerThatReadingDoesNotRestoreIsLost) {
    const auto lamp = elementWith("Lamp", {constantChannel("level", 1), constantChannel("hue", 1)});
    const auto other = elementWith("Other", {constantChannel("x", 1)});
    const KWDocument document = documentWith({lamp, other});
    EXPECT_EQ(losses(document, Form::sequential), Strings{});
    (*lamp->channelArray()->ungroupedChannels())[1]->setOwner(other.get());
    EXPECT_EQ(losses(document, Form::sequential),
              Strings{"Lamp/hue: its owner: a sequential archive has none"});
    EXPECT_EQ(losses(document, Form::binary), Strings{});
}

TEST(KWConversionLosses, TheSignOfZeroIsLostInASequentialArchive) {
    const auto curve = keyFramed("curve");
    curve->setValueForKeyframe(-0.0F, KWTime(1));
    curve->setValueForKeyframe(-0.0F, KWTime(2));
    const auto early = std::make_shared<KWKeyFramedChannel>("early");
    early->setValueForKeyframe(1, KWTime(-0.0F));
    const KWDocument document =
        documentWith({elementWith("Lamp", {constantChannel("level", -0.0F), curve, early})});
    EXPECT_EQ(losses(document, Form::sequential),
              (Strings{"Lamp/level: the value is -0: a sequential archive has no sign of 0",
                       "Lamp/curve: 2 values of -0 (the first of them key 2): a sequential archive "
                       "has no sign of 0",
                       "Lamp/early: 1 time of -0 (key 1): a sequential archive has no sign of 0"}));
    EXPECT_EQ(losses(document, Form::xml), Strings{});
}

TEST(KWConversionLosses, ReservedFloatsAreLostInAKeyedArchive) {
    const auto curve = keyFramed("curve");
    HJHermiteParam shape;
    shape.reserved[5] = 1;
    curve->modifyHermiteParamForKeyframe(&shape, KWTime(1));
    const KWDocument document = sequentialOf(documentWith({elementWith("Lamp", {curve})}));
    const Strings expected{
        "Lamp/curve: the reserved floats of 1 shape (key 2): a keyed archive has none"};
    EXPECT_EQ(losses(document, Form::binary), expected);
    EXPECT_EQ(losses(document, Form::xml), expected);
    EXPECT_EQ(losses(document, Form::sequential), Strings{});
    EXPECT_EQ(losses(document, Form::sequential, {{"KWKeyFramedChannel", 0}}),
              Strings{"Lamp/curve: the reserved floats of 1 shape (key 2): a keyframed channel of "
                      "version 0 has none"});
}

TEST(KWConversionLosses, AShapeOfAnOddLengthGetsTheRightOne) {
    const auto curve = keyFramed("curve");
    curve->setValueHermiteValueForKeyframe(1, KWData(35), KWTime(1));
    EXPECT_EQ(losses(documentWith({elementWith("Lamp", {curve})}), Form::sequential),
              Strings{"Lamp/curve: the shape of key 2 has 35 bytes; an archive has 36 of each"});
}

TEST(KWConversionLosses, ObjectsOfUnknownClassesAreRefused) {
    ArchiveBuilder builder;
    const auto lamp = builder.addInstance({"HostLamp", "NSObject"}, {});
    const auto other = builder.addInstance({"HostLamp", "NSObject"}, {});
    const auto odd = builder.addInstance({"HostChannel", "KWChannel", "NSObject"}, {});
    const auto element = builder.addElement("Lamp", builder.addChannelArray({odd}));
    const KWDocument keyed =
        KWDocument::read(builder.finishWithRoot(builder.addList({lamp, element, other})));
    EXPECT_EQ(refusals(keyed, Form::xml), Strings{});
    EXPECT_EQ(refusals(keyed, Form::sequential),
              (Strings{"2 objects of the class \"HostLamp\", which is not known here, with keys "
                       "that a sequential archive does not have",
                       "1 object of the class \"HostChannel\", which is not known here, with keys "
                       "that a sequential archive does not have"}));

    const auto inner = streamObject({"Inner", "NSObject"}, {0, 0}, {});
    const auto outer =
        streamObject({"Outer", "NSObject"}, {0, 0}, {streamGroup("@i", {inner, KWNumber(1)})});
    const KWDocument stream = KWDocument::read(KWArchiver::archivedDataWithRootObject(outer));
    EXPECT_EQ(refusals(stream, Form::sequential), Strings{});
    EXPECT_EQ(refusals(stream, Form::binary).size(), 2U);
}

TEST(KWConversionLosses, AChannelOfUnequalListsIsRefused) {
    ArchiveBuilder builder;
    const KWDocument document = KWDocument::read(
        builder.finishWithRoot(builder.addKeyFramedChannel("curve", {{0, 1}, {0}, {}})));
    for (const Form form : {Form::binary, Form::sequential})
        EXPECT_EQ(refusals(document, form),
                  Strings{"curve: keys, values and shapes are not equally many"});
}

TEST(KWConversionLosses, WhatStandsBesideTheRootIsLost) {
    ArchiveBuilder builder;
    const auto channel = builder.reference(builder.addConstantChannel("x", 1));
    const auto text = builder.reference(builder.addString("text"));
    const KWDocument keyed = KWDocument::read(
        builder.finish({{"stage", channel}, {"title", text}, {"count", builder.list.addInt(3)}}));
    EXPECT_EQ(losses(keyed, Form::sequential),
              (Strings{"the root has no name in a sequential archive; here it is called \"stage\"",
                       "the value \"title\" at the top has no place in a sequential archive",
                       "the value \"count\" at the top has no place in a sequential archive"}));
    EXPECT_EQ(losses(keyed, Form::xml), Strings{});

    KWArchiver archiver;
    archiver.encodeRootObject(constantChannel("x", 1));
    const float scale = 2;
    archiver.encodeValueOfObjCTypeAt("f", &scale);
    const KWDocument stream = KWDocument::read(archiver.archiverData());
    EXPECT_EQ(losses(stream, Form::sequential), Strings{});
    EXPECT_EQ(losses(stream, Form::binary),
              Strings{"the value of the types \"f\" behind the root has no place in a keyed "
                      "archive"});
}

TEST(KWConversionLosses, NumbersOutsideChannelsLoseTheirSignToo) {
    const auto list = KWArchiveValue::mutableArray({KWNumber(-0.0F), KWNumber(-0.0), KWNumber(0)});
    KWKeyedArchiver archiver;
    archiver.encodeObjectForKey(list, "root");
    const KWDocument document = KWDocument::read(archiver.finishEncoding());
    EXPECT_EQ(losses(document, Form::sequential),
              Strings{"2 numbers -0 outside channels: a sequential archive has no sign of 0"});
}

TEST(KWConversionLosses, OlderVersionsLoseWhatTheyDidNotHave) {
    const auto curve = keyFramed("curve");
    curve->setKeyFrameChannelMode(KWKeyFrameModeStep);
    curve->setRepeatMode(KWRepeatModeCycle);
    HJHermiteParam shape;
    shape.tension = 1;
    curve->modifyHermiteParamForKeyframe(&shape, KWTime(2));
    const auto level = constantChannel("level", 1);
    level->setUnitType(KWUnitTypeLength);
    const KWDocument document = documentWith({elementWith("Lamp", {curve, level})});
    EXPECT_EQ(losses(document, Form::sequential, {{"KWKeyFramedChannel", 0}}),
              (Strings{"Lamp/curve: 1 shape (key 3): a keyframed channel of version 0 has none",
                       "Lamp/curve: its mode: a keyframed channel of version 0 has none",
                       "Lamp/curve: its repeat mode: a keyframed channel of version 0 has none"}));
    EXPECT_EQ(losses(document, Form::sequential, {{"KWChannel", 1}}),
              Strings{"Lamp/level: its unit type: a channel of version 1 has none"});
}

TEST(KWConversionLosses, OlderVersionsLoseGroups) {
    const auto level = constantChannel("level", 1);
    level->setUnitType(KWUnitTypeLength);
    const KWDocument document = documentWith({elementWith("Lamp", {}, {level})});
    EXPECT_EQ(losses(document, Form::sequential, {{"KWChannel", 0}}),
              (Strings{"Lamp/Group/level: its link to its group: a channel of version 0 has none",
                       "Lamp/Group/level: its unit type: a channel of version 0 has none"}));
    // What is lost as a whole is not told in parts.
    EXPECT_EQ(losses(document, Form::sequential, {{"KWChannel", 0}, {"KWChannelArray", 0}}),
              Strings{"Lamp: the group \"Group\" with its 1 channel: an array of version 0 has no "
                      "groups"});
}

TEST(KWConversionLosses, TheExpressionsOfAnElementGoIntoEveryForm) {
    const KWDocument document = documentWith({elementWith(
        "Lamp", {algebricChannel("a", "ln(t)"), std::make_shared<KWAlgebricChannel>("none")},
        {algebricChannel("b", "abs(t) - 1")})});
    for (const Form form : {Form::binary, Form::xml, Form::sequential})
        EXPECT_EQ(losses(document, form), Strings{});
}

TEST(KWConversionLosses, AnElementOfVersion0LosesWhatPrintsAsAnotherExpression) {
    const KWDocument document = documentWith({elementWith(
        "Lamp",
        {algebricChannel("same", "2 * T + 1"), algebricChannel("bars", "abs(t)"),
         algebricChannel("left", "t - 1"), algebricChannel("digits", "1.2345678*t"),
         algebricChannel("exp", "EXP(-t)"), std::make_shared<KWAlgebricChannel>("none")},
        {algebricChannel("ln", "ln(t)")})});
    EXPECT_EQ(losses(document, Form::sequential, {{"KWElement", 0}}),
              (Strings{"Lamp/bars: its expression \"abs(t)\": what a sequential archive has of it, "
                       "\"|t|\", cannot be read again",
                       "Lamp/left: its expression \"t - 1\": what a sequential archive has of it, "
                       "\"-1\", is another expression",
                       "Lamp/digits: its expression \"1.2345678*t\": what a sequential archive has "
                       "of it, \"1.23457*t\", is another expression",
                       "Lamp/Group/ln: its expression \"ln(t)\": what a sequential archive has of "
                       "it, \"log(t)\", is another expression"}));
    // What is lost with its group is not told again.
    const Strings all =
        losses(document, Form::sequential, {{"KWElement", 0}, {"KWChannelArray", 0}});
    EXPECT_EQ(all.size(), 4U);
    EXPECT_TRUE(all.front().starts_with("Lamp: the group \"Group\""));
}

TEST(KWConversionLosses, AnExpressionOutsideOfAnElementIsLostInAKeyedArchive) {
    const auto channel = algebricChannel("a", "2*t");
    const auto group = std::make_shared<KWChannelGroup>("Group");
    group->addChannel(algebricChannel("b", "ln(t)"));
    const auto array = std::make_shared<KWChannelArray>();
    array->addChannel(algebricChannel("c", "t-1"));
    const auto read = [](const KWArchiveValue& root) {
        return KWDocument::read(KWArchiver::archivedDataWithRootObject(root));
    };
    const KWDocument document = read(KWArchiveValue::mutableArray({channel, group, array}));
    // What a sequential archive has read is what counts.
    EXPECT_EQ(
        losses(document, Form::binary),
        (Strings{"a: its expression \"2*t\": a keyed archive keeps only those of channels in "
                 "a KWElement",
                 "Group/b: its expression \"log(t)\": a keyed archive keeps only those of "
                 "channels in a KWElement",
                 "c: its expression \"-1\": a keyed archive keeps only those of channels in a "
                 "KWElement"}));
    EXPECT_EQ(losses(document, Form::sequential),
              Strings{"Group/b: its expression \"log(t)\": what a sequential archive has of it, "
                      "\"ln(t)\", is another expression"});
    EXPECT_EQ(losses(KWDocument::read(document.data(Form::xml)), Form::sequential), Strings{});
}

TEST(KWConversionLosses, AnExpressionInAHostsObjectIsFoundToo) {
    const auto array = std::make_shared<KWChannelArray>();
    array->addChannel(algebricChannel("a", "ln(t)"));
    const auto lone = algebricChannel("lone", "ln(t)");
    const auto host = streamObject({"Host", "NSObject"}, {0, 0},
                                   {streamGroup("@", {array}), streamGroup("@", {lone})});
    const KWDocument document = KWDocument::read(KWArchiver::archivedDataWithRootObject(host));
    const std::string loss = ": its expression \"log(t)\": what a sequential archive has of it, "
                             "\"ln(t)\", is another expression";
    EXPECT_EQ(losses(document, Form::sequential),
              (Strings{"a" + loss, "\"lone\" outside of the elements" + loss}));
}

TEST(KWConversionLosses, ALongExpressionIsToldByItsBeginning) {
    std::string text;
    for (int k = 0; k < 500; ++k)
        text += "\u03c0+";
    const Strings found =
        losses(documentWith({elementWith("Lamp", {algebricChannel("long", text + "t")})}),
               Form::sequential, {{"KWElement", 0}});
    ASSERT_EQ(found.size(), 1U);
    EXPECT_LT(found[0].size(), 350U);
    EXPECT_TRUE(found[0].starts_with("Lamp/long: its expression \"\u03c0+"));
    EXPECT_NE(found[0].find("\u03c0+...\": what"), std::string::npos) << found[0];
}
