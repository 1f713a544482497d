#include "ExpressionReference.h"
#include "Thoroughness.h"

#include <KWBase/KWExpressionTree.h>

#include <gtest/gtest.h>

#include <limits>
#include <thread>
#include <type_traits>
#include <utility>
#include <vector>

namespace {

constexpr float infinity = std::numeric_limits<float>::infinity();
constexpr float notANumber = std::numeric_limits<float>::quiet_NaN();

static_assert(std::is_trivially_copyable_v<ExprNode>);
static_assert(std::is_nothrow_move_constructible_v<KWOwnedTree>);

KWOwnedTree leaf(float value) {
    return KWOwnedTree(reference::constant(value));
}

KWOwnedTree node(int code, KWOwnedTree left, KWOwnedTree right = nullptr) {
    return KWOwnedTree(reference::made(code, left.release(), right.release()));
}

KWOwnedTree parsed(const std::string& text) {
    KWOwnedTree tree(NewNode());
    std::int16_t err = 0;
    ConstructTree(tree.get(), text.c_str(), static_cast<std::int16_t>(text.size()), &err);
    EXPECT_EQ(err, 0) << text;
    return tree;
}

struct Result {
    float value;
    int err;
};

Result computed(const ExprNode* tree, float x = 0, float y = 0) {
    std::int16_t err = 0;
    const float value = ComputeTree(tree, x, y, &err);
    return {value, err};
}

void expectComputes(const KWOwnedTree& tree, float value, float x = 0, float y = 0) {
    const Result result = computed(tree.get(), x, y);
    EXPECT_EQ(std::bit_cast<std::uint32_t>(result.value), std::bit_cast<std::uint32_t>(value))
        << reference::described(tree.get()) << " is " << result.value;
    EXPECT_EQ(result.err, 0) << reference::described(tree.get());
}

void expectComputes(const std::string& text, float value, float x = 0, float y = 0) {
    expectComputes(parsed(text), value, x, y);
}

void expectFault(const KWOwnedTree& tree, int err, float x = 0, float y = 0) {
    const Result result = computed(tree.get(), x, y);
    EXPECT_EQ(std::bit_cast<std::uint32_t>(result.value), 0u) << reference::described(tree.get());
    EXPECT_EQ(result.err, err) << reference::described(tree.get());
}

void expectNaN(const KWOwnedTree& tree) {
    const Result result = computed(tree.get());
    EXPECT_TRUE(std::isnan(result.value)) << reference::described(tree.get());
    EXPECT_EQ(result.err, 0) << reference::described(tree.get());
}

/// Trees of any height.
bool areTallTreesEqual(const ExprNode* a, const ExprNode* b) {
    std::vector<std::pair<const ExprNode*, const ExprNode*>> pending{{a, b}};
    while (!pending.empty()) {
        const auto [left, right] = pending.back();
        pending.pop_back();
        if (!left || !right) {
            if (left != right)
                return false;
            continue;
        }
        if (left == right || left->code != right->code || left->value != right->value)
            return false;
        pending.emplace_back(left->left, right->left);
        pending.emplace_back(left->right, right->right);
    }
    return true;
}

} // namespace

TEST(KWExpressionTree, ANewNodeIsTheConstantZero) {
    const KWOwnedTree tree(NewNode());
    EXPECT_EQ(tree->code, KWExpressionConstant);
    EXPECT_EQ(std::bit_cast<std::uint32_t>(tree->value), 0u);
    EXPECT_EQ(tree->left, nullptr);
    EXPECT_EQ(tree->right, nullptr);
}

TEST(KWExpressionTree, NothingIsCopiedAndFreed) {
    KWDeleteNode(nullptr);
    EXPECT_EQ(CopyNode(nullptr), nullptr);
}

TEST(KWExpressionTree, ACopyHasNodesOfItsOwn) {
    const KWOwnedTree tree = parsed("sin(2*x)+y/3");
    const KWOwnedTree copy(CopyNode(tree.get()));
    EXPECT_TRUE(areTallTreesEqual(tree.get(), copy.get()));
}

TEST(KWExpressionTree, ACopyKeepsWhatNoParserMakes) {
    reference::Random random(1);
    for (int i = 0; i < 2000; ++i) {
        const KWOwnedTree tree(reference::tree(random, 1 + i % 8, true));
        const KWOwnedTree copy(CopyNode(tree.get()));
        ASSERT_TRUE(reference::areEqual(tree.get(), copy.get()));
    }
}

