#include "ChannelTestSupport.h"

#include <KWBase/KWChannelArray.h>
#include <KWBase/KWChannelGroup.h>
#include <KWBase/KWConstantChannel.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <random>

namespace {

std::shared_ptr<KWChannel> constant(std::string name, float value = 1) {
    return channelWithNameInitialValueColor<KWConstantChannel>(std::move(name), value, 2);
}

std::string namesIn(const std::shared_ptr<KWChannelList>& list) {
    std::string names;
    for (const auto& channel : *list)
        names += channel->name() + " ";
    return names;
}

/// A group and its channels a, b and c.
struct Abc {
    std::shared_ptr<KWChannel> a = constant("a", 1);
    std::shared_ptr<KWChannel> b = constant("b", 2);
    std::shared_ptr<KWChannel> c = constant("c", 3);
    std::shared_ptr<KWChannelGroup> group = std::make_shared<KWChannelGroup>("abc");

    Abc() {
        for (const auto& channel : {a, b, c})
            group->addChannel(channel);
    }
};

/// The rules of groups over numbers: what each list holds, and each channel's link.
struct Model {
    static constexpr int none = -1;
    std::vector<std::vector<int>> lists;
    std::vector<int> link;
    std::vector<bool> owned;

    bool holds(int group, int channel) const {
        const auto& list = lists[std::size_t(group)];
        return std::count(list.begin(), list.end(), channel) != 0;
    }
    void add(int group, int channel) {
        const int old = link[std::size_t(channel)];
        if (old == group)
            return;
        if (old != none)
            remove(old, channel);
        if (!holds(group, channel))
            lists[std::size_t(group)].push_back(channel);
        link[std::size_t(channel)] = group;
    }
    void remove(int group, int channel) {
        if (holds(group, channel)) {
            std::erase(lists[std::size_t(group)], channel);
            link[std::size_t(channel)] = none;
        }
    }
    bool replace(int group, int oldChannel, int newChannel) {
        if (oldChannel == newChannel || owned[std::size_t(newChannel)] || !holds(group, oldChannel))
            return false;
        link[std::size_t(newChannel)] = group;
        link[std::size_t(oldChannel)] = none;
        auto& list = lists[std::size_t(group)];
        *std::find(list.begin(), list.end(), oldChannel) = newChannel;
        return true;
    }
    void removeAll(int group) {
        for (const int channel : std::vector<int>(lists[std::size_t(group)]))
            remove(group, channel);
    }
};

} // namespace

TEST(KWChannelGroup, IsNewEmptyAndWithoutAName) {
    const KWChannelGroup group;
    EXPECT_EQ(group.name(), "");
    EXPECT_EQ(group.count(), 0U);
    ASSERT_NE(group.channels(), nullptr);
    EXPECT_TRUE(group.channels()->empty());
    EXPECT_EQ(KWChannelGroup::classObject().name(), "KWChannelGroup");
    EXPECT_EQ(KWChannelGroup::classObject().version(), 0);
}

TEST(KWChannelGroup, IsTheGroupOfWhatIsAdded) {
    const Abc abc;
    EXPECT_EQ(namesIn(abc.group->channels()), "a b c ");
    EXPECT_EQ(abc.group->count(), 3U);
    EXPECT_EQ(abc.b->channelGroup(), abc.group);
    EXPECT_EQ(abc.b->owner(), nullptr);
}

TEST(KWChannelGroup, AddingAChannelOfAnotherGroupTakesItOutOfThat) {
    const Abc abc;
    const auto other = std::make_shared<KWChannelGroup>();
    other->addChannel(abc.b);
    EXPECT_EQ(namesIn(abc.group->channels()), "a c ");
    EXPECT_EQ(namesIn(other->channels()), "b ");
    EXPECT_EQ(abc.b->channelGroup(), other);
    other->addChannel(abc.b);
    EXPECT_EQ(namesIn(other->channels()), "b ");
}

