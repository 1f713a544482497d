#pragma once

#include <cstddef>
#include <cstdint>

/// The functions of the C library that have a kernel of their own.
struct KWExpressionLibrary {
    float (*sin)(float);
    float (*cos)(float);
    float (*exp)(float);
    float (*ln)(float);

    /// Those that this process is linked with.
    static const KWExpressionLibrary& atHand();
};

/// Operations on blocks of floats, by the vector instructions of one kind of processor. Each lane
/// gets the bits that the plain operation gives for one float; of a NaN only that it is one is
/// sure, but for those that finish.
///
/// `count` is a multiple of KWExpressionKernels::step. `out` may be an operand. Operations that can
/// fail set all bits of `faults` in the lanes that do, whose result then means nothing.
struct KWExpressionKernels {
    /// What counts are multiples of; the most lanes that a vector has.
    static constexpr std::size_t step = 16;

    using Unary = void (*)(const float* a, float* out, std::size_t count);
    using UnaryWithFaults = void (*)(const float* a, float* out, std::uint32_t* faults,
                                     std::size_t count);
    using WithNumber = void (*)(const float* a, float number, float* out, std::size_t count);
    using Binary = void (*)(const float* a, const float* b, float* out, std::size_t count);

    Binary add;
    Binary subtract;
    Binary multiply;
    void (*divide)(const float* a, const float* b, float* out, std::uint32_t* faults,
                   std::size_t count);

    WithNumber addNumber;
    WithNumber multiplyByNumber;
    WithNumber divideByNumber;
    WithNumber subtractFromNumber;
    void (*divideNumberBy)(const float* a, float number, float* out, std::uint32_t* faults,
                           std::size_t count);
    /// a * number + addend, each rounded.
    void (*multiplyAndAddNumbers)(const float* a, float number, float addend, float* out,
                                  std::size_t count);

    // What pow in double gives, rounded to float.
    Unary cube;
    Unary fourthPower;
    Unary reciprocal;
    Unary reciprocalSquare;
    UnaryWithFaults halfPower;

    UnaryWithFaults squareRoot;
    Unary absolute;
    /// Puts 1 for what has no logarithm, and copies the rest.
    UnaryWithFaults checkLogarithm;
    /// Puts 0 for the lanes with a fault, the quiet NaN 0x7fc00000 for every NaN, and copies the
    /// rest.
    void (*finish)(const float* a, const std::uint32_t* faults, float* out, std::size_t count);
    /// The same where there are no faults.
    Unary finishWithoutFaults;

    // These do what glibc's functions do, for every float; see KWExpressionChecked.
    Unary sin;
    Unary cos;
    Unary exp;
    Unary ln;

    /// The kernels for this processor.
    static const KWExpressionKernels& best();
};

/// Kernels, of which those of the library's functions have been compared with a library: false are
/// those that answered otherwise anywhere, and the library is to be called instead.
struct KWExpressionChecked {
    const KWExpressionKernels* kernels;
    KWExpressionLibrary library;
    bool sin, cos, exp, ln;

    /// Compares at two thousand values for each: specials, floats of every kind, and some whose
    /// results change with fused multiply-add or with another algorithm.
    static KWExpressionChecked compare(const KWExpressionKernels& kernels,
                                       const KWExpressionLibrary& library);

    /// The best kernels and the library at hand; compared once.
    static const KWExpressionChecked& atHand();
};
