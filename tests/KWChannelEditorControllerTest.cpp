#include "PanelTestSupport.h"

#include <apps/common/KWDocument.h>

#include <QBoxLayout>
#include <QDir>
#include <QLabel>
#include <QPalette>
#include <QSet>

namespace {

class ChannelEditorPanelTest : public PanelTest {};

} // namespace

// Pictures to be looked at, in the folder that KWBASE_TEST_PICTURES names.
TEST_F(ChannelEditorPanelTest, DISABLED_IsAPleasureToLookAt) {
    const char* const folder = std::getenv("KWBASE_TEST_PICTURES");
    ASSERT_NE(folder, nullptr);
    const QString ratio = QString::number(editor.channelEditorPanel()->devicePixelRatioF());
    const auto shoot = [&](const QString& name) {
        settle();
        QTest::qWait(30);
        editor.channelEditorPanel()->grab().save(
            QDir(QString::fromLocal8Bit(folder))
                .filePath(name + QStringLiteral("@") + ratio + QStringLiteral(".png")));
    };
    const QPalette light = qApp->palette();
    QPalette dark(QColor(53, 53, 53), QColor(53, 53, 53));
    dark.setColor(QPalette::Base, QColor(35, 35, 35));
    dark.setColor(QPalette::Highlight, QColor(42, 130, 218));
    for (const bool isDark : {false, true}) {
        const QString suffix = isDark ? QStringLiteral("-dark") : QStringLiteral("-light");
        qApp->setPalette(isDark ? dark : light);
        view()->setCurrentTime(4);
        clickRow(lamp);
        shoot(QStringLiteral("none") + suffix);
        clickRow(x);
        shoot(QStringLiteral("keyframed") + suffix);
        clickRow(glow, 1);
        clickRow(x);
        clickKey(3, 1.5f);
        clickKey(6, 0.5f, Qt::ShiftModifier);
        shoot(QStringLiteral("selected") + suffix);
        choose("interpModePU", 1);
        shoot(QStringLiteral("linear") + suffix);
        choose("interpModePU", 0);
        clickRow(y);
        shoot(QStringLiteral("constant") + suffix);
        clickRow(angle);
        shoot(QStringLiteral("algebric") + suffix);
        clickRow(glow, 1);
        editor.channelEditorPanel()->resize(560, 420);
        clickRow(x);
        shoot(QStringLiteral("small") + suffix);
        editor.channelEditorPanel()->resize(960, 600);
    }
    qApp->setPalette(light);
}

// --- The panel.

TEST_F(ChannelEditorPanelTest, IsAFloatingWindowThatIsLoadedWhenItIsFirstShown) {
    KWChannelEditorController other;
    EXPECT_EQ(other.channelEditorPanel(), nullptr);
    other.showChannelEditor();
    QWidget* const panel = other.channelEditorPanel();
    ASSERT_NE(panel, nullptr);
    EXPECT_TRUE(panel->isVisible());
    EXPECT_TRUE(panel->isWindow());
    EXPECT_EQ(panel->windowFlags() & Qt::WindowType_Mask, Qt::Tool);
    panel->close();
    other.showChannelEditor();
    EXPECT_EQ(other.channelEditorPanel(), panel);
    EXPECT_TRUE(panel->isVisible());
}

TEST_F(ChannelEditorPanelTest, StartsWithTheToolOfTagZeroAndTheCheckBoxsState) {
    EXPECT_TRUE(button("selectTool")->isChecked());
    EXPECT_EQ(view()->editingMode(), 0);
    EXPECT_FALSE(view()->liveUpdate());
    EXPECT_EQ(view()->delegate(), &editor);
}

TEST_F(ChannelEditorPanelTest, LoadsAgainInPlaceOfTheFirst) {
    clickRow(x);
    QPointer<QWidget> first = editor.channelEditorPanel();
    ASSERT_TRUE(editor.loadInterface());
    EXPECT_EQ(first, nullptr);
    editor.showChannelEditor();
    EXPECT_EQ(view()->primaryChannel(), x);
    EXPECT_EQ(editor.optionsView(), widget<QWidget>("keyframedView"));
    editor.expandOutlineView(tree());
    clickRow(y);
    EXPECT_EQ(editor.channelBeingEdited(), y);
}

TEST_F(ChannelEditorPanelTest, SurvivesThePanelAndItsParts) {
    clickRow(x);
    delete view();
    settle();
    clickRow(y);
    click("copyButton");
    click("pasteButton");
    settle();
    delete editor.channelEditorPanel();
    x->setValueForKeyframe(3, KWTime(3));
    manager->undo();
    editor.pasteChannel();
    settle();
    EXPECT_EQ(editor.channelEditorPanel(), nullptr);
    editor.showChannelEditor();
    EXPECT_NE(editor.channelEditorPanel(), nullptr);
}

