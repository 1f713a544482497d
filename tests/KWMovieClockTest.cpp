#include <KWDesktop/KWMovieClock.h>

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>

namespace {

KWMovieClock::Wall at(double seconds) {
    return KWMovieClock::Wall(std::chrono::duration_cast<KWMovieClock::Wall::duration>(
        std::chrono::duration<double>(seconds)));
}

} // namespace

TEST(KWMovieClock, IsAtRestAtTheBeginning) {
    const KWMovieClock clock(10);
    EXPECT_EQ(clock.rate(), 0);
    EXPECT_EQ(clock.timeAt(at(0)), 0);
    EXPECT_EQ(clock.timeAt(at(100)), 0);
    EXPECT_FALSE(clock.isAtEnd(at(100)));
}

TEST(KWMovieClock, RunsAtItsRate) {
    KWMovieClock clock(10);
    clock.setRate(2, at(5));
    EXPECT_DOUBLE_EQ(clock.timeAt(at(6)), 2);
    clock.setRate(0.5, at(7));
    EXPECT_DOUBLE_EQ(clock.timeAt(at(9)), 5);
    clock.setRate(0, at(9));
    EXPECT_DOUBLE_EQ(clock.timeAt(at(50)), 5);
}

TEST(KWMovieClock, RunsBackwardsToTheBeginning) {
    KWMovieClock clock(10);
    clock.setTime(3, at(0));
    clock.setRate(-1, at(0));
    EXPECT_DOUBLE_EQ(clock.timeAt(at(2)), 1);
    EXPECT_FALSE(clock.isAtEnd(at(2)));
    EXPECT_EQ(clock.timeAt(at(4)), 0);
    EXPECT_TRUE(clock.isAtEnd(at(4)));
}

TEST(KWMovieClock, StopsAtTheDuration) {
    KWMovieClock clock(10);
    clock.setRate(1, at(0));
    EXPECT_EQ(clock.timeAt(at(11)), 10);
    EXPECT_TRUE(clock.isAtEnd(at(11)));
    clock.setRate(-1, at(11));
    EXPECT_FALSE(clock.isAtEnd(at(11.5)));
}

TEST(KWMovieClock, TimesOutsideAreHeld) {
    KWMovieClock clock(10);
    clock.setTime(20, at(0));
    EXPECT_EQ(clock.timeAt(at(0)), 10);
    clock.setTime(-1, at(0));
    EXPECT_EQ(clock.timeAt(at(0)), 0);
    clock.setTime(std::nan(""), at(0));
    EXPECT_EQ(clock.timeAt(at(0)), 0);
}

TEST(KWMovieClock, RatesThatAreNotFiniteStopIt) {
    KWMovieClock clock(10);
    clock.setRate(1, at(0));
    clock.setRate(std::numeric_limits<double>::infinity(), at(1));
    EXPECT_EQ(clock.rate(), 0);
    clock.setRate(std::nan(""), at(2));
    EXPECT_DOUBLE_EQ(clock.timeAt(at(3)), 1);
}

TEST(KWMovieClock, TellsHowLongItTakesToATime) {
    KWMovieClock clock(10);
    EXPECT_EQ(clock.secondsUntil(1, at(0)), -1);
    clock.setRate(2, at(0));
    EXPECT_DOUBLE_EQ(clock.secondsUntil(4, at(1)), 1);
    EXPECT_EQ(clock.secondsUntil(1, at(1)), 0);
    clock.setRate(-2, at(1));
    EXPECT_DOUBLE_EQ(clock.secondsUntil(1, at(1)), 0.5);
    EXPECT_EQ(clock.secondsUntil(3, at(1)), 0);
}

TEST(KWMovieClock, ChangesOfRateNeverMakeItJump) {
    std::mt19937 random(3);
    std::uniform_real_distribution<double> rates(-3, 3);
    KWMovieClock clock(5);
    double wall = 0;
    for (int k = 0; k < 1000; ++k) {
        wall += 0.1;
        const double before = clock.timeAt(at(wall));
        clock.setRate(rates(random), at(wall));
        ASSERT_EQ(clock.timeAt(at(wall)), before);
        ASSERT_GE(before, 0);
        ASSERT_LE(before, 5);
    }
}
