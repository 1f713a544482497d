#include <KWFoundation/KWNotificationCenter.h>
#include <KWFoundation/KWUndoManager.h>

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <random>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

namespace {

/// A value whose every edit registers its inverse.
class Counter : public KWObject {
  public:
    explicit Counter(KWUndoManager& manager) : _manager(&manager) {}

    int value() const { return _value; }
    void setValue(int value) {
        _manager->registerUndo(weak_from_this(), [this, old = _value] { setValue(old); });
        _value = value;
    }

  private:
    KWUndoManager* _manager;
    int _value = 0;
};

class KWUndoManagerTest : public testing::Test {
  protected:
    /// Has undoing or redoing write down a letter, without an inverse.
    void note(char letter, const std::shared_ptr<KWObject>& aTarget) {
        manager->registerUndo(aTarget, [this, letter] { order += letter; });
    }
    void note(char letter) { note(letter, target); }

    std::shared_ptr<KWUndoManager> manager = std::make_shared<KWUndoManager>();
    std::shared_ptr<KWObject> target = std::make_shared<KWObject>();
    std::shared_ptr<Counter> counter = std::make_shared<Counter>(*manager);
    std::string order;
};

} // namespace

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

TEST_F(KWUndoManagerTest, ATargetThatDiesWithinTheStepIsSkipped) {
    auto mortal = std::make_shared<KWObject>();
    manager->beginUndoGrouping();
    note('x', mortal);
    manager->registerUndo(target, [&] { mortal.reset(); });
    manager->endUndoGrouping();
    manager->undo();
    EXPECT_EQ(order, "");
}

TEST_F(KWUndoManagerTest, ADeadTargetRegistersNothing) {
    counter->setValue(1);
    manager->undo();
    note('x', nullptr);
    EXPECT_FALSE(manager->canUndo());
    EXPECT_TRUE(manager->canRedo());
}

TEST_F(KWUndoManagerTest, AThrowingActionLosesItsStepOnly) {
    counter->setValue(1);
    manager->beginUndoGrouping();
    note('x');
    manager->registerUndo(target, [] { throw std::runtime_error("action"); });
    counter->setValue(2);
    manager->endUndoGrouping();
    EXPECT_THROW(manager->undo(), std::runtime_error);
    EXPECT_EQ(order, "");
    EXPECT_FALSE(manager->isUndoing());
    EXPECT_FALSE(manager->canRedo());
    EXPECT_TRUE(manager->canUndo());
    manager->undo();
    EXPECT_EQ(counter->value(), 0);
    EXPECT_TRUE(manager->canRedo());
    manager->redo();
    EXPECT_EQ(counter->value(), 1);
}

TEST_F(KWUndoManagerTest, AThrowingActionKeepsTheRedoStack) {
    counter->setValue(1);
    manager->registerUndo(target, [] { throw std::runtime_error("action"); });
    counter->setValue(2);
    manager->undo();
    EXPECT_THROW(manager->undo(), std::runtime_error);
    EXPECT_TRUE(manager->canRedo());
    manager->redo();
    EXPECT_EQ(counter->value(), 2);
}

TEST_F(KWUndoManagerTest, AThrowingActionClosesTheGroupsItOpened) {
    manager->registerUndo(target, [&] {
        manager->beginUndoGrouping();
        note('x');
        throw std::runtime_error("action");
    });
    EXPECT_THROW(manager->undo(), std::runtime_error);
    EXPECT_EQ(manager->groupingLevel(), 0);
    counter->setValue(1);
    manager->undo();
    EXPECT_EQ(counter->value(), 0);
    EXPECT_EQ(order, "");
}

TEST_F(KWUndoManagerTest, AThrowingRedoLosesItsStepOnly) {
    bool throws = false;
    manager->registerUndo(target, [&] {
        manager->registerUndo(target, [&] {
            if (throws)
                throw std::runtime_error("action");
        });
    });
    counter->setValue(1);
    manager->undo();
    manager->undo();
    throws = true;
    EXPECT_THROW(manager->redo(), std::runtime_error);
    EXPECT_FALSE(manager->isRedoing());
    EXPECT_FALSE(manager->canUndo());
    EXPECT_TRUE(manager->canRedo());
    manager->redo();
    EXPECT_EQ(counter->value(), 1);
}

TEST_F(KWUndoManagerTest, GroupsWithinAnActionNest) {
    manager->registerUndo(target, [&] {
        manager->beginUndoGrouping();
        note('a');
        manager->beginUndoGrouping();
        note('b');
        manager->endUndoGrouping();
        manager->endUndoGrouping();
        EXPECT_THROW(manager->endUndoGrouping(), std::logic_error);
        note('c');
    });
    manager->undo();
    EXPECT_EQ(order, "");
    manager->redo();
    EXPECT_EQ(order, "cba");
    EXPECT_FALSE(manager->canRedo());
}

