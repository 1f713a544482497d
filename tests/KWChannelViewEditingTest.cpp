#include "GestureTestSupport.h"

#include <KWBase/KWAlgebricChannel.h>
#include <KWBase/KWConstantChannel.h>
#include <KWBase/KWUnitController.h>

#include <QTest>
#include <QWindow>
#include <cmath>
#include <limits>

namespace {

using Times = std::vector<float>;

class KWChannelViewEditingTest : public GestureTest {};

} // namespace

// --- Mode 0.

TEST_F(KWChannelViewEditingTest,
       AClickOnAnUnselectedKeySelectsItAloneTellsTheDelegateAndChangesNothingInTheChannel) {
    setKeys({{1, 0}, {5, 1}, {9, 2}});
    view->setSelectedKeys({KWTime(1), KWTime(9)});
    const std::string before = contentsOf(*channel);
    const std::uint64_t edits = channel->editCount();
    QSignalSpy changes(view.get(), &KWChannelView::selectedKeysChanged);
    pressKey(5);
    EXPECT_EQ(selection(), Times{5});
    EXPECT_EQ(delegate.count, 1);
    EXPECT_EQ(delegate.name, "KWChannelKeySelectionChangedNotification");
    EXPECT_EQ(delegate.object, view.get());
    release();
    EXPECT_EQ(delegate.count, 1);
    EXPECT_EQ(changes.count(), 1);
    EXPECT_EQ(contentsOf(*channel), before);
    EXPECT_EQ(channel->editCount(), edits);
    EXPECT_FALSE(manager->canUndo());
}

TEST_F(KWChannelViewEditingTest, AClickOnEmptySpaceClearsTheSelectionAndTellsTheDelegateOnRelease) {
    setKeys({{1, 0}, {5, 1}});
    view->setSelectedKeys({KWTime(1)});
    pressAt({100, 100});
    EXPECT_TRUE(view->isSelecting());
    EXPECT_EQ(selection(), Times{});
    EXPECT_EQ(delegate.count, 0);
    release();
    EXPECT_FALSE(view->isSelecting());
    EXPECT_EQ(selection(), Times{});
    EXPECT_EQ(delegate.count, 1);
}

TEST_F(KWChannelViewEditingTest, WithTheShiftKeyAClickOnEmptySpaceKeepsTheSelection) {
    setKeys({{1, 0}, {5, 1}});
    view->setSelectedKeys({KWTime(5), KWTime(1)});
    QSignalSpy changes(view.get(), &KWChannelView::selectedKeysChanged);
    click({100, 100}, Qt::ShiftModifier);
    EXPECT_EQ(selection(), (Times{5, 1}));
    EXPECT_EQ(delegate.count, 1);
    EXPECT_EQ(changes.count(), 0);
}

TEST_F(KWChannelViewEditingTest, WithTheShiftKeyAPressAddsAKeyToTheSelection) {
    setKeys({{1, 0}, {5, 1}, {9, 2}});
    view->setSelectedKeys({KWTime(9)});
    pressKey(1, Qt::ShiftModifier);
    EXPECT_EQ(selection(), (Times{9, 1}));
    EXPECT_EQ(delegate.count, 1);
    release();
    pressKey(9, Qt::ShiftModifier);
    EXPECT_EQ(selection(), (Times{9, 1}));
    EXPECT_EQ(delegate.count, 1);
}

TEST_F(KWChannelViewEditingTest, APressOnASelectedKeyKeepsTheSelectionAndDoesNotTellTheDelegate) {
    setKeys({{1, 0}, {5, 1}, {9, 2}});
    view->setSelectedKeys({KWTime(9), KWTime(1)});
    pressKey(1);
    dragBy(32, 0);
    EXPECT_EQ(selection(), (Times{10, 2}));
    release();
    EXPECT_EQ(delegate.count, 0);
}

