#include <KWBase/KWChannelArray.h>
#include <KWBase/KWDeepCopy.h>
#include <KWFoundation/KWCoder.h>

#include <algorithm>
#include <stdexcept>

KWChannelArray::KWChannelArray()
    : _channels(std::make_shared<KWChannelList>()),
      _channelGroups(std::make_shared<KWChannelGroupList>()) {}

KWChannelArray::~KWChannelArray() {
    resign();
}

const KWClass& KWChannelArray::classObject() {
    static constinit const KWClass theClass{"KWChannelArray", &KWObject::classObject, 1,
                                            KWClass::make<KWChannelArray>};
    return theClass;
}

// --- Channels.

std::uint32_t KWChannelArray::channelCount() const {
    std::size_t count = _channels ? _channels->size() : 0;
    for (std::uint32_t k = 0; k < channelGroupCount(); ++k)
        count += (*_channelGroups)[k]->count();
    return static_cast<std::uint32_t>(count);
}

void KWChannelArray::addChannel(const std::shared_ptr<KWChannel>& channel) {
    if (!channel)
        throw std::invalid_argument("KWChannelArray: no channel to add");
    if (_channels)
        _channels->push_back(channel);
}

void KWChannelArray::addChannelToGroup(const std::shared_ptr<KWChannel>& channel,
                                       std::uint32_t group) {
    if (group == KWUngroupedChannels)
        addChannel(channel);
    else if (const auto target = channelGroupAtIndex(group))
        target->addChannel(channel);
}

bool KWChannelArray::replaceChannelWith(const std::shared_ptr<KWChannel>& oldChannel,
                                        const std::shared_ptr<KWChannel>& newChannel) {
    if (!oldChannel || !newChannel || oldChannel == newChannel || newChannel->owner())
        return false;
    if (_channels) {
        const auto place = std::find(_channels->begin(), _channels->end(), oldChannel);
        if (place != _channels->end()) {
            *place = newChannel;
            return true;
        }
    }
    // Whichever group it is in, of this array or of another.
    const auto group = oldChannel->channelGroup();
    return group && group->replaceChannelWith(oldChannel, newChannel);
}

const KWChannelList& KWChannelArray::list(std::uint32_t group) const {
    static const KWChannelList none;
    if (group == KWUngroupedChannels)
        return _channels ? *_channels : none;
    const auto found = channelGroupAtIndex(group);
    if (!found)
        throw std::out_of_range("KWChannelArray: no group of that index");
    return found->channels() ? *found->channels() : none;
}

const std::shared_ptr<KWChannel>& KWChannelArray::channelAtIndexInGroup(std::uint32_t index,
                                                                        std::uint32_t group) const {
    return list(group).at(index);
}

void KWChannelArray::setChannelValueAtIndexInGroupForTime(float value, std::uint32_t index,
                                                          std::uint32_t group,
                                                          std::optional<KWTime> time) {
    // Held here, as those whom it tells may take it out of the list.
    const std::shared_ptr<KWChannel> channel = channelAtIndexInGroup(index, group);
    channel->setValueForTime(value, time);
}

float KWChannelArray::getChannelValueAtIndexInGroupForTime(std::uint32_t index, std::uint32_t group,
                                                           std::optional<KWTime> time) const {
    return channelAtIndexInGroup(index, group)->valueForTime(time);
}

const std::string& KWChannelArray::getChannelNameAtIndexInGroup(std::uint32_t index,
                                                                std::uint32_t group) const {
    return channelAtIndexInGroup(index, group)->name();
}

std::shared_ptr<KWChannelList> KWChannelArray::channels() const {
    return channelGroupCount() == 0 ? _channels
                                    : std::make_shared<KWChannelList>(channelEnumerator());
}

