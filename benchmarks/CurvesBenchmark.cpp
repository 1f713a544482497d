#include "RatioReporter.h"

#include <KWBase/KWChannelCursor.h>
#include <KWBase/KWKeyFramedChannel.h>
#include <KWFoundation/KWUndoManager.h>

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <memory>
#include <random>
#include <vector>

namespace {

constexpr std::size_t timeCount = 10000;

struct Tangents {
    float start;
    float end;
};

/// A curve as a reader with no channels would hold it: keys at jittered distances, values in +-1,
/// shapes in +-0.9.
struct Curve {
    explicit Curve(std::size_t count) : channel(std::make_shared<KWKeyFramedChannel>()) {
        std::mt19937 random(1);
        std::uniform_real_distribution<float> unit(-1, 1);
        float t = 0;
        for (std::size_t k = 0; k < count; ++k) {
            HJHermiteParam shape;
            shape.tension = 0.9f * unit(random);
            shape.bias = 0.9f * unit(random);
            shape.continuity = 0.9f * unit(random);
            t += 1 + 0.4f * unit(random);
            keys.push_back(t);
            values.push_back(unit(random));
            shapes.push_back(shape);
            channel->setValueHermiteValueForKeyframe(
                values[k], KWKeyFramedChannel::hermiteDataFrom(&shape), KWTime(t));
        }
        for (std::size_t k = 0; k + 1 < count; ++k)
            tangents.push_back(tangentsOf(k));
        std::uniform_real_distribution<float> inside(keys.front(), keys.back());
        for (std::size_t k = 0; k < timeCount; ++k) {
            times.push_back(inside(random));
            rising.push_back(keys.front() + (keys.back() - keys.front()) * static_cast<float>(k) /
                                                static_cast<float>(timeCount));
        }
    }

    Tangents tangentsOf(std::size_t i) const {
        const std::size_t n = keys.size();
        const std::size_t j = i + 1;
        const double ti = keys[i];
        const double tj = keys[j];
        const double vi = values[i];
        const double vj = values[j];
        const double tp = i != 0 ? keys[i - 1] : keys[i];
        const double vp = i != 0 ? values[i - 1] : values[i];
        const double tq = i + 3 <= n ? keys[i + 2] : keys[j];
        const double vq = i + 3 <= n ? values[i + 2] : values[j];
        const HJHermiteParam& a = shapes[i];
        const HJHermiteParam& b = shapes[j];
        const double ai = tp < tj ? 2 * (tj - ti) / (tj - tp) : 1;
        const double aj = ti < tq ? 2 * (tj - ti) / (tq - ti) : 1;
        const double ki = (1 - double{a.tension}) * 0.5;
        const double kj = (1 - double{b.tension}) * 0.5;
        const double ca = a.continuity;
        const double cb = b.continuity;
        const double ba = a.bias;
        const double bb = b.bias;
        return {static_cast<float>(ai * ((vj - vi) * (1 - ca) * ki * (1 - ba) +
                                         ki * (ca + 1) * (ba + 1) * (vi - vp))),
                static_cast<float>(aj * ((vj - vi) * (1 - cb) * kj * (bb + 1) +
                                         kj * (cb + 1) * (1 - bb) * (vq - vj)))};
    }

    float blend(std::size_t i, float t, Tangents d) const {
        const float s = 1 - (keys[i + 1] - t) / (keys[i + 1] - keys[i]);
        const float s2 = s * s;
        const float s3 = s * s2;
        return (2 * s3 - 3 * s2 + 1) * values[i] + (-2 * s3 + 3 * s2) * values[i + 1] +
               (s3 - 2 * s2 + s) * d.start + (s3 - s2) * d.end;
    }

    float byBranchFreeSearch(float t) const {
        const float* base = keys.data();
        std::size_t left = keys.size();
        while (left > 1) {
            const std::size_t half = left / 2;
            base += static_cast<std::size_t>(base[half] <= t) * half;
            left -= half;
        }
        const auto i = static_cast<std::size_t>(base - keys.data());
        if (t < keys.front())
            return values.front();
        return i + 1 < keys.size() ? blend(i, t, tangents[i]) : values.back();
    }

    float byUpperBound(float t) const {
        const auto after = std::upper_bound(keys.begin(), keys.end(), t);
        if (after == keys.begin())
            return values.front();
        if (after == keys.end())
            return values.back();
        const auto i = static_cast<std::size_t>(after - keys.begin()) - 1;
        return blend(i, t, tangentsOf(i));
    }

