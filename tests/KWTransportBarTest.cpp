#include "ViewTestSupport.h"

#include <KWDesktop/KWValueField.h>

#include <apps/kwedit/window/KWEditIcons.h>
#include <apps/kwedit/window/KWTimeField.h>
#include <apps/kwedit/window/KWTimeText.h>
#include <apps/kwedit/window/KWTransportBar.h>
#include <apps/kwedit/window/KWTransportRuler.h>
#include <gtest/gtest.h>

#include <QAccessible>
#include <QLabel>
#include <QSignalSpy>
#include <QToolButton>
#include <QtTest>

namespace {

struct Bar {
    Bar() {
        bar.resize(1000, 40);
        bar.show();
        EXPECT_TRUE(QTest::qWaitForWindowActive(&bar));
    }
    QToolButton* button(const char* name) {
        return bar.findChild<QToolButton*>(QLatin1String(name));
    }
    void click(const char* name) { QTest::mouseClick(button(name), Qt::LeftButton); }
    KWTimeField* time() { return bar.findChild<KWTimeField*>(); }
    void type(QLineEdit* field, const char* text) {
        field->setFocus();
        field->selectAll();
        QTest::keyClicks(field, QLatin1String(text));
        QTest::keyClick(field, Qt::Key_Return);
    }
    void dragTo(double x, Qt::KeyboardModifiers modifiers = Qt::NoModifier) {
        KWTransportRuler& ruler = bar.ruler();
        const QPointF at(x, 10);
        QMouseEvent move(QEvent::MouseMove, at, ruler.mapToGlobal(at), Qt::NoButton, Qt::LeftButton,
                         modifiers);
        QApplication::sendEvent(&ruler, &move);
    }
    void press(double x) {
        QTest::mousePress(&bar.ruler(), Qt::LeftButton, {}, QPoint(static_cast<int>(x), 10));
    }

    double now = 0;
    KWEditTransport transport{nullptr, [this] { return now; }};
    KWTransportBar bar{transport};
};

} // namespace

TEST(KWTransportBar, TheButtonsDriveTheTransport) {
    Bar it;
    it.click("stepForward");
    it.click("stepForward");
    EXPECT_EQ(it.transport.frame(), 2);
    it.click("stepBack");
    EXPECT_EQ(it.transport.frame(), 1);
    it.click("toEnd");
    EXPECT_EQ(it.transport.frame(), 250);
    it.click("toBeginning");
    EXPECT_EQ(it.transport.frame(), 0);
    it.click("play");
    EXPECT_TRUE(it.transport.isPlaying());
    EXPECT_EQ(it.button("play")->accessibleName(), QStringLiteral("Pause"));
    it.click("play");
    EXPECT_FALSE(it.transport.isPlaying());
    EXPECT_EQ(it.button("play")->accessibleName(), QStringLiteral("Play"));
    it.click("loop");
    EXPECT_FALSE(it.transport.isLooping());
    it.transport.setLooping(true);
    EXPECT_TRUE(it.button("loop")->isChecked());
}

TEST(KWTransportBar, TheExactTimeIsShownAndTypedInSecondsOrFrames) {
    Bar it;
    it.transport.scrub(3.48F);
    EXPECT_EQ(it.time()->text(), QStringLiteral("3.480"));
    it.click("unit");
    EXPECT_EQ(it.time()->text(), QStringLiteral("87"));
    it.type(it.time(), "100");
    EXPECT_EQ(it.transport.frame(), 100);
    it.type(it.time(), "2s");
    EXPECT_EQ(it.transport.frame(), 50);
    it.click("unit");
    it.type(it.time(), "1:01,5");
    EXPECT_FLOAT_EQ(it.transport.currentTime(), 61.5F);
    it.type(it.time(), "no time");
    EXPECT_FLOAT_EQ(it.transport.currentTime(), 61.5F);
    EXPECT_EQ(it.time()->text(), QStringLiteral("1:01.500"));
    it.type(it.time(), "25f");
    EXPECT_FLOAT_EQ(it.transport.currentTime(), 1);
    QTest::keyClick(it.time(), Qt::Key_Up);
    EXPECT_EQ(it.transport.frame(), 26);
}

TEST(KWTransportBar, TheRateIsTypedAndHeldInBounds) {
    Bar it;
    QSignalSpy told(&it.bar, &KWTransportBar::framesPerSecondEdited);
    auto* const rate = it.bar.findChild<KWValueField*>(QStringLiteral("rate"));
    it.type(rate, "60");
    EXPECT_EQ(it.transport.framesPerSecond(), 60);
    it.type(rate, "5000");
    EXPECT_EQ(it.transport.framesPerSecond(), 1000);
    EXPECT_EQ(rate->value(), 1000);
    EXPECT_EQ(told.count(), 2);
    it.transport.setFramesPerSecond(30);
    EXPECT_EQ(rate->text(), QStringLiteral("30"));
}

