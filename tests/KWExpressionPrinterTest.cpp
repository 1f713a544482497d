#include "ExpressionReference.h"
#include "Thoroughness.h"

#include <KWBase/KWExpressionTree.h>

#include <gtest/gtest.h>

#include <clocale>
#include <limits>

namespace {

std::string written(const ExprNode* tree) {
    std::string text;
    WriteTree(tree, text);
    return text;
}

/// The text of what `text` is read as.
std::string printed(const std::string& text) {
    const KWOwnedTree tree(NewNode());
    std::int16_t err = 0;
    ConstructTree(tree.get(), text.c_str(), static_cast<std::int16_t>(text.size()), &err);
    return err == 0 ? written(tree.get()) : "error " + std::to_string(err);
}

std::string number(float value) {
    const KWOwnedTree tree(reference::constant(value));
    return written(tree.get());
}

} // namespace

TEST(KWExpressionPrinter, NothingIsWrittenForNull) {
    EXPECT_EQ(written(nullptr), "");
}

TEST(KWExpressionPrinter, TextIsAppended) {
    const KWOwnedTree tree(NewNode());
    std::string text = "y = ";
    WriteTree(tree.get(), text);
    EXPECT_EQ(text, "y = 0");
}

TEST(KWExpressionPrinter, VariablesAreXAndY) {
    EXPECT_EQ(printed("t"), "x");
    EXPECT_EQ(printed("n"), "x");
    EXPECT_EQ(printed("p"), "y");
    EXPECT_EQ(printed("r"), "y");
}

TEST(KWExpressionPrinter, NumbersHaveSixSignificantDigits) {
    EXPECT_EQ(number(0.5f), "0.5");
    EXPECT_EQ(number(1000000), "1e+06");
    EXPECT_EQ(number(3.1415927f), "3.14159");
    EXPECT_EQ(number(999999), "999999");
    EXPECT_EQ(number(9999995), "1e+07");
    EXPECT_EQ(number(0.0001f), "0.0001");
    EXPECT_EQ(number(0.00001f), "1e-05");
    EXPECT_EQ(number(-0.0f), "-0");
    EXPECT_EQ(number(-2.5f), "-2.5");
    EXPECT_EQ(number(std::numeric_limits<float>::infinity()), "inf");
    EXPECT_EQ(number(std::numeric_limits<float>::quiet_NaN()), "nan");
    EXPECT_EQ(number(std::numeric_limits<float>::denorm_min()), "1.4013e-45");
    EXPECT_EQ(printed("\xB8"), "3.14159");
}

TEST(KWExpressionPrinter, AnyNumberReadsAsThePrintingFunctionsOfCWriteIt) {
    reference::Random random(1);
    for (int i = 0; i < 50000; ++i) {
        const auto value = std::bit_cast<float>(static_cast<std::uint32_t>(random()));
        char text[64];
        std::snprintf(text, sizeof text, "%g", static_cast<double>(value));
        ASSERT_EQ(number(value), text);
    }
}

TEST(KWExpressionPrinter, ParenthesesStandWhereTheyAreNeeded) {
    EXPECT_EQ(printed("(x+1)*y"), "(x+1)*y");
    EXPECT_EQ(printed("x*(y+1)"), "x*(y+1)");
    EXPECT_EQ(printed("(x+1)/(y+2)"), "(x+1)/(y+2)");
    EXPECT_EQ(printed("x/(y*2)"), "x/(y*2)");
    EXPECT_EQ(printed("x*y/2"), "x*y/2");
    EXPECT_EQ(printed("x*(y/2)"), "x*y/2");
    EXPECT_EQ(printed("x/(y^2)"), "x/y^2");
    EXPECT_EQ(printed("(x*y)^(2/3)"), "(x*y)^(2/3)");
    EXPECT_EQ(printed("x+(y+1)"), "x+y+1");
    EXPECT_EQ(printed("x+1-(y+2)"), "-(y+2)");
    EXPECT_EQ(printed("x-(y*2)"), "-y*2");
}

TEST(KWExpressionPrinter, PowersStandWithoutParenthesesBesideAPower) {
    EXPECT_EQ(printed("x^2^3"), "x^2^3");
    EXPECT_EQ(printed("x^(2^3)"), "x^2^3");
}

TEST(KWExpressionPrinter, TheLeftOperandOfASubtractionIsNotWritten) {
    EXPECT_EQ(printed("x-1"), "-1");
    EXPECT_EQ(printed("5-x"), "-x");
    EXPECT_EQ(printed("-x"), "-x");
    EXPECT_EQ(printed("(x+1)*(x-1)"), "(x+1)*(-1)");
    EXPECT_EQ(printed("x*y-1+2"), "-1+2");
}

