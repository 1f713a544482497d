#include <KWBase/KWExpressionCode.h>
#include <KWBase/KWExpressionStack.h>
#include <KWBase/KWExpressionTree.h>

#include <cmath>
#include <cstring>
#include <new>
#include <utility>

namespace {

// Freed nodes are kept for the next tree, some for each thread, linked by their right sides: a text
// that is read again and again, as while it is typed, costs no allocation for each node. The
// address sanitizer would not see the use of a node that is kept.
#if defined(__has_feature)
#if __has_feature(address_sanitizer)
#define __SANITIZE_ADDRESS__ 1 // as gcc has it
#endif
#endif
#ifdef __SANITIZE_ADDRESS__
constexpr std::size_t mostSpareNodes = 0;
#else
constexpr std::size_t mostSpareNodes = 64;
#endif
constinit thread_local ExprNode* spareNodes = nullptr;
constinit thread_local std::size_t spareNodeCount = 0;

struct SpareNodesOfThread {
    // Trees that are freed still later are freed at once.
    ~SpareNodesOfThread() {
        spareNodeCount = mostSpareNodes;
        while (spareNodes)
            delete std::exchange(spareNodes, spareNodes->right);
    }
};

ExprNode* takeSpareNode() {
    if (!spareNodes)
        return nullptr;
    --spareNodeCount;
    return std::exchange(spareNodes, spareNodes->right);
}

/// False when there are enough.
bool keepSpareNode(ExprNode* node) {
    if (spareNodeCount == mostSpareNodes)
        return false;
    static thread_local const SpareNodesOfThread freedAtTheEnd;
    static_cast<void>(freedAtTheEnd);
    node->right = std::exchange(spareNodes, node);
    ++spareNodeCount;
    return true;
}

} // namespace

inline namespace KWExpressions {

ExprNode* NewNode() {
    ExprNode* const node = takeSpareNode();
    if (!node)
        return new ExprNode{};
    *node = {};
    return node;
}

void KWDeleteNode(ExprNode* node) {
    // Freeing must not need memory, so the left sides are hung below the right ones on the way.
    while (node) {
        if (ExprNode* left = node->left) {
            node->left = left->right;
            left->right = node;
            node = left;
        } else {
            ExprNode* right = node->right;
            if (!keepSpareNode(node))
                delete node;
            node = right;
        }
    }
}

ExprNode* CopyNode(const ExprNode* node) {
    if (!node)
        return nullptr;
    struct Pending {
        const ExprNode* source;
        ExprNode* copy;
    };
    KWExpressionStack<Pending, 32> pending;
    KWOwnedTree root(NewNode());
    ExprNode* copy = root.get();
    for (;;) {
        copy->code = node->code;
        copy->value = node->value;
        if (node->right) {
            copy->right = NewNode();
            pending.push({node->right, copy->right});
        }
        if (node->left) {
            copy = copy->left = NewNode();
            node = node->left;
        } else if (!pending.isEmpty()) {
            const Pending next = pending.pop();
            node = next.source;
            copy = next.copy;
        } else {
            return root.release();
        }
    }
}

char* CopyPartialString(const char* string, std::int16_t first, std::int16_t last) {
    const int count = last - first + 1;
    if (count < 0)
        return nullptr;
    char* copy = new (std::nothrow) char[static_cast<std::size_t>(count) + 1];
    if (!copy)
        return nullptr;
    std::memcpy(copy, string + first, static_cast<std::size_t>(count));
    copy[count] = 0;
    return copy;
}

float PuisInt(float base, std::int16_t exponent) {
    float power = 1;
    for (int i = 0; i < exponent; ++i)
        power *= base;
    return power;
}

namespace {

bool isLeaf(std::int16_t code) {
    return code <= KWExpressionConstant && code >= KWExpressionSecondVariable;
}

float fault(std::int16_t* err, std::int16_t code) {
    *err = code;
    return 0;
}

float power(float base, float exponent, std::int16_t* err) {
    if (base < 0 && !KWExpressionIsWhole(exponent))
        return fault(err, KWExpressionOutsideDomain);
    return KWExpressionRaised(base, exponent);
}

float applied(std::int16_t code, float a, float b, std::int16_t* err) {
    switch (code) {
    case KWExpressionAdd:
        return a + b;
    case KWExpressionSubtract:
        return a - b;
    case KWExpressionMultiply:
        return a * b;
    case KWExpressionDivide:
        return b == 0 ? fault(err, KWExpressionDivisionByZero) : a / b;
    case KWExpressionPower:
        return power(a, b, err);
    case KWExpressionExp:
        return std::exp(a);
    case KWExpressionLn:
    case KWExpressionLog:
        if (a == 0)
            return fault(err, KWExpressionDivisionByZero);
        if (a < 0)
            return fault(err, KWExpressionOutsideDomain);
        return code == KWExpressionLn ? std::log(a) : std::log10(a);
    case KWExpressionSqrt:
        return a < 0 ? fault(err, KWExpressionOutsideDomain) : std::sqrt(a);
    case KWExpressionAbs:
        return std::fabs(a);
    case KWExpressionSin:
        return std::sin(a);
    case KWExpressionCos:
        return std::cos(a);
    case KWExpressionTan:
        return std::tan(a);
    case KWExpressionAsin:
        return std::asin(a);
    case KWExpressionAcos:
        return std::acos(a);
    case KWExpressionAtan:
        return std::atan(a);
    case KWExpressionSinh:
        return std::sinh(a);
    case KWExpressionCosh:
        return std::cosh(a);
    case KWExpressionTanh:
        return std::tanh(a);
    default:
        return 0;
    }
}

/// An operator or function whose operands are being evaluated.
struct Pending {
    const ExprNode* node;
    float left;
    bool isLeftKnown;
};

} // namespace

float ComputeTree(const ExprNode* node, float x, float y, std::int16_t* err) {
    if (!node || (*err != 0 && !isLeaf(node->code)))
        return 0;
    KWExpressionStack<Pending, 64> pending;
    for (;;) {
        while (!isLeaf(node->code)) {
            pending.push({node, 0, false});
            node = node->left;
            if (!node)
                return fault(err, KWExpressionOutsideDomain);
        }
        float value = node->code == KWExpressionConstant        ? node->value
                      : node->code == KWExpressionFirstVariable ? x
                                                                : y;
        for (;;) {
            if (pending.isEmpty())
                return KWExpressionResult(value);
            Pending& top = pending.top();
            if (!top.isLeftKnown && top.node->right) {
                top.left = value;
                top.isLeftKnown = true;
                node = top.node->right;
                break;
            }
            value = top.isLeftKnown ? applied(top.node->code, top.left, value, err)
                                    : applied(top.node->code, value, 0, err);
            if (*err != 0)
                return 0;
            pending.pop();
        }
    }
}

} // namespace KWExpressions
