#include "SampleExpressions.h"

#include <KSeExpr/ExprType.h>
#include <KSeExpr/Expression.h>
#include <benchmark/benchmark.h>

#include <stdexcept>
#include <string>

// KSeExpr computes in double precision.

namespace {

const KWSampleFormula& formulaOf(const benchmark::State& state) {
    return KWSampleFormulaOf(state.range(0));
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

void kSeExpr(benchmark::State& state) {
    SeExpression expression(formulaOf(state).theirs);
    if (!expression.isValid())
        throw std::runtime_error("KSeExpr refuses the formula");
    KWEvaluateFormula(state, [&](float t) { return expression.at(t); });
}

/// From the text to the first value.
void kSeExprSetting(benchmark::State& state) {
    const std::string text = formulaOf(state).theirs;
    for (auto _ : state) {
        SeExpression expression(text);
        if (expression.isValid())
            benchmark::DoNotOptimize(expression.at(1));
    }
}

BENCHMARK(kSeExpr)->DenseRange(1, 3);
BENCHMARK(kSeExprSetting)->DenseRange(1, 3);

} // namespace
