#include "EditWindowTestSupport.h"

#include <KWBase/KWAlgebricChannel.h>

#include <apps/kwedit/window/KWShortcutsDialog.h>
#include <apps/kwedit/window/KWTour.h>
#include <apps/kwedit/window/KWTransportBar.h>
#include <apps/kwedit/window/KWTransportRuler.h>

#include <QAccessible>
#include <QListWidget>
#include <QMenuBar>
#include <QTreeWidget>

namespace {

class KWEditWindowTest : public EditWindowTest {};
using Unsaved = KWEditQuestions::Unsaved;
using Target = KWEditQuestions::Target;
using Form = KWEditDocument::Form;

} // namespace

TEST_F(KWEditWindowTest, EveryCommandHasAnActionATipAndAUniqueShortcut) {
    open();
    QHash<QString, QString> taken;
    for (const KWEditCommand& command : KWEditCommands::table()) {
        const QAction* const action = window->commands().action(command.id);
        EXPECT_FALSE(action->text().isEmpty()) << command.id;
        EXPECT_FALSE(KWEditCommands::tip(command).isEmpty()) << command.id;
        const auto shortcuts = *command.shortcut ? action->shortcuts() : QList<QKeySequence>();
        for (const QKeySequence& key : shortcuts) {
            const QString text = key.toString(QKeySequence::PortableText);
            EXPECT_FALSE(text.isEmpty()) << command.id;
            EXPECT_FALSE(taken.contains(text))
                << command.id << " and " << taken[text].toStdString() << ": " << text.toStdString();
            taken[text] = QLatin1String(command.id);
        }
    }
    EXPECT_THROW(window->commands().action("no.such"), std::out_of_range);
}

TEST_F(KWEditWindowTest, EveryMenuGivesItsCommandsDifferentAccessKeys) {
    open();
    const auto menus = window->menuBar()->actions();
    EXPECT_EQ(menus.size(), 7);
    for (const QAction* const menu : menus) {
        QString keys;
        const auto actions = menu->menu()->actions();
        for (const QAction* const action : actions) {
            const auto mark = action->text().indexOf(QLatin1Char('&'));
            if (mark < 0)
                continue;
            const QChar key = action->text().at(mark + 1).toLower();
            EXPECT_FALSE(keys.contains(key))
                << menu->text().toStdString() << ": " << action->text().toStdString();
            keys += key;
        }
    }
}

TEST_F(KWEditWindowTest, OpeningShowsTheElementsACurveAndTheName) {
    open(samplePath("bouncing-ball.kwdoc"));
    EXPECT_TRUE(window->windowTitle().startsWith(QStringLiteral("bouncing-ball.kwdoc")));
    EXPECT_FALSE(window->isWindowModified());
    ASSERT_NE(window->curves().channel(), nullptr);
    EXPECT_EQ(view().primaryChannel(), window->curves().channel());
    EXPECT_EQ(window->session().elements().arrangedObjects().size(), 2U);
    EXPECT_EQ(window->session().selectedElements().size(), 1U);
}

TEST_F(KWEditWindowTest, TheCurveIsFramedOnceAndNeverAgain) {
    open(samplePath("bouncing-ball.kwdoc"));
    view().grab();
    const QRectF framed = view().displayedRectangle();
    EXPECT_NE(framed, QRectF(0, -2, 10, 4));
    select(channel("Ball/Position/y"));
    EXPECT_EQ(view().primaryChannel(), channel("Ball/Position/y"));
    EXPECT_EQ(view().displayedRectangle(), framed);
}

TEST_F(KWEditWindowTest, ADamagedDocumentIsRefusedWithTheReason) {
    const QString path = folder.path("bad.kwdoc");
    writeContents(path, "bplist00 and then nothing");
    open(samplePath("bouncing-ball.kwdoc"));
    EXPECT_EQ(application.openWindow(path), nullptr);
    ASSERT_EQ(questions.complaints.size(), 1);
    EXPECT_TRUE(questions.complaints.front().contains(QStringLiteral("bad.kwdoc")));
    EXPECT_EQ(application.windows().size(), 1);
    expectedComplaints = questions.complaints;
}

TEST_F(KWEditWindowTest, ClosingAsksAboutUnsavedChanges) {
    open();
    press("Ctrl+Alt+N");
    EXPECT_TRUE(window->isWindowModified());
    questions.unsaved = {Unsaved::cancel};
    EXPECT_FALSE(window->close());
    questions.unsaved = {Unsaved::save};
    questions.targets = {Target{folder.path("saved.kwdoc"), Form::xml}};
    EXPECT_TRUE(window->close());
    EXPECT_TRUE(contentsOf(folder.path("saved.kwdoc")).startsWith("<?xml"));
    settle();
}

