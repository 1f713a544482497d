#include <KWBase/KWChannelViewGeometry.h>

#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <cstdint>
#include <limits>
#include <random>
#include <vector>

namespace {

constexpr float infinity = std::numeric_limits<float>::infinity();
constexpr float notANumber = std::numeric_limits<float>::quiet_NaN();
constexpr float largest = std::numeric_limits<float>::max();

void expectSame(float value, float expected) {
    EXPECT_EQ(std::bit_cast<std::uint32_t>(value), std::bit_cast<std::uint32_t>(expected))
        << value << " instead of " << expected;
}

std::vector<float> majorsOf(const std::vector<KWGridLine>& lines) {
    std::vector<float> majors;
    for (const KWGridLine& line : lines)
        if (line.isMajor)
            majors.push_back(line.at);
    return majors;
}

const KWChannelViewGeometry fresh{{}, {0, 500, 0, 200}};

/// Ranges and rectangles of all sizes, and numbers in and around them.
class Numbers {
  public:
    float operator()(float from, float to) {
        return std::uniform_real_distribution<float>(from, to)(_engine);
    }
    float ofAnySize() { return (*this)(-1, 1) * std::pow(10.0f, std::round((*this)(-6, 6))); }
    KWChannelViewGeometry geometry() {
        const float hMin = ofAnySize();
        const float vMin = ofAnySize();
        const float xMin = std::round((*this)(-5, 5));
        const float yMin = std::round((*this)(-5, 5));
        return {{hMin, hMin + std::fabs(ofAnySize()), vMin, vMin + std::fabs(ofAnySize())},
                {xMin, xMin + (*this)(1, 3000), yMin, yMin + (*this)(1, 3000)}};
    }

  private:
    std::mt19937 _engine{20240229};
};

} // namespace

// --- Steps.

TEST(KWChannelViewGeometry, ConvertsLinearly) {
    expectSame(convertLinear(3, 2, 4, 10, 200), 60);
    expectSame(convertLinear(0.1f, 0, 0.3f, 0, 7), 7 / 0.3f * (0.1f - 0) + 0);
}

TEST(KWChannelViewGeometry, TheStepOfTenSecondsInFortyTwoLinesIsAFifth) {
    expectSame(findStep(0, 10, 3, 42), 0.2f);
    expectSame(findStep(-2, 2, 3, 21), 0.2f);
}

TEST(KWChannelViewGeometry, TheStepThatComesClosestToTheCountIsTaken) {
    expectSame(findStep(0, 10, 3, 20), 0.5f);
    expectSame(findStep(0, 10, 3, 10), 1);
    expectSame(findStep(0, 10, 3, 50), 0.2f);
    expectSame(findStep(0, 1000, 3, 11), 100);
}

TEST(KWChannelViewGeometry, ATieGoesToTheFinerStep) {
    expectSame(findStep(0, 10, 3, 35), 0.2f);
    expectSame(findStep(0, 10, 2, 15), 0.5f);
}

TEST(KWChannelViewGeometry, ModeOneHasPowersOfTenAndModeTwoTheirHalvesToo) {
    expectSame(findStep(0, 10, 1, 42), 1);
    expectSame(findStep(0, 10, 2, 42), 0.5f);
    expectSame(findStep(0, 10, 2, 11), 1);
    expectSame(findStep(0, 10, 1, 1), 10);
}

TEST(KWChannelViewGeometry, AnyOtherModeHasTheStepOne) {
    for (const std::int32_t mode : {0, 4, -1, std::numeric_limits<std::int32_t>::max()})
        expectSame(findStep(-1000, 1e6f, mode, 7), 1);
}

TEST(KWChannelViewGeometry, TheQuotientIsRoundedToSinglePrecisionBeforeItsPowerIsFound) {
    // As a float a tenth is a little more than a tenth.
    expectSame(findStep(0, 1, 1, 10), 1);
    expectSame(findStep(0, 1, 1, 8), 1);
    expectSame(findStep(0, 1, 1, 16), 0.1f);
    // 2^24 + 1 lines are as many as 2^24.
    expectSame(findStep(0, 16777216, 1, 16777217), 1);
}

TEST(KWChannelViewGeometry, NothingWantedMakesTheStepInfinite) {
    expectSame(findStep(0, 10, 3, 0), infinity);
}

