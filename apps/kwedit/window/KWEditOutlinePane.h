#pragma once

#include <KWBase/KWEmbeddedChannelController.h>
#include <KWDesktop/KWChannelUndoRecorder.h>

#include <apps/kwedit/window/KWEditSession.h>

#include <QWidget>
#include <span>

/// The list of elements, their groups and channels, each with its value at the current time, which
/// can be typed anew. Below it stand buttons for the commands of elements. Selecting an element, or
/// what is in it, selects the element in the session, and the other way about.
class KWEditOutlinePane : public QWidget {
    Q_OBJECT

  public:
    /// The session must outlive this; `actions` get a button each.
    KWEditOutlinePane(KWEditSession& session, std::span<QAction* const> actions,
                      QWidget* parent = nullptr);
    ~KWEditOutlinePane() override;

    QTreeView& outline() const { return *_controller.outline(); }
    /// What is selected: an element, a group or a channel; null for nothing.
    std::shared_ptr<KWObject> selectedItem() const;
    void selectItem(const std::shared_ptr<KWObject>& item);
    /// The element that an item is or is in; null for none.
    std::shared_ptr<KWElement> elementOf(const std::shared_ptr<KWObject>& item) const;

  Q_SIGNALS:
    void channelSelected(const std::shared_ptr<KWChannel>& channel);

  private:
    void reload();
    void itemSelected();
    void followSelection();

    KWEditSession& _session;
    KWEmbeddedChannelController _controller;
    KWChannelUndoRecorder _undo{_controller};
    bool _isFollowing = false;
};
