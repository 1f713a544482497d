#include <apps/kwedit/KWEditTransport.h>
#include <gtest/gtest.h>

#include <QSignalSpy>
#include <QTest>
#include <cmath>
#include <limits>

namespace {

/// A transport with a clock in the test's hand.
struct Playing {
    Playing() { transport.setRange(10, 20); }
    void at(double seconds) {
        now = seconds;
        transport.tick();
    }
    double now = 100;
    KWEditTransport transport{nullptr, [this] { return now; }};
};

} // namespace

TEST(KWEditTransport, ShowsTheFrameThatTheClockHasComeTo) {
    Playing it;
    it.transport.play();
    EXPECT_EQ(it.transport.frame(), 10);
    it.at(100.039);
    EXPECT_EQ(it.transport.frame(), 10);
    it.at(100.04);
    EXPECT_EQ(it.transport.frame(), 11);
    it.at(100.08);
    EXPECT_EQ(it.transport.currentTime(), 0.48F);
    EXPECT_EQ(it.transport.droppedFrameCount(), 0);
}

TEST(KWEditTransport, StaysInTimeWhenFramesAreLate) {
    Playing it;
    it.transport.play();
    it.at(100.21);
    EXPECT_EQ(it.transport.frame(), 15);
    EXPECT_EQ(it.transport.droppedFrameCount(), 4);
    it.at(100.25);
    EXPECT_EQ(it.transport.frame(), 16);
}

TEST(KWEditTransport, ALoopShowsTheLastFrameAsLongAsAnyOther) {
    Playing it;
    it.transport.play();
    for (int round = 0; round < 1000; ++round)
        for (const int frame : {0, 5, 10}) {
            it.at(100 + (round * 11 + frame + 0.5) / 25);
            ASSERT_EQ(it.transport.frame(), 10 + frame) << round;
        }
}

TEST(KWEditTransport, WithoutLoopingItStopsOnTheLastFrame) {
    Playing it;
    it.transport.setLooping(false);
    QSignalSpy playing(&it.transport, &KWEditTransport::playingChanged);
    it.transport.play();
    it.at(100.43);
    EXPECT_TRUE(it.transport.isPlaying());
    it.at(105);
    EXPECT_FALSE(it.transport.isPlaying());
    EXPECT_EQ(it.transport.frame(), 20);
    EXPECT_EQ(playing.count(), 2);
    it.transport.play();
    EXPECT_EQ(it.transport.frame(), 10) << "at the end it begins again";
}

TEST(KWEditTransport, StepsByFramesAndStops) {
    Playing it;
    it.transport.gotoBeginning();
    it.transport.stepBack();
    EXPECT_EQ(it.transport.frame(), 20);
    it.transport.step(12);
    EXPECT_EQ(it.transport.frame(), 10);
    it.transport.setLooping(false);
    it.transport.stepBack();
    EXPECT_EQ(it.transport.frame(), 10);
    it.transport.step(99);
    EXPECT_EQ(it.transport.frame(), 20);
    it.transport.scrub(50);
    it.transport.step();
    EXPECT_EQ(it.transport.frame(), 20);
    it.transport.scrub(0.52F); // frame 13
    it.transport.step();
    EXPECT_EQ(it.transport.frame(), 14);
    it.transport.play();
    it.transport.step();
    EXPECT_FALSE(it.transport.isPlaying());
}

TEST(KWEditTransport, TheHandHoldsTheTimeWhileItPlays) {
    Playing it;
    it.transport.play();
    it.transport.beginScrubbing();
    it.transport.scrub(0.501F);
    it.at(110);
    EXPECT_EQ(it.transport.currentTime(), 0.501F);
    it.transport.endScrubbing();
    EXPECT_TRUE(it.transport.isPlaying());
    it.at(110.04);
    EXPECT_EQ(it.transport.frame(), 13);
    it.transport.scrub(std::numeric_limits<float>::quiet_NaN());
    EXPECT_EQ(it.transport.currentTime(), 0.0F);
}

TEST(KWEditTransport, AnotherRateKeepsTheTimeAndTheRange) {
    Playing it;
    it.transport.scrub(0.6F);
    it.transport.setFramesPerSecond(50);
    EXPECT_EQ(it.transport.currentTime(), 0.6F);
    EXPECT_EQ(it.transport.frame(), 30);
    EXPECT_EQ(it.transport.firstFrame(), 20);
    EXPECT_EQ(it.transport.lastFrame(), 40);
    it.transport.play();
    it.at(100.02);
    EXPECT_EQ(it.transport.frame(), 31);
    it.transport.setFramesPerSecond(0);
    EXPECT_EQ(it.transport.framesPerSecond(), 0.001);
    it.transport.setFramesPerSecond(NAN);
    EXPECT_EQ(it.transport.framesPerSecond(), 0.001);
}

TEST(KWEditTransport, TicksByItselfWhileItPlays) {
    KWEditTransport transport;
    transport.setFramesPerSecond(100);
    QSignalSpy times(&transport, &KWEditTransport::timeChanged);
    transport.play();
    QTRY_VERIFY(times.count() > 3);
    transport.pause();
    const auto count = times.count();
    QTest::qWait(50);
    EXPECT_EQ(times.count(), count);
}