TEST_F(ChannelEditorPanelTest, GivesItsContentsToAHostThatEmbedsThem) {
    QWidget host;
    QPointer<QWidget> container;
    {
        KWChannelEditorController other;
        ASSERT_TRUE(other.loadInterface());
        other.setChannelsController(&list);
        container = other.channelEditorContainer();
        (new QVBoxLayout(&host))->addWidget(container);
        host.show();
        auto* const outline = container->findChild<KWOutlineModel*>();
        ASSERT_NE(outline, nullptr);
        const auto* const rows = container->findChild<QTreeView*>();
        other.expandOutlineView(const_cast<QTreeView*>(rows));
        outline->selectItem(x);
        EXPECT_EQ(other.channelBeingEdited(), x);
    }
    ASSERT_NE(container, nullptr);
    EXPECT_FALSE(container->findChild<QWidget*>(QStringLiteral("toolsMatrix"))->isEnabled());
    // Nothing is behind it any more, and nothing breaks.
    container->findChild<QSlider*>(QStringLiteral("gridSlider"))->setValue(3);
    container->findChild<QAbstractButton*>(QStringLiteral("copyButton"))->click();
    host.resize(700, 500);
    x->didChange();
    settle();
}

TEST_F(ChannelEditorPanelTest, KeepsAListOfKeysForItsHost) {
    EXPECT_TRUE(editor.selectedKeys().empty());
    editor.extendSelectionWithKey(KWTime(2));
    editor.extendSelectionWithKey(KWTime(1));
    editor.extendSelectionWithKey(KWTime(2));
    EXPECT_EQ(editor.selectedKeys(), (std::vector<KWTime>{KWTime(2), KWTime(1)}));
    editor.resetSelection();
    EXPECT_TRUE(editor.selectedKeys().empty());
}

// --- A panel for everybody.

TEST_F(ChannelEditorPanelTest, IsWalkedThroughByTheTabKeyInTheOrderOfItsLayout) {
    clickRow(x);
    click("copyButton");
    clickKey(3, 1.5f);
    tree()->setFocus();
    std::vector<std::string> names;
    for (int guard = 0; guard < 40; ++guard) {
        names.push_back(QApplication::focusWidget()->objectName().toStdString());
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
        if (QApplication::focusWidget() == tree())
            break;
    }
    EXPECT_EQ(names, (std::vector<std::string>{
                         "elementOV", "selectTool", "snapCheckBox", "liveCheckBox", "gridSlider",
                         "fitButton", "channelView", "channelTypePU", "copyButton", "pasteButton",
                         "interpModePU", "repeatPU", "resetHermButton", "tensionSlider",
                         "continuitySlider", "biasSlider"}));
}

TEST_F(ChannelEditorPanelTest, TheArrowKeysGoFromToolToTool) {
    clickRow(x);
    button("selectTool")->setFocus();
    QTest::keyClick(button("selectTool"), Qt::Key_Right);
    EXPECT_TRUE(button("addKeyTool")->isChecked());
    EXPECT_EQ(view()->editingMode(), KWChannelViewModeAddKey);
}

TEST_F(ChannelEditorPanelTest, EveryControlHasALabelAToolTipAndANameForReaders) {
    for (QWidget* const control : editor.channelEditorPanel()->findChildren<QWidget*>()) {
        const std::string name = control->objectName().toStdString();
        if (!(control->focusPolicy() & Qt::TabFocus) || name.empty() || name.starts_with("qt_"))
            continue;
        EXPECT_FALSE(control->toolTip().isEmpty() && control != view()) << name;
        const auto* const pushed = qobject_cast<QAbstractButton*>(control);
        EXPECT_FALSE(control->accessibleName().isEmpty() && (!pushed || pushed->text().isEmpty()))
            << name;
        if (pushed) {
            EXPECT_TRUE(pushed->text().contains(QLatin1Char('&'))) << name;
        } else if (control != view()) {
            const auto labels = editor.channelEditorPanel()->findChildren<QLabel*>();
            EXPECT_TRUE(std::any_of(labels.begin(), labels.end(), [&](const QLabel* label) {
                return label->buddy() == control && label->text().contains(QLatin1Char('&'));
            })) << name;
        }
    }
}

TEST_F(ChannelEditorPanelTest, NoTwoControlsShareAMnemonic) {
    QSet<QChar> seen;
    const auto take = [&](const QString& text) {
        const auto place = text.indexOf(QLatin1Char('&'));
        if (place < 0)
            return;
        const QChar letter = text.at(place + 1).toLower();
        EXPECT_FALSE(seen.contains(letter)) << text.toStdString();
        seen.insert(letter);
    };
    for (const QLabel* const label : editor.channelEditorPanel()->findChildren<QLabel*>())
        take(label->text());
    for (const QAbstractButton* const pushed :
         editor.channelEditorPanel()->findChildren<QAbstractButton*>())
        take(pushed->text());
    EXPECT_EQ(seen.size(), 19);
}

TEST_F(ChannelEditorPanelTest, TheCurveTakesTheRoomThatAWindowGains) {
    editor.channelEditorPanel()->resize(780, 500);
    settle();
    const QSize curve = view()->size();
    const QSize options = widget<QWidget>("optionsBox")->size();
    editor.channelEditorPanel()->resize(780, 700);
    settle();
    EXPECT_EQ(view()->height(), curve.height() + 200);
    EXPECT_EQ(widget<QWidget>("optionsBox")->height(), options.height());
    editor.channelEditorPanel()->resize(1180, 700);
    settle();
    EXPECT_GT(view()->width(), curve.width() + 250);
    EXPECT_EQ(view()->stepCount(), view()->width() * view()->devicePixelRatioF());
}

