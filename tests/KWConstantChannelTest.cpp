#include "ChannelTestSupport.h"

#include <KWBase/KWConstantChannel.h>
#include <KWBase/KWKeyFramedChannel.h>

#include <gtest/gtest.h>

#include <limits>

namespace {

std::shared_ptr<KWConstantChannel> constant(float value) {
    return channelWithNameInitialValueColor<KWConstantChannel>("gain", value, 4);
}

/// A host's subclass that does not say how to copy itself.
class HostConstant final : public KWConstantChannel {
  public:
    using KWConstantChannel::KWConstantChannel;
    ~HostConstant() override = default;
    float valueForTime(std::optional<KWTime> time) const override {
        return KWConstantChannel::valueForTime(time) + 1;
    }
};

constexpr float awkwardValues[] = {0.1F,
                                   -0.0F,
                                   std::numeric_limits<float>::denorm_min(),
                                   std::numeric_limits<float>::max(),
                                   -std::numeric_limits<float>::infinity(),
                                   std::numeric_limits<float>::quiet_NaN()};

} // namespace

TEST(KWConstantChannel, IsMadeWithNameInitialValueAndColour) {
    NoticeCounter notices(nullptr);
    const auto channel = channelWithNameInitialValueColor<KWConstantChannel>("gain", 2.5F, 3);
    EXPECT_EQ(notices.count, 1);
    EXPECT_EQ(notices.object, channel.get());
    EXPECT_EQ(channel->name(), "gain");
    for (const float time : {0.0F, -1e9F, 1e9F, std::numeric_limits<float>::quiet_NaN()})
        EXPECT_EQ(channel->valueForTime(KWTime(time)), 2.5F);
    EXPECT_EQ(channel->valueForTime(std::nullopt), 2.5F);
    EXPECT_EQ(channel->channelColor(), KWColor::redColor());
    EXPECT_EQ(channel->unitType(), KWUnitTypeNone);
}

TEST(KWConstantChannel, IsAChannelOfVersionZero) {
    EXPECT_EQ(KWConstantChannel::classObject().name(), "KWConstantChannel");
    EXPECT_EQ(KWConstantChannel::classObject().version(), 0);
    EXPECT_EQ(KWConstantChannel::classObject().superclass(), &KWChannel::classObject());
    EXPECT_EQ(KWClassNamed("KWConstantChannel"), &KWConstantChannel::classObject());
    EXPECT_EQ(KWConstantChannel().name(), "no name");
    EXPECT_EQ(bitsOf(KWConstantChannel().valueForTime(std::nullopt)), bitsOf(0.0F));
}

TEST(KWConstantChannel, SaysThatItDependsOnTime) {
    EXPECT_TRUE(constant(1)->dependsOnTime());
}

TEST(KWConstantChannel, TakesAValueAtAnyTimeAndTellsOnce) {
    const auto channel = constant(1);
    CountingOwner owner;
    channel->setOwner(&owner);
    float seen = 0;
    NoticeCounter notices(channel.get(), [&] { seen = channel->valueForTime(std::nullopt); });
    channel->updateForTime(KWTime(0));
    channel->setValueForTime(7, std::nullopt);
    EXPECT_EQ(notices.count, 1);
    EXPECT_EQ(owner.invalidations, 1);
    EXPECT_EQ(seen, 7);
    EXPECT_FALSE(channel->isValid());
    EXPECT_EQ(channel->value(), 7);
    channel->setValueForTime(8, KWTime(std::numeric_limits<float>::quiet_NaN()));
    EXPECT_EQ(channel->valueForTime(KWTime(1)), 8);
}

TEST(KWConstantChannel, KeepsEveryFloatBitForBit) {
    for (const float value : awkwardValues) {
        const auto channel = constant(value);
        EXPECT_EQ(bitsOf(channel->valueForTime(KWTime(1))), bitsOf(value));
        float batch[3] = {};
        channel->valuesForTimes(std::vector<float>{0, 1, 2}, batch);
        for (const float answer : batch)
            EXPECT_EQ(bitsOf(answer), bitsOf(value));
    }
}

TEST(KWConstantChannel, ABatchRefusesSizesThatDiffer) {
    float values[] = {7, 7};
    EXPECT_THROW(constant(1)->valuesForTimes(std::vector<float>{0}, values), std::invalid_argument);
    EXPECT_EQ(values[0], 7);
}

TEST(KWConstantChannel, ACopyTakesTheValueAlone) {
    const auto channel = constant(2.5F);
    channel->setUnitType(KWUnitTypeAngle);
    CountingOwner owner;
    channel->setOwner(&owner);
    const auto copy = std::dynamic_pointer_cast<KWConstantChannel>(channel->copy());
    ASSERT_NE(copy, nullptr);
    EXPECT_EQ(copy->name(), "no name");
    EXPECT_EQ(copy->channelColorIndex(), 0);
    EXPECT_EQ(copy->unitType(), KWUnitTypeNone);
    EXPECT_EQ(copy->owner(), nullptr);
    EXPECT_EQ(copy->channelGroup(), nullptr);
    EXPECT_EQ(copy->valueForTime(KWTime(3)), 2.5F);
}

