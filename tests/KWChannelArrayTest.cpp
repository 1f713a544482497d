#include "ChannelArrayTestSupport.h"

#include <KWBase/KWKeyFramedChannel.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <random>

TEST(KWChannelArray, IsNewEmpty) {
    const KWChannelArray array;
    EXPECT_EQ(array.channelCount(), 0U);
    EXPECT_EQ(array.channelGroupCount(), 0U);
    ASSERT_NE(array.channels(), nullptr);
    ASSERT_NE(array.ungroupedChannels(), nullptr);
    ASSERT_NE(array.channelGroups(), nullptr);
    EXPECT_EQ(KWChannelArray::classObject().name(), "KWChannelArray");
    EXPECT_EQ(KWChannelArray::classObject().version(), 1);
}

TEST(KWChannelArray, CountsUngroupedAndGroupedChannels) {
    const SampleArray sample;
    EXPECT_EQ(sample.array->channelCount(), 4U);
    EXPECT_EQ(sample.array->channelGroupCount(), 2U);
    EXPECT_EQ(sample.array->ungroupedChannels()->size(), 2U);
}

TEST(KWChannelArray, AddingUngroupedSetsNeitherGroupNorOwner) {
    const SampleArray sample;
    EXPECT_EQ(sample.a->channelGroup(), nullptr);
    EXPECT_EQ(sample.a->owner(), nullptr);
    sample.array->addChannel(sample.a);
    sample.array->addChannel(sample.c);
    EXPECT_EQ(namesIn(*sample.array->ungroupedChannels()), "a b a c ");
    EXPECT_EQ(sample.c->channelGroup(), sample.left());
    EXPECT_EQ(sample.left()->count(), 2U);
    EXPECT_THROW(sample.array->addChannel(nullptr), std::invalid_argument);
}

TEST(KWChannelArray, AddsToTheGroupOfAnIndexOrToTheUngrouped) {
    const SampleArray sample;
    const auto e = constant("e");
    sample.array->addChannelToGroup(e, 1);
    EXPECT_EQ(e->channelGroup(), sample.array->channelGroupAtIndex(1));
    const auto f = constant("f");
    sample.array->addChannelToGroup(f, KWUngroupedChannels);
    EXPECT_EQ(namesIn(*sample.array->ungroupedChannels()), "a b f ");
    EXPECT_THROW(sample.array->addChannelToGroup(nullptr, 0), std::invalid_argument);
}

TEST(KWChannelArray, AddingToAGroupThatIsNotThereIsIgnored) {
    const SampleArray sample;
    const auto e = constant("e");
    for (const std::uint32_t group : {2U, 3U, 0xfffffffeU})
        sample.array->addChannelToGroup(e, group);
    EXPECT_EQ(sample.array->channelCount(), 4U);
    EXPECT_EQ(e->channelGroup(), nullptr);
}

// --- Replacing.

TEST(KWChannelArray, ReplacesAnUngroupedChannelInPlaceWithoutTouchingGroups) {
    const SampleArray sample;
    const auto e = constant("e");
    sample.array->addChannel(sample.c);
    EXPECT_TRUE(sample.array->replaceChannelWith(sample.a, e));
    EXPECT_TRUE(sample.array->replaceChannelWith(sample.c, sample.d));
    EXPECT_EQ(namesIn(*sample.array->ungroupedChannels()), "e b d ");
    EXPECT_EQ(e->channelGroup(), nullptr);
    EXPECT_EQ(sample.c->channelGroup(), sample.left());
    EXPECT_EQ(sample.d->channelGroup(), sample.left());
    EXPECT_EQ(namesIn(*sample.left()->channels()), "c d ");
}

TEST(KWChannelArray, ReplacesAGroupedChannelInItsGroup) {
    const SampleArray sample;
    const auto e = constant("e");
    EXPECT_TRUE(sample.array->replaceChannelWith(sample.c, e));
    EXPECT_EQ(namesIn(*sample.left()->channels()), "e d ");
    EXPECT_EQ(e->channelGroup(), sample.left());
    EXPECT_EQ(sample.c->channelGroup(), nullptr);
}

TEST(KWChannelArray, ReplacesInTheOldChannelsGroupAlsoOfAnotherArray) {
    const SampleArray sample;
    const SampleArray other;
    const auto e = constant("e");
    EXPECT_TRUE(sample.array->replaceChannelWith(other.d, e));
    EXPECT_EQ(namesIn(*other.left()->channels()), "c e ");
    EXPECT_EQ(sample.array->channelCount(), 4U);
}

