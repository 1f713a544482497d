#include "ViewTestSupport.h"

#include <KWBase/KWLayoutView.h>

#include <gtest/gtest.h>

#include <QApplication>
#include <QLabel>
#include <QLineEdit>
#include <QPointer>
#include <QResizeEvent>
#include <QScreen>
#include <QSignalSpy>
#include <QTest>
#include <QVBoxLayout>
#include <functional>
#include <memory>
#include <stdexcept>
#include <utility>
#include <vector>

namespace {

/// Does something when its size changes, once.
class Meddler : public QWidget {
  public:
    std::function<void()> also;

  protected:
    void resizeEvent(QResizeEvent*) override {
        if (const auto once = std::exchange(also, nullptr))
            once();
    }
};

/// Does something when it has another parent, once.
class Newcomer : public QWidget {
  public:
    std::function<void()> also;

  protected:
    bool event(QEvent* event) override {
        const bool handled = QWidget::event(event);
        if (event->type() == QEvent::ParentChange)
            if (const auto once = std::exchange(also, nullptr))
                once();
        return handled;
    }
};

/// Says when it has come into another window.
class WindowWatcher : public QWidget {
  public:
    int windowChanges = 0;

  protected:
    bool event(QEvent* event) override {
        windowChanges += event->type() == QEvent::WindowChangeInternal;
        return QWidget::event(event);
    }
};

/// A layout view with a column whose panes are as wide as the view.
class HeldViewsTest : public testing::Test {
  protected:
    HeldViewsTest() : view(std::make_unique<KWLayoutView>(QRect(0, 0, 200, 100))) {
        view->addColumnWithWidthPercent(1, true);
    }
    template <class View = QWidget>
    View* addPane() {
        auto* const added = new View;
        add(added);
        return added;
    }
    void add(QWidget* added) { view->addPaneHeightPercentColumn(added, 1, true, 0); }
    KWLayoutPane& pane(std::size_t index) { return *view->columns()->front()->panes()->at(index); }

    std::unique_ptr<KWLayoutView> view;
};

} // namespace

// --- Limits.

TEST_F(HeldViewsTest, LimitsAreLiftedInAPaneAndGivenBackToAViewThatIsTakenAway) {
    auto* const child = addPane();
    child->setMinimumSize(400, 300);
    child->setMaximumSize(500, 350);
    view->finishedAddingPanes();
    EXPECT_EQ(child->geometry(), QRect(0, 0, 200, 100));
    EXPECT_EQ(child->minimumSize(), QSize(0, 0));
    EXPECT_EQ(child->maximumSize(), QSize(QWIDGETSIZE_MAX, QWIDGETSIZE_MAX));
    view->setVisibleColumn(false, 0);
    EXPECT_EQ(child->minimumSize(), QSize(0, 0));

    const std::unique_ptr<QWidget> taken(child);
    child->setParent(nullptr);
    EXPECT_EQ(child->minimumSize(), QSize(400, 300));
    EXPECT_EQ(child->maximumSize(), QSize(500, 350));
    EXPECT_EQ(child->size(), QSize(400, 300));
    EXPECT_EQ(pane(0).view(), nullptr);
    view->setVisibleColumn(true, 0);
    EXPECT_EQ(child->parentWidget(), nullptr);
}

TEST_F(HeldViewsTest, LimitsAreGivenBackToAViewThatIsPutElsewhere) {
    auto* const child = addPane();
    child->setFixedSize(40, 30);
    view->finishedAddingPanes();
    QWidget elsewhere;
    child->setParent(&elsewhere);
    EXPECT_EQ(child->minimumSize(), QSize(40, 30));
    EXPECT_EQ(child->maximumSize(), QSize(40, 30));
    view->resize(300, 200);
    view->updateSubviewSizes();
    EXPECT_EQ(child->size(), QSize(40, 30));
    EXPECT_EQ(child->parentWidget(), &elsewhere);
}

