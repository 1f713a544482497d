#include <KWDesktop/KWLibav.h>

extern "C" {
#include <libavutil/display.h>
#include <libavutil/mem.h>
}

#include <QCoreApplication>
#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <thread>

namespace {

/// Frames that are larger are refused: eight times the largest that cinemas show.
constexpr std::int64_t pixelLimit = 1 << 26;
/// How much of a file without a frame is read before it is given up.
constexpr int hopelessPackets = 2000;

/// For the whole process, once. What is printed about damaged files on standard error would not
/// reach the user; a host that has chosen a level itself keeps it. And no file may ask for more
/// memory at once than any movie needs.
void prepareLibraries() {
    constexpr std::size_t allocationLimit = 1'000'000'000;
    static const bool done = [] {
        if (av_log_get_level() == AV_LOG_INFO)
            av_log_set_level(AV_LOG_QUIET);
        av_max_alloc(allocationLimit);
        return true;
    }();
    static_cast<void>(done);
}

int readInput(void* opaque, std::uint8_t* bytes, int count) {
    auto& av = *static_cast<std::pair<std::int64_t*, const KWMovieFile*>*>(opaque);
    const std::ptrdiff_t got = av.second->read(*av.first, bytes, static_cast<std::size_t>(count));
    if (got < 0)
        return AVERROR(EIO);
    *av.first += got;
    return got == 0 ? AVERROR_EOF : static_cast<int>(got);
}

std::int64_t seekInput(void* opaque, std::int64_t offset, int whence) {
    auto& av = *static_cast<std::pair<std::int64_t*, const KWMovieFile*>*>(opaque);
    if (whence & AVSEEK_SIZE)
        return av.second->size();
    std::int64_t from = 0;
    if ((whence & ~AVSEEK_FORCE) == SEEK_CUR)
        from = *av.first;
    else if ((whence & ~AVSEEK_FORCE) == SEEK_END)
        from = av.second->size();
    if (offset > INT64_MAX - from || from + offset < 0)
        return AVERROR(EINVAL);
    return *av.first = from + offset;
}

int refuseOtherFiles(AVFormatContext*, AVIOContext**, const char*, int, AVDictionary**) {
    return AVERROR(EPERM);
}

int askWhetherCancelled(void* flag) {
    return static_cast<const std::atomic<bool>*>(flag)->load();
}

const std::int32_t* displayMatrix(const AVStream& stream) {
#if LIBAVFORMAT_VERSION_INT >= AV_VERSION_INT(60, 15, 100)
    const AVPacketSideData* const data =
        av_packet_side_data_get(stream.codecpar->coded_side_data,
                                stream.codecpar->nb_coded_side_data, AV_PKT_DATA_DISPLAYMATRIX);
    return data && data->size >= 36 ? reinterpret_cast<const std::int32_t*>(data->data) : nullptr;
#else
    std::size_t size = 0;
    const std::uint8_t* const data =
        av_stream_get_side_data(&stream, AV_PKT_DATA_DISPLAYMATRIX, &size);
    return data && size >= 36 ? reinterpret_cast<const std::int32_t*>(data) : nullptr;
#endif
}

/// The nearest of the eight ways to turn and mirror by quarters.
QTransform orientationOf(const AVStream& stream) {
    const std::int32_t* const matrix = displayMatrix(stream);
    if (!matrix)
        return {};
    const auto sign = [&](int place) { return matrix[place] < 0 ? -1 : 1; };
    const auto weight = [&](int place) { return std::abs(static_cast<double>(matrix[place])); };
    if (weight(0) + weight(4) >= weight(1) + weight(3))
        return {static_cast<qreal>(sign(0)), 0, 0, static_cast<qreal>(sign(4)), 0, 0};
    return {0, static_cast<qreal>(sign(1)), static_cast<qreal>(sign(3)), 0, 0, 0};
}

} // namespace

QString KWLibavText(int code) {
    std::array<char, AV_ERROR_MAX_STRING_SIZE> text{};
    av_strerror(code, text.data(), text.size());
    return QString::fromLocal8Bit(text.data());
}

/// Where the input is and what it reads.
using KWInputPlace = std::pair<std::int64_t*, const KWMovieFile*>;

void KWMovieDecoder::Libav::InputDeleter::operator()(AVIOContext* context) const {
    delete static_cast<KWInputPlace*>(context->opaque);
    av_freep(&context->buffer);
    avio_context_free(&context);
}

