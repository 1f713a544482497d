#include "MovieTestSupport.h"

#include <gtest/gtest.h>

#include <QTransform>
#include <algorithm>
#include <limits>
#include <random>
#include <thread>

namespace {

/// Asks for many frames in many orders, and compares with the numbers that they should have.
void expectNumbersAt25(const QString& file, int frames) {
    const OpenMovie movie(file);
    ASSERT_TRUE(movie) << movie.error.toStdString();
    const auto expectFrame = [&](double time, int wanted) {
        const KWMovieFrame frame = movie->frameAt(time);
        ASSERT_EQ(numberIn(frame.image), wanted) << "at " << time;
        ASSERT_NEAR(frame.time, wanted / 25.0, 1e-9);
    };
    for (int k = 0; k < frames; ++k)
        expectFrame(k / 25.0, k);
    for (int k = frames; k-- > 0;)
        expectFrame(k / 25.0 + 0.039, k);
    std::mt19937 random(1);
    std::uniform_real_distribution<double> inside(0, frames / 25.0);
    for (int k = 0; k < 120; ++k) {
        const double time = inside(random);
        expectFrame(time, std::min(frames - 1, static_cast<int>(time * 25)));
    }
    expectFrame(0, 0);
    expectFrame(frames / 25.0 + 100, frames - 1);
    expectFrame(-5, 0);
    EXPECT_TRUE(movie.faults.empty()) << movie.faults.front();
    EXPECT_NEAR(movie->duration(), frames / 25.0, 0.041);
}

class KWMovieTest : public testing::Test {
  protected:
    MovieFolder movies;
};

/// Gray levels of the four corners, from the upper left one clockwise.
std::vector<int> corners(const QImage& image) {
    const auto gray = [&](int x, int y) { return qGray(image.pixel(x, y)); };
    const int x = image.width() - 3;
    const int y = image.height() - 3;
    return {gray(2, 2), gray(x, 2), gray(x, y), gray(2, y)};
}

const std::string fourGrays =
    "-f lavfi -i color=c=black:r=25:s=64x48 -frames:v 3 -vf "
    "\"geq=lum='if(lt(Y,24),if(lt(X,32),30,80),if(lt(X,32),180,130))':cb=128:cr=128\" " +
    h264;

} // namespace

TEST_F(KWMovieTest, FramesOfH264WithFramesBetweenAreExact) {
    expectNumbersAt25(movies.makeNumbered("a.mp4", h264), 50);
}

TEST_F(KWMovieTest, FramesOfOpenGroupsAreExact) {
    expectNumbersAt25(
        movies.makeNumbered("a.mkv",
                            "-pix_fmt yuv420p -c:v libx264 -crf 1 -bf 3 "
                            "-x264-params open-gop=1:keyint=10:min-keyint=10:scenecut=0",
                            60),
        60);
}

TEST_F(KWMovieTest, FramesOfATransportStreamAreExact) {
    expectNumbersAt25(movies.makeNumbered("a.ts", h264), 50);
}

TEST_F(KWMovieTest, FramesOfMpeg2AreExact) {
    expectNumbersAt25(movies.makeNumbered("a.mpg", "-c:v mpeg2video -q:v 1 -g 12 -bf 2"), 50);
}

TEST_F(KWMovieTest, FramesOfMpeg4InAviAreExact) {
    expectNumbersAt25(movies.makeNumbered("a.avi", "-c:v mpeg4 -q:v 1 -g 12"), 50);
}

TEST_F(KWMovieTest, FramesOfMotionJpegAreExact) {
    expectNumbersAt25(movies.makeNumbered("a.mov", "-pix_fmt yuvj420p -c:v mjpeg -q:v 1"), 50);
}

TEST_F(KWMovieTest, FramesOfVp8AreExact) {
    expectNumbersAt25(movies.makeNumbered("a.webm", "-c:v libvpx -crf 4 -b:v 4M -g 15"), 50);
}

TEST_F(KWMovieTest, FramesOfProResAreExact) {
    expectNumbersAt25(movies.makeNumbered("a.mov", "-c:v prores_ks -profile:v 3", 30), 30);
}

TEST_F(KWMovieTest, FramesOfOneGroupAsLongAsTheMovieAreExact) {
    expectNumbersAt25(movies.makeNumbered("a.mp4", h264 + " -g 1000", 100), 100);
}

TEST_F(KWMovieTest, AStreamThatTellsNoTimesCanBeShown) {
    const OpenMovie movie(movies.makeNumbered("a.h264", h264 + " -bf 0"));
    ASSERT_TRUE(movie) << movie.error.toStdString();
    EXPECT_NEAR(movie->duration(), 2, 0.1);
    EXPECT_EQ(numberIn(movie->imageAt(0)), 0);
    EXPECT_EQ(numberIn(movie->imageAt(1)), 25);
    EXPECT_EQ(numberIn(movie->imageAt(0.2)), 5);
    EXPECT_EQ(numberIn(movie->imageAt(100)), 49);
}

