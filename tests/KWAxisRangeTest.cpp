#include <KWBase/KWAxisRange.h>

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>

namespace {

constexpr double infinite = std::numeric_limits<double>::infinity();
const double none = std::nan("");

/// What a view makes of it.
void expectSane(KWAxisRange range) {
    const auto low = static_cast<float>(range.low);
    const auto high = static_cast<float>(range.high);
    EXPECT_TRUE(std::isfinite(low) && std::isfinite(high)) << range.low << " " << range.high;
    EXPECT_NE(low, high) << range.low << " " << range.high;
    EXPECT_TRUE(std::isfinite((high - low) * 10000));
    EXPECT_LE(std::fabs(range.low), KWFarthestBound);
    EXPECT_LE(std::fabs(range.high), KWFarthestBound);
}

} // namespace

TEST(KWAxisRange, ZoomingKeepsWhatIsFixedWhereItIs) {
    EXPECT_EQ(KWZoomedAxisRange({0, 10}, 2.5, 2, KWTimeAxis), (KWAxisRange{1.25, 6.25}));
    EXPECT_EQ(KWZoomedAxisRange({0, 10}, 2.5, 0.5, KWTimeAxis), (KWAxisRange{-2.5, 17.5}));
    EXPECT_EQ(KWZoomedAxisRange({0, 10}, 0, 4, KWTimeAxis), (KWAxisRange{0, 2.5}));
}

TEST(KWAxisRange, ARangeUpsideDownStaysSo) {
    EXPECT_EQ(KWZoomedAxisRange({10, 0}, 2.5, 2, KWValueAxis), (KWAxisRange{6.25, 1.25}));
}

TEST(KWAxisRange, AFactorThatIsNoneChangesNothing) {
    for (const double factor : {0.0, -2.0, infinite, none, 1.0})
        EXPECT_EQ(KWZoomedAxisRange({0, 10}, 2.5, factor, KWTimeAxis), (KWAxisRange{0, 10}));
}

TEST(KWAxisRange, ZoomingEndsWhereFloatsDo) {
    KWAxisRange in{999, 1001};
    for (int k = 0; k < 200; ++k)
        in = KWZoomedAxisRange(in, 1000.25, 1.25, KWTimeAxis);
    expectSane(in);
    EXPECT_NEAR(in.span(), 1000.25 * 256 / (1 << 23), 1e-6);
    EXPECT_LT(in.low, 1000.25);
    EXPECT_GT(in.high, 1000.25);
    KWAxisRange out = in;
    for (int k = 0; k < 1000; ++k)
        out = KWZoomedAxisRange(out, 1000.25, 0.8, KWTimeAxis);
    expectSane(out);
    EXPECT_EQ(out.span(), 2 * KWFarthestBound);
}

TEST(KWAxisRange, WhatCannotBeDisplayedGivesWayToAUsualRange) {
    EXPECT_EQ(KWUsableAxisRange({3, 3}, KWTimeAxis), (KWAxisRange{-2, 8}));
    EXPECT_EQ(KWUsableAxisRange({none, 3}, KWTimeAxis), (KWAxisRange{-2, 8}));
    EXPECT_EQ(KWUsableAxisRange({-infinite, infinite}, KWValueAxis), (KWAxisRange{-2, 2}));
    EXPECT_EQ(KWUsableAxisRange({-1e35, 1e35}, KWValueAxis), (KWAxisRange{-1e30, 1e30}));
    EXPECT_EQ(KWUsableAxisRange({0, 1e-8}, KWTimeAxis), (KWAxisRange{0, 1e-8}));
    expectSane(KWUsableAxisRange({1e35, 1e35}, KWValueAxis));
}

TEST(KWAxisRange, FramingLeavesATenthOnEachSide) {
    EXPECT_EQ(KWFramedAxisRange(0, 10, KWTimeAxis), (KWAxisRange{-1, 11}));
    EXPECT_EQ(KWFramedAxisRange(-2, 8, KWValueAxis), (KWAxisRange{-3, 9}));
}

TEST(KWAxisRange, WhatHasNoSpanIsFramedByItself) {
    EXPECT_EQ(KWFramedAxisRange(3, 3, KWTimeAxis), (KWAxisRange{2, 4}));
    EXPECT_EQ(KWFramedAxisRange(8, 8, KWValueAxis), (KWAxisRange{4, 12}));
    EXPECT_EQ(KWFramedAxisRange(-8, -8, KWValueAxis), (KWAxisRange{-12, -4}));
    EXPECT_EQ(KWFramedAxisRange(0, 0, KWValueAxis), (KWAxisRange{-1, 1}));
    const KWAxisRange far = KWFramedAxisRange(1e8, 1e8, KWTimeAxis);
    expectSane(far);
    EXPECT_EQ(far.low + far.span() / 2, 1e8);
    expectSane(KWFramedAxisRange(1, static_cast<double>(std::nextafter(1.0f, 2.0f)), KWTimeAxis));
}

TEST(KWAxisRange, WhatIsTooFarToBeShownIsFramedAtTheLimit) {
    EXPECT_EQ(KWFramedAxisRange(-3e38, 3e38, KWValueAxis), (KWAxisRange{-1e30, 1e30}));
    expectSane(KWFramedAxisRange(3e38, 3e38, KWValueAxis));
    expectSane(KWFramedAxisRange(2e38, 3e38, KWValueAxis));
    expectSane(KWFramedAxisRange(-3e38, -2e38, KWValueAxis));
}

TEST(KWAxisRange, PanningStopsWhereFloatsAreTooFarApart) {
    EXPECT_EQ(KWPannedAxisRange({0, 10}, -3, KWTimeAxis), (KWAxisRange{-3, 7}));
    EXPECT_EQ(KWPannedAxisRange({0, 10}, 1e9, KWTimeAxis), (KWAxisRange{0, 10}));
    EXPECT_EQ(KWPannedAxisRange({0, 10}, none, KWTimeAxis), (KWAxisRange{0, 10}));
    EXPECT_EQ(KWPannedAxisRange({1e9, 1e9 + 64}, -64, KWTimeAxis), (KWAxisRange{1e9 - 64, 1e9}))
        << "there is a way back from where the host has put it";
}

TEST(KWAxisRange, WhateverIsDoneTheRangeCanBeDisplayed) {
    std::mt19937 random(1);
    const auto pick = [&](double most) {
        return std::uniform_real_distribution<double>(-most, most)(random);
    };
    for (int round = 0; round < 200; ++round) {
        KWAxisRange range = KWUsableAxisRange(
            {std::pow(10, pick(37)), std::pow(10, pick(37)) * pick(1)}, KWValueAxis);
        for (int k = 0; k < 200; ++k) {
            if (random() % 2 == 0)
                range = KWZoomedAxisRange(range, range.low + std::fabs(pick(1)) * range.span(),
                                          std::pow(10, pick(2)), KWValueAxis);
            else
                range = KWPannedAxisRange(range, pick(2) * range.span(), KWValueAxis);
        }
        expectSane(range);
    }
}
