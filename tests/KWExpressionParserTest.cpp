#include "ExpressionReference.h"

#include <KWBase/KWExpressionText.h>
#include <KWBase/KWExpressionTree.h>

#include <gtest/gtest.h>

#include <memory>

namespace {

using Kind = KWExpressionFault::Kind;

/// What ConstructTree makes of a text: the tree, or "error 2".
std::string read(const std::string& text) {
    const KWOwnedTree tree(NewNode());
    std::int16_t err = 0;
    ConstructTree(tree.get(), text.c_str(), static_cast<std::int16_t>(text.size()), &err);
    return err == 0 ? reference::described(tree.get()) : "error " + std::to_string(err);
}

KWExpressionFault faultOf(const std::string& text) {
    const KWOwnedTree tree(NewNode());
    return KWParseExpression(tree.get(), text);
}

void expectFault(const std::string& text, Kind kind, std::size_t position) {
    const KWExpressionFault fault = faultOf(text);
    EXPECT_EQ(fault.kind, kind) << text;
    EXPECT_EQ(fault.position, position) << text;
}

/// Code and length that a look-up in `text` gives, after one that gave `before`.
std::pair<int, int> found(const char* text, int index = 0, std::pair<int, int> before = {0, 0}) {
    auto code = static_cast<std::int16_t>(before.first);
    auto length = static_cast<std::int16_t>(before.second);
    FindOperator(&code, &length, text, static_cast<std::int16_t>(index));
    return {code, length};
}

std::pair<int, int> name(int code, int length) {
    return {code, length};
}

std::string repeated(const std::string& text, int count) {
    std::string result;
    result.reserve(text.size() * static_cast<std::size_t>(count));
    for (int i = 0; i < count; ++i)
        result += text;
    return result;
}

std::uint32_t bitsOf(float value) {
    return std::bit_cast<std::uint32_t>(value);
}

void expectAsPlainlyRead(const std::string& text) {
    std::int16_t plainErr = 0;
    const KWOwnedTree plain = reference::parsed(text, plainErr);

    const KWOwnedTree tree(NewNode());
    std::int16_t err = 0;
    ConstructTree(tree.get(), text.c_str(), static_cast<std::int16_t>(text.size()), &err);
    ASSERT_EQ(err, plainErr) << text;
    ASSERT_TRUE(reference::areEqual(tree.get(), plain.get()))
        << text << "\n  " << reference::described(tree.get()) << "\n  "
        << reference::described(plain.get());

    const KWOwnedTree second(NewNode());
    const KWExpressionFault fault = KWParseExpression(second.get(), text);
    ASSERT_EQ(fault.code(), plainErr) << text;
    ASSERT_LE(fault.position, text.size()) << text;
    ASSERT_TRUE(reference::areEqual(second.get(), plain.get())) << text;
}

/// With as many closing parentheses as opening ones. What is missing is spread over both ends, so
/// that the depth may become negative.
std::string balanced(reference::Random& random, std::string text) {
    const auto depth =
        std::count(text.begin(), text.end(), '(') - std::count(text.begin(), text.end(), ')');
    for (auto k = depth; k != 0; k += k > 0 ? -1 : 1) {
        const char c = depth > 0 ? ')' : '(';
        text.insert(random() % 4 == 0 ? text.begin() : text.end(), c);
    }
    return text;
}

/// How many nodes lie below each other along one side.
int levels(const ExprNode* node, ExprNode* ExprNode::*side) {
    int count = 0;
    for (; node->*side; node = node->*side)
        ++count;
    return count;
}

} // namespace

TEST(KWExpressionParser, AnEmptyTextIsAMissingOperand) {
    EXPECT_EQ(read(""), "error 3");
    std::int16_t err = 0;
    const KWOwnedTree tree(NewNode());
    ConstructTree(tree.get(), "x", -1, &err);
    EXPECT_EQ(err, 3);
    err = 0;
    ConstructTree(tree.get(), nullptr, 0, &err);
    EXPECT_EQ(err, 3);
}

TEST(KWExpressionParser, EmptyParenthesesAreZero) {
    EXPECT_EQ(read("()"), "0");
    EXPECT_EQ(read("(()())"), "0");
    EXPECT_EQ(read("."), "0");
}

TEST(KWExpressionParser, OnlyTheDepthAtTheEndCounts) {
    EXPECT_EQ(read("(x"), "error 1");
    EXPECT_EQ(read("x)"), "error 1");
    EXPECT_EQ(read(")x("), "x");
    EXPECT_EQ(read("(x)"), "x");
}

