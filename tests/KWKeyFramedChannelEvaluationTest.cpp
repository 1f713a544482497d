#include "KeyFramedTestSupport.h"

#include <KWBase/KWChannelCursor.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cfloat>

namespace {

float at(const KWKeyFramedChannel& channel, float t) {
    return channel.valueForTime(KWTime(t));
}

const std::vector<std::pair<float, float>> ramp = {{0, 0}, {2, 10}};

/// Makes channels of every kind, most of them nasty.
class Generator {
  public:
    explicit Generator(std::uint32_t seed) : _random(seed) {}

    std::uint32_t below(std::uint32_t limit) {
        return static_cast<std::uint32_t>(_random() % limit);
    }
    float uniform(float from, float to) {
        return std::uniform_real_distribution<float>(from, to)(_random);
    }
    float hostile() {
        static const float odd[] = {0.0f,       -0.0f,       kwInfinity, -kwInfinity, kwNaN,
                                    -kwNaN,     FLT_MAX,     -FLT_MAX,   FLT_MIN,     1e-45f,
                                    -1e-45f,    1e30f,       -1e30f,     1e-30f,      16777216.0f,
                                    8388608.0f, -8388608.5f, 3e9f,       -3e9f,       0.1f};
        switch (below(4)) {
        case 0:
            return odd[below(std::size(odd))];
        case 1:
            return std::bit_cast<float>(static_cast<std::uint32_t>(_random()));
        default:
            return uniform(-10, 10);
        }
    }
    KWData record(bool hostileShape) {
        HJHermiteParam param;
        for (float* x : {&param.tension, &param.bias, &param.continuity})
            *x = hostileShape ? hostile() : below(3) == 0 ? 0.0f : uniform(-1, 1);
        return KWKeyFramedChannel::hermiteDataFrom(&param);
    }
    /// Equally many keys, values and records, keys ascending.
    PlainChannel regular(bool nasty) {
        PlainChannel lists;
        const std::uint32_t count = below(8) == 0 ? 20 + below(200) : below(9);
        const float scales[] = {1, 1, 1, 1e-38f, 1e-44f, 1e30f, 1e-3f, 100};
        const float scale = nasty ? scales[below(std::size(scales))] : 1;
        float t = uniform(-5, 5) * scale;
        for (std::uint32_t k = 0; k < count; ++k) {
            t += uniform(0.01f, 1) * scale;
            lists.keys.push_back(nasty && below(12) == 0 ? hostile() : t);
        }
        std::erase_if(lists.keys, [](float key) { return std::isnan(key); });
        std::sort(lists.keys.begin(), lists.keys.end());
        lists.keys.erase(std::unique(lists.keys.begin(), lists.keys.end()), lists.keys.end());
        for (std::size_t k = 0; k < lists.keys.size(); ++k) {
            lists.values.push_back(nasty && below(6) == 0 ? hostile() : uniform(-10, 10));
            lists.records.push_back(record(nasty && below(6) == 0));
        }
        modes(lists);
        return lists;
    }
    PlainChannel irregular() {
        PlainChannel lists = regular(below(2) == 0);
        switch (below(4)) {
        case 0:
            std::shuffle(lists.keys.begin(), lists.keys.end(), _random);
            break;
        case 1:
            for (float& key : lists.keys)
                key = below(3) == 0 ? lists.keys[0] : key;
            break;
        case 2:
            for (float& key : lists.keys)
                key = below(3) == 0 ? hostile() : key;
            break;
        default:
            break;
        }
        if (below(3) == 0)
            lists.values.resize(below(static_cast<std::uint32_t>(lists.values.size()) + 3));
        if (below(3) == 0)
            lists.records.resize(below(static_cast<std::uint32_t>(lists.records.size()) + 3),
                                 recordWith(0.5f));
        return lists;
    }
    std::vector<float> times(const PlainChannel& lists, std::size_t count) {
        const float first = lists.keys.empty() ? 0 : lists.keys.front();
        const float last = lists.keys.empty() ? 1 : lists.keys.back();
        const float span = std::isfinite(last - first) && last > first ? last - first : 10;
        std::vector<float> times;
        for (std::size_t k = 0; k < count; ++k) {
            float t = std::isfinite(first) ? first + span * uniform(-1.5f, 2.5f) : hostile();
            if (!lists.keys.empty() && below(4) == 0)
                t = lists.keys[below(static_cast<std::uint32_t>(lists.keys.size()))];
            if (below(8) == 0)
                t = std::nextafter(t, below(2) == 0 ? -kwInfinity : kwInfinity);
            times.push_back(below(16) == 0 ? hostile() : t);
        }
        const std::uint32_t order = below(4);
        if (order == 0)
            std::sort(times.begin(), times.end(),
                      [](float a, float b) { return std::isnan(b) ? !std::isnan(a) : a < b; });
        if (order == 1)
            for (std::size_t k = 0; k < count; ++k)
                times[k] =
                    first + span * (2 * static_cast<float>(k) / static_cast<float>(count) - 0.5f);
        return times;
    }