TEST_F(HeldViewsTest, LimitsAreGivenBackWithTheNextLayoutToAViewThatIsTakenOutOfTheRecords) {
    auto* const first = addPane();
    auto* const second = addPane();
    first->setMinimumWidth(400);
    second->setMaximumHeight(9);
    view->finishedAddingPanes();
    pane(0).removeObjectForKey(KWPaneViewKey);
    view->columns()->front()->panes()->pop_back();
    view->updateSubviewSizes();
    EXPECT_EQ(first->minimumWidth(), 400);
    EXPECT_EQ(second->maximumHeight(), 9);
    EXPECT_EQ(first->parentWidget(), view.get());
}

TEST_F(HeldViewsTest, LimitsThatAreSetInAPaneAreLiftedWithTheNextLayoutAndGivenBackInTheEnd) {
    auto* const child = addPane();
    child->setMinimumSize(10, 11);
    view->finishedAddingPanes();
    child->setMinimumWidth(300);
    view->updateSubviewSizes();
    EXPECT_EQ(child->geometry(), QRect(0, 0, 200, 100));
    child->setMaximumHeight(50);
    QWidget elsewhere;
    child->setParent(&elsewhere);
    EXPECT_EQ(child->minimumSize(), QSize(300, 11));
    EXPECT_EQ(child->maximumSize(), QSize(QWIDGETSIZE_MAX, 50));
}

TEST_F(HeldViewsTest, LimitsAreGivenBackToAViewElsewhereWhenTheLayoutGoes) {
    QWidget elsewhere;
    auto* const child = new QWidget(&elsewhere);
    child->setMinimumSize(400, 300);
    add(child);
    view->finishedAddingPanes();
    EXPECT_EQ(child->minimumSize(), QSize(0, 0));
    view.reset();
    EXPECT_EQ(child->minimumSize(), QSize(400, 300));
}

// --- Owning.

TEST_F(HeldViewsTest, AViewBelongsToTheLayoutFromWhenItIsAdded) {
    const QPointer<QWidget> child = addPane();
    EXPECT_TRUE(view->isAncestorOf(child));
    view.reset();
    EXPECT_TRUE(child.isNull());
}

TEST_F(HeldViewsTest, AHiddenPanesViewLivesOnAndDiesWithTheLayout) {
    const QPointer<QWidget> child = addPane();
    view->finishedAddingPanes();
    view->setVisibleColumnPane(false, 0, 0);
    ASSERT_FALSE(child.isNull());
    EXPECT_NE(child->parentWidget(), view.get());
    EXPECT_TRUE(view->isAncestorOf(child));
    EXPECT_FALSE(child->isVisible());
    view.reset();
    EXPECT_TRUE(child.isNull());
}

TEST_F(HeldViewsTest, RecordsThatOutliveTheLayoutHaveNoViews) {
    addPane();
    view->finishedAddingPanes();
    const auto columns = view->columns();
    view.reset();
    EXPECT_EQ(columns->front()->panes()->front()->view(), nullptr);
}

TEST_F(HeldViewsTest, HidingAPaneLeavesItsViewInItsWindow) {
    auto* const child = addPane<WindowWatcher>();
    view->finishedAddingPanes();
    view->show();
    const int before = child->windowChanges;
    view->setVisibleColumnPane(false, 0, 0);
    EXPECT_EQ(child->window(), view.get());
    view->setVisibleColumnPane(true, 0, 0);
    EXPECT_EQ(child->windowChanges, before);
    EXPECT_TRUE(child->isVisible());
}

TEST_F(HeldViewsTest, AViewThatTheHostHasHiddenStaysHidden) {
    auto* const child = addPane();
    auto* const other = addPane();
    view->finishedAddingPanes();
    view->show();
    child->hide();
    view->setVisibleColumn(false, 0);
    other->hide();
    view->setVisibleColumn(true, 0);
    EXPECT_FALSE(child->isVisible());
    EXPECT_FALSE(other->isVisible());
    EXPECT_EQ(child->parentWidget(), view.get());
    child->show();
    EXPECT_TRUE(child->isVisible());
}

