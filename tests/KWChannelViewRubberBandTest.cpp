#include "GestureTestSupport.h"

namespace {

using Times = std::vector<float>;

class KWChannelViewRubberBandTest : public GestureTest {};

} // namespace

TEST_F(KWChannelViewRubberBandTest, ARubberBandSelectsTheKeysInsideAsItIsDragged) {
    setKeys({{1, 0}, {2, 1}, {3, -1}, {4, 2.5f}});
    pressAt(at(0.5f, 2));
    EXPECT_EQ(view->selectionRect(), QRectF(16, 128, 0, 0));
    dragBy(64, -80);
    EXPECT_EQ(view->selectionRect(), QRectF(16, 128, 64, -80));
    EXPECT_EQ(selection(), (Times{1, 2}));
    dragBy(100, -100);
    EXPECT_EQ(selection(), (Times{1, 2, 3}));
    dragBy(20, -100);
    EXPECT_EQ(selection(), Times{1});
    EXPECT_EQ(delegate.count, 0);
    release();
    EXPECT_EQ(selection(), Times{1});
    EXPECT_EQ(delegate.count, 1);
    EXPECT_FALSE(view->isSelecting());
}

TEST_F(KWChannelViewRubberBandTest, ARubberBandMayBeDraggedInEveryDirection) {
    setKeys({{1, 0}, {2, 1}, {3, -1}});
    for (const auto& [from, to] :
         {std::pair(at(0.5f, 2), at(3.5f, -1.5f)), std::pair(at(3.5f, 2), at(0.5f, -1.5f)),
          std::pair(at(0.5f, -1.5f), at(3.5f, 2)), std::pair(at(3.5f, -1.5f), at(0.5f, 2))}) {
        pressAt(from);
        move(to);
        EXPECT_EQ(selection(), (Times{1, 2, 3}));
        release();
    }
}

TEST_F(KWChannelViewRubberBandTest, TheEdgesOfARubberBandAreInsideIt) {
    setKeys({{1, 0}, {2, 1}});
    pressAt(at(1, 1) + QPointF(0, -20));
    move(at(2, 0));
    EXPECT_EQ(selection(), (Times{1, 2}));
    move(at(2 - 1 / 32.f, 1 / 32.f));
    EXPECT_EQ(selection(), Times{});
}

TEST_F(KWChannelViewRubberBandTest, WithTheShiftKeyARubberBandAddsToWhatWasSelectedAtThePress) {
    setKeys({{1, 0}, {2, 0}, {3, 0}, {4, 0}});
    view->setSelectedKeys({KWTime(4), KWTime(2)});
    pressAt(at(0.5f, 1), Qt::ShiftModifier);
    EXPECT_EQ(selection(), (Times{4, 2}));
    dragBy(96, -64);
    EXPECT_EQ(selection(), (Times{4, 2, 1, 3}));
    dragBy(32, -64);
    EXPECT_EQ(selection(), (Times{4, 2, 1}));
    dragBy(32, 10);
    EXPECT_EQ(selection(), (Times{4, 2}));
    release();
    EXPECT_EQ(delegate.count, 1);
}

TEST_F(KWChannelViewRubberBandTest, SettingTheSameChannelEmptiesTheSelectionUntilTheNextEvent) {
    setKeys({{1, 0}, {2, 0}, {4, 0}});
    view->setSelectedKeys({KWTime(4)});
    pressAt(at(0.5f, 1), Qt::ShiftModifier);
    dragBy(32, -64);
    EXPECT_EQ(selection(), (Times{4, 1}));
    view->setPrimaryChannel(channel);
    EXPECT_EQ(selection(), Times{});
    dragBy(64, -64);
    EXPECT_EQ(selection(), (Times{4, 1, 2}));
}

TEST_F(KWChannelViewRubberBandTest, TheShiftKeyCountsAtThePress) {
    setKeys({{1, 0}, {2, 0}});
    view->setSelectedKeys({KWTime(2)});
    pressAt(at(0.5f, 1));
    held = Qt::ShiftModifier;
    dragBy(32, -64);
    EXPECT_EQ(selection(), Times{1});
}

TEST_F(KWChannelViewRubberBandTest, ARubberBandSelectsTheKeysThatAreSeenInsideInTheUsersUnit) {
    channel->setUnitType(KWUnitTypeAngle);
    view->setDisplayedBounds({0, 0, 10, 160});
    const auto stored = [this](float degrees) {
        return channel->convertValueFromUserUnit(degrees);
    };
    setKeys({{1, stored(10)}, {2, stored(50)}, {3, stored(90)}});
    pressAt(at(0, 40));
    move(at(10, 100));
    EXPECT_EQ(selection(), (Times{2, 3}));
    move(at(10, 60));
    EXPECT_EQ(selection(), Times{2});
}

TEST_F(KWChannelViewRubberBandTest, ARubberBandInAViewThatIsUpsideDownSelectsWhatIsSeenInside) {
    setKeys({{1, 0}, {2, 1}, {3, -1}});
    view->setDisplayedBounds({0, 3, 10, -5});
    view->grab();
    pressAt(at(0.5f, 0.5f));
    move(at(2.5f, 2));
    EXPECT_EQ(selection(), Times{2});
}

TEST_F(KWChannelViewRubberBandTest, SelectedKeysChangedIsSignalledOnlyWhenTheyReallyDo) {
    setKeys({{1, 0}, {2, 0}});
    QSignalSpy changes(view.get(), &KWChannelView::selectedKeysChanged);
    pressAt(at(0.5f, 1));
    dragBy(10, 10);
    EXPECT_EQ(changes.count(), 0);
    dragBy(32, -64);
    dragBy(33, -64);
    EXPECT_EQ(changes.count(), 1);
    release();
    EXPECT_EQ(changes.count(), 1);
    pressKey(2);
    EXPECT_EQ(changes.count(), 2);
    dragBy(0, 5);
    EXPECT_EQ(changes.count(), 2);
    dragBy(5, 5);
    EXPECT_EQ(changes.count(), 3);
}

// --- The arithmetic, without a window.

TEST(KWChannelViewRubberBand, BoundsInTheUsersUnitBecomeStoredOnes) {
    KWKeyFramedChannel channel;
    const HJRect odd{0.1f, 0.3f, 0.7f, 1.7f};
    EXPECT_EQ(KWStoredBounds(odd, channel), odd);
    EXPECT_EQ(KWStoredBounds({4, 5, -3, -2}, channel), (HJRect{1, 3, 3, 2}));
    channel.setUnitType(KWUnitTypeAngle);
    const HJRect stored = KWStoredBounds({1, 90, 2, 90}, channel);
    EXPECT_EQ(stored.x, 1.f);
    EXPECT_EQ(stored.width, 2.f);
    EXPECT_EQ(stored.y, channel.convertValueFromUserUnit(90));
    EXPECT_EQ(stored.y + stored.height, channel.convertValueFromUserUnit(180));
    KWStoredBounds({kwNaN, kwNaN, kwInfinity, kwNaN}, channel);
}
