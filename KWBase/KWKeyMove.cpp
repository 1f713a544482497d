#include <KWBase/KWChannelViewGeometry.h>
#include <KWBase/KWKeyMove.h>
#include <KWFoundation/KWFirstException.h>

#include <algorithm>
#include <cmath>

std::vector<KWTime> KWKeyMove::inOrderOfRemoval(std::vector<KWTime> times) {
    std::erase_if(times, [](KWTime time) { return std::isnan(time.time()); });
    if (std::is_sorted(times.begin(), times.end()))
        std::reverse(times.begin(), times.end());
    else
        std::sort(times.begin(), times.end(), [](KWTime a, KWTime b) { return a > b; });
    times.erase(std::unique(times.begin(), times.end()), times.end());
    return times;
}

KWKeyMove::KWKeyMove(std::shared_ptr<KWKeyFramedChannel> channel)
    : _channel(std::move(channel)), _editCount(_channel->editCount()) {}

/// `work` makes so many edits; more are somebody else's.
void KWKeyMove::write(std::uint64_t edits, const std::function<void()>& work) {
    _isWriting = true;
    _hasWritten = true;
    KWFirstException raised;
    raised.during(work);
    _editCount += edits;
    _isWriting = false;
    raised.rethrow();
}

std::optional<KWKeyMove::Key> KWKeyMove::keyAt(KWTime time) const {
    const std::uint32_t index = _channel->indexOfKeyframe(time);
    if (index == KWNotFound)
        return std::nullopt;
    // Of 0 and -0, which are one time, that of the channel.
    return Key{_channel->keyframeAtIndex(index)->time(), _channel->valueForKeyframeAtIndex(index),
               *_channel->hermiteValueForKeyframe(time)};
}

void KWKeyMove::rememberKeyAt(KWTime time) {
    if (auto key = keyAt(time))
        _overwritten.push_back(*std::move(key));
}

void KWKeyMove::makeKey(KWTime time, const std::function<void()>& make) {
    rememberKeyAt(time);
    _made = time;
    write(1, make);
}

bool KWKeyMove::take(const std::vector<KWTime>& keys) {
    const std::uint32_t count = _channel->keyframeCount();
    if (_channel->valueCount() != count || _channel->hermiteCount() != count)
        return false;
    std::vector<float> times;
    std::vector<float> values;
    std::vector<KWData> records;
    for (const KWTime time : keys) {
        std::optional<Key> key = keyAt(time);
        if (!key)
            return false;
        times.push_back(key->time);
        values.push_back(key->value);
        records.push_back(std::move(key->record));
    }
    _times = std::move(times);
    _values = std::move(values);
    _records = std::move(records);
    _keys = keys;
    return true;
}

bool KWKeyMove::moveBy(float time, float value, const std::optional<Lattice>& lattice,
                       KWFirstException& raised) {
    if (_keys.empty() || isDisturbed() || !std::isfinite(time) || !std::isfinite(value))
        return false;
    std::vector<KWTime> keys;
    std::vector<float> values;
    keys.reserve(_times.size());
    values.reserve(_times.size());
    for (std::size_t i = 0; i < _times.size(); ++i) {
        float newTime = _times[i] + time;
        float newValue = _channel->convertValueToUserUnit(_values[i]) + value;
        if (lattice) {
            newTime = KWSnap(newTime, lattice->time);
            newValue = KWSnap(newValue, lattice->value);
        }
        newValue = _channel->convertValueFromUserUnit(newValue);
        if (!std::isfinite(_values[i]))
            newValue = _values[i];
        else if (!std::isfinite(newValue))
            return false;
        if (!std::isfinite(newTime))
            return false;
        keys.emplace_back(newTime);
        values.push_back(newValue);
    }
    const std::vector<KWTime> before = inOrderOfRemoval(std::exchange(_keys, keys));
    raised.during([&] {
        // Whatever is thrown meanwhile, what has been removed is set again.
        write(before.size() + keys.size(), [&] {
            raised.during([&] { _channel->removeValuesForKeyframes(before); });
            for (const KWTime key : keys)
                raised.during([&] { rememberKeyAt(key); });
            raised.during(
                [&] { _channel->setValuesHermiteValuesForKeyframes(values, _records, keys); });
        });
    });
    return true;
}

void KWKeyMove::putBack(KWFirstException& raised) {
    if (!_hasWritten || isDisturbed())
        return;
    std::vector<KWTime> removed = std::exchange(_keys, {});
    if (_made)
        removed.push_back(*_made);
    removed = inOrderOfRemoval(std::move(removed));
    std::vector<KWTime> keys;
    std::vector<float> values;
    std::vector<KWData> records;
    const auto add = [&](float time, float value, const KWData& record) {
        keys.emplace_back(time);
        values.push_back(value);
        records.push_back(record);
    };
    for (std::size_t i = 0; i < _times.size(); ++i)
        if (!_made || *_made != KWTime(_times[i]))
            add(_times[i], _values[i], _records[i]);
    for (const Key& key : _overwritten)
        add(key.time, key.value, key.record);
    raised.during([&] {
        write(0, [&] {
            raised.during([&] { _channel->removeValuesForKeyframes(removed); });
            raised.during(
                [&] { _channel->setValuesHermiteValuesForKeyframes(values, records, keys); });
        });
    });
    _hasWritten = false;
}
