#include <KWBase/KWConstantChannel.h>
#include <KWBase/KWKeyFramedChannel.h>

#include <apps/kwedit/KWEditScene.h>
#include <gtest/gtest.h>
#include <samples/Samples.h>
#include <tests/EditTestSupport.h>
#include <tests/MovieTestSupport.h>

#include <QPainter>
#include <QPainterPath>
#include <bit>
#include <cmath>
#include <numbers>
#include <random>

namespace {

std::shared_ptr<KWElement> stageElement(const char* size = "160x90", const char* scale = "20") {
    auto stage = std::make_shared<KWElement>("Stage");
    stage->setAttributes({{"stage", size}, {"scale", scale}});
    return stage;
}

void addConstant(KWElement& element, const char* name, float value, const char* group = "") {
    element.addChannelToGroupNamed(
        channelWithNameInitialValueColor<KWConstantChannel>(name, value, 0), group);
}

std::shared_ptr<KWElement> sprite(const char* content, const char* color = "#ff0000") {
    auto element = std::make_shared<KWElement>("Sprite");
    element->setAttributes({{"content", content}, {"color", color}});
    return element;
}

QImage frameOf(const std::vector<std::shared_ptr<KWElement>>& elements, float time = 0) {
    KWDocument document;
    for (const auto& element : elements)
        document.addElement(element);
    return KWEditScene(document, {}).frame(KWTime(time));
}

/// Sprites that all move, of plain shapes and of a picture.
struct RandomScene {
    explicit RandomScene(unsigned seed, const char* stage = "160x90", const char* scale = "20")
        : random(seed) {
        document.addElement(stageElement(stage, scale));
        QImage image(37, 23, QImage::Format_ARGB32);
        for (int y = 0; y < image.height(); ++y)
            for (int x = 0; x < image.width(); ++x)
                image.setPixel(x, y, qRgba(x * 6, y * 11, 128, x % 5 == 0 ? 90 : 255));
        image.save(folder.path("picture.png"));
        const auto shapes = QStringList{"rectangle", "ellipse", "triangle", "star"};
        for (int k = 0; k < 12; ++k) {
            auto element = sprite(k % 3 == 0 ? "file:picture.png"
                                             : ("shape:" + shapes[k % 4].toStdString()).c_str());
            element->setAttribute("width", "2");
            for (const auto& [name, group, low, high] :
                 {std::tuple{"x", "Position", -5.0F, 5.0F}, std::tuple{"y", "", -3.0F, 3.0F},
                  std::tuple{"Rotation", "Any", -4.0F, 4.0F}, std::tuple{"scale", "", 0.2F, 2.0F},
                  std::tuple{"X", "Scale", 0.5F, 2.0F}, std::tuple{"opacity", "", -0.1F, 1.1F}})
                addMoving(*element, name, group, low, high);
            document.addElement(element);
        }
    }
    void addMoving(KWElement& element, const char* name, const char* group, float low, float high) {
        std::uniform_real_distribution<float> value(low, high);
        auto channel = std::make_shared<KWKeyFramedChannel>(name);
        for (int k = 0; k <= 10; ++k)
            channel->setValueForKeyframe(value(random), KWTime(static_cast<float>(k)));
        element.addChannelToGroupNamed(channel, group);
    }

