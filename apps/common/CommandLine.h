#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace CLI {
class App;
class Option;
} // namespace CLI

// What a program takes on its command line. The help, the manual page and the shell's completion
// are made from these declarations and nothing else. The parser's own header, which takes seconds
// to compile, stays out of the programs' sources.

/// An option, a flag or an argument that was declared, for more to be said about it.
class CommandOption {
  public:
    /// What stands for the value in the help: "FILE", "A-B", "csv|jsonl".
    CommandOption& shownAs(const std::string& value);
    CommandOption& required();
    /// Refuses every other word.
    CommandOption& oneOf(const std::vector<std::string>& words);
    /// Refuses whole numbers outside of these, which belong to it.
    CommandOption& between(int least, int most);
    /// The option takes one word, of which each comma ends a value.
    CommandOption& separatedByCommas();
    /// Refuses it without the other one.
    CommandOption& onlyWith(const CommandOption& other);

  private:
    friend class Command;
    explicit CommandOption(CLI::Option* option) : _option(option) {}

    CLI::Option* _option;
};

/// The program, or one of the commands that its first word chooses. Variables that are named here
/// must live until the command line has been parsed, and keep their value when the option is not
/// given. Names are written "-o,--output"; one without dashes is an argument.
class Command {
  public:
    Command command(const std::string& name, const std::string& description);

    CommandOption option(const std::string& names, std::string& value,
                         const std::string& description);
    CommandOption option(const std::string& names, std::vector<std::string>& values,
                         const std::string& description);
    CommandOption option(const std::string& names, int& value, const std::string& description);
    CommandOption flag(const std::string& names, bool& value, const std::string& description);

    /// The examples, a line each. They stand first in the help.
    void setExamples(const std::string& lines);
    /// Called when the command was chosen and everything about it is right.
    void onRun(std::function<void()> action);
    /// Neither in the help nor particular about its arguments.
    void hide();

  protected:
    explicit Command(CLI::App& parser) : _parser(&parser) {}

    CLI::App* _parser;
};

class CommandLine : public Command {
  public:
    /// The description is a sentence without its full stop, and `version` what --version shows
    /// behind the name.
    CommandLine(const std::string& name, const std::string& description,
                const std::string& version);
    CommandLine(CommandLine&&) noexcept;
    ~CommandLine();

    /// A section of the manual page, behind those that are made from the options. `text` is roff
    /// source.
    void addManualSection(const std::string& title, const std::string& text);
    /// What an argument named so takes may begin with a minus sign, as an expression does.
    void setArgumentWithMinus(const std::string& name);

    /// Parses and runs what was chosen. Answers the text that was asked for instead, which is also
    /// the help when a command is needed and there is none. UseError, and whatever the action
    /// throws.
    std::optional<std::string> parse(std::vector<std::string> arguments);

    /// "kwchannel eval", or the program alone before there is a command.
    std::string nameInUse() const;

  private:
    struct Impl;
    explicit CommandLine(std::unique_ptr<Impl> impl);

    std::unique_ptr<Impl> _impl;
};
