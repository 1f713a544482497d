#include "ChannelTestSupport.h"
#include "OutlineTestSupport.h"

#include <KWBase/KWAlgebricChannel.h>
#include <KWBase/KWConstantChannel.h>
#include <KWBase/KWEmbeddedChannelController.h>
#include <KWBase/KWKeyFramedChannel.h>
#include <KWBase/KWUnitController.h>
#include <KWDesktop/KWChannelUndoRecorder.h>
#include <KWDesktop/KWOutlineDelegate.h>
#include <KWFoundation/KWBundle.h>

#include <apps/common/KWElement.h>

#include <QAbstractItemModelTester>
#include <QFile>
#include <QLineEdit>
#include <QSignalSpy>
#include <QStyleOptionViewItem>
#include <QTemporaryDir>
#include <QTest>
#include <QToolTip>
#include <QVBoxLayout>

namespace {

class KWEmbeddedChannelControllerTest : public testing::Test {
  protected:
    KWEmbeddedChannelControllerTest() {
        KWBundle::frameworkBundle().setLanguage("en");
        units.setDefaultLengthUnit(KWLengthUnitMeter);
        QToolTip::hideText();
        ball->setUndoManager(manager);
        x->setUnitType(KWUnitTypeLength);
        x->setValueForKeyframe(1, KWTime(0));
        y->setValueForTime(-3, std::nullopt);
        spin->setExpression("t");
        ball->addChannelToGroupNamed(x, "Position");
        ball->addChannelToGroupNamed(y, "Position");
        ball->addChannelToGroupNamed(spin);
        lamp->addChannelToGroupNamed(glow, "Light");
        manager->removeAllActions();
        controller.makeOutline();
    }
    ~KWEmbeddedChannelControllerTest() override { units.setDefaultLengthUnit(KWLengthUnitMeter); }

    void show(std::vector<std::shared_ptr<KWChannelElement>> elements) {
        controller.setElements(std::move(elements));
        controller.update();
        controller.expandOutlineView(tree());
        QWidget* const window = controller.channelOutlineView();
        window->resize(320, 300);
        window->show();
        window->activateWindow();
        ASSERT_TRUE(QTest::qWaitForWindowActive(window));
        window->grab();
        settle();
    }
    static void settle() {
        passEventLoop();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }
    QTreeView* tree() const { return controller.outline(); }
    KWOutlineModel* model() const { return controller.outlineModel(); }
    QModelIndex cell(const std::shared_ptr<KWObject>& item) const {
        return model()->indexForItem(item, 1);
    }
    std::string shown(const std::shared_ptr<KWObject>& item) const {
        return cell(item).data().toString().toStdString();
    }
    QLineEdit* editor() const { return tree()->viewport()->findChild<QLineEdit*>(); }
    void doubleClick(const QModelIndex& index) {
        const QPoint where = tree()->visualRect(index).center();
        QTest::mouseClick(tree()->viewport(), Qt::LeftButton, {}, where);
        QTest::mouseDClick(tree()->viewport(), Qt::LeftButton, {}, where);
        QTest::mouseRelease(tree()->viewport(), Qt::LeftButton, {}, where);
    }
    /// Opens the value's cell by mouse, types, and ends with a key.
    void type(const std::shared_ptr<KWObject>& item, const QString& text,
              Qt::Key end = Qt::Key_Return) {
        doubleClick(cell(item));
        ASSERT_NE(editor(), nullptr);
        QTest::keyClicks(editor(), text);
        QTest::keyClick(editor(), end);
        settle();
        EXPECT_EQ(editor(), nullptr);
    }
    QStyleOptionViewItem dressed(const std::shared_ptr<KWObject>& item) const {
        struct Delegate : KWOutlineDelegate {
            using KWOutlineDelegate::initStyleOption;
        };
        QStyleOptionViewItem option;
        Delegate().initStyleOption(&option, model()->indexForItem(item));
        return option;
    }

