#include "KeyFramedTestSupport.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <stdexcept>

namespace {

/// Everybody whom an edit tells, calling one function.
class Everybody {
  public:
    Everybody(Edited& edited, std::function<void()> call)
        : _edited(edited), _call(std::move(call)), _notices(edited.channel.get(), _call),
          _valid(_call), _owner(_call) {
        _valid.observe(*edited.channel);
        _owner.manager = edited.manager.get();
        edited.channel->setOwner(&_owner);
        _undo = KWNotificationCenter::defaultCenter().addObserver(
            KWUndoManagerDidChangeNotification, edited.manager.get(),
            [this](const KWNotification&) { _call(); });
    }
    ~Everybody() { _edited.channel->setOwner(&_edited.owner); }
    Everybody(const Everybody&) = delete;
    Everybody& operator=(const Everybody&) = delete;

  private:
    Edited& _edited;
    std::function<void()> _call;
    NoticeCounter _notices;
    ValidObserver _valid;
    CountingOwner _owner;
    KWNotificationToken _undo;
};

/// Does `edit` to a fresh channel again and again, with the first call throwing, the second, and so
/// on until there are no more, and with all of them throwing.
void expectWholeWhoeverThrows(const std::function<void(KWKeyFramedChannel&)>& prepare,
                              const std::function<void(KWKeyFramedChannel&)>& edit, int steps) {
    const auto prepared = [&prepare] {
        auto x = std::make_unique<Edited>();
        for (int k = 0; k < 4; ++k)
            x->set(static_cast<float>(k), oddRecord(k == 3 ? 5 : 36), static_cast<float>(k));
        x->manager->removeAllActions();
        return x;
    };
    std::string before;
    std::string after;
    {
        const auto x = prepared();
        before = contentsOf(*x->channel);
        prepare(*x->channel);
        edit(*x->channel);
        after = contentsOf(*x->channel);
    }
    ASSERT_NE(before, after);
    for (int failing = 0;; ++failing) {
        SCOPED_TRACE("call " + std::to_string(failing));
        const auto x = prepared();
        prepare(*x->channel);
        int count = 0;
        {
            Everybody everybody(*x, [&] {
                ++count;
                if (failing == 0 || count == failing)
                    throw std::runtime_error(std::to_string(count));
            });
            try {
                edit(*x->channel);
                EXPECT_LT(count, failing) << "nothing was thrown";
            } catch (const std::runtime_error& error) {
                EXPECT_EQ(error.what(), std::to_string(std::max(failing, 1)));
            }
        }
        EXPECT_EQ(contentsOf(*x->channel), after);
        EXPECT_FALSE(x->channel->isManipulating());
        EXPECT_EQ(x->manager->groupingLevel(), 0);
        ASSERT_EQ(x->steps(), steps);
        for (int again = 0; again < 2; ++again) {
            while (x->manager->canUndo())
                x->manager->undo();
            EXPECT_EQ(contentsOf(*x->channel), before);
            while (x->manager->canRedo())
                x->manager->redo();
            EXPECT_EQ(contentsOf(*x->channel), after);
        }
        if (count < failing || testing::Test::HasFailure())
            return;
    }
}

void expectWholeWhoeverThrows(const std::function<void(KWKeyFramedChannel&)>& edit, int steps = 1) {
    expectWholeWhoeverThrows([](KWKeyFramedChannel&) {}, edit, steps);
}

} // namespace

// --- Observers that edit

TEST(KWKeyFramedChannelObservers, AnObserverMayEditWithinTheNotice) {
    for (int kind = 0; kind < 6; ++kind) {
        Edited x;
        for (int k = 0; k < 8; ++k)
            x.set(static_cast<float>(k), oddRecord(k == 3 ? 5 : 36), static_cast<float>(k));
        bool inside = false;
        NoticeCounter notices(x.channel.get(), [&] {
            if (std::exchange(inside, true))
                return;
            switch (kind) {
            case 0:
                x.channel->removeAllKeyframes();
                break;
            case 1:
                x.set(99, 5.5f);
                break;
            case 2:
                x.channel->removeValueForKeyframe(KWTime(5));
                break;
            case 3:
                x.channel->startManipulation();
                break;
            case 4:
                x.manager->removeAllActions();
                x.channel->setOwner(nullptr);
                break;
            default:
                x.set(99, 4.75f);
            }
        });
        for (const float key : {5.0f, 5.5f, 4.75f}) {
            inside = false;
            x.set(42, key);
            EXPECT_EQ(x.channel->valueForKeyframe(KWTime(key)), 42);
            inside = false;
            x.channel->modifyHermiteValueForKeyframe(recordWith(1), KWTime(5));
        }
        const auto keys = timesOf(x.channel->allKeyframes());
        EXPECT_TRUE(std::is_sorted(keys.begin(), keys.end()));
        EXPECT_EQ(std::adjacent_find(keys.begin(), keys.end()), keys.end());
    }
}