TEST_F(KWEditWindowTest, AnUntouchedWindowTakesTheDocumentOthersOpenAnother) {
    open();
    questions.opened = {{samplePath("wave.kwdoc")}, {samplePath("bouncing-ball.kwdoc")}};
    press("Ctrl+O");
    EXPECT_EQ(application.windows().size(), 1);
    EXPECT_EQ(document().fileName(), QStringLiteral("wave.kwdoc"));
    press("Ctrl+O");
    EXPECT_EQ(application.windows().size(), 2);
    EXPECT_EQ(settings.value(QStringLiteral("recentFiles")).toStringList().size(), 2);
}

TEST_F(KWEditWindowTest, PanesAreHiddenShownAndRemembered) {
    open();
    EXPECT_TRUE(window->stage().isVisible());
    press("Alt+2");
    EXPECT_FALSE(window->stage().isVisible());
    press("Alt+2");
    EXPECT_TRUE(window->stage().isVisible());
    press("Alt+1");
    EXPECT_FALSE(window->outline().isVisible());
    const QByteArray state = window->panes().state();
    EXPECT_TRUE(window->close());
    settle();
    open();
    EXPECT_FALSE(window->outline().isVisible());
    EXPECT_EQ(window->panes().state(), state);
    EXPECT_FALSE(window->panes().restore("nonsense"));
    EXPECT_EQ(window->panes().state(), state);
}

TEST_F(KWEditWindowTest, TheGapBetweenTwoPanesIsDragged) {
    open();
    const int width = window->outline().width();
    const QPoint gap(window->outline().geometry().right() + 3, 200);
    drag(window->panes(), gap, gap + QPoint(60, 0));
    EXPECT_EQ(window->outline().width(), width + 60);
    const int height = window->stage().height();
    const QPoint below(window->stage().geometry().center().x(),
                       window->stage().geometry().bottom() + 3);
    drag(window->panes(), below, below - QPoint(0, 40));
    EXPECT_EQ(window->stage().height(), height - 40);
    QTest::mouseDClick(&window->panes(), Qt::LeftButton, {}, gap + QPoint(60, 0));
    EXPECT_EQ(window->outline().width(), width);
}

TEST_F(KWEditWindowTest, TheCurvesGoIntoAWindowOfTheirOwnAndBack) {
    open(samplePath("bouncing-ball.kwdoc"));
    const int height = window->stage().height();
    press("Alt+0");
    EXPECT_TRUE(window->curves().isFloating());
    EXPECT_TRUE(window->curves().isVisible());
    EXPECT_GT(window->stage().height(), height);
    window->curves().activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&window->curves()));
    view().setFocus();
    press("Ctrl+A");
    EXPECT_GT(view().selectedKeys().size(), 1U);
    window->curves().close();
    settle();
    EXPECT_FALSE(window->curves().isFloating());
    EXPECT_TRUE(window->curves().isVisible());
    EXPECT_EQ(window->stage().height(), height);
    press("Alt+0");
    window->curves().setGeometry(120, 90, 800, 500);
    press("Alt+0");
    press("Alt+0");
    EXPECT_EQ(window->curves().geometry(), QRect(120, 90, 800, 500));
}

TEST_F(KWEditWindowTest, SpacePlaysUnlessSomethingElseNeedsIt) {
    open(samplePath("bouncing-ball.kwdoc"));
    view().setFocus();
    press("Space");
    EXPECT_TRUE(window->session().transport().isPlaying());
    press("Space");
    EXPECT_FALSE(window->session().transport().isPlaying());
    auto* const snap = widget<QAbstractButton>("snapCheckBox");
    snap->setFocus();
    press("Space");
    EXPECT_TRUE(snap->isChecked());
    EXPECT_FALSE(window->session().transport().isPlaying());
    EXPECT_TRUE(window->commands().action("keys.snap")->isChecked());
}

TEST_F(KWEditWindowTest, TheTimeReachesStageCurvesAndValues) {
    open(samplePath("bouncing-ball.kwdoc"));
    const QImage before = window->stage().shownFrame().copy();
    window->session().transport().scrub(1);
    settle();
    EXPECT_EQ(view().currentTime(), 1);
    EXPECT_EQ(channel("Ball/Position/x")->value(),
              channel("Ball/Position/x")->valueForTime(KWTime(1)));
    EXPECT_NE(window->stage().shownFrame(), before);
}

