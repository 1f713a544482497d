#include "KeyFramedTestSupport.h"

#include <gtest/gtest.h>

#include <limits>

TEST(KWKeyFramedChannel, KeysAreFoundByIndexAndTime) {
    const auto channel = channelWithKeys({{1, 10}, {2, 20}, {4, 40}});
    EXPECT_EQ(channel->keyframeAtIndex(2), KWTime(4));
    EXPECT_EQ(channel->keyframeAtIndex(3), std::nullopt);
    EXPECT_EQ(channel->firstKeyframe(), KWTime(1));
    EXPECT_EQ(channel->lastKeyframe(), KWTime(4));
    EXPECT_EQ(channelWithKeys({})->firstKeyframe(), std::nullopt);
    EXPECT_EQ(channelWithKeys({})->lastKeyframe(), std::nullopt);
    EXPECT_TRUE(channel->isKeyframe(KWTime(2)));
    EXPECT_FALSE(channel->isKeyframe(KWTime(3)));
    EXPECT_EQ(channel->indexOfKeyframe(KWTime(4)), 2u);
    EXPECT_EQ(channel->indexOfKeyframe(KWTime(0)), KWNotFound);
    EXPECT_EQ(channel->indexOfKeyframe(KWTime(kwNaN)), KWNotFound);
    EXPECT_EQ(channelWithKeys({})->indexOfKeyframe(KWTime(0)), KWNotFound);
    EXPECT_EQ(channel->valueForKeyframeAtIndex(1), 20);
    EXPECT_EQ(channel->valueForKeyframeAtIndex(3), 0);
    EXPECT_EQ(channel->valueForKeyframe(KWTime(3)), 0);
    EXPECT_EQ(channel->hermiteValueForKeyframe(KWTime(3)), std::nullopt);
    EXPECT_EQ(channel->valuesForKeyframes({KWTime(4), KWTime(3), KWTime(1)}),
              (std::vector<float>{40, 0, 10}));
    EXPECT_EQ(channel->hermiteValuesForKeyframes({KWTime(4)}).size(), 1u);
    EXPECT_THROW(channel->hermiteValuesForKeyframes({KWTime(4), KWTime(3)}), std::invalid_argument);
}

TEST(KWKeyFramedChannel, KeysBetweenIncludeBothBounds) {
    const auto channel = channelWithKeys({{1, 0}, {2, 0}, {3, 0}, {4, 0}});
    EXPECT_EQ(timesOf(channel->keyframesBetweenAnd(KWTime(2), KWTime(3))),
              (std::vector<float>{2, 3}));
    EXPECT_TRUE(channel->keyframesBetweenAnd(KWTime(3), KWTime(2)).empty());
    EXPECT_TRUE(channel->keyframesBetweenAnd(KWTime(kwNaN), KWTime(9)).empty());
}

TEST(KWKeyFramedChannel, BoundingKeysCountAKeyAtTheTimeAsPassed) {
    const auto channel = channelWithKeys({{1, 0}, {2, 0}, {3, 0}});
    using Pair = std::array<KWTime, 2>;
    EXPECT_EQ(channelWithKeys({})->boundingKeyframesForTime(KWTime(0)), std::nullopt);
    EXPECT_EQ(channel->boundingKeyframesForTime(KWTime(0)), (Pair{1, 1}));
    EXPECT_EQ(channel->boundingKeyframesForTime(KWTime(1)), (Pair{1, 2}));
    EXPECT_EQ(channel->boundingKeyframesForTime(KWTime(2.5f)), (Pair{2, 3}));
    EXPECT_EQ(channel->boundingKeyframesForTime(KWTime(3)), (Pair{3, 3}));
    EXPECT_EQ(channel->boundingKeyframesForTime(KWTime(9)), (Pair{3, 3}));
    EXPECT_EQ(channel->boundingKeyframesForTime(KWTime(kwNaN)), (Pair{1, 1}));
}

TEST(KWKeyFramedChannel, TheBoundingRectHasTenByTwoWhereThereIsNoSpan) {
    EXPECT_EQ(channelWithKeys({})->boundingRect(), (HJRect{0, -1, 10, 2}));
    EXPECT_EQ(channelWithKeys({{3, 5}})->boundingRect(), (HJRect{0, 0, 10, 5}));
    EXPECT_EQ(channelWithKeys({{3, -5}, {7, -2}})->boundingRect(), (HJRect{3, -5, 4, 5}));
    EXPECT_EQ(channelWithKeys({{1, 2}, {1.0000001f, 1}})->boundingRect(), (HJRect{0, 0, 10, 2}));
    EXPECT_EQ(channelWithKeys({{0, 1e-7f}, {1, 0}})->boundingRect(), (HJRect{0, -1, 1, 2}));
}

TEST(KWKeyFramedChannel, TheBoundingRectTakesTheValuesAtTheKeysTimes) {
    // Under a cycle the last key's time is the first key's.
    const auto channel = channelWithKeys({{0, 1}, {1, 2}, {2, 9}}, 0, KWRepeatModeCycle);
    EXPECT_EQ(channel->boundingRect(), (HJRect{0, 0, 2, 2}));
    const auto odd = channelWithKeys({{0, 1}, {1, 2}});
    odd->setValueHermiteValueForKeyframe(1, KWData(), KWTime(0));
    EXPECT_THROW(odd->boundingRect(), KWException);
}

