#include "PanelTestSupport.h"

#include <KWFoundation/KWUndoManager.h>

#include <QSignalSpy>
#include <QWheelEvent>
#include <bit>

namespace {

class KWChannelEditorActions : public PanelTest {
  protected:
    static std::uint32_t bits(float value) { return std::bit_cast<std::uint32_t>(value); }
    void scroll(QWidget* over) {
        const QPointF where = over->rect().center();
        QWheelEvent event(where, over->mapToGlobal(where), {}, QPoint(0, -120), Qt::NoButton,
                          Qt::NoModifier, Qt::NoScrollPhase, false);
        QApplication::sendEvent(over, &event);
    }
};

} // namespace

// --- The type popup.

TEST_F(KWChannelEditorActions, ChoosingTheSeparatorOfTheTypePopupChangesNothing) {
    clickRow(x);
    const KWData before = bytesOf(ball);
    popup("channelTypePU")->setCurrentIndex(2);
    editor.changeChannelType(popup("channelTypePU"));
    EXPECT_EQ(editor.channelBeingEdited(), x);
    EXPECT_EQ(positionAt(0), x);
    EXPECT_EQ(bytesOf(ball), before);
    EXPECT_EQ(popup("channelTypePU")->currentIndex(), 0);
    EXPECT_EQ(takeTold(), "");
    EXPECT_FALSE(manager->canUndo());
}

TEST_F(KWChannelEditorActions, TheArrowKeysPassOverTheSeparatorOfTheTypePopup) {
    clickRow(x);
    EXPECT_EQ(popup("channelTypePU")->count(), 4);
    EXPECT_EQ(popup("channelTypePU")->itemText(2), QString());
    choose("channelTypePU", 1);
    popup("channelTypePU")->setFocus();
    QTest::keyClick(popup("channelTypePU"), Qt::Key_Down);
    EXPECT_EQ(popup("channelTypePU")->currentIndex(), 3);
    EXPECT_TRUE(std::dynamic_pointer_cast<KWConstantChannel>(editor.channelBeingEdited()));
}

TEST_F(KWChannelEditorActions, SwitchingAKeyframedChannelToConstantPutsAFreshOneInItsPlace) {
    clickRow(x);
    choose("channelTypePU", 3);
    const auto now = std::dynamic_pointer_cast<KWConstantChannel>(positionAt(0));
    ASSERT_TRUE(now);
    EXPECT_EQ(now->valueForTime(std::nullopt), 0);
    EXPECT_EQ(now->name(), "x");
    EXPECT_EQ(now->channelColorIndex(), 3);
    EXPECT_EQ(positionAt(1), y);
    EXPECT_EQ(editor.channelBeingEdited(), now);
    EXPECT_EQ(view()->primaryChannel(), now);
    EXPECT_EQ(outline()->selectedItem(), now);
    EXPECT_EQ(editor.optionsView(), widget<QWidget>("constantView"));
    EXPECT_TRUE(widget<QWidget>("constantView")->isVisible());
    EXPECT_FALSE(widget<QWidget>("keyframedView")->isVisible());
    EXPECT_EQ(field("constantValueTF")->text(), QStringLiteral("0"));
    EXPECT_EQ(takeTold(), pairOf(KWChannelEdit::type));
}

TEST_F(KWChannelEditorActions, EachItemOfTheTypePopupMakesAChannelOfItsClass) {
    clickRow(y);
    choose("channelTypePU", 0);
    EXPECT_TRUE(std::dynamic_pointer_cast<KWKeyFramedChannel>(positionAt(1)));
    choose("channelTypePU", 1);
    EXPECT_TRUE(std::dynamic_pointer_cast<KWAlgebricChannel>(positionAt(1)));
    EXPECT_EQ(field("expressionTF")->text(), QString());
    choose("channelTypePU", 3);
    EXPECT_TRUE(std::dynamic_pointer_cast<KWConstantChannel>(positionAt(1)));
}

