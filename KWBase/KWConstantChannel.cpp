#include <KWBase/KWConstantChannel.h>
#include <KWFoundation/KWCoder.h>

#include <algorithm>
#include <stdexcept>

KWConstantChannel::KWConstantChannel(std::string name) : KWChannel(std::move(name)) {}

KWConstantChannel::~KWConstantChannel() = default;

const KWClass& KWConstantChannel::classObject() {
    static constinit const KWClass theClass{"KWConstantChannel", &KWChannel::classObject, 0,
                                            KWClass::make<KWConstantChannel>};
    return theClass;
}

float KWConstantChannel::valueForTime(std::optional<KWTime>) const {
    return _constValue;
}

void KWConstantChannel::valuesForTimes(std::span<const float> times,
                                       std::span<float> values) const {
    if (times.size() != values.size())
        throw std::invalid_argument("valuesForTimes: as many values as times");
    std::fill(values.begin(), values.end(), _constValue);
}

void KWConstantChannel::setValueForTime(float value, std::optional<KWTime> time) {
    _constValue = value;
    KWChannel::setValueForTime(value, time);
}

std::shared_ptr<KWChannel> KWConstantChannel::copy() const {
    auto made = std::make_shared<KWConstantChannel>();
    made->_constValue = _constValue;
    return made;
}

bool KWConstantChannel::takeContentsOf(const KWChannel& other) {
    if (!KWChannel::takeContentsOf(other))
        return false;
    // Asked for rather than read, so that a subclass hands on what it answers.
    _constValue = other.valueForTime(std::nullopt);
    return true;
}

void KWConstantChannel::encodeWithCoder(KWCoder& coder) const {
    KWChannel::encodeWithCoder(coder);
    if (coder.allowsKeyedCoding())
        coder.encodeDoubleForKey(static_cast<double>(_constValue), "constValue");
    else
        coder.encodeValueOfObjCTypeAt("f", &_constValue);
}

bool KWConstantChannel::initWithCoder(KWCoder& coder) {
    if (!KWChannel::initWithCoder(coder))
        return false;
    if (coder.allowsKeyedCoding())
        _constValue = static_cast<float>(coder.decodeDoubleForKey("constValue"));
    else
        coder.decodeValueOfObjCTypeAt("f", &_constValue);
    return true;
}
