#include "KeyCommandsTestSupport.h"

#include <bit>
#include <cmath>
#include <limits>

using KWKeyCommandsEditsTest = KWKeyCommandsTest;

// --- Nudging.

TEST_F(KWKeyCommandsEditsTest, NudgedKeysMoveBySteps) {
    select({2, 4});
    expectStep("Move Keys", [&] { return commands.nudge(1, 0); });
    EXPECT_EQ(times(), (std::vector<float>{1, 2.25f, 4.25f, 8}));
    EXPECT_EQ(selection(), (std::vector<float>{2.25f, 4.25f}));
    expectStep("Move Keys", [&] { return commands.nudge(0, -10); });
    EXPECT_EQ(values(), (std::vector<float>{0, -4, -3, -1}));
    EXPECT_EQ(selection(), (std::vector<float>{2.25f, 4.25f}));
    EXPECT_FALSE(commands.nudge(0, 0));
}

TEST_F(KWKeyCommandsEditsTest, ANudgedKeyReplacesTheOneItComesToAndPassesOthers) {
    const KWData shape = recordAt(1);
    select({1});
    expectStep("Move Keys", [&] { return commands.nudge(4, 0); });
    EXPECT_EQ(times(), (std::vector<float>{2, 4, 8}));
    EXPECT_EQ(valueAt(2), 0);
    EXPECT_EQ(recordAt(2), shape);
    expectStep("Move Keys", [&] { return commands.nudge(10, 0); });
    EXPECT_EQ(times(), (std::vector<float>{4, 4.5f, 8}));
}

TEST_F(KWKeyCommandsEditsTest, OfKeysThatComeToOneTimeTheOneSelectedLastStays) {
    const float close = std::nextafter(1.0f, 2.0f);
    set(7, close);
    manager->removeAllActions();
    for (const bool lastIsClose : {true, false}) {
        select(lastIsClose ? std::vector<float>{1, close} : std::vector<float>{close, 1});
        EXPECT_TRUE(commands.offsetTimes(1000.3f));
        EXPECT_EQ(channel->valueForKeyframe(KWTime(1001.3f)), lastIsClose ? 7.0f : 0.0f);
        EXPECT_EQ(selection(), std::vector<float>{1001.3f});
        manager->undo();
        EXPECT_EQ(channel->keyframeCount(), 5u);
    }
}

TEST_F(KWKeyCommandsEditsTest, KeysOnFramesStayOnFrames) {
    commands.setTimeStep(1.0 / 25);
    setKeys({{0, 0}, {100, 1}});
    select({0});
    for (int frame = 1; frame <= 1000; ++frame) {
        ASSERT_TRUE(commands.nudge(1, 0));
        ASSERT_EQ(selection(), std::vector<float>{static_cast<float>(frame / 25.0)});
    }
    for (int frame = 999; frame >= -1000; --frame) {
        ASSERT_TRUE(commands.nudge(-1, 0));
        ASSERT_EQ(selection(), std::vector<float>{static_cast<float>(frame / 25.0)});
    }
}

TEST_F(KWKeyCommandsEditsTest, KeysBetweenFramesStayBetweenThem) {
    commands.setTimeStep(1.0 / 25);
    setKeys({{1e-5f, 0}, {2e-5f, 1}});
    select({1e-5f, 2e-5f});
    EXPECT_TRUE(commands.nudge(1, 0));
    EXPECT_EQ(times(), (std::vector<float>{0.04001f, 0.04002f}));
}

TEST_F(KWKeyCommandsEditsTest, NudgingIsInTheUsersUnitAndInTimeAloneLeavesTheBitsOfValues) {
    const Centimeters centimeters;
    setUnit(KWUnitTypeLength);
    select({2});
    EXPECT_TRUE(commands.nudge(0, 3));
    EXPECT_FLOAT_EQ(valueAt(2), 1.015f);
    set(0.1234567f, 4);
    select({4});
    EXPECT_TRUE(commands.nudge(1, 0));
    EXPECT_EQ(valueAt(4.25f), 0.1234567f);
}

