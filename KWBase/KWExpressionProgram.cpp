#include <KWBase/KWExpressionBatch.h>
#include <KWBase/KWExpressionCode.h>
#include <KWBase/KWExpressionProgram.h>

#include <cmath>
#include <memory>
#include <stdexcept>
#include <utility>

namespace {

using Operation = KWExpressionOperation;

constexpr KWExpressionInstruction answerZero[] = {{Operation::PushNumber, 0, 0},
                                                  {Operation::End, 0, 0}};
constexpr std::size_t inlineDepth = 32;

[[gnu::cold]] float fault(std::int16_t* err, std::int16_t code) {
    if (err)
        *err = code;
    return 0;
}

float logarithmFault(std::int16_t* err, float argument) {
    return fault(err, argument == 0 ? KWExpressionDivisionByZero : KWExpressionOutsideDomain);
}

// Labels as values, which gcc and clang know: each instruction jumps to the next one's by itself,
// which processors foresee better than one jump for all.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wpedantic"
#define KW_EXPRESSION_NEXT                                                                         \
    do {                                                                                           \
        goto* places[static_cast<std::uint32_t>((++code)->operation)];                             \
    } while (false)

/// Runs a program. `stack` has place for all values, or is null when there are at most inlineDepth.
float run(const KWExpressionInstruction* code, float x, float y, std::int16_t* err, float* stack) {
    float inlineStack[inlineDepth];
    float* below = stack ? stack : inlineStack; // where the next value goes
    float top = 0;
    static const void* const places[] = {
#define KW_EXPRESSION_PLACE(name) &&name, // NOLINT(bugprone-macro-parentheses)
        KW_EXPRESSION_OPERATIONS(KW_EXPRESSION_PLACE)
#undef KW_EXPRESSION_PLACE
    };
    goto* places[static_cast<std::uint32_t>(code->operation)];
End:
    return KWExpressionResult(top);
Fault:
    return fault(err, static_cast<std::int16_t>(code->a));

PushNumber:
    *below++ = top;
    top = code->a;
    KW_EXPRESSION_NEXT;
PushX:
    *below++ = top;
    top = x;
    KW_EXPRESSION_NEXT;
PushY:
    *below++ = top;
    top = y;
    KW_EXPRESSION_NEXT;
PushXPlus:
    *below++ = top;
    top = x + code->a;
    KW_EXPRESSION_NEXT;
PushXTimes:
    *below++ = top;
    top = x * code->a;
    KW_EXPRESSION_NEXT;
PushXTimesPlus:
    *below++ = top;
    top = x * code->a + code->b;
    KW_EXPRESSION_NEXT;
PushXOver:
    *below++ = top;
    top = x / code->a;
    KW_EXPRESSION_NEXT;
PushMinusX:
    *below++ = top;
    top = code->a - x;
    KW_EXPRESSION_NEXT;
PushOverX:
    if (x == 0) [[unlikely]]
        return fault(err, KWExpressionDivisionByZero);
    *below++ = top;
    top = code->a / x;
    KW_EXPRESSION_NEXT;
PushXSquared:
    *below++ = top;
    top = x * x;
    KW_EXPRESSION_NEXT;
PushXSquareTimes:
    *below++ = top;
    top = x * x * code->a;
    KW_EXPRESSION_NEXT;
PushExpX:
    *below++ = top;
    top = std::exp(x);
    KW_EXPRESSION_NEXT;
PushLnX:
    if (x <= 0) [[unlikely]]
        return logarithmFault(err, x);
    *below++ = top;
    top = std::log(x);
    KW_EXPRESSION_NEXT;
PushSqrtX:
    if (x < 0) [[unlikely]]
        return fault(err, KWExpressionOutsideDomain);
    *below++ = top;
    top = std::sqrt(x);
    KW_EXPRESSION_NEXT;
PushAbsX:
    *below++ = top;
    top = std::fabs(x);
    KW_EXPRESSION_NEXT;
PushSinX:
    *below++ = top;
    top = std::sin(x);
    KW_EXPRESSION_NEXT;
PushCosX:
    *below++ = top;
    top = std::cos(x);
    KW_EXPRESSION_NEXT;

Plus:
    top = top + code->a;
    KW_EXPRESSION_NEXT;
Times:
    top = top * code->a;
    KW_EXPRESSION_NEXT;
TimesPlus:
    top = top * code->a + code->b;
    KW_EXPRESSION_NEXT;
Over:
    top = top / code->a;
    KW_EXPRESSION_NEXT;
MinusTop:
    top = code->a - top;
    KW_EXPRESSION_NEXT;
OverTop:
    if (top == 0) [[unlikely]]
        return fault(err, KWExpressionDivisionByZero);
    top = code->a / top;
    KW_EXPRESSION_NEXT;

PlusX:
    top = top + x;
    KW_EXPRESSION_NEXT;
MinusX:
    top = top - x;
    KW_EXPRESSION_NEXT;
XMinus:
    top = x - top;
    KW_EXPRESSION_NEXT;
TimesX:
    top = top * x;
    KW_EXPRESSION_NEXT;
OverX:
    if (x == 0) [[unlikely]]
        return fault(err, KWExpressionDivisionByZero);
    top = top / x;
    KW_EXPRESSION_NEXT;
XOverTop:
    if (top == 0) [[unlikely]]
        return fault(err, KWExpressionDivisionByZero);
    top = x / top;
    KW_EXPRESSION_NEXT;

StackAdd:
    top = *--below + top;
    KW_EXPRESSION_NEXT;
StackSubtract:
    top = *--below - top;
    KW_EXPRESSION_NEXT;
StackMultiply:
    top = *--below * top;
    KW_EXPRESSION_NEXT;
StackDivide:
    if (top == 0) [[unlikely]]
        return fault(err, KWExpressionDivisionByZero);
    top = *--below / top;
    KW_EXPRESSION_NEXT;
StackPower : {
    const float base = *--below;
    if (base < 0 && !KWExpressionIsWhole(top)) [[unlikely]]
        return fault(err, KWExpressionOutsideDomain);
    top = KWExpressionRaised(base, top);
    KW_EXPRESSION_NEXT;
}

UnderNumber:
    *below++ = code->a;
    KW_EXPRESSION_NEXT;
UnderX:
    *below++ = x;
    KW_EXPRESSION_NEXT;
UnderY:
    *below++ = y;
    KW_EXPRESSION_NEXT;
Drop:
    top = *--below;
    KW_EXPRESSION_NEXT;

Squared:
    top = top * top;
    KW_EXPRESSION_NEXT;
SquareTimes:
    top = top * top * code->a;
    KW_EXPRESSION_NEXT;
Cubed:
    top = KWExpressionCube(top);
    KW_EXPRESSION_NEXT;
FourthPower:
    top = KWExpressionFourthPower(top);
    KW_EXPRESSION_NEXT;
Reciprocal:
    top = 1 / top;
    KW_EXPRESSION_NEXT;
ReciprocalSquare:
    top = KWExpressionReciprocalSquare(top);
    KW_EXPRESSION_NEXT;
HalfPower:
    if (top < 0) [[unlikely]]
        return fault(err, KWExpressionOutsideDomain);
    top = KWExpressionHalfPower(top);
    KW_EXPRESSION_NEXT;
PowerNumber:
    if (top < 0) [[unlikely]]
        return fault(err, KWExpressionOutsideDomain);
PowerWhole:
    top = KWExpressionRaised(top, code->a);
    KW_EXPRESSION_NEXT;
NumberPower:
    if (code->a < 0 && !KWExpressionIsWhole(top)) [[unlikely]]
        return fault(err, KWExpressionOutsideDomain);
    top = KWExpressionRaised(code->a, top);
    KW_EXPRESSION_NEXT;

Exp:
    top = std::exp(top);
    KW_EXPRESSION_NEXT;
Ln:
    if (top <= 0) [[unlikely]]
        return logarithmFault(err, top);
    top = std::log(top);
    KW_EXPRESSION_NEXT;
Log:
    if (top <= 0) [[unlikely]]
        return logarithmFault(err, top);
    top = std::log10(top);
    KW_EXPRESSION_NEXT;
Sqrt:
    if (top < 0) [[unlikely]]
        return fault(err, KWExpressionOutsideDomain);
    top = std::sqrt(top);
    KW_EXPRESSION_NEXT;
Abs:
    top = std::fabs(top);
    KW_EXPRESSION_NEXT;
Sin:
    top = std::sin(top);
    KW_EXPRESSION_NEXT;
Cos:
    top = std::cos(top);
    KW_EXPRESSION_NEXT;
Tan:
    top = std::tan(top);
    KW_EXPRESSION_NEXT;
Asin:
    top = std::asin(top);
    KW_EXPRESSION_NEXT;
Acos:
    top = std::acos(top);
    KW_EXPRESSION_NEXT;
Atan:
    top = std::atan(top);
    KW_EXPRESSION_NEXT;
Sinh:
    top = std::sinh(top);
    KW_EXPRESSION_NEXT;
Cosh:
    top = std::cosh(top);
    KW_EXPRESSION_NEXT;
Tanh:
    top = std::tanh(top);
    KW_EXPRESSION_NEXT;
}

#undef KW_EXPRESSION_NEXT
#pragma GCC diagnostic pop

[[gnu::noinline]] float runDeep(const KWExpressionInstruction* code, float x, float y,
                                std::int16_t* err, std::size_t depth) {
    const std::unique_ptr<float[]> stack(new float[depth]);
    return run(code, x, y, err, stack.get());
}

} // namespace

