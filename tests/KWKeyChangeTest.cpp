#include "KeyCommandsTestSupport.h"

#include <KWBase/KWKeyChange.h>
#include <KWFoundation/KWFirstException.h>

#include <QElapsedTimer>
#include <algorithm>
#include <map>
#include <random>

using KWKeyChangeTest = KWKeyCommandsTest;

// --- Many keys.

TEST_F(KWKeyChangeTest, ManyKeysAreEditedAtOnceAndPutBack) {
    constexpr int count = 60'000;
    channel->setOwner(nullptr);
    for (int k = 0; k < count; ++k)
        channel->setValueForKeyframe(static_cast<float>(k % 100), KWTime(static_cast<float>(k)));
    channel->setOwner(&owner);
    std::vector<KWTime> every;
    for (int k = 0; k < count; k += 2)
        every.emplace_back(static_cast<float>(k));
    view->setSelectedKeys(every);
    QElapsedTimer timer;
    timer.start();
    const auto note = [&](const char* what) {
        RecordProperty(what, std::to_string(timer.restart()));
    };
    EXPECT_TRUE(commands.nudge(1, 0));
    note("nudge");
    EXPECT_TRUE(commands.nudge(1, 1));
    note("nudge_both");
    EXPECT_TRUE(commands.copy());
    note("copy");
    view->setCurrentTime(0.125f);
    EXPECT_TRUE(commands.paste());
    note("paste");
    EXPECT_EQ(channel->keyframeCount(), static_cast<unsigned>(count + count / 2));
    EXPECT_TRUE(commands.deleteKeys());
    note("delete");
    EXPECT_EQ(channel->keyframeCount(), static_cast<unsigned>(count));
    for (int k = 0; k < 4; ++k)
        manager->undo();
    note("undo");
    EXPECT_EQ(channel->keyframeCount(), static_cast<unsigned>(count));
    EXPECT_EQ(timesOf(view->selectedKeys()), timesOf(every));
}

// --- Any sequence at all, against lists and loops.

namespace {

/// Keys in the plainest form.
struct PlainKeys {
    struct Key {
        float value;
        KWData record;
    };
    std::map<float, Key> keys;
    std::vector<float> selected;
    std::vector<std::pair<float, Key>> clipboard;

    std::vector<float> live() const {
        std::vector<float> times;
        for (const float time : selected)
            if (keys.contains(time))
                times.push_back(time);
        return times;
    }
    template <class Move>
    void move(const Move& moved) {
        std::vector<std::pair<float, Key>> taken;
        for (const float time : live())
            taken.emplace_back(time, keys.at(time));
        for (const auto& [time, key] : taken)
            keys.erase(time);
        selected.clear();
        for (auto& [time, key] : taken) {
            moved(time, key);
            keys.insert_or_assign(time, key);
            if (std::find(selected.begin(), selected.end(), time) == selected.end())
                selected.push_back(time);
        }
    }
    void insert(const std::vector<std::pair<float, Key>>& added, float by) {
        if (added.empty())
            return;
        selected.clear();
        for (const auto& [time, key] : added) {
            keys.insert_or_assign(time + by, key);
            selected.push_back(time + by);
        }
    }
    std::vector<std::pair<float, Key>> copied() const {
        std::vector<float> times = live();
        std::sort(times.begin(), times.end());
        std::vector<std::pair<float, Key>> list;
        for (const float time : times)
            list.emplace_back(time, keys.at(time));
        return list;
    }
    void remove() {
        const std::vector<float> times = live();
        for (const float time : times)
            keys.erase(time);
        if (!times.empty())
            selected.clear();
    }
    std::string contents() const {
        KWKeyFramedChannel channel;
        for (const auto& [time, key] : keys)
            channel.setValueHermiteValueForKeyframe(key.value, key.record, KWTime(time));
        return contentsOf(channel);
    }
};

} // namespace

TEST_F(KWKeyChangeTest, ManyKeysThatComeAndGoAtOnceAgreeWithLists) {
    std::mt19937 random(1);
    const auto pick = [&] {
        const HJHermiteParam shape{static_cast<float>(random() % 9), -0.0f, 1, {0, kwNaN}};
        return KWKey{static_cast<float>(random() % 8000) / 4, static_cast<float>(random() % 100),
                     KWKeyFramedChannel::hermiteDataFrom(&shape)};
    };
    KWKeyFramedChannel many;
    PlainKeys plain;
    for (int k = 0; k < 6000; ++k) {
        const KWKey key = pick();
        plain.keys.insert_or_assign(key.time, PlainKeys::Key{key.value, key.record});
        many.setValueHermiteValueForKeyframe(key.value, key.record, KWTime(key.time));
    }
    KWKeyChange change;
    for (int k = 0; k < 2000; ++k) {
        change.removed.emplace_back(pick().time);
        plain.keys.erase(change.removed.back().time());
    }
    for (int k = 0; k < 2000; ++k) {
        change.set.push_back(pick());
        const KWKey& key = change.set.back();
        plain.keys.insert_or_assign(key.time, PlainKeys::Key{key.value, key.record});
    }
    KWFirstException raised;
    KWApplyKeyChange(many, KWNormalKeyChange(many, change), raised);
    EXPECT_EQ(contentsOf(many), plain.contents());
    KWKeyChange all;
    all.removed = many.allKeyframes();
    int invalidations = 0;
    ValidObserver observer([&] { ++invalidations; });
    observer.observe(many);
    KWApplyKeyChange(many, KWNormalKeyChange(many, all), raised);
    EXPECT_EQ(many.keyframeCount(), 0u);
    EXPECT_EQ(invalidations, 1) << "in one go, and told of";
}

