#include "BenchmarkApplication.h"
#include "RatioReporter.h"
#include "SampleDrawing.h"

#include <KWBase/KWChannelView.h>

#include <benchmark/benchmark.h>

#include <QMouseEvent>
#include <cmath>

// What a window of the curve view costs when it is drawn: all of it, or after one event of a drag.

namespace {

struct Window {
    Window(const std::shared_ptr<KWChannel>& front, int steps) {
        view.resize(KWSampleViewSize);
        view.setDisplayedBounds({0, -1.5f, KWSampleSpan, 3});
        view.setPrimaryChannel(front);
        view.setStepCount(steps);
        view.setShowsGrid(true);
        view.setShowsLegend(true);
        view.show();
        QCoreApplication::processEvents();
    }
    void addReferences() {
        const auto channels = KWSampleDrawnChannels();
        for (std::size_t k = 1; k < channels.size(); ++k)
            view.addSecondaryChannel(channels[k]);
    }

    const QApplication& application = KWBenchmarkApplication();
    KWChannelView view;
};

/// Nothing of the earlier drawing may serve again.
void repaintAll(benchmark::State& state, Window& window) {
    for (auto _ : state) {
        window.view.setDisplayedBounds(window.view.displayedBounds());
        window.view.repaint();
    }
}

/// The channel in front shows so many keys.
void drawCurves(benchmark::State& state) {
    const auto front = KWSampleDrawnChannel(static_cast<int>(state.range(0)), 0);
    Window window(front, KWSampleSteps);
    window.addReferences();
    repaintAll(state, window);
}
BENCHMARK(drawCurves)->Arg(2)->Arg(200)->Unit(benchmark::kMillisecond);

void drawLongCurve(benchmark::State& state) {
    Window window(KWSampleDrawnChannel(201, 0), KWSampleManySteps);
    repaintAll(state, window);
}
BENCHMARK(drawLongCurve)->Unit(benchmark::kMillisecond);

/// One event of the mouse that moves a key of eleven, and the drawing that it leads to.
void drawDrag(benchmark::State& state) {
    const auto front = KWSampleDrawnChannel(11, 0);
    Window window(front, KWSampleSteps);
    window.addReferences();
    KWChannelView& view = window.view;
    const auto send = [&](QEvent::Type type, const QPointF& where, Qt::MouseButton button,
                          Qt::MouseButtons buttons) {
        QMouseEvent event(type, where, where, button, buttons, Qt::NoModifier);
        QApplication::sendEvent(&view, &event);
    };
    view.setSelectedKeys({KWTime(5)});
    view.repaint();
    const QPointF press = view.positionOfTimeAndValue(5, front->valueForTime(KWTime(5)));
    send(QEvent::MouseButtonPress, press, Qt::LeftButton, Qt::LeftButton);
    const std::uint64_t edits = front->editCount();
    double step = 0;
    for (auto _ : state) {
        step += 0.1;
        send(QEvent::MouseMove, press + QPointF(0, 40 * std::sin(step)), Qt::NoButton,
             Qt::LeftButton);
        QCoreApplication::sendPostedEvents();
    }
    if (front->editCount() == edits)
        state.SkipWithError("the drag moved nothing");
    send(QEvent::MouseButtonRelease, press, Qt::LeftButton, Qt::NoButton);
}
BENCHMARK(drawDrag)->Unit(benchmark::kMillisecond);

} // namespace