TEST(KWExpressionParser, OperatorsAreSplitAt) {
    EXPECT_EQ(read("x-1"), "(x - 1)");
    EXPECT_EQ(read("2*x+1"), "((2 * x) + 1)");
    EXPECT_EQ(read("1+2*x"), "(1 + (2 * x))");
    EXPECT_EQ(read("2*(x+1)"), "(2 * (x + 1))");
    EXPECT_EQ(read("(x+1)*2"), "((x + 1) * 2)");
    EXPECT_EQ(read("((x+1))"), "(x + 1)");
    EXPECT_EQ(read("(x+1)*(y-2)"), "((x + 1) * (y - 2))");
}

TEST(KWExpressionParser, OperatorsAssociateToTheLeft) {
    EXPECT_EQ(read("1+2+3"), "((1 + 2) + 3)");
    EXPECT_EQ(read("8/4/2"), "((8 / 4) / 2)");
    EXPECT_EQ(read("2^3^2"), "((2 ^ 3) ^ 2)");
    EXPECT_EQ(read("1-2+3"), "((1 - 2) + 3)");
}

TEST(KWExpressionParser, AMinusMayBeANegation) {
    EXPECT_EQ(read("-x"), "(0 - x)");
    EXPECT_EQ(read("2*(-3)"), "(2 * (0 - 3))");
    EXPECT_EQ(read("-x+1"), "((0 - x) + 1)");
    EXPECT_EQ(read("-2*x"), "(0 - (2 * x))");
    EXPECT_EQ(read("-x^2"), "(0 - (x ^ 2))");
    EXPECT_EQ(read("sin(-x)"), "sin((0 - x))");
}

TEST(KWExpressionParser, ANegationInParenthesesSurvivesWhatFollows) {
    EXPECT_EQ(read("(-3)*2"), "(0 - 2)");
    EXPECT_EQ(read("(-3)^2"), "(0 - 2)");
    EXPECT_EQ(read("(-3)+2"), "((0 - 3) + 2)");
    EXPECT_EQ(read("(-3)sin(x)"), "error 2"); // what is left is in(x)
}

TEST(KWExpressionParser, AMinusAfterAnOperatorIsNoNegation) {
    EXPECT_EQ(read("2*-3"), "error 3");
    EXPECT_EQ(read("--x"), "error 3");
    EXPECT_EQ(read("1--1"), "error 3");
}

TEST(KWExpressionParser, ALaterMinusInParenthesesIsNoSplitOfASum) {
    EXPECT_EQ(read("(1+2)(-x)"), "(1 + (0 - x))"); // the right side of + is 2)(-x
    EXPECT_EQ(read("((1+2))(-x)"), "error 1");
    EXPECT_EQ(read("((1+2)*3)(-x)"), "(0 - x)");
    EXPECT_EQ(read("-x)(-y"), "(0 - (0 - y))");
}

TEST(KWExpressionParser, PowersBindTighterThanFunctions) {
    EXPECT_EQ(read("sin(x)^2"), "(sin(x) ^ 2)");
    EXPECT_EQ(read("2^sin(x)"), "(2 ^ sin(x))");
    EXPECT_EQ(read("sin(x^2)"), "sin((x ^ 2))");
    EXPECT_EQ(read("-sin(x)"), "(0 - sin(x))");
}

TEST(KWExpressionParser, ANumberBesideAVariableWins) {
    EXPECT_EQ(read("2x"), "2");
    EXPECT_EQ(read("x2"), "2");
    EXPECT_EQ(read("2(3)"), "2");
    EXPECT_EQ(read("x(2)"), "2");
}

TEST(KWExpressionParser, TheLastOfTwoVariablesWins) {
    EXPECT_EQ(read("xy"), "y");
    EXPECT_EQ(read("yx"), "x");
}

TEST(KWExpressionParser, TheLaterOfTwoFunctionsWins) {
    EXPECT_EQ(read("sin(x)cos(x)"), "cos(x)");
    EXPECT_EQ(read("sinsinx"), "sin(x)");
    EXPECT_EQ(read("sin(cos(x))"), "sin(cos(x))");
}

TEST(KWExpressionParser, TheVariablesHaveThreeLettersEach) {
    for (const char* text : {"x", "t", "n"})
        EXPECT_EQ(read(text), "x") << text;
    for (const char* text : {"y", "p", "r"})
        EXPECT_EQ(read(text), "y") << text;
}

TEST(KWExpressionParser, NumbersBeginAtADigit) {
    EXPECT_EQ(read(".5"), "5");
    EXPECT_EQ(read("2.5.3"), "2.5");
    EXPECT_EQ(read("5."), "5");
    EXPECT_EQ(read("1e5"), "error 2");
    EXPECT_EQ(read("12 34"), "error 2");
}

