#include <KWFoundation/KWArchiveError.h>
#include <KWFoundation/KWLog.h>

#include <apps/common/ExitCodes.h>
#include <apps/common/KWDocument.h>
#include <apps/common/Output.h>
#include <apps/common/Text.h>
#include <apps/kwchannel/Commands.h>
#include <apps/kwchannel/Expressions.h>
#include <apps/kwchannel/Manual.h>

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

/// An expression may begin with a minus sign, which an option does as well. It goes to the end,
/// behind the mark that ends the options.
std::vector<std::string> withExpressionLast(const CLI::App& program,
                                            std::vector<std::string> arguments) {
    const auto commands = program.get_subcommands([&arguments](const CLI::App* each) {
        return !arguments.empty() && each->get_name() == arguments[0];
    });
    if (commands.empty() || !commands[0]->get_option_no_throw("TEXT"))
        return arguments;
    const CLI::App& command = *commands[0];
    const auto takesValue = [&command](const std::string& argument) {
        const CLI::Option* const option =
            argument.starts_with('-') ? command.get_option_no_throw(argument) : nullptr;
        return option && option->get_items_expected_max() > 0;
    };
    std::vector<std::string> kept{arguments[0]}, texts;
    for (std::size_t k = 1; k < arguments.size(); ++k) {
        const std::string& argument = arguments[k];
        if (argument == "--")
            return arguments;
        const bool isText = argument.size() > 1 && argument[0] == '-' && argument[1] != '-' &&
                            !command.get_option_no_throw(argument.substr(0, 2)) &&
                            !takesValue(arguments[k - 1]);
        (isText ? texts : kept).push_back(argument);
    }
    if (!texts.empty())
        kept.emplace_back("--");
    kept.insert(kept.end(), texts.begin(), texts.end());
    return kept;
}

/// Runs what was parsed and turns what goes wrong into a line and an exit code.
int run(CLI::App& program, int argc, char** argv) {
    try {
        std::vector<std::string> arguments =
            withExpressionLast(program, {argv + std::min(argc, 1), argv + argc});
        std::reverse(arguments.begin(), arguments.end()); // as the parser takes them
        program.parse(std::move(arguments));
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
    program.description(
        "Inspects, evaluates, bakes, draws, converts, validates and edits documents of "
        "animation channels");
    program.formatter(std::make_shared<HelpFormatter>());
    program.set_help_flag("-h,--help", "Shows this and ends");
    program.set_version_flag("--version", KWCHANNEL_VERSION, "Shows the version and ends");
    program.require_subcommand(0, 1);
    program.footer("kwchannel info ball.kwdoc\n"
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
    setUpProcess("kwchannel");
    KWSetLogHandler([](std::string_view line) {
        // A document's text may be refused in one place and restored from another; what is without
        // an expression in the end is told of by the commands.
        if (!line.starts_with("set err = "))
            complain(printable(line));
    });
    try {
        CLI::App program;
        declareProgram(program);
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
