#include "ChannelTestSupport.h"
#include "SequentialBytes.h"

#include <KWBase/KWChannelArray.h>
#include <KWBase/KWConstantChannel.h>
#include <KWBase/KWUnknownChannel.h>
#include <KWFoundation/KWArchiver.h>
#include <KWFoundation/KWUnarchiver.h>

#include <gtest/gtest.h>

namespace {

/// A host's own kind of channel.
class Noise final : public KWChannel {
  public:
    using KWChannel::KWChannel;
    ~Noise() override = default;

    static const KWClass& classObject() {
        static constinit const KWClass theClass{"TSTNoise", &KWChannel::classObject, 3,
                                                KWClass::make<Noise>};
        return theClass;
    }
    const KWClass& isa() const override { return classObject(); }
    float valueForTime(std::optional<KWTime>) const override { return amplitude; }
    void encodeWithCoder(KWCoder& coder) const override {
        KWChannel::encodeWithCoder(coder);
        coder.encodeFloatForKey(amplitude, "amplitude");
        coder.encodeObjectForKey(relative, "relative");
    }
    bool initWithCoder(KWCoder& coder) override {
        KWChannel::initWithCoder(coder);
        amplitude = coder.decodeFloatForKey("amplitude");
        relative = coder.decodeObjectOfClassForKey<KWChannel>("relative");
        return true;
    }

    float amplitude = 0;
    std::shared_ptr<KWChannel> relative;
};

constexpr KWKeyedUnarchiver::Options keep{.keepsUnknownObjects = true};

/// An array that owns a plain channel and, in a group, a channel of the host's kind.
std::shared_ptr<KWChannelArray> sample() {
    auto array = std::make_shared<KWChannelArray>();
    auto plain = channelWithNameInitialValueColor<KWConstantChannel>("plain", 2, 1);
    auto noise = std::make_shared<Noise>("noise");
    noise->setChannelColorIndex(5);
    noise->setUnitType(KWUnitTypeAngle);
    noise->amplitude = 0.25F;
    noise->relative = plain;
    array->addGroupWithName("group");
    array->addChannel(plain);
    array->addChannelToGroup(noise, 0);
    array->setChannelsOwner(array.get());
    return array;
}

std::shared_ptr<KWUnknownObject> contents(std::vector<KWArchiveField> fields) {
    auto object = std::make_shared<KWUnknownObject>();
    object->setClassChain({"TSTNoise", "KWChannel", "NSObject"});
    object->setFields(std::move(fields));
    return object;
}

KWArchiveField reference(std::string key, KWArchiveValue value) {
    return {std::move(key), KWArchiveField::Form::reference, std::move(value), {}};
}

KWArchiveField inlined(std::string key, KWArchiveValue value) {
    return {std::move(key), KWArchiveField::Form::inlined, std::move(value), {}};
}

/// A group that holds a channel of the host's kind, as of a version of KWChannel. The host's own
/// part is a real.
std::string stream(int version) {
    return "84 01 \"@\" 84 84 84 0e \"KWChannelGroup\" 00 84 84 08 \"NSObject\" 00 85"
           "92 84 84 84 08 \"NSString\" 01 94 84 01 \"+\" 01 \"g\" 86"
           "92 84 84 84 0e \"NSMutableArray\" 00 84 84 07 \"NSArray\" 00 94 84 01 \"i\" 01"
           "92 84 84 84 08 \"TSTNoise\" 03 84 84 09 \"KWChannel\" 0" +
           std::to_string(version) + "94 92 84 96 96 05 \"noise\" 86 99 81 <012c>" +
           (version >= 1 ? "92 92 " : "") + (version >= 2 ? "99 01 " : "") +
           "84 01 \"f\" 83 <3e800000> 86 86 86";
}

std::shared_ptr<KWChannelGroup> readStream(const KWData& bytes) {
    return std::dynamic_pointer_cast<KWChannelGroup>(
        KWUnarchiver::unarchiveObjectWithData(bytes, keep));
}

std::shared_ptr<KWUnknownObject> sequentialContents(std::vector<KWArchiveField> calls,
                                                    std::int32_t version = 2) {
    auto object = contents(std::move(calls));
    object->setClassVersions({3, version, 0});
    return object;
}

/// What one call wrote.
KWArchiveField call(std::string types, std::vector<KWArchiveField> items) {
    return {std::move(types), KWArchiveField::Form::list, {}, std::move(items)};
}

} // namespace

TEST(KWUnknownChannel, TakesTheChannelsPartFromTheContents) {
    const auto group = std::make_shared<KWChannelGroup>();
    const auto owner = std::make_shared<KWChannelArray>();
    const KWUnknownChannel channel(contents({
        reference("name", "noise"),
        inlined("colorIndex", KWNumber(std::int32_t{5})),
        inlined("unitType", KWNumber(std::int64_t{1})),
        reference("channelGroup", group),
        reference("owner", owner),
    }));
    EXPECT_EQ(channel.name(), "noise");
    EXPECT_EQ(channel.channelColorIndex(), 5);
    EXPECT_EQ(channel.unitType(), KWUnitTypeAngle);
    EXPECT_EQ(channel.channelGroup(), group);
    EXPECT_EQ(channel.owner(), owner.get());
    EXPECT_EQ(channel.className(), "TSTNoise");
    EXPECT_EQ(&channel.isa(), &KWChannel::classObject());
}