TEST_F(KWChannelEditorActions, TheTypeGoesThreeTimesForthAndBackAndForth) {
    followStructure();
    clickRow(x);
    const std::vector<KWData> states = [&] {
        std::vector<KWData> made = {bytesOf(ball)};
        for (const int item : {3, 1, 0}) {
            choose("channelTypePU", item);
            made.push_back(bytesOf(ball));
        }
        return made;
    }();
    for (const std::size_t step : {2U, 1U, 0U}) {
        manager->undo();
        settle();
        EXPECT_EQ(bytesOf(ball), states[step]);
        EXPECT_EQ(editor.channelBeingEdited(), positionAt(0));
        EXPECT_EQ(positionAt(0)->owner(), ball.get());
    }
    EXPECT_EQ(positionAt(0), x);
    for (const std::size_t step : {1U, 2U, 3U}) {
        manager->redo();
        settle();
        EXPECT_EQ(bytesOf(ball), states[step]);
        EXPECT_EQ(view()->primaryChannel(), positionAt(0));
    }
}

TEST_F(KWChannelEditorActions, TheWheelDoesNotChooseAType) {
    clickRow(x);
    scroll(popup("channelTypePU"));
    settle();
    EXPECT_EQ(positionAt(0), x);
}

TEST_F(KWChannelEditorActions, AReplacedChannelHandsOverItsPlaceAmongTheCurvesBehind) {
    clickRow(x, outline()->columnWithIdentifier("view"));
    ASSERT_TRUE(view()->isSecondaryChannel(x));
    choose("channelTypePU", 3);
    EXPECT_FALSE(view()->isSecondaryChannel(x));
    EXPECT_TRUE(view()->isSecondaryChannel(positionAt(0)));
}

// --- Modes.

TEST_F(KWChannelEditorActions, TheInterpolationPopupWritesAndReadsTheModes) {
    clickRow(x);
    const std::pair<int, std::int32_t> table[] = {{1, 0}, {2, 2}, {0, 1}};
    for (const auto& [item, mode] : table) {
        choose("interpModePU", item);
        EXPECT_EQ(x->keyFrameChannelMode(), mode);
        EXPECT_EQ(popup("interpModePU")->currentIndex(), item);
        EXPECT_EQ(takeTold(), pairOf(KWChannelEdit::interpolation));
    }
    const std::pair<std::int32_t, int> back[] = {{0, 1}, {2, 2}, {1, 0}, {7, 0}, {-1, 0}};
    for (const auto& [mode, item] : back) {
        x->setKeyFrameChannelMode(mode);
        editor.updateView(widget<QWidget>("keyframedView"));
        EXPECT_EQ(popup("interpModePU")->currentIndex(), item) << mode;
        EXPECT_EQ(x->keyFrameChannelMode(), mode);
    }
}

TEST_F(KWChannelEditorActions, TheRepeatPopupWritesAndReadsTheModes) {
    clickRow(x);
    for (const int item : {1, 2, 0}) {
        choose("repeatPU", item);
        EXPECT_EQ(x->repeatMode(), item);
        EXPECT_EQ(takeTold(), pairOf(KWChannelEdit::repeat));
    }
    const std::pair<std::int32_t, int> back[] = {{1, 1}, {2, 2}, {0, 0}, {3, 0}, {-5, 0}};
    for (const auto& [mode, item] : back) {
        x->setRepeatMode(mode);
        editor.updateView(widget<QWidget>("keyframedView"));
        EXPECT_EQ(popup("repeatPU")->currentIndex(), item) << mode;
        EXPECT_EQ(x->repeatMode(), mode);
    }
}

