#include "OutlineTestSupport.h"

#include <KWBase/KWConstantChannel.h>
#include <KWBase/KWUnitController.h>
#include <KWDesktop/KWOutlineDelegate.h>
#include <KWDesktop/KWValueDelegate.h>
#include <KWFoundation/KWUndoManager.h>

#include <QAbstractItemModelTester>
#include <QApplication>
#include <QFontDatabase>
#include <QHeaderView>
#include <QHelpEvent>
#include <QLineEdit>
#include <QSignalSpy>
#include <QTest>
#include <QToolTip>
#include <algorithm>
#include <random>

namespace {

class KWOutlineModelTest : public testing::Test {
  protected:
    KWOutlineModelTest() {
        source.view = &view;
        model = new KWOutlineModel(
            view, {{"channels", QStringLiteral("Name")}, {"values", QStringLiteral("Value")}});
        view.setItemDelegateForColumn(1, new KWValueDelegate(&view));
        view.resize(300, 400);
        a = source.add("a");
        b = source.add("b");
        a1 = source.add("a1", a, false);
        a2 = source.add("a2", a, false);
        b1 = source.add("b1", b);
        b11 = source.add("b11", b1, false);
        model->setDataSource(&source);
    }

    void show() {
        view.show();
        view.activateWindow();
        ASSERT_TRUE(QTest::qWaitForWindowActive(&view));
    }
    void click(const TestItemPointer& item) {
        const QModelIndex index = model->indexForItem(item);
        ASSERT_TRUE(index.isValid());
        QTest::mouseClick(view.viewport(), Qt::LeftButton, {}, view.visualRect(index).center());
    }
    std::vector<std::string> takeTold() { return std::exchange(source.told, {}); }

    TestSource source;
    QTreeView view;
    KWOutlineModel* model;
    TestItemPointer a, b, a1, a2, b1, b11;
};

using Names = std::vector<std::string>;

} // namespace

TEST_F(KWOutlineModelTest, ShowsWhatTheSourceAnswers) {
    EXPECT_EQ(shownRows(view), "a b");
    model->expandItem(a);
    model->expandItem(b, true);
    EXPECT_EQ(shownRows(view), "a+ .a1 .a2 b+ .b1+ ..b11");
    EXPECT_EQ(model->headerData(1, Qt::Horizontal).toString(), QStringLiteral("Value"));
    EXPECT_EQ(model->columnWithIdentifier("values"), 1);
    EXPECT_EQ(model->columnWithIdentifier("view"), -1);
    EXPECT_EQ(model->itemForIndex(model->indexForItem(a2)), a2);
    EXPECT_EQ(model->itemForIndex({}), nullptr);
}

TEST_F(KWOutlineModelTest, RowsAreAskedForOnlyWhenTheyAreWanted) {
    view.grab();
    EXPECT_EQ(source.questions, 1) << "only the root's rows are seen";
    model->reloadData();
    EXPECT_EQ(source.questions, 2);
}

TEST_F(KWOutlineModelTest, NumbersHaveSevenDigitsAndStandOnTheRight) {
    a1->value = 1.0f / 3;
    model->expandItem(a);
    const QModelIndex index = model->indexForItem(a1, 1);
    EXPECT_EQ(index.data().toString(), QStringLiteral("0.3333333"));
    EXPECT_EQ(index.data(Qt::EditRole).toFloat(), 1.0f / 3);
    EXPECT_EQ(index.data(Qt::TextAlignmentRole).toInt(), Qt::AlignRight | Qt::AlignVCenter);
    EXPECT_EQ(index.data(Qt::FontRole).value<QFont>().pixelSize(), 11);
}

TEST_F(KWOutlineModelTest, RowsWhoseLookUpFailsAreLeftOut) {
    source.missing = 3;
    source.root->children.insert(source.root->children.begin() + 1, nullptr);
    model->reloadData();
    EXPECT_EQ(shownRows(view), "a b");
    EXPECT_EQ(model->rowCount(), 2);
    model->expandItem(a);
    EXPECT_EQ(shownRows(view), "a+ .a1 .a2 b");
    source.missing = -100;
    model->reloadData();
    EXPECT_EQ(model->rowCount(), 0);
}

