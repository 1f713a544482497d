#include "ChannelTestSupport.h"

#include <KWBase/KWChannel.h>
#include <KWBase/KWChannelElement.h>
#include <KWBase/KWChannelGroup.h>
#include <KWBase/KWConstantChannel.h>
#include <KWBase/KWDeepCopy.h>
#include <KWBase/KWUnitController.h>
#include <KWFoundation/KWUndoManager.h>

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

static_assert(!std::is_copy_constructible_v<KWChannel>);
static_assert(std::is_base_of_v<KWObject, KWChannel>);

namespace {

/// Twice the time, 100 at nil, and an exception above 1000.
class Ramp final : public KWChannel {
  public:
    using KWChannel::KWChannel;
    ~Ramp() override = default;

    float valueForTime(std::optional<KWTime> time) const override {
        ++evaluations;
        if (!time)
            return 100;
        if (time->time() > 1000)
            throw std::out_of_range("Ramp");
        return 2 * time->time();
    }

    mutable int evaluations = 0;
};

class DefaultUnits {
  public:
    DefaultUnits(std::int32_t length, std::int32_t angle) {
        _units.setDefaultLengthUnit(length);
        _units.setDefaultAngleUnit(angle);
    }
    ~DefaultUnits() {
        _units.setDefaultLengthUnit(KWLengthUnitMeter);
        _units.setDefaultAngleUnit(KWAngleUnitDegree);
    }
    DefaultUnits(const DefaultUnits&) = delete;
    DefaultUnits& operator=(const DefaultUnits&) = delete;

  private:
    KWUnitController& _units = KWUnitController::sharedUnitController();
};

constexpr float notANumber = std::numeric_limits<float>::quiet_NaN();

} // namespace

// --- A new channel.

TEST(KWChannel, IsNewWithoutUnitGroupOwnerOrKeptValue) {
    const KWChannel channel;
    EXPECT_EQ(channel.name(), "no name");
    EXPECT_EQ(channel.channelColorIndex(), 0);
    EXPECT_EQ(channel.unitType(), KWUnitTypeNone);
    EXPECT_EQ(channel.unitType(), 32);
    EXPECT_EQ(channel.channelGroup(), nullptr);
    EXPECT_EQ(channel.owner(), nullptr);
    EXPECT_EQ(channel.undoManager(), nullptr);
    EXPECT_FALSE(channel.isValid());
    EXPECT_FALSE(channel.isManipulating());
    EXPECT_EQ(KWChannel("pan").name(), "pan");
}

TEST(KWChannel, AnswersZeroAtEveryTimeAndHasNoCopy) {
    const KWChannel channel;
    EXPECT_EQ(bitsOf(channel.valueForTime(KWTime(3))), bitsOf(0.0F));
    EXPECT_EQ(bitsOf(channel.valueForTime(std::nullopt)), bitsOf(0.0F));
    EXPECT_EQ(channel.copy(), nullptr);
    EXPECT_TRUE(channel.dependsOnTime());
}

TEST(KWChannel, ClassesCarryTheirRunTimeNamesVersionsAndSuperclasses) {
    EXPECT_EQ(KWChannel::classObject().name(), "KWChannel");
    EXPECT_EQ(KWChannel::classObject().version(), 2);
    EXPECT_EQ(KWChannel::classObject().superclass(), &KWObject::classObject());
    EXPECT_EQ(KWChannelElement::classObject().name(), "KWChannelElement");
    EXPECT_EQ(KWChannelElement::classObject().factory(), nullptr);
    EXPECT_EQ(&KWChannel().isa(), &KWChannel::classObject());
}

TEST(KWChannel, TheClassesOfTheModelAreKnownToArchivesFromTheStart) {
    for (const char* name : {"KWTime", "KWChannel", "KWConstantChannel", "KWKeyFramedChannel",
                             "KWChannelGroup", "KWChannelArray"})
        EXPECT_NE(KWClassNamed(name), nullptr) << name;
    EXPECT_EQ(KWClassNamed("KWChannel"), &KWChannel::classObject());
}