TEST(KWExpressionPrinter, TheLeftOperandOfASubtractionIsWrittenWhenAHostGaveItAValue) {
    ExprNode* left = reference::made(KWExpressionFirstVariable, nullptr, nullptr);
    const KWOwnedTree tree(reference::made(KWExpressionSubtract, left, reference::constant(1)));
    EXPECT_EQ(written(tree.get()), "-1");
    left->value = 2;
    EXPECT_EQ(written(tree.get()), "x-1");
    left->value = std::numeric_limits<float>::quiet_NaN();
    EXPECT_EQ(written(tree.get()), "x-1");
    left->code = KWExpressionConstant;
    left->value = 2;
    EXPECT_EQ(written(tree.get()), "-1");
}

TEST(KWExpressionPrinter, TheLogarithmsAreCrossedOver) {
    EXPECT_EQ(printed("ln(x)"), "log(x)");
    EXPECT_EQ(printed("log(x)"), "ln(x)");
    EXPECT_EQ(printed(printed("ln(x)")), "ln(x)");
}

TEST(KWExpressionPrinter, AnAbsoluteValueStandsBetweenBarsThatCannotBeReadBack) {
    EXPECT_EQ(printed("abs(x+1)"), "|x+1|");
    EXPECT_EQ(printed("|x+1|"), "error 2");
}

TEST(KWExpressionPrinter, EveryFunctionHasItsName) {
    for (const char* name :
         {"exp", "sqrt", "sin", "cos", "tan", "asin", "acos", "atan", "sinh", "cosh", "tanh"})
        EXPECT_EQ(printed(std::string(name) + "(2*x)"), std::string(name) + "(2*x)");
    EXPECT_EQ(printed("sh(x)+ch(x)*th(x)"), "sinh(x)+cosh(x)*tanh(x)");
}

TEST(KWExpressionPrinter, WhatIsMissingIsNotWritten) {
    const auto text = [](int code, ExprNode* left, ExprNode* right) {
        const KWOwnedTree tree(reference::made(code, left, right));
        return written(tree.get());
    };
    EXPECT_EQ(text(KWExpressionMultiply, reference::constant(2), nullptr), "2*");
    EXPECT_EQ(text(KWExpressionDivide, nullptr, reference::constant(2)), "/2");
    EXPECT_EQ(text(KWExpressionSubtract, nullptr, nullptr), "-");
    EXPECT_EQ(text(KWExpressionSin, nullptr, nullptr), "sin()");
    EXPECT_EQ(text(20, reference::constant(2), reference::constant(3)), "");
    EXPECT_EQ(text(KWExpressionSin, reference::constant(2), reference::constant(3)), "sin(2)");
}

TEST(KWExpressionPrinter, RandomTreesArePrintedAsThePlainPrinterPrintsThem) {
    reference::Random random(2);
    for (int i = 0; i < 20000; ++i) {
        const KWOwnedTree tree(reference::tree(random, 1 + i % 9, i % 2 == 0));
        ASSERT_EQ(written(tree.get()), reference::written(tree.get()))
            << reference::described(tree.get());
    }
}

TEST(KWExpressionPrinter, ACommaDecimalLocaleChangesNothing) {
    if (!std::setlocale(LC_ALL, "de_DE.UTF-8"))
        GTEST_SKIP() << "The locale de_DE.UTF-8 is not there.";
    char proof[16];
    std::snprintf(proof, sizeof proof, "%.1f", 2.5);
    EXPECT_STREQ(proof, "2,5");
    EXPECT_EQ(printed("2.5*x+0.25"), "2.5*x+0.25");
    std::setlocale(LC_ALL, "C");
}

TEST(KWExpressionPrinter, TreesOfAMillionLevelsArePrinted) {
    using reference::Lean;
    for (Lean lean : {Lean::left, Lean::right, Lean::zigzag}) {
        const KWOwnedTree sum(reference::chain(KWExpressionAdd, levelsBeyondTheStack, lean));
        EXPECT_EQ(written(sum.get()).size(), 2u * levelsBeyondTheStack + 1);
        const KWOwnedTree quotient(
            reference::chain(KWExpressionDivide, levelsBeyondTheStack, lean));
        EXPECT_GE(written(quotient.get()).size(), 2u * levelsBeyondTheStack + 1);
    }
    const KWOwnedTree nested(reference::chain(KWExpressionExp, levelsBeyondTheStack, Lean::left));
    EXPECT_EQ(written(nested.get()).size(), 5u * levelsBeyondTheStack + 1);
}

TEST(KWExpressionPrinter, TheLongestTextIsPrinted) {
    std::string text = "1";
    while (text.size() < 32767)
        text += "*x";
    EXPECT_EQ(printed(text), text);
}
