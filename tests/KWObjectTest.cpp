#include <KWFoundation/KWObject.h>

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <new>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

namespace {

class Dial : public KWObject {
  public:
    void setLevel(int level) {
        const int old = _level;
        _level = level;
        if (isObserved())
            didChangeValueForKey("level", old, level);
    }
    void touch(std::string_view key) { didChangeValueForKey(key, {}, {}); }
    using KWObject::isObserved;

  private:
    int _level = 0;
};

struct Notice {
    std::string keyPath;
    KWObject* object;
    std::optional<int> newValue;
    std::optional<int> oldValue;
    const void* context;
};

class Watcher final : public KWKeyObserver {
  public:
    void observeValueForKeyPathOfObjectChangeContext(std::string_view keyPath, KWObject* object,
                                                     const KWKeyValueChange& change,
                                                     const void* context) override {
        const auto valueOf = [](const std::any& value) {
            return value.has_value() ? std::optional(std::any_cast<int>(value)) : std::nullopt;
        };
        notices.push_back({std::string(keyPath), object, valueOf(change.newValue),
                           valueOf(change.oldValue), context});
        if (reaction)
            reaction();
    }

    std::vector<Notice> notices;
    std::function<void()> reaction;
};

void watch(Dial& dial, Watcher& watcher) {
    dial.addObserverForKeyPathOptionsContext(watcher, "level", 0, nullptr);
}

} // namespace

TEST(KWObject, IsOfTheRootClass) {
    const KWObject object;
    EXPECT_EQ(&object.isa(), &KWObject::classObject());
    EXPECT_EQ(object.unknownContents(), nullptr);
}

TEST(KWObjectObserving, TellsEachTimeThePropertyIsSet) {
    Dial dial;
    Watcher watcher;
    watch(dial, watcher);
    dial.setLevel(5);
    dial.setLevel(6);
    ASSERT_EQ(watcher.notices.size(), 2u);
    EXPECT_EQ(watcher.notices[0].keyPath, "level");
    EXPECT_EQ(watcher.notices[0].object, &dial);
}

TEST(KWObjectObserving, TellsAlsoWhenTheValueIsTheSame) {
    Dial dial;
    Watcher watcher;
    watch(dial, watcher);
    dial.setLevel(5);
    dial.setLevel(5);
    EXPECT_EQ(watcher.notices.size(), 2u);
}

TEST(KWObjectObserving, HandsOverTheValuesThatWereAskedFor) {
    Dial dial;
    dial.setLevel(1);
    for (std::uint32_t options = 0; options < 4; ++options) {
        Watcher watcher;
        dial.addObserverForKeyPathOptionsContext(watcher, "level", options, &watcher);
        dial.setLevel(2);
        ASSERT_EQ(watcher.notices.size(), 1u);
        const Notice& notice = watcher.notices[0];
        const bool wantsNew = (options & KWKeyValueObservingOptionNew) != 0;
        const bool wantsOld = (options & KWKeyValueObservingOptionOld) != 0;
        EXPECT_EQ(notice.newValue, wantsNew ? std::optional(2) : std::nullopt);
        EXPECT_EQ(notice.oldValue, wantsOld ? std::optional(1) : std::nullopt);
        EXPECT_EQ(notice.context, &watcher);
        dial.removeObserverForKeyPath(watcher, "level");
        dial.setLevel(1);
    }
}

TEST(KWObjectObserving, TellsOfTheKeyPathOfTheRegistrationOnly) {
    Dial dial;
    Watcher watcher;
    dial.addObserverForKeyPathOptionsContext(watcher, "colour", 0, nullptr);
    dial.setLevel(5);
    EXPECT_TRUE(watcher.notices.empty());
    dial.touch("colour");
    EXPECT_EQ(watcher.notices.size(), 1u);
    dial.touch("colou");
    EXPECT_EQ(watcher.notices.size(), 1u);
}

TEST(KWObjectObserving, TellsInOrderOfRegistration) {
    Dial dial;
    std::string order;
    Watcher a, b, c;
    a.reaction = [&] { order += 'a'; };
    b.reaction = [&] { order += 'b'; };
    c.reaction = [&] { order += 'c'; };
    watch(dial, c);
    watch(dial, a);
    watch(dial, b);
    watch(dial, a);
    dial.setLevel(1);
    EXPECT_EQ(order, "caba");
}

