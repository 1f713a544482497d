#include "RecordingPainter.h"
#include "ViewTestSupport.h"

#include <KWBase/KWCurvePainter.h>

#include <gtest/gtest.h>

#include <QImage>
#include <QPainter>
#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <limits>
#include <random>
#include <vector>

namespace {

using Points = std::vector<QPointF>;

constexpr double infinity = std::numeric_limits<double>::infinity();
constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();
constexpr int width = 300;
constexpr int height = 200;

QPen pen(double lineWidth, const QColor& color = Qt::white) {
    QPen line(color, lineWidth, Qt::SolidLine, Qt::FlatCap, Qt::MiterJoin);
    line.setMiterLimit(1);
    return line;
}

enum Way { ours, plain };

QImage pictureOf(const Points& points, Way way, double scale = 1, const QPen& with = pen(2.5)) {
    QImage image(static_cast<int>(width * scale), static_cast<int>(height * scale),
                 QImage::Format_RGB32);
    image.fill(Qt::black);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.scale(scale, scale);
    painter.translate(0, height);
    painter.scale(1, -1);
    painter.setPen(with);
    if (way == ours)
        KWDrawCurve(painter, points, 0, height);
    else
        painter.drawPolyline(points.data(), static_cast<int>(points.size()));
    return image;
}

/// What pixels should be: what the painter draws on eight times as many in each direction, and
/// the mean of those.
QImage exactPicture(const Points& points, double scale = 1, const QPen& with = pen(2.5)) {
    constexpr int fine = 8;
    const QImage large = pictureOf(points, plain, scale * fine, with);
    QImage image(large.width() / fine, large.height() / fine, QImage::Format_RGB32);
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x) {
            int sum = 0;
            for (int row = 0; row < fine; ++row) {
                const auto* line =
                    reinterpret_cast<const QRgb*>(large.constScanLine(y * fine + row));
                for (int column = 0; column < fine; ++column)
                    sum += qRed(line[x * fine + column]);
            }
            const int mean = (sum + fine * fine / 2) / (fine * fine);
            image.setPixel(x, y, qRgb(mean, mean, mean));
        }
    return image;
}

/// The largest difference of a pixel, and the mean one of those that are not black in both.
struct Difference {
    Difference(const QImage& a, const QImage& b) {
        double sum = 0;
        int count = 0;
        for (int y = 0; y < a.height(); ++y)
            for (int x = 0; x < a.width(); ++x) {
                const int p = qRed(a.pixel(x, y));
                const int q = qRed(b.pixel(x, y));
                largest = std::max(largest, std::abs(p - q));
                sum += std::abs(p - q);
                count += (p != 0 || q != 0) ? 1 : 0;
            }
        mean = count == 0 ? 0 : sum / count;
    }
    int largest = 0;
    double mean = 0;
};

Points sine(int steps, double waves, double amplitude = 80) {
    Points points;
    for (int i = 0; i <= steps; ++i)
        points.emplace_back(width * i / double(steps),
                            100 + amplitude * std::sin(2 * M_PI * waves * i / steps));
    return points;
}

bool isBlack(const QImage& image) {
    QImage black = image;
    black.fill(Qt::black);
    return image == black;
}

std::vector<Drawn> recorded(const Points& points) {
    RecordingDevice device(width, height);
    QPainter painter(&device);
    painter.translate(0, height);
    painter.scale(1, -1);
    painter.setPen(pen(2.5));
    KWDrawCurve(painter, points, 0, height);
    painter.end();
    return device.drawn;
}

} // namespace

TEST(KWCurvePainter, EachPixelGetsTheShareThatIsCovered) {
    const struct {
        double scale;
        int steps;
        double lineWidth;
    } cases[] = {{1, 100, 2.5}, {1, 600, 1.5}, {1.5, 300, 1.5}, {2, 100, 2.5}};
    for (const auto& [scale, steps, lineWidth] : cases) {
        const Points points = sine(steps, 2);
        const Difference difference(pictureOf(points, ours, scale, pen(lineWidth)),
                                    exactPicture(points, scale, pen(lineWidth)));
        // The finer picture is off by some of its own pixels.
        EXPECT_LE(difference.largest, 5) << scale << ' ' << steps << ' ' << lineWidth;
        EXPECT_LE(difference.mean, 0.25) << scale << ' ' << steps << ' ' << lineWidth;
    }
}

