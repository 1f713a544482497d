#include "GestureTestSupport.h"

#include <KWBase/KWConstantChannel.h>

#include <QContextMenuEvent>
#include <QDialog>
#include <QLineEdit>
#include <QMenu>
#include <QShortcut>
#include <QTest>
#include <QVBoxLayout>
#include <QWheelEvent>
#include <QWindow>
#include <limits>
#include <stdexcept>

namespace {

using Times = std::vector<float>;

class KWChannelViewGestureLifeTest : public HeardGestureTest {};

class Listener final : public QWidget {
  public:
    using QWidget::QWidget;
    int moves = 0;
    int releases = 0;

  protected:
    void mouseMoveEvent(QMouseEvent*) override { ++moves; }
    void mouseReleaseEvent(QMouseEvent*) override { ++releases; }
};

void sendTo(QWidget& widget, QEvent::Type type, Qt::MouseButton button, Qt::MouseButtons buttons) {
    QMouseEvent event(type, {5, 5}, widget.mapToGlobal(QPointF(5, 5)), button, buttons,
                      Qt::NoModifier);
    QApplication::sendEvent(&widget, &event);
}
class EveryGestureLife : public EveryGestureTest {};

} // namespace

INSTANTIATE_TEST_SUITE_P(KWChannelView, EveryGestureLife, testing::Range(0, 5));

// --- How a gesture ends.

TEST_P(EveryGestureLife, EndsWithTheRelease) {
    startGesture();
    dragBy(10, 10);
    EXPECT_EQ(heard, "begin");
    release();
    EXPECT_TRUE(wasAccepted);
    expectEnded();
}

TEST_P(EveryGestureLife, EndsWithAReleaseOutsideTheView) {
    startGesture();
    dragBy(-5000, 7000);
    release();
    expectEnded();
}

TEST_P(EveryGestureLife, EndsWhenTheViewIsHidden) {
    view->show();
    startGesture();
    dragBy(10, 10);
    view->hide();
    expectEnded();
}

TEST_P(EveryGestureLife, EndsWhenAnAncestorIsHidden) {
    QWidget parent;
    view->setParent(&parent);
    parent.show();
    startGesture();
    parent.hide();
    expectEnded();
    view->setParent(nullptr);
}

TEST_P(EveryGestureLife, EndsWhenTheViewIsDisabled) {
    startGesture();
    view->setEnabled(false);
    expectEnded();
    view->setEnabled(true);
    expectEnded();
}

TEST_P(EveryGestureLife, EndsWhenTheWindowIsLeft) {
    startGesture();
    QEvent deactivate(QEvent::WindowDeactivate);
    QApplication::sendEvent(view.get(), &deactivate);
    expectEnded();
}

TEST_P(EveryGestureLife, EndsWhenTheFocusLeavesTheWindow) {
    startGesture();
    QFocusEvent within(QEvent::FocusOut, Qt::OtherFocusReason);
    QApplication::sendEvent(view.get(), &within);
    EXPECT_TRUE(view->isGestureActive());
    QFocusEvent out(QEvent::FocusOut, Qt::ActiveWindowFocusReason);
    QApplication::sendEvent(view.get(), &out);
    expectEnded();
}

TEST_P(EveryGestureLife, EndsWhenAnotherWidgetGrabsTheMouse) {
    QWidget window;
    QWidget other(&window);
    other.setGeometry(400, 0, 50, 50);
    view->setParent(&window);
    window.show();
    startGesture();
    other.grabMouse();
    sendTo(other, QEvent::MouseMove, Qt::NoButton, Qt::LeftButton);
    expectEnded();
    other.releaseMouse();
    view->setParent(nullptr);
}

TEST_P(EveryGestureLife, EndsWhenAPopupOpens) {
    view->setFocusPolicy(Qt::NoFocus);
    view->show();
    startGesture();
    QMenu menu;
    menu.addAction(QStringLiteral("one"));
    menu.popup({10, 10});
    expectEnded();
    menu.close();
    view->setFocusPolicy(Qt::StrongFocus);
}

TEST_P(EveryGestureLife, EndsWithAReleaseThatGoesToAnotherWidget) {
    QWidget other;
    startGesture();
    sendTo(other, QEvent::MouseButtonRelease, Qt::RightButton, Qt::LeftButton);
    EXPECT_TRUE(view->isGestureActive());
    sendTo(other, QEvent::MouseButtonRelease, Qt::LeftButton, Qt::NoButton);
    expectEnded();
}

