#include "KeyFramedTestSupport.h"

#include <gtest/gtest.h>

#include <cstddef>

namespace {

/// The fields of a channel as a keyed archiver stores them, read back from its property list.
struct Stored {
    explicit Stored(const std::shared_ptr<KWKeyFramedChannel>& channel)
        : reader(KWKeyedArchiver::archivedDataWithRootObject(channel)), root(reader.rootObject()) {}

    std::vector<KWPropertyList::Index> elements(std::string_view key) const {
        const auto array = reader.objectField(root, key);
        const auto uids = reader.list().children(reader.field(array, "NS.objects"));
        std::vector<KWPropertyList::Index> all;
        for (const auto uid : uids)
            all.push_back(reader.behind(uid));
        return all;
    }

    ArchiveReader reader;
    KWPropertyList::Index root;
};

/// An archive in which there is nothing.
class EmptyCoder final : public KWCoder {
  public:
    ~EmptyCoder() override = default;
    bool allowsKeyedCoding() const override { return true; }
    bool containsValueForKey(std::string_view) const override { return false; }
    KWArchiveValue decodeObjectForKey(std::string_view) override { return {}; }
    std::int32_t decodeInt32ForKey(std::string_view) override { return 0; }
    bool decodeFloatsForKey(std::vector<float>&, std::string_view) override { return false; }
    bool decodeRealObjectsForKey(std::vector<float>&, const KWRealClass&,
                                 std::string_view) override {
        return false;
    }
    bool decodeRecordsForKey(std::vector<std::byte>&, std::size_t, std::string_view) override {
        return false;
    }
};

KWData storedRecord(const std::shared_ptr<KWKeyFramedChannel>& channel, std::size_t index) {
    const Stored stored(channel);
    const auto node = stored.elements("hermiteValues").at(index);
    const auto& list = stored.reader.list();
    const auto bytes = list.kind(node) == KWPropertyList::Kind::data
                           ? list.dataValue(node)
                           : list.dataValue(stored.reader.field(node, "NS.data"));
    return {bytes.begin(), bytes.end()};
}

} // namespace

TEST(KWKeyFramedChannelArchiving, RecordsAreStoredBigEndian) {
    const auto channel = channelWithKeys({});
    channel->setValueHermiteValueForKeyframe(1, recordWith(0.5f, -2, 1), KWTime(0));
    const KWData bytes = storedRecord(channel, 0);
    ASSERT_EQ(bytes.size(), 36u);
    const unsigned char start[12] = {0x3f, 0, 0, 0, 0xc0, 0, 0, 0, 0x3f, 0x80, 0, 0};
    for (std::size_t k = 0; k < 36; ++k)
        EXPECT_EQ(std::to_integer<int>(bytes[k]), k < 12 ? start[k] : 0) << k;
}

TEST(KWKeyFramedChannelArchiving, OddRecordsAreStoredAsFarAsTheirFirstThreeFloatsGo) {
    const auto channel = channelWithKeys({});
    for (const std::size_t size : {0u, 4u, 6u, 50u}) {
        KWData record(size, std::byte{0x3f});
        channel->setValueHermiteValueForKeyframe(1, record, KWTime(0));
        const KWData bytes = storedRecord(channel, 0);
        ASSERT_EQ(bytes.size(), 36u);
        // In each float the machine's byte order is turned round.
        for (std::size_t k = 0; k < 36; ++k)
            EXPECT_EQ(bytes[k] != std::byte{0}, k < 12 && k / 4 * 4 + 3 - k % 4 < size)
                << size << " " << k;
    }
}

TEST(KWKeyFramedChannelArchiving, TheFieldsStandInTheirOrder) {
    const Stored stored(channelWithKeys({{0, 1}, {1, 2}}));
    EXPECT_EQ(stored.reader.classesOf(stored.root), "KWKeyFramedChannel KWChannel NSObject");
    const std::string keys = stored.reader.keysOf(stored.root);
    const std::string own = "keys values hermiteValues mode repeat";
    ASSERT_GE(keys.size(), own.size());
    EXPECT_EQ(keys.substr(keys.size() - own.size()), own);
    EXPECT_EQ(stored.elements("keys").size(), 2u);
    EXPECT_EQ(stored.elements("values").size(), 2u);
}

