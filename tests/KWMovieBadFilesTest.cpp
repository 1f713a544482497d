#include "MovieTestSupport.h"
#include "Thoroughness.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <random>

namespace {

class KWMovieBadFilesTest : public testing::Test {
  protected:
    std::string refusal(const QString& file) {
        const OpenMovie movie(file);
        EXPECT_FALSE(movie);
        return movie.error.toStdString();
    }
    std::string write(const std::string& name, std::string_view bytes) {
        writeFile(movies.folder.path() / name, bytes);
        return name;
    }
    MovieFolder movies;
};

} // namespace

TEST_F(KWMovieBadFilesTest, AMissingFileIsNamed) {
    EXPECT_EQ(refusal(movies.path("none.mp4")),
              "The movie \u201cnone.mp4\u201d cannot be shown: No such file or directory.");
}

TEST_F(KWMovieBadFilesTest, AnEmptyFileIsNoMovie) {
    write("a.mp4", "");
    EXPECT_EQ(refusal(movies.path("a.mp4")),
              "The movie \u201ca.mp4\u201d cannot be shown: the file is empty.");
}

TEST_F(KWMovieBadFilesTest, AFolderAndAPipeAreNoFiles) {
    EXPECT_NE(refusal(movies.path("")).find("it is not a file"), std::string::npos);
    const std::string pipe = (movies.folder.path() / "pipe").string();
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    EXPECT_NE(refusal(movies.path("pipe")).find("it is not a file"), std::string::npos);
}

TEST_F(KWMovieBadFilesTest, ATextIsNoMovie) {
    write("a.mov", std::string(5000, 'x'));
    EXPECT_EQ(refusal(movies.path("a.mov")),
              "The movie \u201ca.mov\u201d cannot be shown: no movie is recognised in it.");
}

TEST_F(KWMovieBadFilesTest, SoundAloneIsNoMovieNorIsItsCover) {
    const QString sound = movies.make("a.wav", "-f lavfi -i sine=d=0.2");
    EXPECT_NE(refusal(sound).find("it has no video"), std::string::npos);
    const QString cover = movies.make(
        "a.mp3", "-f lavfi -i sine=d=0.2 -f lavfi -i color=s=32x32:d=0.04:r=25 -map 0 -map 1 "
                 "-c:v mjpeg -disposition:v attached_pic -frames:v 1");
    EXPECT_NE(refusal(cover).find("it has no video"), std::string::npos);
}

TEST_F(KWMovieBadFilesTest, ARenamedFileIsReadForWhatItIs) {
    const QString file = movies.makeNumbered("a.mp4", h264, 10);
    std::filesystem::rename(file.toStdString(), movies.folder.path() / "a.avi");
    const OpenMovie movie(movies.path("a.avi"));
    ASSERT_TRUE(movie) << movie.error.toStdString();
    EXPECT_EQ(numberIn(movie->imageAt(0.2)), 5);
}

TEST_F(KWMovieBadFilesTest, VideoForWhichThereIsNoDecoderIsRefused) {
    std::string bytes = contentsOf(movies.makeNumbered("a.mkv", h264, 3).toStdString());
    const std::size_t at = bytes.find("V_MPEG4/ISO/AVC");
    ASSERT_NE(at, std::string::npos);
    write("b.mkv", bytes.replace(at, 15, "V_MPEG4/ISO/AVX"));
    EXPECT_EQ(refusal(movies.path("b.mkv")),
              "The movie \u201cb.mkv\u201d cannot be shown: its video is of an unknown kind.");
}

TEST_F(KWMovieBadFilesTest, AFileThatNamesOthersDoesNotOpenThem) {
    movies.makeNumbered("a.ts", h264, 10);
    write("a.m3u8", "#EXTM3U\n#EXT-X-TARGETDURATION:1\n#EXTINF:1,\n" +
                        movies.path("a.ts").toStdString() + "\n#EXT-X-ENDLIST\n");
    write("a.ffconcat", "ffconcat version 1.0\nfile a.ts\n");
    EXPECT_FALSE(refusal(movies.path("a.m3u8")).empty());
    EXPECT_FALSE(refusal(movies.path("a.ffconcat")).empty());
}

