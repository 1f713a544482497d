#pragma once

#include <KWBase/KWChannelGroup.h>

/// A list of groups that others may see change.
using KWChannelGroupList = std::vector<std::shared_ptr<KWChannelGroup>>;

/// The group index that stands for the channels in no group; also the answer of indexOfGroupNamed
/// for an unknown name, which therefore addresses those.
inline constexpr std::uint32_t KWUngroupedChannels = 0xffffffff;

/// All channels of one element: some in no group, and named groups of others, both in order.
///
/// A list that an archive did not hold is null: it counts as empty, and nothing can be added to it.
/// A null element, which a host may put into a live list, keeps its place and is otherwise passed
/// over.
class KW_EXPORT KWChannelArray : public KWObject, public KWChannelOwner {
  public:
    KWChannelArray();
    ~KWChannelArray() override;

    static const KWClass& classObject();
    const KWClass& isa() const override { return classObject(); }

    /// Of the ungrouped and of every group's channels, null elements included.
    std::uint32_t channelCount() const;

    /// Appends to the ungrouped channels; sets neither group nor owner. std::invalid_argument for
    /// null.
    void addChannel(const std::shared_ptr<KWChannel>& channel);
    /// Adds to the group of that index; ignored when there is none.
    void addChannelToGroup(const std::shared_ptr<KWChannel>& channel, std::uint32_t group);

    /// Puts `newChannel` where `oldChannel` is, among the ungrouped channels or in the old one's
    /// group. False, and nothing changed, when either is null or they are the same, when the new
    /// one has an owner, or when the old one is neither ungrouped here nor in a group.
    bool replaceChannelWith(const std::shared_ptr<KWChannel>& oldChannel,
                            const std::shared_ptr<KWChannel>& newChannel) override;

    // By index in a group, or among the ungrouped channels: std::out_of_range for either index.
    // Where a null element stands, channelAtIndexInGroup answers null and the others raise the
    // same.
    void setChannelValueAtIndexInGroupForTime(float value, std::uint32_t index, std::uint32_t group,
                                              std::optional<KWTime> time);
    float getChannelValueAtIndexInGroupForTime(std::uint32_t index, std::uint32_t group,
                                               std::optional<KWTime> time) const;
    const std::string& getChannelNameAtIndexInGroup(std::uint32_t index, std::uint32_t group) const;
    const std::shared_ptr<KWChannel>& channelAtIndexInGroup(std::uint32_t index,
                                                            std::uint32_t group) const;

    /// The ungrouped channels, then each group's. Without groups this is the live ungrouped list
    /// itself, null where that is null; otherwise a new list, which lives as long as it is held: to
    /// walk over the channels in a loop, take channelEnumerator().
    std::shared_ptr<KWChannelList> channels() const;

    /// Those channels as they are now, to walk over while the array changes; without null elements.
    KWChannelList channelEnumerator() const;

    const std::shared_ptr<KWChannelList>& ungroupedChannels() const { return _channels; }
    const std::shared_ptr<KWChannelGroupList>& channelGroups() const { return _channelGroups; }

    std::uint32_t channelGroupCount() const;
    /// Null when the index is not below the count.
    std::shared_ptr<KWChannelGroup> channelGroupAtIndex(std::uint32_t index) const;

    /// Appends an empty group; names may repeat.
    void addGroupWithName(std::string name);
    /// Its channels keep their link to it.
    void removeGroup(const std::shared_ptr<KWChannelGroup>& group);
    /// The first of that name, or null.
    std::shared_ptr<KWChannelGroup> groupWithName(std::string_view name) const;
    /// The first of that name, or KWUngroupedChannels.
    std::uint32_t indexOfGroupNamed(std::string_view name) const;

    /// Of every channel, ungrouped and grouped.
    void setChannelsOwner(KWChannelOwner* owner);

    /// Whether any channel depends on time.
    bool dependsOnTime() const;

    /// Copies of every ungrouped channel and of every group. std::invalid_argument when a channel
    /// has none, such as one of the base class.
    std::shared_ptr<KWChannelArray> copy() const;

    /// The ungrouped channels and the groups.
    void encodeWithCoder(KWCoder& coder) const override;
    bool initWithCoder(KWCoder& coder) override;

  private:
    /// The list that a group index addresses; an empty one for a null list.
    const KWChannelList& list(std::uint32_t group) const;
    KWChannel& channelAt(std::uint32_t index, std::uint32_t group) const;
    KWChannelList allElements() const;

    std::shared_ptr<KWChannelList> _channels;
    std::shared_ptr<KWChannelGroupList> _channelGroups;
};
