#include "ChannelArrayTestSupport.h"

#include <gtest/gtest.h>

namespace {

/// An array as an archive without these keys gives it.
std::shared_ptr<KWChannelArray> arrayWithout(const SampleArray& sample,
                                             std::initializer_list<std::string_view> keys) {
    const auto coder = fieldsOf(*sample.array);
    for (const auto key : keys)
        coder->remove(key);
    auto array = std::make_shared<KWChannelArray>();
    EXPECT_TRUE(array->initWithCoder(*coder));
    return array;
}

} // namespace

TEST(KWChannelArrayArchiving, EncodesItsChannelsThenItsGroups) {
    const SampleArray sample;
    const auto coder = fieldsOf(*sample.array);
    EXPECT_EQ(coder->calls(), "channels:object channelGroups:object");
    const KWArchiveArray* const channels = coder->valueForKey("channels").array();
    const KWArchiveArray* const groups = coder->valueForKey("channelGroups").array();
    ASSERT_NE(channels, nullptr);
    ASSERT_NE(groups, nullptr);
    EXPECT_TRUE(channels->isMutable);
    EXPECT_TRUE(groups->isMutable);
    ASSERT_EQ(channels->elements.size(), 2U);
    EXPECT_EQ(channels->elements[0].object(), sample.a);
    ASSERT_EQ(groups->elements.size(), 2U);
    EXPECT_EQ(groups->elements[0].object(), sample.left());
}

TEST(KWChannelArrayArchiving, AKeyedArchiveHoldsBothListsAsMutableArrays) {
    const SampleArray sample;
    const ArchiveReader archive(KWKeyedArchiver::archivedDataWithRootObject(sample.array));
    const auto root = archive.rootObject();
    EXPECT_EQ(archive.keysOf(root), "channels channelGroups");
    EXPECT_EQ(archive.classesOf(root), "KWChannelArray NSObject");
    for (const char* key : {"channels", "channelGroups"})
        EXPECT_EQ(archive.classesOf(archive.objectField(root, key)),
                  "NSMutableArray NSArray NSObject");
}

TEST(KWChannelArrayArchiving, AKeyedRoundTripKeepsGroupsLinksAndOwners) {
    const SampleArray sample;
    sample.array->setChannelsOwner(sample.array.get());
    for (const auto format : {KWPropertyList::Format::binary, KWPropertyList::Format::xml}) {
        const auto read = archivedAndRead(sample.array, format);
        ASSERT_NE(read, nullptr);
        EXPECT_EQ(namesIn(*read->channels()), "a b c d ");
        ASSERT_EQ(read->channelGroupCount(), 2U);
        EXPECT_EQ(read->channelGroupAtIndex(1)->name(), "right");
        EXPECT_EQ(read->channelAtIndexInGroup(0, 0)->channelGroup(), read->channelGroupAtIndex(0));
        EXPECT_EQ(read->channelAtIndexInGroup(0, KWUngroupedChannels)->channelGroup(), nullptr);
        for (const auto& channel : read->channelEnumerator())
            EXPECT_EQ(channel->owner(), read.get());
        EXPECT_EQ(read->getChannelValueAtIndexInGroupForTime(1, 0, KWTime(3)), 4);
        read->addGroupWithName("more");
        EXPECT_EQ(read->channelGroupCount(), 3U);
    }
}

TEST(KWChannelArrayArchiving, AChannelInTwoListsComesBackAsOne) {
    const SampleArray sample;
    sample.array->addChannel(sample.c);
    const auto read = archivedAndRead(sample.array);
    ASSERT_NE(read, nullptr);
    EXPECT_EQ(read->channelAtIndexInGroup(2, KWUngroupedChannels),
              read->channelAtIndexInGroup(0, 0));
}

TEST(KWChannelArrayArchiving, WhatWasReadIsLetGoAltogether) {
    const SampleArray sample;
    sample.array->setChannelsOwner(sample.array.get());
    auto read = archivedAndRead(sample.array);
    const std::weak_ptr<KWChannel> channel = read->channelAtIndexInGroup(0, 0);
    const std::weak_ptr<KWChannelGroup> group = read->channelGroupAtIndex(0);
    const std::weak_ptr<KWChannelArray> array = read;
    read.reset();
    EXPECT_TRUE(channel.expired());
    EXPECT_TRUE(group.expired());
    EXPECT_TRUE(array.expired());
}

