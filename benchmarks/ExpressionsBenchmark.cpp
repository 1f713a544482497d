#include "RatioReporter.h"

#include <KWBase/KWAlgebricInterpreter.h>

#include <KSeExpr/ExprType.h>
#include <KSeExpr/Expression.h>
#include <benchmark/benchmark.h>
#include <muParser.h>

#include <array>
#include <cmath>
#include <cstddef>
#include <fparser.hh>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

// Our expressions beside three libraries', and beside the same formula compiled. The libraries
// compute in double precision.

namespace {

constexpr std::size_t timeCount = 10000;

struct Formula {
    const char* ours; ///< as muParser has it too
    const char* theirs;
    float (*compiled)(float);
};

const std::array<Formula, 3> formulas{{
    {"2*t+1", "2*t+1", [](float t) { return 2 * t + 1; }},
    {"sin(t)*exp(-t/3)+2*t^2", "sin(t)*exp(-t/3)+2*t^2",
     [](float t) { return std::sin(t) * std::exp(-t / 3) + 2 * (t * t); }},
    {"sqrt(abs(t))*cos(3*t)+ln(t+2)/(t+5)", "sqrt(abs(t))*cos(3*t)+log(t+2)/(t+5)",
     [](float t) { return std::sqrt(std::fabs(t)) * std::cos(3 * t) + std::log(t + 2) / (t + 5); }},
}};

const Formula& formulaOf(const benchmark::State& state) {
    return formulas.at(static_cast<std::size_t>(state.range(0)) - 1);
}

const std::vector<float>& times() {
    static const std::vector<float> all = [] {
        std::vector<float> list(timeCount);
        for (std::size_t k = 0; k < timeCount; ++k)
            list[k] = static_cast<float>(k) / 1000;
        return list;
    }();
    return all;
}

void countValues(benchmark::State& state) {
    state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(timeCount));
}

template <class Evaluate>
void evaluateEach(benchmark::State& state, Evaluate evaluate) {
    for (auto _ : state)
        for (const float t : times())
            benchmark::DoNotOptimize(evaluate(t));
    countValues(state);
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
    evaluateEach(state, [&](float t) { return interpreter.evalTExpression(t); });
}

void tree(benchmark::State& state) {
    const ExprNode* const root = interpreterOf(state).tree();
    evaluateEach(state, [&](float t) {
        std::int16_t err = 0;
        return ComputeTree(root, t, 0, &err);
    });
}

void batch(benchmark::State& state) {
    const KWAlgebricInterpreter& interpreter = interpreterOf(state);
    std::vector<float> values(timeCount);
    for (auto _ : state) {
        interpreter.evalTExpressions(times(), values);
        benchmark::DoNotOptimize(values.data());
        benchmark::ClobberMemory();
    }
    countValues(state);
}

void compiledCall(benchmark::State& state) {
    float (*volatile function)(float) = formulaOf(state).compiled;
    evaluateEach(state, [call = function](float t) { return call(t); });
}

void muParserOneByOne(benchmark::State& state) {
    double t = 0;
    mu::Parser parser;
    parser.DefineVar("t", &t);
    parser.SetExpr(formulaOf(state).ours);
    evaluateEach(state, [&](float time) {
        t = static_cast<double>(time);
        return parser.Eval();
    });
}

void fparserOneByOne(benchmark::State& state) {
    FunctionParser parser;
    if (parser.Parse(formulaOf(state).theirs, "t") >= 0)
        throw std::runtime_error("fparser refuses the formula");
    parser.Optimize();
    evaluateEach(state, [&](float time) {
        const double t = static_cast<double>(time);
        return parser.Eval(&t);
    });
}

class SeExpression final : public KSeExpr::Expression {
  public:
    explicit SeExpression(const std::string& text) : Expression(text) {}
    ~SeExpression() override = default;

    KSeExpr::ExprVarRef* resolveVar(const std::string& name) const override {
        return name == "t" ? &_t : nullptr;
    }
    double at(float t) {
        _t.value = static_cast<double>(t);
        return *evalFP();
    }

  private:
    struct Variable final : KSeExpr::ExprVarRef {
        Variable() : ExprVarRef(KSeExpr::ExprType().FP(1).Varying()) {}
        ~Variable() override = default;
        void eval(double* result) override { *result = value; }
        void eval(const char**) override {}
        double value = 0;
    };
    mutable Variable _t;
};

void seExprOneByOne(benchmark::State& state) {
    SeExpression expression(formulaOf(state).theirs);
    if (!expression.isValid())
        throw std::runtime_error("KSeExpr refuses the formula");
    evaluateEach(state, [&](float t) { return expression.at(t); });
}

// --- Setting an expression: from the text to the first value.

void setting(benchmark::State& state) {
    const std::string text = formulaOf(state).ours;
    KWAlgebricInterpreter interpreter;
    for (auto _ : state) {
        interpreter.setExpressionMode(text, KWExpressionModeT);
        benchmark::DoNotOptimize(interpreter.evalTExpression(1));
    }
}

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

void fparserSetting(benchmark::State& state) {
    const std::string text = formulaOf(state).theirs;
    const double t = 1;
    FunctionParser parser;
    for (auto _ : state) {
        parser.Parse(text, "t");
        benchmark::DoNotOptimize(parser.Eval(&t));
    }
}

void seExprSetting(benchmark::State& state) {
    const std::string text = formulaOf(state).theirs;
    for (auto _ : state) {
        SeExpression expression(text);
        if (expression.isValid())
            benchmark::DoNotOptimize(expression.at(1));
    }
}

using Goal = KWRatio::Goal;

/// The full name of a benchmark over one of the formulas.
std::string named(const char* benchmark, int formula) {
    return std::string(benchmark).append("/").append(std::to_string(formula)).append("/repeats:5");
}

bool registerAll() {
    for (const auto& [name, function] :
         std::initializer_list<std::pair<const char*, void (*)(benchmark::State&)>>{
             {"expression", oneByOne},
             {"expressionTree", tree},
             {"expressionBatch", batch},
             {"compiledFormula", compiledCall},
             {"muParser", muParserOneByOne},
             {"fparser", fparserOneByOne},
             {"KSeExpr", seExprOneByOne},
             {"expressionSetting", setting},
             {"muParserSetting", muParserSetting},
             {"fparserSetting", fparserSetting},
             {"KSeExprSetting", seExprSetting}})
        benchmark::RegisterBenchmark(name, function)->DenseRange(1, 3)->Repetitions(5);
    for (const int formula : {1, 2, 3}) {
        const std::string of =
            std::string(" of ") + formulas.at(static_cast<std::size_t>(formula) - 1).ours;
        for (const char* const peer : {"muParser", "fparser", "KSeExpr"}) {
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
