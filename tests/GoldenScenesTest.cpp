#include "TestFiles.h"

#include <KWBase/KWChannelArray.h>
#include <KWBase/KWConstantChannel.h>
#include <KWBase/KWUnknownChannel.h>
#include <KWFoundation/KWArchiver.h>
#include <KWFoundation/KWFile.h>
#include <KWFoundation/KWKeyedArchiver.h>
#include <KWFoundation/KWKeyedUnarchiver.h>
#include <KWFoundation/KWUnarchiver.h>

#include <apps/common/KWDocument.h>
#include <gtest/gtest.h>

#include <cstdlib>

// A host's document with channels of the host's own kind, which refer to groups that list them: a
// stored file in each form. KWBASE_WRITE_GOLDEN=1 writes files that are not there yet.

namespace {

/// A host's own kind of channel, and something that it holds.
class Noise final : public KWChannel {
  public:
    using KWChannel::KWChannel;
    ~Noise() override = default;
    const KWClass& isa() const override {
        static constinit const KWClass theClass{"HSTNoise", &KWChannel::classObject, 3, nullptr};
        return theClass;
    }
    void encodeWithCoder(KWCoder& coder) const override {
        KWChannel::encodeWithCoder(coder);
        if (coder.allowsKeyedCoding())
            coder.encodeObjectForKey(relative, "relative");
        else
            coder.encodeObject(relative);
    }
    KWArchiveValue relative;
};

/// A host's document: the channel that is selected, and all channels.
class Scene final : public KWObject, public KWChannelOwner {
  public:
    ~Scene() override { resign(); }
    const KWClass& isa() const override {
        static constinit const KWClass theClass{"HSTScene", &KWObject::classObject, 1, nullptr};
        return theClass;
    }
    void encodeWithCoder(KWCoder& coder) const override {
        if (coder.allowsKeyedCoding()) {
            coder.encodeObjectForKey(selected, "selected");
            coder.encodeObjectForKey(channels, "channelArray");
        } else {
            coder.encodeObject(selected);
            coder.encodeObject(channels);
        }
    }
    std::shared_ptr<Noise> selected;
    std::shared_ptr<KWChannelArray> channels = std::make_shared<KWChannelArray>();
};

/// A plain channel, and a group of two of the host's, of which the second is selected.
std::shared_ptr<Scene> scene() {
    auto scene = std::make_shared<Scene>();
    scene->channels->addChannel(channelWithNameInitialValueColor<KWConstantChannel>("plain", 2, 1));
    scene->channels->addGroupWithName("Noises");
    scene->selected = std::make_shared<Noise>("white");
    scene->channels->addChannelToGroup(std::make_shared<Noise>("brown"), 0);
    scene->channels->addChannelToGroup(scene->selected, 0);
    scene->channels->setChannelsOwner(scene.get());
    return scene;
}

using Form = KWDocument::Form;

struct Golden {
    const char* name;
    Form form;
};
constexpr Golden files[] = {{"scene-keyed-binary.kwdoc", Form::binary},
                            {"scene-keyed-xml.kwdoc", Form::xml},
                            {"scene.archive", Form::sequential}};

std::filesystem::path path(const Golden& golden) {
    return std::filesystem::path(std::getenv("KWBASE_TEST_DATA")) / "golden" / golden.name;
}

KWData written(const KWArchiveValue& root, Form form) {
    if (form == Form::sequential)
        return KWArchiver::archivedDataWithRootObject(root);
    return KWKeyedArchiver::archivedDataWithRootObject(
        root, form == Form::xml ? KWPropertyList::Format::xml : KWPropertyList::Format::binary);
}

KWArchiveValue read(const KWData& bytes) {
    constexpr KWUnarchivingOptions keeping{.keepsUnknownObjects = true};
    return KWUnarchiver::isArchive(bytes)
               ? KWUnarchiver::unarchiveValueWithData(bytes, keeping)
               : KWKeyedUnarchiver::unarchiveValueWithData(bytes, keeping);
}

/// What an object of an unknown class refers to, by the key or by the place of the call.
KWArchiveValue fieldOf(const std::shared_ptr<KWObject>& object, const char* key,
                       std::size_t place) {
    const KWUnknownObject* const contents = object->unknownContents();
    return contents->isSequential() ? contents->fields().at(place).items.at(0).value
                                    : contents->field(key)->value;
}

std::shared_ptr<KWUnknownChannel> noise(const KWArchiveValue& value) {
    return std::dynamic_pointer_cast<KWUnknownChannel>(value.object());
}

} // namespace

TEST(GoldenScenes, AreWrittenAsTheyAreStored) {
    for (const Golden& golden : files) {
        // As one writes it who does not know the host's classes, and so no conditional references.
        const KWData bytes = written(read(written(scene(), golden.form)), golden.form);
        if (std::getenv("KWBASE_WRITE_GOLDEN") && !std::filesystem::exists(path(golden)))
            KWWriteFileAtomically(path(golden), bytes);
        EXPECT_TRUE(stringOf(bytes) == contentsOf(path(golden))) << golden.name;
    }
}