TEST_F(KWChannelEditorActions, AnyOtherItemOfAHostsPopupsIsHermiteAndCycle) {
    clickRow(x);
    popup("interpModePU")->addItem(QStringLiteral("Wild"));
    popup("repeatPU")->addItem(QStringLiteral("Wild"));
    x->setKeyFrameChannelMode(KWKeyFrameModeStep);
    choose("interpModePU", 3);
    choose("repeatPU", 3);
    EXPECT_EQ(x->keyFrameChannelMode(), KWKeyFrameModeHermite);
    EXPECT_EQ(x->repeatMode(), KWRepeatModeCycle);
}

// --- The shape of keys.

TEST_F(KWChannelEditorActions, WithoutSelectedKeysTheShapeControlsAreDisabledAndKeepTheirValues) {
    clickRow(x);
    for (const char* const name :
         {"tensionSlider", "continuitySlider", "biasSlider", "resetHermButton"})
        EXPECT_FALSE(isEnabled(name)) << name;
    clickKey(3, 1.5f);
    for (const char* const name :
         {"tensionSlider", "continuitySlider", "biasSlider", "resetHermButton"})
        EXPECT_TRUE(isEnabled(name)) << name;
    EXPECT_EQ(slider("tensionSlider")->value(), 1250);
    EXPECT_EQ(slider("continuitySlider")->value(), 500);
    EXPECT_EQ(slider("biasSlider")->value(), 1250);
    QTest::mouseClick(view(), Qt::LeftButton, {}, at(2, -1.8f));
    EXPECT_TRUE(view()->selectedKeys().empty());
    for (const char* const name :
         {"tensionSlider", "continuitySlider", "biasSlider", "resetHermButton"})
        EXPECT_FALSE(isEnabled(name)) << name;
    EXPECT_EQ(slider("tensionSlider")->value(), 1250);
    EXPECT_EQ(slider("continuitySlider")->value(), 500);
}

TEST_F(KWChannelEditorActions, KeysOfALinearChannelShowTheirShapeButDisableItsControls) {
    clickRow(x);
    for (const int item : {1, 2}) {
        choose("interpModePU", item);
        clickKey(item == 1 ? 6.0f : 9.0f, item == 1 ? 0.5f : 1.0f);
        EXPECT_FALSE(isEnabled("tensionSlider"));
        EXPECT_FALSE(isEnabled("resetHermButton"));
        EXPECT_EQ(slider("tensionSlider")->value(), item == 1 ? 1375 : 1500);
    }
    choose("interpModePU", 0);
    EXPECT_TRUE(isEnabled("tensionSlider"));
}

TEST_F(KWChannelEditorActions, ASliderGivesItsNumberToEverySelectedKey) {
    clickRow(x);
    clickKey(3, 1.5f);
    clickKey(6, 0.5f, Qt::ShiftModifier);
    ASSERT_EQ(view()->selectedKeys().size(), 2U);
    takeTold();
    slider("tensionSlider")->setFocus();
    QTest::keyClick(slider("tensionSlider"), Qt::Key_Right);
    EXPECT_EQ(takeTold(), pairOf(KWChannelEdit::shape));
    for (const float time : {3.0f, 6.0f}) {
        const HJHermiteParam shape = shapeOf(*x, time);
        EXPECT_EQ(bits(shape.tension), bits(0.26f));
        EXPECT_EQ(shape.bias, 0.25f);
        EXPECT_EQ(shape.continuity, -0.5f);
        EXPECT_EQ(shape.reserved[5], 6);
    }
    EXPECT_EQ(shapeOf(*x, 1).tension, 0.125f);
    EXPECT_EQ(shapeOf(*x, 9).tension, 0.5f);
}

