#include "StageTestSupport.h"

#include <KWBase/KWAlgebricChannel.h>
#include <KWBase/KWImageEditorView.h>

#include <gtest/gtest.h>

#include <QMimeData>
#include <QSignalSpy>

namespace {

using Picked = std::vector<std::shared_ptr<KWElement>>;

KWData dataOf(const KWEditDocument& document) {
    return document.model().data(KWDocument::Form::binary);
}

/// An image view that shows a picture as large as the stage.
std::unique_ptr<KWImageEditorView> imageView(const QSize& picture, const QSize& size) {
    auto view = std::make_unique<KWImageEditorView>();
    view->setImage(QImage(picture, QImage::Format_RGB32));
    view->resize(size);
    return view;
}

void expectSameLayout(const KWEditStageView& stage, const KWImageEditorView& image) {
    EXPECT_DOUBLE_EQ(stage.zoom(), image.zoom());
    EXPECT_DOUBLE_EQ(stage.zoomOffset().x(), image.zoomOffset().x());
    EXPECT_DOUBLE_EQ(stage.zoomOffset().y(), image.zoomOffset().y());
    EXPECT_EQ(stage.geometryOfStage().contentRect(), image.geometry().contentRect());
}

} // namespace

// --- What is shown.

TEST(KWEditStageView, ShowsTheFramesOwnPixelsInItsOwnSize) {
    StageTest it;
    it.addSpriteAt(2.13F, 1.07F);
    StageTest::turn();
    KWEditScene scene(it.document.model(), {});
    EXPECT_EQ(it.view->shownFrame(), scene.frame(it.transport.time()));
    EXPECT_EQ(it.shown(101, 34), QColor(Qt::red));
}

TEST(KWEditStageView, TheCheckerboardIsTheOneOfTheImageView) {
    StageTest it;
    const QImage shown = it.view->grab().toImage();
    for (int y = 0; y < 90; ++y)
        for (int x = 0; x < 160; ++x)
            ASSERT_EQ(qRed(shown.pixel(x, y)), (x / 30 + y / 30) % 2 != 0 ? 200 : 255)
                << x << ", " << y;
}

TEST(KWEditStageView, ABackdropCoversTheCheckerboardAndTheSurroundIsNeutral) {
    StageTest it;
    KWStage stage = it.document.stage();
    stage.backdrop = KWStage::Backdrop::plain;
    stage.color = QColor(10, 90, 200);
    it.document.setStage(stage);
    it.view->resize(160, 200);
    EXPECT_EQ(it.shown(80, 100), QColor(10, 90, 200));
    const QColor surround = it.shown(80, 20);
    EXPECT_EQ(surround.red(), surround.green());
    EXPECT_EQ(surround.red(), surround.blue());
    EXPECT_LT(surround.red(), 80);
}

TEST(KWEditStageView, FitsZoomsAndPansAsTheImageViewDoes) {
    StageTest it;
    for (const QSize& size : {QSize(160, 90), QSize(300, 100), QSize(70, 400)}) {
        it.view->resize(size);
        it.view->zoomToFit();
        const auto image = imageView({160, 90}, size);
        expectSameLayout(*it.view, *image);
        const QPointF pointer(size.width() * 0.3, size.height() * 0.6);
        for (const int notches : {3, 1, -2, 5}) {
            it.wheel(pointer, {0, notches * 120});
            StageTest::sendWheel(*image, pointer, {0, notches * 120});
            expectSameLayout(*it.view, *image);
        }
        // The same drag in both; the image view's moves are sent as they come.
        it.press({20, 20}, Qt::MiddleButton);
        it.dragTo({31, 14}, Qt::MiddleButton);
        it.release({31, 14}, Qt::MiddleButton);
        QTest::mousePress(image.get(), Qt::MiddleButton, {}, {20, 20});
        QMouseEvent move(QEvent::MouseMove, QPointF(31, 14), image->mapToGlobal(QPointF(31, 14)),
                         Qt::NoButton, Qt::MiddleButton, Qt::NoModifier);
        QApplication::sendEvent(image.get(), &move);
        QTest::mouseRelease(image.get(), Qt::MiddleButton, {}, {31, 14});
        expectSameLayout(*it.view, *image);
    }
}

