#pragma once

#include <KWBase/KWKeyFramedChannel.h>

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <random>
#include <vector>

/// How many times a curve is asked for in a row: more than a processor can learn.
inline constexpr std::size_t KWSampleTimeCount = 100000;

struct KWSampleTangents {
    float start;
    float end;
};

/// A curve as a reader with no channels would hold it: keys at jittered distances, values in +-1,
/// shapes in +-0.9.
struct KWSampleKeys {
    explicit KWSampleKeys(std::size_t count, unsigned seed = 1)
        : channel(std::make_shared<KWKeyFramedChannel>()) {
        std::mt19937 random(seed);
        std::uniform_real_distribution<float> unit(-1, 1);
        float t = 0;
        for (std::size_t k = 0; k < count; ++k) {
            HJHermiteParam shape;
            shape.tension = 0.9f * unit(random);
            shape.bias = 0.9f * unit(random);
            shape.continuity = 0.9f * unit(random);
            t += 1 + 0.4f * unit(random);
            keys.push_back(t);
            values.push_back(unit(random));
            shapes.push_back(shape);
            channel->setValueHermiteValueForKeyframe(
                values[k], KWKeyFramedChannel::hermiteDataFrom(&shape), KWTime(t));
        }
        for (std::size_t k = 0; k + 1 < count; ++k)
            tangents.push_back(tangentsOf(k));
    }

    KWSampleTangents tangentsOf(std::size_t i) const {
        const std::size_t n = keys.size();
        const std::size_t j = i + 1;
        const double ti = keys[i];
        const double tj = keys[j];
        const double vi = values[i];
        const double vj = values[j];
        const double tp = i != 0 ? keys[i - 1] : keys[i];
        const double vp = i != 0 ? values[i - 1] : values[i];
        const double tq = i + 3 <= n ? keys[i + 2] : keys[j];
        const double vq = i + 3 <= n ? values[i + 2] : values[j];
        const HJHermiteParam& a = shapes[i];
        const HJHermiteParam& b = shapes[j];
        const double ai = tp < tj ? 2 * (tj - ti) / (tj - tp) : 1;
        const double aj = ti < tq ? 2 * (tj - ti) / (tq - ti) : 1;
        const double ki = (1 - double{a.tension}) * 0.5;
        const double kj = (1 - double{b.tension}) * 0.5;
        const double ca = a.continuity;
        const double cb = b.continuity;
        const double ba = a.bias;
        const double bb = b.bias;
        return {static_cast<float>(ai * ((vj - vi) * (1 - ca) * ki * (1 - ba) +
                                         ki * (ca + 1) * (ba + 1) * (vi - vp))),
                static_cast<float>(aj * ((vj - vi) * (1 - cb) * kj * (bb + 1) +
                                         kj * (cb + 1) * (1 - bb) * (vq - vj)))};
    }

    float blend(std::size_t i, float t, KWSampleTangents d) const {
        const float s = 1 - (keys[i + 1] - t) / (keys[i + 1] - keys[i]);
        const float s2 = s * s;
        const float s3 = s * s2;
        return (2 * s3 - 3 * s2 + 1) * values[i] + (-2 * s3 + 3 * s2) * values[i + 1] +
               (s3 - 2 * s2 + s) * d.start + (s3 - s2) * d.end;
    }

    float byBranchFreeSearch(float t) const {
        const float* base = keys.data();
        std::size_t left = keys.size();
        while (left > 1) {
            const std::size_t half = left / 2;
            base += static_cast<std::size_t>(base[half] <= t) * half;
            left -= half;
        }
        const auto i = static_cast<std::size_t>(base - keys.data());
        if (t < keys.front())
            return values.front();
        return i + 1 < keys.size() ? blend(i, t, tangents[i]) : values.back();
    }

    float byUpperBound(float t) const {
        const auto after = std::upper_bound(keys.begin(), keys.end(), t);
        if (after == keys.begin())
            return values.front();
        if (after == keys.end())
            return values.back();
        const auto i = static_cast<std::size_t>(after - keys.begin()) - 1;
        return blend(i, t, tangentsOf(i));
    }

    std::shared_ptr<KWKeyFramedChannel> channel;
    std::vector<float> keys;
    std::vector<float> values;
    std::vector<HJHermiteParam> shapes;
    std::vector<KWSampleTangents> tangents;
};

/// The same with times to ask for.
struct KWSampleCurve : KWSampleKeys {
    explicit KWSampleCurve(std::size_t count) : KWSampleKeys(count) {
        std::mt19937 random(2);
        std::uniform_real_distribution<float> inside(keys.front(), keys.back());
        for (std::size_t k = 0; k < KWSampleTimeCount; ++k) {
            times.push_back(inside(random));
        }
        for (std::size_t k = 0; k < 10 * count; ++k)
            rising.push_back(keys.front() + (keys.back() - keys.front()) * static_cast<float>(k) /
                                                static_cast<float>(10 * count));
        const std::size_t played = std::min(count - 1, std::size_t{10000}) * 60;
        for (std::size_t k = 0; k < played; ++k)
            frames.push_back(std::min(keys.front() + static_cast<float>(k) / 60, keys.back()));
    }

    std::vector<float> times;  ///< anywhere between the first and the last key
    std::vector<float> rising; ///< over all keys, ten for each
    std::vector<float> frames; ///< 60 for each key, over at most 10,000 keys
};

/// Curves of 10, 1,000 and 100,000 keys, made once.
inline const KWSampleCurve& KWSampleCurveOf(std::int64_t count) {
    static const KWSampleCurve small(10);
    static const KWSampleCurve medium(1000);
    static const KWSampleCurve large(100000);
    return count == 10 ? small : count == 1000 ? medium : large;
}

/// A million rising times, equally far from each other, over a curve of 1,000 keys.
inline const std::vector<float>& KWSampleDenseTimes() {
    static const std::vector<float> all = [] {
        const KWSampleCurve& curve = KWSampleCurveOf(1000);
        std::vector<float> times(1'000'000);
        for (std::size_t k = 0; k < times.size(); ++k)
            times[k] =
                static_cast<float>(static_cast<double>(curve.keys.front()) +
                                   static_cast<double>(curve.keys.back() - curve.keys.front()) *
                                       static_cast<double>(k) / static_cast<double>(times.size()));
        return times;
    }();
    return all;
}

/// Asks for each time alone.
template <class Evaluate>
void KWEvaluateEach(benchmark::State& state, const std::vector<float>& times, Evaluate evaluate) {
    for (auto _ : state)
        for (const float t : times)
            benchmark::DoNotOptimize(evaluate(t));
    state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(times.size()));
}