TEST(KWChannel, ColoursGoByIndexAndAreWhiteBeyondTheTable) {
    const KWColor table[] = {KWColor::magentaColor(), KWColor::yellowColor(), KWColor::cyanColor(),
                             KWColor::redColor(),     KWColor::greenColor(),  KWColor::blueColor(),
                             KWColor::blackColor()};
    for (std::int32_t k = 0; k < 7; ++k)
        EXPECT_EQ(KWChannel::defaultChannelColor(k), table[k]) << k;
    for (const std::int32_t k : {7, -1, 255, std::numeric_limits<std::int32_t>::min(),
                                 std::numeric_limits<std::int32_t>::max()})
        EXPECT_EQ(KWChannel::defaultChannelColor(k), KWColor::whiteColor()) << k;
}

TEST(KWChannel, AnswersTheColourOfItsIndex) {
    KWChannel channel;
    channel.setChannelColorIndex(4);
    EXPECT_EQ(channel.channelColor(), KWColor::greenColor());
    channel.setChannelColorIndex(-7);
    EXPECT_EQ(channel.channelColorIndex(), -7);
    EXPECT_EQ(channel.channelColor(), KWColor::whiteColor());
}

TEST(KWChannel, SettersOfNameColourUnitGroupAndOwnerTellNobody) {
    const auto channel = std::make_shared<KWChannel>();
    const auto group = std::make_shared<KWChannelGroup>();
    CountingOwner owner;
    NoticeCounter notices(channel.get());
    ValidObserver observer;
    observer.observe(*channel);
    channel->setOwner(&owner);
    channel->setChannelGroup(group);
    channel->setName("pan");
    channel->setChannelColorIndex(2);
    channel->setUnitType(KWUnitTypeAngle);
    EXPECT_EQ(notices.count, 0);
    EXPECT_EQ(owner.invalidations, 0);
    EXPECT_EQ(observer.seen, "");
}

TEST(KWChannel, KeepsTheManipulationFlagAndNothingElse) {
    const auto channel = std::make_shared<KWChannel>();
    NoticeCounter notices(channel.get());
    channel->startManipulation();
    EXPECT_TRUE(channel->isManipulating());
    channel->startManipulation();
    channel->stopManipulation();
    EXPECT_FALSE(channel->isManipulating());
    EXPECT_EQ(notices.count, 0);
}

// --- The kept value.

TEST(KWChannel, UpdatingTwiceToEqualTimesComputesOnce) {
    Ramp channel;
    channel.updateForTime(KWTime(3));
    EXPECT_TRUE(channel.isValid());
    channel.updateForTime(KWTime(3));
    EXPECT_EQ(channel.evaluations, 1);
    EXPECT_EQ(channel.value(), 6);
    EXPECT_EQ(channel.evaluations, 1);
}

TEST(KWChannel, SettingAValueBetweenUpdatesForcesARecomputation) {
    Ramp channel;
    channel.updateForTime(KWTime(3));
    channel.setValueForTime(1, KWTime(3));
    EXPECT_FALSE(channel.isValid());
    channel.updateForTime(KWTime(3));
    EXPECT_EQ(channel.evaluations, 2);
}

TEST(KWChannel, UpdatingToAnotherTimeRecomputes) {
    Ramp channel;
    channel.updateForTime(KWTime(3));
    channel.updateForTime(KWTime(4));
    EXPECT_EQ(channel.value(), 8);
    EXPECT_EQ(channel.evaluations, 2);
}

TEST(KWChannel, UpdatingFromZeroToMinusZeroComputesNothing) {
    Ramp channel;
    channel.updateForTime(KWTime(0.0F));
    channel.updateForTime(KWTime(-0.0F));
    EXPECT_EQ(channel.evaluations, 1);
}

TEST(KWChannel, ATimeThatIsNoNumberIsRecomputedAtEachUpdate) {
    Ramp channel;
    channel.updateForTime(KWTime(notANumber));
    channel.updateForTime(KWTime(notANumber));
    EXPECT_EQ(channel.evaluations, 2);
    EXPECT_TRUE(std::isnan(channel.value()));
}

TEST(KWChannel, AnInvalidValueIsComputedAtTheLastTimeAndNotKept) {
    Ramp channel;
    channel.updateForTime(KWTime(3));
    channel.invalidate();
    EXPECT_EQ(channel.value(), 6);
    EXPECT_EQ(channel.value(), 6);
    EXPECT_EQ(channel.evaluations, 3);
    EXPECT_FALSE(channel.isValid());
}

TEST(KWChannel, BeforeTheFirstUpdateTheValueIsThatAtNil) {
    const Ramp channel;
    EXPECT_EQ(channel.value(), 100);
}

