#include "ViewDrawingSupport.h"
#include "ViewTestSupport.h"

#include <KWBase/KWChannelView.h>

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace {

class KWChannelViewGridTest : public testing::Test {
  protected:
    KWChannelViewGridTest() { view.setShowsGrid(true); }
    KWChannelView view;
};

} // namespace

TEST_F(KWChannelViewGridTest, LinesOfTimesStandOnHalfPointsFromBottomToTop) {
    const auto lines = linesInColor(gridColor, drawnBy(view, 333, 200));
    ASSERT_EQ(lines.size(), 70u);
    const KWChannelViewGeometry geometry{{}, {0, 333, 0, 200}};
    for (std::size_t k = 0; k < 50; ++k) {
        const float t = 0 + static_cast<float>(k) * 0.2f;
        const double x = std::floor(static_cast<double>(geometry.xForTime(t))) + 0.5;
        EXPECT_EQ(lines[k].points[0], QPointF(x, 0.5)) << k;
        EXPECT_EQ(lines[k].points[1], QPointF(x, 200.5)) << k;
        EXPECT_EQ(lines[k].width, k % 10 == 0 ? 1.5 : 0.5) << k;
    }
}

TEST_F(KWChannelViewGridTest, LinesOfValuesStandOnHalfPointsFromLeftToRight) {
    const auto lines = linesInColor(gridColor, drawnBy(view, 333, 177));
    ASSERT_EQ(lines.size(), 70u);
    const KWChannelViewGeometry geometry{{}, {0, 333, 0, 177}};
    for (std::size_t k = 0; k < 20; ++k) {
        const float v = -2 + static_cast<float>(k) * 0.2f;
        const double y = std::floor(static_cast<double>(geometry.yForValue(v))) + 0.5;
        const Drawn& line = lines[50 + k];
        EXPECT_EQ(line.points[0], QPointF(0.5, y)) << k;
        EXPECT_EQ(line.points[1], QPointF(333.5, y)) << k;
        EXPECT_EQ(line.width, k % 4 == 2 ? 1.5 : 0.5) << k;
    }
}

TEST_F(KWChannelViewGridTest, LabelsStandWithTheirLowerLeftAtTheMajorLines) {
    view.setShowsLegend(true);
    const auto texts = only(Drawn::text, drawnBy(view));
    const char* const times[] = {"0", "2", "4", "6", "8"};
    const char* const values[] = {"-1.6", "-0.8", "0", "0.8", "1.6"};
    ASSERT_EQ(texts.size(), 10u);
    for (std::size_t i = 0; i < 5; ++i) {
        const Drawn& time = texts[i];
        EXPECT_EQ(time.string, QLatin1String(times[i]));
        EXPECT_EQ(time.points[0].x(), 100.0 * static_cast<double>(i));
        EXPECT_NEAR(time.points[0].y(), 0, 1);
        const Drawn& value = texts[5 + i];
        EXPECT_EQ(value.string, QLatin1String(values[i]));
        EXPECT_EQ(value.points[0].x(), 3);
        EXPECT_NEAR(value.points[0].y(), 20.0 + 40.0 * static_cast<double>(i), 1);
    }
    for (const Drawn& text : texts) {
        EXPECT_EQ(text.stroke, lightGray);
        EXPECT_EQ(text.fontSize, 10);
    }
}

TEST_F(KWChannelViewGridTest, LabelsAreDrawnBeforeTheirLine) {
    view.setShowsLegend(true);
    const auto drawn = drawnBy(view);
    EXPECT_EQ(drawn[1].kind, Drawn::text);
    EXPECT_EQ(drawn[2].kind, Drawn::line);
    EXPECT_EQ(drawn[2].points[0].x(), 0.5);
}