TEST_F(KWChannelEditorActions, TheTagsAreTensionContinuityAndBias) {
    clickRow(x);
    clickKey(3, 1.5f);
    const std::tuple<const char*, int, float HJHermiteParam::*> table[] = {
        {"tensionSlider", 0, &HJHermiteParam::tension},
        {"continuitySlider", 1, &HJHermiteParam::continuity},
        {"biasSlider", 2, &HJHermiteParam::bias}};
    for (const auto& [name, tag, member] : table) {
        EXPECT_EQ(slider(name)->property("tag").toInt(), tag);
        for (const auto& [position, value] : std::vector<std::pair<int, float>>{
                 {0, -1.0f}, {1000, 0.0f}, {1500, 0.5f}, {1, -0.999f}, {2000, 1.0f}}) {
            HJHermiteParam expected = shapeOf(*x, 3);
            expected.*member = value;
            slider(name)->setValue(position);
            const HJHermiteParam shape = shapeOf(*x, 3);
            EXPECT_EQ(std::memcmp(&shape, &expected, sizeof shape), 0) << name << position;
        }
    }
    EXPECT_EQ(button("resetHermButton")->property("tag").toInt(), 3);
}

TEST_F(KWChannelEditorActions, AnotherTagChangesNothing) {
    clickRow(x);
    clickKey(3, 1.5f);
    const KWData before = bytesOf(x);
    takeTold();
    QObject other;
    editor.changeHermiteParam(&other);
    other.setProperty("tag", 4);
    editor.changeHermiteParam(&other);
    other.setProperty("tag", QStringLiteral("tension"));
    editor.changeHermiteParam(&other);
    EXPECT_EQ(bytesOf(x), before);
    EXPECT_EQ(takeTold(), "");
}

TEST_F(KWChannelEditorActions, ResetZeroesTheThreeLeadingNumbersOfEverySelectedKey) {
    clickRow(x);
    clickKey(3, 1.5f);
    clickKey(6, 0.5f, Qt::ShiftModifier);
    takeTold();
    click("resetHermButton");
    for (const float time : {3.0f, 6.0f}) {
        const HJHermiteParam shape = shapeOf(*x, time);
        const HJHermiteParam expected{0, 0, 0, {1, 2, 3, 4, 5, 6}};
        EXPECT_EQ(std::memcmp(&shape, &expected, sizeof shape), 0);
    }
    EXPECT_EQ(shapeOf(*x, 1).bias, 0.25f);
    for (const char* const name : {"tensionSlider", "continuitySlider", "biasSlider"})
        EXPECT_EQ(slider(name)->value(), 1000) << name;
    EXPECT_EQ(takeTold(), pairOf(KWChannelEdit::shape));
}

TEST_F(KWChannelEditorActions, ADragOfASliderIsOneEditAndOneStepOfUndo) {
    clickRow(x);
    clickKey(3, 1.5f);
    const HJHermiteParam before = shapeOf(*x, 3);
    takeTold();
    QSignalSpy moves(slider("tensionSlider"), &QSlider::valueChanged);
    dragSlider("tensionSlider", 40);
    EXPECT_EQ(moves.count(), 4);
    EXPECT_EQ(takeTold(), pairOf(KWChannelEdit::shape));
    EXPECT_GT(shapeOf(*x, 3).tension, 0.3f);
    ASSERT_TRUE(manager->canUndo());
    manager->undo();
    settle();
    const HJHermiteParam after = shapeOf(*x, 3);
    EXPECT_EQ(std::memcmp(&before, &after, sizeof after), 0);
    EXPECT_FALSE(manager->canUndo());
    EXPECT_EQ(slider("tensionSlider")->value(), 1250);
}

TEST_F(KWChannelEditorActions, ADragOfASliderEndsWithTheChannel) {
    clickRow(x);
    clickKey(3, 1.5f);
    takeTold();
    QTest::mousePress(slider("tensionSlider"), Qt::LeftButton, {},
                      handleOf(*slider("tensionSlider")));
    EXPECT_EQ(told, "will 1");
    outline()->selectItem(y);
    EXPECT_EQ(takeTold(), pairOf(KWChannelEdit::shape));
    QTest::mouseRelease(slider("tensionSlider"), Qt::LeftButton);
    EXPECT_EQ(takeTold(), "");
}