TEST(KWObjectObserving, RemovesTheLatestRegistration) {
    Dial dial;
    Watcher watcher;
    int first = 0, second = 0;
    dial.addObserverForKeyPathOptionsContext(watcher, "level", 0, &first);
    dial.addObserverForKeyPathOptionsContext(watcher, "level", 0, &second);
    dial.removeObserverForKeyPath(watcher, "level");
    dial.setLevel(1);
    ASSERT_EQ(watcher.notices.size(), 1u);
    EXPECT_EQ(watcher.notices[0].context, &first);
    dial.removeObserverForKeyPath(watcher, "level");
    dial.setLevel(2);
    EXPECT_EQ(watcher.notices.size(), 1u);
}

TEST(KWObjectObserving, RemovingWhatIsNotRegisteredDoesNothing) {
    Dial dial;
    Watcher watcher, other;
    dial.removeObserverForKeyPath(watcher, "level");
    watch(dial, watcher);
    dial.removeObserverForKeyPath(watcher, "colour");
    dial.removeObserverForKeyPath(other, "level");
    dial.setLevel(1);
    EXPECT_EQ(watcher.notices.size(), 1u);
}

TEST(KWObjectObserving, IsFreeAgainWhenTheLastObserverIsRemoved) {
    Dial dial;
    EXPECT_FALSE(dial.isObserved());
    Watcher watcher;
    watch(dial, watcher);
    EXPECT_TRUE(dial.isObserved());
    dial.removeObserverForKeyPath(watcher, "level");
    EXPECT_FALSE(dial.isObserved());
}

TEST(KWObjectObserving, ADestroyedObserverIsToldNoMore) {
    Dial dial;
    Watcher other;
    {
        Watcher watcher;
        watch(dial, watcher);
        watch(dial, other);
    }
    dial.setLevel(1);
    EXPECT_EQ(other.notices.size(), 1u);
    dial.removeObserverForKeyPath(other, "level");
    EXPECT_FALSE(dial.isObserved());
}

TEST(KWObjectObserving, OneThatResignedIsToldNoMore) {
    class Leaver final : public KWKeyObserver {
      public:
        void observeValueForKeyPathOfObjectChangeContext(std::string_view, KWObject*,
                                                         const KWKeyValueChange&,
                                                         const void*) override {
            ++told;
        }
        using KWKeyObserver::resign;
        int told = 0;
    };
    Dial dial;
    Leaver leaver;
    Watcher watcher;
    dial.addObserverForKeyPathOptionsContext(leaver, "level", 0, nullptr);
    watcher.reaction = [&] { leaver.resign(); };
    dial.setLevel(1);
    EXPECT_EQ(leaver.told, 1);
    watch(dial, watcher);
    dial.addObserverForKeyPathOptionsContext(leaver, "level", 0, nullptr);
    dial.setLevel(2);
    EXPECT_EQ(leaver.told, 2) << "once before it resigned, in the same notice";
    EXPECT_TRUE(leaver.lifetime().expired());
    dial.addObserverForKeyPathOptionsContext(leaver, "level", 0, nullptr);
    dial.setLevel(3);
    EXPECT_EQ(leaver.told, 2);
    const Leaver copy(leaver);
    EXPECT_FALSE(copy.lifetime().expired());
}

TEST(KWObjectObserving, IsFreeAgainWhenTheLastObserverIsDestroyed) {
    Dial dial;
    {
        Watcher watcher;
        watch(dial, watcher);
    }
    dial.setLevel(1);
    EXPECT_FALSE(dial.isObserved());
}

TEST(KWObjectObserving, ALaterObserverAtTheSameAddressIsNotMistaken) {
    Dial dial;
    alignas(Watcher) unsigned char place[sizeof(Watcher)];
    auto* earlier = new (place) Watcher;
    watch(dial, *earlier);
    earlier->~Watcher();
    auto* later = new (place) Watcher;
    dial.setLevel(1);
    EXPECT_TRUE(later->notices.empty());
    watch(dial, *later);
    dial.removeObserverForKeyPath(*later, "level");
    EXPECT_FALSE(dial.isObserved());
    later->~Watcher();
}

TEST(KWObjectObserving, ACopiedObserverHasNoRegistrations) {
    Dial dial;
    auto original = std::make_unique<Watcher>();
    watch(dial, *original);
    Watcher copy(*original);
    dial.setLevel(1);
    EXPECT_EQ(original->notices.size(), 1u);
    EXPECT_TRUE(copy.notices.empty());
    EXPECT_FALSE(copy.lifetime().expired());
    const std::weak_ptr<const void> lifetime = original->lifetime();
    original.reset();
    EXPECT_TRUE(lifetime.expired());
    EXPECT_FALSE(copy.lifetime().expired());
}

