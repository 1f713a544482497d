#include "ViewTestSupport.h"

#include <KWBase/KWBackgroundView.h>
#include <KWBase/KWImageBackground.h>

#include <gtest/gtest.h>

#include <QImage>
#include <QPainter>
#include <QSignalSpy>
#include <array>
#include <cmath>
#include <limits>
#include <random>
#include <string>

namespace {

constexpr std::array<std::int32_t, 4> cuts{10, 20, 10, 20};
const QColor ground = Qt::white;

QColor colorOfCell(int column, int row) {
    return QColor::fromHsv((row * 3 + column) * 40, 255, 90 + 15 * column).toRgb();
}

bool isColorOfCell(const QColor& color) {
    for (int row = 0; row < 3; ++row)
        for (int column = 0; column < 3; ++column)
            if (color.rgb() == colorOfCell(column, row).rgb())
                return true;
    return false;
}

/// 30 by 30 points, each of the nine cells in a colour of its own.
QImage cellImage(int ratio = 1) {
    QImage image(30 * ratio, 30 * ratio, QImage::Format_ARGB32_Premultiplied);
    QPainter painter(&image);
    const int x[] = {0, 10, 20, 30};
    const int top[] = {0, 11, 21, 30}; // a cut names the last row above it
    for (int row = 0; row < 3; ++row)
        for (int column = 0; column < 3; ++column)
            painter.fillRect(x[column] * ratio, top[row] * ratio,
                             (x[column + 1] - x[column]) * ratio, (top[row + 1] - top[row]) * ratio,
                             colorOfCell(column, row));
    painter.end();
    image.setDevicePixelRatio(ratio);
    return image;
}

/// Every pixel another one.
QImage noise(int ratio = 1) {
    QImage image(30 * ratio, 30 * ratio, QImage::Format_RGB32);
    std::mt19937 random(3);
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x)
            image.setPixel(x, y, 0xff000000u | (random() & 0xffffffu));
    image.setDevicePixelRatio(ratio);
    return image;
}

QImage paper(int width, int height, int scale) {
    QImage image(width * scale, height * scale, QImage::Format_RGB32);
    image.fill(ground);
    image.setDevicePixelRatio(scale);
    return image;
}

struct Drawing {
    QImage picture;
    bool answer;
};

Drawing draw(const KWImageBackground& background, const QRectF& rect, int scale = 1) {
    Drawing drawing{paper(100, 80, scale), false};
    QPainter painter(&drawing.picture);
    drawing.answer = background.drawInRect(painter, rect);
    return drawing;
}

bool isBlank(const Drawing& drawing) {
    QImage blank = drawing.picture;
    blank.fill(ground);
    return drawing.picture == blank;
}

/// Which part of a side of this length a place belongs to, 3 outside of it.
int part(int at, int from, int length, int first, int last) {
    if (at < from || at >= from + length)
        return 3;
    return at < from + first ? 0 : at < from + length - last ? 1 : 2;
}

/// What nine slices in plain colours look like.
void expectCells(const Drawing& drawing, const QRect& rect, int scale, bool hasCenter = true) {
    for (int y = 0; y < drawing.picture.height(); ++y) {
        for (int x = 0; x < drawing.picture.width(); ++x) {
            const int column = part(x / scale, rect.x(), rect.width(), 10, 10);
            const int row = part(y / scale, rect.y(), rect.height(), 11, 9);
            const bool isDrawn = column < 3 && row < 3 && (hasCenter || column != 1 || row != 1);
            const QColor expected = isDrawn ? colorOfCell(column, row) : ground;
            ASSERT_EQ(drawing.picture.pixelColor(x, y).rgb(), expected.rgb())
                << "at " << x << ", " << y;
        }
    }
}

class KWImageBackgroundAtScale : public testing::TestWithParam<int> {
  protected:
    int scale = GetParam();
};

} // namespace