class KWKeyChangeSequence : public KWKeyCommandsTest, public testing::WithParamInterface<int> {
  protected:
    float pickTime() { return static_cast<float>(static_cast<int>(random() % 65) - 32) / 4; }
    KWData pickRecord() {
        switch (random() % 4) {
        case 0:
            return KWKeyFramedChannel::hermiteData();
        case 1:
            return oddRecord(GetParam() % 2 == 0 ? 36 : random() % 50);
        default:
            return recordWith(static_cast<float>(random() % 8) / 8, -1, 0.5f);
        }
    }
    void pickKeys(PlainKeys& plain) {
        channel->removeAllKeyframes();
        plain.keys.clear();
        for (int k = 0; k < 12; ++k) {
            const float time = pickTime();
            const PlainKeys::Key key{static_cast<float>(random() % 9) / 2, pickRecord()};
            plain.keys.insert_or_assign(time, key);
            set(key.value, key.record, time);
        }
        manager->removeAllActions();
    }
    void pickSelection(PlainKeys& plain) {
        plain.selected.clear();
        for (int k = 0; k < 4; ++k)
            if (const float time = pickTime();
                std::find(plain.selected.begin(), plain.selected.end(), time) ==
                plain.selected.end())
                plain.selected.push_back(time);
        select(plain.selected);
    }
    void act(PlainKeys& plain) {
        const int steps = static_cast<int>(random() % 21) - 10;
        const float number = static_cast<float>(static_cast<int>(random() % 33) - 16) / 4;
        switch (random() % 12) {
        case 0:
            commands.nudge(steps, 0);
            return plain.move(
                [&](float& time, auto&) { time += static_cast<float>(steps) * 0.25f; });
        case 1:
            commands.nudge(0, steps);
            return plain.move(
                [&](float&, auto& key) { key.value += static_cast<float>(steps) * 0.5f; });
        case 2:
            commands.offsetTimes(number);
            return plain.move([&](float& time, auto&) { time += number; });
        case 3:
            commands.offsetValues(number);
            return plain.move([&](float&, auto& key) { key.value += number; });
        case 4:
            commands.setValues(number);
            return plain.move([&](float&, auto& key) { key.value = number; });
        case 5:
            commands.deleteKeys();
            return plain.remove();
        case 6:
            commands.copy();
            if (!plain.live().empty())
                plain.clipboard = plain.copied();
            return;
        case 7:
            commands.cut();
            if (!plain.live().empty())
                plain.clipboard = plain.copied();
            return plain.remove();
        case 8:
            view->setCurrentTime(number);
            commands.paste();
            return plain.insert(plain.clipboard, plain.clipboard.empty()
                                                     ? 0
                                                     : number - plain.clipboard.front().first);
        case 9: {
            commands.duplicate();
            const auto copied = plain.copied();
            return plain.insert(
                copied, copied.empty() ? 0 : copied.back().first - copied.front().first + 0.25f);
        }
        case 10:
            if (plain.live().size() == 1)
                plain.move([&](float& time, auto&) { time = number; });
            commands.setTime(number);
            return;
        default:
            commands.setShapes(KWKeyShape::bias, number);
            return plain.move([&](float&, auto& key) {
                HJHermiteParam shape = PlainChannel::paramOf(key.record);
                shape.bias = number;
                key.record = KWKeyFramedChannel::hermiteDataFrom(&shape);
            });
        }
    }

    std::mt19937 random{static_cast<unsigned>(GetParam())};
};

TEST_P(KWKeyChangeSequence, AgreesWithListsAndLoopsAndIsUndoneToTheBit) {
    QGuiApplication::clipboard()->clear();
    PlainKeys plain;
    for (int round = 0; round < 20; ++round) {
        pickKeys(plain);
        std::vector<std::string> states{contents()};
        for (int k = 0; k < 20; ++k) {
            if (random() % 2 == 0)
                pickSelection(plain);
            const std::uint64_t before = manager->stateIdentifier();
            act(plain);
            ASSERT_EQ(contents(), plain.contents());
            if (contents() != states.back())
                states.push_back(contents());
            else
                ASSERT_EQ(manager->stateIdentifier(), before) << "no step for nothing";
        }
        for (std::size_t k = states.size() - 1; k > 0; --k) {
            ASSERT_EQ(contents(), states[k]);
            manager->undo();
        }
        ASSERT_EQ(contents(), states.front());
        ASSERT_FALSE(manager->canUndo());
        for (std::size_t k = 1; k < states.size(); ++k) {
            manager->redo();
            ASSERT_EQ(contents(), states[k]);
        }
        plain.selected = selection();
    }
}

INSTANTIATE_TEST_SUITE_P(Seeds, KWKeyChangeSequence, testing::Range(1, 9));
