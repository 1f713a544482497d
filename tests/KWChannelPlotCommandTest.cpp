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
    static std::string archived(const std::vector<std::shared_ptr<KWElement>>& elements) {
        const KWData data = documentWith(elements).data();
        return {reinterpret_cast<const char*>(data.data()), data.size()};
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
    const std::string text = contentsOf(path("wave.svg"));
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

TEST_F(KWChannelPlot, RangesThatSinglePrecisionCannotHoldAreRefused) {
    const std::string out = path("plot.png");
    expectRefused({"-o", out, "--from", "100000", "--to", "100000.001"},
                  "--from 100000 and --to 100000.001 are too close together");
    expectRefused({"-o", out, "--min", "16777216", "--max", "16777216.4"},
                  "--min 16777216 and --max 16777216.4 are too close together");
    expectRefused({"-o", out, "--from", "-3e38", "--to", "3e38"},
                  "--from -3e38 and --to 3e38 are too far apart");
    expectRefused({"-o", out, "--from", "-1e39", "--to", "1e39"}, "too far apart");
    expectRefused({"-o", out, "--min", "-1e39"}, "--min -1e39 and --max");
}

TEST_F(KWChannelPlot, AKeyFarFromZeroIsDrawn) {
    for (const float time : {1e8f, -1e8f, 3e38f, 16777216.0f, 12.5f}) {
        const auto channel = std::make_shared<KWKeyFramedChannel>("far");
        channel->setChannelColorIndex(1);
        channel->setValueForKeyframe(time, KWTime(time));
        writeFile(path("far.kwdoc"), archived({elementWith("Far", {channel})}));
        const QImage image = drawn({path("far.kwdoc"), "--no-grid"});
        EXPECT_TRUE(hasColor(image, Qt::black)) << time; // its handle
        EXPECT_TRUE(hasColor(image, Qt::yellow)) << time;
    }
}

TEST_F(KWChannelPlot, ValuesThatNoPictureCanHoldAreRefusedOrLeaveItToTheOthers) {
    const auto huge = std::make_shared<KWKeyFramedChannel>("huge");
    huge->setValueForKeyframe(3e38f, KWTime(0));
    huge->setValueForKeyframe(-3e38f, KWTime(5));
    const auto large = std::make_shared<KWKeyFramedChannel>("large");
    large->setChannelColorIndex(1);
    large->setValueForKeyframe(1e34f, KWTime(0));
    large->setValueForKeyframe(0, KWTime(5));
    writeFile(path("huge.kwdoc"), archived({elementWith("Both", {large, huge})}));
    EXPECT_TRUE(hasColor(drawn({path("huge.kwdoc"), "--no-grid"}), Qt::yellow));
    EXPECT_TRUE(hasColor(drawn({path("huge.kwdoc"), "large", "--no-grid"}), Qt::yellow));
    const Result result = run({"plot", path("huge.kwdoc"), "huge", "-o", path("none.png")});
    EXPECT_EQ(result.code, 2);
    EXPECT_NE(result.err.find("too far apart"), std::string::npos) << result.err;
    EXPECT_FALSE(std::filesystem::exists(path("none.png")));
    EXPECT_FALSE(drawn({museum}).isNull());
}

TEST_F(KWChannelPlot, NumbersOfTheGridCanBeReadOnALightGround) {
    // At this scale strokes of letters fill whole pixels.
    const QColor label(80, 82, 90);
    for (const std::vector<std::string>& ground :
         {std::vector<std::string>{"--light"}, {"--background", "#ffffff"}}) {
        std::vector<std::string> arguments{ball, "Position/y", "--scale", "4", "--size", "320x200"};
        arguments.insert(arguments.end(), ground.begin(), ground.end());
        EXPECT_TRUE(hasColor(drawn(arguments), label));
        arguments.emplace_back("--no-legend");
        EXPECT_FALSE(hasColor(drawn(arguments), label));
    }
    EXPECT_FALSE(hasColor(drawn({ball, "Position/y", "--scale", "4", "--size", "320x200"}), label));
}

TEST_F(KWChannelPlot, ANumberThatWouldBeCutByTheEdgeIsLeftOut) {
    const std::vector<std::string> arguments{ball, "Position/y", "--from", "0", "--to", "8.05"};
    const QImage with = drawn(arguments);
    auto bare = arguments;
    bare.emplace_back("--no-legend");
    const QImage without = drawn(bare, "bare.png");
    EXPECT_NE(with, without);
    // The line at 8 stands six points from the right.
    const QRect corner(940, 500, 20, 40);
    EXPECT_EQ(with.copy(corner), without.copy(corner));
}

TEST_F(KWChannelPlot, NamesLeaveMostOfThePictureToTheCurves) {
    for (const char* const size : {"120x60", "160x90", "300x120", "960x540", "2000x100"}) {
        SCOPED_TRACE(size);
        const QImage with = drawn({ball, "--size", size});
        const QImage without = drawn({ball, "--size", size, "--no-names"}, "bare.png");
        int changed = 0;
        for (int y = 0; y < with.height(); ++y)
            for (int x = 0; x < with.width(); ++x)
                changed += with.pixel(x, y) != without.pixel(x, y);
        EXPECT_LE(4 * changed, with.width() * with.height());
        EXPECT_EQ(changed == 0, with.width() < 200);
    }
}

TEST_F(KWChannelPlot, AChannelWhoseNameBeginsWithDotsHasItsColourToo) {
    const auto first = constantChannel("first", 0);
    const auto dotted = constantChannel("… and so on", 1);
    first->setChannelColorIndex(1);
    dotted->setChannelColorIndex(2);
    writeFile(path("dots.kwdoc"), archived({elementWith("… all", {first, dotted})}));
    const QImage image = drawn({path("dots.kwdoc"), "--no-grid", "--scale", "4"});
    // Beside their names; the curves themselves are elsewhere.
    const QImage names = image.copy(2400, 40, 1400, 200);
    EXPECT_TRUE(hasColor(names, Qt::yellow));
    EXPECT_TRUE(hasColor(names, Qt::cyan));
}

TEST_F(KWChannelPlot, AnSVGHasTheSizeOfItsPoints) {
    EXPECT_EQ(run({"plot", wave, "-o", path("wave.svg"), "--size", "960x480"}).code, 0);
    const std::string text = contentsOf(path("wave.svg"));
    EXPECT_NE(text.find("width=\"254mm\" height=\"127mm\""), std::string::npos);
    EXPECT_NE(text.find("viewBox=\"0 0 960 480\""), std::string::npos);
}

TEST_F(KWChannelPlot, ADocumentWithoutChannelsHasNothingToDraw) {
    const Result result = run(
        {"plot", sample("hard-curves-museum.kwdoc"), "no such channel", "-o", path("plot.png")});
    EXPECT_EQ(result.code, 2);
    EXPECT_FALSE(std::filesystem::exists(path("plot.png")));
}
