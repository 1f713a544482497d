#pragma once

#include <KWDesktop/KWFrameConverter.h>
#include <KWDesktop/KWMovieClock.h>
#include <KWDesktop/KWMovieDecoder.h>
#include <KWDesktop/KWMovieQueue.h>

#include <atomic>
#include <condition_variable>
#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <thread>
#include <vector>

/// Decodes ahead of a movie's clock, on a thread of its own: a few frames while the movie runs,
/// one for each place that it is moved to at rest. A frame whose time is over before it could be
/// converted is dropped, though never for longer than a moment at a stretch.
class KWMoviePlayer {
  public:
    /// `wake` is called on the player's thread when there is something to take: a frame, or an end.
    KWMoviePlayer(std::unique_ptr<KWMovieDecoder> decoder, std::atomic<bool>& isCancelled,
                  std::function<void()> wake);
    /// Ends the thread; `wake` is not called after that.
    ~KWMoviePlayer();

    /// The movie was moved, or runs at another rate: what was decoded ahead is dropped, and the
    /// frame of the clock's time comes next.
    void restart(const KWMovieClock& clock);

    std::optional<KWMovieFrame> take(double time, double rate);
    std::optional<double> nextDue();
    /// What has gone wrong so far, in words; empty for nothing.
    QString fault();

  private:
    struct Task {
        KWMovieClock clock;
        std::uint64_t number = 0;
    };

    void run();
    bool begin();
    bool goOn();
    bool goForward(double now);
    bool goBackward();
    void deliver(const KWDecodedFrame& frame, double due);
    bool isTimeToShow(double due, double now) const;

    const std::unique_ptr<KWMovieDecoder> _decoder;
    std::atomic<bool>& _isCancelled;
    const std::function<void()> _wake;
    KWFrameConverter _converter;

    // Of the player's thread.
    Task _task;
    KWMovieFrame _last; ///< delivered last
    KWMovieClock::Wall _lastDelivery{};
    std::int64_t _reached = 0;           ///< ticks of the frame decoded last
    double _reachedTime = 0;             ///< and its time
    std::vector<KWDecodedFrame> _behind; ///< backwards: decoded and not delivered, ascending

    std::mutex _mutex;
    std::condition_variable _changed;
    Task _wanted;
    KWMovieQueue _queue;
    QString _fault;
    bool _isEnded = false; ///< whether nothing is left to decode for the task

    std::thread _thread;
};
