#include "PropertyTestObjects.h"
#include "ViewTestSupport.h"

#include <KWDesktop/KWPropertyObserving.h>

#include <gtest/gtest.h>

#include <memory>
#include <random>
#include <stdexcept>

namespace {

using Notes = std::vector<std::string>;

constexpr std::uint32_t both = KWKeyValueObservingOptionNew | KWKeyValueObservingOptionOld;

void observe(QObject& object, KWKeyObserver& observer, std::string_view keyPath,
             std::uint32_t options = KWKeyValueObservingOptionNew, const void* context = nullptr) {
    KWAddObserverForKeyPathOptionsContext(object, observer, keyPath, options, context);
}

} // namespace

TEST(KWPropertyObserving, ValueStandsAtTheEndOfThePath) {
    Player player;
    Player next;
    player.setNext(&next);
    next.setTime(2.5);
    EXPECT_EQ(KWValueForKeyPath(&player, "next.time"), QVariant(2.5));
    EXPECT_EQ(KWValueForKeyPath(&player, "next.self.self.time"), QVariant(2.5));
}

TEST(KWPropertyObserving, ValueIsInvalidWhereThePathLeadsNowhere) {
    Player player;
    for (const char* path : {"", ".", "nothing", "next.time", "nothing.time", "time.time", "time.",
                             ".time", "self..time"})
        EXPECT_FALSE(KWValueForKeyPath(&player, path).isValid()) << path;
    EXPECT_FALSE(KWValueForKeyPath(nullptr, "time").isValid());
    const QVariant null = KWValueForKeyPath(&player, "next");
    EXPECT_TRUE(null.isValid());
    EXPECT_EQ(null.value<QObject*>(), nullptr);
}

TEST(KWPropertyObserving, ValueMayBeADynamicProperty) {
    Player player;
    player.setProperty("mood", 7);
    EXPECT_EQ(KWValueForKeyPath(&player, "self.mood"), QVariant(7));
}

TEST(KWPropertyObserving, EverySettingIsANoticeAlsoOfTheSameValue) {
    Player player;
    PropertyNotes notes;
    observe(player, notes, "time", both);
    player.setTime(1.5);
    player.setTime(1.5);
    player.setTime(2);
    EXPECT_EQ(notes.notes, (Notes{"time 0>1.5", "time 1.5>1.5", "time 1.5>2"}));
}

TEST(KWPropertyObserving, ANoticeHasTheContextAndNoObject) {
    Player player;
    PropertyNotes notes;
    const char marker = 0;
    observe(player, notes, "time", 0, &marker);
    notes.lastObject = reinterpret_cast<KWObject*>(&player);
    player.setTime(1);
    EXPECT_EQ(notes.lastContext, &marker);
    EXPECT_EQ(notes.lastObject, nullptr);
}

TEST(KWPropertyObserving, TheChangeHoldsWhatTheOptionsAskFor) {
    Player player;
    PropertyNotes none;
    PropertyNotes onlyNew;
    PropertyNotes onlyOld;
    observe(player, none, "time", 0);
    observe(player, onlyNew, "time", KWKeyValueObservingOptionNew);
    observe(player, onlyOld, "time", KWKeyValueObservingOptionOld);
    player.setTime(1);
    player.setTime(2);
    EXPECT_EQ(none.notes, (Notes{"time ->-", "time ->-"}));
    EXPECT_EQ(onlyNew.notes, (Notes{"time ->1", "time ->2"}));
    EXPECT_EQ(onlyOld.notes, (Notes{"time 0>-", "time 1>-"}));
}

TEST(KWPropertyObserving, EachLinkOfThePathIsObserved) {
    Player a;
    Player b;
    Player c;
    a.setNext(&b);
    b.setNext(&c);
    PropertyNotes notes;
    observe(a, notes, "next.next.time", both);
    c.setTime(1);
    Player d;
    d.setTime(4);
    b.setNext(&d);
    d.setTime(5);
    Player e;
    a.setNext(&e);
    EXPECT_EQ(notes.notes, (Notes{"next.next.time 0>1", "next.next.time 1>4", "next.next.time 4>5",
                                  "next.next.time 5>?"}));
}

TEST(KWPropertyObserving, AnObjectThatWasReplacedIsObservedNoMore) {
    Player a;
    Player b;
    Player c;
    a.setNext(&b);
    PropertyNotes notes;
    observe(a, notes, "next.time");
    a.setNext(&c);
    b.setTime(9);
    EXPECT_EQ(notes.notes, (Notes{"next.time ->0"}));
}