TEST(KWUnknownChannel, IsLikeANewChannelWhereTheContentsHoldNothing) {
    const KWUnknownChannel channel(contents({}));
    EXPECT_EQ(channel.name(), "no name");
    EXPECT_EQ(channel.channelColorIndex(), 0);
    EXPECT_EQ(channel.unitType(), KWUnitTypeNone);
    EXPECT_EQ(channel.channelGroup(), nullptr);
    EXPECT_EQ(channel.owner(), nullptr);
    EXPECT_THROW(KWUnknownChannel(nullptr), std::invalid_argument);
}

TEST(KWUnknownChannel, PassesOverFieldsOfAnotherKind) {
    const KWUnknownChannel channel(contents({
        reference("name", KWNumber(std::int32_t{5})),
        inlined("colorIndex", "text"),
        inlined("unitType", KWNumber(std::int64_t{1} << 40)),
        {"channelGroup", KWArchiveField::Form::list, {}, {}},
        reference("owner", "text"),
    }));
    EXPECT_EQ(channel.name(), "no name");
    EXPECT_EQ(channel.channelColorIndex(), 0);
    EXPECT_EQ(channel.unitType(), KWUnitTypeNone);
    EXPECT_EQ(channel.owner(), nullptr);
}

TEST(KWUnknownChannel, AnswersZeroAndIsNeitherCopiedNorTakenOver) {
    const auto channel = std::make_shared<KWUnknownChannel>(contents({}));
    EXPECT_EQ(bitsOf(channel->valueForTime(KWTime(1))), bitsOf(0.0F));
    EXPECT_EQ(channel->copy(), nullptr);
    EXPECT_FALSE(channel->takeContentsOf(KWUnknownChannel(contents({}))));
    EXPECT_EQ(KWChannel::initWithChannel<KWChannel>(*channel), nullptr);
    channel->setValueForTime(7, KWTime(1));
    channel->updateForTime(KWTime(1));
    EXPECT_EQ(bitsOf(channel->value()), bitsOf(0.0F));
}

TEST(KWUnknownChannel, LooksThroughContentsThatAreFilledLater) {
    const auto object = contents({});
    KWUnknownChannel channel(object);
    object->setFields({reference("name", "noise")});
    MemoryCoder none;
    EXPECT_TRUE(channel.initWithCoder(none));
    EXPECT_EQ(channel.name(), "noise");
}

TEST(KWUnknownChannel, StandsInAnArchiveForAChannelOfAnUnregisteredClass) {
    const KWData bytes = KWKeyedArchiver::archivedDataWithRootObject(sample());
    EXPECT_THROW(unarchived<KWChannelArray>(bytes), KWArchiveError);
    const auto array = unarchived<KWChannelArray>(bytes, keep);
    ASSERT_NE(array, nullptr);
    ASSERT_EQ(array->channelCount(), 2U);
    const auto noise =
        std::dynamic_pointer_cast<KWUnknownChannel>(array->channelAtIndexInGroup(0, 0));
    ASSERT_NE(noise, nullptr);
    EXPECT_EQ(noise->className(), "TSTNoise");
    EXPECT_EQ(noise->name(), "noise");
    EXPECT_EQ(noise->channelColorIndex(), 5);
    EXPECT_EQ(noise->unitType(), KWUnitTypeAngle);
    EXPECT_EQ(noise->channelGroup(), array->channelGroupAtIndex(0));
    EXPECT_EQ(noise->owner(), array.get());
}

TEST(KWUnknownChannel, IsWrittenBackAsItCame) {
    for (const auto format : {KWPropertyList::Format::binary, KWPropertyList::Format::xml}) {
        const KWData bytes = KWKeyedArchiver::archivedDataWithRootObject(sample(), format);
        const auto array = unarchived<KWChannelArray>(bytes, keep);
        ASSERT_NE(array, nullptr);
        array->channelAtIndexInGroup(0, 0)->setName("renamed");
        const KWData again = KWKeyedArchiver::archivedDataWithRootObject(array, format);

        const RegisteredClass known(Noise::classObject());
        const auto read = unarchived<KWChannelArray>(again);
        ASSERT_NE(read, nullptr);
        const auto noise = std::dynamic_pointer_cast<Noise>(read->channelAtIndexInGroup(0, 0));
        ASSERT_NE(noise, nullptr);
        EXPECT_EQ(noise->name(), "noise");
        EXPECT_EQ(noise->amplitude, 0.25F);
        EXPECT_EQ(noise->relative, read->channelAtIndexInGroup(0, KWUngroupedChannels));
        EXPECT_EQ(noise->channelGroup(), read->channelGroupAtIndex(0));
        EXPECT_EQ(noise->owner(), read.get());
    }
}

