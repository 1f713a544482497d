#include "ViewTestSupport.h"

#include <KWBase/KWLayoutView.h>

#include <gtest/gtest.h>

#include <QLabel>
#include <QPainter>
#include <QSignalSpy>
#include <cmath>
#include <limits>
#include <memory>
#include <random>
#include <stdexcept>
#include <vector>

namespace {

constexpr float infinity = std::numeric_limits<float>::infinity();
constexpr float notANumber = std::numeric_limits<float>::quiet_NaN();
constexpr int limit = KWWidgetSizeLimit;

class KWLayoutViewTest : public testing::Test {
  protected:
    KWLayoutViewTest() { view.setGeometry(0, 0, 200, 100); }

    /// A pane with a view of its own.
    QWidget* addPane(float height, bool isPercent, int column = 0) {
        auto* const added = new QWidget;
        view.addPaneHeightPercentColumn(added, height, isPercent, column);
        return added;
    }
    const KWLayoutColumn& column(std::size_t index) const { return *view.columns()->at(index); }
    const KWLayoutPane& pane(std::size_t columnIndex, std::size_t index) const {
        return *column(columnIndex).panes()->at(index);
    }
    bool isInTree(const QWidget* child) const { return child->parentWidget() == &view; }

    KWLayoutView view;
};

/// The layout as it is told in words, with nothing but floats and lists.
struct PlainModel {
    struct Item {
        float size;
        bool isPercent;
        bool isVisible;
        float offset = 0;
        float actual = 0;
    };
    struct Column {
        Item item;
        std::vector<Item> panes;
    };
    std::vector<Column> columns;

    static float sizeOf(const Item& item, float available, float sum) {
        if (!item.isPercent)
            return item.size;
        return sum > 0 ? item.size * available / sum : available;
    }

    void layOut(float w, float h, float s) {
        float availW = w - s;
        float sumPctW = 0;
        for (Column& column : columns) {
            if (!column.item.isVisible)
                continue;
            if (!column.item.isPercent)
                availW -= column.item.size;
            else
                sumPctW += column.item.size;
            availW -= s;
            float availH = h - s;
            float sumPctH = 0;
            for (const Item& pane : column.panes) {
                if (!pane.isVisible)
                    continue;
                if (!pane.isPercent)
                    availH -= pane.size;
                else
                    sumPctH += pane.size;
                availH -= s;
            }
            float offset = 0;
            for (Item& pane : column.panes) {
                if (!pane.isVisible)
                    continue;
                pane.offset = offset + s;
                pane.actual = sizeOf(pane, availH, sumPctH);
                offset = pane.offset + pane.actual;
            }
        }
        float offset = 0;
        for (Column& column : columns) {
            if (!column.item.isVisible)
                continue;
            column.item.offset = offset + s;
            column.item.actual = sizeOf(column.item, availW, sumPctW);
            offset = column.item.offset + column.item.actual;
        }
    }

    static QRect frameOf(const Column& column, const Item& pane, int height) {
        const float w = std::floor(column.item.actual);
        const float h = std::floor(pane.actual);
        const float x = std::floor(column.item.offset);
        const float y = std::floor(static_cast<float>(height) - h - pane.offset);
        const int top = height - static_cast<int>(y) - static_cast<int>(h);
        return {static_cast<int>(x), top, std::max(0, static_cast<int>(w)),
                std::max(0, static_cast<int>(h))};
    }
};

} // namespace

TEST_F(KWLayoutViewTest, AFreshViewHasNothing) {
    EXPECT_TRUE(view.columns()->empty());
    EXPECT_EQ(view.interpaneSpace(), 0);
    EXPECT_EQ(view.imageBackground(), nullptr);
    EXPECT_EQ(KWLayoutView(QRect(3, 4, 50, 60)).geometry(), QRect(3, 4, 50, 60));
}

TEST_F(KWLayoutViewTest, OnePaneOfOneColumnFillsAllButTheGap) {
    view.setInterpaneSpace(10);
    view.addColumnWithWidthPercent(1, true);
    const QWidget* const child = addPane(1, true);
    view.finishedAddingPanes();
    EXPECT_EQ(child->geometry(), QRect(10, 10, 180, 80));
    EXPECT_TRUE(isInTree(child));
}

TEST_F(KWLayoutViewTest, AFixedColumnLeavesTheRestToARelativeOne) {
    view.addColumnWithWidthPercent(50, false);
    view.addColumnWithWidthPercent(1, true);
    const QWidget* const first = addPane(1, true, 0);
    const QWidget* const second = addPane(1, true, 1);
    view.finishedAddingPanes();
    EXPECT_EQ(first->geometry(), QRect(0, 0, 50, 100));
    EXPECT_EQ(second->geometry(), QRect(50, 0, 150, 100));
}