TEST(KWChannel, ReadingAtATimeNeitherUsesNorFillsTheKeptValue) {
    Ramp channel;
    channel.updateForTime(KWTime(3));
    EXPECT_EQ(channel.valueForTime(KWTime(5)), 10);
    EXPECT_EQ(channel.value(), 6);
    EXPECT_EQ(channel.valueForTime(KWTime(3)), 6);
    EXPECT_EQ(channel.evaluations, 3);
}

TEST(KWChannel, AnUpdateThatRaisesChangesNothing) {
    Ramp channel;
    channel.updateForTime(KWTime(3));
    EXPECT_THROW(channel.updateForTime(KWTime(2000)), std::out_of_range);
    EXPECT_TRUE(channel.isValid());
    EXPECT_EQ(channel.value(), 6);
    EXPECT_THROW(channel.updateForTime(KWTime(2000)), std::out_of_range);
    channel.invalidate();
    EXPECT_EQ(channel.value(), 6);
}

TEST(KWChannel, EverySettingOfValidIsToldAlsoWithoutAChange) {
    Ramp channel;
    ValidObserver observer;
    observer.observe(channel);
    channel.invalidate();
    channel.setValid(true);
    channel.setValid(true);
    channel.invalidate();
    channel.invalidate();
    EXPECT_EQ(observer.seen, "NN NY YY YN NN ");
}

TEST(KWChannel, AnUpdateTellsObserversOfValidOnlyWhenItComputes) {
    Ramp channel;
    ValidObserver observer;
    observer.observe(channel);
    channel.updateForTime(KWTime(1));
    channel.updateForTime(KWTime(1));
    channel.updateForTime(KWTime(2));
    EXPECT_EQ(observer.seen, "NY YY ");
}

// --- Edits and whom they tell.

TEST(KWChannel, AnEditTellsObserversThenTheOwnerThenEverybody) {
    const auto channel = std::make_shared<KWChannel>();
    std::string order;
    ValidObserver observer([&] { order += "valid "; });
    observer.observe(*channel);
    CountingOwner owner([&] { order += "owner "; });
    channel->setOwner(&owner);
    NoticeCounter notices(channel.get(), [&] { order += "notice"; });
    channel->setValueForTime(1, KWTime(0));
    EXPECT_EQ(order, "valid owner notice");
    EXPECT_EQ(notices.count, 1);
    EXPECT_EQ(notices.object, channel.get());
    EXPECT_EQ(owner.invalidations, 1);
}

TEST(KWChannel, AnEditAtNilTellsAsMuchAsAnyOther) {
    const auto channel = std::make_shared<KWChannel>();
    NoticeCounter notices(channel.get());
    channel->setValueForTime(notANumber, std::nullopt);
    EXPECT_EQ(notices.count, 1);
}

TEST(KWChannel, InvalidatingTellsNeitherOwnerNorListeners) {
    const auto channel = std::make_shared<KWChannel>();
    CountingOwner owner;
    channel->setOwner(&owner);
    NoticeCounter notices(channel.get());
    channel->invalidate();
    EXPECT_EQ(owner.invalidations, 0);
    EXPECT_EQ(notices.count, 0);
}

TEST(KWChannel, DidChangePostsOneNotice) {
    const auto channel = std::make_shared<KWChannel>();
    NoticeCounter notices(channel.get());
    NoticeCounter all(nullptr);
    channel->setValid(true);
    channel->didChange();
    EXPECT_EQ(notices.count, 1);
    EXPECT_EQ(all.count, 1);
    EXPECT_TRUE(channel->isValid());
}

TEST(KWChannel, AnOwnerThatAnswersNothingIsAllRight) {
    const auto channel = std::make_shared<KWChannel>();
    SilentOwner owner;
    channel->setOwner(&owner);
    NoticeCounter notices(channel.get());
    channel->setValueForTime(1, KWTime(0));
    EXPECT_EQ(notices.count, 1);
    EXPECT_EQ(channel->undoManager(), nullptr);
    EXPECT_FALSE(owner.replaceChannelWith(channel, std::make_shared<KWChannel>()));
}

