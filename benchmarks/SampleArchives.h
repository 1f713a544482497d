#pragma once

#include <KWBase/KWChannelArray.h>
#include <KWBase/KWKeyFramedChannel.h>
#include <KWFoundation/KWArchiver.h>
#include <KWFoundation/KWKeyedArchiver.h>

#include <benchmark/benchmark.h>

#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <random>
#include <string>

/// Channels of a thousand keys each, all of them shaped, so that no two records are alike.
inline std::shared_ptr<KWChannelArray> KWMakeSampleChannels(std::int64_t keys) {
    std::mt19937 random(1);
    std::uniform_real_distribution<float> unit(-1, 1);
    auto array = std::make_shared<KWChannelArray>();
    for (std::int64_t c = 0; c < keys / 1000; ++c) {
        auto channel = std::make_shared<KWKeyFramedChannel>("channel " + std::to_string(c));
        for (int k = 0; k < 1000; ++k) {
            HJHermiteParam shape;
            shape.tension = unit(random);
            shape.bias = unit(random);
            shape.continuity = unit(random);
            channel->setValueHermiteValueForKeyframe(unit(random),
                                                     KWKeyFramedChannel::hermiteDataFrom(&shape),
                                                     KWTime(static_cast<float>(k) + unit(random)));
        }
        array->addChannel(channel);
    }
    return array;
}

inline const std::shared_ptr<KWChannelArray>& KWSampleChannels(std::int64_t keys) {
    static std::map<std::int64_t, std::shared_ptr<KWChannelArray>> all;
    std::shared_ptr<KWChannelArray>& channels = all[keys];
    if (!channels)
        channels = KWMakeSampleChannels(keys);
    return channels;
}

struct KWSampleArchives {
    KWData keyed;
    KWData sequential;
};

inline const KWSampleArchives& KWSampleArchivesOf(const benchmark::State& state) {
    static std::map<std::int64_t, KWSampleArchives> all;
    KWSampleArchives& archives = all[state.range(0)];
    if (archives.keyed.empty()) {
        const auto channels = KWSampleChannels(state.range(0));
        archives = {KWKeyedArchiver::archivedDataWithRootObject(channels),
                    KWArchiver::archivedDataWithRootObject(channels)};
    }
    return archives;
}

inline void KWCountBytes(benchmark::State& state, std::size_t bytes) {
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(bytes));
}

/// Documents of 100,000 and of 1,000,000 keys.
inline void KWArchiveArguments(benchmark::internal::Benchmark* benchmark) {
    benchmark->Arg(100000)->Arg(1000000)->Unit(benchmark::kMillisecond);
}
