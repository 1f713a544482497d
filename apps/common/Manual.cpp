#include <apps/common/Manual.h>

#include <algorithm>

namespace {

std::vector<const CLI::App*> commandsOf(const CLI::App& program) {
    return program.get_subcommands([](const CLI::App*) { return true; });
}

/// The options that are shown: those in no group are hidden.
std::vector<const CLI::Option*> optionsOf(const CLI::App& app, bool positional) {
    return app.get_options([positional](const CLI::Option* option) {
        return option->get_positional() == positional && !option->get_group().empty();
    });
}

/// "-o, --output FILE".
std::string spelled(const CLI::Option& option) {
    if (option.get_positional())
        return option.get_name(true) + (option.get_items_expected_max() > 1 ? "..." : "");
    std::string text;
    for (const std::string& name : option.get_snames())
        text += (text.empty() ? "-" : ", -") + name;
    for (const std::string& name : option.get_lnames())
        text += (text.empty() ? "--" : ", --") + name;
    if (option.get_type_size() != 0 && !option.get_type_name().empty())
        text += " " + option.get_type_name();
    return text;
}

std::string usage(const CLI::App& command) {
    std::string text;
    for (const CLI::Option* option : optionsOf(command, true)) {
        const std::string name = spelled(*option);
        text += option->get_required() ? " " + name : " [" + name + "]";
    }
    for (const CLI::Option* option : optionsOf(command, false)) {
        if (option->check_lname("help") || option->check_lname("version"))
            continue;
        const std::string name = spelled(*option);
        text += option->get_required() ? " " + name : " [" + name + "]";
    }
    return text;
}

std::string roff(std::string_view text) {
    std::string escaped;
    bool startsLine = true;
    for (const char c : text) {
        if (startsLine && (c == '.' || c == '\''))
            escaped += "\\&";
        startsLine = c == '\n';
        if (c == '\\')
            escaped += "\\e";
        else if (c == '-')
            escaped += "\\-";
        else
            escaped += c;
    }
    return escaped;
}

std::string examplesOf(const CLI::App& app) {
    std::string text = app.get_footer();
    if (!text.empty() && text.back() != '\n')
        text += '\n';
    return text;
}

std::string roffOptions(const CLI::App& app) {
    std::string text;
    for (const bool positional : {true, false})
        for (const CLI::Option* option : optionsOf(app, positional))
            text +=
                ".TP\n.B " + roff(spelled(*option)) + "\n" + roff(option->get_description()) + "\n";
    return text;
}

} // namespace

std::string manualPage(const CLI::App& program, const std::vector<ManualSection>& sections) {
    const std::string name = program.get_name();
    std::string capitals = name;
    std::transform(capitals.begin(), capitals.end(), capitals.begin(),
                   [](char c) { return c >= 'a' && c <= 'z' ? static_cast<char>(c - 32) : c; });
    std::string text = ".TH " + capitals + " 1 \"\" \"" + name + " " + program.version() +
                       "\"\n.SH NAME\n" + name + " \\- " + roff(program.get_description()) +
                       "\n.SH SYNOPSIS\n";
    const auto addUsage = [&text](const std::string& words, const std::string& arguments) {
        text += ".B " + words + "\n" + (arguments.empty() ? "" : roff(arguments).substr(1) + "\n") +
                ".br\n";
    };
    const std::vector<const CLI::App*> commands = commandsOf(program);
    for (const CLI::App* command : commands)
        addUsage(name + " " + command->get_name(), usage(*command));
    if (commands.empty())
        addUsage(name, usage(program));
    text += ".SH EXAMPLES\n.nf\n" + roff(examplesOf(program)) + ".fi\n";
    if (!commands.empty())
        text += ".SH COMMANDS\n";
    for (const CLI::App* command : commands)
        text += ".SS " + name + " " + command->get_name() + "\n" +
                roff(command->get_description()) + ".\n.PP\n.nf\n" + roff(examplesOf(*command)) +
                ".fi\n" + roffOptions(*command);
    text += ".SH OPTIONS\n" + roffOptions(program);
    for (const ManualSection& section : sections)
        text += ".SH " + section.title + "\n" + section.text;
    return text;
}