TEST_F(KWLayoutViewTest, HidingAColumnTakesItsViewsOutAndShowingPutsThemBackInOrder) {
    view.addColumnWithWidthPercent(50, false);
    view.addColumnWithWidthPercent(1, true);
    const std::vector<QWidget*> hidden{addPane(1, true, 0), addPane(1, true, 0),
                                       addPane(1, true, 0)};
    const QWidget* const other = addPane(1, true, 1);
    view.finishedAddingPanes();
    view.setVisibleColumn(false, 0);
    EXPECT_FALSE(view.isVisibleColumn(0));
    for (const QWidget* child : hidden)
        EXPECT_FALSE(isInTree(child));
    EXPECT_EQ(other->geometry(), QRect(0, 0, 200, 100));

    view.toggleVisibleColumn(0);
    EXPECT_TRUE(view.isVisibleColumn(0));
    EXPECT_EQ(other->geometry(), QRect(50, 0, 150, 100));
    const QObjectList children = view.children();
    qsizetype last = -1;
    for (QWidget* child : hidden) {
        EXPECT_TRUE(isInTree(child));
        EXPECT_GT(children.indexOf(child), last);
        last = children.indexOf(child);
    }
}

TEST_F(KWLayoutViewTest, HidingTheOnlyRelativePaneLeavesItsSpaceAtTheBottom) {
    view.setInterpaneSpace(5);
    view.addColumnWithWidthPercent(1, true);
    const QWidget* const top = addPane(20, false);
    const QWidget* const middle = addPane(1, true);
    const QWidget* const bottom = addPane(15, false);
    view.finishedAddingPanes();
    EXPECT_EQ(top->geometry(), QRect(5, 5, 190, 20));
    EXPECT_EQ(middle->geometry(), QRect(5, 30, 190, 45));
    EXPECT_EQ(bottom->geometry(), QRect(5, 80, 190, 15));
    view.setVisibleColumnPane(false, 0, 1);
    EXPECT_FALSE(isInTree(middle));
    EXPECT_EQ(top->geometry(), QRect(5, 5, 190, 20));
    EXPECT_EQ(bottom->geometry(), QRect(5, 30, 190, 15));
}

TEST_F(KWLayoutViewTest, AColumnWithAllPanesHiddenKeepsItsWidthAndShowsNothing) {
    view.setInterpaneSpace(10);
    view.addColumnWithWidthPercent(50, false);
    view.addColumnWithWidthPercent(1, true);
    const QWidget* const first = addPane(1, true, 0);
    const QWidget* const second = addPane(1, true, 1);
    view.finishedAddingPanes();
    view.toggleVisibleColumnPane(0, 0);
    EXPECT_FALSE(isInTree(first));
    EXPECT_TRUE(view.isVisibleColumn(0));
    EXPECT_EQ(second->geometry(), QRect(70, 10, 120, 80));
}

TEST_F(KWLayoutViewTest, HiddenPanesKeepWhatWasComputed) {
    view.addColumnWithWidthPercent(1, true);
    addPane(1, true);
    view.finishedAddingPanes();
    view.setVisibleColumn(false, 0);
    view.resize(400, 300);
    view.updateSubviewSizes();
    EXPECT_EQ(pane(0, 0).objectForKey(KWPaneActualHeightKey), QVariant(100.0f));
    EXPECT_EQ(column(0).objectForKey(KWColumnActualWidthKey), QVariant(200.0f));
    // From the lower edge, as the height is another.
    EXPECT_EQ(pane(0, 0).view()->geometry(), QRect(0, 0, 200, 100));
}

TEST_F(KWLayoutViewTest, RecordsTellWhatWasComputed) {
    view.setInterpaneSpace(3);
    view.addColumnWithWidthPercent(30, true);
    view.addColumnWithWidthPercent(10, true);
    addPane(1, true, 1);
    EXPECT_FALSE(pane(1, 0).objectForKey(KWPaneActualHeightKey).isValid());
    view.finishedAddingPanes();
    const float available = 200.0f - 3 - 3 - 3;
    EXPECT_EQ(column(0).objectForKey(KWColumnActualOffsetKey), QVariant(3.0f));
    EXPECT_EQ(column(0).objectForKey(KWColumnActualWidthKey), QVariant(30 * available / 40));
    EXPECT_EQ(column(1).objectForKey(KWColumnActualOffsetKey),
              QVariant(3 + 30 * available / 40 + 3));
    EXPECT_EQ(pane(1, 0).objectForKey(KWPaneActualOffsetKey), QVariant(3.0f));
    EXPECT_EQ(pane(1, 0).objectForKey(KWPaneActualHeightKey), QVariant(94.0f));
}