  private:
    void modes(PlainChannel& lists) {
        lists.mode = below(2) == 0 ? 1 : static_cast<std::int32_t>(below(6)) - 1;
        lists.repeat = below(3) != 0 ? static_cast<std::int32_t>(below(3))
                                     : static_cast<std::int32_t>(below(6)) - 1;
    }
    std::mt19937 _random;
};

void expectBatchAgrees(const KWKeyFramedChannel& channel, const std::vector<float>& times) {
    std::vector<float> values(times.size(), 77);
    Outcome last;
    std::size_t firstBad = 0;
    for (; firstBad < times.size(); ++firstBad) {
        last = Outcome::of([&] { return at(channel, times[firstBad]); });
        if (!last.exception.empty())
            break;
    }
    const Outcome batch = Outcome::of([&] {
        channel.valuesForTimes(times, values);
        return 0.0f;
    });
    ASSERT_EQ(batch.exception, last.exception);
    for (std::size_t k = 0; k < firstBad; ++k)
        ASSERT_EQ(bitsOf(values[k]), bitsOf(at(channel, times[k]))) << k << " at " << times[k];
    for (std::size_t k = firstBad; k < times.size(); ++k)
        ASSERT_EQ(values[k], 77);
}

void expectAllAgree(const PlainChannel& lists, const std::shared_ptr<KWKeyFramedChannel>& channel,
                    const std::vector<float>& times) {
    KWChannelCursor cursor(channel);
    for (const float t : times) {
        const Outcome plain = Outcome::of([&] { return lists.valueForTime(t); });
        const Outcome one = Outcome::of([&] { return at(*channel, t); });
        ASSERT_TRUE(one.agreesWith(plain))
            << one << " is not " << plain << " at " << t << ", mode " << lists.mode << ", repeat "
            << lists.repeat << ", keys " << testing::PrintToString(lists.keys);
        const Outcome read = Outcome::of([&] { return cursor.valueForTime(t); });
        ASSERT_EQ(read, one) << "at " << t;
    }
    expectBatchAgrees(*channel, times);
}

} // namespace

TEST(KWKeyFramedChannelEvaluation, WithoutKeysEveryTimeAndModeGivesZero) {
    for (std::int32_t mode = -1; mode < 5; ++mode)
        for (std::int32_t repeat = -1; repeat < 5; ++repeat)
            for (const float t : {-1.0f, 0.0f, 7.0f, kwNaN, kwInfinity})
                EXPECT_EQ(bitsOf(at(*channelWithKeys({}, mode, repeat), t)), 0u);
}

TEST(KWKeyFramedChannelEvaluation, OneKeyGivesItsValueWhateverTheTimeAndModes) {
    for (std::int32_t mode = -1; mode < 5; ++mode)
        for (std::int32_t repeat = -1; repeat < 5; ++repeat)
            for (const float t : {-1.0f, 3.0f, 7.0f, kwNaN, kwInfinity})
                EXPECT_EQ(at(*channelWithKeys({{3, 2.5f}}, mode, repeat), t), 2.5f);
}

