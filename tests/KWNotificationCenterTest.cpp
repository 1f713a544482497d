#include <KWFoundation/KWNotificationCenter.h>
#include <KWFoundation/KWObject.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <new>
#include <optional>
#include <random>
#include <stdexcept>
#include <string>
#include <type_traits>
#include <vector>

static_assert(!std::is_copy_constructible_v<KWNotificationToken>);
static_assert(std::is_nothrow_move_constructible_v<KWNotificationToken>);
static_assert(std::is_nothrow_move_assignable_v<KWNotificationToken>);

namespace {

/// A centre and what its observers wrote down.
class KWNotificationCenterTest : public testing::Test {
  public:
    KWNotificationToken note(char letter, const KWObject* object = nullptr) {
        return center->addObserver("changed", object,
                                   [this, letter](const KWNotification&) { order += letter; });
    }
    void post(KWObject* object = nullptr) { center->postNotificationNameObject("changed", object); }

    std::unique_ptr<KWNotificationCenter> center = std::make_unique<KWNotificationCenter>();
    std::string order;
};

} // namespace

TEST_F(KWNotificationCenterTest, APostWithoutObserversDoesNothing) {
    post();
    EXPECT_EQ(order, "");
}

TEST_F(KWNotificationCenterTest, AnObserverIsToldNameAndObject) {
    const auto object = std::make_shared<KWObject>();
    int calls = 0;
    const auto token =
        center->addObserver("changed", nullptr, [&](const KWNotification& notification) {
            EXPECT_EQ(notification.name(), "changed");
            EXPECT_EQ(notification.object(), object.get());
            ++calls;
        });
    post(object.get());
    EXPECT_EQ(calls, 1);
}

TEST_F(KWNotificationCenterTest, OnlyObserversOfTheNameAreCalled) {
    const auto token = note('a');
    center->postNotificationNameObject("change", nullptr);
    center->postNotificationNameObject("changed ", nullptr);
    center->postNotificationNameObject("", nullptr);
    EXPECT_EQ(order, "");
    post();
    EXPECT_EQ(order, "a");
}

TEST_F(KWNotificationCenterTest, ObserversAreCalledInOrderOfConnection) {
    const auto c = note('c');
    const auto a = note('a');
    const auto b = note('b');
    post();
    EXPECT_EQ(order, "cab");
}

TEST_F(KWNotificationCenterTest, ObserversOfAnObjectAndOfAnybodyKeepTheOrderOfConnection) {
    const auto object = std::make_shared<KWObject>();
    const auto other = std::make_shared<KWObject>();
    const auto a = note('a', object.get());
    const auto b = note('b');
    const auto c = note('c', other.get());
    const auto d = note('d', object.get());
    const auto e = note('e');
    const auto f = note('f', object.get());
    post(object.get());
    EXPECT_EQ(order, "abdef");
    order.clear();
    post(other.get());
    EXPECT_EQ(order, "bce");
    order.clear();
    post();
    EXPECT_EQ(order, "be");
}

TEST_F(KWNotificationCenterTest, AnObjectThatNobodySharesReachesThoseThatObserveAnybody) {
    const auto a = note('a');
    KWObject object;
    post(&object);
    EXPECT_EQ(order, "a");
    EXPECT_THROW((void)note('b', &object), std::logic_error);
}

TEST_F(KWNotificationCenterTest, AnEmptyFunctionIsRefused) {
    EXPECT_THROW((void)center->addObserver("changed", nullptr, nullptr), std::invalid_argument);
}

TEST_F(KWNotificationCenterTest, ADestroyedTokenEndsTheObservation) {
    { const auto a = note('a'); }
    post();
    EXPECT_EQ(order, "");
}

TEST_F(KWNotificationCenterTest, ADisconnectedTokenEndsTheObservation) {
    auto a = note('a');
    const auto b = note('b');
    a.disconnect();
    a.disconnect();
    post();
    EXPECT_EQ(order, "b");
    KWNotificationToken().disconnect();
}

TEST_F(KWNotificationCenterTest, AMovedTokenHoldsTheObservation) {
    auto a = note('a');
    auto moved = std::move(a);
    a.disconnect();
    post();
    EXPECT_EQ(order, "a");
    moved = note('b');
    post();
    EXPECT_EQ(order, "ab");
    auto& same = moved;
    moved = std::move(same);
    post();
    EXPECT_EQ(order, "abb");
}

TEST_F(KWNotificationCenterTest, DisconnectingDestroysTheFunctionAtOnce) {
    const auto held = std::make_shared<int>(1);
    auto token = center->addObserver("changed", nullptr, [held](const KWNotification&) {});
    const auto a = note('a');
    const auto b = note('b');
    EXPECT_EQ(held.use_count(), 2);
    token.disconnect();
    EXPECT_EQ(held.use_count(), 1);
}