    KWUnitController& units = KWUnitController::sharedUnitController();
    std::shared_ptr<KWUndoManager> manager = std::make_shared<KWUndoManager>();
    std::shared_ptr<KWElement> ball = std::make_shared<KWElement>("Ball");
    std::shared_ptr<KWElement> lamp = std::make_shared<KWElement>("Lamp");
    std::shared_ptr<KWKeyFramedChannel> x = std::make_shared<KWKeyFramedChannel>("x");
    std::shared_ptr<KWConstantChannel> y = std::make_shared<KWConstantChannel>("y");
    std::shared_ptr<KWAlgebricChannel> spin = std::make_shared<KWAlgebricChannel>("spin");
    std::shared_ptr<KWConstantChannel> glow = std::make_shared<KWConstantChannel>("glow");
    KWEmbeddedChannelController controller;
};

} // namespace

TEST_F(KWEmbeddedChannelControllerTest, OneElementIsSkippedAndTwoAreListed) {
    show({ball});
    EXPECT_EQ(shownRows(*tree()), "Position+ .x .y spin");
    show({ball, lamp});
    EXPECT_EQ(shownRows(*tree()), "Ball+ .Position+ ..x ..y .spin Lamp+ .Light+ ..glow");
}

TEST_F(KWEmbeddedChannelControllerTest, WithNoElementsTheOutlineIsEmpty) {
    show({});
    EXPECT_EQ(model()->rowCount(), 0);
    controller.setElements({nullptr});
    controller.update();
    EXPECT_EQ(model()->rowCount(), 0);
}

TEST_F(KWEmbeddedChannelControllerTest, ElementsAreShownWithTheNextPassWithoutAnUpdate) {
    show({});
    controller.setElements({ball});
    settle();
    EXPECT_EQ(model()->rowCount(), 2);
}

TEST_F(KWEmbeddedChannelControllerTest, ElementsWithoutChannelsHaveNoRowsBelow) {
    const auto bare = std::make_shared<KWElement>("Bare");
    bare->setChannelArray(nullptr);
    show({bare});
    EXPECT_EQ(model()->rowCount(), 0);
    show({bare, std::make_shared<KWElement>("Empty")});
    EXPECT_EQ(shownRows(*tree()), "Bare+ Empty+");
    EXPECT_EQ(model()->rowCount(model()->index(0, 0)), 0);
}

TEST_F(KWEmbeddedChannelControllerTest, NullsInLiveListsAreLeftOut) {
    ball->channelArray()->channelGroups()->insert(ball->channelArray()->channelGroups()->begin(),
                                                  nullptr);
    ball->channelArray()->ungroupedChannels()->push_back(nullptr);
    ball->channelArray()->groupWithName("Position")->channels()->push_back(nullptr);
    show({ball});
    EXPECT_EQ(shownRows(*tree()), "Position+ .x .y spin");
}

TEST_F(KWEmbeddedChannelControllerTest, TypingAValueStoresItAtTheCurrentTimeAndTellsThatRowOnly) {
    controller.setCurrentTime(1.5f);
    show({ball});
    QSignalSpy changes(model(), &QAbstractItemModel::dataChanged);
    type(x, QStringLiteral("2.5"));
    EXPECT_TRUE(x->isKeyframe(KWTime(1.5f)));
    EXPECT_EQ(bitsOf(x->valueForKeyframe(KWTime(1.5f))), bitsOf(2.5f));
    EXPECT_EQ(x->keyframeCount(), 2u);
    ASSERT_GE(changes.count(), 1);
    for (const auto& change : changes) {
        EXPECT_EQ(model()->itemForIndex(change[0].toModelIndex()), x);
        EXPECT_EQ(model()->itemForIndex(change[1].toModelIndex()), x);
    }
    x->updateForTime(KWTime(1.5f));
    settle();
    EXPECT_EQ(shown(x), "2.5 m");
}

