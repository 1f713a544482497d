#include "KeyFramedTestSupport.h"
#include "ViewTestSupport.h"

#include <KWBase/KWAlgebricChannel.h>
#include <KWBase/KWConstantChannel.h>
#include <KWDesktop/KWChannelUndoRecorder.h>

#include <apps/common/KWElement.h>
#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace {

/// A source whose edits a test makes.
class TestEdits final : public KWChannelEditSource {
  public:
    void run(KWChannelEdit kind, const std::shared_ptr<KWChannel>& channel,
             const std::function<void()>& change) {
        const Edit edit(*this, kind, channel);
        change();
    }
    void replace(KWChannelEdit kind, const std::shared_ptr<KWChannel>& old,
                 const std::shared_ptr<KWChannel>& present) {
        Edit edit(*this, kind, old);
        if (old->owner() && old->owner()->replaceChannelWith(old, present))
            edit.setChannel(present);
    }
};

/// An owner that replaces a channel and leaves everything else to others.
class PlainOwner final : public KWChannelOwner {
  public:
    ~PlainOwner() override { resign(); }
    KWUndoManager* undoManager() override { return manager.get(); }
    bool replaceChannelWith(const std::shared_ptr<KWChannel>& oldChannel,
                            const std::shared_ptr<KWChannel>& newChannel) override {
        return array->replaceChannelWith(oldChannel, newChannel);
    }
    std::shared_ptr<KWChannelArray> array = std::make_shared<KWChannelArray>();
    std::shared_ptr<KWUndoManager> manager = std::make_shared<KWUndoManager>();
};

class KWChannelUndoRecorderTest : public testing::Test {
  protected:
    KWChannelUndoRecorderTest() {
        element->setUndoManager(manager);
        for (const std::shared_ptr<KWChannel>& channel :
             std::vector<std::shared_ptr<KWChannel>>{keyed, constant, algebric})
            element->addChannelToGroupNamed(channel, "Group");
        for (const float time : {0.0f, 1.0f, 2.0f})
            keyed->setValueForKeyframe(time * time, KWTime(time));
        shape(0, 0.125f);
        constant->setValueForTime(2.5f, std::nullopt);
        algebric->setExpression("sin(t)");
        manager->removeAllActions();
    }

    void shape(float time, float tension) {
        const HJHermiteParam param{tension, 0.25f, -0.5f, {1, 2, 3, 4, 5, 6}};
        keyed->modifyHermiteParamForKeyframe(&param, KWTime(time));
    }
    float tensionAt(float time) const {
        HJHermiteParam param;
        std::memcpy(&param, keyed->hermiteValueForKeyframe(KWTime(time))->data(), sizeof(param));
        return param.tension;
    }
    std::shared_ptr<KWChannel> first() const {
        return element->channelArray()->channelAtIndexInGroup(0, 0);
    }
    int steps() const {
        int count = 0;
        for (; manager->canUndo(); ++count)
            manager->undo();
        for (int k = 0; k < count; ++k)
            manager->redo();
        return count;
    }
    /// Checks a step that is the only one: its name, and what undoing and redoing it leads to.
    template <class Read>
    void expectStep(const std::string& name, const Read& read, const decltype(read())& before,
                    const decltype(read())& after) {
        EXPECT_EQ(read(), after);
        EXPECT_EQ(manager->undoActionName(), name);
        for (int round = 0; round < 2; ++round) {
            manager->undo();
            EXPECT_EQ(read(), before);
            EXPECT_FALSE(manager->canUndo());
            EXPECT_EQ(manager->redoActionName(), name);
            manager->redo();
            EXPECT_EQ(read(), after);
            EXPECT_FALSE(manager->canRedo());
        }
    }

    std::shared_ptr<KWUndoManager> manager = std::make_shared<KWUndoManager>();
    std::shared_ptr<KWElement> element = std::make_shared<KWElement>("Ball");
    std::shared_ptr<KWKeyFramedChannel> keyed = std::make_shared<KWKeyFramedChannel>("keyed");
    std::shared_ptr<KWConstantChannel> constant = std::make_shared<KWConstantChannel>("constant");
    std::shared_ptr<KWAlgebricChannel> algebric = std::make_shared<KWAlgebricChannel>("algebric");
    TestEdits edits;
    KWChannelUndoRecorder recorder{edits};
};

} // namespace

