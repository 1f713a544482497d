#include "KeyFramedTestSupport.h"

#include <KWFoundation/KWUndoManager.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <map>

namespace {

/// A channel whose owner has an undo manager.
struct Edited {
    Edited() {
        owner.manager = manager.get();
        channel->setOwner(&owner);
    }
    void set(float value, float key) { channel->setValueForKeyframe(value, KWTime(key)); }
    void set(float value, const KWData& record, float key) {
        channel->setValueHermiteValueForKeyframe(value, record, KWTime(key));
    }
    int steps() const {
        int count = 0;
        for (; manager->canUndo(); ++count)
            manager->undo();
        for (int k = 0; k < count; ++k)
            manager->redo();
        return count;
    }

    std::shared_ptr<KWUndoManager> manager = std::make_shared<KWUndoManager>();
    CountingOwner owner;
    std::shared_ptr<KWKeyFramedChannel> channel = std::make_shared<KWKeyFramedChannel>();
};

KWData oddRecord(std::size_t size) {
    KWData record(size);
    for (std::size_t k = 0; k < size; ++k)
        record[k] = static_cast<std::byte>(k + 1);
    return record;
}

} // namespace

TEST(KWKeyFramedChannelEditing, SettingAtAnExistingTimeReplacesAndUndoRestoresValueAndRecord) {
    Edited x;
    x.set(1, recordWith(0.5f, 0.25f), 3);
    x.set(2, recordWith(-1), 3);
    EXPECT_EQ(x.channel->keyframeCount(), 1u);
    EXPECT_EQ(x.channel->valueForKeyframe(KWTime(3)), 2);
    x.manager->undo();
    EXPECT_EQ(x.channel->keyframeCount(), 1u);
    EXPECT_EQ(x.channel->valueForKeyframe(KWTime(3)), 1);
    EXPECT_EQ(x.channel->hermiteValueForKeyframe(KWTime(3)), recordWith(0.5f, 0.25f));
    x.manager->redo();
    EXPECT_EQ(x.channel->hermiteValueForKeyframe(KWTime(3)), recordWith(-1));
}

TEST(KWKeyFramedChannelEditing, InsertingTimesOutOfOrderKeepsKeysAscending) {
    const auto channel = channelWithKeys({{2, 20}, {0, 0}, {1, 10}});
    EXPECT_EQ(timesOf(channel->allKeyframes()), (std::vector<float>{0, 1, 2}));
    EXPECT_EQ(channel->valuesForKeyframes(channel->allKeyframes()),
              (std::vector<float>{0, 10, 20}));
    EXPECT_TRUE(channel->isRegular());
}

TEST(KWKeyFramedChannelEditing, SettingAKeyPostsOneNoticeAndRemovingOneNone) {
    Edited x;
    NoticeCounter notices(x.channel.get());
    x.set(1, 0);
    EXPECT_EQ(notices.count, 1);
    EXPECT_EQ(x.owner.invalidations, 1);
    x.channel->updateForTime(KWTime(0));
    x.channel->removeValueForKeyframe(KWTime(0));
    EXPECT_EQ(notices.count, 1);
    EXPECT_EQ(x.owner.invalidations, 1);
    EXPECT_FALSE(x.channel->isValid());
}

TEST(KWKeyFramedChannelEditing, TheNoticeGoesOutBeforeTheKeysChange) {
    const auto channel = channelWithKeys({{0, 1}});
    std::vector<float> seen;
    NoticeCounter notices(channel.get(), [&] {
        seen.push_back(static_cast<float>(channel->keyframeCount()));
        seen.push_back(channel->valueForKeyframe(KWTime(0)));
    });
    channel->setValueForTime(2, KWTime(0));
    channel->setValueForTime(2, KWTime(1));
    EXPECT_EQ(seen, (std::vector<float>{1, 1, 1, 2}));
    EXPECT_EQ(channel->keyframeCount(), 2u);
}

TEST(KWKeyFramedChannelEditing, NilAndNaNTimesAndNilRecordsAreIgnoredWithoutANotice) {
    Edited x;
    x.set(1, 0);
    NoticeCounter notices(x.channel.get());
    x.channel->setValueForTime(2, std::nullopt);
    x.channel->setValueForKeyframe(2, std::nullopt);
    x.channel->setValueForKeyframe(2, KWTime(kwNaN));
    x.channel->setValueHermiteValueForKeyframe(2, std::nullopt, KWTime(0));
    x.channel->setValueHermiteValueForKeyframe(2, recordWith(0), std::nullopt);
    x.channel->setValueHermiteValueForKeyframe(2, recordWith(0), KWTime(kwNaN));
    x.channel->removeValueForKeyframe(KWTime(kwNaN));
    x.channel->modifyHermiteValueForKeyframe(recordWith(1), KWTime(kwNaN));
    EXPECT_EQ(notices.count, 0);
    EXPECT_EQ(x.steps(), 1);
    EXPECT_EQ(x.channel->valueForKeyframe(KWTime(0)), 1);
    EXPECT_EQ(x.channel->keyframeCount(), 1u);
}

