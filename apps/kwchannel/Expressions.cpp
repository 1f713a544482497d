#include <apps/common/Text.h>
#include <apps/kwchannel/Expressions.h>

#include <array>

namespace {

constexpr std::array kindNames{"number", "add",  "subtract", "multiply", "divide", "power", "exp",
                               "ln",     "log",  "sqrt",     "abs",      "sin",    "cos",   "tan",
                               "asin",   "acos", "atan",     "sinh",     "cosh",   "tanh"};

std::string kindName(std::int16_t code) {
    if (code == KWExpressionFirstVariable || code == KWExpressionSecondVariable)
        return "variable";
    const auto place = static_cast<std::size_t>(code);
    return code >= 0 && place < kindNames.size() ? kindNames[place] : "unknown";
}

std::string variableName(std::int16_t code, std::int32_t mode) {
    return code == KWExpressionSecondVariable ? "y" : mode == KWExpressionModeT ? "t" : "x";
}

std::string nodeText(const ExprNode& node, std::int32_t mode) {
    std::string text = kindName(node.code);
    if (node.code == KWExpressionConstant)
        text += " " + floatText(node.value);
    else if (node.code < 0)
        text += " " + variableName(node.code, mode);
    return text;
}

/// The first `count` characters, or the last.
std::string_view firstColumns(std::string_view text, std::size_t count) {
    std::size_t end = 0;
    for (; end < text.size(); ++end)
        if ((static_cast<unsigned char>(text[end]) & 0xc0) != 0x80 && count-- == 0)
            break;
    return text.substr(0, end);
}

std::string_view lastColumns(std::string_view text, std::size_t count) {
    const std::size_t all = columnCount(text);
    return count < all ? text.substr(firstColumns(text, all - count).size()) : text;
}

std::string excerptOf(std::string_view text, std::size_t position) {
    constexpr std::size_t columnsBefore = 50;
    constexpr std::size_t columnsBehind = 25;
    constexpr std::string_view indent = "  ";
    constexpr std::string_view gap = "...";
    std::string before = printable(text.substr(0, position));
    std::string behind = printable(text.substr(std::min(position, text.size())));
    if (columnCount(before) > columnsBefore)
        before = std::string(gap).append(lastColumns(before, columnsBefore));
    if (columnCount(behind) > columnsBehind)
        behind = std::string(firstColumns(behind, columnsBehind)).append(gap);
    return std::string(indent) + before + behind + "\n" +
           std::string(indent.size() + columnCount(before), ' ') + "^\n";
}

/// Draws one part after the other.
class TreeDrawing {
  public:
    TreeDrawing(std::int32_t mode, Output& output) : _mode(mode), _output(output) {}

    void draw(const ExprNode& tree) {
        drawPart({&tree, ""});
        for (std::size_t k = 0; k < _further.size(); ++k)
            drawPart({_further[k], numbered(k + 1) + " "});
    }

  private:
    struct Entry {
        const ExprNode* node;
        std::string lead; ///< what stands before it on its line
        std::string indent = {};
        std::size_t depth = 0;
    };

    void drawPart(Entry root) {
        constexpr std::size_t deepest = 40;
        std::vector<Entry> waiting{std::move(root)};
        while (!waiting.empty()) {
            const Entry entry = std::move(waiting.back());
            waiting.pop_back();
            const ExprNode& node = *entry.node;
            if (entry.depth == deepest && (node.left || node.right)) {
                _further.push_back(&node);
                _output.write(entry.lead + "-> further down: " + numbered(_further.size()) + "\n");
                continue;
            }
            _output.write(entry.lead + nodeText(node, _mode) + "\n");
            const auto push = [&](const ExprNode* operand, bool isLast) {
                if (operand)
                    waiting.push_back({operand, entry.indent + (isLast ? "└─ " : "├─ "),
                                       entry.indent + (isLast ? "   " : "│  "), entry.depth + 1});
            };
            push(node.right, true);
            push(node.left, !node.right);
        }
    }

    std::int32_t _mode;
    Output& _output;
    std::vector<const ExprNode*> _further;
};

} // namespace

ExpressionError::ExpressionError(const std::string& text, const KWExpressionFault& fault)
    : DataError("the expression cannot be read: " + fault.sentence()),
      _excerpt(excerptOf(text, fault.position)) {}

void checkExpression(const std::string& text, std::int32_t mode) {
    const KWExpressionFault fault = KWAlgebricInterpreter::faultInExpression(text, mode);
    if (fault.kind != KWExpressionFault::Kind::none)
        throw ExpressionError(text, fault);
}

void setExpression(KWAlgebricInterpreter& interpreter, const std::string& text, std::int32_t mode) {
    const KWExpressionFault fault = interpreter.replaceExpressionMode(text, mode);
    if (fault.kind != KWExpressionFault::Kind::none)
        throw ExpressionError(text, fault);
}

KWOwnedTree derivativeOf(const ExprNode& tree) {
    const ExprNode* node = nullptr;
    const KWExpressionFault fault = KWFaultInDerivative(&tree, &node);
    if (node)
        throw DataError("there is no derivative: there is no rule for " + kindName(node->code));
    if (fault.kind != KWExpressionFault::Kind::none)
        throw DataError("there is no derivative: " + fault.sentence());
    return KWOwnedTree(Deriv_arbre(&tree));
}

std::string printedTree(const ExprNode& tree, std::int32_t mode) {
    std::string text;
    WriteTree(&tree, text);
    return mode == KWExpressionModeT ? tStringFromXString(text) : text;
}

void drawTree(const ExprNode& tree, std::int32_t mode, Output& output) {
    TreeDrawing(mode, output).draw(tree);
}

Json treeJson(const ExprNode& tree, std::int32_t mode) {
    // Far more than a text has; a derivative may have millions.
    constexpr std::size_t mostPartsInJson = 100'000;
    Json list = Json::array();
    struct Entry {
        const ExprNode* node;
        std::size_t user; ///< the node that it is an operand of
    };
    std::vector<Entry> waiting{{&tree, 0}};
    while (!waiting.empty()) {
        const auto [node, user] = waiting.back();
        waiting.pop_back();
        const std::size_t place = list.size();
        if (place == mostPartsInJson)
            throw DataError("a tree of more than " + std::to_string(mostPartsInJson) +
                            " parts is not shown as JSON; leave out --tree");
        if (place > 0)
            list[user]["operands"].push_back(place);
        Json entry = {{"kind", kindName(node->code)}, {"code", node->code}};
        if (node->code == KWExpressionConstant)
            entry["value"] = node->value;
        else if (node->code < 0)
            entry["name"] = variableName(node->code, mode);
        list.push_back(std::move(entry));
        for (const ExprNode* operand : {node->right, node->left})
            if (operand)
                waiting.push_back({operand, place});
    }
    return list;
}

std::string evaluationFault(std::int16_t error) {
    switch (error) {
    case 0:
        return "";
    case 1:
        return "division by zero, or the logarithm of zero";
    default:
        return "outside of a function's domain";
    }
}
