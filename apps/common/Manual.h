#pragma once

#include <CLI/CLI.hpp>
#include <string>
#include <vector>

/// Text in roff under a heading in capitals.
struct ManualSection {
    std::string title;
    std::string text;
};

/// The manual page, as roff source. The sections stand at its end.
std::string manualPage(const CLI::App& program, const std::vector<ManualSection>& sections);

/// The completion script for bash.
std::string bashCompletion(const CLI::App& program);

/// Help with the examples first, which a subcommand keeps as its footer.
class HelpFormatter : public CLI::Formatter {
  public:
    HelpFormatter();
    std::string make_help(const CLI::App* app, std::string name,
                          CLI::AppFormatMode mode) const override;
    std::string make_footer(const CLI::App* app) const override;
    std::string make_option_opts(const CLI::Option* option) const override;
};
