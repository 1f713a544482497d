#include "MovieTestSupport.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <limits>

namespace {

/// Notes what a movie tells while it runs.
struct Listener {
    explicit Listener(KWMovie& movie) {
        QObject::connect(&movie, &KWMovie::frameChanged, &movie, [this, &movie] {
            numbers.push_back(numberIn(movie.currentFrame().image));
            thread = QThread::currentThread();
        });
        QObject::connect(&movie, &KWMovie::ended, &movie, [this] { ++ends; });
        QObject::connect(&movie, &KWMovie::rateChanged, &movie,
                         [this](double rate) { rates.push_back(rate); });
    }
    int last() const { return numbers.empty() ? -1 : numbers.back(); }

    std::vector<int> numbers;
    std::vector<double> rates;
    int ends = 0;
    QThread* thread = nullptr;
};

class KWMoviePlayingTest : public testing::Test {
  protected:
    MovieFolder movies;
};

} // namespace

TEST_F(KWMoviePlayingTest, ShowsItsFirstFrameAtRest) {
    const OpenMovie movie(movies.makeNumbered("a.mp4", h264, 20));
    ASSERT_TRUE(movie);
    Listener heard(*movie.movie);
    EXPECT_EQ(movie->rate(), 0);
    EXPECT_FALSE(movie->currentFrame());
    ASSERT_TRUE(waitFor([&] { return heard.last() == 0; }));
    EXPECT_EQ(movie->currentTime(), 0);
    EXPECT_EQ(heard.thread, QThread::currentThread());
    EXPECT_EQ(heard.numbers.size(), 1u);
}

TEST_F(KWMoviePlayingTest, PlaysForwardsInOrderAndHoldsItsLastFrame) {
    const OpenMovie movie(movies.makeNumbered("a.mp4", h264, 20));
    ASSERT_TRUE(movie);
    Listener heard(*movie.movie);
    movie->start();
    ASSERT_TRUE(waitFor([&] { return heard.ends == 1 && heard.last() == 19; }));
    EXPECT_TRUE(std::is_sorted(heard.numbers.begin(), heard.numbers.end()));
    EXPECT_EQ(heard.rates, (std::vector<double>{1, 0}));
    EXPECT_EQ(movie->rate(), 0);
    EXPECT_EQ(movie->currentTime(), movie->duration());
    EXPECT_EQ(numberIn(movie->currentFrame().image), 19);
    EXPECT_TRUE(movie.faults.empty());
}

TEST_F(KWMoviePlayingTest, PlaysBackwardsInOrderAndHoldsItsFirstFrame) {
    // Groups of several lengths, and one as long as the movie.
    for (const char* const group : {" -g 5", " -g 12", " -g 100"}) {
        const OpenMovie movie(movies.makeNumbered("a.mp4", h264 + group, 20));
        ASSERT_TRUE(movie);
        Listener heard(*movie.movie);
        movie->gotoEnd();
        ASSERT_TRUE(waitFor([&] { return heard.last() == 19; }));
        movie->setRate(-1);
        ASSERT_TRUE(waitFor([&] { return heard.ends == 1 && heard.last() == 0; }));
        EXPECT_TRUE(std::is_sorted(heard.numbers.rbegin(), heard.numbers.rend() - 1));
        EXPECT_EQ(movie->currentTime(), 0);
        EXPECT_EQ(movie->rate(), 0);
    }
}

TEST_F(KWMoviePlayingTest, AtASlowRateEveryFrameIsShown) {
    const OpenMovie movie(movies.makeNumbered("a.mp4", h264, 8));
    ASSERT_TRUE(movie);
    Listener heard(*movie.movie);
    ASSERT_TRUE(waitFor([&] { return heard.last() == 0; }));
    movie->setRate(0.25);
    ASSERT_TRUE(waitFor([&] { return heard.ends == 1; }));
    EXPECT_EQ(heard.last(), 7);
    EXPECT_TRUE(std::is_sorted(heard.numbers.begin(), heard.numbers.end()));
}

TEST_F(KWMoviePlayingTest, AtAFastRateFramesAreDroppedAndTheEndIsReached) {
    const OpenMovie movie(movies.makeNumbered("a.mp4", h264, 250));
    ASSERT_TRUE(movie);
    Listener heard(*movie.movie);
    movie->setRate(50);
    ASSERT_TRUE(waitFor([&] { return heard.ends == 1 && heard.last() == 249; }));
    EXPECT_LT(heard.numbers.size(), 200u);
    EXPECT_TRUE(std::is_sorted(heard.numbers.begin(), heard.numbers.end()));
}

