#include <KWBase/KWKeyFrameCurve.h>
#include <KWBase/KWKeyFrameStage.h>

#include <algorithm>
#include <cfloat>
#include <cmath>
#include <cstring>
#include <stdexcept>
#include <typeinfo>

KWKeyFramedChannel::KWKeyFramedChannel(std::string name) : KWChannel(std::move(name)) {}

KWKeyFramedChannel::~KWKeyFramedChannel() = default;

const KWClass& KWKeyFramedChannel::classObject() {
    static constinit KWClass theClass{"KWKeyFramedChannel", &KWChannel::classObject, 1,
                                      KWClass::make<KWKeyFramedChannel>};
    return theClass;
}

std::shared_ptr<KWChannel> KWKeyFramedChannel::copy() const {
    // A host's subclass copies as itself, provided that its class object can make one.
    std::shared_ptr<KWKeyFramedChannel> made;
    if (const KWClass::Factory factory = isa().factory())
        made = std::dynamic_pointer_cast<KWKeyFramedChannel>(factory());
    if (!made || !made->takeContentsOf(*this))
        return nullptr;
    return made;
}

bool KWKeyFramedChannel::takeContentsOf(const KWChannel& other) {
    const auto* source = dynamic_cast<const KWKeyFramedChannel*>(&other);
    if (!source || !KWChannel::takeContentsOf(other))
        return false;
    lists() = source->lists();
    _tangents = source->_tangents;
    _saved = source->_saved;
    _mode = source->_mode;
    _repeat = source->_repeat;
    _regular = source->_regular;
    keysChange();
    return true;
}

KWData KWKeyFramedChannel::hermiteData() {
    return KWData(sizeof(HJHermiteParam));
}

KWData KWKeyFramedChannel::hermiteDataFrom(const HJHermiteParam* param) {
    KWData data = hermiteData();
    if (param)
        std::memcpy(data.data(), param, sizeof(*param));
    return data;
}

// --- Finding keys

std::size_t KWKeyFramedChannel::position(float key) const {
    const std::vector<float>& keys = lists().keys;
    if (!_regular || std::isnan(key)) [[unlikely]] {
        const auto after = std::find_if(keys.begin(), keys.end(), [key](float k) {
            return KWTime(k).compare(KWTime(key)) > 0;
        });
        return static_cast<std::size_t>(after - keys.begin());
    }
    return KWKeyFrameCurve::countNotAfter(keys.data(), keyframeCount(), key);
}

std::uint32_t KWKeyFramedChannel::indexOf(float key) const {
    const std::vector<float>& keys = lists().keys;
    if (!_regular) [[unlikely]] {
        const auto found = std::find(keys.begin(), keys.end(), key);
        return found == keys.end() ? KWNotFound : static_cast<std::uint32_t>(found - keys.begin());
    }
    const std::uint32_t count = KWKeyFrameCurve::countNotAfter(keys.data(), keyframeCount(), key);
    return count != 0 && keys[count - 1] == key ? count - 1 : KWNotFound;
}

std::uint32_t KWKeyFramedChannel::indexOfKeyframe(KWTime time) const {
    return indexOf(time.time());
}

bool KWKeyFramedChannel::isKeyframe(KWTime time) const {
    return indexOf(time.time()) != KWNotFound;
}

std::uint32_t KWKeyFramedChannel::keyframeIndexPrecedingTime(KWTime time) const {
    const std::vector<float>& keys = lists().keys;
    if (keys.empty())
        return KWNoKeyframes;
    const float t = time.time();
    if (_regular)
        return KWKeyFrameCurve::countNotAfter(keys.data(), keyframeCount(), t) - 1;
    // Not KWTime::compare, for which a NaN key or time would be greater.
    const auto after = std::find_if(keys.begin(), keys.end(), [t](float k) { return k > t; });
    return static_cast<std::uint32_t>(after - keys.begin()) - 1;
}

std::optional<std::array<KWTime, 2>>
KWKeyFramedChannel::boundingKeyframesForTime(KWTime time) const {
    const std::vector<float>& keys = lists().keys;
    if (keys.empty())
        return std::nullopt;
    const std::size_t after = position(time.time());
    const KWTime first = keys[after == 0 ? 0 : after - 1];
    const KWTime second = keys[std::min(after, keys.size() - 1)];
    return std::array<KWTime, 2>{first, second};
}

// --- Reading keys

std::vector<KWTime> KWKeyFramedChannel::allKeyframes() const {
    return {lists().keys.begin(), lists().keys.end()};
}

std::optional<KWTime> KWKeyFramedChannel::keyframeAtIndex(std::uint32_t index) const {
    if (index >= keyframeCount())
        return std::nullopt;
    return KWTime(lists().keys[index]);
}

std::optional<KWTime> KWKeyFramedChannel::firstKeyframe() const {
    return keyframeAtIndex(0);
}

