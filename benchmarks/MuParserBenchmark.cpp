#include "SampleExpressions.h"

#include <benchmark/benchmark.h>
#include <muParser.h>

#include <string>
#include <vector>

// muParser computes in double precision.

namespace {

const KWSampleFormula& formulaOf(const benchmark::State& state) {
    return KWSampleFormulaOf(state.range(0));
}

void muParser(benchmark::State& state) {
    double t = 0;
    mu::Parser parser;
    parser.DefineVar("t", &t);
    parser.SetExpr(formulaOf(state).ours);
    KWEvaluateFormula(state, [&](float time) {
        t = static_cast<double>(time);
        return parser.Eval();
    });
}

/// Its own way to compute many values in one call.
void muParserBatch(benchmark::State& state) {
    std::vector<double> times(KWSampleFormulaTimes().begin(), KWSampleFormulaTimes().end());
    std::vector<double> values(times.size());
    mu::Parser parser;
    parser.DefineVar("t", times.data());
    parser.SetExpr(formulaOf(state).ours);
    for (auto _ : state) {
        parser.Eval(values.data(), static_cast<int>(values.size()));
        benchmark::DoNotOptimize(values.data());
        benchmark::ClobberMemory();
    }
    KWCountFormulaValues(state);
}

/// From the text to the first value.
void muParserSetting(benchmark::State& state) {
    const std::string text = formulaOf(state).ours;
    double t = 1;
    mu::Parser parser;
    parser.DefineVar("t", &t);
    for (auto _ : state) {
        parser.SetExpr(text);
        benchmark::DoNotOptimize(parser.Eval());
    }
}

BENCHMARK(muParser)->DenseRange(1, 3);
BENCHMARK(muParserBatch)->DenseRange(1, 3);
BENCHMARK(muParserSetting)->DenseRange(1, 3);

} // namespace
