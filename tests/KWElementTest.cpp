#include <KWBase/KWAlgebricChannel.h>
#include <KWBase/KWConstantChannel.h>
#include <KWBase/KWKeyFramedChannel.h>
#include <KWFoundation/KWKeyedArchiver.h>
#include <KWFoundation/KWKeyedUnarchiver.h>
#include <KWFoundation/KWNotificationCenter.h>

#include <apps/common/KWElement.h>
#include <gtest/gtest.h>

#include <stdexcept>
#include <type_traits>
#include <vector>

static_assert(std::is_final_v<KWElement>);

namespace {

std::shared_ptr<KWConstantChannel> constant(const std::string& name, float value = 1) {
    return channelWithNameInitialValueColor<KWConstantChannel>(name, value, 3);
}

/// An element with an undo manager and two channels, one of them in a group.
struct Lamp {
    Lamp() {
        element->setUndoManager(undo);
        level->setUnitType(KWUnitTypeLength);
        element->addChannelToGroupNamed(level);
        element->addChannelToGroupNamed(red, "Colour");
    }
    std::shared_ptr<KWUndoManager> undo = std::make_shared<KWUndoManager>();
    std::shared_ptr<KWElement> element = std::make_shared<KWElement>("Lamp");
    std::shared_ptr<KWChannel> level = constant("level");
    std::shared_ptr<KWChannel> red = constant("red");
};

std::shared_ptr<KWElement> archived(const std::shared_ptr<KWElement>& element) {
    kwRegisterElementClass();
    const KWData data = KWKeyedArchiver::archivedDataWithRootObject(element);
    return std::dynamic_pointer_cast<KWElement>(KWKeyedUnarchiver::unarchiveObjectWithData(data));
}

} // namespace

TEST(KWElement, StartsWithItsNameAndAnEmptyArray) {
    const KWElement element("Lamp");
    EXPECT_EQ(element.name(), "Lamp");
    ASSERT_TRUE(element.channelArray());
    EXPECT_EQ(element.channelArray()->channelCount(), 0U);
}

TEST(KWElement, OwnsTheChannelsItIsGiven) {
    Lamp lamp;
    EXPECT_EQ(lamp.level->owner(), lamp.element.get());
    EXPECT_EQ(lamp.red->owner(), lamp.element.get());
    EXPECT_EQ(lamp.red->channelGroup(), lamp.element->channelArray()->groupWithName("Colour"));
    EXPECT_EQ(lamp.level->channelGroup(), nullptr);
}

TEST(KWElement, AddsToTheGroupThatIsThereAlready) {
    Lamp lamp;
    lamp.element->addChannelToGroupNamed(constant("green"), "Colour");
    EXPECT_EQ(lamp.element->channelArray()->channelGroupCount(), 1U);
    EXPECT_EQ(lamp.element->channelArray()->groupWithName("Colour")->count(), 2U);
}

TEST(KWElement, RefusesANullChannel) {
    KWElement element;
    EXPECT_THROW(element.addChannelToGroupNamed(nullptr), std::invalid_argument);
}

TEST(KWElement, WithoutAnArrayTakesNoChannels) {
    KWElement element;
    element.setChannelArray(nullptr);
    EXPECT_THROW(element.addChannelToGroupNamed(constant("level")), std::logic_error);
    EXPECT_FALSE(element.replaceChannelWith(constant("level"), constant("other")));
}

TEST(KWElement, ANewArrayChangesHands) {
    Lamp lamp;
    auto array = std::make_shared<KWChannelArray>();
    auto channel = constant("other");
    array->addChannel(channel);
    lamp.element->setChannelArray(array);
    EXPECT_EQ(channel->owner(), lamp.element.get());
    EXPECT_EQ(lamp.level->owner(), nullptr);
    EXPECT_EQ(lamp.red->owner(), nullptr);
}

TEST(KWElement, GivesItsChannelsItsUndoManager) {
    Lamp lamp;
    EXPECT_EQ(lamp.red->undoManager(), lamp.undo.get());
    lamp.undo.reset();
    EXPECT_EQ(lamp.red->undoManager(), nullptr);
}

TEST(KWElement, LeavesItsChannelsWithoutAnOwnerWhenItGoes) {
    Lamp lamp;
    lamp.element.reset();
    EXPECT_EQ(lamp.red->owner(), nullptr);
    lamp.red->setValueForTime(2, KWTime(0));
    EXPECT_EQ(lamp.red->valueForTime(KWTime(0)), 2.0F);
}

