#include "UndoManagerTestSupport.h"
#include "ViewTestSupport.h"

#include <KWDesktop/KWUndoStackAdapter.h>

#include <gtest/gtest.h>

#include <QAction>
#include <QCoreApplication>
#include <QSignalSpy>
#include <QUndoGroup>
#include <random>
#include <stdexcept>

namespace {

class KWUndoStackAdapterTest : public UndoManagerFixture {
  protected:
    void edit(int value, const char* name) {
        counter->setValue(value);
        manager->setActionName(name);
    }
    void expectInStep() {
        EXPECT_EQ(stack.canUndo(), manager->canUndo());
        EXPECT_EQ(stack.canRedo(), manager->canRedo());
        EXPECT_EQ(stack.undoText().toStdString(), manager->undoActionName());
        EXPECT_EQ(stack.redoText().toStdString(), manager->redoActionName());
    }

    KWUndoStackAdapter stack{manager};
};

} // namespace

TEST_F(KWUndoStackAdapterTest, WithoutAManagerIsRefused) {
    EXPECT_THROW(KWUndoStackAdapter(nullptr), std::invalid_argument);
}

TEST_F(KWUndoStackAdapterTest, AnEmptyManagerIsAnEmptyCleanStack) {
    EXPECT_EQ(stack.count(), 0);
    EXPECT_TRUE(stack.isClean());
    stack.undo();
    stack.redo();
    expectInStep();
}

TEST_F(KWUndoStackAdapterTest, StepsMadeBeforeAreShown) {
    edit(1, "Set");
    const KWUndoStackAdapter later(manager);
    EXPECT_TRUE(later.canUndo());
    EXPECT_EQ(later.undoText(), QStringLiteral("Set"));
    EXPECT_TRUE(later.isClean());
}

TEST_F(KWUndoStackAdapterTest, UndoAndRedoAreTheManagers) {
    edit(1, "One");
    edit(2, "Two");
    expectInStep();
    stack.undo();
    EXPECT_EQ(counter->value(), 1);
    expectInStep();
    stack.undo();
    EXPECT_EQ(counter->value(), 0);
    expectInStep();
    stack.redo();
    stack.redo();
    EXPECT_EQ(counter->value(), 2);
    expectInStep();
}

TEST_F(KWUndoStackAdapterTest, WhatTheManagerUndoesItselfShows) {
    edit(1, "One");
    manager->undo();
    expectInStep();
    EXPECT_EQ(stack.redoText(), QStringLiteral("One"));
    manager->redo();
    expectInStep();
    manager->removeAllActions();
    expectInStep();
}

TEST_F(KWUndoStackAdapterTest, ItNeverHoldsMoreThanTheNextStepEachWay) {
    for (int value = 1; value <= 9; ++value)
        edit(value, "Set");
    EXPECT_EQ(stack.count(), 1);
    stack.undo();
    stack.undo();
    EXPECT_EQ(stack.count(), 2);
    EXPECT_EQ(stack.index(), 1);
    stack.setIndex(0);
    EXPECT_EQ(counter->value(), 6);
    stack.setIndex(2);
    EXPECT_EQ(counter->value(), 7);
    expectInStep();
}

TEST_F(KWUndoStackAdapterTest, QtsActionsFollow) {
    QAction* const undo = stack.createUndoAction(&stack);
    QAction* const redo = stack.createRedoAction(&stack);
    EXPECT_FALSE(undo->isEnabled());
    edit(1, "Move Key");
    EXPECT_TRUE(undo->isEnabled());
    EXPECT_EQ(undo->text(), QStringLiteral("Undo Move Key"));
    undo->trigger();
    EXPECT_EQ(counter->value(), 0);
    EXPECT_FALSE(undo->isEnabled());
    EXPECT_TRUE(redo->isEnabled());
    EXPECT_EQ(redo->text(), QStringLiteral("Redo Move Key"));
    redo->trigger();
    EXPECT_EQ(counter->value(), 1);
    manager->setActionName("Drag Key");
    EXPECT_EQ(undo->text(), QStringLiteral("Undo Drag Key"));
}

TEST_F(KWUndoStackAdapterTest, AGroupOfStacksFollows) {
    QUndoGroup group;
    group.addStack(&stack);
    stack.setActive();
    edit(1, "One");
    EXPECT_TRUE(group.canUndo());
    group.undo();
    EXPECT_EQ(counter->value(), 0);
    EXPECT_EQ(group.redoText(), QStringLiteral("One"));
}

TEST_F(KWUndoStackAdapterTest, ANoticeThatChangesNothingIsNotSignalled) {
    edit(1, "One");
    edit(2, "One");
    QSignalSpy changes(&stack, &QUndoStack::indexChanged);
    edit(3, "One");
    // The step without its name, then with it.
    EXPECT_EQ(changes.count(), 2);
    stack.refresh();
    EXPECT_EQ(changes.count(), 2);
}