TEST(KWKeyFramedChannelEditing, MinusZeroNamesTheKeyZeroAndKeepsItsBits) {
    for (const float stored : {0.0f, -0.0f}) {
        const auto channel = channelWithKeys({{stored, 1}});
        channel->setValueForKeyframe(2, KWTime(-stored));
        ASSERT_EQ(channel->keyframeCount(), 1u);
        EXPECT_EQ(bitsOf(channel->firstKeyframe()->time()), bitsOf(stored));
        EXPECT_EQ(channel->valueForKeyframe(KWTime(-stored)), 2);
        EXPECT_EQ(channel->indexOfKeyframe(KWTime(-stored)), 0u);
        EXPECT_EQ(channel->moveRangeForSelectedKeyframes({KWTime(-stored)}),
                  channel->moveRangeForSelectedKeyframes({KWTime(stored)}));
        channel->removeValueForKeyframe(KWTime(-stored));
        EXPECT_EQ(channel->keyframeCount(), 0u);
    }
}

TEST(KWKeyFramedChannelEditing, SettingOnlyAValueMakesTheShapeNeutral) {
    Edited x;
    x.set(1, recordWith(0.5f), 0);
    x.channel->setValueForTime(2, KWTime(0));
    EXPECT_EQ(x.channel->hermiteValueForKeyframe(KWTime(0)), KWKeyFramedChannel::hermiteData());
}

TEST(KWKeyFramedChannelEditing, RecordsComeBackByteForByte) {
    Edited x;
    HJHermiteParam param{std::bit_cast<float>(0x7f800001u), -0.0f, 1e-45f, {1, 2, 3, 4, 5, kwNaN}};
    const KWData full = KWKeyFramedChannel::hermiteDataFrom(&param);
    x.set(1, 0);
    x.set(2, full, 1);
    x.set(3, recordWith(1), 0.5f);
    EXPECT_EQ(x.channel->hermiteValueForKeyframe(KWTime(0)), KWData(36));
    EXPECT_EQ(x.channel->hermiteValueForKeyframe(KWTime(1)), full);
    EXPECT_EQ(x.channel->hermiteValueForKeyframe(KWTime(0.5f)), recordWith(1));
    EXPECT_EQ(KWKeyFramedChannel::hermiteDataFrom(nullptr), KWData(36));
    x.channel->removeValueForKeyframe(KWTime(1));
    x.manager->undo();
    EXPECT_EQ(x.channel->hermiteValueForKeyframe(KWTime(1)), full);
}

TEST(KWKeyFramedChannelEditing, ARecordOfWrongSizeCannotBeAModification) {
    Edited x;
    x.set(1, 0);
    for (const std::size_t size : {0u, 35u, 37u})
        EXPECT_EQ(Outcome::of([&] {
                      x.channel->modifyHermiteValueForKeyframe(KWData(size), KWTime(0));
                      return 0.0f;
                  }).exception,
                  "KWHermiteParam size mismatch");
    EXPECT_THROW(x.channel->modifyHermiteValueForKeyframe(KWData(35), KWTime(9)), KWException);
    EXPECT_EQ(x.steps(), 1);
}

TEST(KWKeyFramedChannelEditing, ModifyingAShapeReplacesInvalidatesAndThenNotifies) {
    Edited x;
    x.set(1, recordWith(0.25f), 0);
    x.owner.invalidations = 0;
    x.channel->updateForTime(KWTime(0));
    KWData seen;
    NoticeCounter notices(x.channel.get(), [&] {
        seen = *x.channel->hermiteValueForKeyframe(KWTime(0));
        EXPECT_FALSE(x.channel->isValid());
    });
    const HJHermiteParam param{0.5f, 0, 0, {}};
    x.channel->modifyHermiteParamForKeyframe(&param, KWTime(0));
    EXPECT_EQ(notices.count, 1);
    EXPECT_EQ(seen, recordWith(0.5f));
    EXPECT_EQ(x.owner.invalidations, 0);
    x.manager->undo();
    EXPECT_EQ(seen, recordWith(0.25f));
    EXPECT_EQ(notices.count, 2);
    x.channel->modifyHermiteParamForKeyframe(nullptr, KWTime(0));
    x.channel->modifyHermiteParamForKeyframe(&param, KWTime(1));
    EXPECT_EQ(notices.count, 2);
}

