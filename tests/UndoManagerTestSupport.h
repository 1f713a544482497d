#pragma once

#include <KWFoundation/KWUndoManager.h>

#include <gtest/gtest.h>

#include <memory>
#include <string>

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

class UndoManagerFixture : public testing::Test {
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
