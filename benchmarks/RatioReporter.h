#pragma once

#include <string>

/// A line under the table of times: how the medians of two benchmarks, by their full names, stand
/// to one another, and where they should. Names that no run has had leave no line.
struct KWRatio {
    enum class Goal { atMost, atLeast };

    std::string what;
    /// The quotient of the two times: ours by the peer's where at most is wanted, the peer's by
    /// ours where at least is.
    std::string ours;
    std::string peer;
    Goal goal;
    double bound;
};

/// What a peer may be called: no benchmark, but the time that a screen of 60 Hz gives a frame.
inline constexpr const char* KWFrameOf60Hz = "a frame of 60 Hz";

/// Has the ratio printed. Called before the benchmarks run; answers true so that it can initialise.
bool KWReportRatio(KWRatio ratio);
