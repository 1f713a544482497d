#include <KWBase/KWKeyFrames.h>

#include <algorithm>
#include <cstring>

namespace {

constexpr std::byte neutralRecord[KWKeyFrameRecords::recordSize] = {};

} // namespace

KWKeyFrameRecords::Bytes KWKeyFrameRecords::neutral() {
    return neutralRecord;
}

bool KWKeyFrameRecords::isZero(Bytes bytes) {
    return std::memcmp(bytes.data(), neutralRecord, bytes.size()) == 0;
}

bool KWKeyFrameRecords::isNeutral(std::size_t index) const {
    return !isOdd(index) && isZero(std::as_bytes(std::span(&_shapes[index], 1))) &&
           (_reserved.empty() || isZero(_reserved[index].bytes));
}

KWData KWKeyFrameRecords::data(std::size_t index) const {
    if (isOdd(index))
        return *_odd[index];
    KWData data(recordSize);
    getBytes(index, std::span<std::byte, recordSize>(data));
    return data;
}

void KWKeyFrameRecords::getBytes(std::size_t index, std::span<std::byte, recordSize> bytes) const {
    std::memcpy(bytes.data(), &_shapes[index], sizeof(Shape));
    if (_reserved.empty())
        std::memset(bytes.data() + sizeof(Shape), 0, sizeof(Reserved));
    else
        std::memcpy(bytes.data() + sizeof(Shape), &_reserved[index], sizeof(Reserved));
}

void KWKeyFrameRecords::prepareInsert() {
    KWPrepareInsert(_shapes);
    if (!_reserved.empty())
        KWPrepareInsert(_reserved);
    if (!_odd.empty())
        KWPrepareInsert(_odd);
}

void KWKeyFrameRecords::prepareStore(Bytes record) {
    const bool odd = record.size() != recordSize;
    // Room for one more than there are, since an insert follows.
    if (odd && _odd.empty()) {
        _odd.reserve(_shapes.size() + 1);
        _odd.resize(_shapes.size());
    }
    if (!odd && _reserved.empty() && !isZero(record.subspan(sizeof(Shape)))) {
        _reserved.reserve(_shapes.size() + 1);
        _reserved.resize(_shapes.size());
    }
}

void KWKeyFrameRecords::store(std::size_t index, Bytes record, OddRecord odd) {
    Shape shape;
    if (!record.empty())
        std::memcpy(&shape, record.data(), std::min(record.size(), sizeof(Shape)));
    _shapes[index] = shape;
    if (!_reserved.empty()) {
        Reserved reserved = {};
        if (!odd)
            std::memcpy(&reserved, record.data() + sizeof(Shape), sizeof(Reserved));
        _reserved[index] = reserved;
    }
    if (!_odd.empty()) {
        _oddCount -= _odd[index] != nullptr;
        _oddCount += odd != nullptr;
        _odd[index] = std::move(odd);
        if (_oddCount == 0)
            _odd = {};
    }
}

void KWKeyFrameRecords::insert(std::size_t index, Bytes record) {
    OddRecord odd;
    if (record.size() != recordSize)
        odd = std::make_shared<const KWData>(record.begin(), record.end());
    prepareInsert();
    prepareStore(record);
    const auto at = static_cast<std::ptrdiff_t>(index);
    _shapes.insert(_shapes.begin() + at, Shape{});
    if (_reserved.size() + 1 == _shapes.size() && _reserved.capacity() != 0)
        _reserved.insert(_reserved.begin() + at, Reserved{});
    if (_odd.size() + 1 == _shapes.size() && _odd.capacity() != 0)
        _odd.insert(_odd.begin() + at, nullptr);
    store(index, record, std::move(odd));
}

void KWKeyFrameRecords::replace(std::size_t index, Bytes record) {
    OddRecord odd;
    if (record.size() != recordSize)
        odd = std::make_shared<const KWData>(record.begin(), record.end());
    prepareStore(record);
    store(index, record, std::move(odd));
}

void KWKeyFrameRecords::erase(std::size_t index) {
    const auto at = static_cast<std::ptrdiff_t>(index);
    _shapes.erase(_shapes.begin() + at);
    if (!_reserved.empty())
        _reserved.erase(_reserved.begin() + at);
    if (!_odd.empty()) {
        _oddCount -= _odd[index] != nullptr;
        _odd.erase(_odd.begin() + at);
        if (_oddCount == 0)
            _odd = {};
    }
}

void KWKeyFrameRecords::clear() {
    _shapes.clear();
    _reserved = {};
    _odd = {};
    _oddCount = 0;
}

void KWKeyFrameRecords::assign(std::vector<Shape> shapes) {
    clear();
    _shapes = std::move(shapes);
}

void KWKeyFrameRecords::prepareMerge(const KWKeyFrameRecords& more, std::size_t count) {
    KWPrepareSize(_shapes, count);
    if (_reserved.capacity() == 0 && more._reserved.empty())
        return;
    KWPrepareSize(_reserved, count);
    _reserved.resize(_shapes.size());
}

void KWKeyFrameRecords::resize(std::size_t count) {
    _shapes.resize(count);
    if (_reserved.capacity() != 0)
        _reserved.resize(count);
}

void KWKeyFrameRecords::copyWithin(std::size_t from, std::size_t to) {
    _shapes[to] = _shapes[from];
    if (!_reserved.empty())
        _reserved[to] = _reserved[from];
}

void KWKeyFrameRecords::copyFrom(const KWKeyFrameRecords& other, std::size_t from, std::size_t to) {
    _shapes[to] = other._shapes[from];
    if (!_reserved.empty())
        _reserved[to] = other._reserved.empty() ? Reserved{} : other._reserved[from];
}

void KWKeyFrames::prepareMerge(const KWKeyFrameRecords& more, std::size_t count) {
    const std::size_t total = keys.size() + count;
    KWPrepareSize(keys, total);
    KWPrepareSize(values, total);
    records.prepareMerge(more, total);
}

void KWKeyFrames::merge(const KWKeyFrames& more) {
    std::size_t here = keys.size();
    std::size_t there = more.keys.size();
    std::size_t to = here + there;
    keys.resize(to);
    values.resize(to);
    records.resize(to);
    // From the end, so that nothing is overwritten before it is moved.
    while (there > 0) {
        --to;
        if (here > 0 && keys[here - 1] > more.keys[there - 1]) {
            --here;
            keys[to] = keys[here];
            values[to] = values[here];
            records.copyWithin(here, to);
        } else {
            --there;
            keys[to] = more.keys[there];
            values[to] = more.values[there];
            records.copyFrom(more.records, there, to);
        }
    }
}

void KWKeyFrames::remove(const std::vector<bool>& isRemoved) {
    std::size_t to = 0;
    for (std::size_t from = 0; from < keys.size(); ++from) {
        if (isRemoved[from])
            continue;
        if (to != from) {
            keys[to] = keys[from];
            values[to] = values[from];
            records.copyWithin(from, to);
        }
        ++to;
    }
    keys.resize(to);
    values.resize(to);
    records.resize(to);
}
