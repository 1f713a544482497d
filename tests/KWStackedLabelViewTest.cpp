#include "RecordingPainter.h"
#include "ViewTestSupport.h"

#include <KWBase/KWLayoutArithmetic.h>
#include <KWBase/KWStackedLabelView.h>
#include <KWBase/KWStackedView.h>

#include <gtest/gtest.h>

#include <QAccessible>
#include <QApplication>
#include <QFontInfo>
#include <QFontMetrics>
#include <QMouseEvent>
#include <QPainter>
#include <QTest>
#include <memory>
#include <vector>

namespace {

/// A stack of two items, 200 points wide.
class KWStackedLabelViewTest : public testing::Test {
  protected:
    KWStackedLabelViewTest() : stack(std::make_unique<KWStackedView>(QRect(0, 0, 200, 10))) {
        for (const char* label : {"First", "Second"}) {
            auto* const content = new QWidget;
            content->resize(50, 30);
            stack->addViewLabel(content, QString::fromLatin1(label));
        }
        bar = stack->items()[0]->labelView();
        second = stack->items()[1]->labelView();
    }
    bool isCollapsed() const { return stack->isCollapsedAtIndex(0); }
    void press(const QPointF& where, Qt::MouseButton button = Qt::LeftButton) {
        QMouseEvent event(QEvent::MouseButtonPress, where, bar->mapToGlobal(where), button, button,
                          Qt::NoModifier);
        QApplication::sendEvent(bar, &event);
        wasAccepted = event.isAccepted();
    }
    void key(int code, Qt::KeyboardModifiers modifiers = Qt::NoModifier) {
        QKeyEvent event(QEvent::KeyPress, code, modifiers);
        QApplication::sendEvent(bar, &event);
        wasAccepted = event.isAccepted();
    }
    /// What a bar draws, with points from the upper left corner turned to the lower left one.
    std::vector<Drawn> drawnBy(KWStackedLabelView* view, Drawn::Kind kind) {
        RecordingDevice device(view->width(), view->height());
        QPainter painter(&device);
        view->drawRect(painter, view->rect());
        painter.end();
        return device.ofKind(kind);
    }
    static QImage pictureOf(KWStackedLabelView* view, int scale) {
        QImage image(view->size() * scale, QImage::Format_RGB32);
        image.fill(Qt::white);
        image.setDevicePixelRatio(scale);
        QPainter painter(&image);
        view->drawRect(painter, view->rect());
        return image;
    }

    std::unique_ptr<KWStackedView> stack;
    KWStackedLabelView* bar;
    KWStackedLabelView* second;
    bool wasAccepted = false;
};

} // namespace

TEST_F(KWStackedLabelViewTest, TheFontIsBoldAndElevenPointsHigh) {
    EXPECT_TRUE(getLabelFont().bold());
    EXPECT_EQ(getLabelFont().pixelSize(), 11);
    EXPECT_FALSE(QFontInfo(getLabelFont()).family().isEmpty());
}

TEST_F(KWStackedLabelViewTest, AFreshBarIsAHundredPointsWideAndHigh) {
    const KWStackedLabelView fresh(QStringLiteral("Label"), nullptr);
    EXPECT_EQ(fresh.geometry(), QRect(0, 0, 100, 100));
    EXPECT_EQ(fresh.label(), QStringLiteral("Label"));
    EXPECT_EQ(fresh.item(), nullptr);
    EXPECT_TRUE(fresh.isFlipped());
    const int line = QFontMetrics(getLabelFont()).height();
    EXPECT_EQ(fresh.frameForLabel(), QRectF(19, (100 - line) * 0.5, 81, line + 4));
    EXPECT_EQ(fresh.frameForTriangle(), QRectF(5, 48.5, 9, 9));
}

TEST_F(KWStackedLabelViewTest, ABarIsNotMadeFromAFrame) {
    const LogLines log;
    EXPECT_EQ(KWStackedLabelView::initWithFrame(QRect(0, 0, 50, 20)), nullptr);
    EXPECT_EQ(log.lines, (std::vector<std::string>{"use initWithLabel: instead"}));
}

// --- Drawing.

TEST_F(KWStackedLabelViewTest, TheFirstDrawsNoSeparatorAndTheOthersDo) {
    EXPECT_TRUE(drawnBy(bar, Drawn::line).empty());
    const std::vector<Drawn> lines = drawnBy(second, Drawn::line);
    ASSERT_EQ(lines.size(), 1u);
    EXPECT_EQ(lines[0].points,
              QPolygonF({QPointF(0, second->height()), QPointF(200, second->height())}));
    EXPECT_EQ(lines[0].stroke, rgb(2 / 3.0, 2 / 3.0, 2 / 3.0));
    EXPECT_EQ(lines[0].width, 1);
}

