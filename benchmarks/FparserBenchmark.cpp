#include "SampleExpressions.h"

#include <benchmark/benchmark.h>

#include <fparser.hh>
#include <stdexcept>
#include <string>

// fparser computes in double precision.

namespace {

const KWSampleFormula& formulaOf(const benchmark::State& state) {
    return KWSampleFormulaOf(state.range(0));
}

void fparser(benchmark::State& state) {
    FunctionParser parser;
    if (parser.Parse(formulaOf(state).theirs, "t") >= 0)
        throw std::runtime_error("fparser refuses the formula");
    parser.Optimize();
    KWEvaluateFormula(state, [&](float time) {
        const double t = static_cast<double>(time);
        return parser.Eval(&t);
    });
}

/// From the text to the first value.
void fparserSetting(benchmark::State& state) {
    const std::string text = formulaOf(state).theirs;
    const double t = 1;
    FunctionParser parser;
    for (auto _ : state) {
        parser.Parse(text, "t");
        benchmark::DoNotOptimize(parser.Eval(&t));
    }
}

BENCHMARK(fparser)->DenseRange(1, 3);
BENCHMARK(fparserSetting)->DenseRange(1, 3);

} // namespace
