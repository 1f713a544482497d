#include <KWFoundation/KWArchiveError.h>

#include <apps/common/KWDocument.h>
#include <apps/kwchannel/Commands.h>
#include <apps/kwchannel/Errors.h>
#include <apps/kwchannel/ExitCodes.h>
#include <apps/kwchannel/Manual.h>
#include <apps/kwchannel/Output.h>
#include <apps/kwchannel/Text.h>

#include <algorithm>
#include <new>

namespace {

/// The subcommand that was asked for, else the program.
const CLI::App& commandInUse(const CLI::App& program) {
    const std::vector<CLI::App*> used = program.get_subcommands();
    return used.empty() ? program : *used.front();
}

std::string fullName(const CLI::App& program, const CLI::App& command) {
    return &command == &program ? program.get_name()
                                : program.get_name() + " " + command.get_name();
}

int complainOfUse(const CLI::App& program, const std::string& text) {
    complain(printable(text) + (text.ends_with('?') ? " See " : "; see ") +
             fullName(program, commandInUse(program)) + " --help");
    return exitWrongUse;
}

int complainOfAddress(const CLI::App& program, const KWAddressError& error) {
    constexpr std::size_t shown = 5;
    std::string text = error.what();
    const std::vector<std::string>& candidates = error.candidates();
    if (candidates.empty())
        return complainOfUse(program, text + "; kwchannel info shows those there are");

    const bool isGuess = text.starts_with("there is no ");
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

/// Of arguments that nothing takes: a word where a command belongs, or too much behind one.
int complainOfExtras(const CLI::App& program) {
    const std::vector<std::string> extras = program.remaining(true);
    if (program.get_subcommands().empty() && !extras.empty() && !extras[0].starts_with('-')) {
        std::string names;
        for (const CLI::App* command :
             program.get_subcommands([](const CLI::App*) { return true; }))
            names += (names.empty() ? "" : ", ") + command->get_name();
        return complainOfUse(program,
                             "there is no command " + inQuotes(extras[0]) + "; there are " + names);
    }
    std::string text = extras.size() == 1 ? "this argument was not expected:"
                                          : "these arguments were not expected:";
    for (const std::string& extra : extras)
        text += " " + extra;
    return complainOfUse(program, text);
}

/// Runs what was parsed and turns what goes wrong into a line and an exit code.
int run(CLI::App& program, int argc, char** argv) {
    try {
        program.parse(argc, argv);
        if (program.get_subcommands().empty())
            print(program.help());
        return exitDone;
    } catch (const CLI::CallForHelp&) {
        const CLI::App& command = commandInUse(program);
        print(command.help(&command == &program ? "" : program.get_name()));
        return exitDone;
    } catch (const CLI::CallForVersion&) {
        print(program.get_name() + " " + program.version() + "\n");
        return exitDone;
    } catch (const CLI::Success&) {
        return exitDone;
    } catch (const CLI::ExtrasError&) {
        return complainOfExtras(program);
    } catch (const CLI::ParseError& error) {
        return complainOfUse(program, error.what());
    } catch (const UseError& error) {
        return complainOfUse(program, error.what());
    } catch (const KWAddressError& error) {
        return complainOfAddress(program, error);
    }
}

} // namespace

void declareProgram(CLI::App& program) {
    program.name("kwchannel");
    program.description("Inspects, evaluates, bakes, converts and validates documents of animation "
                        "channels");
    program.formatter(std::make_shared<HelpFormatter>());
    program.set_help_flag("-h,--help", "Shows this and ends");
    program.set_version_flag("--version", KWCHANNEL_VERSION, "Shows the version and ends");
    program.require_subcommand(0, 1);
    program.footer("kwchannel info ball.kwdoc\n"
                   "kwchannel eval ball.kwdoc Position/y --from 0 --to 2 --step 0.25 --unit cm\n"
                   "kwchannel bake ball.kwdoc --from 0 --to 10 --rate 60 -o ball.csv\n"
                   "kwchannel dump ball.kwdoc\n"
                   "kwchannel convert ball.kwdoc -o ball.xml\n"
                   "kwchannel validate ball.kwdoc\n");
    addInfoCommand(program);
    addEvalCommand(program);
    addBakeCommand(program);
    addDumpCommand(program);
    addConvertCommand(program);
    addValidateCommand(program);

    // For the build; in no group, which hides them.
    program
        .add_flag_callback(
            "--generate-man",
            [&program] {
                print(manualPage(program));
                throw CLI::Success();
            },
            "")
        ->group("");
    program
        .add_option_function<std::string>(
            "--generate-completion",
            [&program](const std::string&) {
                print(bashCompletion(program));
                throw CLI::Success();
            },
            "")
        ->check(CLI::IsMember({"bash"}))
        ->group("");
}

int runProgram(int argc, char** argv) {
    setUpProcess();
    try {
        CLI::App program;
        declareProgram(program);
        return run(program, argc, argv);
    } catch (const BrokenPipe&) {
        return exitDone;
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