TEST(KWImageBackground, AFreshOneHasItsImageAndDrawsItsCenter) {
    const QImage image = cellImage();
    const KWImageBackground background(image, cuts);
    EXPECT_EQ(background.image(), image);
    EXPECT_TRUE(background.drawsCenterRegion());
    EXPECT_EQ(background.grid(), KWSliceGridForCuts(30, 30, cuts));
    EXPECT_EQ(background.smallestWidth(), 21);
    EXPECT_EQ(background.smallestHeight(), 21);
    EXPECT_FALSE(KWImageBackground(image, cuts, false).drawsCenterRegion());
}

TEST(KWImageBackground, AnImageWithMorePixelsHasTheSameCuts) {
    EXPECT_EQ(KWImageBackground(cellImage(2), cuts).grid(),
              KWImageBackground(cellImage(1), cuts).grid());
}

TEST_P(KWImageBackgroundAtScale, NineSlicesFillARectangleToThePixel) {
    for (const int ratio : {1, 2}) {
        const KWImageBackground background(cellImage(ratio), cuts);
        for (const QRect rect : {QRect(3, 4, 90, 70), QRect(0, 0, 30, 30), QRect(5, 5, 33, 21)}) {
            const Drawing drawing = draw(background, QRectF(rect), scale);
            EXPECT_TRUE(drawing.answer);
            expectCells(drawing, rect, scale);
        }
    }
}

TEST_P(KWImageBackgroundAtScale, ARectangleOnePointLargerThanTheCornersDrawsAMiddleOfOnePoint) {
    const Drawing drawing = draw(KWImageBackground(cellImage(), cuts), {7, 8, 21, 21}, scale);
    EXPECT_TRUE(drawing.answer);
    expectCells(drawing, {7, 8, 21, 21}, scale);
    EXPECT_EQ(drawing.picture.pixelColor(17 * scale, 19 * scale), colorOfCell(1, 1));
}

TEST_P(KWImageBackgroundAtScale, WithoutItsCenterTheMiddleStaysUntouched) {
    KWImageBackground background(cellImage(), cuts);
    background.setDrawsCenterRegion(false);
    const Drawing drawing = draw(background, {7, 8, 60, 50}, scale);
    EXPECT_TRUE(drawing.answer);
    expectCells(drawing, {7, 8, 60, 50}, scale, false);
}

TEST_P(KWImageBackgroundAtScale, FractionsOfTheRectangleAreDropped) {
    const Drawing drawing =
        draw(KWImageBackground(cellImage(), cuts), {7.9, 8.9, 60.9, 50.9}, scale);
    expectCells(drawing, {7, 8, 60, 50}, scale);
}

TEST_P(KWImageBackgroundAtScale, CornersKeepEveryPixel) {
    for (const int ratio : {1, 2}) {
        const QImage image = noise(ratio);
        const Drawing drawing = draw(KWImageBackground(image, cuts), {0, 0, 100, 80}, scale);
        if (ratio > scale)
            continue; // there are more than can be shown
        for (int y = 0; y < 11 * scale; ++y)
            for (int x = 0; x < 10 * scale; ++x)
                ASSERT_EQ(drawing.picture.pixel(x, y),
                          image.pixel(x * ratio / scale, y * ratio / scale))
                    << x << ", " << y;
    }
}

TEST_P(KWImageBackgroundAtScale, AnEdgeIsSharpAcrossWhereItIsStretchedAlong) {
    QImage image(30, 30, QImage::Format_RGB32);
    for (int y = 0; y < 30; ++y)
        for (int x = 0; x < 30; ++x)
            image.setPixel(x, y, y % 2 ? 0xff102030u : 0xffe0d0c0u);
    const Drawing drawing = draw(KWImageBackground(image, cuts), {0, 0, 100, 80}, scale);
    for (int y = 0; y < 11 * scale; ++y)
        for (int x = 0; x < 100 * scale; ++x)
            ASSERT_EQ(drawing.picture.pixel(x, y), image.pixel(0, y / scale)) << x << ", " << y;
}