TEST(KWEditStageView, AFrameIsDrawnOnceForEachTurnOfTheEventLoop) {
    StageTest it;
    const auto sprite = it.addSpriteAt(0, 0);
    StageTest::turn();
    const qint64 before = it.view->drawnFrameCount();
    for (int k = 1; k <= 20; ++k)
        it.transport.scrub(static_cast<float>(k));
    for (const auto& channel : sprite->channelArray()->channelEnumerator())
        channel->setValueForTime(1, KWTime(0));
    it.document.renameElement(sprite, QStringLiteral("Other"));
    EXPECT_EQ(it.view->drawnFrameCount(), before);
    StageTest::turn();
    EXPECT_EQ(it.view->drawnFrameCount(), before + 1);
}

TEST(KWEditStageView, NothingIsDrawnAnewWhileNothingChanges) {
    StageTest it;
    const auto sprite = it.addSpriteAt(0, 0);
    StageTest::turn();
    const qint64 before = it.view->drawnFrameCount();
    it.view->setSelectedElements({sprite});
    it.view->update();
    it.transport.scrub(it.transport.currentTime());
    StageTest::turn();
    it.view->grab();
    EXPECT_EQ(it.view->drawnFrameCount(), before);
}

TEST(KWEditStageView, AFrameThatIsNotSeenIsNotDrawn) {
    StageTest it;
    it.view->hide();
    const qint64 before = it.view->drawnFrameCount();
    it.transport.scrub(3);
    StageTest::turn();
    EXPECT_EQ(it.view->drawnFrameCount(), before);
}

TEST(KWEditStageView, EditsTimesAndOtherDocumentsShow) {
    StageTest it;
    const auto sprite = it.addSprite("Square");
    const auto x = it.addChannel<KWKeyFramedChannel>(sprite, "x");
    x->setValueForKeyframe(5, KWTime(2));
    StageTest::turn();
    EXPECT_EQ(it.shown(80, 45), QColor(Qt::red));
    it.transport.scrub(2);
    EXPECT_NE(it.shown(80, 45), QColor(Qt::red));
    EXPECT_EQ(it.shown(130, 45), QColor(Qt::red));
    x->setValueForKeyframe(-5, KWTime(2));
    EXPECT_EQ(it.shown(30, 45), QColor(Qt::red));
    KWSpriteContent content = KWSpriteContent::of(*sprite);
    content.color = Qt::blue;
    it.document.setContent(sprite, content);
    EXPECT_EQ(it.shown(30, 45), QColor(Qt::blue));
    it.document.startNew();
    EXPECT_EQ(it.view->geometryOfStage().contentSize, QSizeF(1280, 720));
    EXPECT_EQ(it.shown(30, 45), KWStage().color);
}

TEST(KWEditStageView, ZoomedInItDrawsOnlyWhatIsSeenAndThatCrisply) {
    StageTest it;
    it.addSpriteAt(0, 0);
    it.view->setZoom(16);
    StageTest::turn();
    const QImage frame = it.view->shownFrame();
    EXPECT_EQ(frame.size(), QSize(160, 90) * it.view->devicePixelRatioF());
    // A metre is 160 pixels now: the square fills the middle, and its edge is an edge.
    it.view->setZoomOffset({0.5 + 5.0 / 160, 0.5});
    const QImage edge = it.view->shownFrame();
    int between = 0;
    for (int x = 0; x < edge.width(); ++x)
        between += edge.pixelColor(x, edge.height() / 2).alpha() % 255 != 0;
    EXPECT_LE(between, 1);
    it.view->setZoomOffset({3, 3});
    EXPECT_TRUE(it.view->shownFrame().isNull());
}