TEST(KWChannelArray, ReplacingByAChannelWithAnOwnerChangesNothing) {
    const SampleArray sample;
    const auto e = constant("e");
    CountingOwner owner;
    e->setOwner(&owner);
    EXPECT_FALSE(sample.array->replaceChannelWith(sample.a, e));
    EXPECT_FALSE(sample.array->replaceChannelWith(sample.c, e));
    EXPECT_EQ(namesIn(*sample.array->channels()), "a b c d ");
    EXPECT_EQ(e->channelGroup(), nullptr);
}

TEST(KWChannelArray, ReplacingNullTheSameOrAStrangerChangesNothing) {
    const SampleArray sample;
    const auto e = constant("e");
    EXPECT_FALSE(sample.array->replaceChannelWith(nullptr, e));
    EXPECT_FALSE(sample.array->replaceChannelWith(sample.a, nullptr));
    EXPECT_FALSE(sample.array->replaceChannelWith(sample.a, sample.a));
    EXPECT_FALSE(sample.array->replaceChannelWith(e, constant("f")));
    EXPECT_EQ(namesIn(*sample.array->channels()), "a b c d ");
}

TEST(KWChannelArray, IsTheOwnerThroughWhichAChannelIsReplaced) {
    const SampleArray sample;
    sample.array->setChannelsOwner(sample.array.get());
    KWChannelOwner* const owner = sample.c->owner();
    ASSERT_EQ(owner, sample.array.get());
    const auto e = constant("e");
    EXPECT_TRUE(owner->replaceChannelWith(sample.c, e));
    EXPECT_EQ(namesIn(*sample.array->channels()), "a b e d ");
    EXPECT_FALSE(owner->replaceChannelWith(e, sample.d));
}

// --- By index and group.

TEST(KWChannelArray, AddressesChannelsByIndexAndGroup) {
    const SampleArray sample;
    const auto& array = *sample.array;
    EXPECT_EQ(array.channelAtIndexInGroup(1, KWUngroupedChannels), sample.b);
    EXPECT_EQ(array.channelAtIndexInGroup(1, 0), sample.d);
    EXPECT_EQ(array.getChannelNameAtIndexInGroup(0, 0), "c");
    EXPECT_EQ(array.getChannelValueAtIndexInGroupForTime(0, KWUngroupedChannels, KWTime(5)), 1);
    EXPECT_EQ(array.getChannelValueAtIndexInGroupForTime(1, 0, std::nullopt), 4);
}

TEST(KWChannelArray, SetsAValueThroughTheChannel) {
    const SampleArray sample;
    NoticeCounter notices(sample.d.get());
    sample.array->setChannelValueAtIndexInGroupForTime(9, 1, 0, KWTime(0));
    EXPECT_EQ(sample.d->valueForTime(KWTime(0)), 9);
    EXPECT_EQ(notices.count, 1);
    sample.array->setChannelValueAtIndexInGroupForTime(8, 0, KWUngroupedChannels, std::nullopt);
    EXPECT_EQ(sample.a->valueForTime(KWTime(0)), 8);
}

TEST(KWChannelArray, ABadIndexOrGroupRaises) {
    const SampleArray sample;
    auto& array = *sample.array;
    const std::pair<std::uint32_t, std::uint32_t> bad[] = {
        {2, KWUngroupedChannels}, {2, 0}, {0, 1}, {0, 2}, {0xffffffff, 0}, {0, 0xfffffffe}};
    for (const auto& [index, group] : bad) {
        EXPECT_THROW(array.channelAtIndexInGroup(index, group), std::out_of_range);
        EXPECT_THROW(array.getChannelNameAtIndexInGroup(index, group), std::out_of_range);
        EXPECT_THROW(array.getChannelValueAtIndexInGroupForTime(index, group, KWTime(0)),
                     std::out_of_range);
        EXPECT_THROW(array.setChannelValueAtIndexInGroupForTime(1, index, group, KWTime(0)),
                     std::out_of_range);
    }
}

TEST(KWChannelArray, AListenerMayTakeOutTheChannelWhoseValueIsSet) {
    SampleArray sample;
    sample.d.reset();
    NoticeCounter notices(nullptr, [&] { sample.left()->removeAllChannels(); });
    sample.array->setChannelValueAtIndexInGroupForTime(9, 1, 0, KWTime(0));
    EXPECT_EQ(notices.count, 1);
    EXPECT_EQ(sample.left()->count(), 0U);
}