TEST_P(EveryGestureLife, EndsWithAMoveOverAnotherWidgetWithoutTheLeftButton) {
    QWidget other;
    startGesture();
    sendTo(other, QEvent::MouseMove, Qt::NoButton, Qt::LeftButton);
    EXPECT_TRUE(view->isGestureActive());
    sendTo(other, QEvent::MouseMove, Qt::NoButton, Qt::RightButton);
    expectEnded();
}

TEST_P(EveryGestureLife, GoesOnWhereTheViewItselfHasTheMouseOrLivesInAPopup) {
    QWidget popup(nullptr, Qt::Popup);
    QWidget other(&popup);
    view->setParent(&popup);
    popup.show();
    startGesture();
    view->grabMouse();
    sendTo(other, QEvent::MouseMove, Qt::NoButton, Qt::LeftButton);
    EXPECT_TRUE(view->isGestureActive());
    view->releaseMouse();
    release();
    expectEnded();
    view->setParent(nullptr);
}

TEST_P(EveryGestureLife, LeavesTheEventsOfOthersAlone) {
    QWidget window;
    Listener other(&window);
    view->setParent(&window);
    startGesture();
    sendTo(other, QEvent::MouseMove, Qt::NoButton, Qt::LeftButton);
    sendTo(other, QEvent::MouseButtonRelease, Qt::LeftButton, Qt::NoButton);
    EXPECT_EQ(other.moves, 1);
    EXPECT_EQ(other.releases, 1);
    expectEnded();
    // Whoever is told of the end may delete the one to whom the release goes.
    auto gone = std::make_unique<Listener>(&window);
    startGesture();
    QObject::connect(view.get(), &KWChannelView::gestureDidEnd, [&] { gone.reset(); });
    sendTo(*gone, QEvent::MouseButtonRelease, Qt::LeftButton, Qt::NoButton);
    EXPECT_EQ(gone, nullptr);
    view->setParent(nullptr);
}

TEST_P(EveryGestureLife, MayEndWithTheViewWhenTheReleaseGoesElsewhere) {
    QWidget other;
    startGesture();
    QObject::connect(view.get(), &KWChannelView::gestureDidEnd, [this] { view.reset(); });
    sendTo(other, QEvent::MouseButtonRelease, Qt::LeftButton, Qt::NoButton);
    EXPECT_EQ(view, nullptr);
    EXPECT_EQ(heard, "begin end");
}

TEST_P(EveryGestureLife, EndsWithAMoveWithoutTheLeftButton) {
    startGesture();
    const std::string before = contentsOf(*channel);
    const HJRect bounds = view->displayedBounds();
    move(where + QPointF(20, 20), Qt::NoButton);
    EXPECT_EQ(contentsOf(*channel), before);
    EXPECT_EQ(view->displayedBounds(), bounds);
    expectEnded();
}

TEST_P(EveryGestureLife, EndsBeforeThePrimaryChannelIsReplacedByOneOfAnotherKind) {
    startGesture();
    dragBy(10, 10);
    std::shared_ptr<KWChannel> atEnd;
    QObject::connect(view.get(), &KWChannelView::gestureDidEnd,
                     [&] { atEnd = view->primaryChannel(); });
    view->setPrimaryChannel(std::make_shared<KWConstantChannel>());
    EXPECT_EQ(atEnd, channel);
    EXPECT_EQ(delegate.count, GetParam() == 0 ? 2 : 1);
    expectEnded();
}

TEST_P(EveryGestureLife, EndsWhenTheViewLosesItsChannel) {
    startGesture();
    dragBy(10, 10);
    view->setPrimaryChannel(nullptr);
    expectEnded();
}

TEST_P(EveryGestureLife, GoesOnWhenTheSameChannelIsSetAgain) {
    startGesture();
    dragBy(10, 10);
    const std::vector<float> chosen = selection();
    const int told = delegate.count;
    view->setPrimaryChannel(view->primaryChannel());
    EXPECT_TRUE(view->isGestureActive());
    EXPECT_EQ(heard, "begin");
    EXPECT_EQ(selection(), Times{});
    EXPECT_EQ(delegate.count, told + 1);
    const std::string keys = contentsOf(*channel);
    const HJRect bounds = view->displayedBounds();
    dragBy(20, 20);
    // Moving keys selects those, and panning and zooming never do.
    static const Times after[] = {{5.625f}, {}, {3.75f}, {}, {}};
    EXPECT_EQ(selection(), after[GetParam()]);
    EXPECT_EQ(contentsOf(*channel) != keys, GetParam() == 0 || GetParam() == 2);
    EXPECT_EQ(view->displayedBounds() == bounds, GetParam() < 3);
    release();
    expectEnded();
}

