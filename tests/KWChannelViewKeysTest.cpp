#include "KeyFramedTestSupport.h"
#include "RecordingPainter.h"
#include "ViewTestSupport.h"

#include <KWBase/KWChannelView.h>
#include <KWBase/KWConstantChannel.h>

#include <gtest/gtest.h>

#include <QImage>
#include <QPainter>
#include <algorithm>
#include <memory>
#include <random>
#include <vector>

namespace {

class Delegate final : public KWChannelViewDelegate {
  public:
    ~Delegate() override { resign(); }
};

class KeysView : public KWChannelView {
  public:
    using KWChannelView::drawKeys;
};

class KWChannelViewKeysTest : public testing::Test {
  protected:
    KWChannelViewKeysTest() { view.resize(500, 200); }

    std::vector<KWKeyCell> cells() {
        view.grab();
        return view.keyCells();
    }
    std::vector<float> times() {
        std::vector<float> found;
        for (const KWKeyCell& cell : cells())
            found.push_back(cell.time());
        return found;
    }
    /// The squares inside which handles are drawn.
    std::vector<Drawn> handles() {
        view.grab(); // says where
        RecordingDevice device(500, 200);
        QPainter painter(&device);
        painter.translate(0, 200);
        painter.scale(1, -1);
        view.drawKeys(painter);
        painter.end();
        std::vector<Drawn> squares;
        for (const Drawn& one : device.drawn)
            if (one.bounds().size() == QSizeF(7, 7))
                squares.push_back(one);
        return squares;
    }
    QImage picture(double scale, const QPointF& origin = {}) {
        QImage image(static_cast<int>(500 * scale), static_cast<int>(200 * scale),
                     QImage::Format_RGB32);
        image.fill(Qt::darkGray);
        QPainter painter(&image);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.scale(scale, scale);
        painter.translate(origin);
        painter.translate(0, 200);
        painter.scale(1, -1);
        view.drawKeys(painter);
        return image;
    }
    /// The same, cell by cell.
    QImage plainPicture(double scale, const QPointF& origin = {}) {
        QImage image(static_cast<int>(500 * scale), static_cast<int>(200 * scale),
                     QImage::Format_RGB32);
        image.fill(Qt::darkGray);
        QPainter painter(&image);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.scale(scale, scale);
        painter.translate(origin);
        painter.translate(0, 200);
        painter.scale(1, -1);
        for (const KWKeyCell& cell : view.keyCells())
            cell.drawWithFrameInView(cell.controlPointFrame(), painter);
        return image;
    }

    KeysView view;
};

int farthest(const QImage& a, const QImage& b) {
    int difference = 0;
    for (int y = 0; y < a.height(); ++y)
        for (int x = 0; x < a.width(); ++x)
            difference = std::max(difference, std::abs(qRed(a.pixel(x, y)) - qRed(b.pixel(x, y))));
    return difference;
}

} // namespace

TEST_F(KWChannelViewKeysTest, EachVisibleKeyHasAHandleCenteredOnIt) {
    view.setPrimaryChannel(channelWithKeys({{1, 0}, {2.5f, 1}, {7.77f, -1.3f}}));
    const auto found = cells();
    ASSERT_EQ(found.size(), 3u);
    EXPECT_EQ(found[0].controlPointFrame(), QRectF(46.5, 96.5, 7, 7));
    EXPECT_EQ(found[1].controlPointFrame(), QRectF(121.5, 146.5, 7, 7));
    EXPECT_EQ(found[1].time(), 2.5f);
    EXPECT_EQ(found[1].value(), 1);
    const auto squares = handles();
    ASSERT_EQ(squares.size(), 3u);
    for (std::size_t i = 0; i < 3; ++i) {
        EXPECT_EQ(squares[i].bounds(), found[i].controlPointFrame());
        EXPECT_EQ(squares[i].brush, QColor(Qt::black));
    }
}

