#include "KeyFramedTestSupport.h"

#include <KWFoundation/KWException.h>
#include <KWFoundation/KWNotificationCenter.h>
#include <KWFoundation/KWUndoManager.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <bit>
#include <cstring>
#include <functional>
#include <limits>
#include <random>
#include <vector>

// Edits of many keys in one call, beside the same edits one by one.

namespace {

struct Edits {
    bool isRemoval;
    std::vector<KWTime> times;
    std::vector<float> values;
    std::vector<KWData> records;
};

class Owner final : public KWChannelOwner {
  public:
    ~Owner() override { resign(); }
    KWUndoManager* undoManager() override { return manager.get(); }
    void invalidate() override { ++invalidations; }

    std::shared_ptr<KWUndoManager> manager = std::make_shared<KWUndoManager>();
    int invalidations = 0;
};

/// A channel, its owner, and somebody who is told of its edits and may do something then.
class Stage final : public KWKeyObserver {
  public:
    enum class Onlooker { none, counts, looks, looksAtTimes, edits };

    Stage(std::uint32_t seed, Onlooker onlooker, bool hasUndo) : _onlooker(onlooker) {
        std::mt19937 random(seed);
        const std::size_t count = 64 + random() % 200;
        float t = 0;
        for (std::size_t k = 0; k < count; ++k) {
            t += static_cast<float>(1 + random() % 4);
            channel->setValueHermiteValueForKeyframe(static_cast<float>(random() % 100),
                                                     recordBy(random), KWTime(t));
        }
        if (hasUndo)
            channel->setOwner(&owner);
        if (onlooker == Onlooker::none)
            return;
        channel->addObserverForKeyPathOptionsContext(*this, "valid", 0, nullptr);
        _notices = KWNotificationCenter::defaultCenter().addObserver(
            KWChannelChangedNotification, channel.get(),
            [this](const KWNotification&) { hear(2); });
        _undoNotices = KWNotificationCenter::defaultCenter().addObserver(
            KWUndoManagerDidChangeNotification, owner.manager.get(),
            [this](const KWNotification&) { hear(3); });
    }
    ~Stage() { resign(); }
    Stage(const Stage&) = delete;
    Stage& operator=(const Stage&) = delete;

    void observeValueForKeyPathOfObjectChangeContext(std::string_view, KWObject*,
                                                     const KWKeyValueChange&,
                                                     const void*) override {
        hear(1);
    }

    static KWData recordBy(std::mt19937& random) {
        HJHermiteParam shape;
        if (random() % 2)
            shape.tension = static_cast<float>(random() % 10) * 0.1f;
        if (random() % 5 == 0)
            shape.reserved[random() % 6] = 3;
        return KWKeyFramedChannel::hermiteDataFrom(&shape);
    }

    std::vector<std::uint64_t> state() const {
        std::vector<std::uint64_t> all{channel->editCount(), channel->isRegular(),
                                       static_cast<std::uint64_t>(owner.invalidations)};
        for (const KWTime time : channel->allKeyframes()) {
            all.push_back(std::bit_cast<std::uint32_t>(time.time()));
            all.push_back(std::bit_cast<std::uint32_t>(channel->valueForKeyframe(time)));
            const KWData record = *channel->hermiteValueForKeyframe(time);
            all.push_back(record.size());
            for (const std::byte byte : record)
                all.push_back(std::to_integer<std::uint64_t>(byte));
        }
        for (float t = -1; t < 700 && channel->isRegular(); t += 3.7f)
            all.push_back(bitsOf(channel->valueForTime(KWTime(t))));
        return all;
    }

    Owner owner;
    std::shared_ptr<KWKeyFramedChannel> channel = std::make_shared<KWKeyFramedChannel>();
    std::vector<std::uint64_t> heard;

  private:
    void hear(std::uint64_t what) {
        heard.push_back(what);
        if (_isHearing)
            return;
        _isHearing = true;
        ++_count;
        const bool isTime = _count % 17 == 0;
        if (_onlooker == Onlooker::looks || (_onlooker == Onlooker::looksAtTimes && isTime))
            heard.push_back(lookSafely());
        if (_onlooker == Onlooker::edits && isTime) {
            const auto time = static_cast<float>(_count % 101);
            if (_count % 2)
                channel->setValueForKeyframe(5, KWTime(time));
            else
                channel->removeValueForKeyframe(KWTime(time));
            if (_count % 5 == 0)
                channel->setValueHermiteValueForKeyframe(1, KWData(3), KWTime(time));
            if (_count % 5 == 1)
                channel->removeAllKeyframes();
        }
        _isHearing = false;
    }
    /// A record of another length raises.
    std::uint64_t lookSafely() const {
        try {
            return look();
        } catch (const KWException&) {
            return 12345;
        }
    }
    /// In one of the many ways.
    std::uint64_t look() const {
        const KWTime time(static_cast<float>(_count * 7 % 300));
        switch (_count % 6) {
        case 0:
            return channel->keyframeCount();
        case 1:
            return bitsOf(channel->valueForTime(time));
        case 2:
            return channel->isKeyframe(time);
        case 3: {
            std::vector<float> values(40);
            std::vector<float> times(40);
            for (std::size_t k = 0; k < times.size(); ++k)
                times[k] = static_cast<float>(k) * 9;
            channel->valuesForTimes(times, values);
            std::uint64_t sum = 0;
            for (const float value : values)
                sum = sum * 31 + bitsOf(value);
            return sum;
        }
        case 4:
            return channel->editCount();
        default:
            return channel->allKeyframes().size();
        }
    }

