#include <KWBase/KWLayoutArithmetic.h>

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <type_traits>
#include <vector>

namespace {

constexpr float infinity = std::numeric_limits<float>::infinity();
constexpr float notANumber = std::numeric_limits<float>::quiet_NaN();
constexpr int limit = KWWidgetSizeLimit;

static_assert(std::is_trivially_copyable_v<KWLayoutShare>);

KWLayoutShare fixedShare(float size, bool isVisible = true) {
    return {size, false, isVisible, -1, -1};
}

KWLayoutShare weight(float size, bool isVisible = true) {
    return {size, true, isVisible, -1, -1};
}

struct Divided {
    std::vector<KWLayoutShare> shares;

    Divided(std::vector<KWLayoutShare> of, float total, float space) : shares(std::move(of)) {
        KWDivideSpace(shares, total, space);
    }
    std::vector<float> offsets() const { return all(&KWLayoutShare::actualOffset); }
    std::vector<float> sizes() const { return all(&KWLayoutShare::actualSize); }
    std::vector<float> all(float KWLayoutShare::*field) const {
        std::vector<float> values;
        for (const KWLayoutShare& share : shares)
            values.push_back(share.*field);
        return values;
    }
};

using Floats = std::vector<float>;

} // namespace

// --- Cuts.

TEST(KWSliceGrid, AThirtyByThirtyImageIsCutOneRowBelowItsMiddle) {
    const KWSliceGrid grid = KWSliceGridForCuts(30, 30, {10, 20, 10, 20});
    EXPECT_EQ(grid.x, (std::array<std::int32_t, 4>{0, 10, 20, 30}));
    EXPECT_EQ(grid.y, (std::array<std::int32_t, 4>{0, 9, 19, 30}));
    EXPECT_EQ(grid.widths, (std::array<std::int32_t, 3>{10, 10, 10}));
    EXPECT_EQ(grid.heights, (std::array<std::int32_t, 3>{9, 10, 11}));
}

TEST(KWSliceGrid, SizesWithAFractionAreCutOffTowardsZero) {
    const KWSliceGrid grid = KWSliceGridForCuts(15.9f, 15.75f, {4, 9, 3, 11});
    EXPECT_EQ(grid.x, (std::array<std::int32_t, 4>{0, 4, 9, 15}));
    EXPECT_EQ(grid.y, (std::array<std::int32_t, 4>{0, 3, 11, 15}));
    EXPECT_EQ(KWSliceGridForCuts(8, 8, {1, 2, 3, 8}).y, (std::array<std::int32_t, 4>{0, -1, 4, 8}));
    EXPECT_EQ(KWSliceGridForCuts(8, 8.5f, {1, 2, 3, 8}).y,
              (std::array<std::int32_t, 4>{0, 0, 4, 8}));
}

TEST(KWSliceGrid, HostileCutsMakeSomeGrid) {
    constexpr std::int32_t most = std::numeric_limits<std::int32_t>::max();
    constexpr std::int32_t least = std::numeric_limits<std::int32_t>::min();
    for (const auto& cuts : {std::array{most, least, most, least}, {least, most, least, most}})
        for (const float size : {0.0f, 30.0f, infinity, notANumber})
            KWSlicesForRect(KWSliceGridForCuts(size, size, cuts), {0, 0, 100, 100});
}

// --- Slices.

TEST(KWSlices, ARectangleOnePointLargerThanTheCornersHasAMiddleOfOnePoint) {
    const KWSliceGrid grid = KWSliceGridForCuts(30, 30, {10, 20, 10, 20});
    const auto slices = KWSlicesForRect(grid, {5, 6, 21, 21});
    ASSERT_TRUE(slices);
    EXPECT_EQ((*slices)[0].destination, (KWSliceRect{5, 6, 10, 9}));
    EXPECT_EQ((*slices)[4].destination, (KWSliceRect{15, 15, 1, 1}));
    EXPECT_EQ((*slices)[4].source, (KWSliceRect{10, 9, 10, 10}));
    EXPECT_EQ((*slices)[8].destination, (KWSliceRect{16, 16, 10, 11}));
    EXPECT_EQ((*slices)[8].source, (KWSliceRect{20, 19, 10, 11}));
}

TEST(KWSlices, ARectangleAsWideAsTheTwoSideColumnsHasNone) {
    const KWSliceGrid grid = KWSliceGridForCuts(30, 30, {10, 20, 10, 20});
    EXPECT_FALSE(KWSlicesForRect(grid, {0, 0, 20, 50}));
    EXPECT_FALSE(KWSlicesForRect(grid, {0, 0, 20.999f, 50}));
    EXPECT_FALSE(KWSlicesForRect(grid, {0, 0, 50, 20.999f}));
    EXPECT_TRUE(KWSlicesForRect(grid, {0, 0, 21, 21}));
}

