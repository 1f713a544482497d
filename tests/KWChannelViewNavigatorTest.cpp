#include "GestureTestSupport.h"

#include <KWBase/KWAlgebricChannel.h>
#include <KWBase/KWChannelViewNavigator.h>
#include <KWBase/KWConstantChannel.h>
#include <KWBase/KWUnitController.h>
#include <KWFoundation/KWText.h>

#include <QNativeGestureEvent>
#include <QPointingDevice>
#include <QTest>
#include <QWheelEvent>
#include <cmath>

namespace {

class KWChannelViewNavigatorTest : public GestureTest {
  protected:
    KWChannelViewNavigatorTest() {
        setKeys({{1, 0}, {5, 1}, {9, 2}});
        view->setCurrentTime(3);
        navigate();
    }

    void navigate() {
        navigator = std::make_unique<KWChannelViewNavigator>(*view);
        QObject::connect(navigator.get(), &KWChannelViewNavigator::scrubbingBegan,
                         [this] { heard += "began "; });
        QObject::connect(navigator.get(), &KWChannelViewNavigator::timeScrubbed,
                         [this](float time) { heard += KWStringFromFloat(time) + " "; });
        QObject::connect(navigator.get(), &KWChannelViewNavigator::scrubbingEnded,
                         [this] { heard += "ended "; });
    }
    void wheel(QPointF position, QPoint angle, Qt::KeyboardModifiers modifiers = Qt::NoModifier,
               QPoint pixels = {}, Qt::ScrollPhase phase = Qt::NoScrollPhase) {
        QWheelEvent event(position, view->mapToGlobal(position), pixels, angle, Qt::NoButton,
                          modifiers, phase, false);
        event.setAccepted(false);
        QApplication::sendEvent(view.get(), &event);
        wasAccepted = event.isAccepted();
    }
    void pinch(QPointF position, qreal value, Qt::NativeGestureType type = Qt::ZoomNativeGesture) {
        QNativeGestureEvent event(type, QPointingDevice::primaryPointingDevice(), 2, position,
                                  position, view->mapToGlobal(position), value, {});
        QApplication::sendEvent(view.get(), &event);
    }
    void pressMiddle(QPointF position) {
        origin = where = position;
        send(QEvent::MouseButtonPress, Qt::MiddleButton, Qt::MiddleButton);
    }
    void dragMiddle(double x, double y) { move(origin + QPointF(x, -y), Qt::MiddleButton); }
    void releaseMiddle() { send(QEvent::MouseButtonRelease, Qt::MiddleButton, Qt::NoButton); }
    void hover(QPointF position) { move(position, Qt::NoButton); }
    HJRect bounds() const { return view->displayedBounds(); }
    /// Where the line of the current time is, away from the keys.
    QPointF line() const { return at(view->currentTime(), -1.5f); }

    std::unique_ptr<KWChannelViewNavigator> navigator;
    std::string heard;
    const HJRect whole{0, -2, 10, 5};
};

} // namespace

// --- The wheel.

TEST_F(KWChannelViewNavigatorTest, TheWheelZoomsAroundThePointer) {
    const QPointF pointer(80, 40);
    const float time = view->timeAtPosition(pointer);
    const float value = view->valueAtPosition(pointer);
    wheel(pointer, {0, 120});
    EXPECT_TRUE(wasAccepted);
    EXPECT_FLOAT_EQ(bounds().width, 8);
    EXPECT_FLOAT_EQ(bounds().height, 4);
    EXPECT_NEAR(view->timeAtPosition(pointer), time, 1e-6);
    EXPECT_NEAR(view->valueAtPosition(pointer), value, 1e-6);
    wheel(pointer, {0, -120});
    EXPECT_NEAR(bounds().x, 0, 1e-5);
    EXPECT_NEAR(bounds().y, -2, 1e-5);
    EXPECT_NEAR(bounds().width, 10, 1e-5);
    EXPECT_NEAR(bounds().height, 5, 1e-5);
}

TEST_F(KWChannelViewNavigatorTest, AFineWheelAddsUpToTheSame) {
    for (int k = 0; k < 8; ++k)
        wheel({80, 40}, {0, 15});
    EXPECT_NEAR(bounds().width, 8, 1e-5);
    EXPECT_NEAR(bounds().x, 0.5, 1e-5);
}

