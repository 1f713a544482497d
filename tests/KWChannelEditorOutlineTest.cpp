#include "PanelTestSupport.h"

#include <QAbstractItemModelTester>
#include <QColor>

namespace {

class KWChannelEditorOutline : public PanelTest {
  protected:
    int childCount(const std::shared_ptr<KWObject>& item = nullptr) {
        return editor.outlineViewNumberOfChildrenOfItem(tree(), item);
    }
    std::shared_ptr<KWObject> child(int index, const std::shared_ptr<KWObject>& item = nullptr) {
        return editor.outlineViewChildOfItem(tree(), index, item);
    }
    QVariant value(std::string_view column, const std::shared_ptr<KWObject>& item) {
        return editor.outlineViewObjectValueForTableColumnByItem(tree(), column, item);
    }
    KWAttributedString text(std::string_view column, const std::shared_ptr<KWObject>& item) {
        return value(column, item).value<KWAttributedString>();
    }
    int column(std::string_view identifier) const {
        return outline()->columnWithIdentifier(identifier);
    }
    std::shared_ptr<KWChannelGroup> position() const {
        return ball->channelArray()->groupWithName("Position");
    }
};

/// An element with something else than channels.
class Bare final : public KWChannelElement {
  public:
    std::string name() const override { return "Bare"; }
    std::shared_ptr<KWChannelArray> channelArray() const override { return nullptr; }
};

} // namespace

TEST_F(KWChannelEditorOutline, ListsElementsThenGroupsThenTheChannelsOfNoGroup) {
    EXPECT_EQ(childCount(), 2);
    EXPECT_EQ(child(0), ball);
    EXPECT_EQ(child(1), lamp);
    EXPECT_EQ(childCount(ball), 2);
    EXPECT_EQ(child(0, ball), position());
    EXPECT_EQ(child(1, ball), angle);
    EXPECT_EQ(childCount(position()), 2);
    EXPECT_EQ(child(1, position()), y);
    EXPECT_EQ(child(2, position()), nullptr);
    EXPECT_EQ(child(-1, position()), nullptr);
    EXPECT_EQ(child(7), nullptr);
    EXPECT_EQ(childCount(x), 0);
    EXPECT_FALSE(editor.outlineViewIsItemExpandable(tree(), x));
    EXPECT_TRUE(editor.outlineViewIsItemExpandable(tree(), position()));
    EXPECT_TRUE(editor.outlineViewIsItemExpandable(tree(), ball));
    EXPECT_EQ(tree()->indentation(), 9);
    EXPECT_TRUE(outline()->indexForItem(y).isValid());
}

TEST_F(KWChannelEditorOutline, ASingleElementCountsItsChildrenButIsLookedUpAmongTheElements) {
    list.setContent({ball});
    settle();
    EXPECT_EQ(childCount(), 2);
    EXPECT_EQ(child(0), ball);
    EXPECT_EQ(child(1), nullptr);
    // The row that cannot be looked up is left out.
    QAbstractItemModelTester tester(outline(),
                                    QAbstractItemModelTester::FailureReportingMode::Fatal);
    EXPECT_EQ(outline()->rowCount(), 1);
    editor.expandOutlineView(tree());
    clickRow(x);
    EXPECT_EQ(editor.channelBeingEdited(), x);
    list.setContent({ball, lamp});
    settle();
    EXPECT_EQ(outline()->rowCount(), 2);
    EXPECT_EQ(editor.channelBeingEdited(), x);
    // One without channels counts none and so has no row.
    list.setContent({std::make_shared<KWElement>("Empty")});
    settle();
    EXPECT_EQ(childCount(), 0);
    EXPECT_EQ(outline()->rowCount(), 0);
    EXPECT_EQ(editor.channelBeingEdited(), nullptr);
}

TEST_F(KWChannelEditorOutline, AnswersEmptyValuesToAForeignOutline) {
    QTreeView foreign;
    for (const QTreeView* const view :
         {static_cast<const QTreeView*>(&foreign), static_cast<const QTreeView*>(nullptr)}) {
        EXPECT_EQ(editor.outlineViewNumberOfChildrenOfItem(view, nullptr), 0);
        EXPECT_EQ(editor.outlineViewChildOfItem(view, 0, nullptr), nullptr);
        EXPECT_FALSE(editor.outlineViewIsItemExpandable(view, ball));
        const QVariant answer =
            editor.outlineViewObjectValueForTableColumnByItem(view, "channels", ball);
        EXPECT_EQ(answer, QVariant(QString()));
    }
    clickRow(x);
    editor.outlineViewSelectionDidChange(&foreign);
    EXPECT_EQ(editor.channelBeingEdited(), x);
}

