#include "ExpressionReference.h"
#include "Thoroughness.h"

#include <KWBase/KWExpressionText.h>
#include <KWBase/KWExpressionTree.h>

#include <gtest/gtest.h>

namespace {

KWOwnedTree parsed(const std::string& text) {
    KWOwnedTree tree(NewNode());
    std::int16_t err = 0;
    ConstructTree(tree.get(), text.c_str(), static_cast<std::int16_t>(text.size()), &err);
    EXPECT_EQ(err, 0) << text;
    return tree;
}

KWOwnedTree derived(const std::string& text) {
    const KWOwnedTree tree = parsed(text);
    return KWOwnedTree(Deriv_arbre(tree.get()));
}

std::string derivative(const std::string& text) {
    return reference::described(derived(text).get());
}

float derivativeAt(const std::string& text, float x, float y = 0) {
    std::int16_t err = 0;
    const float value = ComputeTree(derived(text).get(), x, y, &err);
    EXPECT_EQ(err, 0) << text;
    return value;
}

std::size_t countOf(const ExprNode* tree) {
    std::size_t count = 0;
    std::vector<const ExprNode*> pending{tree};
    while (!pending.empty()) {
        const ExprNode* next = pending.back();
        pending.pop_back();
        if (!next)
            continue;
        ++count;
        pending.push_back(next->left);
        pending.push_back(next->right);
    }
    return count;
}

} // namespace

TEST(KWExpressionDerivative, LeavesHaveZeroAndOne) {
    EXPECT_EQ(derivative("5"), "0");
    EXPECT_EQ(derivative("x"), "1");
    EXPECT_EQ(derivative("y"), "1");
}

TEST(KWExpressionDerivative, OperatorsFollowTheirRules) {
    EXPECT_EQ(derivative("x+y"), "(1 + 1)");
    EXPECT_EQ(derivative("x-5"), "(1 - 0)");
    EXPECT_EQ(derivative("x*5"), "((1 * 5) + (x * 0))");
    EXPECT_EQ(derivative("x/5"), "(((1 * 5) - (x * 0)) / (5 ^ 2))");
    EXPECT_EQ(derivative("x^3"), "((3 * 1) * (x ^ 2))");
}

TEST(KWExpressionDerivative, FunctionsFollowTheirRules) {
    EXPECT_EQ(derivative("exp(x)"), "(1 * exp(x))");
    EXPECT_EQ(derivative("ln(x)"), "(1 / x)");
    EXPECT_EQ(derivative("log(x)"), "(ln(0.100000001) * (1 / x))");
    EXPECT_EQ(derivative("sqrt(x)"), "(1 / (2 * x))");
    EXPECT_EQ(derivative("abs(x)"), "1");
    EXPECT_EQ(derivative("abs(abs(5))"), "0");
    EXPECT_EQ(derivative("sin(x)"), "(1 * cos(x))");
    EXPECT_EQ(derivative("cos(x)"), "((0 - 1) * sin(x))");
}

TEST(KWExpressionDerivative, FunctionsWithoutARuleHaveNone) {
    for (const char* name : {"tan", "asin", "acos", "atan", "sinh", "cosh", "tanh"}) {
        EXPECT_EQ(derived(std::string(name) + "(x)"), nullptr) << name;
        EXPECT_EQ(derived("abs(" + std::string(name) + "(x))"), nullptr) << name;
    }
    EXPECT_EQ(Deriv_arbre(nullptr), nullptr);
    const KWOwnedTree unknown(reference::made(20, reference::constant(1), nullptr));
    EXPECT_EQ(Deriv_arbre(unknown.get()), nullptr);
}

TEST(KWExpressionDerivative, ADerivativeThatIsMissingIsAMissingOperand) {
    EXPECT_EQ(derivative("2*tan(x)"), "((0 * tan(x)) + (2 * _))");
    EXPECT_EQ(derivative("exp(tan(x))"), "(_ * exp(tan(x)))");
    EXPECT_EQ(derivative("tan(x)+x"), "(_ + 1)");
}

TEST(KWExpressionDerivative, TheDerivativeOfACubeIsTwelveAtTwo) {
    EXPECT_EQ(derivativeAt("x^3", 2), 12.0f);
}

TEST(KWExpressionDerivative, AnExponentThatIsNoConstantCountsAsZero) {
    EXPECT_EQ(derivative("x^y"), "((y * 1) * (x ^ -1))");
    EXPECT_EQ(derivative("x^(2+1)"), "(((2 + 1) * 1) * (x ^ -1))");
}

TEST(KWExpressionDerivative, TheDerivativeOfASquareRootUsesItsArgument) {
    EXPECT_EQ(derivativeAt("sqrt(x)", 4), 0.125f);
}