TEST_F(KWChannelViewEditingTest, ADragMovesTheKeysWithTheirShapes) {
    setKeys({{1, 0}, {5, 1}, {9, 2}});
    const auto shape = channel->hermiteValueForKeyframe(KWTime(5));
    pressKey(5);
    dragBy(16, 32);
    EXPECT_EQ(times(), (Times{1, 5.5f, 9}));
    EXPECT_EQ(valueAt(5.5f), 2.f);
    EXPECT_EQ(selection(), Times{5.5f});
    dragBy(-16.5, -8.25);
    EXPECT_EQ(times(), (Times{1, 4.484375f, 9}));
    EXPECT_EQ(valueAt(4.484375f), 0.7421875f);
    EXPECT_EQ(channel->hermiteValueForKeyframe(KWTime(4.484375f)), shape);
    release();
    EXPECT_EQ(selection(), Times{4.484375f});
    EXPECT_EQ(delegate.count, 1);
}

TEST_F(KWChannelViewEditingTest, ADragBackToTheStartRestoresTheKeysExactly) {
    setKeys({{0.1f, 0.3f}, {5.7f, 1.1f}, {9.3f, -0.7f}});
    const std::string before = contentsOf(*channel);
    view->setSelectedKeys({KWTime(5.7f), KWTime(0.1f)});
    pressKey(5.7f);
    for (int k = 1; k < 40; ++k)
        dragBy(k * 0.7, k * -0.3);
    EXPECT_NE(contentsOf(*channel), before);
    dragBy(0, 0);
    EXPECT_EQ(contentsOf(*channel), before);
    EXPECT_EQ(selection(), (Times{5.7f, 0.1f}));
}

TEST_F(KWChannelViewEditingTest, ADragPastANeighbourStopsOnePointBeforeIt) {
    setKeys({{1, 0}, {5, 1}, {9, 2}});
    pressKey(5);
    dragBy(300, 0);
    EXPECT_EQ(times(), (Times{1, 9 - 1 / 32.f, 9}));
    dragBy(-300, 0);
    EXPECT_EQ(times(), (Times{1, 1 + 1 / 32.f, 9}));
    EXPECT_EQ(valueAt(1), 0.f);
}

TEST_F(KWChannelViewEditingTest, KeysMoveTogetherAsFarAsTheFirstThatIsInTheWay) {
    setKeys({{1, 0}, {2, 0}, {4, 0}, {7, 0}});
    view->setSelectedKeys({KWTime(1), KWTime(4)});
    pressKey(4);
    dragBy(300, 0);
    EXPECT_EQ(times(), (Times{2 - 1 / 32.f, 2, 5 - 1 / 32.f, 7}));
    EXPECT_EQ(selection(), (Times{2 - 1 / 32.f, 5 - 1 / 32.f}));
}

TEST_F(KWChannelViewEditingTest, WithoutNeighboursKeysMoveAsFarAsTheMouse) {
    setKeys({{5, 1}});
    pressKey(5);
    dragBy(-3200, 0);
    EXPECT_EQ(times(), Times{-95});
    dragBy(3200, 0);
    EXPECT_EQ(times(), Times{105});
}

TEST_F(KWChannelViewEditingTest, KeysWithoutRoomToTheLeftDoNotMoveLeft) {
    setKeys({{5 - 1 / 32.f, 0}, {5, 1}, {9, 2}});
    pressKey(5);
    dragBy(-10, 32);
    EXPECT_EQ(times(), (Times{5 - 1 / 32.f, 5, 9}));
    EXPECT_EQ(valueAt(5), 2.f);
    dragBy(10, 0);
    EXPECT_EQ(times(), (Times{5 - 1 / 32.f, 5.3125f, 9}));
}

TEST_F(KWChannelViewEditingTest, WithSnappingATinyDragJumpsToTheNearestHalfStepOfTimeAndValue) {
    // Steps of 0.2 of both, and so jumps of 0.1.
    view->setYGridCount(26);
    setKeys({{1, 0}, {5.03f, 1.17f}, {9, 2}});
    view->setSnaps(true);
    pressKey(5.03f);
    EXPECT_EQ(times(), (Times{1, 5.03f, 9}));
    dragBy(0.25, 0);
    const float half = 0.5f * findStep(0, 10, 3, 42);
    EXPECT_EQ(times(), (Times{1, half * 50, 9}));
    EXPECT_EQ(bitsOf(valueAt(half * 50)), bitsOf(0.5f * findStep(-2, 3, 3, 26) * 12));
}