TEST(KWChannelArray, AChannelTakenOutWhileItsValueIsSetLivesToTheEndOfTheCall) {
    static bool wasAliveAtTheEnd = false;
    class Late final : public KWConstantChannel {
      public:
        ~Late() override = default;
        void setValueForTime(float value, std::optional<KWTime> time) override {
            const std::weak_ptr<KWObject> self = weak_from_this();
            KWConstantChannel::setValueForTime(value, time);
            wasAliveAtTheEnd = !self.expired();
        }
    };
    KWChannelArray array;
    array.addChannel(std::make_shared<Late>());
    NoticeCounter notices(nullptr, [&] { array.ungroupedChannels()->clear(); });
    array.setChannelValueAtIndexInGroupForTime(9, 0, KWUngroupedChannels, KWTime(0));
    EXPECT_TRUE(wasAliveAtTheEnd);
}

// --- Lists.

TEST(KWChannelArray, WithoutGroupsAnswersTheLiveListItself) {
    KWChannelArray array;
    array.addChannel(constant("a"));
    EXPECT_EQ(array.channels(), array.ungroupedChannels());
    array.channels()->push_back(constant("b"));
    EXPECT_EQ(array.channelCount(), 2U);
}

TEST(KWChannelArray, WithOneEmptyGroupAnswersANewListEqualToTheLiveOne) {
    KWChannelArray array;
    array.addChannel(constant("a"));
    array.addGroupWithName("empty");
    const auto list = array.channels();
    EXPECT_NE(list, array.ungroupedChannels());
    EXPECT_EQ(*list, *array.ungroupedChannels());
    EXPECT_NE(array.channels(), list);
}

TEST(KWChannelArray, AnswersUngroupedChannelsThenEachGroups) {
    const SampleArray sample;
    sample.array->addChannelToGroup(constant("e"), 1);
    EXPECT_EQ(namesIn(*sample.array->channels()), "a b c d e ");
    EXPECT_EQ(namesIn(sample.array->channelEnumerator()), "a b c d e ");
}

TEST(KWChannelArray, AnEnumerationStaysAsItWas) {
    KWChannelArray array;
    array.addChannel(constant("a"));
    const KWChannelList all = array.channelEnumerator();
    array.addChannel(constant("b"));
    EXPECT_EQ(namesIn(all), "a ");
}

// --- Groups.

TEST(KWChannelArray, AnswersNoGroupBeyondTheLast) {
    const SampleArray sample;
    EXPECT_EQ(sample.array->channelGroupAtIndex(1)->name(), "right");
    EXPECT_EQ(sample.array->channelGroupAtIndex(2), nullptr);
    EXPECT_EQ(sample.array->channelGroupAtIndex(KWUngroupedChannels), nullptr);
}

TEST(KWChannelArray, FindsTheFirstGroupOfAName) {
    const SampleArray sample;
    sample.array->addGroupWithName("left");
    sample.array->addGroupWithName("");
    EXPECT_EQ(sample.array->channelGroupCount(), 4U);
    EXPECT_EQ(sample.array->indexOfGroupNamed("left"), 0U);
    EXPECT_EQ(sample.array->groupWithName("left"), sample.left());
    EXPECT_EQ(sample.array->indexOfGroupNamed("right"), 1U);
    EXPECT_EQ(sample.array->indexOfGroupNamed(""), 3U);
}

TEST(KWChannelArray, AnUnknownGroupNameHasTheIndexOfTheUngrouped) {
    const SampleArray sample;
    EXPECT_EQ(sample.array->indexOfGroupNamed("Left"), KWUngroupedChannels);
    EXPECT_EQ(sample.array->indexOfGroupNamed("nowhere"), 0xffffffffU);
    EXPECT_EQ(sample.array->groupWithName("nowhere"), nullptr);
    sample.array->addChannelToGroup(constant("e"), sample.array->indexOfGroupNamed("nowhere"));
    EXPECT_EQ(namesIn(*sample.array->ungroupedChannels()), "a b e ");
}

