#include "KeyCommandsTestSupport.h"

#include <apps/kwedit/window/KWKeyEntryField.h>
#include <apps/kwedit/window/KWKeyEntryPanel.h>

#include <QLabel>
#include <QTest>
#include <QToolButton>
#include <QToolTip>

namespace {

class KWKeyEntryPanelTest : public KWKeyCommandsTest {
  protected:
    KWKeyEntryPanelTest() {
        panel.show();
        panel.activateWindow();
        follow();
    }

    void follow() { QCoreApplication::processEvents(); }
    KWKeyEntryField* field(const char* name) {
        for (KWKeyEntryField* const one : panel.findChildren<KWKeyEntryField*>())
            if (one->accessibleName() == QLatin1String(name))
                return one;
        ADD_FAILURE() << "no field " << name;
        return nullptr;
    }
    std::string shown(const char* name) { return field(name)->text().toStdString(); }
    void type(const char* name, const char* text) {
        KWKeyEntryField* const one = field(name);
        one->setFocus();
        one->selectAll();
        QTest::keyClicks(one, QString::fromUtf8(text));
    }
    void enter(const char* name, const char* text) {
        type(name, text);
        QTest::keyClick(field(name), Qt::Key_Return);
        follow();
    }
    bool hasLabel(const char* text) {
        for (const QLabel* const label : panel.findChildren<QLabel*>())
            if (label->text() == QString::fromUtf8(text))
                return true;
        return false;
    }
    void choose(const std::vector<float>& times) {
        select(times);
        follow();
    }

    KWKeyEntryPanel panel{commands};
};

} // namespace

TEST_F(KWKeyEntryPanelTest, WithoutSelectedKeysItIsDisabledAndEmpty) {
    EXPECT_FALSE(panel.isEnabled());
    EXPECT_TRUE(hasLabel("No keys"));
    for (const char* const name : {"Time", "Value", "Tension", "Bias", "Continuity"})
        EXPECT_EQ(shown(name), "") << name;
    choose({2});
    EXPECT_TRUE(panel.isEnabled());
    view->setPrimaryChannel(nullptr);
    follow();
    EXPECT_FALSE(panel.isEnabled());
    EXPECT_EQ(shown("Time"), "");
}

TEST_F(KWKeyEntryPanelTest, ItShowsTheSelectedKey) {
    choose({4});
    EXPECT_TRUE(hasLabel("1 key"));
    EXPECT_TRUE(hasLabel("100 f"));
    EXPECT_EQ(shown("Time"), "4");
    EXPECT_EQ(shown("Value"), "2");
    EXPECT_EQ(shown("Tension"), "0.5");
    EXPECT_EQ(shown("Bias"), "0.25");
    EXPECT_EQ(shown("Continuity"), "-0.5");
    panel.setFramesPerSecond(30);
    EXPECT_TRUE(hasLabel("120 f"));
    set(-0.0f, 4);
    follow();
    EXPECT_EQ(shown("Value"), "-0");
}

TEST_F(KWKeyEntryPanelTest, WhatDiffersIsLeftEmpty) {
    choose({2, 4});
    EXPECT_TRUE(hasLabel("2 keys"));
    EXPECT_TRUE(hasLabel("50\u2013100 f"));
    for (const char* const name : {"Time", "Value", "Tension"}) {
        EXPECT_EQ(shown(name), "") << name;
        EXPECT_EQ(field(name)->placeholderText(), QStringLiteral("mixed")) << name;
    }
    EXPECT_EQ(shown("Bias"), "0.25");
    EXPECT_EQ(field("Bias")->placeholderText(), QString());
}

TEST_F(KWKeyEntryPanelTest, ItFollowsEditsAndUnits) {
    const Centimeters centimeters;
    setUnit(KWUnitTypeLength);
    choose({2});
    EXPECT_EQ(shown("Value"), "100 cm");
    set(0.5f, 2);
    follow();
    EXPECT_EQ(shown("Value"), "50 cm");
    KWUnitController::sharedUnitController().setDefaultLengthUnit(KWLengthUnitMeter);
    EXPECT_EQ(shown("Value"), "0.5 m");
    commands.nudge(1, 0);
    follow();
    EXPECT_EQ(shown("Time"), "2.25");
    view->grab();
    pressKey(2.25f);
    dragBy(8, 0);
    follow();
    EXPECT_EQ(shown("Time"), "2.5");
    release();
}