void KWMovieDecoder::Libav::forgetPackets() {
    av_packet_unref(packet.get());
    avcodec_flush_buffers(codec.get());
    hasPacket = isReadToEnd = isDrained = false;
    lastTicks = AV_NOPTS_VALUE;
}

std::unique_ptr<KWMovieDecoder> KWMovieDecoder::open(std::shared_ptr<const KWMovieFile> file,
                                                     Access access,
                                                     const std::atomic<bool>& isCancelled,
                                                     QString& reason) {
    prepareLibraries();
    std::unique_ptr<KWMovieDecoder> decoder(
        new KWMovieDecoder(std::move(file), access, isCancelled));
    if (!decoder->openInput(reason) || !decoder->openCodec(reason) ||
        !decoder->decodeFirstFrame(reason))
        return nullptr;
    decoder->describe();
    decoder->_fault.clear();
    return decoder;
}

bool KWMovieDecoder::openInput(QString& reason) {
    _av.reset();
    _av = std::make_unique<Libav>();
    _av->file = _file;
    constexpr int bufferSize = 1 << 16;
    auto* const buffer = static_cast<unsigned char*>(av_malloc(bufferSize));
    auto* const place = new KWInputPlace(&_av->position, _file.get());
    _av->packet.reset(av_packet_alloc());
    _av->input.reset(
        avio_alloc_context(buffer, bufferSize, 0, place, readInput, nullptr, seekInput));
    AVFormatContext* format = avformat_alloc_context();
    if (!buffer || !_av->packet || !_av->input || !format) {
        reason = KWLibavText(AVERROR(ENOMEM));
        return false;
    }
    format->pb = _av->input.get();
    format->io_open = refuseOtherFiles;
    format->interrupt_callback = {askWhetherCancelled,
                                  const_cast<void*>(static_cast<const void*>(&_isCancelled))};
    // Without a name: what the file is, its contents tell.
    int code = avformat_open_input(&format, nullptr, nullptr, nullptr);
    if (code < 0) {
        reason = code == AVERROR_INVALIDDATA
                     ? QCoreApplication::translate("KWMovie", "no movie is recognised in it")
                     : KWLibavText(code);
        return false;
    }
    _av->format.reset(format);
    code = avformat_find_stream_info(format, nullptr);
    if (code >= 0)
        code = av_find_best_stream(format, AVMEDIA_TYPE_VIDEO, -1, -1, nullptr, 0);
    if (code < 0 || (format->streams[code]->disposition & AV_DISPOSITION_ATTACHED_PIC)) {
        reason = QCoreApplication::translate("KWMovie", "it has no video");
        return false;
    }
    _av->stream = format->streams[code];
    for (unsigned k = 0; k < format->nb_streams; ++k)
        format->streams[k]->discard =
            static_cast<int>(k) == code ? AVDISCARD_DEFAULT : AVDISCARD_ALL;
    return true;
}

bool KWMovieDecoder::openCodec(QString& reason) {
    const AVCodecParameters& parameters = *_av->stream->codecpar;
    const AVCodec* const found = avcodec_find_decoder(parameters.codec_id);
    if (!found) {
        reason = parameters.codec_id == AV_CODEC_ID_NONE
                     ? QCoreApplication::translate("KWMovie", "its video is of an unknown kind")
                     : QCoreApplication::translate("KWMovie",
                                                   "there is no decoder for its video, which is %1")
                           .arg(QString::fromLatin1(avcodec_get_name(parameters.codec_id)));
        return false;
    }
    _av->codec.reset(avcodec_alloc_context3(found));
    AVCodecContext* const codec = _av->codec.get();
    int code = codec ? avcodec_parameters_to_context(codec, &parameters) : AVERROR(ENOMEM);
    if (code >= 0) {
        const AVCodecDescriptor* const kind = avcodec_descriptor_get(parameters.codec_id);
        _av->isIntraOnly = kind && (kind->props & AV_CODEC_PROP_INTRA_ONLY);
        codec->pkt_timebase = _av->stream->time_base;
        codec->max_pixels = pixelLimit;
        // Threads hold frames back, which a single frame would wait for.
        constexpr unsigned threadLimit = 4;
        codec->thread_count = _av->isIntraOnly && _access == Access::random
                                  ? 1
                                  : static_cast<int>(std::clamp(std::thread::hardware_concurrency(),
                                                                1u, threadLimit));
        code = avcodec_open2(codec, found, nullptr);
    }
    if (code < 0) {
        reason =
            QCoreApplication::translate("KWMovie", "its video, which is %1, cannot be decoded: %2")
                .arg(QString::fromLatin1(avcodec_get_name(parameters.codec_id)), KWLibavText(code));
        return false;
    }
    const AVRational rate = _av->stream->avg_frame_rate;
    const AVRational base = _av->stream->time_base;
    if (rate.num > 0 && rate.den > 0)
        _av->usualTicks = std::max<std::int64_t>(1, av_rescale_q(1, av_inv_q(rate), base));
    return true;
}