TEST(KWExpressionTree, APartOfAStringHasBothItsEnds) {
    const auto part = [](int first, int last) {
        const std::unique_ptr<char[]> copy(CopyPartialString(
            "sin(x)", static_cast<std::int16_t>(first), static_cast<std::int16_t>(last)));
        return copy ? std::string(copy.get()) : "null";
    };
    EXPECT_EQ(part(0, 5), "sin(x)");
    EXPECT_EQ(part(4, 4), "x");
    EXPECT_EQ(part(4, 3), "");
    EXPECT_EQ(part(4, 2), "null");
    EXPECT_EQ(part(32767, -32768), "null");
}

TEST(KWExpressionTree, AWholePowerIsARepeatedProduct) {
    EXPECT_EQ(PuisInt(2, 10), 1024.0f);
    EXPECT_EQ(PuisInt(-3, 3), -27.0f);
    EXPECT_EQ(PuisInt(5, 0), 1.0f);
    EXPECT_EQ(PuisInt(5, -2), 1.0f);
    EXPECT_EQ(PuisInt(10, 32767), infinity);
    float product = 1;
    for (int i = 0; i < 9; ++i)
        product *= 1.1f;
    EXPECT_EQ(PuisInt(1.1f, 9), product);
}

TEST(KWExpressionTree, VariablesAndConstantsAreTheirValues) {
    expectComputes("x", 3, 3, 4);
    expectComputes("y", 4, 3, 4);
    expectComputes("2.5", 2.5f, 3, 4);
    EXPECT_TRUE(std::isnan(computed(parsed("x").get(), notANumber).value));
}

TEST(KWExpressionTree, OperatorsComputeInSinglePrecision) {
    expectComputes("x+y", 0.1f + 0.2f, 0.1f, 0.2f);
    expectComputes("x-y", 16777216.0f - 0.3f, 16777216.0f, 0.3f);
    expectComputes("x*y", 1.1f * 1.3f, 1.1f, 1.3f);
    expectComputes("x/y", 1.0f / 3.0f, 1, 3);
    expectComputes("1+2+3", 6);
    expectComputes("8/4/2", 1);
    expectComputes("2^3^2", 64);
    expectComputes("(-3)*2", -2);
    expectComputes("sin(x)^2", std::sin(1.0f) * std::sin(1.0f), 1);
}

TEST(KWExpressionTree, FunctionsAreThoseOfTheCLibrary) {
    volatile float given = 0.7f; // a compiler's own constant may have other bits
    const float x = given;
    expectComputes("exp(x)", ::expf(x), x);
    expectComputes("ln(x)", ::logf(x), x);
    expectComputes("log(x)", ::log10f(x), x);
    expectComputes("sqrt(x)", ::sqrtf(x), x);
    expectComputes("abs(-x)", x, x);
    expectComputes("sin(x)", ::sinf(x), x);
    expectComputes("cos(x)", ::cosf(x), x);
    expectComputes("tan(x)", ::tanf(x), x);
    expectComputes("asin(x)", ::asinf(x), x);
    expectComputes("acos(x)", ::acosf(x), x);
    expectComputes("atan(x)", ::atanf(x), x);
    expectComputes("sinh(x)", ::sinhf(x), x);
    expectComputes("cosh(x)", ::coshf(x), x);
    expectComputes("tanh(x)", ::tanhf(x), x);
}

TEST(KWExpressionTree, ADivisionByZeroIsAFault) {
    expectFault(parsed("1/0"), 1);
    expectFault(parsed("1/x"), 1, -0.0f);
    expectFault(parsed("0/0"), 1);
    expectFault(parsed("5+1/(x-x)"), 1, 3);
    expectFault(node(4, leaf(1)), 1);
}

TEST(KWExpressionTree, ALogarithmOfZeroOrLessIsAFault) {
    for (const char* text : {"ln(x)", "log(x)"}) {
        expectFault(parsed(text), 1, 0);
        expectFault(parsed(text), 1, -0.0f);
        expectFault(parsed(text), 2, -1);
        expectFault(parsed(text), 2, -infinity);
    }
    expectNaN(node(7, leaf(notANumber)));
    expectNaN(node(8, leaf(notANumber)));
}

