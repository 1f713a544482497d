#include "TestFiles.h"

#include <KWFoundation/KWArchiveError.h>
#include <KWFoundation/KWFile.h>

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <thread>

namespace {

std::string readBack(const std::filesystem::path& path) {
    const KWFileContents contents = KWFileContents::read(path);
    const auto bytes = contents.bytes();
    return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
}

} // namespace

TEST(KWFile, ReadsWhatWasWritten) {
    const TemporaryFolder folder;
    const auto path = folder.path() / "file";
    for (const std::string& text : {""s, "abc"s, std::string(300000, 'x')}) {
        KWWriteFileAtomically(path, dataOf(text));
        EXPECT_EQ(readBack(path), text);
    }
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(folder.path()), {}), 1);
}

TEST(KWFile, ReadsFromAPipe) {
    const TemporaryFolder folder;
    const auto path = folder.path() / "pipe";
    ASSERT_EQ(mkfifo(path.c_str(), 0600), 0);
    const std::string text(200000, 'y');
    std::thread writer([&] { writeFile(path, text); });
    EXPECT_EQ(readBack(path), text);
    writer.join();
}

TEST(KWFile, WhatCannotBeReadIsAnErrorWithTheSystemsReason) {
    const TemporaryFolder folder;
    try {
        KWFileContents::read(folder.path());
        FAIL();
    } catch (const KWArchiveError& error) {
        EXPECT_EQ(error.kind(), KWArchiveError::Kind::cannotRead);
        EXPECT_EQ(error.what(), folder.path().string() + ": Is a directory");
    }
}

TEST(KWFile, AFileThatWasNotCommittedLeavesTheOldOne) {
    const TemporaryFolder folder;
    const auto path = folder.path() / "file";
    writeFile(path, "old");
    {
        KWAtomicFile file(path);
        file.write(dataOf("new"));
    }
    EXPECT_EQ(contentsOf(path), "old");
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(folder.path()), {}), 1);
}

TEST(KWFile, KeepsThePermissionsAndFollowsALink) {
    const TemporaryFolder folder;
    const auto path = folder.path() / "file";
    const auto link = folder.path() / "link";
    writeFile(path, "old");
    chmod(path.c_str(), 0640);
    std::filesystem::create_symlink("file", link);
    KWWriteFileAtomically(link, dataOf("new"));
    EXPECT_TRUE(std::filesystem::is_symlink(link));
    EXPECT_EQ(contentsOf(path), "new");
    struct stat status {};
    stat(path.c_str(), &status);
    EXPECT_EQ(status.st_mode & 0777, 0640u);
}

TEST(KWFile, WritesThroughADeviceWithoutReplacingIt) {
    KWWriteFileAtomically("/dev/null", dataOf("gone"));
    EXPECT_TRUE(std::filesystem::is_character_file("/dev/null"));
}

TEST(KWFile, AFolderThatIsNotThereIsAnErrorOfWriting) {
    const TemporaryFolder folder;
    try {
        KWWriteFileAtomically(folder.path() / "no" / "file", dataOf("x"));
        FAIL();
    } catch (const KWArchiveError& error) {
        EXPECT_EQ(error.kind(), KWArchiveError::Kind::cannotWrite);
    }
    EXPECT_THROW(KWWriteFileAtomically("/dev/full", dataOf("x")), KWArchiveError);
}
