#include <gtest/gtest.h>
#include <samples/Samples.h>
#include <tests/CommandRunner.h>

TEST(Samples, TheCommittedFilesAreWhatTheGeneratorWrites) {
    const std::filesystem::path folder = getenv("KWBASE_SAMPLES");
    std::vector<std::string> names;
    for (const SampleDocument& sample : sampleDocuments()) {
        names.push_back(sample.fileName);
        const std::string committed = contentsOf(folder / sample.fileName);
        EXPECT_EQ(committed.size(), sample.data.size()) << sample.fileName;
        EXPECT_TRUE(std::equal(committed.begin(), committed.end(), sample.data.begin(),
                               sample.data.end(),
                               [](char a, std::byte b) { return std::byte(a) == b; }))
            << sample.fileName;
    }
    for (const auto& entry : std::filesystem::directory_iterator(folder))
        if (entry.path().extension() == ".kwdoc") {
            EXPECT_NE(std::count(names.begin(), names.end(), entry.path().filename().string()), 0)
                << entry.path();
        }
}

TEST(Samples, AreSmall) {
    for (const SampleDocument& sample : sampleDocuments())
        EXPECT_LT(sample.data.size(), 200'000U) << sample.fileName;
}

TEST(Samples, TheLightShowHasFortyChannelsInGroups) {
    const auto channels = lightShow().channels();
    EXPECT_EQ(channels.size(), 40U);
    for (const auto& place : channels)
        EXPECT_TRUE(place.group) << place.path;
}

TEST(Samples, TheHeavyOneHasAsManyChannelsAndKeysAsAskedFor) {
    const auto channels = heavyDocument(150, 20).channels();
    EXPECT_EQ(channels.size(), 150U);
    for (const auto& place : channels)
        EXPECT_TRUE(place.channel->dependsOnTime()) << place.path;
}