KWChannelList KWChannelArray::channelEnumerator() const {
    KWChannelList all;
    all.reserve(channelCount());
    if (_channels)
        all = *_channels;
    for (std::uint32_t k = 0; k < channelGroupCount(); ++k)
        if (const auto& grouped = (*_channelGroups)[k]->channels())
            all.insert(all.end(), grouped->begin(), grouped->end());
    return all;
}

void KWChannelArray::setChannelsOwner(KWChannelOwner* owner) {
    for (const auto& channel : channelEnumerator())
        channel->setOwner(owner);
}

bool KWChannelArray::dependsOnTime() const {
    const KWChannelList all = channelEnumerator();
    return std::any_of(all.begin(), all.end(),
                       [](const auto& channel) { return channel->dependsOnTime(); });
}

// --- Groups.

std::uint32_t KWChannelArray::channelGroupCount() const {
    return _channelGroups ? static_cast<std::uint32_t>(_channelGroups->size()) : 0;
}

std::shared_ptr<KWChannelGroup> KWChannelArray::channelGroupAtIndex(std::uint32_t index) const {
    return index < channelGroupCount() ? (*_channelGroups)[index] : nullptr;
}

void KWChannelArray::addGroupWithName(std::string name) {
    if (_channelGroups)
        _channelGroups->push_back(std::make_shared<KWChannelGroup>(std::move(name)));
}

void KWChannelArray::removeGroup(const std::shared_ptr<KWChannelGroup>& group) {
    // NOLINTNEXTLINE(performance-unnecessary-copy-initialization): it may be an element itself
    const std::shared_ptr<KWChannelGroup> removed = group;
    if (_channelGroups)
        std::erase(*_channelGroups, removed);
}

std::shared_ptr<KWChannelGroup> KWChannelArray::groupWithName(std::string_view name) const {
    return channelGroupAtIndex(indexOfGroupNamed(name));
}

std::uint32_t KWChannelArray::indexOfGroupNamed(std::string_view name) const {
    for (std::uint32_t k = 0; k < channelGroupCount(); ++k)
        if ((*_channelGroups)[k]->name() == name)
            return k;
    return KWUngroupedChannels;
}

// --- Copies and archives.

std::shared_ptr<KWChannelArray> KWChannelArray::copy() const {
    auto made = std::make_shared<KWChannelArray>();
    if (_channels)
        *made->_channels = hjDeepCopy(*_channels);
    if (_channelGroups)
        *made->_channelGroups = hjDeepCopy(*_channelGroups);
    return made;
}

void KWChannelArray::encodeWithCoder(KWCoder& coder) const {
    KWObject::encodeWithCoder(coder);
    if (coder.allowsKeyedCoding())
        encodeWithKeys(coder);
    else
        throw std::logic_error("KWChannelArray: a coder without keys");
}

bool KWChannelArray::initWithCoder(KWCoder& coder) {
    if (coder.allowsKeyedCoding())
        decodeWithKeys(coder);
    else
        throw std::logic_error("KWChannelArray: a coder without keys");
    return true;
}

void KWChannelArray::encodeWithKeys(KWCoder& coder) const {
    KWArchiveValue channels;
    if (_channels)
        channels = KWArchiveValue::mutableArray({_channels->begin(), _channels->end()});
    KWArchiveValue groups;
    if (_channelGroups)
        groups = KWArchiveValue::mutableArray({_channelGroups->begin(), _channelGroups->end()});
    coder.encodeObjectForKey(channels, "channels");
    coder.encodeObjectForKey(groups, "channelGroups");
}

void KWChannelArray::decodeWithKeys(KWCoder& coder) {
    auto channels = coder.decodeObjectsOfClassForKey<KWChannel>("channels");
    auto groups = coder.decodeObjectsOfClassForKey<KWChannelGroup>("channelGroups");
    _channels = channels ? std::make_shared<KWChannelList>(std::move(*channels)) : nullptr;
    _channelGroups = groups ? std::make_shared<KWChannelGroupList>(std::move(*groups)) : nullptr;
}
