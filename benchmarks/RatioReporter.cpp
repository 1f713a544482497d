#include "RatioReporter.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdio>
#include <map>
#include <vector>

namespace {

std::vector<KWRatio>& ratios() {
    static std::vector<KWRatio> all;
    return all;
}

double medianOf(std::vector<double> times) {
    std::sort(times.begin(), times.end());
    const std::size_t half = times.size() / 2;
    return times.size() % 2 ? times[half] : (times[half - 1] + times[half]) / 2;
}

/// The usual table, and the ratios at its end. A time is that of one item where the benchmark
/// counts items, of one iteration elsewhere.
class RatioReporter final : public benchmark::ConsoleReporter {
  public:
    void ReportRuns(const std::vector<Run>& runs) override {
        ConsoleReporter::ReportRuns(runs);
        for (const Run& run : runs) {
            if (run.error_occurred)
                continue;
            const double seconds = secondsOf(run);
            if (run.run_type == Run::RT_Iteration)
                _times[run.run_name.str()].push_back(seconds);
            else if (run.aggregate_name == "median") // all there is under aggregates_only
                _times.try_emplace(run.run_name.str(), 1, seconds);
        }
    }

    void Finalize() override {
        ConsoleReporter::Finalize();
        _times[KWFrameOf60Hz] = {1.0 / 60};
        for (const KWRatio& ratio : ratios()) {
            const auto ours = _times.find(ratio.ours);
            const auto peer = _times.find(ratio.peer);
            if (ours == _times.end() || peer == _times.end())
                continue;
            const double a = medianOf(ours->second);
            const double b = medianOf(peer->second);
            const bool wantsSmall = ratio.goal == KWRatio::Goal::atMost;
            const double quotient = wantsSmall ? a / b : b / a;
            const bool holds = wantsSmall ? quotient <= ratio.bound : quotient >= ratio.bound;
            std::printf("%-62s %10.2f ns against %10.2f ns %7.2f (%s %.4g) %s\n",
                        ratio.what.c_str(), a * 1e9, b * 1e9, quotient,
                        wantsSmall ? "at most" : "at least", ratio.bound, holds ? "" : "MISSED");
        }
    }

  private:
    static double secondsOf(const Run& run) {
        const auto rate = run.counters.find("items_per_second");
        if (rate != run.counters.end())
            return 1 / rate->second.value;
        return run.cpu_accumulated_time / static_cast<double>(run.iterations);
    }

    std::map<std::string, std::vector<double>> _times;
};

} // namespace

bool KWReportRatio(KWRatio ratio) {
    ratios().push_back(std::move(ratio));
    return true;
}

int main(int argc, char** argv) {
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv))
        return 1;
    RatioReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    benchmark::Shutdown();
    return 0;
}
