#include "UndoManagerTestSupport.h"

#include <KWFoundation/KWNotificationCenter.h>

#include <functional>
#include <random>
#include <stdexcept>
#include <utility>
#include <vector>

using KWUndoManagerTest = UndoManagerFixture;

TEST_F(KWUndoManagerTest, StartsEmpty) {
    EXPECT_FALSE(manager->canUndo());
    EXPECT_FALSE(manager->canRedo());
    EXPECT_EQ(manager->groupingLevel(), 0);
    EXPECT_EQ(manager->undoActionName(), "");
    manager->undo();
    manager->redo();
    manager->setActionName("nothing to name");
    EXPECT_EQ(manager->undoActionName(), "");
}

TEST_F(KWUndoManagerTest, EachRegistrationIsAStepOfItsOwn) {
    counter->setValue(1);
    counter->setValue(2);
    manager->undo();
    EXPECT_EQ(counter->value(), 1);
    manager->undo();
    EXPECT_EQ(counter->value(), 0);
    EXPECT_FALSE(manager->canUndo());
}

TEST_F(KWUndoManagerTest, WhatIsRegisteredWhileUndoingRedoes) {
    counter->setValue(1);
    counter->setValue(2);
    manager->undo();
    manager->undo();
    manager->redo();
    EXPECT_EQ(counter->value(), 1);
    manager->redo();
    EXPECT_EQ(counter->value(), 2);
    EXPECT_FALSE(manager->canRedo());
    manager->undo();
    EXPECT_EQ(counter->value(), 1);
    EXPECT_TRUE(manager->canRedo());
}

TEST_F(KWUndoManagerTest, ANewEditEmptiesTheRedoStack) {
    counter->setValue(1);
    manager->undo();
    EXPECT_TRUE(manager->canRedo());
    counter->setValue(7);
    EXPECT_FALSE(manager->canRedo());
    manager->redo();
    EXPECT_EQ(counter->value(), 7);
}

TEST_F(KWUndoManagerTest, AnEditInAGroupEmptiesTheRedoStackToo) {
    counter->setValue(1);
    manager->undo();
    manager->beginUndoGrouping();
    counter->setValue(7);
    manager->endUndoGrouping();
    EXPECT_FALSE(manager->canRedo());
}

TEST_F(KWUndoManagerTest, RedoingKeepsTheRestOfTheRedoStack) {
    counter->setValue(1);
    counter->setValue(2);
    counter->setValue(3);
    for (int i = 0; i < 3; ++i)
        manager->undo();
    manager->redo();
    EXPECT_TRUE(manager->canRedo());
    manager->redo();
    manager->redo();
    EXPECT_EQ(counter->value(), 3);
}

TEST_F(KWUndoManagerTest, AGroupIsOneStepUndoneInReverse) {
    manager->beginUndoGrouping();
    note('a');
    note('b');
    note('c');
    manager->endUndoGrouping();
    manager->undo();
    EXPECT_EQ(order, "cba");
    EXPECT_FALSE(manager->canUndo());
}

TEST_F(KWUndoManagerTest, AGroupIsRedoneInTheOrderItWasMade) {
    std::vector<std::string> edits;
    const std::function<void(std::string, bool)> edit = [&](const std::string& name, bool isDone) {
        edits.push_back(name + (isDone ? "+" : "-"));
        manager->registerUndo(target, [&, name, isDone] { edit(name, !isDone); });
    };
    manager->beginUndoGrouping();
    edit("a", true);
    edit("b", true);
    manager->endUndoGrouping();
    edits.clear();
    manager->undo();
    EXPECT_EQ(edits, (std::vector<std::string>{"b-", "a-"}));
    edits.clear();
    manager->redo();
    EXPECT_EQ(edits, (std::vector<std::string>{"a+", "b+"}));
}

TEST_F(KWUndoManagerTest, GroupsNest) {
    manager->beginUndoGrouping();
    note('a');
    manager->beginUndoGrouping();
    EXPECT_EQ(manager->groupingLevel(), 2);
    note('b');
    manager->endUndoGrouping();
    EXPECT_EQ(manager->groupingLevel(), 1);
    note('c');
    manager->endUndoGrouping();
    manager->undo();
    EXPECT_EQ(order, "cba");
    EXPECT_FALSE(manager->canUndo());
}

TEST_F(KWUndoManagerTest, AnEmptyGroupLeavesNoStepAndNoName) {
    counter->setValue(1);
    manager->undo();
    manager->beginUndoGrouping();
    manager->setActionName("Nothing");
    manager->endUndoGrouping();
    EXPECT_FALSE(manager->canUndo());
    EXPECT_TRUE(manager->canRedo());
    counter->setValue(2);
    EXPECT_EQ(manager->undoActionName(), "");
}

