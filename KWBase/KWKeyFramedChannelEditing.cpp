#include <KWBase/KWKeyFrameCurve.h>
#include <KWFoundation/KWException.h>
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
        setValueRecordForKeyframe(value, *hermite, key->time());
}

void KWKeyFramedChannel::setValuesHermiteValuesForKeyframes(
    const std::vector<float>& values, const std::vector<KWData>& hermiteValues,
    const std::vector<KWTime>& keys) {
    const auto alive = weak_from_this().lock();
    for (std::size_t i = 0; i < keys.size(); ++i)
        setValueRecordForKeyframe(values.at(i), hermiteValues.at(i), keys[i].time());
    invalidate();
}

void KWKeyFramedChannel::setFramesForKeyframes(const KWKeyFrames& frames) {
    const auto alive = weak_from_this().lock();
    for (std::size_t i = 0; i < frames.keys.size(); ++i) {
        const float value = frames.values.at(i);
        if (i >= frames.records.size())
            throw std::out_of_range("a key has no shape");
        if (frames.records.isOdd(i)) {
            setValueRecordForKeyframe(value, frames.records.data(i), frames.keys[i]);
        } else {
            std::array<std::byte, KWKeyFrameRecords::recordSize> record;
            frames.records.getBytes(i, record);
            setValueRecordForKeyframe(value, record, frames.keys[i]);
        }
    }
    invalidate();
}

