#include <KWDesktop/KWMovie.h>
#include <KWDesktop/KWMoviePlayer.h>

#include <QCoreApplication>
#include <QFileInfo>
#include <QPointer>
#include <QTimer>
#include <algorithm>
#include <cmath>

namespace {

KWMovieClock::Wall now() {
    return std::chrono::steady_clock::now();
}

QString sentence(const QString& file, const QString& reason) {
    return QCoreApplication::translate("KWMovie", "The movie \u201c%1\u201d cannot be shown: %2.")
        .arg(QFileInfo(file).fileName(), reason);
}

} // namespace

struct KWMovieState {
    /// Decodes single frames, apart from those that are played. Made when the first is wanted.
    struct Single {
        std::unique_ptr<KWMovieDecoder> decoder;
        std::unique_ptr<KWFrameConverter> converter;
        KWMovieFrame last;
    };

    QString fileName;
    std::shared_ptr<const KWMovieFile> file;
    std::atomic<bool> isCancelled = false;
    KWMovieDescription description;
    /// Before the player takes it.
    std::unique_ptr<KWMovieDecoder> decoder;
    std::unique_ptr<KWMoviePlayer> player;
    KWMovieClock clock;
    KWMovieFrame frame;
    QTimer timer;
    std::atomic<bool> isAwake = false; ///< whether advance() is going to be called

    std::mutex mutex; ///< for what frameAt() uses
    Single single;
    std::atomic<bool> hasFailed = false;
};

std::shared_ptr<KWMovie> KWMovie::movieWithFile(const QString& file, QString* error) {
    auto state = std::make_unique<KWMovieState>();
    QString reason;
    state->fileName = file;
    state->file = KWMovieFile::open(file, reason);
    if (state->file)
        state->decoder = KWMovieDecoder::open(state->file, KWMovieDecoder::Access::sequential,
                                              state->isCancelled, reason);
    if (!state->decoder) {
        if (error)
            *error = sentence(file, reason);
        return nullptr;
    }
    return std::shared_ptr<KWMovie>(new KWMovie(std::move(state)));
}

KWMovie::KWMovie(std::unique_ptr<KWMovieState> state) : _state(std::move(state)) {
    _state->description = _state->decoder->description();
    _state->clock = KWMovieClock(_state->description.duration);
    _state->timer.setSingleShot(true);
    _state->timer.setTimerType(Qt::PreciseTimer);
    connect(&_state->timer, &QTimer::timeout, this, &KWMovie::advance);
    // The movie outlives its player's thread, so the call that it queues is made or dropped.
    const auto wake = [this] {
        if (!_state->isAwake.exchange(true))
            QMetaObject::invokeMethod(
                this,
                [this] {
                    _state->isAwake = false;
                    advance();
                },
                Qt::QueuedConnection);
    };
    _state->player =
        std::make_unique<KWMoviePlayer>(std::move(_state->decoder), _state->isCancelled, wake);
    restart();
}

KWMovie::~KWMovie() {
    _state->isCancelled = true;
    _state->player.reset();
}

const QString& KWMovie::file() const {
    return _state->fileName;
}

double KWMovie::duration() const {
    return _state->description.duration;
}

QSize KWMovie::naturalSize() const {
    return _state->description.naturalSize;
}

double KWMovie::frameRate() const {
    return _state->description.frameRate;
}

// --- The clock.

double KWMovie::rate() const {
    return _state->clock.rate();
}

void KWMovie::setRate(double rate) {
    const double before = _state->clock.rate();
    _state->clock.setRate(rate, now());
    if (_state->clock.rate() == before)
        return;
    // What was decoded ahead is of no use at rest or the other way round.
    restart();
    Q_EMIT rateChanged(_state->clock.rate());
}

void KWMovie::start() {
    setRate(1);
}

void KWMovie::stop() {
    setRate(0);
}

void KWMovie::gotoBeginning() {
    setCurrentTime(0);
}

void KWMovie::gotoEnd() {
    setCurrentTime(duration());
}

double KWMovie::currentTime() const {
    return _state->clock.timeAt(now());
}

void KWMovie::setCurrentTime(double time) {
    _state->clock.setTime(time, now());
    restart();
}

KWTimeValue KWMovie::currentTimeValue() const {
    return KWTimeValueMakeFromSeconds(currentTime());
}

void KWMovie::restart() {
    _state->player->restart(_state->clock);
    schedule();
}

/// Takes the frame that is due, and stops at the end.
void KWMovie::advance() {
    KWMovieClock& clock = _state->clock;
    const QPointer<KWMovie> self(this);
    const KWMovieClock::Wall wall = now();
    const double rate = clock.rate();
    const bool isAtEnd = clock.isAtEnd(wall);
    auto frame = _state->player->take(clock.timeAt(wall), rate);
    const bool isAnother = frame && (!_state->frame || frame->time != _state->frame.time);
    if (isAnother)
        _state->frame = *std::move(frame);
    if (isAtEnd) {
        // The player goes on to the frame at the end, should it not have come there.
        clock.setRate(0, wall);
        restart();
    } else
        schedule();
    if (isAnother)
        Q_EMIT frameChanged();
    if (self && isAtEnd)
        Q_EMIT rateChanged(0);
    if (self && isAtEnd)
        Q_EMIT ended();
    if (!self)
        return;
    const QString fault = _state->player->fault();
    if (!fault.isEmpty())
        noteFault(fault);
}

/// Has advance() called when the next frame is due, or the end is reached.
void KWMovie::schedule() {
    const KWMovieClock& clock = _state->clock;
    if (clock.rate() == 0)
        return _state->timer.stop();
    const KWMovieClock::Wall wall = now();
    double seconds = clock.secondsUntil(clock.rate() > 0 ? clock.duration() : 0, wall);
    if (const auto due = _state->player->nextDue())
        seconds = std::min(seconds, clock.secondsUntil(*due, wall));
    constexpr double longest = 3600;
    _state->timer.start(static_cast<int>(std::ceil(std::min(seconds, longest) * 1000)));
}

// --- Frames.

const KWMovieFrame& KWMovie::currentFrame() const {
    return _state->frame;
}

KWMovieFrame KWMovie::frameAt(double time) const {
    const std::lock_guard lock(_state->mutex);
    KWMovieState::Single& single = _state->single;
    QString reason;
    if (!single.decoder)
        single.decoder = KWMovieDecoder::open(_state->file, KWMovieDecoder::Access::random,
                                              _state->isCancelled, reason);
    const KWDecodedFrame* const frame = single.decoder ? single.decoder->frameAt(time) : nullptr;
    if (!frame) {
        noteFault(reason.isEmpty()
                      ? QCoreApplication::translate("KWMovie", "no frame can be decoded")
                      : reason);
        return {};
    }
    if (!single.converter)
        single.converter = std::make_unique<KWFrameConverter>(_state->description.orientation);
    if (!single.last || single.last.time != frame->time)
        single.last = {single.converter->imageOfFrame(*frame->frame), frame->time};
    if (!single.last)
        noteFault(QCoreApplication::translate("KWMovie", "its frames cannot be converted"));
    else if (!single.decoder->fault().isEmpty())
        noteFault(single.decoder->fault());
    return single.last;
}

void KWMovie::noteFault(const QString& fault) const {
    if (_state->hasFailed.exchange(true))
        return;
    const QString message = sentence(_state->fileName, fault);
    // It may be the thread of a caller of frameAt() that has found out.
    auto* const self = const_cast<KWMovie*>(this);
    QMetaObject::invokeMethod(
        self, [self, message] { Q_EMIT self->errorOccurred(message); }, Qt::QueuedConnection);
}
