#include <KWBase/KWAlgebricChannel.h>
#include <KWBase/KWConstantChannel.h>
#include <KWBase/KWKeyFramedChannel.h>
#include <KWDesktop/KWChannelUndoRecorder.h>
#include <KWFoundation/KWLog.h>
#include <KWFoundation/KWNotificationCenter.h>
#include <KWFoundation/KWUndoManager.h>

#include <bit>
#include <cstdint>
#include <exception>
#include <utility>
#include <vector>

namespace {

using Channel = std::shared_ptr<KWChannel>;
using Text = std::optional<std::string>;
using Records = std::vector<std::pair<KWTime, KWData>>;
using OwnerLink = std::weak_ptr<const KWChannelOwner::Link>;

// Each of the following puts something back and registers what was there in turn.

template <class C, class Value>
void registerPutBack(C& channel, void (*putBack)(C&, const Value&), Value value) {
    if (KWUndoManager* const manager = channel.undoManager())
        manager->registerUndo(
            channel.weak_from_this(),
            [&channel, putBack, value = std::move(value)] { putBack(channel, value); });
}

/// Says that the channel is another now, where an edit did not.
void tell(KWChannel& channel) {
    channel.KWChannel::setValueForTime(0, std::nullopt);
}

Text textOf(const KWAlgebricChannel& channel) {
    return channel.sourceText() ? channel.sourceText() : channel.expression();
}

void putBackText(KWAlgebricChannel& channel, const Text& text) {
    registerPutBack(channel, putBackText, textOf(channel));
    // An empty text is refused, and leaves the channel without an expression.
    if (!channel.setExpression(text.value_or(std::string())))
        tell(channel);
}

void putBackValue(KWConstantChannel& channel, const float& value) {
    registerPutBack(channel, putBackValue, channel.valueForTime(std::nullopt));
    channel.setValueForTime(value, std::nullopt);
}

void putBackMode(KWKeyFramedChannel& channel, const std::int32_t& mode) {
    registerPutBack(channel, putBackMode, channel.keyFrameChannelMode());
    channel.setKeyFrameChannelMode(mode);
    tell(channel);
}

void putBackRepeat(KWKeyFramedChannel& channel, const std::int32_t& repeat) {
    registerPutBack(channel, putBackRepeat, channel.repeatMode());
    channel.setRepeatMode(repeat);
    tell(channel);
}

Records recordsOf(const KWKeyFramedChannel& channel) {
    Records records;
    for (const KWTime key : channel.allKeyframes())
        if (const auto record = channel.hermiteValueForKeyframe(key))
            records.emplace_back(key, *record);
    return records;
}

/// While it lives, the channel registers nothing itself. Manipulation as such compares keys and
/// values and knows nothing of shapes, so that only its flag is of use.
class Silence {
  public:
    explicit Silence(Channel channel) : _channel(std::move(channel)) {
        if (_channel->isManipulating())
            _channel = nullptr;
        else
            _channel->KWChannel::startManipulation();
    }
    ~Silence() {
        if (_channel)
            _channel->KWChannel::stopManipulation();
    }
    Silence(const Silence&) = delete;
    Silence& operator=(const Silence&) = delete;