TEST(KWTransportBar, WhilePlayingItShowsTheRateReachedAndTheFramesLeftOut) {
    Bar it;
    auto* const measured = it.bar.findChild<QLabel*>(QStringLiteral("measured"));
    EXPECT_EQ(measured->text(), QString());
    it.transport.play();
    for (int k = 1; k <= 20; ++k) {
        it.now = k * 0.08; // every other frame
        it.transport.tick();
    }
    EXPECT_TRUE(QTest::qWaitFor([&] { return !measured->text().isEmpty(); }));
    EXPECT_EQ(measured->text(), QStringLiteral("12.5 fps, 20 dropped"));
    it.transport.pause();
    EXPECT_EQ(measured->text(), QString());
}

TEST(KWTransportBar, LabelsNeverOverlapAndStayInside) {
    KWEditTransport transport;
    KWTransportRuler ruler(transport);
    for (const double rate : {1.0, 23.976, 25.0, 60.0, 1000.0})
        for (const qint64 last : {1, 7, 100, 250, 5000, 1'000'000})
            for (const qint64 first : {qint64(0), -last, last / 2})
                for (const bool showsFrames : {false, true})
                    for (int width = 60; width < 1600; width += 133) {
                        transport.setFramesPerSecond(rate);
                        transport.setRange(first, last);
                        ruler.setShowsFrames(showsFrames);
                        ruler.resize(width, ruler.sizeHint().height());
                        double end = -10;
                        const auto labels = ruler.labels();
                        for (const auto& label : labels) {
                            EXPECT_GT(label.rect.left(), end + 2) << label.text.toStdString();
                            end = label.rect.right();
                            EXPECT_FALSE(label.text.isEmpty());
                        }
                        EXPECT_LE(end, width);
                        if (width > 400) {
                            EXPECT_GE(labels.size(), 2)
                                << rate << " " << first << " " << last << " " << showsFrames;
                        }
                    }
}

TEST(KWTransportBar, ScrubbingGoesByFramesAndHoldsTheClock) {
    Bar it;
    KWTransportRuler& ruler = it.bar.ruler();
    it.press(ruler.positionOfTime(3.01));
    EXPECT_TRUE(it.transport.isScrubbing());
    EXPECT_FLOAT_EQ(it.transport.currentTime(), 3);
    it.dragTo(ruler.positionOfTime(4.03));
    EXPECT_EQ(it.transport.frame(), 101);
    it.dragTo(ruler.positionOfTime(5.013), Qt::AltModifier);
    EXPECT_NEAR(it.transport.currentTime(), 5.013F, 1e-5);
    it.dragTo(5000);
    EXPECT_EQ(it.transport.frame(), 250);
    QTest::mouseRelease(&ruler, Qt::LeftButton, {}, {10, 10});
    EXPECT_FALSE(it.transport.isScrubbing());
    it.press(ruler.positionOfTime(1));
    QTest::keyClick(&ruler, Qt::Key_Escape);
    EXPECT_EQ(it.transport.frame(), 250);
    EXPECT_FALSE(it.transport.isScrubbing());
}

TEST(KWTransportBar, TheRulerIsUsedByTheKeyboardAlone) {
    Bar it;
    KWTransportRuler& ruler = it.bar.ruler();
    const auto after = [&](Qt::Key key, Qt::KeyboardModifiers modifiers = Qt::NoModifier) {
        QTest::keyClick(&ruler, key, modifiers);
        return it.transport.frame();
    };
    EXPECT_EQ(after(Qt::Key_Right), 1);
    EXPECT_EQ(after(Qt::Key_Right, Qt::ShiftModifier), 11);
    EXPECT_EQ(after(Qt::Key_PageUp), 36);
    EXPECT_EQ(after(Qt::Key_Left), 35);
    EXPECT_EQ(after(Qt::Key_End), 250);
    EXPECT_EQ(after(Qt::Key_Home), 0);
    for (const char* name : {"toBeginning", "stepBack", "play", "stepForward", "toEnd", "loop"}) {
        EXPECT_NE(it.button(name)->focusPolicy() & Qt::TabFocus, 0) << name;
        EXPECT_FALSE(it.button(name)->accessibleName().isEmpty()) << name;
        EXPECT_FALSE(it.button(name)->toolTip().isEmpty()) << name;
    }
    it.button("play")->setFocus();
    QTest::keyClick(it.button("play"), Qt::Key_Space);
    EXPECT_TRUE(it.transport.isPlaying());
}

