#include "ViewTestSupport.h"

#include <KWBase/KWLayoutRecords.h>

#include <gtest/gtest.h>

#include <QLabel>
#include <memory>
#include <string>
#include <vector>

TEST(KWLayoutRecord, EachKeyIsItsOwnName) {
    EXPECT_EQ(KWColumnWidthKey, "KWColumnWidthKey");
    EXPECT_EQ(KWColumnWidthIsPercentKey, "KWColumnWidthIsPercentKey");
    EXPECT_EQ(KWColumnVisibleKey, "KWColumnVisibleKey");
    EXPECT_EQ(KWColumnPanesKey, "KWColumnPanesKey");
    EXPECT_EQ(KWColumnActualOffsetKey, "KWColumnActualOffsetKey");
    EXPECT_EQ(KWColumnActualWidthKey, "KWColumnActualWidthKey");
    EXPECT_EQ(KWPaneViewKey, "KWPaneViewKey");
    EXPECT_EQ(KWPaneHeightKey, "KWPaneHeightKey");
    EXPECT_EQ(KWPaneHeightIsPercentKey, "KWPaneHeightIsPercentKey");
    EXPECT_EQ(KWPaneVisibleKey, "KWPaneVisibleKey");
    EXPECT_EQ(KWPaneActualOffsetKey, "KWPaneActualOffsetKey");
    EXPECT_EQ(KWPaneActualHeightKey, "KWPaneActualHeightKey");
}

TEST(KWLayoutRecord, AFreshColumnIsVisibleAndHasNoPanesAndNothingComputed) {
    const KWLayoutColumn column(30, true);
    EXPECT_EQ(column.allKeys(),
              (std::vector<std::string>{"KWColumnPanesKey", "KWColumnVisibleKey",
                                        "KWColumnWidthIsPercentKey", "KWColumnWidthKey"}));
    EXPECT_EQ(column.objectForKey(KWColumnWidthKey), QVariant(30.0f));
    EXPECT_EQ(column.objectForKey(KWColumnWidthIsPercentKey), QVariant(true));
    EXPECT_EQ(column.objectForKey(KWColumnVisibleKey), QVariant(true));
    EXPECT_FALSE(column.objectForKey(KWColumnActualWidthKey).isValid());
    const auto panes =
        column.objectForKey(KWColumnPanesKey).value<std::shared_ptr<KWLayoutPaneList>>();
    EXPECT_EQ(panes, column.panes());
    EXPECT_TRUE(panes->empty());
}

TEST(KWLayoutRecord, APaneWithoutAViewHasNoKeyForIt) {
    QLabel label;
    const KWLayoutPane empty(nullptr, 20, false);
    const KWLayoutPane pane(&label, 20, false);
    EXPECT_EQ(empty.allKeys(), (std::vector<std::string>{"KWPaneHeightIsPercentKey",
                                                         "KWPaneHeightKey", "KWPaneVisibleKey"}));
    EXPECT_FALSE(empty.objectForKey(KWPaneViewKey).isValid());
    EXPECT_EQ(pane.objectForKey(KWPaneViewKey).value<QWidget*>(), &label);
}

TEST(KWLayoutRecord, AViewThatHasBeenDeletedIsAbsent) {
    auto label = std::make_unique<QLabel>();
    const KWLayoutPane pane(label.get(), 20, false);
    label.reset();
    EXPECT_EQ(pane.view(), nullptr);
    EXPECT_FALSE(pane.objectForKey(KWPaneViewKey).isValid());
}

TEST(KWLayoutRecord, WhatIsWrittenUnderAKeyIsWhatIsRead) {
    KWLayoutPane pane(nullptr, 20, false);
    pane.setObjectForKey(12.5, KWPaneHeightKey);
    pane.setObjectForKey(1, KWPaneHeightIsPercentKey);
    pane.setObjectForKey(false, KWPaneVisibleKey);
    pane.setObjectForKey(3, KWPaneActualOffsetKey);
    pane.setObjectForKey(QStringLiteral("2.5"), KWPaneActualHeightKey);
    EXPECT_EQ(pane.objectForKey(KWPaneHeightKey).typeId(), QMetaType::Float);
    const KWLayoutShare share = pane.share();
    EXPECT_EQ(share.size, 12.5f);
    EXPECT_TRUE(share.isPercent);
    EXPECT_FALSE(share.isVisible);
    EXPECT_EQ(share.actualOffset, 3);
    EXPECT_EQ(share.actualSize, 2.5f);

    QLabel label;
    pane.setObjectForKey(QVariant::fromValue(&label), KWPaneViewKey);
    EXPECT_EQ(pane.view(), &label);
    auto panes = std::make_shared<KWLayoutPaneList>();
    KWLayoutColumn column(1, true);
    column.setObjectForKey(QVariant::fromValue(panes), KWColumnPanesKey);
    EXPECT_EQ(column.panes(), panes);
}

TEST(KWLayoutRecord, WhatIsRemovedCountsAsNothing) {
    QLabel label;
    KWLayoutPane pane(&label, 20, true);
    pane.setActual(4, 5);
    for (const std::string& key : pane.allKeys())
        pane.removeObjectForKey(key);
    EXPECT_TRUE(pane.allKeys().empty());
    const KWLayoutShare share = pane.share();
    EXPECT_EQ(share.size, 0);
    EXPECT_FALSE(share.isPercent);
    EXPECT_FALSE(share.isVisible);
    EXPECT_EQ(share.actualOffset, 0);
    EXPECT_EQ(pane.view(), nullptr);
    pane.removeObjectForKey("no such key");
}

TEST(KWLayoutRecord, KeysOfTheHostAreKept) {
    KWLayoutColumn column(1, true);
    column.setObjectForKey(QStringLiteral("left"), "name");
    EXPECT_EQ(column.objectForKey("name"), QVariant(QStringLiteral("left")));
    EXPECT_EQ(column.allKeys().back(), "name");
    column.removeObjectForKey("name");
    EXPECT_FALSE(column.objectForKey("name").isValid());
}

TEST(KWLayoutRecord, AnObjectOfAnotherKindIsRefusedAndChangesNothing) {
    QLabel label;
    KWLayoutPane pane(&label, 20, true);
    const QVariant word(QStringLiteral("wide"));
    EXPECT_THROW(pane.setObjectForKey(word, KWPaneHeightKey), std::invalid_argument);
    EXPECT_THROW(pane.setObjectForKey(QVariant::fromValue(&label), KWPaneHeightKey),
                 std::invalid_argument);
    EXPECT_THROW(pane.setObjectForKey(QVariant::fromValue(QPointF()), KWPaneVisibleKey),
                 std::invalid_argument);
    EXPECT_THROW(pane.setObjectForKey(word, KWPaneViewKey), std::invalid_argument);
    EXPECT_THROW(pane.setObjectForKey(QVariant(), KWPaneViewKey), std::invalid_argument);
    EXPECT_THROW(KWLayoutColumn(1, true).setObjectForKey(word, KWColumnPanesKey),
                 std::invalid_argument);
    EXPECT_EQ(pane.share().size, 20);
    EXPECT_TRUE(pane.isVisible());
    EXPECT_EQ(pane.view(), &label);
}