TEST(KWChannelGroup, AddingAnElementOfAnotherGroupsLiveListIsSafe) {
    Abc abc;
    abc.a.reset();
    const auto other = std::make_shared<KWChannelGroup>();
    other->addChannel(abc.group->channels()->front());
    EXPECT_EQ(namesIn(other->channels()), "a ");
    other->removeChannel(other->channels()->front());
    EXPECT_EQ(other->count(), 0U);
}

TEST(KWChannelGroup, AChannelThatStandsInTheListWithoutLinkIsLinkedOnly) {
    const Abc abc;
    abc.b->setChannelGroup(nullptr);
    abc.group->addChannel(abc.b);
    EXPECT_EQ(namesIn(abc.group->channels()), "a b c ");
    EXPECT_EQ(abc.b->channelGroup(), abc.group);
}

TEST(KWChannelGroup, AChannelLinkedWithoutStandingInTheListIsNotAdded) {
    const Abc abc;
    const auto d = constant("d");
    d->setChannelGroup(abc.group);
    abc.group->addChannel(d);
    EXPECT_EQ(abc.group->count(), 3U);
}

TEST(KWChannelGroup, AddingNullIsRefused) {
    const Abc abc;
    EXPECT_THROW(abc.group->addChannel(nullptr), std::invalid_argument);
    EXPECT_EQ(abc.group->count(), 3U);
}

TEST(KWChannelGroup, AGroupOutsideASharedPointerAddsNothingAndChangesNothing) {
    const Abc abc;
    KWChannelGroup group;
    EXPECT_THROW(group.addChannel(abc.b), std::logic_error);
    EXPECT_THROW(group.addChannel(constant("d")), std::logic_error);
    EXPECT_EQ(group.count(), 0U);
    EXPECT_EQ(abc.b->channelGroup(), abc.group);
    EXPECT_EQ(abc.group->count(), 3U);

    group.channels()->push_back(abc.b);
    EXPECT_THROW(group.replaceChannelWith(abc.b, constant("d")), std::logic_error);
    EXPECT_EQ(group.channels()->front(), abc.b);
    EXPECT_EQ(abc.b->channelGroup(), abc.group);
}

TEST(KWChannelGroup, EditingTheListPostsNothing) {
    NoticeCounter notices(nullptr);
    const auto group = std::make_shared<KWChannelGroup>();
    const auto channel = std::make_shared<KWConstantChannel>();
    group->addChannel(channel);
    group->replaceChannelWith(channel, std::make_shared<KWConstantChannel>());
    group->removeAllChannels();
    EXPECT_EQ(notices.count, 0);
}

TEST(KWChannelGroup, ReplacingPutsTheNewChannelInTheOldOnesPlace) {
    const Abc abc;
    const auto d = constant("d");
    EXPECT_TRUE(abc.group->replaceChannelWith(abc.b, d));
    EXPECT_EQ(namesIn(abc.group->channels()), "a d c ");
    EXPECT_EQ(d->channelGroup(), abc.group);
    EXPECT_EQ(abc.b->channelGroup(), nullptr);
}

TEST(KWChannelGroup, ReplacingByAChannelWithAnOwnerChangesNothing) {
    const Abc abc;
    const auto d = constant("d");
    CountingOwner owner;
    d->setOwner(&owner);
    EXPECT_FALSE(abc.group->replaceChannelWith(abc.b, d));
    EXPECT_EQ(namesIn(abc.group->channels()), "a b c ");
    EXPECT_EQ(d->channelGroup(), nullptr);
    EXPECT_EQ(abc.b->channelGroup(), abc.group);
}