TEST_F(KWUndoManagerTest, AGroupThatAnActionLeavesOpenIsClosed) {
    manager->registerUndo(target, [&] {
        manager->beginUndoGrouping();
        note('a');
    });
    manager->undo();
    EXPECT_EQ(manager->groupingLevel(), 0);
    EXPECT_TRUE(manager->canRedo());
    manager->redo();
    EXPECT_EQ(order, "a");
}

TEST_F(KWUndoManagerTest, AnActionCanNeitherUndoNorRedo) {
    counter->setValue(1);
    manager->registerUndo(target, [&] {
        EXPECT_TRUE(manager->isUndoing());
        EXPECT_FALSE(manager->isRedoing());
        EXPECT_FALSE(manager->canUndo());
        EXPECT_FALSE(manager->canRedo());
        manager->undo();
        manager->redo();
        note('r');
    });
    manager->undo();
    EXPECT_EQ(counter->value(), 1);
    EXPECT_FALSE(manager->isUndoing());
    manager->undo();
    EXPECT_EQ(counter->value(), 0);
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

TEST_F(KWUndoManagerTest, RemovesTheActionsOfATargetInItsDestructor) {
    struct Leaver : KWObject {
        explicit Leaver(KWUndoManager& theManager) : manager(&theManager) {}
        ~Leaver() override { manager->removeAllActionsWithTarget(*this); }
        KWUndoManager* manager;
    };
    const auto held = std::make_shared<int>(1);
    auto leaver = std::make_shared<Leaver>(*manager);
    manager->registerUndo(leaver, [held] {});
    note('a');
    leaver.reset();
    EXPECT_EQ(held.use_count(), 1);
    manager->undo();
    EXPECT_EQ(order, "a");
}

TEST_F(KWUndoManagerTest, AnActionMayRemoveTheActionsOfItsTarget) {
    const auto other = std::make_shared<KWObject>();
    const auto held = std::make_shared<std::string>("held");
    note('x');
    manager->beginUndoGrouping();
    note('y');
    note('o', other);
    manager->registerUndo(target, [&, held] {
        note('r');
        manager->removeAllActionsWithTarget(*target);
        order += *held;
    });
    manager->endUndoGrouping();
    manager->undo();
    EXPECT_EQ(order, "heldo");
    EXPECT_EQ(held.use_count(), 1);
    EXPECT_FALSE(manager->canUndo());
    EXPECT_FALSE(manager->canRedo());
}

TEST_F(KWUndoManagerTest, AnActionMayRemoveAllActions) {
    note('x');
    manager->beginUndoGrouping();
    note('y');
    manager->registerUndo(target, [&] {
        note('z');
        manager->removeAllActions();
        note('r');
    });
    manager->endUndoGrouping();
    manager->undo();
    EXPECT_EQ(order, "");
    EXPECT_FALSE(manager->canUndo());
    manager->redo();
    EXPECT_EQ(order, "r");
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

TEST_F(KWUndoManagerTest, AnActionDoesNotRenameAnything) {
    counter->setValue(1);
    manager->setActionName("First");
    manager->registerUndo(target, [&] {
        manager->beginUndoGrouping();
        note('r');
        manager->setActionName("Inner");
        manager->endUndoGrouping();
    });
    manager->setActionName("Second");
    manager->undo();
    EXPECT_EQ(manager->redoActionName(), "Second");
    EXPECT_EQ(manager->undoActionName(), "First");
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

TEST_F(KWUndoManagerTest, AnObserverMayLetGoOfTheManager) {
    const auto token = KWNotificationCenter::defaultCenter().addObserver(
        KWUndoManagerDidChangeNotification, nullptr,
        [&](const KWNotification&) { manager.reset(); });
    manager->registerUndo(target, [] {});
    EXPECT_EQ(manager, nullptr);
}

TEST_F(KWUndoManagerTest, AnActionMayLetGoOfTheManager) {
    note('x');
    manager->registerUndo(target, [&] {
        KWUndoManager& dying = *manager;
        manager.reset();
        dying.registerUndo(target, [] {});
    });
    manager->undo();
    EXPECT_EQ(manager, nullptr);
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

TEST_F(KWUndoManagerTest, WhatAnActionHoldsMayUseTheManagerAsItGoes) {
    struct Registrar {
        KWUndoManager* manager;
        std::shared_ptr<KWObject> ownTarget;
        ~Registrar() {
            manager->registerUndo(ownTarget, [] {});
            manager->removeAllActionsWithTarget(*ownTarget);
        }
    };
    const auto registerHolder = [&] {
        manager->registerUndo(counter, [held = std::make_shared<Registrar>(
                                            manager.get(), std::make_shared<KWObject>())] {});
    };
    registerHolder();
    note('a');
    manager->removeAllActionsWithTarget(*counter);
    registerHolder();
    manager->removeAllActions();
    registerHolder();
    manager->undo();
    manager->registerUndo(target, registerHolder);
    manager->undo();
    counter->setValue(1);
    EXPECT_TRUE(manager->canUndo());
    manager->removeAllActions();
    EXPECT_FALSE(manager->canUndo());
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