TEST(KWChannelViewGeometry, StepsAreThoseOfThePlainRule) {
    Numbers number;
    for (int i = 0; i < 20'000; ++i) {
        const float min = number.ofAnySize();
        const float max = min + std::fabs(number.ofAnySize());
        const auto wanted = static_cast<std::uint32_t>(number(1, 200));
        const float range = max - min;
        if (range <= 0)
            continue;
        const auto n = static_cast<float>(wanted);
        const auto p = static_cast<float>(
            std::exp(std::ceil(std::log10(static_cast<double>(range / n))) * 2.302585092994046));
        const auto e1 = std::abs(static_cast<long long>(range / p - n));
        const auto e2 = std::abs(static_cast<long long>(2 * range / p - n));
        const auto e5 = std::abs(static_cast<long long>(5 * range / p - n));
        float expected = p;
        if (e2 <= e1)
            expected = p * 0.5f;
        expectSame(findStep(min, max, 2, wanted), expected);
        if (e5 <= std::min(e1, e2))
            expected = p / 5;
        expectSame(findStep(min, max, 3, wanted), expected);
    }
}

TEST(KWChannelViewGeometry, TheFirstMultipleIsAtOrAboveTheMinimum) {
    expectSame(findFirst(-2, 0.2f), 0.2f * -10);
    expectSame(findFirst(0.3f, 0.2f), 0.4f);
    expectSame(findFirst(5, 5), 5);
    expectSame(findFirst(-0.1f, 1), -0.0f);
}

// --- The grid's lines.

TEST(KWChannelViewGeometry, AFreshViewHasALineEachFifthOfASecondEveryTenthMajor) {
    const auto lines = fresh.timeLines(3, 42);
    ASSERT_EQ(lines.size(), 50u);
    for (std::size_t k = 0; k < lines.size(); ++k) {
        expectSame(lines[k].at, static_cast<float>(k) * 0.2f);
        EXPECT_EQ(lines[k].isMajor, k % 10 == 0) << k;
    }
    EXPECT_EQ(majorsOf(lines), (std::vector<float>{0, 2, 4, 6, 8}));
}

TEST(KWChannelViewGeometry, AFreshViewHasALineEachFifthOfAValueEveryFourthMajorButTheLowest) {
    const auto lines = fresh.valueLines(3, 21);
    ASSERT_EQ(lines.size(), 20u);
    for (std::size_t k = 0; k < lines.size(); ++k)
        EXPECT_EQ(lines[k].isMajor, k == 2 || k == 6 || k == 10 || k == 14 || k == 18) << k;
    EXPECT_EQ(lines[0], (KWGridLine{-2, false}));
    expectSame(lines[2].at, -2 + 2 * 0.2f);
    expectSame(lines[10].at, 0);
    expectSame(lines[18].at, -2 + 18 * 0.2f);
}

TEST(KWChannelViewGeometry, TheLowestLineIsMinorWhateverItsCount) {
    const KWChannelViewGeometry view{{0, 10, 0, 10}, {0, 500, 0, 200}};
    EXPECT_TRUE(view.timeLines(3, 42).front().isMajor);
    EXPECT_FALSE(view.valueLines(3, 42).front().isMajor);
    EXPECT_EQ(majorsOf(view.valueLines(3, 42)), (std::vector<float>{2, 4, 6, 8}));
}

TEST(KWChannelViewGeometry, LabelsStayOnRoundNumbersWhileTheViewPans) {
    for (const float start : {0.1f, 0.7f, 1.9f, -3.3f}) {
        const KWChannelViewGeometry view{{start, start + 10, -2, 2}, {0, 500, 0, 200}};
        const std::vector<float> majors = majorsOf(view.timeLines(3, 42));
        ASSERT_EQ(majors.size(), 5u) << start;
        for (const float at : majors)
            EXPECT_NEAR(at / 2, std::round(at / 2), 1e-6) << start;
    }
}

TEST(KWChannelViewGeometry, WithFewerThanFiveStepsNoLineIsMajor) {
    const auto lines = KWGridLines(0, 4, 1);
    EXPECT_EQ(lines.size(), 4u);
    EXPECT_TRUE(majorsOf(lines).empty());
    EXPECT_EQ(majorsOf(KWGridLines(0, 5, 1)).size(), 5u);
    EXPECT_TRUE(majorsOf(fresh.timeLines(3, 1)).empty());
}

