#include <KWBase/KWChannelView.h>
#include <KWBase/KWKeyChange.h>
#include <KWBase/KWKeyCommands.h>
#include <KWBase/KWKeyPasteboard.h>

#include <QClipboard>
#include <QGuiApplication>
#include <QMimeData>
#include <algorithm>
#include <cmath>
#include <cstring>
#include <optional>
#include <unordered_set>
#include <utility>

// What the commands do to keys.

namespace {

/// The multiple of a step that a time is, but for the last bits of the float that it was made in.
std::optional<double> multipleAt(double time, double rounding, double step) {
    const double multiple = std::nearbyint(time / step);
    if (std::fabs(multiple * step - time) <= rounding)
        return multiple;
    return std::nullopt;
}

/// A time so much later. On its way from one multiple of the step to another it comes to be the
/// very float of that one: keys that are on frames stay on frames.
float movedTime(float time, double by, double step) {
    if (by == 0)
        return time;
    constexpr double bits = 1.0 / (1 << 22);
    const auto from = static_cast<double>(time);
    const double to = from + by;
    const double largest = std::max(std::fabs(from), std::fabs(to));
    const std::optional<double> multiple = multipleAt(to, largest * bits, step);
    if (multiple && multipleAt(from, std::fabs(from) * bits, step))
        return static_cast<float>(*multiple * step);
    return static_cast<float>(to);
}

/// A value that is none stays as it is.
float movedValue(const KWChannel& channel, float stored, double by) {
    if (!std::isfinite(stored))
        return stored;
    const auto shown = static_cast<double>(channel.convertValueToUserUnit(stored));
    return channel.convertValueFromUserUnit(static_cast<float>(shown + by));
}

std::vector<KWKey> keysAt(const KWKeyFramedChannel& channel, const std::vector<KWTime>& times) {
    std::vector<KWKey> keys;
    keys.reserve(times.size());
    for (const KWTime time : times)
        keys.push_back(*KWKeyAt(channel, time));
    return keys;
}

/// The times of keys in their order, each once.
std::vector<KWTime> timesOf(const std::vector<KWKey>& keys) {
    std::vector<KWTime> times;
    std::unordered_set<KWTime> seen;
    for (const KWKey& key : keys)
        if (seen.insert(KWTime(key.time)).second)
            times.emplace_back(key.time);
    return times;
}

HJHermiteParam shapeOf(const KWData& record) {
    HJHermiteParam shape;
    if (!record.empty())
        std::memcpy(&shape, record.data(), std::min(sizeof shape, record.size()));
    return shape;
}

float& partOf(HJHermiteParam& shape, KWKeyShape part) {
    switch (part) {
    case KWKeyShape::bias:
        return shape.bias;
    case KWKeyShape::continuity:
        return shape.continuity;
    default:
        return shape.tension;
    }
}

/// Never null, as the clipboard's may be.
const QMimeData& clipboardData() {
    static const QMimeData none;
    const QMimeData* const data = QGuiApplication::clipboard()->mimeData();
    return data ? *data : none;
}

} // namespace

/// Sets keys in the place of those that are selected, one for each and in the same order.
bool KWKeyCommands::replace(const std::vector<KWKey>& keys, const QString& name) {
    const auto channel = this->channel();
    const std::vector<KWTime> before = selection();
    for (std::size_t i = 0; i < keys.size(); ++i) {
        if (!std::isfinite(keys[i].time) && keys[i].time != before[i].time())
            return refuse(tr("The keys cannot be moved that far."));
        const auto old = channel->valueForKeyframe(before[i]);
        if (!std::isfinite(keys[i].value) && std::isfinite(old))
            return refuse(tr("The values would become too large."));
    }
    return perform({before, keys}, timesOf(keys), name);
}

// --- Moving, and exact entry.

