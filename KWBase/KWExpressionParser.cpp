#include <KWBase/KWExpressionIndex.h>
#include <KWBase/KWExpressionScan.h>
#include <KWBase/KWExpressionStack.h>
#include <KWBase/KWExpressionText.h>
#include <KWBase/KWExpressionTree.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>
#include <optional>

// A text is scanned once for the operator or function at which it is split: the last one of the
// lowest precedence at the shallowest depth of parentheses. The texts on its sides are then read
// the same way. They are views, never copies; each sees no byte beyond its own end. Once more has
// been scanned than a few times the text, long views are looked up in an index instead.

namespace {

using namespace KWExpressionScanning;
using Kind = KWExpressionFault::Kind;

constexpr char piByte = '\xB8';
constexpr float pi = 3.1415927f;

bool isDigit(char c) {
    return c >= '0' && c <= '9';
}

/// The number that begins with `byte(0)`; every other byte than those of a number ends it.
template <class Byte>
float numberOf(Byte byte) {
    int i = 0;
    if (byte(i) == piByte)
        return pi;
    const bool isNegative = byte(i) == '-';
    if (isNegative)
        ++i;
    float number = 0;
    for (; isDigit(byte(i)); ++i)
        number = number * 10 + static_cast<float>(byte(i) - '0');
    if (byte(i) == '.') {
        ++i;
        for (int k = 1; isDigit(byte(i)); ++i, ++k) {
            // Not quite a power of ten: these digits of ln 10 are what numbers have always had.
            const double digit = (byte(i) - '0') * std::exp(-k * 2.30258509);
            number = static_cast<float>(static_cast<double>(number) + digit);
        }
    }
    return isNegative ? -number : number;
}

/// One pass over a text. Small enough for its state to stay in registers.
struct Scan {
    Candidate best{0, deepestSplit, 0, 0, 0, nothing, false};
    int depth = 0;
    Name name{0, 0};

    void takeDigit(int i) {
        if (best.priority > number) {
            best.numberStart = i;
            best.priority = number;
        }
    }

    void takeVariable(int code) {
        if (best.priority == nothing)
            best.code = code;
    }

    /// Answers how many bytes the word has, 0 when it is none.
    template <class Byte>
    int takeLetter(int i, Byte byte) {
        lookUp(name, byte);
        if (name.code < 0) {
            const char c = byte(0);
            const bool isFirst = c == 't' || c == 'n';
            if (!isFirst && c != 'p' && c != 'r')
                return 0;
            takeVariable(isFirst ? KWExpressionFirstVariable : KWExpressionSecondVariable);
            return 1;
        }
        if (isAsGood(function)) {
            take(i, {name.code, function});
            best.nameLength = name.length;
        }
        return name.length;
    }

    bool isAsGood(Priority priority) const {
        return depth < best.depth || (depth == best.depth && best.priority >= priority);
    }

    void take(int i, Operator found) {
        best.split = i;
        best.depth = depth;
        best.code = found.code;
        best.priority = found.priority;
    }

    void takeNegation(int i) {
        if (depth <= best.depth && best.priority > sum) {
            take(i, {KWExpressionSubtract, sum});
            best.isNegation = true;
        }
    }

    void takeOperator(int i, Operator found) {
        take(i, found);
        // A product or power leaves a negation as it is: (-3)*2 is read as 0-2.
        if (found.priority == sum)
            best.isNegation = false;
    }
};

class Parser {
  public:
    Parser(const char* bytes, int end) : _bytes(bytes), _end(end) {}

    KWExpressionFault parse(ExprNode* node, int length) {
        _length = length;
        _depthLimit = KWExpressionMaximumDepth;
        parse(node, View{0, length, _end});
        // What is nested in the whole text within the limit cannot be a danger in its parts.
        _depthLimit = std::numeric_limits<int>::max();
        const bool isWholeRead = !_pending.isEmpty();
        while (!_pending.isEmpty()) {
            const Pending next = _pending.pop();
            parse(next.node, next.view);
        }
        if (_fault.kind == Kind::parentheses && isWholeRead && isBalanced())
            _fault.kind = Kind::missingOperator;
        return _fault;
    }

  private:
    struct Pending {
        ExprNode* node;
        View view;
    };

    void parse(ExprNode* node, View view) {
        if (view.length < 1)
            fail(Kind::missing, view.begin);
        else if (find(view))
            build(node, view);
    }