TEST(KWCurvePainter, CurvesLookAsThePainterDrawsThem) {
    for (const double scale : {1.0, 2.0})
        for (const int steps : {30, 100, 600}) {
            const Points points = sine(steps, 2);
            const Difference difference(pictureOf(points, ours, scale),
                                        pictureOf(points, plain, scale));
            // The painter rounds what it draws to parts of pixels; a few pixels differ by more.
            EXPECT_LE(difference.mean, 1.5) << scale << ' ' << steps;
        }
}

TEST(KWCurvePainter, StraightLinesOfAnySlopeLookAsThePainterDrawsThem) {
    for (int i = -20; i <= 20; ++i) {
        const Points points{{20, 100.0 - i * 4.4}, {20 + 260.0 / (1 + std::abs(i)), 100 + i * 4.4}};
        const Difference difference(pictureOf(points, ours), pictureOf(points, plain));
        EXPECT_LE(difference.largest, 16) << i;
    }
    const Points upright{{50.3, 10}, {50.3, 180}};
    EXPECT_LE(Difference(pictureOf(upright, ours), pictureOf(upright, plain)).largest, 16);
}

TEST(KWCurvePainter, SharpCornersAreWhereThePainterHasThem) {
    const Points steps{{10, 50}, {100, 50}, {100, 150}, {200, 150}, {201, 40}, {290, 40}};
    const Difference difference(pictureOf(steps, ours, 2, pen(2.5)),
                                pictureOf(steps, plain, 2, pen(2.5)));
    EXPECT_LE(difference.largest, 32);
    EXPECT_LE(difference.mean, 2);
}

TEST(KWCurvePainter, TranslucentCurvesHaveNoKnots) {
    const QColor half(255, 255, 255, 128);
    for (const int steps : {20, 100, 300, 900}) {
        const QImage image = pictureOf(sine(steps, 1.5), ours, 2, pen(6, half));
        int brightest = 0;
        for (int y = 0; y < image.height(); ++y)
            for (int x = 0; x < image.width(); ++x)
                brightest = std::max(brightest, qRed(image.pixel(x, y)));
        EXPECT_LE(brightest, 129) << steps;
        EXPECT_GE(brightest, 127) << steps;
    }
}

TEST(KWCurvePainter, EachColumnIsFilledAsThickAsTheLineIs) {
    const QImage image = pictureOf({{0, 100.2}, {150, 100.2}, {300, 100.2}}, ours);
    for (int x = 0; x < width; ++x) {
        int sum = 0;
        for (int y = 0; y < height; ++y)
            sum += qRed(image.pixel(x, y));
        EXPECT_NEAR(sum, 2.5 * 255, 2) << x;
    }
}

TEST(KWCurvePainter, JaggedCurvesComeCloseToWhatThePainterDraws) {
    std::mt19937 engine(7);
    std::uniform_real_distribution<double> anywhere(10, height - 10);
    for (const int steps : {20, 60, 150}) {
        Points points;
        for (int i = 0; i <= steps; ++i)
            points.emplace_back(width * i / double(steps), anywhere(engine));
        const Difference difference(pictureOf(points, ours), pictureOf(points, plain));
        // Where three parts overlap at a tip, shares may be counted twice.
        EXPECT_LE(difference.mean, 6) << steps;
    }
}