TEST(KWEditStageView, StagePointsAreMetresUpwardsFromTheMiddle) {
    StageTest it;
    EXPECT_EQ(it.view->stagePoint({80, 45}), QPointF(0, 0));
    EXPECT_EQ(it.view->stagePoint({90, 25}), QPointF(1, 2));
    EXPECT_EQ(it.view->positionOfStagePoint({-3, -1}), QPointF(50, 55));
}

// --- Zoom.

TEST(KWEditStageView, ActualSizeIsOnePixelForAPixelAndStaysSoWhenTheViewGrows) {
    StageTest it;
    it.view->resize(800, 450);
    QSignalSpy told(it.view.get(), &KWEditStageView::magnificationChanged);
    EXPECT_DOUBLE_EQ(it.view->magnification(), 5 * it.view->devicePixelRatioF());
    it.view->actualSize();
    EXPECT_DOUBLE_EQ(it.view->magnification(), 1);
    EXPECT_EQ(told.count(), 1);
    it.view->resize(640, 500);
    EXPECT_DOUBLE_EQ(it.view->magnification(), 1);
    it.view->zoomToFit();
    it.view->resize(320, 500);
    EXPECT_DOUBLE_EQ(it.view->magnification(), 2 * it.view->devicePixelRatioF());
}

TEST(KWEditStageView, ZoomingInAndOutGoesByRoundSteps) {
    StageTest it;
    it.view->actualSize();
    QSignalSpy told(it.view.get(), &KWEditStageView::zoomChanged);
    std::vector<double> steps;
    for (int k = 0; k < 3; ++k) {
        it.view->zoomIn();
        steps.push_back(it.view->magnification());
    }
    for (int k = 0; k < 4; ++k) {
        it.view->zoomOut();
        steps.push_back(it.view->magnification());
    }
    const std::vector<double> wanted{1.5, 2, 3, 2, 1.5, 1, 2.0 / 3};
    ASSERT_EQ(steps.size(), wanted.size());
    for (std::size_t k = 0; k < wanted.size(); ++k)
        EXPECT_NEAR(steps[k], wanted[k], 1e-9);
    EXPECT_EQ(told.count(), 7);
    for (int k = 0; k < 100; ++k)
        it.view->zoomIn();
    EXPECT_LE(it.view->magnification(), 64 * it.view->devicePixelRatioF() + 1e-9);
}

TEST(KWEditStageView, ATrackpadPansAndWithControlZooms) {
    StageTest it;
    it.view->setZoom(4);
    const QPointF before = it.view->zoomOffset();
    it.wheel({80, 45}, {0, 0}, Qt::NoModifier, Qt::ScrollUpdate, {16, 0});
    EXPECT_DOUBLE_EQ(it.view->zoom(), 4);
    EXPECT_NEAR(it.view->zoomOffset().x(), before.x() - 16.0 / 640, 1e-12);
    it.wheel({80, 45}, {0, 120}, Qt::ControlModifier, Qt::ScrollUpdate, {0, 30});
    EXPECT_NEAR(it.view->zoom(), 4.8, 1e-12);
}

TEST(KWEditStageView, TheSpaceBarPansWithTheMouseAndPlaysWithoutIt) {
    StageTest it;
    it.view->setZoom(4);
    const QPointF before = it.view->zoomOffset();
    QTest::keyPress(it.view.get(), Qt::Key_Space);
    it.press({80, 45});
    it.dragTo({112, 45});
    it.release({112, 45});
    QTest::keyRelease(it.view.get(), Qt::Key_Space);
    EXPECT_NEAR(it.view->zoomOffset().x(), before.x() - 32.0 / 640, 1e-12);
    EXPECT_FALSE(it.transport.isPlaying());
    EXPECT_TRUE(it.picked.empty());
    QTest::keyClick(it.view.get(), Qt::Key_Space);
    EXPECT_TRUE(it.transport.isPlaying());
    QTest::keyClick(it.view.get(), Qt::Key_Space);
    EXPECT_FALSE(it.transport.isPlaying());
}

