#pragma once

#include <KWFoundation/KWPropertyList.h>

#include <cstring>

// The two forms of a property list on disk, each with its reader and its writer.

/// Where a writer puts its bytes: gathered in blocks, so that large lists need no second copy of
/// themselves in memory.
class KWByteSink {
  public:
    KWByteSink() : _block(std::make_unique_for_overwrite<std::byte[]>(capacity + 8)) {}
    virtual ~KWByteSink() = default;

    void put(std::byte byte) { *reserve(1) = byte; }
    void put(const void* bytes, std::size_t count) {
        const auto* source = static_cast<const std::byte*>(bytes);
        while (count > capacity) {
            std::memcpy(reserve(capacity), source, capacity);
            source += capacity;
            count -= capacity;
        }
        if (count > 0)
            std::memcpy(reserve(count), source, count);
    }
    void put(std::string_view text) { put(text.data(), text.size()); }
    /// The low `size` bytes of a number, the highest first; 1 to 8 of them.
    void putBigEndian(std::uint64_t value, std::size_t size) {
        // All eight are stored, the block having room for them; what is behind the last is
        // overwritten by what comes next.
        const std::uint64_t turned = __builtin_bswap64(value << (64 - 8 * size));
        std::memcpy(reserve(size), &turned, sizeof turned);
    }
    /// Says how many bytes there will be in all.
    virtual void expect(std::uint64_t) {}
    void finish() {
        if (_used > 0)
            take({_block.get(), _used});
        _used = 0;
    }

  protected:
    virtual void take(std::span<const std::byte> bytes) = 0;

  private:
    static constexpr std::size_t capacity = 1 << 18;
    std::byte* reserve(std::size_t count) {
        if (_used + count > capacity)
            finish();
        std::byte* place = _block.get() + _used;
        _used += count;
        return place;
    }
    std::unique_ptr<std::byte[]> _block;
    std::size_t _used = 0;
};

/// Fill an empty list from its source; KWArchiveError.
void KWReadBinaryPropertyList(KWPropertyList& list);
void KWReadXMLPropertyList(KWPropertyList& list);

void KWWriteBinaryPropertyList(const KWPropertyList& list, KWByteSink& sink);
void KWWriteXMLPropertyList(const KWPropertyList& list, KWByteSink& sink);
