#include <KWBase/KWExpressionIndex.h>

#include <algorithm>
#include <cstddef>

using namespace KWExpressionScanning;

KWExpressionIndex::KWExpressionIndex(const char* bytes, int length, int end)
    : _length(length), _refusal(length + 1), _places(static_cast<std::size_t>(length) + 1) {
    _words.reserve(_places.size());
    findWords(bytes, std::min(length, end));
    findSuccessors();
}

void KWExpressionIndex::findWords(const char* bytes, int end) {
    Name name{0, 0};
    int depth = 0;
    int variable = -1;
    int i = 0;
    while (i < end) {
        Place& place = _places[static_cast<std::size_t>(i)];
        place.depth = depth;
        place.variable = variable;
        int step = 1;
        switch (meanings[static_cast<unsigned char>(bytes[i])]) {
        case Meaning::letter:
            step = wordLengthAt(i, bytes, end, name);
            if (place.priority == nothing)
                variable = i;
            break;
        case Meaning::variable:
            place.code = bytes[i] == 'x' ? KWExpressionFirstVariable : KWExpressionSecondVariable;
            variable = i;
            break;
        case Meaning::opening:
            ++depth;
            break;
        case Meaning::closing:
            --depth;
            break;
        case Meaning::sign: {
            const Operator found = operatorOf(bytes[i]);
            place.priority = found.priority;
            place.code = static_cast<std::int16_t>(found.code);
            place.isNegation = bytes[i] == '-' && (i == 0 || bytes[i - 1] == '(');
            break;
        }
        case Meaning::digit:
            place.digit = i;
            break;
        case Meaning::point:
            break;
        case Meaning::refused:
            step = 0;
        }
        place.isWord = true;
        if (step == 0)
            break;
        _words.push_back(i);
        i += step;
    }
    if (i < _length) // where bytes behind the part made a word of what is none alone
        _refusal = i;
    Place& last = _places.back();
    last.depth = depth;
    last.variable = variable;
    last.digit = last.word = last.taken = last.next = last.jump = _length;
}

/// 0 for no word.
int KWExpressionIndex::wordLengthAt(int i, const char* bytes, int end, Name& name) {
    constexpr Name kept{-1, 0};
    Place& place = _places[static_cast<std::size_t>(i)];
    Name found = kept;
    lookUp(found, [=](int k) { return i + k < end ? bytes[i + k] : '\0'; });
    place.word = i;
    place.isNameKept = found.code == kept.code;
    if (!place.isNameKept)
        name = {found.code, found.code < 0 ? name.length : found.length};
    if (name.code < 0) {
        const char c = bytes[i];
        const bool isFirst = c == 't' || c == 'n';
        place.code = isFirst ? KWExpressionFirstVariable : KWExpressionSecondVariable;
        return isFirst || c == 'p' || c == 'r' ? 1 : 0;
    }
    place.priority = function;
    place.code = name.code;
    place.nameLength = name.length;
    return name.length;
}

/// From the end to the beginning. Each stack has the operators and functions behind the place that
/// may be taken next, the nearest last: those of which none nearer wins over them.
void KWExpressionIndex::findSuccessors() {
    std::vector<int> all;
    std::vector<int> firm; // without negations, which a sum or a negation keeps from being taken
    const auto push = [this](std::vector<int>& stack, int i) {
        const int key = keyOf(_places[static_cast<std::size_t>(i)]);
        while (!stack.empty() && keyOf(_places[static_cast<std::size_t>(stack.back())]) >= key)
            stack.pop_back();
        stack.push_back(i);
    };
    int digit = _length;
    int word = _length;
    for (std::size_t k = _words.size(); k-- > 0;) {
        const int i = _words[k];
        Place& place = _places[static_cast<std::size_t>(i)];
        if (place.digit < 0)
            place.digit = digit;
        if (place.word < 0)
            place.word = word;
        digit = place.digit;
        word = place.word;
        if (place.priority != nothing) {
            link(i, nearest(place.priority == sum ? firm : all, keyOf(place)));
            push(all, i);
            if (!place.isNegation)
                push(firm, i);
        }
        place.taken = nearest(all, (place.depth + deepestSplit) * 8 + nothing);
    }
}

void KWExpressionIndex::link(int i, int next) {
    const auto at = [this](int k) -> Place& { return _places[static_cast<std::size_t>(k)]; };
    Place& place = at(i);
    const Place& near = at(next);
    const Place& far = at(near.jump);
    place.next = next;
    place.level = near.level + 1;
    place.jump = next;
    place.jumpSum = sumAt(next, -1);
    // Jumps of equal length are joined, so that there are at most twice as many as the level has
    // binary digits.
    if (near.level - far.level == far.level - at(far.jump).level) {
        place.jump = far.jump;
        if (near.jumpSum >= 0)
            place.jumpSum = near.jumpSum;
        if (far.jumpSum >= 0)
            place.jumpSum = far.jumpSum;
    }
}

/// The place itself if it is a sum or negation, else the one before.
int KWExpressionIndex::sumAt(int i, int before) const {
    return _places[static_cast<std::size_t>(i)].priority == sum ? i : before;
}

/// The nearest place on the stack with at most this key; the end for none.
int KWExpressionIndex::nearest(const std::vector<int>& stack, int key) const {
    const auto keyAt = [this](int i) { return keyOf(_places[static_cast<std::size_t>(i)]); };
    if (!stack.empty() && keyAt(stack.back()) <= key)
        return stack.back();
    const auto beyond =
        std::partition_point(stack.begin(), stack.end(), [&](int i) { return keyAt(i) <= key; });
    return beyond == stack.begin() ? _length : *(beyond - 1);
}

int KWExpressionIndex::refusalIn(View view) const {
    const int end = view.begin + view.length;
    const int word = _places[static_cast<std::size_t>(view.begin)].word;
    if (word < end && _places[static_cast<std::size_t>(word)].isNameKept)
        return word;
    return _refusal >= view.begin && _refusal < end ? _refusal : -1;
}

int KWExpressionIndex::depthOver(View view) const {
    return _places[static_cast<std::size_t>(view.begin + view.length)].depth -
           _places[static_cast<std::size_t>(view.begin)].depth;
}

Candidate KWExpressionIndex::splitOf(View view) const {
    const auto at = [this](int k) -> const Place& { return _places[static_cast<std::size_t>(k)]; };
    const int end = view.begin + view.length;
    const Place& begin = at(view.begin);
    Candidate best{0, deepestSplit, 0, 0, 0, nothing, false};
    if (begin.taken >= end) {
        const int variable = at(end).variable;
        if (begin.digit < end) {
            best.numberStart = begin.digit - view.begin;
            best.priority = number;
        } else if (variable >= view.begin) {
            best.code = at(variable).code;
        }
        return best;
    }
    int last = begin.taken;
    int lastSum = sumAt(last, -1);
    while (at(last).next < end) {
        const Place& place = at(last);
        if (place.jump < end) {
            lastSum = place.jumpSum >= 0 ? place.jumpSum : lastSum;
            last = place.jump;
        } else {
            last = place.next;
            lastSum = sumAt(last, lastSum);
        }
    }
    const Place& place = at(last);
    best.split = last - view.begin;
    best.depth = place.depth - begin.depth;
    best.code = place.code;
    best.nameLength = place.nameLength;
    best.priority = place.priority;
    best.isNegation = lastSum >= 0 && at(lastSum).isNegation;
    return best;
}
