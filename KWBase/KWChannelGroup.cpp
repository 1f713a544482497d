#include <KWBase/KWChannelGroup.h>
#include <KWFoundation/KWCoder.h>

#include <algorithm>
#include <stdexcept>

// A channel knows its group's class by name only.

std::shared_ptr<KWChannelGroup> KWChannel::channelGroup() const {
    return std::dynamic_pointer_cast<KWChannelGroup>(_channelGroup.lock());
}

void KWChannel::setChannelGroup(const std::shared_ptr<KWChannelGroup>& group) {
    _channelGroup = group;
}

KWChannelGroup::KWChannelGroup(std::string name)
    : _channels(std::make_shared<KWChannelList>()), _name(std::move(name)) {}

KWChannelGroup::~KWChannelGroup() {
    resign();
}

const KWClass& KWChannelGroup::classObject() {
    static constinit const KWClass theClass{"KWChannelGroup", &KWObject::classObject, 0,
                                            KWClass::make<KWChannelGroup>};
    return theClass;
}

std::uint32_t KWChannelGroup::count() const {
    return _channels ? static_cast<std::uint32_t>(_channels->size()) : 0;
}

std::shared_ptr<KWChannelGroup> KWChannelGroup::sharedSelf() {
    auto self = std::static_pointer_cast<KWChannelGroup>(weak_from_this().lock());
    if (!self)
        throw std::logic_error("KWChannelGroup: not in a std::shared_ptr, so no channel can refer "
                               "to it");
    return self;
}

void KWChannelGroup::addChannel(const std::shared_ptr<KWChannel>& channel) {
    if (!channel)
        throw std::invalid_argument("KWChannelGroup: no channel to add");
    const auto self = sharedSelf();
    const auto oldGroup = channel->channelGroup();
    if (oldGroup == self || !_channels)
        return;
    // The argument may be an element of the very list that it is about to leave.
    // NOLINTNEXTLINE(performance-unnecessary-copy-initialization)
    const std::shared_ptr<KWChannel> added = channel;
    if (oldGroup)
        oldGroup->removeChannel(added);
    if (std::find(_channels->begin(), _channels->end(), added) == _channels->end())
        _channels->push_back(added);
    added->setChannelGroup(self);
}

bool KWChannelGroup::replaceChannelWith(const std::shared_ptr<KWChannel>& oldChannel,
                                        const std::shared_ptr<KWChannel>& newChannel) {
    if (!oldChannel || !newChannel || oldChannel == newChannel || newChannel->owner() || !_channels)
        return false;
    const auto place = std::find(_channels->begin(), _channels->end(), oldChannel);
    if (place == _channels->end())
        return false;
    newChannel->setChannelGroup(sharedSelf());
    oldChannel->setChannelGroup(nullptr);
    *place = newChannel;
    return true;
}

void KWChannelGroup::removeChannel(const std::shared_ptr<KWChannel>& channel) {
    // NOLINTNEXTLINE(performance-unnecessary-copy-initialization): it may be an element itself
    const std::shared_ptr<KWChannel> removed = channel;
    if (removed && _channels && std::erase(*_channels, removed) != 0)
        removed->setChannelGroup(nullptr);
}

void KWChannelGroup::removeAllChannels() {
    if (!_channels)
        return;
    const KWChannelList all = *_channels;
    for (const auto& channel : all)
        removeChannel(channel);
    std::erase(*_channels, nullptr);
}

std::shared_ptr<KWChannelGroup> KWChannelGroup::copy() const {
    auto made = std::make_shared<KWChannelGroup>(_name);
    if (!_channels)
        return made;
    for (const auto& channel : *_channels) {
        if (channel)
            made->addChannel(channel->copy());
        else
            made->_channels->push_back(nullptr);
    }
    return made;
}

void KWChannelGroup::encodeWithCoder(KWCoder& coder) const {
    KWObject::encodeWithCoder(coder);
    KWArchiveValue channels;
    if (_channels)
        channels = KWArchiveValue::mutableArray({_channels->begin(), _channels->end()});
    if (coder.allowsKeyedCoding()) {
        coder.encodeObjectForKey(_name, "name");
        coder.encodeObjectForKey(channels, "channels");
    } else {
        coder.encodeObject(_name);
        coder.encodeObject(channels);
    }
}

bool KWChannelGroup::initWithCoder(KWCoder& coder) {
    const bool hasKeys = coder.allowsKeyedCoding();
    _name = (hasKeys ? coder.decodeStringForKey("name") : coder.decodeString("name"))
                .value_or(std::string());
    auto channels = hasKeys ? coder.decodeObjectsOfClassForKey<KWChannel>("channels")
                            : coder.decodeObjectsOfClass<KWChannel>("channels");
    _channels = channels ? std::make_shared<KWChannelList>(std::move(*channels)) : nullptr;
    return true;
}
