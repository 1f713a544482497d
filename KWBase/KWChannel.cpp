#include <KWBase/KWChannel.h>
#include <KWBase/KWUnitController.h>
#include <KWFoundation/KWCoder.h>
#include <KWFoundation/KWFirstException.h>
#include <KWFoundation/KWNotificationCenter.h>

#include <stdexcept>
#include <typeinfo>

// In KWChannelClasses.cpp, which knows all of them.
bool KWRegisterChannelClasses();

namespace {

// Done here, as whoever uses any part of the model links this source, and so can read archives that
// hold the other parts.
[[maybe_unused]] const bool classesAreRegistered = KWRegisterChannelClasses();

/// The user sees what is stored in internal units, whose code is 0 for either kind.
float valueInUserUnitOfType(float value, std::int32_t unitType, const KWUnitController& units) {
    switch (unitType) {
    case KWUnitTypeLength:
        return units.convertLengthFromUnit(value, KWLengthUnitMeter);
    case KWUnitTypeAngle:
        return units.convertAngleFromUnit(value, KWAngleUnitRadian);
    default:
        return value;
    }
}

} // namespace

KWChannel::KWChannel(std::string name) : _name(std::move(name)) {}

KWChannel::~KWChannel() = default;

const KWClass& KWChannel::classObject() {
    static constinit const KWClass theClass{"KWChannel", &KWObject::classObject, 2,
                                            KWClass::make<KWChannel>, makeUnknownChannel};
    return theClass;
}

KWColor KWChannel::defaultChannelColor(std::int32_t index) {
    switch (index) {
    case 0:
        return KWColor::magentaColor();
    case 1:
        return KWColor::yellowColor();
    case 2:
        return KWColor::cyanColor();
    case 3:
        return KWColor::redColor();
    case 4:
        return KWColor::greenColor();
    case 5:
        return KWColor::blueColor();
    case 6:
        return KWColor::blackColor();
    default:
        return KWColor::whiteColor();
    }
}

// --- Owner; the group is the business of KWChannelGroup.cpp.

KWChannelOwner* KWChannel::owner() const {
    const auto link = _owner.lock();
    return link ? link->owner : nullptr;
}

void KWChannel::setOwner(KWChannelOwner* owner) {
    _owner = owner ? owner->link() : std::weak_ptr<const KWChannelOwner::Link>();
    _archivedOwner.reset();
    _isOwnerForEditing = false;
}

void KWChannel::setOwnerForEditing(KWChannelOwner* owner) {
    const auto archived = ownerForArchive();
    setOwner(owner);
    _archivedOwner = archived;
    _isOwnerForEditing = true;
}

void KWChannel::setOwnerOf(const KWChannel& other) {
    _owner = other._owner;
    _archivedOwner = other._archivedOwner;
    _isOwnerForEditing = other._isOwnerForEditing;
}

KWUndoManager* KWChannel::undoManager() const {
    KWChannelOwner* const user = owner();
    return user ? user->undoManager() : nullptr;
}

// --- The kept value.

void KWChannel::setValid(bool valid) {
    const bool old = _valid;
    _valid = valid;
    if (!isObserved())
        return;
    const auto alive = weak_from_this().lock();
    didChangeValueForKey("valid", old, valid);
}

float KWChannel::value() const {
    return _valid ? _cachedValue : valueForTime(_updateTime);
}

void KWChannel::updateForTime(KWTime time) {
    if (_valid && _updateTime && *_updateTime == time)
        return;
    _cachedValue = valueForUpdate(time);
    _updateTime = time;
    setValid(true);
}

// --- The function.

float KWChannel::valueForTime(std::optional<KWTime>) const {
    return 0;
}

void KWChannel::valuesForTimes(std::span<const float> times, std::span<float> values) const {
    if (times.size() != values.size())
        throw std::invalid_argument("valuesForTimes: as many values as times");
    for (std::size_t k = 0; k < times.size(); ++k)
        values[k] = valueForTime(KWTime(times[k]));
}

void KWChannel::setValueForTime(float, std::optional<KWTime>) {
    // Whoever is told here may let go of the channel, or of its owner, before the next is told.
    const auto alive = weak_from_this().lock();
    KWFirstException raised;
    raised.during([this] { invalidate(); });
    raised.during([this] {
        if (KWChannelOwner* const user = owner())
            user->invalidate();
    });
    raised.during([this] { didChange(); });
    raised.rethrow();
}

void KWChannel::didChange() {
    KWNotificationCenter::defaultCenter().postNotificationNameObject(KWChannelChangedNotification,
                                                                     this);
}

// --- Units. The controller is asked for first, so that it exists once any value has been shown.

