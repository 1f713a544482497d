#include "ViewTestSupport.h"

#include <KWBase/KWPanelControls.h>

#include <gtest/gtest.h>

#include <QComboBox>
#include <QSignalSpy>
#include <QSlider>
#include <QStackedWidget>
#include <QVBoxLayout>
#include <array>
#include <limits>
#include <stdexcept>

namespace {

struct Dial : QSlider {
    Dial() {
        setRange(0, 2000);
        setProperty("minimumValue", -1.0);
        setProperty("maximumValue", 1.0);
    }
};

} // namespace

TEST(KWPanelControls, PositionsRunEvenlyOverTheTwoNumbers) {
    Dial dial;
    for (const auto& [position, value] : std::vector<std::pair<int, float>>{
             {0, -1.0f}, {1000, 0.0f}, {2000, 1.0f}, {1, -0.999f}, {1333, 0.333f}}) {
        dial.setValue(position);
        EXPECT_EQ(KWSliderValue(dial), value);
        dial.setValue(0);
        KWSetSliderValue(dial, value);
        EXPECT_EQ(dial.value(), position);
    }
}

TEST(KWPanelControls, ASliderWithoutNumbersStandsForItsPosition) {
    QSlider slider;
    slider.setRange(10, 50);
    KWSetSliderValue(slider, 30.4f);
    EXPECT_EQ(slider.value(), 30);
    EXPECT_EQ(KWSliderValue(slider), 30);
    slider.setProperty("minimumValue", QStringLiteral("some"));
    slider.setProperty("maximumValue", 1.0);
    EXPECT_EQ(KWSliderValue(slider), 30);
}

TEST(KWPanelControls, ValuesBeyondTheEndsAreHeldAndWhatIsNoNumberIsIgnored) {
    Dial dial;
    const float infinity = std::numeric_limits<float>::infinity();
    for (const auto& [value, position] : std::vector<std::pair<float, int>>{
             {7.0f, 2000}, {-7.0f, 0}, {infinity, 2000}, {-infinity, 0}, {3e38f, 2000}}) {
        KWSetSliderValue(dial, value);
        EXPECT_EQ(dial.value(), position);
    }
    dial.setValue(77);
    KWSetSliderValue(dial, std::numeric_limits<float>::quiet_NaN());
    EXPECT_EQ(dial.value(), 77);
    dial.setRange(5, 5);
    EXPECT_EQ(KWSliderValue(dial), -1);
}

TEST(KWPanelControls, SettingOneByCodeSendsNothing) {
    Dial dial;
    QComboBox popup;
    popup.addItems({QStringLiteral("a"), QStringLiteral("b"), QString(), QStringLiteral("c")});
    const QSignalSpy moved(&dial, &QSlider::valueChanged);
    const QSignalSpy chosen(&popup, &QComboBox::currentIndexChanged);
    KWSetSliderValue(dial, 0.5f);
    KWSetPopupIndex(popup, 3);
    KWMakePopupSeparator(popup, 2);
    KWMakePopupSeparator(popup, 9);
    EXPECT_EQ(moved.count() + chosen.count(), 0);
    EXPECT_EQ(dial.value(), 1500);
    EXPECT_EQ(popup.currentIndex(), 3);
    EXPECT_EQ(popup.count(), 4);
}

TEST(KWPanelControls, AStackTurnsToTheViewThatIsShown) {
    QStackedWidget stack;
    auto* const first = new QWidget;
    auto* const second = new QWidget;
    auto* const empty = new QWidget;
    for (QWidget* const page : {first, second, empty})
        stack.addWidget(page);
    const std::array<QWidget*, 3> views = {first, second, nullptr};
    KWSetContentView(views, second);
    EXPECT_EQ(stack.currentWidget(), second);
    KWSetContentView(views, nullptr);
    EXPECT_EQ(stack.currentWidget(), empty);
    KWSetContentView(views, first);
    EXPECT_EQ(stack.currentWidget(), first);
    stack.removeWidget(empty);
    delete empty;
    KWSetContentView(views, nullptr);
    EXPECT_TRUE(stack.isHidden());
    KWSetContentView(views, second);
    EXPECT_FALSE(stack.isHidden());
    EXPECT_EQ(stack.currentWidget(), second);
}

TEST(KWPanelControls, AnActionThatThrowsIsLogged) {
    LogLines log;
    KWRunAction([] { throw std::runtime_error("no room"); });
    KWRunAction([] { throw 7; });
    EXPECT_EQ(log.lines, (std::vector<std::string>{"An action of a panel has failed: no room",
                                                   "An action of a panel has failed"}));
}
