#include <KWFoundation/KWLog.h>

#include <apps/common/ExitCodes.h>
#include <apps/common/Output.h>
#include <apps/common/Text.h>
#include <apps/kwedit/OpenEditor.h>
#include <apps/kwedit/RenderCommand.h>

#include <CLI/CLI.hpp>

namespace {

void declareProgram(CLI::App& program, KWEditArguments& arguments) {
    program.name("kwedit");
    program.description("Edits documents of animated sprites, and renders their frames");
    program.set_help_flag("-h,--help", "Shows this and ends");
    program.set_version_flag("--version", "kwedit " KWEDIT_VERSION, "Shows the version and ends");
    program.add_option("DOC", arguments.documents, "documents to open, or the one to render")
        ->type_name("");
    CLI::Option* const render = program.add_flag("--render", arguments.isRendering,
                                                 "renders without a window, and needs no screen");
    program
        .add_option("--frames", arguments.frames,
                    "the first and the last frame; frame k is the one at k / fps seconds; the "
                    "document's own range when not given")
        ->type_name("A-B")
        ->needs(render);
    program
        .add_option(
            "-o,--output", arguments.output,
            "the folder for the frames, NAME.0000.png and so on, or a file for a movie that "
            "ends in .mp4, .mov, .mkv, .webm or .gif")
        ->type_name("DIR|FILE")
        ->needs(render);
    program.add_option("--size", arguments.size, "pixels; the document's own when not given")
        ->type_name("WxH")
        ->needs(render);
    program
        .add_option("--fps", arguments.framesPerSecond,
                    "frames a second; the document's own when not given")
        ->type_name("N")
        ->needs(render);
    program
        .add_option("-j,--jobs", arguments.jobs,
                    "how many frames to draw at once; one for each core when not given")
        ->type_name("N")
        ->needs(render);
    program
        .add_option("--name", arguments.name, "what the frames' files begin with; the document's")
        ->type_name("NAME")
        ->needs(render);
    program
        .add_flag("--skip-existing", arguments.skipsExisting,
                  "leaves alone the frames that are there already")
        ->needs(render);
    program
        .add_flag("--strict", arguments.isStrict,
                  "renders nothing when content is missing, in place of placeholders")
        ->needs(render);
    program
        .add_option("--filmstrip", arguments.filmstrip,
                    "draws N frames of the range on one sheet, a PNG")
        ->type_name("N")
        ->needs(render);
    program
        .add_option("--screenshot", arguments.screenshot,
                    "draws the window on the document into a PNG and ends; needs no screen")
        ->type_name("FILE")
        ->excludes(render);
    program
        .add_option("--language", arguments.language,
                    "of the menus: en, de or fr; otherwise as set in them, or the system's")
        ->type_name("CODE")
        ->check(CLI::IsMember({"en", "de", "fr"}))
        ->excludes(render);
    program.add_flag("--tour", arguments.isTour, "walks through one edit")->excludes(render);
    program.footer("kwedit ball.kwdoc\n"
                   "kwedit --render ball.kwdoc --frames 0-99 -o frames\n"
                   "kwedit --render ball.kwdoc -o ball.mp4 --size 1920x1080 --fps 50\n");
}

int refuse(const std::string& text) {
    complain(printable(text) + "; see kwedit --help");
    return exitWrongUse;
}

} // namespace

int main(int argc, char** argv) {
    setUpProcess("kwedit");
    KWSetLogHandler([](std::string_view line) {
        if (!line.starts_with("set err = ") && line != "Elements changed")
            complain(printable(line));
    });
    KWEditArguments arguments;
    try {
        CLI::App program;
        declareProgram(program, arguments);
        try {
            program.parse(argc, argv);
        } catch (const CLI::CallForHelp&) {
            print(program.help());
            return exitDone;
        } catch (const CLI::CallForVersion& call) {
            print(std::string(call.what()) + "\n");
            return exitDone;
        } catch (const CLI::ParseError& error) {
            return refuse(error.what());
        }
    } catch (const std::exception& error) {
        complain(printable(error.what()));
        return exitInputOutput;
    }
    if (arguments.isRendering)
        return runRender(arguments);
    return openEditor(argc, argv, arguments);
}