TEST_F(KWChannelViewNavigatorTest, CtrlZoomsTheTimesAloneAndShiftTheValues) {
    wheel({80, 40}, {0, 120}, Qt::ControlModifier);
    EXPECT_EQ(bounds(), (HJRect{0.5f, -2, 8, 5}));
    view->setDisplayedBounds(whole);
    wheel({80, 40}, {0, 120}, Qt::ShiftModifier);
    EXPECT_EQ(bounds().x, 0);
    EXPECT_EQ(bounds().width, 10);
    EXPECT_FLOAT_EQ(bounds().height, 4);
    view->setDisplayedBounds(whole);
    wheel({80, 40}, {0, 120}, Qt::ShiftModifier | Qt::ControlModifier);
    EXPECT_FLOAT_EQ(bounds().width, 8);
    EXPECT_FLOAT_EQ(bounds().height, 4);
}

TEST_F(KWChannelViewNavigatorTest, WhereAModifierExchangesTheAxesOfTheWheelItZoomsAllTheSame) {
    wheel({80, 40}, {120, 0}, Qt::AltModifier);
    EXPECT_FLOAT_EQ(bounds().width, 8);
    EXPECT_FLOAT_EQ(bounds().height, 4);
    view->setDisplayedBounds(whole);
    wheel({80, 40}, {120, 0}, Qt::ShiftModifier);
    EXPECT_EQ(bounds().width, 10);
    EXPECT_FLOAT_EQ(bounds().height, 4);
}

TEST_F(KWChannelViewNavigatorTest, AWheelThatTiltsPansInTime) {
    wheel({80, 40}, {120, 0});
    EXPECT_EQ(bounds(), (HJRect{-1.25f, -2, 10, 5}));
}

TEST_F(KWChannelViewNavigatorTest, ZoomingNeverLeavesWhatFloatsCanShow) {
    for (const int turn : {1200, -1200})
        for (int k = 0; k < 500; ++k) {
            wheel({80, 40}, {0, turn});
            ASSERT_TRUE(std::isfinite(bounds().x) && std::isfinite(bounds().y));
            ASSERT_TRUE(std::isfinite(bounds().width) && std::isfinite(bounds().height));
            ASSERT_GT(bounds().width, 0);
            ASSERT_GT(bounds().height, 0);
            ASSERT_TRUE(std::isfinite(view->timeAtPosition({319, 0})));
            ASSERT_TRUE(std::isfinite(view->valueAtPosition({0, 0})));
        }
}

TEST_F(KWChannelViewNavigatorTest, AnEmptyOrInfiniteRangeIsLeftByTheFirstZoom) {
    for (const HJRect& odd : {HJRect{3, 1, 0, 0}, HJRect{0, -kwInfinity, kwInfinity, kwInfinity},
                              HJRect{kwNaN, kwNaN, kwNaN, kwNaN}}) {
        view->setDisplayedBounds(odd);
        wheel({160, 80}, {0, 120});
        EXPECT_FLOAT_EQ(bounds().width, 8);
        EXPECT_FLOAT_EQ(bounds().height, 3.2f);
    }
}

// --- Trackpads.

TEST_F(KWChannelViewNavigatorTest, TwoFingersPan) {
    wheel({80, 40}, {}, {}, {}, Qt::ScrollBegin);
    EXPECT_TRUE(wasAccepted);
    wheel({80, 40}, {40, 20}, {}, {32, 16}, Qt::ScrollUpdate);
    EXPECT_EQ(bounds(), (HJRect{-1, -1.5f, 10, 5}));
    wheel({80, 40}, {40, 20}, {}, {-32, -16}, Qt::ScrollMomentum);
    EXPECT_EQ(bounds(), whole);
    wheel({80, 40}, {}, {}, {}, Qt::ScrollEnd);
    EXPECT_EQ(bounds(), whole);
}

TEST_F(KWChannelViewNavigatorTest, PixelsWithoutAPhasePanToo) {
    wheel({80, 40}, {40, 20}, {}, {32, 16});
    EXPECT_EQ(bounds(), (HJRect{-1, -1.5f, 10, 5}));
}