TEST(KWChannelArray, ARemovedGroupKeepsItsChannels) {
    const SampleArray sample;
    const auto left = sample.left();
    sample.array->removeGroup(left);
    EXPECT_EQ(sample.array->channelGroupCount(), 1U);
    EXPECT_EQ(sample.array->channelCount(), 2U);
    EXPECT_EQ(sample.c->channelGroup(), left);
    EXPECT_EQ(left->count(), 2U);
    sample.array->removeGroup(left);
    sample.array->removeGroup(nullptr);
    EXPECT_EQ(sample.array->channelGroupCount(), 1U);
    sample.array->removeGroup(sample.array->channelGroups()->front());
    EXPECT_EQ(sample.array->channelGroupCount(), 0U);
}

// --- All of them.

TEST(KWChannelArray, SetsTheOwnerOfEveryChannel) {
    const SampleArray sample;
    CountingOwner owner;
    sample.array->setChannelsOwner(&owner);
    for (const auto& channel : sample.array->channelEnumerator())
        EXPECT_EQ(channel->owner(), &owner);
    sample.array->setChannelsOwner(nullptr);
    for (const auto& channel : sample.array->channelEnumerator())
        EXPECT_EQ(channel->owner(), nullptr);
}

TEST(KWChannelArray, DependsOnTimeWhenAnyChannelDoes) {
    KWChannelArray array;
    EXPECT_FALSE(array.dependsOnTime());
    array.addGroupWithName("g");
    EXPECT_FALSE(array.dependsOnTime());
    array.addChannel(std::make_shared<KWKeyFramedChannel>());
    EXPECT_FALSE(array.dependsOnTime());
    array.addChannelToGroup(constant("a"), 0);
    EXPECT_TRUE(array.dependsOnTime());
}

TEST(KWChannelArray, ACopySharesNoChannelAndNoGroup) {
    const SampleArray sample;
    const auto copy = sample.array->copy();
    const KWChannelList before = *sample.array->channels();
    const KWChannelList after = *copy->channels();
    ASSERT_EQ(after.size(), before.size());
    for (std::size_t k = 0; k < after.size(); ++k) {
        EXPECT_EQ(std::count(before.begin(), before.end(), after[k]), 0);
        EXPECT_EQ(after[k]->valueForTime(std::nullopt), before[k]->valueForTime(std::nullopt));
    }
    ASSERT_EQ(copy->channelGroupCount(), 2U);
    EXPECT_NE(copy->channelGroupAtIndex(0), sample.left());
    EXPECT_EQ(copy->channelGroupAtIndex(0)->name(), "left");
    EXPECT_EQ(copy->channelGroupAtIndex(1)->name(), "right");
    EXPECT_EQ(after[2]->channelGroup(), copy->channelGroupAtIndex(0));
    EXPECT_EQ(after[0]->channelGroup(), nullptr);
    EXPECT_EQ(sample.c->channelGroup(), sample.left());
}

TEST(KWChannelArray, ACopyOfAChannelWithoutCopyIsRefused) {
    const SampleArray sample;
    sample.array->addChannel(std::make_shared<KWChannel>());
    EXPECT_THROW(sample.array->copy(), std::invalid_argument);
}

TEST(KWChannelArray, NullElementsKeepTheirPlaceAndArePassedOver) {
    SampleArray x;
    x.array->ungroupedChannels()->insert(x.array->ungroupedChannels()->begin(), nullptr);
    x.left()->channels()->push_back(nullptr);
    x.array->channelGroups()->insert(x.array->channelGroups()->begin(), nullptr);
    EXPECT_EQ(x.array->channelCount(), 6U);
    EXPECT_EQ(x.array->channels()->size(), 6U);
    EXPECT_EQ(namesIn(x.array->channelEnumerator()), "a b c d ");
    EXPECT_EQ(x.array->indexOfGroupNamed("left"), 1U);
    EXPECT_EQ(x.array->groupWithName(""), nullptr);
    EXPECT_TRUE(x.array->dependsOnTime());
    CountingOwner owner;
    x.array->setChannelsOwner(&owner);
    EXPECT_EQ(x.d->owner(), &owner);
    x.array->addChannelToGroup(constant("e"), 0);
    EXPECT_EQ(x.array->channelCount(), 6U);
    EXPECT_EQ(x.array->channelAtIndexInGroup(0, KWUngroupedChannels), nullptr);
    EXPECT_THROW(x.array->getChannelValueAtIndexInGroupForTime(0, KWUngroupedChannels, KWTime(0)),
                 std::out_of_range);
    EXPECT_THROW(x.array->getChannelNameAtIndexInGroup(2, 1), std::out_of_range);
    EXPECT_THROW(x.array->setChannelValueAtIndexInGroupForTime(1, 2, 1, KWTime(0)),
                 std::out_of_range);
    EXPECT_THROW(x.array->channelAtIndexInGroup(0, 0), std::out_of_range);
    const auto copy = x.array->copy();
    EXPECT_EQ(copy->channelCount(), 6U);
    EXPECT_EQ(copy->channelEnumerator().size(), 4U);
    EXPECT_EQ(copy->channelAtIndexInGroup(0, KWUngroupedChannels), nullptr);
    EXPECT_EQ(copy->channelGroupAtIndex(0), nullptr);
}

