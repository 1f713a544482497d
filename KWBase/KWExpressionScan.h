#pragma once

#include <KWBase/KWExpressionTree.h>

#include <array>
#include <cstdint>
#include <string_view>

// What the parser knows of the bytes of an expression, for all that scan them.

namespace KWExpressionScanning {

inline constexpr std::int16_t noFunction = -10;

/// A function's name, as it was looked up last.
struct Name {
    std::int16_t code;
    std::int16_t length;
};

/// Looks up the name that begins with `byte(0)`. A word in "a" or "c" that is none leaves `name` as
/// it was.
template <class Byte>
void lookUp(Name& name, Byte byte) {
    const char second = byte(1);
    switch (byte(0)) {
    case 'a':
        if (second == 'c')
            name = {KWExpressionAcos, 4};
        else if (second == 'b')
            name = {KWExpressionAbs, 3};
        else if (second == 's')
            name = {KWExpressionAsin, 4};
        else if (second == 't')
            name = {KWExpressionAtan, 4};
        return;
    case 'c':
        if (second == 'h')
            name = {KWExpressionCosh, 2};
        else if (second == 'o' && byte(2) == 's')
            name = byte(3) == 'h' ? Name{KWExpressionCosh, 4} : Name{KWExpressionCos, 3};
        return;
    case 'e':
        if (second == 'x' && byte(2) == 'p')
            name = {KWExpressionExp, 3};
        else
            name.code = noFunction;
        return;
    case 'l':
        if (second == 'n')
            name = {KWExpressionLn, 2};
        else if (second == 'o' && byte(2) == 'g')
            name = {KWExpressionLog, 3};
        else
            name.code = noFunction;
        return;
    case 's':
        if (second == 'h')
            name = {KWExpressionSinh, 2};
        else if (second == 'q')
            name = {KWExpressionSqrt, 4};
        else
            name = byte(3) == 'h' ? Name{KWExpressionSinh, 4} : Name{KWExpressionSin, 3};
        return;
    case 't':
        if (second == 'h')
            name = {KWExpressionTanh, 2};
        else if (second == 'a' && byte(2) == 'n')
            name = byte(3) == 'h' ? Name{KWExpressionTanh, 4} : Name{KWExpressionTan, 3};
        else
            name.code = noFunction;
        return;
    default:
        name.code = noFunction;
    }
}

/// A part of the text: the `length` bytes from `begin` are scanned. Names may be looked up as far
/// as `end`, which is `length` further on or beyond; what lies there counts as zero bytes.
struct View {
    int begin;
    int length;
    int end;
};

/// How tightly what a text is split at binds; the loosest wins.
enum Priority { sum = 1, product, power, function, number, nothing };

/// The best split of a text so far.
struct Candidate {
    int split;
    int depth; ///< parentheses around it, which both sides lose
    int numberStart;
    int code;
    int nameLength;
    Priority priority;
    bool isNegation;
};

/// Operators that are nested deeper are never split at.
inline constexpr int deepestSplit = 128;

/// What a byte means to a scan.
enum class Meaning : std::uint8_t {
    refused,
    digit,
    letter,
    variable,
    opening,
    closing,
    point,
    sign
};

inline constexpr auto meanings = [] {
    std::array<Meaning, 256> table{};
    const auto set = [&table](std::string_view bytes, Meaning meaning) {
        for (char byte : bytes)
            table[static_cast<unsigned char>(byte)] = meaning;
    };
    set("0123456789\xB8", Meaning::digit);
    set("abcdefghijklmnopqrst", Meaning::letter);
    set("xy", Meaning::variable);
    set("(", Meaning::opening);
    set(")", Meaning::closing);
    set(".", Meaning::point);
    set("+-*/^", Meaning::sign);
    return table;
}();

struct Operator {
    int code;
    Priority priority;
};

inline Operator operatorOf(char sign) {
    switch (sign) {
    case '+':
        return {KWExpressionAdd, sum};
    case '-':
        return {KWExpressionSubtract, sum};
    case '*':
        return {KWExpressionMultiply, product};
    case '/':
        return {KWExpressionDivide, product};
    default:
        return {KWExpressionPower, power};
    }
}

} // namespace KWExpressionScanning