TEST(KWChannelGroup, ReplacingNullTheSameOrAStrangerChangesNothing) {
    const Abc abc;
    const auto d = constant("d");
    EXPECT_FALSE(abc.group->replaceChannelWith(nullptr, d));
    EXPECT_FALSE(abc.group->replaceChannelWith(abc.b, nullptr));
    EXPECT_FALSE(abc.group->replaceChannelWith(abc.b, abc.b));
    EXPECT_FALSE(abc.group->replaceChannelWith(d, constant("e")));
    EXPECT_EQ(namesIn(abc.group->channels()), "a b c ");
    EXPECT_EQ(abc.b->channelGroup(), abc.group);
}

TEST(KWChannelGroup, AReplacementStaysInTheGroupItWasInBefore) {
    const Abc abc;
    const Abc other;
    EXPECT_TRUE(abc.group->replaceChannelWith(abc.b, other.c));
    EXPECT_EQ(namesIn(abc.group->channels()), "a c c ");
    EXPECT_EQ(namesIn(other.group->channels()), "a b c ");
    EXPECT_EQ(other.c->channelGroup(), abc.group);
}

TEST(KWChannelGroup, RemovingTakesOutEveryOccurrence) {
    const Abc abc;
    abc.group->channels()->push_back(abc.a);
    abc.group->removeChannel(abc.a);
    EXPECT_EQ(namesIn(abc.group->channels()), "b c ");
    EXPECT_EQ(abc.a->channelGroup(), nullptr);
}

TEST(KWChannelGroup, RemovingAStrangerOrNullLeavesItsLinkAlone) {
    const Abc abc;
    const Abc other;
    abc.group->removeChannel(other.a);
    abc.group->removeChannel(nullptr);
    EXPECT_EQ(other.a->channelGroup(), other.group);
    EXPECT_EQ(abc.group->count(), 3U);
}

TEST(KWChannelGroup, RemovingAllDetachesEveryChannel) {
    const Abc abc;
    const auto live = abc.group->channels();
    live->push_back(abc.a);
    abc.group->removeAllChannels();
    EXPECT_TRUE(live->empty());
    EXPECT_EQ(abc.group->channels(), live);
    for (const auto& channel : {abc.a, abc.b, abc.c})
        EXPECT_EQ(channel->channelGroup(), nullptr);
}

TEST(KWChannelGroup, ChannelsOutliveTheirGroupAndHaveNoneThen) {
    Abc abc;
    abc.group.reset();
    EXPECT_EQ(abc.a->channelGroup(), nullptr);
    abc.a->setValueForTime(1, std::nullopt);
}

TEST(KWChannelGroup, ACopyHasCopiesThatBelongToIt) {
    const Abc abc;
    const auto copy = abc.group->copy();
    EXPECT_EQ(copy->name(), "abc");
    ASSERT_EQ(copy->count(), 3U);
    for (std::size_t k = 0; k < 3; ++k) {
        const auto& copied = (*copy->channels())[k];
        EXPECT_NE(copied, (*abc.group->channels())[k]);
        EXPECT_EQ(copied->channelGroup(), copy);
        EXPECT_EQ(copied->valueForTime(std::nullopt), static_cast<float>(k + 1));
    }
    EXPECT_EQ(abc.a->channelGroup(), abc.group);
    EXPECT_EQ(namesIn(abc.group->channels()), "a b c ");
}

TEST(KWChannelGroup, ACopyOfAChannelWithoutCopyIsRefused) {
    const auto group = std::make_shared<KWChannelGroup>();
    group->addChannel(std::make_shared<KWChannel>());
    EXPECT_THROW(group->copy(), std::invalid_argument);
}

TEST(KWChannelGroup, NullElementsKeepTheirPlaceAndArePassedOver) {
    Abc x;
    KWChannelList& list = *x.group->channels();
    list.insert(list.begin() + 1, nullptr);
    EXPECT_EQ(x.group->count(), 4U);
    const auto copy = x.group->copy();
    ASSERT_EQ(copy->count(), 4U);
    EXPECT_EQ((*copy->channels())[1], nullptr);
    EXPECT_EQ((*copy->channels())[2]->channelGroup(), copy);
    EXPECT_FALSE(x.group->replaceChannelWith(nullptr, constant("d")));
    x.group->removeChannel(nullptr);
    EXPECT_EQ(x.group->count(), 4U);
    x.group->removeChannel(x.a);
    EXPECT_EQ(list.front(), nullptr);
    x.group->removeAllChannels();
    EXPECT_EQ(x.group->count(), 0U);
}

