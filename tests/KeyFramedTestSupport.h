#pragma once

#include "ChannelTestSupport.h"

#include <KWBase/KWKeyFramedChannel.h>
#include <KWFoundation/KWCoder.h>
#include <KWFoundation/KWException.h>
#include <KWFoundation/KWUndoManager.h>

#include <cmath>
#include <cstring>
#include <functional>
#include <limits>
#include <memory>
#include <random>
#include <string>
#include <vector>

inline constexpr float kwInfinity = std::numeric_limits<float>::infinity();
inline constexpr float kwNaN = std::numeric_limits<float>::quiet_NaN();

/// A channel's lists in the plainest form, and its value by the plainest way: a walk from the start
/// and the formulas one after the other.
struct PlainChannel {
    std::vector<float> keys;
    std::vector<float> values;
    std::vector<KWData> records;
    std::int32_t mode = KWKeyFrameModeHermite;
    std::int32_t repeat = KWRepeatModeNone;

    static HJHermiteParam paramOf(const KWData& record) {
        HJHermiteParam param;
        if (!record.empty())
            std::memcpy(&param, record.data(), std::min(record.size(), sizeof(param)));
        return param;
    }

    float valueForTime(float t) const {
        const auto n = static_cast<std::uint32_t>(keys.size());
        if ((repeat == 1 || repeat == 2) && n > 1 && keys[0] < keys[n - 1]) {
            const float t0 = keys[0];
            const float tN = keys[n - 1];
            const float length = tN - t0;
            const float f = std::floor((t - t0) / length);
            if (repeat == 1) {
                const double product = static_cast<double>(f) * static_cast<double>(length);
                t = static_cast<float>(static_cast<double>(t) - product);
            } else {
                std::int64_t k = 0;
                if (f >= 2147483647.0f)
                    k = 2147483647;
                else if (f <= -2147483648.0f)
                    k = -2147483648LL;
                else if (!std::isnan(f))
                    k = static_cast<std::int64_t>(f);
                const float back = length * static_cast<float>(k);
                t = t - back;
                if (k % 2 != 0)
                    t = tN - (t - t0);
            }
            if (mode == 1 && t < t0)
                t = t0;
        }
        if (n == 0)
            return 0.0f;
        std::uint32_t i0 = 0xffffffff;
        for (std::uint32_t k = 0; k < n && !(keys[k] > t); ++k)
            i0 = k;
        if (n == 1 || (repeat == 0 && i0 == 0xffffffff))
            return values.at(0);
        if (repeat == 0 && i0 == n - 1)
            return values.at(n - 1);
        return betweenKeys(n, i0, t);
    }

    float betweenKeys(std::uint32_t n, std::uint32_t i0, float t) const {
        const std::uint32_t i = (n + i0) % n;
        const std::uint32_t j = (n + i0 + 1) % n;
        if (records.at(i).size() != 36)
            throw KWException("KWHermiteParam size mismatch");
        const HJHermiteParam pi = paramOf(records.at(i));
        const HJHermiteParam pj = paramOf(records.at(j));
        const float ti = keys.at(i);
        const float tj = keys.at(j);
        const float vi = values.at(i);
        const float vj = values.at(j);
        if (mode == 0) {
            if (ti == tj)
                return vi;
            const float share = (tj - t) / (tj - ti);
            const float scaled = share * (vi - vj);
            return vj + scaled;
        }
        if (mode == 2)
            return vi;
        if (mode != 1)
            return 0.0f;
        float vp = vi;
        float tp = ti;
        if (i0 != 0) {
            vp = values.at(i0 - 1);
            tp = keys.at(i0 - 1);
        }
        float vq = vj;
        float tq = tj;
        if (i0 + 3 <= n && n > 2) {
            vq = values.at(i0 + 2);
            tq = keys.at(i0 + 2);
        }
        const auto wide = [](float x) { return static_cast<double>(x); };
        const double ai = tp < tj ? 2 * (wide(tj) - wide(ti)) / (wide(tj) - wide(tp)) : 1.0;
        const double aj = ti < tq ? 2 * (wide(tj) - wide(ti)) / (wide(tq) - wide(ti)) : 1.0;
        const double ki = (1 - wide(pi.tension)) * 0.5;
        const double kj = (1 - wide(pj.tension)) * 0.5;
        double a = wide(vj) - wide(vi);
        a *= 1 - wide(pi.continuity);
        a *= ki;
        a *= 1 - wide(pi.bias);
        double b = ki * (wide(pi.continuity) + 1);
        b *= wide(pi.bias) + 1;
        b *= wide(vi) - wide(vp);
        const auto di = static_cast<float>(ai * (a + b));
        a = wide(vj) - wide(vi);
        a *= 1 - wide(pj.continuity);
        a *= kj;
        a *= wide(pj.bias) + 1;
        b = kj * (wide(pj.continuity) + 1);
        b *= 1 - wide(pj.bias);
        b *= wide(vq) - wide(vj);
        const auto dj = static_cast<float>(aj * (a + b));
        if (ti == tj)
            return vi;
        const float s = 1 - (tj - t) / (tj - ti);
        const float s2 = s * s;
        const float s3 = s * s2;
        const float h1 = 2 * s3 - 3 * s2 + 1;
        const float h2 = -2 * s3 + 3 * s2;
        const float h3 = s3 - 2 * s2 + s;
        const float h4 = s3 - s2;
        float result = h1 * vi;
        result += h2 * vj;
        result += h3 * di;
        result += h4 * dj;
        return result;
    }
};