TEST_F(KWChannelViewEditingTest, TheLatticeIsThatOfTheStartOfTheDrag) {
    setKeys({{5.03f, 1}});
    view->setSnaps(true);
    pressKey(5.03f);
    view->setXGridCount(2);
    view->setYGridCount(2);
    dragBy(8, 0);
    EXPECT_EQ(times(), Times{0.5f * findStep(0, 10, 3, 42) * 53});
}

TEST_F(KWChannelViewEditingTest, SnappingMayBeSwitchedInTheMiddleOfADrag) {
    setKeys({{5.03f, 1}});
    pressKey(5.03f);
    dragBy(0.25, 0);
    EXPECT_EQ(times(), Times{5.03f + 0.0078125f});
    view->setSnaps(true);
    dragBy(0.5, 0);
    EXPECT_EQ(times(), Times{0.5f * findStep(0, 10, 3, 42) * 50});
}

TEST_F(KWChannelViewEditingTest, SnappingMayTakeAKeyOntoItsNeighbourWhichItOverwrites) {
    view->setXGridCount(2); // jumps of 2.5 seconds
    setKeys({{1, 0}, {5, 1}, {6, 2}});
    view->setSnaps(true);
    pressKey(6);
    dragBy(-16, 0);
    EXPECT_EQ(times(), (Times{1, 5}));
    EXPECT_EQ(valueAt(5), 2.f);
    release();
    EXPECT_EQ(times(), (Times{1, 5}));
}

TEST_F(KWChannelViewEditingTest, ValuesAreMovedInTheUsersUnit) {
    channel->setUnitType(KWUnitTypeAngle);
    view->setDisplayedBounds({0, 0, 10, 160}); // a degree a point
    setKeys({{5, channel->convertValueFromUserUnit(45)}});
    pressKey(5);
    EXPECT_EQ(selection(), Times{5});
    dragBy(0, 30);
    const float shown = channel->convertValueToUserUnit(channel->convertValueFromUserUnit(45)) + 30;
    EXPECT_EQ(bitsOf(valueAt(5)), bitsOf(channel->convertValueFromUserUnit(shown)));
}

TEST_F(KWChannelViewEditingTest, AMoveToWhereTheMouseIsAlreadyChangesNothing) {
    setKeys({{5.03f, 1}});
    view->setSnaps(true);
    const std::uint64_t edits = channel->editCount();
    pressKey(5.03f);
    move(where);
    EXPECT_EQ(channel->editCount(), edits);
}

TEST_F(KWChannelViewEditingTest, TimesThatAreNoKeysAnyMoreLeaveTheSelectionBeforeAMove) {
    setKeys({{1, 0}, {5, 1}, {9, 2}});
    view->setSelectedKeys({KWTime(3), KWTime(1), KWTime(kwNaN), KWTime(5)});
    pressKey(1);
    EXPECT_EQ(selection(), (Times{1, 5}));
    dragBy(32, 0);
    EXPECT_EQ(times(), (Times{2, 6, 9}));
    EXPECT_EQ(selection(), (Times{2, 6}));
}

TEST_F(KWChannelViewEditingTest, TimesThatAreNoKeysAnyMoreAreNotAddedToAgain) {
    setKeys({{1, 0}, {5, 1}});
    view->setSelectedKeys({KWTime(3), KWTime(1)});
    pressKey(5, Qt::ShiftModifier);
    EXPECT_EQ(selection(), (Times{1, 5}));
    release();
    view->setSelectedKeys({KWTime(3), KWTime(1)});
    click({100, 100}, Qt::ShiftModifier);
    EXPECT_EQ(selection(), Times{1});
}

