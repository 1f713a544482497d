#include <apps/kwedit/KWEditTransport.h>

#include <algorithm>
#include <chrono>
#include <cmath>

namespace {

double steadySeconds() {
    return std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch())
        .count();
}

constexpr qint64 largestFrame = 1'000'000'000'000;

/// The frame that is shown at a place between frames. What rounding has put just before a frame
/// belongs to it.
qint64 shownFrame(double position) {
    return static_cast<qint64>(std::floor(position + 1e-6));
}

} // namespace

KWEditTransport::KWEditTransport(QObject* parent, Clock clock)
    : QObject(parent), _clock(clock ? std::move(clock) : Clock(steadySeconds)) {
    _timer.setTimerType(Qt::PreciseTimer);
    connect(&_timer, &QTimer::timeout, this, &KWEditTransport::tick);
}

KWEditTransport::~KWEditTransport() = default;

float KWEditTransport::timeOfFrame(qint64 frame) const {
    return static_cast<float>(static_cast<double>(frame) / _rate);
}

qint64 KWEditTransport::frame() const {
    const double frame = std::floor(static_cast<double>(_time) * _rate + 0.5);
    return static_cast<qint64>(
        std::clamp(frame, -static_cast<double>(largestFrame), static_cast<double>(largestFrame)));
}

void KWEditTransport::setTime(float time) {
    if (time == _time)
        return;
    _time = time;
    Q_EMIT timeChanged(_time);
}

void KWEditTransport::restartClock(double position) {
    _position = position;
    _origin = _clock();
    _shown = 0;
    _lastShown = _origin;
}

void KWEditTransport::setFramesPerSecond(double rate) {
    if (std::isnan(rate))
        return;
    rate = std::clamp(rate, 0.001, 1000.0);
    if (rate == _rate)
        return;
    const double first = static_cast<double>(_first) / _rate;
    const double last = static_cast<double>(_last) / _rate;
    _rate = rate;
    _timer.setInterval(static_cast<int>(std::clamp(500 / _rate, 1.0, 100.0)));
    if (_isPlaying)
        restartClock(static_cast<double>(_time) * _rate);
    Q_EMIT framesPerSecondChanged(_rate);
    setRange(std::llround(first * _rate), std::llround(last * _rate));
}

void KWEditTransport::setRange(qint64 first, qint64 last) {
    first = std::clamp(first, -largestFrame, largestFrame);
    last = std::clamp(last, first, largestFrame);
    if (first == _first && last == _last)
        return;
    _first = first;
    _last = last;
    if (_isPlaying)
        restartClock(static_cast<double>(frame()));
    Q_EMIT rangeChanged(_first, _last);
}

void KWEditTransport::setPlaying(bool isPlaying) {
    if (isPlaying == _isPlaying)
        return;
    _isPlaying = isPlaying;
    if (!isPlaying) {
        _timer.stop();
        Q_EMIT playingChanged(false);
        return;
    }
    _dropped = 0;
    _measured = 0;
    const qint64 now = frame();
    if (now < _first || now >= _last)
        setTime(timeOfFrame(_first));
    restartClock(static_cast<double>(_time) * _rate);
    // Twice as often as frames, so that none is late by more than half of one.
    _timer.start(static_cast<int>(std::clamp(500 / _rate, 1.0, 100.0)));
    Q_EMIT playingChanged(true);
}

void KWEditTransport::setLooping(bool isLooping) {
    if (isLooping == _isLooping)
        return;
    _isLooping = isLooping;
    Q_EMIT loopingChanged(isLooping);
}

void KWEditTransport::stopAt(qint64 frame) {
    setTime(timeOfFrame(frame));
    setPlaying(false);
}

void KWEditTransport::tick() {
    if (!_isPlaying || _isScrubbing)
        return;
    const double now = _clock();
    const double elapsed = std::max(0.0, (now - _origin) * _rate);
    const qint64 shown = shownFrame(_position + elapsed) - shownFrame(_position);
    if (shown == _shown)
        return;
    _dropped += std::max<qint64>(0, shown - _shown - 1);
    _shown = shown;
    const double since = now - _lastShown;
    _lastShown = now;
    if (since > 0)
        _measured = _measured == 0 ? 1 / since : _measured + 0.1 * (1 / since - _measured);

    const qint64 frame = shownFrame(_position + elapsed);
    if (frame <= _last) {
        setTime(timeOfFrame(frame));
        return;
    }
    if (!_isLooping || _last == _first)
        return stopAt(_last);
    const qint64 length = _last - _first + 1;
    setTime(timeOfFrame(_first + (frame - _first) % length));
}

void KWEditTransport::step(qint64 frames) {
    setPlaying(false);
    const qint64 now = frame();
    if (now < _first || now > _last)
        return setTime(timeOfFrame(now < _first ? _first : _last));
    frames = std::clamp(frames, -largestFrame, largestFrame);
    if (!_isLooping)
        return setTime(timeOfFrame(std::clamp(now + frames, _first, _last)));
    const qint64 length = _last - _first + 1;
    const qint64 place = ((now - _first + frames) % length + length) % length;
    setTime(timeOfFrame(_first + place));
}

void KWEditTransport::gotoBeginning() {
    scrub(timeOfFrame(_first));
}

void KWEditTransport::gotoEnd() {
    setPlaying(false);
    setTime(timeOfFrame(_last));
}

void KWEditTransport::scrub(float time) {
    setTime(std::isfinite(time) ? time : 0);
    if (_isPlaying)
        restartClock(static_cast<double>(_time) * _rate);
}

void KWEditTransport::beginScrubbing() {
    _isScrubbing = true;
}

void KWEditTransport::endScrubbing() {
    if (!_isScrubbing)
        return;
    _isScrubbing = false;
    if (_isPlaying)
        restartClock(static_cast<double>(_time) * _rate);
}
