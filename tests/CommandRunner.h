#pragma once

#include "TestFiles.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

extern char** environ;

/// Runs the built kwchannel in a folder of its own, which goes with the test.
class CommandTest : public testing::Test {
  protected:
    struct Result {
        int code = -1; ///< minus the signal for a program that was killed
        std::string out;
        std::string err;
    };

    /// Where the program's standard output goes.
    enum class Stdout { captured, closed, full, brokenPipe };

    CommandTest() {
        std::string name = testing::TempDir() + "kwchannelXXXXXX";
        folder = mkdtemp(name.data());
    }
    ~CommandTest() override {
        std::filesystem::remove_all(folder);
        std::filesystem::remove(_out);
        std::filesystem::remove(_err);
    }

    static std::string sample(const std::string& name) {
        return (std::filesystem::path(getenv("KWBASE_SAMPLES")) / name).string();
    }

    std::string path(const std::string& name) const { return (folder / name).string(); }

    /// Starts the program; what it writes goes into files outside the folder.
    pid_t start(std::vector<std::string> arguments, Stdout target = Stdout::captured) {
        posix_spawn_file_actions_t actions;
        posix_spawn_file_actions_init(&actions);
        posix_spawn_file_actions_addopen(&actions, 0, input.c_str(), O_RDONLY, 0);
        posix_spawn_file_actions_addopen(&actions, 2, _err.c_str(), O_WRONLY | O_CREAT | O_TRUNC,
                                         0600);
        int ends[2] = {-1, -1};
        if (target == Stdout::captured)
            posix_spawn_file_actions_addopen(&actions, 1, _out.c_str(),
                                             O_WRONLY | O_CREAT | O_TRUNC, 0600);
        else if (target == Stdout::full)
            posix_spawn_file_actions_addopen(&actions, 1, "/dev/full", O_WRONLY, 0);
        else if (target == Stdout::closed)
            posix_spawn_file_actions_addclose(&actions, 1);
        else if (pipe2(ends, O_CLOEXEC) == 0) {
            close(ends[0]);
            posix_spawn_file_actions_adddup2(&actions, ends[1], 1);
        }

        arguments.insert(arguments.begin(), getenv("KWBASE_KWCHANNEL"));
        std::vector<char*> argv;
        for (std::string& argument : arguments)
            argv.push_back(argument.data());
        argv.push_back(nullptr);
        std::vector<char*> envp;
        for (std::string& setting : environment)
            envp.push_back(setting.data());
        for (char** setting = environ; *setting; ++setting)
            envp.push_back(*setting);
        envp.push_back(nullptr);

        // A test that runs in the background may have been told to ignore interruptions.
        sigset_t signals;
        sigemptyset(&signals);
        sigaddset(&signals, SIGINT);
        posix_spawnattr_t attributes;
        posix_spawnattr_init(&attributes);
        posix_spawnattr_setsigdefault(&attributes, &signals);
        posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSIGDEF);

        pid_t pid = -1;
        EXPECT_EQ(posix_spawn(&pid, argv[0], &actions, &attributes, argv.data(), envp.data()), 0);
        posix_spawn_file_actions_destroy(&actions);
        posix_spawnattr_destroy(&attributes);
        if (ends[1] >= 0)
            close(ends[1]);
        return pid;
    }

    Result finish(pid_t pid) const {
        int status = 0;
        while (waitpid(pid, &status, 0) < 0 && errno == EINTR) {
        }
        Result result;
        result.code = WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status);
        result.out = contentsOf(_out);
        result.err = contentsOf(_err);
        return result;
    }

    Result run(std::vector<std::string> arguments, Stdout target = Stdout::captured) {
        std::filesystem::remove(_out);
        return finish(start(std::move(arguments), target));
    }

    /// Runs what must go well, and answers its output.
    std::string output(std::vector<std::string> arguments) {
        const Result result = run(std::move(arguments));
        EXPECT_EQ(result.code, 0) << result.err;
        EXPECT_EQ(result.err, "");
        return result.out;
    }

    /// Runs what must fail in this way with nothing on standard output, and answers the one line it
    /// says.
    std::string failure(int code, std::vector<std::string> arguments,
                        Stdout target = Stdout::captured) {
        const Result result = run(std::move(arguments), target);
        EXPECT_EQ(result.code, code) << result.err;
        EXPECT_EQ(result.out, "");
        EXPECT_EQ(std::count(result.err.begin(), result.err.end(), '\n'), 1) << result.err;
        EXPECT_TRUE(result.err.starts_with("kwchannel: ")) << result.err;
        return result.err;
    }

    /// The names of the files that the program has left in the folder.
    std::vector<std::string> filesLeft() const {
        std::vector<std::string> names;
        for (const auto& entry : std::filesystem::directory_iterator(folder))
            names.push_back(entry.path().filename().string());
        return names;
    }

    std::filesystem::path folder;
    std::string input = "/dev/null";
    /// Settings before those of the tests' own environment.
    std::vector<std::string> environment;

  private:
    std::string _name = testing::TempDir();
    std::filesystem::path _out = _name + "kwchannel-out-" + std::to_string(getpid());
    std::filesystem::path _err = _name + "kwchannel-err-" + std::to_string(getpid());
};

inline bool contains(const std::string& text, const std::string& part) {
    return text.find(part) != std::string::npos;
}

#define EXPECT_CONTAINS(text, part) EXPECT_TRUE(contains(text, part)) << text

inline std::vector<std::string> lines(const std::string& text) {
    std::vector<std::string> list;
    for (std::size_t start = 0; start < text.size();) {
        const std::size_t end = std::min(text.find('\n', start), text.size());
        list.push_back(text.substr(start, end - start));
        start = end + 1;
    }
    return list;
}

/// With the committed samples at hand.
class KWChannelCommand : public CommandTest {
  protected:
    const std::string ball = sample("bouncing-ball.kwdoc");
    const std::string show = sample("light-show.kwdoc");
    const std::string wave = sample("wave.kwdoc");
    const std::string museum = sample("hard-curves-museum.kwdoc");
    const std::string irregular = sample("irregular-museum.kwdoc");
};
