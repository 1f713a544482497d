#include "SampleArchives.h"
#include "SampleCurve.h"
#include "SampleExpressions.h"

#include <KWBase/KWAlgebricInterpreter.h>
#include <KWBase/KWChannelCursor.h>
#include <KWFoundation/KWKeyedUnarchiver.h>
#include <KWFoundation/KWUnarchiver.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <optional>
#include <string>
#include <vector>

// Runs one hot path some number of times: kwbase_hotpaths PATH. For a counter of instructions that
// counts inside the function hotPath alone, such as
// valgrind --tool=callgrind --toggle-collect=hotPath kwbase_hotpaths PATH
// Without a path it lists them, with how many units of what each one runs. With the path "document"
// and a file it writes the archive of 100,000 keys there.

namespace {

constexpr std::size_t timeCount = 10000;

struct Path {
    const char* name;
    const char* unit;
    std::size_t count;
    /// Prepares what the path needs, and answers the path.
    std::function<std::function<void()>()> prepare;
};

const KWSampleCurve& curve() {
    return KWSampleCurveOf(1000);
}

std::function<void()> singleValues() {
    const std::shared_ptr<const KWChannel> channel = curve().channel;
    // The first ones make the index.
    for (const float t : curve().times)
        benchmark::DoNotOptimize(channel->valueForTime(KWTime(t)));
    return [channel] {
        for (std::size_t k = 0; k < timeCount; ++k)
            benchmark::DoNotOptimize(channel->valueForTime(KWTime(curve().times[k])));
    };
}

std::function<void()> plainLoop() {
    return [&sample = curve()] {
        for (std::size_t k = 0; k < timeCount; ++k)
            benchmark::DoNotOptimize(sample.byUpperBound(sample.times[k]));
    };
}

std::function<void()> cursorValues() {
    auto cursor = std::make_shared<KWChannelCursor>(curve().channel);
    return [cursor] {
        for (std::size_t k = 0; k < timeCount; ++k)
            benchmark::DoNotOptimize(cursor->valueForTime(KWTime(curve().frames[k])));
    };
}

std::function<void()> batchOf(const std::vector<float>& times) {
    auto values = std::make_shared<std::vector<float>>(timeCount);
    const std::span<const float> some(times.data(), timeCount);
    curve().channel->valuesForTimes(some, *values);
    return [values, some] { curve().channel->valuesForTimes(some, *values); };
}

std::function<void()> expressionValues(int formula, bool isBatch) {
    auto interpreter = std::make_shared<KWAlgebricInterpreter>();
    interpreter->setExpressionMode(KWSampleFormulaOf(formula).ours, KWExpressionModeT);
    auto values = std::make_shared<std::vector<float>>(KWSampleFormulaTimes().size());
    interpreter->evalTExpressions(KWSampleFormulaTimes(), *values);
    if (isBatch)
        return [=] { interpreter->evalTExpressions(KWSampleFormulaTimes(), *values); };
    return [=] {
        for (const float t : KWSampleFormulaTimes())
            benchmark::DoNotOptimize(interpreter->evalTExpression(t));
    };
}

std::function<void()> expressionTexts() {
    auto interpreter = std::make_shared<KWAlgebricInterpreter>();
    const std::optional<std::string> text = KWSampleFormulaOf(2).ours;
    return [=] {
        for (int k = 0; k < 100; ++k)
            interpreter->setExpressionMode(text, KWExpressionModeT);
    };
}

constexpr std::size_t archivedKeys = 10000;

std::function<void()> opening() {
    auto archive = std::make_shared<KWData>(
        KWKeyedArchiver::archivedDataWithRootObject(KWMakeSampleChannels(archivedKeys)));
    return [=] { benchmark::DoNotOptimize(KWKeyedUnarchiver::unarchiveObjectWithData(*archive)); };
}

std::function<void()> writing() {
    auto channels = KWMakeSampleChannels(archivedKeys);
    return [=] {
        benchmark::DoNotOptimize(KWKeyedArchiver::archivedDataWithRootObject(channels).data());
    };
}

std::function<void()> openingSequential() {
    auto archive = std::make_shared<KWData>(
        KWArchiver::archivedDataWithRootObject(KWMakeSampleChannels(archivedKeys)));
    return [=] { benchmark::DoNotOptimize(KWUnarchiver::unarchiveObjectWithData(*archive)); };
}

const Path paths[] = {
    {"single", "value at a random time, 1,000 keys", timeCount, singleValues},
    {"plain", "the same by upper_bound and tangents per call", timeCount, plainLoop},
    {"cursor", "value of the next frame, through a cursor", timeCount, cursorValues},
    {"dense", "value of a dense batch", timeCount, [] { return batchOf(KWSampleDenseTimes()); }},
    {"random", "value of a random batch", timeCount, [] { return batchOf(curve().times); }},
    {"e2", "value of sin(t)*exp(-t/3)+2*t^2", 10000, [] { return expressionValues(2, false); }},
    {"e2batch", "value of a batch of it", 10000, [] { return expressionValues(2, true); }},
    {"parse", "text of it", 100, expressionTexts},
    {"open", "key of a keyed document that is opened", archivedKeys, opening},
    {"write", "key of a keyed document that is written", archivedKeys, writing},
    {"opensequential", "key of a sequential document that is opened", archivedKeys,
     openingSequential},
};

} // namespace

// Known by its name to the counter.
extern "C" [[gnu::noinline]] void hotPath(const std::function<void()>& path) {
    path();
}

int main(int argc, char** argv) {
    if (argc == 3 && std::strcmp(argv[1], "document") == 0) {
        KWKeyedArchiver::archiveRootObjectToFile(KWSampleChannels(100000), argv[2]);
        return 0;
    }
    for (const Path& path : paths) {
        if (argc < 2)
            std::printf("%s\t%zu\t%s\n", path.name, path.count, path.unit);
        else if (std::strcmp(argv[1], path.name) == 0)
            return hotPath(path.prepare()), 0;
    }
    return argc < 2 ? 0 : 1;
}
