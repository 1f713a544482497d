#include "ViewTestSupport.h"

#include <KWBase/KWStackedLabelView.h>
#include <KWBase/KWStackedView.h>

#include <gtest/gtest.h>

#include <QApplication>
#include <QFontMetrics>
#include <QLabel>
#include <QLineEdit>
#include <QPainter>
#include <QPointer>
#include <QScrollArea>
#include <QScrollBar>
#include <QSignalSpy>
#include <QTest>
#include <QVBoxLayout>
#include <functional>
#include <memory>
#include <stdexcept>
#include <vector>

namespace {

class KWStackedViewTest : public testing::Test {
  protected:
    KWStackedViewTest() : stack(std::make_unique<KWStackedView>(QRect(5, 6, 240, 10))) {}

    /// A view of this height, 3 points from the left.
    QWidget* content(int height) {
        auto* const made = new QWidget;
        made->setGeometry(3, 0, 77, height);
        return made;
    }
    QWidget* add(int height, const QString& label = QStringLiteral("Label")) {
        QWidget* const made = content(height);
        stack->addViewLabel(made, label);
        return made;
    }
    KWStackedLabelView* bar(std::size_t index) { return stack->items().at(index)->labelView(); }

    std::unique_ptr<KWStackedView> stack;
    const int barHeight = QFontMetrics(getLabelFont()).height() + 4;
};

} // namespace

TEST_F(KWStackedViewTest, AFreshStackHasNoItems) {
    EXPECT_EQ(stack->viewCount(), 0u);
    EXPECT_TRUE(stack->isFlipped());
    EXPECT_EQ(stack->geometry(), QRect(5, 6, 240, 10));
    stack->updateLayout();
    EXPECT_EQ(stack->geometry(), QRect(5, 6, 240, 0));
}

TEST_F(KWStackedViewTest, ItsHeightIsThatOfItsBarsViewsAndGaps) {
    const QWidget* const first = add(100);
    const QWidget* const second = add(50);
    EXPECT_EQ(stack->viewCount(), 2u);
    EXPECT_EQ(stack->geometry(), QRect(5, 6, 240, 2 * barHeight + 158));
    EXPECT_EQ(bar(0)->geometry(), QRect(0, 0, 240, barHeight));
    EXPECT_EQ(first->geometry(), QRect(3, barHeight, 240, 100));
    EXPECT_EQ(bar(1)->geometry(), QRect(0, barHeight + 104, 240, barHeight));
    EXPECT_EQ(second->geometry(), QRect(3, 2 * barHeight + 104, 240, 50));
    EXPECT_EQ(stack->sizeHint().height(), stack->height());
}

TEST_F(KWStackedViewTest, CollapsingTheFirstMovesTheSecondUp) {
    const QWidget* const first = add(100);
    const QWidget* const second = add(50);
    QSignalSpy collapsed(stack.get(), &KWStackedView::collapsedChanged);
    QSignalSpy heights(stack.get(), &KWStackedView::heightChanged);
    stack->toggleViewAtIndex(0);
    EXPECT_TRUE(stack->isCollapsedAtIndex(0));
    EXPECT_FALSE(stack->isCollapsedAtIndex(1));
    EXPECT_EQ(stack->height(), 2 * barHeight + 58);
    EXPECT_EQ(bar(1)->y(), barHeight + 4);
    EXPECT_EQ(second->y(), 2 * barHeight + 4);
    EXPECT_NE(first->parentWidget(), stack.get());
    EXPECT_EQ(collapsed.takeFirst(), (QVariantList{0, true}));
    EXPECT_EQ(heights.takeFirst(), (QVariantList{2 * barHeight + 58}));

    stack->toggleViewAtIndex(0);
    EXPECT_EQ(first->parentWidget(), stack.get());
    EXPECT_EQ(first->geometry(), QRect(3, barHeight, 240, 100));
    EXPECT_EQ(stack->height(), 2 * barHeight + 158);
}

