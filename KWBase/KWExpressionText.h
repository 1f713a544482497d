#pragma once

#include <KWBase/KWExpressionTree.h>
#include <KWFoundation/KWExport.h>

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

// The text of expressions: from what a user types, in UTF-8, to the bytes that the parser reads,
// and why a text was refused.

/// Lower-case (the letters A to Z, those of Latin-1 and the Greek ones), without spaces. Other
/// blanks at the beginning of a run of characters, after a space or at the start, go too; inside a
/// run they stay.
KW_EXPORT std::string cleanedAlgebricString(std::string_view text);

/// Lower-case as by cleanedAlgebricString, each variable "t" replaced by "x", without spaces. A "t"
/// before "(" and one that begins "tan" stay. Blanks go as in cleanedAlgebricString, and behind a
/// "t" as well.
KW_EXPORT std::string cleanedXStringFromTString(std::string_view text);

/// With a "t" for every "x", whatever it belongs to.
KW_EXPORT std::string tStringFromXString(std::string_view text);

/// Text in the one 8-bit encoding of expressions: ASCII as it is, U+03C0 and U+220F as the byte
/// 0xB8, every other character, and every byte that is no UTF-8, as a "?", which the parser
/// refuses.
KW_EXPORT std::string KWExpressionBytes(std::string_view text);

/// Why a text was refused, and where; or why there is no derivative.
struct KW_EXPORT KWExpressionFault {
    enum class Kind : std::int8_t {
        none,
        parentheses = 1, ///< they do not match
        unknown = 2,     ///< a byte or a word that is not understood
        missing = 3,     ///< nothing there, or nothing on one side of an operator
        tooLong,         ///< more than KWExpressionMaximumLength bytes
        tooDeep,         ///< nested more than KWExpressionMaximumDepth deep
        noText,          ///< nil
        badMode,         ///< a mode that is neither 0 nor 1
        missingOperator, ///< parentheses that match, but not on one side of an operator: 2(t+1)
        noInterpreter,   ///< a channel that an archive gave none
        noRule,          ///< of a derivative: a function or kind that has none
        tooLarge,        ///< of a derivative: more than KWDerivativeMaximumNodes nodes
    };
    Kind kind = Kind::none;
    /// The byte of the text at which reading gave up; its length for what is missing at the end.
    std::size_t position = 0;

    /// What the parser's own code is: 1 to 3; 1 for a missing operator, 2 for text that is too long
    /// or too deep, 0 for none and for what never reached the parser.
    std::int16_t code() const;
    /// A sentence for people, such as "an operand is missing"; "" for none.
    std::string sentence() const;
};

/// ConstructTree over text of any length, with the place of the last fault, which is the one that
/// counts. `position` is a place in `bytes`: of parentheses that do not match, the first without a
/// partner in its part of the text. Text that is too long leaves the node as it was.
KW_EXPORT KWExpressionFault KWParseExpression(ExprNode* node, std::string_view bytes);

/// Why Deriv_arbre answers null for a tree, or a derivative in which operands are missing:
/// `noRule`, `tooLarge`, or none. Of `noRule`, `node` becomes the first node from the left that has
/// no rule, where it is not null. Null, and an operand that the tree itself is missing, count as no
/// rule, and `node` then becomes null.
KW_EXPORT KWExpressionFault KWFaultInDerivative(const ExprNode* tree,
                                                const ExprNode** node = nullptr);

/// What a user typed, made ready for the parser, with the way back to it.
struct KW_EXPORT KWNormalisedText {
    /// `mode` 1 for text in t; with any other the text is in x and y.
    KWNormalisedText(std::string_view text, std::int32_t mode);

    /// What the parser reads.
    std::string bytes;
    /// For each of those, and for the end, the byte of the typed text that it comes from: the first
    /// of its character.
    std::vector<std::uint32_t> origins;
};

/// The bytes of a KWNormalisedText, found in one go, of a text in which each byte is a space or one
/// of ASCII that can be seen, and no capital letter; nil for any other.
KW_EXPORT std::optional<std::string> KWPlainExpressionBytes(std::string_view text,
                                                            std::int32_t mode);
