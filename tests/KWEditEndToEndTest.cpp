#include "EditWindowTestSupport.h"

#include <KWBase/KWAlgebricChannel.h>
#include <KWFoundation/KWFile.h>

#include <QProcess>
#include <csignal>

namespace {

using Target = KWEditQuestions::Target;
using Form = KWEditDocument::Form;

/// A document from nothing to the end, as a user makes it.
class KWEditEndToEndTest : public EditWindowTest {
  protected:
    std::shared_ptr<KWKeyFramedChannel> keyed(const char* address) const {
        return std::dynamic_pointer_cast<KWKeyFramedChannel>(channel(address));
    }
    /// With the tool that adds keys.
    void addKeys(const std::vector<QPointF>& keys) {
        click("addKeyTool");
        for (const QPointF& key : keys)
            QTest::mouseClick(&view(), Qt::LeftButton, {},
                              at(static_cast<float>(key.x()), static_cast<float>(key.y())));
        settle();
        click("selectTool");
    }
    void dragFirstKey(const std::shared_ptr<KWKeyFramedChannel>& channel, const QPoint& distance) {
        const KWTime time = *channel->keyframeAtIndex(0);
        const QPoint from = at(time.time(), channel->valueForTime(time));
        drag(view(), from, from + distance);
    }
    int undoAll() {
        int count = 0;
        for (; document().canUndo() && count < 1000; ++count)
            press("Ctrl+Z");
        return count;
    }
    /// The document of the whole story: two sprites, keys in both, an expression.
    void makeDocument() {
        window->resize(1440, 900);
        press("Ctrl+Alt+N");
        window->commands().submenu("element.shape")->actions().at(5)->trigger();
        settle();
        select(channel("Sprite/Position/x"));
        addKeys({{1, 0.5}, {3, 1.5}, {6, -1}});
        dragFirstKey(keyed("Sprite/Position/x"), QPoint(5, -30));
        view().setFocus();
        press("Ctrl+A");
        press("Up");
        select(channel("Star/Position/y"));
        addKeys({{2, 1}, {5, -1}});
        select(channel("Star/Position/rotation"));
        choose("channelTypePU", 1);
        type("expressionTF", QStringLiteral("2*sin(t)+0.5"));
    }
};

} // namespace

TEST_F(KWEditEndToEndTest, ADocumentIsMadeUndoneRedoneSavedInThreeFormsAndReadAgain) {
    open();
    const auto empty = bytes();
    makeDocument();
    const auto whole = bytes();
    ASSERT_GE(keyed("Sprite/Position/x")->keyframeCount(), 4U);
    ASSERT_GE(keyed("Star/Position/y")->keyframeCount(), 3U);
    const auto turn =
        std::dynamic_pointer_cast<KWAlgebricChannel>(channel("Star/Position/rotation"));
    ASSERT_NE(turn, nullptr);
    EXPECT_EQ(turn->expression(), "2*sin(t)+0.5");

    const int steps = undoAll();
    EXPECT_GE(steps, 10);
    EXPECT_LT(steps, 100);
    EXPECT_EQ(bytes(), empty);
    EXPECT_FALSE(window->isWindowModified());
    for (int step = 0; step < steps; ++step)
        press("Ctrl+Shift+Z");
    EXPECT_EQ(bytes(), whole);
    EXPECT_FALSE(document().canRedo());

    for (const auto& [form, name] :
         {std::pair{Form::binary, "binary.kwdoc"}, std::pair{Form::xml, "xml.kwdoc"},
          std::pair{Form::sequential, "sequential.kwdoc"}}) {
        questions.targets = {Target{folder.path(name), form}};
        if (form == Form::sequential)
            questions.goesOn = {true, true}; // what that form cannot hold, if anything
        press("Ctrl+Shift+S");
        EXPECT_FALSE(window->isWindowModified()) << name;
        questions.goesOn.clear();
        KWEditDocument read;
        QString error;
        ASSERT_TRUE(read.open(folder.path(name), &error)) << error.toStdString();
        EXPECT_EQ(read.form(), form);
        const auto places = read.model().channels();
        ASSERT_EQ(places.size(), document().model().channels().size());
        for (std::size_t index = 0; index < places.size(); ++index)
            for (float time = -1; time < 8; time += 0.37F)
                EXPECT_EQ(places[index].channel->valueForTime(KWTime(time)),
                          document().model().channels()[index].channel->valueForTime(KWTime(time)))
                    << name << ' ' << places[index].path << " at " << time;
        const bool isKeyed = form != Form::sequential;
        EXPECT_TRUE(!isKeyed || read.model().data(Form::binary) == whole) << name;
        const auto text = std::dynamic_pointer_cast<KWAlgebricChannel>(
            KWDocument::placeAt(places, "Star/Position/rotation").channel);
        ASSERT_NE(text, nullptr);
        EXPECT_EQ(text->expression(), "2*sin(t)+0.5") << name;
    }
}

