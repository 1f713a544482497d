#include "PanelTestSupport.h"

#include <KWBase/KWUnitController.h>
#include <KWFoundation/KWNotificationCenter.h>

#include <QSignalSpy>

namespace {

/// Counts the drawings of the curve, and of the outline.
class PaintCounter final : public QObject {
  public:
    explicit PaintCounter(QWidget* painted) { painted->installEventFilter(this); }
    bool eventFilter(QObject*, QEvent* event) override {
        count += event->type() == QEvent::Paint;
        return false;
    }
    int count = 0;
};

class KWChannelEditorUpdates : public PanelTest {
  protected:
    /// Whether the work draws both anew.
    template <class Work>
    bool redraws(const Work& work) {
        settle();
        QTest::qWait(20);
        PaintCounter curve(view());
        PaintCounter rows(tree()->viewport());
        work();
        settle();
        QTest::qWait(20);
        return curve.count > 0 && rows.count > 0;
    }
    QString shownValue(const std::shared_ptr<KWChannel>& channel) const {
        return outline()
            ->indexForItem(channel, outline()->columnWithIdentifier("values"))
            .data()
            .toString();
    }
};

} // namespace

TEST_F(KWChannelEditorUpdates, ARemovedKeyRedrawsCurveAndOutline) {
    clickRow(x);
    clickKey(1, -1);
    EXPECT_EQ(shownValue(x), QStringLiteral("-1"));
    EXPECT_TRUE(redraws([&] {
        view()->setFocus();
        QTest::keyClick(view(), Qt::Key_Delete);
        QKeyEvent event(QEvent::KeyPress, Qt::Key_Delete, Qt::NoModifier, QStringLiteral("\x7f"));
        QApplication::sendEvent(view(), &event);
    }));
    EXPECT_EQ(x->keyframeCount(), 3U);
    EXPECT_EQ(shownValue(x), QStringLiteral("1.5"));
}

TEST_F(KWChannelEditorUpdates, UndoOfAnAddedKeyRedrawsCurveAndOutline) {
    clickRow(x);
    x->setValueForKeyframe(7, KWTime(0));
    settle();
    EXPECT_EQ(shownValue(x), QStringLiteral("7"));
    EXPECT_TRUE(redraws([&] { manager->undo(); }));
    EXPECT_EQ(shownValue(x), QStringLiteral("-1"));
}

TEST_F(KWChannelEditorUpdates, AModeRedrawsCurveAndOutline) {
    clickRow(x);
    x->updateForTime(KWTime(2));
    x->invalidate();
    settle();
    const QString before = shownValue(x);
    EXPECT_TRUE(redraws([&] { choose("interpModePU", 2); }));
    EXPECT_EQ(shownValue(x), QStringLiteral("-1"));
    EXPECT_NE(shownValue(x), before);
    EXPECT_TRUE(redraws([&] { manager->undo(); }));
    EXPECT_EQ(shownValue(x), before);
    EXPECT_EQ(popup("interpModePU")->currentIndex(), 0);
}

TEST_F(KWChannelEditorUpdates, TheTimeRedrawsTheCurve) {
    clickRow(x);
    settle();
    PaintCounter curve(view());
    editor.timeChangedCallback();
    settle();
    QTest::qWait(20);
    EXPECT_GT(curve.count, 0);
}

TEST_F(KWChannelEditorUpdates, ThousandsOfNoticesCostOneRefresh) {
    clickRow(x);
    settle();
    QTest::qWait(20);
    PaintCounter curve(view());
    QSignalSpy refreshes(outline(), &KWOutlineModel::valuesRefreshed);
    for (int k = 0; k < 10000; ++k)
        (k % 2 ? x : glow)->didChange();
    EXPECT_EQ(curve.count, 0);
    settle();
    QTest::qWait(20);
    EXPECT_EQ(curve.count, 1);
    EXPECT_EQ(refreshes.count(), 1);
}

TEST_F(KWChannelEditorUpdates, WhatOthersDoToTheChannelIsShown) {
    clickRow(y);
    y->setValueForTime(8, std::nullopt);
    EXPECT_EQ(field("constantValueTF")->text(), QStringLiteral("2.5"));
    settle();
    EXPECT_EQ(field("constantValueTF")->text(), QStringLiteral("8"));
    clickRow(angle);
    angle->setExpression("cos(t)");
    settle();
    EXPECT_EQ(field("expressionTF")->text(), QStringLiteral("cos(t)"));
    clickRow(x);
    clickKey(3, 1.5f);
    const HJHermiteParam shape{-1, 0, 0, {}};
    x->modifyHermiteParamForKeyframe(&shape, KWTime(3));
    settle();
    EXPECT_EQ(slider("tensionSlider")->value(), 0);
    EXPECT_EQ(widget<QLabel>("tensionReadout")->text(), QStringLiteral("-1.000"));
}

TEST_F(KWChannelEditorUpdates, ValuesAreHeldByWhatIsDisplayedWhenTheUnitChanges) {
    KWUnitController& units = KWUnitController::sharedUnitController();
    const std::int32_t unit = units.defaultLengthUnit();
    x->setUnitType(KWUnitTypeLength);
    clickRow(x);
    view()->setDisplayedBounds({0, -2, 10, 4});
    units.setDefaultLengthUnit(2);
    EXPECT_EQ(view()->displayedBounds(), (HJRect{0, -200, 10, 400}));
    units.setDefaultLengthUnit(unit);
    EXPECT_EQ(view()->displayedBounds(), (HJRect{0, -2, 10, 4}));
    clickRow(glow);
    units.setDefaultLengthUnit(2);
    EXPECT_EQ(view()->displayedBounds(), (HJRect{0, -2, 10, 4}));
    units.setDefaultLengthUnit(unit);
}

TEST_F(KWChannelEditorUpdates, TheSelectionOfAnotherViewIsNobodysBusiness) {
    clickRow(x);
    clickKey(3, 1.5f);
    slider("tensionSlider")->blockSignals(true);
    slider("tensionSlider")->setValue(7);
    KWChannelView other;
    editor.selectionDidChange(KWNotification(KWChannelKeySelectionChangedNotification, &other));
    editor.selectionDidChange(KWNotification(KWChannelKeySelectionChangedNotification, nullptr));
    EXPECT_EQ(slider("tensionSlider")->value(), 7);
    editor.selectionDidChange(KWNotification(KWChannelKeySelectionChangedNotification, view()));
    EXPECT_EQ(slider("tensionSlider")->value(), 1250);
    slider("tensionSlider")->blockSignals(false);
}

TEST_F(KWChannelEditorUpdates, OnlyThePanelsOwnViewsAreFilled) {
    clickRow(x);
    QWidget foreign;
    editor.updateView(nullptr);
    editor.updateView(&foreign);
    editor.updateView(widget<QWidget>("constantView"));
    EXPECT_EQ(editor.optionsView(), widget<QWidget>("keyframedView"));
}