TEST_F(KWChannelEditorActions, SelectingKeysChangesNoByteOfTheChannel) {
    // A shape between two positions of a slider and beyond its ends.
    const HJHermiteParam odd{0.1234567f, 7, -3, {}};
    x->modifyHermiteParamForKeyframe(&odd, KWTime(3));
    manager->removeAllActions();
    KWData before = bytesOf(ball);
    clickRow(x);
    clickKey(3, 1.5f);
    clickKey(6, 0.5f, Qt::ShiftModifier);
    dragInView(at(0.5f, -1.8f), at(9.5f, 1.9f));
    EXPECT_EQ(view()->selectedKeys().size(), 4U);
    clickRow(y);
    clickRow(angle);
    clickRow(glow);
    clickRow(x);
    EXPECT_EQ(bytesOf(ball), before);
    const HJHermiteParam shape = shapeOf(*x, 3);
    EXPECT_EQ(std::memcmp(&shape, &odd, sizeof shape), 0);
    EXPECT_FALSE(manager->canUndo());
}

// --- The curve editor.

TEST_F(KWChannelEditorActions, TheToolsSetTheEditingMode) {
    clickRow(x);
    EXPECT_EQ(view()->editingMode(), KWChannelViewModeSelect);
    click("addKeyTool");
    EXPECT_EQ(view()->editingMode(), KWChannelViewModeAddKey);
    click("panTool");
    EXPECT_EQ(view()->editingMode(), KWChannelViewModePan);
    click("selectTool");
    EXPECT_EQ(view()->editingMode(), KWChannelViewModeSelect);
}

TEST_F(KWChannelEditorActions, OnlyAKeyframedChannelEnablesTheToolsForKeys) {
    EXPECT_FALSE(isEnabled("selectTool"));
    EXPECT_FALSE(isEnabled("copyButton"));
    EXPECT_FALSE(isEnabled("channelTypePU"));
    clickRow(x);
    EXPECT_TRUE(isEnabled("selectTool") && isEnabled("addKeyTool") && isEnabled("panTool"));
    for (const std::shared_ptr<KWChannel>& other :
         {std::shared_ptr<KWChannel>(y), std::shared_ptr<KWChannel>(angle)}) {
        clickRow(other);
        EXPECT_FALSE(isEnabled("selectTool") || isEnabled("addKeyTool"));
        EXPECT_TRUE(isEnabled("panTool"));
        EXPECT_TRUE(isEnabled("copyButton") && isEnabled("channelTypePU"));
    }
    clickRow(lamp);
    EXPECT_TRUE(isEnabled("panTool"));
    EXPECT_FALSE(isEnabled("copyButton") || isEnabled("channelTypePU") || isEnabled("pasteButton"));
}

TEST_F(KWChannelEditorActions, TheOtherControlsOfTheCurveEditorAreItsSettings) {
    EXPECT_TRUE(view()->showsGrid());
    EXPECT_TRUE(view()->showsLegend());
    EXPECT_TRUE(view()->showsTransientPointCoordinates());
    EXPECT_FALSE(view()->liveUpdate());
    EXPECT_FALSE(view()->snaps());
    click("liveCheckBox");
    EXPECT_TRUE(view()->liveUpdate());
    click("snapCheckBox");
    EXPECT_TRUE(view()->snaps());
    click("snapCheckBox");
    EXPECT_FALSE(view()->snaps());
    slider("gridSlider")->setFocus();
    EXPECT_EQ(view()->xGridCount(), 21);
    QTest::keyClick(slider("gridSlider"), Qt::Key_End);
    EXPECT_EQ(view()->xGridCount(), 41);
    EXPECT_EQ(view()->yGridCount(), 41);
    QTest::keyClick(slider("gridSlider"), Qt::Key_Home);
    EXPECT_EQ(view()->xGridCount(), 1);
}