TEST_F(HeldViewsTest, AViewWithAParentStaysThereUntilItHasBeenHidden) {
    QWidget elsewhere;
    elsewhere.resize(300, 400);
    auto* const child = new QWidget(&elsewhere);
    add(child);
    view->addPaneHeightPercentColumn(nullptr, 1, true, 0);
    view->finishedAddingPanes();
    EXPECT_EQ(child->parentWidget(), &elsewhere);
    // 50 points above the layout's lower edge, and so above its superview's.
    EXPECT_EQ(child->geometry(), QRect(0, 300, 200, 50));
    view->setVisibleColumnPane(false, 0, 0);
    EXPECT_TRUE(view->isAncestorOf(child));
    view->setVisibleColumnPane(true, 0, 0);
    EXPECT_EQ(child->parentWidget(), view.get());
    EXPECT_EQ(child->geometry(), QRect(0, 0, 200, 50));
}

// --- Deleted, doubled, impossible.

TEST_F(HeldViewsTest, AViewDeletedByTheHostLeavesItsPaneEmpty) {
    auto* const visible = addPane();
    auto* const parked = addPane();
    const auto* const last = addPane();
    view->finishedAddingPanes();
    view->setVisibleColumnPane(false, 0, 1);
    delete visible;
    delete parked;
    EXPECT_EQ(pane(0).view(), nullptr);
    view->setVisibleColumnPane(true, 0, 1);
    EXPECT_EQ(last->geometry().top(), 67);
    delete last;
    view->updateSubviewSizes();
}

TEST_F(HeldViewsTest, AViewDeletedBeforeTheFirstLayoutIsNoMatter) {
    delete addPane();
    view->finishedAddingPanes();
    EXPECT_EQ(pane(0).view(), nullptr);
}

TEST_F(HeldViewsTest, ADeletedParkingPlaceIsReplaced) {
    auto* const first = addPane();
    const auto* const second = addPane();
    view->finishedAddingPanes();
    view->setVisibleColumnPane(false, 0, 0);
    delete first->parentWidget();
    view->setVisibleColumnPane(false, 0, 1);
    EXPECT_TRUE(view->isAncestorOf(second));
    EXPECT_EQ(pane(0).view(), nullptr);
}

TEST_F(HeldViewsTest, AViewInTwoPanesIsWhereTheLastOfThemSays) {
    auto* const child = addPane();
    add(child);
    add(child);
    view->finishedAddingPanes();
    EXPECT_EQ(child->geometry(), QRect(0, 67, 200, 33));
    view->setVisibleColumnPane(false, 0, 0);
    EXPECT_EQ(child->parentWidget(), view.get());
    EXPECT_EQ(child->geometry(), QRect(0, 50, 200, 50));
    view->setVisibleColumnPane(false, 0, 2);
    EXPECT_NE(child->parentWidget(), view.get());
    delete child;
    view->updateSubviewSizes();
}

TEST_F(HeldViewsTest, AViewInTwoPanesElsewhereComesInWhenOneOfThemIsHidden) {
    QWidget elsewhere;
    auto* const child = new QWidget(&elsewhere);
    add(child);
    add(child);
    view->finishedAddingPanes();
    EXPECT_EQ(child->parentWidget(), &elsewhere);
    view->setVisibleColumnPane(false, 0, 0);
    EXPECT_EQ(child->parentWidget(), view.get());
}

TEST_F(HeldViewsTest, AViewInTwoLayoutsStaysInTheFirst) {
    auto* const child = addPane();
    view->finishedAddingPanes();
    KWLayoutView other(QRect(0, 0, 50, 50));
    other.addColumnWithWidthPercent(1, true);
    other.addPaneHeightPercentColumn(child, 1, true, 0);
    other.finishedAddingPanes();
    EXPECT_EQ(child->parentWidget(), view.get());
    view.reset();
    other.updateSubviewSizes();
    EXPECT_EQ(other.columns()->front()->panes()->front()->view(), nullptr);
}