TEST(KWSlices, FractionsOfTheRectangleAreDroppedTowardsZero) {
    const KWSliceGrid grid = KWSliceGridForCuts(9, 9, {3, 6, 2, 5});
    const auto slices = KWSlicesForRect(grid, {-1.9f, 2.9f, 10.9f, 11.9f});
    ASSERT_TRUE(slices);
    EXPECT_EQ(slices->front().destination, (KWSliceRect{-1, 2, 3, 3}));
    EXPECT_EQ((*slices)[4].destination, (KWSliceRect{2, 5, 4, 5}));
    EXPECT_EQ(slices->back().destination, (KWSliceRect{6, 10, 3, 3}));
}

TEST(KWSlices, ARectangleThatIsNotFiniteOrHasNoNumbersHasNone) {
    const KWSliceGrid grid = KWSliceGridForCuts(9, 9, {3, 6, 2, 5});
    for (const float bad : {notANumber, infinity, -infinity, 1e12f}) {
        EXPECT_FALSE(KWSlicesForRect(grid, {bad, 0, 50, 50}));
        EXPECT_FALSE(KWSlicesForRect(grid, {0, bad, 50, 50}));
        EXPECT_FALSE(KWSlicesForRect(grid, {0, 0, bad, 50}));
        EXPECT_FALSE(KWSlicesForRect(grid, {0, 0, 50, bad}));
    }
    EXPECT_FALSE(KWSlicesForRect(grid, {0, 0, -50, -50}));
    EXPECT_TRUE(KWSlicesForRect(grid, {2e9f, 2e9f, 2e9f, 2e9f}));
}

// --- Shares.

TEST(KWDivideSpace, ASingleShareGetsAllButTheGapsAroundIt) {
    const Divided divided({weight(1)}, 200, 10);
    EXPECT_EQ(divided.offsets(), (Floats{10}));
    EXPECT_EQ(divided.sizes(), (Floats{180}));
}

TEST(KWDivideSpace, WhatFixedSharesLeaveGoesToTheWeights) {
    const Divided divided({fixedShare(50), weight(1)}, 200, 0);
    EXPECT_EQ(divided.offsets(), (Floats{0, 50}));
    EXPECT_EQ(divided.sizes(), (Floats{50, 150}));
}

TEST(KWDivideSpace, WeightsShareByTheirProportionWhateverTheirSum) {
    EXPECT_EQ(Divided({weight(30), weight(10)}, 200, 0).sizes(), (Floats{150, 50}));
    EXPECT_EQ(Divided({weight(3), weight(1)}, 200, 0).sizes(), (Floats{150, 50}));
}

TEST(KWDivideSpace, HiddenSharesTakeNothingAndKeepWhatTheyHad) {
    const Divided divided({weight(1), weight(5, false), fixedShare(40, false), weight(1)}, 110, 10);
    EXPECT_EQ(divided.offsets(), (Floats{10, -1, -1, 60}));
    EXPECT_EQ(divided.sizes(), (Floats{40, -1, -1, 40}));
}

TEST(KWDivideSpace, TooMuchThatIsFixedMakesWeightsNegative) {
    const Divided divided({fixedShare(150), weight(1), weight(3)}, 100, 10);
    EXPECT_EQ(divided.sizes(), (Floats{150, -22.5f, -67.5f}));
    EXPECT_EQ(divided.offsets(), (Floats{10, 170, 157.5f}));
}

TEST(KWDivideSpace, WeightsThatSumToNothingEachGetAll) {
    EXPECT_EQ(Divided({weight(0), weight(0)}, 100, 10).sizes(), (Floats{70, 70}));
    EXPECT_EQ(Divided({weight(1), weight(-2)}, 100, 10).sizes(), (Floats{70, 70}));
    EXPECT_EQ(Divided({weight(notANumber), weight(1)}, 100, 10).sizes(), (Floats{70, 70}));
}

TEST(KWDivideSpace, AProductIsRoundedBeforeItIsDivided) {
    const float total = 100;
    const Divided divided({weight(0.1f), weight(0.7f)}, total, 3);
    const float available = total - 3.0f - 3.0f - 3.0f;
    const float sum = 0.1f + 0.7f;
    const float product = 0.7f * available;
    EXPECT_EQ(divided.sizes()[1], product / sum);
}

TEST(KWDivideSpace, NothingToDivideIsNothingDone) {
    KWDivideSpace({}, 100, 10);
    const Divided hidden({weight(1, false)}, 100, 10);
    EXPECT_EQ(hidden.sizes(), (Floats{-1}));
}

// --- Frames.

