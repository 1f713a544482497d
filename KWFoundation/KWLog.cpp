#include <KWFoundation/KWLog.h>

#include <cstdio>
#include <memory>
#include <mutex>
#include <string>
#include <utility>

namespace {

struct Log {
    // Recursive, because a handler may put another one in its place.
    std::recursive_mutex mutex;
    std::shared_ptr<const KWLogHandler> handler;
};

/// Never destroyed: objects that go at the program's end may still log.
Log& theLog() {
    static Log& log = *new Log;
    return log;
}

void writeToStandardError(std::string_view line) {
    std::string text(line);
    text.push_back('\n');
    std::fwrite(text.data(), 1, text.size(), stderr);
}

thread_local bool isHandling = false;

class Handling {
  public:
    Handling() { isHandling = true; }
    ~Handling() { isHandling = false; }
    Handling(const Handling&) = delete;
    Handling& operator=(const Handling&) = delete;
};

} // namespace

void KWLog(std::string_view line) {
    Log& log = theLog();
    const std::lock_guard lock(log.mutex);
    const auto handler = log.handler;
    // A handler that logs would otherwise call itself without end.
    if (!handler || isHandling)
        return writeToStandardError(line);
    const Handling handling;
    (*handler)(line);
}

KWLogHandler KWSetLogHandler(KWLogHandler handler) {
    std::shared_ptr<const KWLogHandler> next;
    if (handler)
        next = std::make_shared<const KWLogHandler>(std::move(handler));
    Log& log = theLog();
    const std::lock_guard lock(log.mutex);
    log.handler.swap(next);
    return next ? *next : KWLogHandler();
}