TEST(KWPropertyObserving, AnObjectSetToTheSameAgainIsObservedOnce) {
    Player a;
    Player b;
    a.setNext(&b);
    PropertyNotes notes;
    observe(a, notes, "next.time");
    a.setNext(&b);
    a.setNext(&b);
    notes.notes.clear();
    b.setTime(9);
    EXPECT_EQ(notes.notes, (Notes{"next.time ->9"}));
}

TEST(KWPropertyObserving, AnObjectThatComesLaterIsObserved) {
    Player a;
    PropertyNotes notes;
    observe(a, notes, "next.next.time");
    Player b;
    a.setNext(&b);
    Player c;
    b.setNext(&c);
    c.setTime(3);
    EXPECT_EQ(notes.notes,
              (Notes{"next.next.time ->?", "next.next.time ->0", "next.next.time ->3"}));
}

TEST(KWPropertyObserving, OneSignalForSeveralLinksIsOneNotice) {
    Player player;
    PropertyNotes notes;
    observe(player, notes, "self.self.first");
    player.first = 2;
    Q_EMIT player.bothChanged();
    EXPECT_EQ(notes.notes, (Notes{"self.self.first ->2"}));
}

TEST(KWPropertyObserving, ALinkWithoutASignalIsReadAndLoggedOnce) {
    Player a;
    Player b;
    Player c;
    a.silentNext = &b;
    PropertyNotes notes;
    LogLines log;
    observe(a, notes, "self.silentNext.time");
    const Notes line{
        "The property \"silentNext\" of Player has no NOTIFY signal: changes of it are "
        "not observed"};
    EXPECT_EQ(log.lines, line);
    b.setTime(1);
    a.silentNext = &c;
    c.setTime(2);
    EXPECT_EQ(notes.notes, (Notes{"self.silentNext.time ->1"}));
    Q_EMIT a.bothChanged();
    c.setTime(3);
    EXPECT_EQ(notes.notes, (Notes{"self.silentNext.time ->1", "self.silentNext.time ->2",
                                  "self.silentNext.time ->3"}));
    EXPECT_EQ(log.lines, line);
}

TEST(KWPropertyObserving, AConstantPropertyIsNotLogged) {
    Player player;
    PropertyNotes notes;
    LogLines log;
    observe(player, notes, "fixed");
    EXPECT_EQ(log.lines, Notes());
}

TEST(KWPropertyObserving, DynamicPropertiesAreObserved) {
    Player player;
    PropertyNotes notes;
    observe(player, notes, "mood", both);
    player.setProperty("other", 1);
    player.setProperty("mood", 1);
    player.setProperty("mood", 2);
    player.setProperty("mood", QVariant());
    EXPECT_EQ(notes.notes, (Notes{"mood ?>1", "mood 1>2", "mood 2>?"}));
}

TEST(KWPropertyObserving, DynamicPropertiesMayStandInTheMiddle) {
    Player a;
    Player b;
    PropertyNotes notes;
    observe(a, notes, "pet.mood");
    a.setProperty("pet", QVariant::fromValue<QObject*>(&b));
    b.setProperty("mood", 1);
    a.setProperty("pet", QVariant());
    b.setProperty("mood", 2);
    EXPECT_EQ(notes.notes, (Notes{"pet.mood ->?", "pet.mood ->1", "pet.mood ->?"}));
}

TEST(KWPropertyObserving, TwoDynamicPropertiesOfOneObjectOnThePathAreBothObserved) {
    Player a;
    a.setProperty("me", QVariant::fromValue<QObject*>(&a));
    PropertyNotes notes;
    observe(a, notes, "me.mood");
    a.setProperty("mood", 1);
    a.setProperty("me", QVariant());
    a.setProperty("mood", 2);
    a.setProperty("me", QVariant::fromValue<QObject*>(&a));
    EXPECT_EQ(notes.notes, (Notes{"me.mood ->1", "me.mood ->?", "me.mood ->2"}));
}