TEST(GoldenScenes, ComeBackWholeAndAreLetGo) {
    for (const Golden& golden : files) {
        SCOPED_TRACE(golden.name);
        std::weak_ptr<KWObject> everything[4];
        {
            const auto root = read(dataOf(contentsOf(path(golden)))).object();
            ASSERT_TRUE(root);
            const auto selected = noise(fieldOf(root, "selected", 0));
            const auto array = std::dynamic_pointer_cast<KWChannelArray>(
                fieldOf(root, "channelArray", 1).object());
            ASSERT_TRUE(selected && array);
            ASSERT_EQ(array->channelGroupCount(), 1U);
            const auto group = array->channelGroupAtIndex(0);
            EXPECT_EQ(group->name(), "Noises");
            ASSERT_EQ(group->count(), 2U);
            EXPECT_EQ(group->channels()->at(0)->name(), "brown");
            EXPECT_EQ(group->channels()->at(0)->channelGroup(), group);
            EXPECT_EQ(group->channels()->at(1), selected);
            EXPECT_EQ(selected->name(), "white");
            EXPECT_EQ(selected->channelGroup(), group);
            EXPECT_EQ(fieldOf(selected, "channelGroup", 2).object(), group);
            if (golden.form != Form::sequential) {
                EXPECT_EQ(fieldOf(selected, "owner", 0).object(), root);
            }
            everything[0] = root;
            everything[1] = selected;
            everything[2] = array;
            everything[3] = group;
        }
        for (const auto& each : everything)
            EXPECT_TRUE(each.expired());
    }
}

TEST(GoldenScenes, AreDocumentsOfAllTheirChannels) {
    for (const Golden& golden : files) {
        const KWDocument document = KWDocument::open(path(golden));
        std::string paths;
        for (const KWDocument::Place& place : document.channels())
            paths += place.path + " ";
        EXPECT_EQ(paths, "plain Noises/brown Noises/white ") << golden.name;
    }
}

TEST(GoldenScenes, AreWrittenAgainByteForByte) {
    for (const Golden& golden : files) {
        const std::string stored = contentsOf(path(golden));
        EXPECT_TRUE(stringOf(written(read(dataOf(stored)), golden.form)) == stored) << golden.name;
        EXPECT_TRUE(stringOf(KWDocument::open(path(golden)).data()) == stored) << golden.name;
    }
}

TEST(GoldenScenes, AChannelThatHoldsItsGroupIsLetGo) {
    for (const Form form : {Form::binary, Form::xml, Form::sequential}) {
        const auto scene = ::scene();
        scene->selected->relative = scene->channels->channelGroupAtIndex(0);
        const KWData bytes = written(scene->selected, form);
        scene->selected->relative = nullptr;
        std::weak_ptr<KWObject> watched;
        {
            const auto root = read(bytes);
            watched = root.object();
            ASSERT_TRUE(noise(root));
            EXPECT_EQ(noise(root)->name(), "white");
        }
        EXPECT_TRUE(watched.expired());
    }
}

TEST(GoldenScenes, AnOwnerThatIsFirstMetAsOneKeepsItsChannels) {
    for (const Form form : {Form::binary, Form::xml, Form::sequential}) {
        const auto scene = ::scene();
        const auto plain = scene->channels->channelAtIndexInGroup(0, KWUngroupedChannels);
        const auto root = read(written(KWArchiveValue::mutableArray({plain, scene}), form));
        const auto back = root.array()->elements.at(1).object();
        ASSERT_TRUE(back);
        const auto array =
            std::dynamic_pointer_cast<KWChannelArray>(fieldOf(back, "channelArray", 1).object());
        ASSERT_TRUE(array);
        EXPECT_EQ(array->channelAtIndexInGroup(0, KWUngroupedChannels),
                  root.array()->elements.at(0).object());
    }
}

TEST(GoldenScenes, AnUngroupedChannelInAGroupIsKeptByBothAndLetGo) {
    kwRegisterElementClass();
    std::weak_ptr<KWChannel> watched;
    {
        const auto folder = std::filesystem::path(std::getenv("KWBASE_TEST_DATA")) / "golden";
        const auto root = KWKeyedUnarchiver::unarchiveValueWithFile(
            folder / "unknown-channel-in-two-lists.kwdoc", {.keepsUnknownObjects = true});
        ASSERT_TRUE(root.array());
        const auto element =
            std::dynamic_pointer_cast<KWElement>(root.array()->elements.at(0).object());
        ASSERT_TRUE(element && element->channelArray());
        const KWChannelArray& array = *element->channelArray();
        const auto channel = array.ungroupedChannels()->at(0);
        ASSERT_EQ(array.channelGroupCount(), 2U);
        EXPECT_EQ(array.channelGroupAtIndex(0)->channels()->at(0), channel);
        EXPECT_EQ(array.channelGroupAtIndex(0)->count(), 2U);
        EXPECT_EQ(channel->channelGroup(), array.channelGroupAtIndex(0));
        EXPECT_EQ(channel->owner(), element.get());
        watched = channel;
    }
    EXPECT_TRUE(watched.expired());
}