TEST_P(EveryGestureLife, EndsWhenTheViewIsDestroyed) {
    startGesture();
    dragBy(10, 10);
    const std::string keys = contentsOf(*channel);
    const int told = delegate.count;
    view.reset();
    EXPECT_EQ(heard, "begin end");
    EXPECT_EQ(contentsOf(*channel), keys);
    EXPECT_EQ(delegate.count, told);
    EXPECT_EQ(channel.use_count(), 1);
    channel->invalidate();
    set(0, 0);
}

TEST_P(EveryGestureLife, EndsWhenAModalDialogBlocksTheWindow) {
    view->show();
    startGesture();
    QDialog dialog;
    dialog.setWindowModality(Qt::ApplicationModal);
    dialog.show();
    expectEnded();
}

TEST_P(EveryGestureLife, BeginsAnewWithAPressAfterALostRelease) {
    startGesture();
    dragBy(10, 10);
    heard.clear();
    pressAt({120, 60});
    EXPECT_EQ(heard, "end begin");
    release();
    EXPECT_EQ(heard, "end begin end");
}

TEST_P(EveryGestureLife, BeginsWithADoubleClickToo) {
    startGesture();
    release();
    heard.clear();
    send(QEvent::MouseButtonDblClick, Qt::LeftButton, Qt::LeftButton);
    EXPECT_TRUE(view->isGestureActive());
    release();
    EXPECT_EQ(heard, "begin end");
}

// --- What a gesture does not hear.

TEST_P(EveryGestureLife, IgnoresOtherButtons) {
    startGesture();
    dragBy(10, 10);
    const std::string before = contentsOf(*channel);
    send(QEvent::MouseButtonPress, Qt::RightButton, Qt::LeftButton | Qt::RightButton);
    EXPECT_TRUE(wasAccepted);
    send(QEvent::MouseButtonRelease, Qt::RightButton, Qt::LeftButton);
    EXPECT_TRUE(wasAccepted);
    send(QEvent::MouseButtonDblClick, Qt::MiddleButton, Qt::LeftButton | Qt::MiddleButton);
    EXPECT_TRUE(view->isGestureActive());
    EXPECT_EQ(contentsOf(*channel), before);
    EXPECT_EQ(heard, "begin");
}

TEST_P(EveryGestureLife, IgnoresOtherKeysAndShortcuts) {
    QWidget window;
    QVBoxLayout layout(&window);
    QLineEdit other;
    layout.addWidget(view.get());
    layout.addWidget(&other);
    int shortcuts = 0;
    for (const char* const keys : {"Ctrl+Z", "Delete", "A", "Escape"}) {
        auto* const shortcut = new QShortcut(QKeySequence(QLatin1String(keys)), &window);
        QObject::connect(shortcut, &QShortcut::activated, [&shortcuts] { ++shortcuts; });
    }
    window.show();
    window.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&window));
    view->setFocus();
    startGesture();
    dragBy(10, 10);
    const std::string before = contentsOf(*channel);
    for (const int code : {Qt::Key_Delete, Qt::Key_Backspace, Qt::Key_A, Qt::Key_Tab})
        QTest::keyClick(window.windowHandle(), static_cast<Qt::Key>(code));
    QTest::keyClick(window.windowHandle(), Qt::Key_Z, Qt::ControlModifier);
    EXPECT_TRUE(view->isGestureActive());
    EXPECT_TRUE(view->hasFocus());
    EXPECT_EQ(contentsOf(*channel), before);
    QTest::keyClick(window.windowHandle(), Qt::Key_Escape);
    EXPECT_FALSE(view->isGestureActive());
    EXPECT_EQ(shortcuts, 0);
    QTest::keyClick(window.windowHandle(), Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(shortcuts, 1);
    view->setParent(nullptr);
}

