#include <KWBase/KWChannelArrayCursor.h>

#include <stdexcept>

KWChannelArrayCursor::KWChannelArrayCursor(const KWChannelArray& array) {
    const KWChannelList channels = array.channelEnumerator();
    _cursors.reserve(channels.size());
    for (const std::shared_ptr<KWChannel>& channel : channels)
        _cursors.emplace_back(channel);
}

void KWChannelArrayCursor::valuesForTime(KWTime time, std::span<float> values) {
    if (values.size() != _cursors.size())
        throw std::invalid_argument("as many values as channels are wanted");
    for (std::size_t k = 0; k < values.size(); ++k)
        values[k] = _cursors[k].valueForTime(time);
}
