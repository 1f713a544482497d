#pragma once

#include <KWBase/KWChannel.h>
#include <KWBase/KWChannelOwner.h>

/// Channels under one name. Every channel in the list has this group as its channelGroup, as long
/// as the list is changed through the group alone.
///
/// A list that an archive did not hold is null: such a group is empty, and nothing can be added.
/// A null element, which a host may put into the live list, keeps its place and is otherwise passed
/// over.
class KW_EXPORT KWChannelGroup : public KWObject, public KWChannelOwner {
  public:
    explicit KWChannelGroup(std::string name = {});
    ~KWChannelGroup() override;

    static const KWClass& classObject();
    const KWClass& isa() const override { return classObject(); }

    /// A nil name, as an archive may hold, reads as "".
    const std::string& name() const { return _name; }
    void setName(std::string name) { _name = std::move(name); }

    /// The live list; null when an archive had none.
    const std::shared_ptr<KWChannelList>& channels() const { return _channels; }
    /// Of the list's elements.
    std::uint32_t count() const;

    /// Appends the channel, unless it stands in the list, and becomes its group, taking it out of
    /// the group it was in. Nothing happens when this is its group already. std::invalid_argument
    /// for null; std::logic_error, and nothing changed, when the group does not live in a
    /// std::shared_ptr.
    void addChannel(const std::shared_ptr<KWChannel>& channel);

    /// Puts `newChannel` where `oldChannel` is. False, and nothing changed, when either is null or
    /// they are the same, when the new one has an owner, or when the old one is not here. The new
    /// channel is not taken out of a group it was in before.
    bool replaceChannelWith(const std::shared_ptr<KWChannel>& oldChannel,
                            const std::shared_ptr<KWChannel>& newChannel) override;

    /// Takes the channel out, wherever it stands in the list, and leaves it without a group;
    /// nothing happens when it is not here.
    void removeChannel(const std::shared_ptr<KWChannel>& channel);
    void removeAllChannels();

    /// A group of the same name with a copy of every channel. std::invalid_argument when one of
    /// them has none, such as a channel of the base class.
    std::shared_ptr<KWChannelGroup> copy() const;

    /// Name and channels. Reading sets no channel's group: that is in the channel's own part.
    void encodeWithCoder(KWCoder& coder) const override;
    bool initWithCoder(KWCoder& coder) override;

  private:
    /// std::logic_error when the group does not live in a std::shared_ptr.
    std::shared_ptr<KWChannelGroup> sharedSelf();

    std::shared_ptr<KWChannelList> _channels;
    std::string _name;
};