TEST_F(HeldViewsTest, ALayoutCannotHoldItselfOrWhatIsAroundIt) {
    QWidget around;
    view->setParent(&around);
    EXPECT_THROW(add(view.get()), std::invalid_argument);
    EXPECT_THROW(add(&around), std::invalid_argument);
    addPane();
    pane(0).setView(&around);
    view->updateSubviewSizes();
    EXPECT_EQ(around.parentWidget(), nullptr);
    view.reset();
}

TEST_F(HeldViewsTest, RecordsThatAreNullAreNotThere) {
    const auto* const child = addPane();
    view->columns()->push_back(nullptr);
    view->columns()->front()->panes()->insert(view->columns()->front()->panes()->begin(), nullptr);
    view->finishedAddingPanes();
    EXPECT_EQ(child->geometry(), QRect(0, 0, 200, 100));
    EXPECT_THROW(view->toggleVisibleColumn(1), std::out_of_range);
    view->columns()->front()->setPanes(nullptr);
    view->updateSubviewSizes();
    EXPECT_THROW(view->toggleVisibleColumnPane(0, 0), std::out_of_range);
    addPane();
    EXPECT_EQ(view->columns()->front()->panes()->size(), 1u);
}

// --- Views that meddle.

TEST_F(HeldViewsTest, AViewMayDeleteOthersWhenItGetsItsSize) {
    auto* const first = addPane<Meddler>();
    const QPointer<QWidget> second = addPane();
    view->finishedAddingPanes();
    view->show();
    first->also = [&] { delete second; };
    view->resize(300, 200);
    EXPECT_TRUE(second.isNull());
}

TEST_F(HeldViewsTest, AViewMayDeleteTheLayoutWhenItGetsItsSize) {
    auto* const child = addPane<Meddler>();
    addPane();
    view->finishedAddingPanes();
    view->show();
    child->also = [&] {
        child->setParent(nullptr);
        view.reset();
    };
    view->columns()->front()->setObjectForKey(20, KWColumnWidthKey);
    view->columns()->front()->setObjectForKey(false, KWColumnWidthIsPercentKey);
    view->updateSubviewSizes();
    EXPECT_EQ(view, nullptr);
    delete child;
}

TEST_F(HeldViewsTest, AViewMayHideAPaneWhenItGetsItsSize) {
    auto* const first = addPane<Meddler>();
    const auto* const second = addPane();
    view->finishedAddingPanes();
    view->show();
    first->also = [&] { view->setVisibleColumnPane(false, 0, 1); };
    view->resize(300, 200);
    EXPECT_FALSE(second->isVisible());
    EXPECT_EQ(first->geometry(), QRect(0, 0, 300, 200));
}

TEST_F(HeldViewsTest, AViewMayAddPanesWhenItGetsItsSize) {
    auto* const first = addPane<Meddler>();
    addPane();
    view->finishedAddingPanes();
    view->show();
    QWidget* added = nullptr;
    first->also = [&] {
        added = addPane();
        view->finishedAddingPanes();
    };
    view->resize(300, 90);
    ASSERT_NE(added, nullptr);
    EXPECT_EQ(added->geometry(), QRect(0, 60, 300, 30));
}

TEST_F(HeldViewsTest, AViewMayLayOutAnewWhenItComesIn) {
    addPane();
    addPane();
    view->finishedAddingPanes();
    Newcomer* const newcomer = new Newcomer;
    const auto* const second = pane(1).view();
    pane(0).setView(newcomer);
    newcomer->also = [&] { view->setVisibleColumnPane(false, 0, 0); };
    view->updateSubviewSizes();
    EXPECT_FALSE(view->isVisibleColumnPane(0, 0));
    EXPECT_NE(newcomer->parentWidget(), view.get());
    EXPECT_EQ(second->geometry(), QRect(0, 0, 200, 100));
}

