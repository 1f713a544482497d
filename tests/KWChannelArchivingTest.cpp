#include "ChannelTestSupport.h"

#include <KWBase/KWChannelArray.h>
#include <KWBase/KWConstantChannel.h>
#include <KWFoundation/KWUnknownObject.h>

#include <gtest/gtest.h>

namespace {

/// A host's document: owns channels and is archived with one.
class Stage final : public KWObject, public KWChannelOwner {
  public:
    ~Stage() override { resign(); }
    static const KWClass& classObject() {
        static constinit const KWClass theClass{"TSTStage", &KWObject::classObject, 0,
                                                KWClass::make<Stage>};
        return theClass;
    }
    const KWClass& isa() const override { return classObject(); }
    void encodeWithCoder(KWCoder& coder) const override {
        coder.encodeObjectForKey(channel, "lead");
    }
    bool initWithCoder(KWCoder& coder) override {
        channel = coder.decodeObjectOfClassForKey<KWChannel>("lead");
        return true;
    }

    std::shared_ptr<KWChannel> channel;
};

} // namespace

TEST(KWChannelArchiving, EncodesItsFieldsWithTheseKeysInThisOrder) {
    const auto channel = std::make_shared<KWChannel>("pan");
    const auto group = std::make_shared<KWChannelGroup>();
    const auto stage = std::make_shared<Stage>();
    channel->setChannelColorIndex(-3);
    channel->setUnitType(KWUnitTypeAngle);
    channel->setChannelGroup(group);
    channel->setOwner(stage.get());
    const auto coder = fieldsOf(*channel);
    EXPECT_EQ(coder->calls(), "name:object colorIndex:int32 channelGroup:conditional "
                              "unitType:int32 owner:conditional");
    EXPECT_EQ(coder->valueForKey("name").string()->text, "pan");
    EXPECT_EQ(*coder->valueForKey("colorIndex").number(), KWNumber(std::int32_t{-3}));
    EXPECT_EQ(coder->valueForKey("channelGroup").object(), group);
    EXPECT_EQ(*coder->valueForKey("unitType").number(), KWNumber(std::int32_t{1}));
    EXPECT_EQ(coder->valueForKey("owner").object(), stage);
}

TEST(KWChannelArchiving, EncodesNoOwnerThatIsNoObjectInASharedPointer) {
    KWChannel channel;
    CountingOwner plain;
    channel.setOwner(&plain);
    EXPECT_TRUE(fieldsOf(channel)->valueForKey("owner").isNil());
    Stage onTheStack;
    channel.setOwner(&onTheStack);
    EXPECT_TRUE(fieldsOf(channel)->valueForKey("owner").isNil());
}

TEST(KWChannelArchiving, DecodesWithTheCacheInvalidAtTimeZero) {
    const auto coder = fieldsOf(KWChannel("pan"));
    KWConstantChannel channel;
    channel.updateForTime(KWTime(9));
    channel.startManipulation();
    ASSERT_TRUE(channel.initWithCoder(*coder));
    EXPECT_FALSE(channel.isValid());
    EXPECT_FALSE(channel.isManipulating());
    EXPECT_EQ(channel.value(), 0);
    EXPECT_EQ(channel.name(), "pan");
}

TEST(KWChannelArchiving, AnArchiveWithoutUnitTypeGivesALength) {
    const auto coder = fieldsOf(KWChannel());
    coder->remove("unitType");
    KWChannel channel;
    channel.initWithCoder(*coder);
    EXPECT_EQ(channel.unitType(), KWUnitTypeLength);
}

TEST(KWChannelArchiving, MissingFieldsReadAsNothing) {
    MemoryCoder empty;
    KWChannel channel("pan");
    channel.setChannelColorIndex(5);
    CountingOwner owner;
    channel.setOwner(&owner);
    ASSERT_TRUE(channel.initWithCoder(empty));
    EXPECT_EQ(channel.name(), "");
    EXPECT_EQ(channel.channelColorIndex(), 0);
    EXPECT_EQ(channel.unitType(), 0);
    EXPECT_EQ(channel.channelGroup(), nullptr);
    EXPECT_EQ(channel.owner(), nullptr);
}

TEST(KWChannelArchiving, FieldsOfTheWrongKindAreErrorsOfTheArchive) {
    for (const char* key : {"name", "channelGroup", "owner"}) {
        const auto coder = fieldsOf(KWChannel());
        coder->replace(key, KWNumber(std::int32_t{4}));
        KWChannel channel;
        EXPECT_THROW(channel.initWithCoder(*coder), KWArchiveError) << key;
    }
}

TEST(KWChannelArchiving, AGroupOfAnotherClassReadsAsNoneAndIsWrittenBack) {
    const auto coder = fieldsOf(KWChannel());
    const auto odd = std::make_shared<KWChannelArray>();
    coder->replace("channelGroup", odd);
    KWChannel channel;
    channel.initWithCoder(*coder);
    EXPECT_EQ(channel.channelGroup(), nullptr);
    EXPECT_EQ(fieldsOf(channel)->valueForKey("channelGroup").object(), odd);
    channel.setChannelGroup(nullptr);
    EXPECT_TRUE(fieldsOf(channel)->valueForKey("channelGroup").isNil());
}

