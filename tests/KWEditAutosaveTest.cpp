#include <KWBase/KWKeyFramedChannel.h>

#include <apps/kwedit/KWEditDocument.h>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <tests/EditTestSupport.h>
#include <unistd.h>

#include <QSignalSpy>
#include <QTest>
#include <csignal>

namespace {

using Form = KWDocument::Form;

std::shared_ptr<KWChannel> channelX(KWEditDocument& document) {
    const auto places = document.model().channels();
    return KWDocument::placeAt(places, "Position/x").channel;
}

/// Runs it in another process that is killed when it has written a byte, and a while later; it
/// never comes back.
template <class Function>
void killedInTheMiddle(Function edit, useconds_t later = 0) {
    int ends[2];
    ASSERT_EQ(pipe(ends), 0);
    const pid_t child = fork();
    if (child == 0) {
        edit([&] { [[maybe_unused]] const ssize_t n = write(ends[1], "x", 1); });
        _exit(1);
    }
    close(ends[1]);
    char byte = 0;
    EXPECT_EQ(read(ends[0], &byte, 1), 1);
    close(ends[0]);
    usleep(later);
    kill(child, SIGKILL);
    int status = 0;
    waitpid(child, &status, 0);
    EXPECT_TRUE(WIFSIGNALED(status));
}

} // namespace

TEST(KWEditAutosave, AKillInTheMiddleOfAnEditLeavesTheOriginalAndOneOfferOfTheCopy) {
    Folder folder;
    const QString path = folder.path("ball.kwdoc"), copies = folder.path("copies");
    QFile::copy(samplePath("bouncing-ball.kwdoc"), path);
    QFile::setPermissions(path, QFile::ReadOwner | QFile::WriteOwner);
    const QByteArray original = contentsOf(path);
    killedInTheMiddle([&](auto&& ready) {
        KWEditDocument document;
        document.setAutosaveFolder(copies);
        document.open(path);
        channelX(document)->setValueForTime(7, KWTime(0.25F));
        if (!document.autosave())
            _exit(2);
        document.undoManager()->beginUndoGrouping();
        channelX(document)->setValueForTime(8, KWTime(0.25F));
        ready();
        pause();
    });
    EXPECT_EQ(contentsOf(path), original);

    {
        auto leftovers = KWEditAutosave::leftovers(copies);
        ASSERT_EQ(leftovers.size(), 1);
        EXPECT_EQ(leftovers[0].documentPath, path);
        EXPECT_TRUE(KWEditAutosave::leftovers(copies).isEmpty()) << "it is being offered";
        KWEditDocument document;
        document.setAutosaveFolder(copies);
        QString error;
        ASSERT_TRUE(document.recover(leftovers[0], &error)) << error.toStdString();
        leftovers.clear();
        EXPECT_TRUE(document.isModified());
        EXPECT_EQ(document.filePath(), path);
        EXPECT_EQ(channelX(document)->valueForTime(KWTime(0.25F)), 7.0F);
        EXPECT_EQ(contentsOf(path), original);
        EXPECT_TRUE(KWEditAutosave::leftovers(copies).isEmpty()) << "it is in use";
        ASSERT_TRUE(document.save(&error)) << error.toStdString();
    }
    EXPECT_TRUE(KWEditAutosave::leftovers(copies).isEmpty());
    EXPECT_TRUE(QDir(copies).isEmpty(QDir::Files));
    KWEditDocument again;
    ASSERT_TRUE(again.open(path));
    EXPECT_EQ(channelX(again)->valueForTime(KWTime(0.25F)), 7.0F);
}

TEST(KWEditAutosave, ARecoveredDocumentThatCrashesAgainIsOfferedAgain) {
    Folder folder;
    const QString copies = folder.path("copies");
    killedInTheMiddle([&](auto&& ready) {
        KWEditDocument document;
        document.setAutosaveFolder(copies);
        document.addElement("First");
        document.autosave();
        ready();
        pause();
    });
    killedInTheMiddle([&](auto&& ready) {
        KWEditDocument document;
        document.setAutosaveFolder(copies);
        if (!document.recover(KWEditAutosave::leftovers(copies).at(0)))
            _exit(2);
        ready();
        pause();
    });
    const auto leftovers = KWEditAutosave::leftovers(copies);
    ASSERT_EQ(leftovers.size(), 1);
    EXPECT_EQ(leftovers[0].documentPath, "");
    leftovers[0].file->remove();
    EXPECT_EQ(KWEditAutosave::leftovers(copies).size(), 0);
}

TEST(KWEditAutosave, AKillWhileSavingLeavesTheOldFileOrTheNewOne) {
    Folder folder;
    const QString path = folder.path("ball.kwdoc");
    QFile::copy(samplePath("bouncing-ball.kwdoc"), path);
    QFile::setPermissions(path, QFile::ReadOwner | QFile::WriteOwner);
    for (useconds_t later = 0; later < 20'000; later += 2'500) {
        killedInTheMiddle(
            [&](auto&& ready) {
                KWEditDocument document;
                document.setAutosaveFolder({});
                document.open(path);
                ready();
                for (int k = 0;; ++k) {
                    channelX(document)->setValueForTime(static_cast<float>(k), KWTime(0.25F));
                    document.save();
                }
            },
            later);
        KWEditDocument document;
        document.setAutosaveFolder({});
        QString error;
        ASSERT_TRUE(document.open(path, &error)) << error.toStdString();
        EXPECT_EQ(document.model().channels().size(), 8U);
    }
}

TEST(KWEditAutosave, TheCopyIsMadeInTheBackgroundAndGoesWithTheNeedForIt) {
    Folder folder;
    const QString copies = folder.path("copies");
    KWEditDocument document;
    document.setAutosaveFolder(copies);
    document.setAutosaveDelay(1);
    const auto count = [&] { return QDir(copies).entryList({"*.kwdoc"}, QDir::Files).size(); };
    document.addElement("First");
    QTRY_COMPARE(count(), 1);
    document.undo();
    EXPECT_EQ(count(), 0);
    document.redo();
    QTRY_COMPARE(count(), 1);
    ASSERT_TRUE(document.saveAs(folder.path("doc"), Form::xml));
    EXPECT_EQ(count(), 0);
    document.addElement("Second");
    QTRY_COMPARE(count(), 1);
    document.startNew();
    EXPECT_TRUE(QDir(copies).isEmpty(QDir::Files));
}

TEST(KWEditAutosave, AFolderThatCannotBeMadeIsToldOnce) {
    Folder folder;
    writeContents(folder.path("file"), "x");
    KWEditDocument document;
    document.setAutosaveFolder(folder.path("file/copies"));
    QSignalSpy failures(&document, &KWEditDocument::autosaveFailed);
    document.addElement("First");
    QString error;
    EXPECT_FALSE(document.autosave(&error));
    EXPECT_FALSE(document.autosave(&error));
    EXPECT_TRUE(error.contains("cannot be made")) << error.toStdString();
    EXPECT_EQ(failures.count(), 1);
}
