#include <KWDesktop/KWLibav.h>

#include <QCoreApplication>
#include <algorithm>
#include <cmath>
#include <limits>

namespace {

/// Times come as floats as well as doubles, and the time of a frame rounded to a float still means
/// that frame.
double slack(double time) {
    return 1e-6 + std::abs(time) * 0x1p-24;
}

double lengthOf(const AVFrame& frame, AVRational base) {
#if LIBAVUTIL_VERSION_INT >= AV_VERSION_INT(57, 30, 100)
    const std::int64_t ticks = frame.duration;
#else
    const std::int64_t ticks = frame.pkt_duration;
#endif
    return static_cast<double>(ticks) * av_q2d(base);
}

std::size_t bytesOf(const AVFrame& frame) {
    std::size_t bytes = 0;
    for (const AVBufferRef* const buffer : frame.buf)
        bytes += buffer ? buffer->size : 0;
    return bytes;
}

} // namespace

void KWAVFrameDeleter::operator()(AVFrame* frame) const {
    av_frame_free(&frame);
}

KWMovieDecoder::KWMovieDecoder(std::shared_ptr<const KWMovieFile> file, Access access,
                               const std::atomic<bool>& isCancelled)
    : _file(std::move(file)), _access(access), _isCancelled(isCancelled) {}

KWMovieDecoder::~KWMovieDecoder() = default;

// --- Times.

double KWMovieDecoder::timeOf(std::int64_t ticks) const {
    const AVRational base = _av->stream->time_base;
    return static_cast<double>(ticks - _firstTicks) * base.num / base.den;
}

/// The last tick that begins at or before a time.
std::int64_t KWMovieDecoder::ticksAt(double time) const {
    const AVRational base = _av->stream->time_base;
    if (!(time > 0))
        return _firstTicks;
    const double ticks = std::floor((time + slack(time)) * base.den / base.num);
    constexpr double limit = 0x1p61;
    return ticks < limit ? _firstTicks + static_cast<std::int64_t>(ticks)
                         : std::numeric_limits<std::int64_t>::max() / 2;
}

// --- Going to a frame.

const KWDecodedFrame* KWMovieDecoder::frameAt(double time) {
    const std::int64_t ticks = ticksAt(time);
    const KWDecodedFrame& here = _current ? _current : _next;
    if (!here || here.ticks > ticks || isKeyFrameBefore(time))
        seekBefore(ticks);
    walkTo(ticks);
    return _current ? &_current : nullptr;
}

const KWDecodedFrame* KWMovieDecoder::nextFrame() {
    fillNext();
    if (!_next)
        return nullptr;
    step();
    return &_current;
}

double KWMovieDecoder::timeOfNextFrame() {
    fillNext();
    return _next ? _next.time : std::numeric_limits<double>::infinity();
}

void KWMovieDecoder::fillNext() {
    if (_next || _isEnded)
        return;
    _next = decode();
    _isEnded = !_next;
    if (_isEnded)
        noteEarlyEnd();
}

/// A file that was cut off may read like one that just ends.
void KWMovieDecoder::noteEarlyEnd() {
    if (!_current || !_fault.isEmpty())
        return;
    const double end = _current.time + lengthOf(*_current.frame, _av->stream->time_base);
    constexpr double seconds = 0.5;
    constexpr double part = 0.1;
    if (_description.duration - end > std::max(seconds, part * _description.duration))
        _fault =
            QCoreApplication::translate("KWMovie", "it is cut off after %1 s").arg(end, 0, 'f', 2);
}

void KWMovieDecoder::step() {
    _current = std::move(_next);
    _next = {};
}

void KWMovieDecoder::walkTo(std::int64_t ticks) {
    while (!_isCancelled) {
        if (_current && !_next && isNextPacketAfter(ticks))
            return;
        fillNext();
        // Before its first frame a movie shows that.
        if (!_next || (_current && _next.ticks > ticks))
            return;
        step();
    }
}

/// Goes to a key frame from which the frame at `ticks` can be reached. Containers keep the places
/// of key frames by the order of decoding, so that the first frame found may be too late.
void KWMovieDecoder::seekBefore(std::int64_t ticks) {
    const AVRational base = _av->stream->time_base;
    std::int64_t wanted = ticks;
    std::int64_t back = std::max<std::int64_t>(1, base.den / std::max(1, base.num));
    while (!_isCancelled) {
        const bool isAtStart = wanted <= _firstTicks;
        if (!seekTo(std::max(wanted, _firstTicks)) && !startOver())
            return;
        fillNext();
        if (isAtStart || (_next && _next.ticks <= ticks))
            break;
        const std::int64_t found = _next ? std::min(_next.ticks, wanted) : wanted;
        wanted = std::max(_firstTicks, found - back);
        back *= 2;
    }
    if (_next && _next.ticks <= ticks)
        return;
    // What the container takes for the start may lie behind it.
    if (!_isCancelled && (!_next || _next.ticks > _firstTicks) && startOver())
        fillNext();
}

bool KWMovieDecoder::isKeyFrameBefore(double time) {
    const std::int64_t ticks = ticksAt(time);
    const std::int64_t here = _next ? _next.ticks : _current ? _current.ticks : _firstTicks;
    if (ticks <= here)
        return false;
    const AVIndexEntry* const entry =
        avformat_index_get_entry_from_timestamp(_av->stream, ticks, AVSEEK_FLAG_BACKWARD);
    if (entry)
        return entry->timestamp > here;
    constexpr double usualDistance = 2;
    return timeOf(ticks) - timeOf(here) > usualDistance;
}