    std::mt19937 random;
    Folder folder;
    KWDocument document;
};

float valueAt(const KWElement& element, const char* name, float time, float otherwise) {
    for (const auto& channel : element.channelArray()->channelEnumerator())
        if (channel->name() == name)
            return channel->valueForTime(KWTime(time));
    return otherwise;
}

QPainterPath pathOf(const std::string& content) {
    QPainterPath path;
    if (content == "shape:ellipse")
        path.addEllipse(QRectF(0, 0, 1, 1));
    else if (content == "shape:triangle")
        path.addPolygon(QPolygonF({{0.5, 0}, {1, 1}, {0, 1}, {0.5, 0}}));
    else
        path.addRect(0, 0, 1, 1);
    return path;
}

/// What a scene of RandomScene's is, painted from its channels one by one, without any cache.
QImage modelFrame(const RandomScene& scene, float time, const std::vector<std::string>& only) {
    QImage frame(160, 90, QImage::Format_ARGB32_Premultiplied);
    frame.fill(Qt::transparent);
    QPainter painter(&frame);
    painter.setRenderHints(QPainter::Antialiasing | QPainter::SmoothPixmapTransform);
    for (const auto& each : scene.document.elements()) {
        const auto& element = dynamic_cast<const KWElement&>(*each.object);
        const std::string& content = element.attribute("content");
        if (std::find(only.begin(), only.end(), content) == only.end())
            continue;
        const double scale = static_cast<double>(valueAt(element, "scale", time, 1));
        QTransform t;
        t.translate(80, 45);
        t.scale(20, -20);
        t.translate(static_cast<double>(valueAt(element, "x", time, 0)),
                    static_cast<double>(valueAt(element, "y", time, 0)));
        t.rotate(static_cast<double>(valueAt(element, "Rotation", time, 0)) * 180 /
                 std::numbers::pi);
        t.scale(scale * static_cast<double>(valueAt(element, "X", time, 1)), scale);
        t.scale(2, -2);
        t.translate(-0.5, -0.5);
        painter.setTransform(t);
        painter.setOpacity(
            std::clamp(static_cast<double>(valueAt(element, "opacity", time, 1)), 0.0, 1.0));
        painter.fillPath(pathOf(content), Qt::red);
    }
    return frame;
}

int farthestApart(const QImage& a, const QImage& b) {
    int farthest = 0;
    for (int y = 0; y < a.height(); ++y)
        for (int k = 0; k < 4 * a.width(); ++k)
            farthest = std::max(farthest, std::abs(a.constScanLine(y)[k] - b.constScanLine(y)[k]));
    return farthest;
}

} // namespace

TEST(KWEditScene, ASpriteIsWhereItsChannelsPutIt) {
    auto square = sprite("shape:rectangle");
    addConstant(*square, "x", 2, "Position");
    addConstant(*square, "y", 1);
    const QImage frame = frameOf({stageElement(), square});
    EXPECT_EQ(frame.size(), QSize(160, 90));
    // A metre is 20 pixels, upwards, from the middle at (80, 45).
    EXPECT_EQ(frame.pixel(110, 15), 0xffff0000U);
    EXPECT_EQ(frame.pixel(129, 34), 0xffff0000U);
    EXPECT_EQ(frame.pixel(130, 25), 0U);
    EXPECT_EQ(frame.pixel(109, 25), 0U);
    EXPECT_EQ(frame.pixel(120, 14), 0U);
    EXPECT_EQ(frame.pixel(120, 35), 0U);
}

TEST(KWEditScene, RotationGoesAgainstTheClockAboutThePivot) {
    auto bar = sprite("shape:rectangle");
    bar->setAttribute("width", "1.5");
    bar->setAttribute("height", "0.4");
    bar->setAttribute("pivot", "0 0.5");
    addConstant(*bar, "rotation", std::numbers::pi_v<float> / 2);
    const QImage frame = frameOf({stageElement(), bar});
    EXPECT_EQ(frame.pixel(80, 5), 0U);
    EXPECT_EQ(frame.pixel(80, 20), 0xffff0000U);
    EXPECT_EQ(frame.pixel(80, 60), 0U);
    EXPECT_EQ(frame.pixel(100, 45), 0U);
}

TEST(KWEditScene, SquashKeepsTheFootAndTheArea) {
    auto ball = sprite("shape:rectangle");
    addConstant(*ball, "radius", 1);
    addConstant(*ball, "squash", 0.5F);
    const QImage frame = frameOf({stageElement(), ball});
    EXPECT_EQ(frame.pixel(80, 64), 0xffff0000U); // the foot stays at 65
    EXPECT_EQ(frame.pixel(80, 65), 0U);
    EXPECT_EQ(frame.pixel(80, 46), 0xffff0000U);
    EXPECT_EQ(frame.pixel(80, 43), 0U);
    EXPECT_EQ(frame.pixel(41, 60), 0xffff0000U);
    EXPECT_EQ(frame.pixel(118, 60), 0xffff0000U);
}

