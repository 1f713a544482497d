#include <KWDesktop/KWViewPoint.h>

#include <gtest/gtest.h>

TEST(KWViewPoint, TheUpperLeftPositionIsAtTheTop) {
    EXPECT_EQ(KWViewPointFromPosition(QPointF(0, 0), 300), QPointF(0, 300));
    EXPECT_EQ(KWViewPointFromPosition(QPointF(10, 299.5), 300), QPointF(10, 0.5));
}

TEST(KWViewPoint, PositionsOutsideOfTheWidgetKeepTheirDistance) {
    EXPECT_EQ(KWViewPointFromPosition(QPointF(-5, -7), 300), QPointF(-5, 307));
    EXPECT_EQ(KWViewPointFromPosition(QPointF(5, 310), 300), QPointF(5, -10));
}

TEST(KWViewPoint, APointGoesBackToItsPosition) {
    const QPointF position(12.25, 40.5);
    EXPECT_EQ(KWPositionFromViewPoint(KWViewPointFromPosition(position, 300), 300), position);
    EXPECT_EQ(KWPositionFromViewPoint(QPointF(3, 0), 300), QPointF(3, 300));
}

TEST(KWViewPoint, ARectangleHasItsOriginInTheLowerLeftCorner) {
    const QRectF positions(10, 20, 30, 40);
    EXPECT_EQ(KWViewRectFromPositions(positions, 300), QRectF(10, 240, 30, 40));
    EXPECT_EQ(KWPositionsFromViewRect(QRectF(10, 240, 30, 40), 300), positions);
}

TEST(KWViewPoint, AWidgetWithoutHeightTurnsAboutItsTop) {
    EXPECT_EQ(KWViewPointFromPosition(QPointF(1, 2), 0), QPointF(1, -2));
}
