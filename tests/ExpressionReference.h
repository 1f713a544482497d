#pragma once

#include <KWBase/KWExpressionTree.h>

#include <bit>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <random>
#include <string>
#include <vector>

/// The expression engine as plainly as it can be written: every walk recurses, every operand is
/// read from a copy of its own. And random texts and trees to hold the real one against it.
namespace reference {

/// Zero bytes behind a copy, as far as the look-up of a name reads.
inline std::string copied(const std::string& s, int first, int last) {
    std::string copy;
    for (int i = first; i <= last; ++i)
        copy += s[static_cast<std::size_t>(i)];
    return copy + std::string(4, '\0');
}

inline float number(const std::string& s, int start) {
    const auto at = [&s](int i) { return s[static_cast<std::size_t>(i)]; };
    if (at(start) == '\xB8')
        return std::bit_cast<float>(0x40490FDBu);
    bool negated = false;
    if (at(start) == '-') {
        negated = true;
        ++start;
    }
    float value = 0;
    while (at(start) >= '0' && at(start) <= '9') {
        value = value * 10;
        value = value + static_cast<float>(at(start) - '0');
        ++start;
    }
    if (at(start) == '.') {
        ++start;
        for (int k = 1; at(start) >= '0' && at(start) <= '9'; ++k, ++start)
            value = static_cast<float>(value + (at(start) - '0') * std::exp(-k * 2.30258509));
    }
    return negated ? -value : value;
}

inline void findOperator(int& code, int& length, const std::string& s, int index) {
    const auto at = [&s, index](int i) { return s.c_str()[index + i]; };
    const auto set = [&](int c, int l) { code = c, length = l; };
    switch (at(0)) {
    case 'a':
        if (at(1) == 'c')
            set(15, 4);
        if (at(1) == 'b')
            set(10, 3);
        if (at(1) == 's')
            set(14, 4);
        if (at(1) == 't')
            set(16, 4);
        break;
    case 'c':
        if (at(1) == 'h')
            set(18, 2);
        else if (at(1) == 'o' && at(2) == 's' && at(3) == 'h')
            set(18, 4);
        else if (at(1) == 'o' && at(2) == 's')
            set(12, 3);
        break;
    case 'e':
        if (at(1) == 'x' && at(2) == 'p')
            set(6, 3);
        else
            code = -10;
        break;
    case 'l':
        if (at(1) == 'n')
            set(7, 2);
        else if (at(1) == 'o' && at(2) == 'g')
            set(8, 3);
        else
            code = -10;
        break;
    case 's':
        if (at(1) == 'h')
            set(17, 2);
        else if (at(1) == 'q')
            set(9, 4);
        else if (at(3) == 'h')
            set(17, 4);
        else
            set(11, 3);
        break;
    case 't':
        if (at(1) == 'h')
            set(19, 2);
        else if (at(1) == 'a' && at(2) == 'n' && at(3) == 'h')
            set(19, 4);
        else if (at(1) == 'a' && at(2) == 'n')
            set(13, 3);
        else
            code = -10;
        break;
    default:
        code = -10;
    }
}

struct Split {
    int depth = 0;
    int bestDepth = 128;
    int bestPriority = 6;
    int bestCode = 0;
    int split = 0;
    int numberStart = 0;
    int nameLength = 0;
    int unary = 0;
    int code = 0;   // of the look-up
    int length = 0; // of the look-up