// The notice and the registration of the inverse run code of others, who may edit this channel or
// let go of it. So it is kept alive here, and the key is looked up anew after each.
void KWKeyFramedChannel::setValueRecordForKeyframe(float value, Record record, float key) {
    if (std::isnan(key))
        return;
    const auto alive = weak_from_this().lock();
    KWChannel::setValueForTime(value, KWTime(key));
    registerInverseOfSetting(key);
    const std::size_t after = position(key);
    if (_regular) [[likely]] {
        if (after != 0 && _frames.keys[after - 1] == key)
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

void KWKeyFramedChannel::registerInverseOfSetting(float key) {
    KWUndoManager* undoManager = recordingUndoManager();
    if (!undoManager)
        return;
    const std::uint32_t index = indexOf(key);
    if (index == KWNotFound)
        undoManager->registerUndo(weak_from_this(), [this, key] { removeValueForKeyframe(key); });
    else
        registerSetting(*undoManager, index);
}

// Most records are neutral: then the action is so small that std::function allocates nothing.
void KWKeyFramedChannel::registerSetting(KWUndoManager& undoManager, std::size_t index) {
    const float key = _frames.keys[index];
    const float value = _frames.values.at(index);
    if (index >= _frames.records.size())
        throw std::out_of_range("a key has no shape");
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
    undoManager.registerUndo(weak_from_this(), std::move(action));
}

void KWKeyFramedChannel::modifyHermiteValueForKeyframe(const KWData& hermite, KWTime key) {
    if (hermite.size() != sizeof(HJHermiteParam))
        throw KWException("KWHermiteParam size mismatch");
    replaceRecordForKeyframe(hermite, key.time());
}

void KWKeyFramedChannel::modifyHermiteParamForKeyframe(const HJHermiteParam* param, KWTime key) {
    if (param)
        replaceRecordForKeyframe(std::as_bytes(std::span(param, 1)), key.time());
}

// Also takes records of odd length, to put back one that was replaced.
void KWKeyFramedChannel::replaceRecordForKeyframe(Record record, float key) {
    const auto alive = weak_from_this().lock();
    std::uint32_t index = indexOf(key);
    if (index == KWNotFound)
        return;
    if (index >= _frames.records.size())
        throw std::out_of_range("a key has no shape");
    if (KWUndoManager* undoManager = recordingUndoManager()) {
        undoManager->registerUndo(weak_from_this(), [this, key, old = _frames.records.data(index)] {
            replaceRecordForKeyframe(old, key);
        });
        index = indexOf(key);
        if (index >= _frames.records.size())
            return;
    }
    replaceKey(index, std::nullopt, record);
    invalidate();
    didChange();
}

// --- Removing keys

void KWKeyFramedChannel::removeValueForKeyframe(KWTime key) {
    const auto alive = weak_from_this().lock();
    std::uint32_t index = indexOf(key.time());
    if (index == KWNotFound)
        return;
    if (index >= _frames.values.size() || index >= _frames.records.size())
        throw std::out_of_range("a key has no value or no shape");
    if (KWUndoManager* undoManager = recordingUndoManager()) {
        registerSetting(*undoManager, index);
        index = indexOf(key.time());
        if (index >= _frames.values.size() || index >= _frames.records.size())
            return;
    }
    removeKey(index);
    invalidate();
}

void KWKeyFramedChannel::removeValuesForKeyframes(const std::vector<KWTime>& keys) {
    const auto alive = weak_from_this().lock();
    for (const KWTime key : keys)
        removeValueForKeyframe(key);
}

void KWKeyFramedChannel::removeAllKeyframes() {
    const auto alive = weak_from_this().lock();
    if (KWUndoManager* undoManager = recordingUndoManager()) {
        auto old = std::make_shared<const KWKeyFrames>(_frames);
        undoManager->registerUndo(weak_from_this(),
                                  [this, old = std::move(old)] { setFramesForKeyframes(*old); });
    }
    clearKeys();
}

// --- The lists themselves

void KWKeyFramedChannel::insertKey(std::size_t index, float value, Record record, float key) {
    KWKeyFrames& frames = _frames;
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
    frames.keys.insert(frames.keys.begin() + static_cast<std::ptrdiff_t>(index), key);
    frames.values.insert(frames.values.begin() + static_cast<std::ptrdiff_t>(valueIndex), value);
    if (!_regular || frames.records.hasOddLengths()) [[unlikely]]
        return refresh();
    _tangents.insert(_tangents.begin() + static_cast<std::ptrdiff_t>(index), KWKeyFrameTangents{});
    refreshTangents(index < 2 ? 0 : index - 2, index + 1);
}

// Without a value only the record is replaced.
void KWKeyFramedChannel::replaceKey(std::size_t index, std::optional<float> value, Record record) {
    if ((value && index >= _frames.values.size()) || index >= _frames.records.size())
        throw std::out_of_range("a key has no value or no shape");
    _frames.records.replace(index, record);
    if (value)
        _frames.values[index] = *value;
    if (!_regular || _frames.records.hasOddLengths()) [[unlikely]]
        return refresh();
    refreshTangents(index < 2 ? 0 : index - 2, index + 1);
}

void KWKeyFramedChannel::removeKey(std::size_t index) {
    const auto at = static_cast<std::ptrdiff_t>(index);
    _frames.keys.erase(_frames.keys.begin() + at);
    _frames.values.erase(_frames.values.begin() + at);
    _frames.records.erase(index);
    if (!_regular) [[unlikely]]
        return refresh();
    _tangents.erase(_tangents.begin() + at);
    refreshTangents(index < 2 ? 0 : index - 2, index);
}

void KWKeyFramedChannel::clearKeys() {
    _frames.keys.clear();
    _frames.values.clear();
    _frames.records.clear();
    _tangents.clear();
    _regular = true;
}

void KWKeyFramedChannel::putBack(const KWKeyFrames& frames) {
    _frames = frames;
    refresh();
}

// --- Manipulation

void KWKeyFramedChannel::startManipulation() {
    _saved = _frames;
    KWChannel::startManipulation();
}

void KWKeyFramedChannel::stopManipulation() {
    const auto alive = weak_from_this().lock();
    if (areEqual(_frames.keys, _saved.keys) && areEqual(_frames.values, _saved.values)) {
        KWChannel::stopManipulation();
        return;
    }
    const KWKeyFrames start = _saved;
    const KWKeyFrames end = _frames;
    try {
        checkComplete(start);
        checkComplete(end);
        removeAllKeyframes();
        setFramesForKeyframes(start);
        KWChannel::stopManipulation();
        UndoGroup group(recordingUndoManager());
        removeAllKeyframes();
        setFramesForKeyframes(end);
        group.close();
    } catch (...) {
        // An observer that throws must not cost the keys.
        KWChannel::stopManipulation();
        putBack(end);
        throw;
    }
}
