#include <KWBase/KWFloat4.h>
#include <KWBase/KWKeyFrameCurve.h>
#include <KWBase/KWKeyFrameKernels.h>

#include <algorithm>
#include <bit>
#include <cstring>
#include <functional>
#include <stdexcept>
#include <typeinfo>

namespace {

/// Evaluates a regular channel with more than one key at many times. Where several times in a row
/// lie between the same two keys they are done twelve at a time, more than are wanted: what lies in
/// the next stretch is written over by the next round, which costs less than to find the end first.
/// Other times are done four at a time, each lane in a stretch of its own. Values that the vectors
/// do not answer as the channel would - NaN, and what lies in no stretch - are asked of the
/// channel.
class Sampler {
  public:
    /// The index may be null.
    Sampler(const KWKeyFramedChannel& channel, const KWKeyFrameCurve& curve,
            const KWKeyFrameIndex* index)
        : _channel(channel), _curve(curve), _last(static_cast<std::int32_t>(curve.count) - 1),
          _index(index), _kernels(KWKeyFrameKernels::best()) {}

    static constexpr std::size_t chunk = 512;
    /// How far beyond the times both lists reach.
    static constexpr std::size_t margin = KWKeyFrameKernels::lanes;

    /// Times that are mapped into the keyed range, and `times` as they came, which may be the same
    /// list. Behind both lists lies a margin: of times of whatever kind, and of room for values.
    void sample(const float* times, const float* mapped, float* values, std::size_t count) {
        for (_done = 0; _done < count;) {
            const float* t = mapped + _done;
            float* to = values + _done;
            if (_kernels && sampleWidely(times, t, to, values, count))
                continue;
            std::size_t length = run(t, to);
            if (length < 4) {
                length = 4;
                block(t, to);
            }
            const std::size_t end = std::min(count, _done + length);
            if (_repairs) [[unlikely]]
                repair(times, values, end);
            _done = end;
        }
    }

    /// How many of the latest sample's values are right, when it was left by an exception.
    std::size_t done() const { return _done; }

  private:
    using Lanes = std::int32_t[4];

    struct Stretch {
        KWFloat4 ti, tj, vi, vj, start, end;
    };

    /// With the wide vectors of this processor. False when nothing could be done.
    bool sampleWidely(const float* times, const float* t, float* to, float* values,
                      std::size_t count) {
        if (!_isScattered) {
            const KWKeyFrameStretch stretch = _curve.stretch(static_cast<std::uint32_t>(_segment));
            const std::size_t start = _done;
            bool hasNaN = false;
            const std::size_t length =
                _kernels->run(stretch, _curve.mode, t, to, count - start, hasNaN);
            if (hasNaN) [[unlikely]]
                for (std::size_t k = start; k < start + length; ++k)
                    if (values[k] != values[k])
                        ask(times, values, k);
            _done = start + length;
            if (_done < count) {
                // Rising times go on in the next stretch.
                _segment = std::min(_segment + 1, _last - 1);
                _isScattered = length < 4 && _index;
            }
            if (length != 0)
                return true;
        }
        if (!_index)
            return false;
        const std::size_t length = std::min(KWKeyFrameKernels::block, count - _done);
        const std::size_t start = _done;
        std::uint64_t wrong = _kernels->scattered(_curve, *_index, t, to, length, _segment);
        for (; wrong != 0; wrong &= wrong - 1)
            ask(times, values, start + static_cast<std::size_t>(std::countr_zero(wrong)));
        _done = start + length;
        // Several at the end in one stretch may be the start of a run.
        const auto segment = static_cast<std::size_t>(_segment);
        const float from = _curve.keys[segment];
        _isScattered = length < 4 || !(t[length - 4] >= from && t[length - 1] >= from &&
                                       t[length - 4] < _curve.keys[segment + 1]);
        return true;
    }