TEST_F(KWChannelEditorOutline, NamesHaveTheLooksOfTheirKind) {
    const auto expectLooks = [&](const std::shared_ptr<KWObject>& item, const char* name,
                                 std::uint32_t index) {
        EXPECT_EQ(text("channels", item).string, QString::fromLatin1(name));
        EXPECT_EQ(text("channels", item).attributes, editor.textAttributesForIndex(index));
    };
    expectLooks(ball, "Ball", 0xffffffff);
    expectLooks(position(), "Position", 0);
    expectLooks(x, "x", 1);
    EXPECT_EQ(editor.textAttributesForIndex(7), editor.textAttributesForIndex(1));
    EXPECT_EQ(editor.textAttributesForIndex(0xffffffff).foreground.rgb(), qRgb(128, 0, 128));
    EXPECT_EQ(editor.textAttributesForIndex(0).font.pixelSize(), 12);
    EXPECT_TRUE(editor.textAttributesForIndex(2).alignment & Qt::AlignRight);
    EXPECT_EQ(editor.textAttributesForIndex(2).font.pixelSize(), 11);
}

TEST_F(KWChannelEditorOutline, ValuesAreThoseOfTheLastUpdateWithSevenDigits) {
    y->setValueForTime(1.0f / 3, std::nullopt);
    EXPECT_EQ(text("values", y).string, QStringLiteral("0.3333333"));
    EXPECT_EQ(text("values", y).attributes, editor.textAttributesForIndex(2));
    x->updateForTime(KWTime(3));
    EXPECT_EQ(text("values", x).string, QStringLiteral("1.5"));
    EXPECT_EQ(value("values", ball), QVariant());
    EXPECT_EQ(value("values", position()), QVariant());
    EXPECT_EQ(value("sound", x), QVariant(QString()));
}

TEST_F(KWChannelEditorOutline, AClickOnTheSquareShowsTheCurveBehindAndHidesItAgain) {
    clickRow(x);
    clickRow(glow, column("view"));
    EXPECT_TRUE(view()->isSecondaryChannel(glow));
    EXPECT_EQ(editor.channelBeingEdited(), glow);
    EXPECT_EQ(value("view", glow), QVariant(QColor(255, 255, 0)));
    EXPECT_EQ(value("view", x), QVariant());
    EXPECT_EQ(value("view", ball), QVariant());
    EXPECT_EQ(editor.colorForChannel(glow), QColor(255, 255, 0));
    clickRow(glow, column("view"));
    EXPECT_FALSE(view()->isSecondaryChannel(glow));
    EXPECT_EQ(value("view", glow), QVariant());
    clickRow(lamp, column("view"));
    EXPECT_TRUE(view()->secondaryChannels().empty());
}

TEST_F(KWChannelEditorOutline, TheSwatchIsDrawnInTheChannelsColour) {
    clickRow(glow, column("view"));
    clickRow(x);
    const QRect cell = tree()->visualRect(outline()->indexForItem(glow, column("view")));
    const QImage image = tree()->viewport()->grab().toImage();
    const qreal ratio = image.devicePixelRatio();
    const QPointF centre = QRectF(cell).center();
    const auto colorAt = [&](const QPointF& point) {
        return image.pixelColor(static_cast<int>(point.x() * ratio),
                                static_cast<int>(point.y() * ratio));
    };
    EXPECT_EQ(colorAt(centre), QColor(255, 255, 0));
    EXPECT_EQ(colorAt(centre - QPointF(4.5, 0)), QColor(Qt::black));
}

TEST_F(KWChannelEditorOutline, SpaceShowsTheSelectedChannelsCurveBehind) {
    clickRow(angle);
    tree()->setFocus();
    QTest::keyClick(tree(), Qt::Key_Space);
    EXPECT_TRUE(view()->isSecondaryChannel(angle));
    QTest::keyClick(tree(), Qt::Key_Space);
    EXPECT_FALSE(view()->isSecondaryChannel(angle));
    QTest::keyClick(tree(), Qt::Key_Down);
    QTest::keyClick(tree(), Qt::Key_Space);
    EXPECT_EQ(outline()->selectedItem(), lamp);
    EXPECT_TRUE(view()->secondaryChannels().empty());
}

TEST_F(KWChannelEditorOutline, WhatIsSelectedIsEdited) {
    clickRow(x);
    EXPECT_EQ(editor.channelBeingEdited(), x);
    EXPECT_EQ(editor.optionsView(), widget<QWidget>("keyframedView"));
    clickRow(position());
    EXPECT_EQ(editor.channelBeingEdited(), nullptr);
    EXPECT_EQ(view()->primaryChannel(), nullptr);
    EXPECT_EQ(editor.optionsView(), nullptr);
    EXPECT_EQ(widget<QLabel>("noOptionsLabel")->isVisible(), true);
    clickRow(angle);
    EXPECT_EQ(editor.optionsView(), widget<QWidget>("algebricView"));
    clickRow(y);
    EXPECT_EQ(editor.optionsView(), widget<QWidget>("constantView"));
}

