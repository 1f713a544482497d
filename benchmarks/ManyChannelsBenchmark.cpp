#include "SampleCurve.h"

#include <KWBase/KWChannelArrayCursor.h>

#include <benchmark/benchmark.h>

#include <deque>
#include <random>
#include <vector>

// A thousand channels, all asked for the time of one frame, frame by frame.

namespace {

constexpr std::size_t channelCount = 1000;
constexpr std::size_t keyCount = 100;
constexpr int framesPerKey[] = {2, 14}; // a lively movement, a quiet one

struct Channels {
    Channels() {
        std::mt19937 random(3);
        for (std::size_t c = 0; c < channelCount; ++c) {
            const KWSampleKeys& curve =
                curves.emplace_back(keyCount, static_cast<unsigned>(random()));
            array.addChannel(curve.channel);
        }
    }

    std::deque<KWSampleKeys> curves;
    KWChannelArray array;
};

Channels& channels() {
    static Channels all;
    return all;
}

/// Runs from the first keys to the last ones, and from the start again.
class Clock {
  public:
    explicit Clock(const benchmark::State& state) : _step(1 / static_cast<float>(state.range(0))) {}
    float next() {
        _time += _step;
        if (_time > static_cast<float>(keyCount))
            _time = 1;
        return _time;
    }

  private:
    float _step;
    float _time = 1;
};

void countChannels(benchmark::State& state) {
    state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(channelCount));
}

void frameByUpdate(benchmark::State& state) {
    const KWChannelList list = channels().array.channelEnumerator();
    Clock clock(state);
    for (auto _ : state) {
        const KWTime time(clock.next());
        for (const std::shared_ptr<KWChannel>& channel : list) {
            channel->updateForTime(time);
            benchmark::DoNotOptimize(channel->value());
        }
    }
    countChannels(state);
}

void frameByCursor(benchmark::State& state) {
    KWChannelArrayCursor cursor(channels().array);
    std::vector<float> values(cursor.channelCount());
    Clock clock(state);
    for (auto _ : state) {
        cursor.valuesForTime(KWTime(clock.next()), values);
        benchmark::DoNotOptimize(values.data());
        benchmark::ClobberMemory();
    }
    countChannels(state);
}

void frameByPlainLoop(benchmark::State& state) {
    const std::deque<KWSampleKeys>& curves = channels().curves;
    Clock clock(state);
    for (auto _ : state) {
        const float time = clock.next();
        for (const KWSampleKeys& curve : curves)
            benchmark::DoNotOptimize(curve.byUpperBound(time));
    }
    countChannels(state);
}

BENCHMARK(frameByUpdate)->Arg(framesPerKey[0])->Arg(framesPerKey[1]);
BENCHMARK(frameByCursor)->Arg(framesPerKey[0])->Arg(framesPerKey[1]);
BENCHMARK(frameByPlainLoop)->Arg(framesPerKey[0])->Arg(framesPerKey[1]);

} // namespace