TEST_F(KWNotificationCenterTest, AFunctionThatDisconnectsItselfLivesToItsEnd) {
    KWNotificationToken token;
    const auto text = std::make_shared<std::string>("held");
    token = center->addObserver("changed", nullptr, [&, text](const KWNotification&) {
        token.disconnect();
        order += *text;
    });
    post();
    post();
    EXPECT_EQ(order, "held");
    EXPECT_EQ(text.use_count(), 1);
}

TEST_F(KWNotificationCenterTest, OneDisconnectedMeanwhileIsNotCalled) {
    KWNotificationToken b;
    const auto a =
        center->addObserver("changed", nullptr, [&](const KWNotification&) { b.disconnect(); });
    b = note('b');
    const auto c = note('c');
    post();
    EXPECT_EQ(order, "c");
}

TEST_F(KWNotificationCenterTest, OneDestroyedMeanwhileIsNotCalled) {
    auto b = std::make_unique<KWNotificationToken>();
    const auto a =
        center->addObserver("changed", nullptr, [&](const KWNotification&) { b.reset(); });
    *b = note('b');
    const auto c = note('c');
    post();
    EXPECT_EQ(order, "c");
}

TEST_F(KWNotificationCenterTest, OneAlreadyCalledMayBeDisconnectedMeanwhile) {
    auto a = note('a');
    const auto b =
        center->addObserver("changed", nullptr, [&](const KWNotification&) { a.disconnect(); });
    const auto c = note('c');
    post();
    post();
    EXPECT_EQ(order, "acc");
}

TEST_F(KWNotificationCenterTest, OneConnectedMeanwhileIsNotCalledYet) {
    std::vector<KWNotificationToken> added;
    const auto a = center->addObserver("changed", nullptr, [&](const KWNotification&) {
        for (int i = 0; added.size() < 50; ++i)
            added.push_back(note('n'));
        order += 'a';
    });
    const auto b = note('b');
    post();
    EXPECT_EQ(order, "ab");
    order.clear();
    post();
    EXPECT_EQ(order, "ab" + std::string(50, 'n'));
}

TEST_F(KWNotificationCenterTest, ReplacingATokenWithinAPostWaitsForTheNextOne) {
    KWNotificationToken b;
    const auto a =
        center->addObserver("changed", nullptr, [&](const KWNotification&) { b = note('B'); });
    b = note('b');
    post();
    EXPECT_EQ(order, "");
    KWNotificationToken kept = std::move(b);
    post();
    EXPECT_EQ(order, "B");
}

TEST_F(KWNotificationCenterTest, ANestedPostRunsAtOnce) {
    bool nests = true;
    const auto a = center->addObserver("changed", nullptr, [&](const KWNotification&) {
        order += 'a';
        if (std::exchange(nests, false))
            post();
    });
    const auto b = note('b');
    post();
    EXPECT_EQ(order, "aabb");
}

TEST_F(KWNotificationCenterTest, ANestedPostCallsThoseConnectedInTheOuterOne) {
    KWNotificationToken added;
    const auto a = center->addObserver("changed", nullptr, [&](const KWNotification&) {
        if (order.empty()) {
            order += 'a';
            added = note('n');
            post();
        }
    });
    const auto b = note('b');
    post();
    EXPECT_EQ(order, "abnb");
}

TEST_F(KWNotificationCenterTest, OneDisconnectedInANestedPostIsNotCalledInTheOuterOne) {
    KWNotificationToken b;
    bool nests = true;
    const auto a = center->addObserver("changed", nullptr, [&](const KWNotification&) {
        if (std::exchange(nests, false))
            post();
        else
            b.disconnect();
    });
    b = note('b');
    const auto c = note('c');
    post();
    EXPECT_EQ(order, "cc");
}

TEST_F(KWNotificationCenterTest, AThrowingObserverDoesNotKeepTheOthersFromBeingCalled) {
    const auto thrower = [](const char* text) {
        return [text](const KWNotification&) { throw std::runtime_error(text); };
    };
    const auto a = note('a');
    const auto first = center->addObserver("changed", nullptr, thrower("first"));
    const auto b = note('b');
    const auto second = center->addObserver("changed", nullptr, thrower("second"));
    const auto c = note('c');
    for (int i = 0; i < 2; ++i) {
        order.clear();
        try {
            post();
            FAIL() << "nothing was thrown";
        } catch (const std::runtime_error& error) {
            EXPECT_STREQ(error.what(), "first");
        }
        EXPECT_EQ(order, "abc");
    }
}

TEST_F(KWNotificationCenterTest, ADestroyedObjectEndsItsObservations) {
    auto object = std::make_shared<KWObject>();
    const auto a = note('a', object.get());
    EXPECT_EQ(object.use_count(), 1);
    object.reset();
    post();
    EXPECT_EQ(order, "");
}

