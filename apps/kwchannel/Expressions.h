#pragma once

#include <KWBase/KWAlgebricInterpreter.h>

#include <apps/common/Errors.h>
#include <apps/common/Json.h>
#include <apps/common/Output.h>

#include <string>

// Expressions for people: why one is refused, and what it is made of.

/// A text that is no expression.
class ExpressionError : public DataError {
  public:
    ExpressionError(const std::string& text, const KWExpressionFault& fault);

    /// Two lines, the text or what of it is around the place where reading gave up, and a caret
    /// under that place. Every character counts as one column.
    const std::string& excerpt() const { return _excerpt; }

  private:
    std::string _excerpt;
};

/// ExpressionError for a text that an interpreter would refuse.
void checkExpression(const std::string& text, std::int32_t mode);

/// Gives an interpreter the expression. ExpressionError for a text that it refuses.
void setExpression(KWAlgebricInterpreter& interpreter, const std::string& text, std::int32_t mode);

/// The derivative of a tree. DataError, with the reason, where there is none.
KWOwnedTree derivativeOf(const ExprNode& tree);

/// The text of a tree, as an interpreter of this mode prints it.
std::string printedTree(const ExprNode& tree, std::int32_t mode);

/// Draws a tree, a line for each node. What lies deeper than 40 nodes is drawn further down, so
/// that lines stay short.
void drawTree(const ExprNode& tree, std::int32_t mode, Output& output);

/// The nodes of a tree from its root downwards, operands from left to right: a list, as a long
/// chain would be nested too deep for most readers. Operands are named by their places in it.
/// DataError for more than 100,000 nodes.
Json treeJson(const ExprNode& tree, std::int32_t mode);

/// What ComputeTree's fault means; "" for none.
std::string evaluationFault(std::int16_t error);