TEST(KWKeyFramedChannel, TheBoundingRectInUserUnitConvertsBottomAndTop) {
    const auto channel = channelWithKeys({{1, -1}, {3, 2}});
    channel->setUnitType(KWUnitTypeAngle);
    const HJRect rect = channel->boundingRectInUserUnit();
    const float bottom = channel->convertValueToUserUnit(-1);
    EXPECT_EQ(rect, (HJRect{1, bottom, 2, channel->convertValueToUserUnit(2) - bottom}));
    EXPECT_LT(rect.y, -57);
}

TEST(KWKeyFramedChannel, KeysInARectIncludeAllBounds) {
    const auto channel = channelWithKeys({{0, 0}, {1, 1}, {2, 2}, {3, 3}});
    EXPECT_EQ(timesOf(channel->keyframesForBoundingRect({1, 1, 1, 1})), (std::vector<float>{1, 2}));
    EXPECT_EQ(timesOf(channel->keyframesForBoundingRect({0, 1.5f, 9, 9})),
              (std::vector<float>{2, 3}));
}

TEST(KWKeyFramedChannel, SelectedKeysMayMoveUpToTheirUnselectedNeighbours) {
    const auto range = [](const KWKeyFramedChannel& channel, std::vector<KWTime> times) {
        return channel.moveRangeForSelectedKeyframes(times);
    };
    const float open = std::numeric_limits<float>::max();
    const auto channel = channelWithKeys({{0, 0}, {1, 0}, {3, 0}});
    EXPECT_EQ(range(*channel, {1}), (HJKeyMoveRange{-1, 2}));
    EXPECT_EQ(range(*channel, {}), (HJKeyMoveRange{0, 0}));
    EXPECT_EQ(range(*channelWithKeys({}), {1}), (HJKeyMoveRange{0, 0}));
    EXPECT_EQ(range(*channel, {3, 0}), (HJKeyMoveRange{-2, 1}));
    EXPECT_EQ(range(*channel, {0, 1}), (HJKeyMoveRange{-open, 2}));
    EXPECT_EQ(range(*channel, {3, 1, 1}), (HJKeyMoveRange{-1, open}));
    EXPECT_EQ(range(*channel, {0, 1, 3}), (HJKeyMoveRange{-open, open}));
    EXPECT_EQ(range(*channel, {7, kwNaN}), (HJKeyMoveRange{-open, open}));
    EXPECT_EQ(range(*channelWithKeys({{0, 0}, {1, 0}, {3, 0}, {3.5f, 0}}), {1, 3.5f}),
              (HJKeyMoveRange{-0.5f, 2}));
}

// --- Copies

TEST(KWKeyFramedChannel, ACopyHasKeysModesAndSavedCopiesOfItsOwn) {
    Edited x;
    x.set(1, recordWith(0.5f), 0);
    x.set(2, oddRecord(3), 1);
    x.channel->setName("curve");
    x.channel->setKeyFrameChannelMode(KWKeyFrameModeStep);
    x.channel->setRepeatMode(KWRepeatModePingPong);
    const auto copy = std::dynamic_pointer_cast<KWKeyFramedChannel>(x.channel->copy());
    ASSERT_TRUE(copy);
    EXPECT_EQ(contentsOf(*copy), contentsOf(*x.channel));
    EXPECT_EQ(copy->name(), "curve");
    EXPECT_EQ(copy->keyFrameChannelMode(), KWKeyFrameModeStep);
    EXPECT_EQ(copy->repeatMode(), KWRepeatModePingPong);
    EXPECT_EQ(copy->owner(), nullptr);
    EXPECT_FALSE(copy->isRegular());
    copy->setValueForKeyframe(9, KWTime(5));
    EXPECT_EQ(x.channel->keyframeCount(), 2u);
    EXPECT_EQ(KWKeyFramedChannel::initWithChannel(KWChannel()), nullptr);

    // The saved copies come along: a stop without a start of its own goes back to them.
    x.channel->startManipulation();
    const auto taken = KWKeyFramedChannel::initWithChannel(*x.channel);
    NoticeCounter notices(taken.get());
    taken->stopManipulation();
    EXPECT_EQ(notices.count, 0);
}

TEST(KWKeyFramedChannel, ASubclassWithAClassOfItsOwnCopiesAsItself) {
    class Wave final : public KWKeyFramedChannel {
      public:
        static const KWClass& classObject() {
            static constinit KWClass theClass{"Wave", &KWKeyFramedChannel::classObject, 0,
                                              KWClass::make<Wave>};
            return theClass;
        }
        const KWClass& isa() const override { return classObject(); }
    };
    const auto wave = std::make_shared<Wave>();
    wave->setValueForKeyframe(3, KWTime(1));
    const auto copy = std::dynamic_pointer_cast<Wave>(wave->copy());
    ASSERT_TRUE(copy);
    EXPECT_EQ(copy->valueForKeyframe(KWTime(1)), 3);
    EXPECT_EQ(KWKeyFramedChannel::initWithChannel(*wave), nullptr);
}

TEST(KWKeyFramedChannel, ASubclassWithoutAClassOfItsOwnHasNoCopyUnlessItMakesOne) {
    class Wave : public KWKeyFramedChannel {};
    class OtherWave final : public KWKeyFramedChannel {
      public:
        std::shared_ptr<KWChannel> copy() const override {
            return KWChannel::initWithChannel<OtherWave>(*this);
        }
    };
    EXPECT_EQ(std::make_shared<Wave>()->copy(), nullptr);
    const auto wave = std::make_shared<OtherWave>();
    wave->setValueForKeyframe(3, KWTime(1));
    const auto copy = std::dynamic_pointer_cast<OtherWave>(wave->copy());
    ASSERT_TRUE(copy);
    EXPECT_EQ(copy->valueForKeyframe(KWTime(1)), 3);
}
