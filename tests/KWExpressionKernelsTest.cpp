#include "ExpressionTargets.h"

#include <KWBase/KWExpressionCode.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <cmath>
#include <cstdlib>
#include <functional>
#include <iostream>
#include <string_view>
#include <thread>

#if defined(__GLIBC__)
#include <gnu/libc-version.h>
#endif

namespace {

using Kernels = KWExpressionKernels;
using Function = float (*)(float);
using Floats = std::vector<float>;

float raised(float a, double exponent) {
    return static_cast<float>(std::pow(static_cast<double>(a), exponent));
}

Floats padded(Floats list) {
    while (list.size() % Kernels::step != 0)
        list.push_back(1);
    return list;
}

/// A left operand for each right one and the other way round.
std::pair<Floats, Floats> pairs() {
    const Floats some = notableFloats();
    std::pair<Floats, Floats> result;
    for (const float a : some) {
        for (const float b : some) {
            result.first.push_back(a);
            result.second.push_back(b);
        }
    }
    result.first = padded(result.first);
    result.second = padded(result.second);
    return result;
}

/// Of a NaN only that it is one is sure.
bool areSame(float a, float b) {
    return bitsOf(KWExpressionResult(a)) == bitsOf(KWExpressionResult(b));
}

void expectSameBits(float result, float expected, bool hasTwoSources, std::string_view what) {
    if (hasTwoSources) {
        ASSERT_TRUE(std::isnan(result)) << what;
    } else {
        ASSERT_EQ(bitsOf(result), bitsOf(expected)) << what << ": " << result << ", " << expected;
    }
}

void expectUnary(const Floats& input, const std::function<void(const float*, float*)>& kernel,
                 const std::function<float(float)>& plain, std::string_view what) {
    Floats output(input.size());
    kernel(input.data(), output.data());
    for (std::size_t k = 0; k < input.size(); ++k) {
        ASSERT_TRUE(areSame(output[k], plain(input[k])))
            << what << " of " << input[k] << ", 0x" << std::hex << bitsOf(input[k]);
    }
    Floats inPlace = input;
    kernel(inPlace.data(), inPlace.data());
    EXPECT_TRUE(std::equal(output.begin(), output.end(), inPlace.begin(), [](float a, float b) {
        return bitsOf(a) == bitsOf(b);
    })) << what;
}

TEST(KWExpressionKernels, OperatorsOfTwoBlocksAreThePlainOnes) {
    const std::pair<Floats, Floats> operands = pairs();
    const Floats& left = operands.first;
    const Floats& right = operands.second;
    const std::size_t count = left.size();
    Floats out(count);
    forEachTarget([&](const Kernels& kernels, const char* target) {
        const auto check = [&](auto plain, std::string_view what) {
            for (std::size_t k = 0; k < count; ++k) {
                ASSERT_NO_FATAL_FAILURE(expectSameBits(out[k], plain(left[k], right[k]),
                                                       std::isnan(left[k]) && std::isnan(right[k]),
                                                       what))
                    << target << ' ' << left[k] << ", " << right[k];
            }
        };
        kernels.add(left.data(), right.data(), out.data(), count);
        check(std::plus<float>(), "sum");
        kernels.subtract(left.data(), right.data(), out.data(), count);
        check(std::minus<float>(), "difference");
        kernels.multiply(left.data(), right.data(), out.data(), count);
        check(std::multiplies<float>(), "product");
        std::vector<std::uint32_t> faults(count);
        kernels.divide(left.data(), right.data(), out.data(), faults.data(), count);
        for (std::size_t k = 0; k < count; ++k) {
            ASSERT_EQ(faults[k], right[k] == 0 ? ~0u : 0u) << target;
            if (right[k] == 0)
                out[k] = left[k] / right[k];
        }
        check(std::divides<float>(), "quotient");
    });
}

TEST(KWExpressionKernels, OperatorsWithANumberAreThePlainOnes) {
    const Floats input = padded(floatsOfAllKinds(1000));
    const std::size_t n = input.size();
    forEachTarget([&](const Kernels& kernels, const char* target) {
        for (const float c : {0.0f, -0.0f, 1.0f, -2.5f, 1e-40f, 1e38f, HUGE_VALF}) {
            const auto check = [&](Kernels::WithNumber kernel,
                                   const std::function<float(float)>& plain) {
                expectUnary(
                    input, [&](const float* a, float* out) { kernel(a, c, out, n); }, plain,
                    target);
            };
            check(kernels.addNumber, [c](float a) { return a + c; });
            check(kernels.multiplyByNumber, [c](float a) { return a * c; });
            check(kernels.divideByNumber, [c](float a) { return a / c; });
            check(kernels.subtractFromNumber, [c](float a) { return c - a; });
            std::vector<std::uint32_t> faults(n);
            expectUnary(
                input,
                [&](const float* a, float* out) {
                    kernels.divideNumberBy(a, c, out, faults.data(), n);
                },
                [c](float a) { return c / a; }, target);
            for (std::size_t k = 0; k < n; ++k)
                ASSERT_EQ(faults[k], input[k] == 0 ? ~0u : 0u) << target;
            expectUnary(
                input,
                [&](const float* a, float* out) {
                    kernels.multiplyAndAddNumbers(a, 3.1f, c, out, n);
                },
                [c](float a) { return a * 3.1f + c; }, target);
        }
    });
}

TEST(KWExpressionKernels, PowersArePowInDouble) {
    const Floats input = padded(floatsOfAllKinds(100'000));
    const std::size_t n = input.size();
    forEachTarget([&](const Kernels& kernels, const char* target) {
        const auto check = [&](Kernels::Unary kernel, double exponent) {
            expectUnary(
                input, [&](const float* a, float* out) { kernel(a, out, n); },
                [exponent](float a) { return raised(a, exponent); }, target);
        };
        check(kernels.cube, 3);
        check(kernels.fourthPower, 4);
        check(kernels.reciprocal, -1);
        check(kernels.reciprocalSquare, -2);
    });
}

TEST(KWExpressionKernels, WhatCanFailMarksItsLanes) {
    const Floats input = padded(floatsOfAllKinds(10'000));
    const std::size_t n = input.size();
    forEachTarget([&](const Kernels& kernels, const char* target) {
        const auto check = [&](Kernels::UnaryWithFaults kernel, auto isFault, auto plain) {
            std::vector<std::uint32_t> faults(n);
            Floats out(n);
            faults[3] = ~0u;
            kernel(input.data(), out.data(), faults.data(), n);
            for (std::size_t k = 0; k < n; ++k) {
                ASSERT_EQ(faults[k], k == 3 || isFault(input[k]) ? ~0u : 0u) << target;
                if (!isFault(input[k])) {
                    ASSERT_EQ(bitsOf(out[k]), bitsOf(plain(input[k]))) << target << input[k];
                }
            }
        };
        const auto isNegative = [](float a) { return a < 0; };
        check(kernels.squareRoot, isNegative, [](float a) { return std::sqrt(a); });
        check(kernels.halfPower, isNegative, [](float a) { return raised(a, 0.5); });
        check(
            kernels.checkLogarithm, [](float a) { return a <= 0; }, [](float a) { return a; });
    });
}

TEST(KWExpressionKernels, FinishingPutsZeroWhereAFaultIs) {
    const Floats input = padded(floatsOfAllKinds(1000));
    std::vector<std::uint32_t> faults(input.size());
    for (std::size_t k = 0; k < faults.size(); k += 3)
        faults[k] = ~0u;
    forEachTarget([&](const Kernels& kernels, const char* target) {
        Floats out(input.size());
        kernels.finish(input.data(), faults.data(), out.data(), out.size());
        for (std::size_t k = 0; k < out.size(); ++k)
            ASSERT_EQ(bitsOf(out[k]), k % 3 == 0             ? 0u
                                      : std::isnan(input[k]) ? 0x7fc00000u
                                                             : bitsOf(input[k]))
                << target;
        kernels.finishWithoutFaults(input.data(), out.data(), out.size());
        for (std::size_t k = 0; k < out.size(); ++k)
            ASSERT_EQ(bitsOf(out[k]), std::isnan(input[k]) ? 0x7fc00000u : bitsOf(input[k]))
                << target;
        kernels.absolute(input.data(), out.data(), out.size());
        for (std::size_t k = 0; k < out.size(); ++k)
            ASSERT_EQ(bitsOf(out[k]), bitsOf(std::fabs(input[k]))) << target;
    });
}

struct Named {
    const char* name;
    Kernels::Unary Kernels::*kernel;
    Function KWExpressionLibrary::*function;
    bool KWExpressionChecked::*isRight;
};

constexpr Named functions[] = {
    {"sin", &Kernels::sin, &KWExpressionLibrary::sin, &KWExpressionChecked::sin},
    {"cos", &Kernels::cos, &KWExpressionLibrary::cos, &KWExpressionChecked::cos},
    {"exp", &Kernels::exp, &KWExpressionLibrary::exp, &KWExpressionChecked::exp},
    {"ln", &Kernels::ln, &KWExpressionLibrary::ln, &KWExpressionChecked::ln},
};

std::uint64_t countDifferences(Kernels::Unary kernel, Function function, std::uint64_t first,
                               std::uint64_t end, std::uint64_t step) {
    constexpr std::size_t size = 512;
    Floats input(size);
    Floats output(size);
    std::uint64_t differences = 0;
    for (std::uint64_t bits = first; bits < end; bits += step * size) {
        for (std::size_t k = 0; k < size; ++k)
            input[k] = std::bit_cast<float>(static_cast<std::uint32_t>(bits + step * k));
        kernel(input.data(), output.data(), size);
        for (std::size_t k = 0; k < size; ++k)
            differences += areSame(output[k], function(input[k])) ? 0u : 1u;
    }
    return differences;
}

TEST(KWExpressionKernels, KernelsThatAreUsedAnswerAsTheLibraryDoes) {
    const KWExpressionLibrary& library = KWExpressionLibrary::atHand();
    forEachTarget([&](const Kernels& kernels, const char* target) {
        const KWExpressionChecked checked = KWExpressionChecked::compare(kernels, library);
        for (const Named& each : functions) {
            if (!(checked.*each.isRight))
                continue;
            EXPECT_EQ(
                countDifferences(kernels.*each.kernel, library.*each.function, 0, 1ull << 32, 9973),
                0u)
                << each.name << ' ' << target;
        }
    });
}

#if defined(__GLIBC__) && defined(__x86_64__)
// glibc chooses code with fused multiply-add where the processor has it, as the best target does.
TEST(KWExpressionKernels, TheBestOnesAreUsedWithTheLibraryTheyWereMadeFor) {
    if (std::string_view(gnu_get_libc_version()) != "2.36" || std::getenv("GLIBC_TUNABLES"))
        GTEST_SKIP() << "another library";
    const KWExpressionChecked& checked = KWExpressionChecked::atHand();
    EXPECT_EQ(checked.kernels, &Kernels::best());
    for (const Named& each : functions)
        EXPECT_TRUE(checked.*each.isRight) << each.name;
}
#endif

TEST(KWExpressionKernels, AKernelIsNotUsedWithALibraryThatAnswersOtherwise) {
    const Kernels& kernels = Kernels::best();
    const KWExpressionLibrary right = KWExpressionLibrary::atHand();
    for (const Named& wrong : functions) {
        KWExpressionLibrary library = right;
        // As a library that rounds better would: elsewhere only in the last place.
        library.*wrong.function =
            wrong.function == &KWExpressionLibrary::sin
                ? Function([](float a) { return static_cast<float>(std::sin(double{a})); })
            : wrong.function == &KWExpressionLibrary::cos
                ? Function([](float a) { return static_cast<float>(std::cos(double{a})); })
            : wrong.function == &KWExpressionLibrary::exp
                ? Function([](float a) { return static_cast<float>(std::exp(double{a})); })
                : Function([](float a) { return static_cast<float>(std::log(double{a})); });
        const KWExpressionChecked before = KWExpressionChecked::compare(kernels, right);
        const KWExpressionChecked after = KWExpressionChecked::compare(kernels, library);
        for (const Named& each : functions) {
            EXPECT_EQ(after.*each.isRight, before.*each.isRight && each.function != wrong.function)
                << each.name << " with another " << wrong.name;
        }
        EXPECT_EQ(after.library.*wrong.function, library.*wrong.function);
    }
}

/// All floats, on two threads.
std::uint64_t countAllDifferences(Kernels::Unary kernel, Function function) {
    std::uint64_t low = 0;
    std::thread thread([&] { low = countDifferences(kernel, function, 0, 1ull << 31, 1); });
    const std::uint64_t high = countDifferences(kernel, function, 1ull << 31, 1ull << 32, 1);
    thread.join();
    return low + high;
}

// Takes minutes for each instruction set.
TEST(KWExpressionKernels, EveryFloatIsAsTheLibraryHasIt) {
    if (!std::getenv("KWBASE_EXHAUSTIVE"))
        GTEST_SKIP() << "KWBASE_EXHAUSTIVE=1 compares all floats";
    const KWExpressionLibrary& library = KWExpressionLibrary::atHand();
    forEachTarget([&](const Kernels& kernels, const char* target) {
        const KWExpressionChecked checked = KWExpressionChecked::compare(kernels, library);
        for (const Named& each : functions) {
            const std::uint64_t differences =
                countAllDifferences(kernels.*each.kernel, library.*each.function);
            std::cout << target << ' ' << each.name << ": " << differences << " differences, "
                      << (checked.*each.isRight ? "used" : "not used") << std::endl;
            EXPECT_EQ(checked.*each.isRight, differences == 0) << target << ' ' << each.name;
        }
    });
}

TEST(KWExpressionKernels, EveryConstantPowerIsPowInDouble) {
    if (!std::getenv("KWBASE_EXHAUSTIVE"))
        GTEST_SKIP() << "KWBASE_EXHAUSTIVE=1 compares all floats";
    const Kernels& kernels = Kernels::best();
    static const Kernels* const best = &kernels;
    const Kernels::Unary square = [](const float* a, float* out, std::size_t count) {
        best->multiply(a, a, out, count);
    };
    const Kernels::Unary half = [](const float* a, float* out, std::size_t count) {
        Floats input(a, a + count);
        std::vector<std::uint32_t> faults(count);
        best->halfPower(input.data(), out, faults.data(), count);
        for (std::size_t k = 0; k < count; ++k)
            out[k] = a[k] < 0 ? 0 : out[k];
    };
    const auto expectEqual = [](Kernels::Unary kernel, Function function, const char* exponent) {
        const std::uint64_t differences = countAllDifferences(kernel, function);
        std::cout << "power " << exponent << ": " << differences << " differences" << std::endl;
        EXPECT_EQ(differences, 0u) << exponent;
    };
    expectEqual(
        square, [](float a) { return raised(a, 2); }, "2");
    expectEqual(
        kernels.cube, [](float a) { return raised(a, 3); }, "3");
    expectEqual(
        kernels.fourthPower, [](float a) { return raised(a, 4); }, "4");
    expectEqual(
        kernels.reciprocal, [](float a) { return raised(a, -1); }, "-1");
    expectEqual(
        kernels.reciprocalSquare, [](float a) { return raised(a, -2); }, "-2");
    expectEqual(
        half, [](float a) { return a < 0 ? 0 : raised(a, 0.5); }, "0.5");
}

} // namespace
