#include "ViewTestSupport.h"

#include <KWBase/KWChannelView.h>
#include <KWBase/KWConstantChannel.h>
#include <KWFoundation/KWNotificationCenter.h>

#include <gtest/gtest.h>

#include <QAction>
#include <QCheckBox>
#include <QMetaProperty>
#include <QPushButton>
#include <QSignalSpy>
#include <cmath>
#include <functional>
#include <limits>
#include <map>
#include <memory>
#include <string>

namespace {

constexpr float infinity = std::numeric_limits<float>::infinity();
constexpr float notANumber = std::numeric_limits<float>::quiet_NaN();

class CountingView : public KWChannelView {
  public:
    void setNeedsDisplay(bool needs) override {
        redisplays += needs ? 1 : 0;
        KWChannelView::setNeedsDisplay(needs);
    }
    int redisplays = 0;
};

class Delegate final : public KWChannelViewDelegate {
  public:
    ~Delegate() override { resign(); }
    void selectionDidChange(const KWNotification&) override { ++count; }
    int count = 0;
};

class KWChannelViewTest : public testing::Test {
  protected:
    int redisplaysOf(const std::function<void()>& action) {
        const int before = view.redisplays;
        action();
        return view.redisplays - before;
    }

    CountingView view;
};

std::shared_ptr<KWKeyFramedChannel> twoKeys() {
    auto channel = std::make_shared<KWKeyFramedChannel>("curve");
    channel->setValueForKeyframe(-1, KWTime(2));
    channel->setValueForKeyframe(3, KWTime(12));
    return channel;
}

} // namespace

TEST_F(KWChannelViewTest, AFreshViewHasItsDefaults) {
    EXPECT_EQ(view.primaryChannel(), nullptr);
    EXPECT_TRUE(view.secondaryChannels().empty());
    EXPECT_TRUE(view.keyCells().empty());
    EXPECT_EQ(view.currentTime(), 0);
    EXPECT_EQ(view.displayedBounds(), (HJRect{0, -2, 10, 4}));
    EXPECT_EQ(view.anchor(), (KWDisplayedRange{0, 0, 0, 0}));
    EXPECT_EQ(view.stepCount(), 100);
    EXPECT_EQ(view.xGridCount(), 42);
    EXPECT_EQ(view.yGridCount(), 21);
    EXPECT_EQ(view.selectionRect(), QRectF(0, 0, 0, 0));
    EXPECT_TRUE(view.selectedKeys().empty());
    EXPECT_EQ(view.pointTime(), 0);
    EXPECT_EQ(view.pointValue(), 0);
    EXPECT_EQ(view.editingMode(), KWChannelViewModeSelect);
    EXPECT_FALSE(view.snaps());
    EXPECT_FALSE(view.clampsValues());
    EXPECT_FALSE(view.showsPointCoordinates());
    EXPECT_FALSE(view.showsTransientPointCoordinates());
    EXPECT_FALSE(view.isSelecting());
    EXPECT_FALSE(view.liveUpdate());
    EXPECT_FALSE(view.showsLegend());
    EXPECT_FALSE(view.showsGrid());
    EXPECT_TRUE(view.showsTwoLevelGrid());
    EXPECT_EQ(view.backgroundColor(), QColor::fromRgbF(0.1f, 0, 0.3f, 1));
    EXPECT_EQ(view.gridColor(), QColor::fromRgbF(0.35f, 0.35f, 0.5f, 1));
    EXPECT_EQ(view.delegate(), nullptr);
    EXPECT_TRUE(view.isOpaque());
    EXPECT_TRUE(view.testAttribute(Qt::WA_OpaquePaintEvent));
    EXPECT_TRUE(view.acceptsFirstResponder());
    EXPECT_EQ(view.focusPolicy(), Qt::StrongFocus);
    EXPECT_TRUE(view.hasMouseTracking());
}