TEST(KWChannel, AnOwnerThatVanishesWhileObserversAreToldIsNotCalled) {
    const auto channel = std::make_shared<KWChannel>();
    int calls = 0;
    auto owner = std::make_unique<CountingOwner>([&] { ++calls; });
    channel->setOwner(owner.get());
    ValidObserver observer([&] { owner.reset(); });
    observer.observe(*channel);
    NoticeCounter notices(channel.get());
    channel->setValueForTime(1, KWTime(0));
    EXPECT_EQ(calls, 0);
    EXPECT_EQ(channel->owner(), nullptr);
    EXPECT_EQ(notices.count, 1);
}

TEST(KWChannel, AnOwnerSetWhileObserversAreToldIsTheOneThatIsCalled) {
    const auto channel = std::make_shared<KWChannel>();
    CountingOwner first;
    CountingOwner second;
    channel->setOwner(&first);
    ValidObserver observer([&] { channel->setOwner(&second); });
    observer.observe(*channel);
    channel->setValueForTime(1, KWTime(0));
    EXPECT_EQ(first.invalidations, 0);
    EXPECT_EQ(second.invalidations, 1);
}

TEST(KWChannel, OutlivesAnObserverOfValidThatLetsItGo) {
    auto channel = std::make_shared<KWChannel>();
    const std::weak_ptr<KWChannel> gone = channel;
    CountingOwner owner;
    channel->setOwner(&owner);
    NoticeCounter notices(nullptr);
    ValidObserver observer([&] { channel.reset(); });
    observer.observe(*channel);
    KWChannel* const edited = channel.get();
    edited->setValueForTime(1, KWTime(0));
    EXPECT_EQ(owner.invalidations, 1);
    EXPECT_EQ(notices.count, 1);
    EXPECT_TRUE(gone.expired());
}

TEST(KWChannel, OutlivesAnOwnerThatLetsItGo) {
    auto channel = std::make_shared<KWChannel>();
    const std::weak_ptr<KWChannel> gone = channel;
    CountingOwner owner([&] { channel.reset(); });
    channel->setOwner(&owner);
    NoticeCounter notices(nullptr);
    KWChannel* const edited = channel.get();
    edited->setValueForTime(1, KWTime(0));
    EXPECT_EQ(notices.count, 1);
    EXPECT_TRUE(gone.expired());
}

TEST(KWChannel, OutlivesAListenerThatLetsItGo) {
    auto channel = std::make_shared<KWChannel>();
    const std::weak_ptr<KWChannel> gone = channel;
    NoticeCounter first(nullptr, [&] { channel.reset(); });
    NoticeCounter second(nullptr);
    KWChannel* const edited = channel.get();
    edited->didChange();
    EXPECT_EQ(second.count, 1);
    EXPECT_TRUE(gone.expired());
}

TEST(KWChannel, OneThatThrowsKeepsNoOtherFromBeingTold) {
    const auto channel = std::make_shared<KWConstantChannel>();
    const auto thrower = [](const char* text) {
        return [text] { throw std::runtime_error(text); };
    };
    ValidObserver observer(thrower("valid"));
    observer.observe(*channel);
    CountingOwner owner(thrower("owner"));
    channel->setOwner(&owner);
    NoticeCounter notices(channel.get(), thrower("notice"));
    try {
        channel->setValueForTime(5, KWTime(0));
        FAIL() << "nothing was thrown";
    } catch (const std::runtime_error& error) {
        EXPECT_STREQ(error.what(), "valid");
    }
    EXPECT_EQ(observer.seen, "NN ");
    EXPECT_EQ(owner.invalidations, 1);
    EXPECT_EQ(notices.count, 1);
    EXPECT_EQ(channel->valueForTime(std::nullopt), 5);
}

TEST(KWChannel, OnTheStackTellsAsOnTheHeap) {
    KWChannel channel;
    CountingOwner owner;
    channel.setOwner(&owner);
    NoticeCounter all(nullptr);
    ValidObserver observer;
    observer.observe(channel);
    channel.setValueForTime(1, KWTime(0));
    EXPECT_EQ(owner.invalidations, 1);
    EXPECT_EQ(all.count, 1);
    EXPECT_EQ(all.object, &channel);
    EXPECT_EQ(observer.seen, "NN ");
}

// --- Back pointers.

