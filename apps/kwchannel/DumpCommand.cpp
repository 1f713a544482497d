#include <KWFoundation/KWFile.h>
#include <KWFoundation/KWPropertyList.h>
#include <KWFoundation/KWUnarchiver.h>

#include <apps/kwchannel/Channels.h>
#include <apps/kwchannel/Commands.h>
#include <apps/kwchannel/Dump.h>
#include <apps/kwchannel/SequentialDump.h>

namespace {

struct DumpArguments {
    std::string file;
    bool isFlat = false;
    int depth = 40;
};

void runDump(const DumpArguments& arguments) {
    const std::string file = inputPath(arguments.file);
    const KWFileContents contents = KWFileContents::read(file);
    const auto depth = static_cast<std::size_t>(arguments.depth);
    const auto write = [&arguments](auto&& dump) {
        if (arguments.isFlat)
            dump.writeObjects();
        else
            dump.writeTree();
    };
    Output output("");
    if (KWUnarchiver::isArchive(contents.bytes()))
        write(SequentialDump(contents.bytes(), file, output, depth));
    else
        write(Dump(KWPropertyList::parse(contents.bytes(), file), output, depth));
    output.finish();
}

} // namespace

void addDumpCommand(Command& program) {
    Command command = program.command("dump", "Shows every object of any archive, as it is stored");
    const auto arguments = std::make_shared<DumpArguments>();
    command.option("FILE", arguments->file, "the archive; - is standard input").required();
    command.flag("--objects", arguments->isFlat,
                 "all objects in a flat list, also those that nothing refers to");
    command
        .option("--depth", arguments->depth,
                "how deep lines are indented, 40 when not given; what is nested deeper is "
                "shown further down")
        .shownAs("N")
        .between(1, 1000);
    command.setExamples("kwchannel dump ball.kwdoc\n"
                        "kwchannel dump --objects unknown.plist | less\n"
                        "kwchannel dump --depth 5 unknown.typedstream\n");
    command.onRun([arguments] { runDump(*arguments); });
}
