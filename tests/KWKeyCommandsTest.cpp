#include "KeyCommandsTestSupport.h"

#include <KWBase/KWConstantChannel.h>

#include <QTest>
#include <functional>
#include <memory>
#include <optional>
#include <stdexcept>
#include <tuple>

// --- The selection.

TEST_F(KWKeyCommandsTest, AllNoneAndTheOthersAreSelected) {
    EXPECT_TRUE(commands.canSelectAll());
    EXPECT_FALSE(commands.canSelectNone());
    EXPECT_TRUE(commands.selectAll());
    EXPECT_EQ(selection(), (std::vector<float>{1, 2, 4, 8}));
    EXPECT_EQ(delegate.count, 1);
    EXPECT_EQ(delegate.name, "KWChannelKeySelectionChangedNotification");
    EXPECT_EQ(delegate.object, view.get());
    EXPECT_FALSE(commands.canSelectAll());
    EXPECT_FALSE(commands.selectAll());
    EXPECT_EQ(delegate.count, 1);
    EXPECT_TRUE(commands.selectNone());
    EXPECT_EQ(selection(), (std::vector<float>{}));
    select({2, 8, 5});
    EXPECT_TRUE(commands.selectInverse());
    EXPECT_EQ(selection(), (std::vector<float>{1, 4}));
    EXPECT_FALSE(manager->canUndo());
}

TEST_F(KWKeyCommandsTest, TheNextAndThePreviousKeyAreSelected) {
    view->setCurrentTime(3);
    EXPECT_TRUE(commands.selectNextKey());
    EXPECT_EQ(selection(), std::vector<float>{4});
    EXPECT_TRUE(commands.selectNextKey());
    EXPECT_EQ(selection(), std::vector<float>{8});
    EXPECT_FALSE(commands.canSelectNextKey());
    EXPECT_FALSE(commands.selectNextKey());
    EXPECT_EQ(selection(), std::vector<float>{8});
    EXPECT_TRUE(commands.selectPreviousKey());
    EXPECT_EQ(selection(), std::vector<float>{4});
    EXPECT_TRUE(commands.selectPreviousKey(true));
    EXPECT_EQ(selection(), (std::vector<float>{4, 2}));
    EXPECT_TRUE(commands.selectPreviousKey(true));
    EXPECT_EQ(selection(), (std::vector<float>{4, 2, 1}));
    EXPECT_FALSE(commands.selectPreviousKey(true));
    EXPECT_TRUE(commands.selectNextKey());
    EXPECT_EQ(selection(), std::vector<float>{8});
}

TEST_F(KWKeyCommandsTest, WithNothingSelectedKeysAreSteppedToFromTheCurrentTime) {
    const std::tuple<float, std::vector<float>, std::vector<float>> cases[] = {
        {0, {1}, {}}, {1, {1}, {1}}, {3, {4}, {2}}, {8, {8}, {8}}, {9, {}, {8}}};
    for (const auto& [time, next, previous] : cases) {
        view->setCurrentTime(time);
        select({});
        EXPECT_EQ(commands.canSelectNextKey(), !next.empty());
        EXPECT_EQ(commands.selectNextKey(), !next.empty());
        EXPECT_EQ(selection(), next);
        select({});
        EXPECT_EQ(commands.canSelectPreviousKey(), !previous.empty());
        EXPECT_EQ(commands.selectPreviousKey(), !previous.empty());
        EXPECT_EQ(selection(), previous);
    }
    channel->removeAllKeyframes();
    select({});
    EXPECT_FALSE(commands.selectNextKey() || commands.selectPreviousKey());
}

// --- When there is nothing to do.

TEST_F(KWKeyCommandsTest, WithoutKeysNothingCanBeDone) {
    const auto expectNothing = [this] {
        EXPECT_FALSE(commands.canSelectAll() || commands.canInvertSelection() ||
                     commands.canSelectNextKey() || commands.canSelectPreviousKey() ||
                     commands.canCopy() || commands.canCut() || commands.canDuplicate() ||
                     commands.canDelete() || commands.canNudge() || commands.canSetValues() ||
                     commands.canSetTime());
        EXPECT_TRUE(commands.keys().empty());
        EXPECT_EQ(commands.mimeData(), nullptr);
        EXPECT_FALSE(commands.selectAll() || commands.selectInverse() || commands.selectNextKey() ||
                     commands.selectPreviousKey() || commands.nudge(1, 1) || commands.copy() ||
                     commands.cut() || commands.duplicate() || commands.deleteKeys() ||
                     commands.setTime(1) || commands.offsetTimes(1) || commands.setValues(1) ||
                     commands.setStoredValues(1) || commands.offsetValues(1) ||
                     commands.setShapes(KWKeyShape::tension, 1) || commands.resetShapes());
        EXPECT_TRUE(commands.fault().isEmpty());
    };
    setClipboardText("1\t2");
    const auto empty = std::make_shared<KWKeyFramedChannel>();
    view->setPrimaryChannel(empty);
    select({5});
    expectNothing();
    EXPECT_TRUE(commands.canPaste());
    view->setPrimaryChannel(std::make_shared<KWConstantChannel>());
    expectNothing();
    EXPECT_FALSE(commands.canPaste() || commands.paste() || commands.selectNone());
    view->setPrimaryChannel(nullptr);
    expectNothing();
    EXPECT_FALSE(commands.canPaste() || commands.paste() || commands.selectNone());
    view.reset();
    expectNothing();
    EXPECT_FALSE(commands.canPaste() || commands.paste() || commands.selectNone());
    EXPECT_TRUE(failures.empty());
}

