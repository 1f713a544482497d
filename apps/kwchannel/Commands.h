#pragma once

#include <CLI/CLI.hpp>
#include <functional>

// The subcommands. Each adds itself with its options, its description, and its examples as the
// footer; running it is its callback. What is printed as help, as the manual page and as the
// shell's completion is made from these declarations and nothing else.

void addInfoCommand(CLI::App& program);
void addEvalCommand(CLI::App& program);
void addBakeCommand(CLI::App& program);
void addDumpCommand(CLI::App& program);
void addConvertCommand(CLI::App& program);
void addValidateCommand(CLI::App& program);
void addPlotCommand(CLI::App& program);
void addExprCommand(CLI::App& program);
void addSetCommand(CLI::App& program);

/// The whole program, ready to parse.
void declareProgram(CLI::App& program);

/// Parses and runs. Answers the exit code, with everything that went wrong said on standard error.
int runProgram(int argc, char** argv);