TEST_F(KWEditWindowTest, OneDragIsOneStepWithItsNameAndUndoWaitsForIt) {
    open(samplePath("bouncing-ball.kwdoc"));
    const auto before = bytes();
    const auto x = std::dynamic_pointer_cast<KWKeyFramedChannel>(channel("Ball/Position/x"));
    select(x);
    const QPoint key = at(x->keyframeAtIndex(1)->time(), x->valueForTime(x->keyframeAtIndex(1)));
    press(view(), key);
    moveTo(view(), key + QPoint(10, 20));
    moveTo(view(), key + QPoint(14, 40));
    EXPECT_NE(bytes(), before);
    window->undo();
    EXPECT_NE(bytes(), before);
    QTest::mouseRelease(&view(), Qt::LeftButton, {}, key + QPoint(14, 40));
    settle();
    EXPECT_EQ(window->commands().action("edit.undo")->text(), QStringLiteral("&Undo Edit Keys"));
    press("Ctrl+Z");
    EXPECT_EQ(bytes(), before);
    EXPECT_FALSE(document().canUndo());
    EXPECT_FALSE(window->isWindowModified());
    press("Ctrl+Shift+Z");
    EXPECT_NE(bytes(), before);
}

TEST_F(KWEditWindowTest, EscapeCancelsADragAndLeavesNothing) {
    open(samplePath("bouncing-ball.kwdoc"));
    const auto before = bytes();
    const auto x = std::dynamic_pointer_cast<KWKeyFramedChannel>(channel("Ball/Position/x"));
    select(x);
    const QPoint key = at(x->keyframeAtIndex(1)->time(), x->valueForTime(x->keyframeAtIndex(1)));
    view().setFocus();
    press(view(), key);
    moveTo(view(), key + QPoint(30, 30));
    EXPECT_NE(bytes(), before);
    press("Escape");
    QTest::mouseRelease(&view(), Qt::LeftButton, {}, key);
    settle();
    EXPECT_EQ(bytes(), before);
    EXPECT_FALSE(document().canUndo());
    EXPECT_FALSE(window->isWindowModified());
}

// A new document has one element already, the stage.

TEST_F(KWEditWindowTest, TheHistoryListsTheStepsAndGoesToAnyOfThem) {
    open();
    for (const char* const keys : {"Ctrl+Alt+N", "Ctrl+Alt+N", "Ctrl+Alt+N"})
        press(keys);
    auto* const history = widget<QListWidget>("history");
    ASSERT_EQ(history->count(), 4);
    EXPECT_EQ(history->currentRow(), 3);
    const auto all = bytes();
    window->commands().action("view.history")->trigger();
    settle();
    QTest::mouseClick(history->viewport(), Qt::LeftButton, {},
                      history->visualItemRect(history->item(1)).center());
    settle();
    EXPECT_EQ(document().model().elements().size(), 2U);
    EXPECT_EQ(history->currentRow(), 1);
    EXPECT_EQ(history->count(), 4);
    QTest::mouseClick(history->viewport(), Qt::LeftButton, {},
                      history->visualItemRect(history->item(3)).center());
    settle();
    EXPECT_EQ(bytes(), all);
}

TEST_F(KWEditWindowTest, ElementsAreAddedRenamedReorderedAndRemoved) {
    open();
    press("Ctrl+Alt+N");
    press("Ctrl+Alt+N");
    EXPECT_EQ(element(2)->name(), "Sprite 2");
    ASSERT_EQ(window->session().selectedElements().size(), 1U);
    EXPECT_EQ(window->session().selectedElements().front(), element(2));
    questions.names = {QStringLiteral("Moon")};
    window->commands().action("element.rename")->trigger();
    settle();
    EXPECT_EQ(element(2)->name(), "Moon");
    window->commands().action("element.lower")->trigger();
    settle();
    EXPECT_EQ(element(1)->name(), "Moon");
    window->commands().action("element.raise")->trigger();
    settle();
    EXPECT_EQ(element(2)->name(), "Moon");
    window->commands().action("element.remove")->trigger();
    settle();
    EXPECT_EQ(document().model().elements().size(), 2U);
    EXPECT_TRUE(window->session().selectedElements().empty());
    press("Ctrl+Z");
    EXPECT_EQ(document().model().elements().size(), 3U);
}