TEST_P(KWImageBackgroundAtScale, NothingOfAnotherCellBleedsIntoAStretchedOne) {
    QImage image = cellImage();
    for (const int x : {9, 20})
        for (int y = 0; y < 30; ++y)
            image.setPixelColor(x, y, Qt::black);
    const Drawing drawing = draw(KWImageBackground(image, cuts), {0, 0, 100, 80}, scale);
    for (int x = 10 * scale; x < 90 * scale; ++x)
        ASSERT_EQ(drawing.picture.pixelColor(x, 0), colorOfCell(1, 0)) << x;
}

INSTANTIATE_TEST_SUITE_P(Pixels, KWImageBackgroundAtScale, testing::Values(1, 2));

TEST(KWImageBackground, AtOneAndAHalfPixelsAPointNoSeamsShow) {
    QImage picture(150, 120, QImage::Format_RGB32);
    picture.fill(ground);
    picture.setDevicePixelRatio(1.5);
    QPainter painter(&picture);
    painter.setRenderHint(QPainter::Antialiasing);
    EXPECT_TRUE(KWImageBackground(cellImage(), cuts).drawInRect(painter, {0, 0, 99, 79}));
    for (int y = 0; y < 118; ++y)
        for (int x = 0; x < 148; ++x)
            ASSERT_TRUE(isColorOfCell(picture.pixelColor(x, y))) << x << ", " << y;
}

TEST(KWImageBackground, ARectangleAsWideAsTheTwoSideColumnsDrawsNothing) {
    const KWImageBackground background(cellImage(), cuts);
    for (const QRectF rect : {QRectF(7, 8, 20, 50), QRectF(7, 8, 50, 20), QRectF(7, 8, 20.9, 20.9),
                              QRectF(7, 8, -50, -50), QRectF()}) {
        const Drawing drawing = draw(background, rect);
        EXPECT_FALSE(drawing.answer);
        EXPECT_TRUE(isBlank(drawing));
    }
}

TEST(KWImageBackground, ARectangleThatIsNotFiniteDrawsNothing) {
    const KWImageBackground background(cellImage(), cuts);
    for (const double bad : {std::nan(""), std::numeric_limits<double>::infinity(), 1e300}) {
        EXPECT_FALSE(draw(background, {bad, 0, 50, 50}).answer);
        EXPECT_FALSE(draw(background, {0, 0, bad, 50}).answer);
    }
}

TEST(KWImageBackground, AHugeRectangleIsFilled) {
    const Drawing drawing = draw(KWImageBackground(cellImage(), cuts), {-1e6, -1e6, 2e6, 2e6});
    EXPECT_TRUE(drawing.answer);
    EXPECT_EQ(drawing.picture.pixelColor(50, 40), colorOfCell(1, 1));
}

TEST(KWImageBackground, TheImageStandsUprightWhereYGrowsUpwards) {
    Drawing drawing{paper(100, 80, 1), false};
    QPainter painter(&drawing.picture);
    painter.translate(0, 80);
    painter.scale(1, -1);
    EXPECT_TRUE(KWImageBackground(cellImage(), cuts).drawInRect(painter, {5, 10, 60, 50}));
    painter.end();
    expectCells(drawing, {5, 20, 60, 50}, 1);
}

TEST(KWImageBackground, WhatIsTranslucentIsComposedOverWhatIsThere) {
    QImage image(30, 30, QImage::Format_ARGB32_Premultiplied);
    image.fill(QColor(0, 0, 0, 128));
    const Drawing drawing = draw(KWImageBackground(image, cuts), {0, 0, 100, 80});
    const int gray = drawing.picture.pixelColor(50, 40).red();
    EXPECT_NEAR(gray, 127, 1);
    EXPECT_EQ(drawing.picture.pixelColor(2, 2).red(), gray);
}

