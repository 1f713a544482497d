#pragma once

#include <KWFoundation/KWExport.h>

#include <memory>

class KWChannel;
class KWUndoManager;

/// What a channel asks of the object that uses it. Each answer has a default that does nothing and
/// stands for "does not respond". A channel does not keep its owner alive: once the owner is gone
/// the channel has none.
class KW_EXPORT KWChannelOwner {
  public:
    /// Where edits of the channel register their inverse; null for no undo. Not owned by the
    /// caller.
    virtual KWUndoManager* undoManager() { return nullptr; }

    /// A channel of this owner was edited: what depends on it is out of date.
    virtual void invalidate() {}

    /// Puts one channel in another's place, such as one of another kind under the same name. False
    /// when this could not be done; nothing has then changed.
    virtual bool replaceChannelWith(const std::shared_ptr<KWChannel>& oldChannel,
                                    const std::shared_ptr<KWChannel>& newChannel);

    /// Holds the owner's address as long as there is an owner.
    struct Link {
        KWChannelOwner* owner;
    };
    std::weak_ptr<const Link> link() const { return _link; }

  protected:
    KWChannelOwner();
    /// Owning is not copied: channels of the other stay the other's.
    KWChannelOwner(const KWChannelOwner&);
    KWChannelOwner& operator=(const KWChannelOwner&) { return *this; }
    virtual ~KWChannelOwner();

    /// Ends the ownership of every channel at once. A final class whose members own channels calls
    /// this first in its destructor, so that no channel calls an owner that is half gone.
    void resign() { _link.reset(); }

  private:
    std::shared_ptr<const Link> _link;
};