bool KWMovieDecoder::decodeFirstFrame(QString& reason) {
    const AVRational base = _av->stream->time_base;
    if (base.num <= 0 || base.den <= 0) {
        reason = QCoreApplication::translate("KWMovie", "its video has no times");
        return false;
    }
    _av->packetsLeft = hopelessPackets;
    _next = decode();
    _av->packetsLeft = -1;
    if (!_next) {
        reason = QCoreApplication::translate(
                     "KWMovie", "its video, which is %1, has no frame that can be decoded")
                     .arg(QString::fromLatin1(avcodec_get_name(_av->stream->codecpar->codec_id)));
        return false;
    }
    _firstTicks = _next.ticks;
    _next.time = 0;
    return true;
}

void KWMovieDecoder::describe() {
    const AVStream& stream = *_av->stream;
    const AVFrame& frame = *_next.frame;
    _description.codedSize = {frame.width, frame.height};
    _description.orientation = orientationOf(stream);
    double width = frame.width;
    const AVRational shape =
        av_guess_sample_aspect_ratio(_av->format.get(), _av->stream, _next.frame.get());
    constexpr double unlikely = 100;
    if (shape.num > 0 && shape.den > 0 && av_q2d(shape) < unlikely && av_q2d(shape) > 1 / unlikely)
        width = std::max(1.0, std::round(width * av_q2d(shape)));
    const QSize upright(static_cast<int>(width), frame.height);
    _description.naturalSize = _description.orientation.m11() == 0 ? upright.transposed() : upright;

    if (stream.avg_frame_rate.num > 0 && stream.avg_frame_rate.den > 0)
        _description.frameRate = av_q2d(stream.avg_frame_rate);
    if (stream.duration != AV_NOPTS_VALUE && stream.duration > 0) {
        const std::int64_t start =
            stream.start_time == AV_NOPTS_VALUE ? _firstTicks : stream.start_time;
        _description.duration =
            timeOf(start) + av_q2d(stream.time_base) * static_cast<double>(stream.duration);
    } else if (_av->format->duration != AV_NOPTS_VALUE && _av->format->duration > 0) {
        const std::int64_t start = _av->format->start_time;
        const double late = start == AV_NOPTS_VALUE
                                ? 0
                                : static_cast<double>(_firstTicks) * av_q2d(stream.time_base) -
                                      static_cast<double>(start) / AV_TIME_BASE;
        _description.duration = static_cast<double>(_av->format->duration) / AV_TIME_BASE - late;
    }
    const bool isGuessed = _av->format->duration_estimation_method != AVFMT_DURATION_FROM_STREAM;
    if (!(_description.duration > 0) || !std::isfinite(_description.duration))
        _description.duration = durationByReading();
    else if (isGuessed)
        _description.duration = durationByLastFrame();
}

double KWMovieDecoder::durationByLastFrame() {
    const double guess = _description.duration;
    // Or every end would seem to come too early.
    _description.duration = 0;
    const KWDecodedFrame* const last = frameAt(guess * 2);
    const double length = static_cast<double>(_av->usualTicks) * av_q2d(_av->stream->time_base);
    const double duration = last ? last->time + length : guess;
    seekBefore(_firstTicks);
    return duration;
}

/// For files that do not tell how long they are: the end of their last packet.
double KWMovieDecoder::durationByReading() {
    std::int64_t end = _firstTicks + std::max<std::int64_t>(1, _av->usualTicks);
    std::int64_t count = 0;
    const auto take = [&](const AVPacket& packet) {
        const std::int64_t from = packet.pts != AV_NOPTS_VALUE ? packet.pts : packet.dts;
        const std::int64_t length = packet.duration > 0 ? packet.duration : _av->usualTicks;
        constexpr std::int64_t limit = INT64_MAX / 4;
        if (from != AV_NOPTS_VALUE && std::abs(from) < limit && length < limit)
            end = std::max(end, from + length);
        else if (++count < limit / _av->usualTicks)
            end = std::max(end, _firstTicks + count * _av->usualTicks);
    };
    startOver();
    while (!_isCancelled && readPacket()) {
        take(*_av->packet);
        _av->hasPacket = false;
    }
    startOver();
    return timeOf(end);
}