TEST_F(KWLayoutViewTest, RecordsTakeEffectWithTheNextLayout) {
    view.addColumnWithWidthPercent(50, false);
    const QWidget* const child = addPane(1, true);
    view.finishedAddingPanes();
    view.columns()->front()->setObjectForKey(80, KWColumnWidthKey);
    EXPECT_EQ(child->width(), 50);
    view.updateSubviewSizes();
    EXPECT_EQ(child->width(), 80);
    view.columns()->front()->setObjectForKey(false, KWColumnVisibleKey);
    view.updateSubviewSizes();
    EXPECT_FALSE(isInTree(child));
}

TEST_F(KWLayoutViewTest, TheGapTakesEffectWithTheNextLayout) {
    view.addColumnWithWidthPercent(1, true);
    const QWidget* const child = addPane(1, true);
    view.finishedAddingPanes();
    QSignalSpy spy(&view, &KWLayoutView::settingsChanged);
    view.setInterpaneSpace(10);
    EXPECT_EQ(spy.count(), 1);
    EXPECT_EQ(child->geometry(), QRect(0, 0, 200, 100));
    view.updateSubviewSizes();
    EXPECT_EQ(child->geometry(), QRect(10, 10, 180, 80));
    EXPECT_TRUE(view.setProperty("interpaneSpace", -10));
    view.updateSubviewSizes();
    EXPECT_EQ(child->geometry(), QRect(-10, -10, 220, 120));
}

TEST_F(KWLayoutViewTest, AddingAPaneDoesNotLayOutAndAddingAColumnDoes) {
    view.addColumnWithWidthPercent(1, true);
    const QWidget* const child = addPane(1, true);
    EXPECT_FALSE(isInTree(child));
    view.addColumnWithWidthPercent(1, true);
    EXPECT_TRUE(isInTree(child));
    EXPECT_EQ(child->geometry(), QRect(0, 0, 100, 100));
}

TEST_F(KWLayoutViewTest, AnotherSizeLaysOut) {
    view.addColumnWithWidthPercent(1, true);
    const QWidget* const child = addPane(1, true);
    view.finishedAddingPanes();
    view.show();
    view.resize(300, 50);
    EXPECT_EQ(child->geometry(), QRect(0, 0, 300, 50));
}

TEST_F(KWLayoutViewTest, FlagsOfColumnsAndPanesAreTheirOwn) {
    view.addColumnWithWidthPercent(1, true);
    addPane(1, true);
    addPane(1, true);
    view.finishedAddingPanes();
    QSignalSpy spy(&view, &KWLayoutView::visibilityChanged);
    view.setVisibleColumnPane(false, 0, -1);
    EXPECT_FALSE(view.isVisibleColumn(0));
    EXPECT_TRUE(view.isVisibleColumnPane(0, 0));
    view.toggleVisibleColumnPane(0, 1);
    EXPECT_FALSE(view.isVisibleColumnPane(0, 1));
    view.setVisibleColumnPane(false, 0, 1);
    view.toggleVisibleColumnPane(0, -1);
    EXPECT_TRUE(view.isVisibleColumnPane(0, -1));
    ASSERT_EQ(spy.count(), 3);
    EXPECT_EQ(spy[1], (QVariantList{0, 1, false}));
}

TEST_F(KWLayoutViewTest, WhatIsShownOrHiddenIsDrawnAnew) {
    view.addColumnWithWidthPercent(1, true);
    auto* const child = addPane(1, true);
    child->setAutoFillBackground(true);
    child->setPalette(QPalette(Qt::red));
    view.finishedAddingPanes();
    EXPECT_EQ(view.grab().toImage().pixelColor(50, 50), QColor(Qt::red));
    view.setVisibleColumn(false, 0);
    EXPECT_NE(view.grab().toImage().pixelColor(50, 50), QColor(Qt::red));
}

