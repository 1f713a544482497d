#pragma once

#include <apps/common/CommandLine.h>

// The commands. Each adds itself with its options, its description and its examples.

void addInfoCommand(Command& program);
void addEvalCommand(Command& program);
void addBakeCommand(Command& program);
void addDumpCommand(Command& program);
void addConvertCommand(Command& program);
void addValidateCommand(Command& program);
void addPlotCommand(Command& program);
void addExprCommand(Command& program);
void addSetCommand(Command& program);

/// Parses and runs. Answers the exit code, with everything that went wrong said on standard error.
int runProgram(int argc, char** argv);