TEST(KWExpressionParser, PiIsOneByte) {
    EXPECT_EQ(read("\xB8"), "3.14159274");
    EXPECT_EQ(read("2*\xB8"), "(2 * 3.14159274)");
    EXPECT_EQ(read("\xB8"
                   "2"),
              "3.14159274");
    EXPECT_EQ(read("pi"), "error 2");
}

TEST(KWExpressionParser, FunctionsNeedNoParentheses) {
    EXPECT_EQ(read("sinx"), "sin(x)");
    EXPECT_EQ(read("sin(x)"), "sin(x)");
    EXPECT_EQ(read("sin2"), "sin(2)");
    EXPECT_EQ(read("sinx+1"), "(sin(x) + 1)");
}

TEST(KWExpressionParser, EveryNameOfAFunctionIsRead) {
    const std::pair<const char*, const char*> names[] = {
        {"exp", "exp"},   {"ln", "ln"},     {"log", "log"},   {"sqrt", "sqrt"}, {"abs", "abs"},
        {"sin", "sin"},   {"cos", "cos"},   {"tan", "tan"},   {"asin", "asin"}, {"acos", "acos"},
        {"atan", "atan"}, {"sinh", "sinh"}, {"cosh", "cosh"}, {"tanh", "tanh"}, {"sh", "sinh"},
        {"ch", "cosh"},   {"th", "tanh"},
    };
    for (const auto& [written, kind] : names) {
        EXPECT_EQ(read(std::string(written) + "(x)"), std::string(kind) + "(x)") << written;
        EXPECT_EQ(read(std::string(written) + "y*2"), "(" + std::string(kind) + "(y) * 2)");
    }
}

TEST(KWExpressionParser, FewLettersOfANameAreLookedAt) {
    EXPECT_EQ(read("sqrx(4)"), "sqrt(4)");
    EXPECT_EQ(read("sq!!4"), "sqrt(4)");
    EXPECT_EQ(read("abz(4)"), "abs(4)");
    EXPECT_EQ(read("siny"), "sin(y)");
    EXPECT_EQ(read("s??hx"), "sinh(x)");
    EXPECT_EQ(read("s))x"), "sin(x)"); // the parentheses are part of the name
    EXPECT_EQ(read("s+1"), "error 3"); // as is the operator
}

TEST(KWExpressionParser, AWordOfThreeLettersInSIsASineOfWhatFollows) {
    EXPECT_EQ(found("sxyz"), name(KWExpressionSin, 3));
    EXPECT_EQ(read("sxyz"), "error 2"); // z is no variable
    EXPECT_EQ(read("sxyy"), "sin(y)");
}

TEST(KWExpressionParser, WordsThatAreNoFunctionAreRefused) {
    EXPECT_EQ(read("exp(1)"), "exp(1)");
    EXPECT_EQ(read("ep(1)"), "error 2");
    EXPECT_EQ(read("lg(1)"), "error 2");
    EXPECT_EQ(read("ta(1)"), "error 2");
    EXPECT_EQ(read("i"), "error 2");
    EXPECT_EQ(read("pi"), "error 2");
}

TEST(KWExpressionParser, AnUnknownWordInAOrCReusesTheNameBefore) {
    EXPECT_EQ(read("sin(x)cxx(x)"), "sin(x)");
    EXPECT_EQ(read("sin(cos2)axx2"), "cos(2)");
    EXPECT_EQ(read("shx+ax2"), "error 2"); // within its own text the word has none before it
    EXPECT_EQ(read("exp(x)coz(y)"), "exp(y)");
    EXPECT_EQ(read("sin(t)+cxx(x)"), "error 2"); // the variable has been looked up since
}

TEST(KWExpressionParser, AnUnknownWordInAOrCWithoutANameBeforeIsRefused) {
    for (const char* text : {"ax", "co", "cx", "a", "c", "x+ax", "t+ax", "a(x)"})
        EXPECT_EQ(read(text), "error 2") << text;
    EXPECT_EQ(read("abc"), "error 3"); // an absolute value of nothing
}

TEST(KWExpressionParser, ANameMayRunBeyondTheEnd) {
    for (const char* text : {"as", "ac", "at", "ab", "sq", "s", "sx", "as(", "x+s"})
        EXPECT_EQ(read(text), "error 3") << text;
}