std::vector<KWDecodedFrame> KWMovieDecoder::framesBefore(std::int64_t ticks, std::size_t bytes) {
    std::vector<KWDecodedFrame> frames;
    if (ticks <= _firstTicks)
        return frames;
    seekBefore(ticks - 1);
    std::size_t held = 0;
    std::size_t first = 0;
    for (; !_isCancelled; step()) {
        fillNext();
        if (!_next || _next.ticks >= ticks)
            break;
        KWDecodedFrame copy{KWAVFrame(av_frame_clone(_next.frame.get())), _next.ticks, _next.time};
        if (!copy)
            break;
        held += bytesOf(*copy.frame);
        frames.push_back(std::move(copy));
        for (; held > bytes && first + 1 < frames.size(); ++first) {
            held -= bytesOf(*frames[first].frame);
            frames[first].frame.reset();
        }
    }
    frames.erase(frames.begin(), frames.begin() + static_cast<std::ptrdiff_t>(first));
    return frames;
}

bool KWMovieDecoder::seekTo(std::int64_t ticks) {
    _current = {};
    _next = {};
    _isEnded = false;
    _av->forgetPackets();
    return av_seek_frame(_av->format.get(), _av->stream->index, ticks, AVSEEK_FLAG_BACKWARD) >= 0;
}

/// Reads the file from its first byte again, where there is no seeking.
bool KWMovieDecoder::startOver() {
    _current = {};
    _next = {};
    _isEnded = false;
    QString reason;
    std::unique_ptr<Libav> before = std::move(_av);
    if (openInput(reason) && openCodec(reason))
        return true;
    _av = std::move(before);
    _isEnded = true;
    return false;
}

// --- Decoding.

void KWMovieDecoder::noteFault(int code) {
    if (!_fault.isEmpty() || _isCancelled)
        return;
    const double time = _next ? _next.time : _current ? _current.time : 0;
    _fault = QCoreApplication::translate("KWMovie", "it is damaged after %1 s: %2")
                 .arg(QString::number(time, 'f', 2), KWLibavText(code));
}

/// Reads up to the next packet of the stream; false at the end of what can be read.
bool KWMovieDecoder::readPacket() {
    if (_av->hasPacket)
        return true;
    while (!_av->isReadToEnd && !_isCancelled) {
        if (_av->packetsLeft == 0)
            return false;
        av_packet_unref(_av->packet.get());
        const int code = av_read_frame(_av->format.get(), _av->packet.get());
        if (code == AVERROR(EAGAIN))
            continue;
        if (code < 0) {
            if (code != AVERROR_EOF && code != AVERROR_EXIT)
                noteFault(code);
            _av->isReadToEnd = true;
        } else if (_av->packet->stream_index == _av->stream->index) {
            _av->hasPacket = true;
            _av->packetsLeft -= _av->packetsLeft > 0;
            return true;
        }
    }
    return false;
}

bool KWMovieDecoder::isNextPacketAfter(std::int64_t ticks) {
    // Elsewhere packets do not come in the order of their frames, or one by one.
    if (!_av->isIntraOnly || _access != Access::random)
        return false;
    return readPacket() && _av->packet->pts != AV_NOPTS_VALUE && _av->packet->pts > ticks;
}

KWDecodedFrame KWMovieDecoder::decode() {
    KWAVFrame frame(av_frame_alloc());
    int faults = 0;
    while (frame && !_isCancelled) {
        int code = avcodec_receive_frame(_av->codec.get(), frame.get());
        if (code >= 0) {
            KWDecodedFrame decoded = frameOf(std::move(frame));
            if (decoded)
                return decoded;
            frame.reset(av_frame_alloc());
            continue;
        }
        if (code == AVERROR_EOF)
            break;
        if (code != AVERROR(EAGAIN))
            noteFault(code);
        if (_av->isDrained) {
            // What it still holds may be damaged too, but there is not much of it.
            constexpr int patience = 100;
            if (code == AVERROR(EAGAIN) || ++faults > patience)
                break;
            continue;
        }
        if (readPacket()) {
            code = avcodec_send_packet(_av->codec.get(), _av->packet.get());
            av_packet_unref(_av->packet.get());
            _av->hasPacket = false;
        } else {
            code = avcodec_send_packet(_av->codec.get(), nullptr);
            _av->isDrained = true;
        }
        if (code < 0 && code != AVERROR(EAGAIN) && code != AVERROR_EOF)
            noteFault(code);
    }
    return {};
}

/// Nothing for a frame that is not to be shown.
KWDecodedFrame KWMovieDecoder::frameOf(KWAVFrame frame) {
    if (frame->width <= 0 || frame->height <= 0 || !frame->data[0])
        return {};
    const std::int64_t guess =
        _av->lastTicks == AV_NOPTS_VALUE ? _firstTicks : _av->lastTicks + _av->usualTicks;
    std::int64_t ticks = frame->best_effort_timestamp;
    if (ticks == AV_NOPTS_VALUE)
        ticks = guess;
    // In a damaged file time may stand still or go back.
    if (_av->lastTicks != AV_NOPTS_VALUE && ticks <= _av->lastTicks)
        return {};
    _av->lastTicks = ticks;
    const double time = timeOf(ticks);
    return {std::move(frame), ticks, time};
}
