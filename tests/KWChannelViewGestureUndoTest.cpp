#include "GestureTestSupport.h"

#include <QCoreApplication>
#include <QTest>
#include <algorithm>
#include <random>

namespace {

using Times = std::vector<float>;

class KWChannelViewGestureUndoTest : public HeardGestureTest {};
class EveryGestureUndo : public EveryGestureTest {};

} // namespace

INSTANTIATE_TEST_SUITE_P(KWChannelView, EveryGestureUndo, testing::Range(0, 5));

// --- Cancelling.

TEST_P(EveryGestureUndo, IsTakenBackByEscape) {
    setKeys({{1, 0}, {5, 1}, {9, 2}});
    const std::string keys = contentsOf(*channel);
    bracket();
    startGesture();
    view->setSnaps(true);
    for (const int step : {10, 100, -100, 40, 3})
        dragBy(step, step * 0.3);
    escape();
    EXPECT_EQ(contentsOf(*channel), keys);
    EXPECT_EQ(selection(), Times{9});
    EXPECT_EQ(view->displayedBounds(), (HJRect{0, -2, 10, 5}));
    EXPECT_FALSE(manager->canUndo());
    EXPECT_FALSE(channel->isManipulating());
    expectEnded();
}

TEST_P(EveryGestureUndo, IsTakenBackByEscapeRightAfterThePress) {
    setKeys({{1, 0}, {5, 1}, {9, 2}});
    const std::string keys = contentsOf(*channel);
    bracket();
    startGesture();
    escape();
    EXPECT_EQ(contentsOf(*channel), keys);
    EXPECT_EQ(selection(), Times{9});
    EXPECT_FALSE(manager->canUndo());
    expectEnded();
}

TEST_P(EveryGestureUndo, CancelsOnce) {
    startGesture();
    dragBy(10, 10);
    const int told = delegate.count;
    view->cancelGesture();
    view->cancelGesture();
    EXPECT_EQ(delegate.count, told);
    expectEnded();
}

TEST_F(KWChannelViewGestureUndoTest, CancellingWithoutAGestureDoesNothing) {
    setKeys({{5, 1}});
    view->setSelectedKeys({KWTime(5)});
    view->cancelGesture();
    escape();
    EXPECT_EQ(heard, "");
    EXPECT_EQ(selection(), Times{5});
}

TEST_F(KWChannelViewGestureUndoTest, CancellingPutsBackKeysThatSnappingHasOverwritten) {
    view->setXGridCount(2);
    setKeys({{1, 0}, {2.5f, 1}, {5, 1}, {5.5f, 3}, {6, 2}});
    const std::string before = contentsOf(*channel);
    bracket();
    view->setSelectedKeys({KWTime(2.5f), KWTime(5.5f), KWTime(6)});
    view->setSnaps(true);
    pressKey(6);
    dragBy(-16, 0);
    dragBy(-17, 3);
    EXPECT_EQ(times(), (Times{1, 2.5f, 5}));
    dragBy(70, 3);
    EXPECT_EQ(times(), (Times{1, 5, 7.5f}));
    EXPECT_EQ(selection(), (Times{5, 7.5f, 7.5f}));
    escape();
    EXPECT_EQ(contentsOf(*channel), before);
    EXPECT_EQ(selection(), (Times{2.5f, 5.5f, 6}));
    EXPECT_FALSE(manager->canUndo());
}

TEST_F(KWChannelViewGestureUndoTest, CancellingPutsBackAKeyThatThePressHasReplaced) {
    setKeys({{1, 0}, {5, 1}});
    const std::string before = contentsOf(*channel);
    bracket();
    view->setEditingMode(KWChannelViewModeAddKey);
    pressAt({160, 60});
    EXPECT_NE(contentsOf(*channel), before);
    dragBy(32, 0);
    escape();
    EXPECT_EQ(contentsOf(*channel), before);
    EXPECT_FALSE(manager->canUndo());
    pressAt({160, 60});
    escape();
    EXPECT_EQ(contentsOf(*channel), before);
}

TEST_F(KWChannelViewGestureUndoTest, CancellingKeepsTheSignOfAKeyAtZero) {
    setKeys({{-0.0f, 0}, {5, 1}});
    const std::string before = contentsOf(*channel);
    pressKey(0);
    view->setSelectedKeys({KWTime(0)});
    dragBy(10, 0);
    escape();
    EXPECT_EQ(contentsOf(*channel), before);
}