TEST(KWPropertyObserving, RemovingUndoesTheLatestRegistrationOfThePath) {
    Player player;
    PropertyNotes notes;
    const char first = 0;
    const char second = 0;
    observe(player, notes, "time", 0, &first);
    observe(player, notes, "time", 0, &second);
    observe(player, notes, "next", 0, &second);
    KWRemoveObserverForKeyPath(player, notes, "time");
    player.setTime(1);
    EXPECT_EQ(notes.lastContext, &first);
    EXPECT_EQ(notes.notes.size(), 1U);
    KWRemoveObserverForKeyPath(player, notes, "time");
    KWRemoveObserverForKeyPath(player, notes, "time");
    KWRemoveObserverForKeyPath(player, notes, "never");
    player.setTime(2);
    EXPECT_EQ(notes.notes.size(), 1U);
}

TEST(KWPropertyObserving, EveryRegistrationIsTold) {
    Player player;
    PropertyNotes one;
    PropertyNotes other;
    observe(player, one, "time");
    observe(player, one, "time");
    observe(player, other, "time");
    player.setTime(1);
    EXPECT_EQ(one.notes.size(), 2U);
    EXPECT_EQ(other.notes.size(), 1U);
}

TEST(KWPropertyObserving, TheContainerMayGo) {
    PropertyNotes notes;
    Player next;
    {
        Player player;
        player.setNext(&next);
        observe(player, notes, "next.time");
    }
    next.setTime(1);
    EXPECT_EQ(notes.notes, Notes());
}

TEST(KWPropertyObserving, AnObjectInTheMiddleMayGo) {
    Player player;
    PropertyNotes notes;
    auto next = std::make_unique<Player>();
    player.setNext(next.get());
    observe(player, notes, "next.time");
    next.reset();
    EXPECT_EQ(notes.notes, Notes());
    Player other;
    player.setNext(&other);
    other.setTime(2);
    EXPECT_EQ(notes.notes, (Notes{"next.time ->0", "next.time ->2"}));
}

TEST(KWPropertyObserving, WhatStoodBehindAnObjectThatIsGoneIsObservedNoMore) {
    Player player;
    Player last;
    PropertyNotes notes;
    auto next = std::make_unique<Player>();
    player.setNext(next.get());
    next->setNext(&last);
    observe(player, notes, "next.next.time");
    next.reset();
    last.setTime(1);
    EXPECT_EQ(notes.notes, Notes());
}

TEST(KWPropertyObserving, AnObjectWithADynamicPropertyMayGo) {
    PropertyNotes notes;
    auto player = std::make_unique<Player>();
    auto next = std::make_unique<Player>();
    player->setNext(next.get());
    observe(*player, notes, "next.mood");
    next.reset();
    player.reset();
    EXPECT_EQ(notes.notes, Notes());
}

TEST(KWPropertyObserving, TheObserverMayGo) {
    Player player;
    auto notes = std::make_unique<PropertyNotes>();
    observe(player, *notes, "time");
    observe(player, *notes, "mood");
    notes.reset();
    player.setTime(1);
    player.setProperty("mood", 1);
    PropertyNotes later;
    observe(player, later, "time");
    player.setTime(2);
    EXPECT_EQ(later.notes, (Notes{"time ->2"}));
}

TEST(KWPropertyObserving, SettingWithinANoticeIsANotice) {
    Player player;
    PropertyNotes notes([&player] {
        if (player.time() < 3)
            player.setTime(player.time() + 1);
    });
    observe(player, notes, "time", both);
    player.setTime(1);
    EXPECT_EQ(notes.notes, (Notes{"time 0>1", "time 1>2", "time 2>3"}));
}

TEST(KWPropertyObserving, RemovingWithinANoticeIsSafe) {
    Player player;
    PropertyNotes* self = nullptr;
    for (const char* path : {"time", "mood"}) {
        PropertyNotes notes([&] { KWRemoveObserverForKeyPath(player, *self, path); });
        self = &notes;
        observe(player, notes, path);
        player.setProperty(path, 1);
        player.setProperty(path, 2);
        EXPECT_EQ(notes.notes.size(), 1U) << path;
    }
}

TEST(KWPropertyObserving, RemovingWithinANestedNoticeIsSafe) {
    Player player;
    PropertyNotes* self = nullptr;
    PropertyNotes notes([&] {
        if (player.time() < 2)
            player.setTime(2);
        else
            KWRemoveObserverForKeyPath(player, *self, "time");
    });
    self = &notes;
    observe(player, notes, "time");
    player.setTime(1);
    player.setTime(3);
    EXPECT_EQ(notes.notes, (Notes{"time ->1", "time ->2"}));
}