TEST_F(KWLayoutViewTest, AnIndexOutOfRangeThrows) {
    EXPECT_THROW(view.addPaneHeightPercentColumn(nullptr, 1, true, 0), std::out_of_range);
    view.addColumnWithWidthPercent(1, true);
    addPane(1, true);
    for (const int index : {-2, -1, 1, std::numeric_limits<int>::max()}) {
        EXPECT_THROW(view.addPaneHeightPercentColumn(nullptr, 1, true, index), std::out_of_range);
        EXPECT_THROW(view.setVisibleColumn(true, index), std::out_of_range);
        EXPECT_THROW(static_cast<void>(view.isVisibleColumn(index)), std::out_of_range);
        EXPECT_THROW(view.toggleVisibleColumn(index), std::out_of_range);
        EXPECT_THROW(view.setVisibleColumnPane(true, index, 0), std::out_of_range);
    }
    for (const int index : {-2, 1, std::numeric_limits<int>::min()}) {
        EXPECT_THROW(view.setVisibleColumnPane(true, 0, index), std::out_of_range);
        EXPECT_THROW(static_cast<void>(view.isVisibleColumnPane(0, index)), std::out_of_range);
        EXPECT_THROW(view.toggleVisibleColumnPane(0, index), std::out_of_range);
    }
}

TEST_F(KWLayoutViewTest, APaneWithoutAViewTakesItsSpace) {
    view.addColumnWithWidthPercent(1, true);
    view.addPaneHeightPercentColumn(nullptr, 30, false, 0);
    const QWidget* const child = addPane(1, true);
    view.finishedAddingPanes();
    EXPECT_EQ(child->geometry(), QRect(0, 30, 200, 70));
}

TEST_F(KWLayoutViewTest, NegativeSizesBecomeZero) {
    view.addColumnWithWidthPercent(1, true);
    const QWidget* const fixed = addPane(150, false);
    const QWidget* const relative = addPane(1, true);
    view.finishedAddingPanes();
    EXPECT_EQ(fixed->geometry(), QRect(0, 0, 200, 150));
    EXPECT_EQ(pane(0, 1).objectForKey(KWPaneActualHeightKey), QVariant(-50.0f));
    EXPECT_EQ(relative->geometry(), QRect(0, 150, 200, 0));
}

TEST_F(KWLayoutViewTest, SizesThatMakeNoSenseGiveFramesThatQtAccepts) {
    for (const float bad : {0.0f, -1.0f, -1e30f, 1e30f, infinity, -infinity, notANumber, 3e38f}) {
        for (const bool isPercent : {false, true}) {
            KWLayoutView bigger(QRect(0, 0, 200, 100));
            bigger.setInterpaneSpace(7);
            bigger.addColumnWithWidthPercent(bad, isPercent);
            bigger.addColumnWithWidthPercent(1, true);
            std::vector<QWidget*> children;
            for (int i = 0; i < 4; ++i) {
                children.push_back(new QWidget);
                bigger.addPaneHeightPercentColumn(children.back(), i % 2 ? bad : 1, isPercent,
                                                  i / 2);
            }
            bigger.finishedAddingPanes();
            bigger.grab();
            for (const QWidget* child : children) {
                EXPECT_GE(child->width(), 0);
                EXPECT_LE(child->width(), limit);
                EXPECT_GE(child->height(), 0);
                EXPECT_LE(child->height(), limit);
                EXPECT_LE(std::abs(child->x()), limit);
                EXPECT_LE(std::abs(child->y()), limit);
            }
        }
    }
}

TEST_F(KWLayoutViewTest, AnyGapGivesFramesThatQtAccepts) {
    view.addColumnWithWidthPercent(1, true);
    const QWidget* const child = addPane(1, true);
    for (const std::int32_t space :
         {std::numeric_limits<std::int32_t>::max(), std::numeric_limits<std::int32_t>::min()}) {
        view.setInterpaneSpace(space);
        view.updateSubviewSizes();
        EXPECT_GE(child->width(), 0);
        EXPECT_LE(child->width(), limit);
        view.grab();
    }
}

TEST_F(KWLayoutViewTest, ColumnsRunFromLeftToRightInEveryLanguage) {
    view.setLayoutDirection(Qt::RightToLeft);
    view.addColumnWithWidthPercent(50, false);
    view.addColumnWithWidthPercent(1, true);
    const QWidget* const first = addPane(1, true, 0);
    const QWidget* const second = addPane(1, true, 1);
    view.finishedAddingPanes();
    EXPECT_EQ(first->geometry(), QRect(0, 0, 50, 100));
    EXPECT_EQ(second->geometry(), QRect(50, 0, 150, 100));
}

