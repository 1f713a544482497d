#include <apps/common/Errors.h>
#include <apps/common/Json.h>
#include <apps/common/Output.h>
#include <apps/common/Text.h>
#include <apps/kwchannel/Channels.h>
#include <apps/kwchannel/Commands.h>
#include <apps/kwchannel/TimeOptions.h>

namespace {

struct EvalArguments {
    std::string document;
    std::vector<std::string> channels;
    TimeArguments times;
    std::vector<std::string> units;
    bool isJson = false;
};

/// One list of values a channel.
using Values = std::vector<std::vector<float>>;

std::string evalJson(const std::vector<Place>& places, const std::vector<float>& times,
                     const Values& values) {
    Json channels = Json::array();
    for (std::size_t c = 0; c < places.size(); ++c) {
        Json channel = {{"path", places[c].path}};
        const std::string unit = unitName(*places[c].channel);
        if (!unit.empty())
            channel["unit"] = unit;
        channel["values"] = values[c];
        channels.push_back(std::move(channel));
    }
    return jsonText({{"times", times}, {"channels", std::move(channels)}}) + "\n";
}

/// Of one time: a line for each channel.
std::string evalList(const std::vector<Place>& places, const Values& values) {
    using enum Table::Align;
    Table table({left, right, left});
    for (std::size_t c = 0; c < places.size(); ++c)
        table.addRow(
            {printable(places[c].path), floatText(values[c][0]), unitName(*places[c].channel)});
    return table.text();
}

/// Of several times: a line for each time, under the channels' paths.
std::string evalTable(const std::vector<Place>& places, const std::vector<float>& times,
                      const Values& values) {
    Table table(std::vector<Table::Align>(places.size() + 1, Table::Align::right));
    std::vector<std::string> heading{"time"};
    for (const Place& place : places) {
        const std::string unit = unitName(*place.channel);
        heading.push_back(printable(place.path) + (unit.empty() ? "" : " [" + unit + "]"));
    }
    table.addRow(std::move(heading));
    for (std::size_t t = 0; t < times.size(); ++t) {
        std::vector<std::string> row{floatText(times[t])};
        for (const std::vector<float>& list : values)
            row.push_back(floatText(list[t]));
        table.addRow(std::move(row));
    }
    return table.text();
}

void runEval(const EvalArguments& arguments) {
    const std::vector<float> times = timesOf(arguments.times, "kwchannel bake is made for so many");
    setUnits(arguments.units);
    const KWDocument document = openDocument(arguments.document);
    const std::vector<Place> places = channelsToEvaluate(document, arguments.channels);
    if (times.size() > largestValueCount / places.size())
        throw UseError("that is more than " + std::to_string(largestValueCount) +
                       " values; kwchannel bake is made for so many");

    Values values(places.size(), std::vector<float>(times.size()));
    for (std::size_t c = 0; c < places.size(); ++c)
        evaluate(places[c], times, values[c]);
    if (arguments.isJson)
        print(evalJson(places, times, values));
    else if (times.size() == 1)
        print(evalList(places, values));
    else
        print(evalTable(places, times, values));
}

} // namespace

void addEvalCommand(Command& program) {
    Command command = program.command("eval", "Prints the values of channels at times");
    const auto arguments = std::make_shared<EvalArguments>();
    command.option("DOC", arguments->document, "the document; - is standard input").required();
    command.option("CHANNEL", arguments->channels,
                   "paths such as Ball/Position/x, or what they end with, such as x; all "
                   "channels when there is none");
    addTimeOptions(command, arguments->times);
    command
        .option("--unit", arguments->units,
                "show lengths or angles in this unit: m (the default), dm, cm, mm, in, ft, "
                "mi; rad (the default), deg, gr; or its name in your language")
        .shownAs("NAME[,...]")
        .separatedByCommas();
    command.flag("--json", arguments->isJson,
                 "as one JSON object: times, and the values of each channel; what is not "
                 "finite is null");
    command.setExamples(
        "kwchannel eval ball.kwdoc --at 0.5\n"
        "kwchannel eval ball.kwdoc Position/y --from 0 --to 2 --step 0.25 --unit cm\n"
        "kwchannel eval ball.kwdoc x rotation --at 0,0.5,1 --unit cm,deg --json\n");
    command.onRun([arguments] { runEval(*arguments); });
}