TEST_F(KWUndoStackAdapterTest, AnOpenGroupLeavesWhatIsShown) {
    edit(1, "One");
    manager->beginUndoGrouping();
    stack.undo();
    EXPECT_EQ(counter->value(), 1);
    EXPECT_TRUE(stack.canUndo());
    counter->setValue(2);
    counter->setValue(3);
    EXPECT_EQ(stack.undoText(), QStringLiteral("One"));
    manager->setActionName("Both");
    manager->endUndoGrouping();
    expectInStep();
    stack.undo();
    EXPECT_EQ(counter->value(), 1);
    expectInStep();
}

TEST_F(KWUndoStackAdapterTest, AnEmptyGroupLeavesWhatIsShown) {
    edit(1, "One");
    manager->beginUndoGrouping();
    manager->endUndoGrouping();
    expectInStep();
    EXPECT_TRUE(stack.canUndo());
}

TEST_F(KWUndoStackAdapterTest, CleanLastsUntilTheManagerChanges) {
    QSignalSpy cleanness(&stack, &QUndoStack::cleanChanged);
    edit(1, "One");
    EXPECT_FALSE(stack.isClean());
    stack.setClean();
    EXPECT_TRUE(stack.isClean());
    stack.undo();
    EXPECT_FALSE(stack.isClean());
    stack.redo();
    EXPECT_FALSE(stack.isClean());
    ASSERT_EQ(cleanness.count(), 3);
    EXPECT_FALSE(cleanness[0][0].toBool());
    EXPECT_TRUE(cleanness[1][0].toBool());
    EXPECT_FALSE(cleanness[2][0].toBool());
}

TEST_F(KWUndoStackAdapterTest, StepsWhoseTargetIsGoneAreDroppedWhenItLooks) {
    edit(1, "Old");
    note('x');
    manager->setActionName("Gone");
    EXPECT_EQ(stack.undoText(), QStringLiteral("Gone"));
    target.reset();
    stack.refresh();
    expectInStep();
    EXPECT_EQ(stack.undoText(), QStringLiteral("Old"));
}

TEST_F(KWUndoStackAdapterTest, UndoingAStepWhoseTargetIsGoneUndoesTheOneBefore) {
    edit(1, "Old");
    note('x');
    target.reset();
    stack.undo();
    EXPECT_EQ(order, "");
    EXPECT_EQ(counter->value(), 0);
    expectInStep();
}

TEST_F(KWUndoStackAdapterTest, AStepThatThrowsIsLoggedAndLost) {
    edit(1, "Old");
    manager->registerUndo(target, [] { throw std::runtime_error("no space"); });
    LogLines log;
    stack.undo();
    EXPECT_EQ(log.lines,
              std::vector<std::string>{"A step could not be undone or redone: no space"});
    expectInStep();
    stack.undo();
    EXPECT_EQ(counter->value(), 0);
}

TEST_F(KWUndoStackAdapterTest, UndoFromWithinAnUndoIsSafe) {
    edit(1, "Old");
    manager->registerUndo(target, [this] {
        stack.undo();
        order += 'x';
    });
    stack.undo();
    QCoreApplication::sendPostedEvents(&stack);
    EXPECT_EQ(order, "x");
    EXPECT_EQ(counter->value(), 1);
    expectInStep();
}

TEST_F(KWUndoStackAdapterTest, ACommandOfTheHostsOwnIsDropped) {
    edit(1, "One");
    stack.push(new QUndoCommand(QStringLiteral("Foreign")));
    expectInStep();
    stack.clear();
    expectInStep();
    EXPECT_TRUE(stack.canUndo());
}

TEST_F(KWUndoStackAdapterTest, AListenerMayUndoAtOnce) {
    QObject::connect(&stack, &QUndoStack::indexChanged, &stack, [this] {
        if (counter->value() > 3)
            manager->undo();
    });
    edit(3, "Three");
    edit(4, "Four");
    EXPECT_EQ(counter->value(), 3);
    EXPECT_EQ(stack.redoText(), QStringLiteral("Four"));
    expectInStep();
}

TEST_F(KWUndoStackAdapterTest, ItGoesWithStepsLeft) {
    edit(1, "One");
    {
        KWUndoStackAdapter other(manager);
        QUndoGroup group;
        group.addStack(&other);
    }
    edit(2, "Two");
    expectInStep();
}

TEST_F(KWUndoStackAdapterTest, RandomEditsAndUndosStayInStep) {
    std::mt19937 random(5);
    for (int step = 0; step < 2000; ++step) {
        switch (random() % 7) {
        case 0:
        case 1:
            edit(step, std::to_string(random() % 3).c_str());
            break;
        case 2:
            stack.undo();
            break;
        case 3:
            stack.redo();
            break;
        case 4:
            random() % 2 ? manager->undo() : manager->redo();
            break;
        case 5:
            manager->beginUndoGrouping();
            edit(step, "a");
            edit(step + 1, "b");
            manager->endUndoGrouping();
            break;
        default:
            if (random() % 20 == 0)
                manager->removeAllActionsWithTarget(*counter);
            break;
        }
        expectInStep();
        if (HasFailure())
            FAIL() << step;
    }
}
