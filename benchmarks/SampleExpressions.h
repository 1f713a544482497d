#pragma once

#include <benchmark/benchmark.h>

#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <vector>

/// A formula as ours and muParser read it, as the others do, and compiled.
struct KWSampleFormula {
    const char* ours;
    const char* theirs;
    float (*compiled)(float);
};

/// The formulas are counted from 1.
inline const KWSampleFormula& KWSampleFormulaOf(std::int64_t number) {
    static const std::array<KWSampleFormula, 3> all{{
        {"2*t+1", "2*t+1", [](float t) { return 2 * t + 1; }},
        {"sin(t)*exp(-t/3)+2*t^2", "sin(t)*exp(-t/3)+2*t^2",
         [](float t) { return std::sin(t) * std::exp(-t / 3) + 2 * (t * t); }},
        {"sqrt(abs(t))*cos(3*t)+ln(t+2)/(t+5)", "sqrt(abs(t))*cos(3*t)+log(t+2)/(t+5)",
         [](float t) {
             return std::sqrt(std::fabs(t)) * std::cos(3 * t) + std::log(t + 2) / (t + 5);
         }},
    }};
    return all.at(static_cast<std::size_t>(number) - 1);
}

/// 10,000 times from 0 to 10 seconds.
inline const std::vector<float>& KWSampleFormulaTimes() {
    static const std::vector<float> all = [] {
        std::vector<float> times(10000);
        for (std::size_t k = 0; k < times.size(); ++k)
            times[k] = static_cast<float>(k) / 1000;
        return times;
    }();
    return all;
}

inline void KWCountFormulaValues(benchmark::State& state) {
    state.SetItemsProcessed(state.iterations() *
                            static_cast<std::int64_t>(KWSampleFormulaTimes().size()));
}

/// Asks for each time alone.
template <class Evaluate>
void KWEvaluateFormula(benchmark::State& state, Evaluate evaluate) {
    for (auto _ : state)
        for (const float t : KWSampleFormulaTimes())
            benchmark::DoNotOptimize(evaluate(t));
    KWCountFormulaValues(state);
}
