#pragma once

#include <apps/common/KWDocument.h>

#include <functional>
#include <memory>
#include <span>

// Values of channels over many times, and how they are written down.

using Place = KWDocument::Place;

/// Fills in the channel's values at the times, in the chosen unit. DataError, with the time, when
/// it cannot be evaluated at one of them.
void evaluate(const Place& place, std::span<const float> times, std::span<float> values);

/// Times at equal steps from a start to an end, computed in double and narrowed each. The end
/// belongs to them when it falls on a step, give or take a millionth of one.
class TimeSteps {
  public:
    /// The k-th time is `from` + k / `rate`. UseError unless the range and the rate are good.
    static TimeSteps atRate(double from, double to, double rate);
    /// The k-th time is `from` + k * `step`.
    static TimeSteps withStep(double from, double to, double step);

    std::uint64_t count() const { return _count; }
    float time(std::uint64_t k) const;

  private:
    double _from = 0;
    double _factor = 0;
    bool _isRate = false;
    std::uint64_t _count = 0;
};

/// How baked values are written: csv, a line of channel paths and then a line for each time; jsonl,
/// an object for each time, a line each; json, a list of the same objects. Numbers have the
/// shortest digits that read back the same. What is not finite is "nan" or "inf" in csv, null in
/// the others.
enum class BakeFormat { csv, jsonl, json };

/// Evaluates the channels at the times and hands over the text, in pieces of a few megabytes at the
/// most. Nothing is handed over before the first values are there, so that what cannot be evaluated
/// leaves nothing behind. After each piece `progress` is told how many times are done; when it
/// answers false baking ends there and answers false. DataError as evaluate().
bool bake(const std::vector<Place>& places, const TimeSteps& steps, BakeFormat format,
          const std::function<void(std::string_view)>& write,
          const std::function<bool(std::uint64_t)>& progress);