TEST_F(KWChannelViewNavigatorTest, ATrackpadThatTellsNoPixelsPansByItsAngle) {
    const QPointingDevice pad(QStringLiteral("pad"), 77, QInputDevice::DeviceType::TouchPad,
                              QPointingDevice::PointerType::Finger,
                              QInputDevice::Capability::Scroll, 2, 3);
    QWheelEvent event({80, 40}, {80, 40}, {}, {96, 0}, Qt::NoButton, Qt::NoModifier,
                      Qt::NoScrollPhase, false, Qt::MouseEventNotSynthesized, &pad);
    QApplication::sendEvent(view.get(), &event);
    EXPECT_EQ(bounds(), (HJRect{-1, -2, 10, 5}));
}

TEST_F(KWChannelViewNavigatorTest, TwoFingersWithCtrlZoomButWhatTheyLeaveInMotionDoesNot) {
    wheel({80, 40}, {0, 120}, Qt::ControlModifier, {0, 30}, Qt::ScrollUpdate);
    EXPECT_EQ(bounds(), (HJRect{0.5f, -2, 8, 5}));
    wheel({80, 40}, {0, 120}, Qt::ControlModifier, {0, 30}, Qt::ScrollMomentum);
    EXPECT_EQ(bounds(), (HJRect{0.5f, -2, 8, 5}));
}

TEST_F(KWChannelViewNavigatorTest, APinchZoomsAroundThePointer) {
    pinch({80, 40}, 0, Qt::BeginNativeGesture);
    pinch({80, 40}, 0.25);
    pinch({80, 40}, 0, Qt::EndNativeGesture);
    EXPECT_FLOAT_EQ(bounds().width, 8);
    EXPECT_FLOAT_EQ(bounds().x, 0.5f);
    EXPECT_FLOAT_EQ(bounds().height, 4);
    pinch({80, 40}, -5);
    EXPECT_FLOAT_EQ(bounds().width, 80);
    pinch({80, 40}, 90, Qt::RotateNativeGesture);
    EXPECT_FLOAT_EQ(bounds().width, 80);
}

// --- The middle button.

TEST_F(KWChannelViewNavigatorTest, TheMiddleButtonPans) {
    for (const int mode : {0, 1, 2}) {
        view->setDisplayedBounds(whole);
        view->setEditingMode(mode);
        pressMiddle({100, 100});
        EXPECT_TRUE(navigator->isPanning());
        EXPECT_EQ(view->cursor().shape(), Qt::ClosedHandCursor);
        dragMiddle(32, 16);
        EXPECT_EQ(bounds(), (HJRect{-1, -2.5f, 10, 5}));
        dragMiddle(-32, 0);
        EXPECT_EQ(bounds(), (HJRect{1, -2, 10, 5}));
        releaseMiddle();
        EXPECT_FALSE(navigator->isPanning());
        EXPECT_NE(view->cursor().shape(), Qt::ClosedHandCursor);
        EXPECT_EQ(bounds(), (HJRect{1, -2, 10, 5}));
        move({0, 0}, Qt::NoButton);
        EXPECT_EQ(bounds(), (HJRect{1, -2, 10, 5}));
    }
    EXPECT_EQ(channel->keyframeCount(), 3u);
    EXPECT_FALSE(manager->canUndo());
}

TEST_F(KWChannelViewNavigatorTest, EscapePutsBackWhatWasPanned) {
    pressMiddle({100, 100});
    dragMiddle(50, 50);
    escape();
    EXPECT_EQ(bounds(), whole);
    EXPECT_FALSE(navigator->isPanning());
    dragMiddle(70, 70);
    releaseMiddle();
    EXPECT_EQ(bounds(), whole);
}

TEST_F(KWChannelViewNavigatorTest, WhileThereIsADragOthersWait) {
    pressMiddle({100, 100});
    dragMiddle(32, 0);
    send(QEvent::MouseButtonPress, Qt::LeftButton, Qt::LeftButton | Qt::MiddleButton);
    EXPECT_FALSE(view->isGestureActive());
    wheel({80, 40}, {0, 120});
    EXPECT_TRUE(wasAccepted);
    EXPECT_FALSE(navigator->frameAll());
    view->setSelectedKeys({KWTime(5)});
    key(Qt::Key_Delete, QStringLiteral("\x7f"));
    EXPECT_EQ(channel->keyframeCount(), 3u);
    send(QEvent::MouseButtonRelease, Qt::LeftButton, Qt::MiddleButton);
    EXPECT_TRUE(navigator->isPanning());
    EXPECT_EQ(bounds(), (HJRect{-1, -2, 10, 5}));
    QKeyEvent shortcut(QEvent::ShortcutOverride, Qt::Key_Z, Qt::ControlModifier);
    shortcut.setAccepted(false);
    QApplication::sendEvent(view.get(), &shortcut);
    EXPECT_TRUE(shortcut.isAccepted());
}