// --- All of it.

TEST_F(ChannelEditorPanelTest, AWholeSessionWithADocumentIsUndoneToTheLastByteAndRedone) {
    const KWDocument document = KWDocument::open(
        std::filesystem::path(std::getenv("KWBASE_SAMPLES")) / "bouncing-ball.kwdoc");
    KWArrayController::Objects elements;
    for (const KWDocument::Element& element : document.elements())
        elements.push_back(element.object);
    const auto places = document.channels();
    ASSERT_GE(places.size(), 3U);
    list.setContent(elements);
    followStructure();
    settle();
    editor.expandOutlineView(tree());
    const KWData start = document.data();
    KWUndoManager& undo = *document.undoManager();
    undo.removeAllActions();

    // Another type, two keys drawn, one dragged, its tension set.
    clickRow(places[0].channel);
    choose("channelTypePU", 3);
    choose("channelTypePU", 0);
    const auto drawn = std::dynamic_pointer_cast<KWKeyFramedChannel>(editor.channelBeingEdited());
    ASSERT_TRUE(drawn);
    click("addKeyTool");
    QTest::mouseClick(view(), Qt::LeftButton, {}, at(2, 1));
    QTest::mouseClick(view(), Qt::LeftButton, {}, at(6, -1));
    ASSERT_EQ(drawn->keyframeCount(), 2U);
    click("selectTool");
    const float timeBefore = drawn->lastKeyframe()->time();
    dragInView(at(timeBefore,
                  drawn->convertValueToUserUnit(drawn->valueForKeyframe(*drawn->lastKeyframe()))),
               at(8, 1.5f));
    EXPECT_NEAR(drawn->lastKeyframe()->time(), 8, 0.1);
    dragSlider("tensionSlider", -30);
    EXPECT_LT(shapeOf(*drawn, drawn->lastKeyframe()->time()).tension, -0.1f);
    choose("interpModePU", 2);
    choose("repeatPU", 1);

    // An expression, and the first channel pasted over a third.
    click("copyButton");
    clickRow(places[1].channel);
    choose("channelTypePU", 1);
    type("expressionTF", QStringLiteral("2*sin(t)"));
    EXPECT_EQ(editor.channelBeingEdited()->valueForTime(KWTime(0)), 0);
    clickRow(places[2].channel);
    click("pasteButton");
    const auto pasted = std::dynamic_pointer_cast<KWKeyFramedChannel>(editor.channelBeingEdited());
    ASSERT_TRUE(pasted);
    EXPECT_EQ(pasted->keyframeCount(), 2U);
    EXPECT_EQ(pasted->repeatMode(), KWRepeatModeCycle);
    const KWData end = document.data();
    EXPECT_NE(end, start);

    const auto runAll = [&](bool (KWUndoManager::*can)() const, void (KWUndoManager::*run)()) {
        int steps = 0;
        for (; (undo.*can)() && steps < 100; ++steps) {
            (undo.*run)();
            settle();
        }
        return steps;
    };
    EXPECT_EQ(runAll(&KWUndoManager::canUndo, &KWUndoManager::undo), 11);
    EXPECT_EQ(document.data(), start);
    EXPECT_EQ(runAll(&KWUndoManager::canRedo, &KWUndoManager::redo), 11);
    EXPECT_EQ(document.data(), end);
    runAll(&KWUndoManager::canUndo, &KWUndoManager::undo);
    EXPECT_EQ(document.data(), start);
}

TEST_F(ChannelEditorPanelTest, EveryChannelOfEverySampleIsShownAndChangesNoByteByThat) {
    const std::filesystem::path folder = std::getenv("KWBASE_SAMPLES");
    int count = 0;
    for (const auto& file : std::filesystem::directory_iterator(folder)) {
        if (file.path().extension() != ".kwdoc")
            continue;
        const KWDocument document = KWDocument::open(file.path());
        KWArrayController::Objects elements = {lamp, ball}; // one alone would have fewer rows
        for (const KWDocument::Element& element : document.elements())
            elements.push_back(element.object);
        list.setContent(elements);
        settle();
        editor.expandOutlineView(tree());
        const auto before = document.channels();
        for (const KWDocument::Place& place : before) {
            outline()->selectItem(place.channel);
            EXPECT_EQ(editor.channelBeingEdited(), place.channel) << place.path;
            if (const auto keyed = std::dynamic_pointer_cast<KWKeyFramedChannel>(place.channel))
                view()->setSelectedKeys(keyed->allKeyframes());
            editor.updateView(widget<QWidget>("keyframedView"));
            click("fitButton");
            settle();
            ++count;
        }
        EXPECT_FALSE(document.undoManager()->canUndo());
        list.setContent({});
    }
    EXPECT_GT(count, 50);
    EXPECT_EQ(takeTold(), "");
}
