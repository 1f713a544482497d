#include "RatioReporter.h"
#include "SampleCurve.h"

#include <KWBase/KWChannelCursor.h>
#include <KWBase/KWKeyFramedChannel.h>
#include <KWBase/KWVectorTarget.h>
#include <KWFoundation/KWUndoManager.h>

#include <benchmark/benchmark.h>
#include <malloc.h>

#include <algorithm>
#include <memory>
#include <random>
#include <vector>

namespace {

const KWSampleCurve& curveOf(const benchmark::State& state) {
    return KWSampleCurveOf(state.range(0));
}

void randomChannel(benchmark::State& state) {
    const KWSampleCurve& curve = curveOf(state);
    const std::shared_ptr<const KWChannel> channel = curve.channel;
    KWEvaluateEach(state, curve.times, [&](float t) { return channel->valueForTime(KWTime(t)); });
}

void randomBranchFree(benchmark::State& state) {
    const KWSampleCurve& curve = curveOf(state);
    KWEvaluateEach(state, curve.times, [&](float t) { return curve.byBranchFreeSearch(t); });
}

void randomUpperBound(benchmark::State& state) {
    const KWSampleCurve& curve = curveOf(state);
    KWEvaluateEach(state, curve.times, [&](float t) { return curve.byUpperBound(t); });
}

void readByCursor(benchmark::State& state, const std::vector<float>& times) {
    KWChannelCursor cursor(curveOf(state).channel);
    KWEvaluateEach(state, times, [&](float t) { return cursor.valueForTime(KWTime(t)); });
}

void risingCursor(benchmark::State& state) {
    readByCursor(state, curveOf(state).rising);
}

void framesCursor(benchmark::State& state) {
    readByCursor(state, curveOf(state).frames);
}

void framesUpperBound(benchmark::State& state) {
    const KWSampleCurve& curve = curveOf(state);
    KWEvaluateEach(state, curve.frames, [&](float t) { return curve.byUpperBound(t); });
}

void batch(benchmark::State& state, const std::vector<float>& times) {
    const KWSampleCurve& curve = curveOf(state);
    std::vector<float> values(times.size());
    for (auto _ : state) {
        curve.channel->valuesForTimes(times, values);
        benchmark::DoNotOptimize(values.data());
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(times.size()));
}

void risingBatch(benchmark::State& state) {
    batch(state, curveOf(state).rising);
}

void denseBatch(benchmark::State& state) {
    batch(state, KWSampleDenseTimes());
}

void randomBatch(benchmark::State& state) {
    batch(state, curveOf(state).times);
}

/// As on a processor that has no better vectors than these.
class Vectors {
  public:
    explicit Vectors(KWVectorTarget target) { KWUseVectorTarget(target); }
    ~Vectors() { KWUseVectorTarget(KWVectorTargets().front()); }
    Vectors(const Vectors&) = delete;
    Vectors& operator=(const Vectors&) = delete;
};

void denseBatchBy(benchmark::State& state, KWVectorTarget target) {
    const Vectors vectors(target);
    denseBatch(state);
}

void randomBatchBy(benchmark::State& state, KWVectorTarget target) {
    const Vectors vectors(target);
    randomBatch(state);
}

// --- Insertion in random order

std::vector<float> shuffledKeys(std::size_t count) {
    std::vector<float> keys(count);
    for (std::size_t k = 0; k < count; ++k)
        keys[k] = static_cast<float>(k);
    std::shuffle(keys.begin(), keys.end(), std::mt19937(2));
    return keys;
}

class Owner final : public KWChannelOwner {
  public:
    ~Owner() override { resign(); }
    KWUndoManager* undoManager() override { return manager.get(); }
    std::shared_ptr<KWUndoManager> manager = std::make_shared<KWUndoManager>();
};

void insertIntoChannel(benchmark::State& state) {
    const std::vector<float> keys = shuffledKeys(static_cast<std::size_t>(state.range(0)));
    for (auto _ : state) {
        Owner owner;
        const auto channel = std::make_shared<KWKeyFramedChannel>();
        channel->setOwner(&owner);
        for (const float key : keys)
            channel->setValueForKeyframe(1, KWTime(key));
        benchmark::DoNotOptimize(channel->keyframeCount());
        // Forgetting the steps is no part of the insertion.
        state.PauseTiming();
        owner.manager->removeAllActions();
        state.ResumeTiming();
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}

void insertIntoVectors(benchmark::State& state) {
    const std::vector<float> order = shuffledKeys(static_cast<std::size_t>(state.range(0)));
    for (auto _ : state) {
        std::vector<float> keys;
        std::vector<float> values;
        std::vector<HJHermiteParam> shapes;
        for (const float key : order) {
            const auto at = std::lower_bound(keys.begin(), keys.end(), key) - keys.begin();
            keys.insert(keys.begin() + at, key);
            values.insert(values.begin() + at, 1);
            shapes.insert(shapes.begin() + at, HJHermiteParam());
        }
        benchmark::DoNotOptimize(keys.data());
        benchmark::DoNotOptimize(shapes.data());
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}

// --- One edit of a curve, and what a key takes

/// Sets the value of a key that is there, somewhere in the curve, and nobody undoes it.
void editChannel(benchmark::State& state) {
    const KWSampleCurve sample(static_cast<std::size_t>(state.range(0)));
    std::size_t k = 0;
    for (auto _ : state) {
        k = (k + 7919) % sample.keys.size();
        sample.channel->setValueForKeyframe(sample.values[k], KWTime(sample.keys[k]));
    }
}

/// The same in plain vectors, with the tangents that the key has a part in.
void editVectors(benchmark::State& state) {
    KWSampleCurve sample(static_cast<std::size_t>(state.range(0)));
    std::size_t k = 0;
    for (auto _ : state) {
        k = (k + 7919) % sample.keys.size();
        const auto at = static_cast<std::size_t>(
            std::lower_bound(sample.keys.begin(), sample.keys.end(), sample.keys[k]) -
            sample.keys.begin());
        sample.values[at] = -sample.values[at];
        sample.shapes[at] = HJHermiteParam();
        for (std::size_t i = at < 2 ? 0 : at - 2; i <= at + 1 && i < sample.tangents.size(); ++i)
            sample.tangents[i] = sample.tangentsOf(i);
        benchmark::ClobberMemory();
    }
}

/// Takes every second key away, and puts it back elsewhere, as a drag does, with undo.
void moveHalf(benchmark::State& state) {
    const KWSampleKeys sample(static_cast<std::size_t>(state.range(0)));
    Owner owner;
    sample.channel->setOwner(&owner);
    std::vector<KWTime> here;
    std::vector<KWTime> there;
    std::vector<float> values;
    for (std::size_t k = 1; k < sample.keys.size(); k += 2) {
        here.emplace_back(sample.keys[k]);
        there.emplace_back(sample.keys[k] + 0.25f);
        values.push_back(sample.values[k]);
    }
    const std::vector<KWData> records(values.size(), KWKeyFramedChannel::hermiteData());
    for (auto _ : state) {
        sample.channel->removeValuesForKeyframes(here);
        sample.channel->setValuesHermiteValuesForKeyframes(values, records, there);
        std::swap(here, there);
        state.PauseTiming();
        owner.manager->removeAllActions();
        state.ResumeTiming();
    }
    state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(values.size()));
}

/// Of 100,000 keys that were read often enough to have an index, each with a shape.
void memoryOfChannel(benchmark::State& state) {
    const KWSampleCurve sample(static_cast<std::size_t>(state.range(0)));
    std::vector<KWData> records;
    std::vector<KWTime> times;
    for (std::size_t k = 0; k < sample.keys.size(); ++k) {
        records.push_back(KWKeyFramedChannel::hermiteDataFrom(&sample.shapes[k]));
        times.push_back(KWTime(sample.keys[k]));
    }
    double bytes = 0;
    for (auto _ : state) {
        const std::size_t before = mallinfo2().uordblks + mallinfo2().hblkhd;
        const auto channel = std::make_shared<KWKeyFramedChannel>();
        channel->setValuesHermiteValuesForKeyframes(sample.values, records, times);
        for (const float t : sample.keys)
            benchmark::DoNotOptimize(channel->valueForTime(KWTime(t)));
        bytes = static_cast<double>(mallinfo2().uordblks + mallinfo2().hblkhd - before);
    }
    state.counters["bytes_per_key"] = bytes / static_cast<double>(sample.keys.size());
}

BENCHMARK(randomChannel)->Arg(10)->Arg(1000)->Arg(100000);
BENCHMARK(randomBranchFree)->Arg(10)->Arg(1000)->Arg(100000);
BENCHMARK(randomUpperBound)->Arg(10)->Arg(1000)->Arg(100000);
BENCHMARK(risingCursor)->Arg(10)->Arg(1000)->Arg(100000);
BENCHMARK(framesCursor)->Arg(10)->Arg(1000)->Arg(100000);
BENCHMARK(framesUpperBound)->Arg(1000);
BENCHMARK(risingBatch)->Arg(10)->Arg(1000)->Arg(100000);
BENCHMARK(denseBatch)->Arg(1000);
BENCHMARK(randomBatch)->Arg(10)->Arg(1000)->Arg(100000);
BENCHMARK_CAPTURE(denseBatchBy, AVX2, KWVectorTarget::avx2)->Arg(1000);
BENCHMARK_CAPTURE(denseBatchBy, baseline, KWVectorTarget::baseline)->Arg(1000);
BENCHMARK_CAPTURE(randomBatchBy, AVX2, KWVectorTarget::avx2)->Arg(1000);
BENCHMARK_CAPTURE(randomBatchBy, baseline, KWVectorTarget::baseline)->Arg(1000);
BENCHMARK(editChannel)->Arg(1000);
BENCHMARK(editVectors)->Arg(1000);
BENCHMARK(moveHalf)->Arg(1000)->Arg(100000);
BENCHMARK(memoryOfChannel)->Arg(100000)->Iterations(1);
BENCHMARK(insertIntoChannel)->Arg(1000);
BENCHMARK(insertIntoVectors)->Arg(1000);
BENCHMARK(insertIntoChannel)->Arg(100000)->Iterations(1);
BENCHMARK(insertIntoVectors)->Arg(100000)->Iterations(1);

using Goal = KWRatio::Goal;

[[maybe_unused]] const bool ratiosAreReported =
    KWReportRatio({"random time, 1,000 keys: channel, hand-written loop", "randomChannel/1000",
                   "randomBranchFree/1000", Goal::atMost, 1.5}) &&
    KWReportRatio({"random time, 1,000 keys: channel, upper_bound and tangents per call",
                   "randomChannel/1000", "randomUpperBound/1000", Goal::atMost, 1}) &&
    KWReportRatio({"1,000 keys: cursor at rising times, channel at random times",
                   "risingCursor/1000", "randomChannel/1000", Goal::atMost, 0.5}) &&
    KWReportRatio({"1,000 keys: batch of rising times, channel at random times", "risingBatch/1000",
                   "randomChannel/1000", Goal::atLeast, 8}) &&
    KWReportRatio({"insertion in random order, 1,000 keys: channel, vectors",
                   "insertIntoChannel/1000", "insertIntoVectors/1000", Goal::atMost, 3}) &&
    KWReportRatio({"insertion in random order, 100,000 keys: channel, vectors",
                   "insertIntoChannel/100000/iterations:1", "insertIntoVectors/100000/iterations:1",
                   Goal::atMost, 3});

} // namespace
