#include <apps/common/KWProgress.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <algorithm>
#include <charconv>

namespace {

/// A number with at most one decimal and a letter for thousands: "950", "12.5k", "3.1M".
std::string shortNumber(double number) {
    const char* letter = "";
    for (const char* next : {"k", "M", "G"}) {
        if (number < 1000)
            break;
        number /= 1000;
        letter = next;
    }
    char text[32];
    const int decimals = number < 100 && *letter ? 1 : 0;
    const auto end = std::to_chars(text, text + sizeof text, std::min(number, 1e15),
                                   std::chars_format::fixed, decimals);
    return std::string(text, end.ptr) + letter;
}

std::string twoDigits(std::uint64_t number) {
    std::string text = std::to_string(number);
    if (text.size() < 2)
        text.insert(text.begin(), '0');
    return text;
}

/// "0:42", "1:02:03".
std::string duration(double seconds) {
    const auto whole = static_cast<std::uint64_t>(std::clamp(seconds, 0.0, 359999.0) + 0.5);
    const std::uint64_t hours = whole / 3600;
    const std::uint64_t minutes = whole / 60 % 60;
    if (hours > 0)
        return std::to_string(hours) + ":" + twoDigits(minutes) + ":" + twoDigits(whole % 60);
    return std::to_string(minutes) + ":" + twoDigits(whole % 60);
}

std::string bar(double part, std::size_t width) {
    const auto filled = static_cast<std::size_t>(part * static_cast<double>(width));
    std::string text(width, ' ');
    std::fill_n(text.begin(), std::min(filled, width), '=');
    if (filled < width)
        text[filled] = '>';
    text.insert(text.begin(), '[');
    return text + "]";
}

std::size_t terminalWidth() {
    winsize size{};
    if (ioctl(STDERR_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 1)
        return size.ws_col - 1U; // the last column would wrap
    return 79;
}

void writeToTerminal(const std::string& text) {
    // A line of progress that is lost is no failure.
    [[maybe_unused]] const ssize_t written = write(STDERR_FILENO, text.data(), text.size());
}

} // namespace

std::string kwProgressLine(const std::string& title, const std::string& things, std::uint64_t done,
                           std::uint64_t total, double elapsedSeconds, std::size_t width) {
    done = std::min(done, total);
    const double part = total > 0 ? static_cast<double>(done) / static_cast<double>(total) : 1;
    const std::string percent = std::to_string(static_cast<int>(part * 100)) + "%";
    const std::string indent(5 - std::min<std::size_t>(4, percent.size()), ' ');
    std::string pieces[4] = {title + " " + bar(part, 20), indent + percent, {}, {}};
    if (elapsedSeconds > 0 && done > 0) {
        const double rate = static_cast<double>(done) / elapsedSeconds;
        pieces[2] = "  " + shortNumber(rate) + " " + things + "/s";
        pieces[3] = "  " + duration(static_cast<double>(total - done) / rate) + " left";
    }
    std::string line;
    for (const std::string& piece : pieces) {
        if (line.size() + piece.size() > width)
            break;
        line += piece;
    }
    return line;
}

KWProgress::KWProgress(std::string title, std::string things, std::uint64_t total, bool isWanted)
    : _title(std::move(title)), _things(std::move(things)), _total(total),
      _isShown(isWanted && isatty(STDERR_FILENO) == 1), _start(Clock::now()), _drawn(_start) {}

KWProgress::~KWProgress() {
    clear();
}

void KWProgress::update(std::uint64_t done) {
    if (!_isShown)
        return;
    const Clock::time_point now = Clock::now();
    if (now - _drawn < std::chrono::milliseconds(100))
        return;
    _drawn = now;
    _isDrawn = true;
    const double elapsed = std::chrono::duration<double>(now - _start).count();
    writeToTerminal("\r\x1b[K" +
                    kwProgressLine(_title, _things, done, _total, elapsed, terminalWidth()));
}

void KWProgress::clear() {
    if (_isDrawn)
        writeToTerminal("\r\x1b[K");
    _isDrawn = false;
}
