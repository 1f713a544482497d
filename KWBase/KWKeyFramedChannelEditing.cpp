#include <KWBase/KWKeyFrameCurve.h>
#include <KWBase/KWKeyFrameStage.h>
#include <KWFoundation/KWException.h>
#include <KWFoundation/KWFirstException.h>
#include <KWFoundation/KWUndoManager.h>

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <cstring>
#include <stdexcept>
#include <utility>

namespace {

/// One step of the undo manager for as long as it lives.
class UndoGroup {
  public:
    explicit UndoGroup(KWUndoManager* undoManager) : _undoManager(undoManager) {
        if (!_undoManager)
            return;
        _keptAlive = _undoManager->weak_from_this().lock();
        _undoManager->beginUndoGrouping();
    }
    ~UndoGroup() {
        // Closing a group posts a notice, whose observers may throw.
        try {
            close();
        } catch (...) {
        }
    }
    UndoGroup(const UndoGroup&) = delete;
    UndoGroup& operator=(const UndoGroup&) = delete;

    void close() {
        if (KWUndoManager* open = std::exchange(_undoManager, nullptr))
            open->endUndoGrouping();
    }

  private:
    KWUndoManager* _undoManager;
    std::shared_ptr<KWObject> _keptAlive;
};

/// A record that stays as it is, whatever becomes of the one that the caller passed in.
class RecordCopy {
  public:
    explicit RecordCopy(KWKeyFrameRecords::Bytes record) : _size(record.size()) {
        if (_size == _bytes.size())
            std::memcpy(_bytes.data(), record.data(), _size);
        else
            _odd.assign(record.begin(), record.end());
    }
    KWKeyFrameRecords::Bytes bytes() const {
        return _size == _bytes.size() ? KWKeyFrameRecords::Bytes(_bytes) : _odd;
    }

  private:
    std::size_t _size;
    std::array<std::byte, KWKeyFrameRecords::recordSize> _bytes;
    KWData _odd;
};

bool areEqual(const std::vector<float>& a, const std::vector<float>& b) {
    // A NaN that nobody touched is no change.
    return std::equal(a.begin(), a.end(), b.begin(), b.end(), [](float x, float y) {
        return x == y || std::bit_cast<std::uint32_t>(x) == std::bit_cast<std::uint32_t>(y);
    });
}

void checkComplete(const KWKeyFrames& frames) {
    if (frames.values.size() < frames.keys.size() || frames.records.size() < frames.keys.size())
        throw std::out_of_range("a key has no value or no shape");
}

} // namespace

// --- Writing keys

void KWKeyFramedChannel::setValueForTime(float value, std::optional<KWTime> time) {
    setValueForKeyframe(value, time);
}

void KWKeyFramedChannel::setValueForKeyframe(float value, std::optional<KWTime> key) {
    if (key)
        setValueRecordForKeyframe(value, KWKeyFrameRecords::neutral(), key->time());
}

void KWKeyFramedChannel::setValueHermiteValueForKeyframe(float value,
                                                         const std::optional<KWData>& hermite,
                                                         std::optional<KWTime> key) {
    if (hermite && key)
        setValueRecordForKeyframe(value, RecordCopy(*hermite).bytes(), key->time());
}

void KWKeyFramedChannel::setValuesHermiteValuesForKeyframes(
    const std::vector<float>& values, const std::vector<KWData>& hermiteValues,
    const std::vector<KWTime>& keys) {
    KWKeyFrames frames;
    frames.keys.reserve(keys.size());
    for (const KWTime key : keys)
        frames.keys.push_back(key.time());
    frames.values = values;
    const std::size_t count = std::min(keys.size(), hermiteValues.size());
    for (std::size_t i = 0; i < count; ++i)
        frames.records.insert(i, hermiteValues[i]);
    setFramesForKeyframes(frames);
}