TEST_F(KWOutlineModelTest, AnItemThatIsItsOwnAncestorIsLeftOut) {
    b1->children.push_back(b);
    b1->children.push_back(b1);
    model->expandItem(nullptr, true);
    EXPECT_EQ(shownRows(view), "a+ .a1 .a2 b+ .b1+ ..b11");
    b1->children.clear();
}

TEST_F(KWOutlineModelTest, WhatTheSourceThrowsIsLoggedAndShowsNothing) {
    LogLines log;
    source.also = [] { throw std::runtime_error("no rows today"); };
    model->reloadData();
    source.also = nullptr;
    EXPECT_EQ(model->rowCount(), 0);
    ASSERT_EQ(log.lines.size(), 1u);
    EXPECT_NE(log.lines.front().find("no rows today"), std::string::npos);
}

TEST_F(KWOutlineModelTest, ASourceThatIsGoneIsNotAskedAnyMore) {
    auto other = std::make_unique<TestSource>();
    other->view = &view;
    other->add("only");
    model->setDataSource(other.get());
    EXPECT_EQ(shownRows(view), "only");
    other.reset();
    EXPECT_EQ(model->dataSource(), nullptr);
    view.grab();
    model->reloadData();
    EXPECT_EQ(model->rowCount(), 0);
}

TEST_F(KWOutlineModelTest, ReloadingFromWithinAQuestionHappensLater) {
    bool isFirst = true;
    source.also = [&] {
        if (std::exchange(isFirst, false))
            model->reloadData();
    };
    QSignalSpy reloads(model, &KWOutlineModel::reloaded);
    model->reloadData();
    EXPECT_EQ(reloads.count(), 1);
    passEventLoop();
    EXPECT_EQ(reloads.count(), 2);
    source.also = nullptr;
}

TEST_F(KWOutlineModelTest, ExpansionAndSelectionSurviveAReload) {
    model->expandItem(b, true);
    model->selectItem(b11);
    takeTold();
    source.root->children.insert(source.root->children.begin(), std::make_shared<TestItem>("new"));
    b->children.insert(b->children.begin(), std::make_shared<TestItem>("b0"));
    model->reloadData();
    EXPECT_EQ(shownRows(view), "new a b+ .b0 .b1+ ..b11");
    EXPECT_EQ(model->selectedItem(), b11);
    EXPECT_EQ(takeTold(), Names{});
}

TEST_F(KWOutlineModelTest, RowsInAnotherOrderStayTheSameRows) {
    model->expandItem(nullptr, true);
    model->selectItem(a2);
    takeTold();
    std::swap(source.root->children[0], source.root->children[1]);
    std::swap(a->children[0], a->children[1]);
    model->reloadData();
    EXPECT_EQ(shownRows(view), "b+ .b1+ ..b11 a+ .a2 .a1");
    EXPECT_EQ(model->selectedItem(), a2);
    EXPECT_EQ(takeTold(), Names{});
}

TEST_F(KWOutlineModelTest, AnItemInTheOthersPlaceTakesOverItsRow) {
    model->expandItem(nullptr, true);
    model->selectItem(a1);
    takeTold();
    const QPersistentModelIndex row = model->indexForItem(a1);
    a->children[0] = std::make_shared<TestItem>("other", false);
    model->reloadData();
    EXPECT_EQ(shownRows(view), "a+ .other .a2 b+ .b1+ ..b11");
    EXPECT_TRUE(row.isValid());
    EXPECT_EQ(model->selectedItem(), a->children[0]);
    EXPECT_EQ(takeTold(), Names{"other"});
}

TEST_F(KWOutlineModelTest, AFolderInTheOthersPlaceStaysOpen) {
    model->expandItem(nullptr, true);
    auto other = std::make_shared<TestItem>("other");
    other->children = a->children;
    source.root->children[0] = other;
    model->selectItem(a2);
    takeTold();
    model->reloadData();
    EXPECT_EQ(shownRows(view), "other+ .a1 .a2 b+ .b1+ ..b11");
    EXPECT_EQ(model->selectedItem(), a2);
    EXPECT_EQ(takeTold(), Names{});
}