TEST_F(KWChannelViewNavigatorTest, ADragEndsWithAMoveThatHasNoButton) {
    pressMiddle({100, 100});
    dragMiddle(32, 0);
    hover({0, 0});
    EXPECT_FALSE(navigator->isPanning());
    EXPECT_EQ(bounds(), (HJRect{-1, -2, 10, 5}));
}

TEST_F(KWChannelViewNavigatorTest, ADragEndsWhenTheViewIsHiddenOrDisabledOrItsWindowIsLeft) {
    const std::function<void()> ends[] = {[&] {
                                              view->show();
                                              view->hide();
                                          },
                                          [&] { view->setEnabled(false); },
                                          [&] {
                                              QEvent event(QEvent::WindowDeactivate);
                                              QApplication::sendEvent(view.get(), &event);
                                          },
                                          [&] { navigator.reset(); }};
    for (const auto& end : ends) {
        heard.clear();
        pressAt(line());
        ASSERT_TRUE(navigator->isScrubbing());
        end();
        EXPECT_EQ(heard, "began ended ");
        EXPECT_FALSE(navigator && navigator->isScrubbing());
        view->setEnabled(true);
    }
}

// --- The view's own gestures.

TEST_F(KWChannelViewNavigatorTest, AGestureOfTheViewIsNotDisturbed) {
    pressKey(5);
    ASSERT_TRUE(view->isGestureActive());
    wheel({80, 40}, {0, 120});
    pinch({80, 40}, 0.5);
    wheel({80, 40}, {}, {}, {32, 16}, Qt::ScrollUpdate);
    send(QEvent::MouseButtonPress, Qt::MiddleButton, Qt::LeftButton | Qt::MiddleButton);
    EXPECT_FALSE(navigator->isPanning());
    EXPECT_FALSE(navigator->frameAll());
    EXPECT_FALSE(navigator->frameSelection());
    EXPECT_FALSE(navigator->zoomBy(2, 2));
    EXPECT_FALSE(navigator->panBy({10, 10}));
    EXPECT_EQ(bounds(), whole);
    dragBy(32, 0);
    EXPECT_EQ(times(), (std::vector<float>{1, 6, 9}));
    release();
}

TEST_F(KWChannelViewNavigatorTest, ADisabledViewIsNotNavigated) {
    view->setEnabled(false);
    wheel({80, 40}, {0, 120});
    pressMiddle({80, 40});
    EXPECT_FALSE(navigator->isPanning());
    releaseMiddle();
    pressAt(line());
    EXPECT_FALSE(navigator->isScrubbing());
    EXPECT_EQ(bounds(), whole);
}

// --- Framing.

TEST_F(KWChannelViewNavigatorTest, FramingAllShowsTheKeysOfAllChannels) {
    const auto other = channelWithKeys({{-1, -4}, {2, 6}});
    view->addSecondaryChannel(other);
    EXPECT_TRUE(navigator->frameAll());
    EXPECT_FLOAT_EQ(bounds().x, -2);
    EXPECT_FLOAT_EQ(bounds().width, 12);
    EXPECT_FLOAT_EQ(bounds().y, -5);
    EXPECT_FLOAT_EQ(bounds().height, 12);
    view->removeAllSecondaryChannels();
    EXPECT_TRUE(navigator->frameAll());
    EXPECT_FLOAT_EQ(bounds().x, 0.2f);
    EXPECT_FLOAT_EQ(bounds().width, 9.6f);
    EXPECT_FLOAT_EQ(bounds().y, -0.2f);
    EXPECT_FLOAT_EQ(bounds().height, 2.4f);
}