TEST_F(KWChannelViewEditingTest, AHandleLeftFromADrawingThatIsOutOfDateIsNoKey) {
    setKeys({{1, 0}, {5, 1}});
    const QPointF old = at(5, 1);
    channel->removeValueForKeyframe(KWTime(5));
    pressAt(old);
    EXPECT_TRUE(view->isSelecting());
    EXPECT_EQ(selection(), Times{});
}

TEST_F(KWChannelViewEditingTest, AHandleWithoutAKeyframedChannelIsNotPressed) {
    setKeys({{5, 1}});
    view->setPrimaryChannel(std::make_shared<KWConstantChannel>());
    QSignalSpy begins(view.get(), &KWChannelView::gestureWillBegin);
    pressAt(at(5, 1));
    EXPECT_FALSE(view->isSelecting());
    EXPECT_FALSE(view->isGestureActive());
    EXPECT_EQ(begins.count(), 0);
    EXPECT_EQ(selection(), Times{});
}

TEST_F(KWChannelViewEditingTest, TheHandleUnderAPointIsTheFirstInOrderOfTime) {
    setKeys({{4.95f, 1}, {5, 1}, {5.05f, 1}});
    const QPointF point(160, 96);
    EXPECT_EQ(view->findKeyCellForMouseLocation(point)->time(), 4.95f);
    EXPECT_EQ(view->findKeyCellForMouseLocation(point + QPointF(3, 0))->time(), 5.f);
    EXPECT_FALSE(view->findKeyCellForMouseLocation({100, 100}));
}

TEST_F(KWChannelViewEditingTest, TheLeftAndTheUpperEdgeBelongToAHandle) {
    setKeys({{5, 1}});
    const QRectF frame = view->keyCells().front().controlPointFrame();
    const double inside = frame.center().x();
    const double within = frame.center().y();
    EXPECT_TRUE(view->findKeyCellForMouseLocation({frame.left(), within}));
    EXPECT_FALSE(view->findKeyCellForMouseLocation({frame.left() + 7, within}));
    EXPECT_TRUE(view->findKeyCellForMouseLocation({frame.left() + 6.75, within}));
    EXPECT_FALSE(view->findKeyCellForMouseLocation({inside, frame.top()}));
    EXPECT_TRUE(view->findKeyCellForMouseLocation({inside, frame.top() + 0.25}));
    EXPECT_TRUE(view->findKeyCellForMouseLocation({inside, frame.top() + 7}));
    EXPECT_FALSE(view->findKeyCellForMouseLocation({inside, frame.top() + 7.25}));
}

// --- The coordinates of the point.

TEST_F(KWChannelViewEditingTest, TransientCoordinatesFollowTheFirstKeyWhileItIsMoved) {
    view->setShowsTransientPointCoordinates(true);
    setKeys({{1, 0}, {5, 1}, {9, 2}});
    view->setSelectedKeys({KWTime(5), KWTime(1)});
    pressKey(1);
    EXPECT_TRUE(view->showsPointCoordinates());
    EXPECT_EQ(view->pointTime(), 5.f);
    EXPECT_EQ(view->pointValue(), 1.f);
    dragBy(32, 16);
    EXPECT_EQ(view->pointTime(), 6.f);
    EXPECT_EQ(view->pointValue(), 1.5f);
    release();
    EXPECT_FALSE(view->showsPointCoordinates());
}

TEST_F(KWChannelViewEditingTest, AMoveHidesTheCoordinatesWhateverTheyWere) {
    view->setShowsPointCoordinates(true);
    setKeys({{5, 1}});
    pressKey(5);
    EXPECT_FALSE(view->showsPointCoordinates());
    view->setShowsPointCoordinates(true);
    release();
    EXPECT_FALSE(view->showsPointCoordinates());
}

TEST_F(KWChannelViewEditingTest, ARubberBandLeavesTheCoordinatesAlone) {
    view->setShowsPointCoordinates(true);
    view->setPointTimeValue(3, 4);
    setKeys({{5, 1}});
    pressAt({1, 1});
    dragBy(318, -158);
    release();
    EXPECT_EQ(selection(), Times{5});
    EXPECT_TRUE(view->showsPointCoordinates());
    EXPECT_EQ(view->pointTime(), 3.f);
}

