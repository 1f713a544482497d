#include <KWFoundation/KWFile.h>
#include <KWFoundation/KWPropertyList.h>

#include <apps/common/Errors.h>
#include <apps/common/KWPropertyListCopy.h>
#include <apps/common/Output.h>
#include <apps/common/Text.h>
#include <apps/kwchannel/Channels.h>
#include <apps/kwchannel/Commands.h>
#include <apps/kwchannel/Losses.h>

#include <charconv>

namespace {

using Form = KWDocument::Form;

struct ConvertArguments {
    std::string document;
    std::string output;
    std::string form;
    std::vector<std::string> versions;
    bool isLossy = false;
};

Form formOf(const ConvertArguments& arguments) {
    if (arguments.form.empty())
        return arguments.output.ends_with(".xml") ? Form::xml : Form::binary;
    return formNamed(arguments.form);
}

KWClassVersions versionsOf(const ConvertArguments& arguments) {
    KWClassVersions versions;
    for (const std::string& text : arguments.versions) {
        const std::size_t mark = text.find('=');
        const std::string name = text.substr(0, mark);
        std::int32_t version = -1;
        if (mark != std::string::npos) {
            const char* const end = text.data() + text.size();
            const auto [rest, error] = std::from_chars(text.data() + mark + 1, end, version);
            if (error != std::errc() || rest != end)
                version = -1;
        }
        if (version < 0)
            throw UseError("--class-version needs a class and its version, such as KWChannel=1, "
                           "not " +
                           inQuotes(text));
        const KWClass* const known = KWClassNamed(name);
        if (!known)
            throw UseError("there is no class " + inQuotes(name));
        if (version > known->version())
            throw UseError("the newest version of " + name + " is " +
                           std::to_string(known->version()));
        versions[name] = version;
    }
    if (!versions.empty() && formOf(arguments) != Form::sequential)
        throw UseError("--class-version needs --to sequential: keyed archives hold no versions");
    return versions;
}

void runConvert(const ConvertArguments& arguments) {
    kwRegisterElementClass();
    const Form form = formOf(arguments);
    const KWClassVersions versions = versionsOf(arguments);
    const KWFileContents contents = KWFileContents::read(inputPath(arguments.document));
    // Only what opens is converted.
    const KWDocument document = KWDocument::read(contents.bytes(), arguments.document);
    KWData data;
    if (form != Form::sequential && document.form() != Form::sequential) {
        // From one keyed form into the other goes the archive as it is stored, not the objects, so
        // that nothing changes but the form.
        const KWPropertyList list = KWPropertyList::parse(contents.bytes(), arguments.document);
        if (form == Form::xml)
            data = list.data(KWPropertyList::Format::xml);
        else if (document.form() == Form::xml) // where equal values stand apart
            data = kwCopyPropertyList(list).data(KWPropertyList::Format::binary);
        else
            data = list.data(KWPropertyList::Format::binary);
    } else {
        tellLosses(document, form, versions, arguments.isLossy, "not converted",
                   "--lossy converts all the same");
        data = document.data(form, versions);
    }

    Output output(arguments.output);
    output.write({reinterpret_cast<const char*>(data.data()), data.size()});
    output.finish();
}

} // namespace

void addConvertCommand(Command& program) {
    Command command =
        program.command("convert", "Writes a document in another form: binary, XML or sequential");
    const auto arguments = std::make_shared<ConvertArguments>();
    command.option("DOC", arguments->document, "the document; - is standard input").required();
    command
        .option("-o,--output", arguments->output,
                "the file to write, replaced as a whole or not at all; - is standard output")
        .shownAs("OUT")
        .required();
    command
        .option("--to", arguments->form,
                "the form: a keyed archive, binary or xml, or a sequential one; when not "
                "given, xml for an OUT that ends in .xml and binary for any other")
        .shownAs("binary|xml|sequential")
        .oneOf({"binary", "xml", "sequential"});
    command.flag("--lossy", arguments->isLossy,
                 "convert also when the form cannot carry everything; what is lost is told "
                 "either way");
    command
        .option("--class-version", arguments->versions,
                "write classes of a sequential archive as an older program knows them: "
                "KWChannel=0 or 1, KWKeyFramedChannel=0, KWChannelArray=0, KWElement=0 or 1")
        .shownAs("NAME=VERSION[,...]")
        .separatedByCommas();
    command.setExamples("kwchannel convert ball.kwdoc -o ball.xml\n"
                        "kwchannel convert ball.xml -o ball.kwdoc\n"
                        "kwchannel convert ball.kwdoc --to xml -o - | less\n"
                        "kwchannel convert ball.kwdoc --to sequential -o ball.typedstream\n"
                        "kwchannel convert ball.kwdoc --to sequential --class-version KWChannel=1 "
                        "--lossy -o old.typedstream\n");
    command.onRun([arguments] { runConvert(*arguments); });
}