TEST_F(KWEditWindowTest, PicturesThatAreDroppedBecomeSpritesInOneStep) {
    open();
    QImage picture(8, 8, QImage::Format_RGB32);
    picture.fill(Qt::red);
    ASSERT_TRUE(picture.save(folder.path("red.png")));
    ASSERT_TRUE(picture.save(folder.path("blue.png")));
    window->addFiles({folder.path("red.png"), folder.path("blue.png")}, QPointF(1, 2));
    settle();
    ASSERT_EQ(document().model().elements().size(), 3U);
    EXPECT_EQ(element(1)->name(), "red");
    EXPECT_EQ(channel("red/Position/x")->valueForTime(KWTime(0)), 1);
    EXPECT_EQ(channel("red/Position/y")->valueForTime(KWTime(0)), 2);
    press("Ctrl+Z");
    EXPECT_EQ(document().model().elements().size(), 1U);
    EXPECT_FALSE(document().canUndo());
}

TEST_F(KWEditWindowTest, ASpriteIsPickedOnTheStageAndItsElementSelected) {
    open(samplePath("bouncing-ball.kwdoc"));
    window->session().selectElement(nullptr);
    settle();
    const QPolygonF outline = window->stage().outlineOf(*element(0));
    ASSERT_FALSE(outline.isEmpty());
    QTest::mouseClick(&window->stage(), Qt::LeftButton, {},
                      outline.boundingRect().center().toPoint());
    settle();
    ASSERT_EQ(window->session().selectedElements().size(), 1U);
    EXPECT_EQ(window->session().selectedElements().front(), element(0));
    EXPECT_EQ(window->outline().elementOf(window->outline().selectedItem()), element(0));
}

TEST_F(KWEditWindowTest, TheOtherCurvesOfAnElementAreShownAndHidden) {
    open(samplePath("bouncing-ball.kwdoc"));
    select(channel("Ball/Position/x"));
    window->commands().action("view.showAllCurves")->trigger();
    EXPECT_GE(view().secondaryChannels().size(), 3U);
    EXPECT_FALSE(view().isSecondaryChannel(channel("Ball/Position/x")));
    window->commands().action("view.hideOtherCurves")->trigger();
    EXPECT_TRUE(view().secondaryChannels().empty());
}

TEST_F(KWEditWindowTest, AKeyIsSetOnTheCurveAndTheTimeGoesFromKeyToKey) {
    open(samplePath("bouncing-ball.kwdoc"));
    const auto x = std::dynamic_pointer_cast<KWKeyFramedChannel>(channel("Ball/Position/x"));
    select(x);
    const auto count = x->keyframeCount();
    window->session().transport().scrub(0.5F);
    view().setFocus();
    const float value = x->valueForTime(KWTime(0.5F));
    EXPECT_EQ(window->transportBar().ruler().keyTimes().size(), count);
    press("K");
    EXPECT_EQ(window->transportBar().ruler().keyTimes().size(), count + 1);
    EXPECT_EQ(x->keyframeCount(), count + 1);
    EXPECT_EQ(x->valueForTime(KWTime(0.5F)), value);
    press("Ctrl+Z");
    EXPECT_EQ(x->keyframeCount(), count);
    window->session().transport().scrub(0);
    window->commands().action("play.nextKey")->trigger();
    EXPECT_EQ(window->session().transport().currentTime(), x->keyframeAtIndex(1)->time());
    window->commands().action("play.previousKey")->trigger();
    EXPECT_EQ(window->session().transport().currentTime(), x->keyframeAtIndex(0)->time());
}

TEST_F(KWEditWindowTest, AReadOnlyDocumentSaysSoAndIsSavedElsewhere) {
    const QString path = folder.path("ball.kwdoc");
    writeContents(path, contentsOf(samplePath("bouncing-ball.kwdoc")));
    QFile::setPermissions(path, QFile::ReadOwner);
    open(path);
    if (!document().isReadOnly())
        GTEST_SKIP() << "this user may write to everything";
    EXPECT_TRUE(window->windowTitle().contains(QStringLiteral("read-only")));
    press("Ctrl+Alt+N");
    questions.targets = {Target{folder.path("mine.kwdoc"), Form::binary}};
    press("Ctrl+S");
    EXPECT_FALSE(document().isReadOnly());
    EXPECT_EQ(contentsOf(path), contentsOf(samplePath("bouncing-ball.kwdoc")));
}