TEST_F(KWChannelViewTest, ComingOutOfAnInterfaceFileSetsTheFirstMode) {
    view.setEditingMode(KWChannelViewModePan);
    view.awakeFromNib();
    EXPECT_EQ(view.editingMode(), KWChannelViewModeSelect);
}

// --- What is drawn anew.

TEST_F(KWChannelViewTest, TheGridsCountsDrawTheViewAnew) {
    EXPECT_EQ(redisplaysOf([&] { view.setXGridCount(7); }), 1);
    EXPECT_EQ(redisplaysOf([&] { view.setYGridCount(8); }), 1);
    EXPECT_EQ(redisplaysOf([&] { view.setYGridCount(8); }), 1);
    EXPECT_EQ(redisplaysOf([&] { view.setXGridResolution(0.1f); }), 1);
    EXPECT_EQ(redisplaysOf([&] { view.setYGridResolution(0.1f); }), 1);
    EXPECT_EQ(redisplaysOf([&] { view.setGridResolution(0.1f); }), 2);
}

TEST_F(KWChannelViewTest, WhatIsDisplayedDrawsTheViewAnew) {
    EXPECT_EQ(redisplaysOf([&] { view.setDisplayedBounds({0, -2, 10, 4}); }), 1);
    EXPECT_EQ(redisplaysOf([&] { view.setCurrentTime(0); }), 1);
    EXPECT_EQ(redisplaysOf([&] { view.setStepCount(100); }), 1);
    EXPECT_EQ(redisplaysOf([&] { view.setSelectedKeys({}); }), 1);
    view.setPrimaryChannel(twoKeys());
    EXPECT_EQ(redisplaysOf([&] { view.fitChannel(); }), 1);
}

TEST_F(KWChannelViewTest, OtherSettingsDoNot) {
    EXPECT_EQ(redisplaysOf([&] {
                  view.setShowsGrid(true);
                  view.setShowsTwoLevelGrid(false);
                  view.setShowsLegend(true);
                  view.setGridColor(Qt::red);
                  view.setBackgroundColor(Qt::blue);
                  view.setShowsPointCoordinates(true);
                  view.setShowsTransientPointCoordinates(true);
                  view.setPointTimeValue(1, 2);
                  view.setLiveUpdate(true);
                  view.setClampsValues(true);
                  view.setSnaps(true);
                  view.setEditingMode(KWChannelViewModePan);
                  view.setAnchor();
                  view.setDelegate(nullptr);
                  view.setNeedsDisplay(false);
              }),
              0);
}

TEST_F(KWChannelViewTest, ASetterIsAnsweredByItsGetter) {
    view.setShowsGrid(true);
    EXPECT_TRUE(view.showsGrid());
    view.setShowsTwoLevelGrid(false);
    EXPECT_FALSE(view.showsTwoLevelGrid());
    view.setShowsLegend(true);
    EXPECT_TRUE(view.showsLegend());
    view.setGridColor(Qt::red);
    EXPECT_EQ(view.gridColor(), QColor(Qt::red));
    view.setBackgroundColor(Qt::blue);
    EXPECT_EQ(view.backgroundColor(), QColor(Qt::blue));
    view.setShowsPointCoordinates(true);
    EXPECT_TRUE(view.showsPointCoordinates());
    view.setShowsTransientPointCoordinates(true);
    EXPECT_TRUE(view.showsTransientPointCoordinates());
    view.setPointTimeValue(1, 2);
    EXPECT_EQ(view.pointTime(), 1);
    EXPECT_EQ(view.pointValue(), 2);
    view.setLiveUpdate(true);
    EXPECT_TRUE(view.liveUpdate());
    view.setClampsValues(true);
    EXPECT_TRUE(view.clampsValues());
    view.setSnaps(true);
    EXPECT_TRUE(view.snaps());
    view.setEditingMode(77);
    EXPECT_EQ(view.editingMode(), 77);
    view.setCurrentTime(-3);
    EXPECT_EQ(view.currentTime(), -3);
}

// --- The grid's counts.