TEST_F(KWOutlineModelTest, ALeafInAFoldersPlaceHasNoRowsBelowIt) {
    model->expandItem(nullptr, true);
    source.root->children[1] = std::make_shared<TestItem>("leaf", false);
    model->reloadData();
    EXPECT_EQ(shownRows(view), "a+ .a1 .a2 leaf");
    EXPECT_EQ(rowsByWalking(view), (Names{"a", "a1", "a2", "leaf"}));
}

TEST_F(KWOutlineModelTest, ARowThatGoesLeavesNothingSelected) {
    model->expandItem(nullptr, true);
    model->selectItem(a1);
    takeTold();
    a->children.pop_back();
    a->children.pop_back();
    model->reloadData();
    EXPECT_EQ(model->selectedItem(), nullptr);
    EXPECT_EQ(takeTold(), Names{"-"});
    model->reloadData();
    EXPECT_EQ(takeTold(), Names{});
}

TEST_F(KWOutlineModelTest, TheNeighbourOfARowThatGoesIsNotSelectedInItsPlace) {
    show();
    model->expandItem(nullptr, true);
    click(a1);
    takeTold();
    std::swap(a->children[0], a->children[1]);
    a->children.pop_back();
    model->reloadData();
    EXPECT_EQ(shownRows(view), "a+ .a2 b+ .b1+ ..b11");
    EXPECT_EQ(model->selectedItem(), nullptr);
    EXPECT_EQ(takeTold(), Names{"-"});
}

TEST_F(KWOutlineModelTest, AnItemThatMovesToAnotherParentStaysSelectedAndOpen) {
    model->expandItem(nullptr, true);
    model->selectItem(b11);
    takeTold();
    a->children.push_back(b1);
    b->children.clear();
    model->reloadData();
    EXPECT_EQ(shownRows(view), "a+ .a1 .a2 .b1+ ..b11 b+");
    EXPECT_EQ(model->selectedItem(), b11);
    EXPECT_EQ(takeTold(), Names{});
}

TEST_F(KWOutlineModelTest, TheSourceHearsOfASelectionOnlyWhenTheItemChanges) {
    show();
    click(a);
    EXPECT_EQ(takeTold(), Names{"a"});
    click(a);
    EXPECT_EQ(takeTold(), Names{});
    model->reloadData();
    model->reloadItem(a, true);
    a->name = "renamed";
    model->reloadData();
    model->setValuesNeedRefresh();
    passEventLoop();
    EXPECT_EQ(takeTold(), Names{});
    click(b);
    EXPECT_EQ(takeTold(), Names{"b"});
    EXPECT_TRUE(model->selectItem(nullptr));
    EXPECT_EQ(takeTold(), Names{"-"});
}

TEST_F(KWOutlineModelTest, SelectingAnItemOpensTheRowsAboveIt) {
    EXPECT_TRUE(model->selectItem(b11));
    EXPECT_EQ(shownRows(view), "a b+ .b1+ ..b11");
    EXPECT_EQ(model->selectedItem(), b11);
    EXPECT_FALSE(model->selectItem(std::make_shared<TestItem>("stranger")));
    EXPECT_EQ(model->selectedItem(), b11);
}

TEST_F(KWOutlineModelTest, ReloadingAnItemTellsThatRowAlone) {
    model->expandItem(nullptr, true);
    QSignalSpy changes(model, &QAbstractItemModel::dataChanged);
    model->reloadItem(a2);
    ASSERT_EQ(changes.count(), 1);
    EXPECT_EQ(changes[0][0].toModelIndex(), model->indexForItem(a2));
    EXPECT_EQ(changes[0][1].toModelIndex(), model->indexForItem(a2, 1));
    changes.clear();
    model->reloadItem(std::make_shared<TestItem>("stranger"));
    model->reloadItem(nullptr);
    EXPECT_EQ(changes.count(), 0);
    a->children.push_back(std::make_shared<TestItem>("a3", false));
    model->reloadItem(a);
    EXPECT_EQ(shownRows(view), "a+ .a1 .a2 b+ .b1+ ..b11");
    model->reloadItem(a, true);
    EXPECT_EQ(shownRows(view), "a+ .a1 .a2 .a3 b+ .b1+ ..b11");
}

