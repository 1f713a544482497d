#include "MovieBenchmark.h"

#include "BenchmarkApplication.h"
#include "RatioReporter.h"

#include <KWDesktop/KWMovie.h>

#include <benchmark/benchmark.h>

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavformat/avformat.h>
#include <libswscale/swscale.h>
}

#include <algorithm>
#include <fstream>
#include <random>
#include <thread>
#include <vector>

namespace {

/// The same for both.
std::vector<double> randomTimes() {
    std::mt19937 random(1);
    std::uniform_real_distribution<double> inside(0, 3.9);
    std::vector<double> times(20);
    std::generate(times.begin(), times.end(), [&] { return inside(random); });
    return times;
}

/// Seeks to the key frame before, and decodes and converts what a program with no other thought
/// would.
class BareDecoder {
  public:
    explicit BareDecoder(const std::string& file) {
        if (avformat_open_input(&_format, file.c_str(), nullptr, nullptr) < 0)
            return;
        avformat_find_stream_info(_format, nullptr);
        const int index = av_find_best_stream(_format, AVMEDIA_TYPE_VIDEO, -1, -1, nullptr, 0);
        _stream = _format->streams[index];
        const AVCodec* const found = avcodec_find_decoder(_stream->codecpar->codec_id);
        _codec = avcodec_alloc_context3(found);
        avcodec_parameters_to_context(_codec, _stream->codecpar);
        _codec->thread_count = static_cast<int>(std::min(4u, std::thread::hardware_concurrency()));
        avcodec_open2(_codec, found, nullptr);
        _pixels.resize(static_cast<std::size_t>(_codec->width * _codec->height * 4 + 64));
    }
    ~BareDecoder() {
        sws_freeContext(_scaler);
        av_frame_free(&_frame);
        av_packet_free(&_packet);
        avcodec_free_context(&_codec);
        avformat_close_input(&_format);
    }
    BareDecoder(const BareDecoder&) = delete;
    BareDecoder& operator=(const BareDecoder&) = delete;

    void show(double time) {
        const auto target = static_cast<std::int64_t>(time / av_q2d(_stream->time_base));
        av_seek_frame(_format, _stream->index, target, AVSEEK_FLAG_BACKWARD);
        avcodec_flush_buffers(_codec);
        bool isAtEnd = false;
        for (;;) {
            const int code = avcodec_receive_frame(_codec, _frame);
            if (code == AVERROR_EOF)
                return;
            if (code == AVERROR(EAGAIN)) {
                isAtEnd = isAtEnd || av_read_frame(_format, _packet) < 0;
                avcodec_send_packet(_codec, isAtEnd ? nullptr : _packet);
                av_packet_unref(_packet);
            } else if (_frame->pts + _stream->time_base.den / 60 > target)
                return convert();
        }
    }

  private:
    void convert() {
        _scaler = sws_getCachedContext(_scaler, _frame->width, _frame->height,
                                       static_cast<AVPixelFormat>(_frame->format), _frame->width,
                                       _frame->height, AV_PIX_FMT_BGRA, SWS_BILINEAR, nullptr,
                                       nullptr, nullptr);
        std::uint8_t* target = _pixels.data();
        const int stride = _frame->width * 4;
        sws_scale(_scaler, _frame->data, _frame->linesize, 0, _frame->height, &target, &stride);
        benchmark::DoNotOptimize(_pixels.data());
    }

    AVFormatContext* _format = nullptr;
    AVStream* _stream = nullptr;
    AVCodecContext* _codec = nullptr;
    AVFrame* _frame = av_frame_alloc();
    AVPacket* _packet = av_packet_alloc();
    SwsContext* _scaler = nullptr;
    std::vector<std::uint8_t> _pixels;
};

void scrubbingTheMovie(benchmark::State& state) {
    KWBenchmarkApplication();
    const auto movie = KWMovie::movieWithFile(KWLargeBenchmarkMovie().file());
    if (!movie)
        return state.SkipWithError("there is no ffmpeg program");
    const std::vector<double> times = randomTimes();
    for (auto _ : state)
        for (const double time : times)
            benchmark::DoNotOptimize(movie->frameAt(time));
    state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(times.size()));
}
BENCHMARK(scrubbingTheMovie)->UseRealTime()->Unit(benchmark::kMillisecond);

void scrubbingWithBareLibraries(benchmark::State& state) {
    if (KWLargeBenchmarkMovie().file().isEmpty())
        return state.SkipWithError("there is no ffmpeg program");
    BareDecoder decoder(KWLargeBenchmarkMovie().file().toStdString());
    const std::vector<double> times = randomTimes();
    for (auto _ : state)
        for (const double time : times)
            decoder.show(time);
    state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(times.size()));
}
BENCHMARK(scrubbingWithBareLibraries)->UseRealTime()->Unit(benchmark::kMillisecond);

const bool scrubbingIsCompared =
    KWReportRatio({"a frame at a random time, beside bare libraries", "scrubbingTheMovie/real_time",
                   "scrubbingWithBareLibraries/real_time", KWRatio::Goal::atMost, 1.5});

double residentMegabytes() {
    std::ifstream file("/proc/self/statm");
    double pages = 0;
    file >> pages >> pages;
    return pages * 4096 / 1e6;
}

/// By how much memory grows from the thousandth frame to the ten thousandth.
void memoryOverTenThousandFrames(benchmark::State& state) {
    static const KWBenchmarkMovie file("640x360", 4, 60);
    const auto movie = KWMovie::movieWithFile(file.file());
    if (!movie)
        return state.SkipWithError("there is no ffmpeg program");
    double growth = 0;
    for (auto _ : state) {
        double before = 0;
        for (int frame = 0; frame < 10000; ++frame) {
            benchmark::DoNotOptimize(movie->frameAt(frame % 240 / 60.0));
            if (frame == 1000)
                before = residentMegabytes();
        }
        growth = residentMegabytes() - before;
    }
    state.counters["grows_by_MB"] = growth;
    state.SetItemsProcessed(state.iterations() * 10000);
}
BENCHMARK(memoryOverTenThousandFrames)->UseRealTime()->Iterations(1)->Unit(benchmark::kMillisecond);

} // namespace
