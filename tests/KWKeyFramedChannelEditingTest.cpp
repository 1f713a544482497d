#include "KeyFramedTestSupport.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <map>

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

TEST(KWKeyFramedChannelEditing, StoppingWithoutAStartIsOneStep) {
    Edited x;
    x.set(1, 0);
    x.set(2, recordWith(0.5f), 1);
    x.manager->removeAllActions();
    const std::string before = contentsOf(*x.channel);
    x.channel->stopManipulation();
    EXPECT_EQ(contentsOf(*x.channel), before);
    EXPECT_EQ(x.steps(), 1);
    x.channel->startManipulation();
    x.channel->stopManipulation();
    x.set(3, 2);
    x.manager->removeAllActions();
    const std::string longer = contentsOf(*x.channel);
    x.channel->stopManipulation();
    EXPECT_EQ(x.steps(), 1);
    x.manager->undo();
    EXPECT_EQ(contentsOf(*x.channel), longer);
    x.manager->redo();
    EXPECT_EQ(contentsOf(*x.channel), longer);
    EXPECT_EQ(x.manager->groupingLevel(), 0);
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

TEST(KWKeyFramedChannelEditing, AnEditThatMissesAnElementRegistersNothing) {
    const KWData neutral = recordWith(0);
    Edited x;
    x.channel = channelFromLists({{0, 1, 2}, {5}, {neutral, neutral, neutral}});
    x.channel->setOwner(&x.owner);
    EXPECT_THROW(x.set(1, 2), std::out_of_range);
    EXPECT_THROW(x.set(1, 1.5f), std::out_of_range);
    EXPECT_THROW(x.channel->removeValueForKeyframe(KWTime(1)), std::out_of_range);
    EXPECT_FALSE(x.manager->canUndo());
    x.set(1, 0.5f);
    EXPECT_EQ(timesOf(x.channel->allKeyframes()), (std::vector<float>{0, 0.5f, 1, 2}));
    EXPECT_EQ(x.steps(), 1);
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

TEST(KWKeyFramedChannel, TheEditCountGrowsByOneWithEachKeyMadeReplacedOrRemoved) {
    Edited edited;
    KWKeyFramedChannel& channel = *edited.channel;
    std::uint64_t before = channel.editCount();
    const auto grown = [&] {
        return channel.editCount() - std::exchange(before, channel.editCount());
    };
    edited.set(1, 1);
    edited.set(2, 1);
    edited.set(2, 2);
    EXPECT_EQ(grown(), 3u);
    const HJHermiteParam shape{1, 0, 0, {}};
    channel.modifyHermiteParamForKeyframe(&shape, KWTime(1));
    EXPECT_EQ(grown(), 1u);
    channel.removeValuesForKeyframes({KWTime(1), KWTime(7), KWTime(1)});
    EXPECT_EQ(grown(), 1u);
    channel.removeAllKeyframes();
    EXPECT_EQ(grown(), 1u);
    edited.manager->undo();
    EXPECT_EQ(grown(), 1u);
    channel.takeContentsOf(*channelWithKeys({{0, 1}}));
    EXPECT_EQ(grown(), 1u);
    channel.invalidate();
    channel.setRepeatMode(KWRepeatModeCycle);
    channel.startManipulation();
    channel.stopManipulation();
    EXPECT_EQ(grown(), 0u);
}