TEST(KWElement, AReplacedChannelHandsOnOwnerNameColourAndUnit) {
    Lamp lamp;
    auto keyFramed = std::make_shared<KWKeyFramedChannel>("fresh");
    ASSERT_TRUE(lamp.element->replaceChannelWith(lamp.level, keyFramed));
    EXPECT_EQ(lamp.element->channelArray()->channelAtIndexInGroup(0, KWUngroupedChannels),
              keyFramed);
    EXPECT_EQ(keyFramed->owner(), lamp.element.get());
    EXPECT_EQ(keyFramed->name(), "level");
    EXPECT_EQ(keyFramed->channelColorIndex(), 3);
    EXPECT_EQ(keyFramed->unitType(), KWUnitTypeLength);
    EXPECT_EQ(lamp.level->owner(), nullptr);
}

TEST(KWElement, ReplacesInsideAGroupToo) {
    Lamp lamp;
    auto fresh = constant("fresh");
    const auto group = lamp.red->channelGroup();
    ASSERT_TRUE(lamp.element->replaceChannelWith(lamp.red, fresh));
    EXPECT_EQ(group->channels()->front(), fresh);
    EXPECT_EQ(fresh->channelGroup(), group);
    EXPECT_EQ(lamp.red->channelGroup(), nullptr);
}

TEST(KWElement, RefusesToReplaceWhatItMust) {
    Lamp lamp;
    Lamp other;
    EXPECT_FALSE(lamp.element->replaceChannelWith(nullptr, constant("new")));
    EXPECT_FALSE(lamp.element->replaceChannelWith(lamp.level, nullptr));
    EXPECT_FALSE(lamp.element->replaceChannelWith(lamp.level, lamp.level));
    EXPECT_FALSE(lamp.element->replaceChannelWith(lamp.level, other.level)) << "it has an owner";
    EXPECT_FALSE(lamp.element->replaceChannelWith(constant("stranger"), constant("new")));
    EXPECT_FALSE(lamp.element->replaceChannelWith(other.red, constant("new")))
        << "its group is another element's";
    EXPECT_EQ(lamp.level->owner(), lamp.element.get());
    EXPECT_EQ(other.red->owner(), other.element.get());
    EXPECT_FALSE(lamp.undo->canUndo());
}

TEST(KWElement, UndoPutsTheOldChannelBackAndRedoTheNewOne) {
    Lamp lamp;
    auto fresh = constant("fresh", 7);
    ASSERT_TRUE(lamp.element->replaceChannelWith(lamp.red, fresh));
    const auto group = lamp.element->channelArray()->groupWithName("Colour");

    lamp.undo->undo();
    EXPECT_EQ(group->channels()->front(), lamp.red);
    EXPECT_EQ(lamp.red->owner(), lamp.element.get());
    EXPECT_EQ(fresh->owner(), nullptr);
    EXPECT_FALSE(lamp.undo->canUndo());

    lamp.undo->redo();
    EXPECT_EQ(group->channels()->front(), fresh);
    EXPECT_EQ(fresh->owner(), lamp.element.get());
    EXPECT_EQ(lamp.red->owner(), nullptr);
    EXPECT_TRUE(lamp.undo->canUndo());
    EXPECT_FALSE(lamp.undo->canRedo());
}

TEST(KWElement, ReplacedThreeTimesUndoneThreeTimesAndRedoneThreeTimes) {
    Lamp lamp;
    const auto group = lamp.red->channelGroup();
    std::vector<std::shared_ptr<KWChannel>> kinds{lamp.red, std::make_shared<KWKeyFramedChannel>(),
                                                  std::make_shared<KWAlgebricChannel>(),
                                                  std::make_shared<KWConstantChannel>()};
    const auto expectInPlace = [&](std::size_t which) {
        for (std::size_t k = 0; k < kinds.size(); ++k)
            EXPECT_EQ(kinds[k]->owner(), k == which ? lamp.element.get() : nullptr) << k;
        EXPECT_EQ(group->channels()->front(), kinds[which]);
        EXPECT_EQ(kinds[which]->channelGroup(), group);
        EXPECT_EQ(kinds[which]->name(), "red");
        EXPECT_EQ(kinds[which]->channelColorIndex(), 3);
    };
    lamp.red->setChannelColorIndex(3);
    for (std::size_t k = 1; k < kinds.size(); ++k) {
        ASSERT_TRUE(lamp.element->replaceChannelWith(kinds[k - 1], kinds[k]));
        expectInPlace(k);
    }
    for (std::size_t k = kinds.size() - 1; k > 0; --k) {
        lamp.undo->undo();
        expectInPlace(k - 1);
    }
    EXPECT_FALSE(lamp.undo->canUndo());
    for (std::size_t k = 1; k < kinds.size(); ++k) {
        lamp.undo->redo();
        expectInPlace(k);
    }
    EXPECT_FALSE(lamp.undo->canRedo());
}