bool KWKeyCommands::nudge(int timeSteps, int valueSteps) {
    _fault.clear();
    const auto channel = this->channel();
    const std::vector<KWTime> selected = selection();
    if (selected.empty())
        return false;
    std::vector<KWKey> keys = keysAt(*channel, selected);
    for (KWKey& key : keys) {
        if (timeSteps != 0)
            key.time = movedTime(key.time, timeSteps * _timeStep, _timeStep);
        if (valueSteps != 0)
            key.value = movedValue(*channel, key.value, valueSteps * _valueStep);
    }
    return replace(keys, tr("Move Keys"));
}

bool KWKeyCommands::setTime(float seconds) {
    _fault.clear();
    const auto channel = this->channel();
    const std::vector<KWTime> selected = selection();
    if (selected.size() != 1)
        return false;
    if (!std::isfinite(seconds))
        return refuse(tr("A key needs a time that is a number."));
    std::vector<KWKey> keys = keysAt(*channel, selected);
    keys.front().time = seconds;
    return replace(keys, tr("Move Key"));
}

bool KWKeyCommands::offsetTimes(float seconds) {
    _fault.clear();
    const auto channel = this->channel();
    const std::vector<KWTime> selected = selection();
    if (selected.empty())
        return false;
    if (!std::isfinite(seconds))
        return refuse(tr("A key needs a time that is a number."));
    std::vector<KWKey> keys = keysAt(*channel, selected);
    for (KWKey& key : keys)
        key.time = movedTime(key.time, static_cast<double>(seconds), _timeStep);
    return replace(keys, tr("Move Keys"));
}

bool KWKeyCommands::setValues(float value) {
    const auto channel = this->channel();
    return setStoredValues(channel ? channel->convertValueFromUserUnit(value) : value);
}

bool KWKeyCommands::setStoredValues(float value) {
    _fault.clear();
    const auto channel = this->channel();
    const std::vector<KWTime> selected = selection();
    if (selected.empty())
        return false;
    if (!std::isfinite(value))
        return refuse(tr("A key needs a value that is a number."));
    std::vector<KWKey> keys = keysAt(*channel, selected);
    for (KWKey& key : keys)
        key.value = value;
    return replace(keys, tr("Change Value"));
}

bool KWKeyCommands::offsetValues(float value) {
    _fault.clear();
    const auto channel = this->channel();
    const std::vector<KWTime> selected = selection();
    if (selected.empty())
        return false;
    if (!std::isfinite(value))
        return refuse(tr("A key needs a value that is a number."));
    std::vector<KWKey> keys = keysAt(*channel, selected);
    if (value != 0)
        for (KWKey& key : keys)
            key.value = movedValue(*channel, key.value, static_cast<double>(value));
    return replace(keys, tr("Move Keys"));
}

bool KWKeyCommands::setShapes(KWKeyShape part, float number) {
    _fault.clear();
    const auto channel = this->channel();
    const std::vector<KWTime> selected = selection();
    if (selected.empty())
        return false;
    if (!std::isfinite(number))
        return refuse(tr("A shape needs a number."));
    std::vector<KWKey> keys = keysAt(*channel, selected);
    for (KWKey& key : keys) {
        HJHermiteParam shape = shapeOf(key.record);
        partOf(shape, part) = number;
        key.record = KWKeyFramedChannel::hermiteDataFrom(&shape);
    }
    return replace(keys, tr("Change Curve Shape"));
}

bool KWKeyCommands::resetShapes() {
    _fault.clear();
    const auto channel = this->channel();
    const std::vector<KWTime> selected = selection();
    if (selected.empty())
        return false;
    std::vector<KWKey> keys = keysAt(*channel, selected);
    for (KWKey& key : keys) {
        HJHermiteParam shape = shapeOf(key.record);
        shape.tension = shape.bias = shape.continuity = 0;
        key.record = KWKeyFramedChannel::hermiteDataFrom(&shape);
    }
    return replace(keys, tr("Reset Curve Shape"));
}

// --- Removing and adding.

bool KWKeyCommands::remove(const QString& name) {
    const std::vector<KWTime> selected = selection();
    return !selected.empty() && perform({selected, {}}, {}, name);
}