  private:
    Channel _channel;
};

void putBackRecords(KWKeyFramedChannel& channel, const Records& records) {
    Records replaced;
    for (const auto& [key, record] : records)
        if (const auto now = channel.hermiteValueForKeyframe(key))
            replaced.emplace_back(key, *now);
    registerPutBack(channel, putBackRecords, std::move(replaced));
    const Silence silence(std::static_pointer_cast<KWChannel>(channel.shared_from_this()));
    for (const auto& [key, record] : records) {
        if (record.size() == sizeof(HJHermiteParam))
            channel.modifyHermiteValueForKeyframe(record, key);
        else if (channel.isKeyframe(key))
            channel.setValueHermiteValueForKeyframe(channel.valueForKeyframe(key), record, key);
    }
}

/// The shapes of those keys that have another one now.
Records changedRecords(const KWKeyFramedChannel& channel, Records records) {
    std::erase_if(records, [&channel](const auto& entry) {
        const auto now = channel.hermiteValueForKeyframe(entry.first);
        return !now || *now == entry.second;
    });
    return records;
}

/// Hands a replaced channel's owner on to the one in its place, where the owner has not.
void adopt(KWChannelOwner& owner, const Channel& gone, const Channel& present) {
    if (gone->owner() == &owner)
        gone->setOwner(nullptr);
    if (!present->owner())
        present->setOwner(&owner);
}

void registerReplacement(const OwnerLink& link, const Channel& old, const Channel& present);

void putBackChannel(const OwnerLink& link, const Channel& old, const Channel& present) {
    const auto alive = link.lock();
    if (!alive)
        return;
    KWChannelOwner& owner = *alive->owner;
    if (old->owner() == &owner)
        old->setOwner(nullptr);
    if (!owner.replaceChannelWith(present, old))
        return;
    adopt(owner, present, old);
    registerReplacement(link, present, old);
}

void registerReplacement(const OwnerLink& link, const Channel& old, const Channel& present) {
    const auto alive = link.lock();
    if (KWUndoManager* const manager = alive ? alive->owner->undoManager() : nullptr)
        manager->registerUndo(present->weak_from_this(),
                              [link, old, present] { putBackChannel(link, old, present); });
}

/// A group of one manager, named, and closed in any case.
class Group {
  public:
    explicit Group(KWUndoManager* manager)
        : _manager(manager
                       ? std::static_pointer_cast<KWUndoManager>(manager->weak_from_this().lock())
                       : nullptr) {
        if (_manager)
            _manager->beginUndoGrouping();
    }
    ~Group() {
        try {
            close();
        } catch (const std::exception& exception) {
            KWLog(std::string("An edit was recorded, but not heard of: ") + exception.what());
        }
    }
    Group(const Group&) = delete;
    Group& operator=(const Group&) = delete;

    bool isOpen() const { return _manager != nullptr; }
    void setName(const std::string& name) {
        // An outer group has a name of its own.
        if (_manager && _manager->groupingLevel() == 1)
            _manager->setActionName(name);
    }
    /// Whether something was registered.
    bool close() {
        const auto manager = std::exchange(_manager, nullptr);
        // An action may have closed the group.
        if (!manager || manager->groupingLevel() == 0)
            return false;
        bool isStep = false;
        const auto token = KWNotificationCenter::defaultCenter().addObserver(
            KWUndoManagerDidChangeNotification, manager.get(),
            [&isStep](const KWNotification&) { isStep = true; });
        manager->endUndoGrouping();
        return isStep;
    }

  private:
    std::shared_ptr<KWUndoManager> _manager;
};

std::uint32_t bitsOf(float value) {
    return std::bit_cast<std::uint32_t>(value);
}

} // namespace

/// A channel as it was before an edit, and what stays open until the edit is done.
struct KWChannelUndoRecorder::Before {
    Before(KWChannelEdit theEdit, const Channel& theChannel);

    void finishKeys();
    void finishShape();
    void finishReplacement(const Channel& present);
    void registerChange();

    KWChannelEdit edit;
    Channel channel;
    OwnerLink owner;
    std::shared_ptr<KWKeyFramedChannel> keyframed;
    std::shared_ptr<KWAlgebricChannel> algebric;
    std::shared_ptr<KWConstantChannel> constant;
    Text text;
    float value = 0;
    std::int32_t mode = 0;
    std::int32_t repeat = 0;
    Records records;
    bool isManipulating = false;
    std::optional<Silence> silence;
    std::optional<Group> group;
};

KWChannelUndoRecorder::Before::Before(KWChannelEdit theEdit, const Channel& theChannel)
    : edit(theEdit), channel(theChannel),
      owner(channel->owner() ? channel->owner()->link() : OwnerLink()),
      keyframed(std::dynamic_pointer_cast<KWKeyFramedChannel>(channel)),
      algebric(std::dynamic_pointer_cast<KWAlgebricChannel>(channel)),
      constant(std::dynamic_pointer_cast<KWConstantChannel>(channel)) {
    if (edit == KWChannelEdit::keys) {
        isManipulating = !channel->isManipulating();
        if (isManipulating)
            channel->startManipulation();
        return;
    }
    if (edit == KWChannelEdit::shape) {
        if (keyframed) {
            records = recordsOf(*keyframed);
            silence.emplace(channel);
        }
        return;
    }
    if (algebric)
        text = textOf(*algebric);
    if (constant)
        value = constant->valueForTime(std::nullopt);
    if (keyframed) {
        mode = keyframed->keyFrameChannelMode();
        repeat = keyframed->repeatMode();
    }
    group.emplace(channel->undoManager());
}