TEST_F(KWOutlineModelTest, AnyNumberOfMarksCostsOneReloadAndOneRefresh) {
    show();
    passEventLoop();
    QSignalSpy reloads(model, &KWOutlineModel::reloaded);
    QSignalSpy refreshes(model, &KWOutlineModel::valuesRefreshed);
    for (int k = 0; k < 1000; ++k)
        model->setNeedsReload();
    EXPECT_EQ(reloads.count(), 0);
    passEventLoop();
    EXPECT_EQ(reloads.count(), 1);
    for (int k = 0; k < 1000; ++k)
        model->setValuesNeedRefresh();
    EXPECT_EQ(refreshes.count(), 0);
    passEventLoop();
    EXPECT_EQ(refreshes.count(), 1);
    EXPECT_EQ(reloads.count(), 1);
}

TEST_F(KWOutlineModelTest, TenThousandNoticesInOnePassCostOneRefresh) {
    show();
    model->expandItem(nullptr, true);
    view.grab();
    passEventLoop();
    QSignalSpy refreshes(model, &KWOutlineModel::valuesRefreshed);
    const auto channel = std::make_shared<KWConstantChannel>();
    source.valuesAsked = 0;
    for (int k = 0; k < 10000; ++k)
        channel->didChange();
    EXPECT_EQ(source.valuesAsked, 0);
    passEventLoop();
    EXPECT_EQ(refreshes.count(), 1);
    EXPECT_LE(source.valuesAsked, 6) << "one for each row on the screen";
}

TEST_F(KWOutlineModelTest, ARefreshTellsChangedValuesAlone) {
    show();
    model->expandItem(nullptr, true);
    view.grab();
    QSignalSpy changes(model, &QAbstractItemModel::dataChanged);
    a2->value = 7;
    b11->value = 0.0f;
    model->setValuesNeedRefresh();
    passEventLoop();
    ASSERT_EQ(changes.count(), 1);
    EXPECT_EQ(changes[0][0].toModelIndex(), model->indexForItem(a2, 1));
    EXPECT_EQ(changes[0][1].toModelIndex(), model->indexForItem(a2, 1));
}

TEST_F(KWOutlineModelTest, NoticesUndoAndUnitsMarkTheValues) {
    QSignalSpy refreshes(model, &KWOutlineModel::valuesRefreshed);
    const auto expectRefresh = [&](const char* what) {
        passEventLoop();
        EXPECT_EQ(refreshes.count(), 1) << what;
        refreshes.clear();
    };
    const auto channel = std::make_shared<KWConstantChannel>();
    channel->setValueForTime(1, std::nullopt);
    expectRefresh("a notice of change");
    const auto manager = std::make_shared<KWUndoManager>();
    manager->registerUndo(channel, [] {});
    expectRefresh("an undo manager");
    KWUnitController units;
    units.setDefaultLengthUnit(KWLengthUnitInch);
    expectRefresh("a default unit");
}

TEST_F(KWOutlineModelTest, ARefreshAndAReloadLeaveAnOpenEditorAlone) {
    show();
    model->expandItem(nullptr, true);
    a1->value = 1;
    model->reloadData();
    QTest::mouseClick(view.viewport(), Qt::LeftButton, {},
                      view.visualRect(model->indexForItem(a1, 1)).center());
    view.edit(model->indexForItem(a1, 1));
    auto* const editor = view.findChild<QLineEdit*>();
    ASSERT_NE(editor, nullptr);
    QTest::keyClicks(editor, QStringLiteral("12"));
    view.grab();
    QSignalSpy changes(model, &QAbstractItemModel::dataChanged);
    a1->value = 5;
    model->setValuesNeedRefresh();
    passEventLoop();
    EXPECT_EQ(changes.count(), 0);
    model->reloadData();
    model->reloadItem(a1);
    for (const auto& change : changes)
        EXPECT_NE(change[1].toModelIndex(), model->indexForItem(a1, 1));
    Q_EMIT model->dataChanged(model->indexForItem(a1, 1), model->indexForItem(a1, 1));
    EXPECT_EQ(editor->text(), QStringLiteral("12"));
    EXPECT_EQ(view.findChild<QLineEdit*>(), editor);
    // What was typed is stored after all of it.
    QTest::keyClick(editor, Qt::Key_Return);
    passEventLoop();
    EXPECT_EQ(a1->value, 12.0f);
}

