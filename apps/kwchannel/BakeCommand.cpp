#include <apps/common/KWProgress.h>
#include <apps/common/Output.h>
#include <apps/common/Text.h>
#include <apps/kwchannel/Channels.h>
#include <apps/kwchannel/Commands.h>
#include <unistd.h>

namespace {

struct BakeArguments {
    std::string document;
    std::vector<std::string> channels;
    std::string from, to, rate;
    std::string output;
    std::string format;
    std::vector<std::string> units;
};

BakeFormat formatOf(const BakeArguments& arguments) {
    const bool isJSONLines = arguments.format.empty() ? arguments.output.ends_with(".jsonl")
                                                      : arguments.format == "jsonl";
    return isJSONLines ? BakeFormat::jsonl : BakeFormat::csv;
}

void runBake(const BakeArguments& arguments) {
    const TimeSteps steps = TimeSteps::atRate(finiteArgument("--from", arguments.from),
                                              finiteArgument("--to", arguments.to),
                                              finiteArgument("--rate", arguments.rate));
    setUnits(arguments.units);
    const KWDocument document = openDocument(arguments.document);
    const std::vector<Place> places = channelsToEvaluate(document, arguments.channels);
    Output output(arguments.output);
    const bool sharesTerminal = output.isTerminal() && isatty(STDERR_FILENO) == 1;
    KWProgress progress("Baking", "times", steps.count(), !sharesTerminal);
    bake(
        places, steps, formatOf(arguments),
        [&output](std::string_view text) { output.write(text); },
        [&progress](std::uint64_t done) {
            progress.update(done);
            return true;
        });
    output.finish();
}

} // namespace

void addBakeCommand(Command& program) {
    Command command =
        program.command("bake", "Writes the values of channels over a range at a rate");
    const auto arguments = std::make_shared<BakeArguments>();
    command.option("DOC", arguments->document, "the document; - is standard input").required();
    command.option("CHANNEL", arguments->channels,
                   "paths such as Ball/Position/x, or what they end with, such as x; all "
                   "channels when there is none");
    command.option("--from", arguments->from, "the first time, in seconds").shownAs("A").required();
    command
        .option("--to", arguments->to,
                "no time after this one, in seconds; the times are A + k / R for k = 0, 1, 2, ...")
        .shownAs("B")
        .required();
    command.option("--rate", arguments->rate, "times a second").shownAs("R").required();
    command
        .option("-o,--output", arguments->output,
                "the file to write, replaced when all is written and not before; standard "
                "output when not given")
        .shownAs("FILE");
    command
        .option("--format", arguments->format,
                "csv: a line of channel paths, then a line for each time, numbers in the "
                "shortest digits that read back the same, nan and inf as such; jsonl: an "
                "object for each time, what is not finite as null; when not given, jsonl for "
                "a FILE that ends in .jsonl and csv otherwise")
        .shownAs("csv|jsonl")
        .oneOf({"csv", "jsonl"});
    command
        .option("--unit", arguments->units,
                "write lengths or angles in this unit, as for eval; meters and radians when "
                "not given")
        .shownAs("NAME[,...]")
        .separatedByCommas();
    command.setExamples(
        "kwchannel bake ball.kwdoc --from 0 --to 10 --rate 60 -o ball.csv\n"
        "kwchannel bake show.kwdoc --from 0 --to 1 --rate 25 --format jsonl | head -3\n"
        "kwchannel bake ball.kwdoc x y --from -1 --to 1 --rate 1000 --unit mm > path.csv\n");
    command.onRun([arguments] { runBake(*arguments); });
}
