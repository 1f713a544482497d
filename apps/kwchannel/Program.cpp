#include <KWFoundation/KWArchiveError.h>
#include <KWFoundation/KWLog.h>

#include <apps/common/Errors.h>
#include <apps/common/ExitCodes.h>
#include <apps/common/KWDocument.h>
#include <apps/common/Output.h>
#include <apps/common/Text.h>
#include <apps/kwchannel/Commands.h>
#include <apps/kwchannel/Expressions.h>

#include <algorithm>
#include <new>

namespace {

int complainOfUse(const CommandLine& program, const std::string& text) {
    complain(printable(text) + (text.ends_with('?') ? " See " : "; see ") + program.nameInUse() +
             " --help");
    return exitWrongUse;
}

int complainOfAddress(const CommandLine& program, const KWAddressError& error) {
    constexpr std::size_t shown = 5;
    std::string text = error.what();
    const std::vector<std::string>& candidates = error.candidates();
    if (candidates.empty())
        return complainOfUse(program, text + "; kwchannel info shows those there are");

    const bool isGuess = error.reason() == KWAddressError::Reason::notFound;
    const std::size_t count = std::min(candidates.size(), shown);
    const bool isCut = candidates.size() > shown;
    text += isGuess ? "; did you mean " : ": ";
    for (std::size_t i = 0; i < count; ++i) {
        const bool isLast = i + 1 == count && !isCut;
        text += (i == 0 ? "" : isGuess && isLast ? " or " : ", ") + inQuotes(candidates[i]);
    }
    if (isCut)
        text += (isGuess ? " or one of " : " and ") + std::to_string(candidates.size() - shown) +
                " more";
    return complainOfUse(program, text + (isGuess ? "?" : ""));
}

/// Runs what was parsed and turns what goes wrong into a line and an exit code.
int run(CommandLine& program, int argc, char** argv) {
    try {
        if (const auto text = program.parse({argv + std::min(argc, 1), argv + argc}))
            print(*text);
        return exitDone;
    } catch (const UseError& error) {
        return complainOfUse(program, error.what());
    } catch (const KWAddressError& error) {
        return complainOfAddress(program, error);
    }
}

void declare(CommandLine& program) {
    program.setExamples(
        "kwchannel info ball.kwdoc\n"
        "kwchannel eval ball.kwdoc Position/y --from 0 --to 2 --step 0.25 --unit cm\n"
        "kwchannel bake ball.kwdoc --from 0 --to 10 --rate 60 -o ball.csv\n"
        "kwchannel plot ball.kwdoc Position/y -o ball.png\n"
        "kwchannel dump ball.kwdoc\n"
        "kwchannel convert ball.kwdoc -o ball.xml\n"
        "kwchannel validate ball.kwdoc\n"
        "kwchannel expr \"sin(t)*exp(-t/3)\" --from 0 --to 6 --step 0.5\n"
        "kwchannel set ball.kwdoc Position/x \"1.5*sin(t)\"\n");
    addInfoCommand(program);
    addEvalCommand(program);
    addBakeCommand(program);
    addDumpCommand(program);
    addConvertCommand(program);
    addValidateCommand(program);
    addPlotCommand(program);
    addExprCommand(program);
    addSetCommand(program);
    program.setArgumentWithMinus("TEXT");
    program.addManualSection(
        "ADDRESSES",
        "A channel is named by its path, Element/Group/Channel, or by any trailing part of it that "
        "names one channel alone. Channels of one and the same path are told apart by #1, #2 and "
        "so on behind it.\n");
    program.addManualSection(
        "EXIT STATUS",
        ".TP\n.B 0\ndone\n"
        ".TP\n.B 1\nbad data: a damaged document, one with faults or with channels that cannot be "
        "evaluated, one that would lose something, or an expression that cannot be read or has no "
        "derivative\n"
        ".TP\n.B 2\nwrong use\n"
        ".TP\n.B 3\nsomething cannot be read or written\n"
        ".TP\n.B 130\ninterrupted\n");
}

} // namespace

int runProgram(int argc, char** argv) {
    setUpProcess("kwchannel");
    KWSetLogHandler([](std::string_view line) {
        // A document's text may be refused in one place and restored from another; what is without
        // an expression in the end is told of by the commands.
        if (!line.starts_with("set err = "))
            complain(printable(line));
    });
    try {
        CommandLine program("kwchannel",
                            "Inspects, evaluates, bakes, draws, converts, validates and edits "
                            "documents of animation channels",
                            KWCHANNEL_VERSION);
        declare(program);
        return run(program, argc, argv);
    } catch (const BrokenPipe&) {
        return exitDone;
    } catch (const ExpressionError& error) {
        complain(printable(error.what()));
        showOnStandardError(error.excerpt());
        return exitBadData;
    } catch (const KWArchiveError& error) {
        complain(printable(error.what()));
        const bool isInputOutput = error.kind() == KWArchiveError::Kind::cannotRead ||
                                   error.kind() == KWArchiveError::Kind::cannotWrite;
        return isInputOutput ? exitInputOutput : exitBadData;
    } catch (const std::bad_alloc&) {
        complain("out of memory");
        return exitBadData;
    } catch (const std::exception& error) {
        complain(printable(error.what()));
        return exitBadData;
    }
}