TEST_P(EveryGestureLife, IgnoresTheWheelAndContextMenus) {
    QWidget parent;
    view->setParent(&parent);
    int menus = 0;
    view->setContextMenuPolicy(Qt::CustomContextMenu);
    QObject::connect(view.get(), &QWidget::customContextMenuRequested, [&] { ++menus; });
    startGesture();
    QWheelEvent wheel({10, 10}, {10, 10}, {}, {0, 120}, Qt::LeftButton, Qt::NoModifier,
                      Qt::NoScrollPhase, false);
    wheel.setAccepted(false);
    QApplication::sendEvent(view.get(), &wheel);
    EXPECT_TRUE(wheel.isAccepted());
    QContextMenuEvent menu(QContextMenuEvent::Mouse, {10, 10}, {10, 10});
    QApplication::sendEvent(view.get(), &menu);
    EXPECT_EQ(menus, 0);
    release();
    QApplication::sendEvent(view.get(), &menu);
    EXPECT_EQ(menus, 1);
    view->setParent(nullptr);
}

// --- Whoever is told may do anything.

TEST_F(KWChannelViewGestureLifeTest, TheViewMayBeDeletedByWhoeverIsTold) {
    struct Way {
        const char* name;
        std::function<void(std::function<void()>)> hook;
    };
    std::unique_ptr<NoticeCounter> notices;
    const auto on = [this](auto signal) {
        return [this, signal](std::function<void()> act) {
            QObject::connect(view.get(), signal, std::move(act));
        };
    };
    const Way ways[] = {
        {"begin", on(&KWChannelView::gestureWillBegin)},
        {"end", on(&KWChannelView::gestureDidEnd)},
        {"selection", on(&KWChannelView::selectedKeysChanged)},
        {"bounds", on(&KWChannelView::displayedBoundsChanged)},
        {"settings", on(&KWChannelView::settingsChanged)},
        {"pointer", on(&KWChannelView::pointerMoved)},
        {"delegate", [this](std::function<void()> act) { delegate.also = std::move(act); }},
        {"notice",
         [&](std::function<void()> act) {
             notices = std::make_unique<NoticeCounter>(channel.get(), std::move(act));
         }},
    };
    // Deletes, cancels, replaces the channel, or begins something else.
    const std::function<void()> acts[] = {
        [this] { view.reset(); },
        [this] { view->cancelGesture(); },
        [this] { view->setPrimaryChannel(std::make_shared<KWConstantChannel>()); },
        [this] { view->setPrimaryChannel(nullptr); },
        [this] { view->hide(); },
        [this] {
            if (view->editingMode() == 0)
                click({30, 30});
        },
    };
    for (const Way& way : ways) {
        for (std::size_t act = 0; act < std::size(acts); ++act) {
            for (int gesture = 0; gesture < 4; ++gesture) {
                SCOPED_TRACE(std::string(way.name) + " " + std::to_string(act) + " " +
                             std::to_string(gesture));
                restart();
                heard.clear();
                listen();
                view->setShowsTransientPointCoordinates(true);
                setKeys({{1, 0}, {5, 1}, {9, 2}});
                view->setEditingMode(gesture == 2 ? 1 : gesture == 3 ? 2 : 0);
                view->show();
                view->grab();
                bool isDone = false;
                way.hook([&] {
                    if (!std::exchange(isDone, true))
                        acts[act]();
                });
                const QPointF start = gesture == 0 ? at(5, 1) : QPointF(20, 120);
                pressAt(start);
                for (int k = 1; view && k < 5; ++k)
                    dragBy(k * 50, k * 20);
                if (view)
                    release();
                notices.reset();
                delegate.also = nullptr;
                // Each beginning has its end.
                const auto count = [this](std::string_view word) {
                    std::size_t found = 0;
                    for (std::size_t k = heard.find(word); k != heard.npos;
                         k = heard.find(word, k + 1))
                        ++found;
                    return found;
                };
                EXPECT_EQ(count("begin"), count("end")) << heard;
                EXPECT_GE(count("begin"), 1u);
                EXPECT_FALSE(view && view->isGestureActive());
                // What was being moved is still there.
                EXPECT_TRUE(gesture != 0 || channel->keyframeCount() == 3);
                view.reset();
                EXPECT_EQ(channel.use_count(), 1);
            }
        }
    }
    restart();
}