TEST(KWEditStageView, TheKeyboardZoomsPansAndPicks) {
    StageTest it;
    const auto back = it.addSpriteAt(-3, 0, "Back");
    const auto front = it.addSpriteAt(3, 0, "Front");
    StageTest::turn();
    QTest::keyClick(it.view.get(), Qt::Key_1);
    EXPECT_DOUBLE_EQ(it.view->magnification(), 1);
    QTest::keyClick(it.view.get(), Qt::Key_Plus);
    EXPECT_DOUBLE_EQ(it.view->magnification(), 1.5);
    QTest::keyClick(it.view.get(), Qt::Key_Right);
    EXPECT_GT(it.view->zoomOffset().x(), 0.5);
    QTest::keyClick(it.view.get(), Qt::Key_0);
    EXPECT_EQ(it.view->zoom(), 1);
    EXPECT_EQ(it.view->zoomOffset(), QPointF(0.5, 0.5));
    QTest::keyClick(it.view.get(), Qt::Key_PageUp);
    QTest::keyClick(it.view.get(), Qt::Key_PageUp);
    QTest::keyClick(it.view.get(), Qt::Key_PageUp);
    QTest::keyClick(it.view.get(), Qt::Key_PageDown);
    QTest::keyClick(it.view.get(), Qt::Key_Escape);
    EXPECT_EQ(it.picked, (Picked{back, front, back, front, nullptr}));
}

// --- Picking.

TEST(KWEditStageView, AClickPicksTheForemostSprite) {
    StageTest it;
    it.addSpriteAt(0, 0, "Behind");
    const auto front = it.addSpriteAt(0.5F, 0, "Front");
    StageTest::turn();
    QTest::mouseClick(it.view.get(), Qt::LeftButton, {}, {83, 45});
    ASSERT_EQ(it.picked.size(), 1U);
    EXPECT_EQ(it.picked[0], front);
    QTest::mouseClick(it.view.get(), Qt::LeftButton, {}, {20, 20});
    ASSERT_EQ(it.picked.size(), 2U);
    EXPECT_EQ(it.picked[1], nullptr);
}

TEST(KWEditStageView, AClickOnOneOfSeveralSelectedLeavesThatOne) {
    StageTest it;
    const auto left = it.addSpriteAt(-3, 0, "Left");
    const auto right = it.addSpriteAt(3, 0, "Right");
    StageTest::turn();
    it.view->setSelectedElements({left, right});
    it.press({110, 45});
    EXPECT_TRUE(it.picked.empty());
    it.release({110, 45});
    EXPECT_EQ(it.picked, Picked{right});
}

TEST(KWEditStageView, OutlinesOfSelectedSpritesLieOverTheFrameAndNotInIt) {
    StageTest it;
    const auto sprite = it.addSpriteAt(0, 0);
    StageTest::turn();
    const QImage frame = it.view->shownFrame().copy();
    const QImage before = it.view->grab().toImage();
    it.view->setSelectedElements({sprite});
    EXPECT_EQ(it.view->shownFrame(), frame);
    const QImage after = it.view->grab().toImage();
    EXPECT_NE(after, before);
    EXPECT_EQ(it.view->outlineOf(*sprite).boundingRect(), QRectF(75, 40, 10, 10));
}

// --- Moving.

TEST(KWEditStageView, ADragSetsAKeyAtTheCurrentTimeAsOneStep) {
    StageTest it;
    const auto sprite = it.addSprite("Square");
    const auto x = it.addChannel<KWKeyFramedChannel>(sprite, "x");
    const auto y = it.addChannel<KWConstantChannel>(sprite, "y");
    it.transport.scrub(2);
    it.settle();
    it.drag({80, 45}, {110, 25});
    EXPECT_EQ(x->keyframeCount(), 2U);
    EXPECT_FLOAT_EQ(x->valueForKeyframe(KWTime(2)), 3);
    EXPECT_FLOAT_EQ(y->valueForTime(KWTime(0)), 2);
    EXPECT_EQ(it.document.undoName(), QStringLiteral("Move"));
    it.document.undo();
    EXPECT_EQ(x->keyframeCount(), 1U);
    EXPECT_EQ(y->valueForTime(KWTime(0)), 0);
    EXPECT_FALSE(it.document.canUndo());
    StageTest::turn();
    EXPECT_FALSE(it.document.isModified());
    it.document.redo();
    EXPECT_FLOAT_EQ(x->valueForKeyframe(KWTime(2)), 3);
    EXPECT_FLOAT_EQ(y->valueForTime(KWTime(0)), 2);
}

