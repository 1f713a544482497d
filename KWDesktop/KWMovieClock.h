#pragma once

#include <chrono>

/// The time of a movie, which runs at a rate between 0 and the movie's duration and stops at both
/// ends. A value; it is asked with the wall's time, and never looks at it itself.
class KWMovieClock {
  public:
    using Wall = std::chrono::steady_clock::time_point;

    /// Seconds; at rest at 0.
    explicit KWMovieClock(double duration = 0) : _duration(duration) {}

    double rate() const { return _rate; }
    double duration() const { return _duration; }

    /// Seconds, from 0 to the duration.
    double timeAt(Wall wall) const;
    /// Goes on from the time that it is. A rate that is not finite counts as 0.
    void setRate(double rate, Wall wall);
    /// Held between 0 and the duration; not a number counts as 0.
    void setTime(double time, Wall wall);
    void setDuration(double duration, Wall wall);

    /// Whether it runs and has come to the end that it runs to.
    bool isAtEnd(Wall wall) const;
    /// How long from now until it is `time`, in seconds of the wall; 0 when that is past, negative
    /// when it never will be.
    double secondsUntil(double time, Wall wall) const;

  private:
    double held(double time) const;

    double _duration;
    double _rate = 0;
    /// What the movie's time was when the wall's was that.
    double _time = 0;
    Wall _since{};
};