TEST_F(KWChannelViewGestureLifeTest, CancellingInTheMiddleOfAWriteHappensAfterIt) {
    setKeys({{1, 0}, {5, 1}, {9, 2}});
    const std::string before = contentsOf(*channel);
    view->setSelectedKeys({KWTime(1), KWTime(5)});
    bracket();
    int count = 0;
    NoticeCounter notices(channel.get(), [&] {
        if (++count == 3)
            view->cancelGesture();
    });
    pressKey(5);
    dragBy(32, 0);
    EXPECT_TRUE(view->isGestureActive());
    dragBy(64, 0);
    EXPECT_EQ(contentsOf(*channel), before);
    EXPECT_EQ(selection(), (Times{1, 5}));
    EXPECT_FALSE(manager->canUndo());
    expectEndedWith({1, 5, 9});
}

TEST_F(KWChannelViewGestureLifeTest, CancellingAsAKeyIsMadeRemovesIt) {
    setKeys({{1, 0}});
    view->setEditingMode(KWChannelViewModeAddKey);
    NoticeCounter notices(channel.get(), [&] { view->cancelGesture(); });
    pressAt({160, 100});
    EXPECT_EQ(selection(), Times{});
    expectEndedWith({1});
}

TEST_F(KWChannelViewGestureLifeTest, WhatObserversThrowIsLoggedAndTheGestureGoesOn) {
    setKeys({{1, 0}, {5, 1}, {9, 2}});
    view->setSelectedKeys({KWTime(1), KWTime(5)});
    const NoticeCounter notices(channel.get(), [] { throw std::runtime_error("told"); });
    LogLines log;
    pressKey(5);
    dragBy(32, 0);
    EXPECT_EQ(times(), (Times{2, 6, 9}));
    EXPECT_EQ(selection(), (Times{2, 6}));
    dragBy(64, 0);
    EXPECT_EQ(times(), (Times{3, 7, 9}));
    ASSERT_EQ(log.lines.size(), 2u);
    EXPECT_EQ(log.lines[0], "An observer of an edit in a curve view has thrown: told");
    escape();
    EXPECT_EQ(times(), (Times{1, 5, 9}));
    EXPECT_EQ(heard, "begin end");
}

TEST_F(KWChannelViewGestureLifeTest, ADelegateThatThrowsIsLogged) {
    setKeys({{1, 0}, {5, 1}});
    delegate.also = [] { throw 7; };
    LogLines log;
    pressKey(5);
    dragBy(32, 0);
    EXPECT_EQ(times(), (Times{1, 6}));
    release();
    click({100, 100});
    EXPECT_EQ(heard, "begin end begin end");
    EXPECT_EQ(log.lines, std::vector<std::string>(
                             2, "An observer of an edit in a curve view has thrown: no standard "
                                "exception"));
}

// --- The operations that begin gestures, called by a host.

TEST_F(KWChannelViewGestureLifeTest, AHostMayBeginAGestureItself) {
    setKeys({{1, 0}, {5, 1}});
    view->setSelectedKeys({KWTime(5)});
    view->setEditingMode(9);
    const auto event = [this](const QPointF& position) {
        origin = position;
        return QMouseEvent(QEvent::MouseButtonPress, position, view->mapToGlobal(position),
                           Qt::LeftButton, Qt::LeftButton, Qt::NoModifier);
    };
    view->startMovingWithEvent(event({100, 100}));
    view->startSelectingWithEvent(event({1, 1}));
    EXPECT_FALSE(view->isSelecting());
    origin = {100, 100};
    dragBy(32, 32);
    EXPECT_EQ(times(), (Times{1, 6}));
    release();
    view->startSelectingWithEvent(event({1, 1}));
    EXPECT_TRUE(view->isSelecting());
    release();
    view->setAnchor();
    view->startScrollingWithEvent(event({1, 1}));
    dragBy(32, 0);
    EXPECT_EQ(view->displayedBounds().x, -1.f);
    release();
    view->setAnchor();
    view->startZoomingWithEvent(event({32, 1}));
    dragBy(100, 0);
    EXPECT_EQ(view->displayedBounds().width, 5.f);
    release();
    view->setPrimaryChannel(nullptr);
    heard.clear();
    view->startMovingWithEvent(event({100, 100}));
    EXPECT_EQ(heard, "");
}

// --- The pointer.