TEST(KWExpressionDerivative, TheDerivativeOfADecimalLogarithmHasALogarithmAsItsFactor) {
    EXPECT_EQ(derivativeAt("log(x)", 1), std::log(0.1f));
    EXPECT_NEAR(derivativeAt("log(x)", 1), -2.3025851f, 1e-6f);
    const KWOwnedTree tree = derived("log(x)");
    EXPECT_EQ(std::bit_cast<std::uint32_t>(tree->left->left->value), 0x3DCCCCCDu);
}

TEST(KWExpressionDerivative, BothVariablesAreDerivedBy) {
    EXPECT_EQ(derivativeAt("x*y", 3, 4), 7.0f);
}

TEST(KWExpressionDerivative, TheSourceStaysAsItWas) {
    KWOwnedTree tree = parsed("sin(x^2)*exp(x)/ln(x+2)");
    const KWOwnedTree before(CopyNode(tree.get()));
    const KWOwnedTree result(Deriv_arbre(tree.get()));
    EXPECT_TRUE(reference::areEqual(tree.get(), before.get()));
    tree.reset();
    const KWOwnedTree plain(reference::derivative(before.get()));
    EXPECT_TRUE(reference::areEqual(result.get(), plain.get()));
}

TEST(KWExpressionDerivative, TheRecurringShapesAreMadeByThemselves) {
    const KWOwnedTree tree = parsed("x*sin(y)");
    const auto text = [](ExprNode* made) { return reference::described(KWOwnedTree(made).get()); };
    EXPECT_EQ(text(Deriv_fpg_arbre(tree.get())), "(1 * sin(y))");
    EXPECT_EQ(text(Deriv_fgp_arbre(tree.get())), "(x * (1 * cos(y)))");
    EXPECT_EQ(text(Deriv_frac_num(tree.get())), "((1 * sin(y)) - (x * (1 * cos(y))))");
    EXPECT_EQ(text(Deriv_frac_den(tree.get())), "(sin(y) ^ 2)");
    const KWOwnedTree lone(reference::made(KWExpressionTan, nullptr, nullptr));
    EXPECT_EQ(text(Deriv_frac_num(lone.get())), "((_ * _) - (_ * _))");
    EXPECT_EQ(text(Deriv_frac_den(lone.get())), "(_ ^ 2)");
    for (const auto& shape : {Deriv_fpg_arbre, Deriv_fgp_arbre, Deriv_frac_num, Deriv_frac_den})
        EXPECT_EQ(shape(nullptr), nullptr);
}

TEST(KWExpressionDerivative, RandomTreesAreDerivedAsThePlainRulesDeriveThem) {
    reference::Random random(1);
    for (int i = 0; i < 10000; ++i) {
        const KWOwnedTree tree(reference::tree(random, 1 + i % 7, i % 2 == 0));
        const KWOwnedTree result(Deriv_arbre(tree.get()));
        const KWOwnedTree plain(reference::derivative(tree.get()));
        ASSERT_TRUE(reference::areEqual(result.get(), plain.get()))
            << reference::described(tree.get()) << "\n  " << reference::described(result.get())
            << "\n  " << reference::described(plain.get());
    }
}

TEST(KWExpressionDerivative, AHostIsToldWhyThereIsNone) {
    using Kind = KWExpressionFault::Kind;
    const auto fault = [](const KWOwnedTree& tree) { return KWFaultInDerivative(tree.get()).kind; };
    EXPECT_EQ(fault(parsed("x^2*sin(x)+cos(ln(x)/exp(y))-sqrt(abs(log(x)))")), Kind::none);
    EXPECT_EQ(fault(parsed("x^tan(x)")), Kind::none); // exponents are not derived
    EXPECT_EQ(fault(nullptr), Kind::noRule);
    for (const char* name : {"tan", "asin", "acos", "atan", "sinh", "cosh", "tanh"}) {
        const KWOwnedTree tree = parsed("2*" + std::string(name) + "(x)+atan(x)");
        const ExprNode* node = nullptr;
        EXPECT_EQ(KWFaultInDerivative(tree.get(), &node).kind, Kind::noRule) << name;
        EXPECT_EQ(node, tree->left->right) << name;
    }
    const KWOwnedTree unknown(reference::made(20, reference::constant(1), nullptr));
    EXPECT_EQ(fault(unknown), Kind::noRule);
    const KWOwnedTree missing(reference::made(KWExpressionAdd, reference::constant(1), nullptr));
    EXPECT_EQ(fault(missing), Kind::noRule);

    // An exact result grows with the square of the chain.
    std::string product = "x";
    while (product.size() + 2 <= KWExpressionMaximumLength)
        product += "*x";
    const KWOwnedTree chain = parsed(product);
    EXPECT_EQ(Deriv_arbre(chain.get()), nullptr);
    EXPECT_EQ(fault(chain), Kind::tooLarge);
    EXPECT_EQ(KWFaultInDerivative(chain.get()).sentence(),
              "the derivative has more than 4,000,000 parts");
}