/// The other process of the test below: edits, lets the copy be made, and is killed with a key in
/// its hand.
TEST_F(KWEditEndToEndTest, DISABLED_IsKilledInTheMiddleOfADrag) {
    const QString shared = qEnvironmentVariable("KWBASE_TEST_KILLED");
    ASSERT_FALSE(shared.isEmpty());
    settings.setValue(QStringLiteral("autosave/folder"), shared + QStringLiteral("/autosave"));
    open(shared + QStringLiteral("/story.kwdoc"));
    document().setAutosaveDelay(20);
    const auto x = keyed("Sprite/Position/x");
    select(x);
    dragFirstKey(x, QPoint(0, 25));
    ASSERT_TRUE(document().isModified());
    ASSERT_TRUE(document().autosave());
    ASSERT_TRUE(document().saveCopy(shared + QStringLiteral("/edited.kwdoc"), Form::binary));
    const KWTime time = *x->keyframeAtIndex(1);
    const QPoint from = at(time.time(), x->valueForTime(time));
    press(view(), from);
    moveTo(view(), from + QPoint(10, 10));
    moveTo(view(), from + QPoint(20, 30));
    std::raise(SIGKILL);
}

TEST_F(KWEditEndToEndTest, WhatAKilledEditorHadIsRecoveredAndItsFileUntouched) {
    open();
    makeDocument();
    const QString story = folder.path("story.kwdoc");
    questions.targets = {Target{story, Form::binary}};
    press("Ctrl+S");
    ASSERT_TRUE(window->close());
    settle();
    const QByteArray original = contentsOf(story);

    QProcess killed;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("KWBASE_TEST_KILLED"), folder.path());
    for (const char* const name : {"GTEST_TOTAL_SHARDS", "GTEST_SHARD_INDEX"})
        environment.remove(QLatin1String(name));
    killed.setProcessEnvironment(environment);
    killed.start(QCoreApplication::applicationFilePath(),
                 {QStringLiteral("--gtest_also_run_disabled_tests"),
                  QStringLiteral("--gtest_filter=*DISABLED_IsKilledInTheMiddleOfADrag")});
    ASSERT_TRUE(killed.waitForFinished(120'000));
    ASSERT_EQ(killed.exitStatus(), QProcess::CrashExit)
        << killed.readAllStandardOutput().constData();
    EXPECT_EQ(contentsOf(story), original);

    questions.copies = {KWEditQuestions::Copy::later};
    ASSERT_EQ(application.offerLeftovers(), 0);
    questions.copies = {KWEditQuestions::Copy::recover};
    ASSERT_EQ(application.offerLeftovers(), 1);
    window = application.windows().constLast();
    window->activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(window));
    settle();
    EXPECT_TRUE(window->isWindowModified());
    EXPECT_EQ(document().filePath(), story);
    const QByteArray edited = contentsOf(folder.path("edited.kwdoc"));
    const auto recovered = bytes();
    EXPECT_EQ(QByteArray(reinterpret_cast<const char*>(recovered.data()),
                         static_cast<qsizetype>(recovered.size())),
              edited);
    press("Ctrl+S");
    EXPECT_EQ(contentsOf(story), edited);
    EXPECT_EQ(application.offerLeftovers(), 0);
    EXPECT_NE(window->curves().channel(), nullptr);
}

TEST_F(KWEditEndToEndTest, FramesValuesAndAMovieAreExportedAndACanceledOneLeavesNothing) {
    open(samplePath("bouncing-ball.kwdoc"));
    const auto run = [&](KWExportDialog::Kind kind, const QString& target, qint64 last,
                         bool isCanceled) {
        KWExportDialog* const dialog = window->showExport(kind);
        dialog->setDestination(target);
        dialog->setRange(0, last);
        bool isDone = false;
        bool isOver = false;
        QObject::connect(dialog, &KWExportDialog::exported, [&](bool done, const QString& error) {
            isDone = done;
            isOver = true;
            EXPECT_EQ(error, QString());
        });
        dialog->start();
        if (isCanceled)
            QTest::keyClick(dialog, Qt::Key_Escape);
        EXPECT_TRUE(QTest::qWaitFor([&] { return isOver; }, 60'000));
        QTest::keyClick(dialog, Qt::Key_Escape);
        settle();
        return isDone;
    };
    using Kind = KWExportDialog::Kind;
    EXPECT_TRUE(run(Kind::frames, folder.path("frames"), 3, false));
    EXPECT_EQ(QDir(folder.path("frames")).entryList(QDir::Files).size(), 4);
    EXPECT_TRUE(run(Kind::values, folder.path("values.csv"), 3, false));
    EXPECT_TRUE(contentsOf(folder.path("values.csv")).contains("Ball/Position/x"));
    EXPECT_FALSE(run(Kind::movie, folder.path("movie.mp4"), 100'000, true));
    EXPECT_FALSE(QFile::exists(folder.path("movie.mp4")));
    EXPECT_EQ(folder.names().filter(QStringLiteral("movie")).size(), 0);
}