TEST(KWEditScene, OpacityAndColourComeFromChannels) {
    auto square = sprite("shape:rectangle");
    addConstant(*square, "opacity", 0.5F);
    addConstant(*square, "Red", 0, "Color");
    addConstant(*square, "green", 1, "Color");
    const QRgb pixel = frameOf({stageElement(), square}).pixel(80, 45);
    EXPECT_NEAR(qAlpha(pixel), 128, 1);
    EXPECT_EQ(qRed(pixel), 0);
    EXPECT_NEAR(qGreen(pixel), 128, 1); // premultiplied
}

TEST(KWEditScene, ElementsWithoutContentShowNothing) {
    EXPECT_EQ(frameOf({stageElement(), std::make_shared<KWElement>("Plain")}).pixel(80, 45), 0U);
    KWDocument document = lightShow();
    EXPECT_EQ(KWEditScene(document, {}).spriteCount(), 0U);
}

void expectAsPainted(const std::vector<std::string>& only, int tolerance) {
    RandomScene scene(3);
    KWDocument shown;
    shown.addElement(stageElement());
    for (const auto& each : scene.document.elements())
        if (auto element = std::dynamic_pointer_cast<KWElement>(each.object))
            if (std::find(only.begin(), only.end(), element->attribute("content")) != only.end())
                shown.addElement(element);
    KWEditScene drawn(shown, scene.folder.path());
    ASSERT_GT(drawn.spriteCount(), 1U);
    std::uniform_real_distribution<float> times(-1, 11);
    for (int k = 0; k < 60; ++k) {
        const float time = times(scene.random);
        ASSERT_LE(farthestApart(drawn.frame(KWTime(time)), modelFrame(scene, time, only)),
                  tolerance)
            << time;
    }
}

TEST(KWEditScene, RandomTimesAreAsAPlainPainterPaintsThem) {
    // Both reckon in double with roundings of their own; an edge moves by less than 1 of 255.
    expectAsPainted({"shape:rectangle", "shape:triangle"}, 2);
    // The scene's lines are within 0.004 pixels of the circle, the painter's own within a 32nd:
    // what an edge moves by, in 255 parts, where it lies along a pixel.
    expectAsPainted({"shape:ellipse"}, 8);
}

TEST(KWEditScene, NeitherFramesBeforeNorThreadsChangeABit) {
    RandomScene scene(5, "640x400", "80"); // several bands
    KWEditScene kept(scene.document, scene.folder.path());
    KWEditScene threaded(scene.document, scene.folder.path());
    threaded.setThreadCount(3);
    std::uniform_real_distribution<float> times(-1, 11);
    for (int k = 0; k < 20; ++k) {
        const KWTime time(times(scene.random));
        const QImage fresh = KWEditScene(scene.document, scene.folder.path()).frame(time);
        ASSERT_EQ(kept.frame(time), fresh) << time.time();
        ASSERT_EQ(threaded.frame(time), fresh) << time.time();
    }
    EXPECT_TRUE(kept.problems().isEmpty());
}

TEST(KWEditScene, EditsOfKeysShowInTheNextFrame) {
    RandomScene scene(7);
    KWEditScene kept(scene.document, scene.folder.path());
    kept.frame(KWTime(5));
    for (const auto& place : scene.document.channels())
        if (place.channel->name() == "x")
            place.channel->setValueForTime(0.5F, KWTime(5));
    EXPECT_EQ(kept.frame(KWTime(5)),
              KWEditScene(scene.document, scene.folder.path()).frame(KWTime(5)));
}

TEST(KWEditScene, MissingContentIsAPlaceholderAndNamedOnce) {
    KWDocument document;
    document.addElement(stageElement());
    document.addElement(sprite("file:none.png"));
    document.addElement(sprite("file:none.png"));
    KWEditScene scene(document, "/nowhere");
    EXPECT_NE(scene.frame(KWTime(0)).pixel(80, 38), 0U);
    scene.frame(KWTime(1));
    EXPECT_EQ(scene.problems(), QStringList{"none.png: there is no such file"});
}

