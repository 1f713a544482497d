#include "BenchmarkApplication.h"

#include <KWBase/KWKeyFramedChannel.h>

#include <apps/kwedit/KWEditScene.h>
#include <benchmark/benchmark.h>

#include <QTemporaryDir>
#include <random>
#include <string>

// Frames of 200 sprites that all move, by 1,000 channels, at 1280 x 720. 60 of them a second leave
// 16.7 ms for each.

namespace {

constexpr int spriteCount = 200;
constexpr int keyCount = 40;

struct Scene {
    /// Pictures of 256 x 256 pixels, shown about 96 wide, or shapes of that size.
    explicit Scene(bool hasPictures) {
        KWBenchmarkApplication();
        QImage image(256, 256, QImage::Format_ARGB32_Premultiplied);
        image.fill(Qt::transparent);
        QPainter painter(&image);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setBrush(Qt::darkCyan);
        painter.drawEllipse(8, 8, 240, 240);
        painter.end();
        image.save(folder.filePath("sprite.png"));

        auto stage = std::make_shared<KWElement>("Stage");
        stage->setAttributes({{"stage", "1280x720"}, {"backdrop", "room"}});
        document.addElement(stage);
        std::mt19937 random(1);
        const auto add = [&random](KWElement& element, const char* name, float low, float high) {
            std::uniform_real_distribution<float> value(low, high);
            auto channel = std::make_shared<KWKeyFramedChannel>(name);
            for (int k = 0; k < keyCount; ++k)
                channel->setValueForKeyframe(value(random), KWTime(static_cast<float>(k) * 0.25F));
            channel->setRepeatMode(KWRepeatModePingPong);
            element.addChannelToGroupNamed(channel);
        };
        const QStringList shapes = KWSpriteContent::shapeNames();
        for (int k = 0; k < spriteCount; ++k) {
            auto sprite = std::make_shared<KWElement>("Sprite " + std::to_string(k));
            sprite->setAttributes(
                {{"content", hasPictures ? "file:sprite.png"
                                         : "shape:" + shapes[k % shapes.size()].toStdString()},
                 {"color", "#3070d0"},
                 {"width", "0.96"}});
            add(*sprite, "x", -6, 6);
            add(*sprite, "y", -3.2F, 3.2F);
            add(*sprite, "rotation", -3, 3);
            add(*sprite, "scale", 0.6F, 1.3F);
            add(*sprite, "opacity", 0.4F, 1);
            document.addElement(sprite);
        }
    }

    QTemporaryDir folder;
    KWDocument document;
};

void playScene(benchmark::State& state, bool hasPictures) {
    const Scene shown(hasPictures);
    KWEditScene scene(shown.document, shown.folder.path());
    scene.setThreadCount(static_cast<int>(state.range(0)));
    QImage image(1280, 720, QImage::Format_ARGB32_Premultiplied);
    int frame = 0;
    for (auto _ : state)
        scene.render(KWTime(static_cast<float>(frame++ % 600) / 60), image);
}

void ScenePictures(benchmark::State& state) {
    playScene(state, true);
}
void SceneShapes(benchmark::State& state) {
    playScene(state, false);
}
BENCHMARK(ScenePictures)->Arg(1)->Arg(2)->UseRealTime()->Unit(benchmark::kMillisecond);
BENCHMARK(SceneShapes)->Arg(1)->Arg(2)->UseRealTime()->Unit(benchmark::kMillisecond);

} // namespace