void KWKeyFramedChannel::setFramesForKeyframes(const KWKeyFrames& frames) {
    const auto alive = weak_from_this().lock();
    KWFirstException raised;
    setFramesForKeyframes(frames, raised);
    raised.rethrow();
}

void KWKeyFramedChannel::setFramesForKeyframes(const KWKeyFrames& frames,
                                               KWFirstException& raised) {
    {
        Staging staging(*this, frames.keys.size());
        for (std::size_t i = 0; i < frames.keys.size(); ++i) {
            const float key = frames.keys[i];
            const float value = frames.values.at(i);
            if (i >= frames.records.size())
                throw std::out_of_range("a key has no shape");
            if (frames.records.isOdd(i)) {
                setValueRecordForKeyframe(value, frames.records.data(i), key, raised);
                continue;
            }
            std::array<std::byte, KWKeyFrameRecords::recordSize> record;
            frames.records.getBytes(i, record);
            if (!staging.isPossible() || !setStaged(value, record, key, raised))
                setValueRecordForKeyframe(value, record, key, raised);
        }
    }
    raised.during([this] { invalidate(); });
}

void KWKeyFramedChannel::setValueRecordForKeyframe(float value, Record record, float key) {
    const auto alive = weak_from_this().lock();
    KWFirstException raised;
    setValueRecordForKeyframe(value, record, key, raised);
    raised.rethrow();
}

// The notice and the registration of the inverse run code of others, who may edit this channel or
// let go of it. So callers keep it alive, and the key is looked up anew after each.
void KWKeyFramedChannel::setValueRecordForKeyframe(float value, Record record, float key,
                                                   KWFirstException& raised) {
    if (std::isnan(key))
        return;
    raised.during([&] { KWChannel::setValueForTime(value, KWTime(key)); });
    registerInverseOfSetting(key, raised);
    put(value, record, key);
}

void KWKeyFramedChannel::put(float value, Record record, float key) {
    const std::size_t after = position(key);
    if (_regular) [[likely]] {
        if (after != 0 && lists().keys[after - 1] == key)
            replaceKey(after - 1, value, record);
        else
            insertKey(after, value, record, key);
        return;
    }
    if (const std::uint32_t index = indexOf(key); index != KWNotFound)
        replaceKey(index, value, record);
    else
        insertKey(after, value, record, key);
}

KWUndoManager* KWKeyFramedChannel::recordingUndoManager() const {
    return isManipulating() || weak_from_this().expired() ? nullptr : undoManager();
}

// What setting a key would miss in an irregular channel.
void KWKeyFramedChannel::checkSettable(float key) const {
    if (_regular) [[likely]]
        return;
    const std::uint32_t index = indexOf(key);
    const std::size_t needed = index == KWNotFound ? position(key) : std::size_t{index} + 1;
    if (index == KWNotFound && needed == lists().keys.size())
        return;
    if (lists().values.size() < needed || lists().records.size() < needed)
        throw std::out_of_range("a key has no value or no shape");
}

void KWKeyFramedChannel::registerInverseOfSetting(float key, KWFirstException& raised) {
    KWUndoManager* undoManager = recordingUndoManager();
    if (!undoManager)
        return;
    checkSettable(key);
    const std::uint32_t index = indexOf(key);
    if (index == KWNotFound)
        undoManager->registerUndo(
            weak_from_this(), [this, key] { removeValueForKeyframe(key); }, raised);
    else
        registerSetting(*undoManager, index, raised);
}

// Reads the lists as they are, staged or not. Most records are neutral: then the action is so small
// that std::function allocates nothing.
void KWKeyFramedChannel::registerSetting(KWUndoManager& undoManager, std::size_t index,
                                         KWFirstException& raised) {
    const float key = _frames.keys[index];
    const float value = _frames.values[index];
    KWUndoManager::Action action;
    if (_frames.records.isNeutral(index)) {
        action = [this, key, value] { setValueForKeyframe(value, KWTime(key)); };
    } else if (_frames.records.isOdd(index)) {
        action = [this, key, value, record = _frames.records.data(index)] {
            setValueRecordForKeyframe(value, record, key);
        };
    } else {
        std::array<std::byte, KWKeyFrameRecords::recordSize> record;
        _frames.records.getBytes(index, record);
        action = [this, key, value, record] { setValueRecordForKeyframe(value, record, key); };
    }
    undoManager.registerUndo(weak_from_this(), std::move(action), raised);
}