TEST(KWChannelArchiving, AnOwnerThatIsNoneHereIsWrittenBackUnlessAnotherIsSet) {
    const auto coder = fieldsOf(KWChannel());
    auto odd = std::make_shared<KWChannel>();
    coder->replace("owner", odd);
    KWChannel channel;
    channel.initWithCoder(*coder);
    EXPECT_EQ(channel.owner(), nullptr);
    EXPECT_EQ(fieldsOf(channel)->valueForKey("owner").object(), odd);
    channel.setOwner(nullptr);
    EXPECT_TRUE(fieldsOf(channel)->valueForKey("owner").isNil());

    channel.initWithCoder(*coder);
    coder->fields.clear();
    odd.reset();
    EXPECT_TRUE(fieldsOf(channel)->valueForKey("owner").isNil());
}

TEST(KWChannelArchiving, AKeyedArchiveHoldsTheFieldsInTheirWidths) {
    const auto channel = std::make_shared<KWChannel>("pan");
    channel->setChannelColorIndex(3);
    const ArchiveReader archive(KWKeyedArchiver::archivedDataWithRootObject(channel));
    const KWPropertyList& list = archive.list();
    const auto root = archive.rootObject();
    EXPECT_EQ(archive.keysOf(root), "name colorIndex channelGroup unitType owner");
    EXPECT_EQ(archive.classesOf(root), "KWChannel NSObject");
    EXPECT_EQ(list.stringValue(archive.objectField(root, "name")), "pan");
    EXPECT_EQ(list.kind(archive.field(root, "colorIndex")), KWPropertyList::Kind::integer);
    EXPECT_EQ(list.intValue(archive.field(root, "colorIndex")), 3);
    EXPECT_EQ(list.intValue(archive.field(root, "unitType")), 32);
    EXPECT_EQ(list.stringValue(archive.objectField(root, "channelGroup")), "$null");
    EXPECT_EQ(list.stringValue(archive.objectField(root, "owner")), "$null");
}

TEST(KWChannelArchiving, AKeyedRoundTripKeepsWhatIsArchived) {
    const auto channel = std::make_shared<KWChannel>("d\xC3\xA9riv\xC3\xA9"
                                                     "e");
    channel->setChannelColorIndex(-5);
    channel->setUnitType(1234567890);
    channel->updateForTime(KWTime(4));
    for (const auto format : {KWPropertyList::Format::binary, KWPropertyList::Format::xml}) {
        const auto read = archivedAndRead(channel, format);
        ASSERT_NE(read, nullptr);
        EXPECT_EQ(read->name(), channel->name());
        EXPECT_EQ(read->channelColorIndex(), -5);
        EXPECT_EQ(read->unitType(), 1234567890);
        EXPECT_FALSE(read->isValid());
    }
}

TEST(KWChannelArchiving, AnOwnerComesBackWhenItIsInTheArchiveAnyway) {
    const RegisteredClass known(Stage::classObject());
    const auto stage = std::make_shared<Stage>();
    stage->channel = std::make_shared<KWConstantChannel>("pan");
    stage->channel->setOwner(stage.get());
    const auto read = archivedAndRead(stage);
    ASSERT_NE(read, nullptr);
    ASSERT_NE(read->channel, nullptr);
    EXPECT_EQ(read->channel->owner(), read.get());

    const auto alone = archivedAndRead(stage->channel);
    EXPECT_EQ(alone->owner(), nullptr);
}

TEST(KWChannelArchiving, AnOwnerOfAnUnknownClassSurvivesReadingAndWriting) {
    const auto stage = std::make_shared<Stage>();
    stage->channel = std::make_shared<KWConstantChannel>("pan");
    stage->channel->setOwner(stage.get());
    const KWData bytes = KWKeyedArchiver::archivedDataWithRootObject(stage);

    const KWKeyedUnarchiver::Options keep{.keepsUnknownObjects = true};
    const auto unknown = unarchived<KWUnknownObject>(bytes, keep);
    ASSERT_NE(unknown, nullptr);
    ASSERT_NE(unknown->field("lead"), nullptr);
    const auto channel =
        std::dynamic_pointer_cast<KWChannel>(unknown->field("lead")->value.object());
    ASSERT_NE(channel, nullptr);
    EXPECT_EQ(channel->owner(), nullptr);
    const KWData again = KWKeyedArchiver::archivedDataWithRootObject(unknown);
    channel->setOwner(nullptr);
    const KWData without = KWKeyedArchiver::archivedDataWithRootObject(unknown);

    const RegisteredClass known(Stage::classObject());
    const auto read = unarchived<Stage>(again);
    ASSERT_NE(read, nullptr);
    EXPECT_EQ(read->channel->owner(), read.get());
    const auto disowned = unarchived<Stage>(without);
    ASSERT_NE(disowned, nullptr);
    EXPECT_EQ(disowned->channel->owner(), nullptr);
}
