#pragma once

#include <apps/kwedit/RenderCommand.h>

/// Opens a window on each of the documents, or on a new one for none, and answers the exit code
/// when all are closed. With a screenshot asked for, draws the window into it instead.
int openEditor(int argc, char** argv, const KWEditArguments& arguments);
