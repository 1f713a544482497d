#include "SampleCurve.h"

#include <benchmark/benchmark.h>

#include <boost/math/interpolators/cubic_hermite.hpp>
#include <vector>

// The cubic Hermite interpolator of Boost.Math. It has one slope for each key.

namespace {

using Hermite = boost::math::interpolators::cubic_hermite<std::vector<double>>;

Hermite hermiteOf(const KWSampleCurve& curve) {
    std::vector<double> slopes;
    for (const KWSampleTangents& tangents : curve.tangents)
        slopes.push_back(static_cast<double>(tangents.start));
    slopes.push_back(static_cast<double>(curve.tangents.back().end));
    return Hermite(std::vector<double>(curve.keys.begin(), curve.keys.end()),
                   std::vector<double>(curve.values.begin(), curve.values.end()),
                   std::move(slopes));
}

void boostRandom(benchmark::State& state) {
    const KWSampleCurve& curve = KWSampleCurveOf(state.range(0));
    const Hermite hermite = hermiteOf(curve);
    KWEvaluateEach(state, curve.times, [&](float t) { return hermite(static_cast<double>(t)); });
}

void boostFrames(benchmark::State& state) {
    const KWSampleCurve& curve = KWSampleCurveOf(state.range(0));
    const Hermite hermite = hermiteOf(curve);
    KWEvaluateEach(state, curve.frames, [&](float t) { return hermite(static_cast<double>(t)); });
}

BENCHMARK(boostRandom)->Arg(10)->Arg(1000)->Arg(100000);
BENCHMARK(boostFrames)->Arg(1000);

} // namespace