bool KWKeyCommands::deleteKeys() {
    _fault.clear();
    return remove(tr("Delete Keys"));
}

/// Sets keys besides those that there are, and selects them.
bool KWKeyCommands::insert(std::vector<KWKey> keys, const QString& name) {
    for (const KWKey& key : keys)
        if (!std::isfinite(key.time))
            return refuse(tr("The keys would come to be too far away."));
    std::vector<KWTime> times = timesOf(keys);
    return perform({{}, std::move(keys)}, std::move(times), name);
}

bool KWKeyCommands::duplicate() {
    _fault.clear();
    const auto channel = this->channel();
    const std::vector<KWTime> selected = keys();
    if (selected.empty())
        return false;
    const double offset = static_cast<double>(selected.back().time()) -
                          static_cast<double>(selected.front().time()) + _timeStep;
    std::vector<KWKey> copies = keysAt(*channel, selected);
    for (KWKey& key : copies)
        key.time = movedTime(key.time, offset, _timeStep);
    return insert(std::move(copies), tr("Duplicate Keys"));
}

// --- The clipboard.

std::unique_ptr<QMimeData> KWKeyCommands::mimeData() const {
    const auto channel = this->channel();
    const std::vector<KWTime> selected = keys();
    if (selected.empty())
        return nullptr;
    KWCopiedKeys copied;
    copied.keys = keysAt(*channel, selected);
    copied.unitType = channel->unitType();
    for (const KWKey& key : copied.keys)
        copied.userValues.push_back(channel->convertValueToUserUnit(key.value));
    return KWMimeDataFromKeys(copied);
}

bool KWKeyCommands::copy() {
    _fault.clear();
    std::unique_ptr<QMimeData> data = mimeData();
    if (!data)
        return false;
    QGuiApplication::clipboard()->setMimeData(data.release());
    return true;
}

bool KWKeyCommands::cut() {
    return copy() && remove(tr("Cut Keys"));
}

bool KWKeyCommands::canPaste() const {
    return channel() && KWMayHoldKeys(clipboardData());
}

bool KWKeyCommands::paste() {
    return _view && pasteMimeData(clipboardData(), KWTime(_view->currentTime()));
}

bool KWKeyCommands::pasteInPlace() {
    return pasteMimeDataInPlace(clipboardData());
}

bool KWKeyCommands::pasteMimeData(const QMimeData& data, KWTime time) {
    return pasteFrom(data, &time);
}

bool KWKeyCommands::pasteMimeDataInPlace(const QMimeData& data) {
    return pasteFrom(data, nullptr);
}

bool KWKeyCommands::pasteFrom(const QMimeData& data, const KWTime* time) {
    _fault.clear();
    const auto channel = this->channel();
    if (!channel)
        return false;
    if (time && !std::isfinite(time->time()))
        return refuse(tr("A key needs a time that is a number."));
    QString fault;
    std::optional<KWCopiedKeys> copied = KWKeysFromMimeData(data, fault);
    if (!copied)
        return refuse(fault);
    std::vector<KWKey>& keys = copied->keys;
    if (copied->unitType != channel->unitType())
        for (std::size_t i = 0; i < keys.size(); ++i) {
            keys[i].value = channel->convertValueFromUserUnit(copied->userValues[i]);
            if (!std::isfinite(keys[i].value) && std::isfinite(copied->userValues[i]))
                return refuse(tr("The values would become too large."));
        }
    if (time) {
        const std::vector<KWTime> times = timesOf(keys);
        const float first = std::min_element(times.begin(), times.end())->time();
        const double by = static_cast<double>(time->time()) - static_cast<double>(first);
        // The first one to the bit, wherever frames are.
        for (KWKey& key : keys)
            key.time =
                key.time == first && by != 0 ? time->time() : movedTime(key.time, by, _timeStep);
    }
    return insert(std::move(keys), tr("Paste Keys"));
}