TEST(KWKeyFramedChannelEvaluation, LinearWithoutRepeatHoldsTheEnds) {
    const auto channel = channelWithKeys(ramp, KWKeyFrameModeLinear);
    EXPECT_EQ(at(*channel, 1), 5);
    EXPECT_EQ(at(*channel, -1), 0);
    EXPECT_EQ(at(*channel, 3), 10);
    EXPECT_EQ(at(*channel, 2), 10);
}

TEST(KWKeyFramedChannelEvaluation, CycleWrapsTimeAroundTheRange) {
    const auto channel = channelWithKeys(ramp, KWKeyFrameModeLinear, KWRepeatModeCycle);
    EXPECT_EQ(at(*channel, 3), 5);
    EXPECT_EQ(at(*channel, -1), 5);
}

TEST(KWKeyFramedChannelEvaluation, PingPongRunsBackInOddTurns) {
    const auto channel = channelWithKeys(ramp, KWKeyFrameModeLinear, KWRepeatModePingPong);
    EXPECT_EQ(at(*channel, 3), 5);
    EXPECT_EQ(at(*channel, 5), 5);
    EXPECT_EQ(at(*channel, 2.5f), 7.5f);
    EXPECT_EQ(at(*channel, -0.5f), 2.5f);
}

TEST(KWKeyFramedChannelEvaluation, StepHoldsTheEarlierValueUpToTheNextKey) {
    const auto channel = channelWithKeys(ramp, KWKeyFrameModeStep);
    EXPECT_EQ(at(*channel, 1.9f), 0);
    EXPECT_EQ(at(*channel, 2), 10);
}

TEST(KWKeyFramedChannelEvaluation, NeutralHermiteOverThreeKeysGivesFiveEighths) {
    EXPECT_EQ(at(*channelWithKeys({{0, 0}, {1, 1}, {2, 0}}), 0.5f), 0.625f);
}

TEST(KWKeyFramedChannelEvaluation, FullTensionEasesInAndOut) {
    const auto channel = channelWithKeys({});
    channel->setValueHermiteValueForKeyframe(0, recordWith(1), KWTime(0));
    channel->setValueHermiteValueForKeyframe(1, recordWith(1), KWTime(1));
    EXPECT_EQ(at(*channel, 0.25f), 0.15625f); // 3/16 - 2/64
    EXPECT_EQ(at(*channel, 0.5f), 0.5f);
    EXPECT_EQ(at(*channel, 0.75f), 0.84375f);
}

TEST(KWKeyFramedChannelEvaluation, TangentFactorsOfStartAndEndDifferInTheirSigns) {
    const auto channel = channelWithKeys({});
    channel->setValueForKeyframe(3, KWTime(0));
    channel->setValueHermiteValueForKeyframe(4, recordWith(0, 0.5f, 0.25f), KWTime(1));
    channel->setValueHermiteValueForKeyframe(6, recordWith(0, 0.5f, 0.25f), KWTime(2));
    channel->setValueForKeyframe(5, KWTime(3));
    // Start (1.5)(1.25)(1)/2 + (0.5)(0.75)(2)/2, end (1.5)(0.75)(2)/2 + (0.5)(1.25)(-1)/2.
    const float start = 1.3125f;
    const float end = 0.8125f;
    EXPECT_EQ(at(*channel, 1.5f), 5 + start / 8 - end / 8);
}

TEST(KWKeyFramedChannelEvaluation, TwoKeysAtOneTimeUnderCycleGiveTheLastValueBefore) {
    PlainChannel lists{{1, 1}, {3, 4}, {recordWith(0), recordWith(0)}, 0, KWRepeatModeCycle};
    for (const std::int32_t mode : {KWKeyFrameModeLinear, KWKeyFrameModeStep}) {
        lists.mode = mode;
        EXPECT_EQ(at(*channelFromLists(lists), 0), 4);
    }
    lists.mode = KWKeyFrameModeHermite;
    EXPECT_THROW(at(*channelFromLists(lists), 0), std::out_of_range);
    EXPECT_EQ(at(*channelFromLists(lists), 1), 4);
}

