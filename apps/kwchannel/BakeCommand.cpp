#include <apps/common/KWProgress.h>
#include <apps/kwchannel/Channels.h>
#include <apps/kwchannel/Commands.h>
#include <apps/kwchannel/Errors.h>
#include <apps/kwchannel/Json.h>
#include <apps/kwchannel/Output.h>
#include <apps/kwchannel/Text.h>
#include <unistd.h>

#include <algorithm>
#include <cmath>

namespace {

struct BakeArguments {
    std::string document;
    std::vector<std::string> channels;
    std::string from, to, rate;
    std::string output;
    std::string format;
    std::vector<std::string> units;
};

/// Writes lines of values in one of the formats.
class RowWriter {
  public:
    virtual ~RowWriter() = default;
    virtual void appendHeading(std::string&) const {}
    /// `values` holds a block a channel; the row takes one of each, `stride` apart.
    virtual void appendRow(std::string& text, float time, const float* values,
                           std::size_t stride) const = 0;
};

/// A field as RFC 4180 quotes it.
std::string csvField(const std::string& text) {
    if (text.find_first_of(",\"\r\n") == std::string::npos)
        return text;
    std::string field = "\"";
    for (const char c : text)
        field += c == '"' ? std::string("\"\"") : std::string(1, c);
    return field + "\"";
}

class CSVWriter final : public RowWriter {
  public:
    explicit CSVWriter(const std::vector<Place>& places) : _count(places.size()) {
        _heading = "time";
        for (const Place& place : places)
            _heading += "," + csvField(place.path);
        _heading += "\n";
    }
    void appendHeading(std::string& text) const override { text += _heading; }
    void appendRow(std::string& text, float time, const float* values,
                   std::size_t stride) const override {
        appendFloat(text, time);
        for (std::size_t c = 0; c < _count; ++c) {
            text += ',';
            appendFloat(text, values[c * stride]);
        }
        text += '\n';
    }

  private:
    std::size_t _count;
    std::string _heading;
};

class JSONLinesWriter final : public RowWriter {
  public:
    explicit JSONLinesWriter(const std::vector<Place>& places) {
        for (const Place& place : places)
            _keys.push_back((_keys.empty() ? "" : ",") + jsonText(place.path) + ":");
    }
    void appendRow(std::string& text, float time, const float* values,
                   std::size_t stride) const override {
        text += "{\"time\":";
        appendNumber(text, time);
        text += ",\"values\":{";
        for (std::size_t c = 0; c < _keys.size(); ++c) {
            text += _keys[c];
            appendNumber(text, values[c * stride]);
        }
        text += "}}\n";
    }

  private:
    static void appendNumber(std::string& text, float value) {
        if (std::isfinite(value))
            appendFloat(text, value);
        else
            text += "null";
    }

    std::vector<std::string> _keys;
};

std::unique_ptr<RowWriter> writerFor(const BakeArguments& arguments,
                                     const std::vector<Place>& places) {
    const bool isJSONLines = arguments.format.empty() ? arguments.output.ends_with(".jsonl")
                                                      : arguments.format == "jsonl";
    if (isJSONLines)
        return std::make_unique<JSONLinesWriter>(places);
    return std::make_unique<CSVWriter>(places);
}

void bake(const std::vector<Place>& places, const TimeSteps& steps, const RowWriter& writer,
          Output& output) {
    // Blocks that stay within a few megabytes, however many channels there are.
    const std::size_t blockLength =
        std::clamp<std::size_t>((std::size_t{1} << 20) / places.size(), 1, 4096);
    std::vector<float> times;
    std::vector<float> values(blockLength * places.size());
    std::string text;
    const bool sharesTerminal = output.isTerminal() && isatty(STDERR_FILENO) == 1;
    KWProgress progress("Baking", "times", steps.count(), !sharesTerminal);

    for (std::uint64_t first = 0; first < steps.count(); first += blockLength) {
        times.resize(
            static_cast<std::size_t>(std::min<std::uint64_t>(blockLength, steps.count() - first)));
        for (std::size_t i = 0; i < times.size(); ++i)
            times[i] = steps.time(first + i);
        for (std::size_t c = 0; c < places.size(); ++c)
            evaluate(places[c], times, std::span(values).subspan(c * blockLength, times.size()));

        // Only now: a document that cannot be evaluated at all leaves no heading either.
        text.clear();
        if (first == 0)
            writer.appendHeading(text);
        for (std::size_t i = 0; i < times.size(); ++i)
            writer.appendRow(text, times[i], values.data() + i, blockLength);
        output.write(text);
        progress.update(first + times.size());
    }
}

void runBake(const BakeArguments& arguments) {
    const TimeSteps steps = TimeSteps::atRate(finiteArgument("--from", arguments.from),
                                              finiteArgument("--to", arguments.to),
                                              finiteArgument("--rate", arguments.rate));
    setUnits(arguments.units);
    const KWDocument document = openDocument(arguments.document);
    const std::vector<Place> places = channelsToEvaluate(document, arguments.channels);
    Output output(arguments.output);
    bake(places, steps, *writerFor(arguments, places), output);
    output.finish();
}

} // namespace

void addBakeCommand(CLI::App& program) {
    CLI::App* command =
        program.add_subcommand("bake", "Writes the values of channels over a range at a rate");
    const auto arguments = std::make_shared<BakeArguments>();
    command->add_option("DOC", arguments->document, "the document; - is standard input")
        ->required();
    command->add_option("CHANNEL", arguments->channels,
                        "paths such as Ball/Position/x, or what they end with, such as x; all "
                        "channels when there is none");
    command->add_option("--from", arguments->from, "the first time, in seconds")
        ->type_name("A")
        ->required();
    command
        ->add_option(
            "--to", arguments->to,
            "no time after this one, in seconds; the times are A + k / R for k = 0, 1, 2, ...")
        ->type_name("B")
        ->required();
    command->add_option("--rate", arguments->rate, "times a second")->type_name("R")->required();
    command
        ->add_option("-o,--output", arguments->output,
                     "the file to write, replaced when all is written and not before; standard "
                     "output when not given")
        ->type_name("FILE");
    command
        ->add_option("--format", arguments->format,
                     "csv: a line of channel paths, then a line for each time, numbers in the "
                     "shortest digits that read back the same, nan and inf as such; jsonl: an "
                     "object for each time, what is not finite as null; when not given, jsonl for "
                     "a FILE that ends in .jsonl and csv otherwise")
        ->type_name("csv|jsonl")
        ->check(CLI::IsMember({"csv", "jsonl"}).description(""));
    command
        ->add_option("--unit", arguments->units,
                     "write lengths or angles in this unit, as for eval; meters and radians when "
                     "not given")
        ->type_name("NAME[,...]")
        ->allow_extra_args(false)
        ->delimiter(',');
    command->footer(
        "kwchannel bake ball.kwdoc --from 0 --to 10 --rate 60 -o ball.csv\n"
        "kwchannel bake show.kwdoc --from 0 --to 1 --rate 25 --format jsonl | head -3\n"
        "kwchannel bake ball.kwdoc x y --from -1 --to 1 --rate 1000 --unit mm > path.csv\n");
    command->callback([arguments] { runBake(*arguments); });
}