TEST(KWEditStageView, AKeyThatIsThereKeepsItsShape) {
    StageTest it;
    const auto sprite = it.addSprite("Square");
    const auto x = it.addChannel<KWKeyFramedChannel>(sprite, "x");
    HJHermiteParam shape;
    shape.tension = 0.5F;
    x->modifyHermiteParamForKeyframe(&shape, KWTime(0));
    it.settle();
    it.drag({80, 45}, {95, 45});
    EXPECT_FLOAT_EQ(x->valueForKeyframe(KWTime(0)), 1.5F);
    EXPECT_EQ(x->hermiteValueForKeyframe(KWTime(0)), KWKeyFramedChannel::hermiteDataFrom(&shape));
    it.document.undo();
    EXPECT_EQ(x->valueForKeyframe(KWTime(0)), 0);
    EXPECT_EQ(x->hermiteValueForKeyframe(KWTime(0)), KWKeyFramedChannel::hermiteDataFrom(&shape));
}

TEST(KWEditStageView, EscapeLeavesNothingOfADrag) {
    StageTest it;
    const auto sprite = it.addSprite("Square");
    it.addChannel<KWKeyFramedChannel>(sprite, "x");
    it.addChannel<KWConstantChannel>(sprite, "y");
    it.transport.scrub(2);
    it.settle();
    const KWData before = dataOf(it.document);
    it.press({80, 45});
    it.dragTo({100, 30});
    it.dragTo({110, 25});
    StageTest::turn();
    EXPECT_TRUE(it.view->isGestureActive());
    EXPECT_NE(dataOf(it.document), before);
    QTest::keyClick(it.view.get(), Qt::Key_Escape);
    EXPECT_FALSE(it.view->isGestureActive());
    it.dragTo({120, 25});
    it.release({120, 25});
    StageTest::turn();
    EXPECT_EQ(dataOf(it.document), before);
    EXPECT_FALSE(it.document.canUndo());
    EXPECT_FALSE(it.document.isModified());
    EXPECT_EQ(it.document.undoManager()->groupingLevel(), 0);
    EXPECT_EQ(it.shown(80, 45), QColor(Qt::red));
}

TEST(KWEditStageView, ADragThatComesBackIsNoStep) {
    StageTest it;
    const auto sprite = it.addSprite("Square");
    it.addChannel<KWKeyFramedChannel>(sprite, "x");
    it.transport.scrub(2);
    it.settle();
    const KWData before = dataOf(it.document);
    it.press({80, 45});
    it.dragTo({110, 45});
    it.dragTo({80, 45});
    it.release({80, 45});
    StageTest::turn();
    EXPECT_EQ(dataOf(it.document), before);
    EXPECT_FALSE(it.document.canUndo());
    EXPECT_FALSE(it.document.isModified());
}

TEST(KWEditStageView, UndoWaitsWhileTheHandMoves) {
    StageTest it;
    const auto sprite = it.addSpriteAt(0, 0);
    StageTest::turn();
    QSignalSpy told(it.view.get(), &KWEditStageView::gestureActiveChanged);
    it.press({80, 45});
    EXPECT_FALSE(it.view->isGestureActive());
    it.dragTo({110, 45});
    EXPECT_TRUE(it.view->isGestureActive());
    EXPECT_FALSE(it.document.canUndo());
    it.document.undo();
    EXPECT_FLOAT_EQ(StageTest::valueOf(*sprite, "x"), 3);
    it.release({110, 45});
    EXPECT_FALSE(it.view->isGestureActive());
    EXPECT_TRUE(it.document.canUndo());
    EXPECT_EQ(told.count(), 2);
}