TEST_F(KWChannelUndoRecorderTest, AGestureIsOneStep) {
    edits.run(KWChannelEdit::keys, keyed, [&] {
        EXPECT_TRUE(keyed->isManipulating());
        for (const float value : {1.0f, 2.0f, 3.0f}) {
            keyed->removeValueForKeyframe(KWTime(1));
            keyed->setValueForKeyframe(value, KWTime(1));
        }
    });
    EXPECT_FALSE(keyed->isManipulating());
    expectStep(
        "Edit Keys", [&] { return keyed->valueForKeyframe(KWTime(1)); }, 1.0f, 3.0f);
}

TEST_F(KWChannelUndoRecorderTest, WhatChangesNothingLeavesNoStep) {
    for (const KWChannelEdit kind :
         {KWChannelEdit::keys, KWChannelEdit::shape, KWChannelEdit::type, KWChannelEdit::paste,
          KWChannelEdit::expression, KWChannelEdit::value, KWChannelEdit::interpolation,
          KWChannelEdit::repeat})
        for (const std::shared_ptr<KWChannel>& channel :
             std::vector<std::shared_ptr<KWChannel>>{keyed, constant, algebric})
            edits.run(kind, channel, [] {});
    edits.run(KWChannelEdit::shape, keyed, [&] { shape(0, 0.125f); });
    edits.run(KWChannelEdit::value, constant,
              [&] { constant->setValueForTime(2.5f, std::nullopt); });
    edits.run(KWChannelEdit::expression, algebric, [&] { algebric->setExpression("sin(t)"); });
    EXPECT_FALSE(manager->canUndo());
    EXPECT_EQ(manager->groupingLevel(), 0);
}

TEST_F(KWChannelUndoRecorderTest, ASlidersDragIsOneStepAndPutsTheShapesBack) {
    const std::string before = contentsOf(*keyed);
    std::string after;
    edits.run(KWChannelEdit::shape, keyed, [&] {
        for (int k = 1; k <= 100; ++k)
            for (const float time : {0.0f, 2.0f})
                shape(time, static_cast<float>(k) / 100);
        after = contentsOf(*keyed);
    });
    EXPECT_FALSE(keyed->isManipulating());
    EXPECT_EQ(steps(), 1);
    EXPECT_EQ(tensionAt(2), 1.0f);
    expectStep(
        "Change Curve Shape", [&] { return contentsOf(*keyed); }, before, after);
}

TEST_F(KWChannelUndoRecorderTest, AShapeOfOddLengthIsPutBackToo) {
    keyed->setValueHermiteValueForKeyframe(1, oddRecord(7), KWTime(1));
    manager->removeAllActions();
    edits.run(KWChannelEdit::shape, keyed, [&] { shape(1, 0.5f); });
    EXPECT_EQ(steps(), 1);
    manager->undo();
    EXPECT_EQ(keyed->hermiteValueForKeyframe(KWTime(1)), oddRecord(7));
    manager->redo();
    EXPECT_EQ(tensionAt(1), 0.5f);
}

TEST_F(KWChannelUndoRecorderTest, AShapeIsNotPutBackWhereTheKeyIsGone) {
    edits.run(KWChannelEdit::shape, keyed, [&] {
        shape(0, 0.75f);
        shape(2, 0.75f);
    });
    keyed->setOwner(nullptr);
    keyed->removeValueForKeyframe(KWTime(0));
    keyed->setOwner(element.get());
    manager->undo();
    EXPECT_EQ(keyed->keyframeCount(), 2u);
    EXPECT_EQ(tensionAt(2), 0.0f);
}

TEST_F(KWChannelUndoRecorderTest, AnExpressionIsPutBackAsItWasTyped) {
    edits.run(KWChannelEdit::expression, algebric, [&] { algebric->setExpression("2 * t"); });
    expectStep(
        "Change Expression", [&] { return algebric->sourceText().value_or("none"); },
        std::string("sin(t)"), std::string("2 * t"));
}

TEST_F(KWChannelUndoRecorderTest, AFirstExpressionIsTakenBackToNone) {
    const auto empty = std::make_shared<KWAlgebricChannel>();
    empty->setOwner(element.get());
    int invalidations = 0;
    edits.run(KWChannelEdit::expression, empty, [&] { empty->setExpression("3"); });
    const NoticeCounter notices(empty.get(), [&] { ++invalidations; });
    expectStep(
        "Change Expression", [&] { return empty->expression().value_or("none"); },
        std::string("none"), std::string("3"));
    EXPECT_EQ(notices.count, 4) << "each step tells";
}