// --- Mode 1.

TEST_F(KWChannelViewEditingTest, AClickAddsAKeyAtTheExactPositionAndLeavesItSelectedAlone) {
    view->setEditingMode(KWChannelViewModeAddKey);
    view->setSnaps(true);
    setKeys({{1, 0}});
    view->setSelectedKeys({KWTime(1)});
    QSignalSpy changes(view.get(), &KWChannelView::selectedKeysChanged);
    click({100.25, 40.5});
    EXPECT_EQ(times(), (Times{1, 100.25f / 32}));
    EXPECT_EQ(valueAt(100.25f / 32), -2 + 119.5f / 32);
    EXPECT_EQ(channel->hermiteValueForKeyframe(KWTime(100.25f / 32)),
              KWKeyFramedChannel::hermiteData());
    EXPECT_EQ(selection(), Times{100.25f / 32});
    EXPECT_EQ(changes.count(), 1);
    EXPECT_EQ(delegate.count, 0);
}

TEST_F(KWChannelViewEditingTest, ADragAfterThatMovesTheNewKey) {
    view->setEditingMode(KWChannelViewModeAddKey);
    setKeys({{1, 0}, {5, 0}});
    pressAt({96, 96});
    EXPECT_EQ(times(), (Times{1, 3, 5}));
    dragBy(16, 32);
    EXPECT_EQ(times(), (Times{1, 3.5f, 5}));
    EXPECT_EQ(valueAt(3.5f), 1.f);
    dragBy(160, 0);
    EXPECT_EQ(times(), (Times{1, 5 - 1 / 32.f, 5}));
    view->setSnaps(true);
    dragBy(1, 0);
    EXPECT_EQ(times(), (Times{1, 0.5f * findStep(0, 10, 3, 42) * 30, 5}));
    release();
}

TEST_F(KWChannelViewEditingTest, ANewKeysValueIsConvertedFromTheUsersUnit) {
    channel->setUnitType(KWUnitTypeAngle);
    view->setDisplayedBounds({0, 0, 10, 160});
    view->setEditingMode(KWChannelViewModeAddKey);
    click({160, 70});
    EXPECT_EQ(bitsOf(valueAt(5)), bitsOf(channel->convertValueFromUserUnit(90)));
}

TEST_F(KWChannelViewEditingTest, AKeyAddedWhereThereIsOneReplacesIt) {
    view->setEditingMode(KWChannelViewModeAddKey);
    setKeys({{5, 1}});
    click({160, 96});
    EXPECT_EQ(times(), Times{5});
    EXPECT_EQ(valueAt(5), 0.f);
    EXPECT_EQ(channel->hermiteValueForKeyframe(KWTime(5)), KWKeyFramedChannel::hermiteData());
}

TEST_F(KWChannelViewEditingTest, TheTimeOfANewKeyIsAnsweredAlsoWhenNoneCanBeMade) {
    EXPECT_EQ(view->createKeyForMouseLocation({96, 64}).time(), 3.f);
    EXPECT_EQ(times(), Times{3});
    EXPECT_EQ(valueAt(3), 0.f);
    view->setPrimaryChannel(nullptr);
    EXPECT_EQ(view->createKeyForMouseLocation({160, 64}).time(), 5.f);
    EXPECT_EQ(times(), Times{3});
}

// --- Other channels.