TEST(KWKeyFramedChannelEvaluation, HermiteBeforeTheFirstKeyUnderOtherRepeatCodesIsOutOfRange) {
    for (const std::int32_t repeat : {-1, 3, 4}) {
        const auto channel =
            channelWithKeys({{0, 1}, {1, 5}, {3, 2}}, KWKeyFrameModeHermite, repeat);
        EXPECT_THROW(at(*channel, -0.5f), std::out_of_range);
        EXPECT_NO_THROW(at(*channel, 0));
        EXPECT_NO_THROW(at(*channel, 4));
        channel->setKeyFrameChannelMode(KWKeyFrameModeLinear);
        EXPECT_EQ(at(*channel, -1.5f), 0.5f); // 1 + (0 + 1.5) / (0 - 3) * (2 - 1)
    }
}

TEST(KWKeyFramedChannelEvaluation, OtherRepeatCodesRunFromTheLastKeyToTheFirst) {
    const auto channel = channelWithKeys(ramp, KWKeyFrameModeLinear, 3);
    EXPECT_EQ(at(*channel, 3), 15);
    EXPECT_EQ(at(*channel, 2), 10);
    EXPECT_EQ(at(*channel, 1), 5);
}

TEST(KWKeyFramedChannelEvaluation, OtherModeCodesGiveZeroBetweenTheKeysAndHoldTheEnds) {
    for (const std::int32_t mode : {-1, 3, 4}) {
        const auto channel = channelWithKeys({{0, 3}, {2, 10}}, mode);
        EXPECT_EQ(bitsOf(at(*channel, 1)), 0u);
        EXPECT_EQ(at(*channel, -1), 3);
        EXPECT_EQ(at(*channel, 2), 10);
    }
}

TEST(KWKeyFramedChannelEvaluation, AMappedTimeBelowTheFirstKeyIsTheFirstKeyInHermiteMode) {
    // 2^31 turns and more do not fit: the mapped time stays far before the first key.
    const auto channel =
        channelWithKeys({{0, 1}, {1, 5}, {3, 2}}, KWKeyFrameModeHermite, KWRepeatModePingPong);
    EXPECT_EQ(at(*channel, -1e20f), 1);
    // Here rounding alone ends below the first key.
    Generator random(11);
    int below = 0;
    for (int k = 0; k < 200000 && below < 10; ++k) {
        const float first = random.uniform(0.1f, 2);
        const float last = first + random.uniform(0.1f, 2);
        const float length = last - first;
        const float t =
            std::nextafter(first - static_cast<float>(random.below(9)) * length, -kwInfinity);
        const float turns = std::floor((t - first) / length);
        const auto mapped = static_cast<float>(
            static_cast<double>(t) - static_cast<double>(turns) * static_cast<double>(length));
        if (!(mapped < first))
            continue;
        ++below;
        const auto cycle =
            channelWithKeys({{first, 3}, {last, 7}}, KWKeyFrameModeHermite, KWRepeatModeCycle);
        EXPECT_EQ(at(*cycle, t), 3);
        // The other modes take the stretch from the last key to the first.
        cycle->setKeyFrameChannelMode(KWKeyFrameModeStep);
        EXPECT_EQ(at(*cycle, t), 7);
    }
    EXPECT_GT(below, 0);
}

TEST(KWKeyFramedChannelEvaluation, PingPongCountsBeyond32BitsSaturate) {
    PlainChannel lists{
        {0, 1}, {0, 4}, {recordWith(0), recordWith(0)}, KWKeyFrameModeLinear, KWRepeatModePingPong};
    const auto channel = channelFromLists(lists);
    for (const float t : {3e9f, -3e9f, 1e30f, -1e30f, kwInfinity, -kwInfinity, 2147483648.0f})
        EXPECT_TRUE(Outcome::of([&] { return at(*channel, t); }).agreesWith(Outcome::of([&] {
            return lists.valueForTime(t);
        }))) << t;
    EXPECT_EQ(at(*channel, 4294967296.0f), -4.0f * 2147483648.0f); // an odd count
}

