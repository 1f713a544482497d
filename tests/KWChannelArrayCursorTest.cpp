#include "KeyFramedTestSupport.h"

#include <KWBase/KWChannelArrayCursor.h>
#include <KWBase/KWConstantChannel.h>

#include <gtest/gtest.h>

#include <random>
#include <vector>

namespace {

/// Channels of several kinds, modes and repeats, ungrouped and in a group, with a hole between.
std::shared_ptr<KWChannelArray> sampleArray() {
    std::mt19937 random(11);
    auto array = std::make_shared<KWChannelArray>();
    array->addGroupWithName("group");
    for (int c = 0; c < 40; ++c) {
        std::vector<std::pair<float, float>> keys;
        for (int k = 0; k < c; ++k)
            keys.emplace_back(static_cast<float>(k) + 0.01f * static_cast<float>(random() % 90),
                              static_cast<float>(random() % 100) * 0.1f);
        const auto channel = channelWithKeys(keys, c % 3, c / 3 % 3);
        if (c % 2 == 0)
            array->addChannel(channel);
        else
            array->addChannelToGroup(channel, 0);
    }
    array->addChannel(channelWithNameInitialValueColor<KWConstantChannel>("gain", 2.5f, 0));
    array->ungroupedChannels()->push_back(nullptr);
    return array;
}

void expectAsOneByOne(KWChannelArrayCursor& cursor, const KWChannelList& channels, float t) {
    std::vector<float> values(channels.size());
    cursor.valuesForTime(KWTime(t), values);
    for (std::size_t k = 0; k < values.size(); ++k)
        ASSERT_EQ(bitsOf(values[k]), bitsOf(channels[k]->valueForTime(KWTime(t))))
            << k << ", " << t;
}

} // namespace

TEST(KWChannelArrayCursor, AnswersAsEachChannelAtTimesOfAllKinds) {
    const auto array = sampleArray();
    KWChannelArrayCursor cursor(*array);
    const KWChannelList channels = array->channelEnumerator();
    ASSERT_EQ(cursor.channelCount(), channels.size());
    EXPECT_EQ(cursor.channelAtIndex(3), channels[3]);
    std::mt19937 random(12);
    for (int frame = 0; frame < 3000; ++frame)
        expectAsOneByOne(cursor, channels, static_cast<float>(frame) / 60 - 2);
    for (int frame = 0; frame < 3000; ++frame)
        expectAsOneByOne(cursor, channels, static_cast<float>(random() % 6000) * 0.01f - 10);
}

TEST(KWChannelArrayCursor, FollowsEditsButNotTheList) {
    const auto array = sampleArray();
    KWChannelArrayCursor cursor(*array);
    const KWChannelList channels = array->channelEnumerator();
    array->addChannel(channelWithKeys({{0, 1}}));
    std::mt19937 random(13);
    for (int frame = 0; frame < 1000; ++frame) {
        if (auto* edited = dynamic_cast<KWKeyFramedChannel*>(channels[random() % 40].get()))
            edited->setValueForKeyframe(static_cast<float>(random() % 9),
                                        KWTime(static_cast<float>(random() % 40)));
        expectAsOneByOne(cursor, channels, static_cast<float>(frame) / 30);
    }
}

TEST(KWChannelArrayCursor, WantsAsManyValuesAsChannels) {
    KWChannelArrayCursor cursor(*sampleArray());
    std::vector<float> few(cursor.channelCount() - 1);
    EXPECT_THROW(cursor.valuesForTime(KWTime(0), few), std::invalid_argument);
}

TEST(KWChannelArrayCursor, FillsInWhatComesBeforeAnException) {
    auto array = std::make_shared<KWChannelArray>();
    array->addChannel(channelWithKeys({{0, 3}}));
    const auto odd = channelWithKeys({{0, 1}, {1, 2}});
    odd->setValueHermiteValueForKeyframe(1, KWData(3), KWTime(0));
    array->addChannel(odd);
    KWChannelArrayCursor cursor(*array);
    std::vector<float> values(2, 7.0f);
    EXPECT_ANY_THROW(cursor.valuesForTime(KWTime(0.5f), values));
    EXPECT_EQ(values, (std::vector<float>{3, 7}));
}
