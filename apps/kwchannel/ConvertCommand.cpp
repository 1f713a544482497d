#include <KWFoundation/KWFile.h>
#include <KWFoundation/KWPropertyList.h>

#include <apps/kwchannel/Channels.h>
#include <apps/kwchannel/Commands.h>
#include <apps/kwchannel/Output.h>

namespace {

struct ConvertArguments {
    std::string document;
    std::string output;
    std::string format;
};

KWPropertyList::Format formatOf(const ConvertArguments& arguments) {
    const bool isXML =
        arguments.format.empty() ? arguments.output.ends_with(".xml") : arguments.format == "xml";
    return isXML ? KWPropertyList::Format::xml : KWPropertyList::Format::binary;
}

void runConvert(const ConvertArguments& arguments) {
    const KWFileContents contents = KWFileContents::read(inputPath(arguments.document));
    // Only what opens is converted. What is converted is the archive as it is stored, not the
    // objects, so that nothing changes but the form.
    KWDocument::read(contents.bytes(), arguments.document);
    const KWPropertyList list = KWPropertyList::parse(contents.bytes(), arguments.document);
    const KWData data = list.data(formatOf(arguments));

    Output output(arguments.output);
    output.write({reinterpret_cast<const char*>(data.data()), data.size()});
    output.finish();
}

} // namespace

void addConvertCommand(CLI::App& program) {
    CLI::App* command =
        program.add_subcommand("convert", "Writes a document in the binary or the XML form");
    const auto arguments = std::make_shared<ConvertArguments>();
    command->add_option("DOC", arguments->document, "the document; - is standard input")
        ->required();
    command
        ->add_option("-o,--output", arguments->output,
                     "the file to write, replaced as a whole or not at all; - is standard output")
        ->type_name("OUT")
        ->required();
    command
        ->add_option("--to", arguments->format,
                     "the form; when not given, xml for an OUT that ends in .xml and binary for "
                     "any other")
        ->type_name("binary|xml")
        ->check(CLI::IsMember({"binary", "xml"}).description(""));
    command->footer("kwchannel convert ball.kwdoc -o ball.xml\n"
                    "kwchannel convert ball.xml -o ball.kwdoc\n"
                    "kwchannel convert ball.kwdoc --to xml -o - | less\n");
    command->callback([arguments] { runConvert(*arguments); });
}