TEST_F(KWEmbeddedChannelControllerTest, AConstantsValueIsTypedToo) {
    show({ball});
    type(y, QStringLiteral("4"));
    EXPECT_EQ(y->valueForTime(std::nullopt), 4.0f);
    EXPECT_EQ(shown(y), "4");
}

TEST_F(KWEmbeddedChannelControllerTest, TheCellFollowsTheChannelsUnit) {
    x->updateForTime(KWTime(0));
    show({ball});
    EXPECT_EQ(shown(x), "1 m");
    EXPECT_EQ(shown(y), "-3");
    units.setDefaultLengthUnit(KWLengthUnitCentimeter);
    settle();
    EXPECT_EQ(shown(x), "100 cm");
    type(x, QStringLiteral("250"));
    EXPECT_EQ(x->valueForKeyframe(KWTime(0)), 2.5f);
    type(x, QStringLiteral("1 in"));
    EXPECT_EQ(x->valueForKeyframe(KWTime(0)), 0.0254f);
    x->setUnitType(KWUnitTypeNone);
    controller.update();
    x->updateForTime(KWTime(0));
    EXPECT_EQ(shown(x), "0.0254");
}

TEST_F(KWEmbeddedChannelControllerTest, NonsenseLeavesTheChannelAloneAndSaysWhy) {
    show({ball});
    x->updateForTime(KWTime(0));
    for (const char* text :
         {"abc", "", "1e999", "1 furlong", "2,5", "nan", "inf", "0x10", "1 m m"}) {
        QToolTip::hideText();
        type(x, QString::fromUtf8(text).isEmpty() ? QStringLiteral(" ") : QString::fromUtf8(text));
        EXPECT_EQ(x->keyframeCount(), 1u) << text;
        EXPECT_EQ(x->valueForKeyframe(KWTime(0)), 1.0f) << text;
        EXPECT_FALSE(QToolTip::text().isEmpty()) << text;
        EXPECT_EQ(shown(x), "1 m");
    }
    QToolTip::hideText();
    EXPECT_FALSE(manager->canUndo());
}

TEST_F(KWEmbeddedChannelControllerTest, AnUntouchedTextStoresNothing) {
    controller.setCurrentTime(3);
    show({ball});
    doubleClick(cell(x));
    QTest::keyClick(editor(), Qt::Key_Return);
    settle();
    type(x, QStringLiteral("9"), Qt::Key_Escape);
    EXPECT_EQ(x->keyframeCount(), 1u);
}

TEST_F(KWEmbeddedChannelControllerTest, OnlyChannelsValuesCanBeTyped) {
    show({ball, lamp});
    const auto group = ball->channelArray()->channelGroupAtIndex(0);
    for (const std::shared_ptr<KWObject>& item :
         std::vector<std::shared_ptr<KWObject>>{ball, group}) {
        EXPECT_FALSE(model()->flags(cell(item)).testFlag(Qt::ItemIsEditable));
        EXPECT_FALSE(model()->setData(cell(item), 3.0f));
    }
    EXPECT_FALSE(model()->flags(model()->indexForItem(x)).testFlag(Qt::ItemIsEditable));
    EXPECT_FALSE(model()->setData(model()->indexForItem(x), 3.0f));
    controller.outlineViewSetObjectValueForTableColumnByItem(tree(), 3.0f, "channels", y);
    controller.outlineViewSetObjectValueForTableColumnByItem(tree(), QStringLiteral("abc"),
                                                             "values", nullptr);
    controller.outlineViewSetObjectValueForTableColumnByItem(tree(), 3.0f, "values", group);
    EXPECT_EQ(y->valueForTime(std::nullopt), -3.0f);
    doubleClick(model()->indexForItem(x));
    EXPECT_EQ(editor(), nullptr);
}

