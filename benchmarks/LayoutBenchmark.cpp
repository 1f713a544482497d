#include "BenchmarkApplication.h"
#include "RatioReporter.h"

#include <KWBase/KWLayoutView.h>

#include <benchmark/benchmark.h>

#include <QCoreApplication>
#include <QWidget>
#include <memory>

namespace {

constexpr int columnCount = 200;
constexpr int paneCount = 50;

/// Sizes of a window whose corner is dragged, in and out by turns.
QSize nextSize(int step) {
    constexpr int turn = 100;
    const int at = step % (2 * turn);
    const int way = at < turn ? at : 2 * turn - at;
    return {2000 + 7 * way, 1000 + 3 * way};
}

std::unique_ptr<KWLayoutView> manyPanes(bool isOpaque) {
    auto view = std::make_unique<KWLayoutView>(QRect(QPoint(), nextSize(0)));
    view->setInterpaneSpace(2);
    for (int column = 0; column < columnCount; ++column)
        view->addColumnWithWidthPercent(1, true);
    for (int column = 0; column < columnCount; ++column) {
        for (int pane = 0; pane < paneCount; ++pane) {
            auto* const child = new QWidget;
            child->setAutoFillBackground(isOpaque);
            view->addPaneHeightPercentColumn(child, pane % 5 == 0 ? 10 : 1, pane % 5 != 0, column);
        }
    }
    view->finishedAddingPanes();
    return view;
}

/// One step: nearly every pane moves, and many become larger. What is drawn then is not counted.
void relayoutPanes(benchmark::State& state, bool isOpaque) {
    KWBenchmarkApplication();
    const auto view = manyPanes(isOpaque);
    view->show();
    QCoreApplication::processEvents();
    int step = 0;
    for (auto _ : state) {
        view->resize(nextSize(++step));
        state.PauseTiming();
        QCoreApplication::processEvents();
        state.ResumeTiming();
    }
}
BENCHMARK_CAPTURE(relayoutPanes, translucent, false)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(relayoutPanes, opaque, true)->Unit(benchmark::kMillisecond);

[[maybe_unused]] const bool ratiosAreReported =
    KWReportRatio({"live resize of 10,000 translucent panes by a frame of a 60 Hz screen",
                   "relayoutPanes/translucent", KWFrameOf60Hz, KWRatio::Goal::atMost, 1}) &&
    KWReportRatio({"live resize of 10,000 opaque panes by a frame of a 60 Hz screen",
                   "relayoutPanes/opaque", KWFrameOf60Hz, KWRatio::Goal::atMost, 1});

} // namespace
