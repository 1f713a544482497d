#include <KWBase/KWFloat4.h>
#include <KWBase/KWKeyFrameCurve.h>
#include <KWBase/KWKeyFrameIndex.h>

#include <algorithm>
#include <bit>
#include <cmath>
#include <new>

namespace {

/// As many keys as one comparison looks at.
constexpr std::int32_t block = 4;
/// More keys than a bucket should have.
constexpr std::int32_t crowd = 6;

} // namespace

std::unique_ptr<const KWKeyFrameIndex> KWKeyFrameIndex::make(std::span<const float> keys) {
    // Without infinities, and with a scale that is a positive number, all the buckets of times
    // between the first and the last key are.
    constexpr std::size_t most = std::size_t{1} << 28;
    if (keys.size() < std::size_t{block} || keys.size() > most)
        return nullptr;
    const float span = keys.back() - keys.front();
    const float scale = static_cast<float>(2 * keys.size()) / span;
    if (!std::isfinite(span) || !std::isnormal(scale))
        return nullptr;
    std::unique_ptr<KWKeyFrameIndex> made(new KWKeyFrameIndex);
    made->_first = keys.front();
    made->_scale = scale;
    made->_lastBlock = static_cast<std::int32_t>(keys.size()) - block;
    std::vector<std::int32_t>& starts = made->_starts;
    starts.reserve(made->bucketOf(keys.back()) + 2);
    for (std::size_t k = 0; k < keys.size(); ++k) {
        starts.resize(made->bucketOf(keys[k]) + 1, static_cast<std::int32_t>(k));
        made->_isCrowded |= static_cast<std::int32_t>(k) - starts.back() >= crowd;
    }
    starts.push_back(static_cast<std::int32_t>(keys.size()));
    return made;
}

std::uint32_t KWKeyFrameIndex::countNotAfter(const float* keys, float t) const {
    const std::size_t bucket = bucketOf(t);
    const std::int32_t from = std::min(_starts[bucket], _lastBlock);
    const KWFloat4 four = KWFloat4Load(keys + from);
    const unsigned after = KWInt4Bits(four > KWFloat4All(t)) | 1u << block;
    const auto found = static_cast<std::uint32_t>(from + std::countr_zero(after));
    const auto end = static_cast<std::uint32_t>(_starts[bucket + 1]);
    if (after != 1u << block || found >= end) [[likely]]
        return found;
    return found + KWKeyFrameCurve::countNotAfter(keys + found, end - found, t);
}

void KWKeyFrameIndexSlot::make(std::span<const float> keys) const {
    std::unique_ptr<const KWKeyFrameIndex> made;
    try {
        made = KWKeyFrameIndex::make(keys);
    } catch (const std::bad_alloc&) {
        // It goes without.
    }
    if (!made) {
        _searches.store(refused, std::memory_order_relaxed);
        return;
    }
    // Another thread may have been first.
    const KWKeyFrameIndex* none = nullptr;
    if (_index.compare_exchange_strong(none, made.get(), std::memory_order_acq_rel))
        made.release();
}

void KWKeyFrameIndexSlot::discard() {
    delete _index.exchange(nullptr, std::memory_order_relaxed);
}