TEST(KWEditScene, PlacesThatAreNotFiniteOrFarAreLeftOut) {
    for (const float value : {NAN, HUGE_VALF, 1e30F, -1e12F}) {
        for (const char* name :
             {"x", "scale", "rotation", "squash", "shear", "radius", "opacity"}) {
            auto square = sprite("shape:ball");
            addConstant(*square, name, value);
            const QImage frame = frameOf({stageElement(), square});
            EXPECT_EQ(frame.size(), QSize(160, 90)) << name;
        }
    }
}

TEST(KWEditScene, ASpriteIsFoundUnderAPoint) {
    auto back = sprite("shape:rectangle"), front = sprite("shape:rectangle");
    back->setAttribute("width", "4");
    KWDocument document;
    document.addElement(stageElement());
    document.addElement(back);
    document.addElement(front);
    KWEditScene scene(document, {});
    scene.frame(KWTime(0));
    EXPECT_EQ(scene.spriteAt({80, 45}), 1U);
    EXPECT_EQ(scene.spriteAt({100, 45}), 0U);
    EXPECT_EQ(scene.spriteAt({130, 45}), std::nullopt);
    EXPECT_EQ(scene.element(1), front);
}

TEST(KWEditScene, ContentAndStageComeBackFromTheirAttributes) {
    KWSpriteContent content;
    content.kind = KWSpriteContent::Kind::file;
    content.file = "a b.png";
    content.width = 0.1;
    content.color = QColor(1, 2, 3, 4);
    content.color2 = QColor(5, 6, 7);
    content.pivot = {0.25, 1};
    content.shadow = 0.5;
    content.blend = QPainter::CompositionMode_Screen;
    content.isLooping = false;
    KWElement element;
    element.setAttribute("note", "kept");
    element.setAttributes(content.appliedTo(element));
    EXPECT_EQ(KWSpriteContent::of(element), content);
    EXPECT_EQ(element.attribute("note"), "kept");
    KWStage stage;
    stage.size = {320, 200};
    stage.rate = 29.97;
    stage.from = -1.5;
    stage.to = 2.25;
    stage.backdrop = KWStage::Backdrop::room;
    KWElement other;
    other.setAttributes(stage.appliedTo(other));
    EXPECT_EQ(KWStage::of(&other), stage);
    other.setAttribute("rate", "fast");
    EXPECT_EQ(KWStage::of(&other).rate, 25);
    for (const char* text : {"", "x", "12x", "x12", "0x5", "-1x5", "12x5 ", "99999x1"})
        EXPECT_FALSE(kwSizeFromText(text)) << text;
}

TEST(KWEditScene, TheBouncingBallTouchesTheFloorWhereItsKeysSay) {
    const KWDocument document = bouncingBall();
    KWEditScene scene(document, {});
    ASSERT_EQ(scene.spriteCount(), 1U);
    scene.frame(KWTime(0.6207F));
    const double ground = scene.stageTransform().map(QPointF(0, 0)).y();
    double lowest = 0;
    const QTransform toPixels = scene.stageTransform();
    for (const QPointF& corner : scene.outline(0))
        lowest = std::max(lowest, corner.y());
    // The ball's box stands on a corner as it turns: its middle is what touches.
    EXPECT_LT(scene.outline(0).boundingRect().center().y(), ground);
    EXPECT_NEAR(ground - scene.outline(0).boundingRect().center().y(), 0.11 * 0.72 * toPixels.m11(),
                0.5);
    EXPECT_GT(lowest, 0);
}