TEST(KWKeyFramedChannelEvaluation, NilCountsAsZeroSeconds) {
    const auto channel = channelWithKeys({{-1, 1}, {1, 3}}, KWKeyFrameModeLinear);
    EXPECT_EQ(channel->valueForTime(std::nullopt), 2);
}

TEST(KWKeyFramedChannelEvaluation, NaNTimesFallBehindTheLastKey) {
    EXPECT_EQ(at(*channelWithKeys(ramp), kwNaN), 10);
    EXPECT_TRUE(
        std::isnan(at(*channelWithKeys(ramp, KWKeyFrameModeHermite, KWRepeatModeCycle), kwNaN)));
    EXPECT_EQ(at(*channelWithKeys(ramp, KWKeyFrameModeStep, KWRepeatModePingPong), kwNaN), 10);
}

TEST(KWKeyFramedChannelEvaluation, TheValueIsNeitherKeptNorReadFromWhatIsKept) {
    const auto channel = channelWithKeys(ramp, KWKeyFrameModeLinear);
    channel->updateForTime(KWTime(1));
    EXPECT_EQ(at(*channel, 2), 10);
    EXPECT_EQ(channel->value(), 5);
}

TEST(KWKeyFramedChannelEvaluation, OnlyMoreThanOneKeyDependsOnTime) {
    EXPECT_FALSE(channelWithKeys({})->dependsOnTime());
    EXPECT_FALSE(channelWithKeys({{0, 1}})->dependsOnTime());
    EXPECT_TRUE(channelWithKeys({{0, 1}, {1, 1}})->dependsOnTime());
}

TEST(KWKeyFramedChannelEvaluation, AnOddRecordObjectsWhereItsStretchStartsInEveryMode) {
    for (std::int32_t mode = -1; mode < 4; ++mode) {
        const auto channel = channelWithKeys({{0, 1}, {1, 5}, {2, 7}}, mode);
        channel->setValueHermiteValueForKeyframe(5, KWData(7), KWTime(1));
        EXPECT_FALSE(channel->isRegular());
        EXPECT_EQ(Outcome::of([&] { return at(*channel, 1.5f); }).exception,
                  "KWHermiteParam size mismatch");
        EXPECT_NO_THROW(at(*channel, 0.5f)); // it is the end of this one
        EXPECT_EQ(at(*channel, 2), 7);
        EXPECT_EQ(at(*channel, -1), 1);
    }
}

TEST(KWKeyFramedChannelEvaluation, AShortRecordAtTheEndOfAStretchCountsAsFarAsItGoes) {
    const auto whole = channelWithKeys({{0, 1}, {1, 5}, {2, 7}});
    whole->setValueHermiteValueForKeyframe(5, recordWith(0.5f), KWTime(1));
    const auto cut = channelWithKeys({{0, 1}, {1, 5}, {2, 7}});
    KWData record = recordWith(0.5f);
    record.resize(4);
    cut->setValueHermiteValueForKeyframe(5, record, KWTime(1));
    EXPECT_EQ(at(*cut, 0.5f), at(*whole, 0.5f));
}

TEST(KWKeyFramedChannelEvaluation, AMissingValueOrRecordIsOutOfRange) {
    const KWData neutral = recordWith(0);
    const auto noValue = channelFromLists({{0, 1, 2}, {1, 2}, {neutral, neutral, neutral}});
    EXPECT_FALSE(noValue->isRegular());
    EXPECT_NO_THROW(at(*noValue, -1));
    EXPECT_THROW(at(*noValue, 1.5f), std::out_of_range);
    EXPECT_THROW(at(*noValue, 3), std::out_of_range);
    const auto noRecord = channelFromLists({{0, 1, 2}, {1, 2, 3}, {neutral, neutral}, 0});
    EXPECT_NO_THROW(at(*noRecord, 0.5f));
    EXPECT_THROW(at(*noRecord, 1.5f), std::out_of_range);
    EXPECT_EQ(at(*noRecord, 3), 3);
}

