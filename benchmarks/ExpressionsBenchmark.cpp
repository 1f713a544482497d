#include "RatioReporter.h"
#include "SampleExpressions.h"

#include <KWBase/KWAlgebricInterpreter.h>

#include <benchmark/benchmark.h>

#include <array>
#include <cstddef>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

// Our expressions beside the same formula compiled; the peers have sources of their own.

namespace {

const KWSampleFormula& formulaOf(const benchmark::State& state) {
    return KWSampleFormulaOf(state.range(0));
}

KWAlgebricInterpreter& interpreterOf(const benchmark::State& state) {
    static std::array<KWAlgebricInterpreter, 3> all;
    KWAlgebricInterpreter& interpreter = all.at(static_cast<std::size_t>(state.range(0)) - 1);
    if (!interpreter.setExpressionMode(formulaOf(state).ours, KWExpressionModeT))
        throw std::runtime_error("the formula is refused");
    return interpreter;
}

void oneByOne(benchmark::State& state) {
    const KWAlgebricInterpreter& interpreter = interpreterOf(state);
    KWEvaluateFormula(state, [&](float t) { return interpreter.evalTExpression(t); });
}

void tree(benchmark::State& state) {
    const ExprNode* const root = interpreterOf(state).tree();
    KWEvaluateFormula(state, [&](float t) {
        std::int16_t err = 0;
        return ComputeTree(root, t, 0, &err);
    });
}

void batch(benchmark::State& state) {
    const KWAlgebricInterpreter& interpreter = interpreterOf(state);
    std::vector<float> values(KWSampleFormulaTimes().size());
    for (auto _ : state) {
        interpreter.evalTExpressions(KWSampleFormulaTimes(), values);
        benchmark::DoNotOptimize(values.data());
        benchmark::ClobberMemory();
    }
    KWCountFormulaValues(state);
}

void compiledCall(benchmark::State& state) {
    float (*volatile function)(float) = formulaOf(state).compiled;
    KWEvaluateFormula(state, [call = function](float t) { return call(t); });
}

// --- Setting an expression: from the text to the first value.

void setting(benchmark::State& state) {
    const std::optional<std::string> text = formulaOf(state).ours;
    KWAlgebricInterpreter interpreter;
    for (auto _ : state) {
        interpreter.setExpressionMode(text, KWExpressionModeT);
        benchmark::DoNotOptimize(interpreter.evalTExpression(1));
    }
}

using Goal = KWRatio::Goal;

/// The full name of a benchmark over one of the formulas.
std::string named(const char* benchmark, int formula) {
    return std::string(benchmark).append("/").append(std::to_string(formula));
}

bool registerAll() {
    for (const auto& [name, function] :
         std::initializer_list<std::pair<const char*, void (*)(benchmark::State&)>>{
             {"expression", oneByOne},
             {"expressionTree", tree},
             {"expressionBatch", batch},
             {"compiledFormula", compiledCall},
             {"expressionSetting", setting}})
        benchmark::RegisterBenchmark(name, function)->DenseRange(1, 3);
    for (const int formula : {1, 2, 3}) {
        const std::string of = std::string(" of ") + KWSampleFormulaOf(formula).ours;
        for (const char* const peer : {"muParser", "fparser", "kSeExpr"}) {
            if (formula > 1)
                KWReportRatio({std::string("one value: ") + peer + ", ours" + of,
                               named("expression", formula), named(peer, formula), Goal::atLeast,
                               1});
            KWReportRatio({std::string("batch: ") + peer + ", ours" + of,
                           named("expressionBatch", formula), named(peer, formula), Goal::atLeast,
                           10});
        }
        KWReportRatio({"one value: ours, compiled" + of, named("expression", formula),
                       named("compiledFormula", formula), Goal::atMost, 3});
        KWReportRatio({"setting: muParser, ours" + of, named("expressionSetting", formula),
                       named("muParserSetting", formula), Goal::atLeast, 1});
    }
    return true;
}

[[maybe_unused]] const bool isRegistered = registerAll();

} // namespace
