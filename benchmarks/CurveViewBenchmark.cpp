#include "BenchmarkApplication.h"
#include "RatioReporter.h"

#include <KWBase/KWChannelView.h>
#include <KWBase/KWKeyFramedChannel.h>
#include <KWFoundation/KWNotificationCenter.h>
#include <KWFoundation/KWUndoManager.h>

#include <benchmark/benchmark.h>
#include <tests/RecordingPainter.h>

#include <QApplication>
#include <QImage>
#include <QMouseEvent>
#include <QPainter>
#include <cmath>
#include <memory>
#include <random>
#include <string>
#include <vector>

namespace {

constexpr QSize viewSize(1600, 900);
constexpr int visibleKeys = 500;

std::shared_ptr<KWKeyFramedChannel> jaggedChannel(std::size_t count, unsigned seed) {
    std::mt19937 random(seed);
    std::uniform_real_distribution<float> unit(-1, 1);
    std::vector<float> values;
    std::vector<KWTime> times;
    for (std::size_t k = 0; k < count; ++k) {
        values.push_back(unit(random));
        times.push_back(KWTime(static_cast<float>(k)));
    }
    auto channel = std::make_shared<KWKeyFramedChannel>();
    channel->setValuesHermiteValuesForKeyframes(
        values, std::vector<KWData>(count, KWKeyFramedChannel::hermiteData()), times);
    return channel;
}

/// A view of 500 keys amid a primary channel's, 20 slower curves behind it, grid and legend.
struct Scene {
    Scene(std::size_t keyCount, int stepCount) {
        view.resize(viewSize);
        view.setPrimaryChannel(jaggedChannel(keyCount, 1));
        const float start = std::floor(static_cast<float>(keyCount - visibleKeys) / 2) + 0.5f;
        view.setDisplayedBounds({start, -1.25f, visibleKeys, 2.5f});
        for (unsigned k = 0; k < 20; ++k) {
            auto channel = std::make_shared<KWKeyFramedChannel>();
            std::mt19937 random(100 + k);
            std::uniform_real_distribution<float> unit(-1, 1);
            for (int i = 0; i <= 25; ++i)
                channel->setValueForKeyframe(unit(random),
                                             KWTime(start + 20 * static_cast<float>(i)));
            view.addSecondaryChannel(channel);
        }
        view.setShowsGrid(true);
        view.setShowsLegend(true);
        view.setStepCount(stepCount);
    }