TEST(KWExpressionDerivative, ADerivativeOfTheMaximumSizeIsMadeAndNoLargerOne) {
    // Every rule, and a sum of n constants besides, whose derivative has 2 n - 1 nodes.
    const std::string rules =
        "x*2/(y-3)*tan(x)+x^2+exp(x)+ln(y)+log(x)+sqrt(x)+abs(cos(y))+sin(x)+sin(y)";
    const std::size_t size = countOf(derived(rules).get());
    ASSERT_EQ(size % 2, 0u);
    const auto levels = static_cast<int>((KWDerivativeMaximumNodes - size - 2) / 2);
    const auto sourceOf = [&rules](int count) {
        return KWOwnedTree(
            reference::made(KWExpressionAdd, parsed(rules).release(),
                            reference::chain(KWExpressionAdd, count, reference::Lean::left)));
    };
    const KWOwnedTree largest(Deriv_arbre(sourceOf(levels).get()));
    ASSERT_NE(largest, nullptr);
    EXPECT_EQ(countOf(largest.get()), KWDerivativeMaximumNodes);
    // What has no derivative adds the sum alone.
    const KWOwnedTree oneMore(
        reference::made(KWExpressionAdd, sourceOf(levels).release(), parsed("tan(x)").release()));
    EXPECT_EQ(Deriv_arbre(oneMore.get()), nullptr);
}

TEST(KWExpressionDerivative, TheRecurringShapesKeepToTheMaximumSize) {
    const auto tall = [] {
        return reference::chain(KWExpressionMultiply, 10'000, reference::Lean::left);
    };
    const KWOwnedTree left(reference::made(KWExpressionMultiply, tall(), reference::constant(1)));
    EXPECT_EQ(Deriv_fpg_arbre(left.get()), nullptr);
    EXPECT_EQ(Deriv_frac_num(left.get()), nullptr);
    EXPECT_NE(KWOwnedTree(Deriv_fgp_arbre(left.get())), nullptr);
    const KWOwnedTree right(reference::made(KWExpressionMultiply, reference::constant(1), tall()));
    EXPECT_EQ(Deriv_fgp_arbre(right.get()), nullptr);
    EXPECT_NE(KWOwnedTree(Deriv_fpg_arbre(right.get())), nullptr);
    EXPECT_NE(KWOwnedTree(Deriv_frac_den(right.get())), nullptr);
}

TEST(KWExpressionDerivative, SumsOfAMillionLevelsAreDerived) {
    using reference::Lean;
    for (Lean lean : {Lean::left, Lean::right, Lean::zigzag}) {
        const KWOwnedTree sum(reference::chain(KWExpressionAdd, levelsBeyondTheStack, lean));
        const KWOwnedTree result(Deriv_arbre(sum.get()));
        EXPECT_EQ(countOf(result.get()), 2u * levelsBeyondTheStack + 1);
        std::int16_t err = 0;
        EXPECT_EQ(ComputeTree(result.get(), 0, 0, &err), 1.0f);
    }
}

TEST(KWExpressionDerivative, WhatWouldGrowWithTheSquareOfATallTreeIsNotMade) {
    using reference::Lean;
    for (int code :
         {KWExpressionMultiply, KWExpressionDivide, KWExpressionPower, KWExpressionExp,
          KWExpressionLn, KWExpressionLog, KWExpressionSqrt, KWExpressionSin, KWExpressionCos}) {
        const KWOwnedTree tall(reference::chain(code, 100'000, Lean::left));
        EXPECT_EQ(Deriv_arbre(tall.get()), nullptr) << code;
    }
    const KWOwnedTree tall(reference::chain(KWExpressionAbs, 1'000'000, Lean::left));
    EXPECT_EQ(reference::described(KWOwnedTree(Deriv_arbre(tall.get())).get()), "1");
}

TEST(KWExpressionDerivative, TheLongestTextsAreDerived) {
    std::string sum = "1";
    while (sum.size() < 32767)
        sum += "+x";
    EXPECT_EQ(derivativeAt(sum, 1), 16383.0f);
    std::string product = "1";
    while (product.size() < 32767)
        product += "*x";
    EXPECT_EQ(derived(product), nullptr);
}