TEST_F(KWStackedViewTest, EveryItemButTheFirstDrawsASeparator) {
    stack->addViewsLabels({content(10), content(20), content(30)},
                          {QStringLiteral("a"), QStringLiteral("b"), QStringLiteral("c")});
    ASSERT_EQ(stack->viewCount(), 3u);
    EXPECT_FALSE(stack->items()[0]->drawsSeparator());
    EXPECT_TRUE(stack->items()[1]->drawsSeparator());
    EXPECT_TRUE(stack->items()[2]->drawsSeparator());
    EXPECT_EQ(bar(1)->label(), QStringLiteral("b"));
    EXPECT_EQ(stack->height(), 3 * barHeight + 72);
}

TEST_F(KWStackedViewTest, MoreViewsThanLabelsAddNothing) {
    const std::unique_ptr<QWidget> first(content(10));
    const std::unique_ptr<QWidget> second(content(10));
    EXPECT_THROW(stack->addViewsLabels({first.get(), second.get()}, {QStringLiteral("a")}),
                 std::out_of_range);
    EXPECT_EQ(stack->viewCount(), 0u);
    stack->addViewsLabels({}, {QStringLiteral("more labels are no matter")});
    EXPECT_EQ(stack->viewCount(), 0u);
}

TEST_F(KWStackedViewTest, AnIndexOutOfRangeThrows) {
    add(10);
    EXPECT_THROW(stack->toggleViewAtIndex(1), std::out_of_range);
    EXPECT_THROW(static_cast<void>(stack->isCollapsedAtIndex(1)), std::out_of_range);
}

TEST_F(KWStackedViewTest, AddingWithoutUpdateLaysNothingOut) {
    stack->_addViewNoUpdateLabel(content(10), QStringLiteral("a"));
    EXPECT_EQ(stack->viewCount(), 1u);
    EXPECT_EQ(stack->height(), 10);
    EXPECT_EQ(bar(0)->size(), QSize(100, 100));
    stack->updateLayout();
    EXPECT_EQ(stack->height(), barHeight + 14);
}

TEST_F(KWStackedViewTest, SettingWhatAnItemIsLaysTheStackOutAllTheSame) {
    add(50);
    const std::shared_ptr<KWStackedItem> item = stack->items()[0];
    EXPECT_EQ(item->stackedView(), stack.get());
    QSignalSpy spy(item.get(), &KWStackedItem::collapsedChanged);
    item->contentView()->resize(9, 80);
    item->setCollapsed(false);
    EXPECT_EQ(stack->height(), barHeight + 84);
    EXPECT_EQ(spy.count(), 0);
    item->toggleCollapsed();
    EXPECT_EQ(spy.count(), 1);
    EXPECT_TRUE(item->isCollapsed());
}

TEST_F(KWStackedViewTest, BarsAndViewsBecomeAsWideAsTheStack) {
    const QWidget* const first = add(100);
    stack->setFrame(QRect(5, 6, 300, 500));
    stack->resizeStackedViews();
    EXPECT_EQ(bar(0)->geometry(), QRect(0, 0, 300, barHeight));
    EXPECT_EQ(first->geometry(), QRect(3, barHeight, 300, 100));
    EXPECT_EQ(stack->height(), 500);
}

TEST_F(KWStackedViewTest, OnlyItsWidthFollowsItsParent) {
    QWidget parent;
    parent.resize(400, 300);
    const QWidget* const first = add(100);
    stack->setParent(&parent);
    const int height = stack->height();
    stack->resizeWithOldSuperviewSize(QSize());
    EXPECT_EQ(stack->size(), QSize(400, height));
    EXPECT_EQ(first->width(), 400);
    parent.show();
    parent.resize(350, 200);
    EXPECT_EQ(stack->size(), QSize(350, height));
    EXPECT_EQ(first->size(), QSize(350, 100));
    EXPECT_EQ(bar(0)->width(), 350);
    stack->setParent(nullptr);
    parent.resize(100, 100);
    EXPECT_EQ(stack->width(), 350);
    stack->resizeWithOldSuperviewSize(QSize());
    EXPECT_EQ(stack->width(), 350);
}

