#include "KeyFramedTestSupport.h"
#include "SequentialBytes.h"

#include <KWBase/KWChannelArray.h>
#include <KWBase/KWConstantChannel.h>
#include <KWFoundation/KWArchiveError.h>
#include <KWFoundation/KWArchiver.h>
#include <KWFoundation/KWLog.h>
#include <KWFoundation/KWUnarchiver.h>

#include <gtest/gtest.h>

#include <map>

// The classes of the model in sequential archives, against streams written out by hand.

namespace {

template <class T>
std::shared_ptr<T> read(const KWData& bytes) {
    KWUnarchiver it(bytes);
    auto object = std::dynamic_pointer_cast<T>(it.decodeObject().object());
    EXPECT_TRUE(it.isAtEnd());
    return object;
}

template <class T>
std::shared_ptr<T> read(const std::string& body, bool bigEndian = false) {
    return read<T>(sequentialStream(body, bigEndian));
}

KWData written(const KWArchiveValue& root, const std::map<std::string, std::int32_t>& older = {}) {
    KWArchiver archiver;
    for (const auto& [name, version] : older)
        archiver.setVersionForClassName(version, name);
    archiver.encodeRootObject(root);
    return archiver.archiverData();
}

KWData little(const std::string& body) {
    return sequentialStream(body, false);
}

/// What is logged while it lives.
class LogCatcher {
  public:
    LogCatcher()
        : _before(KWSetLogHandler([this](std::string_view line) { lines.emplace_back(line); })) {}
    ~LogCatcher() { KWSetLogHandler(_before); }
    LogCatcher(const LogCatcher&) = delete;
    LogCatcher& operator=(const LogCatcher&) = delete;

    std::vector<std::string> lines;

