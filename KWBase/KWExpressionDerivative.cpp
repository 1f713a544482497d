#include <KWBase/KWExpressionStack.h>
#include <KWBase/KWExpressionText.h>
#include <KWBase/KWExpressionTree.h>

#include <algorithm>
#include <utility>

namespace {

/// How many nodes a tree has, and how many its derivative would have; 0 for none.
struct Sizes {
    std::uint64_t tree;
    std::uint64_t derivative;
};

constexpr std::uint64_t beyondMaximum = KWDerivativeMaximumNodes + 1;

std::uint64_t sizeOfFirstProduct(Sizes left, Sizes right) {
    return 1 + left.derivative + right.tree;
}

std::uint64_t sizeOfSecondProduct(Sizes left, Sizes right) {
    return 1 + left.tree + right.derivative;
}

std::uint64_t sizeOfNumerator(Sizes left, Sizes right) {
    return 1 + sizeOfFirstProduct(left, right) + sizeOfSecondProduct(left, right);
}

std::uint64_t sizeOfDenominator(Sizes right) {
    return 2 + right.tree;
}

std::uint64_t sizeOfDerivative(std::int16_t code, Sizes left, Sizes right) {
    switch (code) {
    case KWExpressionConstant:
    case KWExpressionFirstVariable:
    case KWExpressionSecondVariable:
        return 1;
    case KWExpressionAdd:
    case KWExpressionSubtract:
        return 1 + left.derivative + right.derivative;
    case KWExpressionMultiply:
        return sizeOfNumerator(left, right);
    case KWExpressionDivide:
        return 1 + sizeOfNumerator(left, right) + sizeOfDenominator(right);
    case KWExpressionPower:
        return 4 + right.tree + left.derivative + left.tree;
    case KWExpressionExp:
        return 2 + left.derivative + left.tree + right.tree;
    case KWExpressionLn:
        return 1 + left.derivative + left.tree;
    case KWExpressionLog:
        return 4 + left.derivative + left.tree;
    case KWExpressionSqrt:
        return 3 + left.derivative + left.tree;
    case KWExpressionAbs:
        return left.derivative;
    case KWExpressionSin:
        return 2 + left.derivative + left.tree;
    case KWExpressionCos:
        return 4 + left.derivative + left.tree;
    default:
        return 0;
    }
}

Sizes sizesOf(const ExprNode* node) {
    struct Pending {
        const ExprNode* node;
        Sizes left;
        bool isLeftKnown;
    };
    KWExpressionStack<Pending, 64> pending;
    for (;;) {
        for (; node; node = node->left)
            pending.push({node, {0, 0}, false});
        Sizes sizes{0, 0};
        for (;;) {
            if (pending.isEmpty())
                return sizes;
            Pending& top = pending.top();
            if (!top.isLeftKnown) {
                top.left = sizes;
                top.isLeftKnown = true;
                node = top.node->right;
                break;
            }
            const std::uint64_t derivative = sizeOfDerivative(top.node->code, top.left, sizes);
            sizes = {1 + top.left.tree + sizes.tree, std::min(derivative, beyondMaximum)};
            pending.pop();
        }
    }
}

/// Builds the shapes from the root downwards; each node hangs in the result before the next is
/// made, so nothing is lost when memory ends.
class Derivation {
  public:
    using Slot = ExprNode*&;
    /// The rest of a derivative is made by `finish`.
    Derivation() : _result(NewNode()) {}

    /// Where the root belongs.
    Slot root() { return _result->left; }

    ExprNode* finish() {
        while (!_pending.isEmpty()) {
            const Pending next = _pending.pop();
            derive(next.source, *next.slot);
        }
        return std::exchange(_result->left, nullptr);
    }

    /// The derivative of `source`, later.
    void push(const ExprNode* source, Slot slot) {
        if (source)
            _pending.push({source, &slot});
    }

    void firstProduct(const ExprNode& node, Slot slot) {
        make(slot, KWExpressionMultiply);
        push(node.left, slot->left);
        slot->right = CopyNode(node.right);
    }

    void secondProduct(const ExprNode& node, Slot slot) {
        make(slot, KWExpressionMultiply);
        slot->left = CopyNode(node.left);
        push(node.right, slot->right);
    }

    void numerator(const ExprNode& node, Slot slot) {
        make(slot, KWExpressionSubtract);
        firstProduct(node, slot->left);
        secondProduct(node, slot->right);
    }

    void denominator(const ExprNode& node, Slot slot) {
        make(slot, KWExpressionPower);
        slot->left = CopyNode(node.right);
        makeConstant(slot->right, 2);
    }

  private:
    struct Pending {
        const ExprNode* source;
        ExprNode** slot;
    };

    static void make(Slot slot, std::int16_t code) {
        slot = NewNode();
        slot->code = code;
    }

    static void makeConstant(Slot slot, float value) {
        slot = NewNode();
        slot->value = value;
    }

    static void makeFunction(Slot slot, std::int16_t code, const ExprNode* argument) {
        make(slot, code);
        slot->left = CopyNode(argument);
    }

    void derive(const ExprNode* node, Slot slot) {
        while (node && node->code == KWExpressionAbs)
            node = node->left;
        if (!node)
            return;
        if (node->code > KWExpressionPower)
            deriveFunction(*node, slot);
        else
            deriveOperator(*node, slot);
    }