void KWKeyFramedChannel::modifyHermiteValueForKeyframe(const KWData& hermite, KWTime key) {
    if (hermite.size() != sizeof(HJHermiteParam))
        throw KWException("KWHermiteParam size mismatch");
    replaceRecordForKeyframe(RecordCopy(hermite).bytes(), key.time());
}

void KWKeyFramedChannel::modifyHermiteParamForKeyframe(const HJHermiteParam* param, KWTime key) {
    if (param)
        replaceRecordForKeyframe(RecordCopy(std::as_bytes(std::span(param, 1))).bytes(),
                                 key.time());
}

// Also takes records of odd length, to put back one that was replaced.
void KWKeyFramedChannel::replaceRecordForKeyframe(Record record, float key) {
    const auto alive = weak_from_this().lock();
    std::uint32_t index = indexOf(key);
    if (index == KWNotFound)
        return;
    if (index >= lists().records.size())
        throw std::out_of_range("a key has no shape");
    KWFirstException raised;
    if (KWUndoManager* undoManager = recordingUndoManager()) {
        undoManager->registerUndo(
            weak_from_this(),
            [this, key, old = lists().records.data(index)] { replaceRecordForKeyframe(old, key); },
            raised);
        index = indexOf(key);
        if (index >= lists().records.size())
            return raised.rethrow();
    }
    replaceKey(index, std::nullopt, record);
    raised.during([this] { invalidate(); });
    raised.during([this] { didChange(); });
    raised.rethrow();
}

// --- Removing keys

void KWKeyFramedChannel::removeValueForKeyframe(KWTime key) {
    const auto alive = weak_from_this().lock();
    KWFirstException raised;
    removeKeyframe(key.time(), raised);
    raised.rethrow();
}

void KWKeyFramedChannel::removeValuesForKeyframes(const std::vector<KWTime>& keys) {
    const auto alive = weak_from_this().lock();
    // The list may be a selection that observers prune as the keys go.
    const std::vector<KWTime> removed = keys;
    KWFirstException raised;
    {
        Staging staging(*this, removed.size());
        for (const KWTime key : removed)
            if (!staging.isPossible() || !removeStaged(key.time(), raised))
                removeKeyframe(key.time(), raised);
    }
    raised.rethrow();
}

void KWKeyFramedChannel::removeKeyframe(float key, KWFirstException& raised) {
    std::uint32_t index = indexOf(key);
    if (index == KWNotFound)
        return;
    if (index >= lists().values.size() || index >= lists().records.size())
        throw std::out_of_range("a key has no value or no shape");
    if (KWUndoManager* undoManager = recordingUndoManager()) {
        registerSetting(*undoManager, index, raised);
        index = indexOf(key);
        if (index >= lists().values.size() || index >= lists().records.size())
            return;
    }
    removeKey(index);
    raised.during([this] { invalidate(); });
}

void KWKeyFramedChannel::removeAllKeyframes() {
    const auto alive = weak_from_this().lock();
    KWFirstException raised;
    removeEveryKeyframe(raised);
    raised.rethrow();
}

void KWKeyFramedChannel::removeEveryKeyframe(KWFirstException& raised) {
    if (KWUndoManager* undoManager = recordingUndoManager()) {
        auto old = std::make_shared<const KWKeyFrames>(lists());
        undoManager->registerUndo(
            weak_from_this(), [this, old = std::move(old)] { setFramesForKeyframes(*old); },
            raised);
    }
    clearKeys();
}

