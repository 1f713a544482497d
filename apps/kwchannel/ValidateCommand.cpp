#include <KWFoundation/KWFile.h>

#include <apps/common/Errors.h>
#include <apps/common/Json.h>
#include <apps/common/KWDocumentCheck.h>
#include <apps/common/Output.h>
#include <apps/common/Text.h>
#include <apps/kwchannel/Channels.h>
#include <apps/kwchannel/Commands.h>

#include <algorithm>

namespace {

struct ValidateArguments {
    std::string document;
    bool isJson = false;
};

bool isFault(const KWDocumentFault& fault) {
    return fault.severity == KWDocumentFault::Severity::fault;
}

std::string faultLines(const std::vector<KWDocumentFault>& faults) {
    std::string text;
    for (const KWDocumentFault& fault : faults)
        text += (isFault(fault) ? "" : "warning: ") + printable(fault.line()) + "\n";
    return text;
}

std::string faultsJson(const KWDocument& document, std::size_t channelCount,
                       const std::vector<KWDocumentFault>& faults) {
    Json list = Json::array();
    for (const KWDocumentFault& fault : faults) {
        Json entry = {{"severity", isFault(fault) ? "fault" : "warning"}, {"place", fault.place}};
        if (fault.key)
            entry["key"] = *fault.key;
        entry["text"] = fault.text;
        list.push_back(std::move(entry));
    }
    return jsonText({{"file", document.file()},
                     {"format", formName(document.form())},
                     {"channels", channelCount},
                     {"faults", std::move(list)}},
                    2) +
           "\n";
}

void runValidate(const ValidateArguments& arguments) {
    const KWFileContents contents = KWFileContents::read(inputPath(arguments.document));
    const KWDocument document = KWDocument::read(contents.bytes(), inputPath(arguments.document));
    std::vector<KWDocumentFault> faults = kwCheckDocument(document);
    for (KWDocumentFault& fault : kwCheckStoredShapes(contents.bytes(), document))
        faults.push_back(std::move(fault));
    const std::size_t channelCount = document.channels().size();
    print(arguments.isJson ? faultsJson(document, channelCount, faults) : faultLines(faults));

    const auto faultCount =
        static_cast<std::size_t>(std::count_if(faults.begin(), faults.end(), isFault));
    std::string summary = document.file() + ": " + counted(channelCount, "channel") + ", " +
                          (faultCount == 0 ? "no faults" : counted(faultCount, "fault"));
    if (faultCount < faults.size())
        summary += ", " + counted(faults.size() - faultCount, "warning");
    if (faultCount > 0)
        throw DataError(summary);
    complain(printable(summary));
}

} // namespace

void addValidateCommand(Command& program) {
    Command command = program.command(
        "validate", "Looks for everything that is wrong in a document and tells where it is");
    const auto arguments = std::make_shared<ValidateArguments>();
    command.option("DOC", arguments->document, "the document; - is standard input").required();
    command.flag("--json", arguments->isJson,
                 "as one JSON object, with the faults as a list; keys count from 1");
    command.setExamples("kwchannel validate ball.kwdoc\n"
                        "kwchannel validate ball.kwdoc > faults.txt || less faults.txt\n"
                        "kwchannel validate --json ball.kwdoc | jq '.faults[].place'\n");
    command.onRun([arguments] { runValidate(*arguments); });
}