TEST_F(KWEmbeddedChannelControllerTest, AForeignOutlineGetsEmptyAnswers) {
    show({ball});
    const QTreeView foreign;
    const auto group = ball->channelArray()->channelGroupAtIndex(0);
    for (const QTreeView* const view : {&foreign, static_cast<const QTreeView*>(nullptr)}) {
        EXPECT_EQ(controller.outlineViewNumberOfChildrenOfItem(view, nullptr), 0);
        EXPECT_EQ(controller.outlineViewChildOfItem(view, 0, group), nullptr);
        EXPECT_FALSE(controller.outlineViewIsItemExpandable(view, group));
        EXPECT_FALSE(controller.outlineViewShouldEditTableColumnItem(view, "values", x));
        for (const char* column : {"channels", "values", "view"})
            EXPECT_EQ(controller.outlineViewObjectValueForTableColumnByItem(view, column, x),
                      QVariant(QString()));
        controller.outlineViewSetObjectValueForTableColumnByItem(view, 3.0f, "values", y);
    }
    EXPECT_EQ(y->valueForTime(std::nullopt), -3.0f);
    EXPECT_EQ(controller.outlineViewObjectValueForTableColumnByItem(tree(), "view", x),
              QVariant(QString()));
}

TEST_F(KWEmbeddedChannelControllerTest, OnlyElementRowsDrawABackground) {
    show({ball, lamp});
    const auto group = ball->channelArray()->channelGroupAtIndex(0);
    EXPECT_EQ(dressed(x).backgroundBrush.style(), Qt::NoBrush);
    EXPECT_EQ(dressed(group).backgroundBrush.style(), Qt::NoBrush);
    ASSERT_EQ(dressed(ball).backgroundBrush.style(), Qt::SolidPattern);
    EXPECT_EQ(dressed(ball).backgroundBrush.color(), QColor::fromRgbF(0.8f, 0.8f, 0.9f));
    // The pointer may be over the first row.
    const QRect row = tree()->visualRect(model()->indexForItem(lamp, 0));
    const QImage image = tree()->viewport()->grab().toImage();
    EXPECT_EQ(image.pixel(row.right() - 3, row.center().y()), qRgb(204, 204, 230));
    const QRect channelRow = tree()->visualRect(model()->indexForItem(x, 0));
    EXPECT_EQ(image.pixel(channelRow.right() - 3, channelRow.center().y()),
              tree()->palette().color(QPalette::Base).rgb());
}

TEST_F(KWEmbeddedChannelControllerTest, TheOutlineHasTheStatedSpacing) {
    EXPECT_EQ(tree()->indentation(), 9);
    show({ball});
    EXPECT_EQ(tree()->visualRect(cell(x)).height(), tree()->visualRect(cell(spin)).height());
    KWOutlineDelegate tight;
    QStyleOptionViewItem option;
    option.initFrom(tree());
    EXPECT_EQ(tree()->visualRect(model()->indexForItem(x)).height(),
              std::max(tight.sizeHint(option, model()->indexForItem(x)).height(),
                       tight.sizeHint(option, cell(x)).height()) +
                  1);
}

TEST_F(KWEmbeddedChannelControllerTest, ItsOwnWritesAreMarkedAndBracketed) {
    show({ball});
    std::string heard;
    QObject::connect(&controller, &KWChannelEditSource::willEdit,
                     [&](KWChannelEdit edit, const std::shared_ptr<KWChannel>& channel) {
                         heard += edit == KWChannelEdit::value && channel == y ? "will " : "? ";
                         EXPECT_EQ(y->valueForTime(std::nullopt), -3.0f);
                     });
    QObject::connect(&controller, &KWChannelEditSource::didEdit,
                     [&](KWChannelEdit, const std::shared_ptr<KWChannel>&) { heard += "did"; });
    bool wasIgnored = false;
    const auto token = KWNotificationCenter::defaultCenter().addObserver(
        KWChannelChangedNotification, y.get(), [&](const KWNotification&) {
            wasIgnored = controller.ignoresChannelChanged();
            heard += "changed ";
        });
    type(y, QStringLiteral("2"));
    EXPECT_TRUE(wasIgnored);
    EXPECT_FALSE(controller.ignoresChannelChanged());
    EXPECT_EQ(heard, "will changed did");
}

