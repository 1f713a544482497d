#include <KWBase/KWAlgebricChannel.h>
#include <KWFoundation/KWCoder.h>

KWAlgebricChannel::KWAlgebricChannel(std::string name)
    : KWChannel(std::move(name)), _interpreter(std::make_shared<KWAlgebricInterpreter>()) {}

KWAlgebricChannel::~KWAlgebricChannel() = default;

const KWClass& KWAlgebricChannel::classObject() {
    static constinit const KWClass theClass{"KWAlgebricChannel", &KWChannel::classObject, 0,
                                            KWClass::make<KWAlgebricChannel>};
    return theClass;
}

bool KWAlgebricChannel::setExpression(const std::optional<std::string>& text) {
    if (!_interpreter || !_interpreter->setExpressionMode(text, KWExpressionModeT))
        return false;
    KWChannel::setValueForTime(0, std::nullopt);
    return true;
}

std::optional<std::string> KWAlgebricChannel::expression() const {
    return _interpreter ? _interpreter->expression() : std::nullopt;
}

std::optional<std::string> KWAlgebricChannel::sourceText() const {
    return _interpreter ? _interpreter->sourceText() : std::nullopt;
}

KWExpressionFault KWAlgebricChannel::fault() const {
    return _interpreter ? _interpreter->fault()
                        : KWExpressionFault{KWExpressionFault::Kind::noInterpreter, 0};
}

float KWAlgebricChannel::valueForTime(std::optional<KWTime> time) const {
    return _interpreter ? _interpreter->evalTExpression(time ? time->time() : 0) : 0;
}

void KWAlgebricChannel::valuesForTimes(std::span<const float> times,
                                       std::span<float> values) const {
    if (_interpreter)
        _interpreter->evalTExpressions(times, values);
    else
        KWChannel::valuesForTimes(times, values);
}

std::shared_ptr<KWChannel> KWAlgebricChannel::copy() const {
    return initWithChannel<KWAlgebricChannel>(*this);
}

bool KWAlgebricChannel::takeContentsOf(const KWChannel& other) {
    if (!KWChannel::takeContentsOf(other))
        return false;
    const auto& source = dynamic_cast<const KWAlgebricChannel&>(other);
    if (_interpreter) {
        // The printed text need not read back as the same expression.
        const auto expression =
            source._interpreter ? source._interpreter : std::make_shared<KWAlgebricInterpreter>();
        _interpreter->takeExpressionOf(*expression);
        KWChannel::setValueForTime(0, std::nullopt);
    }
    return true;
}

void KWAlgebricChannel::encodeWithCoder(KWCoder& coder) const {
    KWChannel::encodeWithCoder(coder);
    if (coder.allowsKeyedCoding())
        coder.encodeObjectForKey(_interpreter, "interpreter");
    else
        coder.encodeObject(_interpreter);
}

bool KWAlgebricChannel::initWithCoder(KWCoder& coder) {
    if (!KWChannel::initWithCoder(coder))
        return false;
    _interpreter = coder.allowsKeyedCoding()
                       ? coder.decodeObjectOfClassForKey<KWAlgebricInterpreter>("interpreter")
                       : coder.decodeObjectOfClass<KWAlgebricInterpreter>("interpreter");
    return true;
}