TEST_F(KWChannelViewTest, AResolutionAsksForFortyTimesAsManyLinesAndOne) {
    view.setGridResolution(0.5f);
    EXPECT_EQ(view.xGridCount(), 21);
    EXPECT_EQ(view.yGridCount(), 21);
    view.setXGridResolution(0);
    view.setYGridResolution(1);
    EXPECT_EQ(view.xGridCount(), 1);
    EXPECT_EQ(view.yGridCount(), 41);
    view.setXGridResolution(0.049f);
    EXPECT_EQ(view.xGridCount(), 2);
}

TEST_F(KWChannelViewTest, AbsurdCountsAreBounded) {
    view.setXGridCount(0);
    EXPECT_EQ(view.xGridCount(), 0);
    view.setXGridCount(-1);
    EXPECT_EQ(view.xGridCount(), 0);
    view.setXGridResolution(-5);
    EXPECT_EQ(view.xGridCount(), 0);
    view.setXGridResolution(notANumber);
    EXPECT_EQ(view.xGridCount(), 0);
    view.setXGridResolution(infinity);
    EXPECT_EQ(view.xGridCount(), std::numeric_limits<int>::max());
    for (const int count : {0, -1, std::numeric_limits<int>::min()}) {
        view.setStepCount(count);
        EXPECT_EQ(view.stepCount(), 1);
    }
    view.setStepCount(std::numeric_limits<int>::max());
    EXPECT_EQ(view.stepCount(), 1'000'000);
}

// --- What is displayed.

TEST_F(KWChannelViewTest, DisplayedBoundsComeBack) {
    const HJRect bounds{2, -0.5f, 8, 4.5f};
    view.setDisplayedBounds(bounds);
    EXPECT_EQ(view.displayedBounds(), bounds);
    EXPECT_EQ(view.plotGeometry().range, (KWDisplayedRange{2, 10, -0.5f, 4}));
    view.setProperty("displayedBounds", QRectF(1, 2, 3, 4));
    EXPECT_EQ(view.displayedBounds(), (HJRect{1, 2, 3, 4}));
    EXPECT_EQ(view.property("displayedBounds").toRectF(), QRectF(1, 2, 3, 4));
}

TEST_F(KWChannelViewTest, FittingShowsAllKeysWithATenthAround) {
    view.setPrimaryChannel(twoKeys());
    view.fitChannel(nullptr);
    const KWDisplayedRange range = view.plotGeometry().range;
    EXPECT_EQ(range.hMin, 1);
    EXPECT_EQ(range.hMax, 13);
    EXPECT_EQ(range.vMin, static_cast<float>(-1.0 - 4 / 10.0));
    EXPECT_EQ(range.vMax, static_cast<float>(3.0 + 4 / 10.0));
}

TEST_F(KWChannelViewTest, FittingAnotherKindOfChannelOrNoneLeavesTheRanges) {
    view.setDisplayedBounds({1, 2, 3, 4});
    EXPECT_EQ(redisplaysOf([&] { view.fitChannel(); }), 0);
    view.setPrimaryChannel(std::make_shared<KWConstantChannel>("constant"));
    EXPECT_EQ(redisplaysOf([&] { view.fitChannel(); }), 0);
    EXPECT_EQ(view.displayedBounds(), (HJRect{1, 2, 3, 4}));
}

TEST_F(KWChannelViewTest, TheAnchorIsACopyOfWhatIsDisplayed) {
    view.setAnchor();
    view.setDisplayedBounds({1, 2, 3, 4});
    EXPECT_EQ(view.anchor(), (KWDisplayedRange{0, 10, -2, 2}));
}

TEST_F(KWChannelViewTest, PositionsAreCountedFromTheTop) {
    view.resize(500, 200);
    EXPECT_EQ(view.timeAtPosition({250, 0}), 5);
    EXPECT_EQ(view.valueAtPosition({250, 0}), 2);
    EXPECT_EQ(view.valueAtPosition({250, 150}), -1);
    EXPECT_EQ(view.positionOfTimeAndValue(5, -1), QPointF(250, 150));
}