TEST(KWExpressionParser, AnArgumentSeesTheParenthesesBehindIt) {
    // The inner text is "s" with a closing parenthesis behind it that is not scanned.
    EXPECT_EQ(read("(sins)"), "error 1");
    EXPECT_EQ(read("(sin(sh2))"), "sin(sinh(2))");
}

TEST(KWExpressionParser, ALookUpIsNotConfusedByWhatFollowsTheLengthInTheText) {
    const KWOwnedTree tree(NewNode());
    std::int16_t err = 0;
    ConstructTree(tree.get(), "cosx+1", 4, &err);
    EXPECT_EQ(err, 0);
    EXPECT_EQ(reference::described(tree.get()), "cos(x)");
    // The fourth letter lies beyond the length, and the text ends with it.
    const KWOwnedTree second(NewNode());
    ConstructTree(second.get(), "cosh", 3, &err);
    EXPECT_EQ(err, 3);
    EXPECT_EQ(second->code, KWExpressionCosh);
    // An operand ends with the length, though.
    const KWOwnedTree third(NewNode());
    err = 0;
    ConstructTree(third.get(), "2*th(x)", 3, &err);
    EXPECT_EQ(err, 0);
    EXPECT_EQ(reference::described(third.get()), "(2 * x)");
}

TEST(KWExpressionParser, ALengthBeyondTheEndOfTheStringReadsNothingThere) {
    const KWOwnedTree tree(NewNode());
    const std::unique_ptr<char[]> exact(new char[2]{'x', 0});
    std::int16_t err = 0;
    ConstructTree(tree.get(), exact.get(), 5, &err);
    EXPECT_EQ(err, 2);
    // A name may reach from there to the length.
    const std::unique_ptr<char[]> word(new char[4]{'(', 'a', 's', 0});
    ConstructTree(tree.get(), word.get(), 5, &err);
    EXPECT_EQ(err, 1);
}

TEST(KWExpressionParser, BytesOfNoMeaningAreRefused) {
    for (char c : {'!', '#', ' ', '\t', '\'', ',',    ':',    ';',    '<',    '=',   '>', '?',
                   '@', 'A', 'X', 'Z',  '[',  '\\',   ']',    '_',    '`',    'u',   'v', 'w',
                   'z', '{', '|', '}',  '~',  '\x7F', '\x80', '\xB7', '\xB9', '\xFF'})
        EXPECT_EQ(read(std::string("x+") + c), "error 2") << static_cast<int>(c);
}

TEST(KWExpressionParser, AZeroByteIsRefused) {
    expectFault(std::string("x\0x", 3), Kind::unknown, 1);
    expectFault(std::string("s\0x(x)", 6), Kind::unknown, 1);
}

TEST(KWExpressionParser, AMissingOperandIsAFault) {
    for (const char* text : {"+x", "x+", "*x", "x*", "/", "^", "+", "-", "sin", "2*sin", "(+x)",
                             "(x+)", "(sin)", "(*)"})
        EXPECT_EQ(read(text), "error 3") << text;
    EXPECT_EQ(read("sin()"), "sin(0)");
}

TEST(KWExpressionParser, AMissingLeftOperandKeepsTheRightOneFromBeingRead) {
    EXPECT_EQ(read("*x!"), "error 2"); // refused by the scan
    EXPECT_EQ(read("*2*-"), "error 3");
    EXPECT_EQ(read("+)x("), "error 3");
}

TEST(KWExpressionParser, TheLastFaultCounts) {
    EXPECT_EQ(read("2*-(3*)"), "error 3");
    EXPECT_EQ(read("1(2+3)"), "error 1");
    EXPECT_EQ(read("1(2+)"), "error 3"); // the left side is (2
    EXPECT_EQ(read("(3*)+(sin5)ax"), "error 3");
}

TEST(KWExpressionParser, AFaultThatIsThereIsNeverCleared) {
    const KWOwnedTree tree(NewNode());
    std::int16_t err = 7;
    ConstructTree(tree.get(), "x+1", 3, &err);
    EXPECT_EQ(err, 7);
    EXPECT_EQ(reference::described(tree.get()), "(x + 1)");
}

TEST(KWExpressionParser, WhatWasBuiltBeforeAFaultStays) {
    const KWOwnedTree tree(NewNode());
    std::int16_t err = 0;
    ConstructTree(tree.get(), "x*2+", 4, &err);
    EXPECT_EQ(err, 3);
    EXPECT_EQ(reference::described(tree.get()), "((x * 2) + 0)");
}