// --- The lists themselves

void KWKeyFramedChannel::insertKey(std::size_t index, float value, Record record, float key) {
    KWKeyFrames& frames = lists();
    // An insertion behind the last key is one behind the last value and the last record, however
    // many there are.
    const bool appends = index == frames.keys.size();
    const std::size_t valueIndex = appends ? frames.values.size() : index;
    const std::size_t recordIndex = appends ? frames.records.size() : index;
    if (valueIndex > frames.values.size() || recordIndex > frames.records.size())
        throw std::out_of_range("a key has no value or no shape");
    // All that may throw comes first.
    KWPrepareInsert(frames.keys);
    KWPrepareInsert(frames.values);
    if (_regular)
        KWPrepareInsert(_tangents);
    frames.records.insert(recordIndex, record);
    keysChange();
    frames.keys.insert(frames.keys.begin() + static_cast<std::ptrdiff_t>(index), key);
    frames.values.insert(frames.values.begin() + static_cast<std::ptrdiff_t>(valueIndex), value);
    if (!_regular || frames.records.hasOddLengths()) [[unlikely]]
        return refresh();
    _tangents.insert(_tangents.begin() + static_cast<std::ptrdiff_t>(index), KWKeyFrameTangents{});
    refreshTangents(index < 2 ? 0 : index - 2, index + 1);
}

// Without a value only the record is replaced.
void KWKeyFramedChannel::replaceKey(std::size_t index, std::optional<float> value, Record record) {
    if ((value && index >= lists().values.size()) || index >= lists().records.size())
        throw std::out_of_range("a key has no value or no shape");
    lists().records.replace(index, record);
    keysChange();
    if (value)
        lists().values[index] = *value;
    if (!_regular || lists().records.hasOddLengths()) [[unlikely]]
        return refresh();
    refreshTangents(index < 2 ? 0 : index - 2, index + 1);
}

void KWKeyFramedChannel::removeKey(std::size_t index) {
    const auto at = static_cast<std::ptrdiff_t>(index);
    keysChange();
    lists().keys.erase(lists().keys.begin() + at);
    lists().values.erase(lists().values.begin() + at);
    lists().records.erase(index);
    if (!_regular) [[unlikely]]
        return refresh();
    _tangents.erase(_tangents.begin() + at);
    refreshTangents(index < 2 ? 0 : index - 2, index);
}

void KWKeyFramedChannel::clearKeys() {
    keysChange();
    lists().keys.clear();
    lists().values.clear();
    lists().records.clear();
    _tangents.clear();
    _regular = true;
}

// --- Manipulation

void KWKeyFramedChannel::startManipulation() {
    _saved = lists();
    KWChannel::startManipulation();
}

void KWKeyFramedChannel::stopManipulation() {
    const auto alive = weak_from_this().lock();
    if (areEqual(lists().keys, _saved.keys) && areEqual(lists().values, _saved.values)) {
        KWChannel::stopManipulation();
        return;
    }
    const KWKeyFrames start = _saved;
    KWKeyFrames end = lists();
    KWFirstException raised;
    try {
        checkComplete(start);
        checkComplete(end);
        replay(start, end, raised);
    } catch (...) {
        // Out of memory, say: at least the keys are not lost.
        KWChannel::stopManipulation();
        lists() = std::move(end);
        keysChange();
        refresh();
        throw;
    }
    raised.rethrow();
}

// Without a start the way back registers as well, and belongs to the same step.
void KWKeyFramedChannel::replay(const KWKeyFrames& start, const KWKeyFrames& end,
                                KWFirstException& raised) {
    UndoGroup group(weak_from_this().expired() ? nullptr : undoManager());
    removeEveryKeyframe(raised);
    setFramesForKeyframes(start, raised);
    KWChannel::stopManipulation();
    removeEveryKeyframe(raised);
    setFramesForKeyframes(end, raised);
    raised.during([&group] { group.close(); });
}