TEST_F(KWChannelViewTest, BeforeTheFirstDrawingThePlotIsTheWidgetAsItIs) {
    view.resize(500, 200);
    EXPECT_EQ(view.plotGeometry().plot, (KWPlotRect{0, 500, 0, 200}));
    view.resize(400, 100);
    EXPECT_EQ(view.plotGeometry().plot, (KWPlotRect{0, 400, 0, 100}));
    view.grab();
    view.resize(300, 300);
    EXPECT_EQ(view.plotGeometry().plot, (KWPlotRect{0, 400, 0, 100}));
    view.grab();
    EXPECT_EQ(view.plotGeometry().plot, (KWPlotRect{0, 300, 0, 300}));
}

TEST_F(KWChannelViewTest, TheWidgetsOwnGeometryIsItsPlace) {
    view.setGeometry(10, 20, 300, 150);
    EXPECT_EQ(view.geometry().width(), 300);
    EXPECT_EQ(view.geometry(), QRect(10, 20, 300, 150));
}

TEST_F(KWChannelViewTest, ViewsThatFollowEachOtherComeToRestAlsoWithWhatIsNoNumber) {
    KWChannelView other;
    int told = 0;
    const auto follow = [&told](KWChannelView& leader, KWChannelView& follower) {
        QObject::connect(&leader, &KWChannelView::displayedBoundsChanged, [&] {
            if (++told < 100)
                follower.setDisplayedBounds(leader.displayedBounds());
        });
        QObject::connect(&leader, &KWChannelView::currentTimeChanged, [&](float time) {
            if (++told < 100)
                follower.setCurrentTime(time);
        });
        QObject::connect(&leader, &KWChannelView::selectedKeysChanged, [&] {
            if (++told < 100)
                follower.setSelectedKeys(leader.selectedKeys());
        });
    };
    follow(view, other);
    follow(other, view);
    const float nan = std::numeric_limits<float>::quiet_NaN();
    for (const HJRect& bounds :
         {HJRect{nan, 0, 1, 1}, HJRect{0, nan, 1, 1}, HJRect{0, 0, nan, 1}, HJRect{0, 0, 1, nan},
          HJRect{nan, nan, nan, nan}, HJRect{0, 0, infinity, 1}, HJRect{1, 2, 3, 4}}) {
        told = 0;
        view.setDisplayedBounds(bounds);
        EXPECT_LE(told, 4);
    }
    for (const float time : {nan, -nan, infinity, 1.0f}) {
        told = 0;
        view.setCurrentTime(time);
        EXPECT_LE(told, 2);
    }
    for (const auto& keys : {std::vector<KWTime>{KWTime(nan), KWTime(1)}, {KWTime(1)}}) {
        told = 0;
        view.setSelectedKeys(keys);
        EXPECT_EQ(told, 2);
    }
}

// --- Snapping.

TEST_F(KWChannelViewTest, SnappingIsOnExactlyWhenTheSenderIsChecked) {
    QCheckBox box;
    box.setTristate(true);
    box.setCheckState(Qt::Checked);
    view.changeSnap(&box);
    EXPECT_TRUE(view.snaps());
    box.setCheckState(Qt::PartiallyChecked);
    view.changeSnap(&box);
    EXPECT_FALSE(view.snaps());

    QPushButton button;
    button.setCheckable(true);
    button.setChecked(true);
    view.changeSnap(&button);
    EXPECT_TRUE(view.snaps());
    button.setChecked(false);
    view.changeSnap(&button);
    EXPECT_FALSE(view.snaps());

    QAction action;
    action.setCheckable(true);
    action.setChecked(true);
    view.changeSnap(&action);
    EXPECT_TRUE(view.snaps());
    view.changeSnap(nullptr);
    EXPECT_FALSE(view.snaps());
}

// --- The selection.