TEST_F(KWOutlineModelTest, TheRowOfAnOpenEditorMayGo) {
    show();
    model->expandItem(nullptr, true);
    view.edit(model->indexForItem(a1, 1));
    auto* const editor = view.findChild<QLineEdit*>();
    ASSERT_NE(editor, nullptr);
    QTest::keyClicks(editor, QStringLiteral("12"));
    a->children.clear();
    model->reloadData();
    passEventLoop();
    EXPECT_EQ(shownRows(view), "a+ b+ .b1+ ..b11");
    EXPECT_EQ(a1->value, 0.0f);
}

TEST_F(KWOutlineModelTest, AnEditorDoesNotPassToTheItemThatTakesItsRow) {
    show();
    model->expandItem(nullptr, true);
    view.edit(model->indexForItem(a1, 1));
    QTest::keyClicks(view.findChild<QLineEdit*>(), QStringLiteral("12"));
    const auto other = std::make_shared<TestItem>("other", false);
    a->children[0] = other;
    model->reloadData();
    passEventLoop();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    EXPECT_EQ(view.findChild<QLineEdit*>(), nullptr);
    EXPECT_EQ(other->value, 0.0f);
    EXPECT_EQ(a1->value, 0.0f);
}

TEST_F(KWOutlineModelTest, LabelsHaveTheStatedLooks) {
    const bool isThere = QFontDatabase::hasFamily(QStringLiteral("Lucida Grande"));
    for (const std::uint32_t index : {0u, 1u, 2u, 3u, 99u, 0xffffffffu}) {
        const KWTextAttributes looks = KWOutlineTextAttributesForIndex(index);
        EXPECT_EQ(looks.font.pixelSize(), index == 2 ? 11 : 12) << index;
        EXPECT_EQ(looks.alignment.testFlag(Qt::AlignRight), index == 2) << index;
        EXPECT_EQ(looks.foreground,
                  index == 0xffffffffu ? QColor::fromRgbF(0.5f, 0, 0.5f) : QColor(Qt::black));
        if (isThere) {
            EXPECT_EQ(looks.font.bold(), index == 0 || index == 0xffffffffu) << index;
        } else {
            EXPECT_EQ(looks.font.family(), QApplication::font().family()) << index;
        }
    }
}

TEST_F(KWOutlineModelTest, ATextThatIsCutShortIsShownInAToolTip) {
    show();
    view.header()->resizeSection(0, 120);
    b->name = "a name that is much too long for its column";
    model->reloadData();
    const auto toolTipOver = [&](const TestItemPointer& item) {
        QToolTip::hideText();
        const QPoint where = view.visualRect(model->indexForItem(item)).center();
        QHelpEvent event(QEvent::ToolTip, where, view.viewport()->mapToGlobal(where));
        QApplication::sendEvent(view.viewport(), &event);
        return QToolTip::text().toStdString();
    };
    EXPECT_NE(toolTipOver(a), "a");
    EXPECT_EQ(toolTipOver(b), b->name);
    QToolTip::hideText();
}

TEST_F(KWOutlineModelTest, ADarkPaletteTurnsColoursAround) {
    QPalette dark;
    dark.setColor(QPalette::Base, QColor(30, 30, 30));
    dark.setColor(QPalette::Text, QColor(220, 220, 220));
    QPalette light;
    light.setColor(QPalette::Base, Qt::white);
    light.setColor(QPalette::Text, Qt::black);
    const QColor purple = QColor::fromRgbF(0.5f, 0, 0.5f);
    const QColor pale = QColor::fromRgbF(0.8f, 0.8f, 0.9f);
    EXPECT_EQ(KWOutlineDelegate::textColorForPalette(Qt::black, light), QColor(Qt::black));
    EXPECT_EQ(KWOutlineDelegate::textColorForPalette(Qt::black, dark), QColor(220, 220, 220));
    EXPECT_EQ(KWOutlineDelegate::textColorForPalette(purple, light), purple);
    EXPECT_GE(KWOutlineDelegate::textColorForPalette(purple, dark).lightnessF(), 0.74f);
    EXPECT_EQ(KWOutlineDelegate::backgroundColorForPalette(pale, light), pale);
    EXPECT_LE(KWOutlineDelegate::backgroundColorForPalette(pale, dark).lightnessF(), 0.3f);
    EXPECT_EQ(KWOutlineDelegate::backgroundColorForPalette(pale, dark).hslHue(), pale.hslHue());
}