TEST(KWExpressionParser, ASplitAtNegativeDepthIsRefused) {
    for (const char* text : {")1+2(", ")sin(x((", ")-x(", "))x*y((", "x)*(y)(", ")sin(", "())-(()"})
        EXPECT_EQ(read(text).substr(0, 5), "error") << text;
    EXPECT_EQ(read(")1+2("), "error 2");
    EXPECT_EQ(read("))x*y(("), "error 2");
}

TEST(KWExpressionParser, AnOperatorNestedMoreThan128DeepIsNeverSplitAt) {
    const auto nested = [](int depth) {
        return repeated("(", depth) + "1+2" + repeated(")", depth);
    };
    EXPECT_EQ(read(nested(127)), "(1 + 2)");
    EXPECT_EQ(read(nested(128)), "(1 + 2)");
    EXPECT_EQ(read(nested(129)), "1");
    EXPECT_EQ(read(repeated("(", 129) + "sinx" + repeated(")", 129)), "x");
    // The depth is that within the part that is read.
    EXPECT_EQ(read("3+" + nested(128)), "(3 + (1 + 2))");
}

TEST(KWExpressionParser, ParenthesesNestedMoreThan1000DeepAreRefused) {
    const auto nested = [](int depth) { return repeated("(", depth) + "1" + repeated(")", depth); };
    EXPECT_EQ(read(nested(1000)), "1");
    EXPECT_EQ(read(nested(1001)), "error 2");
    expectFault(nested(1001), Kind::tooDeep, 1000);
    expectFault(repeated("sin(", 1001) + "1" + repeated(")", 1001), Kind::tooDeep, 4003);
    EXPECT_EQ(faultOf(repeated("sin(", 1000) + "1" + repeated(")", 1000)).kind, Kind::none);
    EXPECT_EQ(faultOf(nested(1001)).code(), 2);
}

TEST(KWExpressionParser, DepthCountsFromTheBeginningOfTheWholeText) {
    // The left side of + begins behind the closing parentheses, and so is nested 1,128 deep.
    const std::string text =
        repeated(")", 128) + repeated("(", 1128) + repeated(")", 872) + "+1" + repeated(")", 128);
    EXPECT_EQ(read(text), "error 1");
    expectAsPlainlyRead(text);
}

TEST(KWExpressionParser, TextOfMoreThan32767BytesIsRefused) {
    const std::string longest = "1" + repeated("+1", 16383);
    ASSERT_EQ(longest.size(), KWExpressionMaximumLength);
    EXPECT_EQ(faultOf(longest).kind, Kind::none);
    const KWOwnedTree tree(NewNode());
    const KWExpressionFault fault = KWParseExpression(tree.get(), longest + "+1");
    EXPECT_EQ(fault.kind, Kind::tooLong);
    EXPECT_EQ(fault.position, KWExpressionMaximumLength);
    EXPECT_EQ(fault.code(), 2);
    EXPECT_TRUE(reference::areEqual(tree.get(), KWOwnedTree(NewNode()).get()));
}

TEST(KWExpressionParser, FaultsTellTheirPlace) {
    expectFault("2*x+1", Kind::none, 0);
    expectFault("", Kind::missing, 0);
    expectFault("x+", Kind::missing, 2);
    expectFault("2*(x+)", Kind::missing, 5);
    expectFault("+x", Kind::missing, 0);
    expectFault("3+(*x)", Kind::missing, 3);
    expectFault("2*sin", Kind::missing, 5);
    expectFault("as", Kind::missing, 2);
    expectFault("x+#", Kind::unknown, 2);
    expectFault("1+2*foo(x)", Kind::unknown, 4);
    expectFault("x+ax", Kind::unknown, 2);
    expectFault("sin((x)", Kind::parentheses, 3);
    expectFault("((x)+(y)", Kind::parentheses, 0);
    expectFault("x+(y))", Kind::parentheses, 5);
    expectFault("as((x)", Kind::parentheses, 6); // the name hides two
    expectFault(")1+2(", Kind::unknown, 2);
}

TEST(KWExpressionParser, AMissingOperatorIsToldFromParenthesesThatDoNotMatch) {
    expectFault("1(2+3)", Kind::missingOperator, 1);
    expectFault("2(x+1)", Kind::missingOperator, 1);
    expectFault("x(x+1)", Kind::missingOperator, 1);
    expectFault("(2+3)x", Kind::missingOperator, 4);
    expectFault("3*(1+x(x+1))", Kind::missingOperator, 6);
    expectFault("1(2+3", Kind::parentheses, 1);
    expectFault("1(2+s((x)", Kind::parentheses, 1); // the name hides two
    EXPECT_EQ(read("1(2+3)"), "error 1");
    EXPECT_EQ(faultOf("1(2+3)").code(), 1);
    EXPECT_EQ(faultOf("1(2+3)").sentence(), "an operator is missing beside a parenthesis");
}

