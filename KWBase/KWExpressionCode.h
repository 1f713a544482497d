#pragma once

#include <KWBase/KWExpressionTree.h>

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <vector>

// What the instructions of a program do. There is a stack of floats, whose top is called `top` here
// and lies in a register; `below` is the value under it. "Push" makes a new top. An operation of
// two stacked values takes both away and leaves its result. `a` and `b` are the instruction's
// numbers.
//
// clang-format off
#define KW_EXPRESSION_OPERATIONS(operation) \
    operation(End)              /* top is the value */ \
    operation(Fault)            /* there is none, but the fault a */ \
    \
    operation(PushNumber)       /* a */ \
    operation(PushX) \
    operation(PushY) \
    operation(PushXPlus)        /* x + a */ \
    operation(PushXTimes)       /* x * a */ \
    operation(PushXTimesPlus)   /* x * a + b */ \
    operation(PushXOver)        /* x / a */ \
    operation(PushMinusX)       /* a - x */ \
    operation(PushOverX)        /* a / x */ \
    operation(PushXSquared)     /* x * x */ \
    operation(PushXSquareTimes) /* x * x * a */ \
    operation(PushExpX) \
    operation(PushLnX) \
    operation(PushSqrtX) \
    operation(PushAbsX) \
    operation(PushSinX) \
    operation(PushCosX) \
    \
    operation(Plus)             /* top + a */ \
    operation(Times)            /* top * a */ \
    operation(TimesPlus)        /* top * a + b */ \
    operation(Over)             /* top / a */ \
    operation(MinusTop)         /* a - top */ \
    operation(OverTop)          /* a / top */ \
    \
    operation(PlusX)            /* top + x */ \
    operation(MinusX)           /* top - x */ \
    operation(XMinus)           /* x - top */ \
    operation(TimesX)           /* top * x */ \
    operation(OverX)            /* top / x */ \
    operation(XOverTop)         /* x / top */ \
    \
    /* Of below and top, in the order of the node kinds. */ \
    operation(StackAdd) \
    operation(StackSubtract) \
    operation(StackMultiply) \
    operation(StackDivide) \
    operation(StackPower) \
    \
    operation(UnderNumber)      /* puts a below the top */ \
    operation(UnderX) \
    operation(UnderY) \
    operation(Drop)             /* takes the top away */ \
    \
    operation(Squared) \
    operation(SquareTimes)      /* top * top * a */ \
    /* What pow in double answers, rounded to float. */ \
    operation(Cubed) \
    operation(FourthPower) \
    operation(Reciprocal) \
    operation(ReciprocalSquare) \
    operation(HalfPower) \
    operation(PowerWhole)       /* top ^ a, for an a that no base is a fault for */ \
    operation(PowerNumber)      /* top ^ a, for any other */ \
    operation(NumberPower)      /* a ^ top */ \
    \
    /* Of top, in the order of the node kinds. */ \
    operation(Exp) \
    operation(Ln) \
    operation(Log) \
    operation(Sqrt) \
    operation(Abs) \
    operation(Sin) \
    operation(Cos) \
    operation(Tan) \
    operation(Asin) \
    operation(Acos) \
    operation(Atan) \
    operation(Sinh) \
    operation(Cosh) \
    operation(Tanh)
// clang-format on

enum class KWExpressionOperation : std::uint32_t {
#define KW_EXPRESSION_NAME(name) name,
    KW_EXPRESSION_OPERATIONS(KW_EXPRESSION_NAME)
#undef KW_EXPRESSION_NAME
};

struct KWExpressionInstruction {
    KWExpressionOperation operation;
    float a;
    float b;
};

/// Which constant powers may be computed in a shorter way than by pow in double, rounded to float,
/// as the C library at hand has it.
struct KWExpressionPowers {
    bool first, square, cube, fourth, reciprocal, reciprocalSquare, half;

    /// Compares at specials, and where the exact power lies nearest to the middle between two
    /// floats, which a less exact pow would round to the other one.
    static KWExpressionPowers compare(double (*pow)(double, double));

    /// Those of this process; compared once, when they are first asked for.
    static const KWExpressionPowers& atHand();
};

/// Puts the program of a tree into an empty list. Answers the most values that it stacks at once.
/// `powers` is asked only where there is a constant power.
std::size_t KWExpressionCompile(const ExprNode* tree, std::vector<KWExpressionInstruction>& code,
                                const KWExpressionPowers& (*powers)() = KWExpressionPowers::atHand);

/// What an evaluation answers for the value that it came to: every NaN is the same quiet one. As
/// NaNs are alike to each operation and comparison, that makes up for what processors and the order
/// of operands do to their bits on the way.
inline float KWExpressionResult(float value) {
    return value == value ? value : std::numeric_limits<float>::quiet_NaN();
}

/// The codes of the faults, as ComputeTree has them.
enum : std::int16_t { KWExpressionDivisionByZero = 1, KWExpressionOutsideDomain = 2 };

/// Whether an exponent is a whole number of 32 bits, which every base may be raised to.
inline bool KWExpressionIsWhole(float exponent) {
    return exponent >= -2147483648.0f && exponent < 2147483648.0f &&
           static_cast<float>(static_cast<std::int32_t>(exponent)) == exponent;
}

// The shorter ways; the others are a product, a quotient and a square root in float.

inline float KWExpressionCube(float base) {
    const auto wide = static_cast<double>(base);
    return static_cast<float>(wide * wide * wide);
}

inline float KWExpressionFourthPower(float base) {
    const double square = static_cast<double>(base) * static_cast<double>(base);
    return static_cast<float>(square * square);
}

inline float KWExpressionReciprocalSquare(float base) {
    return static_cast<float>(1 / (static_cast<double>(base) * static_cast<double>(base)));
}

inline float KWExpressionHalfPower(float base) {
    return std::sqrt(base) + 0; // 0 for -0
}

inline float KWExpressionRaised(float base, float exponent) {
    return static_cast<float>(std::pow(static_cast<double>(base), static_cast<double>(exponent)));
}
