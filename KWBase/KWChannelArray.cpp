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
        if (const auto& group = (*_channelGroups)[k])
            count += group->count();
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

KWChannel& KWChannelArray::channelAt(std::uint32_t index, std::uint32_t group) const {
    const std::shared_ptr<KWChannel>& channel = channelAtIndexInGroup(index, group);
    if (!channel)
        throw std::out_of_range("KWChannelArray: no channel at that index");
    return *channel;
}

void KWChannelArray::setChannelValueAtIndexInGroupForTime(float value, std::uint32_t index,
                                                          std::uint32_t group,
                                                          std::optional<KWTime> time) {
    // Held here, as those whom it tells may take it out of the list.
    const std::shared_ptr<KWChannel> channel = channelAtIndexInGroup(index, group);
    channelAt(index, group).setValueForTime(value, time);
}

float KWChannelArray::getChannelValueAtIndexInGroupForTime(std::uint32_t index, std::uint32_t group,
                                                           std::optional<KWTime> time) const {
    return channelAt(index, group).valueForTime(time);
}

const std::string& KWChannelArray::getChannelNameAtIndexInGroup(std::uint32_t index,
                                                                std::uint32_t group) const {
    return channelAt(index, group).name();
}

std::shared_ptr<KWChannelList> KWChannelArray::channels() const {
    return channelGroupCount() == 0 ? _channels : std::make_shared<KWChannelList>(allElements());
}

KWChannelList KWChannelArray::channelEnumerator() const {
    KWChannelList all = allElements();
    std::erase(all, nullptr);
    return all;
}

KWChannelList KWChannelArray::allElements() const {
    KWChannelList all;
    all.reserve(channelCount());
    if (_channels)
        all = *_channels;
    for (std::uint32_t k = 0; k < channelGroupCount(); ++k)
        if (const auto& group = (*_channelGroups)[k]; group && group->channels())
            all.insert(all.end(), group->channels()->begin(), group->channels()->end());
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
        if (const auto& group = (*_channelGroups)[k]; group && group->name() == name)
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
    KWArchiveValue channels;
    if (_channels)
        channels = KWArchiveValue::mutableArray({_channels->begin(), _channels->end()});
    KWArchiveValue groups;
    if (_channelGroups)
        groups = KWArchiveValue::mutableArray({_channelGroups->begin(), _channelGroups->end()});
    if (coder.allowsKeyedCoding()) {
        coder.encodeObjectForKey(channels, "channels");
        coder.encodeObjectForKey(groups, "channelGroups");
        return;
    }
    coder.encodeObject(channels);
    if (coder.versionForClassName(classObject().name()) >= 1)
        coder.encodeObject(groups);
}

bool KWChannelArray::initWithCoder(KWCoder& coder) {
    std::optional<KWChannelList> channels;
    std::optional<KWChannelGroupList> groups;
    if (coder.allowsKeyedCoding()) {
        channels = coder.decodeObjectsOfClassForKey<KWChannel>("channels");
        groups = coder.decodeObjectsOfClassForKey<KWChannelGroup>("channelGroups");
    } else {
        // Version 1 brought the groups; what later versions hold is not known here.
        const std::int64_t version = coder.versionForClassName(classObject().name());
        if (version == 0 || version == 1)
            channels = coder.decodeObjectsOfClass<KWChannel>("channels");
        if (version == 1)
            groups = coder.decodeObjectsOfClass<KWChannelGroup>("channelGroups");
    }
    _channels = channels ? std::make_shared<KWChannelList>(std::move(*channels)) : nullptr;
    _channelGroups = groups ? std::make_shared<KWChannelGroupList>(std::move(*groups)) : nullptr;
    return true;
}