namespace {

/// "-o --output --json".
std::string optionWords(const CLI::App& app) {
    std::string words;
    for (const CLI::Option* option : optionsOf(app, false)) {
        for (const std::string& name : option->get_snames())
            words += " -" + name;
        for (const std::string& name : option->get_lnames())
            words += " --" + name;
    }
    return words.empty() ? words : words.substr(1);
}

/// A case for each option whose value is one of a few words, which are written small in the help.
std::string choicesOf(const CLI::App& app, const std::string& before) {
    std::string cases;
    for (const CLI::Option* option : optionsOf(app, false)) {
        std::string values = option->get_type_name();
        const bool isChoice = std::all_of(values.begin(), values.end(), [](char c) {
            return c == '|' || (c >= 'a' && c <= 'z');
        });
        if (option->get_type_size() == 0 || !isChoice || values.find('|') == std::string::npos)
            continue;
        std::replace(values.begin(), values.end(), '|', ' ');
        cases += "    " + before + "--" + option->get_lnames().front() + ") words=\"" + values +
                 "\" ;;\n";
    }
    return cases;
}

/// Completes one word: the first by the commands, others by what their command takes.
std::string completionOfCommands(const CLI::App& program) {
    std::string commands, cases, choices;
    for (const CLI::App* command : commandsOf(program)) {
        commands += command->get_name() + " ";
        cases += "    " + command->get_name() + ") words=\"" + optionWords(*command) + "\" ;;\n";
        choices += choicesOf(*command, command->get_name() + ":");
    }
    return "  if [ \"$COMP_CWORD\" -eq 1 ]; then\n"
           "    COMPREPLY=($(compgen -W \"" +
           commands + optionWords(program) +
           "\" -- \"$current\"))\n"
           "    return\n"
           "  fi\n"
           "  case \"${COMP_WORDS[1]}:${COMP_WORDS[COMP_CWORD-1]}\" in\n" +
           choices +
           "  esac\n"
           "  if [ -n \"$words\" ]; then\n"
           "    COMPREPLY=($(compgen -W \"$words\" -- \"$current\"))\n"
           "    return\n"
           "  fi\n"
           "  case \"$current\" in\n"
           "  -*) ;;\n"
           "  *) compopt -o filenames; COMPREPLY=($(compgen -f -- \"$current\")); return ;;\n"
           "  esac\n"
           "  case \"${COMP_WORDS[1]}\" in\n" +
           cases +
           "  esac\n"
           "  COMPREPLY=($(compgen -W \"$words\" -- \"$current\"))\n";
}

/// Of a program without commands: options, and else files.
std::string completionOfOptions(const CLI::App& program) {
    const std::string choices = choicesOf(program, "");
    return (choices.empty()
                ? ""
                : "  case \"${COMP_WORDS[COMP_CWORD-1]}\" in\n" + choices + "  esac\n") +
           "  case \"$current\" in\n"
           "  -*) words=\"" +
           optionWords(program) +
           "\" ;;\n"
           "  esac\n"
           "  if [ -n \"$words\" ]; then\n"
           "    COMPREPLY=($(compgen -W \"$words\" -- \"$current\"))\n"
           "  else\n"
           "    compopt -o filenames; COMPREPLY=($(compgen -f -- \"$current\"))\n"
           "  fi\n";
}

} // namespace

std::string bashCompletion(const CLI::App& program) {
    const std::string name = program.get_name();
    return "# bash completion for " + name + "\n" + "_" + name + "() {\n" +
           "  local current=\"${COMP_WORDS[COMP_CWORD]}\" words=\"\"\n"
           "  COMPREPLY=()\n" +
           (commandsOf(program).empty() ? completionOfOptions(program)
                                        : completionOfCommands(program)) +
           "}\n"
           "complete -F _" +
           name + " " + name + "\n";
}

HelpFormatter::HelpFormatter() {
    column_width(26);
}

std::string HelpFormatter::make_help(const CLI::App* app, std::string name,
                                     CLI::AppFormatMode mode) const {
    if (mode == CLI::AppFormatMode::Sub)
        return CLI::Formatter::make_help(app, std::move(name), mode);
    std::string text = app->get_description() + ".\n";
    std::string examples = examplesOf(*app);
    if (!examples.empty()) {
        text += "\nExamples:\n";
        for (std::size_t start = 0; start < examples.size();) {
            const std::size_t end = examples.find('\n', start);
            text += "  " + examples.substr(start, end - start + 1);
            start = end + 1;
        }
    }
    text += "\n" + make_usage(app, std::move(name));
    return text + make_positionals(app) + make_groups(app, mode) + make_subcommands(app, mode);
}

std::string HelpFormatter::make_footer(const CLI::App*) const {
    return {};
}

std::string HelpFormatter::make_option_opts(const CLI::Option* option) const {
    if (option->get_positional() || option->get_type_size() == 0 || option->get_type_name().empty())
        return {};
    return " " + option->get_type_name();
}
