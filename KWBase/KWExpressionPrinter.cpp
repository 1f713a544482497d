#include <KWBase/KWExpressionStack.h>
#include <KWBase/KWExpressionTree.h>

#include <array>
#include <charconv>
#include <string_view>

namespace {

/// Six significant digits, as C's "%g" in the "C" locale.
void appendNumber(std::string& buffer, float value) {
    std::array<char, 32> digits;
    const auto result = std::to_chars(digits.data(), digits.data() + digits.size(),
                                      static_cast<double>(value), std::chars_format::general, 6);
    buffer.append(digits.data(), result.ptr);
}

// The printed names of the logarithms are crossed over; a natural one reads back as a decimal one.
constexpr std::array<std::string_view, 14> functionOpenings{
    "exp(", "log(",  "ln(",   "sqrt(", "|",     "sin(",  "cos(",
    "tan(", "asin(", "acos(", "atan(", "sinh(", "cosh(", "tanh(",
};
constexpr std::array<char, 6> operatorSigns{0, '+', '-', '*', '/', '^'};

bool isFunction(std::int16_t code) {
    return code >= KWExpressionExp && code <= KWExpressionTanh;
}

bool isOperator(std::int16_t code) {
    return code >= KWExpressionAdd && code <= KWExpressionPower;
}

/// Whether the operand is one of the operators up to `last`, and so stands in parentheses.
bool isOperatorUpTo(std::int16_t last, const ExprNode* operand) {
    return operand && operand->code >= KWExpressionAdd && operand->code <= last;
}

bool isLeftWritten(const ExprNode& node) {
    if (node.code == KWExpressionSubtract)
        return node.left && node.left->code != KWExpressionConstant && node.left->value != 0;
    return node.left != nullptr;
}

bool isLeftInParentheses(const ExprNode& node) {
    switch (node.code) {
    case KWExpressionMultiply:
    case KWExpressionDivide:
        return isOperatorUpTo(KWExpressionSubtract, node.left);
    case KWExpressionPower:
        return isOperatorUpTo(KWExpressionDivide, node.left);
    default:
        return false;
    }
}

bool isRightInParentheses(const ExprNode& node) {
    switch (node.code) {
    case KWExpressionSubtract:
    case KWExpressionMultiply:
        return isOperatorUpTo(KWExpressionSubtract, node.right);
    case KWExpressionDivide:
    case KWExpressionPower:
        return isOperatorUpTo(KWExpressionDivide, node.right);
    default:
        return false;
    }
}

/// A node whose text has been begun.
struct Pending {
    const ExprNode* node;
    bool isLeftDone;
};

class Printer {
  public:
    explicit Printer(std::string& buffer) : _buffer(buffer) {}

    void write(const ExprNode* node) {
        begin(node);
        while (!_pending.isEmpty()) {
            Pending& top = _pending.top();
            const ExprNode& written = *top.node;
            if (isOperator(written.code) && !top.isLeftDone) {
                top.isLeftDone = true;
                between(written);
                begin(written.right);
            } else {
                end(written);
                _pending.pop();
            }
        }
    }

  private:
    /// Writes what stands before the first operator that has no text on its left.
    void begin(const ExprNode* node) {
        while (node) {
            if (isOperator(node->code)) {
                if (isLeftInParentheses(*node))
                    _buffer += '(';
            } else if (isFunction(node->code)) {
                _buffer += functionOpenings[static_cast<std::size_t>(node->code - KWExpressionExp)];
            } else {
                writeLeaf(*node);
                return;
            }
            _pending.push({node, false});
            node = isLeftWritten(*node) ? node->left : nullptr;
        }
    }

    void between(const ExprNode& node) {
        if (isLeftInParentheses(node))
            _buffer += ')';
        _buffer += operatorSigns[static_cast<std::size_t>(node.code)];
        if (isRightInParentheses(node))
            _buffer += '(';
    }

    void end(const ExprNode& node) {
        if (isFunction(node.code))
            _buffer += node.code == KWExpressionAbs ? '|' : ')';
        else if (isRightInParentheses(node))
            _buffer += ')';
    }

    void writeLeaf(const ExprNode& node) {
        if (node.code == KWExpressionFirstVariable)
            _buffer += 'x';
        else if (node.code == KWExpressionSecondVariable)
            _buffer += 'y';
        else if (node.code == KWExpressionConstant)
            appendNumber(_buffer, node.value);
    }

    std::string& _buffer;
    KWExpressionStack<Pending, 64> _pending;
};

} // namespace

inline namespace KWExpressions {

void WriteTree(const ExprNode* node, std::string& buffer) {
    Printer(buffer).write(node);
}

} // namespace KWExpressions