TEST(KWKeyFramedChannelArchiving, ARoundTripKeepsKeysValuesModesAndThreeFloatsOfARecord) {
    const auto channel = channelWithKeys({{-1, 5}, {0.1f, 1e-45f}}, KWKeyFrameModeStep, 7);
    const HJHermiteParam param{-0.0f, 0.25f, 3, {1, 2, 3, 4, 5, 6}};
    channel->modifyHermiteParamForKeyframe(&param, KWTime(-1));
    channel->setValueForKeyframe(-0.0f, KWTime(kwInfinity));
    channel->startManipulation();
    for (const auto format : {KWPropertyList::Format::binary, KWPropertyList::Format::xml}) {
        const auto read = archivedAndRead(channel, format);
        ASSERT_TRUE(read);
        EXPECT_TRUE(read->isRegular());
        EXPECT_FALSE(read->isManipulating());
        EXPECT_EQ(read->keyFrameChannelMode(), KWKeyFrameModeStep);
        EXPECT_EQ(read->repeatMode(), 7);
        const HJHermiteParam kept{-0.0f, 0.25f, 3, {}};
        EXPECT_EQ(read->hermiteValueForKeyframe(KWTime(-1)),
                  KWKeyFramedChannel::hermiteDataFrom(&kept));
        channel->modifyHermiteParamForKeyframe(&kept, KWTime(-1));
        EXPECT_EQ(contentsOf(*read), contentsOf(*channel));
        channel->modifyHermiteParamForKeyframe(&param, KWTime(-1));
    }
}

TEST(KWKeyFramedChannelArchiving, ListsOfUnequalLengthCannotBeWritten) {
    const KWData neutral = recordWith(0);
    const auto fails = [](const PlainChannel& lists) {
        return Outcome::of([&] {
                   KWKeyedArchiver::archivedDataWithRootObject(channelFromLists(lists));
                   return 0.0f;
               })
            .exception;
    };
    EXPECT_EQ(fails({{0, 1, 2}, {1, 2}, {neutral, neutral, neutral}}), "Key-value mismatch");
    EXPECT_EQ(fails({{0, 1, 2}, {1, 2, 3}, {neutral, neutral}}), "Key-value mismatch");
    EXPECT_EQ(fails({{0, 1}, {1, 2, 3}, {neutral, neutral}}), "Key-value mismatch");
    EXPECT_EQ(fails({{2, 2, 1}, {1, 2, 3}, {neutral, neutral, neutral}}), "");
}

TEST(KWKeyFramedChannelArchiving, AMismatchIsFoundAfterTheBaseIsWrittenAndBeforeTheRest) {
    const auto channel = channelFromLists({{0, 1}, {1}, {}});
    channel->setName("odd");
    MemoryCoder coder;
    EXPECT_THROW(channel->encodeWithCoder(coder), KWException);
    EXPECT_NE(coder.find("name"), nullptr);
    for (const char* key : {"keys", "values", "hermiteValues", "mode", "repeat"})
        EXPECT_EQ(coder.find(key), nullptr) << key;
}

TEST(KWKeyFramedChannelArchiving, WhatIsAbsentReadsAsEmptyListsAndZeroCodes) {
    EmptyCoder nothing;
    const auto channel = channelWithKeys({{0, 1}, {1, 2}}, KWKeyFrameModeStep, 2);
    ASSERT_TRUE(channel->initWithCoder(nothing));
    EXPECT_EQ(channel->keyframeCount(), 0u);
    EXPECT_EQ(channel->keyFrameChannelMode(), KWKeyFrameModeLinear);
    EXPECT_EQ(channel->repeatMode(), KWRepeatModeNone);
    EXPECT_TRUE(channel->isRegular());
    EXPECT_EQ(channel->valueForTime(KWTime(1)), 0);
}

TEST(KWKeyFramedChannelArchiving, UnsortedKeysRoundTripAsTheyAre) {
    const KWData neutral = recordWith(0);
    const PlainChannel lists{{3, 1, kwNaN, 1}, {1, 2, 3, 4}, {neutral, neutral, neutral, neutral}};
    const auto read = archivedAndRead(channelFromLists(lists));
    ASSERT_TRUE(read);
    EXPECT_FALSE(read->isRegular());
    ASSERT_EQ(read->keyframeCount(), 4u);
    for (std::uint32_t k = 0; k < 4; ++k)
        EXPECT_EQ(bitsOf(read->keyframeAtIndex(k)->time()), bitsOf(lists.keys[k]));
}

TEST(KWKeyFramedChannelArchiving, ACodersListsOfAnyKindAreRegularOnlyInOrder) {
    const KWData neutral = recordWith(0);
    const auto regular = [&](std::vector<float> keys) {
        const std::vector<float> values(keys.size());
        const std::vector<KWData> records(keys.size(), neutral);
        return channelFromLists({std::move(keys), values, records})->isRegular();
    };
    EXPECT_TRUE(regular({}));
    EXPECT_TRUE(regular({1}));
    EXPECT_TRUE(regular({-kwInfinity, 1, kwInfinity}));
    EXPECT_FALSE(regular({kwNaN}));
    EXPECT_FALSE(regular({1, 1}));
    EXPECT_FALSE(regular({-0.0f, 0.0f}));
    EXPECT_FALSE(regular({2, 1}));
    EXPECT_FALSE(regular({1, 2, kwNaN}));
    EXPECT_FALSE(channelFromLists({{}, {1}, {}})->isRegular());
}