TEST_F(KWChannelUndoRecorderTest, AConstantIsPutBackToTheBit) {
    constant->setValueForTime(-0.0f, std::nullopt);
    edits.run(KWChannelEdit::value, constant, [&] { constant->setValueForTime(0, std::nullopt); });
    expectStep(
        "Change Value", [&] { return bitsOf(constant->valueForTime(std::nullopt)); }, bitsOf(-0.0f),
        bitsOf(0.0f));
}

TEST_F(KWChannelUndoRecorderTest, AValueTypedIntoAKeyframedChannelIsOneStep) {
    edits.run(KWChannelEdit::value, keyed, [&] { keyed->setValueForTime(9, KWTime(5)); });
    expectStep(
        "Change Value", [&] { return keyed->keyframeCount(); }, 3u, 4u);
}

TEST_F(KWChannelUndoRecorderTest, ModesArePutBackAndToldOf) {
    edits.run(KWChannelEdit::interpolation, keyed,
              [&] { keyed->setKeyFrameChannelMode(KWKeyFrameModeStep); });
    expectStep(
        "Change Interpolation", [&] { return keyed->keyFrameChannelMode(); },
        std::int32_t{KWKeyFrameModeHermite}, std::int32_t{KWKeyFrameModeStep});
    manager->removeAllActions();
    edits.run(KWChannelEdit::repeat, keyed, [&] { keyed->setRepeatMode(KWRepeatModeCycle); });
    const NoticeCounter notices(keyed.get());
    expectStep(
        "Change Repeat", [&] { return keyed->repeatMode(); }, std::int32_t{KWRepeatModeNone},
        std::int32_t{KWRepeatModeCycle});
    EXPECT_EQ(notices.count, 4);
}

TEST_F(KWChannelUndoRecorderTest, TheTypeSwitchedThreeTimesIsUndoneAndRedoneThreeTimes) {
    std::vector<std::shared_ptr<KWChannel>> kinds{keyed, std::make_shared<KWAlgebricChannel>(),
                                                  std::make_shared<KWConstantChannel>(),
                                                  std::make_shared<KWKeyFramedChannel>()};
    const std::string before = contentsOf(*keyed);
    for (std::size_t k = 1; k < kinds.size(); ++k)
        edits.replace(KWChannelEdit::type, kinds[k - 1], kinds[k]);
    EXPECT_EQ(steps(), 3);
    for (std::size_t k = kinds.size() - 1; k > 0; --k) {
        EXPECT_EQ(first(), kinds[k]);
        EXPECT_EQ(kinds[k]->name(), "keyed");
        EXPECT_EQ(kinds[k]->owner(), element.get());
        EXPECT_EQ(manager->undoActionName(), "Change Channel Type");
        manager->undo();
    }
    EXPECT_EQ(first(), keyed);
    EXPECT_EQ(contentsOf(*keyed), before);
    EXPECT_FALSE(manager->canUndo());
    for (std::size_t k = 1; k < kinds.size(); ++k) {
        manager->redo();
        EXPECT_EQ(first(), kinds[k]);
        EXPECT_EQ(kinds[k]->owner(), element.get());
    }
    EXPECT_FALSE(manager->canRedo());
}

TEST_F(KWChannelUndoRecorderTest, EditsBeforeAndAfterAReplacementAreUndoneThroughIt) {
    edits.run(KWChannelEdit::interpolation, keyed,
              [&] { keyed->setKeyFrameChannelMode(KWKeyFrameModeLinear); });
    const auto fresh = std::make_shared<KWConstantChannel>();
    edits.replace(KWChannelEdit::paste, keyed, fresh);
    edits.run(KWChannelEdit::value, fresh, [&] { fresh->setValueForTime(4, std::nullopt); });
    EXPECT_EQ(steps(), 3);
    for (int k = 0; k < 3; ++k)
        manager->undo();
    EXPECT_EQ(first(), keyed);
    EXPECT_EQ(keyed->keyFrameChannelMode(), KWKeyFrameModeHermite);
    for (int k = 0; k < 3; ++k)
        manager->redo();
    EXPECT_EQ(first(), fresh);
    EXPECT_EQ(fresh->valueForTime(std::nullopt), 4.0f);
}

TEST_F(KWChannelUndoRecorderTest, AReplacementThatItsOwnerDoesNotRegisterIsRegistered) {
    PlainOwner owner;
    const auto old = std::make_shared<KWConstantChannel>("old");
    const auto fresh = std::make_shared<KWKeyFramedChannel>("fresh");
    owner.array->addChannel(old);
    old->setOwner(&owner);
    edits.replace(KWChannelEdit::type, old, fresh);
    const auto present = [&] { return owner.array->channelAtIndexInGroup(0, KWUngroupedChannels); };
    for (int round = 0; round < 2; ++round) {
        EXPECT_EQ(present(), fresh);
        EXPECT_EQ(fresh->owner(), &owner);
        EXPECT_EQ(old->owner(), nullptr);
        EXPECT_EQ(owner.manager->undoActionName(), "Change Channel Type");
        owner.manager->undo();
        EXPECT_EQ(present(), old);
        EXPECT_EQ(old->owner(), &owner);
        EXPECT_EQ(fresh->owner(), nullptr);
        EXPECT_FALSE(owner.manager->canUndo());
        owner.manager->redo();
    }
}