TEST(KWFrameOfPane, EveryNumberIsRoundedDownAndTheHeightBeforeItIsUsed) {
    KWLayoutShare column;
    column.actualOffset = 10.75f;
    column.actualSize = 20.5f;
    KWLayoutShare pane;
    pane.actualOffset = 5.25f;
    pane.actualSize = 30.75f;
    EXPECT_EQ(KWFrameOfPane(column, pane, 100), (KWLayoutFrame{10, 64, 20, 30}));
    pane.actualSize = -3.5f;
    EXPECT_EQ(KWFrameOfPane(column, pane, 100), (KWLayoutFrame{10, 98, 20, -4}));
}

TEST(KWWidgetRect, AYUpFrameIsTurnedOver) {
    EXPECT_EQ(KWWidgetRectForFrame({10, 64, 20, 30}, 100), (KWWidgetRect{10, 6, 20, 30}));
    EXPECT_EQ(KWWidgetRectForFrame({10, 98, 20, -4}, 100), (KWWidgetRect{10, 6, 20, 0}));
    EXPECT_EQ(KWWidgetRectForFrame({10, 64, 20, 30}), (KWWidgetRect{10, 64, 20, 30}));
}

TEST(KWWidgetRect, WhatNoWidgetTakesComesAsCloseAsItCan) {
    EXPECT_EQ(KWWidgetRectForFrame({notANumber, notANumber, notANumber, notANumber}, 100),
              (KWWidgetRect{0, 0, 0, 0}));
    EXPECT_EQ(KWWidgetRectForFrame({infinity, -infinity, infinity, -infinity}),
              (KWWidgetRect{limit, -limit, limit, 0}));
    EXPECT_EQ(KWWidgetRectForFrame({-infinity, 0, 1e30f, 1e30f}, 100),
              (KWWidgetRect{-limit, -limit, limit, limit}));
}

// --- The stack.

TEST(KWStackEntries, TwoExpandedItemsAreAsHighAsTheirBarsViewsAndGaps) {
    std::vector<KWStackEntry> entries{{18, 3, 100, false, {}, {}}, {18, 0, 50, false, {}, {}}};
    EXPECT_EQ(KWStackEntries(entries, 240), 194);
    EXPECT_EQ(entries[0].label, (KWLayoutFrame{0, 0, 240, 18}));
    EXPECT_EQ(entries[0].content, (KWLayoutFrame{3, 18, 240, 100}));
    EXPECT_EQ(entries[1].label, (KWLayoutFrame{0, 122, 240, 18}));
    EXPECT_EQ(entries[1].content, (KWLayoutFrame{0, 140, 240, 50}));
}

TEST(KWStackEntries, CollapsingTheFirstMovesTheSecondBarUp) {
    std::vector<KWStackEntry> entries{{18, 0, 100, true, {}, {}}, {18, 0, 50, false, {}, {}}};
    EXPECT_EQ(KWStackEntries(entries, 240), 94);
    EXPECT_EQ(entries[1].label.y, 22);
    EXPECT_EQ(entries[0].content, KWLayoutFrame());
}

TEST(KWStackEntries, NoItemsAreNoHeight) {
    EXPECT_EQ(KWStackEntries({}, 240), 0);
}

TEST(KWLabelFrame, TheLabelIsIndentedAndFourPointsHigherThanItsLine) {
    EXPECT_EQ(KWLabelFrame({0, 0, 100, 100}, 14), (KWLayoutFrame{19, 43, 81, 18}));
    EXPECT_EQ(KWLabelFrame({2, 3, 100, 18}, 13), (KWLayoutFrame{21, 5.5f, 81, 17}));
}

TEST(KWLabelFrame, TheMiddleIsFoundInDouble) {
    const float y = 16777216.0f; // beyond which floats have no odd numbers
    EXPECT_EQ(KWLabelFrame({0, y, 100, 20}, 14).y, static_cast<float>(16777216.0 + 3.0));
}

TEST(KWTriangleFrame, TheTriangleIsNinePointsWideAndThreeBelowTheMiddle) {
    EXPECT_EQ(KWTriangleFrame({0, 0, 100, 18}), (KWLayoutFrame{5, 7.5f, 9, 9}));
    EXPECT_EQ(KWTriangleFrame({40, 10, 100, 17}), (KWLayoutFrame{5, 17, 9, 9}));
}

TEST(KWTrianglePath, ItPointsToTheRightOrDown) {
    const KWLayoutFrame frame{5, 7.5f, 9, 9};
    using Path = std::array<KWLayoutPoint, 3>;
    EXPECT_EQ(KWTrianglePath(frame, true), (Path{{{5, 8.5f}, {5, 16.5f}, {13, 12.5f}}}));
    EXPECT_EQ(KWTrianglePath(frame, false), (Path{{{5, 8.5f}, {13, 8.5f}, {9, 16.5f}}}));
}
