#pragma once

#include <KWBase/KWKeyFramedChannel.h>

#include <initializer_list>
#include <memory>
#include <string>

struct SampleKey {
    float time;
    float value;
    HJHermiteParam shape{};
};

inline std::shared_ptr<KWKeyFramedChannel> keyFramed(std::string name, std::int32_t mode,
                                                     std::int32_t repeat,
                                                     std::initializer_list<SampleKey> keys) {
    auto channel = std::make_shared<KWKeyFramedChannel>(std::move(name));
    channel->setKeyFrameChannelMode(mode);
    channel->setRepeatMode(repeat);
    for (const SampleKey& key : keys)
        channel->setValueHermiteValueForKeyframe(
            key.value, KWKeyFramedChannel::hermiteDataFrom(&key.shape), KWTime(key.time));
    return channel;
}
