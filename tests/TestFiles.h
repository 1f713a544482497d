#pragma once

#include <KWFoundation/KWTypes.h>

#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <string_view>

using namespace std::string_literals;

inline KWData dataOf(std::string_view text) {
    const auto* first = reinterpret_cast<const std::byte*>(text.data());
    return {first, first + text.size()};
}

inline std::string stringOf(const KWData& data) {
    return {reinterpret_cast<const char*>(data.data()), data.size()};
}

inline std::string contentsOf(const std::filesystem::path& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

inline void writeFile(const std::filesystem::path& path, std::string_view text) {
    std::ofstream(path, std::ios::binary) << text;
}

/// A folder that goes when the test does.
class TemporaryFolder {
  public:
    TemporaryFolder() {
        std::string pattern = (std::filesystem::temp_directory_path() / "kwbase.XXXXXX").string();
        if (!mkdtemp(pattern.data()))
            std::abort();
        _path = pattern;
    }
    ~TemporaryFolder() {
        std::error_code ignored;
        std::filesystem::remove_all(_path, ignored);
    }
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;

    const std::filesystem::path& path() const { return _path; }

  private:
    std::filesystem::path _path;
};

/// Runs a Python script with one argument; its exit code.
inline int runPython(const std::string& script, const std::filesystem::path& argument) {
    const char* python = std::getenv("KWBASE_PYTHON");
    const std::string program = python ? python : "python3";
    const pid_t child = fork();
    if (child == 0) {
        execlp(program.c_str(), program.c_str(), "-c", script.c_str(), argument.c_str(), nullptr);
        _exit(127);
    }
    int status = 0;
    waitpid(child, &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}
