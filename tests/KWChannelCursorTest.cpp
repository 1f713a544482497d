#include "KeyFramedTestSupport.h"

#include <KWBase/KWChannelCursor.h>
#include <KWBase/KWConstantChannel.h>

#include <gtest/gtest.h>

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
        ASSERT_EQ(Outcome::of([&] { return cursor.valueForTime(t); }),
                  Outcome::of([&] { return channel->valueForTime(t); }));
    }
}