TEST(KWTransportBar, ToAssistiveTechnologyTheRulerIsASlider) {
    Bar it;
    it.transport.scrub(2);
    QAccessibleInterface* const interface = QAccessible::queryAccessibleInterface(&it.bar.ruler());
    ASSERT_NE(interface, nullptr);
    EXPECT_EQ(interface->role(), QAccessible::Slider);
    EXPECT_EQ(interface->text(QAccessible::Name), QStringLiteral("Time"));
    ASSERT_NE(interface->valueInterface(), nullptr);
    EXPECT_EQ(interface->valueInterface()->currentValue().toInt(), 50);
    interface->valueInterface()->setCurrentValue(75);
    EXPECT_EQ(it.transport.frame(), 75);
}

TEST(KWTransportBar, KeysAreMarkedWhereTheyAre) {
    Bar it;
    it.transport.scrub(9);
    KWTransportRuler& ruler = it.bar.ruler();
    const QImage before = ruler.grab().toImage();
    it.bar.setKeyTimes({2.5F, 400});
    const QImage after = ruler.grab().toImage();
    QRect changed;
    for (int y = 0; y < before.height(); ++y)
        for (int x = 0; x < before.width(); ++x)
            if (before.pixel(x, y) != after.pixel(x, y))
                changed |= QRect(x, y, 1, 1);
    EXPECT_NEAR(changed.center().x() / before.devicePixelRatio(), ruler.positionOfTime(2.5), 1.5);
    EXPECT_LT(changed.width(), 12 * before.devicePixelRatio());
}

TEST(KWTransportBar, NarrowItKeepsTheControlsThatCount) {
    Bar it;
    auto* const rate = it.bar.findChild<KWValueField*>(QStringLiteral("rate"));
    EXPECT_TRUE(rate->isVisible());
    it.bar.resize(460, 40);
    QCoreApplication::processEvents();
    EXPECT_FALSE(rate->isVisible());
    EXPECT_TRUE(it.button("play")->isVisible());
    EXPECT_GE(it.bar.ruler().width(), 120);
    EXPECT_LE(it.bar.minimumSizeHint().width(), 460);
}

TEST(KWTransportBar, TimesAreReadAndWrittenWithoutTheLocale) {
    EXPECT_EQ(kwTimeText(3.48, 3), QStringLiteral("3.480"));
    EXPECT_EQ(kwTimeText(59.9996, 3), QStringLiteral("1:00.000"));
    EXPECT_EQ(kwTimeText(65.5, 1), QStringLiteral("1:05.5"));
    EXPECT_EQ(kwTimeText(7205, 0), QStringLiteral("2:00:05"));
    EXPECT_EQ(kwTimeText(-0.0001, 2), QStringLiteral("0.00"));
    EXPECT_EQ(kwTimeText(-90, 0), QStringLiteral("-1:30"));
    const auto read = [](const char* text, bool countsFrames = false) {
        return kwSecondsFromText(QString::fromLatin1(text), 25, countsFrames);
    };
    EXPECT_EQ(read("1:02:03.5"), 3723.5);
    EXPECT_EQ(read(" -1:30 "), -90);
    EXPECT_EQ(read("50", true), 2);
    EXPECT_EQ(read("50 f"), 2);
    EXPECT_EQ(read("1,5S", true), 1.5);
    for (const char* text :
         {"", "f", "1:", ":2", "1:-2", "1:2:3:4", "nan", "inf", "1e999", "1.2.3"})
        EXPECT_EQ(read(text), std::nullopt) << text;
}

TEST(KWTransportBar, IconsFollowThePaletteOfTheirWidget) {
    QToolButton button;
    QPalette palette;
    palette.setColor(QPalette::ButtonText, QColor(1, 2, 3));
    button.setPalette(palette);
    for (int k = 0; k < static_cast<int>(KWEditIcon::count); ++k) {
        const QIcon icon = kwEditIcon(static_cast<KWEditIcon>(k), &button);
        const QImage image = icon.pixmap(QSize(32, 32)).toImage();
        int covered = 0;
        for (int y = 0; y < 32; ++y)
            for (int x = 0; x < 32; ++x)
                if (image.pixelColor(x, y).alpha() == 255) {
                    ++covered;
                    EXPECT_EQ(image.pixelColor(x, y), QColor(1, 2, 3));
                }
        EXPECT_GT(covered, 20) << k;
    }
}
