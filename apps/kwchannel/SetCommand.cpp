#include <KWBase/KWAlgebricChannel.h>

#include <apps/common/Text.h>
#include <apps/kwchannel/Channels.h>
#include <apps/kwchannel/Commands.h>
#include <apps/kwchannel/Expressions.h>
#include <apps/kwchannel/Losses.h>

namespace {

struct SetArguments {
    std::string document;
    std::string channel;
    std::string text;
    std::string output;
    bool isLossy = false;
};

/// An algebraic channel takes the text; another is replaced by one that does.
void setExpression(KWDocument& document, const Place& place, const std::string& text) {
    const auto channel = std::dynamic_pointer_cast<KWAlgebricChannel>(place.channel);
    if (channel && channel->setExpression(text))
        return;
    const auto made = std::make_shared<KWAlgebricChannel>();
    made->setExpression(text);
    if (!document.replaceChannel(place, made))
        throw DataError(document.file() + ": channel " + inQuotes(place.path) +
                        " cannot be replaced");
}

std::string adviceFor(const KWDocument& document) {
    std::string advice = "--lossy writes it all the same";
    if (document.form() != KWDocument::Form::sequential)
        advice += ", and a document that kwchannel convert --to sequential has made may keep it";
    return advice;
}

void runSet(const SetArguments& arguments) {
    if (arguments.document == "-" && arguments.output.empty())
        throw UseError("standard input cannot be changed; say with --output where to write");
    checkExpression(arguments.text, KWExpressionModeT);
    KWDocument document = openDocument(arguments.document);
    const std::vector<Place> places = document.channels();
    setExpression(document, KWDocument::placeAt(places, arguments.channel), arguments.text);

    tellLosses(document, document.form(), {}, arguments.isLossy, "not written",
               adviceFor(document));
    const KWData data = document.data();
    Output output(arguments.output.empty() ? arguments.document : arguments.output);
    output.write({reinterpret_cast<const char*>(data.data()), data.size()});
    output.finish();
}

} // namespace

void addSetCommand(Command& program) {
    Command command = program.command("set", "Gives a channel of a document an expression");
    const auto arguments = std::make_shared<SetArguments>();
    command.option("DOC", arguments->document, "the document; - is standard input").required();
    command
        .option("CHANNEL", arguments->channel,
                "its path, such as Ball/Position/x, or what that ends with, such as x; a "
                "channel of another kind becomes an expression, with its name, colour, unit "
                "and group, and without its keys or value")
        .required();
    command.option("TEXT", arguments->text, "the expression, in t; see kwchannel expr").required();
    command
        .option("-o,--output", arguments->output,
                "the file to write instead of DOC, in the form of DOC; - is standard output. "
                "The file is replaced as a whole or not at all")
        .shownAs("OUT");
    command.flag("--lossy", arguments->isLossy,
                 "write also when the document's form cannot carry everything; what is lost "
                 "is told either way");
    command.setExamples("kwchannel set ball.kwdoc Position/x \"1.5*sin(t)\"\n"
                        "kwchannel set ball.kwdoc rotation \"-2*\u03c0*t\" -o rolling.kwdoc\n");
    command.onRun([arguments] { runSet(*arguments); });
}