TEST(KWChannelGroup, OwnsChannelsAsAnyOwnerUntilItIsGone) {
    const auto channel = constant("a");
    auto group = std::make_shared<KWChannelGroup>();
    channel->setOwner(group.get());
    EXPECT_EQ(channel->owner(), group.get());
    EXPECT_EQ(channel->undoManager(), nullptr);
    channel->setValueForTime(1, std::nullopt);
    group.reset();
    EXPECT_EQ(channel->owner(), nullptr);
}

TEST(KWChannelGroup, RandomEditsFollowAPlainModel) {
    constexpr int groupCount = 3;
    constexpr int channelCount = 10;
    std::mt19937 random(20);
    const auto pick = [&](int end) { return static_cast<int>(random() % unsigned(end)); };
    CountingOwner owner;
    for (int round = 0; round < 60; ++round) {
        std::vector<std::shared_ptr<KWChannelGroup>> groups;
        KWChannelList channels;
        Model model{std::vector<std::vector<int>>(groupCount),
                    std::vector<int>(channelCount, Model::none),
                    std::vector<bool>(channelCount, false)};
        groups.reserve(groupCount);
        for (int k = 0; k < groupCount; ++k)
            groups.push_back(std::make_shared<KWChannelGroup>());
        for (int k = 0; k < channelCount; ++k)
            channels.push_back(std::make_shared<KWConstantChannel>());
        for (int step = 0; step < 200; ++step) {
            const int group = pick(groupCount);
            const int first = pick(channelCount);
            const int second = pick(channelCount);
            const auto& g = groups[std::size_t(group)];
            const auto& a = channels[std::size_t(first)];
            const auto& b = channels[std::size_t(second)];
            switch (pick(20)) {
            case 0:
                g->removeAllChannels();
                model.removeAll(group);
                break;
            case 1:
                model.owned[std::size_t(first)] = !model.owned[std::size_t(first)];
                a->setOwner(model.owned[std::size_t(first)] ? &owner : nullptr);
                break;
            case 2:
            case 3:
            case 4:
            case 5:
                g->removeChannel(a);
                model.remove(group, first);
                break;
            case 6:
            case 7:
            case 8:
            case 9:
            case 10:
                ASSERT_EQ(g->replaceChannelWith(a, b), model.replace(group, first, second));
                break;
            default:
                g->addChannel(a);
                model.add(group, first);
            }
            for (int k = 0; k < groupCount; ++k) {
                KWChannelList expected;
                for (const int channel : model.lists[std::size_t(k)])
                    expected.push_back(channels[std::size_t(channel)]);
                ASSERT_EQ(*groups[std::size_t(k)]->channels(), expected);
            }
            for (int k = 0; k < channelCount; ++k) {
                const int link = model.link[std::size_t(k)];
                ASSERT_EQ(channels[std::size_t(k)]->channelGroup(),
                          link == Model::none ? nullptr : groups[std::size_t(link)]);
            }
        }
    }
}

// --- Archives.

TEST(KWChannelGroup, EncodesItsNameThenItsChannels) {
    const Abc abc;
    const auto coder = fieldsOf(*abc.group);
    EXPECT_EQ(coder->calls(), "name:object channels:object");
    EXPECT_EQ(coder->valueForKey("name").string()->text, "abc");
    const KWArchiveArray* const channels = coder->valueForKey("channels").array();
    ASSERT_NE(channels, nullptr);
    EXPECT_TRUE(channels->isMutable);
    ASSERT_EQ(channels->elements.size(), 3U);
    EXPECT_EQ(channels->elements[1].object(), abc.b);
}