TEST_F(KWChannelViewGestureUndoTest, CancellingPutsBackASelectionWithTimesThatAreNoKeys) {
    setKeys({{1, 0}, {5, 1}});
    view->setSelectedKeys({KWTime(3), KWTime(1)});
    pressKey(5);
    EXPECT_EQ(selection(), Times{5});
    escape();
    EXPECT_EQ(selection(), (Times{3, 1}));
}

// --- Undo.

TEST_F(KWChannelViewGestureUndoTest, ABracketMakesADragOneStepThatUndoesBitForBit) {
    setKeys({{0.1f, 0.3f}, {5.7f, 1.1f}, {9.3f, -0.7f}});
    const std::string before = contentsOf(*channel);
    bracket();
    view->setSelectedKeys({KWTime(9.3f), KWTime(5.7f)});
    pressKey(5.7f);
    for (int k = 1; k < 20; ++k)
        dragBy(k * 0.7, k);
    release();
    const std::string after = contentsOf(*channel);
    EXPECT_NE(after, before);
    EXPECT_EQ(steps(), 1);
    manager->undo();
    EXPECT_EQ(contentsOf(*channel), before);
    manager->redo();
    EXPECT_EQ(contentsOf(*channel), after);
}

TEST_F(KWChannelViewGestureUndoTest, ABracketMakesAnAddedAndMovedKeyOneStep) {
    setKeys({{1, 0}});
    const std::string before = contentsOf(*channel);
    bracket();
    view->setEditingMode(KWChannelViewModeAddKey);
    pressAt({100, 100});
    dragBy(10, 10);
    release();
    EXPECT_EQ(channel->keyframeCount(), 2u);
    EXPECT_EQ(steps(), 1);
    manager->undo();
    EXPECT_EQ(contentsOf(*channel), before);
}

TEST_F(KWChannelViewGestureUndoTest, ABracketMakesADeletionOneStep) {
    setKeys({{1, 0}, {5, 1}, {9, 2}});
    const std::string before = contentsOf(*channel);
    bracket();
    view->setSelectedKeys({KWTime(1), KWTime(9)});
    QTest::keyClick(view.get(), Qt::Key_Delete);
    EXPECT_EQ(times(), Times{5});
    EXPECT_EQ(heard, "begin end");
    EXPECT_EQ(steps(), 1);
    manager->undo();
    EXPECT_EQ(contentsOf(*channel), before);
}

TEST_F(KWChannelViewGestureUndoTest, ABracketLeavesNoStepWhereNothingHasChanged) {
    setKeys({{1, 0}, {5, 1}});
    bracket();
    pressKey(5);
    dragBy(10, 10);
    dragBy(0, 0);
    release();
    click({100, 100});
    EXPECT_FALSE(manager->canUndo());
}

TEST_F(KWChannelViewGestureUndoTest, WithoutABracketEachRemovalAndEachSettingOfKeysIsAStep) {
    setKeys({{1, 0}, {5, 1}});
    const std::string before = contentsOf(*channel);
    pressKey(5);
    dragBy(10, 10);
    dragBy(20, 10);
    release();
    EXPECT_EQ(steps(), 4);
    while (manager->canUndo())
        manager->undo();
    EXPECT_EQ(contentsOf(*channel), before);
}

TEST_F(KWChannelViewGestureUndoTest, GestureWillBeginComesBeforeTheKeyIsMade) {
    setKeys({{1, 0}});
    view->setSelectedKeys({KWTime(1)});
    view->setEditingMode(KWChannelViewModeAddKey);
    QObject::connect(view.get(), &KWChannelView::gestureWillBegin, [this] {
        EXPECT_EQ(times(), Times{1});
        EXPECT_EQ(selection(), Times{1});
        EXPECT_TRUE(view->isGestureActive());
    });
    QObject::connect(view.get(), &KWChannelView::gestureDidEnd,
                     [this] { EXPECT_FALSE(view->isGestureActive()); });
    click({100, 100});
    EXPECT_EQ(heard, "begin end");
}

TEST_F(KWChannelViewGestureUndoTest, GestureWillBeginComesBeforeTheSelectionChanges) {
    setKeys({{1, 0}, {5, 1}});
    view->setSelectedKeys({KWTime(1)});
    QObject::connect(view.get(), &KWChannelView::gestureWillBegin,
                     [this] { EXPECT_EQ(selection(), Times{1}); });
    QObject::connect(view.get(), &KWChannelView::gestureDidEnd,
                     [this] { EXPECT_EQ(delegate.count, 1); });
    click(at(5, 1));
    delegate.count = 0;
    view->setSelectedKeys({KWTime(1)});
    click({100, 100});
    EXPECT_EQ(heard, "begin end begin end");
}

