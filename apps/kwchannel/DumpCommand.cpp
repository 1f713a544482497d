#include <KWFoundation/KWPropertyList.h>

#include <apps/kwchannel/Channels.h>
#include <apps/kwchannel/Commands.h>
#include <apps/kwchannel/Dump.h>
#include <apps/kwchannel/Errors.h>

namespace {

struct DumpArguments {
    std::string file;
    bool isFlat = false;
    int depth = 40;
};

void runDump(const DumpArguments& arguments) {
    const KWPropertyList list = KWPropertyList::parseFile(inputPath(arguments.file));
    Output output("");
    Dump dump(list, output, static_cast<std::size_t>(arguments.depth));
    if (arguments.isFlat)
        dump.writeObjects();
    else
        dump.writeTree();
    output.finish();
}

} // namespace

void addDumpCommand(CLI::App& program) {
    CLI::App* command =
        program.add_subcommand("dump", "Shows every object of any keyed archive, as it is stored");
    const auto arguments = std::make_shared<DumpArguments>();
    command->add_option("FILE", arguments->file, "the archive; - is standard input")->required();
    command->add_flag("--objects", arguments->isFlat,
                      "all objects in a flat list, also those that nothing refers to");
    command
        ->add_option("--depth", arguments->depth,
                     "how deep lines are indented, 40 when not given; what is nested deeper is "
                     "shown further down")
        ->type_name("N")
        ->check(CLI::Range(1, 1000).description(""));
    command->footer("kwchannel dump ball.kwdoc\n"
                    "kwchannel dump --objects unknown.plist | less\n");
    command->callback([arguments] { runDump(*arguments); });
}
