#include "StageTestSupport.h"

#include <gtest/gtest.h>

namespace {

/// These run where windows have OpenGL; elsewhere the program is told to leave them out.
class KWEditStageViewOpenGL : public testing::Test {
  protected:
    using Renderer = KWEditStageView::Renderer;

    KWEditStageViewOpenGL() {
        it.addSpriteAt(2.25F, 1.5F);
        it.view->resize(300, 200);
    }
    QImage shownBy(Renderer renderer) {
        it.view->setRenderer(renderer);
        EXPECT_EQ(it.view->isUsingOpenGL(), renderer == Renderer::openGL);
        EXPECT_TRUE(QTest::qWaitForWindowExposed(it.view.get()));
        QTest::qWait(60);
        return it.view->grab().toImage().convertToFormat(QImage::Format_RGB32);
    }
    void expectSame() {
        const QImage raster = shownBy(Renderer::raster);
        const QImage openGL = shownBy(Renderer::openGL);
        ASSERT_EQ(raster.size(), openGL.size());
        int different = 0;
        for (int y = 0; y < raster.height(); ++y)
            for (int x = 0; x < raster.width(); ++x)
                for (const int shift : {0, 8, 16})
                    different += std::abs(static_cast<int>(raster.pixel(x, y) >> shift & 255) -
                                          static_cast<int>(openGL.pixel(x, y) >> shift & 255)) > 2;
        EXPECT_EQ(different, 0);
    }

    StageTest it;
};

} // namespace

TEST_F(KWEditStageViewOpenGL, ShowsWhatRasterShows) {
    expectSame();
    it.view->setZoom(3.7);
    it.view->setZoomOffset({0.6, 0.4});
    expectSame();
    it.view->setZoom(0.4);
    expectSame();
    KWStage stage = it.document.stage();
    stage.backdrop = KWStage::Backdrop::room;
    it.document.setStage(stage);
    expectSame();
}

TEST_F(KWEditStageViewOpenGL, TheSelectionLiesOverIt) {
    it.view->setSelectedElements({it.view->elementAt(it.view->positionOfStagePoint({2.25, 1.5}))});
    ASSERT_NE(it.view->selectedElements().front(), nullptr);
    expectSame();
}

TEST_F(KWEditStageViewOpenGL, FollowsTheTime) {
    const auto sprite = it.addSprite("Mover", "#0000ff");
    const auto x = it.addChannel<KWKeyFramedChannel>(sprite, "x");
    x->setValueForKeyframe(-5, KWTime(1));
    shownBy(Renderer::openGL);
    it.transport.scrub(1);
    QTest::qWait(60);
    const QImage shown = it.view->grab().toImage();
    const QPointF where = it.view->positionOfStagePoint({-5, 0}) * it.view->devicePixelRatioF();
    EXPECT_EQ(shown.pixelColor(where.toPoint()), QColor(Qt::blue));
}

TEST_F(KWEditStageViewOpenGL, AutomaticDoesWithoutASoftwareRenderer) {
    it.view->setRenderer(Renderer::automatic);
    EXPECT_FALSE(it.view->isUsingOpenGL());
}

TEST_F(KWEditStageViewOpenGL, ThePointerGoesThroughToTheStage) {
    shownBy(Renderer::openGL);
    const QPoint where = it.view->positionOfStagePoint({2.25, 1.5}).toPoint();
    QTest::mouseClick(it.view->windowHandle(), Qt::LeftButton, {}, where);
    StageTest::turn();
    ASSERT_EQ(it.picked.size(), 1U);
    EXPECT_NE(it.picked.front(), nullptr);
}
