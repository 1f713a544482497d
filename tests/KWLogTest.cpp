#include <KWFoundation/KWLog.h>

#include <gtest/gtest.h>

#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

namespace {

/// Puts the handler in place for one test.
class LogTo {
  public:
    explicit LogTo(KWLogHandler handler) : _before(KWSetLogHandler(std::move(handler))) {}
    ~LogTo() { KWSetLogHandler(std::move(_before)); }
    LogTo(const LogTo&) = delete;
    LogTo& operator=(const LogTo&) = delete;

  private:
    KWLogHandler _before;
};

} // namespace

TEST(KWLog, GoesToStandardErrorByDefault) {
    const LogTo standardError(nullptr);
    testing::internal::CaptureStderr();
    KWLog("set err = 2");
    KWLog("");
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "set err = 2\n\n");
}

TEST(KWLog, GoesToTheHandlerInPlace) {
    std::vector<std::string> lines;
    const LogTo handler([&lines](std::string_view line) { lines.emplace_back(line); });
    testing::internal::CaptureStderr();
    KWLog("one");
    KWLog("two");
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
    EXPECT_EQ(lines, (std::vector<std::string>{"one", "two"}));
}

TEST(KWLog, SettingAHandlerAnswersTheOneBefore) {
    std::string first;
    const LogTo handler([&first](std::string_view line) { first = line; });
    const KWLogHandler before = KWSetLogHandler([](std::string_view) {});
    KWLog("unheard");
    EXPECT_EQ(first, "");
    KWSetLogHandler(before);
    KWLog("heard");
    EXPECT_EQ(first, "heard");
    EXPECT_TRUE(KWSetLogHandler(nullptr));
    EXPECT_FALSE(KWSetLogHandler(nullptr));
}

TEST(KWLog, WhatAHandlerLogsGoesToStandardError) {
    int calls = 0;
    const LogTo handler([&calls](std::string_view) {
        ++calls;
        KWLog("from within");
    });
    testing::internal::CaptureStderr();
    KWLog("line");
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "from within\n");
    EXPECT_EQ(calls, 1);
}

TEST(KWLog, AHandlerMayReplaceItself) {
    std::vector<std::string> lines;
    const LogTo handler([&lines](std::string_view line) {
        KWSetLogHandler(
            [&lines](std::string_view later) { lines.push_back("second " + std::string(later)); });
        lines.push_back("first " + std::string(line));
    });
    KWLog("a");
    KWLog("b");
    EXPECT_EQ(lines, (std::vector<std::string>{"first a", "second b"}));
}

TEST(KWLog, AHandlerThatThrowsLeavesTheLogUsable) {
    bool throws = true;
    int calls = 0;
    const LogTo handler([&](std::string_view) {
        ++calls;
        if (throws)
            throw std::runtime_error("handler");
    });
    EXPECT_THROW(KWLog("a"), std::runtime_error);
    throws = false;
    KWLog("b");
    EXPECT_EQ(calls, 2);
}

TEST(KWLog, LinesOfSeveralThreadsComeOneAtATime) {
    // No lock of its own: the log's is enough, which the thread sanitizer checks.
    std::vector<std::string> lines;
    const LogTo handler([&lines](std::string_view line) { lines.emplace_back(line); });
    std::vector<std::thread> threads;
    for (int t = 0; t < 4; ++t)
        threads.emplace_back([] {
            for (int i = 0; i < 500; ++i)
                KWLog("line");
        });
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(lines, std::vector<std::string>(2000, "line"));
}