TEST(KWChannelViewGeometry, NoLinesWantedAreNoLines) {
    EXPECT_TRUE(fresh.timeLines(3, 0).empty());
    EXPECT_TRUE(fresh.valueLines(3, 0).empty());
}

TEST(KWChannelViewGeometry, ARangeWithoutASpanHasNoLines) {
    for (const KWDisplayedRange range :
         {KWDisplayedRange{5, 5, 5, 5}, KWDisplayedRange{10, 0, 2, -2},
          KWDisplayedRange{notANumber, 1, notANumber, 1},
          KWDisplayedRange{0, notANumber, 0, notANumber},
          KWDisplayedRange{0, infinity, 0, infinity}, KWDisplayedRange{-infinity, 0, -infinity, 0},
          KWDisplayedRange{-largest, largest, -largest, largest}}) {
        const KWChannelViewGeometry view{range, {0, 500, 0, 200}};
        for (const std::int32_t mode : {0, 1, 2, 3}) {
            EXPECT_TRUE(view.timeLines(mode, 42).empty());
            EXPECT_TRUE(view.valueLines(mode, 42).empty());
        }
    }
}

TEST(KWChannelViewGeometry, StepsThatAreNoStepsMakeNoLines) {
    for (const float step : {0.0f, -1.0f, infinity, notANumber})
        EXPECT_TRUE(KWGridLines(0, 10, step).empty()) << step;
}

TEST(KWChannelViewGeometry, AStepBelowTheResolutionOfAFloatEnds) {
    const float far = 16777216;
    const KWChannelViewGeometry view{{far, far + 4, -far - 4, -far}, {0, 500, 0, 200}};
    const auto lines = view.timeLines(3, 42);
    ASSERT_FALSE(lines.empty());
    EXPECT_LE(lines.size(), 41u);
    EXPECT_EQ(lines.front().at, far);
    EXPECT_LT(lines.back().at, far + 4);
    EXPECT_LE(view.valueLines(3, 42).size(), 41u);
    EXPECT_LE(KWGridLines(1e30f, std::nextafter(1e30f, infinity), 1).size(), KWGridLineLimit);
}

TEST(KWChannelViewGeometry, AnAbsurdNumberOfLinesIsThinnedOut) {
    for (const std::uint32_t wanted : {100'000u, 4'000'000'000u}) {
        const auto lines = fresh.timeLines(3, wanted);
        EXPECT_LE(lines.size(), KWGridLineLimit);
        EXPECT_GE(lines.size(), KWGridLineLimit / 4);
        EXPECT_EQ(lines.front().at, 0);
        EXPECT_GT(lines.back().at, 9.99f);
        EXPECT_LT(lines.back().at, 10.0f);
    }
}

