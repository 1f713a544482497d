#include <KWDesktop/KWMovieClock.h>

#include <algorithm>
#include <cmath>

double KWMovieClock::held(double time) const {
    return time > 0 ? std::min(time, _duration) : 0;
}

double KWMovieClock::timeAt(Wall wall) const {
    if (_rate == 0)
        return _time;
    return held(_time + _rate * std::chrono::duration<double>(wall - _since).count());
}

void KWMovieClock::setRate(double rate, Wall wall) {
    _time = timeAt(wall);
    _since = wall;
    _rate = std::isfinite(rate) ? rate : 0;
}

void KWMovieClock::setTime(double time, Wall wall) {
    _time = held(time);
    _since = wall;
}

void KWMovieClock::setDuration(double duration, Wall wall) {
    const double time = timeAt(wall);
    _duration = duration;
    setTime(time, wall);
}

bool KWMovieClock::isAtEnd(Wall wall) const {
    const double time = timeAt(wall);
    return (_rate > 0 && time >= _duration) || (_rate < 0 && time <= 0);
}

double KWMovieClock::secondsUntil(double time, Wall wall) const {
    const double away = time - timeAt(wall);
    if (_rate == 0)
        return away == 0 ? 0 : -1;
    return std::max(0.0, away / _rate);
}
