#include <KWDesktop/KWMoviePlayer.h>

#include <pthread.h>

#include <cmath>

namespace {

constexpr std::size_t queueBytes = 48 << 20;
/// What backward playing holds, decoded: a group of pictures is decoded again for each part of it
/// that fits.
constexpr std::size_t backwardBytes = 128 << 20;
/// Seconds for which a movie that cannot keep up shows nothing new, at the most.
constexpr double longestGap = 0.1;
/// Seconds by which it has to be late before it looks for a key frame ahead.
constexpr double farBehind = 0.25;

} // namespace

KWMoviePlayer::KWMoviePlayer(std::unique_ptr<KWMovieDecoder> decoder,
                             std::atomic<bool>& isCancelled, std::function<void()> wake)
    : _decoder(std::move(decoder)), _isCancelled(isCancelled), _wake(std::move(wake)),
      _converter(_decoder->description().orientation), _queue(queueBytes) {
    _thread = std::thread([this] { run(); });
}

KWMoviePlayer::~KWMoviePlayer() {
    {
        const std::lock_guard lock(_mutex);
        _isCancelled = true;
    }
    _changed.notify_all();
    _thread.join();
}

void KWMoviePlayer::restart(const KWMovieClock& clock) {
    {
        const std::lock_guard lock(_mutex);
        _wanted = {clock, _wanted.number + 1};
        _queue.clear();
    }
    _changed.notify_all();
}

std::optional<KWMovieFrame> KWMoviePlayer::take(double time, double rate) {
    std::optional<KWMovieFrame> taken;
    {
        const std::lock_guard lock(_mutex);
        taken = _queue.take(time, rate);
    }
    if (taken)
        _changed.notify_all();
    return taken;
}

std::optional<double> KWMoviePlayer::nextDue() {
    const std::lock_guard lock(_mutex);
    return _queue.nextDue();
}

QString KWMoviePlayer::fault() {
    const std::lock_guard lock(_mutex);
    return _fault;
}

void KWMoviePlayer::run() {
    pthread_setname_np(pthread_self(), "KWMovie");
    for (;;) {
        bool isNew = false;
        {
            std::unique_lock lock(_mutex);
            _changed.wait(lock, [&] {
                return _isCancelled || _task.number != _wanted.number ||
                       (!_isEnded && _task.clock.rate() != 0 && !_queue.isFull());
            });
            if (_isCancelled)
                return;
            isNew = _task.number != _wanted.number;
            if (isNew) {
                _task = _wanted;
                _isEnded = false;
            }
        }
        if (isNew)
            begin();
        else if (!goOn()) {
            const std::lock_guard lock(_mutex);
            _isEnded = true;
        }
        bool wakes = isNew;
        {
            const std::lock_guard lock(_mutex);
            if (_fault.isEmpty() && !_decoder->fault().isEmpty()) {
                _fault = _decoder->fault();
                wakes = true;
            }
            wakes = wakes || _isEnded;
        }
        if (wakes && !_isCancelled)
            _wake();
    }
}

bool KWMoviePlayer::begin() {
    _behind.clear();
    const double time = _task.clock.timeAt(std::chrono::steady_clock::now());
    const KWDecodedFrame* const frame = _decoder->frameAt(time);
    if (!frame)
        return false;
    // It is what is to be seen now, whichever way the movie runs.
    deliver(*frame, _task.clock.rate() < 0 ? HUGE_VAL : -HUGE_VAL);
    _reached = frame->ticks;
    _reachedTime = frame->time;
    return true;
}

bool KWMoviePlayer::goOn() {
    const double now = _task.clock.timeAt(std::chrono::steady_clock::now());
    return _task.clock.rate() > 0 ? goForward(now) : goBackward();
}

bool KWMoviePlayer::goForward(double now) {
    const bool isFarBehind = now - _reachedTime > farBehind * _task.clock.rate();
    const KWDecodedFrame* const frame = isFarBehind && _decoder->isKeyFrameBefore(now)
                                            ? _decoder->frameAt(now)
                                            : _decoder->nextFrame();
    if (!frame)
        return false;
    _reached = frame->ticks;
    _reachedTime = frame->time;
    if (isTimeToShow(_decoder->timeOfNextFrame(), now))
        deliver(*frame, frame->time);
    return true;
}

/// Whether a frame that lasts until then is worth converting.
bool KWMoviePlayer::isTimeToShow(double until, double now) const {
    const std::chrono::duration<double> gap = std::chrono::steady_clock::now() - _lastDelivery;
    return until > now || gap.count() > longestGap;
}

bool KWMoviePlayer::goBackward() {
    const double wanted = _task.clock.timeAt(std::chrono::steady_clock::now());
    if (_reachedTime - wanted > -farBehind * _task.clock.rate())
        return begin();
    if (_behind.empty()) {
        _behind = _decoder->framesBefore(_reached, backwardBytes);
        if (_behind.empty())
            return false;
    }
    const KWDecodedFrame frame = std::move(_behind.back());
    _behind.pop_back();
    const double due = _reachedTime;
    _reached = frame.ticks;
    _reachedTime = frame.time;
    const double now = _task.clock.timeAt(std::chrono::steady_clock::now());
    const std::chrono::duration<double> gap = std::chrono::steady_clock::now() - _lastDelivery;
    if (now >= frame.time || gap.count() > longestGap)
        deliver(frame, due);
    return true;
}

void KWMoviePlayer::deliver(const KWDecodedFrame& frame, double due) {
    if (!_last || _last.time != frame.time)
        _last = {_converter.imageOfFrame(*frame.frame), frame.time};
    _lastDelivery = std::chrono::steady_clock::now();
    if (!_last)
        return;
    {
        const std::lock_guard lock(_mutex);
        if (_task.number != _wanted.number)
            return;
        _queue.push({_last, due});
    }
    if (!_isCancelled)
        _wake();
}
