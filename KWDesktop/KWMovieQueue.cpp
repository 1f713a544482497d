#include <KWDesktop/KWMovieQueue.h>

#include <utility>

namespace {

std::size_t bytesOf(const KWMovieQueue::Entry& entry) {
    return static_cast<std::size_t>(entry.frame.image.sizeInBytes());
}

bool isDue(double due, double time, double rate) {
    // Backwards, the frame before another is due once that one's beginning is passed.
    return rate == 0 || (rate > 0 ? due <= time : time < due);
}

} // namespace

void KWMovieQueue::push(Entry entry) {
    _bytes += bytesOf(entry);
    _entries.push_back(std::move(entry));
}

void KWMovieQueue::clear() {
    _entries.clear();
    _bytes = 0;
}

std::optional<KWMovieFrame> KWMovieQueue::take(double time, double rate) {
    std::optional<KWMovieFrame> taken;
    while (!_entries.empty() && isDue(_entries.front().due, time, rate)) {
        _bytes -= bytesOf(_entries.front());
        taken = std::move(_entries.front().frame);
        _entries.pop_front();
    }
    return taken;
}

std::optional<double> KWMovieQueue::nextDue() const {
    if (_entries.empty())
        return std::nullopt;
    return _entries.front().due;
}