TEST_F(HeldViewsTest, AViewMayDeleteTheLayoutWhenItComesIn) {
    addPane();
    addPane();
    Newcomer* const newcomer = new Newcomer;
    pane(0).setView(newcomer);
    newcomer->also = [&] {
        newcomer->setParent(nullptr);
        view.reset();
    };
    view->updateSubviewSizes();
    EXPECT_EQ(view, nullptr);
    delete newcomer;
}

// --- What is drawn.

TEST_F(HeldViewsTest, APaneThatMovesIsDrawnWhereItIsAndNoMoreWhereItWas) {
    QWidget* const children[] = {addPane(), addPane(), addPane()};
    const QColor colors[] = {Qt::red, Qt::green, Qt::blue};
    for (int i = 0; i < 3; ++i) {
        children[i]->setAutoFillBackground(true);
        children[i]->setPalette(QPalette(colors[i]));
    }
    auto* const inner = new QWidget(children[1]);
    inner->setGeometry(20, 3, 50, 9);
    inner->setAutoFillBackground(true);
    inner->setPalette(QPalette(Qt::yellow));
    addPane<QLabel>()->setText(QStringLiteral("text"));
    view->setInterpaneSpace(6);
    view->finishedAddingPanes();
    view->show();
    const auto rgb = [](const QPixmap& picture) {
        return picture.toImage().convertToFormat(QImage::Format_RGB32);
    };
    const auto shown = [&] { return rgb(view->screen()->grabWindow(view->winId())); };
    ASSERT_TRUE(QTest::qWaitFor([&] { return shown() == rgb(view->grab()); }));
    for (const int space : {2, 9, 0, 1}) {
        view->setInterpaneSpace(space);
        view->updateSubviewSizes();
        const auto isDrawn = [&] { return shown() == rgb(view->grab()); };
        EXPECT_TRUE(QTest::qWaitFor(isDrawn)) << space;
        for (const QWidget* child : children)
            EXPECT_FALSE(child->testAttribute(Qt::WA_OutsideWSRange));
    }
}

// --- Focus.

TEST_F(HeldViewsTest, TheTabKeyGoesDownAColumnThenToTheNext) {
    view->addColumnWithWidthPercent(1, true);
    auto* const fourth = new QLineEdit;
    auto* const third = new QLineEdit;
    auto* const box = new QWidget;
    auto* const first = new QLineEdit(box);
    auto* const second = new QLineEdit(box);
    view->addPaneHeightPercentColumn(third, 1, true, 1);
    view->addPaneHeightPercentColumn(fourth, 1, true, 1);
    view->addPaneHeightPercentColumn(box, 1, true, 0);
    view->finishedAddingPanes();
    view->show();
    view->activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(view.get()));
    first->setFocus();
    for (QWidget* const next : std::vector<QWidget*>{second, third, fourth, first}) {
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
        EXPECT_EQ(QApplication::focusWidget(), next);
    }
    QTest::keyClick(first, Qt::Key_Backtab);
    EXPECT_EQ(QApplication::focusWidget(), fourth);

    auto* const late = new QLineEdit(box);
    late->show();
    second->setFocus();
    QTest::keyClick(second, Qt::Key_Tab);
    EXPECT_EQ(QApplication::focusWidget(), late);
    view->setVisibleColumn(false, 0);
    view->setVisibleColumn(true, 0);
    second->setFocus();
    QTest::keyClick(second, Qt::Key_Tab);
    EXPECT_EQ(QApplication::focusWidget(), late);
}

TEST_F(HeldViewsTest, FocusLeavesAPaneThatIsHidden) {
    auto* const first = addPane<QLineEdit>();
    auto* const second = addPane<QLineEdit>();
    view->finishedAddingPanes();
    view->show();
    view->activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(view.get()));
    first->setFocus();
    view->setVisibleColumnPane(false, 0, 0);
    EXPECT_EQ(QApplication::focusWidget(), second);
}
