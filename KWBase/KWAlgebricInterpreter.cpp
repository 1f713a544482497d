#include <KWBase/KWAlgebricInterpreter.h>
#include <KWFoundation/KWCoder.h>
#include <KWFoundation/KWLog.h>

namespace {

bool isMode(std::int32_t mode) {
    return mode == KWExpressionModeXY || mode == KWExpressionModeT;
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
    KWExpressionFault fault = KWParseExpression(
        node, KWExpressionBytes(mode == KWExpressionModeT ? cleanedXStringFromTString(text)
                                                          : cleanedAlgebricString(text)));
    if (fault.kind != KWExpressionFault::Kind::none)
        fault.position = KWNormalisedText(text, mode).origins.at(fault.position);
    return fault;
}

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
    if (_fault.kind != KWExpressionFault::Kind::none)
        return false;
    std::string source = *text; // which may be our own
    _mode = mode;
    _algebricString.reset();
    _sourceText.reset();
    _program = {};
    _node.reset();

    std::unique_ptr<ExprNode, Free> node(NewNode());
    _fault = read(node.get(), source, mode);
    if (_fault.kind != KWExpressionFault::Kind::none) {
        KWLog("set err = " + std::to_string(_fault.code()));
        return false;
    }
    std::string printed;
    WriteTree(node.get(), printed);
    _algebricString = mode == KWExpressionModeT ? tStringFromXString(printed) : std::move(printed);
    _sourceText = std::move(source);
    _program = KWExpressionProgram(node.get());
    _node = std::move(node);
    return true;
}

KWExpressionFault KWAlgebricInterpreter::faultInExpression(const std::optional<std::string>& text,
                                                           std::int32_t mode) {
    const KWExpressionFault fault = faultBefore(text, mode);
    if (fault.kind != KWExpressionFault::Kind::none)
        return fault;
    const std::unique_ptr<ExprNode, Free> node(NewNode());
    return read(node.get(), *text, mode);
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
        coder.encodeObjectForKey(_algebricString, "algebricString");
        coder.encodeInt32ForKey(_mode, "mode");
    } else {
        coder.encodeObject(_algebricString);
        coder.encodeValueOfObjCTypeAt("i", &_mode);
    }
}

bool KWAlgebricInterpreter::initWithCoder(KWCoder& coder) {
    if (!KWObject::initWithCoder(coder))
        return false;
    _algebricString.reset();
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