TEST_F(KWMovieBadFilesTest, ATruncatedMovieShowsWhatItHasAndSaysSoOnce) {
    const QString whole = movies.makeNumbered("whole.mp4", h264 + " -movflags faststart", 200);
    const std::string bytes = contentsOf(whole.toStdString());
    write("a.mp4", std::string_view(bytes).substr(0, bytes.size() / 2));
    const OpenMovie movie(movies.path("a.mp4"));
    ASSERT_TRUE(movie) << movie.error.toStdString();
    EXPECT_EQ(numberIn(movie->imageAt(1)), 25);
    const int last = numberIn(movie->imageAt(7.9));
    EXPECT_GT(last, 25);
    EXPECT_LT(last, 199);
    movie->setRate(20);
    ASSERT_TRUE(waitFor([&] { return movie->rate() == 0 && !movie.faults.empty(); }));
    waitFor([] { return false; }, 0);
    ASSERT_EQ(movie.faults.size(), 1u);
    EXPECT_NE(movie.faults[0].find("\u201ca.mp4\u201d"), std::string::npos) << movie.faults[0];
}

TEST_F(KWMovieBadFilesTest, EveryTruncationIsRefusedOrShown) {
    const QString whole = movies.makeNumbered("whole.mkv", h264, 20);
    const std::string bytes = contentsOf(whole.toStdString());
    int shown = 0;
    for (std::size_t k = 0; k < 60; ++k) {
        write("a.mkv", std::string_view(bytes).substr(0, bytes.size() * k / 60));
        const OpenMovie movie(movies.path("a.mkv"));
        EXPECT_NE(static_cast<bool>(movie), !movie.error.isEmpty());
        if (movie && !movie->imageAt(0.5).isNull())
            ++shown;
    }
    EXPECT_GT(shown, 10);
    EXPECT_LT(shown, 60);
}

TEST_F(KWMovieBadFilesTest, CutShortWhileItPlaysItHoldsTheLastFrameItCouldRead) {
    const QString file = movies.makeNumbered("a.mkv", h264 + " -g 5", 150, "scale=320:240");
    const OpenMovie movie(file);
    ASSERT_TRUE(movie);
    movie->start();
    ASSERT_TRUE(waitFor([&] { return movie->currentFrame().time > 0.05; }));
    std::filesystem::resize_file(file.toStdString(), 3000);
    movie->setRate(20);
    EXPECT_TRUE(waitFor([&] { return movie->rate() == 0; }));
    EXPECT_TRUE(movie->currentFrame());
}

TEST_F(KWMovieBadFilesTest, MutatedMoviesAreRefusedOrShown) {
    const std::vector<QString> files{
        movies.makeNumbered("a.mp4", h264, 6),          movies.makeNumbered("a.mkv", h264, 6),
        movies.makeNumbered("a.avi", "-c:v mpeg4", 6),  movies.makeNumbered("a.ts", h264, 6),
        movies.makeNumbered("a.mov", "-c:v mjpeg", 4),  movies.makeNumbered("a.gif", "", 4),
        movies.makeNumbered("a.webm", "-c:v libvpx", 4)};
    std::mt19937 random(8);
    int refused = 0;
    int shown = 0;
    for (std::size_t round = 0; round < 210; round += placeStep) {
        const QString& file = files[round / placeStep % files.size()];
        std::string bytes = contentsOf(file.toStdString());
        const auto changes = 1 + random() % 12;
        for (std::size_t k = 0; k < changes; ++k) {
            // Headers are where a change matters most.
            const std::size_t range =
                k % 2 == 0 ? bytes.size() : std::min<std::size_t>(bytes.size(), 600);
            bytes[random() % range] = static_cast<char>(random());
        }
        write("mutated", bytes);
        const OpenMovie movie(movies.path("mutated"));
        if (!movie) {
            EXPECT_FALSE(movie.error.isEmpty());
            ++refused;
            continue;
        }
        ++shown;
        EXPECT_GE(movie->duration(), 0);
        EXPECT_FALSE(movie->naturalSize().isEmpty());
        for (const double time : {0.1, movie->duration(), 0.0})
            movie->imageAt(time);
    }
    EXPECT_GT(refused, 0);
    EXPECT_GT(shown, 5);
}
