#include <KWDesktop/KWMovieQueue.h>

#include <gtest/gtest.h>

namespace {

KWMovieQueue::Entry entry(double time, double due) {
    return {{QImage(16, 16, QImage::Format_RGB32), time}, due};
}

constexpr std::size_t imageBytes = 16 * 16 * 4;

} // namespace

TEST(KWMovieQueue, ANewOneIsEmpty) {
    KWMovieQueue queue(1000);
    EXPECT_FALSE(queue.isFull());
    EXPECT_FALSE(queue.take(100, 1));
    EXPECT_FALSE(queue.nextDue());
}

TEST(KWMovieQueue, AFrameComesWhenItIsDueAndNotBefore) {
    KWMovieQueue queue(imageBytes * 10);
    queue.push(entry(1, 1));
    queue.push(entry(2, 2));
    EXPECT_FALSE(queue.take(0.5, 1));
    EXPECT_EQ(queue.nextDue(), 1);
    EXPECT_EQ(queue.take(1, 1)->time, 1);
    EXPECT_EQ(queue.nextDue(), 2);
    EXPECT_FALSE(queue.take(1.9, 1));
}

TEST(KWMovieQueue, OfSeveralThatAreDueTheLatestComesAndTheOthersAreDropped) {
    KWMovieQueue queue(imageBytes * 10);
    for (int k = 0; k < 5; ++k)
        queue.push(entry(k, k));
    EXPECT_EQ(queue.take(3.5, 1)->time, 3);
    EXPECT_EQ(queue.count(), 1u);
}

TEST(KWMovieQueue, BackwardsAFrameIsDueBelowTheBeginningOfTheNext) {
    KWMovieQueue queue(imageBytes * 10);
    queue.push(entry(2, 3));
    queue.push(entry(1, 2));
    EXPECT_FALSE(queue.take(3, -1));
    EXPECT_EQ(queue.take(2.9, -1)->time, 2);
    EXPECT_FALSE(queue.take(2, -1));
    EXPECT_EQ(queue.take(0, -1)->time, 1);
}

TEST(KWMovieQueue, AtRestWhatComesIsDue) {
    KWMovieQueue queue(imageBytes * 10);
    queue.push(entry(7, 7));
    EXPECT_EQ(queue.take(0, 0)->time, 7);
}

TEST(KWMovieQueue, IsFullAtItsBytesButTakesTwoInAnyCase) {
    KWMovieQueue small(1);
    small.push(entry(0, 0));
    EXPECT_FALSE(small.isFull());
    small.push(entry(1, 1));
    EXPECT_TRUE(small.isFull());
    KWMovieQueue queue(imageBytes * 4);
    for (int k = 0; k < 4; ++k) {
        EXPECT_FALSE(queue.isFull());
        queue.push(entry(k, k));
    }
    EXPECT_TRUE(queue.isFull());
    queue.take(0, 1);
    EXPECT_FALSE(queue.isFull());
    queue.clear();
    EXPECT_EQ(queue.count(), 0u);
}
