#include "RatioReporter.h"

#include <KWBase/KWChannelArray.h>
#include <KWBase/KWKeyFramedChannel.h>
#include <KWFoundation/KWArchiver.h>
#include <KWFoundation/KWFile.h>
#include <KWFoundation/KWKeyedArchiver.h>
#include <KWFoundation/KWKeyedUnarchiver.h>
#include <KWFoundation/KWUnarchiver.h>

#include <benchmark/benchmark.h>
#include <plist/plist.h>

#include <filesystem>
#include <memory>
#include <random>
#include <stdexcept>
#include <string>

namespace {

/// Channels of a thousand keys each, all of them shaped, so that no two records are alike.
std::shared_ptr<KWChannelArray> channelsWithKeys(std::int64_t keys) {
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

struct Archives {
    KWData keyed;
    KWData sequential;
};

const Archives& archivesOf(const benchmark::State& state) {
    static std::int64_t keys = 0;
    static Archives archives;
    if (keys != state.range(0)) {
        keys = state.range(0);
        const auto channels = channelsWithKeys(keys);
        archives = {KWKeyedArchiver::archivedDataWithRootObject(channels),
                    KWArchiver::archivedDataWithRootObject(channels)};
    }
    return archives;
}

const KWData& archiveOf(const benchmark::State& state) {
    return archivesOf(state).keyed;
}

void countBytes(benchmark::State& state, std::size_t bytes) {
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(bytes));
}

/// Down to channels that give values.
template <class Open>
void open(benchmark::State& state, const KWData& archive, Open unarchive) {
    for (auto _ : state) {
        const auto root = std::dynamic_pointer_cast<KWChannelArray>(unarchive(archive));
        if (!root || root->channelCount() != state.range(0) / 1000)
            throw std::runtime_error("the archive did not open");
        benchmark::DoNotOptimize(root->channels()->back()->valueForTime(KWTime(500)));
    }
    countBytes(state, archive.size());
}

void openChannels(benchmark::State& state) {
    open(state, archivesOf(state).keyed,
         [](const KWData& archive) { return KWKeyedUnarchiver::unarchiveObjectWithData(archive); });
}

void openSequential(benchmark::State& state) {
    open(state, archivesOf(state).sequential,
         [](const KWData& archive) { return KWUnarchiver::unarchiveObjectWithData(archive); });
}

void parseProperties(benchmark::State& state) {
    const KWData& archive = archiveOf(state);
    for (auto _ : state)
        benchmark::DoNotOptimize(KWPropertyList::parse(archive).nodeCount());
    countBytes(state, archive.size());
}

/// Parsing alone: no channel comes of it.
void libplistParse(benchmark::State& state) {
    const KWData& archive = archiveOf(state);
    for (auto _ : state) {
        plist_t list = nullptr;
        plist_from_bin(reinterpret_cast<const char*>(archive.data()),
                       static_cast<std::uint32_t>(archive.size()), &list);
        if (!list)
            throw std::runtime_error("libplist did not read the archive");
        plist_free(list);
    }
    countBytes(state, archive.size());
}

template <class Write>
void write(benchmark::State& state, Write archived) {
    const auto root = channelsWithKeys(state.range(0));
    std::size_t bytes = 0;
    for (auto _ : state) {
        const KWData archive = archived(root);
        bytes = archive.size();
        benchmark::DoNotOptimize(archive.data());
    }
    countBytes(state, bytes);
}

void writeChannels(benchmark::State& state) {
    write(state,
          [](const auto& root) { return KWKeyedArchiver::archivedDataWithRootObject(root); });
}

void writeSequential(benchmark::State& state) {
    write(state, [](const auto& root) { return KWArchiver::archivedDataWithRootObject(root); });
}

void writeFile(benchmark::State& state) {
    const auto root = channelsWithKeys(state.range(0));
    const auto path = std::filesystem::temp_directory_path() / "kwbase-benchmark.kwdoc";
    std::size_t bytes = 0;
    for (auto _ : state) {
        KWKeyedArchiver::archiveRootObjectToFile(root, path);
        bytes = std::filesystem::file_size(path);
    }
    std::filesystem::remove(path);
    countBytes(state, bytes);
}

void arguments(benchmark::internal::Benchmark* benchmark) {
    benchmark->Arg(100000)->Arg(1000000)->Unit(benchmark::kMillisecond)->Repetitions(5);
}

BENCHMARK(openChannels)->Apply(arguments);
BENCHMARK(openSequential)->Apply(arguments);
BENCHMARK(writeSequential)->Apply(arguments);
BENCHMARK(parseProperties)->Apply(arguments);
BENCHMARK(libplistParse)->Apply(arguments);
BENCHMARK(writeChannels)->Apply(arguments);
BENCHMARK(writeFile)->Apply(arguments);

using Goal = KWRatio::Goal;

[[maybe_unused]] const bool ratiosAreReported =
    KWReportRatio({"1,000,000 keys: open down to channels, libplist's parse",
                   "openChannels/1000000/repeats:5", "libplistParse/1000000/repeats:5",
                   Goal::atMost, 1}) &&
    KWReportRatio({"1,000,000 keys: write, libplist's parse", "writeChannels/1000000/repeats:5",
                   "libplistParse/1000000/repeats:5", Goal::atMost, 1}) &&
    KWReportRatio({"1,000,000 keys: open sequential, open keyed",
                   "openSequential/1000000/repeats:5", "openChannels/1000000/repeats:5",
                   Goal::atMost, 1}) &&
    KWReportRatio({"1,000,000 keys: write sequential, write keyed",
                   "writeSequential/1000000/repeats:5", "writeChannels/1000000/repeats:5",
                   Goal::atMost, 1}) &&
    KWReportRatio({"100,000 keys: libplist's parse, open down to channels",
                   "openChannels/100000/repeats:5", "libplistParse/100000/repeats:5", Goal::atLeast,
                   10});

} // namespace