TEST(KWKeyFramedChannelEvaluation, TheIndexPrecedingATimeCountsAKeyAtTheTime) {
    const auto channel = channelWithKeys({{0, 0}, {1, 0}, {2, 0}});
    EXPECT_EQ(channel->keyframeIndexPrecedingTime(KWTime(-0.5f)), KWBeforeFirstKeyframe);
    EXPECT_EQ(channel->keyframeIndexPrecedingTime(KWTime(-0.0f)), 0u);
    EXPECT_EQ(channel->keyframeIndexPrecedingTime(KWTime(0.5f)), 0u);
    EXPECT_EQ(channel->keyframeIndexPrecedingTime(KWTime(1)), 1u);
    EXPECT_EQ(channel->keyframeIndexPrecedingTime(KWTime(9)), 2u);
    EXPECT_EQ(channel->keyframeIndexPrecedingTime(KWTime(kwNaN)), 2u);
    EXPECT_EQ(channelWithKeys({})->keyframeIndexPrecedingTime(KWTime(0)), KWNoKeyframes);
    EXPECT_EQ(KWBeforeFirstKeyframe, 0xffffffffu);
    EXPECT_EQ(KWNoKeyframes, 0xfffffffeu);
}

TEST(KWKeyFramedChannelEvaluation, UnsortedKeysAreWalkedFromTheStart) {
    const KWData neutral = recordWith(0);
    const auto channel =
        channelFromLists({{0, 5, 2, 9}, {1, 2, 3, 4}, {neutral, neutral, neutral, neutral}, 2});
    EXPECT_FALSE(channel->isRegular());
    EXPECT_EQ(channel->keyframeIndexPrecedingTime(KWTime(3)), 0u);
    EXPECT_EQ(at(*channel, 3), 1);
    EXPECT_EQ(at(*channel, 6), 3);
}

TEST(KWKeyFramedChannelEvaluation, RegularChannelsAgreeWithThePlainWalkByBits) {
    Generator random(1);
    for (int round = 0; round < 600 && !testing::Test::HasFailure(); ++round) {
        const PlainChannel lists = random.regular(round % 2 == 0);
        const auto channel = channelFromLists(lists);
        ASSERT_TRUE(channel->isRegular());
        expectAllAgree(lists, channel,
                       random.times(lists, 1 + random.below(round % 20 ? 90 : 1100)));
    }
}

TEST(KWKeyFramedChannelEvaluation, ChannelsMadeByEditsAgreeWithThePlainWalkByBits) {
    Generator random(2);
    for (int round = 0; round < 300 && !testing::Test::HasFailure(); ++round) {
        const PlainChannel lists = random.regular(round % 2 == 0);
        auto channel = std::make_shared<KWKeyFramedChannel>();
        std::vector<std::size_t> order(lists.keys.size());
        for (std::size_t k = 0; k < order.size(); ++k)
            order[k] = k;
        std::shuffle(order.begin(), order.end(), std::mt19937(random.below(1000)));
        for (const std::size_t k : order) {
            const float wrong = random.uniform(-1e6f, 1e6f);
            channel->setValueForKeyframe(1, KWTime(wrong));
            channel->setValueForKeyframe(1, KWTime(lists.keys[k]));
            channel->setValueHermiteValueForKeyframe(lists.values[k], recordWith(0.9f),
                                                     KWTime(lists.keys[k]));
            if (std::find(lists.keys.begin(), lists.keys.end(), wrong) == lists.keys.end())
                channel->removeValueForKeyframe(KWTime(wrong));
        }
        for (const std::size_t k : order)
            channel->modifyHermiteValueForKeyframe(lists.records[k], KWTime(lists.keys[k]));
        channel->setKeyFrameChannelMode(lists.mode);
        channel->setRepeatMode(lists.repeat);
        expectAllAgree(lists, channel, random.times(lists, 60));
    }
}