TEST(KWEditStageView, AllSelectedSpritesMoveTogether) {
    StageTest it;
    const auto left = it.addSpriteAt(-3, 0, "Left");
    const auto right = it.addSpriteAt(3, 0, "Right");
    it.settle();
    it.view->setSelectedElements({left, right});
    it.drag({110, 45}, {120, 55});
    EXPECT_FLOAT_EQ(StageTest::valueOf(*left, "x"), -2);
    EXPECT_FLOAT_EQ(StageTest::valueOf(*right, "x"), 4);
    EXPECT_FLOAT_EQ(StageTest::valueOf(*left, "y"), -1);
    it.document.undo();
    EXPECT_FALSE(it.document.canUndo());
    EXPECT_FLOAT_EQ(StageTest::valueOf(*left, "x"), -3);
    EXPECT_FLOAT_EQ(StageTest::valueOf(*right, "x"), 3);
}

TEST(KWEditStageView, ShiftKeepsADragToOneAxis) {
    StageTest it;
    const auto sprite = it.addSpriteAt(0, 0);
    it.settle();
    it.press({80, 45});
    it.dragTo({110, 40}, Qt::LeftButton, Qt::ShiftModifier);
    it.release({110, 40});
    EXPECT_FLOAT_EQ(StageTest::valueOf(*sprite, "x"), 3);
    EXPECT_EQ(StageTest::valueOf(*sprite, "y"), 0);
}

TEST(KWEditStageView, ChannelsThatAreComputedAreLeftAloneAndItIsSaid) {
    StageTest it;
    const auto sprite = it.addSprite("Square");
    const auto x = std::make_shared<KWAlgebricChannel>("x");
    ASSERT_TRUE(x->setExpression("t*0"));
    it.document.addChannel(sprite, x);
    it.addChannel<KWConstantChannel>(sprite, "y");
    it.settle();
    it.drag({80, 45}, {110, 25});
    EXPECT_EQ(x->valueForTime(KWTime(0)), 0);
    EXPECT_FLOAT_EQ(StageTest::valueOf(*sprite, "y"), 2);
    EXPECT_EQ(it.messages, QStringList{QString::fromUtf8("x of “Square” cannot be set by hand.")});
}

TEST(KWEditStageView, ASpriteWithoutChannelsStaysAndItIsSaid) {
    StageTest it;
    it.addSprite("Square");
    it.settle();
    it.drag({80, 45}, {110, 25});
    EXPECT_EQ(it.messages,
              QStringList{QString::fromUtf8("“Square” has no channels x and y to move it with.")});
    EXPECT_FALSE(it.document.canUndo());
    EXPECT_FALSE(it.document.isModified());
    EXPECT_FALSE(it.view->isGestureActive());
}

TEST(KWEditStageView, ATurnedCameraTurnsTheDrag) {
    StageTest it;
    const auto sprite = it.addSpriteAt(0, 0);
    it.addChannel<KWConstantChannel>(it.document.stageElement(), "rotation",
                                     static_cast<float>(M_PI / 2));
    it.addChannel<KWConstantChannel>(it.document.stageElement(), "zoom", 2);
    it.settle();
    it.drag({80, 45}, {100, 45});
    EXPECT_NEAR(StageTest::valueOf(*sprite, "x"), 0, 1e-6);
    EXPECT_NEAR(std::abs(StageTest::valueOf(*sprite, "y")), 1, 1e-6);
    // It is under the pointer, wherever that is in metres.
    it.view->setSelectedElements({});
    EXPECT_EQ(it.view->elementAt({100, 45}), sprite);
}