TEST_F(KWChannelViewGridTest, LabelsHaveFourDigitsAtMost) {
    view.setShowsLegend(true);
    view.setDisplayedBounds({12000, 1, 1000, 1});
    const auto texts = only(Drawn::text, drawnBy(view));
    ASSERT_GE(texts.size(), 2u);
    EXPECT_EQ(texts[0].string, QLatin1String("1.2e+04"));
    EXPECT_EQ(texts[1].string, QLatin1String("1.22e+04"));
    // A line at 12345.6.
    view.setDisplayedBounds({12345.5f, 1, 1, 1});
    view.setXGridCount(5);
    view.setYGridCount(0);
    const auto rounded = only(Drawn::text, drawnBy(view));
    ASSERT_GE(rounded.size(), 1u);
    EXPECT_EQ(rounded[0].string, QLatin1String("1.235e+04"));
}

TEST_F(KWChannelViewGridTest, WithoutLegendThereAreNoLabels) {
    EXPECT_TRUE(only(Drawn::text, drawnBy(view)).empty());
    view.setShowsGrid(false);
    view.setShowsLegend(true);
    EXPECT_TRUE(only(Drawn::text, drawnBy(view)).empty());
}

TEST_F(KWChannelViewGridTest, WithoutTwoLevelsAllLinesAreThinAndLabelsStay) {
    view.setShowsLegend(true);
    view.setShowsTwoLevelGrid(false);
    const auto drawn = drawnBy(view);
    for (const Drawn& line : linesInColor(gridColor, drawn))
        EXPECT_EQ(line.width, 0.5);
    EXPECT_EQ(only(Drawn::text, drawn).size(), 10u);
}

TEST_F(KWChannelViewGridTest, TheGridHasItsColor) {
    view.setGridColor(Qt::green);
    const auto drawn = drawnBy(view);
    EXPECT_TRUE(linesInColor(gridColor, drawn).empty());
    EXPECT_EQ(linesInColor(Qt::green, drawn).size(), 70u);
}

TEST_F(KWChannelViewGridTest, NoLinesWantedAreNoLines) {
    view.setXGridCount(0);
    view.setYGridCount(0);
    EXPECT_TRUE(linesInColor(gridColor, drawnBy(view)).empty());
}

TEST_F(KWChannelViewGridTest, LinesDenserThanPointsAreDrawnOnce) {
    view.setXGridCount(std::numeric_limits<int>::max());
    view.setYGridCount(std::numeric_limits<int>::max());
    EXPECT_LE(linesInColor(gridColor, drawnBy(view)).size(), 720u);
    EXPECT_GE(linesInColor(gridColor, drawnBy(view)).size(), 700u);
}

TEST_F(KWChannelViewGridTest, TheZeroLineIsNotSnapped) {
    const QColor zeroColor = rgb(0.7, 0.7, 1.0, 0.5);
    view.setDisplayedBounds({0, -1, 10, 3});
    const auto lines = linesInColor(zeroColor, drawnBy(view));
    ASSERT_EQ(lines.size(), 1u);
    EXPECT_EQ(lines[0].width, 1);
    EXPECT_NEAR(lines[0].points[0].y(), 200 / 3.0, 1e-4);
    EXPECT_EQ(lines[0].points[0].x(), 0);
    EXPECT_EQ(lines[0].points[1].x(), 500);
    for (const HJRect& bounds : {HJRect{0, 0, 10, 1}, HJRect{0, -1, 10, 1}}) {
        view.setDisplayedBounds(bounds);
        EXPECT_EQ(linesInColor(zeroColor, drawnBy(view)).size(), 1u);
    }
    for (const HJRect& bounds : {HJRect{0, 1, 10, 1}, HJRect{0, -2, 10, 1}, HJRect{0, 0, 10, 0}}) {
        view.setDisplayedBounds(bounds);
        EXPECT_TRUE(linesInColor(zeroColor, drawnBy(view)).empty());
    }
    view.setShowsGrid(false);
    view.setDisplayedBounds({0, -1, 10, 3});
    EXPECT_TRUE(linesInColor(zeroColor, drawnBy(view)).empty());
}