TEST_F(KWNotificationCenterTest, ALaterObjectAtTheSameAddressIsNotMistaken) {
    // Objects whose storage is handed from one to the next.
    alignas(KWObject) unsigned char place[sizeof(KWObject)];
    const auto make = [&place] {
        return std::shared_ptr<KWObject>(new (place) KWObject,
                                         [](KWObject* object) { object->~KWObject(); });
    };
    auto object = make();
    const auto a = note('a', object.get());
    object.reset();
    object = make();
    post(object.get());
    EXPECT_EQ(order, "");
    const auto b = note('b', object.get());
    post(object.get());
    EXPECT_EQ(order, "b");
    object.reset();
    auto* unshared = new (place) KWObject;
    post(unshared);
    EXPECT_EQ(order, "b");
    unshared->~KWObject();
}

TEST_F(KWNotificationCenterTest, AnOldTokenDoesNotEndTheObservationOfALaterObject) {
    alignas(KWObject) unsigned char place[sizeof(KWObject)];
    const auto make = [&place] {
        return std::shared_ptr<KWObject>(new (place) KWObject,
                                         [](KWObject* object) { object->~KWObject(); });
    };
    auto object = make();
    auto a = note('a', object.get());
    object.reset();
    object = make();
    const auto b = note('b', object.get());
    a.disconnect();
    post(object.get());
    EXPECT_EQ(order, "b");
}

TEST_F(KWNotificationCenterTest, AnObserverMayDestroyTheObjectThatPosts) {
    auto object = std::make_shared<KWObject>();
    const auto a = center->addObserver("changed", object.get(), [&](const KWNotification&) {
        order += 'a';
        object.reset();
    });
    const std::weak_ptr<KWObject> watched = object;
    const auto look = [&](const KWNotification& notice) {
        ASSERT_FALSE(watched.expired());
        EXPECT_EQ(&notice.object()->isa(), &KWObject::classObject());
        order += 'l';
    };
    const auto b = center->addObserver("changed", nullptr, look);
    const auto c = center->addObserver("changed", object.get(), look);
    post(object.get());
    EXPECT_EQ(order, "all");
    EXPECT_TRUE(watched.expired());
}

TEST_F(KWNotificationCenterTest, AnObjectIsHeldDuringItsPostUnlessItIsBeingDestroyed) {
    const auto object = std::make_shared<KWObject>();
    long count = 0;
    struct Poster : KWObject {
        ~Poster() override { center->postNotificationNameObject("changed", this); }
        KWNotificationCenter* center = nullptr;
    };
    const auto b = center->addObserver("changed", nullptr, [&](const KWNotification& notice) {
        count = notice.object()->weak_from_this().use_count();
        order += 'b';
    });
    {
        const auto poster = std::make_shared<Poster>();
        poster->center = center.get();
    }
    EXPECT_EQ(order, "b") << "an object may post in its destructor";
    EXPECT_EQ(count, 0);
    post(object.get());
    EXPECT_EQ(count, 2);
    EXPECT_EQ(object.use_count(), 1);
}

TEST_F(KWNotificationCenterTest, ATokenMayOutliveTheCentre) {
    const auto held = std::make_shared<int>(1);
    auto a = note('a');
    auto b = center->addObserver("changed", nullptr, [held](const KWNotification&) {});
    center.reset();
    EXPECT_EQ(held.use_count(), 1);
    a.disconnect();
}

TEST_F(KWNotificationCenterTest, TheCentreMayBeDestroyedWithinAPost) {
    const auto object = std::make_shared<KWObject>();
    const auto held = std::make_shared<int>(1);
    auto a = center->addObserver("changed", nullptr, [&, held](const KWNotification&) {
        center.reset();
        order += 'a';
    });
    const auto b = note('b');
    const auto c = note('c', object.get());
    center->postNotificationNameObject("changed", object.get());
    EXPECT_EQ(order, "a");
    EXPECT_EQ(held.use_count(), 1);
}

TEST_F(KWNotificationCenterTest, WhatAFunctionHoldsMayUseTheCentreAsItGoes) {
    struct Poster {
        KWNotificationCenterTest* test;
        KWNotificationToken other;
        ~Poster() {
            other.disconnect();
            test->post();
            const auto passing = test->note('x');
        }
    };
    auto poster = std::make_shared<Poster>(this, note('p'));
    KWNotificationToken token;
    token = center->addObserver(
        "changed", nullptr,
        [&token, poster = std::move(poster)](const KWNotification&) { token.disconnect(); });
    const auto b = note('b');
    post();
    EXPECT_EQ(order, "pbb");
}

