#include <KWFoundation/KWLog.h>

#include <apps/common/CommandLine.h>
#include <apps/common/Errors.h>
#include <apps/common/ExitCodes.h>
#include <apps/common/Output.h>
#include <apps/common/Text.h>
#include <apps/kwedit/OpenEditor.h>
#include <apps/kwedit/RenderCommand.h>

#include <algorithm>

namespace {

void declare(CommandLine& program, KWEditArguments& arguments) {
    program.option("DOC", arguments.documents, "documents to open, or the one to render")
        .shownAs("");
    const CommandOption render = program.flag("--render", arguments.isRendering,
                                              "renders without a window, and needs no screen");
    program
        .option("--frames", arguments.frames,
                "the first and the last frame; frame k is the one at k / fps seconds; the "
                "document's own range when not given")
        .shownAs("A-B")
        .onlyWith(render);
    program
        .option("-o,--output", arguments.output,
                "the folder for the frames, NAME.0000.png and so on, or a file for a movie that "
                "ends in .mp4, .mov, .mkv, .webm or .gif")
        .shownAs("DIR|FILE")
        .onlyWith(render);
    program
        .option("--size", arguments.size,
                "pixels: of a frame, of one on a filmstrip, or of the window on a screenshot; the "
                "document's own, 320 wide, or 1440x900 when not given")
        .shownAs("WxH");
    program
        .option("--fps", arguments.framesPerSecond,
                "frames a second; the document's own when not given")
        .shownAs("N")
        .onlyWith(render);
    program
        .option("-j,--jobs", arguments.jobs,
                "how many frames to draw at once; one for each core when not given")
        .shownAs("N")
        .onlyWith(render);
    program.option("--name", arguments.name, "what the frames' files begin with; the document's")
        .shownAs("NAME")
        .onlyWith(render);
    program
        .flag("--skip-existing", arguments.skipsExisting,
              "leaves alone the frames that are there already")
        .onlyWith(render);
    program
        .flag("--strict", arguments.isStrict,
              "renders nothing when content is missing, in place of placeholders")
        .onlyWith(render);
    program
        .option("--filmstrip", arguments.filmstrip,
                "draws N frames of the range on one sheet, a PNG")
        .shownAs("N")
        .onlyWith(render);
    program
        .option("--screenshot", arguments.screenshot,
                "draws the window on the document into a PNG and ends; needs no screen")
        .shownAs("FILE");
    program
        .option("--language", arguments.language,
                "of the menus: en, de or fr; otherwise as set in them, or the system's")
        .shownAs("CODE")
        .oneOf({"en", "de", "fr"});
    program
        .option("--palette", arguments.palette,
                "of the window: light or dark; otherwise as set in the View menu, or the system's")
        .shownAs("NAME")
        .oneOf({"light", "dark"});
    program.flag("--tour", arguments.isTour, "walks through one edit");
    program.setExamples("kwedit ball.kwdoc\n"
                        "kwedit --render ball.kwdoc --frames 0-99 -o frames\n"
                        "kwedit --render ball.kwdoc -o ball.mp4 --size 1920x1080 --fps 50\n");
    program.addManualSection(
        "EXIT STATUS",
        ".TP\n.B 0\ndone\n"
        ".TP\n.B 1\nbad data: a document that is damaged, or without content that it needs\n"
        ".TP\n.B 2\nwrong use\n"
        ".TP\n.B 3\nsomething cannot be read or written\n"
        ".TP\n.B 130\ninterrupted\n");
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
        CommandLine program("kwedit",
                            "Edits documents of animated sprites, and renders their frames",
                            KWEDIT_VERSION);
        declare(program, arguments);
        if (const auto text = program.parse({argv + std::min(argc, 1), argv + argc})) {
            print(*text);
            return exitDone;
        }
    } catch (const UseError& error) {
        return refuse(error.what());
    } catch (const std::exception& error) {
        complain(printable(error.what()));
        return exitInputOutput;
    }
    if (arguments.isRendering)
        return runRender(arguments);
    return openEditor(argc, argv, arguments);
}
