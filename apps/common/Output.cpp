#include <KWFoundation/KWArchiveError.h>

#include <apps/common/Errors.h>
#include <apps/common/ExitCodes.h>
#include <apps/common/Output.h>
#include <apps/common/Text.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <system_error>

namespace {

constexpr std::size_t blockSize = 1 << 16;

// The temporary file, where the signal handler finds it: a plain array, because a handler must not
// touch a string. Written with the signals held back.
char temporaryFile[4096];
// What an interruption says, in the same way.
std::string program;
std::string plainMessage() {
    return program + ": interrupted\n";
}
char message[8192];
std::size_t messageSize = 0;
volatile std::sig_atomic_t isProgressPossible = 0;

constexpr int signalsOfInterruption[] = {SIGINT, SIGTERM, SIGHUP};

void interrupted(int) {
    if (temporaryFile[0] != '\0')
        unlink(temporaryFile);
    if (isProgressPossible) {
        const char clearLine[] = "\r\x1b[K";
        [[maybe_unused]] const ssize_t n = write(STDERR_FILENO, clearLine, sizeof clearLine - 1);
    }
    [[maybe_unused]] const ssize_t n = write(STDERR_FILENO, message, messageSize);
    _exit(exitInterrupted);
}

/// Holds interruptions back while it lives.
class HeldSignals {
  public:
    HeldSignals() {
        sigset_t signals;
        sigemptyset(&signals);
        for (const int number : signalsOfInterruption)
            sigaddset(&signals, number);
        sigprocmask(SIG_BLOCK, &signals, &_before);
    }
    ~HeldSignals() { sigprocmask(SIG_SETMASK, &_before, nullptr); }
    HeldSignals(const HeldSignals&) = delete;
    HeldSignals& operator=(const HeldSignals&) = delete;

  private:
    sigset_t _before;
};

void setTemporaryFile(const std::string& path) {
    const std::size_t size = path.size() < sizeof temporaryFile ? path.size() : 0;
    std::memcpy(temporaryFile, path.data(), size);
    temporaryFile[size] = '\0';
}

void setMessage(std::string_view text) {
    text = text.substr(0, sizeof message);
    std::memcpy(message, text.data(), text.size());
    messageSize = text.size();
}

mode_t modeOfNewFile() {
    const mode_t mask = umask(0);
    umask(mask);
    return 0666 & ~mask;
}

} // namespace

Output::Output(const std::string& path) : _path(path), _descriptor(STDOUT_FILENO) {
    if (path.empty() || path == "-")
        _path = "standard output";
    else
        openFile(path);
    _buffer.reserve(2 * blockSize);
}

Output::~Output() {
    const HeldSignals held;
    if (_isOwned)
        close(_descriptor);
    if (!_temporary.empty())
        unlink(_temporary.c_str());
    setTemporaryFile({});
    setMessage(plainMessage());
}

void Output::openFile(const std::string& path) {
    struct stat status {};
    const bool exists = stat(path.c_str(), &status) == 0;
    if (exists && !S_ISREG(status.st_mode)) {
        _descriptor = open(path.c_str(), O_WRONLY | O_CLOEXEC);
        if (_descriptor < 0)
            fail(errno);
        _isOwned = true;
        return;
    }
    if (exists && access(path.c_str(), W_OK) != 0)
        fail(errno);

    // Beside the file itself, not beside a link to it: a rename does not cross file systems.
    std::error_code error;
    const std::filesystem::path target =
        exists ? std::filesystem::canonical(path, error) : std::filesystem::path(path);
    if (error)
        fail(error.value());
    std::string name =
        (target.parent_path() / ("." + target.filename().string() + ".XXXXXX")).string();

    const HeldSignals held;
    _descriptor = mkostemp(name.data(), O_CLOEXEC);
    if (_descriptor < 0)
        fail(errno);
    _isOwned = true;
    _target = target.string();
    _temporary = name;
    setTemporaryFile(_temporary);
    setMessage(program + ": interrupted; " + printable(path) +
               (exists ? " is unchanged\n" : " is not written\n"));
    fchmod(_descriptor, exists ? status.st_mode & 07777 : modeOfNewFile());
}

void Output::write(std::string_view text) {
    _buffer += text;
    if (_buffer.size() >= blockSize)
        flush();
}

void Output::flush() {
    std::string_view rest = _buffer;
    while (!rest.empty()) {
        const ssize_t written = ::write(_descriptor, rest.data(), rest.size());
        if (written < 0 && errno == EINTR)
            continue;
        if (written < 0)
            fail(errno);
        rest.remove_prefix(static_cast<std::size_t>(written));
    }
    _buffer.clear();
}

void Output::finish() {
    flush();
    if (!_isOwned)
        return;
    if (!_temporary.empty() && fsync(_descriptor) != 0)
        fail(errno);
    const HeldSignals held;
    _isOwned = false;
    if (close(_descriptor) != 0)
        fail(errno);
    if (_temporary.empty())
        return;
    if (rename(_temporary.c_str(), _target.c_str()) != 0)
        fail(errno);
    _temporary.clear();
    setTemporaryFile({});
    setMessage(plainMessage());
}

bool Output::isTerminal() const {
    return isatty(_descriptor) == 1;
}

void Output::fail(int error) const {
    if (error == EPIPE)
        throw BrokenPipe();
    throw KWArchiveError(KWArchiveError::Kind::cannotWrite, _path, std::nullopt, {},
                         std::generic_category().message(error));
}

void print(std::string_view text) {
    Output output("");
    output.write(text);
    output.finish();
}

void complain(std::string_view text) {
    std::string line = program + ": " + std::string(text);
    for (char& c : line)
        if (c == '\n')
            c = ' ';
    showOnStandardError(line + '\n');
}

void showOnStandardError(std::string_view text) {
    [[maybe_unused]] const ssize_t written = ::write(STDERR_FILENO, text.data(), text.size());
}

void setUpProcess(std::string_view programName) {
    program = programName;
    // A stream that came closed would be the next file opened. Held by one that cannot be used in
    // its place, it fails when it is used.
    const int modes[] = {O_WRONLY, O_RDONLY, O_WRONLY};
    for (int descriptor = 0; descriptor < 3; ++descriptor)
        if (fcntl(descriptor, F_GETFD) < 0 && errno == EBADF) [[maybe_unused]]
            const int opened = open("/dev/null", modes[descriptor]);

    std::signal(SIGPIPE, SIG_IGN);
    setMessage(plainMessage());
    isProgressPossible = isatty(STDERR_FILENO);
    for (const int number : signalsOfInterruption) {
        struct sigaction action {};
        // Whoever had us ignore a signal, as nohup does, keeps it so.
        if (sigaction(number, nullptr, &action) == 0 && action.sa_handler == SIG_IGN)
            continue;
        action = {};
        action.sa_handler = interrupted;
        sigfillset(&action.sa_mask);
        sigaction(number, &action, nullptr);
    }
}