TEST_F(KWNotificationCenterTest, ManyPassingObserversAndNamesLeaveTheOrderIntact) {
    std::vector<KWNotificationToken> tokens;
    for (int i = 0; i < 1000; ++i)
        tokens.push_back(note(i % 7 == 0 ? 'k' : '.'));
    for (std::size_t i = 0; i < tokens.size(); ++i)
        if (i % 7 != 0)
            tokens[i].disconnect();
    for (int i = 0; i < 1000; ++i)
        (void)center->addObserver("name " + std::to_string(i), nullptr,
                                  [](const KWNotification&) {});
    post();
    EXPECT_EQ(order, std::string(143, 'k'));
}

TEST_F(KWNotificationCenterTest, ObserversOfPassingObjectsLeaveNothingBehind) {
    const auto lasting = std::make_shared<KWObject>();
    const auto a = note('a', lasting.get());
    std::vector<KWNotificationToken> tokens;
    for (int i = 0; i < 5000; ++i) {
        const auto object = std::make_shared<KWObject>();
        tokens.push_back(note('p', object.get()));
        if (i % 2)
            tokens.clear();
    }
    post(lasting.get());
    EXPECT_EQ(order, "a");
}

TEST(KWNotificationCenter, TheDefaultOneIsAlwaysTheSame) {
    EXPECT_EQ(&KWNotificationCenter::defaultCenter(), &KWNotificationCenter::defaultCenter());
}

namespace {

/// Connects, disconnects and posts at random, also from within posts, on the centre and on a plain
/// model of its rules, which keeps all observers ever made in one list.
class RandomPosts {
  public:
    explicit RandomPosts(std::uint32_t seed) : _random(seed) {
        for (auto& object : _objects)
            object = std::make_shared<KWObject>();
    }

    void run() {
        for (int i = 0; i < 60; ++i) {
            _budget = 40;
            step(0);
        }
    }

  private:
    struct Observer {
        KWNotificationToken token;
        std::size_t object; ///< none for 3
        bool isConnected = true;
    };

    /// A post under way, as the model sees it.
    struct Post {
        std::size_t object;
        std::size_t next = 0;
        std::size_t end;
    };

    void step(int depth) {
        if (--_budget < 0)
            return;
        switch (_random() % 6) {
        case 0:
        case 1:
            connect();
            break;
        case 2:
            disconnect();
            break;
        case 3:
            replaceObject();
            break;
        default:
            if (depth < 4)
                post();
        }
    }

    void connect() {
        const std::size_t id = _observers.size();
        const std::size_t object = _random() % 4;
        _observers.push_back(std::make_unique<Observer>());
        _observers[id]->object = object;
        _observers[id]->token =
            _center.addObserver("changed", object < 3 ? _objects[object].get() : nullptr,
                                [this, id](const KWNotification&) { called(id); });
    }

    void disconnect() {
        if (_observers.empty())
            return;
        Observer& observer = *_observers[_random() % _observers.size()];
        observer.isConnected = false;
        observer.token.disconnect();
    }

    void replaceObject() {
        // The one that a post is under way for stays, for its address is still in use there.
        const std::size_t object = _random() % 3;
        for (const Post& post : _posts)
            if (post.object == object)
                return;
        _objects[object] = std::make_shared<KWObject>();
        for (const auto& observer : _observers)
            if (observer->object == object)
                observer->isConnected = false;
    }

    /// The next observer that the latest post should call.
    std::optional<std::size_t> expected() {
        Post& post = _posts.back();
        for (; post.next < post.end; ++post.next) {
            const Observer& observer = *_observers[post.next];
            if (observer.isConnected && (observer.object == 3 || observer.object == post.object))
                return post.next;
        }
        return std::nullopt;
    }

    void post() {
        const std::size_t object = _random() % 4;
        _posts.push_back({object, 0, _observers.size()});
        _center.postNotificationNameObject("changed",
                                           object < 3 ? _objects[object].get() : nullptr);
        EXPECT_EQ(expected(), std::nullopt);
        _posts.pop_back();
    }

    void called(std::size_t id) {
        ASSERT_FALSE(_posts.empty());
        ASSERT_EQ(expected(), std::optional(id));
        ++_posts.back().next;
        for (std::size_t n = _random() % 3; n > 0; --n)
            step(static_cast<int>(_posts.size()));
    }

    std::mt19937 _random;
    int _budget = 0;
    std::vector<std::unique_ptr<Observer>> _observers;
    std::vector<Post> _posts;
    std::shared_ptr<KWObject> _objects[3];
    KWNotificationCenter _center;
};

} // namespace

TEST(KWNotificationCenter, RandomPostsCallWhomTheRulesName) {
    for (std::uint32_t seed = 0; seed < 200 && !testing::Test::HasFailure(); ++seed)
        RandomPosts(seed).run();
}
