#pragma once

#include <KWFoundation/KWExport.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>

// Expressions as trees: one line of algebra in two variables, read from 8-bit text, evaluated in
// single precision, printed, and differentiated. Plain functions without state; any thread may use
// them on trees of its own. Trees may be as high as memory allows: nothing here recurses.

// Short names stand in a namespace, so that a host may have its own; they are called unqualified.
inline namespace KWExpressions {

/// What a node is. 1 to 5 are operators of two operands, 6 to 19 functions of one.
enum : std::int16_t {
    KWExpressionSecondVariable = -2,
    KWExpressionFirstVariable = -1,
    KWExpressionConstant = 0,
    KWExpressionAdd = 1,
    KWExpressionSubtract = 2, ///< a negation is 0 minus the operand
    KWExpressionMultiply = 3,
    KWExpressionDivide = 4,
    KWExpressionPower = 5,
    KWExpressionExp = 6,
    KWExpressionLn = 7,
    KWExpressionLog = 8, ///< decimal
    KWExpressionSqrt = 9,
    KWExpressionAbs = 10,
    KWExpressionSin = 11,
    KWExpressionCos = 12,
    KWExpressionTan = 13,
    KWExpressionAsin = 14,
    KWExpressionAcos = 15,
    KWExpressionAtan = 16,
    KWExpressionSinh = 17,
    KWExpressionCosh = 18,
    KWExpressionTanh = 19,
};

/// A node owns its children. Nodes come from NewNode and CopyNode and go with KWDeleteNode.
struct ExprNode {
    std::int16_t code; ///< one of the kinds above
    float value;       ///< the number of a constant, 0 in every other node that the parser makes
    ExprNode* left;    ///< first operand, or the argument of a function; null in leaves
    ExprNode* right;   ///< second operand; null in leaves and functions
};

/// A new node: the constant 0 without children. The caller owns it.
KW_EXPORT ExprNode* NewNode();

/// Frees a whole tree; null is allowed.
KW_EXPORT void KWDeleteNode(ExprNode* node);

/// Owns a whole tree.
struct KWNodeDeleter {
    void operator()(ExprNode* node) const { KWDeleteNode(node); }
};
using KWOwnedTree = std::unique_ptr<ExprNode, KWNodeDeleter>;

/// A deep copy, which the caller owns; null for null.
KW_EXPORT ExprNode* CopyNode(const ExprNode* node);

/// The bytes `first` to `last` of a string, both included, and a zero byte. The caller frees it
/// with delete[]. Null when there is no memory for it, or when `last` lies more than one before
/// `first`.
KW_EXPORT char* CopyPartialString(const char* string, std::int16_t first, std::int16_t last);

/// The number that begins at `start`: the byte 0xB8 is pi; else an optional "-", digits, and an
/// optional point with digits. Reads up to the first byte that does not belong to it.
KW_EXPORT float CalcValue(const char* string, std::int16_t start);

/// The function whose name begins at `index` of a zero-terminated string: its node kind and the
/// length of the name. The kind is -10 where none begins, and the length then stays as it was. A
/// word in "a" or "c" that is no name leaves both as they were.
KW_EXPORT void FindOperator(std::int16_t* code, std::int16_t* length, const char* string,
                            std::int16_t index);

/// Reads the first `length` bytes of a zero-terminated text, lower-case and without blanks, into
/// `node`, which is fresh from NewNode. Writes a fault into `err` and never clears it: 1 for
/// parentheses that do not match, in the whole or in what is on one side of an operator, 2 for a
/// byte or word that is not understood, or for text nested more than 1,000 deep, 3 for an empty
/// text or a missing operand. What was built before a fault stays with the node.
KW_EXPORT void ConstructTree(ExprNode* node, const char* string, std::int16_t length,
                             std::int16_t* err);

/// The value of a tree at x and y. Writes the first fault on the way, from left to right, into
/// `err`, which the caller sets to 0 and which is never cleared; the value is then 0, and what lies
/// to the right of the fault is not looked at. 1 is a division by zero or the logarithm of zero; 2
/// an argument outside of a function's domain: the logarithm or square root of a negative number, a
/// negative number to a power that is no whole number of 32 bits. NaN is no fault; a value that is
/// one is always the quiet NaN 0x7fc00000, whatever NaNs went in.
///
/// A missing right operand counts as 0. A missing left operand of an operator or function is a
/// fault of code 2. A kind that is none of those above is 0, once its operands have their values.
/// When `err` comes with a fault already, a constant or variable still has its value, and all else
/// is 0. Null is 0 without a fault.
KW_EXPORT float ComputeTree(const ExprNode* node, float x, float y, std::int16_t* err);

/// Appends the text of a tree, with "x" and "y" for the variables and numbers as C's "%g" has them.
///
/// Not everything can be read back as it was: the left operand of a subtraction is not written, the
/// natural logarithm is written "log" and the decimal one "ln", and bars stand around what an
/// absolute value is of. Nothing is written for null.
KW_EXPORT void WriteTree(const ExprNode* node, std::string& buffer);

/// `base` multiplied by itself, in single precision; 1 for an exponent of 0 or less.
KW_EXPORT float PuisInt(float base, std::int16_t exponent);

/// The derivative as a new tree, which the caller owns. Both variables count as the one that is
/// derived by; nothing is simplified. Null where there is no rule: the tangent, the inverse and the
/// hyperbolic functions; such a null below the root is a missing operand.
///
/// Three rules are not those of the books: the factor of log u is ln(0.1), sqrt u gives
/// u'/(2 u), and a power counts its exponent as a constant, -1 for the reduced exponent when it is
/// none. The derivative of abs u is that of u.
///
/// Each product copies its operands, so a long chain of products grows with the square of its
/// length: a result of more than KWDerivativeMaximumNodes nodes is not made, and null is answered.
/// KWFaultInDerivative tells which it was.
KW_EXPORT ExprNode* Deriv_arbre(const ExprNode* node);

// The shapes that recur in derivatives, of a node with operands f and g, as new trees of at most
// KWDerivativeMaximumNodes nodes, else null; null for null.

/// f' g
KW_EXPORT ExprNode* Deriv_fpg_arbre(const ExprNode* node);
/// f g'
KW_EXPORT ExprNode* Deriv_fgp_arbre(const ExprNode* node);
/// f' g - f g'
KW_EXPORT ExprNode* Deriv_frac_num(const ExprNode* node);
/// g ^ 2
KW_EXPORT ExprNode* Deriv_frac_den(const ExprNode* node);

} // namespace KWExpressions

/// The longest text that is read, in bytes, and the deepest nesting of parentheses and functions.
inline constexpr std::size_t KWExpressionMaximumLength = 32767;
inline constexpr int KWExpressionMaximumDepth = 1000;
/// The largest derivative that is made.
inline constexpr std::size_t KWDerivativeMaximumNodes = 4'000'000;
