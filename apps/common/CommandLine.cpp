#include <apps/common/CommandLine.h>
#include <apps/common/Errors.h>
#include <apps/common/Manual.h>
#include <apps/common/Text.h>

#include <CLI/CLI.hpp>
#include <algorithm>

CommandOption& CommandOption::shownAs(const std::string& value) {
    _option->type_name(value);
    return *this;
}

CommandOption& CommandOption::required() {
    _option->required();
    return *this;
}

CommandOption& CommandOption::oneOf(const std::vector<std::string>& words) {
    _option->check(CLI::IsMember(words).description(""));
    return *this;
}

CommandOption& CommandOption::between(int least, int most) {
    _option->check(CLI::Range(least, most).description(""));
    return *this;
}

CommandOption& CommandOption::separatedByCommas() {
    _option->allow_extra_args(false)->delimiter(',');
    return *this;
}

CommandOption& CommandOption::onlyWith(const CommandOption& other) {
    _option->needs(other._option);
    return *this;
}

Command Command::command(const std::string& name, const std::string& description) {
    return Command(*_parser->add_subcommand(name, description));
}

CommandOption Command::option(const std::string& names, std::string& value,
                              const std::string& description) {
    return CommandOption(_parser->add_option(names, value, description));
}

CommandOption Command::option(const std::string& names, std::vector<std::string>& values,
                              const std::string& description) {
    return CommandOption(_parser->add_option(names, values, description));
}

CommandOption Command::option(const std::string& names, int& value,
                              const std::string& description) {
    return CommandOption(_parser->add_option(names, value, description));
}

CommandOption Command::flag(const std::string& names, bool& value, const std::string& description) {
    return CommandOption(_parser->add_flag(names, value, description));
}

void Command::setExamples(const std::string& lines) {
    _parser->footer(lines);
}

void Command::onRun(std::function<void()> action) {
    _parser->callback(std::move(action));
}

void Command::hide() {
    _parser->allow_extras();
    _parser->group("");
}

struct CommandLine::Impl {
    CLI::App parser;
    std::vector<ManualSection> sections;
    std::string argumentWithMinus;
    /// What was asked for with one of the hidden options.
    std::string generated;

    /// The command that was chosen, else the program.
    const CLI::App& inUse() const {
        const std::vector<CLI::App*> used = parser.get_subcommands();
        return used.empty() ? parser : *used.front();
    }

    std::string complaintOfExtras() const;
    std::vector<std::string> withArgumentLast(std::vector<std::string> arguments) const;
    void addHiddenOptions();
};

/// Of arguments that nothing takes: a word where a command belongs, or too much behind one.
std::string CommandLine::Impl::complaintOfExtras() const {
    const std::vector<std::string> extras = parser.remaining(true);
    const auto commands = parser.get_subcommands([](const CLI::App*) { return true; });
    if (!commands.empty() && parser.get_subcommands().empty() && !extras.empty() &&
        !extras[0].starts_with('-')) {
        std::string names;
        for (const CLI::App* command : commands)
            names += (names.empty() ? "" : ", ") + command->get_name();
        return "there is no command " + inQuotes(extras[0]) + "; there are " + names;
    }
    std::string text = extras.size() == 1 ? "this argument was not expected:"
                                          : "these arguments were not expected:";
    for (const std::string& extra : extras)
        text += " " + extra;
    return text;
}

/// An argument may begin with a minus sign, which an option does as well. It goes to the end,
/// behind the mark that ends the options.
std::vector<std::string>
CommandLine::Impl::withArgumentLast(std::vector<std::string> arguments) const {
    const auto commands = parser.get_subcommands([&arguments](const CLI::App* each) {
        return !arguments.empty() && each->get_name() == arguments[0];
    });
    if (argumentWithMinus.empty() || commands.empty() ||
        !commands[0]->get_option_no_throw(argumentWithMinus))
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

/// For the build; in no group, which hides them.
void CommandLine::Impl::addHiddenOptions() {
    parser
        .add_flag_callback(
            "--generate-man",
            [this] {
                generated = manualPage(parser, sections);
                throw CLI::Success();
            },
            "")
        ->group("");
    parser
        .add_option_function<std::string>(
            "--generate-completion",
            [this](const std::string&) {
                generated = bashCompletion(parser);
                throw CLI::Success();
            },
            "")
        ->check(CLI::IsMember({"bash"}))
        ->group("");
}

CommandLine::CommandLine(std::unique_ptr<Impl> impl)
    : Command(impl->parser), _impl(std::move(impl)) {}

CommandLine::CommandLine(const std::string& name, const std::string& description,
                         const std::string& version)
    : CommandLine(std::make_unique<Impl>()) {
    CLI::App& parser = _impl->parser;
    parser.name(name);
    parser.description(description);
    parser.formatter(std::make_shared<HelpFormatter>());
    parser.set_help_flag("-h,--help", "Shows this and ends");
    parser.set_version_flag("--version", version, "Shows the version and ends");
    parser.require_subcommand(0, 1);
    _impl->addHiddenOptions();
}

CommandLine::CommandLine(CommandLine&&) noexcept = default;
CommandLine::~CommandLine() = default;

void CommandLine::addManualSection(const std::string& title, const std::string& text) {
    _impl->sections.push_back({title, text});
}

void CommandLine::setArgumentWithMinus(const std::string& name) {
    _impl->argumentWithMinus = name;
}

std::string CommandLine::nameInUse() const {
    const CLI::App& command = _impl->inUse();
    const std::string name = _impl->parser.get_name();
    return &command == &_impl->parser ? name : name + " " + command.get_name();
}

std::optional<std::string> CommandLine::parse(std::vector<std::string> arguments) {
    CLI::App& parser = _impl->parser;
    try {
        arguments = _impl->withArgumentLast(std::move(arguments));
        std::reverse(arguments.begin(), arguments.end()); // as the parser takes them
        parser.parse(std::move(arguments));
    } catch (const CLI::CallForHelp&) {
        const CLI::App& command = _impl->inUse();
        return command.help(&command == &parser ? "" : parser.get_name());
    } catch (const CLI::CallForVersion&) {
        return parser.get_name() + " " + parser.version() + "\n";
    } catch (const CLI::Success&) {
        return _impl->generated;
    } catch (const CLI::ExtrasError&) {
        throw UseError(_impl->complaintOfExtras());
    } catch (const CLI::ParseError& error) {
        throw UseError(error.what());
    }
    const bool hasCommands = !parser.get_subcommands([](const CLI::App*) { return true; }).empty();
    if (hasCommands && parser.get_subcommands().empty())
        return parser.help();
    return std::nullopt;
}