TEST(KWExpressionParser, EveryFaultHasASentence) {
    for (Kind kind : {Kind::parentheses, Kind::unknown, Kind::missing, Kind::tooLong, Kind::tooDeep,
                      Kind::noText, Kind::badMode, Kind::missingOperator, Kind::noInterpreter,
                      Kind::noRule, Kind::tooLarge})
        EXPECT_FALSE((KWExpressionFault{kind, 0}).sentence().empty());
    EXPECT_EQ(KWExpressionFault().sentence(), "");
    EXPECT_EQ(faultOf("x+").sentence(), "an operand is missing");
    EXPECT_EQ((KWExpressionFault{Kind::noText, 0}).code(), 0);
    EXPECT_EQ((KWExpressionFault{Kind::badMode, 0}).code(), 0);
    EXPECT_EQ((KWExpressionFault{Kind::parentheses, 0}).code(), 1);
}

TEST(KWExpressionParser, ANameIsFoundByItsFirstLetters) {
    EXPECT_EQ(found("acxx"), name(15, 4));
    EXPECT_EQ(found("abx"), name(10, 3));
    EXPECT_EQ(found("asin"), name(14, 4));
    EXPECT_EQ(found("atan"), name(16, 4));
    EXPECT_EQ(found("ch"), name(18, 2));
    EXPECT_EQ(found("cosh"), name(18, 4));
    EXPECT_EQ(found("cos("), name(12, 3));
    EXPECT_EQ(found("cos"), name(12, 3));
    EXPECT_EQ(found("exp"), name(6, 3));
    EXPECT_EQ(found("ln"), name(7, 2));
    EXPECT_EQ(found("log"), name(8, 3));
    EXPECT_EQ(found("sh"), name(17, 2));
    EXPECT_EQ(found("sq"), name(9, 4));
    EXPECT_EQ(found("sinh"), name(17, 4));
    EXPECT_EQ(found("sin("), name(11, 3));
    EXPECT_EQ(found("th"), name(19, 2));
    EXPECT_EQ(found("tanh"), name(19, 4));
    EXPECT_EQ(found("tan("), name(13, 3));
    EXPECT_EQ(found("2*ln(x)", 2), name(7, 2));
}

TEST(KWExpressionParser, ALookUpThatFindsNoneKeepsTheLength) {
    for (const char* text :
         {"e", "ex", "exq", "l", "lo", "lop", "t", "ta", "tab", "x", "b", "A", ""})
        EXPECT_EQ(found(text, 0, {12, 3}), name(-10, 3)) << text;
}

TEST(KWExpressionParser, ALookUpOfAWordInAOrCThatIsNoNameKeepsBoth) {
    for (const char* text : {"a", "ax", "a(", "c", "cx", "co", "cox"})
        EXPECT_EQ(found(text, 0, {12, 3}), name(12, 3)) << text;
}

TEST(KWExpressionParser, ALookUpReadsNothingBeyondTheEndOfTheString) {
    for (const char* text :
         {"s", "sx", "c", "co", "cos", "t", "ta", "tan", "e", "ex", "l", "lo", "a"}) {
        const std::size_t size = std::strlen(text) + 1;
        const std::unique_ptr<char[]> exact(new char[size]);
        std::memcpy(exact.get(), text, size);
        found(exact.get());
        const KWOwnedTree tree(NewNode());
        std::int16_t err = 0;
        ConstructTree(tree.get(), exact.get(), static_cast<std::int16_t>(size - 1), &err);
        // A view without a zero byte behind it.
        const std::vector<char> bare(text, text + size - 1);
        const KWOwnedTree second(NewNode());
        EXPECT_EQ(KWParseExpression(second.get(), {bare.data(), bare.size()}).code(), err) << text;
    }
}

TEST(KWExpressionParser, ANumberIsReadDigitByDigitInSinglePrecision) {
    EXPECT_EQ(bitsOf(CalcValue("0", 0)), 0u);
    EXPECT_EQ(CalcValue("42", 0), 42.0f);
    EXPECT_EQ(CalcValue("x42+7", 1), 42.0f);
    EXPECT_EQ(CalcValue("42.25*", 0), 42.25f);
    EXPECT_EQ(CalcValue("2.5.3", 0), 2.5f);
    EXPECT_EQ(CalcValue("-3.5", 0), -3.5f);
    EXPECT_EQ(bitsOf(CalcValue("-", 0)), 0x80000000u);
    EXPECT_EQ(bitsOf(CalcValue("", 0)), 0u);
    EXPECT_EQ(CalcValue(".5", 0), 0.5f); // the parser never starts there
    EXPECT_EQ(bitsOf(CalcValue("\xB8"
                               "9",
                               0)),
              0x40490FDBu);
    EXPECT_EQ(CalcValue("--1", 0), 0.0f);
    EXPECT_EQ(CalcValue(repeated("9", 50).c_str(), 0), std::numeric_limits<float>::infinity());
}

