#pragma once

#include <KWBase/KWKeyFramedChannel.h>

/// The keys of a channel by index, whatever their order: as many times as values as shapes.
struct KWChannelKeys {
    std::vector<float> times; ///< in seconds
    std::vector<float> values;
    std::vector<HJHermiteParam> shapes; ///< a record of an odd length as far as it goes
};

/// A copy of a channel's keys; as many as the channel has of each when the numbers differ, but no
/// shapes then.
KWChannelKeys kwKeysOf(const KWKeyFramedChannel& channel);