// --- Many keys.

TEST_F(KWChannelViewGestureUndoTest, ManyKeysAreRemovedWithoutMovingUpThoseThatGoAfterThem) {
    std::vector<std::pair<float, float>> keys;
    for (int k = 0; k < 200; ++k)
        keys.emplace_back(static_cast<float>(k) / 25, 1.f);
    setKeys(keys);
    const std::string before = contentsOf(*channel);
    const std::vector<KWTime> all = channel->allKeyframes();
    std::vector<KWTime> last = all;
    int removed = 0;
    std::size_t movedUp = 0;
    // Counts the keys that stand behind each that goes.
    ValidObserver observer([&] {
        const std::vector<KWTime> now = channel->allKeyframes();
        if (now.size() < last.size()) {
            const auto gone = std::mismatch(now.begin(), now.end(), last.begin());
            movedUp += static_cast<std::size_t>(now.end() - gone.first);
            ++removed;
        }
        last = now;
    });
    observer.observe(*channel);
    channel->removeValuesForKeyframes(all);
    EXPECT_EQ(movedUp, 199u * 200 / 2);
    while (manager->canUndo())
        manager->undo();
    EXPECT_TRUE(contentsOf(*channel) == before);
    movedUp = 0;
    removed = 0;
    std::vector<KWTime> shuffled = all;
    std::shuffle(shuffled.begin(), shuffled.end(), std::minstd_rand(7));
    for (const std::vector<KWTime>& chosen : {all, shuffled}) {
        view->setSelectedKeys(chosen);
        view->grab();
        last = all;
        pressKey(all[50].time());
        dragBy(8, 8);
        dragBy(16, 8);
        EXPECT_EQ(removed, 400);
        escape();
        EXPECT_EQ(removed, 600);
        EXPECT_TRUE(contentsOf(*channel) == before);
        manager->removeAllActions();
        last = all;
        view->setSelectedKeys(chosen);
        QTest::keyClick(view.get(), Qt::Key_Delete);
        EXPECT_EQ(removed, 800);
        EXPECT_EQ(movedUp, 0u);
        while (manager->canUndo())
            manager->undo();
        EXPECT_TRUE(contentsOf(*channel) == before);
        removed = 0;
        movedUp = 0;
    }
}

TEST_F(KWChannelViewGestureUndoTest, ManyRemovedKeysAreToldOfAsOftenAsTheyAre) {
    setKeys({{1, 0}, {5, 1}, {9, 2}});
    NoticeCounter notices(channel.get());
    ValidObserver observer;
    observer.observe(*channel);
    view->setSelectedKeys({KWTime(5), KWTime(kwNaN), KWTime(9), KWTime(3), KWTime(5)});
    QTest::keyClick(view.get(), Qt::Key_Delete);
    EXPECT_EQ(times(), Times{1});
    EXPECT_EQ(notices.count, 0);
    EXPECT_EQ(observer.seen, "NN NN ");
}

// --- Changes from outside.

TEST_F(KWChannelViewGestureUndoTest, AKeySetFromOutsideEndsTheGestureWithoutAnotherWrite) {
    dragKey();
    set(3, 2);
    QCoreApplication::processEvents();
    expectEndedWith({1, 2, 6, 9});
}

TEST_F(KWChannelViewGestureUndoTest, TheNextEventAfterAKeyWasSetFromOutsideWritesNothing) {
    dragKey();
    set(3, 2);
    dragBy(64, 0);
    expectEndedWith({1, 2, 6, 9});
}

TEST_F(KWChannelViewGestureUndoTest, CancellingAfterAKeyWasSetFromOutsideWritesNothing) {
    dragKey();
    set(3, 2);
    escape();
    EXPECT_EQ(selection(), Times{6});
    expectEndedWith({1, 2, 6, 9});
}

TEST_F(KWChannelViewGestureUndoTest, ANoticeWithoutAChangedKeyEndsNoGesture) {
    dragKey();
    channel->didChange();
    QCoreApplication::processEvents();
    EXPECT_TRUE(view->isGestureActive());
    dragBy(64, 0);
    EXPECT_EQ(times(), (Times{1, 7, 9}));
    channel->didChange();
    set(3, 2);
    channel->didChange();
    QCoreApplication::processEvents();
    expectEndedWith({1, 2, 7, 9});
}

