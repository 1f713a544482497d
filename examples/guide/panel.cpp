#include "Expect.h"

#include <KWBase/KWChannelArray.h>
#include <KWBase/KWChannelEditorController.h>
#include <KWBase/KWChannelElement.h>
#include <KWBase/KWChannelView.h>
#include <KWBase/KWEmbeddedChannelController.h>
#include <KWBase/KWKeyFramedChannel.h>
#include <KWDesktop/KWArrayController.h>
#include <KWDesktop/KWChannelUndoRecorder.h>
#include <KWDesktop/KWValueField.h>
#include <KWFoundation/KWUndoManager.h>

#include <QApplication>
#include <QVBoxLayout>

//! [element]
/// What the outlines list: a thing with a name and channels.
class Sprite final : public KWChannelElement, public KWChannelOwner {
  public:
    Sprite(std::string name, std::shared_ptr<KWUndoManager> undo)
        : _name(std::move(name)), _undo(std::move(undo)) {
        _channels->addChannel(std::make_shared<KWKeyFramedChannel>("x"));
        _channels->addChannel(std::make_shared<KWKeyFramedChannel>("y"));
        _channels->setChannelsOwner(this);
    }
    ~Sprite() override { resign(); }

    std::string name() const override { return _name; }
    std::shared_ptr<KWChannelArray> channelArray() const override { return _channels; }
    KWUndoManager* undoManager() override { return _undo.get(); }

    bool replaceChannelWith(const std::shared_ptr<KWChannel>& oldChannel,
                            const std::shared_ptr<KWChannel>& newChannel) override;

  private:
    std::string _name;
    std::shared_ptr<KWUndoManager> _undo;
    std::shared_ptr<KWChannelArray> _channels = std::make_shared<KWChannelArray>();
};
//! [element]

//! [replace]
bool Sprite::replaceChannelWith(const std::shared_ptr<KWChannel>& oldChannel,
                                const std::shared_ptr<KWChannel>& newChannel) {
    // 1. The array refuses a channel that has an owner, so the new one has none yet.
    if (!_channels->replaceChannelWith(oldChannel, newChannel))
        return false;
    // 2. The old one lets go of its owner, or it could not be put back.
    oldChannel->setOwner(nullptr);
    newChannel->setOwner(this);
    // 3. What the user has given the channel lives on.
    newChannel->setName(oldChannel->name());
    newChannel->setChannelColorIndex(oldChannel->channelColorIndex());
    newChannel->setUnitType(oldChannel->unitType());
    // 4. Undoing is the same the other way about, and registers the redo.
    KWFirstException raised;
    _undo->registerUndo(
        weak_from_this(),
        [this, oldChannel, newChannel] { replaceChannelWith(newChannel, oldChannel); }, raised);
    // 5. Here a host posts a notice of its own, for its outlines to reload.
    raised.during([&newChannel] { newChannel->invalidate(); });
    raised.rethrow();
    return true;
}
//! [replace]

int main(int argc, char** argv) {
    const QApplication application(argc, argv);
    const auto undo = std::make_shared<KWUndoManager>();
    const auto ball = std::make_shared<Sprite>("ball", undo);
    const auto lamp = std::make_shared<Sprite>("lamp", undo);

    //! [panel]
    KWArrayController list; // the elements, in the order of the outline
    list.setContent({ball, lamp});
    KWChannelEditorController editor;
    editor.setChannelsController(&list);
    if (!editor.loadInterface())
        std::cerr << editor.interfaceError().toStdString() << '\n';
    editor.showChannelEditor();
    //! [panel]
    expect(editor.channelView() != nullptr, "the panel is loaded");
    expect(editor.elements().size() == 2, "the elements are listed");

    //! [recorder]
    KWChannelUndoRecorder recorder(editor);
    //! [recorder]

    QWidget sidebar;
    auto* const layout = new QVBoxLayout(&sidebar);
    //! [outline]
    KWEmbeddedChannelController controller;
    controller.makeOutline(); // or loadInterface(), or setOutlets()
    layout->addWidget(controller.channelOutlineView());
    controller.setElements({ball, lamp});
    controller.setCurrentTime(1.5f); // where typed values are stored
    controller.update();             // after channels have come or gone
    //! [outline]
    expect(controller.outlineModel()->rowCount() == 2, "the outline has the elements");

    //! [field]
    const std::shared_ptr<KWChannel> x = ball->channelArray()->channelEnumerator().front();
    auto* const field = new KWValueField(&sidebar);
    field->setUnitType(x->unitType());
    field->setValue(x->valueForTime(KWTime(1.5f)));
    QObject::connect(field, &KWValueField::valueEdited, &sidebar,
                     [x](float value) { x->setValueForTime(value, KWTime(1.5f)); });
    layout->addWidget(field);
    //! [field]
    field->selectAll();
    field->insert(QStringLiteral("3.5")); // as typed
    field->commit();
    expect(x->valueForTime(KWTime(1.5f)) == 3.5f, "a typed number is stored");

    const auto kept = std::make_shared<KWKeyFramedChannel>();
    expect(ball->replaceChannelWith(x, kept) && kept->name() == "x", "a channel is replaced");
    undo->undo();
    expect(ball->channelArray()->channelEnumerator().front() == x, "undo puts it back");
}