TEST(KWExpressionParser, TheDigitsBehindThePointWeighNotQuitePowersOfTen) {
    float sum = 0;
    int k = 1;
    for (char digit : std::string("123456789"))
        sum = static_cast<float>(sum + (digit - '0') * std::exp(-k++ * 2.30258509));
    EXPECT_EQ(bitsOf(CalcValue("0.123456789", 0)), bitsOf(sum));
    // Seven digits of ln 10 are too few for the last bit of every number.
    bool anyDiffers = false;
    for (int i = 0; i < 1000; ++i) {
        const std::string text = "0." + std::to_string(1000 + i);
        anyDiffers |= CalcValue(text.c_str(), 0) != std::strtof(text.c_str(), nullptr);
    }
    EXPECT_TRUE(anyDiffers);
}

TEST(KWExpressionParser, NumbersAreThoseOfThePlainReader) {
    reference::Random random(1);
    for (int i = 0; i < 3000; ++i) {
        std::string text;
        for (int k = reference::below(random, 24); k >= 0; --k)
            text += ".0123456789"[reference::below(random, 11)];
        ASSERT_EQ(bitsOf(CalcValue(text.c_str(), 0)), bitsOf(reference::number(text + '\0', 0)))
            << text;
    }
}

TEST(KWExpressionParser, SentencesAreReadAsThePlainParserReadsThem) {
    reference::Random random(2);
    for (int i = 0; i < 20000; ++i)
        expectAsPlainlyRead(reference::sentence(random, 1 + i % 6));
}

TEST(KWExpressionParser, MutatedSentencesAreReadAsThePlainParserReadsThem) {
    reference::Random random(3);
    for (int i = 0; i < 30000; ++i)
        expectAsPlainlyRead(reference::mutated(random, reference::sentence(random, 1 + i % 6)));
}

TEST(KWExpressionParser, ScrambledPiecesAreReadAsThePlainParserReadsThem) {
    reference::Random random(4);
    for (int i = 0; i < 60000; ++i)
        expectAsPlainlyRead(reference::scrambled(random, 1 + i % 17));
}

TEST(KWExpressionParser, RandomBytesAreReadAsThePlainParserReadsThem) {
    reference::Random random(5);
    for (int i = 0; i < 60000; ++i)
        expectAsPlainlyRead(reference::bytes(random, 1 + i % 15));
}

TEST(KWExpressionParser, BalancedScramblesAreReadAsThePlainParserReadsThem) {
    reference::Random random(6);
    for (int i = 0; i < 60000; ++i)
        expectAsPlainlyRead(balanced(random, reference::scrambled(random, 1 + i % 24)));
}

TEST(KWExpressionParser, EveryShortTextIsReadAsThePlainParserReadsIt) {
    const std::string alphabet = "()+-*^1xashc";
    for (int length = 1; length <= 4; ++length) {
        std::vector<std::size_t> digits(static_cast<std::size_t>(length), 0);
        for (bool isDone = false; !isDone;) {
            std::string text;
            for (std::size_t digit : digits)
                text += alphabet[digit];
            expectAsPlainlyRead(text);
            isDone = true;
            for (std::size_t& digit : digits) {
                digit = (digit + 1) % alphabet.size();
                if (digit != 0) {
                    isDone = false;
                    break;
                }
            }
        }
    }
}

TEST(KWExpressionParser, LongChainsAreReadAsThePlainParserReadsThem) {
    reference::Random random(7);
    for (const char* piece : {"1+", "x*", "y^", "sin(t)+", "-x)(", "(-x)", "1-", "x*2+", "(x+1)*",
                              "(x*1)+", "ab(", "sinx", "()-", "2*(-", "cx+sin"}) {
        const int count = 100 + reference::below(random, 100);
        expectAsPlainlyRead(repeated(piece, count) + "x");
        std::string balanced = repeated(piece, count) + "x";
        for (auto open = std::count(balanced.begin(), balanced.end(), '(') -
                         std::count(balanced.begin(), balanced.end(), ')');
             open > 0; --open)
            balanced += random() % 3 == 0 ? ")+1" : ")";
        expectAsPlainlyRead(balanced);
    }
}