  private:
    KWLogHandler _before;
};

const std::string root = "84 84 08 \"NSObject\" 00 85 ";

/// A constant channel, its value 0.5, as of a version of KWChannel.
std::string gain(int version) {
    return "84 01 \"@\" 84 84 84 11 \"KWConstantChannel\" 00 84 84 09 \"KWChannel\" 0" +
           std::to_string(version) + root +
           "92 84 84 84 08 \"NSString\" 01 95 84 01 \"+\" 04 \"gain\" 86 84 01 \"i\" 81 <012c>" +
           (version >= 1 ? "92 85 " : "") + (version >= 2 ? "98 01 " : "") +
           "84 01 \"f\" 83 <3f000000> 86";
}

std::shared_ptr<KWConstantChannel> gainChannel() {
    auto channel = channelWithNameInitialValueColor<KWConstantChannel>("gain", 0.5F, 300);
    channel->setUnitType(KWUnitTypeAngle);
    return channel;
}

/// A group that holds a constant channel, as of a version of KWChannel.
std::string group(int version) {
    return "84 01 \"@\" 84 84 84 0e \"KWChannelGroup\" 00 " + root +
           "92 84 84 84 08 \"NSString\" 01 94 84 01 \"+\" 01 \"g\" 86"
           "92 84 84 84 0e \"NSMutableArray\" 00 84 84 07 \"NSArray\" 00 94 84 01 \"i\" 01"
           "92 84 84 84 11 \"KWConstantChannel\" 00 84 84 09 \"KWChannel\" 0" +
           std::to_string(version) + "94 92 84 96 96 01 \"c\" 86 99 00" +
           (version >= 1 ? "92 92 " : "") + (version >= 2 ? "99 01 " : "") +
           "84 01 \"f\" 02 86 86 86";
}

/// An array with a constant channel and an empty group, as of a version of KWChannelArray.
std::string array(int version) {
    return "84 01 \"@\" 84 84 84 0e \"KWChannelArray\" 0" + std::to_string(version) + root +
           "92 84 84 84 0e \"NSMutableArray\" 00 84 84 07 \"NSArray\" 00 94 84 01 \"i\" 01"
           "92 84 84 84 11 \"KWConstantChannel\" 00 84 84 09 \"KWChannel\" 02 94"
           "92 84 84 84 08 \"NSString\" 01 94 84 01 \"+\" 01 \"c\" 86"
           "97 00 92 85 97 20 84 01 \"f\" 02 86 86" +
           (version == 0 ? ""
                         : "92 84 96 97 01"
                           "92 84 84 84 0e \"KWChannelGroup\" 00 94 92 84 9c 9b 01 \"g\" 86"
                           "92 84 96 97 00 86 86 86") +
           "86";
}

std::shared_ptr<KWChannelArray> sampleArray() {
    auto made = std::make_shared<KWChannelArray>();
    made->addChannel(channelWithNameInitialValueColor<KWConstantChannel>("c", 2, 0));
    made->addGroupWithName("g");
    return made;
}

/// A keyframed channel with the keys 0 and 0.5, up to its values.
std::string keyFramed(int version) {
    return "84 01 \"@\" 84 84 84 12 \"KWKeyFramedChannel\" 0" + std::to_string(version) +
           "84 84 09 \"KWChannel\" 02" + root +
           "92 84 84 84 08 \"NSString\" 01 95 84 01 \"+\" 01 \"k\" 86 84 01 \"i\" 00 92 85 98 20"
           "92 84 84 84 0e \"NSMutableArray\" 00 84 84 07 \"NSArray\" 00 95 98 02"
           "92 84 84 84 06 \"KWTime\" 00 95 84 01 \"f\" 00 86 92 84 9c 9c 83 <3f000000> 86 86"
           "92 84 99 98 02"
           "92 84 84 84 08 \"NSNumber\" 00 84 84 07 \"NSValue\" 00 95 84 01 \"*\" 84 9c 9c 01 86"
           "92 84 a0 9f a2 9c 83 <3e800000> 86 86";
}

const std::string modes = "98 00 98 02";
const std::string ones = "<3f800000><3f800000><3f800000><3f800000><3f800000><3f800000>";
const std::string shapedRecord = "92 84 84 84 06 \"NSData\" 00 95 98 24 84 05 \"[36c]\""
                                 "<3f000000><bf800000><3e800000>" +
                                 ones + "86";
const std::string zeros = "00000000 00000000 00000000 00000000 00000000 00000000 00000000 00000000"
                          "00000000";
const std::string neutralRecord = "92 84 a6 98 24 a1 " + zeros + "86";
const std::string currentKeyFramed =
    keyFramed(1) + modes + "92 84 99 98 02" + shapedRecord + neutralRecord + "86 86";

KWData shape() {
    const HJHermiteParam param{0.5F, -1, 0.25F, {1, 1, 1, 1, 1, 1}};
    return KWKeyFramedChannel::hermiteDataFrom(&param);
}

std::shared_ptr<KWKeyFramedChannel> keyFramedChannel() {
    auto channel = channelWithKeys({{0, 1}, {0.5F, 0.25F}}, KWKeyFrameModeLinear, 2);
    channel->setName("k");
    channel->setValueHermiteValueForKeyframe(1, shape(), KWTime(0));
    return channel;
}

void expectKeys(const KWKeyFramedChannel& channel) {
    ASSERT_EQ(channel.keyframeCount(), 2U);
    ASSERT_EQ(channel.hermiteCount(), 2U);
    EXPECT_EQ(timesOf(channel.allKeyframes()), (std::vector<float>{0, 0.5F}));
    EXPECT_EQ(bitsOf(channel.valueForKeyframeAtIndex(0)), bitsOf(1));
    EXPECT_EQ(bitsOf(channel.valueForKeyframeAtIndex(1)), bitsOf(0.25F));
    EXPECT_TRUE(channel.isRegular());
}

void expectNeutral(const KWKeyFramedChannel& channel) {
    expectKeys(channel);
    for (const float key : {0.0F, 0.5F})
        EXPECT_EQ(channel.hermiteValueForKeyframe(KWTime(key)), KWKeyFramedChannel::hermiteData());
}

} // namespace

TEST(KWSequentialModel, ATimeIsOneFloat) {
    const std::string body =
        "84 01 \"@\" 84 84 84 06 \"KWTime\" 00 " + root + "84 01 \"f\" 83 <3fc00000> 86";
    EXPECT_EQ(written(std::make_shared<KWBoxedValue<KWTime>>(KWTime(1.5F))), little(body));
    for (const bool bigEndian : {false, true}) {
        const auto time = read<KWBoxedValue<KWTime>>(body, bigEndian);
        ASSERT_TRUE(time);
        EXPECT_EQ(bitsOf(time->value.time()), bitsOf(1.5F));
    }
}