TEST(KWKeyFramedChannelObservers, AnObserverOfTheUndoManagerMayEdit) {
    Edited x;
    x.set(1, 0);
    x.set(1, 1);
    bool inside = false;
    const auto token = KWNotificationCenter::defaultCenter().addObserver(
        KWUndoManagerDidChangeNotification, x.manager.get(), [&](const KWNotification&) {
            if (!std::exchange(inside, true))
                x.channel->removeAllKeyframes();
        });
    x.set(2, 1);
    EXPECT_EQ(timesOf(x.channel->allKeyframes()), std::vector<float>{1});
    inside = false;
    x.channel->removeValueForKeyframe(KWTime(1));
    EXPECT_EQ(x.channel->keyframeCount(), 0u);
    x.set(2, 1);
    inside = false;
    x.channel->modifyHermiteValueForKeyframe(recordWith(1), KWTime(1));
    EXPECT_EQ(x.channel->keyframeCount(), 0u);
}

TEST(KWKeyFramedChannelObservers, AnObserverOfTheUndoManagerMayMoveTheKeyThatIsEdited) {
    Edited x;
    x.set(1, 5);
    x.set(2, 6);
    float next = 0;
    bool inside = false;
    const auto token = KWNotificationCenter::defaultCenter().addObserver(
        KWUndoManagerDidChangeNotification, x.manager.get(), [&](const KWNotification&) {
            if (std::exchange(inside, true))
                return;
            x.set(9, next++);
            inside = false;
        });
    x.channel->modifyHermiteValueForKeyframe(recordWith(1), KWTime(6));
    EXPECT_EQ(x.channel->hermiteValueForKeyframe(KWTime(6)), recordWith(1));
    EXPECT_EQ(x.channel->hermiteValueForKeyframe(KWTime(5)), recordWith(0));
    x.channel->removeValueForKeyframe(KWTime(5));
    EXPECT_EQ(timesOf(x.channel->allKeyframes()), (std::vector<float>{0, 1, 6}));
    x.set(3, 6);
    EXPECT_EQ(x.channel->valueForKeyframe(KWTime(6)), 3);
    EXPECT_EQ(timesOf(x.channel->allKeyframes()), (std::vector<float>{0, 1, 2, 6}));
}

TEST(KWKeyFramedChannelObservers, AnObserverMayLetGoOfTheChannel) {
    auto channel = channelWithKeys({{0, 1}});
    const std::weak_ptr<KWKeyFramedChannel> watched = channel;
    NoticeCounter notices(channel.get(), [&] { channel.reset(); });
    channel->setValueForKeyframe(2, KWTime(1));
    EXPECT_TRUE(watched.expired());
}

TEST(KWKeyFramedChannelObservers, TheListOfKeysToRemoveMayChangeAsTheyGo) {
    const auto channel = channelWithKeys({{0, 0}, {1, 1}, {2, 2}, {3, 3}, {4, 4}});
    std::vector<KWTime> selection{KWTime(0), KWTime(1), KWTime(3)};
    ValidObserver observer([&] {
        std::fill(selection.begin(), selection.end(), KWTime(4));
        std::vector<KWTime>().swap(selection);
    });
    observer.observe(*channel);
    channel->removeValuesForKeyframes(selection);
    EXPECT_EQ(timesOf(channel->allKeyframes()), (std::vector<float>{2, 4}));
}

TEST(KWKeyFramedChannelObservers, TheListsOfKeysToSetMayChangeAsTheyAreSet) {
    for (const std::size_t size : {std::size_t{36}, std::size_t{7}}) {
        const auto channel = std::make_shared<KWKeyFramedChannel>();
        std::vector<float> values{1, 2, 3};
        std::vector<KWData> records(3, oddRecord(size));
        std::vector<KWTime> keys{KWTime(0), KWTime(1), KWTime(2)};
        NoticeCounter notices(channel.get(), [&] {
            for (KWData& record : records) {
                std::fill(record.begin(), record.end(), std::byte{0});
                KWData().swap(record);
            }
            std::fill(keys.begin(), keys.end(), KWTime(9));
            std::vector<float>().swap(values);
            std::vector<KWData>().swap(records);
            std::vector<KWTime>().swap(keys);
        });
        channel->setValuesHermiteValuesForKeyframes(values, records, keys);
        EXPECT_EQ(timesOf(channel->allKeyframes()), (std::vector<float>{0, 1, 2}));
        for (const float key : {0.0f, 1.0f, 2.0f}) {
            EXPECT_EQ(channel->valueForKeyframe(KWTime(key)), key + 1);
            EXPECT_EQ(channel->hermiteValueForKeyframe(KWTime(key)), oddRecord(size));
        }
    }
}