TEST(KWCurvePainter, MoreSamplesThanColumnsAreThinnedOutToWhatCanBeSeen) {
    Points points;
    for (int i = 0; i <= 300'000; ++i)
        points.emplace_back(width * i / 300'000.0, 100 + 70 * std::sin(i * 0.05));
    const QImage image = pictureOf(points, ours);
    for (int x = 2; x < width - 2; ++x)
        for (const int y : {32, 60, 100, 140, 168})
            EXPECT_GT(qRed(image.pixel(x, y)), 200) << x << ' ' << y;
    EXPECT_EQ(qRed(image.pixel(150, 20)), 0);
}

TEST(KWCurvePainter, NotFinitePointsMakeGaps) {
    for (const double hole : {notANumber, infinity, -infinity}) {
        Points points{{0, 100}, {100, 100}, {150, hole}, {200, 100}, {300, 100}};
        const QImage image = pictureOf(points, ours);
        EXPECT_EQ(qRed(image.pixel(50, 100)), 255);
        EXPECT_EQ(qRed(image.pixel(150, 100)), 0);
        EXPECT_EQ(qRed(image.pixel(250, 100)), 255);
        EXPECT_EQ(recorded(points).size(), 2u);
    }
    EXPECT_TRUE(isBlack(pictureOf({{0, notANumber}, {300, notANumber}}, ours)));
    EXPECT_TRUE(isBlack(pictureOf({{0, 100}, {150, notANumber}, {300, 100}}, ours)));
}

TEST(KWCurvePainter, NothingAndSinglePointsDrawNothing) {
    EXPECT_TRUE(isBlack(pictureOf({}, ours)));
    EXPECT_TRUE(isBlack(pictureOf({{100, 100}}, ours)));
    EXPECT_TRUE(isBlack(pictureOf({{100, 100}, {100, 100}, {100, 100}}, ours)));
    EXPECT_TRUE(recorded({{100, 100}}).empty());
}

TEST(KWCurvePainter, HugeValuesAreFollowedAsFarAsTheyCanBeSeen) {
    const QImage image = pictureOf({{0, 100}, {100, 1e30}, {200, -1e30}, {300, 100}}, ours);
    EXPECT_EQ(qRed(image.pixel(3, 50)), 0);
    EXPECT_EQ(qRed(image.pixel(0, 50)), 255);
    EXPECT_EQ(qRed(image.pixel(150, 100)), 255);
    EXPECT_EQ(qRed(image.pixel(150, 10)), 255);
    for (const Drawn& curve : recorded({{0, 100}, {100, 1e30}, {200, -1e30}, {300, 100}})) {
        EXPECT_EQ(curve.kind, Drawn::curve);
        EXPECT_GE(curve.bounds().top(), -KWCurveMargin);
        EXPECT_LE(curve.bounds().bottom(), height + KWCurveMargin);
    }
}

TEST(KWCurvePainter, ACurveThatCannotBeSeenDrawsNothing) {
    EXPECT_TRUE(recorded({{0, 300}, {100, 400}, {300, 1e30}}).empty());
    EXPECT_TRUE(recorded({{0, -300}, {100, -400}}).empty());
    EXPECT_EQ(recorded({{0, -300}, {100, 300}}).size(), 1u);
}

TEST(KWCurvePainter, ElsewhereACurveIsOneLineInItsPen) {
    const Points points = sine(50, 1);
    const auto drawn = recorded(points);
    ASSERT_EQ(drawn.size(), 1u);
    EXPECT_EQ(drawn[0].kind, Drawn::curve);
    EXPECT_EQ(drawn[0].width, 2.5);
    ASSERT_EQ(static_cast<std::size_t>(drawn[0].points.size()), points.size());
    for (int i = 0; i < drawn[0].points.size(); ++i)
        EXPECT_NEAR(drawn[0].points[i].y(), points[static_cast<std::size_t>(i)].y(), 1e-9);
}

TEST(KWCurvePainter, RandomCurvesNeitherCrashNorLeaveTheImage) {
    std::mt19937 engine(11);
    std::uniform_real_distribution<double> unit(-1, 1);
    for (int round = 0; round < 300; ++round) {
        Points points;
        double x = -20;
        while (x < width + 20) {
            const double size = std::pow(10.0, 4 * unit(engine));
            points.emplace_back(x, 100 + 100 * unit(engine) * size);
            if (unit(engine) < -0.95)
                points.emplace_back(x, notANumber);
            x += std::fabs(unit(engine)) * std::pow(10.0, 2 * unit(engine));
        }
        pictureOf(points, ours, 1 + 0.1 * (round % 15), pen(0.3 + 0.2 * (round % 20)));
    }
}
