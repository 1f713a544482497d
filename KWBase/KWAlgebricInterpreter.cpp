#include <KWBase/KWAlgebricInterpreter.h>
#include <KWFoundation/KWCoder.h>
#include <KWFoundation/KWLog.h>

#include <algorithm>

namespace {

bool isMode(std::int32_t mode) {
    return mode == KWExpressionModeXY || mode == KWExpressionModeT;
}

bool isFault(const KWExpressionFault& fault) {
    return fault.kind != KWExpressionFault::Kind::none;
}

/// What can be said before the text is read.
KWExpressionFault faultBefore(const std::optional<std::string>& text, std::int32_t mode) {
    if (!text)
        return {KWExpressionFault::Kind::noText, 0};
    if (!isMode(mode))
        return {KWExpressionFault::Kind::badMode, 0};
    return {};
}

/// Reads the text into `node`; the fault's place is one of the text as it was typed.
KWExpressionFault read(ExprNode* node, const std::string& text, std::int32_t mode) {
    const std::optional<std::string> plain = KWPlainExpressionBytes(text, mode);
    KWExpressionFault fault =
        KWParseExpression(node, plain ? *plain : KWNormalisedText(text, mode).bytes);
    if (isFault(fault))
        fault.position = KWNormalisedText(text, mode).origins.at(fault.position);
    return fault;
}

// Here too, for programs that use interpreters and no channels.
[[maybe_unused]] const bool classIsRegistered = [] {
    KWRegisterClass(KWAlgebricInterpreter::classObject());
    return true;
}();

} // namespace

KWAlgebricInterpreter::KWAlgebricInterpreter() = default;

KWAlgebricInterpreter::~KWAlgebricInterpreter() = default;

const KWClass& KWAlgebricInterpreter::classObject() {
    static constinit const KWClass theClass{"KWAlgebricInterpreter", &KWObject::classObject, 0,
                                            KWClass::make<KWAlgebricInterpreter>};
    return theClass;
}

bool KWAlgebricInterpreter::setExpressionMode(const std::optional<std::string>& text,
                                              std::int32_t mode) {
    _fault = faultBefore(text, mode);
    if (isFault(_fault))
        return false;
    std::string source = *text; // which may be our own
    clear(mode);
    KWOwnedTree tree(NewNode());
    _fault = read(tree.get(), source, mode);
    if (isFault(_fault)) {
        KWLog("set err = " + std::to_string(_fault.code()));
        return false;
    }
    take(std::move(tree), std::move(source));
    return true;
}

KWExpressionFault
KWAlgebricInterpreter::replaceExpressionMode(const std::optional<std::string>& text,
                                             std::int32_t mode) {
    KWExpressionFault fault = faultBefore(text, mode);
    if (isFault(fault))
        return fault;
    KWOwnedTree tree(NewNode());
    fault = read(tree.get(), *text, mode);
    if (isFault(fault))
        return fault;
    std::string source = *text; // which may be our own
    clear(mode);
    _fault = fault;
    take(std::move(tree), std::move(source));
    return fault;
}

KWExpressionFault KWAlgebricInterpreter::faultInExpression(const std::optional<std::string>& text,
                                                           std::int32_t mode) {
    const KWExpressionFault fault = faultBefore(text, mode);
    return isFault(fault) ? fault : read(KWOwnedTree(NewNode()).get(), *text, mode);
}

void KWAlgebricInterpreter::takeExpressionOf(const KWAlgebricInterpreter& other) {
    KWOwnedTree tree(CopyNode(other.tree()));
    KWExpressionProgram program(tree.get());
    _mode = other._mode;
    _algebricString.reset();
    _isPrinted = false;
    if (!tree || other._isPrinted) {
        _algebricString = other.expression();
        _isPrinted = true;
    }
    _sourceText = other._sourceText;
    _fault = other._fault;
    _tree = std::move(tree);
    _program = std::move(program);
}

void KWAlgebricInterpreter::clear(std::int32_t mode) {
    _mode = mode;
    _algebricString.reset();
    _isPrinted = true;
    _sourceText.reset();
    _program = {};
    _tree.reset();
}

void KWAlgebricInterpreter::take(KWOwnedTree tree, std::string source) {
    _program = KWExpressionProgram(tree.get());
    _sourceText = std::move(source);
    _tree = std::move(tree);
    _isPrinted = false;
}

// Several threads may be the first to ask.
void KWAlgebricInterpreter::print() const {
    const std::lock_guard lock(_printing);
    if (_isPrinted.load(std::memory_order_relaxed))
        return;
    std::string printed;
    WriteTree(_tree.get(), printed);
    if (_mode == KWExpressionModeT)
        std::replace(printed.begin(), printed.end(), 'x', 't');
    _algebricString = std::move(printed);
    _isPrinted.store(true, std::memory_order_release);
}

std::uint64_t KWAlgebricInterpreter::memoryForText(const std::string& text) {
    constexpr std::uint64_t bytesForEach = 40; // a node, its instruction and the texts
    return bytesForEach * text.size();
}

float KWAlgebricInterpreter::evalXYExpression(float x, float y) const {
    return _program.evaluate(x, y);
}

float KWAlgebricInterpreter::evalTExpression(float t) const {
    return _program.evaluate(t, 0);
}

void KWAlgebricInterpreter::evalTExpressions(std::span<const float> times,
                                             std::span<float> values) const {
    _program.evaluate(times, 0, values);
}

void KWAlgebricInterpreter::encodeWithCoder(KWCoder& coder) const {
    KWObject::encodeWithCoder(coder);
    if (coder.allowsKeyedCoding()) {
        coder.encodeObjectForKey(expression(), "algebricString");
        coder.encodeInt32ForKey(_mode, "mode");
    } else {
        coder.encodeObject(expression());
        coder.encodeValueOfObjCTypeAt("i", &_mode);
    }
}

bool KWAlgebricInterpreter::initWithCoder(KWCoder& coder) {
    if (!KWObject::initWithCoder(coder))
        return false;
    _algebricString.reset();
    _isPrinted = true;
    if (coder.allowsKeyedCoding()) {
        // The reader of the text has always looked under the mode's key, and found none there.
        coder.decodeObjectForKey("mode");
        _mode = coder.decodeInt32ForKey("mode");
    } else {
        _algebricString = coder.decodeString("algebricString");
        coder.decodeValueOfObjCTypeAt("i", &_mode);
    }
    if (_algebricString) {
        coder.spendMemory(memoryForText(*_algebricString));
        setExpressionMode(std::optional(*_algebricString), _mode);
    }
    return true;
}
