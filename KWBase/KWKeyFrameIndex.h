#pragma once

#include <KWFoundation/KWExport.h>

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <vector>

/// Finds the keys that surround a time in about the same few steps however many there are: the
/// keyed range is cut into equal buckets, more than there are keys, and each knows how many keys
/// lie before it. Which bucket a time lies in is computed in float; as that never falls while times
/// rise, and is the same computation for keys, no rounding can lead astray.
class KWKeyFrameIndex {
  public:
    /// Of ascending keys, which must not change. Null when no buckets can be made of their range.
    static std::unique_ptr<const KWKeyFrameIndex> make(std::span<const float> keys);

    /// How many keys are at or before a time that is neither before the first key nor at or after
    /// the last one. The keys are those that the index was made of.
    std::uint32_t countNotAfter(const float* keys, float t) const;

    // For those who look up several times at once.
    float first() const { return _first; }
    float scale() const { return _scale; } ///< buckets in a second
    /// How many keys lie in earlier buckets; one more than there are buckets.
    const std::int32_t* starts() const { return _starts.data(); }
    /// Whether keys lie so close that some bucket has many of them.
    bool isCrowded() const { return _isCrowded; }

  private:
    KWKeyFrameIndex() = default;

    std::size_t bucketOf(float t) const {
        return static_cast<std::size_t>(static_cast<std::int32_t>((t - _first) * _scale));
    }

    float _first = 0;
    float _scale = 0;
    std::int32_t _lastBlock = 0;
    bool _isCrowded = false;
    std::vector<std::int32_t> _starts;
};

/// Where a channel keeps its index. One is made when so many times have been searched for without
/// that making it pays, so that whoever edits and reads by turns is not made to wait. Reading may
/// go on in several threads at once, dropping excludes all else.
class KW_EXPORT KWKeyFrameIndexSlot {
  public:
    KWKeyFrameIndexSlot() = default;
    ~KWKeyFrameIndexSlot() { discard(); }
    KWKeyFrameIndexSlot(const KWKeyFrameIndexSlot&) = delete;
    KWKeyFrameIndexSlot& operator=(const KWKeyFrameIndexSlot&) = delete;

    /// Null when there is none.
    const KWKeyFrameIndex* index() const { return _index.load(std::memory_order_acquire); }

    /// To be called at every search without an index.
    void noteSearch(std::span<const float> keys) const { noteSearches(keys, 1); }
    /// To be called at so many at once.
    void noteSearches(std::span<const float> keys, std::size_t count) const {
        if (index())
            return;
        const std::uint64_t searches = _searches.load(std::memory_order_relaxed) + count;
        _searches.store(searches, std::memory_order_relaxed);
        if (searches < refused && searches >= keys.size() / 4) [[unlikely]]
            make(keys);
    }

    void drop() {
        if (_index.load(std::memory_order_relaxed))
            discard();
        _searches.store(0, std::memory_order_relaxed);
    }

  private:
    /// As many searches as are never reached stand for keys that no index can be made of.
    static constexpr std::uint64_t refused = std::uint64_t{1} << 62;

    void make(std::span<const float> keys) const;
    void discard();

    mutable std::atomic<const KWKeyFrameIndex*> _index = nullptr;
    mutable std::atomic<std::uint64_t> _searches = 0;
};
