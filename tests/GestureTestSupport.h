#pragma once

#include "KeyFramedTestSupport.h"
#include "ViewTestSupport.h"

#include <KWBase/KWChannelView.h>
#include <KWFoundation/KWNotificationCenter.h>

#include <gtest/gtest.h>

#include <QApplication>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QSignalSpy>
#include <functional>
#include <memory>
#include <string>
#include <vector>

class GestureDelegate final : public KWChannelViewDelegate {
  public:
    ~GestureDelegate() override { resign(); }
    void selectionDidChange(const KWNotification& notification) override {
        ++count;
        name = notification.name();
        object = notification.object();
        if (also)
            also();
    }
    int count = 0;
    std::string name;
    const KWObject* object = nullptr;
    std::function<void()> also;
};

/// A view in which a point is exactly a 32nd of a second and of the value: 320 by 160 points, times
/// 0 to 10, values -2 to 3. Its channel has an undo manager.
class GestureTest : public testing::Test, public Edited {
  protected:
    GestureTest() { restart(); }

    void restart() {
        view = std::make_unique<KWChannelView>();
        view->resize(320, 160);
        view->setDisplayedBounds({0, -2, 10, 5});
        view->setDelegate(&delegate);
        view->setPrimaryChannel(channel);
        delegate.count = 0;
    }
    /// The keys as they are from here on, with shapes of their own, and no undo.
    void setKeys(const std::vector<std::pair<float, float>>& keys) {
        channel->removeAllKeyframes();
        float tension = 0.125f;
        for (const auto& [time, value] : keys)
            set(value, recordWith(tension += 0.125f, 0.25f, -0.5f), time);
        manager->removeAllActions();
        view->grab();
    }
    std::vector<float> selection() const { return timesOf(view->selectedKeys()); }
    std::vector<float> times() const { return timesOf(channel->allKeyframes()); }
    float valueAt(float time) const { return channel->valueForKeyframe(KWTime(time)); }

    QPointF at(float time, float value) const { return view->positionOfTimeAndValue(time, value); }
    /// To so many points right of and above the press.
    void dragBy(double x, double y) { move(origin + QPointF(x, -y)); }
    void move(const QPointF& position, Qt::MouseButtons buttons = Qt::LeftButton) {
        where = position;
        send(QEvent::MouseMove, Qt::NoButton, buttons);
    }
    void release() {
        send(QEvent::MouseButtonRelease, Qt::LeftButton, Qt::NoButton);
        held = Qt::NoModifier;
    }
    void pressKey(float time, Qt::KeyboardModifiers modifiers = Qt::NoModifier) {
        pressAt(at(time, channel->convertValueToUserUnit(valueAt(time))), modifiers);
    }
    void pressAt(const QPointF& position, Qt::KeyboardModifiers modifiers = Qt::NoModifier) {
        origin = where = position;
        held = modifiers;
        send(QEvent::MouseButtonPress, Qt::LeftButton, Qt::LeftButton);
    }
    void click(const QPointF& position, Qt::KeyboardModifiers modifiers = Qt::NoModifier) {
        pressAt(position, modifiers);
        release();
    }
    void send(QEvent::Type type, Qt::MouseButton button, Qt::MouseButtons buttons) {
        QMouseEvent event(type, where, view->mapToGlobal(where), button, buttons, held);
        event.setAccepted(false);
        QApplication::sendEvent(view.get(), &event);
        wasAccepted = event.isAccepted();
    }
    void key(int code, const QString& text = {}, Qt::KeyboardModifiers modifiers = Qt::NoModifier) {
        QKeyEvent event(QEvent::KeyPress, code, modifiers, text);
        event.setAccepted(false);
        QApplication::sendEvent(view.get(), &event);
        wasAccepted = event.isAccepted();
    }
    void escape() { key(Qt::Key_Escape, QStringLiteral("\x1b")); }

    GestureDelegate delegate;
    std::unique_ptr<KWChannelView> view;
    QPointF origin;
    QPointF where;
    Qt::KeyboardModifiers held;
    bool wasAccepted = false;
};

/// Notes each beginning and end of a gesture.
class HeardGestureTest : public GestureTest {
  protected:
    HeardGestureTest() { listen(); }
    /// A view that goes in the middle of a gesture is heard, too.
    ~HeardGestureTest() override { view.reset(); }

    void listen() {
        QObject::connect(view.get(), &KWChannelView::gestureWillBegin, [this] { note("begin"); });
        QObject::connect(view.get(), &KWChannelView::gestureDidEnd, [this] { note("end"); });
    }
    void note(const char* what) {
        if (!heard.empty())
            heard += ' ';
        heard += what;
    }
    /// As hosts do for one step of undo.
    void bracket() {
        QObject::connect(view.get(), &KWChannelView::gestureWillBegin,
                         [this] { channel->startManipulation(); });
        QObject::connect(view.get(), &KWChannelView::gestureDidEnd,
                         [this] { channel->stopManipulation(); });
    }
    /// In the middle of moving key 5 by a second.
    void dragKey() {
        setKeys({{1, 0}, {5, 1}, {9, 2}});
        pressKey(5);
        dragBy(32, 0);
        ASSERT_TRUE(view->isGestureActive());
    }
    void expectEndedWith(const std::vector<float>& expected) {
        ASSERT_NE(view, nullptr);
        EXPECT_FALSE(view->isGestureActive());
        EXPECT_EQ(heard, "begin end");
        EXPECT_EQ(times(), expected);
        const std::string after = contentsOf(*channel);
        move(where + QPointF(20, 20));
        release();
        escape();
        EXPECT_EQ(contentsOf(*channel), after);
        EXPECT_EQ(heard, "begin end");
    }

    std::string heard;
};

/// The test runs for each kind of gesture.
class EveryGestureTest : public HeardGestureTest, public testing::WithParamInterface<int> {
  protected:
    /// Of moving, selecting, adding, panning and zooming one.
    void startGesture() {
        setKeys({{1, 0}, {5, 1}, {9, 2}});
        view->setSelectedKeys({KWTime(9)});
        static constexpr std::int32_t modes[] = {0, 0, 1, 2, 2};
        view->setEditingMode(modes[GetParam()]);
        heard.clear();
        pressAt(GetParam() == 0 ? at(5, 1) : QPointF(100, 100),
                GetParam() == 4 ? Qt::ShiftModifier : Qt::NoModifier);
        ASSERT_TRUE(view->isGestureActive());
    }
    void expectEnded() {
        EXPECT_EQ(heard, "begin end");
        ASSERT_NE(view, nullptr);
        EXPECT_FALSE(view->isGestureActive());
        EXPECT_FALSE(view->isSelecting());
        EXPECT_FALSE(view->showsPointCoordinates());
        const std::string after = contentsOf(*channel);
        const HJRect bounds = view->displayedBounds();
        const std::vector<float> selected = selection();
        move(where + QPointF(20, 20));
        release();
        EXPECT_EQ(contentsOf(*channel), after);
        EXPECT_EQ(view->displayedBounds(), bounds);
        EXPECT_EQ(selection(), selected);
        EXPECT_EQ(heard, "begin end");
    }
};
