#include <KWBase/KWExpressionProgram.h>
#include <KWBase/KWExpressionTree.h>

#include <array>
#include <bit>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

// Trees of any shape, as a host may build them, unknown kinds and missing operands included.

namespace {

void require(bool holds) {
    if (!holds)
        std::abort();
}

/// Takes nodes from the bytes in postfix order: each byte a kind, and how many of the trees at hand
/// become its operands.
class Builder {
  public:
    Builder(const std::uint8_t* data, std::size_t size) : _data(data), _size(size) {}

    ExprNode* build() {
        std::vector<ExprNode*> trees;
        while (_size > 0) {
            ExprNode* const node = NewNode();
            const std::uint8_t head = take();
            node->code = static_cast<std::int16_t>(head % 24 - 3);
            if (node->code == KWExpressionConstant || head >= 240)
                node->value = number();
            const auto operand = [&]() -> ExprNode* {
                if (trees.empty())
                    return nullptr;
                ExprNode* const last = trees.back();
                trees.pop_back();
                return last;
            };
            if (head >= 72)
                node->left = operand();
            if (head >= 144)
                node->right = operand();
            trees.push_back(node);
        }
        // What is left over hangs together as sums.
        ExprNode* root = nullptr;
        for (ExprNode* const tree : trees) {
            if (!root) {
                root = tree;
                continue;
            }
            ExprNode* const sum = NewNode();
            sum->code = KWExpressionAdd;
            sum->left = root;
            sum->right = tree;
            root = sum;
        }
        return root;
    }

  private:
    std::uint8_t take() {
        --_size;
        return *_data++;
    }
    float number() {
        std::array<std::uint8_t, 4> bytes{};
        for (std::uint8_t& byte : bytes)
            byte = _size > 0 ? take() : 0;
        return std::bit_cast<float>(bytes);
    }

    const std::uint8_t* _data;
    std::size_t _size;
};

bool isSame(float a, float b) {
    return std::bit_cast<std::uint32_t>(a) == std::bit_cast<std::uint32_t>(b);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    ExprNode* const tree = Builder(data, size).build();
    ExprNode* const copy = CopyNode(tree);
    const KWExpressionProgram program(tree);
    // As many as take blocks, and a rest.
    const std::array<float, 17> xs{0,      -1.5F, 3,    1e38F, -HUGE_VALF,   HUGE_VALF,
                                   NAN,    -NAN,  0.1F, -0.0F, -7.25F,       100,
                                   1e-40F, 119,   1,    -1,    2147483648.0F};
    std::array<float, 17> values{};
    program.evaluate(xs, 0.5F, values);
    for (std::size_t k = 0; k < xs.size(); ++k) {
        std::int16_t wanted = 0;
        std::int16_t found = 0;
        const float value = ComputeTree(tree, xs[k], 0.5F, &wanted);
        require(isSame(value, program.evaluate(xs[k], 0.5F, &found)));
        require(wanted == found);
        require(isSame(value, values[k]));
        std::int16_t ofCopy = 0;
        require(isSame(value, ComputeTree(copy, xs[k], 0.5F, &ofCopy)));
    }
    std::string printed;
    WriteTree(tree, printed);
    std::string again;
    WriteTree(copy, again);
    require(printed == again);
    KWDeleteNode(Deriv_arbre(tree));
    KWDeleteNode(copy);
    KWDeleteNode(tree);
    return 0;
}
