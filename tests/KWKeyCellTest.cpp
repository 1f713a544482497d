#include "RecordingPainter.h"
#include "ViewTestSupport.h"

#include <KWBase/KWChannelColorCell.h>
#include <KWBase/KWKeyCell.h>

#include <gtest/gtest.h>

#include <QImage>
#include <QPainter>
#include <memory>

namespace {

class Target final : public KWChannelViewDelegate {
  public:
    ~Target() override { resign(); }
    void keyAction(const KWKeyCell& cell) override { time = cell.time(); }
    float time = 0;
};

/// What a cell draws, on 40 x 40 gray pixels, or four times as many.
template <class Cell>
QImage pictureOf(const Cell& cell, const QRectF& frame, int scale = 1) {
    QImage image(40 * scale, 40 * scale, QImage::Format_RGB32);
    image.fill(Qt::gray);
    image.setDevicePixelRatio(scale);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    cell.drawWithFrameInView(frame, painter);
    return image;
}

template <class Cell>
std::vector<Drawn> drawnBy(const Cell& cell, const QRectF& frame) {
    RecordingDevice device(40, 40);
    QPainter painter(&device);
    cell.drawWithFrameInView(frame, painter);
    painter.end();
    return device.drawn;
}

bool isBlank(const QImage& image) {
    QImage blank(image.size(), QImage::Format_RGB32);
    blank.fill(Qt::gray);
    return image == blank;
}

class KWKeyCellTest : public testing::Test {
  protected:
    ~KWKeyCellTest() override {
        KWKeyCell::setBorderColor(Qt::black);
        KWKeyCell::setInteriorColor(Qt::white);
        KWKeyCell::setSelectedInteriorColor(Qt::white);
    }
    KWKeyCell cell;
};

} // namespace

TEST_F(KWKeyCellTest, ANewCellIsEmpty) {
    EXPECT_EQ(cell.time(), 0);
    EXPECT_EQ(cell.value(), 0);
    EXPECT_EQ(cell.controlPointFrame(), QRectF());
    EXPECT_FALSE(cell.isSelected());
    EXPECT_EQ(cell.target(), nullptr);
    EXPECT_EQ(cell.action(), nullptr);
    EXPECT_TRUE(cell.image().isNull());
}

TEST_F(KWKeyCellTest, KeepsWhatItIsGiven) {
    cell.setTime(1.5f);
    cell.setValue(-2);
    cell.setControlPointFrame({1.5, 2.5, 7, 7});
    cell.setSelected(true);
    EXPECT_EQ(cell.time(), 1.5f);
    EXPECT_EQ(cell.value(), -2);
    EXPECT_EQ(cell.controlPointFrame(), QRectF(1.5, 2.5, 7, 7));
    EXPECT_TRUE(cell.isSelected());
    EXPECT_EQ(KWKeyCell(QImage(3, 4, QImage::Format_RGB32)).image().size(), QSize(3, 4));
}

TEST_F(KWKeyCellTest, AHostCanSendTheActionToTheTarget) {
    Target target;
    cell.setTarget(&target);
    cell.setAction(&KWChannelViewDelegate::keyAction);
    cell.setTime(4);
    ASSERT_EQ(cell.target(), &target);
    (cell.target()->*cell.action())(cell);
    EXPECT_EQ(target.time, 4);
}

TEST_F(KWKeyCellTest, ATargetThatIsGoneReadsAsNone) {
    auto target = std::make_unique<Target>();
    cell.setTarget(target.get());
    const KWKeyCell copy = cell;
    target.reset();
    EXPECT_EQ(cell.target(), nullptr);
    EXPECT_EQ(copy.target(), nullptr);
}

TEST_F(KWKeyCellTest, BeforeAnyViewHasSetTheColorsItIsWhiteWithABlackBorder) {
    for (const bool isSelected : {false, true}) {
        cell.setSelected(isSelected);
        const auto drawn = drawnBy(cell, {10, 10, 7, 7});
        ASSERT_EQ(drawn.size(), 5u);
        EXPECT_EQ(drawn[0].brush, QColor(Qt::white));
        EXPECT_EQ(drawn[1].brush, QColor(Qt::black));
    }
}

TEST_F(KWKeyCellTest, FillsItsFrameAndDrawsABorderHalfAPointWideInside) {
    const auto drawn = drawnBy(cell, {10, 20, 7, 7});
    ASSERT_EQ(drawn.size(), 5u);
    EXPECT_EQ(drawn[0].bounds(), QRectF(10, 13, 7, 7)); // y upwards here
    EXPECT_EQ(drawn[1].bounds(), QRectF(10, 19.5, 7, 0.5));
    EXPECT_EQ(drawn[2].bounds(), QRectF(10, 13, 7, 0.5));
    EXPECT_EQ(drawn[3].bounds(), QRectF(10, 13.5, 0.5, 6));
    EXPECT_EQ(drawn[4].bounds(), QRectF(16.5, 13.5, 0.5, 6));
}