TEST_F(KWMovieTest, TimesOfAVariableRateAreThoseOfTheFrames) {
    // Frame n begins at n * n / 100 seconds.
    const std::string times = "settb=1/1000,setpts='N*N*10'";
    for (const std::string name : {"a.mkv", "a.mp4"}) {
        const OpenMovie movie(
            movies.makeNumbered(name,
                                h264 + " -fps_mode passthrough -enc_time_base 1:1000" +
                                    (name == "a.mp4" ? " -video_track_timescale 1000" : ""),
                                20, times));
        ASSERT_TRUE(movie) << movie.error.toStdString();
        for (const int k : {0, 7, 3, 19, 1, 18, 12, 11}) {
            const double from = k * k / 100.0;
            EXPECT_EQ(numberIn(movie->imageAt(from)), k) << name;
            EXPECT_EQ(numberIn(movie->imageAt(from + (2 * k) / 100.0)), k) << name;
            EXPECT_EQ(numberIn(movie->imageAt(from - 0.001)), std::max(0, k - 1)) << name;
        }
    }
}

TEST_F(KWMovieTest, ATimeRoundedToAFloatIsStillThatOfItsFrame) {
    const OpenMovie movie(movies.makeNumbered("a.mp4", h264));
    ASSERT_TRUE(movie);
    double sum = 0;
    for (int k = 0; k < 50; ++k, sum += 1 / 25.0) {
        EXPECT_EQ(numberIn(movie->imageAt(static_cast<float>(k) / 25.0f)), k);
        EXPECT_EQ(numberIn(movie->imageAt(sum)), k);
    }
}

TEST_F(KWMovieTest, TimesThatAreNotFiniteAreTheFirstAndTheLastFrame) {
    const OpenMovie movie(movies.makeNumbered("a.mp4", h264, 20));
    ASSERT_TRUE(movie);
    constexpr double infinity = std::numeric_limits<double>::infinity();
    EXPECT_EQ(numberIn(movie->imageAt(infinity)), 19);
    EXPECT_EQ(numberIn(movie->imageAt(-infinity)), 0);
    EXPECT_EQ(numberIn(movie->imageAt(std::nan(""))), 0);
    EXPECT_EQ(numberIn(movie->imageAt(1e300)), 19);
}

TEST_F(KWMovieTest, TheSoundIsPassedOver) {
    const OpenMovie movie(movies.make(
        "a.mp4", "-f lavfi -i testsrc=s=64x48:d=1 -f lavfi -i sine=d=3 -c:a aac " + h264));
    ASSERT_TRUE(movie) << movie.error.toStdString();
    EXPECT_NEAR(movie->duration(), 1, 0.05);
    EXPECT_FALSE(movie->imageAt(0.9).isNull());
    EXPECT_TRUE(movie.faults.empty());
}

TEST_F(KWMovieTest, AMovieThatBeginsLateBeginsAtZero) {
    const OpenMovie movie(movies.makeNumbered("a.ts", h264 + " -output_ts_offset 1000"));
    ASSERT_TRUE(movie);
    EXPECT_EQ(movie->frameAt(0).time, 0);
    EXPECT_EQ(numberIn(movie->imageAt(1)), 25);
    EXPECT_NEAR(movie->duration(), 2, 0.05);
}

TEST_F(KWMovieTest, OddSizesAreKept) {
    for (const QSize size : {QSize(65, 49), QSize(3, 5), QSize(1, 1), QSize(17, 100)}) {
        const OpenMovie movie(movies.makeNumbered("a.mkv", "-pix_fmt yuv444p -c:v ffv1", 3,
                                                  "scale=" + std::to_string(size.width()) + ":" +
                                                      std::to_string(size.height()) + ",setsar=1"));
        ASSERT_TRUE(movie) << movie.error.toStdString();
        const QImage image = movie->imageAt(0.05);
        EXPECT_EQ(image.size(), size);
        EXPECT_EQ(movie->naturalSize(), image.size());
    }
}

TEST_F(KWMovieTest, TheNaturalSizeHasSquarePixels) {
    const OpenMovie movie(movies.makeNumbered("a.mp4", h264, 3, "setsar=16/11"));
    ASSERT_TRUE(movie);
    EXPECT_EQ(movie->naturalSize(), QSize(93, 48)); // 64 * 16 / 11 is 93.09
    EXPECT_EQ(movie->imageAt(0).size(), QSize(64, 48));
}