TEST(KWKeyFramedChannelEditing, OddRecordsAreAnsweredAsGivenAndSurviveUndo) {
    for (const std::size_t size : {0u, 1u, 11u, 35u, 37u, 100u}) {
        Edited x;
        x.set(1, 0);
        x.set(2, oddRecord(size), 1);
        x.set(3, 2);
        EXPECT_FALSE(x.channel->isRegular());
        EXPECT_EQ(x.channel->hermiteValueForKeyframe(KWTime(1)), oddRecord(size));
        x.channel->modifyHermiteValueForKeyframe(recordWith(0.5f), KWTime(1));
        EXPECT_TRUE(x.channel->isRegular());
        const float shaped = x.channel->valueForTime(KWTime(1.5f));
        x.manager->undo();
        EXPECT_EQ(x.channel->hermiteValueForKeyframe(KWTime(1)), oddRecord(size));
        x.manager->redo();
        EXPECT_EQ(x.channel->valueForTime(KWTime(1.5f)), shaped);
        x.manager->undo();
        x.channel->removeValueForKeyframe(KWTime(1));
        EXPECT_TRUE(x.channel->isRegular());
        x.manager->undo();
        EXPECT_EQ(x.channel->hermiteValueForKeyframe(KWTime(1)), oddRecord(size));
        x.channel->removeAllKeyframes();
        x.manager->undo();
        EXPECT_EQ(x.channel->hermiteValueForKeyframe(KWTime(1)), oddRecord(size));
        EXPECT_EQ(x.channel->keyframeCount(), 3u);
    }
}

TEST(KWKeyFramedChannelEditing, RemovingAnAbsentKeyDoesNothing) {
    Edited x;
    x.set(1, 0);
    x.channel->updateForTime(KWTime(0));
    x.channel->removeValueForKeyframe(KWTime(1));
    EXPECT_TRUE(x.channel->isValid());
    EXPECT_EQ(x.steps(), 1);
}

TEST(KWKeyFramedChannelEditing, RemovingAllNeitherInvalidatesNorNotifies) {
    Edited x;
    x.set(1, recordWith(1), 0);
    x.set(2, 1);
    x.owner.invalidations = 0;
    const std::string before = contentsOf(*x.channel);
    x.channel->updateForTime(KWTime(1));
    NoticeCounter notices(x.channel.get());
    x.channel->removeAllKeyframes();
    EXPECT_EQ(x.channel->keyframeCount(), 0u);
    EXPECT_TRUE(x.channel->isValid());
    EXPECT_EQ(notices.count, 0);
    EXPECT_EQ(x.owner.invalidations, 0);
    x.manager->undo();
    EXPECT_EQ(contentsOf(*x.channel), before);
    x.manager->redo();
    EXPECT_EQ(x.channel->keyframeCount(), 0u);
}

TEST(KWKeyFramedChannelEditing, SettingManyStopsAtTheFirstKeyWithoutAValueOrRecord) {
    const auto channel = channelWithKeys({});
    const std::vector<KWTime> keys{KWTime(0), KWTime(1)};
    const std::vector<KWData> records(2, recordWith(0));
    EXPECT_THROW(channel->setValuesHermiteValuesForKeyframes({1}, records, keys),
                 std::out_of_range);
    EXPECT_EQ(channel->keyframeCount(), 1u);
    EXPECT_THROW(channel->setValuesHermiteValuesForKeyframes({1, 2}, {}, keys), std::out_of_range);
    channel->setValuesHermiteValuesForKeyframes({1, 2, 3}, records, keys);
    EXPECT_EQ(channel->keyframeCount(), 2u);
}

TEST(KWKeyFramedChannelEditing, WithoutAnUndoManagerEditsJustHappen) {
    KWKeyFramedChannel onStack;
    CountingOwner owner;
    KWUndoManager manager;
    owner.manager = &manager;
    onStack.setOwner(&owner);
    onStack.setValueForKeyframe(1, KWTime(0));
    onStack.setValueForKeyframe(2, KWTime(0));
    onStack.startManipulation();
    onStack.setValueForKeyframe(3, KWTime(0));
    onStack.stopManipulation();
    onStack.removeValueForKeyframe(KWTime(0));
    EXPECT_FALSE(manager.canUndo());
    EXPECT_EQ(onStack.keyframeCount(), 0u);
}

// --- Observers that edit