TEST_F(KWStackedLabelViewTest, ALabelOfNothingDrawsOnlyTheTriangle) {
    KWStackedItem item(nullptr, nullptr, QStringLiteral(""));
    item.labelView()->resize(100, 18);
    EXPECT_TRUE(drawnBy(item.labelView(), Drawn::text).empty());
    EXPECT_TRUE(drawnBy(item.labelView(), Drawn::line).empty());
    const QImage picture = pictureOf(item.labelView(), 1);
    int inked = 0;
    for (int y = 0; y < picture.height(); ++y)
        for (int x = 0; x < picture.width(); ++x)
            if (picture.pixelColor(x, y) != QColor(Qt::white)) {
                EXPECT_TRUE(item.labelView()->frameForTriangle().contains(QPointF(x, y)));
                ++inked;
            }
    EXPECT_GT(inked, 20);
}

TEST_F(KWStackedLabelViewTest, TheLabelIsDrawnTwoPointsBelowItsFrame) {
    const std::vector<Drawn> texts = drawnBy(bar, Drawn::text);
    ASSERT_EQ(texts.size(), 1u);
    EXPECT_EQ(texts[0].string, QStringLiteral("First"));
    EXPECT_EQ(texts[0].fontSize, 11);
    EXPECT_EQ(texts[0].bounds().left(), 19);
    EXPECT_EQ(texts[0].stroke, bar->palette().color(QPalette::WindowText));
    const double line = QFontMetricsF(getLabelFont()).height();
    EXPECT_EQ(texts[0].bounds().top(), bar->height() - (bar->frameForLabel().top() + 2 + line));
}

TEST_F(KWStackedLabelViewTest, ALabelThatIsTooLongIsCut) {
    stack->resize(60, 10);
    stack->updateLayout();
    second->resize(60, second->height());
    const std::vector<Drawn> texts = drawnBy(second, Drawn::text);
    ASSERT_EQ(texts.size(), 1u);
    EXPECT_TRUE(texts[0].string.endsWith(QChar(0x2026)));
}

TEST_F(KWStackedLabelViewTest, TheTriangleIsFilledToThePixelOnAnyScreen) {
    for (const bool collapsed : {false, true}) {
        KWStackedItem item(nullptr, nullptr, QString());
        item.setCollapsed(collapsed);
        item.labelView()->resize(100, 17);
        for (const int scale : {1, 2, 3}) {
            const QImage picture = pictureOf(item.labelView(), scale);
            QImage expected(picture.size(), QImage::Format_RGB32);
            expected.fill(Qt::white);
            QPainter painter(&expected);
            painter.scale(scale, scale);
            painter.setRenderHint(QPainter::Antialiasing);
            QPolygonF path;
            for (const auto& corner : KWTrianglePath({5, 7, 9, 9}, collapsed))
                path << QPointF(static_cast<double>(corner.x), static_cast<double>(corner.y));
            painter.setPen(Qt::NoPen);
            painter.setBrush(QColor::fromRgbF(0.5f, 0.5f, 0.5f));
            painter.drawPolygon(path);
            painter.end();
            EXPECT_EQ(picture.convertToFormat(QImage::Format_RGB32), expected);
            EXPECT_EQ(picture.pixelColor(7 * scale, 11 * scale).red(), 128);
        }
    }
}

TEST_F(KWStackedLabelViewTest, WhereTextRunsFromTheRightNothingIsMirrored) {
    const QImage before = pictureOf(second, 1);
    stack->setLayoutDirection(Qt::RightToLeft);
    EXPECT_EQ(second->layoutDirection(), Qt::RightToLeft);
    EXPECT_EQ(pictureOf(second, 1), before);
}

TEST_F(KWStackedLabelViewTest, TextFollowsADarkPalette) {
    QPalette dark;
    dark.setColor(QPalette::Window, QColor(30, 30, 30));
    dark.setColor(QPalette::WindowText, QColor(230, 230, 230));
    stack->setPalette(dark);
    EXPECT_EQ(drawnBy(bar, Drawn::text).at(0).stroke, QColor(230, 230, 230));
    EXPECT_LT(drawnBy(second, Drawn::line).at(0).stroke.lightness(), 128);
}

// --- The mouse.

TEST_F(KWStackedLabelViewTest, AClickOnTheTriangleCollapsesAndExpands) {
    stack->show();
    const QPoint middle = bar->frameForTriangle().center().toPoint();
    QTest::mouseClick(bar, Qt::LeftButton, Qt::NoModifier, middle);
    EXPECT_TRUE(isCollapsed());
    QTest::mouseClick(bar, Qt::LeftButton, Qt::NoModifier, middle);
    EXPECT_FALSE(isCollapsed());
}

