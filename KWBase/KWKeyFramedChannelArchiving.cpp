#include <KWBase/KWKeyFramedChannel.h>
#include <KWFoundation/KWCoder.h>
#include <KWFoundation/KWException.h>
#include <KWFoundation/KWLog.h>

#include <bit>
#include <cstring>

namespace {

constexpr std::size_t recordSize = KWKeyFrameRecords::recordSize;
using Shape = KWKeyFrameRecords::Shape;

void putBigEndian(std::byte* bytes, float number) {
    const auto bits = std::bit_cast<std::uint32_t>(number);
    for (int i = 0; i < 4; ++i)
        bytes[i] = static_cast<std::byte>(bits >> (24 - 8 * i));
}

float getBigEndian(const std::byte* bytes) {
    std::uint32_t bits = 0;
    for (int i = 0; i < 4; ++i)
        bits = bits << 8 | std::to_integer<std::uint32_t>(bytes[i]);
    return std::bit_cast<float>(bits);
}

/// One behind the other; the reserved floats' places are zero.
KWData encodableRecords(const std::vector<Shape>& shapes) {
    KWData bytes(shapes.size() * recordSize);
    std::byte* to = bytes.data();
    for (const Shape& shape : shapes) {
        putBigEndian(to, shape.tension);
        putBigEndian(to + 4, shape.bias);
        putBigEndian(to + 8, shape.continuity);
        to += recordSize;
    }
    return bytes;
}

std::vector<Shape> shapesFromEncodedRecords(const KWData& bytes) {
    std::vector<Shape> shapes(bytes.size() / recordSize);
    const std::byte* from = bytes.data();
    for (Shape& shape : shapes) {
        shape.tension = getBigEndian(from);
        shape.bias = getBigEndian(from + 4);
        shape.continuity = getBigEndian(from + 8);
        from += recordSize;
    }
    return shapes;
}

} // namespace

void KWKeyFramedChannel::encodeWithCoder(KWCoder& coder) const {
    KWChannel::encodeWithCoder(coder);
    if (lists().keys.size() != lists().records.size() ||
        lists().keys.size() != lists().values.size())
        throw KWException("Key-value mismatch");
    if (coder.allowsKeyedCoding())
        encodeWithKeys(coder);
    else
        encodeInOrder(coder);
}

bool KWKeyFramedChannel::initWithCoder(KWCoder& coder) {
    if (!KWChannel::initWithCoder(coder))
        return false;
    _saved = {};
    keysChange();
    if (coder.allowsKeyedCoding())
        initWithKeys(coder);
    else
        initInOrder(coder);
    refresh();
    return true;
}

void KWKeyFramedChannel::encodeWithKeys(KWCoder& coder) const {
    coder.encodeRealObjectsForKey(lists().keys, KWValueClass<KWTime>::realClass(), "keys");
    coder.encodeFloatsForKey(lists().values, "values");
    coder.encodeRecordsForKey(encodableRecords(lists().records.shapes()), recordSize,
                              "hermiteValues");
    coder.encodeInt32ForKey(_mode, "mode");
    coder.encodeInt32ForKey(_repeat, "repeat");
}

// Trusted as it is: the lists may differ in length, and the times be in any order.
void KWKeyFramedChannel::initWithKeys(KWCoder& coder) {
    KWKeyFrames frames;
    coder.decodeRealObjectsForKey(frames.keys, KWValueClass<KWTime>::realClass(), "keys");
    coder.decodeFloatsForKey(frames.values, "values");
    KWData records;
    coder.decodeRecordsForKey(records, recordSize, "hermiteValues");
    frames.records.assign(shapesFromEncodedRecords(records));
    const std::int32_t mode = coder.decodeInt32ForKey("mode");
    const std::int32_t repeat = coder.decodeInt32ForKey("repeat");
    lists() = std::move(frames);
    _mode = mode;
    _repeat = repeat;
}

// Version 1 brought the modes and the records, which are stored as they lie in memory.

void KWKeyFramedChannel::encodeInOrder(KWCoder& coder) const {
    coder.encodeRealObjects(lists().keys, KWValueClass<KWTime>::realClass());
    coder.encodeFloats(lists().values);
    if (coder.versionForClassName(classObject().name()) < 1)
        return;
    coder.encodeValueOfObjCTypeAt("i", &_mode);
    coder.encodeValueOfObjCTypeAt("i", &_repeat);
    KWData records(lists().records.size() * recordSize);
    for (std::size_t k = 0; k < lists().records.size(); ++k) {
        const std::span<std::byte, recordSize> place(records.data() + k * recordSize, recordSize);
        if (lists().records.isOdd(k))
            std::memcpy(place.data(), &lists().records.shape(k), sizeof(Shape));
        else
            lists().records.getBytes(k, place);
    }
    coder.encodeRecords(records, recordSize);
}

void KWKeyFramedChannel::initInOrder(KWCoder& coder) {
    KWKeyFrames frames;
    coder.decodeRealObjects(frames.keys, KWValueClass<KWTime>::realClass());
    coder.decodeFloats(frames.values);
    std::int32_t mode = KWKeyFrameModeHermite;
    std::int32_t repeat = KWRepeatModeNone;
    KWData records;
    if (coder.versionForClassName(classObject().name()) >= 1) {
        coder.decodeValueOfObjCTypeAt("i", &mode);
        coder.decodeValueOfObjCTypeAt("i", &repeat);
        coder.decodeRecords(records, recordSize);
        if (records.size() != frames.keys.size() * recordSize) {
            KWLog("Inconsistent Values/Keys pairs in channel");
            records.clear();
        }
    }
    records.resize(frames.keys.size() * recordSize);
    for (std::size_t k = 0; k < frames.keys.size(); ++k)
        frames.records.insert(k, std::span(records).subspan(k * recordSize, recordSize));
    lists() = std::move(frames);
    _mode = mode;
    _repeat = repeat;
}
