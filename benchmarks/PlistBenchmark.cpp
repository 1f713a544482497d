#include "SampleArchives.h"

#include <benchmark/benchmark.h>
#include <plist/plist.h>

#include <cstdint>
#include <stdexcept>

namespace {

/// Parsing alone: no channel comes of it.
void libplistParse(benchmark::State& state) {
    const KWData& archive = KWSampleArchivesOf(state).keyed;
    for (auto _ : state) {
        plist_t list = nullptr;
        plist_from_bin(reinterpret_cast<const char*>(archive.data()),
                       static_cast<std::uint32_t>(archive.size()), &list);
        if (!list)
            throw std::runtime_error("libplist did not read the archive");
        plist_free(list);
    }
    KWCountBytes(state, archive.size());
}

BENCHMARK(libplistParse)->Apply(KWArchiveArguments);

} // namespace