TEST_F(KWChannelViewNavigatorTest, FramingIsInTheUsersUnit) {
    KWUnitController& units = KWUnitController::sharedUnitController();
    units.setDefaultLengthUnit(KWLengthUnitCentimeter);
    channel->setUnitType(KWUnitTypeLength);
    EXPECT_TRUE(navigator->frameAll());
    EXPECT_FLOAT_EQ(bounds().y, -20);
    EXPECT_FLOAT_EQ(bounds().height, 240);
    units.setDefaultLengthUnit(KWLengthUnitMeter);
}

TEST_F(KWChannelViewNavigatorTest, FramingTheSelectionShowsTheSelectedKeys) {
    view->setSelectedKeys({KWTime(9), KWTime(5), KWTime(7)});
    EXPECT_TRUE(navigator->frameSelection());
    EXPECT_FLOAT_EQ(bounds().x, 4.6f);
    EXPECT_FLOAT_EQ(bounds().width, 4.8f);
    EXPECT_FLOAT_EQ(bounds().y, 0.9f);
    EXPECT_FLOAT_EQ(bounds().height, 1.2f);
    view->setSelectedKeys({KWTime(5)});
    EXPECT_TRUE(navigator->frameSelection());
    EXPECT_EQ(bounds(), (HJRect{4, 0.5f, 2, 1}));
}

TEST_F(KWChannelViewNavigatorTest, WithNothingToFrameNothingHappens) {
    EXPECT_FALSE(navigator->frameSelection());
    view->setSelectedKeys({KWTime(7)});
    EXPECT_FALSE(navigator->frameSelection());
    view->setPrimaryChannel(std::make_shared<KWKeyFramedChannel>());
    EXPECT_FALSE(navigator->frameAll());
    view->setPrimaryChannel(nullptr);
    EXPECT_FALSE(navigator->frameAll());
    EXPECT_FALSE(navigator->frameSelection());
    EXPECT_EQ(bounds(), whole);
}

TEST_F(KWChannelViewNavigatorTest, CurvesWithoutKeysAreFramedInTheTimesThatAreShown) {
    const auto line = std::make_shared<KWAlgebricChannel>();
    line->setExpression("t");
    view->setPrimaryChannel(line);
    EXPECT_TRUE(navigator->frameAll());
    EXPECT_EQ(bounds().x, 0);
    EXPECT_EQ(bounds().width, 10);
    EXPECT_FLOAT_EQ(bounds().y, -1);
    EXPECT_FLOAT_EQ(bounds().height, 12);
}

TEST_F(KWChannelViewNavigatorTest, KeysThatAreNowhereAreNotFramed) {
    channel->setValueForKeyframe(kwNaN, KWTime(100));
    channel->setValueForKeyframe(1, KWTime(kwInfinity));
    channel->setValueForKeyframe(-kwInfinity, KWTime(-100));
    EXPECT_TRUE(navigator->frameAll());
    EXPECT_FLOAT_EQ(bounds().x, 0.2f);
    EXPECT_FLOAT_EQ(bounds().width, 9.6f);
    channel->setValueForKeyframe(3e38f, KWTime(2));
    channel->setValueForKeyframe(-3e38f, KWTime(3));
    EXPECT_TRUE(navigator->frameAll());
    EXPECT_TRUE(std::isfinite(bounds().height));
}

TEST_F(KWChannelViewNavigatorTest, NothingIsFramedByItself) {
    view->setPrimaryChannel(channelWithKeys({{100, 100}, {200, 200}}));
    navigator->rearm();
    view->setPrimaryChannel(channel);
    EXPECT_EQ(bounds(), whole);
}

TEST_F(KWChannelViewNavigatorTest, AFreshDocumentsFirstCurveIsFramedOnce) {
    const auto far = channelWithKeys({{100, 100}, {200, 200}});
    navigator->setFramesFirstChannel(true);
    view->setPrimaryChannel(nullptr);
    view->setPrimaryChannel(std::make_shared<KWKeyFramedChannel>());
    EXPECT_EQ(bounds(), whole) << "there is nothing to show yet";
    view->setPrimaryChannel(far);
    EXPECT_EQ(bounds(), (HJRect{90, 90, 120, 120}));
    view->setPrimaryChannel(channel);
    far->setValueForKeyframe(0, KWTime(0));
    view->setPrimaryChannel(far);
    EXPECT_EQ(bounds(), (HJRect{90, 90, 120, 120}));
    navigator->rearm();
    view->setPrimaryChannel(channel);
    EXPECT_FLOAT_EQ(bounds().width, 9.6f);
}

