#include <apps/kwchannel/Manual.h>

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
        if (option->get_name().find("--help") != std::string::npos)
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

std::string manualPage(const CLI::App& program) {
    const std::string name = program.get_name();
    std::string text = ".TH KWCHANNEL 1 \"\" \"" + name + " " + program.version() + "\"\n" +
                       ".SH NAME\n" + name + " \\- " + roff(program.get_description()) +
                       "\n.SH SYNOPSIS\n";
    for (const CLI::App* command : commandsOf(program)) {
        const std::string arguments = usage(*command);
        text += ".B " + name + " " + command->get_name() + "\n" +
                (arguments.empty() ? "" : roff(arguments).substr(1) + "\n") + ".br\n";
    }
    text += ".SH EXAMPLES\n.nf\n" + roff(examplesOf(program)) + ".fi\n.SH COMMANDS\n";
    for (const CLI::App* command : commandsOf(program))
        text += ".SS " + name + " " + command->get_name() + "\n" +
                roff(command->get_description()) + ".\n.PP\n.nf\n" + roff(examplesOf(*command)) +
                ".fi\n" + roffOptions(*command);
    text += ".SH OPTIONS\n" + roffOptions(program);
    text += ".SH ADDRESSES\nA channel is named by its path, Element/Group/Channel, or by any "
            "trailing part of it that names one channel alone. Channels of one and the same path "
            "are told apart by #1, #2 and so on behind it.\n"
            ".SH EXIT STATUS\n"
            ".TP\n.B 0\ndone\n.TP\n.B 1\nbad data: a damaged document, one with faults or with "
            "channels that cannot be evaluated, one that would lose something, or an expression "
            "that cannot be read or has no derivative\n.TP\n.B 2\nwrong "
            "use\n.TP\n.B 3\nsomething cannot be read or "
            "written\n.TP\n.B 130\ninterrupted\n";
    return text;
}

std::string bashCompletion(const CLI::App& program) {
    const auto optionWords = [](const CLI::App& app) {
        std::string words;
        for (const CLI::Option* option : optionsOf(app, false)) {
            for (const std::string& name : option->get_snames())
                words += " -" + name;
            for (const std::string& name : option->get_lnames())
                words += " --" + name;
        }
        return words.empty() ? words : words.substr(1);
    };
    std::string commands, cases, choices;
    for (const CLI::App* command : commandsOf(program)) {
        commands += command->get_name() + " ";
        cases += "    " + command->get_name() + ") words=\"" + optionWords(*command) + "\" ;;\n";
        for (const CLI::Option* option : optionsOf(*command, false)) {
            std::string values = option->get_type_name();
            if (option->get_type_size() == 0 || values.find('|') == std::string::npos)
                continue;
            std::replace(values.begin(), values.end(), '|', ' ');
            choices += "    " + command->get_name() + ":--" + option->get_lnames().front() +
                       ") words=\"" + values + "\" ;;\n";
        }
    }
    const std::string name = program.get_name();
    return "# bash completion for " + name + "\n" + "_" + name + "() {\n" +
           "  local current=\"${COMP_WORDS[COMP_CWORD]}\" words=\"\"\n"
           "  COMPREPLY=()\n"
           "  if [ \"$COMP_CWORD\" -eq 1 ]; then\n"
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
           "  COMPREPLY=($(compgen -W \"$words\" -- \"$current\"))\n"
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