TEST_F(KWChannelEditorActions, FitShowsAllKeysAndNothingElseDoes) {
    const HJRect before = view()->displayedBounds();
    clickRow(x);
    EXPECT_EQ(view()->displayedBounds(), before);
    click("fitButton");
    EXPECT_NEAR(view()->displayedBounds().x, 0.2f, 1e-5f);
    EXPECT_NEAR(view()->displayedBounds().width, 9.6f, 1e-5f);
}

TEST_F(KWChannelEditorActions, ADragInTheCurveEditorIsOneEditAndOneStepOfUndo) {
    clickRow(x);
    const KWData before = bytesOf(x);
    takeTold();
    dragInView(at(3, 1.5f), at(4, 1));
    EXPECT_EQ(takeTold(), pairOf(KWChannelEdit::keys));
    EXPECT_NE(bytesOf(x), before);
    manager->undo();
    EXPECT_EQ(bytesOf(x), before);
    EXPECT_FALSE(manager->canUndo());
}

TEST_F(KWChannelEditorActions, AKeyIsAddedWhereTheMouseIsPressed) {
    clickRow(x);
    click("addKeyTool");
    takeTold();
    QTest::mouseClick(view(), Qt::LeftButton, {}, at(4.5f, -1));
    EXPECT_EQ(x->keyframeCount(), 5U);
    EXPECT_EQ(view()->selectedKeys().size(), 1U);
    EXPECT_EQ(takeTold(), pairOf(KWChannelEdit::keys));
    manager->undo();
    EXPECT_EQ(x->keyframeCount(), 4U);
}

// --- Constant channels.

TEST_F(KWChannelEditorActions, ATypedNumberIsTheConstantValue) {
    clickRow(y);
    EXPECT_EQ(field("constantValueTF")->text(), QStringLiteral("2.5"));
    type("constantValueTF", QStringLiteral("-0.75"));
    EXPECT_EQ(y->valueForTime(std::nullopt), -0.75f);
    EXPECT_EQ(takeTold(), pairOf(KWChannelEdit::value));
    type("constantValueTF", QStringLiteral(" 1e2 "));
    EXPECT_EQ(y->valueForTime(std::nullopt), 100);
    EXPECT_EQ(field("constantValueTF")->text(), QStringLiteral("100"));
    manager->undo();
    manager->undo();
    settle();
    EXPECT_EQ(y->valueForTime(std::nullopt), 2.5f);
    EXPECT_EQ(field("constantValueTF")->text(), QStringLiteral("2.5"));
}

TEST_F(KWChannelEditorActions, NonsenseInTheNumberFieldPutsTheOldTextBack) {
    clickRow(y);
    const KWData before = bytesOf(y);
    for (const char* const nonsense : {"", "abc", "1e999", "1 furlong", "1,5", "2.5.5", "nan",
                                       "inf", "0x10", "--1", "1 2", "\xce\xb1"}) {
        type("constantValueTF", QString::fromUtf8(nonsense));
        EXPECT_EQ(field("constantValueTF")->text(), QStringLiteral("2.5")) << nonsense;
        EXPECT_FALSE(field("constantValueTF")->toolTip().isEmpty());
        EXPECT_EQ(bytesOf(y), before) << nonsense;
        EXPECT_EQ(takeTold(), "");
    }
    const QString complaint = field("constantValueTF")->toolTip();
    type("constantValueTF", QStringLiteral("3"));
    EXPECT_NE(field("constantValueTF")->toolTip(), complaint);
}

TEST_F(KWChannelEditorActions, AnUntouchedNumberFieldWritesNothing) {
    y->setValueForTime(0.123456789f, std::nullopt);
    clickRow(y);
    field("constantValueTF")->setFocus();
    QTest::keyClick(field("constantValueTF"), Qt::Key_Return);
    QTest::keyClick(field("constantValueTF"), Qt::Key_Tab);
    EXPECT_EQ(bits(y->valueForTime(std::nullopt)), bits(0.123456789f));
    EXPECT_EQ(takeTold(), "");
}

