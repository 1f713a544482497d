#include "SampleCurve.h"

#include <benchmark/benchmark.h>
#include <gsl/gsl_spline.h>

#include <memory>
#include <vector>

// Cubic splines of GSL, with its accelerator, which keeps the place of the last look-up, and
// without. They have no shapes: a spline is as smooth as it can be.

namespace {

class Spline {
  public:
    explicit Spline(const KWSampleCurve& curve)
        : _spline(gsl_spline_alloc(gsl_interp_cspline, curve.keys.size())),
          _accelerator(gsl_interp_accel_alloc()) {
        const std::vector<double> keys(curve.keys.begin(), curve.keys.end());
        const std::vector<double> values(curve.values.begin(), curve.values.end());
        gsl_spline_init(_spline, keys.data(), values.data(), keys.size());
    }
    ~Spline() {
        gsl_spline_free(_spline);
        gsl_interp_accel_free(_accelerator);
    }
    Spline(const Spline&) = delete;
    Spline& operator=(const Spline&) = delete;

    double at(float t) const {
        return gsl_spline_eval(_spline, static_cast<double>(t), _accelerator);
    }
    double byBisectionAt(float t) const {
        return gsl_spline_eval(_spline, static_cast<double>(t), nullptr);
    }

  private:
    gsl_spline* _spline;
    gsl_interp_accel* _accelerator;
};

const KWSampleCurve& curveOf(const benchmark::State& state) {
    return KWSampleCurveOf(state.range(0));
}

void gslRandom(benchmark::State& state) {
    const Spline spline(curveOf(state));
    KWEvaluateEach(state, curveOf(state).times, [&](float t) { return spline.byBisectionAt(t); });
}

void gslAcceleratedRandom(benchmark::State& state) {
    const Spline spline(curveOf(state));
    KWEvaluateEach(state, curveOf(state).times, [&](float t) { return spline.at(t); });
}

void gslAcceleratedFrames(benchmark::State& state) {
    const Spline spline(curveOf(state));
    KWEvaluateEach(state, curveOf(state).frames, [&](float t) { return spline.at(t); });
}

void gslAcceleratedRising(benchmark::State& state) {
    const Spline spline(curveOf(state));
    KWEvaluateEach(state, curveOf(state).rising, [&](float t) { return spline.at(t); });
}

BENCHMARK(gslRandom)->Arg(10)->Arg(1000)->Arg(100000);
BENCHMARK(gslAcceleratedRandom)->Arg(1000);
BENCHMARK(gslAcceleratedFrames)->Arg(10)->Arg(1000)->Arg(100000);
BENCHMARK(gslAcceleratedRising)->Arg(1000);

} // namespace