TEST_F(KWChannelViewGestureUndoTest, TheMovedKeySetFromOutsideEndsTheGesture) {
    dragKey();
    set(3, 6);
    EXPECT_EQ(valueAt(6), 3.f);
    QCoreApplication::processEvents();
    expectEndedWith({1, 6, 9});
}

TEST_F(KWChannelViewGestureUndoTest, AKeyRemovedFromOutsideEndsTheGesture) {
    dragKey();
    channel->removeValueForKeyframe(KWTime(6));
    expectEndedWith({1, 9});
}

TEST_F(KWChannelViewGestureUndoTest, RemovingAllKeysWhichIsSilentEndsTheGestureWithTheNextEvent) {
    dragKey();
    channel->removeAllKeyframes();
    EXPECT_TRUE(view->isGestureActive());
    dragBy(40, 0);
    expectEndedWith({});
}

TEST_F(KWChannelViewGestureUndoTest, CancellingAfterASilentChangeFromOutsideWritesNothing) {
    dragKey();
    channel->removeAllKeyframes();
    escape();
    expectEndedWith({});
}

TEST_F(KWChannelViewGestureUndoTest, AnotherShapeFromOutsideEndsTheGesture) {
    dragKey();
    const HJHermiteParam shape{1, 0, 0, {}};
    channel->modifyHermiteParamForKeyframe(&shape, KWTime(1));
    expectEndedWith({1, 6, 9});
}

TEST_F(KWChannelViewGestureUndoTest, AnUndoInTheMiddleEndsTheGesture) {
    setKeys({{1, 0}, {5, 1}, {9, 2}});
    set(7, 9);
    pressKey(5);
    bracket();
    manager->undo();
    EXPECT_EQ(valueAt(9), 2.f);
    QCoreApplication::processEvents();
    expectEndedWith({1, 5, 9});
}

TEST_F(KWChannelViewGestureUndoTest, AChangeFromOutsideEndsARubberBandAndNoPan) {
    setKeys({{1, 0}, {5, 1}});
    pressAt({100, 100});
    set(3, 2);
    QCoreApplication::processEvents();
    EXPECT_FALSE(view->isGestureActive());
    EXPECT_FALSE(view->isSelecting());
    EXPECT_EQ(delegate.count, 1);
    view->setEditingMode(KWChannelViewModePan);
    pressAt({100, 100});
    set(4, 2);
    QCoreApplication::processEvents();
    dragBy(32, 0);
    EXPECT_EQ(view->displayedBounds().x, -1.f);
    release();
}

TEST_F(KWChannelViewGestureUndoTest, OurOwnWritesAndInvalidationsAreNoChangesFromOutside) {
    setKeys({{1, 0}, {5, 1}, {9, 2}});
    NoticeCounter notices(channel.get(), [this] {
        channel->updateForTime(KWTime(2));
        channel->invalidate();
    });
    ValidObserver observer;
    observer.observe(*channel);
    view->setSelectedKeys({KWTime(1), KWTime(5), KWTime(1)});
    view->setSnaps(true);
    pressKey(5);
    for (int k = 1; k < 30; ++k) {
        dragBy(k * 4, k * 2);
        channel->invalidate();
        ASSERT_TRUE(view->isGestureActive()) << k;
    }
    release();
    EXPECT_GT(notices.count, 0);
    EXPECT_EQ(heard, "begin end");
}

TEST_F(KWChannelViewGestureUndoTest, AnObserverThatEditsInTheMiddleOfAWriteEndsTheGesture) {
    setKeys({{1, 0}, {5, 1}, {9, 2}});
    int count = 0;
    NoticeCounter notices(channel.get(), [&] {
        if (++count == 1)
            set(7, 3);
    });
    pressKey(5);
    dragBy(32, 0);
    EXPECT_EQ(selection(), Times{6});
    expectEndedWith({1, 3, 6, 9});
}

TEST_F(KWChannelViewGestureUndoTest, AnObserverThatEditsAsAKeyIsMadeEndsTheGesture) {
    setKeys({{1, 0}});
    view->setEditingMode(KWChannelViewModeAddKey);
    int count = 0;
    NoticeCounter notices(channel.get(), [&] {
        if (++count == 1)
            set(7, 3);
    });
    pressAt({160, 100});
    EXPECT_EQ(selection(), Times{5});
    expectEndedWith({1, 3, 5});
}
