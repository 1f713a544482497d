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
    if (_keyFramed && _keyFramed->_editCount == _editCount) [[likely]] {
        float t = time.time();
        if (_keyFramed->_repeat != KWRepeatModeNone)
            t = _keyFramed->curve().mappedTime(t);
        if (t >= _stretch.from && t < _stretch.to) [[likely]] {
            const float value = KWKeyFrameCurve::valueInside(_stretch, t, _keyFramed->_mode);
            // Which of several NaNs comes out is the channel's to say.
            if (value == value) [[likely]]
                return value;
        }
    }
    return valueElsewhere(time);
}

float KWChannelCursor::valueElsewhere(KWTime time) {
    if (!_keyFramed)
        return _channel->valueForTime(time);
    const KWKeyFrameCurve curve = _keyFramed->curve();
    if (!_keyFramed->_regular || curve.count < 2)
        return _keyFramed->KWKeyFramedChannel::valueForTime(time);
    float t = time.time();
    if (curve.repeat != KWRepeatModeNone)
        t = curve.mappedTime(t);
    // The channel may have been edited since: the place is only a guess.
    std::uint32_t i = _segment + 1;
    if (!(i < curve.count - 1 && t >= curve.keys[i] && t < curve.keys[i + 1])) {
        i = _keyFramed->countNotAfter(curve, t) - 1;
        if (i >= curve.count - 1)
            return _keyFramed->KWKeyFramedChannel::valueForTime(time);
    }
    _segment = i;
    _stretch = curve.stretch(i);
    _editCount = _keyFramed->_editCount;
    const float value = KWKeyFrameCurve::valueInside(_stretch, t, curve.mode);
    if (value != value) [[unlikely]]
        return _keyFramed->KWKeyFramedChannel::valueForTime(time);
    return value;
}
