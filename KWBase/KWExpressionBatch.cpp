#include <KWBase/KWExpressionBatch.h>

#include <algorithm>
#include <array>
#include <cmath>

namespace {

using Operation = KWExpressionOperation;

/// Blocks are shorter for programs that stack more, so that all of them stay in the nearest cache.
constexpr std::size_t longestBlock = 512;
constexpr std::size_t stackedFloats = 4096;
static_assert(stackedFloats / KWExpressionBatchDepth % KWExpressionKernels::step == 0);

constexpr std::size_t roundedUp(std::size_t count) {
    constexpr std::size_t step = KWExpressionKernels::step;
    return (count + step - 1) / step * step;
}

/// Runs a program on one block after another. What is stacked are blocks.
class Machine {
  public:
    Machine(const KWExpressionInstruction* code, std::size_t depth, float y,
            const KWExpressionChecked& checked)
        : _checked(checked), _kernels(*checked.kernels), _code(code), _y(y) {
        const std::size_t length = stackedFloats / std::max<std::size_t>(depth, 1);
        _blockLength =
            std::min(longestBlock, length / KWExpressionKernels::step * KWExpressionKernels::step);
    }

    std::size_t blockLength() const { return _blockLength; }

    /// At most a block, all of which is read before anything is written.
    void evaluate(const float* xs, float* values, std::size_t count) {
        _count = roundedUp(count);
        _x = xs;
        _hasFaults = false;
        if (_count == count) {
            finish(run(), values);
            return;
        }
        std::copy_n(xs, count, _padded.data());
        std::fill(_padded.data() + count, _padded.data() + _count, xs[count - 1]);
        _x = _padded.data();
        float* result = run();
        finish(result, result);
        std::copy_n(result, count, values);
    }

  private:
    float* run();

    void finish(const float* result, float* out) const {
        if (_hasFaults)
            _kernels.finish(result, _faults.data(), out, _count);
        else
            _kernels.finishWithoutFaults(result, out, _count);
    }

    /// For operations that can fail: of a block that has none of those, nothing is kept.
    std::uint32_t* faults() {
        if (!_hasFaults)
            std::fill_n(_faults.data(), _count, 0);
        _hasFaults = true;
        return _faults.data();
    }

    // How an operation that makes a new top or changes it is done.

    void apply(KWExpressionKernels::Unary kernel, const float* a, float* out) const {
        kernel(a, out, _count);
    }

    void apply(KWExpressionKernels::UnaryWithFaults kernel, const float* a, float* out) {
        kernel(a, out, faults(), _count);
    }

    void apply(KWExpressionKernels::WithNumber kernel, const float* a, float number,
               float* out) const {
        kernel(a, number, out, _count);
    }

    void call(bool isKernelRight, KWExpressionKernels::Unary kernel, float (*function)(float),
              const float* a, float* out) const {
        if (isKernelRight)
            kernel(a, out, _count);
        else
            std::transform(a, a + _count, out, function);
    }

    void exp(const float* a, float* out) const {
        call(_checked.exp, _kernels.exp, _checked.library.exp, a, out);
    }

    void sin(const float* a, float* out) const {
        call(_checked.sin, _kernels.sin, _checked.library.sin, a, out);
    }

    void cos(const float* a, float* out) const {
        call(_checked.cos, _kernels.cos, _checked.library.cos, a, out);
    }

    void ln(const float* a, float* out) {
        apply(_kernels.checkLogarithm, a, out);
        call(_checked.ln, _kernels.ln, _checked.library.ln, out, out);
    }

    template <class Function>
    void perLane(float* top, Function function) const {
        std::transform(top, top + _count, top, function);
    }

    /// Raises, where `base(k)` may be raised to `exponent(k)`.
    template <class Base, class Exponent>
    void raise(float* out, Base base, Exponent exponent) {
        std::uint32_t* const marked = faults();
        for (std::size_t k = 0; k < _count; ++k) {
            if (base(k) < 0 && !KWExpressionIsWhole(exponent(k)))
                marked[k] = ~0u;
            else
                out[k] = KWExpressionRaised(base(k), exponent(k));
        }
    }