TEST(KWChannelViewGeometry, ThinningOutKeepsTheMajorLines) {
    EXPECT_EQ(majorsOf(KWGridLines(0, 1e6f, 1)),
              (std::vector<float>{0, 200'000, 400'000, 600'000, 800'000}));
    EXPECT_EQ(majorsOf(KWGridLines(0, 999'983, 1)),
              (std::vector<float>{0, 199'996, 399'992, 599'988, 799'984, 999'980}));
    EXPECT_EQ(majorsOf(KWGridLines(-250'001, 749'999, 1)),
              (std::vector<float>{-200'000, 0, 200'000, 400'000, 600'000}));
    for (const float max : {20'000.0f, 20'001.0f, 100'000.0f, 999'983.0f, 16'777'216.0f}) {
        const auto lines = KWGridLines(0, max, 1);
        EXPECT_LE(lines.size(), KWGridLineLimit);
        EXPECT_TRUE(std::is_sorted(lines.begin(), lines.end(),
                                   [](const auto& a, const auto& b) { return a.at <= b.at; }));
        EXPECT_GE(majorsOf(lines).size(), 5u) << max;
        EXPECT_GT(lines.back().at, max * 0.9998f);
    }
}

TEST(KWChannelViewGeometry, LinesStandAtMultiplesCountedFromTheFirst) {
    Numbers number;
    for (int i = 0; i < 3000; ++i) {
        const float min = number.ofAnySize();
        const float max = min + std::fabs(number.ofAnySize());
        if (!(max > min))
            continue;
        const float step = findStep(min, max, 3, static_cast<std::uint32_t>(number(1, 100)));
        const auto lines = KWGridLines(min, max, step);
        const float first = step * std::ceil(min / step);
        const auto interval = static_cast<int>((max - min) / step / 5);
        const auto start = static_cast<long long>(first / step);
        std::size_t k = 0;
        for (; max > first + static_cast<float>(k) * step; ++k) {
            ASSERT_LT(k, lines.size());
            expectSame(lines[k].at, first + static_cast<float>(k) * step);
            EXPECT_EQ(lines[k].isMajor,
                      interval != 0 && (start + static_cast<long long>(k)) % interval == 0);
        }
        EXPECT_EQ(lines.size(), k);
    }
}

// --- The mapping.

TEST(KWChannelViewGeometry, MapsTimesAndValuesToPoints) {
    expectSame(fresh.xForTime(0), 0);
    expectSame(fresh.xForTime(10), 500);
    expectSame(fresh.yForValue(-2), 0);
    expectSame(fresh.yForValue(1), 150);
    expectSame(fresh.timeForX(250), 5);
    expectSame(fresh.valueForY(200), 2);
    expectSame(fresh.timeForDistance(-50), -1);
    expectSame(fresh.valueForDistance(50), 1);
}

TEST(KWChannelViewGeometry, TheMappingIsThePlainFormulaInSinglePrecision) {
    Numbers number;
    for (int i = 0; i < 20'000; ++i) {
        const KWChannelViewGeometry view = number.geometry();
        const auto& [hMin, hMax, vMin, vMax] = view.range;
        const auto& [xMin, xMax, yMin, yMax] = view.plot;
        const float t = number.ofAnySize();
        const float p = number(-100, 3100);
        expectSame(view.xForTime(t), xMin + (t - hMin) * (xMax - xMin) / (hMax - hMin));
        expectSame(view.yForValue(t), yMin + (t - vMin) * (yMax - yMin) / (vMax - vMin));
        expectSame(view.timeForX(p), hMin + (p - xMin) * (hMax - hMin) / (xMax - xMin));
        expectSame(view.valueForY(p), vMin + (p - yMin) * (vMax - vMin) / (yMax - yMin));
        expectSame(view.timeForDistance(p), p * (hMax - hMin) / (xMax - xMin));
        expectSame(view.valueForDistance(p), p * (vMax - vMin) / (yMax - yMin));
        expectSame(view.timeForNewKey(p), hMin + (hMax - hMin) / (xMax - xMin) * (p - xMin));
        expectSame(view.valueForNewKey(p), vMin + (p - yMin) * (vMax - vMin) / (yMax - yMin));
        expectSame(view.timeLineX(t),
                   std::floor((xMax - xMin) * (t - hMin) / (hMax - hMin)) + 0.5f);
    }
}

TEST(KWChannelViewGeometry, TheTimeLineIsCountedFromZeroAndNotFromThePlotsLeft) {
    const KWChannelViewGeometry view{{}, {100, 600, 0, 200}};
    expectSame(view.timeLineX(5), 250.5f);
    expectSame(view.xForTime(5), 350);
}

TEST(KWChannelViewGeometry, WithoutASpanTheMappingIsNotFinite) {
    const KWChannelViewGeometry view{{5, 5, 1, 1}, {0, 500, 0, 200}};
    EXPECT_FALSE(std::isfinite(view.xForTime(6)));
    EXPECT_FALSE(std::isfinite(view.yForValue(1)));
    EXPECT_TRUE(std::isnan(KWChannelViewGeometry{}.timeForX(0)));
}

// --- Fit, pan and zoom.

TEST(KWChannelViewGeometry, FittingLeavesATenthOfTheSpanAround) {
    EXPECT_EQ(KWRangeAroundBounds({2, -1, 10, 4}), (KWDisplayedRange{1, 13, -1.4f, 3.4f}));
    const HJRect odd{0.3f, 0.7f, 0.9f, 1.7f};
    const KWDisplayedRange range = KWRangeAroundBounds(odd);
    expectSame(range.hMin, static_cast<float>(double{0.3f} - double{0.9f} / 10.0));
    expectSame(range.hMax, static_cast<float>(double{0.3f + 0.9f} + double{0.9f} / 10.0));
    expectSame(range.vMin, static_cast<float>(double{0.7f} - double{1.7f} / 10.0));
    expectSame(range.vMax, static_cast<float>(double{0.7f + 1.7f} + double{1.7f} / 10.0));
}

TEST(KWChannelViewGeometry, FittingWithoutASpanIsAnEmptyRange) {
    EXPECT_EQ(KWRangeAroundBounds({3, 1, 0, 0}), (KWDisplayedRange{3, 3, 1, 1}));
}

TEST(KWChannelViewGeometry, ContentFollowsAPan) {
    const KWDisplayedRange range = fresh.panned(fresh.range, {10, 10}, {60, 60});
    EXPECT_EQ(range, (KWDisplayedRange{-1, 9, -3, 1}));
    EXPECT_EQ(fresh.panned(fresh.range, {10, 10}, {10, 10}), fresh.range);
}

TEST(KWChannelViewGeometry, APanStartsFromTheAnchorAndMeasuresByWhatIsDisplayed) {
    const KWDisplayedRange anchor{100, 130, 7, 9};
    EXPECT_EQ(fresh.panned(anchor, {0, 0}, {-50, -50}), (KWDisplayedRange{101, 131, 8, 10}));
}

TEST(KWChannelViewGeometry, AHundredPointsToTheRightShowHalfTheTimeAroundTheFixedPoint) {
    const KWDisplayedRange range =
        KWChannelViewGeometry::zoomed(fresh.range, {4, 1}, {200, 150}, {300, 150});
    EXPECT_EQ(range, (KWDisplayedRange{2, 7, -2, 2}));
}

TEST(KWChannelViewGeometry, ZoomingIsIndependentInBothDirections) {
    const KWDisplayedRange range =
        KWChannelViewGeometry::zoomed(fresh.range, {0, 0}, {200, 100}, {150, 200});
    EXPECT_EQ(range, (KWDisplayedRange{0, 20, -1, 1}));
}

TEST(KWChannelViewGeometry, ZoomingOutStopsAtAHundredTimes) {
    const KWDisplayedRange farther =
        KWChannelViewGeometry::zoomed(fresh.range, {5, 0}, {300, 300}, {100, 100});
    EXPECT_EQ(farther, (KWDisplayedRange{-495, 505, -200, 200}));
    EXPECT_EQ(farther, KWChannelViewGeometry::zoomed(fresh.range, {5, 0}, {300, 300}, {201, 201}));
    EXPECT_EQ(farther, KWChannelViewGeometry::zoomed(fresh.range, {5, 0}, {300, 300},
                                                     {-infinity, -largest}));
}

TEST(KWChannelViewGeometry, ZoomingInIsBoundedByTheLargestFloat) {
    const KWDisplayedRange range =
        KWChannelViewGeometry::zoomed(fresh.range, {5, 0}, {0, 0}, {infinity, largest});
    EXPECT_EQ(range.hMin, 5);
    EXPECT_EQ(range.hMax, 5);
    EXPECT_EQ(range.vMax, static_cast<float>(2 / (double{largest} / 100 + 1)));
}

TEST(KWChannelViewGeometry, ZoomFactorsAreInDouble) {
    Numbers number;
    for (int i = 0; i < 5000; ++i) {
        const KWDisplayedRange anchor = number.geometry().range;
        const KWPlotPoint fixed{number.ofAnySize(), number.ofAnySize()};
        const KWPlotPoint from{number(0, 1000), number(0, 1000)};
        const KWPlotPoint to{number(0, 1000), number(0, 1000)};
        const double fx = std::max(0.01, static_cast<double>(to.x - from.x) / 100 + 1);
        const double fy = std::max(0.01, static_cast<double>(to.y - from.y) / 100 + 1);
        const KWDisplayedRange range = KWChannelViewGeometry::zoomed(anchor, fixed, from, to);
        const auto expected = [](float bound, float center, double by) {
            return static_cast<float>(double{bound - center} / by + double{center});
        };
        expectSame(range.hMin, expected(anchor.hMin, fixed.x, fx));
        expectSame(range.hMax, expected(anchor.hMax, fixed.x, fx));
        expectSame(range.vMin, expected(anchor.vMin, fixed.y, fy));
        expectSame(range.vMax, expected(anchor.vMax, fixed.y, fy));
    }
}

// --- Keys.

TEST(KWChannelViewGeometry, SnapsToTheNearestMultipleOfTwoTheEvenOne) {
    expectSame(KWSnap(0.26f, 0.1f), 0.1f * 3);
    expectSame(KWSnap(2.5f, 1), 2);
    expectSame(KWSnap(3.5f, 1), 4);
    expectSame(KWSnap(-2.5f, 1), -2);
    expectSame(KWSnap(-0.26f, 0.1f), 0.1f * -3);
    expectSame(KWSnap(0, 0.1f), 0);
}

TEST(KWChannelViewGeometry, WhatCannotSnapStaysWhereItIs) {
    expectSame(KWSnap(3e9f, 1), 3e9f);
    expectSame(KWSnap(-3e9f, 1), -3e9f);
    expectSame(KWSnap(-2147483648.0f, 1), -2147483648.0f);
    expectSame(KWSnap(1, 0), 1);
    expectSame(KWSnap(1, infinity), 1);
    expectSame(KWSnap(1, notANumber), 1);
    expectSame(KWSnap(infinity, 1), infinity);
    EXPECT_TRUE(std::isnan(KWSnap(notANumber, 1)));
}

TEST(KWChannelViewGeometry, DraggedKeysStopOnePointShortOfTheirNeighbours) {
    EXPECT_EQ(KWDragRange({-3, 5}, 0.5f), (HJKeyMoveRange{-2.5f, 4.5f}));
    EXPECT_EQ(KWDragRange({-0.5f, 0.5f}, 0.5f), (HJKeyMoveRange{0, 0}));
    EXPECT_EQ(KWDragRange({-largest, largest}, 0.5f), (HJKeyMoveRange{-largest, largest}));
    EXPECT_EQ(KWDragRange({0, 0}, 0.5f), (HJKeyMoveRange{0, 0}));
}

TEST(KWChannelViewGeometry, AnOffsetIsHeldInTheDragRange) {
    expectSame(KWHoldInDragRange(-3, {-2.5f, 4.5f}), -2.5f);
    expectSame(KWHoldInDragRange(9, {-2.5f, 4.5f}), 4.5f);
    expectSame(KWHoldInDragRange(1, {-2.5f, 4.5f}), 1);
    expectSame(KWHoldInDragRange(-1, {0, 4.5f}), 0);
}

TEST(KWChannelViewGeometry, AHandleIsCenteredOnItsKeyOnHalfPoints) {
    EXPECT_EQ(KWKeyCellOrigin({100, 50}), (KWPlotPoint{96.5f, 46.5f}));
    EXPECT_EQ(KWKeyCellOrigin({100.4f, 50.5f}), (KWPlotPoint{96.5f, 47.5f}));
    EXPECT_EQ(KWKeyCellOrigin({0, 3.4f}), (KWPlotPoint{-3.5f, -0.5f}));
}

// --- The rubber band and the coordinates.

TEST(KWChannelViewGeometry, ARubberBandCoversTimesAndValuesWhicheverWayItIsDragged) {
    const HJRect expected{1, -1, 4, 1};
    EXPECT_EQ(fresh.rubberBandBounds({50, 50}, {250, 100}), expected);
    EXPECT_EQ(fresh.rubberBandBounds({250, 100}, {50, 50}), expected);
    EXPECT_EQ(fresh.rubberBandBounds({50, 100}, {250, 50}), expected);
    EXPECT_EQ(fresh.rubberBandBounds({250, 50}, {50, 100}), expected);
    EXPECT_EQ(fresh.rubberBandBounds({50, 50}, {50, 50}), (HJRect{1, -1, 0, 0}));
}

TEST(KWChannelViewGeometry, CoordinatesStandRightOfAndBelowTheirPoint) {
    EXPECT_EQ(KWCoordinatesOrigin({100, 100}, 60, 28, fresh.plot), (KWPlotPoint{116, 56}));
}

TEST(KWChannelViewGeometry, CoordinatesStayWholeNearTheTopRightCorner) {
    EXPECT_EQ(KWCoordinatesOrigin({490, 250}, 60, 28, fresh.plot), (KWPlotPoint{440, 172}));
    EXPECT_EQ(KWCoordinatesOrigin({424, 216}, 60, 28, fresh.plot), (KWPlotPoint{440, 172}));
    EXPECT_EQ(KWCoordinatesOrigin({423, 215}, 60, 28, fresh.plot), (KWPlotPoint{439, 171}));
}

TEST(KWChannelViewGeometry, CoordinatesStayTwoPointsFromTheBottomLeftCorner) {
    EXPECT_EQ(KWCoordinatesOrigin({-40, 10}, 60, 28, fresh.plot), (KWPlotPoint{2, 2}));
}