TEST_F(KWLayoutViewTest, DrawsItsBackgroundBehindThePanes) {
    QImage image(3, 3, QImage::Format_RGB32);
    image.fill(Qt::green);
    const QImage before = view.grab().toImage();
    QSignalSpy spy(&view, &KWLayoutView::settingsChanged);
    view.setImageBackground(
        std::make_shared<KWImageBackground>(image, std::array<std::int32_t, 4>{1, 2, 0, 1}));
    EXPECT_EQ(spy.count(), 1);
    view.addColumnWithWidthPercent(1, true);
    view.setInterpaneSpace(10);
    auto* const child = addPane(1, true);
    child->setAutoFillBackground(true);
    child->setPalette(QPalette(Qt::red));
    view.finishedAddingPanes();
    const QImage picture = view.grab().toImage();
    EXPECT_EQ(picture.pixelColor(0, 0), QColor(Qt::green));
    EXPECT_EQ(picture.pixelColor(199, 99), QColor(Qt::green));
    EXPECT_EQ(picture.pixelColor(100, 50), QColor(Qt::red));
    view.setImageBackground(nullptr);
    view.setVisibleColumn(false, 0);
    EXPECT_EQ(view.grab().toImage(), before);
}

TEST_F(KWLayoutViewTest, RandomGridsAreLaidOutAsThePlainModelSays) {
    std::mt19937 random(7);
    const auto below = [&](int count) { return static_cast<int>(random() % unsigned(count)); };
    for (int round = 0; round < 150; ++round) {
        const int w = below(900);
        const int h = below(700);
        const int s = below(12);
        KWLayoutView grid(QRect(0, 0, w, h));
        grid.setInterpaneSpace(s);
        PlainModel model;
        const int columnCount = below(7);
        const auto item = [&] {
            const bool isPercent = below(2) != 0;
            const auto size = static_cast<float>(below(isPercent ? 100 : 9000)) / 37.0f;
            return PlainModel::Item{isPercent && below(12) == 0 ? 0 : size, isPercent, true};
        };
        for (int c = 0; c < columnCount; ++c) {
            model.columns.push_back({item(), {}});
            const PlainModel::Item& added = model.columns.back().item;
            grid.addColumnWithWidthPercent(added.size, added.isPercent);
        }
        for (int c = 0; c < columnCount; ++c) {
            for (int p = below(6); p > 0; --p) {
                PlainModel::Item& added =
                    model.columns[static_cast<std::size_t>(c)].panes.emplace_back(item());
                grid.addPaneHeightPercentColumn(below(8) ? new QWidget : nullptr, added.size,
                                                added.isPercent, c);
            }
        }
        const auto compare = [&] {
            for (std::size_t c = 0; c < model.columns.size(); ++c) {
                const PlainModel::Column& column = model.columns[c];
                const KWLayoutColumn& record = *grid.columns()->at(c);
                EXPECT_EQ(record.share().actualOffset, column.item.offset);
                EXPECT_EQ(record.share().actualSize, column.item.actual);
                for (std::size_t p = 0; p < column.panes.size(); ++p) {
                    const PlainModel::Item& pane = column.panes[p];
                    const KWLayoutPane& paneRecord = *record.panes()->at(p);
                    EXPECT_EQ(paneRecord.share().actualOffset, pane.offset);
                    EXPECT_EQ(paneRecord.share().actualSize, pane.actual);
                    const QWidget* const child = paneRecord.view();
                    if (!child)
                        continue;
                    EXPECT_EQ(child->geometry(), PlainModel::frameOf(column, pane, grid.height()));
                    EXPECT_EQ(child->parentWidget() == &grid,
                              column.item.isVisible && pane.isVisible);
                }
            }
        };
        grid.finishedAddingPanes();
        model.layOut(static_cast<float>(w), static_cast<float>(h), static_cast<float>(s));
        compare();
        for (int step = 0; step < 6 && columnCount > 0; ++step) {
            const int c = below(columnCount);
            PlainModel::Column& column = model.columns[static_cast<std::size_t>(c)];
            const int p = below(static_cast<int>(column.panes.size()) + 1) - 1;
            PlainModel::Item& toggled =
                p < 0 ? column.item : column.panes[static_cast<std::size_t>(p)];
            toggled.isVisible = !toggled.isVisible;
            grid.resize(below(900), below(700));
            grid.toggleVisibleColumnPane(c, p);
            model.layOut(static_cast<float>(grid.width()), static_cast<float>(grid.height()),
                         static_cast<float>(s));
            compare();
        }
        if (HasFailure())
            FAIL() << "in round " << round;
    }
}