TEST(KWSequentialModel, AConstantChannelIsNameColorGroupUnitAndValue) {
    EXPECT_EQ(written(gainChannel()), little(gain(2)));
    for (const bool bigEndian : {false, true}) {
        const auto channel = read<KWConstantChannel>(gain(2), bigEndian);
        ASSERT_TRUE(channel);
        EXPECT_EQ(channel->name(), "gain");
        EXPECT_EQ(channel->channelColorIndex(), 300);
        EXPECT_EQ(channel->channelGroup(), nullptr);
        EXPECT_EQ(channel->unitType(), KWUnitTypeAngle);
        EXPECT_EQ(bitsOf(channel->valueForTime(std::nullopt)), bitsOf(0.5F));
    }
}

TEST(KWSequentialModel, ADecodedChannelIsInvalidUnownedAndAtTimeZero) {
    auto channel = read<KWConstantChannel>(gain(2));
    ASSERT_TRUE(channel);
    CountingOwner owner;
    channel->setOwner(&owner);
    channel->updateForTime(KWTime(5));
    channel->startManipulation();
    KWArchiver values;
    values.encodeObject("again");
    const std::int32_t color = 7;
    values.encodeValueOfObjCTypeAt("i", &color);
    values.encodeObject(nullptr);
    values.encodeValueOfObjCTypeAt("i", &color);
    const float half = 0.5F;
    values.encodeValueOfObjCTypeAt("f", &half);
    KWUnarchiver plain(values.archiverData());
    EXPECT_TRUE(channel->initWithCoder(plain));
    EXPECT_FALSE(channel->isValid());
    EXPECT_FALSE(channel->isManipulating());
    EXPECT_EQ(channel->owner(), nullptr);
    EXPECT_EQ(channel->name(), "again");
}

TEST(KWSequentialModel, AChannelOfVersion0HasNoGroupAndNoUnit) {
    for (const bool bigEndian : {false, true}) {
        const auto channel = read<KWConstantChannel>(gain(0), bigEndian);
        ASSERT_TRUE(channel);
        EXPECT_EQ(channel->channelColorIndex(), 300);
        EXPECT_EQ(channel->channelGroup(), nullptr);
        EXPECT_EQ(channel->unitType(), KWUnitTypeNone);
        EXPECT_EQ(bitsOf(channel->valueForTime(std::nullopt)), bitsOf(0.5F));
    }
    const auto inGroup = read<KWChannelGroup>(group(0));
    ASSERT_TRUE(inGroup);
    EXPECT_EQ(inGroup->channels()->at(0)->channelGroup(), nullptr);
}

TEST(KWSequentialModel, AChannelOfVersion1HasItsGroupAndNoUnit) {
    const auto alone = read<KWConstantChannel>(gain(1));
    ASSERT_TRUE(alone);
    EXPECT_EQ(alone->unitType(), KWUnitTypeNone);
    for (const bool bigEndian : {false, true}) {
        const auto inGroup = read<KWChannelGroup>(group(1), bigEndian);
        ASSERT_TRUE(inGroup);
        ASSERT_EQ(inGroup->count(), 1U);
        EXPECT_EQ(inGroup->channels()->at(0)->channelGroup(), inGroup);
        EXPECT_EQ(inGroup->channels()->at(0)->unitType(), KWUnitTypeNone);
    }
}

TEST(KWSequentialModel, AChannelOfVersion2HasBoth) {
    const auto inGroup = read<KWChannelGroup>(group(2));
    ASSERT_TRUE(inGroup);
    EXPECT_EQ(inGroup->channels()->at(0)->channelGroup(), inGroup);
    EXPECT_EQ(inGroup->channels()->at(0)->unitType(), KWUnitTypeAngle);
}

