#include <apps/kwedit/KWForeignElement.h>

#include <algorithm>

KWForeignElement::KWForeignElement(KWDocument& document, std::size_t index)
    : _document(document), _index(index) {
    _name = element().name.empty() ? element().className : element().name;
    own();
}

KWForeignElement::~KWForeignElement() {
    resign();
}

bool KWForeignElement::standsFor(const KWDocument::Element& element) const {
    return &element == &this->element();
}

/// An array that is made here for a group or a channel changes nothing in them.
void KWForeignElement::own() {
    const KWDocument::Element& shown = element();
    _array = shown.channelArray;
    if (!_array) {
        _array = std::make_shared<KWChannelArray>();
        if (shown.group)
            _array->channelGroups()->push_back(shown.group);
        else if (shown.channel)
            _array->addChannel(shown.channel);
    }
    for (const auto& channel : _array->channelEnumerator())
        if (channel && !channel->undoManager())
            channel->setOwnerForEditing(this);
}

bool KWForeignElement::replaceChannelWith(const std::shared_ptr<KWChannel>& oldChannel,
                                          const std::shared_ptr<KWChannel>& newChannel) {
    const auto places = _document.channels();
    const auto found =
        std::find_if(places.begin(), places.end(), [&](const KWDocument::Place& place) {
            return place.channel == oldChannel && place.element == _index;
        });
    if (found == places.end() || !_document.replaceChannel(*found, newChannel))
        return false;
    own();
    _document.undoManager()->registerUndo(weak_from_this(), [this, oldChannel, newChannel] {
        replaceChannelWith(newChannel, oldChannel);
    });
    return true;
}
