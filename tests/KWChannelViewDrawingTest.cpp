#include "ViewDrawingSupport.h"
#include "ViewTestSupport.h"

#include <KWBase/KWChannelView.h>
#include <KWBase/KWConstantChannel.h>
#include <KWBase/KWUnitController.h>

#include <gtest/gtest.h>

#include <QApplication>
#include <QFontMetricsF>
#include <QGuiApplication>
#include <QImage>
#include <QMouseEvent>
#include <QPainter>
#include <cmath>
#include <functional>
#include <limits>
#include <memory>
#include <random>
#include <stdexcept>

namespace {

constexpr float infinity = std::numeric_limits<float>::infinity();
constexpr float notANumber = std::numeric_limits<float>::quiet_NaN();

/// Fails in the middle of a drawing when it is told to.
class FailingView : public KWChannelView {
  public:
    bool fails = false;

  protected:
    void drawPointCoords(QPainter& painter) override {
        if (fails)
            throw std::runtime_error("no coordinates");
        KWChannelView::drawPointCoords(painter);
    }
};

void sendMouse(QWidget& widget, QEvent::Type type, const QPointF& position) {
    const bool isUp = type == QEvent::MouseButtonRelease;
    QMouseEvent event(type, position, widget.mapToGlobal(position),
                      type == QEvent::MouseMove ? Qt::NoButton : Qt::LeftButton,
                      isUp ? Qt::NoButton : Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(&widget, &event);
}

class Delegate final : public KWChannelViewDelegate {
  public:
    ~Delegate() override { resign(); }
    std::optional<QColor> colorForChannel(const std::shared_ptr<KWChannel>& channel) override {
        return answer ? answer(channel) : std::nullopt;
    }
    std::function<std::optional<QColor>(const std::shared_ptr<KWChannel>&)> answer;
};

QImage pictureOf(KWChannelView& view, int scale = 1, int width = 500, int height = 200) {
    QImage image(width * scale, height * scale, QImage::Format_RGB32);
    image.fill(Qt::magenta);
    image.setDevicePixelRatio(scale);
    QPainter painter(&image);
    view.drawInto(painter, QRectF(0, 0, width, height));
    return image;
}

std::shared_ptr<KWKeyFramedChannel> ramp() {
    auto channel = std::make_shared<KWKeyFramedChannel>("ramp");
    channel->setChannelColorIndex(1);
    channel->setKeyFrameChannelMode(KWKeyFrameModeLinear);
    channel->setValueForKeyframe(-1, KWTime(1));
    channel->setValueForKeyframe(1, KWTime(9));
    return channel;
}

/// Raises in the middle of the fresh view's times.
class RaisingChannel : public KWChannel {
  public:
    float valueForTime(std::optional<KWTime> time) const override {
        if (time->time() > 4 && time->time() < 6)
            throw std::runtime_error("no value here");
        return 1;
    }
};

class KWChannelViewDrawingTest : public testing::Test {
  protected:
    FailingView view;
};

} // namespace

// --- A pass.

TEST_F(KWChannelViewDrawingTest, LayersComeInTheirOrder) {
    const auto channel = ramp();
    view.setPrimaryChannel(channel);
    view.addSecondaryChannel(std::make_shared<KWConstantChannel>("constant"));
    view.setShowsGrid(true);
    view.setShowsLegend(true);
    view.setShowsPointCoordinates(true);
    std::vector<std::string> layers;
    const auto add = [&](const char* layer) {
        if (layers.empty() || layers.back() != layer)
            layers.emplace_back(layer);
    };
    for (const Drawn& one : drawnBy(view)) {
        if (one.kind == Drawn::fill)
            add(one.brush == view.backgroundColor() ? "background"
                : one.brush == gray                 ? "frame"
                                                    : "keys");
        else if (one.kind == Drawn::line)
            add(one.stroke == gridColor                 ? "grid"
                : one.stroke == rgb(0.7, 0.7, 1.0, 0.5) ? "zero"
                : one.stroke == rgb(0.3, 0.5, 0.7)      ? "time"
                                                        : "other");
        else if (one.kind == Drawn::curve)
            add(one.width == 2.5 ? "primary" : "secondary");
        else if (one.kind == Drawn::text)
            add(one.string.contains(QLatin1Char(':')) ? "coordinates" : "grid");
        else
            add("other");
    }
    EXPECT_EQ(layers, (std::vector<std::string>{"background", "grid", "zero", "time", "secondary",
                                                "primary", "keys", "coordinates", "frame"}));
}

TEST_F(KWChannelViewDrawingTest, AFreshViewDrawsBackgroundTimeLineAndFrame) {
    const auto drawn = drawnBy(view);
    ASSERT_EQ(drawn.size(), 6u);
    EXPECT_EQ(drawn[0].kind, Drawn::fill);
    EXPECT_EQ(drawn[0].bounds(), QRectF(0, 0, 500, 200));
    EXPECT_EQ(drawn[0].brush, rgb(0.1, 0, 0.3));
    EXPECT_EQ(drawn[1].kind, Drawn::line);
    for (std::size_t i = 2; i < 6; ++i)
        EXPECT_EQ(drawn[i].brush, gray);
    EXPECT_EQ(drawn[2].bounds(), QRectF(0, 0, 500, 1));
    EXPECT_EQ(drawn[3].bounds(), QRectF(0, 199, 500, 1));
    EXPECT_EQ(drawn[4].bounds(), QRectF(0, 1, 1, 198));
    EXPECT_EQ(drawn[5].bounds(), QRectF(499, 1, 1, 198));
}

TEST_F(KWChannelViewDrawingTest, TheKeyCellsColorsAreSetBeforeEachPass) {
    KWKeyCell::setBorderColor(Qt::green);
    KWKeyCell::setInteriorColor(Qt::green);
    KWKeyCell::setSelectedInteriorColor(Qt::green);
    drawnBy(view);
    EXPECT_EQ(KWKeyCell::borderColor(), rgb(1, 1, 1));
    EXPECT_EQ(KWKeyCell::interiorColor(), rgb(0, 0, 0));
    EXPECT_EQ(KWKeyCell::selectedInteriorColor(), rgb(0.7, 0, 0));
}

TEST_F(KWChannelViewDrawingTest, WithoutAPrimaryChannelTheRestIsDrawn) {
    view.setShowsGrid(true);
    view.addSecondaryChannel(ramp());
    const auto drawn = drawnBy(view);
    EXPECT_EQ(only(Drawn::curve, drawn).size(), 1u);
    EXPECT_EQ(only(Drawn::curve, drawn)[0].width, 1.5);
    EXPECT_FALSE(linesInColor(gridColor, drawn).empty());
    EXPECT_EQ(only(Drawn::fill, drawn).size(), 5u);
}

// --- The time line.

TEST_F(KWChannelViewDrawingTest, TheTimeLineStandsOnHalfPoints) {
    view.setCurrentTime(3.3334f);
    auto lines = linesInColor(rgb(0.3, 0.5, 0.7), drawnBy(view));
    ASSERT_EQ(lines.size(), 1u);
    EXPECT_EQ(lines[0].width, 1);
    EXPECT_EQ(lines[0].points[0], QPointF(166.5, 0.5));
    EXPECT_EQ(lines[0].points[1], QPointF(166.5, 200.5));
    view.setCurrentTime(-1);
    lines = linesInColor(rgb(0.3, 0.5, 0.7), drawnBy(view));
    ASSERT_EQ(lines.size(), 1u);
    EXPECT_EQ(lines[0].points[0].x(), -49.5);
}

TEST_F(KWChannelViewDrawingTest, ATimeThatIsNowhereHasNoLine) {
    for (const float time : {infinity, -infinity, notANumber, 1e30f}) {
        view.setCurrentTime(time);
        EXPECT_TRUE(linesInColor(rgb(0.3, 0.5, 0.7), drawnBy(view)).empty()) << time;
    }
}

// --- Curves.

TEST_F(KWChannelViewDrawingTest, ACurveIsSampledAtEvenStepsInTheUsersUnit) {
    const auto channel = ramp();
    channel->setUnitType(KWUnitTypeAngle);
    view.setPrimaryChannel(channel);
    view.setDisplayedBounds({0.3f, -70, 9.1f, 133});
    view.setStepCount(37);
    const auto curves = only(Drawn::curve, drawnBy(view, 411, 203));
    ASSERT_EQ(curves.size(), 1u);
    ASSERT_EQ(curves[0].points.size(), 38);
    const KWChannelViewGeometry geometry{view.plotGeometry().range, {0, 411, 0, 203}};
    const float span = geometry.range.hMax - geometry.range.hMin;
    for (int i = 0; i <= 37; ++i) {
        const float t = geometry.range.hMin + span * static_cast<float>(i) / 37.0f;
        const float x = 0 + 411.0f * static_cast<float>(i) / 37.0f;
        const float y = geometry.yForValue(channel->valueInUserUnitForTime(KWTime(t)));
        EXPECT_EQ(curves[0].points[i].x(), static_cast<double>(x)) << i;
        // The turn of the painter costs some digits of a double.
        EXPECT_NEAR(curves[0].points[i].y(), static_cast<double>(y), 1e-10) << i;
    }
}

TEST_F(KWChannelViewDrawingTest, ByDefaultACurveHasAHundredSteps) {
    view.setPrimaryChannel(ramp());
    EXPECT_EQ(only(Drawn::curve, drawnBy(view))[0].points.size(), 101);
}

TEST_F(KWChannelViewDrawingTest, ThePrimaryCurveIsThickInItsChannelsColor) {
    const auto channel = ramp();
    channel->setChannelColorIndex(2);
    view.setPrimaryChannel(channel);
    const auto curves = only(Drawn::curve, drawnBy(view));
    ASSERT_EQ(curves.size(), 1u);
    EXPECT_EQ(curves[0].width, 2.5);
    EXPECT_EQ(curves[0].stroke, rgb(0, 1, 1));
    EXPECT_FALSE(curves[0].brush.isValid());
}

TEST_F(KWChannelViewDrawingTest, SecondaryCurvesAreThinAndTranslucentInTheOrderOfTheirAdding) {
    for (const float value : {-1.0f, 1.0f, 0.0f})
        view.addSecondaryChannel(
            channelWithNameInitialValueColor<KWConstantChannel>("constant", value, 0));
    const auto curves = only(Drawn::curve, drawnBy(view));
    ASSERT_EQ(curves.size(), 3u);
    for (const Drawn& curve : curves) {
        EXPECT_EQ(curve.width, 1.5);
        EXPECT_EQ(curve.stroke, rgb(0.3, 0.1, 0.5, 0.5));
    }
    EXPECT_EQ(curves[0].points[0].y(), 50);
    EXPECT_EQ(curves[1].points[0].y(), 150);
    EXPECT_EQ(curves[2].points[0].y(), 100);
}

TEST_F(KWChannelViewDrawingTest, TheDelegateColorsSecondaryCurves) {
    const auto red = ramp();
    const auto undecided = ramp();
    const auto invalid = ramp();
    Delegate delegate;
    delegate.answer = [&](const std::shared_ptr<KWChannel>& channel) -> std::optional<QColor> {
        if (channel == red)
            return QColor::fromHsvF(0, 1, 1, 0.25f);
        if (channel == undecided)
            return std::nullopt;
        return QColor();
    };
    view.setDelegate(&delegate);
    for (const auto& channel : {red, undecided, invalid})
        view.addSecondaryChannel(channel);
    const auto curves = only(Drawn::curve, drawnBy(view));
    ASSERT_EQ(curves.size(), 3u);
    EXPECT_EQ(curves[0].stroke, rgb(1, 0, 0, 0.5));
    EXPECT_EQ(curves[1].stroke, rgb(0.3, 0.1, 0.5, 0.5));
    EXPECT_EQ(curves[2].stroke, rgb(0.3, 0.1, 0.5, 0.5));
}

TEST_F(KWChannelViewDrawingTest, ADelegateMayGoOrEmptyTheListWhileItIsAsked) {
    auto delegate = std::make_unique<Delegate>();
    delegate->answer = [&](const std::shared_ptr<KWChannel>&) -> std::optional<QColor> {
        view.removeAllSecondaryChannels();
        view.setDelegate(nullptr);
        return Qt::red;
    };
    view.setDelegate(delegate.get());
    view.addSecondaryChannel(ramp());
    view.addSecondaryChannel(ramp());
    EXPECT_EQ(only(Drawn::curve, drawnBy(view)).size(), 2u);
    EXPECT_TRUE(only(Drawn::curve, drawnBy(view)).empty());
}

TEST_F(KWChannelViewDrawingTest, ASecondaryChannelThatIsAlsoThePrimaryOneIsDrawnTwice) {
    const auto channel = ramp();
    view.setPrimaryChannel(channel);
    view.addSecondaryChannel(channel);
    const auto curves = only(Drawn::curve, drawnBy(view));
    ASSERT_EQ(curves.size(), 2u);
    EXPECT_EQ(curves[0].width, 1.5);
    EXPECT_EQ(curves[1].width, 2.5);
    EXPECT_EQ(curves[0].points, curves[1].points);
}

TEST_F(KWChannelViewDrawingTest, AConstantChannelHasACurveAndNoHandles) {
    view.setPrimaryChannel(std::make_shared<KWConstantChannel>("constant"));
    const auto drawn = drawnBy(view);
    EXPECT_EQ(only(Drawn::curve, drawn).size(), 1u);
    EXPECT_EQ(only(Drawn::fill, drawn).size(), 5u);
}

TEST_F(KWChannelViewDrawingTest, AnEvaluationThatRaisesMakesAGap) {
    view.setPrimaryChannel(std::make_shared<RaisingChannel>());
    const auto curves = only(Drawn::curve, drawnBy(view));
    ASSERT_EQ(curves.size(), 2u);
    EXPECT_EQ(curves[0].bounds().left(), 0);
    EXPECT_EQ(curves[0].bounds().right(), 200);
    EXPECT_EQ(curves[1].bounds().left(), 300);
    EXPECT_EQ(curves[1].bounds().right(), 500);
}

TEST_F(KWChannelViewDrawingTest, ValuesThatAreNotFiniteMakeAGap) {
    const auto channel = ramp();
    channel->setKeyFrameChannelMode(KWKeyFrameModeStep);
    for (const float value : {notANumber, infinity, -infinity}) {
        channel->setValueForKeyframe(value, KWTime(4));
        channel->setValueForKeyframe(1, KWTime(6));
        view.setPrimaryChannel(channel);
        EXPECT_EQ(only(Drawn::curve, drawnBy(view)).size(), 2u) << value;
    }
}

// --- Coordinates.

TEST_F(KWChannelViewDrawingTest, CoordinatesStandRightOfAndBelowTheirPoint) {
    view.setShowsPointCoordinates(true);
    view.setPrimaryChannel(ramp());
    view.setPointTimeValue(2.5f, 0.25f);
    const auto texts = only(Drawn::text, drawnBy(view));
    ASSERT_EQ(texts.size(), 2u);
    EXPECT_EQ(texts[0].string, QLatin1String("Time: 2.5"));
    EXPECT_EQ(texts[1].string, QLatin1String("Value: 0.25"));
    QFont font = QGuiApplication::font();
    font.setPixelSize(12);
    const QFontMetricsF metrics(font);
    const double textHeight = metrics.height() + metrics.lineSpacing();
    for (const Drawn& text : texts) {
        EXPECT_EQ(text.stroke, gray);
        EXPECT_EQ(text.points[0].x(), 141);
    }
    EXPECT_NEAR(texts[1].points[0].y(), 112.5 - 16 - textHeight, 1);
    EXPECT_NEAR(texts[0].points[0].y() - texts[1].points[0].y(), metrics.lineSpacing(), 0.01);
}

TEST_F(KWChannelViewDrawingTest, TheShownValueIsConvertedAndItsPlaceIsNot) {
    const auto channel = ramp();
    channel->setUnitType(KWUnitTypeLength);
    KWUnitController& units = KWUnitController::sharedUnitController();
    units.setDefaultLengthUnit(KWLengthUnitCentimeter);
    view.setShowsPointCoordinates(true);
    view.setPrimaryChannel(channel);
    view.setPointTimeValue(2.5f, 1.5f);
    const auto converted = only(Drawn::text, drawnBy(view));
    units.setDefaultLengthUnit(KWLengthUnitMeter);
    const auto plain = only(Drawn::text, drawnBy(view));
    ASSERT_EQ(converted.size(), 2u);
    EXPECT_EQ(converted[1].string, QLatin1String("Value: 150"));
    EXPECT_EQ(plain[1].string, QLatin1String("Value: 1.5"));
    EXPECT_EQ(converted[1].points, plain[1].points);
}

TEST_F(KWChannelViewDrawingTest, WithoutAChannelTheShownValueIsZero) {
    view.setShowsPointCoordinates(true);
    view.setPointTimeValue(1234567, 5);
    const auto texts = only(Drawn::text, drawnBy(view));
    ASSERT_EQ(texts.size(), 2u);
    EXPECT_EQ(texts[0].string, QLatin1String("Time: 1.23457e+06"));
    EXPECT_EQ(texts[1].string, QLatin1String("Value: 0"));
}

TEST_F(KWChannelViewDrawingTest, CoordinatesStayWholeInsideTheView) {
    view.setShowsPointCoordinates(true);
    view.setPrimaryChannel(ramp());
    QFont font = QGuiApplication::font();
    font.setPixelSize(12);
    const QFontMetricsF metrics(font);
    view.setPointTimeValue(9.9f, 1.9f);
    auto texts = only(Drawn::text, drawnBy(view));
    ASSERT_EQ(texts.size(), 2u);
    for (const Drawn& text : texts)
        EXPECT_LE(text.points[0].x() + metrics.horizontalAdvance(text.string), 500.01);
    EXPECT_LE(texts[0].points[0].y() + metrics.height(), 200.01);
    view.setPointTimeValue(-5, -5);
    texts = only(Drawn::text, drawnBy(view));
    EXPECT_EQ(texts[1].points[0].x(), 2);
    EXPECT_NEAR(texts[1].points[0].y(), 2, 1);
}

// --- The rubber band.

TEST_F(KWChannelViewDrawingTest, ARubberBandIsFilledAndHasAThinEdge) {
    view.resize(500, 200);
    sendMouse(view, QEvent::MouseButtonPress, {100, 150});
    sendMouse(view, QEvent::MouseMove, {300, 40});
    const auto bands = only(Drawn::rectangle, drawnBy(view));
    ASSERT_EQ(bands.size(), 1u);
    EXPECT_EQ(bands[0].brush, rgb(0.7, 0.7, 0.9, 0.2));
    EXPECT_EQ(bands[0].stroke, rgb(0.9, 0.9, 1.0));
    EXPECT_EQ(bands[0].width, 0.5);
    sendMouse(view, QEvent::MouseButtonRelease, {300, 40});
    EXPECT_TRUE(only(Drawn::rectangle, drawnBy(view)).empty());
}

TEST_F(KWChannelViewDrawingTest, ARubberBandLiesWhereItIsDraggedOverAllButTheFrame) {
    view.resize(500, 200);
    view.setPrimaryChannel(ramp());
    view.setShowsPointCoordinates(true);
    const QPointF press(250, 120);
    struct Drag {
        QPointF to;
        QRectF band;
    };
    // From the upper left, y downwards, to the lower left, y upwards.
    const Drag drags[] = {{{300, 40}, {250, 80, 50, 80}},       {{200, 40}, {200, 80, 50, 80}},
                          {{200, 180}, {200, 20, 50, 60}},      {{300, 180}, {250, 20, 50, 60}},
                          {{300, 120}, {250, 80, 50, 0}},       {{200, 120}, {200, 80, 50, 0}},
                          {{250, 40}, {250, 80, 0, 80}},        {{250, 180}, {250, 20, 0, 60}},
                          {{9000, -9000}, {250, 80, 259, 129}}, {{-9000, 9000}, {-9, -9, 259, 89}},
                          {{250, -9000}, {250, 80, 0, 129}}};
    for (const Drag& drag : drags) {
        sendMouse(view, QEvent::MouseButtonPress, press);
        sendMouse(view, QEvent::MouseMove, drag.to);
        const auto drawn = drawnBy(view);
        const auto isBand = [](const Drawn& one) { return one.kind == Drawn::rectangle; };
        const auto band = std::find_if(drawn.begin(), drawn.end(), isBand);
        ASSERT_NE(band, drawn.end());
        EXPECT_EQ(band->bounds(), drag.band);
        // Behind it come the four edges of the frame.
        EXPECT_EQ(drawn.end() - band, 5);
        for (auto after = band + 1; after != drawn.end(); ++after)
            EXPECT_EQ(after->brush, gray);
        sendMouse(view, QEvent::MouseButtonRelease, drag.to);
    }
}

TEST_F(KWChannelViewDrawingTest, ARubberBandWithoutWidthOrHeightIsSeenAsItsEdge) {
    for (const QPointF& to : {QPointF(300, 120), QPointF(200, 120), QPointF(250, 40)}) {
        const QImage before = pictureOf(view);
        view.resize(500, 200);
        sendMouse(view, QEvent::MouseButtonPress, {250, 120});
        sendMouse(view, QEvent::MouseMove, to);
        const QImage after = pictureOf(view);
        const QPoint middle = ((QPointF(250, 120) + to) / 2).toPoint();
        EXPECT_NE(after.pixel(middle), before.pixel(middle));
        EXPECT_EQ(after.pixel(middle + QPoint(5, 5)), before.pixel(middle + QPoint(5, 5)));
        sendMouse(view, QEvent::MouseButtonRelease, to);
    }
}

// --- What is thrown in the middle.

TEST_F(KWChannelViewDrawingTest, ADelegateThatThrowsIsLoggedAndTheUsualColorTaken) {
    Delegate delegate;
    const auto second = ramp();
    delegate.answer = [&](const std::shared_ptr<KWChannel>& channel) -> std::optional<QColor> {
        if (channel == second)
            return Qt::red;
        throw std::runtime_error("no colour");
    };
    view.setDelegate(&delegate);
    view.addSecondaryChannel(ramp());
    view.addSecondaryChannel(second);
    LogLines log;
    const auto curves = only(Drawn::curve, drawnBy(view));
    ASSERT_EQ(curves.size(), 2u);
    EXPECT_EQ(curves[0].stroke, rgb(0.3, 0.1, 0.5, 0.5));
    EXPECT_EQ(curves[1].stroke, rgb(1, 0, 0, 0.5));
    view.grab();
    EXPECT_EQ(log.lines,
              std::vector<std::string>(
                  2, "The delegate of a curve view has thrown when asked for a colour: no colour"));
}

TEST_F(KWChannelViewDrawingTest, ADrawingThatFailsLeavesViewAndPainterAsTheyWere) {
    view.setPrimaryChannel(ramp());
    view.resize(500, 200);
    view.grab();
    view.setShowsPointCoordinates(true);
    view.fails = true;
    QImage image(90, 50, QImage::Format_RGB32);
    QPainter painter(&image);
    painter.setPen(Qt::blue);
    EXPECT_THROW(view.drawInto(painter, QRectF(10, 10, 50, 30)), std::runtime_error);
    EXPECT_EQ(painter.pen().color(), QColor(Qt::blue));
    EXPECT_TRUE(painter.transform().isIdentity());
    EXPECT_FALSE(painter.hasClipping());
    EXPECT_EQ(view.plotGeometry().plot, (KWPlotRect{0, 500, 0, 200}));
    ASSERT_EQ(view.keyCells().size(), 2u);
    EXPECT_EQ(view.keyCells()[0].controlPointFrame(), QRectF(46.5, 46.5, 7, 7));
}

TEST_F(KWChannelViewDrawingTest, APassThatFailsIsLogged) {
    view.resize(500, 200);
    view.setShowsPointCoordinates(true);
    view.fails = true;
    LogLines log;
    view.grab();
    EXPECT_EQ(log.lines,
              std::vector<std::string>{"A drawing of a curve view has failed: no coordinates"});
    view.fails = false;
    view.grab();
    EXPECT_EQ(log.lines.size(), 1u);
}

// --- Pixels.

TEST_F(KWChannelViewDrawingTest, PixelsAreWhereTheyBelongAtScaleOneAndTwo) {
    auto channel = std::make_shared<KWKeyFramedChannel>("curve");
    channel->setChannelColorIndex(1);
    channel->setValueForKeyframe(1, KWTime(2));
    view.setPrimaryChannel(channel);
    view.setCurrentTime(5);
    for (const int scale : {1, 2}) {
        SCOPED_TRACE(scale);
        const QImage image = pictureOf(view, scale);
        const auto at = [&](double x, double y) { // points, y upwards
            return image.pixelColor(static_cast<int>(x * scale),
                                    static_cast<int>((200 - y) * scale));
        };
        EXPECT_EQ(at(0.5, 100.5).name(), gray.name());
        EXPECT_EQ(at(499.5, 100.5).name(), gray.name());
        EXPECT_EQ(at(250.2, 199.5).name(), gray.name());
        EXPECT_EQ(at(1.5, 50.5).name(), view.backgroundColor().name());
        EXPECT_EQ(at(250.5, 50.5).name(), rgb(0.3, 0.5, 0.7).name());
        EXPECT_EQ(at(249.4, 50.5).name(), view.backgroundColor().name());
        EXPECT_EQ(at(251.1, 50.5).name(), view.backgroundColor().name());
        EXPECT_EQ(at(400.5, 150.4).name(), QColor(Qt::yellow).name());
        EXPECT_EQ(at(400.5, 149.6).name(), QColor(Qt::yellow).name());
        EXPECT_EQ(at(400.5, 152.1).name(), view.backgroundColor().name());
        EXPECT_EQ(at(100.5, 150.5).name(), QColor(Qt::black).name());
        EXPECT_EQ(at(98.1, 148.1).name(), QColor(Qt::black).name());
    }
}

TEST_F(KWChannelViewDrawingTest, TheWidgetShowsWhatIsDrawnIntoAPicture) {
    view.setPrimaryChannel(ramp());
    view.addSecondaryChannel(std::make_shared<KWConstantChannel>("constant"));
    view.setShowsGrid(true);
    view.setShowsLegend(true);
    view.resize(500, 200);
    EXPECT_EQ(view.grab().toImage().convertToFormat(QImage::Format_RGB32), pictureOf(view));
}

TEST_F(KWChannelViewDrawingTest, InsideAnotherWidgetItIsDrawnInItsPlace) {
    QWidget window;
    window.resize(700, 400);
    auto* const inside = new KWChannelView(&window);
    inside->setGeometry(37, 21, 500, 200);
    inside->setPrimaryChannel(ramp());
    inside->setShowsGrid(true);
    inside->setShowsLegend(true);
    const QImage whole = window.grab().toImage().convertToFormat(QImage::Format_RGB32);
    EXPECT_EQ(whole.copy(37, 21, 500, 200), pictureOf(*inside));
}

TEST_F(KWChannelViewDrawingTest, DrawingIntoAPictureLeavesViewAndPainterAsTheyWere) {
    view.setPrimaryChannel(ramp());
    view.resize(500, 200);
    view.grab();
    const KWPlotRect plot = view.plotGeometry().plot;
    QImage image(90, 50, QImage::Format_RGB32);
    QPainter painter(&image);
    painter.setPen(Qt::red);
    painter.setBrush(Qt::blue);
    const QTransform transform = painter.transform();
    view.drawInto(painter, QRectF(10, 10, 50, 30));
    EXPECT_EQ(painter.pen().color(), QColor(Qt::red));
    EXPECT_EQ(painter.brush().color(), QColor(Qt::blue));
    EXPECT_EQ(painter.transform(), transform);
    EXPECT_FALSE(painter.hasClipping());
    EXPECT_FALSE(painter.testRenderHint(QPainter::Antialiasing));
    EXPECT_EQ(view.plotGeometry().plot, plot);
    ASSERT_EQ(view.keyCells().size(), 2u);
    EXPECT_EQ(view.keyCells()[0].controlPointFrame(), QRectF(46.5, 46.5, 7, 7));
}

TEST_F(KWChannelViewDrawingTest, NothingIsDrawnOutsideTheRectangle) {
    view.setPrimaryChannel(ramp());
    view.setShowsGrid(true);
    view.setShowsLegend(true);
    QImage image(90, 50, QImage::Format_RGB32);
    image.fill(Qt::magenta);
    QPainter painter(&image);
    view.drawInto(painter, QRectF(10, 10, 50, 30));
    painter.end();
    for (int y = 0; y < 50; ++y)
        for (int x = 0; x < 90; ++x) {
            const bool isInside = x >= 10 && x < 60 && y >= 10 && y < 40;
            EXPECT_EQ(image.pixelColor(x, y) != QColor(Qt::magenta), isInside) << x << ' ' << y;
        }
}

TEST_F(KWChannelViewDrawingTest, RectanglesThatAreNoneDrawNothing) {
    const double nan = std::numeric_limits<double>::quiet_NaN();
    RecordingDevice device(500, 200);
    QPainter painter(&device);
    for (const QRectF& rect :
         {QRectF(), QRectF(0, 0, 0, 10), QRectF(0, 0, 10, -1), QRectF(nan, 0, 10, 10),
          QRectF(0, 0, nan, 10), QRectF(0, 0, 1e300, 10), QRectF(0, 1e308 * 10, 10, 10)})
        view.drawInto(painter, rect);
    painter.end();
    EXPECT_TRUE(device.drawn.empty());
    view.resize(0, 0);
    view.grab();
}

TEST_F(KWChannelViewDrawingTest, AnythingMayBeDisplayedWithoutHarm) {
    std::mt19937 engine(3);
    const float numbers[] = {0,          -0.0f,  1,        -1,       1e-38f,
                             1e38f,      -1e38f, 3e38f,    infinity, -infinity,
                             notANumber, 1e-45f, 16777216, 5,        2.5f};
    const auto any = [&] { return numbers[engine() % std::size(numbers)]; };
    view.setShowsGrid(true);
    view.setShowsLegend(true);
    view.setShowsPointCoordinates(true);
    view.addSecondaryChannel(std::make_shared<RaisingChannel>());
    for (int i = 0; i < 400; ++i) {
        const auto channel = ramp();
        channel->setValueForKeyframe(any(), KWTime(any()));
        channel->setValueForKeyframe(any(), KWTime(any()));
        channel->setUnitType(static_cast<std::int32_t>(engine() % 3));
        channel->setRepeatMode(static_cast<std::int32_t>(engine() % 3));
        view.setPrimaryChannel(channel);
        view.setDisplayedBounds({any(), any(), any(), any()});
        view.setCurrentTime(any());
        view.setPointTimeValue(any(), any());
        view.setXGridCount(static_cast<int>(engine()));
        pictureOf(view, 1, 1 + static_cast<int>(engine() % 60),
                  1 + static_cast<int>(engine() % 60));
        drawnBy(view, 20, 20);
    }
}