TEST(KWChannel, OwnersOnTheStackAreOwnersUntilTheyEnd) {
    const auto channel = std::make_shared<KWChannel>();
    {
        CountingOwner owner;
        channel->setOwner(&owner);
        EXPECT_EQ(channel->owner(), &owner);
    }
    EXPECT_EQ(channel->owner(), nullptr);
    channel->setValueForTime(1, KWTime(0));
}

TEST(KWChannel, AnOwnerThatResignedIsNoOwner) {
    class Host final : public KWChannelOwner {
      public:
        ~Host() override = default;
        void leave() { resign(); }
    };
    Host host;
    KWChannel channel;
    channel.setOwner(&host);
    host.leave();
    EXPECT_EQ(channel.owner(), nullptr);
    EXPECT_TRUE(host.link().expired());
}

TEST(KWChannel, ACopiedOwnerOwnsNothingOfTheOthers) {
    KWChannel channel;
    CountingOwner copy;
    {
        CountingOwner owner;
        channel.setOwner(&owner);
        const CountingOwner second(owner);
        copy = owner;
        EXPECT_EQ(channel.owner(), &owner);
        EXPECT_NE(second.link().lock()->owner, &owner);
    }
    EXPECT_EQ(channel.owner(), nullptr);
    EXPECT_EQ(copy.link().lock()->owner, &copy);
}

TEST(KWChannel, SettingNoOwnerEndsTheOwnership) {
    KWChannel channel;
    CountingOwner owner;
    channel.setOwner(&owner);
    channel.setOwner(nullptr);
    EXPECT_EQ(channel.owner(), nullptr);
}

TEST(KWChannel, TheUndoManagerIsTheOwners) {
    KWChannel channel;
    KWUndoManager manager;
    CountingOwner owner;
    channel.setOwner(&owner);
    EXPECT_EQ(channel.undoManager(), nullptr);
    owner.manager = &manager;
    EXPECT_EQ(channel.undoManager(), &manager);
}

TEST(KWChannel, AGroupIsNotKeptAliveAndReadsAsNullOnceGone) {
    const auto channel = std::make_shared<KWChannel>();
    auto group = std::make_shared<KWChannelGroup>();
    channel->setChannelGroup(group);
    EXPECT_EQ(channel->channelGroup(), group);
    EXPECT_EQ(group.use_count(), 1);
    group.reset();
    EXPECT_EQ(channel->channelGroup(), nullptr);
}

// --- Many times at once.

TEST(KWChannel, ABatchIsOneEvaluationATime) {
    const Ramp channel;
    const std::vector<float> times = {3, -1, -0.0F, 1e30F * 0, notANumber};
    std::vector<float> values(times.size());
    channel.valuesForTimes(times, values);
    EXPECT_EQ(channel.evaluations, 5);
    for (std::size_t k = 0; k < times.size(); ++k)
        EXPECT_EQ(bitsOf(values[k]), bitsOf(channel.valueForTime(KWTime(times[k])))) << k;
    channel.valuesForTimes({}, {});
}

TEST(KWChannel, ABatchRefusesSizesThatDiffer) {
    const KWChannel channel;
    const float times[] = {0, 1};
    float values[] = {7, 7, 7};
    EXPECT_THROW(channel.valuesForTimes(times, values), std::invalid_argument);
    EXPECT_THROW(channel.valuesForTimes(times, std::span(values).first(1)), std::invalid_argument);
    EXPECT_EQ(values[0], 7);
}

TEST(KWChannel, ABatchThatRaisesHasFilledInTheValuesBefore) {
    const Ramp channel;
    const float times[] = {1, 2, 2000, 4};
    float values[] = {7, 7, 7, 7};
    EXPECT_THROW(channel.valuesForTimes(times, values), std::out_of_range);
    EXPECT_EQ(std::vector<float>(values, values + 4), (std::vector<float>{2, 4, 7, 7}));
}

// --- Units.

TEST(KWChannel, LengthsAreShownInTheUsersUnit) {
    const DefaultUnits units(KWLengthUnitCentimeter, KWAngleUnitDegree);
    Ramp channel;
    channel.setUnitType(KWUnitTypeLength);
    EXPECT_EQ(channel.valueInUserUnitForTime(KWTime(2)), 400);
    EXPECT_EQ(channel.valueInUserUnitForTime(std::nullopt), 10000);
    channel.updateForTime(KWTime(1));
    EXPECT_EQ(channel.valueInUserUnit(), 200);
    EXPECT_EQ(channel.convertValueToUserUnit(2), 200);
    EXPECT_EQ(channel.convertValueFromUserUnit(200), 2);
}