float KWChannel::valueInUserUnitForTime(std::optional<KWTime> time) const {
    const KWUnitController& units = KWUnitController::sharedUnitController();
    return valueInUserUnitOfType(valueForTime(time), _unitType, units);
}

float KWChannel::valueInUserUnit() const {
    const KWUnitController& units = KWUnitController::sharedUnitController();
    return valueInUserUnitOfType(value(), _unitType, units);
}

float KWChannel::convertValueToUserUnit(float value) const {
    const KWUnitController& units = KWUnitController::sharedUnitController();
    switch (_unitType) {
    case KWUnitTypeLength:
        return units.convertLengthFromInternalUnit(value);
    case KWUnitTypeAngle:
        return units.convertAngleFromInternalUnit(value);
    default:
        return value;
    }
}

float KWChannel::convertValueFromUserUnit(float value) const {
    const KWUnitController& units = KWUnitController::sharedUnitController();
    switch (_unitType) {
    case KWUnitTypeLength:
        return units.convertLengthToInternalUnit(value);
    case KWUnitTypeAngle:
        return units.convertAngleToInternalUnit(value);
    default:
        return value;
    }
}

// --- Copies and archives.

bool KWChannel::takeContentsOf(const KWChannel& other) {
    if (typeid(other) != typeid(*this))
        return false;
    setName(other.name());
    setChannelColorIndex(other.channelColorIndex());
    setUnitType(other.unitType());
    return true;
}

void KWChannel::encodeWithCoder(KWCoder& coder) const {
    KWObject::encodeWithCoder(coder);
    if (coder.allowsKeyedCoding())
        encodeWithKeys(coder);
    else
        encodeInOrder(coder);
}

bool KWChannel::initWithCoder(KWCoder& coder) {
    if (coder.allowsKeyedCoding())
        decodeWithKeys(coder);
    else
        decodeInOrder(coder);
    _valid = false;
    _manipulating = false;
    _updateTime = KWTime(0);
    _cachedValue = 0;
    return true;
}

void KWChannel::encodeWithKeys(KWCoder& coder) const {
    coder.encodeObjectForKey(_name, "name");
    coder.encodeInt32ForKey(_colorIndex, "colorIndex");
    coder.encodeConditionalObjectForKey(_channelGroup.lock(), "channelGroup");
    coder.encodeInt32ForKey(_unitType, "unitType");
    coder.encodeConditionalObjectForKey(ownerForArchive(), "owner");
}

void KWChannel::decodeWithKeys(KWCoder& coder) {
    _name = coder.decodeStringForKey("name").value_or(std::string());
    _colorIndex = coder.decodeInt32ForKey("colorIndex");
    _unitType = coder.decodeInt32ForKey("unitType");
    takeArchivedGroup(coder.decodeBackPointerOfClassForKey<KWObject>("channelGroup"));
    takeArchivedOwner(coder.decodeBackPointerOfClassForKey<KWObject>("owner"));
}

// Version 1 brought the group, version 2 the unit type. The owner is in none.

void KWChannel::encodeInOrder(KWCoder& coder) const {
    const std::int64_t version = coder.versionForClassName(classObject().name());
    coder.encodeObject(_name);
    coder.encodeValueOfObjCTypeAt("i", &_colorIndex);
    if (version >= 1)
        coder.encodeConditionalObject(_channelGroup.lock());
    if (version >= 2)
        coder.encodeValueOfObjCTypeAt("i", &_unitType);
}

void KWChannel::decodeInOrder(KWCoder& coder) {
    const std::int64_t version = coder.versionForClassName(classObject().name());
    _name = coder.decodeString("name").value_or(std::string());
    coder.decodeValueOfObjCTypeAt("i", &_colorIndex);
    takeArchivedGroup(version >= 1 ? coder.decodeBackPointerOfClass<KWObject>("channelGroup")
                                   : nullptr);
    _unitType = KWUnitTypeNone;
    if (version >= 2)
        coder.decodeValueOfObjCTypeAt("i", &_unitType);
    takeArchivedOwner(nullptr);
}

std::shared_ptr<KWObject> KWChannel::ownerForArchive() const {
    KWChannelOwner* const user = owner();
    if (!user || _isOwnerForEditing)
        return _archivedOwner.lock();
    auto* const object = dynamic_cast<KWObject*>(user);
    return object ? object->weak_from_this().lock() : nullptr;
}

void KWChannel::takeArchivedGroup(const std::shared_ptr<KWObject>& group) {
    _channelGroup = group;
}

void KWChannel::takeArchivedOwner(const std::shared_ptr<KWObject>& owner) {
    auto* const user = dynamic_cast<KWChannelOwner*>(owner.get());
    setOwner(user);
    if (!user)
        _archivedOwner = owner;
}
