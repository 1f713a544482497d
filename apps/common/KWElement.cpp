#include <KWBase/KWConstantChannel.h>
#include <KWBase/KWKeyFramedChannel.h>
#include <KWFoundation/KWCoder.h>

#include <apps/common/KWElement.h>

#include <algorithm>
#include <stdexcept>

namespace {

bool holdsChannel(const KWChannelArray& array, const std::shared_ptr<KWChannel>& channel) {
    const KWChannelList all = array.channelEnumerator();
    return std::find(all.begin(), all.end(), channel) != all.end();
}

} // namespace

KWElement::KWElement(std::string name)
    : _name(std::move(name)), _channelArray(std::make_shared<KWChannelArray>()) {}

KWElement::~KWElement() {
    resign();
}

const KWClass& KWElement::classObject() {
    static constinit KWClass theClass{"KWElement", &KWObject::classObject, 0,
                                      KWClass::make<KWElement>};
    return theClass;
}

void KWElement::setChannelArray(const std::shared_ptr<KWChannelArray>& array) {
    if (_channelArray)
        _channelArray->setChannelsOwner(nullptr);
    _channelArray = array;
    if (_channelArray)
        _channelArray->setChannelsOwner(this);
}

void KWElement::addChannelToGroupNamed(const std::shared_ptr<KWChannel>& channel,
                                       const std::string& group) {
    if (!channel)
        throw std::invalid_argument("a channel to add must not be null");
    if (!_channelArray)
        throw std::logic_error("the element has no channel array");
    if (!group.empty() && !_channelArray->groupWithName(group))
        _channelArray->addGroupWithName(group);
    _channelArray->addChannelToGroup(
        channel, group.empty() ? KWUngroupedChannels : _channelArray->indexOfGroupNamed(group));
    channel->setOwner(this);
}

bool KWElement::replaceChannelWith(const std::shared_ptr<KWChannel>& oldChannel,
                                   const std::shared_ptr<KWChannel>& newChannel) {
    if (!_channelArray || !oldChannel || !holdsChannel(*_channelArray, oldChannel))
        return false;
    KWUndoManager* const undo = undoManager();
    if (undo && weak_from_this().expired())
        throw std::logic_error("an element with undo must live in a std::shared_ptr");

    // A channel with an owner is refused, so the new one gets its owner afterwards.
    if (!_channelArray->replaceChannelWith(oldChannel, newChannel))
        return false;
    oldChannel->setOwner(nullptr);
    newChannel->setOwner(this);
    newChannel->setName(oldChannel->name());
    newChannel->setChannelColorIndex(oldChannel->channelColorIndex());
    newChannel->setUnitType(oldChannel->unitType());
    newChannel->invalidate();

    if (undo)
        undo->registerUndo(weak_from_this(), [this, oldChannel, newChannel] {
            replaceChannelWith(newChannel, oldChannel);
        });
    return true;
}

void KWElement::encodeWithCoder(KWCoder& coder) const {
    KWChannelElement::encodeWithCoder(coder);
    if (coder.allowsKeyedCoding()) {
        coder.encodeObjectForKey(_name, "name");
        coder.encodeObjectForKey(_channelArray, "channelArray");
    } else {
        coder.encodeObject(_name);
        coder.encodeObject(_channelArray);
    }
}

bool KWElement::initWithCoder(KWCoder& coder) {
    if (!KWChannelElement::initWithCoder(coder))
        return false;
    const bool hasKeys = coder.allowsKeyedCoding();
    _name = (hasKeys ? coder.decodeStringForKey("name") : coder.decodeString("name"))
                .value_or(std::string());
    _channelArray = hasKeys ? coder.decodeObjectOfClassForKey<KWChannelArray>("channelArray")
                            : coder.decodeObjectOfClass<KWChannelArray>("channelArray");
    if (_channelArray)
        _channelArray->setChannelsOwner(this);
    return true;
}

void kwRegisterElementClass() {
    if (!KWClassNamed(KWElement::classObject().name()))
        KWRegisterClass(KWElement::classObject());
}
