#include "Expect.h"

#include <KWBase/KWChannelArray.h>
#include <KWBase/KWKeyFramedChannel.h>
#include <KWFoundation/KWUndoManager.h>

#include <memory>

//! [owner]
/// A lamp of ours: its channels register their edits with the document's undo manager.
class Lamp final : public KWChannelOwner {
  public:
    explicit Lamp(std::shared_ptr<KWUndoManager> undo) : _undo(std::move(undo)) {
        for (const char* name : {"pan", "tilt"}) {
            const auto channel = std::make_shared<KWKeyFramedChannel>(name);
            channel->setUnitType(KWUnitTypeAngle);
            _channels->addChannel(channel);
        }
        _channels->setChannelsOwner(this);
    }
    // No channel may call an owner whose members are gone.
    ~Lamp() { resign(); }

    KWUndoManager* undoManager() override { return _undo.get(); }
    void invalidate() override { _isDirty = true; }

    bool isDirty() const { return _isDirty; }
    const std::shared_ptr<KWChannelArray>& channels() const { return _channels; }

  private:
    std::shared_ptr<KWUndoManager> _undo;
    std::shared_ptr<KWChannelArray> _channels = std::make_shared<KWChannelArray>();
    bool _isDirty = false;
};
//! [owner]

int main() {
    const auto undo = std::make_shared<KWUndoManager>();
    const Lamp lamp(undo);
    const auto pan =
        std::dynamic_pointer_cast<KWKeyFramedChannel>(lamp.channels()->ungroupedChannels()->at(0));

    //! [steps]
    pan->setValueForKeyframe(0.5f, KWTime(0)); // a step of its own

    undo->beginUndoGrouping(); // one step for both
    pan->setValueForKeyframe(1, KWTime(1));
    pan->setValueForKeyframe(-1, KWTime(2));
    undo->setActionName("Swing");
    undo->endUndoGrouping();

    if (undo->canUndo())
        undo->undo(); // the swing
    undo->redo();
    //! [steps]
    expect(pan->keyframeCount() == 3, "the swing is there again");
    expect(undo->undoActionName() == "Swing", "the step has its name");
    expect(lamp.isDirty(), "the owner was told");

    //! [gesture]
    pan->startManipulation();                    // at the press of the mouse
    for (const float angle : {1.1f, 1.2f, 1.3f}) // at each move
        pan->setValueForKeyframe(angle, KWTime(1));
    pan->stopManipulation(); // at the release: one step
    //! [gesture]
    undo->undo();
    expect(pan->valueForKeyframe(KWTime(1)) == 1, "the gesture was one step");

    //! [saved]
    const std::uint64_t saved = undo->stateIdentifier(); // when the document is saved
    pan->removeAllKeyframes();
    const bool isModified = undo->stateIdentifier() != saved;
    undo->undo();
    const bool isModifiedAfterUndo = undo->stateIdentifier() != saved;
    //! [saved]
    expect(isModified && !isModifiedAfterUndo, "undo leads back to what was saved");
}