TEST_F(KWChannelUndoRecorderTest, ARefusedReplacementLeavesNoStep) {
    const auto taken = std::make_shared<KWConstantChannel>();
    taken->setOwner(element.get());
    edits.replace(KWChannelEdit::type, keyed, taken);
    EXPECT_EQ(first(), keyed);
    EXPECT_FALSE(manager->canUndo());
}

TEST_F(KWChannelUndoRecorderTest, AChannelWithoutUndoIsLeftAlone) {
    const auto lonely = std::make_shared<KWConstantChannel>();
    edits.run(KWChannelEdit::value, lonely, [&] { lonely->setValueForTime(1, std::nullopt); });
    const auto curve = std::make_shared<KWKeyFramedChannel>();
    edits.run(KWChannelEdit::keys, curve, [&] { curve->setValueForKeyframe(1, KWTime(1)); });
    EXPECT_FALSE(curve->isManipulating());
    EXPECT_EQ(lonely->valueForTime(std::nullopt), 1.0f);
}

TEST_F(KWChannelUndoRecorderTest, AnOwnerThatGoesDuringAnEditEndsItQuietly) {
    Q_EMIT edits.willEdit(KWChannelEdit::value, constant);
    constant->setValueForTime(1, std::nullopt);
    element.reset();
    Q_EMIT edits.didEdit(KWChannelEdit::value, constant);
    EXPECT_FALSE(manager->canUndo());
    EXPECT_EQ(manager->groupingLevel(), 0);
}

TEST_F(KWChannelUndoRecorderTest, AnEditUnderWayEndsWithItsSourceOrItsRecorder) {
    {
        auto source = std::make_unique<TestEdits>();
        const KWChannelUndoRecorder other(*source);
        Q_EMIT source->willEdit(KWChannelEdit::keys, keyed);
        keyed->setValueForKeyframe(8, KWTime(8));
        source.reset();
        EXPECT_FALSE(keyed->isManipulating());
        EXPECT_EQ(steps(), 1);
    }
    TestEdits source;
    auto other = std::make_unique<KWChannelUndoRecorder>(source);
    Q_EMIT source.willEdit(KWChannelEdit::repeat, keyed);
    keyed->setRepeatMode(KWRepeatModePingPong);
    other.reset();
    EXPECT_EQ(manager->groupingLevel(), 0);
    EXPECT_EQ(steps(), 2);
    Q_EMIT source.didEdit(KWChannelEdit::repeat, keyed);
    EXPECT_EQ(steps(), 2);
}

TEST_F(KWChannelUndoRecorderTest, TheHostsOwnGroupAndManipulationAreLeftToTheHost) {
    manager->beginUndoGrouping();
    manager->setActionName("Mine");
    edits.run(KWChannelEdit::value, constant, [&] { constant->setValueForTime(7, std::nullopt); });
    edits.run(KWChannelEdit::repeat, keyed, [&] { keyed->setRepeatMode(KWRepeatModeCycle); });
    manager->endUndoGrouping();
    EXPECT_EQ(manager->undoActionName(), "Mine");
    EXPECT_EQ(steps(), 1);
    manager->removeAllActions();
    keyed->startManipulation();
    edits.run(KWChannelEdit::keys, keyed, [&] { keyed->setValueForKeyframe(8, KWTime(8)); });
    EXPECT_TRUE(keyed->isManipulating());
    EXPECT_FALSE(manager->canUndo());
    keyed->stopManipulation();
    EXPECT_EQ(steps(), 1);
}

TEST_F(KWChannelUndoRecorderTest, TheStepsOutliveTheRecorder) {
    {
        TestEdits source;
        const KWChannelUndoRecorder other(source);
        source.run(KWChannelEdit::value, constant,
                   [&] { constant->setValueForTime(7, std::nullopt); });
    }
    manager->undo();
    EXPECT_EQ(constant->valueForTime(std::nullopt), 2.5f);
    manager->redo();
    EXPECT_EQ(constant->valueForTime(std::nullopt), 7.0f);
}
