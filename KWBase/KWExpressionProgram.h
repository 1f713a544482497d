#pragma once

#include <KWBase/KWExpressionTree.h>
#include <KWFoundation/KWExport.h>

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

struct KWExpressionInstruction;

/// A tree made ready to be evaluated fast, one value at a time or many. Answers, bit for bit, what
/// ComputeTree answers for the tree, on every processor; every NaN is the quiet one 0x7fc00000.
///
/// The program keeps nothing of the tree. Evaluating writes nothing: any number of threads may do
/// so at once.
class KW_EXPORT KWExpressionProgram {
  public:
    /// Answers 0 everywhere, without a fault.
    KWExpressionProgram();
    /// Null gives the program that answers 0.
    explicit KWExpressionProgram(const ExprNode* tree);
    ~KWExpressionProgram();
    KWExpressionProgram(KWExpressionProgram&&) noexcept;
    KWExpressionProgram& operator=(KWExpressionProgram&&) noexcept;

    /// The value at x and y. The fault, if there is one, goes to `err`, as with ComputeTree; but a
    /// fault that `err` comes with is not looked at, and stays when there is no other.
    float evaluate(float x, float y, std::int16_t* err = nullptr) const;

    /// values[k] = evaluate(xs[k], y), for many x at once by vector instructions. `values` may be
    /// the memory of `xs`, but not overlap it otherwise. std::invalid_argument when the sizes
    /// differ.
    void evaluate(std::span<const float> xs, float y, std::span<float> values) const;

  private:
    enum class Form : std::uint8_t {
        ordinary,
        linear, ///< x * a + b, with the first instruction's numbers
        deep,   ///< needs memory for what is stacked
    };

    std::vector<KWExpressionInstruction> _code;
    const KWExpressionInstruction* _start; ///< never null, also of a program that was moved from
    std::size_t _depth;                    ///< the most values that are stacked at once
    Form _form;
};