TEST_F(KWKeyCommandsTest, WhileTheViewHasAGestureNothingIsDone) {
    select({2});
    commands.copy();
    pressKey(4);
    dragBy(8, 0);
    const std::string during = contents();
    ASSERT_TRUE(view->isGestureActive());
    EXPECT_FALSE(commands.canCopy() || commands.canPaste() || commands.canSelectAll() ||
                 commands.canSelectNone());
    EXPECT_FALSE(commands.deleteKeys() || commands.paste() || commands.nudge(1, 1) ||
                 commands.selectAll() || commands.selectNone() || commands.setValues(3));
    EXPECT_TRUE(view->isGestureActive());
    EXPECT_EQ(contents(), during);
    release();
    EXPECT_TRUE(commands.canCopy());
}

TEST_F(KWKeyCommandsTest, AChannelOutOfOrderIsLeftAlone) {
    PlainChannel lists;
    lists.keys = {3, 1, 2};
    lists.values = {1, 2, 3};
    lists.records = {recordWith(0), recordWith(0), recordWith(0)};
    for (int kind = 0; kind < 3; ++kind) {
        const auto odd = channelFromLists(lists);
        view->setPrimaryChannel(odd);
        select({3, 1});
        EXPECT_FALSE(commands.canCopy() || commands.canPaste());
        EXPECT_FALSE(commands.deleteKeys() || commands.selectAll() || commands.nudge(1, 0));
        EXPECT_EQ(odd->keyframeCount(), 3u);
        lists.keys = {1, 1, 2};
        if (kind == 1) {
            lists.keys = {1, 2, 3};
            lists.values.pop_back();
        }
    }
}

TEST_F(KWKeyCommandsTest, WhatCanBeDoneIsToldOfOnceForManyChanges) {
    QCoreApplication::processEvents();
    int count = 0;
    QObject::connect(&commands, &KWKeyCommands::changed, [&] { ++count; });
    const auto expectTold = [&](const std::function<void()>& change) {
        count = 0;
        change();
        EXPECT_EQ(count, 0);
        QCoreApplication::processEvents();
        EXPECT_EQ(count, 1);
    };
    expectTold([&] {
        select({1});
        select({2});
    });
    expectTold([&] { set(1, 5); });
    expectTold([&] { channel->removeValueForKeyframe(KWTime(5)); });
    expectTold([&] { view->setCurrentTime(2); });
    expectTold([&] { setClipboardText("x"); });
    expectTold([&] {
        pressKey(4);
        release();
    });
    expectTold([&] { view->setPrimaryChannel(std::make_shared<KWKeyFramedChannel>()); });
    count = 0;
    set(1, 6);
    QCoreApplication::processEvents();
    EXPECT_EQ(count, 0) << "a channel that is not shown";
    expectTold([&] { view.reset(); });
}

// --- Undo.

TEST_F(KWKeyCommandsTest, WithoutARecorderACommandIsOneStepAllTheSame) {
    KWKeyCommands other(*view);
    select({2, 4});
    expectStep("Move Keys", [&] { return other.nudge(1, 1); });
    expectStep("Change Curve Shape", [&] { return other.setShapes(KWKeyShape::bias, 1); });
    expectStep("Duplicate Keys", [&] { return other.duplicate(); });
    expectStep("Delete Keys", [&] { return other.deleteKeys(); });
}

TEST_F(KWKeyCommandsTest, AHostsOwnGroupAndManipulationAreTheHosts) {
    select({2});
    manager->beginUndoGrouping();
    commands.nudge(1, 0);
    commands.nudge(0, 1);
    manager->setActionName("Mine");
    manager->endUndoGrouping();
    EXPECT_EQ(manager->undoActionName(), "Mine");
    EXPECT_EQ(steps(), 1);
    manager->removeAllActions();
    channel->startManipulation();
    commands.nudge(1, 0);
    EXPECT_TRUE(channel->isManipulating());
    EXPECT_FALSE(manager->canUndo());
    channel->stopManipulation();
    EXPECT_EQ(steps(), 1);
}