TEST(KWKeyFramedChannelObservers, TheRecordToSetMayChangeAsItIsSet) {
    for (const std::size_t size : {std::size_t{36}, std::size_t{7}}) {
        Edited x;
        std::optional<KWData> record;
        Everybody everybody(x, [&] {
            if (!record)
                return;
            std::fill(record->begin(), record->end(), std::byte{0});
            record.reset();
        });
        for (int round = 0; round < 2; ++round) {
            record = oddRecord(size);
            x.channel->setValueHermiteValueForKeyframe(3, record, KWTime(1));
            EXPECT_EQ(x.channel->hermiteValueForKeyframe(KWTime(1)), oddRecord(size));
        }
        record = recordWith(0.5f);
        x.channel->modifyHermiteValueForKeyframe(*record, KWTime(1));
        EXPECT_EQ(x.channel->hermiteValueForKeyframe(KWTime(1)), recordWith(0.5f));
    }
}

TEST(KWKeyFramedChannelObservers, TheShapeToSetMayChangeAsItIsSet) {
    Edited x;
    x.set(1, 0);
    auto param = std::make_unique<HJHermiteParam>();
    param->tension = 0.25f;
    const auto token = KWNotificationCenter::defaultCenter().addObserver(
        KWUndoManagerDidChangeNotification, x.manager.get(), [&](const KWNotification&) {
            if (param)
                param->tension = 7;
            param.reset();
        });
    x.channel->modifyHermiteParamForKeyframe(param.get(), KWTime(0));
    EXPECT_EQ(x.channel->hermiteValueForKeyframe(KWTime(0)), recordWith(0.25f));
}

// --- Observers that throw

TEST(KWKeyFramedChannelObservers, SettingAKeyIsWholeWhoeverThrows) {
    expectWholeWhoeverThrows([](auto& channel) { channel.setValueForTime(7, KWTime(1.5f)); });
    expectWholeWhoeverThrows([](auto& channel) { channel.setValueForKeyframe(7, KWTime(1)); });
    expectWholeWhoeverThrows(
        [](auto& channel) { channel.setValueHermiteValueForKeyframe(7, oddRecord(9), KWTime(3)); });
}

TEST(KWKeyFramedChannelObservers, SettingManyKeysSetsThemAllWhoeverThrows) {
    expectWholeWhoeverThrows(
        [](auto& channel) {
            channel.setValuesHermiteValuesForKeyframes({7, 8, 9},
                                                       {oddRecord(36), oddRecord(9), recordWith(1)},
                                                       {KWTime(1), KWTime(5), KWTime(0.5f)});
        },
        3);
}

TEST(KWKeyFramedChannelObservers, ModifyingAShapeIsWholeWhoeverThrows) {
    expectWholeWhoeverThrows(
        [](auto& channel) { channel.modifyHermiteValueForKeyframe(recordWith(0.5f), KWTime(3)); });
}

TEST(KWKeyFramedChannelObservers, RemovingIsWholeWhoeverThrows) {
    expectWholeWhoeverThrows([](auto& channel) { channel.removeValueForKeyframe(KWTime(3)); });
    expectWholeWhoeverThrows(
        [](auto& channel) {
            channel.removeValuesForKeyframes({KWTime(3), KWTime(0)});
        },
        2);
    expectWholeWhoeverThrows([](auto& channel) { channel.removeAllKeyframes(); });
}

TEST(KWKeyFramedChannelObservers, StoppingAManipulationIsWholeWhoeverThrows) {
    expectWholeWhoeverThrows(
        [](auto& channel) {
            channel.startManipulation();
            channel.removeValueForKeyframe(KWTime(3));
            channel.setValueForKeyframe(99, KWTime(2));
            channel.setValueHermiteValueForKeyframe(1, recordWith(0.5f), KWTime(20));
        },
        [](auto& channel) { channel.stopManipulation(); }, 1);
}

TEST(KWKeyFramedChannelObservers, AnEditIsUndoneAlsoWhenAnObserverThrows) {
    Edited x;
    x.set(1, 0);
    x.set(2, 0);
    x.channel->removeAllKeyframes();
    const auto undoThrows = [&x] {
        Everybody everybody(x, [] { throw std::runtime_error("no"); });
        EXPECT_THROW(x.manager->undo(), std::runtime_error);
    };
    undoThrows();
    EXPECT_EQ(x.channel->valueForKeyframe(KWTime(0)), 2);
    undoThrows();
    EXPECT_EQ(x.channel->valueForKeyframe(KWTime(0)), 1);
    undoThrows();
    EXPECT_EQ(x.channel->keyframeCount(), 0u);
    EXPECT_FALSE(x.manager->canUndo());
}
