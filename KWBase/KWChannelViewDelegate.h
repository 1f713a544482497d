#pragma once

#include <KWFoundation/KWExport.h>

#include <QColor>
#include <memory>
#include <optional>

class KWChannel;
class KWKeyCell;
class KWNotification;

/// What a curve view asks of, and tells, an object of its host. Each member has a default that does
/// nothing and stands for "does not respond". A view does not keep its delegate alive: once the
/// delegate is gone the view has none.
class KW_EXPORT KWChannelViewDelegate {
  public:
    /// KWChannelKeySelectionChangedNotification; its object is the view.
    virtual void selectionDidChange(const KWNotification& notification);

    /// In what colour to draw a secondary channel; its alpha is not used. Nothing, or an invalid
    /// colour, for the view's own choice.
    virtual std::optional<QColor> colorForChannel(const std::shared_ptr<KWChannel>& channel);

    /// The action of the view's key cells, for hosts that send it. The view does not.
    virtual void keyAction(const KWKeyCell& cell);

    /// Holds the delegate's address as long as there is a delegate.
    struct Link {
        KWChannelViewDelegate* delegate;
    };
    std::weak_ptr<const Link> link() const { return _link; }

  protected:
    KWChannelViewDelegate();
    /// Being a delegate is not copied: views of the other stay the other's.
    KWChannelViewDelegate(const KWChannelViewDelegate&);
    KWChannelViewDelegate& operator=(const KWChannelViewDelegate&) { return *this; }
    virtual ~KWChannelViewDelegate();

    /// Leaves every view at once. A class whose members hold views calls this first in its
    /// destructor, so that no view calls a delegate that is half gone.
    void resign() { _link.reset(); }

  private:
    std::shared_ptr<const Link> _link;
};
