#include <KWBase/KWKeyFrameStage.h>
#include <KWFoundation/KWFirstException.h>
#include <KWFoundation/KWUndoManager.h>

#include <algorithm>
#include <cmath>
#include <memory>

// To take a key out of the lists, or to put one in, costs time by their length. A call that edits
// many notes them on a stage, which is put into the lists in one pass. Whoever is told of an edit
// and looks at the channel sees it as if there were none: the stage is put first. What observers
// are told, the steps of undo and the count of edits are those of edits one by one.

namespace {

constexpr std::size_t fewestEdits = 16;
constexpr std::size_t fewestKeys = 64;

} // namespace

KWKeyFramedChannel::Staging::Staging(KWKeyFramedChannel& channel, std::size_t editCount)
    : _channel(channel), _isOn(editCount >= fewestEdits && channel.keyframeCount() >= fewestKeys) {}

bool KWKeyFramedChannel::Staging::isPossible() {
    // A stage that has gone was put by somebody who looked, and who may look each time.
    if (!_isOn || (_hasBegun && !_channel._stage))
        return _isOn = false;
    if (_hasBegun)
        return true;
    if (!_channel._regular)
        return _isOn = false;
    auto stage = std::make_unique<KWKeyFrameStage>();
    stage->isRemoved.resize(_channel._frames.keys.size());
    _channel._stage = std::move(stage);
    _channel._regular = false;
    return _hasBegun = true;
}

void KWKeyFramedChannel::putStage() {
    const std::unique_ptr<KWKeyFrameStage> stage = std::move(_stage);
    _frames.remove(stage->isRemoved);
    _frames.merge(stage->added);
    refresh();
}

/// Where the key is in the lists as they are, unless it is removed. Not among those that are added.
std::optional<std::size_t> KWKeyFramedChannel::stagedIndexOf(float key) const {
    const std::vector<float>& keys = _frames.keys;
    const auto place = std::lower_bound(keys.begin(), keys.end(), key);
    if (place == keys.end() || *place != key)
        return std::nullopt;
    const auto index = static_cast<std::size_t>(place - keys.begin());
    return _stage->isRemoved[index] ? std::nullopt : std::optional(index);
}

/// False, and nothing done, when the edit cannot be staged; it never is where keys have been added.
bool KWKeyFramedChannel::removeStaged(float key, KWFirstException& raised) {
    if (!_stage->added.keys.empty() || std::isnan(key))
        return false;
    const std::optional<std::size_t> index = stagedIndexOf(key);
    if (!index)
        return true;
    if (KWUndoManager* const undoManager = recordingUndoManager()) {
        registerSetting(*undoManager, *index, raised);
        if (!_stage) { // somebody has looked
            if (const std::uint32_t now = indexOf(key); now != KWNotFound) {
                if (now >= lists().values.size() || now >= lists().records.size())
                    return true;
                removeKey(now);
                raised.during([this] { invalidate(); });
            }
            return true;
        }
    }
    _stage->isRemoved[*index] = true;
    keysChange();
    raised.during([this] { invalidate(); });
    return true;
}

/// False, and nothing done, when the edit cannot be staged.
bool KWKeyFramedChannel::setStaged(float value, Record record, float key,
                                   KWFirstException& raised) {
    const std::vector<float>& added = _stage->added.keys;
    if (std::isnan(key) || (!added.empty() && !(added.back() < key)))
        return false;
    raised.during([&] { KWChannel::setValueForTime(value, KWTime(key)); });
    if (!_stage) { // somebody has looked
        registerInverseOfSetting(key, raised);
        put(value, record, key);
        return true;
    }
    std::optional<std::size_t> index = stagedIndexOf(key);
    if (KWUndoManager* const undoManager = recordingUndoManager()) {
        if (index)
            registerSetting(*undoManager, *index, raised);
        else
            undoManager->registerUndo(
                weak_from_this(), [this, key] { removeValueForKeyframe(key); }, raised);
        if (!_stage) {
            put(value, record, key);
            return true;
        }
    }
    if (index) {
        _frames.records.replace(*index, record);
        _frames.values[*index] = value;
    } else {
        // All that may throw comes before the lists are put together.
        KWKeyFrames& more = _stage->added;
        const std::size_t count = more.keys.size();
        KWPrepareInsert(more.keys);
        KWPrepareInsert(more.values);
        more.records.insert(count, record);
        try {
            _frames.prepareMerge(more.records, count + 1);
            const std::size_t total = _frames.keys.size() + count + 1;
            if (_tangents.capacity() < total)
                _tangents.reserve(std::max(total, 2 * _tangents.capacity()));
        } catch (...) {
            more.records.erase(count);
            throw;
        }
        more.keys.push_back(key);
        more.values.push_back(value);
    }
    keysChange();
    return true;
}
