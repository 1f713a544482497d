#include <KWBase/KWExpressionCode.h>
#include <KWBase/KWExpressionStack.h>

#include <algorithm>
#include <bit>
#include <cstddef>
#include <optional>

namespace {

using Operation = KWExpressionOperation;

/// What a part of a tree comes to: a leaf, for which nothing is emitted until it is known how it is
/// used, or what the instructions so far leave on top of the stack.
struct Operand {
    enum class Kind : std::uint32_t { number, x, y, top };
    Kind kind;
    float number;

    bool isNumber() const { return kind == Kind::number; }
};

using Kind = Operand::Kind;

constexpr Operand top{Kind::top, 0};

bool isLeaf(const ExprNode& node) {
    return node.code <= KWExpressionConstant && node.code >= KWExpressionSecondVariable;
}

Operand leaf(const ExprNode& node) {
    if (node.code == KWExpressionConstant)
        return {Kind::number, node.value};
    return {node.code == KWExpressionFirstVariable ? Kind::x : Kind::y, 0};
}

/// The reciprocal of a power of two, when it is as exact to multiply by it as to divide.
std::optional<float> exactReciprocal(float number) {
    constexpr std::uint32_t fraction = 0x007fffff;
    constexpr std::uint32_t magnitude = 0x7fffffff;
    const std::uint32_t bits = std::bit_cast<std::uint32_t>(number);
    const std::uint32_t exponent = (bits & magnitude) >> 23;
    if ((bits & fraction) != 0 || exponent < 1 || exponent > 253)
        return std::nullopt;
    return 1 / number;
}

/// Walks a tree, operands before what is done with them and left before right, and emits
/// instructions. A leaf that follows later operands may be taken after them: it cannot fail.
class Compiler {
  public:
    Compiler(std::vector<KWExpressionInstruction>& code, const KWExpressionPowers& (*powers)())
        : _code(code), _powers(powers) {}

    void compile(const ExprNode* tree) {
        const Operand result = tree ? walk(tree) : Operand{Kind::number, 0};
        if (_hasFailed)
            return;
        load(result);
        emit(Operation::End);
    }

    std::size_t depth() const { return _depth; }

  private:
    struct Pending {
        const ExprNode* node;
        Operand left;
        bool isLeftKnown;
    };

    Operand walk(const ExprNode* node) {
        KWExpressionStack<Pending, 64> pending;
        for (;;) {
            while (!isLeaf(*node)) {
                pending.push({node, top, false});
                node = node->left;
                if (!node) {
                    fail(KWExpressionOutsideDomain);
                    return top;
                }
            }
            Operand value = leaf(*node);
            for (;;) {
                if (pending.isEmpty())
                    return value;
                Pending& last = pending.top();
                if (!last.isLeftKnown && last.node->right) {
                    last.left = value;
                    last.isLeftKnown = true;
                    node = last.node->right;
                    break;
                }
                value = last.isLeftKnown ? apply(last.node->code, last.left, value)
                                         : apply(last.node->code, value, {Kind::number, 0});
                if (_hasFailed)
                    return value;
                pending.pop();
            }
        }
    }

    // Every function below answers where the result is.

    Operand apply(std::int16_t code, Operand left, Operand right) {
        if (code >= KWExpressionAdd && code <= KWExpressionPower)
            return left.isNumber() && right.isNumber() ? fold(code, left.number, right.number)
                                                       : binary(code, left, right);
        drop(right);
        if (code >= KWExpressionExp && code <= KWExpressionTanh)
            return left.isNumber() ? fold(code, left.number, 0) : function(code, left);
        drop(left);
        return {Kind::number, 0};
    }

