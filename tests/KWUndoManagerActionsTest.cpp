#include "UndoManagerTestSupport.h"

#include <KWFoundation/KWNotificationCenter.h>

#include <stdexcept>

// Actions and observers that throw, or that come back to the manager while it is at work.
using KWUndoManagerActionsTest = UndoManagerFixture;

TEST_F(KWUndoManagerActionsTest, ATargetThatDiesWithinTheStepIsSkipped) {
    auto mortal = std::make_shared<KWObject>();
    manager->beginUndoGrouping();
    note('x', mortal);
    manager->registerUndo(target, [&] { mortal.reset(); });
    manager->endUndoGrouping();
    manager->undo();
    EXPECT_EQ(order, "");
}

TEST_F(KWUndoManagerActionsTest, AThrowingActionLosesItsStepOnly) {
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

TEST_F(KWUndoManagerActionsTest, AThrowingActionKeepsTheRedoStack) {
    counter->setValue(1);
    manager->registerUndo(target, [] { throw std::runtime_error("action"); });
    counter->setValue(2);
    manager->undo();
    EXPECT_THROW(manager->undo(), std::runtime_error);
    EXPECT_TRUE(manager->canRedo());
    manager->redo();
    EXPECT_EQ(counter->value(), 2);
}

TEST_F(KWUndoManagerActionsTest, AThrowingActionClosesTheGroupsItOpened) {
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

TEST_F(KWUndoManagerActionsTest, AThrowingRedoLosesItsStepOnly) {
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

TEST_F(KWUndoManagerActionsTest, GroupsWithinAnActionNest) {
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

TEST_F(KWUndoManagerActionsTest, AGroupThatAnActionLeavesOpenIsClosed) {
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

TEST_F(KWUndoManagerActionsTest, AnActionCanNeitherUndoNorRedo) {
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

TEST_F(KWUndoManagerActionsTest, RemovesTheActionsOfATargetInItsDestructor) {
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

TEST_F(KWUndoManagerActionsTest, AnActionMayRemoveTheActionsOfItsTarget) {
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

TEST_F(KWUndoManagerActionsTest, AnActionMayRemoveAllActions) {
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

TEST_F(KWUndoManagerActionsTest, AnActionDoesNotRenameAnything) {
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

TEST_F(KWUndoManagerActionsTest, WhatIsRegisteredStaysWhenAnObserverThrows) {
    counter->setValue(1);
    manager->undo();
    const auto token = KWNotificationCenter::defaultCenter().addObserver(
        KWUndoManagerDidChangeNotification, manager.get(),
        [](const KWNotification&) { throw std::runtime_error("observer"); });
    EXPECT_THROW(note('a'), std::runtime_error);
    EXPECT_TRUE(manager->canUndo());
    EXPECT_FALSE(manager->canRedo());
    KWFirstException raised;
    manager->registerUndo(
        target, [this] { order += 'b'; }, raised);
    EXPECT_THROW(raised.rethrow(), std::runtime_error);
    EXPECT_NO_THROW(raised.rethrow());
    EXPECT_THROW(manager->undo(), std::runtime_error);
    EXPECT_THROW(manager->undo(), std::runtime_error);
    EXPECT_EQ(order, "ba");
}

TEST_F(KWUndoManagerActionsTest, AnObserverMayLetGoOfTheManager) {
    const auto token = KWNotificationCenter::defaultCenter().addObserver(
        KWUndoManagerDidChangeNotification, nullptr,
        [&](const KWNotification&) { manager.reset(); });
    manager->registerUndo(target, [] {});
    EXPECT_EQ(manager, nullptr);
}

TEST_F(KWUndoManagerActionsTest, AnActionMayLetGoOfTheManager) {
    note('x');
    manager->registerUndo(target, [&] {
        KWUndoManager& dying = *manager;
        manager.reset();
        dying.registerUndo(target, [] {});
    });
    manager->undo();
    EXPECT_EQ(manager, nullptr);
}

TEST_F(KWUndoManagerActionsTest, WhatAnActionHoldsMayUseTheManagerAsItGoes) {
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