TEST(KWEditStageView, TheArrowsMoveTheSelectionByPixelsOfTheStage) {
    StageTest it;
    const auto sprite = it.addSpriteAt(0, 0);
    it.settle();
    it.view->setSelectedElements({sprite});
    QTest::keyClick(it.view.get(), Qt::Key_Right);
    QTest::keyClick(it.view.get(), Qt::Key_Up, Qt::ShiftModifier);
    EXPECT_FLOAT_EQ(StageTest::valueOf(*sprite, "x"), 0.1F);
    EXPECT_FLOAT_EQ(StageTest::valueOf(*sprite, "y"), 1);
    EXPECT_EQ(it.document.undoName(), QStringLiteral("Move"));
    it.document.undo();
    EXPECT_FLOAT_EQ(StageTest::valueOf(*sprite, "x"), 0.1F);
    EXPECT_EQ(StageTest::valueOf(*sprite, "y"), 0);
}

TEST(KWEditStageView, ATimeThatChangesUnderADragEndsIt) {
    StageTest it;
    const auto sprite = it.addSpriteAt(0, 0);
    it.settle();
    it.press({80, 45});
    it.dragTo({110, 45});
    it.transport.scrub(4);
    EXPECT_FALSE(it.view->isGestureActive());
    EXPECT_EQ(it.document.undoName(), QStringLiteral("Move"));
    EXPECT_FLOAT_EQ(StageTest::valueOf(*sprite, "x"), 3);
    it.dragTo({140, 45});
    EXPECT_FLOAT_EQ(StageTest::valueOf(*sprite, "x"), 3);
    it.release({140, 45});
}

TEST(KWEditStageView, AnotherDocumentUnderADragEndsIt) {
    StageTest it;
    it.addSpriteAt(0, 0);
    it.settle();
    it.press({80, 45});
    it.dragTo({110, 45});
    it.document.startNew();
    it.dragTo({120, 45});
    it.release({120, 45});
    StageTest::turn();
    EXPECT_FALSE(it.view->isGestureActive());
    EXPECT_FALSE(it.document.isModified());
    EXPECT_FALSE(it.document.canUndo());
}

// --- Files, and the renderer.

TEST(KWEditStageView, DroppedFilesComeWithTheirPlaceOnTheStage) {
    StageTest it;
    QMimeData data;
    data.setUrls({QUrl::fromLocalFile(QStringLiteral("/some/picture.png")),
                  QUrl(QStringLiteral("http://host/other.png"))});
    QStringList files;
    QPointF point;
    QObject::connect(it.view.get(), &KWEditStageView::filesDropped,
                     [&](const QStringList& list, const QPointF& where) {
                         files = list;
                         point = where;
                     });
    QDragEnterEvent enter({90, 25}, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(it.view.get(), &enter);
    EXPECT_TRUE(enter.isAccepted());
    QDropEvent drop({90, 25}, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(it.view.get(), &drop);
    EXPECT_EQ(files, QStringList{QString::fromUtf8("/some/picture.png")});
    EXPECT_EQ(point, QPointF(1, 2));
    QMimeData text;
    text.setText(QStringLiteral("words"));
    QDragEnterEvent refused({90, 25}, Qt::CopyAction, &text, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(it.view.get(), &refused);
    EXPECT_FALSE(refused.isAccepted());
}

TEST(KWEditStageView, WithoutAScreenItIsRasterWhateverIsAsked) {
    StageTest it;
    EXPECT_FALSE(it.view->isUsingOpenGL());
    it.view->setRenderer(KWEditStageView::Renderer::openGL);
    EXPECT_FALSE(it.view->isUsingOpenGL());
    EXPECT_EQ(it.view->renderer(), KWEditStageView::Renderer::openGL);
    it.addSpriteAt(0, 0);
    EXPECT_EQ(it.shown(80, 45), QColor(Qt::red));
}

TEST(KWEditStageView, WhatIsMissingIsToldOnce) {
    StageTest it;
    QSignalSpy told(it.view.get(), &KWEditStageView::problemsChanged);
    it.document.addElement(QStringLiteral("Picture"), {{"content", "file:missing.png"}});
    StageTest::turn();
    it.transport.scrub(1);
    StageTest::turn();
    EXPECT_EQ(told.count(), 1);
    EXPECT_EQ(it.view->problems(),
              QStringList{QString::fromUtf8("missing.png: there is no such file")});
}
