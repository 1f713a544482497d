#include <apps/common/Errors.h>
#include <apps/common/Text.h>
#include <apps/kwchannel/Channels.h>
#include <apps/kwchannel/TimeOptions.h>

void addTimeOptions(CLI::App& command, TimeArguments& arguments) {
    command.add_option("--at", arguments.at, "these times, in seconds")
        ->type_name("T[,...]")
        ->allow_extra_args(false)
        ->delimiter(',');
    command.add_option("--from", arguments.from, "the first time, in seconds")->type_name("A");
    command
        .add_option(
            "--to", arguments.to,
            "no time after this one, in seconds; the times are A + k * S for k = 0, 1, 2, ...")
        ->type_name("B");
    command.add_option("--step", arguments.step, "seconds from time to time")->type_name("S");
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