TEST(KWChannelGroup, AKeyedArchiveHoldsAMutableArray) {
    const Abc abc;
    const ArchiveReader archive(KWKeyedArchiver::archivedDataWithRootObject(abc.group));
    const auto root = archive.rootObject();
    EXPECT_EQ(archive.keysOf(root), "name channels");
    EXPECT_EQ(archive.classesOf(root), "KWChannelGroup NSObject");
    const auto channels = archive.objectField(root, "channels");
    EXPECT_EQ(archive.classesOf(channels), "NSMutableArray NSArray NSObject");
    EXPECT_EQ(archive.list().count(archive.field(channels, "NS.objects")), 3U);
}

TEST(KWChannelGroup, AKeyedRoundTripRestoresTheLinksOfItsChannels) {
    const Abc abc;
    const auto read = archivedAndRead(abc.group);
    ASSERT_NE(read, nullptr);
    EXPECT_EQ(read->name(), "abc");
    ASSERT_NE(read->channels(), nullptr);
    EXPECT_EQ(namesIn(read->channels()), "a b c ");
    for (const auto& channel : *read->channels())
        EXPECT_EQ(channel->channelGroup(), read);
    read->addChannel(constant("d"));
    EXPECT_EQ(read->count(), 4U);
}

TEST(KWChannelGroup, AChannelArchivedWithoutItsGroupComesBackWithoutOne) {
    const Abc abc;
    const auto read = archivedAndRead(abc.a);
    ASSERT_NE(read, nullptr);
    EXPECT_EQ(read->channelGroup(), nullptr);
}

TEST(KWChannelGroup, ReadingSetsNoLinkThatTheChannelDidNotHave) {
    const Abc abc;
    abc.b->setChannelGroup(nullptr);
    const auto read = archivedAndRead(abc.group);
    ASSERT_EQ(read->count(), 3U);
    EXPECT_EQ((*read->channels())[0]->channelGroup(), read);
    EXPECT_EQ((*read->channels())[1]->channelGroup(), nullptr);
}

TEST(KWChannelGroup, WithoutAListIsEmptyAndTakesNothing) {
    MemoryCoder empty;
    const auto group = std::make_shared<KWChannelGroup>("g");
    ASSERT_TRUE(group->initWithCoder(empty));
    EXPECT_EQ(group->name(), "");
    EXPECT_EQ(group->channels(), nullptr);
    EXPECT_EQ(group->count(), 0U);
    const Abc abc;
    group->addChannel(abc.a);
    EXPECT_EQ(group->count(), 0U);
    EXPECT_EQ(abc.a->channelGroup(), abc.group);
    EXPECT_EQ(abc.group->count(), 3U);
    group->removeChannel(abc.a);
    group->removeAllChannels();
    EXPECT_FALSE(group->replaceChannelWith(abc.a, constant("d")));
    EXPECT_EQ(group->copy()->count(), 0U);
    EXPECT_TRUE(fieldsOf(*group)->valueForKey("channels").isNil());
    EXPECT_EQ(archivedAndRead(group)->channels(), nullptr);
}

TEST(KWChannelGroup, AListThatHoldsSomethingElseIsAnErrorOfTheArchive) {
    const auto number = KWArchiveValue(KWNumber(std::int32_t{1}));
    const auto group = KWArchiveValue(std::make_shared<KWChannelGroup>());
    for (const auto& wrong :
         {number, group, KWArchiveValue::mutableArray({number}),
          KWArchiveValue::mutableArray({group}), KWArchiveValue::mutableArray({nullptr})}) {
        MemoryCoder coder;
        coder.put("object", "channels", wrong);
        KWChannelGroup read;
        EXPECT_THROW(read.initWithCoder(coder), KWArchiveError);
    }
}