TEST(KWKeyFramedChannelEvaluation, IrregularChannelsFollowTheWalkByBits) {
    Generator random(3);
    for (int round = 0; round < 1500 && !testing::Test::HasFailure(); ++round) {
        const PlainChannel lists = random.irregular();
        expectAllAgree(lists, channelFromLists(lists), random.times(lists, 40));
    }
}

TEST(KWKeyFramedChannelEvaluation, ChannelsWithOddRecordsFollowTheWalkByBits) {
    Generator random(4);
    for (int round = 0; round < 300 && !testing::Test::HasFailure(); ++round) {
        PlainChannel lists = random.regular(false);
        const auto channel = channelFromLists(lists);
        for (std::size_t k = 0; k < lists.keys.size(); ++k) {
            if (random.below(4) != 0)
                continue;
            lists.records[k].resize(random.below(3) == 0 ? 40 : random.below(36), std::byte{0x3f});
            channel->setValueHermiteValueForKeyframe(lists.values[k], lists.records[k],
                                                     KWTime(lists.keys[k]));
        }
        expectAllAgree(lists, channel, random.times(lists, 40));
    }
}

TEST(KWKeyFramedChannelEvaluation, ABatchMayOverwriteItsTimes) {
    Generator random(5);
    for (const std::int32_t repeat : {0, 1, 2}) {
        PlainChannel lists = random.regular(false);
        lists.keys.resize(1);
        lists.repeat = repeat;
        const auto channel = channelWithKeys({{0, 1}, {1, 5}, {3, 2}, {4, 9}, {7, 1}},
                                             KWKeyFrameModeHermite, repeat);
        std::vector<float> times;
        for (int k = 0; k < 1500; ++k)
            times.push_back(random.uniform(-3, 10));
        std::vector<float> expected(times.size());
        channel->valuesForTimes(times, expected);
        channel->valuesForTimes(times, times);
        for (std::size_t k = 0; k < times.size(); ++k)
            ASSERT_EQ(bitsOf(times[k]), bitsOf(expected[k]));
    }
}

TEST(KWKeyFramedChannelEvaluation, ABatchOfOtherSizeIsRefused) {
    std::vector<float> values(2);
    const std::vector<float> times(3);
    EXPECT_THROW(channelWithKeys({})->valuesForTimes(times, values), std::invalid_argument);
    EXPECT_THROW(channelWithKeys(ramp)->valuesForTimes(times, values), std::invalid_argument);
    EXPECT_NO_THROW(channelWithKeys(ramp)->valuesForTimes({}, {}));
}

TEST(KWKeyFramedChannelEvaluation, ABatchThatRaisesLeavesTheEarlierValues) {
    const auto channel = channelWithKeys({{0, 1}, {1, 5}, {3, 2}}, KWKeyFrameModeHermite, 3);
    std::vector<float> times(700, 0.5f);
    times[601] = -1;
    expectBatchAgrees(*channel, times);
    times[0] = -1;
    expectBatchAgrees(*channel, times);
}

TEST(KWKeyFramedChannelEvaluation, ABatchOfASubclassAnswersItsOwnValues) {
    class Doubled final : public KWKeyFramedChannel {
      public:
        float valueForTime(std::optional<KWTime> time) const override {
            return 2 * KWKeyFramedChannel::valueForTime(time);
        }
    };
    const auto channel = std::make_shared<Doubled>();
    channel->setValueForKeyframe(1, KWTime(0));
    channel->setValueForKeyframe(3, KWTime(1));
    const std::vector<float> times{0, 1};
    std::vector<float> values(2);
    channel->valuesForTimes(times, values);
    EXPECT_EQ(values, (std::vector<float>{2, 6}));
    KWChannelCursor cursor(channel);
    EXPECT_EQ(cursor.valueForTime(KWTime(1)), 6);
}