    Onlooker _onlooker;
    bool _isHearing = false;
    std::uint64_t _count = 0;
    KWNotificationToken _notices;
    KWNotificationToken _undoNotices;
};

Edits randomEdits(std::mt19937& random) {
    Edits edits;
    edits.isRemoval = random() % 2;
    const std::size_t count = random() % 120;
    for (std::size_t k = 0; k < count; ++k) {
        float t = static_cast<float>(random() % 700) * (edits.isRemoval ? 1.0f : 0.5f);
        if (random() % 50 == 0)
            t = std::numeric_limits<float>::quiet_NaN();
        if (random() % 50 == 0)
            t = -0.0f;
        edits.times.emplace_back(t);
        edits.values.push_back(static_cast<float>(random() % 100));
        edits.records.push_back(random() % 200 == 0 ? KWData(5) : Stage::recordBy(random));
    }
    const auto isBefore = [](KWTime a, KWTime b) { return a.time() < b.time(); };
    switch (random() % 4) {
    case 0:
        std::erase_if(edits.times, [](KWTime t) { return t != t; });
        std::sort(edits.times.begin(), edits.times.end(), isBefore);
        break;
    case 1:
        std::erase_if(edits.times, [](KWTime t) { return t != t; });
        std::sort(edits.times.rbegin(), edits.times.rend(), isBefore);
        break;
    case 2:
        std::erase_if(edits.times, [](KWTime t) { return t != t; });
        std::sort(edits.times.begin(), edits.times.end(), isBefore);
        edits.times.erase(std::unique(edits.times.begin(), edits.times.end()), edits.times.end());
        break;
    default:
        break;
    }
    return edits;
}

void editAtOnce(KWKeyFramedChannel& channel, const Edits& edits) {
    if (edits.isRemoval)
        channel.removeValuesForKeyframes(edits.times);
    else
        channel.setValuesHermiteValuesForKeyframes(edits.values, edits.records, edits.times);
}

void editOneByOne(KWKeyFramedChannel& channel, const Edits& edits) {
    for (std::size_t k = 0; k < edits.times.size(); ++k) {
        if (edits.isRemoval)
            channel.removeValueForKeyframe(edits.times[k]);
        else
            channel.setValueHermiteValueForKeyframe(edits.values[k], edits.records[k],
                                                    edits.times[k]);
    }
    if (!edits.isRemoval)
        channel.invalidate();
}

void expectTheSame(Stage::Onlooker onlooker, bool hasUndo, bool isManipulated) {
    for (std::uint32_t seed = 0; seed < 30; ++seed) {
        Stage many(seed, onlooker, hasUndo);
        Stage single(seed, onlooker, hasUndo);
        std::mt19937 random(seed + 1000);
        for (int round = 0; round < 3; ++round) {
            const Edits edits = randomEdits(random);
            if (isManipulated) {
                many.channel->startManipulation();
                single.channel->startManipulation();
            }
            editAtOnce(*many.channel, edits);
            editOneByOne(*single.channel, edits);
            ASSERT_EQ(many.heard, single.heard) << seed << ", " << round;
            if (isManipulated) {
                many.channel->stopManipulation();
                single.channel->stopManipulation();
            }
            ASSERT_EQ(many.state(), single.state()) << seed << ", " << round;
        }
        while (single.owner.manager->canUndo()) {
            ASSERT_TRUE(many.owner.manager->canUndo());
            many.owner.manager->undo();
            single.owner.manager->undo();
        }
        ASSERT_FALSE(many.owner.manager->canUndo());
        ASSERT_EQ(many.state(), single.state()) << seed;
        while (single.owner.manager->canRedo()) {
            many.owner.manager->redo();
            single.owner.manager->redo();
        }
        ASSERT_EQ(many.state(), single.state()) << seed;
        ASSERT_EQ(many.heard, single.heard) << seed;
    }
}

} // namespace

TEST(KWKeyFramedChannelStaging, EditsAtOnceAreThoseOneByOne) {
    expectTheSame(Stage::Onlooker::none, false, false);
    expectTheSame(Stage::Onlooker::none, true, false);
}

TEST(KWKeyFramedChannelStaging, WhoeverIsToldIsToldTheSame) {
    expectTheSame(Stage::Onlooker::counts, true, false);
    expectTheSame(Stage::Onlooker::counts, false, false);
}

TEST(KWKeyFramedChannelStaging, WhoeverLooksMeanwhileSeesEachEdit) {
    for (const bool hasUndo : {false, true}) {
        expectTheSame(Stage::Onlooker::looks, hasUndo, false);
        expectTheSame(Stage::Onlooker::looksAtTimes, hasUndo, false);
    }
}

TEST(KWKeyFramedChannelStaging, WhoeverEditsMeanwhileEditsWhatIsSeen) {
    for (const bool hasUndo : {false, true})
        expectTheSame(Stage::Onlooker::edits, hasUndo, false);
}

TEST(KWKeyFramedChannelStaging, ManipulationsAreOneStepAsBefore) {
    expectTheSame(Stage::Onlooker::none, true, true);
    expectTheSame(Stage::Onlooker::looksAtTimes, true, true);
}