void KWChannelUndoRecorder::Before::finishKeys() {
    if (!isManipulating)
        return;
    Group step(channel->undoManager());
    step.setName(actionName(edit).toStdString());
    channel->stopManipulation();
}

void KWChannelUndoRecorder::Before::finishShape() {
    silence.reset();
    if (!keyframed)
        return;
    Records changed = changedRecords(*keyframed, std::move(records));
    if (changed.empty())
        return;
    Group step(channel->undoManager());
    step.setName(actionName(edit).toStdString());
    registerPutBack(*keyframed, putBackRecords, std::move(changed));
}

void KWChannelUndoRecorder::Before::finishReplacement(const Channel& present) {
    const bool wasOpen = group->isOpen();
    group->setName(actionName(edit).toStdString());
    const bool isRegistered = group->close();
    const auto alive = owner.lock();
    if (isRegistered || !wasOpen || !alive || !present || present == channel)
        return;
    adopt(*alive->owner, channel, present);
    Group step(alive->owner->undoManager());
    step.setName(actionName(edit).toStdString());
    registerReplacement(owner, channel, present);
}

/// Of what registers nothing itself.
void KWChannelUndoRecorder::Before::registerChange() {
    group->setName(actionName(edit).toStdString());
    if (algebric && textOf(*algebric) != text)
        registerPutBack(*algebric, putBackText, text);
    if (constant && bitsOf(constant->valueForTime(std::nullopt)) != bitsOf(value))
        registerPutBack(*constant, putBackValue, value);
    if (keyframed && keyframed->keyFrameChannelMode() != mode)
        registerPutBack(*keyframed, putBackMode, mode);
    if (keyframed && keyframed->repeatMode() != repeat)
        registerPutBack(*keyframed, putBackRepeat, repeat);
}

KWChannelUndoRecorder::KWChannelUndoRecorder(KWChannelEditSource& source, QObject* parent)
    : QObject(parent) {
    connect(&source, &KWChannelEditSource::willEdit, this, &KWChannelUndoRecorder::willEdit);
    connect(&source, &KWChannelEditSource::didEdit, this,
            [this](KWChannelEdit, const Channel& channel) { didEdit(channel); });
    connect(&source, &QObject::destroyed, this, &KWChannelUndoRecorder::finish);
}

KWChannelUndoRecorder::~KWChannelUndoRecorder() {
    finish();
}

QString KWChannelUndoRecorder::actionName(KWChannelEdit edit) {
    switch (edit) {
    case KWChannelEdit::keys:
        return tr("Edit Keys");
    case KWChannelEdit::shape:
        return tr("Change Curve Shape");
    case KWChannelEdit::type:
        return tr("Change Channel Type");
    case KWChannelEdit::paste:
        return tr("Paste Channel");
    case KWChannelEdit::expression:
        return tr("Change Expression");
    case KWChannelEdit::value:
        return tr("Change Value");
    case KWChannelEdit::interpolation:
        return tr("Change Interpolation");
    case KWChannelEdit::repeat:
        return tr("Change Repeat");
    }
    return {};
}

void KWChannelUndoRecorder::willEdit(KWChannelEdit edit, const Channel& channel) {
    finish();
    if (!channel)
        return;
    try {
        _before = std::make_unique<Before>(edit, channel);
    } catch (const std::exception& exception) {
        KWLog(std::string("An edit cannot be recorded: ") + exception.what());
    }
}

void KWChannelUndoRecorder::finish() {
    if (_before)
        didEdit(_before->channel);
}

void KWChannelUndoRecorder::didEdit(const Channel& channel) {
    const std::unique_ptr<Before> before = std::exchange(_before, nullptr);
    if (!before)
        return;
    try {
        switch (before->edit) {
        case KWChannelEdit::keys:
            return before->finishKeys();
        case KWChannelEdit::shape:
            return before->finishShape();
        case KWChannelEdit::type:
        case KWChannelEdit::paste:
            return before->finishReplacement(channel);
        default:
            return before->registerChange();
        }
    } catch (const std::exception& exception) {
        KWLog(std::string("An edit was made but cannot be undone: ") + exception.what());
    }
}
