#pragma once

#include <chrono>
#include <cstdint>
#include <string>

/// One line of progress: title, bar, percentage, things a second and the time left, in at most
/// `width` columns; what does not fit is left out from the right. A total of 0 counts as done.
///
///     Baking [=========>          ]  47%  12.5k frames/s  0:42 left
std::string kwProgressLine(const std::string& title, const std::string& things, std::uint64_t done,
                           std::uint64_t total, double elapsedSeconds, std::size_t width);

/// A progress bar on standard error: only there when that is a terminal, redrawn ten times a second
/// at most, gone when it is destroyed.
class KWProgress {
  public:
    /// `isWanted` false keeps it silent, as where the output goes to the same terminal.
    KWProgress(std::string title, std::string things, std::uint64_t total, bool isWanted = true);
    ~KWProgress();
    KWProgress(const KWProgress&) = delete;
    KWProgress& operator=(const KWProgress&) = delete;

    /// `done` of the total are done.
    void update(std::uint64_t done);

    /// Takes the line off the terminal; the next update draws it again.
    void clear();

  private:
    using Clock = std::chrono::steady_clock;

    std::string _title;
    std::string _things;
    std::uint64_t _total;
    bool _isShown;
    bool _isDrawn = false;
    Clock::time_point _start;
    Clock::time_point _drawn;
};