TEST(KWSequentialModel, ChannelsAreWrittenAsOfOlderVersions) {
    EXPECT_EQ(written(gainChannel(), {{"KWChannel", 1}}), little(gain(1)));
    EXPECT_EQ(written(gainChannel(), {{"KWChannel", 0}}), little(gain(0)));
    const auto made = std::make_shared<KWChannelGroup>("g");
    const auto channel = channelWithNameInitialValueColor<KWConstantChannel>("c", 2, 0);
    channel->setUnitType(KWUnitTypeAngle);
    made->addChannel(channel);
    for (const int version : {0, 1, 2})
        EXPECT_EQ(written(made, {{"KWChannel", version}}), little(group(version))) << version;
}

TEST(KWSequentialModel, AGroupIsNameAndChannels) {
    const auto made = std::make_shared<KWChannelGroup>("g");
    made->addChannel(gainChannel());
    const auto back = read<KWChannelGroup>(written(made));
    ASSERT_TRUE(back);
    EXPECT_EQ(back->name(), "g");
    ASSERT_EQ(back->count(), 1U);
    EXPECT_EQ(back->channels()->at(0)->name(), "gain");
    EXPECT_EQ(back->channels()->at(0)->channelGroup(), back);
}

TEST(KWSequentialModel, AChannelArchivedAloneHasNoGroupAfterwards) {
    const auto made = std::make_shared<KWChannelGroup>("g");
    made->addChannel(gainChannel());
    EXPECT_EQ(written(made->channels()->at(0)), little(gain(2)));
    EXPECT_EQ(made->channels()->at(0)->channelGroup(), made);
}

TEST(KWSequentialModel, TheOwnerIsNotWritten) {
    const auto made = sampleArray();
    made->setChannelsOwner(made.get());
    EXPECT_EQ(written(made), little(array(1)));
    const auto back = read<KWChannelArray>(written(made));
    ASSERT_TRUE(back);
    EXPECT_EQ(back->channelAtIndexInGroup(0, KWUngroupedChannels)->owner(), nullptr);
}

TEST(KWSequentialModel, AnArrayIsChannelsAndGroups) {
    EXPECT_EQ(written(sampleArray()), little(array(1)));
    for (const bool bigEndian : {false, true}) {
        const auto back = read<KWChannelArray>(array(1), bigEndian);
        ASSERT_TRUE(back);
        EXPECT_EQ(back->channelCount(), 1U);
        EXPECT_EQ(back->channelAtIndexInGroup(0, KWUngroupedChannels)->name(), "c");
        ASSERT_EQ(back->channelGroupCount(), 1U);
        EXPECT_EQ(back->channelGroupAtIndex(0)->name(), "g");
        EXPECT_EQ(back->channelGroupAtIndex(0)->count(), 0U);
    }
}

TEST(KWSequentialModel, AnArrayOfVersion0HasChannelsAndNoGroupList) {
    for (const bool bigEndian : {false, true}) {
        const auto back = read<KWChannelArray>(array(0), bigEndian);
        ASSERT_TRUE(back);
        EXPECT_EQ(back->channelCount(), 1U);
        EXPECT_EQ(back->channelGroups(), nullptr);
        back->addGroupWithName("new");
        EXPECT_EQ(back->channelGroups(), nullptr);
        EXPECT_EQ(back->channelGroupCount(), 0U);
        EXPECT_EQ(written(back, {{"KWChannelArray", 0}}), little(array(0)));
    }
    EXPECT_EQ(written(sampleArray(), {{"KWChannelArray", 0}}), little(array(0)));
}

TEST(KWSequentialModel, AnArrayOfALaterVersionIsReadAsNothing) {
    const auto back = read<KWChannelArray>(array(2));
    ASSERT_TRUE(back);
    EXPECT_EQ(back->ungroupedChannels(), nullptr);
    EXPECT_EQ(back->channelGroups(), nullptr);
    EXPECT_EQ(back->channelCount(), 0U);
}

TEST(KWSequentialModel, NilListsOfAnArrayStayNil) {
    const auto nothing = read<KWChannelArray>(array(2));
    const KWData bytes = written(nothing);
    EXPECT_EQ(bytes,
              little("84 01 \"@\" 84 84 84 0e \"KWChannelArray\" 01 " + root + "92 85 92 85 86"));
    const auto back = read<KWChannelArray>(bytes);
    ASSERT_TRUE(back);
    EXPECT_EQ(back->channelGroups(), nullptr);
}

