#include "RecordingPainter.h"
#include "ViewTestSupport.h"

#include <KWBase/KWDevicePixels.h>

#include <gtest/gtest.h>

#include <QImage>
#include <QMarginsF>
#include <QPainter>
#include <algorithm>
#include <functional>

namespace {

using Draw = std::function<void(QPainter&)>;

QImage drawn(int scale, const Draw& draw) {
    QImage image(60 * scale, 40 * scale, QImage::Format_RGB32);
    image.fill(QColor(20, 40, 60));
    image.setDevicePixelRatio(scale);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.translate(0, 40);
    painter.scale(1, -1);
    draw(painter);
    return image;
}

/// How much of the stretch from `pixel` to one further lies between two places.
double share(int pixel, double from, double to) {
    return std::max(0.0, std::min(to, pixel + 1.0) - std::max(from, pixel + 0.0));
}

} // namespace

TEST(KWDevicePixels, EachPixelGetsTheShareThatIsCovered) {
    const QLineF lines[] = {{10.5, 0.5, 10.5, 40.5},
                            {0.5, 7.5, 60.5, 7.5},
                            {3, 12.25, 50, 12.25},
                            {50, 12.25, 3, 12.25},
                            {33.3, 5.2, 33.3, 31.7}};
    for (const int scale : {1, 2, 3})
        for (const double width : {0.5, 1.0, 1.5, 2.5})
            for (const QLineF& line : lines) {
                const QImage image = drawn(scale, [&](QPainter& painter) {
                    painter.setPen(QPen(QColor(220, 240, 160), width));
                    KWDrawStraightLine(painter, line);
                });
                QRectF covered = QRectF(line.p1(), line.p2()).normalized();
                covered += line.dx() == 0 ? QMarginsF(width / 2, 0, width / 2, 0)
                                          : QMarginsF(0, width / 2, 0, width / 2);
                for (int y = 0; y < image.height(); ++y)
                    for (int x = 0; x < image.width(); ++x) {
                        const double expected =
                            share(x, covered.left() * scale, covered.right() * scale) *
                            share(y, (40 - covered.bottom()) * scale, (40 - covered.top()) * scale);
                        // Both the share and the mixture are rounded.
                        ASSERT_NEAR(image.pixelColor(x, y).red(), 20 + 200 * expected, 1.5)
                            << scale << ' ' << width << ' ' << x << ' ' << y;
                    }
            }
}

TEST(KWDevicePixels, AMinorLineOfTheGridHalfCoversOnePixel) {
    const QImage image = drawn(1, [](QPainter& painter) {
        painter.setPen(QPen(QColor(220, 240, 160), 0.5, Qt::SolidLine, Qt::FlatCap));
        KWDrawStraightLine(painter, QLineF(10.5, 0.5, 10.5, 40.5));
    });
    EXPECT_EQ(image.pixelColor(9, 20), QColor(20, 40, 60));
    EXPECT_NEAR(image.pixelColor(10, 20).red(), 120, 1);
    EXPECT_NEAR(image.pixelColor(10, 20).green(), 140, 1);
    EXPECT_EQ(image.pixelColor(11, 20), QColor(20, 40, 60));
    EXPECT_NEAR(image.pixelColor(10, 39).red(), 70, 1);
}

TEST(KWDevicePixels, ElsewhereTheLineIsDrawnAsALine) {
    RecordingDevice device(60, 40);
    QPainter painter(&device);
    painter.setPen(QPen(QColor(Qt::red), 1.5));
    EXPECT_FALSE(KWDevicePixels(painter));
    KWDrawStraightLine(painter, QLineF(10.5, 0.5, 10.5, 40.5));
    painter.end();
    ASSERT_EQ(device.drawn.size(), 1u);
    EXPECT_EQ(device.drawn[0].kind, Drawn::line);
    EXPECT_EQ(device.drawn[0].width, 1.5);
}

TEST(KWDevicePixels, ATurnedOrUnevenlyScaledPainterDrawsForItself) {
    QImage image(60, 40, QImage::Format_RGB32);
    QPainter painter(&image);
    EXPECT_TRUE(KWDevicePixels(painter));
    painter.save();
    painter.rotate(10);
    EXPECT_FALSE(KWDevicePixels(painter));
    painter.restore();
    painter.save();
    painter.scale(2, 1);
    EXPECT_FALSE(KWDevicePixels(painter));
    painter.restore();
    painter.save();
    painter.setOpacity(0.5);
    EXPECT_FALSE(KWDevicePixels(painter));
    painter.restore();
    painter.setCompositionMode(QPainter::CompositionMode_Plus);
    EXPECT_FALSE(KWDevicePixels(painter));
}

TEST(KWDevicePixels, LeavesThePainterAsItWas) {
    QImage image(60, 40, QImage::Format_RGB32);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.translate(3, 5);
    painter.scale(2, 2);
    const QTransform before = painter.transform();
    {
        const KWDevicePixels pixels(painter);
        ASSERT_TRUE(pixels);
        EXPECT_EQ(pixels.scale(), 2);
        EXPECT_EQ(pixels.transform().map(QPointF(1, 1)), QPointF(5, 7));
        EXPECT_TRUE(painter.deviceTransform().isIdentity());
    }
    EXPECT_EQ(painter.transform(), before);
    EXPECT_TRUE(painter.testRenderHint(QPainter::Antialiasing));
}

TEST(KWDevicePixels, LinesThatAreFarAwayOrNowhereAreHarmless) {
    const QImage image = drawn(1, [](QPainter& painter) {
        painter.setPen(QPen(QColor(Qt::red), 1));
        KWDrawStraightLine(painter, QLineF(1e30, 0, 1e30, 40));
        KWDrawStraightLine(painter, QLineF(-1e7, 1e12, 1e7, 1e12));
    });
    EXPECT_EQ(image, drawn(1, [](QPainter&) {}));
}
