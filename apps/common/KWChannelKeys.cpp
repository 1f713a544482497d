#include <KWFoundation/KWCoder.h>

#include <apps/common/KWChannelKeys.h>

#include <algorithm>
#include <cstring>

namespace {

/// Takes the lists that a channel encodes, which is the one way to its shapes by index.
class KeyCollector final : public KWCoder {
  public:
    explicit KeyCollector(KWChannelKeys& taken) : keys(taken) {}

    bool allowsKeyedCoding() const override { return false; }
    std::int64_t versionForClassName(std::string_view className) const override {
        const KWClass* const known = KWClassNamed(className);
        return known ? known->version() : std::int64_t{KWNotFound};
    }
    void encodeObject(const KWArchiveValue&) override {}
    void encodeConditionalObject(const std::shared_ptr<KWObject>&) override {}
    void encodeValuesOfObjCTypesAt(const char*, std::initializer_list<const void*>) override {}
    void encodeFloats(std::span<const float> list) override {
        keys.values.assign(list.begin(), list.end());
    }
    void encodeRealObjects(std::span<const float> list, const KWRealClass&) override {
        keys.times.assign(list.begin(), list.end());
    }
    void encodeRecords(std::span<const std::byte> list, std::size_t recordSize) override {
        if (recordSize != sizeof(HJHermiteParam) || list.empty())
            return;
        keys.shapes.resize(list.size() / recordSize);
        std::memcpy(keys.shapes.data(), list.data(), keys.shapes.size() * recordSize);
    }

    KWChannelKeys& keys;
};

} // namespace

KWChannelKeys kwKeysOf(const KWKeyFramedChannel& channel) {
    KWChannelKeys keys;
    if (channel.valueCount() == channel.keyframeCount() &&
        channel.hermiteCount() == channel.keyframeCount()) {
        KeyCollector collector(keys);
        // The channel's own part alone: a subclass may write more lists behind it.
        channel.KWKeyFramedChannel::encodeWithCoder(collector);
        return keys;
    }
    for (const KWTime time : channel.allKeyframes())
        keys.times.push_back(time.time());
    const std::uint32_t reachable = std::min(channel.keyframeCount(), channel.valueCount());
    for (std::uint32_t k = 0; k < reachable; ++k)
        keys.values.push_back(channel.valueForKeyframeAtIndex(k));
    return keys;
}
