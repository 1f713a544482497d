#include <tests/CommandRunner.h>
#include <tests/DocumentTestSupport.h>

#include <QColor>
#include <QImage>
#include <QString>

/// What kwchannel draws.
class KWChannelPlot : public KWChannelCommand {
  protected:
    QImage drawn(std::vector<std::string> arguments, const std::string& name = "plot.png") {
        arguments.insert(arguments.begin(), "plot");
        arguments.insert(arguments.end(), {"-o", path(name)});
        const Result result = run(arguments);
        EXPECT_EQ(result.code, 0);
        EXPECT_EQ(result.out, "");
        EXPECT_EQ(result.err, "");
        return QImage(QString::fromStdString(path(name)));
    }
    static bool hasColor(const QImage& image, const QColor& color) {
        for (int y = 0; y < image.height(); ++y)
            for (int x = 0; x < image.width(); ++x)
                if (image.pixelColor(x, y) == color)
                    return true;
        return false;
    }
    void expectRefused(const std::vector<std::string>& arguments, const std::string& reason) {
        std::vector<std::string> all{"plot", sample("bouncing-ball.kwdoc"), "Position/y"};
        all.insert(all.end(), arguments.begin(), arguments.end());
        const Result result = run(all);
        EXPECT_EQ(result.code, 2);
        EXPECT_NE(result.err.find(reason), std::string::npos) << result.err;
        EXPECT_FALSE(std::filesystem::exists(path("plot.png")));
    }
};

TEST_F(KWChannelPlot, DrawsAChannelWithItsKeysOnTheViewsGround) {
    const QImage image = drawn({sample("bouncing-ball.kwdoc"), "Position/y"});
    EXPECT_EQ(image.size(), QSize(960, 540));
    EXPECT_TRUE(hasColor(image, QColor(0, 255, 0)));
    EXPECT_TRUE(hasColor(image, Qt::black)); // the handles
    EXPECT_TRUE(hasColor(image, QColor::fromRgbF(0.1f, 0.0f, 0.3f).toRgb().rgb()));
}

TEST_F(KWChannelPlot, TakesSizeScaleAndGround) {
    const QImage image = drawn({sample("bouncing-ball.kwdoc"), "Position/y", "--size", "320x200",
                                "--scale", "2", "--background", "#102030", "--no-grid"});
    EXPECT_EQ(image.size(), QSize(640, 400));
    EXPECT_EQ(image.pixelColor(5, 5), QColor(0x10, 0x20, 0x30));
}

TEST_F(KWChannelPlot, DrawsAllChannelsWithTheirNamesWhenNoneIsNamed) {
    const QImage with = drawn({sample("bouncing-ball.kwdoc")});
    const QImage without = drawn({sample("bouncing-ball.kwdoc"), "--no-names"}, "bare.png");
    EXPECT_NE(with, without);
    EXPECT_EQ(with.size(), without.size());
}

TEST_F(KWChannelPlot, TheRangeOfTimesAndValuesCanBeChosen) {
    const QImage all = drawn({ball, "Position/y", "--no-grid"});
    const QImage part = drawn({ball, "Position/y", "--no-grid", "--from", "0", "--to", "0.1",
                               "--min", "10", "--max", "11"},
                              "part.png");
    EXPECT_TRUE(hasColor(all, QColor(0, 255, 0)));
    EXPECT_FALSE(hasColor(part, QColor(0, 255, 0)));
}

TEST_F(KWChannelPlot, DrawsTheTimeLineWhereItIsWanted) {
    EXPECT_NE(drawn({ball, "Position/y", "--time", "0.3"}),
              drawn({ball, "Position/y"}, "without.png"));
}

TEST_F(KWChannelPlot, WritesSVGByItsEnding) {
    const Result result = run({"plot", sample("wave.kwdoc"), "-o", path("wave.svg"), "--light"});
    EXPECT_EQ(result.code, 0);
    EXPECT_EQ(result.err, "");
    const std::string text = readFile(path("wave.svg"));
    EXPECT_TRUE(text.starts_with("<?xml"));
    EXPECT_NE(text.find("polyline"), std::string::npos);
}

TEST_F(KWChannelPlot, DrawsExpressions) {
    EXPECT_FALSE(drawn({sample("wave.kwdoc"), "Buoy/tilt"}).isNull());
}

TEST_F(KWChannelPlot, WrongArgumentsAreNamedAndNothingIsWritten) {
    const std::string out = path("plot.png");
    expectRefused({"-o", path("plot.jpg")}, "ends in neither .png nor .svg");
    expectRefused({"-o", out, "--size", "12"}, "is no size");
    expectRefused({"-o", out, "--size", "99999x10"}, "is no size");
    expectRefused({"-o", out, "--scale", "0"}, "from 0.25 to 8");
    expectRefused({"-o", out, "--from", "2", "--to", "1"}, "nothing between --from 2 and --to 1");
    expectRefused({"-o", out, "--min", "2", "--max", "2"}, "nothing between --min 2 and --max 2");
    expectRefused({"-o", out, "--background", "nocolour"}, "is no colour");
    expectRefused({"-o", out, "--from", "nan"}, "--from");
}

TEST_F(KWChannelPlot, ADocumentWithoutChannelsHasNothingToDraw) {
    const Result result = run(
        {"plot", sample("hard-curves-museum.kwdoc"), "no such channel", "-o", path("plot.png")});
    EXPECT_EQ(result.code, 2);
    EXPECT_FALSE(std::filesystem::exists(path("plot.png")));
}