    Operand fold(std::int16_t code, float a, float b) {
        if (code == KWExpressionAdd)
            return {Kind::number, a + b};
        if (code == KWExpressionSubtract)
            return {Kind::number, a - b};
        if (code == KWExpressionMultiply)
            return {Kind::number, a * b};
        ExprNode left{KWExpressionConstant, a, nullptr, nullptr};
        ExprNode right{KWExpressionConstant, b, nullptr, nullptr};
        const ExprNode node{code, 0, &left, &right};
        std::int16_t err = 0;
        const float value = ComputeTree(&node, 0, 0, &err);
        if (err != 0)
            return fail(err);
        return {Kind::number, value};
    }

    Operand function(std::int16_t code, Operand argument) {
        if (argument.kind == Kind::x) {
            switch (code) {
            case KWExpressionExp:
                return push(Operation::PushExpX);
            case KWExpressionLn:
                return push(Operation::PushLnX);
            case KWExpressionSqrt:
                return push(Operation::PushSqrtX);
            case KWExpressionAbs:
                return push(Operation::PushAbsX);
            case KWExpressionSin:
                return push(Operation::PushSinX);
            case KWExpressionCos:
                return push(Operation::PushCosX);
            default:
                break;
            }
        }
        load(argument);
        const auto kind = static_cast<std::uint32_t>(code - KWExpressionExp);
        return emit(static_cast<Operation>(static_cast<std::uint32_t>(Operation::Exp) + kind));
    }

    Operand binary(std::int16_t code, Operand left, Operand right) {
        if (right.isNumber())
            return withNumber(code, left, right.number);
        if (left.isNumber())
            return numberWith(code, left.number, right);
        if (left.kind == Kind::x && right.kind == Kind::x && code == KWExpressionMultiply)
            return push(Operation::PushXSquared);
        if (left.kind != Kind::top && right.kind != Kind::top)
            left = load(left);
        if (code != KWExpressionPower && right.kind == Kind::x)
            return emit(topWithX(code));
        if (code != KWExpressionPower && left.kind == Kind::x)
            return emit(xWithTop(code));
        if (left.kind != Kind::top)
            under(left);
        else
            load(right);
        --_stacked;
        const auto kind = static_cast<std::uint32_t>(code - KWExpressionAdd);
        return emit(static_cast<Operation>(static_cast<std::uint32_t>(Operation::StackAdd) + kind));
    }

    static Operation topWithX(std::int16_t code) {
        return code == KWExpressionAdd        ? Operation::PlusX
               : code == KWExpressionSubtract ? Operation::MinusX
               : code == KWExpressionMultiply ? Operation::TimesX
                                              : Operation::OverX;
    }

    static Operation xWithTop(std::int16_t code) {
        return code == KWExpressionAdd        ? Operation::PlusX
               : code == KWExpressionSubtract ? Operation::XMinus
               : code == KWExpressionMultiply ? Operation::TimesX
                                              : Operation::XOverTop;
    }

    Operand withNumber(std::int16_t code, Operand left, float number) {
        switch (code) {
        case KWExpressionAdd:
            return plus(left, number);
        case KWExpressionSubtract:
            return plus(left, -number);
        case KWExpressionMultiply:
            return times(left, number);
        case KWExpressionDivide:
            if (number == 0)
                return fail(KWExpressionDivisionByZero);
            if (const std::optional<float> factor = exactReciprocal(number))
                return times(left, *factor);
            return xOrTop(left, Operation::PushXOver, Operation::Over, number);
        default:
            return raised(left, number);
        }
    }

    Operand numberWith(std::int16_t code, float number, Operand right) {
        switch (code) {
        case KWExpressionAdd:
            return plus(right, number);
        case KWExpressionSubtract:
            return xOrTop(right, Operation::PushMinusX, Operation::MinusTop, number);
        case KWExpressionMultiply:
            return times(right, number);
        case KWExpressionDivide:
            return xOrTop(right, Operation::PushOverX, Operation::OverTop, number);
        default:
            load(right);
            return emit(Operation::NumberPower, number);
        }
    }