TEST_F(KWStackedViewTest, AScrollAreaFollowsItsHeight) {
    for (const bool isResizable : {false, true}) {
        QScrollArea area;
        area.setWidgetResizable(isResizable);
        auto* const inside = new KWStackedView;
        for (int i = 0; i < 3; ++i)
            inside->addViewLabel(content(100), QStringLiteral("Label"));
        area.setWidget(inside);
        area.resize(200, 150);
        area.show();
        const int expanded = 3 * (barHeight + 104);
        EXPECT_TRUE(QTest::qWaitFor([&] { return inside->height() == expanded; }))
            << inside->height();
        EXPECT_TRUE(QTest::qWaitFor([&] { return inside->width() == area.viewport()->width(); }))
            << inside->width();
        EXPECT_TRUE(QTest::qWaitFor([&] {
            return area.verticalScrollBar()->maximum() == expanded - area.viewport()->height();
        })) << area.verticalScrollBar()->maximum();
        inside->toggleViewAtIndex(1);
        EXPECT_TRUE(QTest::qWaitFor([&] { return inside->height() == expanded - 100; }))
            << inside->height();
        EXPECT_TRUE(QTest::qWaitFor([&] {
            return area.verticalScrollBar()->maximum() ==
                   expanded - 100 - area.viewport()->height();
        })) << area.verticalScrollBar()->maximum();
        area.resize(300, 150);
        EXPECT_TRUE(QTest::qWaitFor([&] { return inside->width() == area.viewport()->width(); }))
            << inside->width();
        EXPECT_EQ(inside->items()[0]->contentView()->width(), area.viewport()->width());
        inside->toggleViewAtIndex(0);
        inside->toggleViewAtIndex(2);
        EXPECT_TRUE(QTest::qWaitFor([&] { return inside->height() == expanded - 300; }))
            << inside->height();
    }
}

TEST_F(KWStackedViewTest, ALayoutGivesItTheHeightItAsksFor) {
    QWidget window;
    auto* const layout = new QVBoxLayout(&window);
    auto* const inside = new KWStackedView;
    inside->addViewLabel(content(60), QStringLiteral("Label"));
    layout->addWidget(inside);
    layout->addWidget(new QWidget, 1);
    window.resize(300, 400);
    window.show();
    EXPECT_TRUE(QTest::qWaitFor([&] { return inside->height() == barHeight + 64; }))
        << inside->height();
    inside->toggleViewAtIndex(0);
    EXPECT_TRUE(QTest::qWaitFor([&] { return inside->height() == barHeight + 4; }))
        << inside->height();
}

TEST_F(KWStackedViewTest, AViewThatChangesItsHeightMovesTheOthers) {
    QWidget* const first = add(100);
    const QWidget* const second = add(50);
    stack->show();
    QCoreApplication::sendPostedEvents();
    first->resize(first->width(), 140);
    EXPECT_TRUE(QTest::qWaitFor([&] { return second->y() == 2 * barHeight + 144; })) << second->y();
    EXPECT_EQ(stack->height(), 2 * barHeight + 198);
    first->setFixedHeight(20);
    EXPECT_TRUE(QTest::qWaitFor([&] { return second->y() == 2 * barHeight + 24; })) << second->y();
}

TEST_F(KWStackedViewTest, AStackInAStackOpensAndClosesBoth) {
    auto* const inner = new KWStackedView;
    inner->addViewLabel(content(40), QStringLiteral("inner"));
    stack->addViewLabel(inner, QStringLiteral("outer"));
    stack->show();
    EXPECT_EQ(stack->height(), 2 * barHeight + 48);
    inner->toggleViewAtIndex(0);
    EXPECT_TRUE(QTest::qWaitFor([&] { return stack->height() == 2 * barHeight + 8; }))
        << stack->height();
}