TEST(KWSequentialModel, AKeyFramedChannelIsKeysValuesModesAndRecords) {
    EXPECT_EQ(written(keyFramedChannel()), little(currentKeyFramed));
    for (const bool bigEndian : {false, true}) {
        const auto channel = read<KWKeyFramedChannel>(currentKeyFramed, bigEndian);
        ASSERT_TRUE(channel);
        expectKeys(*channel);
        EXPECT_EQ(channel->name(), "k");
        EXPECT_EQ(channel->unitType(), KWUnitTypeNone);
        EXPECT_EQ(channel->keyFrameChannelMode(), KWKeyFrameModeLinear);
        EXPECT_EQ(channel->repeatMode(), 2);
        EXPECT_EQ(channel->hermiteValueForKeyframe(KWTime(0)), shape());
        EXPECT_EQ(channel->hermiteValueForKeyframe(KWTime(0.5F)),
                  KWKeyFramedChannel::hermiteData());
        EXPECT_EQ(written(channel), little(currentKeyFramed));
    }
}

TEST(KWSequentialModel, RecordsDescribedAsParametersAreTakenAlsoWhenShared) {
    const std::string body = keyFramed(1) + modes +
                             "92 84 99 98 02 92 84 a1 9f 84 84 19 \"{_HJHermiteParam=fff[6f]}\" a0"
                             "83 <3f000000> ff 83 <3e800000> 01 01 01 01 01 01 86 92 a5 86 86";
    for (const bool bigEndian : {false, true}) {
        const auto channel = read<KWKeyFramedChannel>(body, bigEndian);
        ASSERT_TRUE(channel);
        expectKeys(*channel);
        for (const float key : {0.0F, 0.5F})
            EXPECT_EQ(channel->hermiteValueForKeyframe(KWTime(key)), shape());
    }
}

TEST(KWSequentialModel, AKeyFramedChannelOfVersion0IsHermiteWithoutRepeatAndNeutral) {
    LogCatcher log;
    for (const bool bigEndian : {false, true}) {
        const auto channel = read<KWKeyFramedChannel>(keyFramed(0) + "86", bigEndian);
        ASSERT_TRUE(channel);
        EXPECT_EQ(channel->keyFrameChannelMode(), KWKeyFrameModeHermite);
        EXPECT_EQ(channel->repeatMode(), KWRepeatModeNone);
        expectNeutral(*channel);
    }
    EXPECT_EQ(log.lines, std::vector<std::string>());
    EXPECT_EQ(written(keyFramedChannel(), {{"KWKeyFramedChannel", 0}}),
              little(keyFramed(0) + "86"));
}

TEST(KWSequentialModel, TwoKeysWithOneRecordAreRepairedAndLoggedOnce) {
    for (const std::string& records :
         {"92 84 99 98 01" + shapedRecord + "86",
          "92 84 99 98 03" + shapedRecord + neutralRecord + neutralRecord + "86",
          std::string("92 84 99 98 00 86"), std::string("92 85")}) {
        LogCatcher log;
        const auto channel = read<KWKeyFramedChannel>(keyFramed(1) + modes + records + "86");
        ASSERT_TRUE(channel);
        EXPECT_EQ(log.lines, std::vector<std::string>{"Inconsistent Values/Keys pairs in channel"});
        expectNeutral(*channel);
        EXPECT_EQ(channel->repeatMode(), 2);
    }
}

TEST(KWSequentialModel, ShortAndLongRecordsAreFilledUpAndCut) {
    LogCatcher log;
    const auto channel = read<KWKeyFramedChannel>(
        keyFramed(1) + modes +
            "92 84 99 98 02"
            "92 84 84 84 06 \"NSData\" 00 95 98 04 84 04 \"[4c]\" <3f000000> 86"
            "92 84 a6 98 28 84 05 \"[40c]\" <3f000000><bf800000><3e800000>" +
            ones + "<3f800000> 86 86 86",
        true);
    ASSERT_TRUE(channel);
    EXPECT_EQ(channel->hermiteValueForKeyframe(KWTime(0)), recordWith(0.5F));
    EXPECT_EQ(channel->hermiteValueForKeyframe(KWTime(0.5F)), shape());
    EXPECT_EQ(log.lines, std::vector<std::string>());
}

