#include <KWBase/KWConstantChannel.h>
#include <KWBase/KWKeyFramedChannel.h>

#include <apps/kwedit/KWEditDocument.h>
#include <apps/kwedit/KWRecentFiles.h>
#include <gtest/gtest.h>
#include <tests/EditTestSupport.h>

#include <QSettings>
#include <QSignalSpy>
#include <QTest>

namespace {

using Form = KWDocument::Form;

/// A document whose copies stay with the test.
struct Editing {
    Editing() { document.setAutosaveFolder(folder.path("autosave")); }
    std::shared_ptr<KWChannel> channel(const char* path) {
        const auto places = document.model().channels();
        return KWDocument::placeAt(places, path).channel;
    }
    bool open(const char* sample) { return document.open(samplePath(sample), &error); }

    Folder folder;
    KWEditDocument document;
    QString error;
};

KWData dataOf(const KWEditDocument& document) {
    return document.model().data(Form::binary);
}

} // namespace

TEST(KWEditDocument, ANewOneHasAStageAndIsNotModified) {
    Editing it;
    EXPECT_FALSE(it.document.isModified());
    EXPECT_FALSE(it.document.canUndo());
    EXPECT_EQ(it.document.stage().size, QSize(1280, 720));
    EXPECT_EQ(it.document.filePath(), "");
    EXPECT_FALSE(it.document.save(&it.error));
    EXPECT_EQ(it.error, "the document has no file yet");
}

TEST(KWEditDocument, AnEditOfAKeyThatIsUndoneLeavesTheDocumentAsSaved) {
    Editing it;
    ASSERT_TRUE(it.open("bouncing-ball.kwdoc"));
    std::shared_ptr<KWKeyFramedChannel> channel;
    for (const auto& place : it.document.model().channels())
        if (auto keyFramed = std::dynamic_pointer_cast<KWKeyFramedChannel>(place.channel))
            channel = keyFramed;
    ASSERT_NE(channel, nullptr);
    channel->setValueForKeyframe(3, channel->firstKeyframe());
    QTest::qWait(1);
    EXPECT_TRUE(it.document.isModified());
    it.document.undo();
    QTest::qWait(1);
    EXPECT_FALSE(it.document.isModified());
    it.document.redo();
    QTest::qWait(1);
    EXPECT_TRUE(it.document.isModified());
}

TEST(KWEditDocument, TheElementTellsThatItsChannelsCameWentOrHaveOtherNames) {
    Editing it;
    const auto element = it.document.addElement(QStringLiteral("Lamp"));
    std::vector<std::size_t> counts;
    const auto token = KWNotificationCenter::defaultCenter().addObserver(
        KWElementChannelsDidChangeNotification, element.get(),
        [&](const KWNotification&) { counts.push_back(element->channelArray()->channelCount()); });
    const auto channel = std::make_shared<KWKeyFramedChannel>("x");
    it.document.addChannel(element, channel, QStringLiteral("Position"));
    it.document.undo();
    EXPECT_EQ(element->channelArray()->channelGroupCount(), 0U);
    it.document.redo();
    it.document.renameChannel(channel, QStringLiteral("y"));
    it.document.removeChannel(element, channel);
    it.document.undo();
    EXPECT_EQ(counts, (std::vector<std::size_t>{1, 0, 1, 1, 0, 1}));
}

TEST(KWEditDocument, OpensSavesAndReopensInAllForms) {
    for (const Form form : {Form::binary, Form::xml, Form::sequential}) {
        Editing it;
        ASSERT_TRUE(it.open("wave.kwdoc"));
        const QString path = it.folder.path("doc");
        ASSERT_TRUE(it.document.saveAs(path, form, &it.error)) << it.error.toStdString();
        Editing other;
        ASSERT_TRUE(other.document.open(path, &other.error)) << other.error.toStdString();
        EXPECT_EQ(other.document.form(), form);
        EXPECT_TRUE(dataOf(other.document) == dataOf(it.document));
        EXPECT_EQ(KWEditDocument::formNamed(KWEditDocument::formName(form)), form);
    }
}

TEST(KWEditDocument, IsModifiedUntilItIsUndoneToWhereItWasSaved) {
    Editing it;
    ASSERT_TRUE(it.open("bouncing-ball.kwdoc"));
    ASSERT_TRUE(it.document.saveAs(it.folder.path("ball"), Form::binary, &it.error));
    QSignalSpy changes(&it.document, &KWEditDocument::modifiedChanged);
    const auto x = it.channel("Position/x");
    x->setValueForTime(1, KWTime(0.5F));
    x->setValueForTime(2, KWTime(0.7F));
    EXPECT_TRUE(it.document.isModified());
    it.document.undo();
    EXPECT_TRUE(it.document.isModified());
    ASSERT_TRUE(it.document.save(&it.error));
    EXPECT_FALSE(it.document.isModified());
    it.document.undo();
    EXPECT_TRUE(it.document.isModified());
    it.document.redo();
    EXPECT_FALSE(it.document.isModified());
    it.document.redo();
    EXPECT_TRUE(it.document.isModified());
    it.document.undo();
    it.document.undo();
    x->setValueForTime(3, KWTime(0.5F)); // another way from the first state
    EXPECT_TRUE(it.document.isModified());
    EXPECT_EQ(changes.count(), 7);
}