TEST_F(KWChannelEditorOutline, AnAlgebraicChannelLeavesTheTypePopupAsItWas) {
    clickRow(y);
    EXPECT_EQ(popup("channelTypePU")->currentIndex(), 3);
    clickRow(angle);
    EXPECT_EQ(popup("channelTypePU")->currentIndex(), 3);
    clickRow(x);
    EXPECT_EQ(popup("channelTypePU")->currentIndex(), 0);
    clickRow(angle);
    EXPECT_EQ(popup("channelTypePU")->currentIndex(), 0);
    clickRow(ball);
    EXPECT_EQ(popup("channelTypePU")->currentIndex(), 0);
}

TEST_F(KWChannelEditorOutline, ARefreshKeepsTheSelectedKeys) {
    clickRow(x);
    clickKey(3, 1.5f);
    outline()->reloadData();
    list.setContent({lamp, ball});
    settle();
    EXPECT_EQ(view()->selectedKeys(), std::vector<KWTime>{KWTime(3)});
    EXPECT_EQ(editor.channelBeingEdited(), x);
}

TEST_F(KWChannelEditorOutline, AChannelThatIsRemovedWhileItIsEditedIsEditedNoMore) {
    clickRow(glow, column("view"));
    clickKey(3, -1.5f);
    lamp->channelArray()->ungroupedChannels()->clear();
    glow->setOwner(nullptr);
    // Before anybody says so.
    choose("channelTypePU", 3);
    EXPECT_EQ(popup("channelTypePU")->currentIndex(), 0);
    EXPECT_EQ(editor.channelBeingEdited(), glow);
    editor.channelStructChangedCallback(KWNotification("any", lamp.get()));
    EXPECT_EQ(editor.channelBeingEdited(), nullptr);
    EXPECT_EQ(view()->primaryChannel(), nullptr);
    EXPECT_TRUE(view()->secondaryChannels().empty());
    EXPECT_FALSE(isEnabled("copyButton"));
}

TEST_F(KWChannelEditorOutline, ANoticeOfStructureReloadsForTheElementsAlone) {
    const auto added = std::make_shared<KWConstantChannel>("added");
    ball->addChannelToGroupNamed(added);
    const auto isShown = [&] { return outline()->indexForItem(added).isValid(); };
    const auto stranger = std::make_shared<KWElement>("Stranger");
    editor.channelStructChangedCallback(KWNotification("any", stranger.get()));
    editor.channelStructChangedCallback(KWNotification("any", nullptr));
    EXPECT_FALSE(isShown());
    editor.channelStructChangedCallback(KWNotification("any", ball.get()));
    EXPECT_TRUE(isShown());
}

TEST_F(KWChannelEditorOutline, FollowsTheListOfElements) {
    list.addObject(makeElement("Third"));
    settle();
    EXPECT_EQ(outline()->rowCount(), 3);
    EXPECT_EQ(log.lines.back(), "Elements changed");
    editor.setChannelsController(nullptr);
    EXPECT_TRUE(editor.elements().empty());
    const std::size_t lines = log.lines.size();
    list.addObject(makeElement("Fourth"));
    EXPECT_EQ(log.lines.size(), lines);
}

TEST_F(KWChannelEditorOutline, ElementsWithoutAnArrayAndEmptyOnesAreRowsWithoutChildren) {
    const auto bare = std::make_shared<Bare>();
    const auto none = makeElement("None");
    none->setChannelArray(nullptr);
    list.setContent({ball, bare, none, makeElement("Empty"), x});
    settle();
    EXPECT_EQ(outline()->rowCount(), 5);
    for (const auto& item : list.arrangedObjects()) {
        outline()->selectItem(item);
        settle();
    }
    EXPECT_EQ(childCount(bare), 0);
    EXPECT_EQ(child(0, bare), nullptr);
    EXPECT_EQ(childCount(none), 0);
    EXPECT_EQ(editor.channelBeingEdited(), x);
    list.setContent({bare});
    settle();
    EXPECT_EQ(outline()->rowCount(), 0);
}

TEST_F(KWChannelEditorOutline, ChannelsOutOfOrderAreShownAndEditedAsFarAsTheyGo) {
    KWKeyedArchiver archiver; // an archive can bring what no edit makes
    const auto odd = std::make_shared<KWKeyFramedChannel>("odd");
    odd->setValueHermiteValueForKeyframe(1, KWData(4), KWTime(0));
    odd->setValueHermiteValueForKeyframe(2, KWData(50), KWTime(1));
    ball->addChannelToGroupNamed(odd);
    editor.channelStructChangedCallback(KWNotification("any", ball.get()));
    settle();
    clickRow(odd);
    EXPECT_EQ(text("values", odd).string, QStringLiteral("?"));
    view()->setSelectedKeys({KWTime(0), KWTime(1)});
    settle();
    click("resetHermButton");
    settle();
    EXPECT_EQ(shapeOf(*odd, 1).tension, 0);
    EXPECT_TRUE(odd->isRegular());
}
