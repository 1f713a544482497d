#include <KWBase/KWKeyChange.h>
#include <KWBase/KWKeyMove.h>
#include <KWFoundation/KWFirstException.h>

#include <algorithm>
#include <bit>
#include <cstdint>
#include <iterator>

namespace {

struct Lists {
    std::vector<float> values;
    std::vector<KWData> records;
    std::vector<KWTime> keys;

    void add(const KWKey& key) {
        values.push_back(key.value);
        records.push_back(key.record);
        keys.emplace_back(key.time);
    }
};

bool isEarlier(const KWKey& a, const KWKey& b) {
    return a.time < b.time;
}

bool hasSameBits(float a, float b) {
    return std::bit_cast<std::uint32_t>(a) == std::bit_cast<std::uint32_t>(b);
}

/// All keys as they will be.
Lists mergedKeys(const KWKeyFramedChannel& channel, const KWKeyChange& change) {
    Lists lists;
    std::vector<KWTime> removed = change.removed;
    std::sort(removed.begin(), removed.end());
    auto gone = removed.begin();
    auto set = change.set.begin();
    for (const KWTime time : channel.allKeyframes()) {
        for (; set != change.set.end() && set->time < time.time(); ++set)
            lists.add(*set);
        if (gone != removed.end() && *gone == time) {
            ++gone;
            continue;
        }
        KWKey key = *KWKeyAt(channel, time);
        if (set != change.set.end() && set->time == time.time()) {
            key.value = set->value;
            key.record = set->record;
            ++set;
        }
        lists.add(key);
    }
    for (; set != change.set.end(); ++set)
        lists.add(*set);
    return lists;
}

} // namespace

bool KWHasOrderlyKeys(const KWKeyFramedChannel& channel) {
    if (channel.isRegular())
        return true;
    const std::uint32_t count = channel.keyframeCount();
    if (channel.valueCount() != count || channel.hermiteCount() != count)
        return false;
    const std::vector<KWTime> keys = channel.allKeyframes();
    const bool rises = std::adjacent_find(keys.begin(), keys.end(), [](KWTime a, KWTime b) {
                           return !(a < b);
                       }) == keys.end();
    return rises && (count != 1 || keys.front() == keys.front());
}

std::optional<KWKey> KWKeyAt(const KWKeyFramedChannel& channel, KWTime time) {
    const std::uint32_t index = channel.indexOfKeyframe(time);
    if (index == KWNotFound)
        return std::nullopt;
    return KWKey{channel.keyframeAtIndex(index)->time(), channel.valueForKeyframeAtIndex(index),
                 *channel.hermiteValueForKeyframe(time)};
}

KWKeyChange KWNormalKeyChange(const KWKeyFramedChannel& channel, KWKeyChange change) {
    std::stable_sort(change.set.begin(), change.set.end(), isEarlier);
    std::vector<KWKey> set;
    for (KWKey& key : change.set) {
        if (!set.empty() && set.back().time == key.time)
            set.pop_back();
        set.push_back(std::move(key));
    }
    std::vector<KWTime> removed = KWKeyMove::inOrderOfRemoval(std::move(change.removed));
    std::erase_if(removed, [&](KWTime time) {
        return !channel.isKeyframe(time) ||
               std::binary_search(set.begin(), set.end(), KWKey{time.time(), 0, {}}, isEarlier);
    });
    return {std::move(removed), std::move(set)};
}

std::optional<KWChannelEdit> KWKindOfKeyChange(const KWKeyFramedChannel& channel,
                                               const KWKeyChange& change) {
    if (!change.removed.empty())
        return KWChannelEdit::keys;
    bool changesBits = false;
    bool changesShapes = false;
    for (const KWKey& key : change.set) {
        const std::optional<KWKey> old = KWKeyAt(channel, KWTime(key.time));
        if (!old || (old->value != key.value && !hasSameBits(old->value, key.value)))
            return KWChannelEdit::keys;
        changesBits = changesBits || !hasSameBits(old->value, key.value);
        changesShapes = changesShapes || old->record != key.record;
    }
    if (changesBits)
        return KWChannelEdit::value;
    if (changesShapes)
        return KWChannelEdit::shape;
    return std::nullopt;
}

void KWApplyKeyChange(KWKeyFramedChannel& channel, const KWKeyChange& change,
                      KWFirstException& raised) {
    // One key that comes or goes moves all that are behind it; setting all anew moves none.
    constexpr std::uint64_t mostMoves = 1 << 22;
    const std::uint64_t moves =
        static_cast<std::uint64_t>(change.removed.size() + change.set.size()) *
        channel.keyframeCount();
    Lists lists;
    if (moves > mostMoves && channel.isRegular()) {
        lists = mergedKeys(channel, change);
        raised.during([&] { channel.removeAllKeyframes(); });
    } else {
        for (const KWKey& key : change.set)
            lists.add(key);
        raised.during([&] { channel.removeValuesForKeyframes(change.removed); });
    }
    // Without keys this invalidates the channel, and no more.
    raised.during([&] {
        channel.setValuesHermiteValuesForKeyframes(lists.values, lists.records, lists.keys);
    });
}
