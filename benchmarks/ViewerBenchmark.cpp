#include "BenchmarkApplication.h"
#include "MovieBenchmark.h"
#include "RatioReporter.h"

#include <KWBase/KWImageEditorView.h>
#include <KWDesktop/KWMovie.h>

#include <GL/gl.h>
#include <benchmark/benchmark.h>
#include <unistd.h>

#include <QElapsedTimer>
#include <QOpenGLWidget>
#include <QTimer>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

// These want a screen: QT_QPA_PLATFORM=xcb xvfb-run kwbase_view_benchmarks --benchmark_filter=iewer

namespace {

constexpr int seconds = 3;

std::string nameOfThread(const std::filesystem::path& thread) {
    std::string name;
    std::ifstream file(thread / "comm");
    std::getline(file, name);
    return name;
}

/// What all threads have computed but those that decode and convert, which are the movie's and
/// those that go by the name of the main thread.
double secondsOfDrawing() {
    const std::filesystem::path threads = "/proc/self/task";
    const std::string mainThread = std::to_string(getpid());
    const std::string mainName = nameOfThread(threads / mainThread);
    double sum = 0;
    for (const auto& thread : std::filesystem::directory_iterator(threads)) {
        const std::string name = nameOfThread(thread);
        const bool isMain = thread.path().filename() == mainThread;
        if (!isMain && (name == "KWMovie" || name == mainName))
            continue;
        double nanoseconds = 0;
        std::ifstream(thread.path() / "schedstat") >> nanoseconds;
        sum += nanoseconds * 1e-9;
    }
    return sum;
}

void runEvents(int milliseconds) {
    QEventLoop loop;
    QTimer::singleShot(milliseconds, &loop, &QEventLoop::quit);
    loop.exec();
}

struct CountingView final : KWImageEditorView {
    void renderWithPickingFlush(bool picking, bool flushes) override {
        KWImageEditorView::renderWithPickingFlush(picking, flushes);
        ++count;
    }
    int count = 0;
};

/// One upload and two quads for each frame.
struct BareView final : QOpenGLWidget {
    BareView() {
        QSurfaceFormat format;
        format.setVersion(2, 1);
        format.setProfile(QSurfaceFormat::CompatibilityProfile);
        setFormat(format);
        for (const QColor& color : {QColor(Qt::red), QColor(Qt::blue)}) {
            frames.emplace_back(1920, 1080, QImage::Format_RGB32);
            frames.back().fill(color);
        }
        connect(this, &QOpenGLWidget::frameSwapped, this, [this] { update(); });
    }
    void initializeGL() override {
        for (int k = 0; k < 2; ++k) {
            glGenTextures(1, &names[k]);
            glBindTexture(target, names[k]);
            glTexParameteri(target, GL_TEXTURE_MIN_FILTER, k == 0 ? GL_NEAREST : GL_LINEAR);
            glTexParameteri(target, GL_TEXTURE_MAG_FILTER, k == 0 ? GL_NEAREST : GL_LINEAR);
            glTexImage2D(target, 0, GL_RGBA8, 1920, 1080, 0, GL_BGRA, GL_UNSIGNED_INT_8_8_8_8_REV,
                         frames[0].constBits());
        }
    }
    void paintGL() override {
        glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
        quad(names[0], 64, 36);
        glBindTexture(target, names[1]);
        const QImage& frame = frames[static_cast<std::size_t>(count++ % 2)];
        glTexSubImage2D(target, 0, 0, 0, 1920, 1080, GL_BGRA, GL_UNSIGNED_INT_8_8_8_8_REV,
                        frame.constBits());
        quad(names[1], 1920, 1080);
    }
    static void quad(unsigned name, int width, int height) {
        glEnable(target);
        glBindTexture(target, name);
        glBegin(GL_QUADS);
        for (const auto& [x, y] : {std::pair{0, 0}, {1, 0}, {1, 1}, {0, 1}}) {
            glTexCoord2i(x * width, y * height);
            glVertex2i(2 * x - 1, 1 - 2 * y);
        }
        glEnd();
        glDisable(target);
    }

    static constexpr GLenum target = 0x84F5;
    std::vector<QImage> frames;
    unsigned names[2] = {};
    int count = 0;
};

bool isPossible(benchmark::State& state) {
    KWBenchmarkApplication();
    if (!KWImageEditorView::isOpenGLAvailable())
        state.SkipWithError("there is no OpenGL here");
    else if (KWLargeBenchmarkMovie().file().isEmpty())
        state.SkipWithError("there is no ffmpeg program");
    else
        return true;
    return false;
}

struct Played {
    double drawing = 0; ///< seconds of processors
    double wall = 0;
    int shown = 0;
    double late = 0; ///< seconds that the frame at the end is behind the clock
};

Played play(const QSize& size) {
    CountingView view;
    view.resize(size);
    view.show();
    runEvents(200);
    const auto movie = KWMovie::movieWithFile(KWLargeBenchmarkMovie().file());
    view.setMovie(movie);
    runEvents(200);
    Played played;
    const int before = view.count;
    QElapsedTimer timer;
    timer.start();
    const double start = secondsOfDrawing();
    movie->start();
    runEvents(seconds * 1000);
    played.drawing = secondsOfDrawing() - start;
    played.wall = static_cast<double>(timer.nsecsElapsed()) * 1e-9;
    played.shown = view.count - before;
    played.late = movie->currentTime() - movie->currentFrame().time;
    return played;
}

void viewerPlaysInASmallView(benchmark::State& state) {
    if (!isPossible(state))
        return;
    Played played;
    for (auto _ : state) {
        played = play({640, 360});
        state.SetIterationTime(played.drawing / played.shown);
    }
    state.counters["shown_per_s"] = played.shown / played.wall;
    state.counters["late_ms"] = played.late * 1000;
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK(viewerPlaysInASmallView)->UseManualTime()->Iterations(1)->Unit(benchmark::kMillisecond);

void viewerPlaysInALargeView(benchmark::State& state) {
    if (!isPossible(state))
        return;
    Played played;
    for (auto _ : state) {
        played = play({1920, 1080});
        state.SetIterationTime(played.drawing / played.shown);
    }
    state.counters["shown_per_s"] = played.shown / played.wall;
    state.counters["late_ms"] = played.late * 1000;
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK(viewerPlaysInALargeView)->UseManualTime()->Iterations(1)->Unit(benchmark::kMillisecond);

void bareViewerInALargeView(benchmark::State& state) {
    if (!isPossible(state))
        return;
    double shown = 0;
    for (auto _ : state) {
        BareView view;
        view.resize(1920, 1080);
        view.show();
        runEvents(300);
        const int before = view.count;
        const double start = secondsOfDrawing();
        runEvents(seconds * 1000);
        shown = view.count - before;
        state.SetIterationTime((secondsOfDrawing() - start) / shown);
    }
    state.counters["shown_per_s"] = shown / seconds;
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK(bareViewerInALargeView)->UseManualTime()->Iterations(1)->Unit(benchmark::kMillisecond);

const bool smallIsCompared =
    KWReportRatio({"1080p at 60 Hz in 640 x 360: share of a core besides decoding",
                   "viewerPlaysInASmallView/iterations:1/manual_time", KWFrameOf60Hz,
                   KWRatio::Goal::atMost, 0.7});
const bool largeIsCompared =
    KWReportRatio({"a frame in 1920 x 1080, beside a bare QOpenGLWidget",
                   "viewerPlaysInALargeView/iterations:1/manual_time",
                   "bareViewerInALargeView/iterations:1/manual_time", KWRatio::Goal::atMost, 1.3});

} // namespace
