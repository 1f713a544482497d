#include <KWBase/KWChannelView.h>
#include <KWBase/KWChannelViewBindings.h>
#include <KWDesktop/KWChannelMetaTypes.h>
#include <KWDesktop/KWPropertyObserving.h>
#include <KWFoundation/KWFirstException.h>
#include <KWFoundation/KWLog.h>

#include <algorithm>
#include <utility>

namespace {

constexpr std::string_view channelName = "channel";
constexpr std::string_view currentTimeName = "currentTime";

// Only their addresses count: each tells one kind of notice from the others.
const char channelObservationContext = 0;
const char currentTimeObservationContext = 0;
const char propertyObservationContext = 0;

using Binding = KWChannelViewBindings::Binding;

QVariant valueOf(const Binding& binding) {
    return KWValueForKeyPath(binding.container, binding.keyPath);
}

void stopObserving(Binding& binding, KWKeyObserver& observer) {
    if (binding.container)
        KWRemoveObserverForKeyPath(*binding.container, observer, binding.keyPath);
    binding = Binding();
}

} // namespace

std::vector<std::string> KWChannelView::exposedBindings() {
    return {std::string(channelName), std::string(currentTimeName)};
}

void KWChannelView::bindToObjectWithKeyPathOptions(std::string_view name, QObject* object,
                                                   std::string_view keyPath, const QVariantMap&) {
    const bool isChannel = name == channelName;
    if (!object || (!isChannel && name != currentTimeName))
        return;
    Binding& binding = isChannel ? _bindings->channel : _bindings->currentTime;
    if (binding.container)
        KWLog("You should invoke unbind: before binding again");
    binding = {object, std::string(keyPath)};
    const void* const context =
        isChannel ? &channelObservationContext : &currentTimeObservationContext;
    KWAddObserverForKeyPathOptionsContext(*object, *this, keyPath, KWKeyValueObservingOptionNew,
                                          context);
    // What is there already is taken as if it had just been set.
    observeValueForKeyPathOfObjectChangeContext(keyPath, nullptr, {}, context);
}

void KWChannelView::unbind(std::string_view name) {
    if (name == channelName) {
        const QPointer<KWChannelView> self(this);
        KWFirstException raised;
        raised.during([&] { setPrimaryChannel(nullptr); });
        if (self)
            stopObserving(_bindings->channel, *this);
        raised.rethrow();
    } else if (name == currentTimeName) {
        stopObserving(_bindings->currentTime, *this);
    }
}

void KWChannelView::observeValueForKeyPathOfObjectChangeContext(std::string_view, KWObject*,
                                                                const KWKeyValueChange&,
                                                                const void* context) {
    // The value is read anew: an earlier registration that was left in place may be what tells.
    if (context == &channelObservationContext)
        setPrimaryChannel(KWChannelFromVariant(valueOf(_bindings->channel)));
    else if (context == &currentTimeObservationContext)
        setCurrentTime(valueOf(_bindings->currentTime).toFloat());
    else if (context == &propertyObservationContext) {
        setNeedsDisplay(true);
        endGestureIfDisturbed();
    }
}

void KWChannelView::startObservingChannel(const std::shared_ptr<KWChannel>& channel) {
    if (channel)
        channel->addObserverForKeyPathOptionsContext(
            *this, "valid", KWKeyValueObservingOptionNew | KWKeyValueObservingOptionOld,
            &propertyObservationContext);
}

void KWChannelView::stopObservingChannel(const std::shared_ptr<KWChannel>& channel) {
    if (channel)
        channel->removeObserverForKeyPath(*this, "valid");
}

void KWChannelView::setPrimaryChannel(const std::shared_ptr<KWChannel>& channel) {
    // The delegate and whoever hears the signals may do anything, and may even delete the view.
    const QPointer<KWChannelView> self(this);
    const std::shared_ptr<KWChannel> next = channel;
    const bool changes = next != _primaryChannel;
    if (changes)
        cutGestureShort();
    if (!self)
        return;
    KWFirstException raised;
    if (changes)
        raised.during([&] {
            stopObservingChannel(_primaryChannel);
            _primaryChannel = next;
            startObservingChannel(next);
        });
    raised.during([&] { replaceSelectedKeys({}); });
    if (self)
        raised.during([&] { notifyDelegateOfSelection(); });
    if (self)
        raised.during([&] { setNeedsDisplay(true); });
    if (self && changes)
        raised.during([&] { Q_EMIT primaryChannelChanged(); });
    raised.rethrow();
}

void KWChannelView::addSecondaryChannel(const std::shared_ptr<KWChannel>& channel) {
    if (channel && !isSecondaryChannel(channel))
        _secondaryChannels.push_back(channel);
}

void KWChannelView::removeSecondaryChannel(const std::shared_ptr<KWChannel>& channel) {
    // The argument may be the very element.
    const std::shared_ptr<KWChannel> removed = channel;
    std::erase(_secondaryChannels, removed);
}

void KWChannelView::removeAllSecondaryChannels() {
    const auto removed = std::exchange(_secondaryChannels, {});
}

bool KWChannelView::isSecondaryChannel(const std::shared_ptr<KWChannel>& channel) const {
    return std::find(_secondaryChannels.begin(), _secondaryChannels.end(), channel) !=
           _secondaryChannels.end();
}