TEST(KWChannel, AnglesAreShownInTheUsersUnit) {
    const DefaultUnits units(KWLengthUnitMeter, KWAngleUnitDegree);
    Ramp channel;
    channel.setUnitType(KWUnitTypeAngle);
    constexpr auto pi = static_cast<float>(3.141592653589793);
    const KWUnitController& controller = KWUnitController::sharedUnitController();
    EXPECT_EQ(bitsOf(channel.convertValueToUserUnit(pi)),
              bitsOf(controller.convertAngleFromInternalUnit(pi)));
    EXPECT_EQ(channel.convertValueToUserUnit(pi), 180);
    EXPECT_EQ(channel.convertValueFromUserUnit(180), pi);
    EXPECT_EQ(channel.valueInUserUnitForTime(KWTime(pi / 2)), 180);
    channel.updateForTime(KWTime(pi / 2));
    EXPECT_EQ(channel.valueInUserUnit(), 180);
}

TEST(KWChannel, EveryOtherUnitTypeMeansNone) {
    const DefaultUnits units(KWLengthUnitMillimeter, KWAngleUnitGrade);
    Ramp channel;
    for (const std::int32_t type : {32, 2, 31, 33, -1, std::numeric_limits<std::int32_t>::max()}) {
        channel.setUnitType(type);
        EXPECT_EQ(channel.valueInUserUnitForTime(KWTime(2)), 4) << type;
        EXPECT_EQ(channel.valueInUserUnit(), 100) << type;
        EXPECT_EQ(bitsOf(channel.convertValueToUserUnit(-0.0F)), bitsOf(-0.0F)) << type;
        EXPECT_EQ(channel.convertValueFromUserUnit(1.5F), 1.5F) << type;
        EXPECT_EQ(channel.unitType(), type);
    }
}

// --- Made from another.

TEST(KWChannel, IsMadeFromAnotherOfExactlyItsClass) {
    KWChannel channel("pan");
    channel.setChannelColorIndex(3);
    channel.setUnitType(KWUnitTypeAngle);
    CountingOwner owner;
    channel.setOwner(&owner);
    channel.updateForTime(KWTime(1));
    const auto made = KWChannel::initWithChannel<KWChannel>(channel);
    ASSERT_NE(made, nullptr);
    EXPECT_EQ(made->name(), "pan");
    EXPECT_EQ(made->channelColorIndex(), 3);
    EXPECT_EQ(made->unitType(), KWUnitTypeAngle);
    EXPECT_EQ(made->owner(), nullptr);
    EXPECT_FALSE(made->isValid());
}

TEST(KWChannel, IsNotMadeFromASubclassNorASubclassFromIt) {
    EXPECT_EQ(KWChannel::initWithChannel<KWChannel>(Ramp()), nullptr);
    EXPECT_EQ(KWChannel::initWithChannel<Ramp>(KWChannel()), nullptr);
    EXPECT_EQ(KWChannel::initWithChannel<KWChannel>(KWConstantChannel()), nullptr);
}

TEST(KWChannel, DeepCopyingAChannelWithoutCopyIsRefused) {
    const KWChannelList list = {std::make_shared<KWConstantChannel>(), nullptr};
    const KWChannelList copies = hjDeepCopy(list);
    ASSERT_EQ(copies.size(), 2U);
    EXPECT_NE(copies[0], list[0]);
    EXPECT_EQ(copies[1], nullptr);
    EXPECT_THROW(hjDeepCopy(KWChannelList{std::make_shared<KWChannel>()}), std::invalid_argument);
}

TEST(KWChannel, DeepCopyingKeepsTheListsElementClassAndCopiesValues) {
    auto constant = std::make_shared<KWConstantChannel>();
    constant->setValueForTime(5, std::nullopt);
    const std::vector<std::shared_ptr<KWConstantChannel>> copies =
        hjDeepCopy(std::vector<std::shared_ptr<KWConstantChannel>>{constant});
    EXPECT_NE(copies.at(0), constant);
    EXPECT_EQ(copies.at(0)->valueForTime(std::nullopt), 5);
    EXPECT_EQ(hjDeepCopy(std::vector<KWTime>{1, 2}), (std::vector<KWTime>{1, 2}));
}