    /// Evaluates as if twelve times lay in the expected stretch, and answers how many do before the
    /// first that does not. Nothing is done when that is one of the first four.
    std::size_t run(const float* t, float* values) {
        const auto s = static_cast<std::size_t>(_segment);
        const KWFloat4 ti = KWFloat4All(_curve.keys[s]);
        const KWFloat4 tj = KWFloat4All(_curve.keys[s + 1]);
        const KWFloat4 t0 = KWFloat4Load(t);
        const KWFloat4 t1 = KWFloat4Load(t + 4);
        const KWFloat4 t2 = KWFloat4Load(t + 8);
        const unsigned outside = KWInt4Bits(~((t0 >= ti) & (t0 < tj))) |
                                 KWInt4Bits(~((t1 >= ti) & (t1 < tj))) << 4 |
                                 KWInt4Bits(~((t2 >= ti) & (t2 < tj))) << 8 | 1u << 12;
        const auto length = static_cast<std::size_t>(std::countr_zero(outside));
        if (length < 4)
            return 0;
        const Stretch stretch{ti,
                              tj,
                              KWFloat4All(_curve.values[s]),
                              KWFloat4All(_curve.values[s + 1]),
                              KWFloat4All(_curve.tangents[s].start),
                              KWFloat4All(_curve.tangents[s].end)};
        const KWFloat4 v0 = valueInside(stretch, t0);
        const KWFloat4 v1 = valueInside(stretch, t1);
        const KWFloat4 v2 = valueInside(stretch, t2);
        KWFloat4Store(values, v0);
        KWFloat4Store(values + 4, v1);
        KWFloat4Store(values + 8, v2);
        _repairs = KWInt4Bits((v0 != v0) | (v1 != v1) | (v2 != v2));
        _outside = 0;
        // Rising times go on in the next stretch.
        _segment = std::min(_segment + (length < 12), _last - 1);
        return length;
    }

    void block(const float* t, float* values) {
        _repairs = 0;
        const KWFloat4 four = KWFloat4Load(t);
        alignas(16) Lanes index;
        _outside = 0;
        if (!findNear(four, t[3], index)) {
            if (holdsEnd(four, values))
                return;
            _outside = search(t, index);
        }
        const KWFloat4 value = valueInside(gather(index), four);
        KWFloat4Store(values, value);
        _repairs = KWInt4Bits(value != value) | _outside;
    }

    /// The stretches of four times, provided that none is before the expected one or more than two
    /// behind it.
    bool findNear(KWFloat4 t, float lastTime, Lanes& index) {
        if (_last < 3)
            return false;
        // The expected stretch may be one ahead of the times.
        const std::int32_t near = std::clamp(_segment - 1, 0, _last - 3);
        const float* keys = _curve.keys + near;
        const KWFloat4 k1 = KWFloat4All(keys[1]);
        const KWFloat4 k2 = KWFloat4All(keys[2]);
        const KWInt4 inside = (t >= KWFloat4All(keys[0])) & (t < KWFloat4All(keys[3]));
        if (KWInt4Bits(inside) != 15)
            return false;
        const KWInt4 found = KWInt4{near, near, near, near} - (t >= k1) - (t >= k2);
        std::memcpy(index, &found, sizeof(index));
        _segment = near + (lastTime >= keys[1]) + (lastTime >= keys[2]);
        return true;
    }

    /// Fills in the value of an end that all four times are beyond, where it holds.
    bool holdsEnd(KWFloat4 t, float* values) const {
        if (_curve.repeat != KWRepeatModeNone)
            return false;
        const bool before = KWInt4Bits(t < KWFloat4All(_curve.keys[0])) == 15;
        if (!before && KWInt4Bits(t >= KWFloat4All(_curve.keys[_last])) != 15)
            return false;
        std::fill_n(values, 4, _curve.values[before ? 0 : _last]);
        return true;
    }

    /// Answers the lanes that lie in no stretch, NaN among them; they get one of the outermost.
    unsigned search(const float* t, Lanes& index) {
        const float* base[4] = {_curve.keys, _curve.keys, _curve.keys, _curve.keys};
        std::size_t left = _curve.count;
        while (left > 1) {
            const std::size_t half = left / 2;
            for (int lane = 0; lane < 4; ++lane)
                base[lane] += static_cast<std::size_t>(base[lane][half] <= t[lane]) * half;
            left -= half;
        }
        unsigned outside = 0;
        for (int lane = 0; lane < 4; ++lane) {
            const auto preceding =
                static_cast<std::int32_t>(base[lane] - _curve.keys) - 1 + (*base[lane] <= t[lane]);
            index[lane] = std::clamp(preceding, 0, _last - 1);
            outside |= preceding != index[lane] ? 1u << lane : 0u;
        }
        _segment = index[3];
        return outside;
    }

    Stretch gather(const Lanes& index) const {
        Stretch stretch;
        constexpr std::size_t one = sizeof(float);
        KWFloat4GatherPairs(_curve.keys, one, index, stretch.ti, stretch.tj);
        KWFloat4GatherPairs(_curve.values, one, index, stretch.vi, stretch.vj);
        KWFloat4GatherPairs(_curve.tangents, sizeof(KWKeyFrameTangents), index, stretch.start,
                            stretch.end);
        return stretch;
    }

