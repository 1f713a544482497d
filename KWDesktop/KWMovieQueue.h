#pragma once

#include <KWDesktop/KWMovieFrame.h>

#include <cstddef>
#include <deque>
#include <optional>

/// Frames on their way from the thread that decodes to the one that shows them, in the order in
/// which they will be due. It holds a bounded number of bytes, and two frames in any case. Not
/// locked.
class KWMovieQueue {
  public:
    /// The time at which the movie comes to a frame, on its way forwards or backwards.
    struct Entry {
        KWMovieFrame frame;
        double due = 0;
    };

    explicit KWMovieQueue(std::size_t bytes) : _limit(bytes) {}

    bool isFull() const { return _entries.size() >= 2 && _bytes >= _limit; }
    std::size_t count() const { return _entries.size(); }
    void push(Entry entry);
    void clear();

    /// Takes out the latest frame that is due when the movie runs at this rate and has come to this
    /// time; those before it are dropped. At rate 0 every frame is due.
    std::optional<KWMovieFrame> take(double time, double rate);
    /// When the next one is due.
    std::optional<double> nextDue() const;

  private:
    std::size_t _limit;
    std::size_t _bytes = 0;
    std::deque<Entry> _entries;
};
