#pragma once

#include <KWFoundation/KWExport.h>
#include <KWFoundation/KWTypes.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <vector>

/// The shape records of a channel's keys, stored as tightly as their contents allow: twelve bytes a
/// record while the reserved floats are zero, 36 otherwise, and a block apart for each record that
/// is not 36 bytes long. Bytes come back as they were given.
class KW_EXPORT KWKeyFrameRecords {
  public:
    using Bytes = std::span<const std::byte>;

    /// The length that a record should have.
    static constexpr std::size_t recordSize = 36;

    /// What evaluation reads of a record. Of a record that is too short, as far as it goes and 0
    /// after that.
    struct Shape {
        float tension = 0;
        float bias = 0;
        float continuity = 0;
    };

    /// 36 zero bytes.
    static Bytes neutral();

    std::size_t size() const { return _shapes.size(); }
    /// Whether some record is not 36 bytes long.
    bool hasOddLengths() const { return _oddCount != 0; }

    // The index must be below size() except where stated.

    bool isOdd(std::size_t index) const { return _oddCount != 0 && _odd[index]; }
    /// Whether a record is 36 zero bytes.
    bool isNeutral(std::size_t index) const;
    const Shape& shape(std::size_t index) const { return _shapes[index]; }
    const std::vector<Shape>& shapes() const { return _shapes; }
    KWData data(std::size_t index) const;
    /// Copies out a record that is not odd.
    void getBytes(std::size_t index, std::span<std::byte, recordSize> bytes) const;

    /// Makes room for one more, so that the next insert cannot throw unless its record is odd or
    /// the first with reserved floats.
    void prepareInsert();
    /// The index may be size(). Leaves everything as it was when memory runs out.
    void insert(std::size_t index, Bytes record);
    void replace(std::size_t index, Bytes record);
    void erase(std::size_t index);
    void clear();
    /// Replaces all by records that have these shapes and no reserved floats.
    void assign(std::vector<Shape> shapes);

    // For lists without odd records.

    /// Makes room for so many in all, those of `more` among them, so that neither resize() nor
    /// copying them here throws.
    void prepareMerge(const KWKeyFrameRecords& more, std::size_t count);
    /// To a count that there is room for. New records have to be overwritten.
    void resize(std::size_t count);
    void copyWithin(std::size_t from, std::size_t to);
    void copyFrom(const KWKeyFrameRecords& other, std::size_t from, std::size_t to);

  private:
    struct Reserved {
        std::byte bytes[24];
    };
    using OddRecord = std::shared_ptr<const KWData>;

    static bool isZero(Bytes bytes);
    void prepareStore(Bytes record);
    void store(std::size_t index, Bytes record, OddRecord odd);

    std::vector<Shape> _shapes;
    std::vector<Reserved> _reserved; ///< empty, or as many as _shapes
    std::vector<OddRecord> _odd; ///< empty, or as many as _shapes; null where the length is right
    std::size_t _oddCount = 0;
};

/// The keys of a channel: parallel lists, of equal length except where an archive brought others.
struct KWKeyFrames {
    std::vector<float> keys; ///< times, in seconds
    std::vector<float> values;
    KWKeyFrameRecords records;

    // For lists of equal lengths with ascending keys and no odd records.

    /// Makes room for so many more, with the records of `more` among them.
    void prepareMerge(const KWKeyFrameRecords& more, std::size_t count);
    /// Puts others, ascending too and with other times, between these. There must be room.
    void merge(const KWKeyFrames& more);
    /// Removes those that are marked; a mark for each.
    void remove(const std::vector<bool>& isRemoved);
};

/// The slopes at the start and at the end of the stretch between two keys, rounded to float.
struct KWKeyFrameTangents {
    float start = 0;
    float end = 0;
};

/// What evaluation knows of the stretch between two keys.
struct KWKeyFrameStretch {
    float from = 0; ///< times, in seconds
    float to = 0;
    float fromValue = 0;
    float toValue = 0;
    KWKeyFrameTangents tangents;
};

/// Where somebody who reads a channel was last. As long as no key is edited the stretch, once it
/// has been set, is that of the segment.
struct KWKeyFramePlace {
    KWKeyFrameStretch stretch; ///< at first no time lies in it
    float length = 0;          ///< of the stretch
    std::uint32_t segment = 0; ///< the key that the stretch starts at
};

/// Makes room for so many elements in all, at least doubling the room when there is too little.
template <class T>
void KWPrepareSize(std::vector<T>& list, std::size_t count) {
    if (list.capacity() < count)
        list.reserve(count < 2 * list.capacity() ? 2 * list.capacity() : count);
}

/// Makes room for one more element, at least doubling the room when there is none.
template <class T>
void KWPrepareInsert(std::vector<T>& list) {
    if (list.size() == list.capacity())
        list.reserve(list.size() < 8 ? 8 : 2 * list.size());
}