TEST_F(KWUndoManagerTest, EndingAGroupThatIsNotOpenIsAnError) {
    EXPECT_THROW(manager->endUndoGrouping(), std::logic_error);
    EXPECT_EQ(manager->groupingLevel(), 0);
}

TEST_F(KWUndoManagerTest, NothingIsUndoneWhileAGroupIsOpen) {
    counter->setValue(1);
    counter->setValue(2);
    manager->undo();
    manager->beginUndoGrouping();
    EXPECT_FALSE(manager->canUndo());
    EXPECT_FALSE(manager->canRedo());
    manager->undo();
    manager->redo();
    EXPECT_EQ(counter->value(), 1);
    manager->endUndoGrouping();
    EXPECT_TRUE(manager->canUndo());
    EXPECT_TRUE(manager->canRedo());
}

TEST_F(KWUndoManagerTest, TargetsAreNotKeptAlive) {
    note('a');
    EXPECT_EQ(target.use_count(), 1);
}

TEST_F(KWUndoManagerTest, ATargetIsKeptAliveWhileItsActionRuns) {
    const std::weak_ptr<KWObject> weak = target;
    manager->registerUndo(target, [&] {
        target.reset();
        EXPECT_FALSE(weak.expired());
    });
    manager->undo();
    EXPECT_TRUE(weak.expired());
}

TEST_F(KWUndoManagerTest, ActionsOfDeadTargetsAreSkipped) {
    auto mortal = std::make_shared<KWObject>();
    manager->beginUndoGrouping();
    note('a');
    note('x', mortal);
    note('b');
    manager->endUndoGrouping();
    mortal.reset();
    manager->undo();
    EXPECT_EQ(order, "ba");
}

TEST_F(KWUndoManagerTest, StepsWithOnlyDeadTargetsDoNotCount) {
    auto mortal = std::make_shared<KWObject>();
    note('a');
    manager->setActionName("Living");
    note('x', mortal);
    note('y', mortal);
    manager->setActionName("Dead");
    mortal.reset();
    EXPECT_TRUE(manager->canUndo());
    EXPECT_EQ(manager->undoActionName(), "Living");
    manager->undo();
    EXPECT_EQ(order, "a");
    EXPECT_FALSE(manager->canUndo());
    note('z', mortal = std::make_shared<KWObject>());
    mortal.reset();
    EXPECT_FALSE(manager->canUndo());
    manager->undo();
    EXPECT_EQ(order, "a");
}

TEST_F(KWUndoManagerTest, ADeadTargetRegistersNothing) {
    counter->setValue(1);
    manager->undo();
    note('x', nullptr);
    EXPECT_FALSE(manager->canUndo());
    EXPECT_TRUE(manager->canRedo());
}

TEST_F(KWUndoManagerTest, TellsWhetherItUndoesOrRedoes) {
    manager->registerUndo(target, [&] {
        manager->registerUndo(target, [&] {
            EXPECT_FALSE(manager->isUndoing());
            EXPECT_TRUE(manager->isRedoing());
            order += 'r';
        });
    });
    manager->undo();
    manager->redo();
    EXPECT_EQ(order, "r");
}

TEST_F(KWUndoManagerTest, RemovesTheActionsOfATargetEverywhere) {
    const auto other = std::make_shared<KWObject>();
    manager->registerUndo(target, [&] { note('r'); });
    manager->undo();
    manager->removeAllActionsWithTarget(*target);
    EXPECT_FALSE(manager->canRedo());
    note('x');
    manager->beginUndoGrouping();
    note('y');
    note('o', other);
    manager->removeAllActionsWithTarget(*target);
    note('z');
    manager->endUndoGrouping();
    manager->undo();
    EXPECT_EQ(order, "zo");
    EXPECT_FALSE(manager->canUndo());
}

TEST_F(KWUndoManagerTest, RemovesAllActions) {
    counter->setValue(1);
    counter->setValue(2);
    manager->undo();
    manager->beginUndoGrouping();
    note('x');
    manager->removeAllActions();
    EXPECT_EQ(manager->groupingLevel(), 1);
    manager->endUndoGrouping();
    EXPECT_FALSE(manager->canUndo());
    EXPECT_FALSE(manager->canRedo());
}

