#pragma once

#include "ChannelTestSupport.h"

#include <KWBase/KWChannelArray.h>
#include <KWBase/KWConstantChannel.h>

#include <memory>
#include <string>
#include <utility>

inline std::shared_ptr<KWChannel> constant(std::string name, float value = 1) {
    return channelWithNameInitialValueColor<KWConstantChannel>(std::move(name), value, 2);
}

inline std::string namesIn(const KWChannelList& list) {
    std::string names;
    for (const auto& channel : list)
        names += channel->name() + " ";
    return names;
}

/// Ungrouped channels a and b, a group "left" of c and d, and an empty group "right".
struct SampleArray {
    std::shared_ptr<KWChannel> a = constant("a", 1);
    std::shared_ptr<KWChannel> b = constant("b", 2);
    std::shared_ptr<KWChannel> c = constant("c", 3);
    std::shared_ptr<KWChannel> d = constant("d", 4);
    std::shared_ptr<KWChannelArray> array = std::make_shared<KWChannelArray>();

    SampleArray() {
        array->addChannel(a);
        array->addChannel(b);
        array->addGroupWithName("left");
        array->addGroupWithName("right");
        array->addChannelToGroup(c, 0);
        array->addChannelToGroup(d, 0);
    }
    std::shared_ptr<KWChannelGroup> left() const { return array->channelGroupAtIndex(0); }
};