    void deriveOperator(const ExprNode& node, Slot slot) {
        switch (node.code) {
        case KWExpressionConstant:
            return makeConstant(slot, 0);
        case KWExpressionFirstVariable:
        case KWExpressionSecondVariable:
            return makeConstant(slot, 1);
        case KWExpressionAdd:
        case KWExpressionSubtract:
            make(slot, node.code);
            push(node.left, slot->left);
            return push(node.right, slot->right);
        case KWExpressionMultiply:
            make(slot, KWExpressionAdd);
            firstProduct(node, slot->left);
            return secondProduct(node, slot->right);
        case KWExpressionDivide:
            make(slot, KWExpressionDivide);
            numerator(node, slot->left);
            return denominator(node, slot->right);
        case KWExpressionPower:
            return derivePower(node, slot);
        default:
            return;
        }
    }

    void derivePower(const ExprNode& node, Slot slot) {
        make(slot, KWExpressionMultiply);
        make(slot->left, KWExpressionMultiply);
        slot->left->left = CopyNode(node.right);
        push(node.left, slot->left->right);
        makeFunction(slot->right, KWExpressionPower, node.left);
        makeConstant(slot->right->right, (node.right ? node.right->value : 0) - 1);
    }

    void deriveFunction(const ExprNode& node, Slot slot) {
        const ExprNode* argument = node.left;
        switch (node.code) {
        case KWExpressionExp:
            make(slot, KWExpressionMultiply);
            push(argument, slot->left);
            slot->right = CopyNode(&node);
            return;
        case KWExpressionLn:
            return deriveQuotient(argument, slot);
        case KWExpressionLog:
            make(slot, KWExpressionMultiply);
            make(slot->left, KWExpressionLn);
            makeConstant(slot->left->left, 0.1f);
            return deriveQuotient(argument, slot->right);
        case KWExpressionSqrt:
            make(slot, KWExpressionDivide);
            push(argument, slot->left);
            make(slot->right, KWExpressionMultiply);
            makeConstant(slot->right->left, 2);
            slot->right->right = CopyNode(argument);
            return;
        case KWExpressionSin:
            make(slot, KWExpressionMultiply);
            push(argument, slot->left);
            return makeFunction(slot->right, KWExpressionCos, argument);
        case KWExpressionCos:
            make(slot, KWExpressionMultiply);
            make(slot->left, KWExpressionSubtract);
            makeConstant(slot->left->left, 0);
            push(argument, slot->left->right);
            return makeFunction(slot->right, KWExpressionSin, argument);
        default:
            return;
        }
    }

    /// u' / u
    void deriveQuotient(const ExprNode* argument, Slot slot) {
        make(slot, KWExpressionDivide);
        push(argument, slot->left);
        slot->right = CopyNode(argument);
    }

    KWOwnedTree _result;
    KWExpressionStack<Pending, 32> _pending;
};

} // namespace

inline namespace KWExpressions {

ExprNode* Deriv_arbre(const ExprNode* node) {
    const std::uint64_t size = sizesOf(node).derivative;
    if (size == 0 || size > KWDerivativeMaximumNodes)
        return nullptr;
    Derivation derivation;
    derivation.push(node, derivation.root());
    return derivation.finish();
}

ExprNode* Deriv_fpg_arbre(const ExprNode* node) {
    if (!node ||
        sizeOfFirstProduct(sizesOf(node->left), sizesOf(node->right)) > KWDerivativeMaximumNodes)
        return nullptr;
    Derivation derivation;
    derivation.firstProduct(*node, derivation.root());
    return derivation.finish();
}

ExprNode* Deriv_fgp_arbre(const ExprNode* node) {
    if (!node ||
        sizeOfSecondProduct(sizesOf(node->left), sizesOf(node->right)) > KWDerivativeMaximumNodes)
        return nullptr;
    Derivation derivation;
    derivation.secondProduct(*node, derivation.root());
    return derivation.finish();
}

ExprNode* Deriv_frac_num(const ExprNode* node) {
    if (!node ||
        sizeOfNumerator(sizesOf(node->left), sizesOf(node->right)) > KWDerivativeMaximumNodes)
        return nullptr;
    Derivation derivation;
    derivation.numerator(*node, derivation.root());
    return derivation.finish();
}

ExprNode* Deriv_frac_den(const ExprNode* node) {
    if (!node || sizeOfDenominator(sizesOf(node->right)) > KWDerivativeMaximumNodes)
        return nullptr;
    Derivation derivation;
    derivation.denominator(*node, derivation.root());
    return derivation.finish();
}

} // namespace KWExpressions

KWExpressionFault KWFaultInDerivative(const ExprNode* tree, const ExprNode** node) {
    using Kind = KWExpressionFault::Kind;
    KWExpressionStack<const ExprNode*, 64> waiting;
    waiting.push(tree);
    while (!waiting.isEmpty()) {
        const ExprNode* const next = waiting.pop();
        if (!next || next->code > KWExpressionCos || next->code < KWExpressionSecondVariable) {
            if (node)
                *node = next;
            return {Kind::noRule, 0};
        }
        // An exponent is not derived.
        if (next->code >= KWExpressionAdd && next->code < KWExpressionPower)
            waiting.push(next->right);
        if (next->code > KWExpressionConstant)
            waiting.push(next->left);
    }
    return {sizesOf(tree).derivative > KWDerivativeMaximumNodes ? Kind::tooLarge : Kind::none, 0};
}
