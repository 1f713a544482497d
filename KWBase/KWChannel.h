#pragma once

#include <KWBase/KWChannelOwner.h>
#include <KWBase/KWTime.h>
#include <KWFoundation/KWColor.h>
#include <KWFoundation/KWExport.h>
#include <KWFoundation/KWObject.h>

#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

class KWChannel;
class KWChannelGroup;

/// Posted by a channel, with itself as object, at each edit of its value. Listeners mark what they
/// show as dirty and read later: a keyframed channel's keys change only after it.
inline constexpr std::string_view KWChannelChangedNotification = "KWM_ChannelChanged";

/// What a channel's values measure. Any other code behaves as KWUnitTypeNone.
enum : std::int32_t {
    KWUnitTypeLength = 0, ///< stored in meters
    KWUnitTypeAngle = 1,  ///< stored in radians
    KWUnitTypeNone = 32,
};

/// A list of channels that others may see change.
using KWChannelList = std::vector<std::shared_ptr<KWChannel>>;

/// A named function from time to a float, with a display colour, a unit type and the value of one
/// time kept. Subclasses supply the function; this base answers 0 at every time.
///
/// Edits belong to one thread. While nobody edits, const members may be called from several.
class KW_EXPORT KWChannel : public KWObject {
  public:
    /// Colour index 0, no unit, no group, no owner, nothing kept.
    explicit KWChannel(std::string name = "no name");
    ~KWChannel() override;

    static const KWClass& classObject();
    const KWClass& isa() const override { return classObject(); }

    /// A channel of class C with the name, colour index and unit type of `channel`, which must be
    /// of exactly that class; null for a channel of another class. Subclasses hand on their
    /// contents too. Group and owner are not handed on.
    template <class C>
    static std::shared_ptr<C> initWithChannel(const KWChannel& channel) {
        auto made = std::make_shared<C>();
        return made->takeContentsOf(channel) ? made : nullptr;
    }

    /// The colours by index: magenta, yellow, cyan, red, green, blue, black; white for any other.
    static KWColor defaultChannelColor(std::int32_t index);

    const std::string& name() const { return _name; }
    void setName(std::string name) { _name = std::move(name); }
    std::int32_t channelColorIndex() const { return _colorIndex; }
    void setChannelColorIndex(std::int32_t index) { _colorIndex = index; }
    KWColor channelColor() const { return defaultChannelColor(_colorIndex); }
    std::int32_t unitType() const { return _unitType; }
    void setUnitType(std::int32_t type) { _unitType = type; }

    /// The group that holds the channel, null for none or when it is gone. Setting it is the
    /// group's business.
    std::shared_ptr<KWChannelGroup> channelGroup() const;
    void setChannelGroup(const std::shared_ptr<KWChannelGroup>& group);

    /// Who uses the channel, null for none or when it is gone. Not kept alive, not told.
    KWChannelOwner* owner() const;
    void setOwner(KWChannelOwner* owner);
    /// An owner for as long as a program edits a channel whose own owner it cannot ask: edits take
    /// part in its undo and are told to it, while archives name the owner that the channel had.
    void setOwnerForEditing(KWChannelOwner* owner);
    /// Becomes what `other` has, also what an archive alone knows of it.
    void setOwnerOf(const KWChannel& other);

    /// The owner's undo manager, or null.
    KWUndoManager* undoManager() const;

    /// Whether the kept value is current. Setting it tells the observers of "valid" each time.
    bool isValid() const { return _valid; }
    void setValid(bool valid);
    void invalidate() { setValid(false); }

    /// An interactive edit is under way. Only the keyframed channel does more than to keep the
    /// flag.
    virtual void startManipulation() { _manipulating = true; }
    virtual void stopManipulation() { _manipulating = false; }
    bool isManipulating() const { return _manipulating; }

    /// The function. Nil counts as 0.0 seconds. Neither reads nor fills the kept value.
    virtual float valueForTime(std::optional<KWTime> time) const;

    /// The function at many times: values[k] is, bit for bit, valueForTime(times[k]). Fastest when
    /// the times rise. std::invalid_argument when the sizes differ; an exception that one of the
    /// evaluations raises passes through, with the values before it filled in.
    virtual void valuesForTimes(std::span<const float> times, std::span<float> values) const;