TEST(KWObjectObserving, OneRemovedMeanwhileIsNotTold) {
    Dial dial;
    Watcher first, second;
    first.reaction = [&] { dial.removeObserverForKeyPath(second, "level"); };
    watch(dial, first);
    watch(dial, second);
    dial.setLevel(1);
    EXPECT_TRUE(second.notices.empty());
    EXPECT_EQ(first.notices.size(), 1u);
}

TEST(KWObjectObserving, OneDestroyedMeanwhileIsNotTold) {
    Dial dial;
    Watcher first;
    auto second = std::make_unique<Watcher>();
    first.reaction = [&] { second.reset(); };
    watch(dial, first);
    watch(dial, *second);
    dial.setLevel(1);
    dial.setLevel(2);
    EXPECT_EQ(first.notices.size(), 2u);
}

TEST(KWObjectObserving, OneThatRemovesItselfIsToldNoMore) {
    Dial dial;
    Watcher first, second;
    first.reaction = [&] { dial.removeObserverForKeyPath(first, "level"); };
    watch(dial, first);
    watch(dial, second);
    dial.setLevel(1);
    dial.setLevel(2);
    EXPECT_EQ(first.notices.size(), 1u);
    EXPECT_EQ(second.notices.size(), 2u);
}

TEST(KWObjectObserving, OneAddedMeanwhileIsNotToldYet) {
    Dial dial;
    Watcher first;
    std::vector<std::unique_ptr<Watcher>> added;
    first.reaction = [&] {
        for (int i = 0; i < 50; ++i)
            watch(dial, *added.emplace_back(std::make_unique<Watcher>()));
        first.reaction = nullptr;
    };
    watch(dial, first);
    dial.setLevel(1);
    EXPECT_TRUE(added[0]->notices.empty());
    dial.setLevel(2);
    for (const auto& watcher : added)
        EXPECT_EQ(watcher->notices.size(), 1u);
}

TEST(KWObjectObserving, ANestedChangeIsToldAtOnce) {
    Dial dial;
    std::string order;
    Watcher first, second;
    first.reaction = [&] {
        order += '1';
        if (order.size() == 1)
            dial.setLevel(2);
    };
    second.reaction = [&] { order += '2'; };
    watch(dial, first);
    watch(dial, second);
    dial.setLevel(1);
    EXPECT_EQ(order, "1122");
}

TEST(KWObjectObserving, AThrowingObserverDoesNotKeepTheOthersFromBeingTold) {
    Dial dial;
    Watcher first, second, third;
    first.reaction = [] { throw std::runtime_error("first"); };
    second.reaction = [] { throw std::runtime_error("second"); };
    watch(dial, first);
    watch(dial, second);
    watch(dial, third);
    try {
        dial.setLevel(1);
        FAIL() << "nothing was thrown";
    } catch (const std::runtime_error& error) {
        EXPECT_STREQ(error.what(), "first");
    }
    EXPECT_EQ(second.notices.size(), 1u);
    EXPECT_EQ(third.notices.size(), 1u);
}

TEST(KWObjectObserving, ADestroyedObjectTellsNobodyAnyMore) {
    auto dial = std::make_unique<Dial>();
    Watcher first, second;
    first.reaction = [&] { dial.reset(); };
    watch(*dial, first);
    watch(*dial, second);
    dial->touch("level");
    EXPECT_EQ(first.notices.size(), 1u);
    EXPECT_TRUE(second.notices.empty());
}

TEST(KWObjectObserving, AnObjectMayBeDestroyedByANestedNotice) {
    auto dial = std::make_unique<Dial>();
    Watcher first, second;
    first.reaction = [&] {
        if (first.notices.size() == 1)
            dial->touch("level");
        else
            dial.reset();
    };
    watch(*dial, first);
    watch(*dial, second);
    dial->touch("level");
    EXPECT_EQ(first.notices.size(), 2u);
    EXPECT_TRUE(second.notices.empty());
}

TEST(KWObjectObserving, AnObserverMayOutliveTheObject) {
    Watcher watcher;
    {
        Dial dial;
        watch(dial, watcher);
    }
    Dial other;
    watch(other, watcher);
    other.setLevel(1);
    EXPECT_EQ(watcher.notices.size(), 1u);
}

TEST(KWObjectObserving, ManyPassingObserversLeaveNothingBehind) {
    Dial dial;
    Watcher lasting;
    watch(dial, lasting);
    for (int i = 0; i < 20000; ++i) {
        Watcher passing;
        watch(dial, passing);
    }
    dial.setLevel(1);
    EXPECT_EQ(lasting.notices.size(), 1u);
}