TEST_F(KWKeyCellTest, SelectedItHasTheColorForThat) {
    KWKeyCell::setBorderColor(Qt::yellow);
    KWKeyCell::setInteriorColor(Qt::green);
    KWKeyCell::setSelectedInteriorColor(Qt::red);
    EXPECT_EQ(drawnBy(cell, {10, 10, 7, 7})[0].brush, QColor(Qt::green));
    cell.setSelected(true);
    EXPECT_EQ(drawnBy(cell, {10, 10, 7, 7})[0].brush, QColor(Qt::red));
    EXPECT_EQ(drawnBy(cell, {10, 10, 7, 7})[1].brush, QColor(Qt::yellow));
}

TEST_F(KWKeyCellTest, AtScaleTwoTheBorderIsOnePixel) {
    const QImage image = pictureOf(cell, {10.5, 10.5, 7, 7}, 2);
    EXPECT_EQ(image.pixelColor(20, 28), QColor(Qt::gray));
    EXPECT_EQ(image.pixelColor(21, 28), QColor(Qt::black));
    EXPECT_EQ(image.pixelColor(22, 28), QColor(Qt::white));
    EXPECT_EQ(image.pixelColor(33, 28), QColor(Qt::white));
    EXPECT_EQ(image.pixelColor(34, 28), QColor(Qt::black));
    EXPECT_EQ(image.pixelColor(35, 28), QColor(Qt::gray));
    EXPECT_EQ(image.pixelColor(21, 21), QColor(Qt::black));
    EXPECT_EQ(image.pixelColor(34, 34), QColor(Qt::black));
}

TEST(KWChannelColorCell, DrawsASwatchInTheMiddleOfItsFrame) {
    KWChannelColorCell cell;
    cell.setObjectValue(QColor(Qt::red));
    const auto drawn = drawnBy(cell, {4, 2, 30, 21});
    ASSERT_EQ(drawn.size(), 5u);
    EXPECT_EQ(drawn[0].bounds(), QRectF(14, 22.5, 10, 10)); // y upwards here
    EXPECT_EQ(drawn[0].brush, QColor(Qt::red));
    for (std::size_t i = 1; i < 5; ++i)
        EXPECT_EQ(drawn[i].brush, QColor(Qt::black));
    const QImage image = pictureOf(cell, {5, 5, 30, 20});
    EXPECT_EQ(image.pixelColor(14, 15), QColor(Qt::gray));
    EXPECT_EQ(image.pixelColor(15, 15), QColor(Qt::black));
    EXPECT_EQ(image.pixelColor(16, 15), QColor(Qt::red));
    EXPECT_EQ(image.pixelColor(24, 19), QColor(Qt::black));
    EXPECT_EQ(image.pixelColor(24, 20), QColor(Qt::gray));
}

TEST(KWChannelColorCell, WithoutAColorItDrawsNothingNotEvenAFrame) {
    KWChannelColorCell cell;
    EXPECT_TRUE(isBlank(pictureOf(cell, {5, 5, 30, 20})));
    cell.setObjectValue(QStringLiteral("red"));
    EXPECT_TRUE(isBlank(pictureOf(cell, {5, 5, 30, 20})));
    cell.setObjectValue(QColor(Qt::red));
    EXPECT_FALSE(isBlank(pictureOf(cell, {5, 5, 30, 20})));
}

TEST(KWChannelColorCell, TheColorItIsMadeWithIsNotKept) {
    const KWChannelColorCell cell{QColor(Qt::red)};
    EXPECT_FALSE(cell.objectValue().isValid());
    EXPECT_TRUE(isBlank(pictureOf(cell, {5, 5, 30, 20})));
    EXPECT_TRUE(isBlank(pictureOf(KWChannelColorCell{QImage()}, {5, 5, 30, 20})));
}

TEST(KWChannelColorCell, OverflowsASmallFrameEquallyOnEachSide) {
    KWChannelColorCell cell;
    cell.setObjectValue(QColor(Qt::red));
    EXPECT_EQ(drawnBy(cell, {20, 20, 4, 6})[0].bounds(), QRectF(17, 12, 10, 10));
    EXPECT_EQ(drawnBy(cell, {20, 20, 0, 0})[0].bounds(), QRectF(15, 15, 10, 10));
}