/// Hands a channel's lists to initWithCoder as an archive would, however they are.
class ListCoder final : public KWCoder {
  public:
    explicit ListCoder(const PlainChannel& lists) : _lists(lists) {}
    ~ListCoder() override = default;

    bool allowsKeyedCoding() const override { return true; }
    bool containsValueForKey(std::string_view) const override { return false; }
    KWArchiveValue decodeObjectForKey(std::string_view) override { return {}; }
    std::int32_t decodeInt32ForKey(std::string_view key) override {
        return key == "mode" ? _lists.mode : key == "repeat" ? _lists.repeat : 32;
    }
    bool decodeFloatsForKey(std::vector<float>& list, std::string_view) override {
        list = _lists.values;
        return true;
    }
    bool decodeRealObjectsForKey(std::vector<float>& list, const KWRealClass&,
                                 std::string_view) override {
        list = _lists.keys;
        return true;
    }
    bool decodeRecordsForKey(std::vector<std::byte>& list, std::size_t size,
                             std::string_view) override {
        list.clear();
        for (const KWData& record : _lists.records) {
            KWData swapped(size);
            for (std::size_t k = 0; k < 12; ++k)
                swapped[k] = record[k / 4 * 4 + 3 - k % 4];
            list.insert(list.end(), swapped.begin(), swapped.end());
        }
        return true;
    }

  private:
    const PlainChannel& _lists;
};

inline std::shared_ptr<KWKeyFramedChannel> channelFromLists(const PlainChannel& lists) {
    auto channel = std::make_shared<KWKeyFramedChannel>();
    ListCoder coder(lists);
    if (!channel->initWithCoder(coder))
        return nullptr;
    return channel;
}

inline KWData recordWith(float tension, float bias = 0, float continuity = 0) {
    const HJHermiteParam param{tension, bias, continuity, {}};
    return KWKeyFramedChannel::hermiteDataFrom(&param);
}

/// Keys with neutral shapes.
inline std::shared_ptr<KWKeyFramedChannel>
channelWithKeys(const std::vector<std::pair<float, float>>& keys,
                std::int32_t mode = KWKeyFrameModeHermite, std::int32_t repeat = KWRepeatModeNone) {
    auto channel = std::make_shared<KWKeyFramedChannel>();
    for (const auto& [key, value] : keys)
        channel->setValueForKeyframe(value, KWTime(key));
    channel->setKeyFrameChannelMode(mode);
    channel->setRepeatMode(repeat);
    return channel;
}

inline std::vector<float> timesOf(const std::vector<KWTime>& times) {
    std::vector<float> floats;
    for (const KWTime time : times)
        floats.push_back(time.time());
    return floats;
}

/// Keys, values and records as one text, bit for bit.
inline std::string contentsOf(const KWKeyFramedChannel& channel) {
    std::string text;
    const auto keys = channel.allKeyframes();
    for (std::uint32_t k = 0; k < keys.size(); ++k) {
        text += std::to_string(bitsOf(keys[k].time())) + ":" +
                std::to_string(bitsOf(channel.valueForKeyframeAtIndex(k))) + ":";
        const KWData record = channel.hermiteValueForKeyframe(keys[k]).value_or(KWData());
        for (const std::byte b : record)
            text += std::to_string(std::to_integer<int>(b)) + ",";
        text += "\n";
    }
    return text;
}

/// A channel whose owner has an undo manager.
struct Edited {
    Edited() {
        owner.manager = manager.get();
        channel->setOwner(&owner);
    }
    void set(float value, float key) { channel->setValueForKeyframe(value, KWTime(key)); }
    void set(float value, const KWData& record, float key) {
        channel->setValueHermiteValueForKeyframe(value, record, KWTime(key));
    }
    int steps() const {
        int count = 0;
        for (; manager->canUndo(); ++count)
            manager->undo();
        for (int k = 0; k < count; ++k)
            manager->redo();
        return count;
    }

    std::shared_ptr<KWUndoManager> manager = std::make_shared<KWUndoManager>();
    CountingOwner owner;
    std::shared_ptr<KWKeyFramedChannel> channel = std::make_shared<KWKeyFramedChannel>();
};

/// A record of any length, no byte of it zero.
inline KWData oddRecord(std::size_t size) {
    KWData record(size);
    for (std::size_t k = 0; k < size; ++k)
        record[k] = static_cast<std::byte>(k + 1);
    return record;
}

/// What a call came to: a float's bits, or which exception.
struct Outcome {
    std::string exception;
    std::uint32_t bits = 0;
    bool isNumber = true;

    static Outcome of(const std::function<float()>& call) {
        Outcome outcome;
        try {
            const float value = call();
            outcome.bits = bitsOf(value);
            outcome.isNumber = !std::isnan(value);
        } catch (const std::out_of_range&) {
            outcome.exception = "out of range";
        } catch (const KWException& exception) {
            outcome.exception = exception.name();
        }
        return outcome;
    }
    /// Bit for bit.
    friend bool operator==(const Outcome&, const Outcome&) = default;
    /// Bit for bit but for NaNs, whose bits no formula states.
    bool agreesWith(const Outcome& other) const {
        return exception == other.exception &&
               (bits == other.bits || (!isNumber && !other.isNumber));
    }
    friend std::ostream& operator<<(std::ostream& out, const Outcome& outcome) {
        return out << outcome.exception << std::bit_cast<float>(outcome.bits) << " (bits "
                   << outcome.bits << ")";
    }
};