TEST_F(KWChannelEditorActions, LeavingAFieldTakesWhatWasTyped) {
    clickRow(y);
    type("constantValueTF", QStringLiteral("7"), false);
    clickRow(x);
    EXPECT_EQ(y->valueForTime(std::nullopt), 7);
    clickRow(angle);
    type("expressionTF", QStringLiteral("t+1"), false);
    QTest::keyClick(field("expressionTF"), Qt::Key_Tab);
    EXPECT_EQ(angle->valueForTime(KWTime(2)), 3);
}

TEST_F(KWChannelEditorActions, EscapePutsBackWhatTheChannelHolds) {
    clickRow(y);
    type("constantValueTF", QStringLiteral("7"), false);
    QTest::keyClick(field("constantValueTF"), Qt::Key_Escape);
    EXPECT_EQ(field("constantValueTF")->text(), QStringLiteral("2.5"));
    EXPECT_EQ(y->valueForTime(std::nullopt), 2.5f);
}

TEST_F(KWChannelEditorActions, WhatIsBeingTypedSurvivesWhatOthersDo) {
    clickRow(y);
    type("constantValueTF", QStringLiteral("12"), false);
    y->setValueForTime(4, std::nullopt);
    settle();
    EXPECT_EQ(field("constantValueTF")->text(), QStringLiteral("12"));
    QTest::keyClick(field("constantValueTF"), Qt::Key_Escape);
    EXPECT_EQ(field("constantValueTF")->text(), QStringLiteral("4"));
}

TEST_F(KWChannelEditorActions, AConstantValueIsInTheUsersUnit) {
    y->setUnitType(KWUnitTypeAngle);
    y->setValueForTime(1, std::nullopt);
    clickRow(y);
    EXPECT_TRUE(field("constantValueTF")->text().startsWith(QStringLiteral("57.29578 ")));
    type("constantValueTF", QStringLiteral("180"));
    EXPECT_FLOAT_EQ(y->valueForTime(std::nullopt), 3.14159265f);
}

// --- Expressions.

TEST_F(KWChannelEditorActions, AnExpressionComesBackInItsNormalForm) {
    clickRow(angle);
    EXPECT_EQ(field("expressionTF")->text(), QStringLiteral("sin(t)"));
    type("expressionTF", QStringLiteral("2 * T + 1"));
    EXPECT_EQ(field("expressionTF")->text().toStdString(), angle->expression());
    EXPECT_NE(field("expressionTF")->text(), QStringLiteral("2 * T + 1"));
    EXPECT_EQ(angle->valueForTime(KWTime(3)), 7);
    EXPECT_EQ(takeTold(), pairOf(KWChannelEdit::expression));
    EXPECT_EQ(alert(), nullptr);
    manager->undo();
    settle();
    EXPECT_EQ(field("expressionTF")->text(), QStringLiteral("sin(t)"));
}

TEST_F(KWChannelEditorActions, AnInvalidExpressionLeavesTheChannelAndAlertsOncePerAttempt) {
    clickRow(angle);
    const KWData before = bytesOf(angle);
    type("expressionTF", QStringLiteral("sin(t"));
    ASSERT_NE(alert(), nullptr);
    EXPECT_EQ(alert()->windowTitle(), QStringLiteral("Bad Expression"));
    EXPECT_EQ(alert()->text(), QStringLiteral("Algebric expression is not correctly formatted."));
    EXPECT_EQ(alert()->standardButtons(), QMessageBox::Ok);
    dismissAlert();
    settle();
    EXPECT_EQ(angle->expression(), "sin(t)");
    EXPECT_EQ(bytesOf(angle), before);
    EXPECT_EQ(field("expressionTF")->text(), QStringLiteral("sin(t"));
    EXPECT_EQ(takeTold(), "");
    // Leaving is no other attempt, Return is.
    QTest::keyClick(field("expressionTF"), Qt::Key_Tab);
    settle();
    EXPECT_EQ(alert(), nullptr);
    field("expressionTF")->setFocus();
    QTest::keyClick(field("expressionTF"), Qt::Key_Return);
    dismissAlert();
    QTest::keyClick(field("expressionTF"), Qt::Key_Escape);
    EXPECT_EQ(field("expressionTF")->text(), QStringLiteral("sin(t)"));
}