TEST_F(KWKeyCommandsTest, TheStepsOutliveCommandsAndView) {
    const std::string before = contents();
    {
        KWKeyCommands other(*view);
        other.setTimeStep(0.25);
        select({2});
        other.nudge(1, 0);
    }
    view.reset();
    manager->undo();
    EXPECT_EQ(contents(), before);
    manager->redo();
    EXPECT_EQ(times(), (std::vector<float>{1, 2.25f, 4, 8}));
}

TEST_F(KWKeyCommandsTest, UndoLeavesTheSelectionInAnotherChannelAlone) {
    select({2});
    commands.nudge(1, 0);
    const auto other = channelWithKeys({{3, 3}});
    view->setPrimaryChannel(other);
    select({3});
    manager->undo();
    EXPECT_EQ(selection(), std::vector<float>{3});
}

TEST_F(KWKeyCommandsTest, EachCommandIsAPairForThoseWhoListen) {
    std::string heard;
    QObject::connect(&commands, &KWChannelEditSource::willEdit,
                     [&](KWChannelEdit edit, const std::shared_ptr<KWChannel>& edited) {
                         EXPECT_EQ(edited, channel);
                         heard += "will" + std::to_string(static_cast<int>(edit)) + " ";
                     });
    QObject::connect(&commands, &KWChannelEditSource::didEdit,
                     [&](KWChannelEdit edit, const std::shared_ptr<KWChannel>&) {
                         heard += "did" + std::to_string(static_cast<int>(edit)) + " ";
                     });
    select({2});
    commands.nudge(1, 0);
    EXPECT_EQ(heard, "will0 did0 ");
    heard.clear();
    commands.setShapes(KWKeyShape::bias, 0.75f);
    EXPECT_EQ(heard, "will1 did1 ");
    heard.clear();
    commands.nudge(0, 0);
    commands.selectAll();
    commands.copy();
    EXPECT_EQ(heard, "");
}

// --- Others who do what they like.

TEST_F(KWKeyCommandsTest, WhoIsToldMayEditOrCommandOrGo) {
    const std::function<void()> meddlings[] = {[&] { channel->setValueForKeyframe(5, KWTime(5)); },
                                               [&] { commands.selectAll(); },
                                               [&] { view->setPrimaryChannel(nullptr); },
                                               [&] { view.reset(); },
                                               [&] { pressKey(8); },
                                               [&] { throw std::runtime_error("no"); }};
    for (const auto& meddle : meddlings)
        for (const bool isBefore : {true, false}) {
            if (!view)
                restart();
            view->setPrimaryChannel(channel);
            setKeys({{1, 0}, {2, 1}, {4, 2}, {8, -1}});
            KWKeyCommands own(*view);
            select({2});
            const LogLines log;
            bool isFirst = true;
            const auto once = [&] {
                if (std::exchange(isFirst, false))
                    meddle();
            };
            std::optional<NoticeCounter> notices;
            if (isBefore)
                QObject::connect(&own, &KWChannelEditSource::willEdit, once);
            else
                notices.emplace(channel.get(), once);
            own.nudge(1, 0);
            notices.reset();
            EXPECT_TRUE(channel->isRegular());
            EXPECT_FALSE(channel->isManipulating());
            EXPECT_EQ(manager->groupingLevel(), 0);
            if (view)
                view->cancelGesture();
        }
}

TEST_F(KWKeyCommandsTest, AnEditThatComesBeforeTakesThePlaceOfTheCommand) {
    select({2});
    QObject::connect(&commands, &KWChannelEditSource::willEdit, [&] { set(5, 5); });
    EXPECT_FALSE(commands.nudge(1, 0));
    EXPECT_EQ(times(), (std::vector<float>{1, 2, 4, 5, 8}));
    EXPECT_EQ(selection(), std::vector<float>{2});
    EXPECT_EQ(steps(), 1);
}

TEST_F(KWKeyCommandsTest, InTheMiddleOfACommandThereIsNoOther) {
    select({2});
    int count = 0;
    QObject::connect(&commands, &KWChannelEditSource::willEdit, [&] {
        ++count;
        EXPECT_FALSE(commands.canCopy() || commands.deleteKeys() || commands.selectAll());
    });
    EXPECT_TRUE(commands.nudge(1, 0));
    EXPECT_EQ(count, 1);
    EXPECT_EQ(times(), (std::vector<float>{1, 2.25f, 4, 8}));
    EXPECT_TRUE(commands.canCopy());
}

TEST_F(KWKeyCommandsTest, CommandsThatGoInTheMiddleFinishTheirEdit) {
    auto own = std::make_unique<KWKeyCommands>(*view);
    own->setTimeStep(0.25);
    const NoticeCounter notices(channel.get(), [&] { own.reset(); });
    select({2});
    own->nudge(1, 0);
    EXPECT_EQ(own, nullptr);
    EXPECT_EQ(times(), (std::vector<float>{1, 2.25f, 4, 8}));
    EXPECT_EQ(steps(), 1);
}