TEST_F(KWMoviePlayingTest, StopsWhereItIs) {
    const OpenMovie movie(movies.makeNumbered("a.mp4", h264, 100));
    ASSERT_TRUE(movie);
    Listener heard(*movie.movie);
    movie->start();
    ASSERT_TRUE(waitFor([&] { return movie->currentTime() > 0.2; }));
    movie->stop();
    const double time = movie->currentTime();
    EXPECT_GT(time, 0.2);
    EXPECT_TRUE(waitFor([&] { return heard.last() == numberIn(movie->imageAt(time)); }));
    EXPECT_EQ(movie->currentTime(), time);
    EXPECT_EQ(heard.ends, 0);
    movie->gotoBeginning();
    EXPECT_EQ(movie->currentTime(), 0);
    EXPECT_TRUE(waitFor([&] { return heard.last() == 0; }));
}

TEST_F(KWMoviePlayingTest, AtRestItShowsTheFrameOfThePlaceItIsMovedTo) {
    const OpenMovie movie(movies.makeNumbered("a.mp4", h264, 50));
    ASSERT_TRUE(movie);
    Listener heard(*movie.movie);
    for (const int wanted : {30, 3, 49, 0, 17, 16}) {
        movie->setCurrentTime(wanted / 25.0);
        EXPECT_TRUE(waitFor([&] { return heard.last() == wanted; })) << wanted;
    }
    // Of many places at once the last one counts.
    for (int k = 0; k < 50; ++k)
        movie->setCurrentTime(k / 25.0);
    EXPECT_TRUE(waitFor([&] { return heard.last() == 49; }));
}

TEST_F(KWMoviePlayingTest, MovedWhileItRunsItRunsOnFromThere) {
    const OpenMovie movie(movies.makeNumbered("a.mp4", h264, 50));
    ASSERT_TRUE(movie);
    Listener heard(*movie.movie);
    movie->start();
    ASSERT_TRUE(waitFor([&] { return heard.last() >= 2; }));
    movie->setCurrentTime(1.6);
    EXPECT_EQ(movie->rate(), 1);
    ASSERT_TRUE(waitFor([&] { return heard.ends == 1 && heard.last() == 49; }));
    movie->setCurrentTime(0.2);
    movie->setRate(-1);
    ASSERT_TRUE(waitFor([&] { return heard.ends == 2 && heard.last() == 0; }));
}

TEST_F(KWMoviePlayingTest, StartedAtTheEndItStopsAgain) {
    const OpenMovie movie(movies.makeNumbered("a.mp4", h264, 10));
    ASSERT_TRUE(movie);
    Listener heard(*movie.movie);
    movie->gotoEnd();
    movie->start();
    ASSERT_TRUE(waitFor([&] { return heard.ends == 1; }));
    EXPECT_EQ(movie->rate(), 0);
    EXPECT_TRUE(waitFor([&] { return heard.last() == 9; }));
}

TEST_F(KWMoviePlayingTest, RatesThatAreNotFiniteStopIt) {
    const OpenMovie movie(movies.makeNumbered("a.mp4", h264, 10));
    ASSERT_TRUE(movie);
    movie->setRate(std::numeric_limits<double>::quiet_NaN());
    EXPECT_EQ(movie->rate(), 0);
    movie->setRate(std::numeric_limits<double>::infinity());
    EXPECT_EQ(movie->rate(), 0);
    movie->setRate(1e9);
    Listener heard(*movie.movie);
    EXPECT_TRUE(waitFor([&] { return heard.ends == 1 && heard.last() == 9; }));
}

TEST_F(KWMoviePlayingTest, ASignalsReceiverMayDeleteTheMovie) {
    for (const bool atEnd : {false, true}) {
        OpenMovie movie(movies.makeNumbered("a.mp4", h264, 5));
        ASSERT_TRUE(movie);
        KWMovie* const raw = movie.movie.get();
        if (atEnd)
            QObject::connect(raw, &KWMovie::rateChanged, [&](double rate) {
                if (rate == 0)
                    movie.movie.reset();
            });
        else
            QObject::connect(raw, &KWMovie::frameChanged, [&] { movie.movie.reset(); });
        movie->start();
        EXPECT_TRUE(waitFor([&] { return movie.movie == nullptr; }));
    }
}

TEST_F(KWMoviePlayingTest, EndsAtOnceInTheMiddleOfAMovie) {
    const QString file = movies.makeNumbered("a.mp4", h264, 250);
    for (int k = 0; k < 10; ++k) {
        const OpenMovie movie(file);
        movie->setRate(k % 2 == 0 ? 1 : 20);
        movie->setCurrentTime(k / 2.0);
        QThread::msleep(static_cast<unsigned long>(k));
    }
}

TEST_F(KWMoviePlayingTest, DeletedWhileItPlaysItPlaysOn) {
    const QString file = movies.makeNumbered("a.mp4", h264, 30);
    const OpenMovie movie(file);
    ASSERT_TRUE(movie);
    Listener heard(*movie.movie);
    movie->start();
    ASSERT_TRUE(waitFor([&] { return heard.last() >= 1; }));
    ASSERT_TRUE(std::filesystem::remove(file.toStdString()));
    ASSERT_TRUE(waitFor([&] { return heard.ends == 1 && heard.last() == 29; }));
    EXPECT_EQ(numberIn(movie->imageAt(0.4)), 10);
    EXPECT_TRUE(movie.faults.empty());
}