TEST(KWChannelArray, OnTheStackOwnsChannelsUntilItEnds) {
    const auto channel = constant("a");
    {
        KWChannelArray array;
        array.addChannel(channel);
        array.setChannelsOwner(&array);
        EXPECT_EQ(channel->owner(), &array);
        channel->setValueForTime(1, KWTime(0));
    }
    EXPECT_EQ(channel->owner(), nullptr);
}

TEST(KWChannelArray, RandomEditsFollowAPlainModel) {
    std::mt19937 random(6);
    const auto pick = [&](std::uint32_t end) { return static_cast<std::uint32_t>(random() % end); };
    for (int round = 0; round < 40; ++round) {
        KWChannelArray array;
        KWChannelList ungrouped;
        std::vector<std::pair<std::shared_ptr<KWChannelGroup>, KWChannelList>> groups;
        KWChannelList pool;
        for (int k = 0; k < 12; ++k)
            pool.push_back(constant(std::to_string(k)));
        // A channel goes into one place at most: doubles are the business of other tests.
        for (int step = 0; step < 150; ++step) {
            const auto groupCount = static_cast<std::uint32_t>(groups.size());
            switch (pick(8)) {
            case 0:
                if (groupCount < 4) {
                    array.addGroupWithName("g");
                    groups.emplace_back(array.channelGroups()->back(), KWChannelList());
                }
                break;
            case 1:
                if (groupCount > 0 && pick(4) == 0) {
                    const auto k = pick(groupCount);
                    array.removeGroup(groups[k].first);
                    groups.erase(groups.begin() + std::ptrdiff_t(k));
                }
                break;
            case 2:
            case 3: {
                const auto fresh = constant("fresh");
                const auto& old = pool[pick(12)];
                bool expected = false;
                const auto replaceIn = [&](KWChannelList& list) {
                    const auto place = std::find(list.begin(), list.end(), old);
                    if (place != list.end()) {
                        *place = fresh;
                        expected = true;
                    }
                };
                replaceIn(ungrouped);
                for (auto& [group, list] : groups)
                    replaceIn(list);
                ASSERT_EQ(array.replaceChannelWith(old, fresh), expected);
                if (expected)
                    *std::find(pool.begin(), pool.end(), old) = fresh;
                break;
            }
            default: {
                const auto& channel = pool[pick(12)];
                if (std::count(ungrouped.begin(), ungrouped.end(), channel) != 0)
                    break;
                const auto group = pick(groupCount + 2);
                const bool isGrouped =
                    std::any_of(groups.begin(), groups.end(), [&](const auto& entry) {
                        return std::count(entry.second.begin(), entry.second.end(), channel) != 0;
                    });
                if (group == groupCount + 1 && !isGrouped) {
                    array.addChannelToGroup(channel, KWUngroupedChannels);
                    ungrouped.push_back(channel);
                } else if (group <= groupCount) {
                    array.addChannelToGroup(channel, group);
                    if (group < groupCount &&
                        std::count(groups[group].second.begin(), groups[group].second.end(),
                                   channel) == 0) {
                        for (auto& entry : groups)
                            std::erase(entry.second, channel);
                        groups[group].second.push_back(channel);
                    }
                }
            }
            }
            KWChannelList all = ungrouped;
            ASSERT_EQ(array.channelGroupCount(), groups.size());
            for (std::uint32_t k = 0; k < groups.size(); ++k) {
                ASSERT_EQ(array.channelGroupAtIndex(k), groups[k].first);
                ASSERT_EQ(*groups[k].first->channels(), groups[k].second);
                all.insert(all.end(), groups[k].second.begin(), groups[k].second.end());
            }
            ASSERT_EQ(*array.channels(), all);
            ASSERT_EQ(array.channelEnumerator(), all);
            ASSERT_EQ(array.channelCount(), all.size());
        }
    }
}