TEST_F(KWKeyEntryPanelTest, ATimeIsTyped) {
    choose({2});
    enter("Time", "3.5");
    EXPECT_EQ(times(), (std::vector<float>{1, 3.5f, 4, 8}));
    EXPECT_EQ(shown("Time"), "3.5");
    EXPECT_EQ(manager->undoActionName(), "Move Key");
    enter("Time", "75f");
    EXPECT_EQ(selection(), std::vector<float>{3});
    enter("Time", "2 s");
    EXPECT_EQ(selection(), std::vector<float>{2});
    enter("Time", "+=0.25");
    EXPECT_EQ(selection(), std::vector<float>{2.25f});
    enter("Time", "-= 25 F");
    EXPECT_EQ(selection(), std::vector<float>{1.25f});
    EXPECT_EQ(steps(), 5);
}

TEST_F(KWKeyEntryPanelTest, SeveralKeysKeepTheirDistanceFromTheFirst) {
    choose({4, 2});
    enter("Time", "3");
    EXPECT_EQ(times(), (std::vector<float>{1, 3, 5, 8}));
    EXPECT_EQ(shown("Time"), "");
}

TEST_F(KWKeyEntryPanelTest, AValueIsTypedInTheUsersUnit) {
    const Centimeters centimeters;
    setUnit(KWUnitTypeLength);
    choose({2, 4});
    enter("Value", "30");
    EXPECT_EQ(valueAt(2), 0.3f);
    EXPECT_EQ(valueAt(4), 0.3f);
    EXPECT_EQ(shown("Value"), "30 cm");
    enter("Value", "+=2 m");
    EXPECT_FLOAT_EQ(valueAt(4), 2.3f);
    enter("Value", "-=30");
    EXPECT_FLOAT_EQ(valueAt(4), 2);
    EXPECT_EQ(steps(), 3);
}

TEST_F(KWKeyEntryPanelTest, ShapesAreTypedAndReset) {
    choose({2, 4});
    enter("Tension", "1");
    EXPECT_EQ(recordAt(2), recordWith(1, 0.25f, -0.5f));
    enter("Bias", "-1");
    enter("Continuity", "0.5");
    EXPECT_EQ(recordAt(4), recordWith(1, -1, 0.5f));
    panel.findChild<QToolButton*>()->click();
    follow();
    EXPECT_EQ(recordAt(4), recordWith(0));
    EXPECT_EQ(shown("Bias"), "0");
    EXPECT_EQ(steps(), 4);
}

TEST_F(KWKeyEntryPanelTest, WhatCannotBeTakenChangesNothingAndSaysWhy) {
    choose({2});
    const std::string before = contents();
    for (const auto& [name, text] :
         std::vector<std::pair<const char*, const char*>>{{"Time", "soon"},
                                                          {"Time", "1e39"},
                                                          {"Time", "nan"},
                                                          {"Time", "3x"},
                                                          {"Time", "+="},
                                                          {"Time", "f"},
                                                          {"Value", "1,5"},
                                                          {"Value", "3 cm"},
                                                          {"Value", "inf"},
                                                          {"Tension", "+=1"},
                                                          {"Bias", "x"}}) {
        QToolTip::hideText();
        const std::string had = shown(name);
        enter(name, text);
        QTRY_VERIFY(QToolTip::isVisible());
        EXPECT_TRUE(QToolTip::text().endsWith(QLatin1Char('.'))) << text;
        EXPECT_EQ(shown(name), had) << text;
    }
    QToolTip::hideText();
    EXPECT_EQ(contents(), before);
    EXPECT_FALSE(manager->canUndo());
}