    bool fail(Kind kind, int position) {
        _fault.kind = kind;
        _fault.position = static_cast<std::size_t>(std::min(position, _end));
        return false;
    }

    bool find(View view);
    bool scan(View view);
    bool lookUpSplit(View view);
    bool isBalanced() const;
    int unmatchedParenthesis(View view, int depth) const;
    void build(ExprNode* node, View view);
    void buildLeaf(ExprNode* node, View view, const Candidate& candidate) const;
    static void giveOperands(ExprNode* node, int code);
    void pushRight(ExprNode* node, View view, const Candidate& candidate);

    const char* _bytes;
    int _end;
    int _length = 0;
    int _depthLimit = 0;
    KWExpressionFault _fault;

    Candidate _best;
    /// Of the scan that found it: for each operator at depth 0 that was the best, in order, what
    /// was the best before. As the left operand of such an operator is all that was scanned until
    /// then, scanning it again would end with just that; without this a long sum would take the
    /// square of its length.
    KWExpressionStack<Candidate, 16> _earlier;
    bool _knowsEarlier = false;

    std::int64_t _scannedBytes = 0;
    std::optional<KWExpressionIndex> _index;

    KWExpressionStack<Pending, 32> _pending;
};

/// Finds what the view is split at.
bool Parser::find(View view) {
    constexpr int longestScan = 64; // that is as quick as the index
    constexpr int scansOfAll = 4;
    if (view.length > longestScan && _scannedBytes > std::int64_t{scansOfAll} * _length) {
        if (!_index)
            _index.emplace(_bytes, _length, _end);
        if (_index->knows(view))
            return lookUpSplit(view);
    }
    _scannedBytes += view.length;
    return scan(view);
}

bool Parser::lookUpSplit(View view) {
    _knowsEarlier = false;
    if (const int refusal = _index->refusalIn(view); refusal >= 0)
        return fail(Kind::unknown, refusal);
    if (const int depth = _index->depthOver(view); depth != 0)
        return fail(Kind::parentheses, unmatchedParenthesis(view, depth));
    _best = _index->splitOf(view);
    return true;
}

bool Parser::scan(View view) {
    _earlier.clear();
    _knowsEarlier = true;
    Scan scan;
    const char* s = _bytes + view.begin;
    const int available = view.end - view.begin;
    const int readable = std::min(view.length, available);
    int i = 0;
    while (i < readable) {
        switch (meanings[static_cast<unsigned char>(s[i])]) {
        case Meaning::digit:
            scan.takeDigit(i);
            break;
        case Meaning::letter: {
            const int step =
                scan.takeLetter(i, [=](int k) { return i + k < available ? s[i + k] : '\0'; });
            if (step == 0)
                return fail(Kind::unknown, view.begin + i);
            i += step;
            continue;
        }
        case Meaning::variable:
            scan.takeVariable(s[i] == 'x' ? KWExpressionFirstVariable : KWExpressionSecondVariable);
            break;
        case Meaning::opening:
            if (++scan.depth > _depthLimit)
                return fail(Kind::tooDeep, view.begin + i);
            break;
        case Meaning::closing:
            --scan.depth;
            break;
        case Meaning::point:
            break;
        case Meaning::sign: {
            const Operator found = operatorOf(s[i]);
            if (s[i] == '-' && (i == 0 || s[i - 1] == '(')) {
                scan.takeNegation(i);
            } else if (scan.isAsGood(found.priority)) {
                if (scan.depth == 0)
                    _earlier.push(scan.best);
                scan.takeOperator(i, found);
            }
            break;
        }
        case Meaning::refused:
            return fail(Kind::unknown, view.begin + i);
        }
        ++i;
    }
    if (i < view.length) // a zero byte
        return fail(Kind::unknown, view.begin + i);
    if (scan.depth != 0)
        return fail(Kind::parentheses, unmatchedParenthesis(view, scan.depth));
    _best = scan.best;
    return true;
}

/// Whether each parenthesis of the whole text has its partner, also those that names hide.
bool Parser::isBalanced() const {
    int open = 0;
    for (int i = 0; i < std::min(_length, _end) && open >= 0; ++i)
        open += _bytes[i] == '(' ? 1 : _bytes[i] == ')' ? -1 : 0;
    return open == 0;
}

/// The first parenthesis without a partner; the end of the view when names hide it.
int Parser::unmatchedParenthesis(View view, int depth) const {
    const char* s = _bytes + view.begin;
    const int readable = std::min(view.length, view.end - view.begin);
    int open = 0;
    if (depth < 0) {
        for (int i = 0; i < readable; ++i) {
            open += s[i] == '(' ? 1 : s[i] == ')' ? -1 : 0;
            if (open < 0)
                return view.begin + i;
        }
        return view.begin + readable;
    }
    int first = readable;
    int closed = 0;
    for (int i = readable; i-- > 0;) {
        if (s[i] == ')')
            ++closed;
        else if (s[i] == '(' && closed-- == 0) {
            first = i;
            closed = 0;
        }
    }
    return view.begin + first;
}

void Parser::giveOperands(ExprNode* node, int code) {
    node->code = static_cast<std::int16_t>(code);
    node->left = NewNode();
    node->right = NewNode();
}

void Parser::pushRight(ExprNode* node, View view, const Candidate& candidate) {
    const int begin = view.begin + candidate.split + 1;
    const int length = view.length - candidate.split - candidate.depth - 1;
    _pending.push({node->right, {begin, length, std::min(view.end, begin + length)}});
}

void Parser::buildLeaf(ExprNode* node, View view, const Candidate& candidate) const {
    if (candidate.priority == nothing) {
        node->code = static_cast<std::int16_t>(candidate.code);
        return;
    }
    node->code = KWExpressionConstant;
    const char* s = _bytes + view.begin + candidate.numberStart;
    const int available = view.end - view.begin - candidate.numberStart;
    node->value = numberOf([=](int k) { return k < available ? s[k] : '\0'; });
}

/// Makes the node, and the chain of left operands that the scan has seen on its way.
void Parser::build(ExprNode* node, View view) {
    for (Candidate candidate = _best;; candidate = _earlier.pop()) {
        const int split = view.begin + candidate.split;
        if (candidate.priority >= number)
            return buildLeaf(node, view, candidate);
        if (candidate.depth < 0) { // )1+2( has no sides
            fail(Kind::unknown, split);
            return;
        }
        if (candidate.isNegation) {
            giveOperands(node, KWExpressionSubtract);
            return pushRight(node, view, candidate);
        }
        if (candidate.code > KWExpressionPower) {
            node->code = static_cast<std::int16_t>(candidate.code);
            node->left = NewNode();
            const int length = view.length - candidate.split - candidate.nameLength;
            const int begin = split + candidate.nameLength;
            // The parentheses that are cut off the end are still there for names to run into.
            _pending.push(
                {node->left,
                 {begin, length - candidate.depth, std::min(view.end, view.begin + view.length)}});
            return;
        }
        giveOperands(node, candidate.code);
        if (candidate.split == candidate.depth) {
            fail(Kind::missing, split);
            return;
        }
        pushRight(node, view, candidate);
        node = node->left;
        if (candidate.depth > 0 || !_knowsEarlier) {
            _pending.push(
                {node, {view.begin + candidate.depth, candidate.split - candidate.depth, split}});
            return;
        }
        view.length = candidate.split;
        view.end = split;
    }
}

/// What a zero-terminated string has at and after `index`, as far as its end.
auto bytesFrom(const char* string, int index) {
    return [s = string + index](int k) {
        for (int i = 0; i < k; ++i)
            if (s[i] == '\0')
                return '\0';
        return s[k];
    };
}

} // namespace

inline namespace KWExpressions {

float CalcValue(const char* string, std::int16_t start) {
    return numberOf([s = string + start](int k) { return s[k]; });
}

void FindOperator(std::int16_t* code, std::int16_t* length, const char* string,
                  std::int16_t index) {
    Name name{*code, *length};
    lookUp(name, bytesFrom(string, index));
    *code = name.code;
    *length = name.length;
}

void ConstructTree(ExprNode* node, const char* string, std::int16_t length, std::int16_t* err) {
    // A name at the end of the text is looked up beyond it, by three bytes at most.
    const std::size_t end = length < 1 ? 0 : strnlen(string, static_cast<std::size_t>(length) + 3);
    const KWExpressionFault fault = Parser(string, static_cast<int>(end)).parse(node, length);
    if (fault.kind != Kind::none)
        *err = fault.code();
}

} // namespace KWExpressions

KWExpressionFault KWParseExpression(ExprNode* node, std::string_view bytes) {
    if (bytes.size() > KWExpressionMaximumLength)
        return {Kind::tooLong, KWExpressionMaximumLength};
    const std::size_t end = std::min(bytes.find('\0'), bytes.size());
    return Parser(bytes.data(), static_cast<int>(end)).parse(node, static_cast<int>(bytes.size()));
}