TEST(KWEditScene, APartOfALargerFrameIsThatPartOfIt) {
    const RandomScene scene(5);
    KWEditScene whole(scene.document, scene.folder.path());
    KWEditScene part(scene.document, scene.folder.path());
    QImage all(160, 90, QImage::Format_ARGB32_Premultiplied);
    part.render(KWTime(3), all, QRectF(0, 0, 160, 90));
    const QImage expected = whole.frame(KWTime(3));
    EXPECT_EQ(all, expected);
    EXPECT_EQ(part.spriteAt({80, 45}), whole.spriteAt({80, 45}));
    // 50 x 30 pixels of it, and some of what is around.
    QImage piece(70, 30, QImage::Format_ARGB32_Premultiplied);
    part.render(KWTime(3), piece, QRectF(-110, -40, 160, 90));
    // Pictures are sampled at 256 places between two pixels, counted from where the painter begins.
    EXPECT_LE(farthestApart(piece.copy(0, 0, 50, 30), expected.copy(110, 40, 50, 30)), 5);
    for (int y = 0; y < 30; ++y)
        for (int x = 50; x < 70; ++x)
            ASSERT_EQ(piece.pixel(x, y), 0U);
    part.render(KWTime(3), piece, QRectF());
    for (int y = 0; y < 30; ++y)
        for (int x = 0; x < 70; ++x)
            ASSERT_EQ(piece.pixel(x, y), 0U);
}

namespace {

/// A stage as large as a numbered movie, which is all that it shows.
struct MovieScene {
    MovieScene() {
        movie->setAttributes(
            {{"content", "file:" + movies.makeNumbered("film.mp4", h264, 50).toStdString()}});
        document.addElement(stageElement("64x48", "100"));
        document.addElement(movie);
    }
    int numberAt(float time) {
        if (!scene)
            scene = std::make_unique<KWEditScene>(document, QString());
        return numberIn(scene->frame(KWTime(time)));
    }

    MovieFolder movies;
    KWDocument document;
    std::shared_ptr<KWElement> movie = std::make_shared<KWElement>("Movie");
    std::unique_ptr<KWEditScene> scene;
};

} // namespace

TEST(KWEditScene, AMovieShowsTheFrameOfTheTime) {
    MovieScene it;
    for (int frame = 0; frame < 50; ++frame)
        ASSERT_EQ(it.numberAt(static_cast<float>(frame) / 25), frame);
    for (const int frame : {49, 3, 26, 25, 0, 48, 1})
        ASSERT_EQ(it.numberAt(static_cast<float>(frame) / 25 + 0.03F), frame);
}

TEST(KWEditScene, AMovieBeginsAgainAtItsEndOrStandsStill) {
    MovieScene it;
    EXPECT_EQ(it.numberAt(2.0F + 7.0F / 25 + 0.02F), 7);
    EXPECT_EQ(it.numberAt(20 + 49.0F / 25 + 0.02F), 49);
    EXPECT_EQ(it.numberAt(-1.0F / 25 + 0.02F), 49);
    it.movie->setAttribute("loop", "no");
    it.scene->refresh();
    EXPECT_EQ(it.numberAt(2.5F), 49);
    EXPECT_EQ(it.numberAt(300), 49);
    EXPECT_EQ(it.numberAt(-5), 0);
    EXPECT_EQ(it.numberAt(1), 25);
}

TEST(KWEditScene, AMoviesTimeIsAChannelsWhereThereIsOne) {
    MovieScene it;
    auto time = std::make_shared<KWKeyFramedChannel>("movie time");
    time->setKeyFrameChannelMode(KWKeyFrameModeLinear);
    time->setValueForKeyframe(1.99F, KWTime(0));
    time->setValueForKeyframe(-0.01F, KWTime(4));
    it.movie->addChannelToGroupNamed(time);
    // Backwards, at half the speed.
    EXPECT_EQ(it.numberAt(0), 49);
    EXPECT_EQ(it.numberAt(2), 24);
    EXPECT_EQ(it.numberAt(3.9F), 1);
}

TEST(KWEditScene, SeveralThreadsAndHistoriesShowTheSameMovieFrame) {
    MovieScene it;
    it.movie->setAttribute("height", "3");
    KWEditScene other(it.document, {});
    other.setThreadCount(3);
    other.frame(KWTime(1.7F), {640, 480});
    EXPECT_EQ(other.frame(KWTime(0.5F), {640, 480}),
              KWEditScene(it.document, {}).frame(KWTime(0.5F), {640, 480}));
}
