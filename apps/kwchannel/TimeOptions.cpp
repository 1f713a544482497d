#include <apps/common/Errors.h>
#include <apps/common/Text.h>
#include <apps/kwchannel/Channels.h>
#include <apps/kwchannel/TimeOptions.h>

void addTimeOptions(Command& command, TimeArguments& arguments) {
    command.option("--at", arguments.at, "these times, in seconds")
        .shownAs("T[,...]")
        .separatedByCommas();
    command.option("--from", arguments.from, "the first time, in seconds").shownAs("A");
    command
        .option("--to", arguments.to,
                "no time after this one, in seconds; the times are A + k * S for k = 0, 1, 2, ...")
        .shownAs("B");
    command.option("--step", arguments.step, "seconds from time to time").shownAs("S");
}

std::vector<float> timesOf(const TimeArguments& arguments, const std::string& more) {
    const bool hasRange =
        !arguments.from.empty() || !arguments.to.empty() || !arguments.step.empty();
    if (hasRange == !arguments.at.empty())
        throw UseError(hasRange ? "--at and --from, --to, --step exclude each other"
                                : "no times: give --at, or --from, --to and --step");
    std::vector<float> times;
    for (const std::string& text : arguments.at)
        times.push_back(static_cast<float>(numberArgument("--at", text)));
    if (!hasRange)
        return times;

    if (arguments.from.empty() || arguments.to.empty() || arguments.step.empty())
        throw UseError("--from, --to and --step belong together");
    const TimeSteps steps = TimeSteps::withStep(finiteArgument("--from", arguments.from),
                                                finiteArgument("--to", arguments.to),
                                                finiteArgument("--step", arguments.step));
    if (steps.count() > largestValueCount)
        throw UseError("that is " + std::to_string(steps.count()) + " times; " + more);
    for (std::uint64_t k = 0; k < steps.count(); ++k)
        times.push_back(steps.time(k));
    return times;
}
