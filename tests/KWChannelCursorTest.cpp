#include "KeyFramedTestSupport.h"

#include <KWBase/KWChannelCursor.h>
#include <KWBase/KWConstantChannel.h>

#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <random>

TEST(KWChannelCursor, NullIsRefused) {
    EXPECT_THROW(KWChannelCursor(nullptr), std::invalid_argument);
}

TEST(KWChannelCursor, ReadsChannelsOfOtherKinds) {
    const auto channel = channelWithNameInitialValueColor<KWConstantChannel>("gain", 2.5f, 0);
    KWChannelCursor cursor(channel);
    EXPECT_EQ(cursor.valueForTime(KWTime(1)), 2.5f);
    EXPECT_EQ(cursor.channel(), channel);
}

TEST(KWChannelCursor, KeepsTheChannelAlive) {
    auto channel = channelWithKeys({{0, 1}, {1, 2}}, KWKeyFrameModeLinear);
    KWChannelCursor cursor(channel);
    channel.reset();
    EXPECT_EQ(cursor.valueForTime(KWTime(0.5f)), 1.5f);
}

TEST(KWChannelCursor, AnswersAsTheChannelInEveryDirection) {
    std::vector<std::pair<float, float>> keys;
    for (int k = 0; k < 50; ++k)
        keys.emplace_back(static_cast<float>(k * k) * 0.1f, static_cast<float>(k % 7));
    for (const std::int32_t repeat : {0, 1, 2, 3}) {
        const auto channel = channelWithKeys(keys, KWKeyFrameModeHermite, repeat);
        KWChannelCursor cursor(channel);
        std::mt19937 random(5);
        float t = 0;
        for (int k = 0; k < 20000; ++k) {
            switch (k / 1000 % 4) {
            case 0:
                t += 0.2f;
                break;
            case 1:
                t -= 0.37f;
                break;
            default:
                t = static_cast<float>(random() % 4000) * 0.1f;
            }
            if (repeat == 3)
                t = std::max(t, 0.0f);
            ASSERT_EQ(bitsOf(cursor.valueForTime(KWTime(t))),
                      bitsOf(channel->valueForTime(KWTime(t))));
        }
    }
}

TEST(KWChannelCursor, StaysRightAcrossEdits) {
    const auto channel = channelWithKeys({});
    KWChannelCursor cursor(channel);
    std::mt19937 random(6);
    const auto time = [&random] { return KWTime(static_cast<float>(random() % 64)); };
    for (int round = 0; round < 20000; ++round) {
        switch (random() % 8) {
        case 0:
            channel->setValueForKeyframe(static_cast<float>(random() % 9), time());
            break;
        case 1:
            channel->removeValueForKeyframe(time());
            break;
        case 2:
            channel->setRepeatMode(static_cast<std::int32_t>(random() % 3));
            channel->setKeyFrameChannelMode(static_cast<std::int32_t>(random() % 3));
            break;
        case 3:
            if (random() % 100 == 0)
                channel->removeAllKeyframes();
            if (random() % 50 == 0)
                channel->setValueHermiteValueForKeyframe(1, KWData(3), time());
            break;
        default:
            break;
        }
        const KWTime t(static_cast<float>(random() % 1000) * 0.07f);
        const Outcome wanted = Outcome::of([&] { return channel->valueForTime(t); });
        ASSERT_EQ(Outcome::of([&] { return cursor.valueForTime(t); }), wanted);
        ASSERT_EQ(Outcome::of([&] {
                      channel->updateForTime(t);
                      return channel->value();
                  }),
                  wanted);
    }
}

TEST(KWChannelCursor, AnswersAsTheChannelForValuesOfAllKinds) {
    std::mt19937 random(7);
    const auto anyFloat = [&random] {
        const float near = static_cast<float>(random() % 200) * 0.01f - 1;
        return random() % 3 == 0   ? std::bit_cast<float>(static_cast<std::uint32_t>(random()))
               : random() % 5 == 0 ? std::copysign(0.0f, near)
                                   : near;
    };
    for (int round = 0; round < 200; ++round) {
        auto channel = std::make_shared<KWKeyFramedChannel>();
        channel->setKeyFrameChannelMode(round % 3);
        for (int k = 0; k < 20; ++k) {
            const HJHermiteParam shape{
                .tension = anyFloat(), .bias = anyFloat(), .continuity = anyFloat()};
            channel->setValueHermiteValueForKeyframe(
                anyFloat(), KWKeyFramedChannel::hermiteDataFrom(&shape),
                KWTime(static_cast<float>(random() % 100) * 0.1f));
        }
        KWChannelCursor cursor(channel);
        for (int k = -10; k < 1100; ++k) {
            const float t = static_cast<float>(k) * 0.01f;
            const std::uint32_t wanted = bitsOf(channel->valueForTime(KWTime(t)));
            ASSERT_EQ(bitsOf(cursor.valueForTime(KWTime(t))), wanted) << round << ' ' << t;
            channel->updateForTime(KWTime(t));
            ASSERT_EQ(bitsOf(channel->value()), wanted) << round << ' ' << t;
        }
    }
}

namespace {

class DoubledChannel final : public KWKeyFramedChannel {
  public:
    float valueForTime(std::optional<KWTime> time) const override {
        return 2 * KWKeyFramedChannel::valueForTime(time);
    }
};

} // namespace

TEST(KWChannelCursor, ASubclassIsUpdatedByItsOwnFunction) {
    const auto channel = std::make_shared<DoubledChannel>();
    channel->setValueForKeyframe(1, KWTime(0));
    channel->setValueForKeyframe(2, KWTime(1));
    for (const float t : {0.25f, 0.5f, 0.75f}) {
        channel->updateForTime(KWTime(t));
        EXPECT_EQ(channel->value(), channel->valueForTime(KWTime(t)));
    }
}
