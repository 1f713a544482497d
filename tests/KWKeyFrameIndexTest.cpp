#include <KWBase/KWChannelCursor.h>
#include <KWBase/KWKeyFrameIndex.h>
#include <KWBase/KWKeyFramedChannel.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <bit>
#include <cmath>
#include <limits>
#include <memory>
#include <random>
#include <set>
#include <thread>
#include <vector>

namespace {

using Limits = std::numeric_limits<float>;

/// Asks the index for each key, the floats beside it and a time between it and the next.
void expectAsUpperBound(const std::vector<float>& keys, const KWKeyFrameIndex& index) {
    const auto ask = [&](float t) {
        if (t < keys.front() || t >= keys.back())
            return;
        const auto expected = std::upper_bound(keys.begin(), keys.end(), t) - keys.begin();
        ASSERT_EQ(index.countNotAfter(keys.data(), t), expected) << t;
    };
    for (std::size_t k = 0; k < keys.size(); ++k) {
        ask(keys[k]);
        ask(std::nextafter(keys[k], -Limits::infinity()));
        ask(std::nextafter(keys[k], Limits::infinity()));
        if (k + 1 < keys.size())
            ask(std::midpoint(keys[k], keys[k + 1]));
    }
}

void expectIndexed(const std::vector<float>& keys) {
    const auto index = KWKeyFrameIndex::make(keys);
    ASSERT_TRUE(index);
    expectAsUpperBound(keys, *index);
}

std::vector<float> ascending(const std::set<float>& keys) {
    return {keys.begin(), keys.end()};
}

std::shared_ptr<KWKeyFramedChannel> channelOf(const std::vector<float>& keys) {
    auto channel = std::make_shared<KWKeyFramedChannel>();
    float value = 0;
    for (const float key : keys)
        channel->setValueForKeyframe(value = 1.5f - value, KWTime(key));
    return channel;
}

/// Asks as often as it takes until an index is made.
void readOften(const KWKeyFramedChannel& channel) {
    for (std::uint32_t k = 0; k < channel.keyframeCount(); ++k)
        channel.valueForTime(*channel.keyframeAtIndex(k / 2));
}

} // namespace

TEST(KWKeyFrameIndex, FindsKeysAtEvenDistances) {
    std::vector<float> keys;
    for (int k = 0; k < 1000; ++k)
        keys.push_back(0.04f * static_cast<float>(k));
    expectIndexed(keys);
}

TEST(KWKeyFrameIndex, FindsKeysThatLieClose) {
    std::vector<float> keys{0};
    for (int k = 0; k < 300; ++k)
        keys.push_back(std::nextafter(keys.back(), 1.0f));
    for (int k = 0; k < 300; ++k)
        keys.push_back(1 + static_cast<float>(k) / 1024);
    keys.push_back(1e6f);
    expectIndexed(keys);
}

TEST(KWKeyFrameIndex, FindsRandomKeysOfAllSizes) {
    std::mt19937 random(1);
    for (int round = 0; round < 200; ++round) {
        std::set<float> keys;
        const float center = std::ldexp(1.0f, static_cast<int>(random() % 40) - 20);
        const float width = std::ldexp(1.0f, static_cast<int>(random() % 60) - 30);
        std::uniform_real_distribution<float> inside(center - width, center + width);
        for (unsigned k = 0; k < 4 + random() % 200; ++k)
            keys.insert(inside(random));
        const std::vector<float> sorted = ascending(keys);
        if (const auto index = KWKeyFrameIndex::make(sorted))
            expectAsUpperBound(sorted, *index);
        else
            EXPECT_LT(keys.size(), 4U);
    }
}

TEST(KWKeyFrameIndex, FindsRandomFloatsOfAllKinds) {
    std::mt19937 random(2);
    for (int round = 0; round < 200; ++round) {
        std::set<float> keys;
        while (keys.size() < 50) {
            const auto key = std::bit_cast<float>(static_cast<std::uint32_t>(random()));
            if (std::fabs(key) < 1e37f)
                keys.insert(key);
        }
        expectIndexed(ascending(keys));
    }
}

TEST(KWKeyFrameIndex, IsNotMadeOfFewKeysNorOfSpansThatNoFloatHolds) {
    EXPECT_FALSE(KWKeyFrameIndex::make({}));
    EXPECT_FALSE(KWKeyFrameIndex::make(std::vector<float>{0, 1, 2}));
    EXPECT_FALSE(KWKeyFrameIndex::make(std::vector<float>{Limits::lowest(), 0, 1, Limits::max()}));
    EXPECT_FALSE(KWKeyFrameIndex::make(std::vector<float>{0, 1, 2, Limits::infinity()}));
    EXPECT_FALSE(KWKeyFrameIndex::make(std::vector<float>{-Limits::infinity(), 1, 2, 3}));
    const float least = Limits::denorm_min();
    EXPECT_FALSE(KWKeyFrameIndex::make(std::vector<float>{0, least, 2 * least, 3 * least}));
}

TEST(KWKeyFrameIndex, IsMadeAfterManyReadingsAndDroppedByEdits) {
    std::vector<float> keys(100);
    for (int k = 0; k < 100; ++k)
        keys[static_cast<std::size_t>(k)] = static_cast<float>(k);
    KWKeyFrameIndexSlot slot;
    for (int k = 0; k < 24; ++k)
        slot.noteSearch(keys);
    EXPECT_FALSE(slot.index());
    slot.noteSearch(keys);
    EXPECT_TRUE(slot.index());
    slot.drop();
    EXPECT_FALSE(slot.index());
    slot.noteSearch(keys);
    EXPECT_FALSE(slot.index());
}