TEST(KWConstantChannel, CopyingPostsNothing) {
    const auto channel = constant(2.5F);
    NoticeCounter notices(nullptr);
    EXPECT_NE(channel->copy(), nullptr);
    EXPECT_NE(KWConstantChannel::initWithChannel(*channel), nullptr);
    EXPECT_EQ(notices.count, 0);
}

TEST(KWConstantChannel, ASubclassWithoutACopyOfItsOwnCopiesAsPlainConstant) {
    HostConstant host;
    host.setValueForTime(4, std::nullopt);
    const auto copy = host.copy();
    EXPECT_EQ(typeid(*copy), typeid(KWConstantChannel));
    EXPECT_EQ(copy->valueForTime(std::nullopt), 4);
}

TEST(KWConstantChannel, IsMadeFromAnotherWithAllItHandsOn) {
    const auto channel = constant(2.5F);
    channel->setUnitType(KWUnitTypeLength);
    const auto made = KWConstantChannel::initWithChannel(*channel);
    ASSERT_NE(made, nullptr);
    EXPECT_EQ(made->name(), "gain");
    EXPECT_EQ(made->channelColorIndex(), 4);
    EXPECT_EQ(made->unitType(), KWUnitTypeLength);
    EXPECT_EQ(made->valueForTime(std::nullopt), 2.5F);
}

TEST(KWConstantChannel, IsNotMadeFromAChannelOfAnotherClass) {
    EXPECT_EQ(KWConstantChannel::initWithChannel(KWKeyFramedChannel()), nullptr);
    EXPECT_EQ(KWConstantChannel::initWithChannel(KWChannel()), nullptr);
    EXPECT_EQ(KWConstantChannel::initWithChannel(HostConstant()), nullptr);
    EXPECT_EQ(KWChannel::initWithChannel<HostConstant>(*constant(1)), nullptr);
}

TEST(KWConstantChannel, ASubclassHandsOnTheValueThatItAnswers) {
    HostConstant host;
    host.setValueForTime(4, std::nullopt);
    const auto made = KWChannel::initWithChannel<HostConstant>(host);
    ASSERT_NE(made, nullptr);
    EXPECT_EQ(made->valueForTime(std::nullopt), 6);
}

// --- Archives.

TEST(KWConstantChannel, EncodesItsValueAsADoubleAfterTheChannelsPart) {
    const auto coder = fieldsOf(*constant(0.1F));
    EXPECT_EQ(coder->calls(), "name:object colorIndex:int32 channelGroup:conditional "
                              "unitType:int32 owner:conditional constValue:double");
    EXPECT_EQ(*coder->valueForKey("constValue").number(), KWNumber(static_cast<double>(0.1F)));
}

TEST(KWConstantChannel, DecodesADoubleNarrowedToAFloatAndNothingAsZero) {
    const auto coder = fieldsOf(*constant(1));
    coder->replace("constValue", KWNumber(0.1));
    KWConstantChannel channel;
    ASSERT_TRUE(channel.initWithCoder(*coder));
    EXPECT_EQ(bitsOf(channel.valueForTime(std::nullopt)), bitsOf(0.1F));
    coder->remove("constValue");
    ASSERT_TRUE(channel.initWithCoder(*coder));
    EXPECT_EQ(bitsOf(channel.valueForTime(std::nullopt)), bitsOf(0.0F));
}

TEST(KWConstantChannel, AKeyedArchiveHoldsAnEightByteValueAndTheClassChain) {
    const ArchiveReader archive(KWKeyedArchiver::archivedDataWithRootObject(constant(2)));
    const auto root = archive.rootObject();
    EXPECT_EQ(archive.keysOf(root), "name colorIndex channelGroup unitType owner constValue");
    EXPECT_EQ(archive.classesOf(root), "KWConstantChannel KWChannel NSObject");
    const auto value = archive.field(root, "constValue");
    EXPECT_EQ(archive.list().kind(value), KWPropertyList::Kind::real);
    EXPECT_FALSE(archive.list().isSingle(value));
    EXPECT_EQ(archive.list().realValue(value), 2);
}

TEST(KWConstantChannel, AKeyedRoundTripKeepsEveryFloatBitForBit) {
    for (const float value : awkwardValues) {
        const auto read = archivedAndRead(constant(value));
        ASSERT_NE(read, nullptr);
        EXPECT_EQ(bitsOf(read->valueForTime(KWTime(9))), bitsOf(value));
        EXPECT_EQ(read->name(), "gain");
        EXPECT_EQ(bitsOf(read->value()), bitsOf(value));
    }
}