namespace {

/// A tree that changes at random, and what a view must show of it, kept by hand.
class RandomTree {
  public:
    RandomTree(TestSource& source, unsigned seed) : _source(source), _random(seed) {}

    TestItemPointer anyFolder() {
        TestItemPointer folder;
        for (unsigned depth = below(3); depth > 0; --depth) {
            auto& children = _source.at(folder).children;
            if (children.empty())
                break;
            const auto& child = children[below(static_cast<unsigned>(children.size()))];
            if (!child || !child->isFolder)
                break;
            folder = child;
        }
        return folder;
    }
    TestItemPointer make() {
        auto item = std::make_shared<TestItem>(std::to_string(++_made), below(3) != 0);
        if (item->isFolder)
            for (unsigned count = below(4); count > 0; --count)
                item->children.push_back(
                    std::make_shared<TestItem>(std::to_string(++_made), false));
        return item;
    }
    void change() {
        auto& list = _source.at(anyFolder()).children;
        const auto place = [&](std::size_t more) {
            return list.begin() + below(static_cast<unsigned>(list.size() + more));
        };
        const unsigned what = below(list.empty() ? 1 : 7);
        if (what == 0 && list.size() < 12)
            list.insert(place(1), make());
        else if (what == 1)
            list.erase(place(0));
        else if (what == 2)
            *place(0) = make();
        else if (what == 3)
            std::shuffle(list.begin(), list.end(), _random);
        else if (what == 4)
            list.insert(place(1), *place(0));
        else if (what == 5)
            *place(0) = nullptr;
        else if (what == 6) {
            const TestItemPointer taken = *place(0);
            std::erase(list, taken);
            auto& other = _source.at(anyFolder()).children;
            if (!taken || &other != &taken->children)
                other.push_back(taken);
        }
    }
    unsigned below(unsigned limit) {
        return limit == 0 ? 0 : static_cast<unsigned>(_random()) % limit;
    }

  private:
    TestSource& _source;
    std::mt19937 _random;
    int _made = 0;
};

void appendRows(const TestItem& item, std::vector<const TestItem*>& path, Names& names) {
    path.push_back(&item);
    for (const auto& child : item.children) {
        if (!child || std::find(path.begin(), path.end(), child.get()) != path.end())
            continue;
        names.push_back(child->name);
        if (child->isFolder)
            appendRows(*child, path, names);
    }
    path.pop_back();
}

} // namespace

TEST_F(KWOutlineModelTest, RandomChangesPassTheModelTesterAndShowTheTree) {
    const QAbstractItemModelTester tester(model,
                                          QAbstractItemModelTester::FailureReportingMode::Warning);
    for (unsigned seed = 0; seed < 6; ++seed) {
        RandomTree tree(source, seed);
        for (int round = 0; round < 40; ++round) {
            for (unsigned count = 1 + tree.below(4); count > 0; --count)
                tree.change();
            if (tree.below(4) == 0)
                model->expandItem(tree.anyFolder());
            const bool isSelecting = tree.below(3) == 0;
            if (const TestItemPointer item = tree.anyFolder(); isSelecting && item)
                model->selectItem(item);
            const auto selected = model->selectedItem();
            model->reloadData();
            if (const auto now = model->selectedItem(); now && now != selected) {
                ASSERT_FALSE(model->indexForItem(selected).isValid());
            }
            if (round % 4 == 0)
                view.grab();
            // Whatever was opened before, everything is now.
            if (round % 10 != 9)
                continue;
            view.expandAll();
            Names expected;
            std::vector<const TestItem*> path;
            appendRows(*source.root, path, expected);
            ASSERT_EQ(rowsByWalking(view), expected) << "seed " << seed << ", round " << round;
        }
        source.root->children = {a, b};
        a->children = {a1, a2};
        b->children = {b1};
        b1->children = {b11};
        model->reloadData();
        EXPECT_EQ(model->rowCount(), 2);
    }
}
