#include <KWBase/KWKeyFrameKernels.h>
#include <KWBase/KWKeyFramedChannel.h>

#include <gtest/gtest.h>
#include <tests/ExpressionTargets.h>

#include <algorithm>
#include <limits>
#include <memory>
#include <random>
#include <set>
#include <vector>

namespace {

using Limits = std::numeric_limits<float>;

struct Recipe {
    std::int32_t mode;
    std::int32_t repeat;
    bool isCrowded;
    bool isWild; ///< values and shapes of all kinds
    std::size_t count;
};

std::shared_ptr<KWKeyFramedChannel> channelBy(const Recipe& recipe, std::mt19937& random) {
    std::uniform_real_distribution<float> unit(-1, 1);
    const auto anyFloat = [&] {
        return recipe.isWild && random() % 3 == 0
                   ? std::bit_cast<float>(static_cast<std::uint32_t>(random()))
                   : unit(random);
    };
    std::set<float> keys;
    while (keys.size() < recipe.count)
        keys.insert(recipe.isCrowded && random() % 2 ? 7 + 1e-3f * unit(random)
                                                     : 10 + 10 * unit(random));
    auto channel = std::make_shared<KWKeyFramedChannel>();
    for (const float key : keys) {
        const HJHermiteParam shape{
            .tension = anyFloat(), .bias = anyFloat(), .continuity = anyFloat()};
        channel->setValueHermiteValueForKeyframe(
            anyFloat(), KWKeyFramedChannel::hermiteDataFrom(&shape), KWTime(key));
    }
    channel->setKeyFrameChannelMode(recipe.mode);
    channel->setRepeatMode(recipe.repeat);
    return channel;
}

void expectAsOneByOne(const KWKeyFramedChannel& channel, const std::vector<float>& times,
                      const char* target) {
    std::vector<float> values(times.size());
    channel.valuesForTimes(times, values);
    for (std::size_t k = 0; k < times.size(); ++k)
        ASSERT_EQ(bitsOf(values[k]), bitsOf(channel.valueForTime(KWTime(times[k]))))
            << target << ", time " << times[k] << " at " << k;
}

void expectBatchesOf(const Recipe& recipe) {
    underEachTarget([&](const char* target) {
        std::mt19937 random(1);
        for (int round = 0; round < 20; ++round) {
            const auto channel = channelBy(recipe, random);
            std::uniform_real_distribution<float> around(-30, 50);
            std::vector<float> times;
            for (unsigned k = 0; k < 700 + random() % 100; ++k)
                times.push_back(around(random));
            for (const float t : {Limits::quiet_NaN(), Limits::infinity(), -Limits::infinity(),
                                  -0.0f, Limits::max()})
                times[random() % times.size()] = t;
            expectAsOneByOne(*channel, times, target);
            std::sort(times.begin(), times.end(), [](float a, float b) { return a < b; });
            expectAsOneByOne(*channel, times, target);
            // A few times in each stretch, then many, then none.
            times.clear();
            for (float t = -1; t < 22; t += round < 10 ? 0.003f : 0.2f)
                times.push_back(t);
            expectAsOneByOne(*channel, times, target);
        }
    });
}

} // namespace

TEST(KWKeyFrameKernels, AnswerAsOneByOneInEveryModeAndRepeat) {
    for (const std::int32_t mode : {0, 1, 2, 5})
        for (const std::int32_t repeat : {0, 1, 2})
            expectBatchesOf({mode, repeat, false, false, 40});
}

TEST(KWKeyFrameKernels, AnswerAsOneByOneWhereKeysCrowd) {
    for (const std::int32_t mode : {0, 1, 2})
        expectBatchesOf({mode, 0, true, false, 200});
}

TEST(KWKeyFrameKernels, AnswerAsOneByOneForValuesOfAllKinds) {
    for (const std::int32_t mode : {0, 1, 2})
        for (const std::int32_t repeat : {0, 1})
            expectBatchesOf({mode, repeat, false, true, 60});
}

TEST(KWKeyFrameKernels, AnswerAsOneByOneWithFewKeys) {
    for (const std::size_t count : {2U, 3U, 4U, 5U})
        for (const std::int32_t mode : {0, 1, 2})
            expectBatchesOf({mode, 0, false, false, count});
}

TEST(KWKeyFrameKernels, ValuesMayOverwriteTheTimes) {
    std::mt19937 random(5);
    const auto channel = channelBy({KWKeyFrameModeHermite, 0, false, false, 50}, random);
    std::uniform_real_distribution<float> inside(0, 20);
    std::vector<float> times(2000);
    for (float& t : times)
        t = inside(random);
    std::vector<float> values(times.size());
    channel->valuesForTimes(times, values);
    std::vector<float> both = times;
    channel->valuesForTimes(both, both);
    for (std::size_t k = 0; k < both.size(); ++k)
        ASSERT_EQ(bitsOf(both[k]), bitsOf(values[k]));
}

TEST(KWKeyFrameKernels, AreThereForWideVectorsOnly) {
    underEachTarget([](const char* target) {
        const bool isWide = target == std::string("AVX2") || target == std::string("AVX-512");
        EXPECT_EQ(KWKeyFrameKernels::best() != nullptr, isWide) << target;
    });
}
