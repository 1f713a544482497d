#include "RatioReporter.h"
#include "SampleArchives.h"

#include <KWBase/KWChannelArray.h>
#include <KWBase/KWKeyFramedChannel.h>
#include <KWFoundation/KWArchiver.h>
#include <KWFoundation/KWFile.h>
#include <KWFoundation/KWKeyedArchiver.h>
#include <KWFoundation/KWKeyedUnarchiver.h>
#include <KWFoundation/KWUnarchiver.h>

#include <benchmark/benchmark.h>

#include <filesystem>
#include <memory>
#include <stdexcept>
#include <string>

namespace {

/// Down to channels that give values.
template <class Open>
void open(benchmark::State& state, const KWData& archive, Open unarchive) {
    for (auto _ : state) {
        const auto root = std::dynamic_pointer_cast<KWChannelArray>(unarchive(archive));
        if (!root || root->channelCount() != state.range(0) / 1000)
            throw std::runtime_error("the archive did not open");
        benchmark::DoNotOptimize(root->channels()->back()->valueForTime(KWTime(500)));
    }
    KWCountBytes(state, archive.size());
}

void openChannels(benchmark::State& state) {
    open(state, KWSampleArchivesOf(state).keyed,
         [](const KWData& archive) { return KWKeyedUnarchiver::unarchiveObjectWithData(archive); });
}

void openSequential(benchmark::State& state) {
    open(state, KWSampleArchivesOf(state).sequential,
         [](const KWData& archive) { return KWUnarchiver::unarchiveObjectWithData(archive); });
}

void parseProperties(benchmark::State& state) {
    const KWData& archive = KWSampleArchivesOf(state).keyed;
    for (auto _ : state)
        benchmark::DoNotOptimize(KWPropertyList::parse(archive).nodeCount());
    KWCountBytes(state, archive.size());
}

template <class Write>
void write(benchmark::State& state, Write archived) {
    const auto root = KWSampleChannels(state.range(0));
    std::size_t bytes = 0;
    for (auto _ : state) {
        const KWData archive = archived(root);
        bytes = archive.size();
        benchmark::DoNotOptimize(archive.data());
    }
    KWCountBytes(state, bytes);
}

void writeChannels(benchmark::State& state) {
    write(state,
          [](const auto& root) { return KWKeyedArchiver::archivedDataWithRootObject(root); });
}

void writeSequential(benchmark::State& state) {
    write(state, [](const auto& root) { return KWArchiver::archivedDataWithRootObject(root); });
}

void writeFile(benchmark::State& state) {
    const auto root = KWSampleChannels(state.range(0));
    const auto path = std::filesystem::temp_directory_path() / "kwbase-benchmark.kwdoc";
    std::size_t bytes = 0;
    for (auto _ : state) {
        KWKeyedArchiver::archiveRootObjectToFile(root, path);
        bytes = std::filesystem::file_size(path);
    }
    std::filesystem::remove(path);
    KWCountBytes(state, bytes);
}

BENCHMARK(openChannels)->Apply(KWArchiveArguments);
BENCHMARK(openSequential)->Apply(KWArchiveArguments);
BENCHMARK(writeSequential)->Apply(KWArchiveArguments);
BENCHMARK(parseProperties)->Apply(KWArchiveArguments);
BENCHMARK(writeChannels)->Apply(KWArchiveArguments);
BENCHMARK(writeFile)->Apply(KWArchiveArguments);

using Goal = KWRatio::Goal;

[[maybe_unused]] const bool ratiosAreReported =
    KWReportRatio({"1,000,000 keys: open down to channels, libplist's parse",
                   "openChannels/1000000", "libplistParse/1000000", Goal::atMost, 1}) &&
    KWReportRatio({"1,000,000 keys: write, libplist's parse", "writeChannels/1000000",
                   "libplistParse/1000000", Goal::atMost, 1}) &&
    KWReportRatio({"1,000,000 keys: open sequential, open keyed", "openSequential/1000000",
                   "openChannels/1000000", Goal::atMost, 1}) &&
    KWReportRatio({"1,000,000 keys: write sequential, write keyed", "writeSequential/1000000",
                   "writeChannels/1000000", Goal::atMost, 1}) &&
    KWReportRatio({"100,000 keys: libplist's parse, open down to channels", "openChannels/100000",
                   "libplistParse/100000", Goal::atLeast, 10});

} // namespace
