#pragma once

#include <KWBase/KWChannelElement.h>
#include <KWBase/KWChannelOwner.h>

#include <apps/common/KWDocument.h>

#include <memory>
#include <string>

/// Stands for what another program keeps channels in - an object of a class that is not known here,
/// or an array, a group or a channel alone - so that outlines show it and its channels are edited
/// with undo. Nothing of it is written: the archive's own objects stay where they are.
class KWForeignElement final : public KWChannelElement, public KWChannelOwner {
  public:
    /// For the element of a document at an index, whose channels get this as owner for editing. The
    /// document must outlive it. Has to live in a std::shared_ptr.
    KWForeignElement(KWDocument& document, std::size_t index);
    ~KWForeignElement() override;

    std::string name() const override { return _name; }
    std::shared_ptr<KWChannelArray> channelArray() const override { return _array; }
    bool standsFor(const KWDocument::Element& element) const;

    KWUndoManager* undoManager() override { return _document.undoManager().get(); }
    /// Through the document, and back again when it is undone.
    bool replaceChannelWith(const std::shared_ptr<KWChannel>& oldChannel,
                            const std::shared_ptr<KWChannel>& newChannel) override;

  private:
    const KWDocument::Element& element() const { return _document.elements().at(_index); }
    void own();

    KWDocument& _document;
    std::size_t _index;
    std::string _name;
    /// The element's own, or one around its group or channel.
    std::shared_ptr<KWChannelArray> _array;
};