TEST_F(KWStackedLabelViewTest, ADoubleClickIsTwoClicks) {
    const QPointF middle = bar->frameForTriangle().center();
    press(middle);
    QMouseEvent event(QEvent::MouseButtonDblClick, middle, bar->mapToGlobal(middle), Qt::LeftButton,
                      Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(bar, &event);
    EXPECT_FALSE(isCollapsed());
}

TEST_F(KWStackedLabelViewTest, AClickOutsideOfTheTriangleDoesNothing) {
    const QRectF triangle = bar->frameForTriangle();
    for (const QPointF& outside : {QPointF(30, 8), QPointF(triangle.right(), triangle.center().y()),
                                   QPointF(triangle.center().x(), triangle.bottom()),
                                   QPointF(triangle.left() - 0.25, triangle.center().y()),
                                   QPointF(triangle.center().x(), triangle.top() - 0.25)}) {
        press(outside);
        EXPECT_FALSE(isCollapsed());
        EXPECT_FALSE(wasAccepted);
    }
    press(triangle.center(), Qt::RightButton);
    EXPECT_FALSE(isCollapsed());
}

TEST_F(KWStackedLabelViewTest, TheTrianglesUpperAndLeftEdgesBelongToIt) {
    press(bar->frameForTriangle().topLeft());
    EXPECT_TRUE(isCollapsed());
    EXPECT_TRUE(wasAccepted);
    press(bar->frameForTriangle().bottomRight() - QPointF(0.25, 0.25));
    EXPECT_FALSE(isCollapsed());
}

TEST_F(KWStackedLabelViewTest, AClickMayDeleteTheStack) {
    QObject::connect(stack.get(), &KWStackedView::collapsedChanged, [&] { stack.reset(); });
    press(bar->frameForTriangle().center());
    EXPECT_EQ(stack, nullptr);
}

TEST_F(KWStackedLabelViewTest, ABarWithoutAnItemTakesClicksAndKeysCalmly) {
    KWStackedLabelView alone(QStringLiteral("Label"), nullptr);
    bar = &alone;
    press(bar->frameForTriangle().center());
    key(Qt::Key_Space);
    alone.grab();
}

// --- The keyboard.

TEST_F(KWStackedLabelViewTest, TheSpaceBarTogglesAndTheArrowsCollapseAndExpand) {
    key(Qt::Key_Space);
    EXPECT_TRUE(isCollapsed());
    key(Qt::Key_Space);
    EXPECT_FALSE(isCollapsed());
    key(Qt::Key_Left);
    key(Qt::Key_Left);
    EXPECT_TRUE(isCollapsed());
    EXPECT_TRUE(wasAccepted);
    key(Qt::Key_Right, Qt::KeypadModifier);
    key(Qt::Key_Right);
    EXPECT_FALSE(isCollapsed());
}

TEST_F(KWStackedLabelViewTest, OtherKeysAreLeftToOthers) {
    for (const int other : {Qt::Key_Return, Qt::Key_Up, Qt::Key_Down, Qt::Key_A, Qt::Key_Escape}) {
        key(other);
        EXPECT_FALSE(wasAccepted);
    }
    key(Qt::Key_Space, Qt::ControlModifier);
    key(Qt::Key_Left, Qt::AltModifier);
    EXPECT_FALSE(wasAccepted);
    EXPECT_FALSE(isCollapsed());
}

TEST_F(KWStackedLabelViewTest, ABarThatHasTheKeyboardShowsIt) {
    stack->show();
    stack->activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(stack.get()));
    second->setFocus(Qt::TabFocusReason);
    const QImage without = bar->grab().toImage();
    bar->setFocus(Qt::TabFocusReason);
    EXPECT_NE(bar->grab().toImage(), without);
}

// --- Assistive technology.

TEST_F(KWStackedLabelViewTest, ToAssistiveTechnologyItIsAnExpandableItemWithItsLabelAsName) {
    QAccessibleInterface* const seen = QAccessible::queryAccessibleInterface(bar);
    ASSERT_NE(seen, nullptr);
    EXPECT_EQ(seen->role(), QAccessible::TreeItem);
    EXPECT_EQ(seen->text(QAccessible::Name), QStringLiteral("First"));
    EXPECT_TRUE(seen->state().expandable);
    EXPECT_TRUE(seen->state().expanded);
    EXPECT_TRUE(seen->state().focusable);
    bar->setAccessibleName(QStringLiteral("named by the host"));
    EXPECT_EQ(seen->text(QAccessible::Name), QStringLiteral("named by the host"));
    stack->toggleViewAtIndex(0);
    EXPECT_TRUE(seen->state().collapsed);
    EXPECT_FALSE(seen->state().expanded);
}

TEST_F(KWStackedLabelViewTest, AssistiveTechnologyCanToggleIt) {
    QAccessibleInterface* const seen = QAccessible::queryAccessibleInterface(bar);
    ASSERT_NE(seen->actionInterface(), nullptr);
    EXPECT_TRUE(seen->actionInterface()->actionNames().contains(
        QAccessibleActionInterface::toggleAction()));
    seen->actionInterface()->doAction(QAccessibleActionInterface::toggleAction());
    EXPECT_TRUE(isCollapsed());
}