    /// Sets what a subclass understands by a value at a time. The base stores nothing: it
    /// invalidates itself and its owner and calls didChange(); subclasses store and call it. One
    /// that throws when it is told does not keep the others from being told, nor the edit from
    /// being made; the first exception is rethrown at the end.
    virtual void setValueForTime(float value, std::optional<KWTime> time);

    /// The kept value if it is current, else the function's value at the time of the last update,
    /// which is not kept.
    float value() const;

    /// Makes the kept value that of `time`, and the channel valid; computes nothing when it is
    /// already. When the evaluation raises, the exception passes through and nothing has changed.
    void updateForTime(KWTime time);

    /// True here, also for a channel that never varies.
    virtual bool dependsOnTime() const { return true; }

    /// Posts KWChannelChangedNotification on the default centre.
    void didChange();

    // Through the shared unit controller, from and to the user's unit for the channel's unit type.
    // Without a unit the value comes back unchanged.
    float valueInUserUnitForTime(std::optional<KWTime> time) const;
    float valueInUserUnit() const;
    float convertValueToUserUnit(float value) const;
    float convertValueFromUserUnit(float value) const;

    /// A channel of its own with the contents that the class hands on; null in the base.
    virtual std::shared_ptr<KWChannel> copy() const { return nullptr; }

    /// Name, colour index, group, unit type and owner; group and owner hold only if the archive has
    /// them anyway. An owner is archived when it is a KWObject in a std::shared_ptr. A group or
    /// owner of another class than this program knows is kept as long as it lives and written back.
    ///
    /// Reading takes what the archive has: a nil name is "", and an absent unit type is
    /// KWUnitTypeLength. The value at time 0 counts as the last update's, and is not current.
    void encodeWithCoder(KWCoder& coder) const override;
    bool initWithCoder(KWCoder& coder) override;

    /// Takes over what initWithChannel hands on. False, and nothing taken, unless `other` is of
    /// exactly this object's class. Subclasses call this first.
    virtual bool takeContentsOf(const KWChannel& other);

  private:
    friend class KWUnknownChannel;

    /// What valueForTime answers; a subclass may remember where it was the last time.
    virtual float valueForUpdate(KWTime time) { return valueForTime(time); }

    static std::shared_ptr<KWObject> makeUnknownChannel(std::shared_ptr<KWUnknownObject> contents);
    void encodeWithKeys(KWCoder& coder) const;
    void decodeWithKeys(KWCoder& coder);
    void encodeInOrder(KWCoder& coder) const;
    void decodeInOrder(KWCoder& coder);
    /// The owner as archives take it: null when it is no object in a std::shared_ptr.
    std::shared_ptr<KWObject> ownerForArchive() const;
    /// Objects that an archive named as group and owner, of whatever class and maybe not yet
    /// filled.
    void takeArchivedGroup(const std::shared_ptr<KWObject>& group);
    void takeArchivedOwner(const std::shared_ptr<KWObject>& owner);

    std::string _name;
    /// A KWChannelGroup, or what an archive had in its place.
    std::weak_ptr<KWObject> _channelGroup;
    std::weak_ptr<const KWChannelOwner::Link> _owner;
    /// An owner from an archive that is not a KWChannelOwner here, such as an object of an unknown
    /// class: no use but to be written back.
    std::weak_ptr<KWObject> _archivedOwner;
    bool _isOwnerForEditing = false;
    std::int32_t _colorIndex = 0;
    bool _valid = false;
    bool _manipulating = false;
    std::optional<KWTime> _updateTime;
    float _cachedValue = 0;
    std::int32_t _unitType = KWUnitTypeNone;
};

/// A new channel of class C with that name, that value set at time 0, and that colour index.
template <class C>
std::shared_ptr<C> channelWithNameInitialValueColor(std::string name, float value,
                                                    std::int32_t color) {
    auto channel = std::make_shared<C>(std::move(name));
    channel->setValueForTime(value, KWTime(0));
    channel->setChannelColorIndex(color);
    return channel;
}
