#pragma once

#include <KWBase/KWKeyFramedChannel.h>

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <vector>

/// Keys of a channel that are dragged together. Every step starts from where the keys were at
/// first, so that errors do not add up; what steps overwrite on their way is remembered, so that
/// everything can be put back.
///
/// The channel tells others of each edit. They may do anything, except destroy this object or write
/// through it while it writes.
class KWKeyMove {
  public:
    /// The times, each once, from the last to the first; without those that are no number. In this
    /// order keys are removed quickly: none that is to go moves up first.
    static std::vector<KWTime> inOrderOfRemoval(std::vector<KWTime> times);

    /// The distance of the lines that moved keys jump to.
    struct Lattice {
        float time;
        float value;
    };

    explicit KWKeyMove(std::shared_ptr<KWKeyFramedChannel> channel);

    const std::shared_ptr<KWKeyFramedChannel>& channel() const { return _channel; }

    /// Whether a write is under way: edits that are heard of meanwhile may be its own.
    bool isWriting() const { return _isWriting; }
    /// Whether somebody else has edited keys of the channel, be it in the middle of a write. From
    /// then on nothing is to be written. No answer during a write.
    bool isDisturbed() const { return _channel->editCount() != _editCount; }

    /// Calls `make`, which is to set one key at `time`: putting back removes it.
    void makeKey(KWTime time, const std::function<void()>& make);

    /// The keys to be moved from here on. False, and nothing to be moved, when one of the times is
    /// no key, or when the channel has not as many values and shapes as keys.
    bool take(const std::vector<KWTime>& keys);

    /// Where those keys are now, in the order in which they were taken. Where keys have met, times
    /// repeat.
    const std::vector<KWTime>& keys() const { return _keys; }

    /// Removes the keys from where they are and sets them at so many seconds and so much of the
    /// user's unit from where they were taken. False, and nothing is written, when somebody else
    /// has edited keys, when there is nothing to move, or when a time or a value would not be
    /// finite; a value that never was stays as it is. What others throw when they are told is kept
    /// in `raised`.
    bool moveBy(float time, float value, const std::optional<Lattice>& lattice,
                KWFirstException& raised);

    /// Makes the channel's keys, values and shapes what they were before the first write. Nothing
    /// happens without one, and when somebody else has edited keys.
    void putBack(KWFirstException& raised);

  private:
    struct Key {
        float time;
        float value;
        KWData record;
    };

    std::optional<Key> keyAt(KWTime time) const;
    void rememberKeyAt(KWTime time);
    void write(std::uint64_t edits, const std::function<void()>& work);

    std::shared_ptr<KWKeyFramedChannel> _channel;
    std::uint64_t _editCount;
    bool _isWriting = false;
    bool _hasWritten = false;
    std::optional<KWTime> _made;
    /// Where the keys were.
    std::vector<float> _times;
    std::vector<float> _values;
    std::vector<KWData> _records;
    std::vector<KWTime> _keys;
    /// What has been written over, except for the keys themselves.
    std::vector<Key> _overwritten;
};