TEST(KWPropertyObserving, RemovingAnotherWithinANoticeIsSafe) {
    Player player;
    PropertyNotes other;
    PropertyNotes notes([&] { KWRemoveObserverForKeyPath(player, other, "time"); });
    observe(player, notes, "time");
    observe(player, other, "time");
    player.setTime(1);
    EXPECT_EQ(notes.notes.size(), 1U);
    EXPECT_EQ(other.notes.size(), 0U);
}

TEST(KWPropertyObserving, AddingWithinANoticeIsSafe) {
    Player player;
    PropertyNotes other;
    PropertyNotes notes([&] { observe(player, other, "time"); });
    observe(player, notes, "time");
    player.setTime(1);
    EXPECT_EQ(other.notes.size(), 0U);
    player.setTime(2);
    EXPECT_EQ(other.notes.size(), 1U);
}

TEST(KWPropertyObserving, TheContainerMayGoWithinANotice) {
    auto player = std::make_unique<Player>();
    PropertyNotes notes([&] { player.reset(); });
    observe(*player, notes, "next.time");
    observe(*player, notes, "next.mood");
    Player next;
    player->setNext(&next);
    EXPECT_EQ(notes.notes, (Notes{"next.time ->0"}));
}

TEST(KWPropertyObserving, TheObserverMayGoWithinANotice) {
    Player player;
    std::unique_ptr<PropertyNotes> notes;
    notes = std::make_unique<PropertyNotes>([&] { const auto gone = std::move(notes); });
    observe(player, *notes, "time");
    player.setTime(1);
    player.setTime(2);
    EXPECT_EQ(notes, nullptr);
}

TEST(KWPropertyObserving, WhatAnObserverThrowsIsLogged) {
    Player player;
    PropertyNotes notes([] { throw std::runtime_error("full"); });
    PropertyNotes after;
    observe(player, notes, "time");
    observe(player, after, "time");
    LogLines log;
    player.setTime(1);
    EXPECT_EQ(log.lines, (Notes{"An observer of the property \"time\" has thrown: full"}));
    EXPECT_EQ(after.notes.size(), 1U);
}

TEST(KWPropertyObserving, AValueMayBeAnyKindOfChannel) {
    Player player;
    const auto curve = std::make_shared<KWKeyFramedChannel>();
    PropertyNotes notes;
    observe(player, notes, "curve");
    player.setCurve(curve);
    EXPECT_EQ(notes.notes.size(), 1U);
    EXPECT_EQ(KWChannelFromVariant(KWValueForKeyPath(&player, "curve")), curve);
}

// Random paths of three objects that are joined, set, destroyed and made anew, against a model that
// knows which of them are on the path.
TEST(KWPropertyObserving, RandomChangesOfThePathAreNoticedOnce) {
    std::mt19937 random(1);
    const auto upTo = [&random](unsigned count) { return random() % count; };
    std::vector<std::unique_ptr<Player>> players(5);
    for (auto& player : players)
        player = std::make_unique<Player>();
    PropertyNotes notes;
    observe(*players[0], notes, "next.next.time");
    for (int step = 0; step < 3000; ++step) {
        Player* const first = players[0].get();
        Player* const second = static_cast<Player*>(first->next());
        Player* const third = second ? static_cast<Player*>(second->next()) : nullptr;
        Player& one = *players[upTo(5)];
        notes.notes.clear();
        std::size_t expected = 0;
        switch (upTo(3)) {
        case 0:
            expected = &one == third;
            one.setTime(step);
            break;
        case 1:
            expected = &one == first || &one == second;
            one.setNext(upTo(4) ? players[upTo(5)].get() : nullptr);
            break;
        default:
            if (&one != first)
                players[static_cast<std::size_t>(
                    std::find_if(players.begin(), players.end(),
                                 [&](const auto& player) { return player.get() == &one; }) -
                    players.begin())] = std::make_unique<Player>();
            break;
        }
        ASSERT_EQ(notes.notes.size(), expected) << step;
        if (expected == 1) {
            const QVariant now = KWValueForKeyPath(first, "next.next.time");
            ASSERT_EQ(notes.notes[0],
                      "next.next.time ->" +
                          (now.isValid() ? now.toString() : QStringLiteral("?")).toStdString());
        }
    }
}