TEST_F(KWEmbeddedChannelControllerTest, AnObserverThatThrowsLeavesTheMarkDown) {
    LogLines log;
    show({ball});
    const auto token = KWNotificationCenter::defaultCenter().addObserver(
        KWChannelChangedNotification, y.get(),
        [](const KWNotification&) { throw std::runtime_error("unwilling"); });
    type(y, QStringLiteral("2"));
    EXPECT_FALSE(controller.ignoresChannelChanged());
    EXPECT_EQ(y->valueForTime(std::nullopt), 2.0f);
    EXPECT_EQ(log.lines.size(), 1u);
}

TEST_F(KWEmbeddedChannelControllerTest, TypedValuesAreUndone) {
    const KWChannelUndoRecorder recorder(controller);
    show({ball});
    type(x, QStringLiteral("7"));
    type(y, QStringLiteral("8"));
    EXPECT_EQ(manager->undoActionName(), "Change Value");
    manager->undo();
    settle();
    EXPECT_EQ(shown(y), "-3");
    manager->undo();
    EXPECT_EQ(x->valueForKeyframe(KWTime(0)), 1.0f);
    EXPECT_FALSE(manager->canUndo());
    manager->redo();
    manager->redo();
    settle();
    EXPECT_EQ(shown(y), "8");
}

TEST_F(KWEmbeddedChannelControllerTest, FollowsWhatOthersDoToChannels) {
    show({ball});
    QSignalSpy changes(model(), &QAbstractItemModel::dataChanged);
    const auto expectTold = [&](const char* what) {
        EXPECT_EQ(changes.count(), 0) << what << ": the notice comes before the change";
        settle();
        ASSERT_EQ(changes.count(), 1) << what;
        EXPECT_EQ(changes[0][0].toModelIndex(), cell(x)) << what;
        tree()->grab();
        changes.clear();
    };
    x->setValueForKeyframe(5, KWTime(0));
    expectTold("a key that is set");
    EXPECT_EQ(shown(x), "5 m");
    x->updateForTime(KWTime(0));
    x->removeValueForKeyframe(KWTime(0));
    expectTold("a key that is removed, which posts no notice");
    EXPECT_EQ(shown(x), "0 m");
    manager->undo();
    expectTold("an undo");
    EXPECT_EQ(shown(x), "5 m");
    x->setValueForKeyframe(9, KWTime(4));
    x->setKeyFrameChannelMode(KWKeyFrameModeLinear);
    settle();
    changes.clear();
    x->updateForTime(KWTime(2));
    expectTold("time");
    EXPECT_EQ(shown(x), "7 m");
}

TEST_F(KWEmbeddedChannelControllerTest, AChannelRemovedWhileItIsEditedTakesNoHarm) {
    show({ball});
    doubleClick(cell(y));
    QTest::keyClicks(editor(), QStringLiteral("55"));
    ball->channelArray()->groupWithName("Position")->removeChannel(y);
    y->setOwner(nullptr);
    controller.update();
    settle();
    EXPECT_EQ(editor(), nullptr);
    EXPECT_EQ(shownRows(*tree()), "Position+ .x spin");
    EXPECT_EQ(y->valueForTime(std::nullopt), -3.0f);
}

TEST_F(KWEmbeddedChannelControllerTest, OwnersAndElementsMayGo) {
    show({ball, lamp});
    controller.setElements({lamp});
    ball.reset();
    settle();
    EXPECT_EQ(model()->rowCount(), 1);
    EXPECT_EQ(x->owner(), nullptr);
    x->setValueForKeyframe(3, KWTime(2));
    settle();
}