TEST_F(KWStackedViewTest, AViewThatNobodyHasGivenASizeComesInItsPreferredOne) {
    auto* const label = new QLabel(QStringLiteral("text"));
    stack->addViewLabel(label, QStringLiteral("Label"));
    EXPECT_EQ(label->height(), label->sizeHint().height());
}

TEST_F(KWStackedViewTest, LimitsOfTheWidthAreLiftedInTheStackAndGivenBack) {
    auto* const child = content(50);
    child->setMinimumSize(400, 40);
    child->setMaximumSize(500, 60);
    stack->addViewLabel(child, QStringLiteral("Label"));
    EXPECT_EQ(child->size(), QSize(240, 50));
    EXPECT_EQ(child->minimumHeight(), 40);
    EXPECT_EQ(child->maximumHeight(), 60);
    stack->show();
    const std::unique_ptr<QWidget> taken(child);
    child->setParent(nullptr);
    EXPECT_EQ(child->minimumWidth(), 400);
    EXPECT_EQ(child->maximumWidth(), 500);
    EXPECT_EQ(stack->items()[0]->contentView(), nullptr);
    EXPECT_TRUE(QTest::qWaitFor([&] { return stack->height() == barHeight + 4; }))
        << stack->height();
}

// --- Owning.

TEST_F(KWStackedViewTest, ViewsAndBarsDieWithTheStack) {
    const QPointer<QWidget> expanded = add(10);
    const QPointer<QWidget> collapsed = add(20);
    stack->toggleViewAtIndex(1);
    EXPECT_TRUE(stack->isAncestorOf(collapsed));
    EXPECT_FALSE(collapsed->isVisible());
    const QPointer<KWStackedLabelView> label = bar(0);
    const std::shared_ptr<KWStackedItem> kept = stack->items()[1];
    stack.reset();
    EXPECT_TRUE(expanded.isNull());
    EXPECT_TRUE(collapsed.isNull());
    EXPECT_TRUE(label.isNull());
    EXPECT_EQ(kept->contentView(), nullptr);
    EXPECT_EQ(kept->labelView(), nullptr);
    EXPECT_EQ(kept->stackedView(), nullptr);
    kept->toggleCollapsed();
    EXPECT_FALSE(kept->isCollapsed());
}

TEST_F(KWStackedViewTest, AnItemInNoStackOwnsItsBar) {
    QWidget alone;
    auto item = std::make_unique<KWStackedItem>(nullptr, &alone, QStringLiteral("Label"));
    const QPointer<KWStackedLabelView> label = item->labelView();
    EXPECT_EQ(label->item(), item.get());
    EXPECT_FALSE(item->isCollapsed());
    EXPECT_FALSE(item->drawsSeparator());
    item->toggleCollapsed();
    EXPECT_TRUE(item->isCollapsed());
    item.reset();
    EXPECT_TRUE(label.isNull());
}

TEST_F(KWStackedViewTest, AViewComesFromElsewhere) {
    QWidget elsewhere;
    auto* const child = content(30);
    child->setParent(&elsewhere);
    stack->addViewLabel(child, QStringLiteral("Label"));
    EXPECT_EQ(child->parentWidget(), stack.get());
}

TEST_F(KWStackedViewTest, AViewOrBarDeletedByTheHostClosesItsGap) {
    delete add(100);
    const QWidget* const second = add(50);
    stack->show();
    EXPECT_EQ(second->y(), 2 * barHeight + 4);
    add(30);
    delete second;
    EXPECT_TRUE(QTest::qWaitFor([&] { return stack->height() == 3 * barHeight + 42; }))
        << stack->height();
    delete bar(2);
    stack->updateLayout();
    EXPECT_EQ(stack->height(), 2 * barHeight + 42);
    stack->toggleViewAtIndex(2);
    EXPECT_EQ(stack->height(), 2 * barHeight + 12);
}

