#include "ExpressionReference.h"
#include "ExpressionTargets.h"
#include "Thoroughness.h"

#include <KWBase/KWExpressionBatch.h>
#include <KWBase/KWExpressionProgram.h>
#include <KWBase/KWExpressionText.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <stdexcept>
#include <thread>
#include <type_traits>

namespace {

static_assert(std::is_nothrow_move_constructible_v<KWExpressionProgram>);
static_assert(std::is_nothrow_move_assignable_v<KWExpressionProgram>);
static_assert(!std::is_copy_constructible_v<KWExpressionProgram>);

using Floats = std::vector<float>;

constexpr float someY = 1.25f;
constexpr float notANumber = std::numeric_limits<float>::quiet_NaN();

KWOwnedTree number(float value) {
    return KWOwnedTree(reference::constant(value));
}

KWOwnedTree x() {
    return KWOwnedTree(reference::made(-1, nullptr, nullptr));
}

KWOwnedTree y() {
    return KWOwnedTree(reference::made(-2, nullptr, nullptr));
}

KWOwnedTree node(int code, KWOwnedTree left, KWOwnedTree right = nullptr) {
    return KWOwnedTree(reference::made(code, left.release(), right.release()));
}

KWOwnedTree copied(const KWOwnedTree& tree) {
    return KWOwnedTree(CopyNode(tree.get()));
}

KWOwnedTree parsed(const std::string& text) {
    KWOwnedTree tree(NewNode());
    std::int16_t err = 0;
    ConstructTree(tree.get(), text.c_str(), static_cast<std::int16_t>(text.size()), &err);
    EXPECT_EQ(err, 0) << text;
    return tree;
}

/// Holds single values against the tree's, and bulk ones against the single ones.
void expectAnswersAsTheTree(const ExprNode* tree, const Floats& xs, float y,
                            const std::string& what) {
    const KWExpressionProgram program(tree);
    Floats single(xs.size());
    for (std::size_t k = 0; k < xs.size(); ++k) {
        std::int16_t treeErr = 0;
        std::int16_t err = 0;
        const float expected = ComputeTree(tree, xs[k], y, &treeErr);
        single[k] = program.evaluate(xs[k], y, &err);
        ASSERT_EQ(err, treeErr) << what << " at " << xs[k];
        ASSERT_TRUE(bitsOf(single[k]) == bitsOf(expected))
            << what << " at " << xs[k] << std::hex << ": " << bitsOf(single[k]) << ", "
            << bitsOf(expected);
    }
    Floats many(xs.size());
    program.evaluate(xs, y, many);
    for (std::size_t k = 0; k < xs.size(); ++k) {
        ASSERT_TRUE(bitsOf(many[k]) == bitsOf(single[k]))
            << what << " in bulk at " << xs[k] << std::hex << ": " << bitsOf(many[k]) << ", "
            << bitsOf(single[k]);
    }
}

std::vector<int> allFunctions() {
    std::vector<int> codes;
    for (int code = 6; code <= 19; ++code)
        codes.push_back(code);
    for (const int unknown : {20, -3, 100, -100, 32767, -32768})
        codes.push_back(unknown);
    return codes;
}

Floats notableNumbers() {
    Floats list = notableFloats();
    for (const float exponent : {3.0f, 4.0f, 0.25f, -1.5f, 12.0f, -7.0f, 0x1p-126f, 0x1p-127f,
                                 0x1p126f, 0x1p127f, 1.5e-39f}) {
        list.push_back(exponent);
        list.push_back(-exponent);
    }
    return list;
}

TEST(KWExpressionProgram, LeavesAreWhatTheyAre) {
    const Floats xs = notableFloats();
    expectAnswersAsTheTree(x().get(), xs, someY, "x");
    for (const float each : notableNumbers()) {
        expectAnswersAsTheTree(y().get(), {1, 2}, each, "y");
        expectAnswersAsTheTree(number(each).get(), xs, 2, "number");
    }
}

TEST(KWExpressionProgram, ChildrenOfLeavesDoNotCount) {
    const KWOwnedTree tree = node(-1, node(4, number(1), number(0)), number(2));
    expectAnswersAsTheTree(tree.get(), notableFloats(), 0, "x with children");
}

TEST(KWExpressionProgram, FunctionsAnswerAsTheTreeForFloatsOfAllKinds) {
    const Floats xs = floatsOfAllKinds(30'000);
    for (const int code : allFunctions()) {
        const std::string what = "function " + std::to_string(code);
        expectAnswersAsTheTree(node(code, x()).get(), xs, 0, what);
        // Of a value on the stack.
        expectAnswersAsTheTree(node(code, node(2, x(), number(0.25f))).get(), xs, 0,
                               what + " of x - 0.25");
    }
}

TEST(KWExpressionProgram, FunctionsOfNumbersAndOfYAnswerAsTheTree) {
    for (const int code : allFunctions()) {
        for (const float each : notableNumbers()) {
            const std::string what = "function " + std::to_string(code);
            expectAnswersAsTheTree(node(code, number(each)).get(), Floats(9, 1.0f), 0,
                                   what + " of " + std::to_string(each));
            expectAnswersAsTheTree(node(code, y()).get(), Floats(9, 1.0f), each, what + " of y");
        }
    }
}

/// Every shape that an operand may have, to choose one by index.
KWOwnedTree operand(std::size_t shape, float value) {
    switch (shape) {
    case 0:
        return number(value);
    case 1:
        return x();
    case 2:
        return y();
    case 3:
        return node(1, x(), number(value)); // on the stack
    case 4:
        return node(9, x()); // on the stack, and may fail
    default:
        return nullptr;
    }
}

TEST(KWExpressionProgram, OperatorsOfEveryPairOfOperandsAnswerAsTheTree) {
    const Floats xs = floatsOfAllKinds(100);
    for (int code = 1; code <= 6; ++code) { // a function may have a second operand, too
        for (std::size_t left = 0; left < 5; ++left) {
            for (std::size_t right = 0; right < 6; ++right) {
                for (const float value : {0.0f, -0.0f, 1.0f, -2.5f, notANumber}) {
                    const KWOwnedTree tree =
                        node(code, operand(left, value), operand(right, value));
                    const std::string what = "code " + std::to_string(code) + ", operands " +
                                             std::to_string(left) + ", " + std::to_string(right);
                    expectAnswersAsTheTree(tree.get(), xs, value, what);
                    // Below another operation, and with another value below on the stack.
                    expectAnswersAsTheTree(node(2, node(12, x()), copied(tree)).get(), xs, value,
                                           "cos x - " + what);
                }
            }
        }
    }
}

TEST(KWExpressionProgram, OperatorsWithEveryNotableNumberAnswerAsTheTree) {
    const Floats xs = floatsOfAllKinds(200);
    for (int code = 1; code <= 5; ++code) {
        for (const float each : notableNumbers()) {
            const std::string what =
                "code " + std::to_string(code) + " with " + std::to_string(each);
            expectAnswersAsTheTree(node(code, x(), number(each)).get(), xs, 0, what);
            expectAnswersAsTheTree(node(code, number(each), x()).get(), xs, 0, what);
            expectAnswersAsTheTree(node(code, node(10, x()), number(each)).get(), xs, 0, what);
            expectAnswersAsTheTree(node(code, number(each), node(10, x())).get(), xs, 0, what);
        }
    }
}

TEST(KWExpressionProgram, OperationsOfEveryNaNAnswerAsTheTree) {
    Floats nans;
    for (const float each : notableFloats()) {
        if (std::isnan(each))
            nans.push_back(each);
    }
    for (int k = 0; k < 3; ++k)
        nans.insert(nans.end(), nans.begin(), nans.end()); // enough for a block
    for (int code = 1; code <= 19; ++code) {
        for (const float c : {2.0f, 3.0f, -1.0f, 4.0f, 0.5f, 1.0f, 7.0f, -2.0f, 0.3f}) {
            expectAnswersAsTheTree(node(code, x(), number(c)).get(), nans, c,
                                   "code " + std::to_string(code));
            expectAnswersAsTheTree(node(code, number(c), x()).get(), nans, c,
                                   "code " + std::to_string(code));
            expectAnswersAsTheTree(node(code, x(), y()).get(), nans, c,
                                   "code " + std::to_string(code));
            expectAnswersAsTheTree(node(code, y(), x()).get(), nans, c,
                                   "code " + std::to_string(code));
            const float number1 = c;
            for (const float nan : {notANumber, -notANumber}) {
                expectAnswersAsTheTree(node(code, x(), number(nan)).get(), Floats(20, number1), 0,
                                       "code " + std::to_string(code));
            }
        }
    }
}

TEST(KWExpressionProgram, EveryNaNIsTheOneQuietNaN) {
    const float infinity = std::numeric_limits<float>::infinity();
    Floats xs;
    for (const float each : notableFloats()) {
        if (std::isnan(each))
            xs.push_back(each);
    }
    while (xs.size() < 24)
        xs.push_back(xs.size() % 2 == 0 ? infinity : -infinity);
    for (const char* text :
         {"x", "x+abs(x)", "abs(x)+x", "x*abs(x)", "sin(x)+abs(x)", "x^1+x", "1*x+abs(x)",
          "x/abs(x)", "abs(x)-x", "x*0+abs(x)", "abs(x)^3+x", "x-x", "2*x+1", "asin(x+2)"}) {
        const KWOwnedTree tree = parsed(text);
        expectAnswersAsTheTree(tree.get(), xs, 0, text);
        for (const float each : xs) {
            std::int16_t err = 0;
            const float value = ComputeTree(tree.get(), each, 0, &err);
            if (std::isnan(each) || std::isnan(value)) {
                EXPECT_EQ(bitsOf(value), 0x7fc00000u) << text;
            }
        }
    }
    // What a NaN was before cannot be seen in a value that is none.
    for (const float each : xs) {
        std::int16_t err = 0;
        EXPECT_EQ(ComputeTree(parsed("x^0").get(), each, 0, &err), 1);
        EXPECT_EQ(ComputeTree(parsed("1^x").get(), each, 0, &err), 1);
    }
}

/// The three ways to evaluate what is read of a text, at floats of every kind; also what is refused
/// but leaves a tree.
void expectThreeWaysAgree(const std::string& text, const Floats& notable) {
    const KWOwnedTree tree(NewNode());
    if (KWParseExpression(tree.get(), text).kind != KWExpressionFault::Kind::none &&
        text.size() % 4 != 0)
        return;
    Floats xs;
    for (std::size_t k = 0; k < 17; ++k)
        xs.push_back(k % 2 == 0 ? notable[(text.size() * 7 + k * 5) % notable.size()]
                                : static_cast<float>(k) * 0.37f - 3);
    const float y = notable[text.size() % notable.size()];
    expectAnswersAsTheTree(tree.get(), xs, y, text);
}

TEST(KWExpressionProgram, SentencesAnswerAsTheTree) {
    const Floats notable = notableFloats();
    reference::Random random(2);
    for (int i = 0; i < 8000; ++i)
        expectThreeWaysAgree(reference::sentence(random, 1 + i % 7), notable);
}

TEST(KWExpressionProgram, MutatedAndScrambledSentencesAnswerAsTheTree) {
    const Floats notable = notableFloats();
    reference::Random random(3);
    for (int i = 0; i < 8000; ++i) {
        expectThreeWaysAgree(reference::mutated(random, reference::sentence(random, 1 + i % 7)),
                             notable);
        expectThreeWaysAgree(reference::scrambled(random, 1 + i % 17), notable);
    }
}

TEST(KWExpressionProgram, RandomBytesAnswerAsTheTree) {
    const Floats notable = notableFloats();
    reference::Random random(4);
    for (int i = 0; i < 20000; ++i)
        expectThreeWaysAgree(reference::bytes(random, 1 + i % 15), notable);
}

TEST(KWExpressionProgram, ConstantPowersAreThoseOfPow) {
    const Floats xs = floatsOfAllKinds(20'000);
    for (const float exponent : {0.0f, -0.0f, 1.0f, 2.0f, 3.0f, 4.0f, 5.0f, -1.0f, -2.0f, -3.0f,
                                 0.5f, -0.5f, 1.5f, 0x1p31f, -0x1p31f, 3e9f, notANumber}) {
        const std::string what = "power " + std::to_string(exponent);
        expectAnswersAsTheTree(node(5, x(), number(exponent)).get(), xs, 0, what);
        expectAnswersAsTheTree(node(5, node(2, number(0), x()), number(exponent)).get(), xs, 0,
                               what + " of -x");
        expectAnswersAsTheTree(node(3, number(2), node(5, x(), number(exponent))).get(), xs, 0,
                               "2 * " + what);
    }
}

TEST(KWExpressionProgram, TheWorkedExpressionsAnswerAsTheTree) {
    Floats xs = floatsOfAllKinds(5000);
    for (int k = 0; k < 5000; ++k)
        xs.push_back(static_cast<float>(k) * 0.01f - 10);
    for (const char* text :
         {"2*t+1", "sin(t)*exp(-t/3)+2*t^2", "sqrt(abs(t))*cos(3*t)+ln(t+2)/(t+5)", "x", "5", "1/0",
          "ln(x)+1/0", "x^y^2", "2^x", "(x-1)*(x+1)*(x-y)", "1/x+1/(x-1)", "x/4", "x/3",
          "th(x)/(ch(x)-1)", "atan(x)+asin(x)*acos(x)-tan(x)+log(x)", "3*4+x*(2-2)"})
        expectAnswersAsTheTree(parsed(text).get(), xs, someY, text);
}

TEST(KWExpressionProgram, RandomTreesAnswerAsTheTree) {
    reference::Random random(42);
    const Floats notable = notableFloats();
    for (int round = 0; round < 6000; ++round) {
        const KWOwnedTree tree(reference::tree(random, 1 + round % 9, round % 2 == 1));
        if (!tree)
            continue;
        Floats xs;
        for (int k = 0; k < 24; ++k) {
            xs.push_back(static_cast<float>(reference::below(random, 4000) - 2000) * 0.01f);
            xs.push_back(notable[random() % notable.size()]);
        }
        const float y = round % 3 == 0 ? notable[random() % notable.size()] : 1.5f;
        expectAnswersAsTheTree(tree.get(), xs, y, "tree " + std::to_string(round));
        if (HasFatalFailure())
            return;
    }
}

TEST(KWExpressionProgram, BulkIsTheSameOnEveryInstructionSet) {
    reference::Random random(7);
    std::vector<KWOwnedTree> trees;
    for (const char* text : {"2*t+1", "sin(t)*exp(-t/3)+2*t^2",
                             "sqrt(abs(t))*cos(3*t)+ln(t+2)/(t+5)", "sin(1000*x)+cos(x*y)"})
        trees.push_back(parsed(text));
    while (trees.size() < 200) {
        if (KWOwnedTree tree{reference::tree(random, 6, false)})
            trees.push_back(std::move(tree));
    }
    const Floats xs = floatsOfAllKinds(3000);
    forEachTarget([&](const KWExpressionKernels& kernels, const char* target) {
        const KWExpressionChecked checked =
            KWExpressionChecked::compare(kernels, KWExpressionLibrary::atHand());
        for (const KWOwnedTree& tree : trees) {
            std::vector<KWExpressionInstruction> code;
            const std::size_t depth = KWExpressionCompile(tree.get(), code);
            const KWExpressionProgram program(tree.get());
            Floats values(xs.size());
            KWExpressionEvaluateBatch(code.data(), depth, xs, someY, values, checked);
            for (std::size_t k = 0; k < xs.size(); ++k) {
                ASSERT_TRUE(bitsOf(values[k]) == bitsOf(program.evaluate(xs[k], someY)))
                    << target << ' ' << reference::written(tree.get()) << " at " << xs[k]
                    << std::hex << ": " << bitsOf(values[k]);
            }
        }
    });
}

TEST(KWExpressionProgram, ALibraryThatKernelsDoNotMatchIsCalledInstead) {
    KWExpressionLibrary library = KWExpressionLibrary::atHand();
    library.sin = [](float a) { return a + 1; };
    library.cos = [](float a) { return a + 2; };
    library.exp = [](float a) { return a + 3; };
    library.ln = [](float a) { return a + 4; };
    const KWExpressionChecked checked =
        KWExpressionChecked::compare(KWExpressionKernels::best(), library);
    EXPECT_FALSE(checked.sin || checked.cos || checked.exp || checked.ln);
    const Floats xs{-1, 0.5f, 2, 300};
    const float expected[][4] = {
        {0, 1.5f, 3, 301}, {1, 2.5f, 4, 302}, {2, 3.5f, 5, 303}, {0, 4.5f, 6, 304}};
    for (const bool isStacked : {false, true}) {
        for (const int which : {0, 1, 2, 3}) {
            constexpr int codes[] = {11, 12, 6, 7};
            KWOwnedTree argument = isStacked ? node(1, x(), number(0)) : x();
            const KWOwnedTree tree = node(codes[which], std::move(argument));
            std::vector<KWExpressionInstruction> code;
            const std::size_t depth = KWExpressionCompile(tree.get(), code);
            Floats values(4);
            KWExpressionEvaluateBatch(code.data(), depth, xs, 0, values, checked);
            EXPECT_EQ(values, Floats(std::begin(expected[which]), std::end(expected[which])));
        }
    }
}

/// pow, the last bit of whose results is one more.
double powPlus(double base, double exponent) {
    return std::nextafter(std::pow(base, exponent), HUGE_VAL);
}

double powMinus(double base, double exponent) {
    return std::nextafter(std::pow(base, exponent), -HUGE_VAL);
}

double powInSinglePrecision(double base, double exponent) {
    const float power = std::pow(static_cast<float>(base), static_cast<float>(exponent));
    return static_cast<double>(std::nextafter(power, 0.0f));
}

TEST(KWExpressionProgram, ConstantPowersAreShortWhereThatIsAsExactAsPow) {
    // The sharpest test there is of the C library: it fails where pow is less exact, and the long
    // way is taken then.
    const KWExpressionPowers powers = KWExpressionPowers::atHand();
    EXPECT_TRUE(powers.first && powers.square && powers.cube && powers.fourth &&
                powers.reciprocal && powers.reciprocalSquare && powers.half);
    for (const auto pow : {powPlus, powMinus}) {
        const KWExpressionPowers found = KWExpressionPowers::compare(pow);
        EXPECT_FALSE(found.square || found.cube || found.fourth);
    }
    const KWExpressionPowers none = KWExpressionPowers::compare(powInSinglePrecision);
    EXPECT_FALSE(none.first || none.square || none.cube || none.fourth || none.reciprocal ||
                 none.reciprocalSquare || none.half);
}

TEST(KWExpressionProgram, APowThatIsLessExactIsCalledForEveryPower) {
    const auto without = []() -> const KWExpressionPowers& {
        static constexpr KWExpressionPowers none{};
        return none;
    };
    const Floats xs = floatsOfAllKinds(200);
    for (const float exponent : {0.0f, 1.0f, 2.0f, 3.0f, 4.0f, -1.0f, -2.0f, 0.5f}) {
        for (const bool isStacked : {false, true}) {
            const KWOwnedTree tree = node(5, isStacked ? node(10, x()) : x(), number(exponent));
            std::vector<KWExpressionInstruction> code;
            const std::size_t depth = KWExpressionCompile(tree.get(), code, without);
            const auto powers = std::count_if(code.begin(), code.end(), [](const auto& each) {
                return each.operation == KWExpressionOperation::PowerWhole ||
                       each.operation == KWExpressionOperation::PowerNumber;
            });
            EXPECT_EQ(powers, exponent == 0 ? 0 : 1) << exponent;
            Floats values(xs.size());
            KWExpressionEvaluateBatch(code.data(), depth, xs, 0, values,
                                      KWExpressionChecked::atHand());
            for (std::size_t k = 0; k < xs.size(); ++k) {
                std::int16_t err = 0;
                ASSERT_EQ(bitsOf(values[k]), bitsOf(ComputeTree(tree.get(), xs[k], 0, &err)))
                    << xs[k] << '^' << exponent;
            }
        }
    }
}

TEST(KWExpressionProgram, TheFirstFaultFromTheLeftIsTheOne) {
    const auto faultOf = [](const char* text, float x) {
        std::int16_t err = 0;
        const float value = KWExpressionProgram(parsed(text).get()).evaluate(x, 0, &err);
        EXPECT_EQ(err == 0 ? 0u : bitsOf(value), 0u) << text;
        return err;
    };
    EXPECT_EQ(faultOf("1/x+sqrt(x-1)", 0), 1);
    EXPECT_EQ(faultOf("sqrt(x-1)+1/x", 0), 2);
    EXPECT_EQ(faultOf("ln(x)/(1/0)", -1), 2);
    EXPECT_EQ(faultOf("ln(x)/(1/0)", 0), 1);
    EXPECT_EQ(faultOf("ln(x)/(1/0)", 1), 1);
    EXPECT_EQ(faultOf("sqrt(0-1)+x", 1), 2);
    EXPECT_EQ(faultOf("x^0.5", -1), 2);
    EXPECT_EQ(faultOf("x^3", -1), 0);
    EXPECT_EQ(faultOf("(sqrt(x))^0", -1), 2);
    EXPECT_EQ(faultOf("0*ln(x)", -1), 2);
    EXPECT_EQ(faultOf("0/x", 0), 1);
    EXPECT_EQ(faultOf("x/0", 0), 1);
}

TEST(KWExpressionProgram, AFaultBehindAStraightLineIsNotPassedOver) {
    for (const char* const text : {"2*x+1+ln(0)", "1*12*x+1*0^log(0)+1"}) {
        const KWOwnedTree tree = parsed(text);
        const KWExpressionProgram program(tree.get());
        std::int16_t err = 0;
        EXPECT_EQ(program.evaluate(3, 0, &err), 0) << text;
        EXPECT_EQ(err, 1) << text;
    }
    const KWOwnedTree missing =
        node(1, node(1, node(3, x(), number(2)), number(1)), node(-3, nullptr));
    std::int16_t err = 0;
    EXPECT_EQ(KWExpressionProgram(missing.get()).evaluate(3, 0, &err), 0);
    EXPECT_EQ(err, 2);
}

TEST(KWExpressionProgram, ANegativeZeroIsAValueAndAFaultIsPositiveZero) {
    const Floats xs(16, -0.0f);
    Floats values(16);
    KWExpressionProgram(parsed("x*1").get()).evaluate(xs, 0, values);
    for (const float value : values)
        EXPECT_EQ(bitsOf(value), 0x80000000u);
    KWExpressionProgram(parsed("-1*(1/x)").get()).evaluate(xs, 0, values);
    for (const float value : values)
        EXPECT_EQ(bitsOf(value), 0u);
}

TEST(KWExpressionProgram, AMissingLeftOperandIsAFaultInItsPlace) {
    const Floats xs = notableFloats();
    const auto missing = [](int code) { return node(code, nullptr, x()); };
    for (const int code : {1, 5, 6, 11, 20, -3}) {
        expectAnswersAsTheTree(missing(code).get(), xs, 0, "root");
        expectAnswersAsTheTree(node(1, node(7, x()), missing(code)).get(), xs, 0, "ln x + ...");
        expectAnswersAsTheTree(node(1, missing(code), node(7, x())).get(), xs, 0, "... + ln x");
    }
}

TEST(KWExpressionProgram, ASecondOperandOfAFunctionOnlyMayFail) {
    const Floats xs = notableFloats();
    for (const int code : {6, 9, 11, 19, 20, -3}) {
        for (const bool isLeft : {false, true}) {
            const auto left = [&] { return isLeft ? x() : node(10, x()); };
            expectAnswersAsTheTree(node(code, left(), node(7, x())).get(), xs, 0, "ln");
            expectAnswersAsTheTree(node(2, node(12, x()), node(code, left(), y())).get(), xs, 0,
                                   "y");
            expectAnswersAsTheTree(node(2, node(12, x()), node(code, left(), node(11, x()))).get(),
                                   xs, 0, "sin");
        }
    }
}

KWOwnedTree chain(int levels, int code, bool isLeft, const KWOwnedTree& other) {
    KWOwnedTree tree = x();
    for (int k = 0; k < levels; ++k) {
        tree = isLeft ? node(code, std::move(tree), copied(other))
                      : node(code, copied(other), std::move(tree));
    }
    return tree;
}

TEST(KWExpressionProgram, TreesOfAMillionLevelsAreEvaluated) {
    const Floats xs{0, 0.5f, -3, 1e10f, 2, 3, 4, 5};
    const KWOwnedTree others[] = {x(), node(9, x())};
    for (const KWOwnedTree& other : others) {
        for (const bool isLeft : {false, true}) {
            expectAnswersAsTheTree(chain(levelsBeyondTheStack, 1, isLeft, other).get(), xs, 0,
                                   isLeft ? "left" : "right");
        }
    }
    KWOwnedTree functions = x();
    for (int k = 0; k < levelsBeyondTheStack; ++k)
        functions = node(10, std::move(functions));
    expectAnswersAsTheTree(functions.get(), xs, 0, "functions");
}

TEST(KWExpressionProgram, ProgramsThatStackMuchAnswerAsTheTree) {
    const Floats xs = floatsOfAllKinds(1500);
    const KWOwnedTree other = node(12, x());
    for (const int levels : {1, 2, 6, 7, 8, 9, 15, 16, 17, 30, 31, 32, 33, 62, 63, 64, 65, 200}) {
        for (const int code : {1, 2, 3}) {
            expectAnswersAsTheTree(chain(levels, code, false, other).get(), xs, 0,
                                   std::to_string(levels));
        }
    }
}

TEST(KWExpressionProgram, BulkWorksForEverySizeAndAlignment) {
    const KWExpressionProgram program(parsed("sqrt(abs(t))*cos(3*t)+ln(t+2)/(t-1)").get());
    Floats memory;
    for (int k = 0; k < 10'064; ++k)
        memory.push_back(static_cast<float>(k % 700) * 0.01f - 3);
    for (const std::size_t size :
         {0u, 1u, 2u, 7u, 8u, 9u, 15u, 16u, 17u, 101u, 511u, 512u, 513u, 1024u, 1025u, 10'000u}) {
        for (const std::size_t offset : {0u, 1u, 5u}) {
            const std::span<const float> xs(memory.data() + offset, size);
            Floats values(size + 2, 77.0f);
            program.evaluate(xs, 0, std::span<float>(values.data() + 1, size));
            EXPECT_EQ(values.front(), 77) << size;
            EXPECT_EQ(values.back(), 77) << size;
            for (std::size_t k = 0; k < size; ++k)
                ASSERT_EQ(bitsOf(values[k + 1]), bitsOf(program.evaluate(xs[k], 0))) << size;
        }
    }
}

TEST(KWExpressionProgram, BulkValuesMayOverwriteTheirXs) {
    for (const char* text : {"x", "sin(x)/(x-1)+ln(x)*x^x", "7"}) {
        const KWExpressionProgram program(parsed(text).get());
        for (const std::size_t size : {3u, 512u, 1337u}) {
            Floats xs;
            for (std::size_t k = 0; k < size; ++k)
                xs.push_back(static_cast<float>(k) * 0.125f - 1);
            Floats values(size);
            program.evaluate(xs, 0, values);
            program.evaluate(xs, 0, xs);
            for (std::size_t k = 0; k < size; ++k)
                ASSERT_EQ(bitsOf(xs[k]), bitsOf(values[k])) << text;
        }
    }
}

TEST(KWExpressionProgram, SizesThatDifferAreRefused) {
    const KWExpressionProgram program(x().get());
    const Floats xs(3);
    Floats values(4, 5.0f);
    EXPECT_THROW(program.evaluate(xs, 0, values), std::invalid_argument);
    EXPECT_EQ(values, Floats(4, 5.0f));
}

TEST(KWExpressionProgram, NothingAnswersZero) {
    std::int16_t err = 0;
    const auto expectZero = [&err](const KWExpressionProgram& program) {
        EXPECT_EQ(bitsOf(program.evaluate(3, 4, &err)), 0u);
        EXPECT_EQ(err, 0);
        Floats values(20, 1.0f);
        program.evaluate(Floats(20, 2.0f), 0, values);
        EXPECT_EQ(values, Floats(20));
    };
    expectZero(KWExpressionProgram());
    expectZero(KWExpressionProgram(nullptr));
}

TEST(KWExpressionProgram, AProgramMovesAndOutlivesItsTree) {
    for (const char* text : {"x+sin(x)", "3*x+1"}) {
        KWOwnedTree tree = parsed(text);
        KWExpressionProgram first(tree.get());
        const float expected = first.evaluate(2, 0);
        tree.reset();
        KWExpressionProgram second(std::move(first));
        EXPECT_EQ(second.evaluate(2, 0), expected);
        EXPECT_EQ(first.evaluate(2, 0), 0); // NOLINT(bugprone-use-after-move): it answers 0
        KWExpressionProgram third;
        third = std::move(second);
        EXPECT_EQ(third.evaluate(2, 0), expected);
        KWExpressionProgram& same = third;
        third = std::move(same);
        EXPECT_EQ(third.evaluate(2, 0), expected);
    }
}

TEST(KWExpressionProgram, ErrIsWrittenByAFaultOnly) {
    const KWExpressionProgram program(parsed("1/x").get());
    std::int16_t err = 77;
    EXPECT_EQ(program.evaluate(2, 0, &err), 0.5f);
    EXPECT_EQ(err, 77);
    EXPECT_EQ(program.evaluate(0, 0, &err), 0);
    EXPECT_EQ(err, 1);
    EXPECT_EQ(program.evaluate(0, 0), 0);
}

TEST(KWExpressionProgram, TwoThreadsMayEvaluateOneProgram) {
    const KWExpressionProgram program(parsed("sin(t)*exp(-t/3)+2*t^2").get());
    const Floats xs = floatsOfAllKinds(20'000);
    Floats results[2] = {Floats(xs.size()), Floats(xs.size())};
    const auto work = [&](std::size_t which) {
        for (int round = 0; round < 5; ++round)
            program.evaluate(xs, 0, results[which]);
        for (std::size_t k = 0; k < xs.size(); ++k) {
            if (bitsOf(program.evaluate(xs[k], 0)) != bitsOf(results[which][k]))
                results[which][k] = 12345;
        }
    };
    std::thread other(work, 1);
    work(0);
    other.join();
    EXPECT_TRUE(std::equal(xs.begin(), xs.end(), results[0].begin(), [&](float t, float value) {
        return bitsOf(program.evaluate(t, 0)) == bitsOf(value);
    }));
    EXPECT_TRUE(std::equal(results[0].begin(), results[0].end(), results[1].begin(),
                           [](float a, float b) { return bitsOf(a) == bitsOf(b); }));
}

} // namespace
