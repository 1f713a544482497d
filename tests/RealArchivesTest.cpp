#include <KWFoundation/KWUnarchiver.h>

#include <apps/common/KWStreamValue.h>
#include <tests/CommandRunner.h>

#include <span>

/// Archives from elsewhere, which are not ours to copy: the files of the folder that
/// KWBASE_REAL_ARCHIVES names.
class RealArchives : public CommandTest {
  protected:
    void SetUp() override {
        const char* const name = getenv("KWBASE_REAL_ARCHIVES");
        if (!name || !*name)
            GTEST_SKIP() << "KWBASE_REAL_ARCHIVES names no folder of archives";
        for (const auto& entry : std::filesystem::recursive_directory_iterator(name))
            if (entry.is_regular_file() && entry.path().extension() != ".txt")
                files.push_back(entry.path());
        ASSERT_FALSE(files.empty()) << name;
    }

    std::vector<std::filesystem::path> files;
};

TEST_F(RealArchives, AreAllDumped) {
    for (const std::filesystem::path& file : files) {
        EXPECT_CONTAINS(output({"dump", file.string()}), " archive, ");
        EXPECT_CONTAINS(output({"dump", "--objects", file.string()}), " archive, ");
    }
}

TEST_F(RealArchives, LittleEndianStreamsAreWrittenBackByteForByte) {
    for (const std::filesystem::path& file : files) {
        const std::string text = contentsOf(file);
        const auto bytes = std::as_bytes(std::span(text));
        if (!KWUnarchiver::isArchive(bytes))
            continue;
        KWUnarchiver unarchiver(bytes, {.knowsNoClasses = true}, file.string());
        KWArchiver archiver;
        std::vector<KWArchiveField> values;
        while (!unarchiver.isAtEnd())
            values.push_back(unarchiver.decodeAnything());
        for (const KWArchiveField& value : values)
            EXPECT_TRUE(kwEncodeStreamValue(value, archiver)) << file << " " << value.key;
        const KWData& written = archiver.archiverData();
        if (!unarchiver.isBigEndian()) {
            EXPECT_EQ(std::string(reinterpret_cast<const char*>(written.data()), written.size()),
                      text)
                << file;
        }
    }
}