TEST_F(KWChannelViewGestureLifeTest, ThePointersTimeAndValueAreSignalled) {
    std::vector<std::pair<float, float>> seen;
    int left = 0;
    QObject::connect(view.get(), &KWChannelView::pointerMoved,
                     [&](float time, float value) { seen.emplace_back(time, value); });
    QObject::connect(view.get(), &KWChannelView::pointerLeft, [&] { ++left; });
    EXPECT_TRUE(view->hasMouseTracking());
    move({32, 96}, Qt::NoButton);
    pressAt({100, 100});
    move({64.5, 96});
    release();
    EXPECT_EQ(seen, (std::vector<std::pair<float, float>>{{1, 0}, {64.5f / 32, 0}}));
    QEvent leave(QEvent::Leave);
    QApplication::sendEvent(view.get(), &leave);
    EXPECT_EQ(left, 1);
}

// --- Bad input.

TEST_F(KWChannelViewGestureLifeTest, NothingIsWrittenWhereNothingIsDisplayed) {
    constexpr float huge = std::numeric_limits<float>::max();
    const HJRect ranges[] = {{0, 0, 0, 0},
                             {kwNaN, kwNaN, kwNaN, kwNaN},
                             {0, 0, kwInfinity, 1},
                             {0, 0, 1, kwInfinity},
                             {-huge, 0, huge, 1},
                             {0, kwNaN, 10, 1},
                             {-huge, -huge, kwInfinity, kwInfinity},
                             {1e30f, 1e30f, 1, 1},
                             {0, 0, -10, -5}};
    const QSize sizes[] = {{320, 160}, {0, 0}, {0, 160}, {320, 0}};
    for (const QSize& size : sizes) {
        for (const HJRect& range : ranges) {
            for (const std::int32_t mode : {0, 1, 2}) {
                for (const bool snaps : {false, true}) {
                    restart();
                    setKeys({{1, 0}, {5, 1}, {9, 2}});
                    view->setEditingMode(mode);
                    view->setSnaps(snaps);
                    view->setDisplayedBounds(range);
                    view->resize(size);
                    QImage image(std::max(size.width(), 1), std::max(size.height(), 1),
                                 QImage::Format_RGB32);
                    view->render(&image);
                    view->setSelectedKeys({KWTime(5)});
                    QMouseEvent event(QEvent::MouseButtonPress, {10, 10}, {10, 10}, Qt::LeftButton,
                                      Qt::LeftButton, Qt::NoModifier);
                    pressAt({10, 10}, snaps ? Qt::ShiftModifier : Qt::NoModifier);
                    if (mode == 0) {
                        release();
                        view->setSelectedKeys({KWTime(5)});
                        view->startMovingWithEvent(event);
                    }
                    dragBy(5, 5);
                    dragBy(1e30, -1e30);
                    dragBy(50, 0);
                    for (const float time : times()) {
                        EXPECT_TRUE(std::isfinite(time));
                        EXPECT_TRUE(std::isfinite(valueAt(time)));
                    }
                    EXPECT_GE(times().size(), 3u);
                    release();
                    EXPECT_FALSE(view->isGestureActive());
                }
            }
        }
    }
}

TEST_F(KWChannelViewGestureLifeTest, AKeyWhoseValueIsNoNumberMovesInTimeAlone) {
    setKeys({{1, 0}, {5, kwNaN}});
    view->setSelectedKeys({KWTime(1), KWTime(5)});
    pressKey(1);
    dragBy(32, 32);
    EXPECT_EQ(times(), (Times{2, 6}));
    EXPECT_EQ(valueAt(2), 1.f);
    EXPECT_TRUE(std::isnan(valueAt(6)));
}

TEST_F(KWChannelViewGestureLifeTest, KeysOfAChannelWithoutAllValuesAreNotMoved) {
    PlainChannel lists;
    lists.keys = {1, 5, 9};
    lists.values = {0, 1};
    lists.records = {recordWith(0), recordWith(0)};
    channel = channelFromLists(lists);
    view->setPrimaryChannel(channel);
    view->setSelectedKeys({KWTime(1), KWTime(9)});
    LogLines log;
    QMouseEvent event(QEvent::MouseButtonPress, {10, 10}, {10, 10}, Qt::LeftButton, Qt::LeftButton,
                      Qt::NoModifier);
    view->startMovingWithEvent(event);
    EXPECT_FALSE(view->isGestureActive());
    dragBy(32, 0);
    EXPECT_EQ(times(), (Times{1, 5, 9}));
    EXPECT_EQ(heard, "begin end");
}