    std::shared_ptr<KWKeyFramedChannel> channel;
    std::vector<float> keys;
    std::vector<float> values;
    std::vector<HJHermiteParam> shapes;
    std::vector<Tangents> tangents;
    std::vector<float> times;
    std::vector<float> rising;
};

const Curve& curveOf(const benchmark::State& state) {
    static const Curve small(10);
    static const Curve medium(1000);
    static const Curve large(100000);
    return state.range(0) == 10 ? small : state.range(0) == 1000 ? medium : large;
}

template <class Evaluate>
void evaluateEach(benchmark::State& state, const std::vector<float>& times, Evaluate evaluate) {
    for (auto _ : state)
        for (const float t : times)
            benchmark::DoNotOptimize(evaluate(t));
    state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(times.size()));
}

void randomChannel(benchmark::State& state) {
    const Curve& curve = curveOf(state);
    const std::shared_ptr<const KWChannel> channel = curve.channel;
    evaluateEach(state, curve.times, [&](float t) { return channel->valueForTime(KWTime(t)); });
}

void randomBranchFree(benchmark::State& state) {
    const Curve& curve = curveOf(state);
    evaluateEach(state, curve.times, [&](float t) { return curve.byBranchFreeSearch(t); });
}

void randomUpperBound(benchmark::State& state) {
    const Curve& curve = curveOf(state);
    evaluateEach(state, curve.times, [&](float t) { return curve.byUpperBound(t); });
}

void risingCursor(benchmark::State& state) {
    const Curve& curve = curveOf(state);
    KWChannelCursor cursor(curve.channel);
    evaluateEach(state, curve.rising, [&](float t) { return cursor.valueForTime(KWTime(t)); });
}

void risingCursorPerFrame(benchmark::State& state) {
    const Curve& curve = curveOf(state);
    KWChannelCursor cursor(curve.channel);
    std::vector<float> frames;
    for (std::size_t k = 0; k < timeCount; ++k)
        frames.push_back(std::min(curve.keys.back(), 1 + static_cast<float>(k) / 60));
    evaluateEach(state, frames, [&](float t) { return cursor.valueForTime(KWTime(t)); });
}

void batch(benchmark::State& state, const std::vector<float>& times) {
    const Curve& curve = curveOf(state);
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

void randomBatch(benchmark::State& state) {
    batch(state, curveOf(state).times);
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

BENCHMARK(randomChannel)->Arg(10)->Arg(1000)->Arg(100000)->Repetitions(5);
BENCHMARK(randomBranchFree)->Arg(10)->Arg(1000)->Arg(100000)->Repetitions(5);
BENCHMARK(randomUpperBound)->Arg(10)->Arg(1000)->Arg(100000)->Repetitions(5);
BENCHMARK(risingCursor)->Arg(10)->Arg(1000)->Arg(100000)->Repetitions(5);
BENCHMARK(risingCursorPerFrame)->Arg(1000)->Repetitions(5);
BENCHMARK(risingBatch)->Arg(10)->Arg(1000)->Arg(100000)->Repetitions(5);
BENCHMARK(randomBatch)->Arg(10)->Arg(1000)->Arg(100000)->Repetitions(5);
BENCHMARK(insertIntoChannel)->Arg(1000)->Repetitions(5);
BENCHMARK(insertIntoVectors)->Arg(1000)->Repetitions(5);
BENCHMARK(insertIntoChannel)->Arg(100000)->Iterations(1)->Repetitions(3);
BENCHMARK(insertIntoVectors)->Arg(100000)->Iterations(1)->Repetitions(3);

using Goal = KWRatio::Goal;

[[maybe_unused]] const bool ratiosAreReported =
    KWReportRatio({"random time, 1,000 keys: channel, hand-written loop",
                   "randomChannel/1000/repeats:5", "randomBranchFree/1000/repeats:5", Goal::atMost,
                   1.5}) &&
    KWReportRatio({"random time, 1,000 keys: channel, upper_bound and tangents per call",
                   "randomChannel/1000/repeats:5", "randomUpperBound/1000/repeats:5", Goal::atMost,
                   1}) &&
    KWReportRatio({"1,000 keys: cursor at rising times, channel at random times",
                   "risingCursor/1000/repeats:5", "randomChannel/1000/repeats:5", Goal::atMost,
                   0.5}) &&
    KWReportRatio({"1,000 keys: batch of rising times, channel at random times",
                   "risingBatch/1000/repeats:5", "randomChannel/1000/repeats:5", Goal::atLeast,
                   8}) &&
    KWReportRatio({"insertion in random order, 1,000 keys: channel, vectors",
                   "insertIntoChannel/1000/repeats:5", "insertIntoVectors/1000/repeats:5",
                   Goal::atMost, 3}) &&
    KWReportRatio({"insertion in random order, 100,000 keys: channel, vectors",
                   "insertIntoChannel/100000/iterations:1/repeats:3",
                   "insertIntoVectors/100000/iterations:1/repeats:3", Goal::atMost, 3});

} // namespace