TEST(KWKeyFramedChannelEditing, AnObserverMayEditWithinTheNotice) {
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

TEST(KWKeyFramedChannelEditing, AnObserverOfTheUndoManagerMayEdit) {
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

TEST(KWKeyFramedChannelEditing, AnObserverMayLetGoOfTheChannel) {
    auto channel = channelWithKeys({{0, 1}});
    const std::weak_ptr<KWKeyFramedChannel> watched = channel;
    NoticeCounter notices(channel.get(), [&] { channel.reset(); });
    channel->setValueForKeyframe(2, KWTime(1));
    EXPECT_TRUE(watched.expired());
}

TEST(KWKeyFramedChannelEditing, AThrowingObserverKeepsAnEditFromHappening) {
    const auto channel = channelWithKeys({{0, 1}});
    NoticeCounter notices(channel.get(), [] { throw std::runtime_error("no"); });
    EXPECT_THROW(channel->setValueForKeyframe(2, KWTime(1)), std::runtime_error);
    EXPECT_EQ(channel->keyframeCount(), 1u);
}

// --- Manipulation

TEST(KWKeyFramedChannelEditing, AManipulationIsOneStepWhenKeysOrValuesChanged) {
    Edited x;
    x.set(1, 0);
    x.set(2, recordWith(0.5f), 1);
    x.manager->removeAllActions();
    const std::string before = contentsOf(*x.channel);
    x.channel->startManipulation();
    x.channel->removeValueForKeyframe(KWTime(1));
    x.set(5, recordWith(0.5f), 1.5f);
    x.set(6, 2.5f);
    EXPECT_FALSE(x.manager->canUndo());
    const std::string after = contentsOf(*x.channel);
    x.channel->stopManipulation();
    EXPECT_FALSE(x.channel->isManipulating());
    EXPECT_EQ(contentsOf(*x.channel), after);
    EXPECT_EQ(x.steps(), 1);
    x.manager->undo();
    EXPECT_EQ(contentsOf(*x.channel), before);
    EXPECT_FALSE(x.manager->canUndo());
    x.manager->redo();
    EXPECT_EQ(contentsOf(*x.channel), after);
    EXPECT_FALSE(x.manager->canRedo());
    x.manager->undo();
    EXPECT_EQ(contentsOf(*x.channel), before);
    EXPECT_EQ(x.manager->groupingLevel(), 0);
}

TEST(KWKeyFramedChannelEditing, AManipulationThatEndsWhereItStartedIsNoStep) {
    Edited x;
    x.set(kwNaN, 0);
    x.set(2, 1);
    x.manager->removeAllActions();
    NoticeCounter notices(x.channel.get());
    x.channel->startManipulation();
    x.set(7, 1);
    x.set(2, recordWith(0.5f), 1); // shapes alone do not count
    x.channel->stopManipulation();
    EXPECT_FALSE(x.manager->canUndo());
    EXPECT_EQ(notices.count, 2);
    EXPECT_EQ(x.channel->hermiteValueForKeyframe(KWTime(1)), recordWith(0.5f));
}

TEST(KWKeyFramedChannelEditing, AManipulationInsideAHostsGroupJoinsIt) {
    Edited x;
    x.set(1, 0);
    x.manager->removeAllActions();
    x.manager->beginUndoGrouping();
    x.channel->startManipulation();
    x.set(2, 0);
    x.channel->stopManipulation();
    x.set(3, 1);
    x.manager->endUndoGrouping();
    EXPECT_EQ(x.steps(), 1);
    x.manager->undo();
    EXPECT_EQ(x.channel->valueForKeyframe(KWTime(0)), 1);
    EXPECT_EQ(x.channel->keyframeCount(), 1u);
}

TEST(KWKeyFramedChannelEditing, StartingAgainTakesTheCopiesAgain) {
    Edited x;
    x.set(1, 0);
    x.manager->removeAllActions();
    x.channel->startManipulation();
    x.set(2, 0);
    x.channel->startManipulation();
    x.channel->stopManipulation();
    EXPECT_FALSE(x.manager->canUndo());
    x.channel->startManipulation();
    x.set(3, 0);
    x.channel->startManipulation();
    x.set(4, 0);
    x.channel->stopManipulation();
    x.manager->undo();
    EXPECT_EQ(x.channel->valueForKeyframe(KWTime(0)), 3);
}

TEST(KWKeyFramedChannelEditing, AnObserverThatThrowsAtTheStopCostsNoKeys) {
    Edited x;
    x.set(1, 0);
    x.set(2, 1);
    x.channel->startManipulation();
    x.set(5, 1);
    const std::string after = contentsOf(*x.channel);
    for (int failing = 1; failing < 4; ++failing) {
        int count = 0;
        NoticeCounter notices(x.channel.get(), [&] {
            if (++count == failing)
                throw std::runtime_error("no");
        });
        EXPECT_THROW(x.channel->stopManipulation(), std::runtime_error);
        EXPECT_EQ(contentsOf(*x.channel), after);
        EXPECT_FALSE(x.channel->isManipulating());
        EXPECT_EQ(x.manager->groupingLevel(), 0);
    }
}

// --- Queries

TEST(KWKeyFramedChannelEditing, KeysAreFoundByIndexAndTime) {
    const auto channel = channelWithKeys({{1, 10}, {2, 20}, {4, 40}});
    EXPECT_EQ(channel->keyframeAtIndex(2), KWTime(4));
    EXPECT_EQ(channel->keyframeAtIndex(3), std::nullopt);
    EXPECT_EQ(channel->firstKeyframe(), KWTime(1));
    EXPECT_EQ(channel->lastKeyframe(), KWTime(4));
    EXPECT_EQ(channelWithKeys({})->firstKeyframe(), std::nullopt);
    EXPECT_EQ(channelWithKeys({})->lastKeyframe(), std::nullopt);
    EXPECT_TRUE(channel->isKeyframe(KWTime(2)));
    EXPECT_FALSE(channel->isKeyframe(KWTime(3)));
    EXPECT_EQ(channel->indexOfKeyframe(KWTime(4)), 2u);
    EXPECT_EQ(channel->indexOfKeyframe(KWTime(0)), KWNotFound);
    EXPECT_EQ(channel->indexOfKeyframe(KWTime(kwNaN)), KWNotFound);
    EXPECT_EQ(channelWithKeys({})->indexOfKeyframe(KWTime(0)), KWNotFound);
    EXPECT_EQ(channel->valueForKeyframeAtIndex(1), 20);
    EXPECT_EQ(channel->valueForKeyframeAtIndex(3), 0);
    EXPECT_EQ(channel->valueForKeyframe(KWTime(3)), 0);
    EXPECT_EQ(channel->hermiteValueForKeyframe(KWTime(3)), std::nullopt);
    EXPECT_EQ(channel->valuesForKeyframes({KWTime(4), KWTime(3), KWTime(1)}),
              (std::vector<float>{40, 0, 10}));
    EXPECT_EQ(channel->hermiteValuesForKeyframes({KWTime(4)}).size(), 1u);
    EXPECT_THROW(channel->hermiteValuesForKeyframes({KWTime(4), KWTime(3)}), std::invalid_argument);
}

TEST(KWKeyFramedChannelEditing, KeysBetweenIncludeBothBounds) {
    const auto channel = channelWithKeys({{1, 0}, {2, 0}, {3, 0}, {4, 0}});
    EXPECT_EQ(timesOf(channel->keyframesBetweenAnd(KWTime(2), KWTime(3))),
              (std::vector<float>{2, 3}));
    EXPECT_TRUE(channel->keyframesBetweenAnd(KWTime(3), KWTime(2)).empty());
    EXPECT_TRUE(channel->keyframesBetweenAnd(KWTime(kwNaN), KWTime(9)).empty());
}

TEST(KWKeyFramedChannelEditing, BoundingKeysCountAKeyAtTheTimeAsPassed) {
    const auto channel = channelWithKeys({{1, 0}, {2, 0}, {3, 0}});
    using Pair = std::array<KWTime, 2>;
    EXPECT_EQ(channelWithKeys({})->boundingKeyframesForTime(KWTime(0)), std::nullopt);
    EXPECT_EQ(channel->boundingKeyframesForTime(KWTime(0)), (Pair{1, 1}));
    EXPECT_EQ(channel->boundingKeyframesForTime(KWTime(1)), (Pair{1, 2}));
    EXPECT_EQ(channel->boundingKeyframesForTime(KWTime(2.5f)), (Pair{2, 3}));
    EXPECT_EQ(channel->boundingKeyframesForTime(KWTime(3)), (Pair{3, 3}));
    EXPECT_EQ(channel->boundingKeyframesForTime(KWTime(9)), (Pair{3, 3}));
    EXPECT_EQ(channel->boundingKeyframesForTime(KWTime(kwNaN)), (Pair{1, 1}));
}

TEST(KWKeyFramedChannelEditing, TheBoundingRectHasTenByTwoWhereThereIsNoSpan) {
    EXPECT_EQ(channelWithKeys({})->boundingRect(), (HJRect{0, -1, 10, 2}));
    EXPECT_EQ(channelWithKeys({{3, 5}})->boundingRect(), (HJRect{0, 0, 10, 5}));
    EXPECT_EQ(channelWithKeys({{3, -5}, {7, -2}})->boundingRect(), (HJRect{3, -5, 4, 5}));
    EXPECT_EQ(channelWithKeys({{1, 2}, {1.0000001f, 1}})->boundingRect(), (HJRect{0, 0, 10, 2}));
    EXPECT_EQ(channelWithKeys({{0, 1e-7f}, {1, 0}})->boundingRect(), (HJRect{0, -1, 1, 2}));
}

TEST(KWKeyFramedChannelEditing, TheBoundingRectTakesTheValuesAtTheKeysTimes) {
    // Under a cycle the last key's time is the first key's.
    const auto channel = channelWithKeys({{0, 1}, {1, 2}, {2, 9}}, 0, KWRepeatModeCycle);
    EXPECT_EQ(channel->boundingRect(), (HJRect{0, 0, 2, 2}));
    const auto odd = channelWithKeys({{0, 1}, {1, 2}});
    odd->setValueHermiteValueForKeyframe(1, KWData(), KWTime(0));
    EXPECT_THROW(odd->boundingRect(), KWException);
}

TEST(KWKeyFramedChannelEditing, TheBoundingRectInUserUnitConvertsBottomAndTop) {
    const auto channel = channelWithKeys({{1, -1}, {3, 2}});
    channel->setUnitType(KWUnitTypeAngle);
    const HJRect rect = channel->boundingRectInUserUnit();
    const float bottom = channel->convertValueToUserUnit(-1);
    EXPECT_EQ(rect, (HJRect{1, bottom, 2, channel->convertValueToUserUnit(2) - bottom}));
    EXPECT_LT(rect.y, -57);
}

TEST(KWKeyFramedChannelEditing, KeysInARectIncludeAllBounds) {
    const auto channel = channelWithKeys({{0, 0}, {1, 1}, {2, 2}, {3, 3}});
    EXPECT_EQ(timesOf(channel->keyframesForBoundingRect({1, 1, 1, 1})), (std::vector<float>{1, 2}));
    EXPECT_EQ(timesOf(channel->keyframesForBoundingRect({0, 1.5f, 9, 9})),
              (std::vector<float>{2, 3}));
}

TEST(KWKeyFramedChannelEditing, SelectedKeysMayMoveUpToTheirUnselectedNeighbours) {
    const auto range = [](const KWKeyFramedChannel& channel, std::vector<KWTime> times) {
        return channel.moveRangeForSelectedKeyframes(times);
    };
    const float open = std::numeric_limits<float>::max();
    const auto channel = channelWithKeys({{0, 0}, {1, 0}, {3, 0}});
    EXPECT_EQ(range(*channel, {1}), (HJKeyMoveRange{-1, 2}));
    EXPECT_EQ(range(*channel, {}), (HJKeyMoveRange{0, 0}));
    EXPECT_EQ(range(*channelWithKeys({}), {1}), (HJKeyMoveRange{0, 0}));
    EXPECT_EQ(range(*channel, {3, 0}), (HJKeyMoveRange{-2, 1}));
    EXPECT_EQ(range(*channel, {0, 1}), (HJKeyMoveRange{-open, 2}));
    EXPECT_EQ(range(*channel, {3, 1, 1}), (HJKeyMoveRange{-1, open}));
    EXPECT_EQ(range(*channel, {0, 1, 3}), (HJKeyMoveRange{-open, open}));
    EXPECT_EQ(range(*channel, {7, kwNaN}), (HJKeyMoveRange{-open, open}));
    EXPECT_EQ(range(*channelWithKeys({{0, 0}, {1, 0}, {3, 0}, {3.5f, 0}}), {1, 3.5f}),
              (HJKeyMoveRange{-0.5f, 2}));
}

// --- Copies

TEST(KWKeyFramedChannelEditing, ACopyHasKeysModesAndSavedCopiesOfItsOwn) {
    Edited x;
    x.set(1, recordWith(0.5f), 0);
    x.set(2, oddRecord(3), 1);
    x.channel->setName("curve");
    x.channel->setKeyFrameChannelMode(KWKeyFrameModeStep);
    x.channel->setRepeatMode(KWRepeatModePingPong);
    const auto copy = std::dynamic_pointer_cast<KWKeyFramedChannel>(x.channel->copy());
    ASSERT_TRUE(copy);
    EXPECT_EQ(contentsOf(*copy), contentsOf(*x.channel));
    EXPECT_EQ(copy->name(), "curve");
    EXPECT_EQ(copy->keyFrameChannelMode(), KWKeyFrameModeStep);
    EXPECT_EQ(copy->repeatMode(), KWRepeatModePingPong);
    EXPECT_EQ(copy->owner(), nullptr);
    EXPECT_FALSE(copy->isRegular());
    copy->setValueForKeyframe(9, KWTime(5));
    EXPECT_EQ(x.channel->keyframeCount(), 2u);
    EXPECT_EQ(KWKeyFramedChannel::initWithChannel(KWChannel()), nullptr);

    // The saved copies come along: a stop without a start of its own goes back to them.
    x.channel->startManipulation();
    const auto taken = KWKeyFramedChannel::initWithChannel(*x.channel);
    NoticeCounter notices(taken.get());
    taken->stopManipulation();
    EXPECT_EQ(notices.count, 0);
}

TEST(KWKeyFramedChannelEditing, ASubclassWithAClassOfItsOwnCopiesAsItself) {
    class Wave final : public KWKeyFramedChannel {
      public:
        static const KWClass& classObject() {
            static constinit KWClass theClass{"Wave", &KWKeyFramedChannel::classObject, 0,
                                              KWClass::make<Wave>};
            return theClass;
        }
        const KWClass& isa() const override { return classObject(); }
    };
    const auto wave = std::make_shared<Wave>();
    wave->setValueForKeyframe(3, KWTime(1));
    const auto copy = std::dynamic_pointer_cast<Wave>(wave->copy());
    ASSERT_TRUE(copy);
    EXPECT_EQ(copy->valueForKeyframe(KWTime(1)), 3);
    EXPECT_EQ(KWKeyFramedChannel::initWithChannel(*wave), nullptr);
}

// --- Irregular channels

TEST(KWKeyFramedChannelEditing, AnEditThatMissesAnElementChangesNothing) {
    const KWData neutral = recordWith(0);
    const auto channel = channelFromLists({{0, 1, 2}, {5}, {neutral, neutral, neutral}});
    EXPECT_THROW(channel->setValueForKeyframe(1, KWTime(2)), std::out_of_range);
    EXPECT_THROW(channel->setValueForKeyframe(1, KWTime(1.5f)), std::out_of_range);
    EXPECT_THROW(channel->removeValueForKeyframe(KWTime(1)), std::out_of_range);
    EXPECT_THROW(channel->valueForKeyframe(KWTime(1)), std::out_of_range);
    EXPECT_THROW(channel->valueForKeyframeAtIndex(1), std::out_of_range);
    EXPECT_EQ(channel->keyframeCount(), 3u);
    channel->startManipulation();
    channel->setValueForKeyframe(7, KWTime(0));
    EXPECT_THROW(channel->stopManipulation(), std::out_of_range);
    EXPECT_EQ(channel->keyframeCount(), 3u);
    EXPECT_EQ(channel->valueForKeyframe(KWTime(0)), 7);
    // What does not need the missing ones works.
    channel->setValueForKeyframe(9, KWTime(3));
    EXPECT_EQ(channel->keyframeCount(), 4u);
    channel->setValueForKeyframe(6, KWTime(0));
    EXPECT_EQ(channel->valueForKeyframe(KWTime(0)), 6);
    EXPECT_EQ(timesOf(channel->allKeyframes()), (std::vector<float>{0, 1, 2, 3}));
}

TEST(KWKeyFramedChannelEditing, MissingRecordsAreOutOfRange) {
    const auto channel = channelFromLists({{0, 1}, {5, 6}, {}});
    EXPECT_THROW(channel->hermiteValueForKeyframe(KWTime(0)), std::out_of_range);
    EXPECT_THROW(channel->modifyHermiteValueForKeyframe(recordWith(1), KWTime(0)),
                 std::out_of_range);
    EXPECT_THROW(channel->setValueForKeyframe(1, KWTime(0)), std::out_of_range);
    EXPECT_EQ(channel->valueForKeyframe(KWTime(0)), 5);
}

TEST(KWKeyFramedChannelEditing, RemovingTheOffendersMakesAChannelRegularAgain) {
    const KWData neutral = recordWith(0);
    const auto channel =
        channelFromLists({{0, 5, 2, 5}, {1, 2, 3, 4}, {neutral, neutral, neutral, neutral}});
    EXPECT_FALSE(channel->isRegular());
    EXPECT_EQ(channel->valueForKeyframe(KWTime(5)), 2);
    channel->removeValueForKeyframe(KWTime(5));
    EXPECT_TRUE(channel->isRegular());
    EXPECT_EQ(channel->valueForKeyframe(KWTime(5)), 4);
    const auto made = channelWithKeys({{0, 1}, {2, 3}, {5, 4}});
    for (const float t : {0.5f, 1.9f, 2.0f, 4.0f})
        EXPECT_EQ(bitsOf(channel->valueForTime(KWTime(t))), bitsOf(made->valueForTime(KWTime(t))));
}

TEST(KWKeyFramedChannelEditing, AnInsertionIntoUnsortedKeysGoesBeforeTheFirstLaterOne) {
    const KWData neutral = recordWith(0);
    const auto channel =
        channelFromLists({{0, kwNaN, 2, 1}, {1, 2, 3, 4}, {neutral, neutral, neutral, neutral}});
    channel->setValueForKeyframe(9, KWTime(1.5f));
    EXPECT_EQ(channel->indexOfKeyframe(KWTime(1.5f)), 1u);
    channel->setValueForKeyframe(9, KWTime(-1));
    EXPECT_EQ(channel->indexOfKeyframe(KWTime(-1)), 0u);
}

// --- Against a plain model

TEST(KWKeyFramedChannelEditing, RandomEditsAgreeWithASortedListAndUndoAllTheWay) {
    struct Entry {
        float value;
        KWData record;
        bool operator==(const Entry&) const = default;
    };
    for (std::uint32_t seed = 0; seed < 40; ++seed) {
        std::mt19937 random(seed);
        const auto below = [&random](std::uint32_t limit) {
            return static_cast<std::uint32_t>(random() % limit);
        };
        const auto key = [&] { return static_cast<float>(below(40)) * 0.5f; };
        const auto record = [&] {
            return below(12) == 0  ? oddRecord(below(50))
                   : below(3) == 0 ? KWData(36)
                                   : recordWith(static_cast<float>(below(5)) * 0.25f, 0.5f);
        };
        Edited x;
        std::map<float, Entry> model;
        const auto check = [&] {
            ASSERT_EQ(x.channel->keyframeCount(), model.size());
            std::uint32_t k = 0;
            bool odd = false;
            for (const auto& [time, entry] : model) {
                ASSERT_EQ(x.channel->keyframeAtIndex(k), KWTime(time));
                ASSERT_EQ(x.channel->valueForKeyframeAtIndex(k), entry.value);
                ASSERT_EQ(x.channel->hermiteValueForKeyframe(KWTime(time)), entry.record);
                odd |= entry.record.size() != 36;
                ++k;
            }
            ASSERT_EQ(x.channel->isRegular(), !odd);
        };
        for (int k = 0; k < 10; ++k) {
            const float time = key();
            model[time] = {static_cast<float>(k), record()};
            x.set(model[time].value, model[time].record, time);
        }
        x.manager->removeAllActions();
        const std::string start = contentsOf(*x.channel);
        std::vector<std::string> states;
        for (int round = 0; round < 200; ++round) {
            const float time = key();
            const float value = static_cast<float>(below(100));
            switch (below(9)) {
            case 0:
                x.channel->removeValueForKeyframe(KWTime(time));
                model.erase(time);
                break;
            case 1:
                if (below(20) == 0) {
                    x.channel->removeAllKeyframes();
                    model.clear();
                }
                break;
            case 2:
                if (const auto found = model.find(time); found != model.end())
                    found->second.record = recordWith(0.125f);
                x.channel->modifyHermiteValueForKeyframe(recordWith(0.125f), KWTime(time));
                break;
            case 3: {
                x.channel->startManipulation();
                const float other = key();
                // A value of its own: a changed shape alone would be no step.
                const float fresh = 1000 + static_cast<float>(round);
                x.set(fresh, time);
                x.channel->removeValueForKeyframe(KWTime(other));
                model[time] = {fresh, KWData(36)};
                model.erase(other);
                x.channel->stopManipulation();
                break;
            }
            case 4: {
                const std::vector<KWTime> keys{time, key(), key()};
                const std::vector<KWData> records{record(), record(), record()};
                for (std::size_t k = 0; k < 3; ++k)
                    model[keys[k].time()] = {value, records[k]};
                x.channel->setValuesHermiteValuesForKeyframes({value, value, value}, records, keys);
                break;
            }
            default: {
                const Entry entry{value, record()};
                x.set(value, entry.record, time);
                model[time] = entry;
            }
            }
            check();
            if (testing::Test::HasFailure())
                FAIL() << "seed " << seed << ", round " << round;
        }
        const std::string end = contentsOf(*x.channel);
        for (int again = 0; again < 2; ++again) {
            while (x.manager->canUndo())
                x.manager->undo();
            ASSERT_EQ(contentsOf(*x.channel), start);
            while (x.manager->canRedo())
                x.manager->redo();
            ASSERT_EQ(contentsOf(*x.channel), end);
        }
    }
}