TEST_F(KWKeyCommandsEditsTest, WhatWouldNotBeFiniteIsRefused) {
    setKeys({{1, 3e38f}, {3e38f, 0}});
    select({1});
    commands.setValueStep(1e38);
    expectRefused([&] { return commands.nudge(0, 10); });
    select({3e38f});
    commands.setTimeStep(3e38);
    expectRefused([&] { return commands.nudge(1, 0); });
    expectRefused([&] { return commands.offsetTimes(3e38f); });
    for (const float none : {kwInfinity, -kwInfinity, kwNaN}) {
        expectRefused([&] { return commands.setTime(none); });
        expectRefused([&] { return commands.offsetTimes(none); });
        expectRefused([&] { return commands.setValues(none); });
        expectRefused([&] { return commands.setStoredValues(none); });
        expectRefused([&] { return commands.offsetValues(none); });
        expectRefused([&] { return commands.setShapes(KWKeyShape::bias, none); });
    }
    for (const double none : {0.0, -1.0, static_cast<double>(kwNaN), 1 / 0.0}) {
        commands.setTimeStep(none);
        commands.setValueStep(none);
    }
    EXPECT_EQ(commands.timeStep(), 3e38);
    EXPECT_EQ(commands.valueStep(), 1e38);
}

TEST_F(KWKeyCommandsEditsTest, AValueThatIsNoneStaysAsItIsWhenItsKeyMoves) {
    const float odd = std::bit_cast<float>(0x7fc12345u);
    set(odd, 3);
    select({3, 4});
    EXPECT_TRUE(commands.nudge(1, 1));
    EXPECT_EQ(bitsOf(valueAt(3.25f)), 0x7fc12345u);
    EXPECT_EQ(valueAt(4.25f), 2.5f);
}

TEST_F(KWKeyCommandsEditsTest, TheArrowKeysNudgeWhereTheHostWantsIt) {
    const auto press = [this](int code, Qt::KeyboardModifiers modifiers = Qt::NoModifier) {
        key(code, {}, modifiers);
    };
    select({2});
    press(Qt::Key_Right);
    EXPECT_EQ(selection(), std::vector<float>{2});
    commands.setHandlesArrowKeys(true);
    press(Qt::Key_Right);
    EXPECT_EQ(selection(), std::vector<float>{2.25f});
    press(Qt::Key_Left, Qt::ShiftModifier | Qt::KeypadModifier);
    EXPECT_EQ(selection(), std::vector<float>{-0.25f});
    press(Qt::Key_Up);
    EXPECT_EQ(valueAt(-0.25f), 1.5f);
    press(Qt::Key_Down, Qt::ShiftModifier);
    EXPECT_EQ(valueAt(-0.25f), -3.5f);
    press(Qt::Key_Up, Qt::ControlModifier);
    EXPECT_EQ(valueAt(-0.25f), -3.5f);
    QKeyEvent shortcut(QEvent::ShortcutOverride, Qt::Key_Up, Qt::NoModifier);
    shortcut.setAccepted(false);
    QApplication::sendEvent(view.get(), &shortcut);
    EXPECT_TRUE(shortcut.isAccepted());
    EXPECT_EQ(valueAt(-0.25f), -3.5f);
    select({});
    shortcut.setAccepted(false);
    QApplication::sendEvent(view.get(), &shortcut);
    EXPECT_FALSE(shortcut.isAccepted()) << "the window may step through frames";
    commands.setHandlesArrowKeys(false);
    select({4});
    press(Qt::Key_Right);
    EXPECT_EQ(selection(), std::vector<float>{4});
}

// --- Exact entry.

TEST_F(KWKeyCommandsEditsTest, TheTimeOfOneKeyIsSet) {
    select({2});
    EXPECT_TRUE(commands.canSetTime());
    expectStep("Move Key", [&] { return commands.setTime(3.1f); });
    EXPECT_EQ(times(), (std::vector<float>{1, 3.1f, 4, 8}));
    EXPECT_EQ(selection(), std::vector<float>{3.1f});
    expectStep("Move Key", [&] { return commands.setTime(8); });
    EXPECT_EQ(times(), (std::vector<float>{1, 4, 8}));
    EXPECT_EQ(valueAt(8), 1);
    select({1, 4});
    EXPECT_FALSE(commands.canSetTime());
    EXPECT_FALSE(commands.setTime(5));
    EXPECT_TRUE(commands.fault().isEmpty());
}

