#pragma once

#include <apps/common/KWDocument.h>

#include <span>

// What the subcommands that evaluate have in common.

using Place = KWDocument::Place;

/// Opens a document; "-" is standard input.
KWDocument openDocument(const std::string& path);

/// The name that KWFileContents reads a document argument under.
std::string inputPath(const std::string& argument);

/// "binary", "xml" or "sequential", as options and JSON spell it; binary for any other name.
std::string formName(KWDocument::Form form);
KWDocument::Form formNamed(std::string_view name);

/// The channels that the addresses name, in that order; all of the document's for no addresses,
/// less those of unknown kinds. Warns of those, and of channels without an expression.
/// KWAddressError for an address, DataError when one of the channels cannot be evaluated.
std::vector<Place> channelsToEvaluate(const KWDocument& document,
                                      const std::vector<std::string>& addresses);

/// Makes values come out in these units: names, short or long, of at most one unit of length and
/// one of angle. Meter and radian for a kind without one. UseError.
void setUnits(const std::vector<std::string>& names);

/// The short name of the unit that the channel's values come out in; "" for none.
std::string unitName(const KWChannel& channel);

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
