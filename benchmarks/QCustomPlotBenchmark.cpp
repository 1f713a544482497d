#include "BenchmarkApplication.h"
#include "SampleDrawing.h"

#include <benchmark/benchmark.h>
#include <qcustomplot.h>

#include <QPen>
#include <QVector>

// The pictures of DrawingBenchmark.cpp, drawn by QCustomPlot: at the same widths, and with the pen
// of width 0, for which Qt has a way of its own that is many times quicker.

namespace {

enum Width { sameWidth, quickWidth };

struct Plot {
    explicit Plot(Width width) : _width(width) {
        plot.resize(KWSampleViewSize);
        plot.setAntialiasedElements(QCP::aeAll);
        plot.xAxis->setRange(0, static_cast<double>(KWSampleSpan));
        plot.yAxis->setRange(-1.5, 1.5);
    }

    /// Behind those that are there already.
    void addGraph(const KWKeyFramedChannel& channel, int steps, const QColor& color, double width) {
        QCPGraph* const graph = plot.addGraph();
        graph->setPen(QPen(color, _width == sameWidth ? width : 0));
        setPoints(*graph, channel, steps);
    }

    static void setPoints(QCPGraph& graph, const KWKeyFramedChannel& channel, int steps) {
        QVector<double> times;
        QVector<double> values;
        for (int k = 0; k <= steps; ++k) {
            const float t = KWSampleSpan * static_cast<float>(k) / static_cast<float>(steps);
            times << static_cast<double>(t);
            values << static_cast<double>(channel.valueForTime(KWTime(t)));
        }
        graph.setData(times, values, true);
    }

    void show() {
        plot.show();
        QCoreApplication::processEvents();
    }

    const QApplication& application = KWBenchmarkApplication();
    QCustomPlot plot;

  private:
    Width _width;
};

void addCurves(Plot& plot) {
    const auto channels = KWSampleDrawnChannels();
    for (std::size_t k = channels.size() - 1; k > 0; --k)
        plot.addGraph(*channels[k], KWSampleSteps, KWSampleReferenceColor(),
                      KWSampleReferenceWidth);
    plot.addGraph(*channels[0], KWSampleSteps, Qt::magenta, KWSampleWidth);
}

void replot(benchmark::State& state, Plot& plot) {
    plot.show();
    for (auto _ : state)
        plot.plot.replot(QCustomPlot::rpImmediateRefresh);
}

void qCustomPlotCurves(benchmark::State& state, Width width) {
    Plot plot(width);
    addCurves(plot);
    replot(state, plot);
}
BENCHMARK_CAPTURE(qCustomPlotCurves, same, sameWidth)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(qCustomPlotCurves, quick, quickWidth)->Unit(benchmark::kMillisecond);

void qCustomPlotLongCurve(benchmark::State& state, Width width) {
    Plot plot(width);
    plot.addGraph(*KWSampleDrawnChannel(201, 0), KWSampleManySteps, Qt::magenta, KWSampleWidth);
    replot(state, plot);
}
BENCHMARK_CAPTURE(qCustomPlotLongCurve, same, sameWidth)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(qCustomPlotLongCurve, quick, quickWidth)->Unit(benchmark::kMillisecond);

/// One curve has changed; QCustomPlot replots all of them.
void qCustomPlotDrag(benchmark::State& state, Width width) {
    Plot plot(width);
    addCurves(plot);
    plot.show();
    const auto front = KWSampleDrawnChannel(11, 0);
    QCPGraph& graph = *plot.plot.graph(KWSampleCurveCount - 1);
    float step = 0;
    for (auto _ : state) {
        step += 0.1f;
        front->setValueForKeyframe(std::sin(step), KWTime(5));
        Plot::setPoints(graph, *front, KWSampleSteps);
        plot.plot.replot(QCustomPlot::rpImmediateRefresh);
    }
}
BENCHMARK_CAPTURE(qCustomPlotDrag, same, sameWidth)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(qCustomPlotDrag, quick, quickWidth)->Unit(benchmark::kMillisecond);

} // namespace