TEST(KWSequentialModel, OddRecordsAreWrittenAsFarAsTheirFirstThreeFloatsGo) {
    const auto channel = channelWithKeys({});
    for (const std::size_t size : {0U, 4U, 6U, 12U, 35U, 37U, 50U}) {
        channel->setValueHermiteValueForKeyframe(1, oddRecord(size), KWTime(0));
        const auto back = read<KWKeyFramedChannel>(written(channel));
        ASSERT_TRUE(back);
        const auto record = back->hermiteValueForKeyframe(KWTime(0));
        ASSERT_TRUE(record);
        ASSERT_EQ(record->size(), 36U);
        for (std::size_t k = 0; k < 36; ++k)
            EXPECT_EQ((*record)[k], k < 12 && k < size ? oddRecord(size)[k] : std::byte{0})
                << size << " " << k;
    }
}

TEST(KWSequentialModel, ListsOfUnequalLengthCannotBeWritten) {
    const KWData neutral = recordWith(0);
    for (const PlainChannel& lists : {PlainChannel{{0, 1, 2}, {1, 2}, {neutral, neutral, neutral}},
                                      PlainChannel{{0, 1, 2}, {1, 2, 3}, {neutral, neutral}},
                                      PlainChannel{{0, 1}, {1, 2, 3}, {neutral, neutral}}})
        EXPECT_EQ(Outcome::of([&] {
                      written(channelFromLists(lists));
                      return 0.0F;
                  }).exception,
                  "Key-value mismatch");
}

TEST(KWSequentialModel, ValuesOfAnotherCountComeBackAsTheyWere) {
    LogCatcher log;
    std::string body = currentKeyFramed;
    const std::string last = "92 84 a0 9f a2 9c 83 <3e800000> 86 86";
    body.replace(body.find(last), last.size(), "86");
    const std::string counted = "92 84 99 98 02"
                                "92 84 84 84 08 \"NSNumber\"";
    ASSERT_NE(body.find(counted), std::string::npos);
    body.replace(body.find(counted) + 13, 1, "1");
    // One label fewer behind the values.
    const auto record = body.find("92 84 a6 98 24");
    body.replace(record, 8, "92 84 a5");
    const auto channel = read<KWKeyFramedChannel>(body);
    ASSERT_TRUE(channel);
    EXPECT_EQ(channel->keyframeCount(), 2U);
    EXPECT_EQ(channel->valueCount(), 1U);
    EXPECT_EQ(channel->hermiteCount(), 2U);
    EXPECT_FALSE(channel->isRegular());
    EXPECT_EQ(log.lines, std::vector<std::string>());
}

TEST(KWSequentialModel, UnsortedKeysRoundTripAsTheyAre) {
    const PlainChannel lists{
        {3, 1, kwNaN, 1, -0.5F}, {1, 2, 3, kwInfinity, 5}, std::vector<KWData>(5, shape()), 7, -3};
    const auto channel = channelFromLists(lists);
    const auto back = read<KWKeyFramedChannel>(written(channel));
    ASSERT_TRUE(back);
    EXPECT_FALSE(back->isRegular());
    ASSERT_EQ(back->keyframeCount(), 5U);
    for (std::uint32_t k = 0; k < 5; ++k) {
        EXPECT_EQ(bitsOf(back->keyframeAtIndex(k)->time()), bitsOf(lists.keys[k]));
        EXPECT_EQ(bitsOf(back->valueForKeyframeAtIndex(k)), bitsOf(lists.values[k]));
    }
    EXPECT_EQ(back->keyFrameChannelMode(), 7);
    EXPECT_EQ(back->repeatMode(), -3);
    EXPECT_EQ(written(back), written(channel));
}

TEST(KWSequentialModel, TheSavedCopiesOfAManipulationAreNotWritten) {
    const auto channel = keyFramedChannel();
    channel->startManipulation();
    EXPECT_EQ(written(channel), little(currentKeyFramed));
}
