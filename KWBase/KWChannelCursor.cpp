#include <KWBase/KWChannelCursor.h>
#include <KWBase/KWKeyFrameCurve.h>

#include <stdexcept>
#include <typeinfo>

KWChannelCursor::KWChannelCursor(std::shared_ptr<const KWChannel> channel)
    : _channel(std::move(channel)), _keyFramed(nullptr) {
    if (!_channel)
        throw std::invalid_argument("a cursor needs a channel");
    // A subclass may evaluate in its own way.
    const KWChannel& target = *_channel;
    if (typeid(target) == typeid(KWKeyFramedChannel))
        _keyFramed = static_cast<const KWKeyFramedChannel*>(_channel.get());
}

float KWChannelCursor::valueForTime(KWTime time) {
    if (!_keyFramed)
        return _channel->valueForTime(time);
    const KWKeyFrameCurve curve = _keyFramed->curve();
    if (!_keyFramed->_regular || curve.count < 2) [[unlikely]]
        return _keyFramed->KWKeyFramedChannel::valueForTime(time);
    float t = time.time();
    if (curve.repeat != KWRepeatModeNone)
        t = curve.mappedTime(t);
    // The channel may have been edited since: the place is only a guess.
    std::uint32_t i = _segment;
    if (!(i < curve.count - 1 && t >= curve.keys[i] && t < curve.keys[i + 1])) {
        const bool isNext = i < curve.count - 2 && t >= curve.keys[i + 1] && t < curve.keys[i + 2];
        i = isNext ? i + 1 : KWKeyFrameCurve::countNotAfter(curve.keys, curve.count, t) - 1;
        if (i >= curve.count - 1)
            return _keyFramed->KWKeyFramedChannel::valueForTime(time);
        _segment = i;
    }
    const float value = curve.valueInside(i, t);
    // Which of several NaNs comes out is the channel's to say.
    if (value != value) [[unlikely]]
        return _keyFramed->KWKeyFramedChannel::valueForTime(time);
    return value;
}