TEST(KWEditDocument, AnEditThatRegistersNothingModifiesUntilTheNextSave) {
    Editing it;
    ASSERT_TRUE(it.open("bouncing-ball.kwdoc"));
    ASSERT_TRUE(it.document.saveAs(it.folder.path("ball"), Form::binary, &it.error));
    it.channel("Ball/radius")->setValueForTime(0.2F, KWTime(0));
    QTRY_VERIFY(it.document.isModified());
    EXPECT_FALSE(it.document.canUndo());
    ASSERT_TRUE(it.document.save(&it.error));
    EXPECT_FALSE(it.document.isModified());
}

TEST(KWEditDocument, EveryEditIsUndoneAndRedoneUnderItsName) {
    Editing it;
    ASSERT_TRUE(it.open("bouncing-ball.kwdoc"));
    auto& document = it.document;
    std::vector<KWData> states{dataOf(document)};
    const auto ball = std::dynamic_pointer_cast<KWElement>(document.model().elements()[0].object);
    const auto did = [&](const char* name) {
        EXPECT_EQ(document.undoName(), name);
        states.push_back(dataOf(document));
        EXPECT_FALSE(states.back() == states[states.size() - 2]) << name;
    };
    const auto star = document.addSprite("Star", [] {
        KWSpriteContent content;
        content.kind = KWSpriteContent::Kind::shape;
        content.shape = "star";
        return content;
    }());
    did("Add Sprite");
    EXPECT_EQ(star->channelArray()->channelCount(), 5U);
    document.moveElement(star, 0);
    did("Move Element");
    document.renameElement(star, "Sun");
    did("Rename Element");
    EXPECT_EQ(document.model().elements()[0].name, "Sun");
    KWSpriteContent content = KWSpriteContent::of(*star);
    content.color = Qt::yellow;
    document.setContent(star, content);
    did("Change Content");
    KWStage stage = document.stage();
    stage.rate = 50;
    document.setStage(stage);
    did("Change Stage");
    document.addChannel(ball, std::make_shared<KWConstantChannel>("opacity"), "Look");
    did("Add Channel");
    document.removeChannel(ball, it.channel("Shape/squash"));
    did("Remove Channel");
    document.renameChannel(it.channel("Shape/shear"), "lean");
    did("Rename Channel");
    document.removeElement(ball);
    did("Remove Element");

    for (std::size_t k = states.size() - 1; k-- > 0;) {
        document.undo();
        EXPECT_TRUE(dataOf(document) == states[k]) << k;
    }
    EXPECT_FALSE(document.isModified());
    EXPECT_FALSE(document.canUndo());
    for (std::size_t k = 1; k < states.size(); ++k) {
        document.redo();
        EXPECT_TRUE(dataOf(document) == states[k]) << k;
    }
    EXPECT_FALSE(document.canRedo());
}

TEST(KWEditDocument, ADamagedOneIsRefusedWithTheReasonAndTheOpenOneStays) {
    Editing it;
    ASSERT_TRUE(it.open("bouncing-ball.kwdoc"));
    const KWData before = dataOf(it.document);
    QByteArray bytes = contentsOf(samplePath("bouncing-ball.kwdoc"));
    bytes.truncate(bytes.size() / 2);
    writeContents(it.folder.path("cut"), bytes);
    QSignalSpy replaced(&it.document, &KWEditDocument::replaced);
    EXPECT_FALSE(it.document.open(it.folder.path("cut"), &it.error));
    EXPECT_TRUE(it.error.contains("cut")) << it.error.toStdString();
    EXPECT_FALSE(it.document.open(it.folder.path("none"), &it.error));
    EXPECT_TRUE(it.error.contains("No such file")) << it.error.toStdString();
    EXPECT_EQ(replaced.count(), 0);
    EXPECT_EQ(it.document.filePath(), samplePath("bouncing-ball.kwdoc"));
    EXPECT_TRUE(dataOf(it.document) == before);
}