TEST_F(KWUndoManagerTest, NamesTheLatestStep) {
    counter->setValue(1);
    manager->setActionName("Move Key");
    counter->setValue(2);
    EXPECT_EQ(manager->undoActionName(), "");
    manager->setActionName("Add Key");
    EXPECT_EQ(manager->undoActionName(), "Add Key");
    manager->undo();
    EXPECT_EQ(manager->undoActionName(), "Move Key");
}

TEST_F(KWUndoManagerTest, NamesTheOpenGroup) {
    counter->setValue(1);
    manager->setActionName("First");
    manager->beginUndoGrouping();
    counter->setValue(2);
    manager->beginUndoGrouping();
    manager->setActionName("Inner");
    manager->endUndoGrouping();
    manager->setActionName("Outer");
    EXPECT_EQ(manager->undoActionName(), "");
    manager->endUndoGrouping();
    EXPECT_EQ(manager->undoActionName(), "Outer");
    manager->undo();
    EXPECT_EQ(manager->undoActionName(), "First");
}

TEST_F(KWUndoManagerTest, NamesTravelToRedoAndBack) {
    counter->setValue(1);
    manager->setActionName("Move Key");
    counter->setValue(2);
    manager->setActionName("Add Key");
    manager->undo();
    EXPECT_EQ(manager->redoActionName(), "Add Key");
    manager->undo();
    EXPECT_EQ(manager->redoActionName(), "Move Key");
    EXPECT_EQ(manager->undoActionName(), "");
    manager->redo();
    EXPECT_EQ(manager->undoActionName(), "Move Key");
    EXPECT_EQ(manager->redoActionName(), "Add Key");
}

TEST_F(KWUndoManagerTest, TellsOfEachChange) {
    int notices = 0;
    const auto token = KWNotificationCenter::defaultCenter().addObserver(
        KWUndoManagerDidChangeNotification, manager.get(), [&](const KWNotification& notification) {
            EXPECT_EQ(notification.object(), manager.get());
            EXPECT_FALSE(manager->isUndoing());
            ++notices;
        });
    const auto noticesOf = [&](const auto& action) {
        notices = 0;
        action();
        return notices;
    };
    EXPECT_EQ(noticesOf([&] { counter->setValue(1); }), 1);
    EXPECT_EQ(noticesOf([&] { manager->setActionName("Move"); }), 1);
    EXPECT_EQ(noticesOf([&] { manager->setActionName("Move"); }), 0);
    EXPECT_EQ(noticesOf([&] { manager->undo(); }), 1);
    EXPECT_EQ(noticesOf([&] { manager->undo(); }), 0);
    EXPECT_EQ(noticesOf([&] { manager->redo(); }), 1);
    EXPECT_EQ(noticesOf([&] { manager->beginUndoGrouping(); }), 0);
    EXPECT_EQ(noticesOf([&] { note('a'); }), 0);
    EXPECT_EQ(noticesOf([&] { manager->endUndoGrouping(); }), 1);
    EXPECT_EQ(noticesOf([&] { manager->removeAllActionsWithTarget(*target); }), 1);
    EXPECT_EQ(noticesOf([&] { manager->removeAllActionsWithTarget(*target); }), 0);
    EXPECT_EQ(noticesOf([&] { manager->removeAllActions(); }), 1);
    EXPECT_EQ(noticesOf([&] { manager->removeAllActions(); }), 0);
    manager->registerUndo(target, [] { throw std::runtime_error("action"); });
    EXPECT_EQ(noticesOf([&] { EXPECT_THROW(manager->undo(), std::runtime_error); }), 1);
    counter->setValue(1);
    manager->undo();
    manager->beginUndoGrouping();
    EXPECT_EQ(noticesOf([&] { note('a'); }), 1) << "the redo stack is emptied";
}

TEST_F(KWUndoManagerTest, TheFirstOfSeveralTargetsMayLeaveItsStep) {
    const auto other = std::make_shared<KWObject>();
    for (const bool isFirst : {true, false}) {
        order.clear();
        manager->beginUndoGrouping();
        note('a', isFirst ? other : target);
        note('b');
        note('c', other);
        note('d');
        manager->endUndoGrouping();
        manager->removeAllActionsWithTarget(*other);
        manager->undo();
        EXPECT_EQ(order, isFirst ? "db" : "dba");
        EXPECT_FALSE(manager->canUndo());
    }
}

TEST_F(KWUndoManagerTest, WorksWithoutBeingShared) {
    KWUndoManager alone;
    const auto other = std::make_shared<Counter>(alone);
    other->setValue(3);
    alone.setActionName("Set");
    alone.undo();
    EXPECT_EQ(other->value(), 0);
    alone.redo();
    EXPECT_EQ(other->value(), 3);
}