TEST_F(KWChannelEditorActions, ExpressionTextOfAnyKindCrashesNothing) {
    clickRow(angle);
    const KWData before = bytesOf(angle);
    QString everything;
    for (int code = 1; code < 0x300; ++code)
        everything += QChar(code);
    for (const QString& text : {QString(), QStringLiteral(" "), everything, QString(QChar(0xd800)),
                                QString(30000, QLatin1Char('(')), QStringLiteral("t)"),
                                QString(QChar(0)) + QStringLiteral("t")}) {
        field("expressionTF")->setText(text);
        editor.changeAlgebricExpression(field("expressionTF"));
        dismissAlert();
        EXPECT_EQ(bytesOf(angle), before);
        EXPECT_EQ(field("expressionTF")->text(), text);
    }
}

TEST_F(KWChannelEditorActions, ARefusedTextGoesWhenTheChannelGetsAnotherExpression) {
    clickRow(angle);
    type("expressionTF", QStringLiteral("2+"));
    dismissAlert();
    angle->setExpression("t*t");
    settle();
    EXPECT_EQ(field("expressionTF")->text().toStdString(), angle->expression());
}

TEST_F(KWChannelEditorActions, ReturnInAnUntouchedExpressionKeepsItToTheLastDigit) {
    angle->setExpression("t*0.123456789");
    clickRow(angle);
    const float value = angle->valueForTime(KWTime(1));
    field("expressionTF")->setFocus();
    QTest::keyClick(field("expressionTF"), Qt::Key_Return);
    EXPECT_EQ(bits(angle->valueForTime(KWTime(1))), bits(value));
    EXPECT_EQ(takeTold(), "");
}

// --- Without a channel, or with one of another class.

TEST_F(KWChannelEditorActions, ActionsWithoutAChannelOfTheirClassDoNothing) {
    const KWData ballBefore = bytesOf(ball);
    const auto actAll = [&](const std::string& except) {
        if (except != "interpolation") {
            editor.changeInterpolation(popup("interpModePU"));
            editor.changeRepeat(popup("repeatPU"));
            editor.changeHermiteParam(slider("tensionSlider"));
        }
        if (except != "expression")
            editor.changeAlgebricExpression(field("expressionTF"));
        editor.pasteChannel();
        editor.toggleShowSecondaryChannel();
    };
    actAll("");
    editor.changeChannelType(popup("channelTypePU"));
    editor.changeConstantValue(field("constantValueTF"));
    clickRow(y);
    actAll("");
    clickRow(angle);
    actAll("expression");
    clickRow(x);
    actAll("interpolation");
    EXPECT_EQ(bytesOf(ball), ballBefore);
    EXPECT_EQ(takeTold(), "");
    EXPECT_EQ(alert(), nullptr);
}

TEST_F(KWChannelEditorActions, ATypedNumberGoesToAnyChannel) {
    clickRow(y);
    field("constantValueTF")->setText(QStringLiteral("9"));
    clickRow(x);
    const KWData before = bytesOf(x);
    field("constantValueTF")->setText(QStringLiteral("9"));
    editor.changeConstantValue(field("constantValueTF"));
    EXPECT_EQ(bytesOf(x), before); // a key without a time is none
    EXPECT_EQ(takeTold(), pairOf(KWChannelEdit::value));
}
