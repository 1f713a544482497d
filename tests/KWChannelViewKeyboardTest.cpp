#include "GestureTestSupport.h"

#include <QLineEdit>
#include <QTest>
#include <QWindow>

namespace {

using Times = std::vector<float>;

class KWChannelViewKeyboardTest : public GestureTest {};

/// Counts what it is asked to do.
class CountingView final : public KWChannelView {
  public:
    void setNeedsDisplay(bool needs) override {
        ++redisplays;
        KWChannelView::setNeedsDisplay(needs);
    }
    int redisplays = 0;
};

class Parent final : public QWidget {
  public:
    int keys = 0;

  protected:
    void keyPressEvent(QKeyEvent* event) override {
        ++keys;
        event->accept();
    }
};

} // namespace

TEST_F(KWChannelViewKeyboardTest, DeleteAndBackspaceRemoveTheSelectedKeys) {
    for (const int code : {Qt::Key_Delete, Qt::Key_Backspace}) {
        setKeys({{1, 0}, {5, 1}, {9, 2}});
        view->setSelectedKeys({KWTime(9), KWTime(3), KWTime(1)});
        QTest::keyClick(view.get(), static_cast<Qt::Key>(code));
        EXPECT_EQ(times(), Times{5});
        EXPECT_EQ(selection(), Times{});
        EXPECT_EQ(delegate.count, 0);
    }
}

TEST_F(KWChannelViewKeyboardTest, TheFirstCharacterOfAKeyDecides) {
    setKeys({{1, 0}, {5, 1}});
    view->setSelectedKeys({KWTime(1)});
    key(Qt::Key_A, QStringLiteral("a\x7f"));
    EXPECT_EQ(times(), (Times{1, 5}));
    key(Qt::Key_A, QStringLiteral("\x7f"));
    EXPECT_EQ(times(), Times{5});
    view->setSelectedKeys({KWTime(5)});
    key(Qt::Key_Delete);
    EXPECT_EQ(times(), Times{});
}

TEST_F(KWChannelViewKeyboardTest, OtherKeysThatSendTheSameCharactersRemoveNothing) {
    setKeys({{1, 0}, {5, 1}});
    view->setSelectedKeys({KWTime(1), KWTime(5)});
    const QString backspace = QStringLiteral("\b");
    const QString removal = QStringLiteral("\x7f");
    for (const Qt::KeyboardModifiers modifiers :
         {Qt::KeyboardModifiers(Qt::ControlModifier), Qt::KeyboardModifiers(Qt::AltModifier),
          Qt::KeyboardModifiers(Qt::MetaModifier), Qt::ControlModifier | Qt::ShiftModifier}) {
        key(Qt::Key_H, backspace, modifiers);
        key(Qt::Key_8, removal, modifiers);
    }
    key(Qt::Key_H, backspace);
    EXPECT_EQ(times(), (Times{1, 5}));
    EXPECT_EQ(selection(), (Times{1, 5}));
}

TEST_F(KWChannelViewKeyboardTest, TheKeysThemselvesRemoveWithEveryModifier) {
    struct Press {
        int code;
        const char* text;
    };
    for (const Press& press : {Press{Qt::Key_Delete, "\x7f"}, Press{Qt::Key_Delete, ""},
                               Press{Qt::Key_Backspace, "\b"}, Press{Qt::Key_Backspace, "\x7f"}}) {
        for (const Qt::KeyboardModifier modifiers :
             {Qt::NoModifier, Qt::ShiftModifier, Qt::ControlModifier, Qt::AltModifier}) {
            setKeys({{1, 0}, {5, 1}});
            view->setSelectedKeys({KWTime(1)});
            key(press.code, QString::fromLatin1(press.text), modifiers);
            EXPECT_EQ(times(), Times{5});
        }
    }
}

TEST_F(KWChannelViewKeyboardTest, OutsideOfAGestureTabMovesTheFocus) {
    QWidget window;
    view->setParent(&window);
    QLineEdit other(&window);
    QWidget::setTabOrder(view.get(), &other);
    window.show();
    window.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&window));
    view->setFocus();
    QTest::keyClick(window.windowHandle(), Qt::Key_Tab);
    EXPECT_TRUE(other.hasFocus());
    view->setFocus();
    QTest::keyClick(window.windowHandle(), Qt::Key_Backtab, Qt::ShiftModifier);
    EXPECT_TRUE(other.hasFocus());
    view->setParent(nullptr);
}

TEST_F(KWChannelViewKeyboardTest, DeleteWithAnEmptySelectionRemovesNothing) {
    setKeys({{1, 0}, {5, 1}});
    const std::uint64_t edits = channel->editCount();
    QSignalSpy begins(view.get(), &KWChannelView::gestureWillBegin);
    QSignalSpy changes(view.get(), &KWChannelView::selectedKeysChanged);
    QTest::keyClick(view.get(), Qt::Key_Delete);
    EXPECT_EQ(channel->editCount(), edits);
    EXPECT_EQ(selection(), Times{});
    EXPECT_EQ(begins.count() + changes.count() + delegate.count, 0);
}

TEST_F(KWChannelViewKeyboardTest, DeletionRedrawsOnlyByTheChannelsInvalidation) {
    CountingView counting;
    setKeys({{1, 0}, {5, 1}, {9, 2}});
    counting.setPrimaryChannel(channel);
    counting.setSelectedKeys({KWTime(1), KWTime(5)});
    counting.redisplays = 0;
    QTest::keyClick(&counting, Qt::Key_Delete);
    EXPECT_EQ(times(), Times{9});
    EXPECT_EQ(counting.redisplays, 2);
}

TEST_F(KWChannelViewKeyboardTest, OtherKeysAreSwallowed) {
    Parent parent;
    view->setParent(&parent);
    setKeys({{5, 1}});
    view->setSelectedKeys({KWTime(5)});
    for (const int code : {Qt::Key_A, Qt::Key_Space, Qt::Key_Return, Qt::Key_Escape, Qt::Key_Left,
                           Qt::Key_F1, Qt::Key_Delete})
        QTest::keyClick(view.get(), static_cast<Qt::Key>(code));
    QTest::keyClick(view.get(), Qt::Key_S, Qt::ControlModifier);
    EXPECT_EQ(parent.keys, 0);
    view->setParent(nullptr);
}

TEST_F(KWChannelViewKeyboardTest, DeletingAKeyByItsTimeRedrawsAndLeavesTheSelection) {
    setKeys({{1, 0}, {5, 1}});
    view->setSelectedKeys({KWTime(1)});
    view->deleteKeyForTime(KWTime(1));
    view->deleteKeyForTime(KWTime(3));
    EXPECT_EQ(times(), Times{5});
    EXPECT_EQ(selection(), Times{1});
    EXPECT_EQ(delegate.count, 0);
}