TEST_F(KWChannelViewKeysTest, FramesAreThePlainFormula) {
    std::mt19937 engine(5);
    std::uniform_real_distribution<float> unit(-1, 1);
    auto channel = std::make_shared<KWKeyFramedChannel>("curve");
    for (int i = 0; i < 300; ++i)
        channel->setValueForKeyframe(3 * unit(engine), KWTime(8 * unit(engine)));
    view.setPrimaryChannel(channel);
    view.setDisplayedBounds({-5.3f, -1.7f, 9.9f, 3.1f});
    const auto found = cells();
    const KWChannelViewGeometry geometry = view.plotGeometry();
    const auto expected =
        channel->keyframesBetweenAnd(KWTime(geometry.range.hMin), KWTime(geometry.range.hMax));
    ASSERT_EQ(found.size(), expected.size());
    for (std::size_t i = 0; i < found.size(); ++i) {
        EXPECT_EQ(found[i].time(), expected[i].time());
        EXPECT_EQ(found[i].value(), channel->valueForKeyframe(expected[i]));
        const float x = std::floor(geometry.xForTime(found[i].time()) - 3.5f) + 0.5f;
        const float y = std::floor(geometry.yForValue(found[i].value()) - 3.5f) + 0.5f;
        EXPECT_EQ(found[i].controlPointFrame(),
                  QRectF(static_cast<double>(x), static_cast<double>(y), 7, 7));
    }
}

TEST_F(KWChannelViewKeysTest, SelectedKeysAreRed) {
    view.setPrimaryChannel(channelWithKeys({{1, 0}, {2, 1}, {3, 1}}));
    view.setSelectedKeys({KWTime(3), KWTime(1), KWTime(77), KWTime(kwNaN)});
    const auto squares = handles();
    ASSERT_EQ(squares.size(), 3u);
    EXPECT_EQ(squares[0].brush, rgb(0.7, 0, 0));
    EXPECT_EQ(squares[1].brush, QColor(Qt::black));
    EXPECT_EQ(squares[2].brush, rgb(0.7, 0, 0));
    EXPECT_TRUE(view.keyCells()[0].isSelected());
    EXPECT_FALSE(view.keyCells()[1].isSelected());
}

TEST_F(KWChannelViewKeysTest, ZeroOfEitherSignIsOneTime) {
    view.setPrimaryChannel(channelWithKeys({{0, 0}}));
    view.setSelectedKeys({KWTime(-0.0f)});
    ASSERT_EQ(cells().size(), 1u);
    EXPECT_TRUE(view.keyCells()[0].isSelected());
}

TEST_F(KWChannelViewKeysTest, KeysAtTheEndsOfTheRangeHaveHandlesAndThoseOutsideHaveNone) {
    view.setPrimaryChannel(channelWithKeys({{-0.01f, 0}, {0, 0}, {5, 99}, {10, 0}, {10.01f, 0}}));
    EXPECT_EQ(times(), (std::vector<float>{0, 5, 10}));
    view.setDisplayedBounds({0.5f, -2, 4, 4});
    EXPECT_TRUE(times().empty());
    view.setDisplayedBounds({20, -2, 4, 4});
    EXPECT_TRUE(times().empty());
    view.setDisplayedBounds({-20, -2, 4, 4});
    EXPECT_TRUE(times().empty());
}

TEST_F(KWChannelViewKeysTest, HandlesShowTheUsersUnit) {
    const auto channel = channelWithKeys({{1, 0}, {2, 0.01f}});
    channel->setUnitType(KWUnitTypeAngle);
    view.setPrimaryChannel(channel);
    const auto found = cells();
    ASSERT_EQ(found.size(), 2u);
    EXPECT_EQ(found[1].value(), channel->convertValueToUserUnit(0.01f));
    EXPECT_EQ(found[1].controlPointFrame().y(),
              static_cast<double>(
                  std::floor(view.plotGeometry().yForValue(found[1].value()) - 3.5f) + 0.5f));
}

TEST_F(KWChannelViewKeysTest, CellsHaveTheDelegateAsTarget) {
    Delegate delegate;
    view.setDelegate(&delegate);
    view.setPrimaryChannel(channelWithKeys({{1, 0}}));
    ASSERT_EQ(cells().size(), 1u);
    EXPECT_EQ(view.keyCells()[0].target(), &delegate);
    EXPECT_EQ(view.keyCells()[0].action(), &KWChannelViewDelegate::keyAction);
}

TEST_F(KWChannelViewKeysTest, CellsAreThoseOfTheLastPass) {
    const auto channel = channelWithKeys({{1, 0}, {2, 0}});
    view.setPrimaryChannel(channel);
    EXPECT_EQ(cells().size(), 2u);
    channel->removeAllKeyframes();
    EXPECT_EQ(view.keyCells().size(), 2u);
    EXPECT_TRUE(cells().empty());
}

TEST_F(KWChannelViewKeysTest, OtherChannelsHaveNone) {
    view.setPrimaryChannel(channelWithKeys({{1, 0}, {2, 0}}));
    EXPECT_EQ(cells().size(), 2u);
    view.setPrimaryChannel(std::make_shared<KWConstantChannel>("constant"));
    EXPECT_TRUE(cells().empty());
    view.setPrimaryChannel(channelWithKeys({{1, 0}, {2, 0}}));
    EXPECT_EQ(cells().size(), 2u);
    view.setPrimaryChannel(nullptr);
    EXPECT_TRUE(cells().empty());
}