TEST_F(KWChannelViewNavigatorTest, WhoHasLookedAroundIsNotMovedAway) {
    const auto far = channelWithKeys({{100, 100}, {200, 200}});
    const std::function<void()> looks[] = {[&] {
                                               wheel({80, 40}, {0, 120});
                                           },
                                           [&] {
                                               pressMiddle({100, 100});
                                               releaseMiddle();
                                           },
                                           [&] {
                                               click({250, 20});
                                           }};
    navigator->setFramesFirstChannel(true);
    for (const auto& look : looks) {
        view->setPrimaryChannel(nullptr);
        view->setDisplayedBounds(whole);
        navigator->rearm();
        look();
        const HJRect before = bounds();
        view->setPrimaryChannel(far);
        EXPECT_EQ(bounds(), before);
    }
}

// --- The current time.

TEST_F(KWChannelViewNavigatorTest, TheTimeLineIsDragged) {
    pressAt(line() + QPointF(3, 0));
    EXPECT_TRUE(wasAccepted);
    EXPECT_TRUE(navigator->isScrubbing());
    EXPECT_EQ(view->currentTime(), 3) << "it does not jump to the pointer";
    dragBy(32, 0);
    EXPECT_EQ(view->currentTime(), 4);
    dragBy(-32, 100);
    EXPECT_EQ(view->currentTime(), 2);
    release();
    EXPECT_EQ(heard, "began 4 2 ended ");
    EXPECT_FALSE(view->isGestureActive());
    dragBy(64, 0);
    EXPECT_EQ(view->currentTime(), 2);
}

TEST_F(KWChannelViewNavigatorTest, EscapePutsBackTheTime) {
    pressAt(line());
    dragBy(32, 0);
    escape();
    EXPECT_EQ(view->currentTime(), 3);
    EXPECT_EQ(heard, "began 4 3 ended ");
    dragBy(96, 0);
    release();
    EXPECT_EQ(heard, "began 4 3 ended ");
}

TEST_F(KWChannelViewNavigatorTest, InAWindowThePressTakesTheKeyboardForEscape) {
    QWidget window;
    QWidget other(&window);
    other.setFocusPolicy(Qt::StrongFocus);
    view->setParent(&window);
    view->setGeometry(0, 0, 320, 160);
    window.show();
    window.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&window));
    for (const Qt::MouseButton button : {Qt::LeftButton, Qt::MiddleButton}) {
        other.setFocus();
        const QPoint from = line().toPoint();
        QTest::mousePress(view.get(), button, Qt::NoModifier, from);
        QTest::mouseMove(view.get(), from + QPoint(64, 16));
        EXPECT_NE(bounds() == whole, view->currentTime() == 3);
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Escape);
        EXPECT_EQ(bounds(), whole);
        EXPECT_EQ(view->currentTime(), 3);
        QTest::mouseRelease(view.get(), button, Qt::NoModifier, from);
    }
    EXPECT_FALSE(navigator->isScrubbing() || navigator->isPanning());
    view->setParent(nullptr);
}

TEST_F(KWChannelViewNavigatorTest, ADraggedTimeStopsAtFrames) {
    navigator->setTimeStep(0.5);
    pressAt(line());
    dragBy(7, 0);
    EXPECT_EQ(view->currentTime(), 3);
    dragBy(9, 0);
    EXPECT_EQ(view->currentTime(), 3.5f);
    release();
    EXPECT_EQ(heard, "began 3.5 ended ");
}

TEST_F(KWChannelViewNavigatorTest, TheLineIsLeftToTheHandlesOfKeysAndToOtherTools) {
    view->setCurrentTime(5);
    pressKey(5);
    EXPECT_FALSE(navigator->isScrubbing());
    EXPECT_TRUE(view->isGestureActive());
    release();
    pressAt(line() + QPointF(6, 0));
    EXPECT_FALSE(navigator->isScrubbing()) << "too far away";
    release();
    pressAt(line(), Qt::ShiftModifier);
    EXPECT_FALSE(navigator->isScrubbing()) << "a rubber band that adds";
    release();
    for (const int mode : {1, 2}) {
        view->setEditingMode(mode);
        pressAt(line());
        EXPECT_FALSE(navigator->isScrubbing());
        release();
    }
    EXPECT_EQ(heard, "");
}