TEST_F(KWStackedViewTest, AnItemWithoutAViewIsOnlyABar) {
    stack->addViewLabel(nullptr, QStringLiteral("Label"));
    EXPECT_EQ(stack->height(), barHeight + 4);
    stack->toggleViewAtIndex(0);
    EXPECT_EQ(stack->height(), barHeight + 4);
}

TEST_F(KWStackedViewTest, AViewThatIsAddedTwiceIsWhereTheLastItemSays) {
    QWidget* const child = add(30);
    stack->addViewLabel(child, QStringLiteral("again"));
    EXPECT_EQ(child->y(), 2 * barHeight + 34);
    stack->toggleViewAtIndex(0);
    EXPECT_EQ(child->parentWidget(), stack.get());
    EXPECT_EQ(child->y(), 2 * barHeight + 4);
    stack->toggleViewAtIndex(1);
    EXPECT_NE(child->parentWidget(), stack.get());
    delete child;
    stack->updateLayout();
}

TEST_F(KWStackedViewTest, AStackCannotHoldItself) {
    const std::unique_ptr<QWidget> other(content(10));
    EXPECT_THROW(stack->addViewLabel(stack.get(), QString()), std::invalid_argument);
    EXPECT_THROW(stack->addViewsLabels({other.get(), stack.get()}, {QString(), QString()}),
                 std::invalid_argument);
    EXPECT_EQ(stack->viewCount(), 0u);
}

TEST_F(KWStackedViewTest, AHugeViewGivesAHeightThatQtAccepts) {
    for (int i = 0; i < 3; ++i)
        add(QWIDGETSIZE_MAX);
    EXPECT_EQ(stack->height(), QWIDGETSIZE_MAX);
    stack->grab(QRect(0, 0, 10, 10));
}

TEST_F(KWStackedViewTest, WhoHearsOfACollapseMayDeleteTheStack) {
    add(10);
    QObject::connect(stack->items()[0].get(), &KWStackedItem::collapsedChanged,
                     [&] { stack.reset(); });
    stack->toggleViewAtIndex(0);
    EXPECT_EQ(stack, nullptr);
}

TEST_F(KWStackedViewTest, WhoHearsOfANewHeightMayDeleteTheStack) {
    add(10);
    QObject::connect(stack.get(), &KWStackedView::heightChanged, [&] { stack.reset(); });
    stack->toggleViewAtIndex(0);
    EXPECT_EQ(stack, nullptr);
}

TEST_F(KWStackedViewTest, AViewThatTheHostHasHiddenStaysHidden) {
    QWidget* const child = add(30);
    stack->show();
    child->hide();
    stack->toggleViewAtIndex(0);
    stack->toggleViewAtIndex(0);
    EXPECT_FALSE(child->isVisible());
}

TEST_F(KWStackedViewTest, TheTabKeyGoesFromEachBarToTheViewUnderIt) {
    auto* const second = new QLineEdit;
    auto* const first = new QLineEdit;
    stack->addViewLabel(first, QStringLiteral("first"));
    stack->addViewLabel(second, QStringLiteral("second"));
    stack->show();
    stack->activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(stack.get()));
    bar(0)->setFocus();
    for (QWidget* const next : std::vector<QWidget*>{first, bar(1), second, bar(0)}) {
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
        EXPECT_EQ(QApplication::focusWidget(), next);
    }
    stack->toggleViewAtIndex(0);
    QTest::keyClick(bar(0), Qt::Key_Tab);
    EXPECT_EQ(QApplication::focusWidget(), bar(1));
    stack->toggleViewAtIndex(0);
    QTest::keyClick(bar(1), Qt::Key_Backtab);
    EXPECT_EQ(QApplication::focusWidget(), first);
}

TEST_F(KWStackedViewTest, TheStackItselfDrawsNothing) {
    QImage image(40, 40, QImage::Format_RGB32);
    image.fill(Qt::red);
    const QImage before = image;
    add(10);
    QPainter painter(&image);
    stack->drawRect(painter, QRectF(0, 0, 40, 40));
    EXPECT_EQ(image, before);
}