TEST(KWElement, TellsOfEachChangeOfItsChannels) {
    Lamp lamp;
    int told = 0;
    const auto token = KWNotificationCenter::defaultCenter().addObserver(
        KWElementChannelsDidChangeNotification, lamp.element.get(),
        [&](const KWNotification&) { ++told; });
    auto fresh = constant("fresh");
    lamp.element->replaceChannelWith(lamp.red, fresh);
    EXPECT_EQ(told, 1);
    lamp.undo->undo();
    EXPECT_EQ(told, 2);
    lamp.element->addChannelToGroupNamed(constant("more"));
    EXPECT_EQ(told, 3);
    EXPECT_FALSE(lamp.element->replaceChannelWith(fresh, constant("new")));
    EXPECT_EQ(told, 3);
    lamp.element->setChannelArray(nullptr);
    EXPECT_EQ(told, 4);
}

TEST(KWElement, AReplacementIsDoneAndUndoableWhateverItsObserversThrow) {
    Lamp lamp;
    auto fresh = constant("fresh");
    const auto token = KWNotificationCenter::defaultCenter().addObserver(
        KWElementChannelsDidChangeNotification, lamp.element.get(),
        [&](const KWNotification&) { throw std::runtime_error("unwilling"); });
    EXPECT_THROW(lamp.element->replaceChannelWith(lamp.red, fresh), std::runtime_error);
    EXPECT_EQ(fresh->owner(), lamp.element.get());
    EXPECT_TRUE(lamp.undo->canUndo());
}

TEST(KWElement, WithUndoMustLiveInASharedPointer) {
    auto undo = std::make_shared<KWUndoManager>();
    KWElement element;
    element.setUndoManager(undo);
    auto old = constant("old");
    element.addChannelToGroupNamed(old);
    EXPECT_THROW(element.replaceChannelWith(old, constant("new")), std::logic_error);
    EXPECT_EQ(element.channelArray()->channels()->front(), old);
}

TEST(KWElement, ComesBackFromAnArchiveAsItsChannelsOwner) {
    Lamp lamp;
    const auto read = archived(lamp.element);
    ASSERT_TRUE(read);
    EXPECT_EQ(read->name(), "Lamp");
    ASSERT_TRUE(read->channelArray());
    EXPECT_EQ(read->channelArray()->channelCount(), 2U);
    for (const auto& channel : read->channelArray()->channelEnumerator())
        EXPECT_EQ(channel->owner(), read.get());
}

TEST(KWElement, ComesBackWithoutAnArrayWhenItHadNone) {
    auto element = std::make_shared<KWElement>("bare");
    element->setChannelArray(nullptr);
    const auto read = archived(element);
    ASSERT_TRUE(read);
    EXPECT_EQ(read->name(), "bare");
    EXPECT_EQ(read->channelArray(), nullptr);
}

TEST(KWElement, IsArchivedUnderItsNameWithItsKeysInOrder) {
    auto element = std::make_shared<KWElement>("Lamp");
    KWKeyedArchiver archiver;
    archiver.encodeObjectForKey(element, "root");
    const KWPropertyList list = archiver.finishPropertyList();
    const auto objects = list.children(list.valueForKey(list.root(), "$objects"));
    const auto fields = list.children(objects[1]);
    ASSERT_EQ(fields.size(), 6U);
    EXPECT_EQ(list.stringValue(fields[0]), "name");
    EXPECT_EQ(list.stringValue(fields[1]), "channelArray");
    const auto record = objects[list.uidValue(list.valueForKey(objects[1], "$class"))];
    EXPECT_EQ(list.stringValue(list.valueForKey(record, "$classname")), "KWElement");
    EXPECT_EQ(KWElement::classObject().version(), 1);
}

TEST(KWElement, RegistersTheClassesOnce) {
    kwRegisterElementClass();
    kwRegisterElementClass();
    EXPECT_EQ(KWClassNamed("KWElement"), &KWElement::classObject());
    EXPECT_EQ(KWClassNamed("KWKeyFramedChannel"), &KWKeyFramedChannel::classObject());
}
