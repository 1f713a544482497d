// The outline of a large scene: 100 elements of 10 groups of 100 channels.

#include "BenchmarkApplication.h"

#include <KWBase/KWChannelArray.h>
#include <KWBase/KWConstantChannel.h>
#include <KWBase/KWEmbeddedChannelController.h>

#include <benchmark/benchmark.h>

#include <QApplication>
#include <memory>
#include <string>
#include <vector>

namespace {

class SceneElement final : public KWChannelElement {
  public:
    explicit SceneElement(std::string name) : _name(std::move(name)) {}
    std::string name() const override { return _name; }
    std::shared_ptr<KWChannelArray> channelArray() const override { return _array; }

  private:
    std::string _name;
    std::shared_ptr<KWChannelArray> _array = std::make_shared<KWChannelArray>();
};

using Scene = std::vector<std::shared_ptr<KWChannelElement>>;

const Scene& scene() {
    static const Scene made = [] {
        Scene elements;
        for (int e = 0; e < 100; ++e) {
            elements.push_back(std::make_shared<SceneElement>("Element " + std::to_string(e)));
            KWChannelArray& array = *elements.back()->channelArray();
            for (std::uint32_t g = 0; g < 10; ++g) {
                array.addGroupWithName("Group " + std::to_string(g));
                for (int c = 0; c < 100; ++c)
                    array.addChannelToGroup(
                        channelWithNameInitialValueColor<KWConstantChannel>(
                            "Channel " + std::to_string(c), static_cast<float>(c), c % 7),
                        g);
            }
        }
        return elements;
    }();
    return made;
}

struct Outline {
    Outline() {
        KWBenchmarkApplication();
        controller.makeOutline();
    }
    void open(bool expands) {
        controller.setElements(scene());
        controller.update();
        if (expands)
            controller.expandOutlineView(controller.outline());
        QWidget& window = *controller.channelOutlineView();
        window.resize(400, 800);
        window.show();
        window.grab();
    }
    KWEmbeddedChannelController controller;
};

/// From an outline without elements to one drawn on the screen; 0 closed, 1 with every row open.
void outlineOpens(benchmark::State& state) {
    scene();
    for ([[maybe_unused]] auto _ : state) {
        state.PauseTiming();
        auto outline = std::make_unique<Outline>();
        state.ResumeTiming();
        outline->open(state.range(0) == 1);
        state.PauseTiming();
        outline.reset();
        state.ResumeTiming();
    }
}
BENCHMARK(outlineOpens)->Arg(0)->Arg(1)->Unit(benchmark::kMillisecond);

/// Notices of change, and the pass of the event loop in which they are answered.
void outlineHearsNotices(benchmark::State& state) {
    Outline outline;
    outline.open(true);
    QCoreApplication::processEvents();
    int refreshes = 0;
    QObject::connect(outline.controller.outlineModel(), &KWOutlineModel::valuesRefreshed,
                     [&refreshes] { ++refreshes; });
    const auto channels = scene().front()->channelArray()->channels();
    for ([[maybe_unused]] auto _ : state) {
        for (std::int64_t k = 0; k < state.range(0); ++k)
            (*channels)[static_cast<std::size_t>(k) % channels->size()]->didChange();
        QCoreApplication::processEvents();
    }
    state.counters["refreshes"] = benchmark::Counter(refreshes, benchmark::Counter::kAvgIterations);
}
BENCHMARK(outlineHearsNotices)->Arg(1)->Arg(10000)->Unit(benchmark::kMicrosecond);

/// A reload of an outline with every row open, after nothing has changed.
void outlineReloads(benchmark::State& state) {
    Outline outline;
    outline.open(true);
    for ([[maybe_unused]] auto _ : state)
        outline.controller.update();
}
BENCHMARK(outlineReloads)->Unit(benchmark::kMillisecond);

} // namespace
