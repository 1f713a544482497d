#pragma once

#include <string>
#include <vector>

/// What the program is asked for on its command line.
struct KWEditArguments {
    std::vector<std::string> documents;
    bool isRendering = false;
    std::string frames;
    std::string output;
    std::string size;
    std::string framesPerSecond;
    std::string jobs;
    std::string name;
    bool skipsExisting = false;
    bool isStrict = false;
    std::string filmstrip;
    std::string screenshot;
    std::string language;
    std::string palette;
    bool isTour = false;
};

/// Renders frames of a document without a screen. Answers when all is written, with the exit code;
/// what went wrong is said on standard error.
int runRender(const KWEditArguments& arguments);