TEST(KWKeyFrameIndex, IsNotTriedTwiceForKeysThatHaveNone) {
    const std::vector<float> keys{0, 1, 2, Limits::infinity()};
    KWKeyFrameIndexSlot slot;
    for (int k = 0; k < 10; ++k)
        slot.noteSearch(keys);
    EXPECT_FALSE(slot.index());
}

TEST(KWKeyFrameIndex, AChannelAnswersTheSameWithAndWithout) {
    std::mt19937 random(3);
    std::uniform_real_distribution<float> inside(-1, 120);
    for (const std::int32_t repeat : {0, 1, 2}) {
        std::set<float> keys;
        while (keys.size() < 150)
            keys.insert(inside(random));
        const auto read = channelOf(ascending(keys));
        read->setRepeatMode(repeat);
        readOften(*read);
        std::uniform_real_distribution<float> around(-300, 500);
        for (int k = 0; k < 2000; ++k) {
            const KWTime time(around(random));
            const auto fresh = std::dynamic_pointer_cast<KWKeyFramedChannel>(read->copy());
            ASSERT_EQ(std::bit_cast<std::uint32_t>(read->valueForTime(time)),
                      std::bit_cast<std::uint32_t>(fresh->valueForTime(time)));
        }
    }
}

TEST(KWKeyFrameIndex, EditsAreSeenAtOnce) {
    std::mt19937 random(4);
    std::uniform_real_distribution<float> inside(0, 50);
    const auto channel = std::make_shared<KWKeyFramedChannel>();
    KWChannelCursor cursor(channel);
    for (int round = 0; round < 3000; ++round) {
        const std::uint32_t count = channel->keyframeCount();
        switch (random() % 4) {
        case 0:
            channel->setValueForKeyframe(inside(random), KWTime(inside(random)));
            break;
        case 1:
            if (count > 40)
                channel->removeValueForKeyframe(
                    *channel->keyframeAtIndex(static_cast<std::uint32_t>(random() % count)));
            break;
        case 2:
            if (count > 0)
                channel->setValueForKeyframe(
                    inside(random),
                    *channel->keyframeAtIndex(static_cast<std::uint32_t>(random() % count)));
            break;
        default:
            readOften(*channel);
        }
        const auto fresh = std::dynamic_pointer_cast<KWKeyFramedChannel>(channel->copy());
        for (int k = 0; k < 4; ++k) {
            const KWTime time(inside(random));
            const auto expected = std::bit_cast<std::uint32_t>(fresh->valueForTime(time));
            ASSERT_EQ(std::bit_cast<std::uint32_t>(channel->valueForTime(time)), expected);
            ASSERT_EQ(std::bit_cast<std::uint32_t>(cursor.valueForTime(time)), expected);
        }
    }
}

TEST(KWKeyFrameIndex, ACursorFollowsChangesOfTheModes) {
    const auto channel = channelOf({0, 1, 2, 3, 4});
    KWChannelCursor cursor(channel);
    for (const std::int32_t mode : {0, 1, 2, 5})
        for (const std::int32_t repeat : {KWRepeatModeCycle, KWRepeatModeNone}) {
            channel->setKeyFrameChannelMode(mode);
            channel->setRepeatMode(repeat);
            for (const float t : {0.25f, 0.5f, 3.75f, 5.25f, -0.75f})
                EXPECT_EQ(std::bit_cast<std::uint32_t>(cursor.valueForTime(KWTime(t))),
                          std::bit_cast<std::uint32_t>(channel->valueForTime(KWTime(t))));
        }
}

TEST(KWKeyFrameIndex, ACursorReadsAChannelThatNeverHadKeys) {
    const auto channel = std::make_shared<KWKeyFramedChannel>();
    channel->setRepeatMode(KWRepeatModeCycle);
    KWChannelCursor cursor(channel);
    EXPECT_EQ(cursor.valueForTime(KWTime(1)), 0.0f);
}

TEST(KWKeyFrameIndex, TellsWhereKeysCrowd) {
    std::vector<float> keys;
    for (int k = 0; k < 100; ++k)
        keys.push_back(static_cast<float>(k));
    EXPECT_FALSE(KWKeyFrameIndex::make(keys)->isCrowded());
    for (int k = 0; k < 7; ++k)
        keys.push_back(std::nextafter(keys.back(), 200.0f));
    EXPECT_TRUE(KWKeyFrameIndex::make(keys)->isCrowded());
}

TEST(KWKeyFrameIndex, SeveralThreadsMayMakeIt) {
    std::vector<float> keys;
    for (int k = 0; k < 400; ++k)
        keys.push_back(static_cast<float>(k) + 0.25f * static_cast<float>(k % 3));
    for (int round = 0; round < 20; ++round) {
        const auto channel = channelOf(keys);
        std::vector<float> sums(4);
        std::vector<std::thread> threads;
        for (float& sum : sums)
            threads.emplace_back([&channel, &sum] {
                for (int k = 0; k < 1000; ++k)
                    sum += channel->valueForTime(KWTime(0.4f * static_cast<float>(k)));
            });
        for (std::thread& thread : threads)
            thread.join();
        for (const float sum : sums)
            EXPECT_EQ(sum, sums[0]);
    }
}