    Operand plus(Operand value, float number) {
        if (value.kind == Kind::top) {
            KWExpressionInstruction& last = _code.back();
            if (last.operation == Operation::PushXTimes || last.operation == Operation::Times) {
                last.operation = last.operation == Operation::Times ? Operation::TimesPlus
                                                                    : Operation::PushXTimesPlus;
                last.b = number;
                return top;
            }
        }
        return xOrTop(value, Operation::PushXPlus, Operation::Plus, number);
    }

    Operand times(Operand value, float number) {
        if (value.kind == Kind::top) {
            KWExpressionInstruction& last = _code.back();
            if (last.operation == Operation::PushXSquared || last.operation == Operation::Squared) {
                last.operation = last.operation == Operation::Squared ? Operation::SquareTimes
                                                                      : Operation::PushXSquareTimes;
                last.a = number;
                return top;
            }
        }
        return xOrTop(value, Operation::PushXTimes, Operation::Times, number);
    }

    /// A constant power. The short forms give the bits of pow in double, rounded to float, for
    /// every float.
    Operand raised(Operand base, float exponent) {
        if (exponent == 0) {
            drop(base);
            return {Kind::number, 1};
        }
        const KWExpressionPowers& powers = _powers();
        if (exponent == 1 && powers.first)
            return base;
        if (exponent == 2 && powers.square && base.kind == Kind::x)
            return push(Operation::PushXSquared);
        load(base);
        if (exponent == 2 && powers.square)
            return emit(Operation::Squared);
        if (exponent == 3 && powers.cube)
            return emit(Operation::Cubed);
        if (exponent == 4 && powers.fourth)
            return emit(Operation::FourthPower);
        if (exponent == -1 && powers.reciprocal)
            return emit(Operation::Reciprocal);
        if (exponent == -2 && powers.reciprocalSquare)
            return emit(Operation::ReciprocalSquare);
        if (exponent == 0.5f && powers.half)
            return emit(Operation::HalfPower);
        return emit(KWExpressionIsWhole(exponent) ? Operation::PowerWhole : Operation::PowerNumber,
                    exponent);
    }

    Operand xOrTop(Operand value, Operation ofX, Operation ofTop, float number) {
        if (value.kind == Kind::x)
            return push(ofX, number);
        load(value);
        return emit(ofTop, number);
    }

    Operand load(Operand value) {
        switch (value.kind) {
        case Kind::number:
            return push(Operation::PushNumber, value.number);
        case Kind::x:
            return push(Operation::PushX);
        case Kind::y:
            return push(Operation::PushY);
        default:
            return top;
        }
    }

    void under(Operand value) {
        stack();
        emit(value.kind == Kind::number ? Operation::UnderNumber
             : value.kind == Kind::x    ? Operation::UnderX
                                        : Operation::UnderY,
             value.number);
    }

    void drop(Operand value) {
        if (value.kind == Kind::top) {
            --_stacked;
            emit(Operation::Drop);
        }
    }

    Operand push(Operation operation, float a = 0) {
        stack();
        return emit(operation, a);
    }

    void stack() { _depth = std::max(_depth, ++_stacked); }

    Operand emit(Operation operation, float a = 0) {
        _code.push_back({operation, a, 0});
        return top;
    }

    /// Everything after is of no account.
    Operand fail(std::int16_t fault) {
        _hasFailed = true;
        return emit(Operation::Fault, fault);
    }

    std::vector<KWExpressionInstruction>& _code;
    const KWExpressionPowers& (*_powers)();
    std::size_t _stacked = 0;
    std::size_t _depth = 0;
    bool _hasFailed = false;
};

} // namespace

std::size_t KWExpressionCompile(const ExprNode* tree, std::vector<KWExpressionInstruction>& code,
                                const KWExpressionPowers& (*powers)()) {
    code.reserve(16);
    Compiler compiler(code, powers);
    compiler.compile(tree);
    return compiler.depth();
}