TEST(KWExpressionTree, ASquareRootOfANegativeNumberIsAFault) {
    expectFault(parsed("sqrt(x)"), 2, -1);
    expectComputes("sqrt(x)", -0.0f, -0.0f);
    expectNaN(node(9, leaf(notANumber)));
}

TEST(KWExpressionTree, ANegativeBaseNeedsAWholeExponent) {
    expectFault(parsed("x^(1/3)"), 2, -8);
    expectComputes("x^3", -8, -2);
    expectComputes("x^y", 0.25f, -2, -2);
    expectComputes("x^y", 1, -2, 0);
    expectFault(parsed("x^y"), 2, -2, notANumber);
    expectFault(parsed("x^y"), 2, -2, infinity);
    expectFault(parsed("x^y"), 2, -1, 0.5f);
}

TEST(KWExpressionTree, AnExponentBeyond32BitsIsNotWhole) {
    expectFault(parsed("x^y"), 2, -1, 2147483648.0f);
    expectComputes("x^y", 1, -1, 2147483520.0f);
    expectComputes("x^y", 1, -1, -2147483648.0f);
    expectFault(parsed("x^y"), 2, -1, -2147483904.0f);
    expectComputes("x^y", infinity, 2, 1e20f);
}

TEST(KWExpressionTree, APowerIsComputedInDoublePrecisionAndNarrowed) {
    const KWOwnedTree tree = parsed("x^y");
    reference::Random random(3);
    bool anyDiffers = false;
    for (int i = 0; i < 20000; ++i) {
        const float x = static_cast<float>(random() % 100000) / 1000;
        const float y = static_cast<float>(random() % 20000) / 1000 - 10;
        const auto narrowed =
            static_cast<float>(::pow(static_cast<double>(x), static_cast<double>(y)));
        ASSERT_EQ(computed(tree.get(), x, y).value, narrowed) << x << ", " << y;
        anyDiffers |= ::powf(x, y) != narrowed;
    }
    EXPECT_TRUE(anyDiffers) << "numbers that tell the precisions apart";
    expectComputes("0^0", 1);
    expectComputes("0^(-1)", infinity);
    expectComputes("x^y", infinity, 1e30f, 2);
    expectComputes("x^y", 1, notANumber, 0);
}

TEST(KWExpressionTree, AnArgumentOutOfRangeOfAnInverseFunctionIsNotANumber) {
    expectNaN(parsed("asin(2)"));
    expectNaN(parsed("acos(2)"));
}

TEST(KWExpressionTree, AFaultOnTheLeftKeepsTheRightFromBeingEvaluated) {
    expectFault(parsed("1/0+sqrt(-1)"), 1);
    expectFault(parsed("sqrt(-1)+1/0"), 2);
    expectFault(parsed("1+(2*(ln(0)+sqrt(-1)))"), 1);
    expectFault(parsed("x+1/0"), 1);
}

TEST(KWExpressionTree, AFaultThatIsThereKeepsOperatorsFromBeingEvaluated) {
    std::int16_t err = 2;
    EXPECT_EQ(ComputeTree(parsed("1/0").get(), 0, 0, &err), 0.0f);
    EXPECT_EQ(err, 2);
    EXPECT_EQ(ComputeTree(parsed("x+1").get(), 5, 0, &err), 0.0f);
    EXPECT_EQ(ComputeTree(parsed("sin(x)").get(), 5, 0, &err), 0.0f);
    EXPECT_EQ(ComputeTree(parsed("x").get(), 5, 0, &err), 5.0f);
    EXPECT_EQ(ComputeTree(parsed("7").get(), 5, 0, &err), 7.0f);
    EXPECT_EQ(err, 2);
}

TEST(KWExpressionTree, AMissingRightOperandIsZero) {
    expectComputes(node(1, leaf(3)), 3);
    expectComputes(node(3, leaf(3)), 0);
    expectComputes(node(5, leaf(3)), 1);
}

TEST(KWExpressionTree, AMissingLeftOperandIsAFault) {
    expectFault(node(1, nullptr, leaf(3)), 2);
    expectFault(node(11, nullptr), 2);
    expectFault(node(1, leaf(2), node(3, nullptr, parsed("1/0"))), 2);
}

