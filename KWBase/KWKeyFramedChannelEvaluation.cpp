#include <KWBase/KWKeyFrameCurve.h>
#include <KWFoundation/KWException.h>

#include <cmath>
#include <typeinfo>

// Of two NaNs the processor answers the first operand's, and the compiler may exchange operands. So
// that all readers get the same bits, the cursor and the batch leave every value that is NaN to
// this function, of which inlining must make no second copy.
[[gnu::noinline]] float KWKeyFramedChannel::valueForTime(std::optional<KWTime> time) const {
    float t = time.value_or(KWTime(0)).time();
    if (!_regular) [[unlikely]] {
        if (!isRegular())
            return valueByWalking(t);
    }
    const KWKeyFrameCurve curve = this->curve();
    if (curve.count < 2) [[unlikely]]
        return curve.count == 0 ? 0.0f : curve.values[0];
    if (curve.repeat != KWRepeatModeNone)
        t = curve.mappedTime(t);
    const std::uint32_t preceding = countNotAfter(curve, t) - 1;
    if (preceding >= curve.count - 1) [[unlikely]] {
        if (curve.repeat == KWRepeatModeNone)
            return curve.values[preceding < curve.count ? preceding : 0];
        return interpolate(preceding, t);
    }
    return curve.valueInside(preceding, t);
}

// Times that rise slowly, as those of a player do, mostly lie where the one before did.
float KWKeyFramedChannel::valueForUpdate(KWTime time) {
    // A subclass may evaluate in its own way.
    if (typeid(*this) != typeid(KWKeyFramedChannel)) [[unlikely]]
        return valueForTime(time);
    const float t = time.time();
    if (_mode == KWKeyFrameModeHermite && _repeat == KWRepeatModeNone &&
        ((t >= _place.stretch.from && t < _place.stretch.to) || stepOn(_place, t))) [[likely]] {
        const float value = KWKeyFrameCurve::hermiteInside(_place, t);
        if (value == value) [[likely]]
            return value;
    }
    return valueNear(_place, t);
}

// The place's stretch must be that of its segment as the keys are now, or hold no time. Which of
// several NaNs comes out is for valueForTime to say.
float KWKeyFramedChannel::valueNear(KWKeyFramePlace& place, float time) const {
    const KWKeyFrameCurve curve = this->curve();
    if (!_regular || curve.count < 2) [[unlikely]]
        return KWKeyFramedChannel::valueForTime(KWTime(time));
    float t = time;
    if (curve.repeat != KWRepeatModeNone)
        t = curve.mappedTime(t);
    if (!(t >= place.stretch.from && t < place.stretch.to)) {
        std::uint32_t i = place.segment + 1;
        if (!(i < curve.count - 1 && t >= curve.keys[i] && t < curve.keys[i + 1])) {
            i = countNotAfter(curve, t) - 1;
            if (i >= curve.count - 1)
                return KWKeyFramedChannel::valueForTime(KWTime(time));
        }
        place = curve.place(i);
    }
    const float value = KWKeyFrameCurve::valueInside(place.stretch, t, curve.mode);
    if (value != value) [[unlikely]]
        return KWKeyFramedChannel::valueForTime(KWTime(time));
    return value;
}

float KWKeyFramedChannel::valueByWalking(float t) const {
    const std::vector<float>& keys = lists().keys;
    const std::uint32_t count = keyframeCount();
    if (count > 1)
        t = KWKeyFrameCurve::mappedTime(t, keys.front(), keys.back(), _mode, _repeat);
    const std::uint32_t preceding = keyframeIndexPrecedingTime(t);
    if (count == 0)
        return 0.0f;
    if (count == 1 || (_repeat == KWRepeatModeNone && preceding == KWBeforeFirstKeyframe))
        return lists().values.at(0);
    if (_repeat == KWRepeatModeNone && preceding == count - 1)
        return lists().values.at(preceding);
    return interpolate(preceding, t);
}