TEST(KWChannelArrayArchiving, WithoutAGroupListHasNoGroupsAndGetsNone) {
    const auto array = arrayWithout(SampleArray(), {"channelGroups"});
    EXPECT_EQ(array->channelGroups(), nullptr);
    EXPECT_EQ(array->channelGroupCount(), 0U);
    array->addGroupWithName("g");
    EXPECT_EQ(array->channelGroupCount(), 0U);
    EXPECT_EQ(array->groupWithName("g"), nullptr);
    EXPECT_EQ(array->indexOfGroupNamed("g"), KWUngroupedChannels);
    EXPECT_EQ(array->channelGroupAtIndex(0), nullptr);
    array->removeGroup(nullptr);
    array->addChannelToGroup(constant("e"), 0);
    EXPECT_EQ(array->channelCount(), 2U);
    EXPECT_EQ(array->channels(), array->ungroupedChannels());
    EXPECT_THROW(array->channelAtIndexInGroup(0, 0), std::out_of_range);
    EXPECT_EQ(array->copy()->channelCount(), 2U);
    EXPECT_TRUE(fieldsOf(*array)->valueForKey("channelGroups").isNil());
}

TEST(KWChannelArrayArchiving, WithoutAChannelListTakesNoUngroupedChannels) {
    const auto array = arrayWithout(SampleArray(), {"channels"});
    EXPECT_EQ(array->ungroupedChannels(), nullptr);
    array->addChannel(constant("e"));
    array->addChannelToGroup(constant("e"), KWUngroupedChannels);
    EXPECT_EQ(array->channelCount(), 2U);
    EXPECT_EQ(namesIn(*array->channels()), "c d ");
    EXPECT_THROW(array->channelAtIndexInGroup(0, KWUngroupedChannels), std::out_of_range);
    EXPECT_FALSE(array->replaceChannelWith(constant("e"), constant("f")));
    array->setChannelsOwner(array.get());
    EXPECT_TRUE(array->dependsOnTime());
    EXPECT_EQ(array->copy()->channelCount(), 2U);
    EXPECT_TRUE(fieldsOf(*array)->valueForKey("channels").isNil());
}

TEST(KWChannelArrayArchiving, WithoutBothListsAnswersNoList) {
    const auto array = arrayWithout(SampleArray(), {"channels", "channelGroups"});
    EXPECT_EQ(array->channels(), nullptr);
    EXPECT_TRUE(array->channelEnumerator().empty());
    EXPECT_EQ(array->channelCount(), 0U);
    EXPECT_FALSE(array->dependsOnTime());
    const auto read = archivedAndRead(array);
    ASSERT_NE(read, nullptr);
    EXPECT_EQ(read->channels(), nullptr);
}

TEST(KWChannelArrayArchiving, AGroupWithoutAListCountsAsEmptyInItsArray) {
    MemoryCoder empty;
    const auto hollow = std::make_shared<KWChannelGroup>();
    hollow->initWithCoder(empty);
    const SampleArray sample;
    sample.array->channelGroups()->push_back(hollow);
    EXPECT_EQ(sample.array->channelCount(), 4U);
    EXPECT_EQ(namesIn(*sample.array->channels()), "a b c d ");
    EXPECT_THROW(sample.array->channelAtIndexInGroup(0, 2), std::out_of_range);
    sample.array->addChannelToGroup(constant("e"), 2);
    EXPECT_EQ(sample.array->channelCount(), 4U);
}

TEST(KWChannelArrayArchiving, ListsThatHoldSomethingElseAreErrorsOfTheArchive) {
    const auto channel = KWArchiveValue(constant("a"));
    const auto group = KWArchiveValue(std::make_shared<KWChannelGroup>());
    const std::pair<const char*, KWArchiveValue> wrong[] = {
        {"channels", KWArchiveValue::mutableArray({group})},
        {"channels", channel},
        {"channels", KWArchiveValue::mutableArray({nullptr})},
        {"channelGroups", KWArchiveValue::mutableArray({channel})},
        {"channelGroups", KWArchiveValue("text")},
        {"channelGroups", KWArchiveValue::mutableArray({nullptr})},
    };
    for (const auto& [key, value] : wrong) {
        MemoryCoder coder;
        coder.put("object", key, value);
        KWChannelArray array;
        EXPECT_THROW(array.initWithCoder(coder), KWArchiveError) << key;
    }
}