TEST_F(KWEditWindowTest, AWindowOnADocumentIsDrawnWithoutAScreen) {
    QString error;
    const QString picture = folder.path("window.png");
    ASSERT_TRUE(kwDrawWindow(samplePath("bouncing-ball.kwdoc"), picture, QSize(1200, 800), &error));
    EXPECT_EQ(QImage(picture).size(), QSize(1200, 800));
    EXPECT_FALSE(kwDrawWindow(folder.path("none.kwdoc"), picture, QSize(800, 600), &error));
    EXPECT_TRUE(error.contains(QStringLiteral("none.kwdoc")));
}

TEST_F(KWEditWindowTest, TheTourGoesOnAsEachStepIsDone) {
    open(samplePath("bouncing-ball.kwdoc"));
    const QPointer<KWTour> tour = window->startTour();
    settle();
    EXPECT_TRUE(tour->isVisible());
    EXPECT_TRUE(window->rect().contains(tour->geometry()));
    EXPECT_EQ(tour->step(), 0);
    tour->next();
    window->session().transport().play();
    settle();
    EXPECT_EQ(tour->step(), 2);
    window->session().transport().pause();
    const auto y = std::dynamic_pointer_cast<KWKeyFramedChannel>(channel("Ball/Position/y"));
    select(y);
    EXPECT_EQ(tour->step(), 3);
    const QPoint key = at(y->keyframeAtIndex(1)->time(), y->valueForTime(y->keyframeAtIndex(1)));
    drag(view(), key, key - QPoint(0, 20));
    EXPECT_EQ(tour->step(), 4);
    press("Ctrl+Z");
    EXPECT_EQ(tour->step(), 5);
    EXPECT_EQ(tour->step() + 1, tour->stepCount());
    tour->next();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    EXPECT_TRUE(tour.isNull());
}

TEST_F(KWEditWindowTest, TheTourGoesBackAndEndsWithEscape) {
    open(samplePath("bouncing-ball.kwdoc"));
    const QPointer<KWTour> tour = window->startTour();
    tour->next();
    tour->back();
    EXPECT_EQ(tour->step(), 0);
    tour->back();
    EXPECT_EQ(tour->step(), 0);
    view().setFocus();
    press("Escape");
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    EXPECT_TRUE(tour.isNull());
}

TEST_F(KWEditWindowTest, TheListOfCommandsIsSearched) {
    open();
    KWShortcutsDialog dialog;
    auto* const list = dialog.findChild<QTreeWidget*>();
    const auto shown = [list] {
        int count = 0;
        for (QTreeWidgetItemIterator item(list, QTreeWidgetItemIterator::NotHidden); *item; ++item)
            count += (*item)->childCount() == 0;
        return count;
    };
    EXPECT_EQ(shown(), static_cast<int>(KWEditCommands::table().size()));
    dialog.findChild<QLineEdit*>()->setText(QStringLiteral("ctrl+shift+z"));
    EXPECT_EQ(shown(), 1);
}

TEST_F(KWEditWindowTest, RevertGoesBackToTheFile) {
    const QString path = folder.path("ball.kwdoc");
    writeContents(path, contentsOf(samplePath("bouncing-ball.kwdoc")));
    open(path);
    const auto before = bytes();
    press("Ctrl+Alt+N");
    questions.goesOn = {false};
    window->commands().action("file.revert")->trigger();
    EXPECT_NE(bytes(), before);
    questions.goesOn = {true};
    window->commands().action("file.revert")->trigger();
    EXPECT_EQ(bytes(), before);
    EXPECT_FALSE(window->isWindowModified());
}

TEST_F(KWEditWindowTest, AFileThatAnotherProgramHasChangedIsNotReplacedUnasked) {
    const QString path = folder.path("ball.kwdoc");
    writeContents(path, contentsOf(samplePath("bouncing-ball.kwdoc")));
    open(path);
    press("Ctrl+Alt+N");
    writeContents(path, "somebody else was here");
    questions.goesOn = {false};
    press("Ctrl+S");
    EXPECT_EQ(contentsOf(path), QByteArray("somebody else was here"));
    EXPECT_TRUE(window->isWindowModified());
    questions.goesOn = {true};
    press("Ctrl+S");
    EXPECT_FALSE(window->isWindowModified());
}