    void divideBy(const float* a, const float* b, float* out) {
        _kernels.divide(a, b, out, faults(), _count);
    }

    void divideNumber(float number, const float* b, float* out) {
        _kernels.divideNumberBy(b, number, out, faults(), _count);
    }

    /// Makes room below the top for a block.
    float* under(float* top) const {
        std::copy_n(top, _count, top + _blockLength);
        return top;
    }

    const KWExpressionChecked& _checked;
    const KWExpressionKernels& _kernels;
    const KWExpressionInstruction* _code;
    float _y;
    std::size_t _blockLength;
    std::size_t _count = 0; ///< of the block at hand, rounded up
    const float* _x = nullptr;
    alignas(64) std::array<std::uint32_t, longestBlock> _faults;
    bool _hasFaults = false; ///< whether those are kept for this block
    alignas(64) std::array<float, longestBlock> _padded;
    /// Begins with a block that stands for the top when nothing is stacked, and may need one at the
    /// end for a program that ends in a fault.
    alignas(64) std::array<float, longestBlock + stackedFloats + longestBlock> _stack;
};

/// Answers the block that the program leaves.
float* Machine::run() {
    const KWExpressionKernels& k = _kernels;
    const float* x = _x;
    const std::size_t count = _count;
    const std::size_t block = _blockLength;
    float* next = _stack.data() + block; // where the next value goes
    for (const auto* code = _code;; ++code) {
        const float a = code->a;
        float* top = next - block;
        switch (code->operation) {
        case Operation::End:
            return top;
        case Operation::Fault:
            std::fill_n(next, count, 0.0f); // in every lane
            return next;

        case Operation::PushNumber:
            std::fill_n(next, count, a);
            next += block;
            break;
        case Operation::PushX:
            std::copy_n(x, count, next);
            next += block;
            break;
        case Operation::PushY:
            std::fill_n(next, count, _y);
            next += block;
            break;
        case Operation::PushXPlus:
            apply(k.addNumber, x, a, next);
            next += block;
            break;
        case Operation::PushXTimes:
            apply(k.multiplyByNumber, x, a, next);
            next += block;
            break;
        case Operation::PushXTimesPlus:
            k.multiplyAndAddNumbers(x, a, code->b, next, count);
            next += block;
            break;
        case Operation::PushXOver:
            apply(k.divideByNumber, x, a, next);
            next += block;
            break;
        case Operation::PushMinusX:
            apply(k.subtractFromNumber, x, a, next);
            next += block;
            break;
        case Operation::PushOverX:
            divideNumber(a, x, next);
            next += block;
            break;
        case Operation::PushXSquared:
            k.multiply(x, x, next, count);
            next += block;
            break;
        case Operation::PushXSquareTimes:
            k.multiply(x, x, next, count);
            apply(k.multiplyByNumber, next, a, next);
            next += block;
            break;
        case Operation::PushExpX:
            exp(x, next);
            next += block;
            break;
        case Operation::PushLnX:
            ln(x, next);
            next += block;
            break;
        case Operation::PushSqrtX:
            apply(k.squareRoot, x, next);
            next += block;
            break;
        case Operation::PushAbsX:
            apply(k.absolute, x, next);
            next += block;
            break;
        case Operation::PushSinX:
            sin(x, next);
            next += block;
            break;
        case Operation::PushCosX:
            cos(x, next);
            next += block;
            break;

        case Operation::Plus:
            apply(k.addNumber, top, a, top);
            break;
        case Operation::Times:
            apply(k.multiplyByNumber, top, a, top);
            break;
        case Operation::TimesPlus:
            k.multiplyAndAddNumbers(top, a, code->b, top, count);
            break;
        case Operation::Over:
            apply(k.divideByNumber, top, a, top);
            break;
        case Operation::MinusTop:
            apply(k.subtractFromNumber, top, a, top);
            break;
        case Operation::OverTop:
            divideNumber(a, top, top);
            break;

        case Operation::PlusX:
            k.add(top, x, top, count);
            break;
        case Operation::MinusX:
            k.subtract(top, x, top, count);
            break;
        case Operation::XMinus:
            k.subtract(x, top, top, count);
            break;
        case Operation::TimesX:
            k.multiply(top, x, top, count);
            break;
        case Operation::OverX:
            divideBy(top, x, top);
            break;
        case Operation::XOverTop:
            divideBy(x, top, top);
            break;

        case Operation::StackAdd:
            next = top;
            k.add(next - block, top, next - block, count);
            break;
        case Operation::StackSubtract:
            next = top;
            k.subtract(next - block, top, next - block, count);
            break;
        case Operation::StackMultiply:
            next = top;
            k.multiply(next - block, top, next - block, count);
            break;
        case Operation::StackDivide:
            next = top;
            divideBy(next - block, top, next - block);
            break;
        case Operation::StackPower: {
            next = top;
            float* base = next - block;
            raise(
                base, [=](std::size_t i) { return base[i]; },
                [=](std::size_t i) { return top[i]; });
            break;
        }

        case Operation::UnderNumber:
            std::fill_n(under(top), count, a);
            next += block;
            break;
        case Operation::UnderX:
            std::copy_n(x, count, under(top));
            next += block;
            break;
        case Operation::UnderY:
            std::fill_n(under(top), count, _y);
            next += block;
            break;
        case Operation::Drop:
            next = top;
            break;

        case Operation::Squared:
            k.multiply(top, top, top, count);
            break;
        case Operation::SquareTimes:
            k.multiply(top, top, top, count);
            apply(k.multiplyByNumber, top, a, top);
            break;
        case Operation::Cubed:
            apply(k.cube, top, top);
            break;
        case Operation::FourthPower:
            apply(k.fourthPower, top, top);
            break;
        case Operation::Reciprocal:
            apply(k.reciprocal, top, top);
            break;
        case Operation::ReciprocalSquare:
            apply(k.reciprocalSquare, top, top);
            break;
        case Operation::HalfPower:
            apply(k.halfPower, top, top);
            break;
        case Operation::PowerWhole:
        case Operation::PowerNumber:
            raise(
                top, [=](std::size_t i) { return top[i]; }, [=](std::size_t) { return a; });
            break;
        case Operation::NumberPower:
            raise(
                top, [=](std::size_t) { return a; }, [=](std::size_t i) { return top[i]; });
            break;

        case Operation::Exp:
            exp(top, top);
            break;
        case Operation::Ln:
            ln(top, top);
            break;
        case Operation::Log:
            apply(k.checkLogarithm, top, top);
            perLane(top, [](float t) { return std::log10(t); });
            break;
        case Operation::Sqrt:
            apply(k.squareRoot, top, top);
            break;
        case Operation::Abs:
            apply(k.absolute, top, top);
            break;
        case Operation::Sin:
            sin(top, top);
            break;
        case Operation::Cos:
            cos(top, top);
            break;
        case Operation::Tan:
            perLane(top, [](float t) { return std::tan(t); });
            break;
        case Operation::Asin:
            perLane(top, [](float t) { return std::asin(t); });
            break;
        case Operation::Acos:
            perLane(top, [](float t) { return std::acos(t); });
            break;
        case Operation::Atan:
            perLane(top, [](float t) { return std::atan(t); });
            break;
        case Operation::Sinh:
            perLane(top, [](float t) { return std::sinh(t); });
            break;
        case Operation::Cosh:
            perLane(top, [](float t) { return std::cosh(t); });
            break;
        case Operation::Tanh:
            perLane(top, [](float t) { return std::tanh(t); });
            break;
        }
    }
}

} // namespace

void KWExpressionEvaluateBatch(const KWExpressionInstruction* code, std::size_t depth,
                               std::span<const float> xs, float y, std::span<float> values,
                               const KWExpressionChecked& checked) {
    Machine machine(code, depth, y, checked);
    for (std::size_t at = 0; at < xs.size(); at += machine.blockLength())
        machine.evaluate(xs.data() + at, values.data() + at,
                         std::min(machine.blockLength(), xs.size() - at));
}