TEST_F(KWChannelViewNavigatorTest, APressInTheRulerTakesTheTimeThereInEveryMode) {
    navigator->setRuler(Qt::BottomEdge, 16);
    for (const int mode : {0, 1, 2}) {
        heard.clear();
        view->setCurrentTime(3);
        view->setEditingMode(mode);
        pressAt({64, 150});
        EXPECT_EQ(view->currentTime(), 2);
        dragBy(32, 0);
        release();
        EXPECT_EQ(heard, "began 2 3 ended ");
        pressAt({200, 8});
        EXPECT_FALSE(navigator->isScrubbing());
        release();
    }
    navigator->setRuler(Qt::TopEdge, 16);
    pressAt({64, 8});
    EXPECT_TRUE(navigator->isScrubbing());
    release();
}

TEST_F(KWChannelViewNavigatorTest, TheCursorShowsThatTheLineCanBeDragged) {
    hover(line());
    EXPECT_EQ(view->cursor().shape(), Qt::SplitHCursor);
    hover(line() + QPointF(40, 0));
    EXPECT_EQ(view->cursor().shape(), Qt::ArrowCursor);
    hover(line());
    view->setEditingMode(2);
    hover(line());
    EXPECT_NE(view->cursor().shape(), Qt::SplitHCursor);
    view->setEditingMode(0);
    pressAt(line());
    dragBy(32, 0);
    release();
    EXPECT_EQ(view->cursor().shape(), Qt::SplitHCursor) << "the pointer is on the line";
    QEvent leave(QEvent::Leave);
    QApplication::sendEvent(view.get(), &leave);
    EXPECT_EQ(view->cursor().shape(), Qt::ArrowCursor);
}

TEST_F(KWChannelViewNavigatorTest, ThePointersTimeIsToldWhileDragging) {
    float time = 0;
    QObject::connect(view.get(), &KWChannelView::pointerMoved,
                     [&](float pointed, float) { time = pointed; });
    pressAt(line());
    dragBy(32, 0);
    EXPECT_EQ(time, 4);
}

TEST_F(KWChannelViewNavigatorTest, WithNothingDisplayedThereIsNoTimeToDrag) {
    view->setDisplayedBounds({kwNaN, 0, kwNaN, 1});
    pressAt({10, 10});
    EXPECT_FALSE(navigator->isScrubbing());
    release();
}

TEST_F(KWChannelViewNavigatorTest, AViewThatGoesDuringADragEndsIt) {
    QObject::connect(navigator.get(), &KWChannelViewNavigator::timeScrubbed,
                     [this] { view.reset(); });
    pressAt(line());
    dragBy(32, 0);
    EXPECT_EQ(view, nullptr);
    EXPECT_EQ(navigator->view(), nullptr);
    EXPECT_EQ(heard, "began 4 ended ");
    EXPECT_FALSE(navigator->frameAll());
    EXPECT_FALSE(navigator->zoomBy(2, 2));
}

TEST_F(KWChannelViewNavigatorTest, WhatOthersThrowIsLogged) {
    QObject::connect(view.get(), &KWChannelView::displayedBoundsChanged,
                     [] { throw std::runtime_error("no"); });
    const LogLines log;
    wheel({80, 40}, {0, 120});
    EXPECT_TRUE(wasAccepted);
    ASSERT_EQ(log.lines.size(), 1u);
    EXPECT_NE(log.lines[0].find("no"), std::string::npos);
}

TEST_F(KWChannelViewNavigatorTest, ANavigatorThatGoesDuringADragLeavesTheViewAlone) {
    QObject::connect(navigator.get(), &KWChannelViewNavigator::timeScrubbed,
                     [this] { navigator.reset(); });
    pressAt(line());
    dragBy(32, 0);
    EXPECT_EQ(heard, "began 4 ended ");
    release();
    wheel({80, 40}, {0, 120});
    EXPECT_EQ(bounds(), whole);
}
