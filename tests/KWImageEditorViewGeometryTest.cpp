#include <KWBase/KWImageEditorViewGeometry.h>

#include <gtest/gtest.h>

#include <cmath>
#include <random>

namespace {

void expectPoint(const QPointF& got, double x, double y, double tolerance = 1e-9) {
    EXPECT_NEAR(got.x(), x, tolerance);
    EXPECT_NEAR(got.y(), y, tolerance);
}

KWImageEditorViewGeometry randomGeometry(std::mt19937& random) {
    std::uniform_real_distribution<double> unit(0, 1);
    return {QSizeF(1 + std::floor(2000 * unit(random)), 1 + std::floor(2000 * unit(random))),
            QSizeF(1 + std::floor(5000 * unit(random)), 1 + std::floor(5000 * unit(random))),
            std::exp2(10 * unit(random) - 4), QPointF(unit(random), unit(random))};
}

} // namespace

TEST(KWImageEditorViewGeometry, AWideImageIsFittedToTheWidthAndCenteredVertically) {
    const KWImageEditorViewGeometry geometry{{200, 100}, {400, 50}};
    EXPECT_EQ(geometry.fitScale(), 0.5);
    EXPECT_EQ(geometry.contentRect(), QRectF(0, 37.5, 200, 25));
    EXPECT_EQ(geometry.visibleRect(), QRectF(0, -75, 400, 200));
}

TEST(KWImageEditorViewGeometry, ATallImageIsFittedToTheHeightAndCenteredHorizontally) {
    const KWImageEditorViewGeometry geometry{{200, 100}, {50, 400}};
    EXPECT_EQ(geometry.fitScale(), 0.25);
    EXPECT_EQ(geometry.contentRect(), QRectF(93.75, 0, 12.5, 100));
}

TEST(KWImageEditorViewGeometry, AnImageOfTheViewsAspectFillsIt) {
    const KWImageEditorViewGeometry geometry{{200, 100}, {40, 20}};
    EXPECT_EQ(geometry.contentRect(), QRectF(0, 0, 200, 100));
}

TEST(KWImageEditorViewGeometry, AtZoomTwoTheMiddleHalfFillsTheView) {
    const KWImageEditorViewGeometry geometry{{200, 100}, {400, 200}, 2};
    EXPECT_EQ(geometry.visibleRect(), QRectF(100, 50, 200, 100));
}

TEST(KWImageEditorViewGeometry, TheOffsetCountsFromTheLeftAndFromTheTop) {
    const KWImageEditorViewGeometry geometry{{200, 100}, {400, 200}, 4, {0.25, 0.125}};
    expectPoint(geometry.center(), 100, 175);
    expectPoint(geometry.view2image({100, 50}), 100, 175);
    expectPoint(geometry.view2image({0, 0}), 50, 150);
    expectPoint(geometry.matrices().view2image({0, 0}), 50, 150);
}

TEST(KWImageEditorViewGeometry, TheMatricesAreAnIdentityAndTheProjectionOfWhatIsVisible) {
    const KWImageMatrices matrices =
        KWImageEditorViewGeometry{{200, 100}, {400, 200}, 2}.matrices();
    EXPECT_EQ(matrices.viewport, (std::array<int, 4>{0, 0, 200, 100}));
    EXPECT_EQ(matrices.modelview,
              (std::array<double, 16>{1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1}));
    // Left 100, right 300, bottom 50, top 150, near -2, far 1.
    EXPECT_EQ(matrices.projection, (std::array<double, 16>{0.01, 0, 0, 0, 0, 0.02, 0, 0, 0, 0,
                                                           -2.0 / 3, 0, -2, -2, 1.0 / 3, 1}));
}

TEST(KWImageEditorViewGeometry, WithoutAContentTheProjectionIsAnIdentity) {
    const KWImageMatrices matrices = KWImageEditorViewGeometry{{200, 100}, {0, 0}}.matrices();
    EXPECT_EQ(matrices.projection, matrices.modelview);
    expectPoint(matrices.view2image({200, 0}), 1, -1);
}

TEST(KWImageEditorViewGeometry, BeforeTheFirstFrameThereAreNoPoints) {
    const KWImageMatrices none;
    EXPECT_TRUE(std::isnan(none.view2image({1, 2}).x()));
    EXPECT_TRUE(std::isnan(none.view2image({1, 2}).y()));
    EXPECT_TRUE(std::isnan(none.image2view({1, 2}).x()));
}

TEST(KWImageEditorViewGeometry, BothConversionsAreInversesOnRandomViews) {
    std::mt19937 random(1);
    std::uniform_real_distribution<double> unit(-0.5, 1.5);
    for (int k = 0; k < 2000; ++k) {
        const KWImageEditorViewGeometry geometry = randomGeometry(random);
        const KWImageMatrices matrices = geometry.matrices();
        const QPointF view(geometry.viewSize.width() * unit(random),
                           geometry.viewSize.height() * unit(random));
        const QPointF image = matrices.view2image(view);
        expectPoint(matrices.image2view(image), view.x(), view.y(), 1e-3);
        // The plain arithmetic comes to the same.
        const QPointF plain = geometry.view2image(view);
        expectPoint(image, plain.x(), plain.y(), 1e-6);
        expectPoint(geometry.image2view(plain), view.x(), view.y(), 1e-6);
    }
}

TEST(KWImageEditorViewGeometry, ZoomingKeepsAPointInItsPlace) {
    std::mt19937 random(2);
    std::uniform_real_distribution<double> unit(0, 1);
    for (int k = 0; k < 500; ++k) {
        const KWImageEditorViewGeometry before = randomGeometry(random);
        const QPointF anchor(before.contentSize.width() * unit(random),
                             before.contentSize.height() * unit(random));
        const auto after = before.zoomedAround(anchor, before.zoom * std::exp2(unit(random)));
        const QPointF place = before.image2view(anchor);
        expectPoint(after.image2view(anchor), place.x(), place.y(), 1e-6);
    }
}

TEST(KWImageEditorViewGeometry, PanningMovesTheContentAlongWithThePointer) {
    const KWImageEditorViewGeometry before{{200, 100}, {400, 200}, 3, {0.3, 0.6}};
    const QPointF place = before.image2view({111, 22});
    expectPoint(before.pannedBy({10, -7}).image2view({111, 22}), place.x() + 10, place.y() - 7);
}
