#pragma once

#include <apps/common/CommandLine.h>

#include <string>
#include <vector>

// The options that name a few times: --at, or --from, --to and --step.

struct TimeArguments {
    std::vector<std::string> at;
    std::string from, to, step;

    bool areGiven() const { return !at.empty() || !from.empty() || !to.empty() || !step.empty(); }
};

/// More values than these are not held at once.
inline constexpr std::uint64_t largestValueCount = 20'000'000;

/// `arguments` must live as long as the command.
void addTimeOptions(Command& command, TimeArguments& arguments);

/// The times that were named, `more` being what to say to whoever wants more than
/// largestValueCount. UseError.
std::vector<float> timesOf(const TimeArguments& arguments, const std::string& more);
