#pragma once

#include <KWFoundation/KWLog.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <string_view>
#include <vector>

/// Declares, as long as it lives, one warning of Qt that contains `part`. A warning that nobody has
/// declared fails the test in which it comes, and so does a declared one that does not come.
class QtWarningExpected {
  public:
    explicit QtWarningExpected(std::string part) : _part(std::move(part)) {
        waiting().push_back(this);
    }
    ~QtWarningExpected() {
        if (std::erase(waiting(), this) != 0)
            ADD_FAILURE() << "Qt did not warn of: " << _part;
    }
    QtWarningExpected(const QtWarningExpected&) = delete;
    QtWarningExpected& operator=(const QtWarningExpected&) = delete;

    /// Whether a warning with this text was declared; it then counts as come.
    static bool take(std::string_view text) {
        const auto found = std::find_if(waiting().begin(), waiting().end(), [&](const auto* one) {
            return text.find(one->_part) != std::string_view::npos;
        });
        if (found == waiting().end())
            return false;
        waiting().erase(found);
        return true;
    }

  private:
    static std::vector<QtWarningExpected*>& waiting() {
        static std::vector<QtWarningExpected*> list;
        return list;
    }

    std::string _part;
};

/// Keeps the lines that are logged as long as it lives.
class LogLines {
  public:
    LogLines()
        : _before(KWSetLogHandler([this](std::string_view line) { lines.emplace_back(line); })) {}
    ~LogLines() { KWSetLogHandler(std::move(_before)); }
    LogLines(const LogLines&) = delete;
    LogLines& operator=(const LogLines&) = delete;

    std::vector<std::string> lines;

  private:
    KWLogHandler _before;
};