TEST_F(KWEditWindowTest, EveryPartHasANameForAssistiveTechnology) {
    open(samplePath("bouncing-ball.kwdoc"));
    const auto widgets = window->findChildren<QWidget*>();
    for (const QWidget* const widget : widgets) {
        const bool isUsed = widget->focusPolicy() != Qt::NoFocus && widget->isVisible();
        if (!isUsed || widget->objectName().startsWith(QLatin1String("qt_")))
            continue;
        QAccessibleInterface* const face =
            QAccessible::queryAccessibleInterface(const_cast<QWidget*>(widget));
        const bool isNamed = face && !face->text(QAccessible::Name).isEmpty();
        EXPECT_TRUE(isNamed || widget->inherits("QScrollArea") || widget->inherits("QMenuBar"))
            << widget->metaObject()->className() << ' ' << widget->objectName().toStdString();
    }
}

TEST_F(KWEditWindowTest, AClickOnARowOfTheListIsFollowedAtOnce) {
    open(samplePath("bouncing-ball.kwdoc"));
    QTreeView& list = window->outline().outline();
    auto* const model = static_cast<KWOutlineModel*>(list.model());
    const auto click = [&](const std::shared_ptr<KWObject>& item) {
        QTest::mouseClick(list.viewport(), Qt::LeftButton, {},
                          list.visualRect(model->indexForItem(item)).center());
        settle();
    };
    click(channel("Ball/Position/y"));
    EXPECT_EQ(window->curves().channel(), channel("Ball/Position/y"));
    click(element(1));
    EXPECT_EQ(window->session().selectedElements().front(), element(1));
    click(channel("Ball/Position/x"));
    EXPECT_EQ(window->curves().channel(), channel("Ball/Position/x"));
    EXPECT_EQ(window->session().selectedElements().front(), element(0));
}

TEST_F(KWEditWindowTest, TheElementWithTheStageIsNotRemovedUnasked) {
    open(samplePath("bouncing-ball.kwdoc"));
    select(element(1));
    questions.goesOn = {false};
    window->commands().action("element.remove")->trigger();
    EXPECT_EQ(document().model().elements().size(), 2U);
    questions.goesOn = {true};
    window->commands().action("element.remove")->trigger();
    EXPECT_EQ(document().model().elements().size(), 1U);
}

TEST_F(KWEditWindowTest, ReturnExports) {
    open(samplePath("bouncing-ball.kwdoc"));
    KWExportDialog* const dialog = window->showExport(KWExportDialog::Kind::values);
    dialog->setDestination(folder.path("values.csv"));
    dialog->setRange(0, 2);
    ASSERT_TRUE(QTest::qWaitForWindowActive(dialog));
    bool isDone = false;
    QObject::connect(dialog, &KWExportDialog::exported, [&](bool done) { isDone = done; });
    QTest::keyClick(dialog, Qt::Key_Return);
    EXPECT_TRUE(QTest::qWaitFor([&] { return isDone; }, 60'000));
}

TEST_F(KWEditWindowTest, TheOnlyElementStaysSelectedThoughItHasNoRow) {
    const QString path = folder.path("one.kwdoc");
    {
        KWDocument one;
        const auto element = std::make_shared<KWElement>("Only");
        const auto glow = std::make_shared<KWKeyFramedChannel>("glow");
        glow->setValueForKeyframe(0, KWTime(0));
        glow->setValueForKeyframe(1, KWTime(2));
        element->addChannelToGroupNamed(glow, "Light");
        one.addElement(element);
        one.save(path.toStdString(), Form::binary);
    }
    open(path);
    window->outline().outline().setFocus();
    settle();
    ASSERT_EQ(window->session().selectedElements().size(), 1U);
    EXPECT_EQ(window->session().selectedElements().front(), element(0));
    press("Ctrl+Alt+N");
    EXPECT_EQ(document().model().elements().size(), 2U);
    EXPECT_EQ(window->session().selectedElements().front(), element(1));
}

TEST_F(KWEditWindowTest, ADocumentOfAnotherProgramShowsItsChannels) {
    const QString path = QDir(QString::fromLocal8Bit(std::getenv("KWBASE_TEST_DATA")))
                             .filePath(QStringLiteral("golden/lamp-little.archive"));
    open(path);
    EXPECT_EQ(window->session().elements().arrangedObjects().size(), 1U);
    const auto glow = std::dynamic_pointer_cast<KWKeyFramedChannel>(channel("glow"));
    EXPECT_EQ(window->curves().channel(), glow);
    const QPoint key = at(glow->keyframeAtIndex(0)->time(), glow->valueForTime(KWTime(0)));
    drag(view(), key, key - QPoint(0, 20));
    EXPECT_TRUE(window->isWindowModified());
    press("Ctrl+Z");
    EXPECT_FALSE(window->isWindowModified());
}