TEST_F(KWMovieTest, PicturesStandUprightHoweverTheMovieIsTurned) {
    const QString plain = movies.make("a.mp4", fourGrays);
    const std::vector<int> upright = corners(OpenMovie(plain)->imageAt(0));
    ASSERT_LT(upright[0], upright[1]);
    for (const int turns : {1, 2, 3}) {
        const QString file = movies.make(
            "b.mp4", "-i '" + plain.toStdString() +
                         "' -c copy -metadata:s:v:0 rotate=" + std::to_string(90 * turns));
        // The ffmpeg program turns what it shows, too.
        const QImage peer(movies.make("b.png", "-i '" + file.toStdString() + "' -frames:v 1"));
        const OpenMovie movie(file);
        ASSERT_TRUE(movie);
        EXPECT_EQ(movie->naturalSize(), turns % 2 == 0 ? QSize(64, 48) : QSize(48, 64));
        const QImage image = movie->imageAt(0);
        ASSERT_EQ(image.size(), movie->naturalSize());
        ASSERT_EQ(image.size(), peer.size());
        EXPECT_NE(corners(image), upright);
        for (std::size_t k = 0; k < 4; ++k)
            EXPECT_NEAR(corners(image)[k], corners(peer)[k], 3) << turns;
    }
}

TEST_F(KWMovieTest, ColorsComeOutAsTheyWentIn) {
    struct Case {
        const char* color;
        QColor wanted;
    };
    for (const Case& one : {Case{"red", QColor(255, 0, 0)}, Case{"0x204080", QColor(32, 64, 128)},
                            Case{"white", QColor(255, 255, 255)}, Case{"black", QColor(0, 0, 0)}}) {
        const std::string source =
            "-f lavfi -i color=r=25:d=0.1:s=64x48:c=" + std::string(one.color);
        for (const std::string& codec :
             {std::string("-c:v ffv1 -pix_fmt bgr0"), h264,
              "-vf scale=out_color_matrix=bt709:out_range=full -color_range pc -colorspace bt709 " +
                  h264,
              std::string("-pix_fmt yuvj422p -c:v mjpeg -q:v 1")}) {
            const OpenMovie movie(movies.make("a.mkv", source + " " + codec));
            ASSERT_TRUE(movie) << movie.error.toStdString();
            const QColor got = movie->imageAt(0).pixelColor(30, 20);
            // Chroma has half the levels, and the codec rounds.
            EXPECT_NEAR(got.red(), one.wanted.red(), 4) << codec;
            EXPECT_NEAR(got.green(), one.wanted.green(), 4) << codec;
            EXPECT_NEAR(got.blue(), one.wanted.blue(), 4) << codec;
        }
    }
}

TEST_F(KWMovieTest, AnAlphaChannelComesOutPremultiplied) {
    const OpenMovie movie(movies.make(
        "a.mov", "-f lavfi -i color=r=25:d=0.1:s=64x48:c=0xff8000@0.5,format=rgba -c:v png"));
    ASSERT_TRUE(movie) << movie.error.toStdString();
    const QImage image = movie->imageAt(0);
    EXPECT_EQ(image.format(), QImage::Format_ARGB32_Premultiplied);
    const QRgb pixel = reinterpret_cast<const QRgb*>(image.constScanLine(9))[9];
    EXPECT_NEAR(qAlpha(pixel), 128, 1);
    EXPECT_NEAR(qRed(pixel), 128, 1);
    EXPECT_NEAR(qGreen(pixel), 64, 1);
    EXPECT_EQ(qBlue(pixel), 0);
}

TEST_F(KWMovieTest, OpaqueMoviesHaveNoAlphaChannel) {
    const OpenMovie movie(movies.makeNumbered("a.mp4", h264, 3));
    EXPECT_EQ(movie->imageAt(0).format(), QImage::Format_RGB32);
}

TEST_F(KWMovieTest, FramesMayBeAskedForOnSeveralThreads) {
    const OpenMovie movie(movies.makeNumbered("a.mp4", h264));
    ASSERT_TRUE(movie);
    std::atomic<int> wrong = 0;
    std::vector<std::thread> threads;
    for (int thread = 0; thread < 3; ++thread)
        threads.emplace_back([&, thread] {
            for (int k = 0; k < 50; ++k) {
                const int wanted = (k * 7 + thread * 13) % 50;
                wrong += numberIn(movie->imageAt(wanted / 25.0)) != wanted;
            }
        });
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(wrong, 0);
}

TEST_F(KWMovieTest, PicturesOutliveTheMovie) {
    QImage first;
    QImage second;
    {
        const OpenMovie movie(movies.makeNumbered("a.mp4", h264));
        first = movie->imageAt(0.2);
        second = movie->imageAt(1);
    }
    EXPECT_EQ(numberIn(first), 5);
    EXPECT_EQ(numberIn(second), 25);
}