TEST_F(KWChannelViewTest, SelectingKeysSaysSoOnceAndOnlyWhenTheyChange) {
    Delegate delegate;
    view.setDelegate(&delegate);
    QSignalSpy changes(&view, &KWChannelView::selectedKeysChanged);
    view.setSelectedKeys({KWTime(3), KWTime(1)});
    EXPECT_EQ(view.selectedKeys(), (std::vector<KWTime>{3, 1}));
    EXPECT_EQ(changes.count(), 1);
    view.setSelectedKeys({KWTime(3), KWTime(1)});
    EXPECT_EQ(changes.count(), 1);
    view.setSelectedKeys({KWTime(1), KWTime(3)});
    EXPECT_EQ(changes.count(), 2);
    view.setSelectedKeys({});
    EXPECT_EQ(changes.count(), 3);
    EXPECT_EQ(delegate.count, 0);
}

// --- Delegates.

TEST_F(KWChannelViewTest, ADelegateThatIsGoneReadsAsNone) {
    auto delegate = std::make_unique<Delegate>();
    view.setDelegate(delegate.get());
    EXPECT_EQ(view.delegate(), delegate.get());
    delegate.reset();
    EXPECT_EQ(view.delegate(), nullptr);
    view.setPrimaryChannel(nullptr);
}

TEST_F(KWChannelViewTest, ACopyOfADelegateIsNotTheViewsDelegate) {
    Delegate delegate;
    view.setDelegate(&delegate);
    {
        Delegate copy = delegate;
        copy = delegate;
    }
    EXPECT_EQ(view.delegate(), &delegate);
}

TEST_F(KWChannelViewTest, TheDefaultDelegateAnswersNothing) {
    class Silent : public KWChannelViewDelegate {};
    Silent silent;
    silent.selectionDidChange(KWNotification("", nullptr));
    silent.keyAction(KWKeyCell());
    EXPECT_FALSE(silent.colorForChannel(twoKeys()).has_value());
}

// --- Properties.

TEST_F(KWChannelViewTest, EverySettingIsAPropertyThatSaysWhenItChanges) {
    const std::map<std::string, QVariant> values{
        {"currentTime", 2.5f},
        {"displayedBounds", QRectF(1, 2, 3, 4)},
        {"editingMode", 2},
        {"stepCount", 320},
        {"xGridCount", 9},
        {"yGridCount", 8},
        {"showsGrid", true},
        {"showsTwoLevelGrid", false},
        {"showsLegend", true},
        {"showsPointCoordinates", true},
        {"showsTransientPointCoordinates", true},
        {"snaps", true},
        {"clampsValues", true},
        {"liveUpdate", true},
        {"backgroundColor", QColor(Qt::red)},
        {"gridColor", QColor(Qt::green)},
    };
    const QMetaObject& meta = KWChannelView::staticMetaObject;
    ASSERT_EQ(static_cast<std::size_t>(meta.propertyCount() - meta.propertyOffset()),
              values.size());
    for (const auto& [name, value] : values) {
        SCOPED_TRACE(name);
        const QMetaProperty property = meta.property(meta.indexOfProperty(name.c_str()));
        ASSERT_TRUE(property.hasNotifySignal());
        QSignalSpy notices(&view, property.notifySignal());
        EXPECT_NE(view.property(name.c_str()), value);
        EXPECT_TRUE(view.setProperty(name.c_str(), value));
        EXPECT_EQ(view.property(name.c_str()), value);
        EXPECT_EQ(notices.count(), 1);
        view.setProperty(name.c_str(), value);
        EXPECT_EQ(notices.count(), 1);
    }
}

TEST_F(KWChannelViewTest, ATranslucentBackgroundIsNotOpaqueForQt) {
    view.setBackgroundColor(QColor(10, 20, 30, 40));
    EXPECT_FALSE(view.testAttribute(Qt::WA_OpaquePaintEvent));
    view.setBackgroundColor(QColor(10, 20, 30));
    EXPECT_TRUE(view.testAttribute(Qt::WA_OpaquePaintEvent));
}