TEST(KWEditDocument, AReadOnlyOneIsNotSavedButCanBeSavedElsewhere) {
    Editing it;
    const QString path = it.folder.path("ball");
    QFile::copy(samplePath("bouncing-ball.kwdoc"), path);
    QFile::setPermissions(path, QFile::ReadOwner);
    ASSERT_TRUE(it.document.open(path, &it.error));
    EXPECT_TRUE(it.document.isReadOnly());
    const QByteArray before = contentsOf(path);
    it.channel("Position/x")->setValueForTime(1, KWTime(0.5F));
    EXPECT_FALSE(it.document.save(&it.error));
    EXPECT_TRUE(it.error.endsWith("the document is read-only"));
    EXPECT_EQ(contentsOf(path), before);
    ASSERT_TRUE(it.document.saveAs(it.folder.path("other"), Form::xml, &it.error));
    EXPECT_FALSE(it.document.isReadOnly());
    EXPECT_FALSE(it.document.isModified());
    ASSERT_TRUE(
        it.document.open(it.folder.path("other"), nullptr, KWEditDocument::Access::readOnly));
    EXPECT_TRUE(it.document.isReadOnly());
}

TEST(KWEditDocument, SavingKeepsThePermissionsAndLeavesNothingBeside) {
    Editing it;
    const QString path = it.folder.path("ball");
    QFile::copy(samplePath("bouncing-ball.kwdoc"), path);
    const auto permissions = QFile::ReadOwner | QFile::WriteOwner | QFile::ReadGroup;
    QFile::setPermissions(path, permissions);
    const auto before = QFileInfo(path).permissions();
    ASSERT_TRUE(it.document.open(path, &it.error));
    it.channel("Position/x")->setValueForTime(1, KWTime(0.5F));
    ASSERT_TRUE(it.document.save(&it.error)) << it.error.toStdString();
    EXPECT_EQ(QFileInfo(path).permissions(), before);
    EXPECT_EQ(it.folder.names(), QStringList{"ball"});
}

TEST(KWEditDocument, AFailedSaveLeavesTheFileAndSaysWhy) {
    Editing it;
    ASSERT_TRUE(it.open("bouncing-ball.kwdoc"));
    it.channel("Position/x")->setValueForTime(1, KWTime(0.5F));
    EXPECT_FALSE(it.document.saveAs(it.folder.path("no/such/folder"), Form::binary, &it.error));
    EXPECT_TRUE(it.error.contains("No such file")) << it.error.toStdString();
    EXPECT_TRUE(it.document.isModified());
    EXPECT_EQ(it.document.filePath(), samplePath("bouncing-ball.kwdoc"));
}

TEST(KWEditDocument, AFileThatAnotherProgramChangedIsReplacedOnlyOnDemand) {
    Editing it;
    ASSERT_TRUE(it.open("bouncing-ball.kwdoc"));
    const QString path = it.folder.path("ball");
    ASSERT_TRUE(it.document.saveAs(path, Form::binary));
    EXPECT_FALSE(it.document.hasFileChanged());
    writeContents(path, "something else");
    EXPECT_TRUE(it.document.hasFileChanged());
    EXPECT_FALSE(it.document.save(&it.error));
    EXPECT_EQ(contentsOf(path), "something else");
    EXPECT_TRUE(it.document.save(&it.error, true));
    EXPECT_TRUE(it.document.save(&it.error));
}

TEST(KWEditDocument, ASnapshotDoesNotSeeLaterEdits) {
    Editing it;
    ASSERT_TRUE(it.open("bouncing-ball.kwdoc"));
    const auto snapshot = it.document.snapshot();
    const KWData before = snapshot->data(Form::binary);
    EXPECT_TRUE(before == dataOf(it.document));
    it.channel("Position/x")->setValueForTime(1, KWTime(0.5F));
    EXPECT_TRUE(snapshot->data(Form::binary) == before);
    EXPECT_FALSE(dataOf(it.document) == before);
}

TEST(KWRecentFiles, AreTheLatestTenEachOnce) {
    Folder folder;
    QSettings settings(folder.path("settings.ini"), QSettings::IniFormat);
    KWRecentFiles recent(settings);
    QSignalSpy changes(&recent, &KWRecentFiles::changed);
    for (int k = 0; k < 12; ++k)
        recent.add(QStringLiteral("/tmp/%1.kwdoc").arg(k));
    EXPECT_EQ(recent.files().size(), 10);
    EXPECT_EQ(recent.files().front(), "/tmp/11.kwdoc");
    recent.add("/tmp/5.kwdoc");
    EXPECT_EQ(recent.files().front(), "/tmp/5.kwdoc");
    EXPECT_EQ(recent.files().size(), 10);
    recent.add("/tmp/5.kwdoc");
    EXPECT_EQ(changes.count(), 13);
    recent.remove("/tmp/5.kwdoc");
    EXPECT_FALSE(recent.files().contains("/tmp/5.kwdoc"));
    EXPECT_EQ(KWRecentFiles(settings).files(), recent.files());
    recent.clear();
    EXPECT_TRUE(recent.files().isEmpty());
}