    KWFloat4 valueInside(const Stretch& x, KWFloat4 t) const {
        if (_curve.mode == KWKeyFrameModeHermite) {
            const KWFloat4 s = 1.0f - (x.tj - t) / (x.tj - x.ti);
            return KWKeyFrameCurve::blend(s, x.vi, x.vj, x.start, x.end);
        }
        if (_curve.mode == KWKeyFrameModeLinear)
            return x.vj + ((x.tj - t) / (x.tj - x.ti)) * (x.vi - x.vj);
        return _curve.mode == KWKeyFrameModeStep ? x.vi : KWFloat4{};
    }

    void repair(const float* times, float* values, std::size_t end) {
        const std::size_t start = _done;
        for (std::size_t k = start; k < end; ++k) {
            const bool isOutside = (_outside >> (k - start) & 1) != 0;
            if (!isOutside && values[k] == values[k])
                continue;
            ask(times, values, k);
        }
    }

    // An exception leaves it clear how far the values are right.
    void ask(const float* times, float* values, std::size_t k) {
        _done = k;
        values[k] = _channel.KWKeyFramedChannel::valueForTime(KWTime(times[k]));
    }

    const KWKeyFramedChannel& _channel;
    const KWKeyFrameCurve _curve;
    const std::int32_t _last;
    const KWKeyFrameIndex* const _index;
    const KWKeyFrameKernels* const _kernels;
    bool _isScattered = false; ///< whether the latest times were not in one stretch
    std::int32_t _segment = 0; ///< where the next time is expected
    std::size_t _done = 0;
    unsigned _repairs = 0; ///< not 0 when some latest value is to be asked of the channel:
    unsigned _outside = 0; ///< these lanes, and those that are NaN
};

static_assert(sizeof(KWKeyFrameTangents) == 2 * sizeof(float));

/// How many of the times can be read and how many values written where they are: those with a
/// margin behind them, provided that they need no mapping and that no value overwrites a time.
std::size_t countOfDirect(std::span<const float> times, std::span<const float> values,
                          std::int32_t repeat) {
    const std::less_equal<const float*> isNotAfter;
    const bool isApart = isNotAfter(times.data() + times.size(), values.data()) ||
                         isNotAfter(values.data() + values.size(), times.data());
    if (!isApart || repeat != KWRepeatModeNone || times.size() <= Sampler::margin)
        return 0;
    return times.size() - Sampler::margin;
}

/// By way of buffers, so that values may overwrite the very times.
void sampleByBuffers(Sampler& sampler, const KWKeyFrameCurve& curve, std::span<const float> times,
                     std::span<float> values) {
    constexpr std::size_t chunk = Sampler::chunk;
    alignas(16) float mapped[chunk + Sampler::margin];
    alignas(16) float results[chunk + Sampler::margin];
    for (std::size_t at = 0; at < times.size(); at += chunk) {
        const std::size_t count = std::min(chunk, times.size() - at);
        const float* from = times.data() + at;
        if (curve.repeat == KWRepeatModeNone)
            std::copy_n(from, count, mapped);
        else
            std::transform(from, from + count, mapped,
                           [&curve](float t) { return curve.mappedTime(t); });
        std::fill_n(mapped + count, Sampler::margin, mapped[count - 1]);
        try {
            sampler.sample(from, mapped, results, count);
        } catch (...) {
            std::copy_n(results, sampler.done(), values.data() + at);
            throw;
        }
        std::copy_n(results, count, values.data() + at);
    }
}

} // namespace

void KWKeyFramedChannel::valuesForTimes(std::span<const float> times,
                                        std::span<float> values) const {
    // A subclass may answer other values one by one.
    if (keyframeCount() < 2 || !_regular || typeid(*this) != typeid(KWKeyFramedChannel)) {
        KWChannel::valuesForTimes(times, values);
        return;
    }
    if (times.size() != values.size())
        throw std::invalid_argument("as many values as times are wanted");
    const KWKeyFrameCurve curve = this->curve();
    _index.noteSearches({curve.keys, curve.count}, times.size());
    Sampler sampler(*this, curve, _index.index());
    const std::size_t direct = countOfDirect(times, values, curve.repeat);
    if (direct != 0)
        sampler.sample(times.data(), times.data(), values.data(), direct);
    sampleByBuffers(sampler, curve, times.subspan(direct), values.subspan(direct));
}