TEST_F(KWKeyEntryPanelTest, WhatACommandRefusesSaysWhyAndOnlyThen) {
    setKeys({{1, 3e38f}, {2, 0}});
    choose({1});
    enter("Value", "+=3e38");
    QTRY_VERIFY(QToolTip::isVisible());
    EXPECT_EQ(QToolTip::text(), commands.fault());
    EXPECT_EQ(shown("Value"), "3e+38");
    QToolTip::hideText();
    QTRY_VERIFY(!QToolTip::isVisible());
    type("Value", "7");
    view->grab();
    pressKey(2);
    ASSERT_TRUE(view->isGestureActive());
    QTest::keyClick(field("Value"), Qt::Key_Return);
    follow();
    EXPECT_FALSE(QToolTip::isVisible());
    release();
    EXPECT_EQ(valueAt(1), 3e38f);
}

TEST_F(KWKeyEntryPanelTest, NothingTypedIsNothingDone) {
    choose({2, 4});
    enter("Time", " ");
    field("Value")->setFocus();
    QTest::keyClick(field("Value"), Qt::Key_Return);
    type("Value", "7");
    QTest::keyClick(field("Value"), Qt::Key_Escape);
    EXPECT_EQ(shown("Value"), "");
    QTest::keyClick(field("Value"), Qt::Key_Return);
    choose({2});
    set(0.1234567891f, 2);
    manager->removeAllActions();
    follow();
    enter("Value", shown("Value").c_str());
    EXPECT_FALSE(manager->canUndo());
    EXPECT_EQ(valueAt(2), 0.1234567891f);
}

TEST_F(KWKeyEntryPanelTest, WhatIsTypedCountsWhenTheFieldIsLeft) {
    choose({2});
    type("Time", "3");
    field("Value")->setFocus();
    follow();
    EXPECT_EQ(selection(), std::vector<float>{3});
}

TEST_F(KWKeyEntryPanelTest, WhatIsTypedStaysUntilOtherKeysAreSelected) {
    choose({2});
    type("Value", "12");
    set(5, 8);
    view->setCurrentTime(7);
    follow();
    EXPECT_EQ(shown("Value"), "12");
    choose({4});
    EXPECT_EQ(shown("Value"), "2");
    QTest::keyClick(field("Value"), Qt::Key_Return);
    EXPECT_EQ(valueAt(4), 2);
    EXPECT_EQ(valueAt(2), 1);
}

TEST_F(KWKeyEntryPanelTest, EveryFieldHasANameAndALabel) {
    for (const KWKeyEntryField* const one : panel.findChildren<KWKeyEntryField*>()) {
        EXPECT_FALSE(one->accessibleName().isEmpty());
        EXPECT_FALSE(one->toolTip().isEmpty());
        EXPECT_TRUE(hasLabel(one->accessibleName().toUtf8().constData()));
    }
    EXPECT_FALSE(panel.findChild<QToolButton*>()->accessibleName().isEmpty());
    EXPECT_FALSE(panel.accessibleName().isEmpty());
}

TEST_F(KWKeyEntryPanelTest, AStripIsLowAndAFormIsNarrow) {
    choose({2});
    const QSize strip = panel.sizeHint();
    EXPECT_LT(strip.height(), 45);
    EXPECT_LT(strip.width(), 900);
    EXPECT_LT(panel.minimumSizeHint().width(), 780);
    panel.setOrientation(Qt::Vertical);
    const QSize form = panel.sizeHint();
    EXPECT_LT(form.width(), 300);
    EXPECT_EQ(shown("Time"), "2");
}

TEST(KWKeyEntryPanel, OutlivesItsCommandsAndTheirView) {
    auto view = std::make_unique<KWChannelView>();
    view->setPrimaryChannel(channelWithKeys({{1, 1}}));
    auto commands = std::make_unique<KWKeyCommands>(*view);
    KWKeyEntryPanel panel(*commands);
    view->setSelectedKeys({KWTime(1)});
    QCoreApplication::processEvents();
    EXPECT_TRUE(panel.isEnabled());
    view.reset();
    QCoreApplication::processEvents();
    EXPECT_FALSE(panel.isEnabled());
    commands.reset();
    EXPECT_FALSE(panel.isEnabled());
    panel.setFramesPerSecond(30);
}