    KWChannelView view;
};

QImage canvas() {
    QImage image(viewSize, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::black);
    return image;
}

void repaintView(benchmark::State& state, std::size_t keyCount, int stepCount) {
    KWBenchmarkApplication();
    Scene scene(keyCount, stepCount);
    QImage image = canvas();
    for (auto _ : state) {
        QPainter painter(&image);
        scene.view.drawInto(painter, QRectF(QPointF(0, 0), viewSize));
    }
}

void drawPlainly(QPainter& painter, const Drawn& one) {
    QPolygonF points;
    for (const QPointF& point : one.points)
        points << QPointF(point.x(), viewSize.height() - point.y());
    painter.setPen(one.stroke.isValid() ? QPen(one.stroke, one.width) : QPen(Qt::NoPen));
    painter.setBrush(one.brush.isValid() ? QBrush(one.brush) : QBrush());
    switch (one.kind) {
    case Drawn::line:
        painter.drawLine(points[0], points[1]);
        break;
    case Drawn::curve:
        painter.drawPolyline(points);
        break;
    case Drawn::fill:
    case Drawn::rectangle:
        painter.drawRect(points.boundingRect());
        break;
    case Drawn::text: {
        QFont font = painter.font();
        font.setPixelSize(static_cast<int>(one.fontSize));
        painter.setFont(font);
        painter.drawText(points[0], one.string);
        break;
    }
    case Drawn::other:
        painter.drawPolygon(points);
        break;
    }
}

/// The same lines, curves, rectangles and texts, one after the other, with nothing to compute.
void repaintPlainly(benchmark::State& state, std::size_t keyCount, int stepCount) {
    KWBenchmarkApplication();
    Scene scene(keyCount, stepCount);
    RecordingDevice device(viewSize.width(), viewSize.height());
    {
        QPainter painter(&device);
        scene.view.drawInto(painter, QRectF(QPointF(0, 0), viewSize));
    }
    QImage image = canvas();
    for (auto _ : state) {
        QPainter painter(&image);
        painter.setRenderHint(QPainter::Antialiasing);
        for (const Drawn& one : device.drawn)
            drawPlainly(painter, one);
    }
    state.counters["primitives"] = static_cast<double>(device.drawn.size());
}

BENCHMARK_CAPTURE(repaintView, 10k_100, 10'000, 100)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(repaintPlainly, 10k_100, 10'000, 100)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(repaintView, 10k_1600, 10'000, 1'600)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(repaintPlainly, 10k_1600, 10'000, 1'600)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(repaintView, 1M_1600, 1'000'000, 1'600)->Unit(benchmark::kMillisecond);

/// One event of a drag that moves 1,000 of 10,000 keys, with undo and somebody who listens.
void dragKeys(benchmark::State& state, float spacing) {
    KWBenchmarkApplication();
    struct Owner final : KWChannelOwner {
        ~Owner() override { resign(); }
        KWUndoManager* undoManager() override { return &manager; }
        KWUndoManager manager;
    } owner;
    const auto channel = jaggedChannel(10'000, 1);
    channel->setOwner(&owner);
    KWChannelView view;
    view.resize(viewSize);
    view.setPrimaryChannel(channel);
    view.setDisplayedBounds({4000, -1.25f, 1'000 * spacing, 2.5f});
    view.show();
    std::vector<KWTime> selected;
    for (int k = 0; k < 1'000; ++k)
        selected.push_back(KWTime(4000 + spacing * static_cast<float>(k)));
    view.setSelectedKeys(selected);
    view.grab();
    std::size_t heard = 0;
    const auto observation = KWNotificationCenter::defaultCenter().addObserver(
        KWChannelChangedNotification, channel.get(), [&](const KWNotification&) { ++heard; });
    QObject::connect(&view, &KWChannelView::gestureWillBegin,
                     [&] { channel->startManipulation(); });
    QObject::connect(&view, &KWChannelView::gestureDidEnd, [&] { channel->stopManipulation(); });

    const auto send = [&](QEvent::Type type, const QPointF& where, Qt::MouseButton button,
                          Qt::MouseButtons buttons) {
        QMouseEvent event(type, where, where, button, buttons, Qt::NoModifier);
        QApplication::sendEvent(&view, &event);
    };
    const QPointF press = view.positionOfTimeAndValue(4010, channel->valueForTime(KWTime(4010)));
    send(QEvent::MouseButtonPress, press, Qt::LeftButton, Qt::LeftButton);
    double step = 0;
    for (auto _ : state) {
        step += 1;
        send(QEvent::MouseMove, press + QPointF(0, 40 * std::sin(step)), Qt::NoButton,
             Qt::LeftButton);
    }
    send(QEvent::MouseButtonRelease, press, Qt::LeftButton, Qt::NoButton);
    if (heard == 0)
        state.SkipWithError("the drag moved nothing");
}
BENCHMARK_CAPTURE(dragKeys, neighbours, 1.0f)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(dragKeys, every_second, 2.0f)->Unit(benchmark::kMillisecond);

const std::vector<bool> reported{
    KWReportRatio({"repaint, 10,000 keys, 100 steps: the view by a plain loop",
                   "repaintView/10k_100", "repaintPlainly/10k_100", KWRatio::Goal::atMost, 1.3}),
    KWReportRatio({"repaint, 10,000 keys, 1,600 steps: the view by a plain loop",
                   "repaintView/10k_1600", "repaintPlainly/10k_1600", KWRatio::Goal::atMost, 1.3}),
    KWReportRatio({"repaint, 1,600 steps: a million keys by 10,000", "repaintView/1M_1600",
                   "repaintView/10k_1600", KWRatio::Goal::atMost, 1.1}),
    KWReportRatio({"drag of 1,000 of 10,000 keys by a frame of a 60 Hz screen",
                   "dragKeys/neighbours", KWFrameOf60Hz, KWRatio::Goal::atMost, 1}),
    KWReportRatio({"drag of every second of 2,000 keys by a frame of a 60 Hz screen",
                   "dragKeys/every_second", KWFrameOf60Hz, KWRatio::Goal::atMost, 1}),
};

} // namespace