    void take(int i, int c, int priority) {
        bestDepth = depth;
        split = i;
        bestCode = c;
        bestPriority = priority;
    }
    bool isBetter(int priority) const {
        return depth < bestDepth || (depth == bestDepth && bestPriority >= priority);
    }
};

/// Answers an error, or 0.
inline int scanned(Split& state, const std::string& s, int len, int depthLimit) {
    int i = 0;
    while (i < len) {
        const int c = static_cast<unsigned char>(s[static_cast<std::size_t>(i)]);
        if ((c >= '0' && c <= '9') || c == 0xB8) {
            if (state.bestPriority > 5) {
                state.numberStart = i;
                state.bestPriority = 5;
            }
        } else if (c >= 'a' && c <= 't') {
            findOperator(state.code, state.length, s, i);
            if (state.code < 0) {
                if (c == 't' || c == 'n') {
                    if (state.bestPriority == 6)
                        state.bestCode = -1;
                } else if (c == 'p' || c == 'r') {
                    if (state.bestPriority == 6)
                        state.bestCode = -2;
                } else {
                    return 2;
                }
            } else {
                if (state.length == 0)
                    return 2;
                if (state.isBetter(4)) {
                    state.take(i, state.code, 4);
                    state.nameLength = state.length;
                }
                i += state.length;
                continue;
            }
        } else if (c == '(') {
            if (++state.depth > depthLimit)
                return 2;
        } else if (c == ')') {
            --state.depth;
        } else if (c == '+') {
            if (state.isBetter(1)) {
                state.take(i, 1, 1);
                state.unary = 0;
            }
        } else if (c == '-') {
            const bool mayNegate = i == 0 ? state.bestPriority == 6 : state.bestPriority > 1;
            if (state.depth <= state.bestDepth) {
                if (i > 0 && s.c_str()[i - 1] != '(') {
                    state.take(i, 2, 1);
                    state.unary = 0;
                } else if (mayNegate) {
                    state.take(i, 2, 1);
                    state.unary = 1;
                }
            }
        } else if (c == '*' || c == '/') {
            if (state.isBetter(2))
                state.take(i, c == '*' ? 3 : 4, 2);
        } else if (c == '^') {
            if (state.isBetter(3))
                state.take(i, 5, 3);
        } else if (c == 'x') {
            if (state.bestPriority == 6)
                state.bestCode = -1;
        } else if (c == 'y') {
            if (state.bestPriority == 6)
                state.bestCode = -2;
        } else if (c != '.') {
            return 2;
        }
        ++i;
    }
    return 0;
}

/// `s` has at least three zero bytes behind it.
inline void construct(ExprNode* node, const std::string& s, int len, std::int16_t& err,
                      int depthLimit = 40000) {
    const auto fail = [&err](int code) { err = static_cast<std::int16_t>(code); };
    if (len < 1)
        return fail(3);
    Split state;
    if (const int error = scanned(state, s, len, depthLimit))
        return fail(error);
    if (state.depth != 0)
        return fail(1);
    if (state.bestPriority == 6) {
        node->code = static_cast<std::int16_t>(state.bestCode);
        return;
    }
    if (state.bestPriority < 5 && state.bestDepth < 0)
        return fail(2);
    if (state.unary == 0 && state.bestPriority == 5) {
        node->value = number(s, state.numberStart);
        return;
    }
    const int split = state.split;
    const int depth = state.bestDepth;
    if (state.unary == 0 && state.bestCode > 5) {
        node->code = static_cast<std::int16_t>(state.bestCode);
        node->left = NewNode();
        const int a = len - split - state.nameLength;
        if (a == depth)
            return fail(3);
        return construct(node->left, copied(s, split + state.nameLength, len - 1), a - depth, err);
    }
    node->code = static_cast<std::int16_t>(state.unary ? 2 : state.bestCode);
    node->left = NewNode();
    node->right = NewNode();
    if (!state.unary) {
        if (split == depth)
            return fail(3);
        construct(node->left, copied(s, depth, split - 1), split - depth, err);
    }
    if (len - split - depth == 1)
        return fail(3);
    construct(node->right, copied(s, split + 1, len - depth - 1), len - split - depth - 1, err);
}

inline KWOwnedTree parsed(const std::string& text, std::int16_t& err) {
    KWOwnedTree tree(NewNode());
    // Nothing lies behind a zero byte.
    std::string copy = text.substr(0, text.find('\0'));
    copy.resize(text.size() + 4);
    construct(tree.get(), copy, static_cast<int>(text.size()), err, 1000);
    return tree;
}

inline float compute(const ExprNode* node, float x, float y, std::int16_t* err) {
    if (node->code == 0)
        return node->value;
    if (node->code == -1)
        return x;
    if (node->code == -2)
        return y;
    const float a = compute(node->left, x, y, err);
    if (*err)
        return 0;
    const float b = node->right ? compute(node->right, x, y, err) : 0;
    if (*err)
        return 0;
    const auto fault = [err](int code) {
        *err = static_cast<std::int16_t>(code);
        return 0.0f;
    };
    switch (node->code) {
    case 1:
        return a + b;
    case 2:
        return a - b;
    case 3:
        return a * b;
    case 4:
        return b == 0 ? fault(1) : a / b;
    case 5: {
        const bool isInRange = b >= -0x1p31f && b < 0x1p31f;
        const bool isIntegral =
            isInRange && static_cast<float>(static_cast<std::int32_t>(b)) - b == 0;
        if (!isIntegral && a < 0)
            return fault(2);
        return static_cast<float>(::pow(static_cast<double>(a), static_cast<double>(b)));
    }
    case 6:
        return ::expf(a);
    case 7:
        return a == 0 ? fault(1) : a < 0 ? fault(2) : ::logf(a);
    case 8:
        return a == 0 ? fault(1) : a < 0 ? fault(2) : ::log10f(a);
    case 9:
        return a < 0 ? fault(2) : ::sqrtf(a);
    case 10:
        return ::fabsf(a);
    case 11:
        return ::sinf(a);
    case 12:
        return ::cosf(a);
    case 13:
        return ::tanf(a);
    case 14:
        return ::asinf(a);
    case 15:
        return ::acosf(a);
    case 16:
        return ::atanf(a);
    case 17:
        return ::sinhf(a);
    case 18:
        return ::coshf(a);
    case 19:
        return ::tanhf(a);
    default:
        return 0;
    }
}

inline std::string written(const ExprNode* node);

inline std::string inParenthesesUpTo(int code, const ExprNode* node) {
    const std::string text = written(node);
    return node && node->code >= 1 && node->code <= code ? "(" + text + ")" : text;
}

/// Needs the locale "C".
inline std::string written(const ExprNode* node) {
    if (!node)
        return "";
    const ExprNode* l = node->left;
    const ExprNode* r = node->right;
    switch (node->code) {
    case -2:
        return "y";
    case -1:
        return "x";
    case 0: {
        char text[64];
        std::snprintf(text, sizeof text, "%g", static_cast<double>(node->value));
        return text;
    }
    case 1:
        return written(l) + "+" + written(r);
    case 2:
        return (l && l->code != 0 && l->value != 0 ? written(l) : "") + "-" +
               inParenthesesUpTo(2, r);
    case 3:
        return inParenthesesUpTo(2, l) + "*" + inParenthesesUpTo(2, r);
    case 4:
        return inParenthesesUpTo(2, l) + "/" + inParenthesesUpTo(4, r);
    case 5:
        return inParenthesesUpTo(4, l) + "^" + inParenthesesUpTo(4, r);
    case 10:
        return "|" + written(l) + "|";
    default:
        break;
    }
    static const char* const names[] = {"exp", "log",  "ln",   "sqrt", "",     "sin",  "cos",
                                        "tan", "asin", "acos", "atan", "sinh", "cosh", "tanh"};
    if (node->code < 6 || node->code > 19)
        return "";
    return std::string(names[node->code - 6]) + "(" + written(l) + ")";
}

inline ExprNode* made(int code, ExprNode* left, ExprNode* right) {
    ExprNode* node = NewNode();
    node->code = static_cast<std::int16_t>(code);
    node->left = left;
    node->right = right;
    return node;
}

inline ExprNode* constant(float value) {
    ExprNode* node = NewNode();
    node->value = value;
    return node;
}

inline ExprNode* copy(const ExprNode* node) {
    if (!node)
        return nullptr;
    ExprNode* result = made(node->code, copy(node->left), copy(node->right));
    result->value = node->value;
    return result;
}

inline ExprNode* derivative(const ExprNode* node) {
    if (!node)
        return nullptr;
    const ExprNode* u = node->left;
    const ExprNode* v = node->right;
    switch (node->code) {
    case 0:
        return constant(0);
    case -1:
    case -2:
        return constant(1);
    case 1:
    case 2:
        return made(node->code, derivative(u), derivative(v));
    case 3:
        return made(1, made(3, derivative(u), copy(v)), made(3, copy(u), derivative(v)));
    case 4:
        return made(4, made(2, made(3, derivative(u), copy(v)), made(3, copy(u), derivative(v))),
                    made(5, copy(v), constant(2)));
    case 5:
        return made(3, made(3, copy(v), derivative(u)),
                    made(5, copy(u), constant((v ? v->value : 0.0f) - 1.0f)));
    case 6:
        return made(3, derivative(u), copy(node));
    case 7:
        return made(4, derivative(u), copy(u));
    case 8:
        return made(3, made(7, constant(std::bit_cast<float>(0x3DCCCCCDu)), nullptr),
                    made(4, derivative(u), copy(u)));
    case 9:
        return made(4, derivative(u), made(3, constant(2), copy(u)));
    case 10:
        return derivative(u);
    case 11:
        return made(3, derivative(u), made(12, copy(u), nullptr));
    case 12:
        return made(3, made(2, constant(0), derivative(u)), made(11, copy(u), nullptr));
    default:
        return nullptr;
    }
}

/// Nodes, values by their bits, and what is missing; never more than a few thousand levels.
inline bool areEqual(const ExprNode* a, const ExprNode* b) {
    if (!a || !b)
        return a == b;
    return a->code == b->code &&
           std::bit_cast<std::uint32_t>(a->value) == std::bit_cast<std::uint32_t>(b->value) &&
           areEqual(a->left, b->left) && areEqual(a->right, b->right);
}

/// Every operator in parentheses, "_" for what is missing: "((x + 1) * sin(y))".
inline std::string described(const ExprNode* node) {
    if (!node)
        return "_";
    if (node->code == -1 || node->code == -2)
        return node->code == -1 ? "x" : "y";
    if (node->code == 0) {
        char text[64];
        std::snprintf(text, sizeof text, "%.9g", static_cast<double>(node->value));
        return text;
    }
    if (node->code >= 1 && node->code <= 5)
        return "(" + described(node->left) + " " + " +-*/^"[node->code] + " " +
               described(node->right) + ")";
    static const char* const names[] = {"exp", "ln",   "log",  "sqrt", "abs",  "sin",  "cos",
                                        "tan", "asin", "acos", "atan", "sinh", "cosh", "tanh"};
    const bool isFunction = node->code >= 6 && node->code <= 19;
    return (isFunction ? names[node->code - 6] : "#" + std::to_string(node->code)) + "(" +
           described(node->left) + (node->right ? ", " + described(node->right) : "") + ")";
}

using Random = std::mt19937;

inline int below(Random& random, int limit) {
    return static_cast<int>(random() % static_cast<unsigned>(limit));
}

inline std::string oneOf(Random& random, const std::vector<std::string>& list) {
    return list[random() % list.size()];
}

/// Text that mostly follows the rules of algebra.
inline std::string sentence(Random& random, int height) {
    static const std::vector<std::string> leaves{"x",  "y",   "t",  "n",     "p",  "r",    "1",
                                                 "2",  "0.5", "3.", ".5",    "42", "\xB8", "7.25",
                                                 "2x", "x2",  "()", "1.2.3", "-1", "(x)"};
    static const std::vector<std::string> names{
        "exp", "ln", "log", "sqrt", "abs",  "sin",  "cos",  "tan", "asin", "acos", "atan",
        "sh",  "ch", "th",  "sinh", "cosh", "tanh", "sqab", "abz", "s..",  "ac^^"};
    static const std::vector<std::string> signs{"+", "-", "*", "/", "^"};
    if (height <= 0)
        return oneOf(random, leaves);
    const auto part = [&] { return sentence(random, height - 1 - below(random, 2)); };
    switch (below(random, 8)) {
    case 0:
        return "(" + part() + ")";
    case 1:
        return oneOf(random, names) + "(" + part() + ")";
    case 2:
        return oneOf(random, names) + part();
    case 3:
        return "(-" + part() + ")";
    case 4:
        return "-" + part();
    case 5:
        return "(" + part() + oneOf(random, signs) + part() + ")";
    default:
        return part() + oneOf(random, signs) + part();
    }
}

/// Pieces in any order, most of which mean something.
inline std::string scrambled(Random& random, int count) {
    static const std::vector<std::string> pieces{
        "(",  "(",  "(",  ")",   ")",  ")",  "+",  "-",    "*",  "/",   "^",
        "x",  "y",  "t",  "1",   "23", ".",  "a",  "c",    "s",  "h",   "q",
        "e",  "l",  "o",  "n",   "p",  "r",  "ax", "co",   "cx", "sin", "cos",
        "sh", "th", "as", "exp", "ln", "(-", "b",  "\xB8", ")(", ")+",  "-x)(",
    };
    std::string text;
    for (int i = 0; i < count; ++i)
        text += oneOf(random, pieces);
    return text;
}

/// Any accepted byte, seldom one that is not.
inline std::string bytes(Random& random, int count) {
    static const std::string alphabet = "()()()+-*/^.0123456789xytnprabcdeghilmoqs\xB8";
    std::string text;
    for (int i = 0; i < count; ++i)
        text += below(random, 200) == 0 ? static_cast<char>(random())
                                        : alphabet[random() % alphabet.size()];
    return text;
}

inline std::string mutated(Random& random, std::string text) {
    for (int n = 1 + below(random, 3); n > 0; --n) {
        const std::size_t place = random() % (text.size() + 1);
        const std::size_t count = random() % 4;
        switch (below(random, 3)) {
        case 0:
            text.erase(place, count);
            break;
        case 1:
            text.insert(place, scrambled(random, 1));
            break;
        default:
            text.insert(random() % (text.size() + 1), text.substr(place, count));
        }
    }
    return text;
}

/// A tree of at most `height` levels as the parser could have made it; with `isOdd` also with
/// missing operands, values where none belong, and kinds that do not exist.
inline ExprNode* tree(Random& random, int height, bool isOdd = false) {
    if (isOdd && below(random, 12) == 0)
        return nullptr;
    if (height <= 1 || below(random, 6) == 0) {
        static const float values[] = {0, 1, 2, -1, 0.5f, 3, -2.5f, 1e6f, 1e-7f, 0.1f};
        const int code = below(random, 3) - 2;
        ExprNode* leaf = made(code, nullptr, nullptr);
        if (code == 0)
            leaf->value = values[random() % std::size(values)];
        if (isOdd && below(random, 8) == 0)
            leaf->value = 3;
        return leaf;
    }
    int code = below(random, 2) ? 1 + below(random, 5) : 6 + below(random, 14);
    if (isOdd && below(random, 30) == 0)
        code = below(random, 2) ? 20 : -3;
    ExprNode* left = tree(random, height - 1, isOdd);
    const bool hasRight = isOdd && below(random, 20) == 0 ? below(random, 2) == 0 : code <= 5;
    ExprNode* node = made(code, left, hasRight ? tree(random, height - 1, isOdd) : nullptr);
    if (isOdd && below(random, 8) == 0)
        node->value = -1.5f;
    return node;
}

/// A chain of `levels` nodes of one kind, with a leaf on each free side: the next level lies on the
/// left, on the right, or by turns.
enum class Lean { left, right, zigzag };

inline ExprNode* chain(int code, int levels, Lean lean) {
    ExprNode* top = made(-1, nullptr, nullptr);
    for (int i = 0; i < levels; ++i) {
        const bool isLeft = lean == Lean::left || (lean == Lean::zigzag && i % 2 == 0);
        ExprNode* leaf = code > 5 ? nullptr : constant(1);
        top = isLeft || code > 5 ? made(code, top, leaf) : made(code, leaf, top);
    }
    return top;
}

} // namespace reference