TEST(KWUnknownChannel, WhatWasReadIsLetGoAltogether) {
    const KWData bytes = KWKeyedArchiver::archivedDataWithRootObject(sample());
    auto array = unarchived<KWChannelArray>(bytes, keep);
    ASSERT_NE(array, nullptr);
    const std::weak_ptr<KWChannel> noise = array->channelAtIndexInGroup(0, 0);
    const std::weak_ptr<KWChannelArray> gone = array;
    array.reset();
    EXPECT_TRUE(noise.expired());
    EXPECT_TRUE(gone.expired());
}

TEST(KWUnknownChannel, SitsInListsAsAnyChannel) {
    const KWData bytes = KWKeyedArchiver::archivedDataWithRootObject(sample());
    const auto array = unarchived<KWChannelArray>(bytes, keep);
    ASSERT_NE(array, nullptr);
    const auto noise = array->channelAtIndexInGroup(0, 0);
    const auto fresh = std::make_shared<KWConstantChannel>();
    EXPECT_TRUE(array->replaceChannelWith(noise, fresh));
    EXPECT_EQ(noise->channelGroup(), nullptr);
    EXPECT_EQ(array->channelAtIndexInGroup(0, 0), fresh);
}

TEST(KWUnknownChannel, TakesTheChannelsPartOfASequentialArchiveByPlaceAndVersion) {
    for (const int version : {0, 1, 2}) {
        for (const bool bigEndian : {false, true}) {
            const auto group = readStream(sequentialStream(stream(version), bigEndian));
            ASSERT_NE(group, nullptr);
            ASSERT_EQ(group->count(), 1U);
            const auto noise =
                std::dynamic_pointer_cast<KWUnknownChannel>(group->channels()->front());
            ASSERT_NE(noise, nullptr);
            EXPECT_EQ(noise->className(), "TSTNoise");
            EXPECT_EQ(noise->name(), "noise");
            EXPECT_EQ(noise->channelColorIndex(), 300);
            EXPECT_EQ(noise->channelGroup(), version >= 1 ? group : nullptr);
            EXPECT_EQ(noise->unitType(), version >= 2 ? KWUnitTypeAngle : KWUnitTypeNone);
            EXPECT_EQ(noise->owner(), nullptr);
        }
    }
    EXPECT_THROW(KWUnarchiver::unarchiveObjectWithData(sequentialStream(stream(2), false)),
                 KWArchiveError);
}

TEST(KWUnknownChannel, IsWrittenBackToASequentialArchiveAsItCame) {
    for (const int version : {0, 1, 2}) {
        const KWData bytes = sequentialStream(stream(version), false);
        const auto group = readStream(bytes);
        ASSERT_NE(group, nullptr);
        group->channels()->front()->setName("renamed");
        KWArchiver archiver;
        archiver.encodeRootObject(group);
        EXPECT_EQ(archiver.archiverData(), bytes);
    }
}

TEST(KWUnknownChannel, IsNotWrittenBesideChannelsOfAnotherVersion) {
    const auto group = readStream(sequentialStream(stream(1), false));
    ASSERT_NE(group, nullptr);
    group->addChannel(std::make_shared<KWConstantChannel>());
    try {
        KWArchiver::archivedDataWithRootObject(group);
        FAIL() << "written without an error";
    } catch (const KWArchiveError& error) {
        EXPECT_EQ(error.reason(),
                  "the archive would have the class \"KWChannel\" in two versions, 1 and 2");
    }
    KWArchiver older;
    older.setVersionForClassName(1, "KWChannel");
    older.encodeRootObject(group);
    const auto back = readStream(older.archiverData());
    ASSERT_NE(back, nullptr);
    EXPECT_EQ(back->count(), 2U);
}

TEST(KWUnknownChannel, PassesOverWhatIsOfAnotherKindInASequentialArchive) {
    const auto text = reference("", "text");
    const auto five = inlined("", KWNumber(std::int32_t{5}));
    const KWUnknownChannel swapped(
        sequentialContents({call("i", {five}), call("@", {text}), call("i", {five}),
                            call("@", {text}), call("@", {text})}));
    EXPECT_EQ(swapped.name(), "no name");
    EXPECT_EQ(swapped.channelColorIndex(), 0);
    EXPECT_EQ(swapped.channelGroup(), nullptr);
    EXPECT_EQ(swapped.unitType(), KWUnitTypeNone);
    const KWUnknownChannel grouped(
        sequentialContents({call("@i", {text, five}), call("i", {five})}));
    EXPECT_EQ(grouped.name(), "no name");
    EXPECT_EQ(grouped.channelColorIndex(), 5);
    const KWUnknownChannel noText(sequentialContents({call("@", {reference("", nullptr)})}));
    EXPECT_EQ(noText.name(), "no name");
    const KWUnknownChannel old(sequentialContents(
        {call("@", {text}), call("i", {five}), call("@", {text}), call("i", {five})}, 0));
    EXPECT_EQ(old.name(), "text");
    EXPECT_EQ(old.unitType(), KWUnitTypeNone);
    // Keys mean nothing where there are none.
    const KWUnknownChannel keyed(sequentialContents({reference("name", "text")}));
    EXPECT_EQ(keyed.name(), "no name");
}