KWExpressionProgram::KWExpressionProgram() : _start(answerZero), _depth(1), _form(Form::ordinary) {}

KWExpressionProgram::KWExpressionProgram(const ExprNode* tree) : KWExpressionProgram() {
    if (!tree)
        return;
    _depth = KWExpressionCompile(tree, _code);
    _start = _code.data();
    if (_depth > inlineDepth)
        _form = Form::deep;
    else if (_start->operation == Operation::PushXTimesPlus && _code[1].operation == Operation::End)
        _form = Form::linear;
}

KWExpressionProgram::~KWExpressionProgram() = default;

KWExpressionProgram::KWExpressionProgram(KWExpressionProgram&& other) noexcept
    : KWExpressionProgram() {
    *this = std::move(other);
}

KWExpressionProgram& KWExpressionProgram::operator=(KWExpressionProgram&& other) noexcept {
    _code.swap(other._code);
    std::swap(_start, other._start);
    std::swap(_depth, other._depth);
    std::swap(_form, other._form);
    return *this;
}

float KWExpressionProgram::evaluate(float x, float y, std::int16_t* err) const {
    if (_form == Form::ordinary) [[likely]]
        return run(_start, x, y, err, nullptr);
    if (_form == Form::linear)
        return KWExpressionResult(x * _start->a + _start->b);
    return runDeep(_start, x, y, err, _depth);
}

void KWExpressionProgram::evaluate(std::span<const float> xs, float y,
                                   std::span<float> values) const {
    if (xs.size() != values.size())
        throw std::invalid_argument("as many values as x are wanted");
    constexpr std::size_t shortest = 8; // that blocks are faster for
    if (xs.size() >= shortest && _depth <= KWExpressionBatchDepth) {
        KWExpressionEvaluateBatch(_start, _depth, xs, y, values, KWExpressionChecked::atHand());
        return;
    }
    const std::unique_ptr<float[]> stack(_depth > inlineDepth ? new float[_depth] : nullptr);
    for (std::size_t k = 0; k < xs.size(); ++k)
        values[k] = run(_start, xs[k], y, nullptr, stack.get());
}
