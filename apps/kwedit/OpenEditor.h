#pragma once

#include <string>
#include <vector>

/// Opens the editor's window on the documents, each in its turn, or on a new one for none, and
/// answers the exit code when it is closed.
int openEditor(int argc, char** argv, const std::vector<std::string>& documents);