TEST_F(KWChannelViewEditingTest, WithAConstantOrAlgebricChannelOnlyTheRubberBandRuns) {
    auto algebric = std::make_shared<KWAlgebricChannel>();
    algebric->setExpression("x");
    for (const std::shared_ptr<KWChannel>& other :
         {std::shared_ptr<KWChannel>(std::make_shared<KWConstantChannel>()),
          std::shared_ptr<KWChannel>(algebric), std::shared_ptr<KWChannel>()}) {
        view->setPrimaryChannel(other);
        view->grab();
        const float value = other ? other->valueForTime(KWTime(5)) : 0;
        delegate.count = 0;
        pressAt({160, 96});
        EXPECT_TRUE(view->isSelecting());
        dragBy(50, 20);
        EXPECT_EQ(view->selectionRect(), QRectF(160, 64, 50, 20));
        release();
        EXPECT_EQ(selection(), Times{});
        EXPECT_EQ(delegate.count, 1);
        view->setEditingMode(KWChannelViewModeAddKey);
        pressAt({160, 96});
        dragBy(50, 20);
        release();
        EXPECT_EQ(other ? other->valueForTime(KWTime(5)) : 0, value);
        // The time is selected although there is no key, until it is to be used.
        EXPECT_EQ(selection(), Times{5});
        view->setEditingMode(KWChannelViewModeSelect);
        click({10, 10}, Qt::ShiftModifier);
        EXPECT_EQ(selection(), Times{});
        view->setSelectedKeys({KWTime(1)});
        key(Qt::Key_Delete, QStringLiteral("\x7f"));
        EXPECT_EQ(selection(), Times{1});
        view->deleteKeyForTime(KWTime(1));
    }
}

// --- Mode 2.

TEST_F(KWChannelViewEditingTest, ADragPansTheContentWithTheMouse) {
    view->setEditingMode(KWChannelViewModePan);
    setKeys({{5, 1}});
    pressAt({100, 100});
    EXPECT_EQ(view->anchor(), (KWDisplayedRange{0, 10, -2, 3}));
    dragBy(32, 16);
    EXPECT_EQ(view->displayedBounds(), (HJRect{-1, -2.5f, 10, 5}));
    dragBy(-64, 0);
    EXPECT_EQ(view->displayedBounds(), (HJRect{2, -2, 10, 5}));
    release();
    EXPECT_EQ(view->displayedBounds(), (HJRect{2, -2, 10, 5}));
    EXPECT_EQ(times(), Times{5});
    EXPECT_EQ(delegate.count, 0);
}

TEST_F(KWChannelViewEditingTest, WithTheShiftKeyADragZoomsAroundThePress) {
    view->setEditingMode(KWChannelViewModePan);
    pressAt(at(5, 0), Qt::ShiftModifier);
    dragBy(100, 0);
    EXPECT_EQ(view->displayedBounds(), (HJRect{2.5f, -2, 5, 5}));
    dragBy(0, 100);
    EXPECT_EQ(view->displayedBounds(), (HJRect{0, -1, 10, 2.5f}));
    dragBy(-200, 0);
    EXPECT_EQ(view->displayedBounds(), (HJRect{-495, -2, 1000, 5}));
    held = Qt::NoModifier;
    dragBy(100, 100);
    EXPECT_EQ(view->displayedBounds(), (HJRect{2.5f, -1, 5, 2.5f}));
}

TEST_F(KWChannelViewEditingTest, ZoomingInAgainAndAgainLeavesASpanFromWhichZoomingOutLeads) {
    view->setEditingMode(KWChannelViewModePan);
    for (int k = 0; k < 60; ++k) {
        pressAt(at(k % 2 ? 7 : 3, 1), Qt::ShiftModifier);
        dragBy(300, 300);
        release();
        view->grab();
        const HJRect bounds = view->displayedBounds();
        ASSERT_GT(bounds.width, 0.f) << k;
        ASSERT_GT(bounds.height, 0.f) << k;
    }
    for (int k = 0; k < 6; ++k) {
        pressAt({160, 80}, Qt::ShiftModifier);
        dragBy(-200, -200);
        release();
        view->grab();
    }
    EXPECT_GT(view->displayedBounds().width, 10.f);
    EXPECT_GT(view->displayedBounds().height, 5.f);
}