TEST_F(KWChannelViewKeysTest, RangesThatAreNoneHaveNone) {
    view.setPrimaryChannel(channelWithKeys({{1, 0}, {2, 0}}));
    for (const HJRect& bounds :
         {HJRect{5, 0, -5, 1}, HJRect{kwNaN, 0, 1, 1}, HJRect{0, 0, kwNaN, 1}}) {
        view.setDisplayedBounds(bounds);
        EXPECT_TRUE(times().empty());
    }
    view.setDisplayedBounds({-kwInfinity, 0, kwInfinity, 1});
    EXPECT_TRUE(times().empty());
}

TEST_F(KWChannelViewKeysTest, AnIrregularChannelHasHandlesWhereItHasKeysAndValues) {
    PlainChannel lists;
    lists.keys = {5, 1, kwNaN, 1, 30, 7, 8};
    lists.values = {0.5f, 1, 2, -1, 1.5f, 0.25f};
    lists.records.resize(6, KWKeyFramedChannel::hermiteData());
    view.setPrimaryChannel(channelFromLists(lists));
    const auto found = cells();
    ASSERT_EQ(found.size(), 4u); // the key at 8 has no value
    EXPECT_EQ(times(), (std::vector<float>{5, 1, 1, 7}));
    EXPECT_EQ(found[0].value(), 0.5f);
    EXPECT_EQ(found[1].value(), 1);
    EXPECT_EQ(found[2].value(), 1);
    EXPECT_EQ(found[3].value(), 0.25f);
}

TEST_F(KWChannelViewKeysTest, ManyKeysAtOnePixelAreDrawnAsOne) {
    PlainChannel lists;
    for (int i = 0; i < 200'000; ++i) {
        lists.keys.push_back(5 + static_cast<float>(i) * 1e-6f);
        lists.values.push_back(0.5f);
    }
    lists.keys.erase(std::unique(lists.keys.begin(), lists.keys.end()), lists.keys.end());
    lists.values.resize(lists.keys.size());
    lists.records.resize(lists.keys.size(), KWKeyFramedChannel::hermiteData());
    view.setPrimaryChannel(channelFromLists(lists));
    view.setDisplayedBounds({0, -2, 1000, 4});
    EXPECT_EQ(handles().size(), 1u);
    EXPECT_EQ(view.keyCells().size(), lists.keys.size());
    const auto hit = view.findKeyCellForMouseLocation(handles()[0].bounds().center());
    ASSERT_TRUE(hit.has_value());
    EXPECT_EQ(hit->time(), 5);
    view.setSelectedKeys({KWTime(lists.keys.back())});
    EXPECT_EQ(handles()[0].brush, rgb(0.7, 0, 0));
    view.setSelectedKeys({KWTime(lists.keys.front())});
    EXPECT_EQ(handles()[0].brush, QColor(Qt::black));
}

TEST_F(KWChannelViewKeysTest, HandlesOutOfSightAreKeptAndNotDrawn) {
    view.setPrimaryChannel(
        channelWithKeys({{1, 1000}, {2, -1000}, {3, 3e38f}, {4, kwNaN}, {5, kwInfinity}, {6, 0}}));
    EXPECT_EQ(handles().size(), 1u);
    EXPECT_EQ(view.keyCells().size(), 6u);
}

TEST_F(KWChannelViewKeysTest, StampedHandlesLookAsTheCellsDrawThem) {
    auto channel = channelWithKeys({});
    for (int i = 0; i < 30; ++i)
        channel->setValueForKeyframe(1.9f * std::sin(static_cast<float>(i)),
                                     KWTime(static_cast<float>(i) * 0.33f));
    view.setPrimaryChannel(channel);
    view.setSelectedKeys({KWTime(0.33f), KWTime(0)});
    view.grab();
    for (const double scale : {1.0, 1.25, 1.5, 2.0, 3.0})
        EXPECT_LE(farthest(picture(scale), plainPicture(scale)), 2) << scale;
    EXPECT_LE(farthest(picture(1, {0.3, 0.6}), plainPicture(1, {0.3, 0.6})), 2);
    EXPECT_LE(farthest(picture(2, {0.5, 0.5}), plainPicture(2, {0.5, 0.5})), 2);
}
