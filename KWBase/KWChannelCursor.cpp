#include <KWBase/KWChannelCursor.h>
#include <KWBase/KWKeyFrameCurve.h>

#include <stdexcept>
#include <typeinfo>

namespace {

constexpr std::uint64_t noRevision = 0;

} // namespace

KWChannelCursor::KWChannelCursor(std::shared_ptr<const KWChannel> channel)
    : _channel(std::move(channel)), _revision(&noRevision) {
    if (!_channel)
        throw std::invalid_argument("a cursor needs a channel");
    // A subclass may evaluate in its own way.
    const KWChannel& target = *_channel;
    _isKeyFramed = typeid(target) == typeid(KWKeyFramedChannel);
    if (_isKeyFramed)
        _revision = &static_cast<const KWKeyFramedChannel&>(target)._revision;
}

float KWChannelCursor::valueAt(float t) {
    if (*_revision == _knownRevision && t >= _place.stretch.from && t < _place.stretch.to &&
        _isPlain) [[likely]] {
        const float value = KWKeyFrameCurve::hermiteInside(_place, t);
        if (value == value) [[likely]]
            return value;
    }
    return valueElsewhere(t);
}

float KWChannelCursor::valueElsewhere(float t) {
    if (!_isKeyFramed)
        return _channel->valueForTime(KWTime(t));
    const auto& channel = static_cast<const KWKeyFramedChannel&>(*_channel);
    if (*_revision == _knownRevision && _isPlain && channel.stepOn(_place, t)) {
        const float value = KWKeyFrameCurve::hermiteInside(_place, t);
        if (value == value) [[likely]]
            return value;
    }
    if (*_revision != _knownRevision) {
        // The place is only a guess now.
        _place.stretch = {};
        _knownRevision = *_revision;
        _isPlain = channel._mode == KWKeyFrameModeHermite && channel._repeat == KWRepeatModeNone;
    }
    return channel.valueNear(_place, t);
}