TEST(KWExpressionParser, LongTextsOfRandomPiecesAreReadAsThePlainParserReadsThem) {
    // So long that parts are looked up instead of being scanned again.
    reference::Random random(8);
    const std::vector<std::string> pieces{"-x)(", "(-x)", "2*(", "1+(",  "(-1)exp(", "(1-", "sin(",
                                          "asin", "as((", "s+(", ")",    "(-",       "x",   "^y",
                                          "*3",   "+t",   ")+1", ")*x",  "abs(",     "cx",  "co",
                                          "sinx", "(((",  ")))", "0.25", "ax",       "-",   "p"};
    for (int i = 0; i < 3000; ++i) {
        const std::vector<std::string> favourites{reference::oneOf(random, pieces),
                                                  reference::oneOf(random, pieces)};
        std::string text;
        for (int k = 100 + reference::below(random, 150); k > 0; --k)
            text +=
                reference::oneOf(random, reference::below(random, 4) == 0 ? pieces : favourites);
        if (i % 4 != 0)
            text = balanced(random, text);
        expectAsPlainlyRead(text);
        if (i % 3 == 0)
            expectAsPlainlyRead(reference::sentence(random, 8 + i % 4));
    }
}

TEST(KWExpressionParser, ALengthWithinALongTextEndsItThere) {
    for (const char* end : {"t*h(x)", "t*e", "-cosh", "+sinh", "-co", "+t"}) {
        const std::string text = repeated("2*(-", 90) + "x" + repeated(")", 90) + end;
        for (std::size_t left = 0; left < 6; ++left) {
            const std::size_t length = text.size() - left;
            const KWOwnedTree tree(NewNode());
            std::int16_t err = 0;
            ConstructTree(tree.get(), text.c_str(), static_cast<std::int16_t>(length), &err);
            std::int16_t plainErr = 0;
            const KWOwnedTree plain(NewNode());
            reference::construct(plain.get(), text + std::string(4, '\0'), static_cast<int>(length),
                                 plainErr, 1000);
            EXPECT_EQ(err, plainErr) << end << left;
            EXPECT_TRUE(reference::areEqual(tree.get(), plain.get())) << end << left;
        }
    }
}

TEST(KWExpressionParser, ChainsOfNegationsAndOfParenthesesAreReadOfAnyLength) {
    const auto levelsOf = [](const std::string& text, ExprNode* ExprNode::*side) {
        const KWOwnedTree tree(NewNode());
        EXPECT_EQ(KWParseExpression(tree.get(), text).kind, Kind::none);
        return levels(tree.get(), side);
    };
    EXPECT_EQ(levelsOf("-t" + repeated(")(-t", 8190), &ExprNode::right), 8191);
    EXPECT_EQ(levelsOf(repeated("1+(", 1000) + "1" + repeated("*t", 14000) + repeated(")", 1000),
                       &ExprNode::right),
              1001);
    EXPECT_EQ(levelsOf(repeated("(", 120) + "t" + repeated("^t)", 120), &ExprNode::left), 120);
}

TEST(KWExpressionParser, TheLongestChainsAreRead) {
    const std::pair<const char*, int> pieces[] = {
        {"1+", 16383}, {"t*", 16383}, {"x-", 16383}, {"x^", 16383}, {"sin(t)+", 4680}};
    for (const auto& [piece, count] : pieces) {
        const KWOwnedTree tree(NewNode());
        const KWExpressionFault fault = KWParseExpression(tree.get(), repeated(piece, count) + "1");
        EXPECT_EQ(fault.kind, Kind::none) << piece;
        EXPECT_EQ(levels(tree.get(), &ExprNode::left), count + (piece[0] == 's' ? 1 : 0)) << piece;
    }
}

TEST(KWExpressionParser, LongTextsOfOtherShapesAreReadToo) {
    for (const std::string& text :
         {repeated("(-x)", 8191), "-x" + repeated(")(-x", 8190), repeated("sinx", 8191),
          repeated("2^(-", 1000) + "x" + repeated(")", 1000),
          repeated("(", 1000) + "1" + repeated("+1", 12000) + repeated("+1)", 1000),
          repeated("abs(1+", 1000) + "x" + repeated(")", 1000), repeated("(1+1)", 6500),
          "0." + repeated("1", 32000),
          repeated("1+(", 1000) + "1" + repeated("*x", 14000) + repeated(")", 1000)}) {
        ASSERT_LE(text.size(), KWExpressionMaximumLength);
        EXPECT_EQ(faultOf(text).kind, Kind::none) << text.substr(0, 20);
    }
}