TEST_F(KWUndoManagerTest, RandomEditsUndoAndRedoAsWholeStatesDo) {
    // The model keeps the whole state before and after each step.
    using Values = std::vector<int>;
    for (std::uint32_t seed = 0; seed < 60; ++seed) {
        std::mt19937 random(seed);
        KWUndoManager undoManager;
        std::vector<std::shared_ptr<Counter>> counters;
        for (int i = 0; i < 4; ++i)
            counters.push_back(std::make_shared<Counter>(undoManager));
        const auto values = [&] {
            Values all;
            for (const auto& each : counters)
                all.push_back(each->value());
            return all;
        };
        struct Step {
            Values before, after;
            std::string name;
        };
        std::vector<Step> done, undone;
        const auto edit = [&] {
            counters[random() % counters.size()]->setValue(static_cast<int>(random() % 100));
        };
        const Values start = values();
        for (int i = 0; i < 300; ++i) {
            const std::size_t choice = random() % 8;
            if (choice < 3) {
                const Values before = values();
                edit();
                done.push_back({before, values(), ""});
                undone.clear();
            } else if (choice == 3) {
                const Values before = values();
                const std::string name = std::to_string(i);
                undoManager.beginUndoGrouping();
                undoManager.setActionName(name);
                const std::size_t count = random() % 4;
                for (std::size_t n = 0; n < count; ++n) {
                    undoManager.beginUndoGrouping();
                    edit();
                    undoManager.endUndoGrouping();
                }
                undoManager.endUndoGrouping();
                if (count > 0) {
                    done.push_back({before, values(), name});
                    undone.clear();
                }
            } else if (choice < 6) {
                undoManager.undo();
                if (!done.empty()) {
                    ASSERT_EQ(values(), done.back().before);
                    undone.push_back(done.back());
                    done.pop_back();
                }
            } else {
                undoManager.redo();
                if (!undone.empty()) {
                    ASSERT_EQ(values(), undone.back().after);
                    done.push_back(undone.back());
                    undone.pop_back();
                }
            }
            ASSERT_EQ(undoManager.canUndo(), !done.empty());
            ASSERT_EQ(undoManager.canRedo(), !undone.empty());
            ASSERT_EQ(undoManager.undoActionName(), done.empty() ? "" : done.back().name);
            ASSERT_EQ(undoManager.redoActionName(), undone.empty() ? "" : undone.back().name);
        }
        const Values end = undone.empty() ? values() : undone.front().after;
        while (undoManager.canUndo())
            undoManager.undo();
        EXPECT_EQ(values(), start);
        while (undoManager.canRedo())
            undoManager.redo();
        EXPECT_EQ(values(), end);
    }
}

TEST_F(KWUndoManagerTest, TheHistoryNamesEveryStepInTheOrderItWouldRun) {
    for (const char* const name : {"first", "second", "third"}) {
        counter->setValue(counter->value() + 1);
        manager->setActionName(name);
    }
    manager->undo();
    EXPECT_EQ(manager->undoActionNames(), (std::vector<std::string>{"second", "first"}));
    EXPECT_EQ(manager->redoActionNames(), (std::vector<std::string>{"third"}));
    manager->undo();
    EXPECT_EQ(manager->redoActionNames(), (std::vector<std::string>{"second", "third"}));
    manager->beginUndoGrouping();
    EXPECT_TRUE(manager->undoActionNames().empty());
    EXPECT_TRUE(manager->redoActionNames().empty());
    manager->endUndoGrouping();
}

TEST_F(KWUndoManagerTest, StepsWhoseTargetIsGoneAreNotInTheHistory) {
    auto brief = std::make_shared<KWObject>();
    manager->registerUndo(brief, [] {});
    manager->setActionName("gone");
    counter->setValue(1);
    manager->setActionName("stays");
    brief.reset();
    EXPECT_EQ(manager->undoActionNames(), (std::vector<std::string>{"stays"}));
}

TEST_F(KWUndoManagerTest, AStateIsFoundAgainByUndoAndRedoAndByNothingElse) {
    const std::uint64_t fresh = manager->stateIdentifier();
    counter->setValue(1);
    const std::uint64_t first = manager->stateIdentifier();
    EXPECT_NE(first, fresh);
    manager->undo();
    EXPECT_EQ(manager->stateIdentifier(), fresh);
    manager->redo();
    EXPECT_EQ(manager->stateIdentifier(), first);
    manager->undo();
    counter->setValue(1);
    EXPECT_NE(manager->stateIdentifier(), first);
    EXPECT_NE(manager->stateIdentifier(), fresh);
}