TEST(KWImageBackground, ThePaintersStateStaysAsItIs) {
    QImage picture = paper(100, 80, 1);
    QPainter painter(&picture);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setCompositionMode(QPainter::CompositionMode_Multiply);
    painter.scale(1, -1);
    const QTransform before = painter.transform();
    KWImageBackground(cellImage(), cuts).drawInRect(painter, {0, -70, 60, 50});
    EXPECT_EQ(painter.transform(), before);
    EXPECT_EQ(painter.compositionMode(), QPainter::CompositionMode_Multiply);
    EXPECT_EQ(painter.renderHints(), QPainter::Antialiasing | QPainter::TextAntialiasing);
}

TEST(KWImageBackground, CutsThatMakeNoSenseDrawWhatCanBeDrawn) {
    constexpr std::int32_t most = std::numeric_limits<std::int32_t>::max();
    constexpr std::int32_t least = std::numeric_limits<std::int32_t>::min();
    for (const std::array<std::int32_t, 4> bad : {std::array{20, 10, 20, 10},
                                                  {-5, 40, -5, 40},
                                                  {most, least, most, least},
                                                  {least, most, least, most},
                                                  {0, 0, 0, 0},
                                                  {0, 30, -1, 29}})
        draw(KWImageBackground(cellImage(), bad), {0, 0, 100, 80});
    EXPECT_TRUE(draw(KWImageBackground(QImage(), {0, 0, -1, -1}), {0, 0, 9, 9}).answer);
}

TEST(KWImageBackground, ACenterThatIsTheWholeImageIsStretchedWhole) {
    QImage image(2, 2, QImage::Format_RGB32);
    image.fill(Qt::red);
    const Drawing drawing = draw(KWImageBackground(image, {0, 2, -1, 1}), {0, 0, 100, 80});
    EXPECT_TRUE(drawing.answer);
    EXPECT_EQ(drawing.picture.pixelColor(0, 0), QColor(Qt::red));
    EXPECT_EQ(drawing.picture.pixelColor(99, 79), QColor(Qt::red));
}

// --- The view.

TEST(KWBackgroundView, AFreshOneHasNoBackgroundAndDrawsNothing) {
    KWBackgroundView view(QRect(1, 2, 100, 80));
    EXPECT_EQ(view.geometry(), QRect(1, 2, 100, 80));
    EXPECT_EQ(view.background(), nullptr);
    Drawing drawing{paper(100, 80, 1), false};
    QPainter painter(&drawing.picture);
    view.drawRect(painter, view.rect());
    EXPECT_TRUE(isBlank(drawing));
}

TEST(KWBackgroundView, FillsItsBoundsWithItsBackground) {
    KWBackgroundView view(QRect(0, 0, 100, 80));
    view.setImageCutsDrawsCenterRegion(cellImage(), cuts, true);
    ASSERT_NE(view.background(), nullptr);
    EXPECT_EQ(view.background()->image(), cellImage());
    expectCells({view.grab().toImage(), true}, {0, 0, 100, 80}, 1);
}

TEST(KWBackgroundView, TooSmallForItsBackgroundDrawsNothing) {
    KWBackgroundView view(QRect(0, 0, 20, 80));
    const QImage before = view.grab().toImage();
    view.setImageCutsDrawsCenterRegion(cellImage(), cuts, true);
    EXPECT_EQ(view.grab().toImage(), before);
}

TEST(KWBackgroundView, ItsBackgroundIsAProperty) {
    KWBackgroundView view;
    QSignalSpy spy(&view, &KWBackgroundView::backgroundChanged);
    const auto background = std::make_shared<KWImageBackground>(cellImage(), cuts);
    EXPECT_TRUE(view.setProperty("background", QVariant::fromValue(background)));
    EXPECT_EQ(view.background(), background);
    EXPECT_EQ(view.property("background").value<std::shared_ptr<KWImageBackground>>(), background);
    view.setBackground(background);
    EXPECT_EQ(spy.count(), 1);
    view.setBackground(nullptr);
    EXPECT_EQ(spy.count(), 2);
}