TEST_F(KWEmbeddedChannelControllerTest, ReturnAndF2EditTheSelectedChannelsValue) {
    show({ball});
    model()->selectItem(y);
    tree()->setFocus();
    QTest::keyClick(tree(), Qt::Key_F2);
    ASSERT_NE(editor(), nullptr);
    QTest::keyClicks(editor(), QStringLiteral("6"));
    QTest::keyClick(editor(), Qt::Key_Return);
    settle();
    EXPECT_EQ(y->valueForTime(std::nullopt), 6.0f);
    EXPECT_EQ(model()->selectedItem(), y);
    tree()->setFocus();
    QTest::keyClick(tree(), Qt::Key_Return);
    EXPECT_NE(editor(), nullptr);
    QTest::keyClick(editor(), Qt::Key_Escape);
    settle();
    model()->selectItem(ball->channelArray()->channelGroupAtIndex(0));
    QTest::keyClick(tree(), Qt::Key_F2);
    EXPECT_EQ(editor(), nullptr);
}

TEST_F(KWEmbeddedChannelControllerTest, TheHostsCallbacksDoNothing) {
    const KWNotification notification("any", nullptr);
    controller.selectionChangedCallback(notification);
    controller.timeChangedCallback(notification);
    controller.channelChangedCallback(notification);
}

TEST_F(KWEmbeddedChannelControllerTest, TheContainerOutlivesTheControllerInAHostsWidget) {
    QWidget host;
    QPointer<QTreeView> outline;
    {
        KWEmbeddedChannelController other;
        EXPECT_EQ(other.channelOutlineView(), nullptr);
        other.update();
        other.makeOutline();
        outline = other.outline();
        other.channelOutlineView()->setParent(&host);
        other.setElements({ball});
        other.update();
        EXPECT_EQ(other.outlineModel()->rowCount(), 2);
    }
    ASSERT_NE(outline, nullptr);
    outline->grab();
    {
        KWEmbeddedChannelController other;
        other.makeOutline();
        outline = other.outline();
    }
    EXPECT_EQ(outline, nullptr);
    KWEmbeddedChannelController other;
    other.makeOutline();
    delete other.channelOutlineView();
    other.setElements({ball});
    other.update();
    other.setCurrentTime(1);
    EXPECT_EQ(other.outline(), nullptr);
}

TEST_F(KWEmbeddedChannelControllerTest, TheOutlineMayComeFromAnInterfaceFile) {
    QTemporaryDir folder;
    const auto write = [&](const char* name, const QByteArray& inside) {
        QFile file(folder.filePath(QLatin1String(name)));
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        file.write("<ui version=\"4.0\"><class>Form</class>" + inside + "</ui>");
        return file.fileName();
    };
    const QString good = write(
        "good.ui", "<widget class=\"QWidget\" name=\"channelOVContainer\">"
                   "<layout class=\"QVBoxLayout\"><item>"
                   "<widget class=\"QTreeView\" name=\"channelOV\"/></item></layout></widget>");
    const QString bad = write("bad.ui", "<widget class=\"QWidget\" name=\"channelOVContainer\">"
                                        "<widget class=\"QLabel\" name=\"channelOV\"/></widget>");
    ASSERT_TRUE(controller.loadInterface(good)) << controller.interfaceError().toStdString();
    QTreeView* const outline = tree();
    show({ball});
    EXPECT_EQ(shownRows(*outline), "Position+ .x .y spin");
    LogLines log;
    EXPECT_FALSE(controller.loadInterface(bad));
    EXPECT_TRUE(controller.interfaceError().contains(QStringLiteral("channelOV")));
    EXPECT_FALSE(controller.loadInterface(folder.filePath(QStringLiteral("none.ui"))));
    EXPECT_FALSE(controller.interfaceError().isEmpty());
    EXPECT_EQ(tree(), outline);
    EXPECT_THROW(controller.setOutlets(nullptr, nullptr), std::invalid_argument);
}