// From the key that precedes the time to the next one, where the last and the first key are
// neighbours too. Wants at least two keys; `preceding` may be -1.
float KWKeyFramedChannel::interpolate(std::uint32_t preceding, float t) const {
    const KWKeyFrames& frames = lists();
    const std::uint32_t count = keyframeCount();
    const std::uint32_t i = (count + preceding) % count;
    const std::uint32_t j = (count + preceding + 1) % count;
    if (i >= frames.records.size())
        throw std::out_of_range("a key has no shape");
    if (frames.records.isOdd(i))
        throw KWException("KWHermiteParam size mismatch");
    const float ti = frames.keys[i];
    const float tj = frames.keys[j];
    const float vi = frames.values.at(i);
    const float vj = frames.values.at(j);
    if (j >= frames.records.size())
        throw std::out_of_range("a key has no shape");
    switch (_mode) {
    case KWKeyFrameModeLinear:
        return ti == tj ? vi : vj + ((tj - t) / (tj - ti)) * (vi - vj);
    case KWKeyFrameModeStep:
        return vi;
    case KWKeyFrameModeHermite: {
        const KWKeyFrameTangents slopes = tangents(preceding, i, j);
        if (ti == tj)
            return vi;
        const float s = 1.0f - (tj - t) / (tj - ti);
        return KWKeyFrameCurve::blend(s, vi, vj, slopes.start, slopes.end);
    }
    default:
        return 0.0f;
    }
}

// Everything in double, rounded to float at the end. The factors of the two tangents differ in
// their signs: (1 + bias) goes with (1 + continuity) at the start, with (1 - continuity) at the
// end.
KWKeyFrameTangents KWKeyFramedChannel::tangents(std::uint32_t preceding, std::uint32_t from,
                                                std::uint32_t to) const {
    const std::vector<float>& keys = lists().keys;
    const std::vector<float>& values = lists().values;
    const KWKeyFrameRecords::Shape& pi = lists().records.shape(from);
    const KWKeyFrameRecords::Shape& pj = lists().records.shape(to);
    const double ti = keys[from];
    const double tj = keys[to];
    const double vi = values[from];
    const double vj = values[to];
    double tp = ti;
    double vp = vi;
    if (preceding != 0) {
        const std::uint32_t before = preceding - 1;
        vp = values.at(before);
        tp = keys.at(before);
    }
    double tq = tj;
    double vq = vj;
    if (preceding + 3 <= keyframeCount() && keyframeCount() > 2) {
        const std::uint32_t after = preceding + 2;
        vq = values.at(after);
        tq = keys.at(after);
    }
    const double ai = tp < tj ? 2.0 * (tj - ti) / (tj - tp) : 1.0;
    const double aj = ti < tq ? 2.0 * (tj - ti) / (tq - ti) : 1.0;
    const double ki = (1.0 - double{pi.tension}) * 0.5;
    const double kj = (1.0 - double{pj.tension}) * 0.5;
    const double bi = pi.bias;
    const double bj = pj.bias;
    const double ci = pi.continuity;
    const double cj = pj.continuity;
    const double start =
        ai * ((vj - vi) * (1.0 - ci) * ki * (1.0 - bi) + ki * (ci + 1.0) * (bi + 1.0) * (vi - vp));
    const double end =
        aj * ((vj - vi) * (1.0 - cj) * kj * (bj + 1.0) + kj * (cj + 1.0) * (1.0 - bj) * (vq - vj));
    return {static_cast<float>(start), static_cast<float>(end)};
}

// --- Upkeep

bool KWKeyFramedChannel::isOrderly() const {
    const std::vector<float>& keys = lists().keys;
    if (keys.size() != lists().values.size() || keys.size() != lists().records.size() ||
        lists().records.hasOddLengths())
        return false;
    if (!keys.empty() && std::isnan(keys[0]))
        return false;
    for (std::size_t i = 1; i < keys.size(); ++i)
        if (!(keys[i - 1] < keys[i]))
            return false;
    return true;
}

void KWKeyFramedChannel::refresh() {
    _regular = isOrderly();
    if (!_regular) {
        _tangents = {};
        return;
    }
    _tangents.resize(lists().keys.size());
    if (_tangents.size() > 1)
        refreshTangents(0, _tangents.size() - 2);
}

void KWKeyFramedChannel::refreshTangents(std::size_t firstSegment, std::size_t lastSegment) {
    for (std::size_t s = firstSegment; s <= lastSegment && s + 1 < lists().keys.size(); ++s) {
        const auto i = static_cast<std::uint32_t>(s);
        _tangents[s] = tangents(i, i, i + 1);
    }
}
