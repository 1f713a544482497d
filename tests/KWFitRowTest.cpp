#include "EditWindowTestSupport.h"

#include <apps/kwedit/window/KWEditCurvesPane.h>
#include <apps/kwedit/window/KWFitRow.h>

#include <QHBoxLayout>
#include <QLabel>

TEST(KWFitRow, WhatIsMissedLeastGoesFirstAndComesBackLast) {
    QWidget parent;
    auto* const row = new QHBoxLayout(&parent);
    row->setContentsMargins(0, 0, 0, 0);
    row->setSpacing(0);
    QList<QLabel*> labels;
    for (int k = 0; k < 4; ++k) {
        labels << new QLabel;
        labels.back()->setFixedWidth(100);
        row->addWidget(labels.back());
    }
    const auto shown = [&](int width) {
        kwFitRow(*row, {{labels[3]}, {labels[1], labels[2]}}, width);
        QString marks;
        for (const QLabel* label : labels)
            marks += QLatin1Char(label->isHidden() ? '-' : 'x');
        return marks;
    };
    EXPECT_EQ(shown(400), QStringLiteral("xxxx"));
    EXPECT_EQ(shown(399), QStringLiteral("xxx-"));
    EXPECT_EQ(shown(299), QStringLiteral("x---"));
    EXPECT_EQ(shown(10), QStringLiteral("x---"));
    EXPECT_EQ(shown(300), QStringLiteral("xxx-"));
    EXPECT_EQ(shown(400), QStringLiteral("xxxx"));
}

class KWEditNarrowWindowTest : public EditWindowTest {};

TEST_F(KWEditNarrowWindowTest, NoRowOfTheCurvesIsSqueezed) {
    open(samplePath("bouncing-ball.kwdoc"));
    for (const int width : {1024, 1280, 1440, 1920}) {
        window->resize(width, 700);
        settle();
        for (const QAbstractButton* button : window->curves().findChildren<QAbstractButton*>())
            if (button->isVisible() && !button->text().isEmpty()) {
                EXPECT_GE(button->width(), button->minimumSizeHint().width())
                    << qUtf8Printable(button->text()) << " at " << width;
            }
    }
}

TEST_F(KWEditNarrowWindowTest, AHintStandsInPlaceOfACurve) {
    open();
    const auto* const hint = widget<QLabel>("curvesHint");
    EXPECT_TRUE(hint->isVisible());
    const QString ofNothing = hint->text();
    document().addSprite(QStringLiteral("Ball"), {});
    settle();
    window->curves().edit(document().model().channels().front().channel);
    settle();
    EXPECT_FALSE(hint->isVisible());
    EXPECT_NE(hint->text(), ofNothing);
}