TEST(KWExpressionTree, NoTreeIsZeroWithoutAFault) {
    expectComputes(KWOwnedTree(), 0);
}

TEST(KWExpressionTree, AnUnknownKindIsZero) {
    expectComputes(node(20, leaf(3), leaf(4)), 0);
    expectComputes(node(-3, leaf(3)), 0);
    expectFault(node(20, leaf(3), parsed("1/0")), 1);
    expectFault(node(20, nullptr), 2);
}

TEST(KWExpressionTree, ARightOperandOfAFunctionIsEvaluated) {
    expectComputes(node(10, leaf(-3), leaf(4)), 3);
    expectFault(node(10, leaf(-3), parsed("1/0")), 1);
}

TEST(KWExpressionTree, RandomTreesComputeAsThePlainWalkDoes) {
    reference::Random random(2);
    static const float arguments[] = {0,      -0.0f, 1,       -1,       0.5f,      2,
                                      -3.25f, 1e10f, -1e-10f, infinity, notANumber};
    for (int i = 0; i < 20000; ++i) {
        const KWOwnedTree tree(reference::tree(random, 1 + i % 9));
        const float x = arguments[random() % std::size(arguments)];
        const float y = arguments[random() % std::size(arguments)];
        std::int16_t plainErr = i % 50 == 0 ? 5 : 0;
        std::int16_t err = plainErr;
        const float plain = reference::compute(tree.get(), x, y, &plainErr);
        const float value = ComputeTree(tree.get(), x, y, &err);
        ASSERT_EQ(err, plainErr) << reference::described(tree.get());
        ASSERT_TRUE(std::bit_cast<std::uint32_t>(value) == std::bit_cast<std::uint32_t>(plain) ||
                    (std::isnan(value) && std::isnan(plain)))
            << reference::described(tree.get()) << " at " << x << ", " << y << ": " << value
            << " for " << plain;
    }
}

TEST(KWExpressionTree, TreesOfAMillionLevelsAreEvaluatedCopiedAndFreed) {
    for (reference::Lean lean :
         {reference::Lean::left, reference::Lean::right, reference::Lean::zigzag}) {
        const KWOwnedTree sum(reference::chain(KWExpressionAdd, levelsBeyondTheStack, lean));
        expectComputes(sum, levelsBeyondTheStack + 2, 2);
        const KWOwnedTree copy(CopyNode(sum.get()));
        EXPECT_TRUE(areTallTreesEqual(sum.get(), copy.get()));
    }
    const KWOwnedTree nested(
        reference::chain(KWExpressionAbs, levelsBeyondTheStack, reference::Lean::left));
    expectComputes(nested, 7, -7);
    const KWOwnedTree copy(CopyNode(nested.get()));
    EXPECT_TRUE(areTallTreesEqual(nested.get(), copy.get()));
}

TEST(KWExpressionTree, TheLongestTextIsEvaluatedCopiedAndFreed) {
    std::string text = "1";
    while (text.size() < 32767)
        text += "+t";
    const KWOwnedTree tree = parsed(text);
    expectComputes(tree, 16384, 1);
    const KWOwnedTree copy(CopyNode(tree.get()));
    expectComputes(copy, 32767, 2);
}

TEST(KWExpressionTree, ANodeThatIsMadeAnewIsEmptyWhateverWasFreedBefore) {
    for (int round = 0; round < 3; ++round) {
        std::vector<KWOwnedTree> nodes;
        for (int k = 0; k < 200; ++k) {
            ExprNode* const node = NewNode();
            ASSERT_EQ(node->code, KWExpressionConstant);
            ASSERT_EQ(node->value, 0);
            ASSERT_EQ(node->left, nullptr);
            ASSERT_EQ(node->right, nullptr);
            nodes.emplace_back(node);
            node->code = KWExpressionAdd;
            node->value = 3;
            node->left = NewNode();
            node->right = NewNode();
        }
    }
}

TEST(KWExpressionTree, ATreeMayBeFreedByAnotherThreadAndAfterIt) {
    KWOwnedTree tree(NewNode());
    std::thread([&] {
        tree->left = NewNode();
        KWOwnedTree other(NewNode());
        std::swap(tree, other);
    }).join();
    std::thread([owned = std::move(tree)] {}).join();
}