TEST_F(KWChannelViewEditingTest, AnAxisThatWouldLoseItsSpanStaysAsItIs) {
    constexpr float largest = std::numeric_limits<float>::max();
    const float above = std::nextafter(16777216.f, largest);
    view->setEditingMode(KWChannelViewModePan);
    view->setDisplayedBounds({16777216, -2, above - 16777216, 5});
    view->grab();
    pressAt({0, 96}, Qt::ShiftModifier);
    dragBy(300, 100);
    EXPECT_EQ(view->displayedBounds(), (HJRect{16777216, -1, above - 16777216, 2.5f}));
    release();
    view->setDisplayedBounds({0, -largest / 2, 10, largest});
    view->grab();
    pressAt({64, 80}, Qt::ShiftModifier);
    dragBy(100, -99);
    EXPECT_EQ(view->displayedBounds(), (HJRect{1, -largest / 2, 5, largest}));
}

TEST_F(KWChannelViewEditingTest, EveryPressSetsTheAnchor) {
    for (const std::int32_t mode : {0, 1, 2, 3, -1}) {
        view->setEditingMode(mode);
        view->setDisplayedBounds({static_cast<float>(mode), -2, 10, 5});
        click({100, 100});
        EXPECT_EQ(view->anchor().hMin, static_cast<float>(mode));
    }
}

TEST_F(KWChannelViewEditingTest, InAnyOtherModeAPressDoesNothing) {
    setKeys({{5, 1}});
    for (const std::int32_t mode : {3, -1, 1000}) {
        view->setEditingMode(mode);
        pressKey(5);
        EXPECT_FALSE(wasAccepted);
        EXPECT_FALSE(view->isGestureActive());
        dragBy(32, 0);
        release();
        EXPECT_EQ(times(), Times{5});
        EXPECT_EQ(selection(), Times{});
    }
    EXPECT_EQ(delegate.count, 0);
}

// --- Cursors.

TEST_F(KWChannelViewEditingTest, EachModeHasItsCursor) {
    QWidget parent;
    parent.setCursor(Qt::WaitCursor);
    view->setParent(&parent);
    EXPECT_EQ(view->cursor().shape(), Qt::ArrowCursor);
    view->setEditingMode(KWChannelViewModeAddKey);
    EXPECT_EQ(view->cursor().shape(), Qt::BitmapCursor);
    EXPECT_EQ(view->cursor().hotSpot(), QPoint(1, 1));
    view->setEditingMode(KWChannelViewModePan);
    EXPECT_EQ(view->cursor().shape(), Qt::BitmapCursor);
    EXPECT_EQ(view->cursor().hotSpot(), QPoint(8, 8));
    view->setEditingMode(7);
    EXPECT_EQ(view->cursor().shape(), Qt::WaitCursor);
    view->awakeFromNib();
    EXPECT_EQ(view->cursor().shape(), Qt::ArrowCursor);
    view->setCursor(Qt::WaitCursor);
    view->resetCursorRects();
    EXPECT_EQ(view->cursor().shape(), Qt::ArrowCursor);
    view->setParent(nullptr);
}

// --- Real events, through a window.

TEST_F(KWChannelViewEditingTest, AnEventThatComesThroughTheWindowDoesTheSame) {
    setKeys({{1, 0}, {5, 1}, {9, 2}});
    view->show();
    view->activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(view.get()));
    view->grab();
    QWindow* const window = view->windowHandle();
    const QPoint start = at(5, 1).toPoint();
    QTest::mousePress(window, Qt::LeftButton, Qt::NoModifier, start);
    EXPECT_EQ(selection(), Times{5});
    QTest::mouseMove(window, start + QPoint(16, 0));
    EXPECT_EQ(times(), (Times{1, 5.5f, 9}));
    // Outside of the window the view keeps the mouse.
    QTest::mouseMove(window, start + QPoint(32, -2000));
    EXPECT_EQ(times(), (Times{1, 6, 9}));
    EXPECT_EQ(valueAt(6), 1 + 2000 / 32.f);
    QTest::mouseRelease(window, Qt::LeftButton, Qt::NoModifier, start + QPoint(32, -2000));
    EXPECT_FALSE(view->isGestureActive());
    QTest::keyClick(window, Qt::Key_Delete);
    EXPECT_EQ(times(), (Times{1, 9}));
}