std::optional<KWTime> KWKeyFramedChannel::lastKeyframe() const {
    return keyframeAtIndex(keyframeCount() - 1);
}

std::vector<KWTime> KWKeyFramedChannel::keyframesBetweenAnd(KWTime first, KWTime second) const {
    std::vector<KWTime> found;
    for (const float key : lists().keys)
        if (first.time() <= key && key <= second.time())
            found.emplace_back(key);
    return found;
}

float KWKeyFramedChannel::valueForKeyframeAtIndex(std::uint32_t index) const {
    return index < keyframeCount() ? lists().values.at(index) : 0.0f;
}

float KWKeyFramedChannel::valueForKeyframe(KWTime time) const {
    const std::uint32_t index = indexOf(time.time());
    return index == KWNotFound ? 0.0f : lists().values.at(index);
}

std::optional<KWData> KWKeyFramedChannel::hermiteValueForKeyframe(KWTime time) const {
    const std::uint32_t index = indexOf(time.time());
    if (index == KWNotFound)
        return std::nullopt;
    if (index >= lists().records.size())
        throw std::out_of_range("a key has no shape");
    return lists().records.data(index);
}

std::vector<float> KWKeyFramedChannel::valuesForKeyframes(const std::vector<KWTime>& keys) const {
    std::vector<float> values;
    values.reserve(keys.size());
    for (const KWTime key : keys)
        values.push_back(valueForKeyframe(key));
    return values;
}

std::vector<KWData>
KWKeyFramedChannel::hermiteValuesForKeyframes(const std::vector<KWTime>& keys) const {
    std::vector<KWData> records;
    records.reserve(keys.size());
    for (const KWTime key : keys) {
        std::optional<KWData> record = hermiteValueForKeyframe(key);
        if (!record)
            throw std::invalid_argument("no key at a time asked for");
        records.push_back(*std::move(record));
    }
    return records;
}

// --- Extents

HJRect KWKeyFramedChannel::boundingRect() const {
    constexpr double negligible = 1e-6;
    HJRect rect{0, 0, 10, 0};
    const std::vector<float>& keys = lists().keys;
    if (keys.size() > 1) {
        const float width = keys.back() - keys.front();
        if (!(std::fabs(double{width}) < negligible)) {
            rect.x = keys.front();
            rect.width = width;
        }
    }
    std::vector<float> values(keys.size());
    valuesForTimes(keys, values);
    float low = FLT_MAX;
    float high = -FLT_MAX;
    for (const float value : values) {
        low = value < low ? value : low;
        high = value > high ? value : high;
    }
    low = low > 0 ? 0.0f : low;
    high = high < 0 ? 0.0f : high;
    rect.y = low;
    rect.height = high - low;
    if (std::fabs(double{rect.height}) < negligible) {
        rect.y = -1;
        rect.height = 2;
    }
    return rect;
}

HJRect KWKeyFramedChannel::boundingRectInUserUnit() const {
    HJRect rect = boundingRect();
    const float bottom = convertValueToUserUnit(rect.y);
    rect.height = convertValueToUserUnit(rect.y + rect.height) - bottom;
    rect.y = bottom;
    return rect;
}

std::vector<KWTime> KWKeyFramedChannel::keyframesForBoundingRect(const HJRect& rect) const {
    const float right = rect.x + rect.width;
    const float top = rect.y + rect.height;
    std::vector<KWTime> found;
    for (std::size_t i = 0; i < lists().keys.size(); ++i) {
        const float key = lists().keys[i];
        if (!(rect.x <= key && key <= right))
            continue;
        const float value = _regular ? lists().values[i] : valueForKeyframe(key);
        if (rect.y <= value && value <= top)
            found.emplace_back(key);
    }
    return found;
}

HJKeyMoveRange
KWKeyFramedChannel::moveRangeForSelectedKeyframes(const std::vector<KWTime>& selected) const {
    const std::vector<float>& keys = lists().keys;
    if (selected.empty() || keys.empty())
        return {};
    std::vector<float> chosen;
    chosen.reserve(selected.size());
    for (const KWTime time : selected)
        if (!std::isnan(time.time()))
            chosen.push_back(time.time());
    std::sort(chosen.begin(), chosen.end());
    const auto isChosen = [&chosen](float key) {
        return !std::isnan(key) && std::binary_search(chosen.begin(), chosen.end(), key);
    };
    HJKeyMoveRange range{-FLT_MAX, FLT_MAX};
    bool wasChosen = isChosen(keys[0]);
    for (std::size_t i = 1; i < keys.size(); ++i) {
        const bool is = isChosen(keys[i]);
        if (is && !wasChosen)
            range.minimum = std::max(range.minimum, keys[i - 1] - keys[i]);
        if (!is && wasChosen)
            range.maximum = std::min(range.maximum, keys[i] - keys[i - 1]);
        wasChosen = is;
    }
    return range;
}