TEST_F(KWKeyCommandsEditsTest, ManyKeysAreOffsetOrGivenOneValue) {
    select({8, 1});
    expectStep("Move Keys", [&] { return commands.offsetTimes(-0.5f); });
    EXPECT_EQ(times(), (std::vector<float>{0.5f, 2, 4, 7.5f}));
    EXPECT_EQ(selection(), (std::vector<float>{7.5f, 0.5f}));
    expectStep("Move Keys", [&] { return commands.offsetValues(2); });
    EXPECT_EQ(values(), (std::vector<float>{2, 1, 2, 1}));
    expectStep("Change Value", [&] { return commands.setValues(-3); });
    EXPECT_EQ(values(), (std::vector<float>{-3, 1, 2, -3}));
    EXPECT_FALSE(commands.setValues(-3)) << "nothing has changed";
    EXPECT_TRUE(commands.fault().isEmpty());
}

TEST_F(KWKeyCommandsEditsTest, ValuesAreEnteredInTheUsersUnit) {
    const Centimeters centimeters;
    setUnit(KWUnitTypeLength);
    select({2, 4});
    EXPECT_TRUE(commands.setValues(25));
    EXPECT_EQ(valueAt(2), 0.25f);
    EXPECT_TRUE(commands.offsetValues(50));
    EXPECT_EQ(valueAt(4), 0.75f);
    EXPECT_TRUE(commands.setStoredValues(1.5f));
    EXPECT_EQ(valueAt(4), 1.5f);
}

TEST_F(KWKeyCommandsEditsTest, ShapesAreSetPartByPart) {
    const HJHermiteParam odd{0.5f, 0.25f, -0.5f, {1, -0.0f, kwNaN, 4, 5, 6}};
    channel->modifyHermiteParamForKeyframe(&odd, KWTime(2));
    select({2, 4});
    expectStep("Change Curve Shape",
               [&] { return commands.setShapes(KWKeyShape::tension, 0.75f); });
    HJHermiteParam expected = odd;
    expected.tension = 0.75f;
    EXPECT_EQ(recordAt(2), KWKeyFramedChannel::hermiteDataFrom(&expected));
    expectStep("Change Curve Shape", [&] { return commands.setShapes(KWKeyShape::bias, -1); });
    expectStep("Change Curve Shape", [&] { return commands.setShapes(KWKeyShape::continuity, 1); });
    EXPECT_EQ(recordAt(4), recordWith(0.75f, -1, 1));
    expectStep("Reset Curve Shape", [&] { return commands.resetShapes(); });
    expected.tension = expected.bias = expected.continuity = 0;
    EXPECT_EQ(recordAt(2), KWKeyFramedChannel::hermiteDataFrom(&expected));
    EXPECT_FALSE(commands.resetShapes());
}

TEST_F(KWKeyCommandsEditsTest, AChangeOfBitsAloneIsAStepToo) {
    set(-0.0f, 2);
    select({2});
    expectStep("Change Value", [&] { return commands.setValues(0); });
    EXPECT_EQ(bitsOf(valueAt(2)), bitsOf(0.0f));
}

// --- Deleting and duplicating.

TEST_F(KWKeyCommandsEditsTest, SelectedKeysAreDeleted) {
    select({8, 2, 5});
    expectStep("Delete Keys", [&] { return commands.deleteKeys(); });
    EXPECT_EQ(times(), (std::vector<float>{1, 4}));
    EXPECT_EQ(selection(), (std::vector<float>{}));
    commands.selectAll();
    expectStep("Delete Keys", [&] { return commands.deleteKeys(); });
    EXPECT_EQ(channel->keyframeCount(), 0u);
    EXPECT_FALSE(commands.deleteKeys());
}

TEST_F(KWKeyCommandsEditsTest, DuplicatesFollowTheLastSelectedKey) {
    select({2, 1});
    expectStep("Duplicate Keys", [&] { return commands.duplicate(); });
    EXPECT_EQ(times(), (std::vector<float>{1, 2, 2.25f, 3.25f, 4, 8}));
    EXPECT_EQ(valueAt(2.25f), 0);
    EXPECT_EQ(valueAt(3.25f), 1);
    EXPECT_EQ(recordAt(3.25f), recordAt(2));
    EXPECT_EQ(selection(), (std::vector<float>{2.25f, 3.25f}));
    expectStep("Duplicate Keys", [&] { return commands.duplicate(); });
    EXPECT_EQ(selection(), (std::vector<float>{3.5f, 4.5f}));
}
