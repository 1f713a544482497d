#pragma once

#include <KWBase/KWChannelElement.h>
#include <KWDesktop/KWChannelEditSource.h>
#include <KWDesktop/KWOutlineModel.h>
#include <KWFoundation/KWExport.h>
#include <KWFoundation/KWNotificationCenter.h>

#include <QPointer>
#include <QString>
#include <QTreeView>
#include <memory>
#include <string_view>
#include <vector>

/// A small outline of a host's elements, their groups and their channels, to be placed among the
/// host's own views. Beside each channel stands its value, in the user's unit, which the user can
/// type anew: it is stored at the current time.
///
/// With exactly one element the outline begins with that element's groups and ungrouped channels;
/// with any other number, with the elements.
///
/// The host sets elements and time, places channelOutlineView(), and calls update() when channels
/// have come or gone. Values are followed by the outline itself: changes are noted as they come and
/// read in the next pass of the event loop, and never in a cell that is being edited.
///
/// A value that is typed is bracketed by willEdit() and didEdit(). The thread of the user interface
/// only.
class KW_EXPORT KWEmbeddedChannelController : public KWChannelEditSource,
                                              public KWOutlineDataSource {
    Q_OBJECT

  public:
    /// No elements, time 0, no outline.
    explicit KWEmbeddedChannelController(QObject* parent = nullptr);
    /// Destroys the container, unless the host has placed it in a widget of its own: then the
    /// outline stays there, empty.
    ~KWEmbeddedChannelController() override;

    // --- The outline. It comes from one of the three below, each of which takes the place of the
    // one before.

    /// Made here, with a container around it.
    void makeOutline();
    /// From an interface file, a form of Qt Designer with a QTreeView named "channelOV" in a
    /// QWidget named "channelOVContainer", its outermost one. Otherwise false, nothing has changed,
    /// and interfaceError() says what is wrong with the file in one sentence.
    bool loadInterface(const QString& path);
    const QString& interfaceError() const { return _interfaceError; }
    /// The host's own. std::invalid_argument for null.
    void setOutlets(QTreeView* outline, QWidget* container);

    /// The container, which the host places among its own views; null without an outline.
    QWidget* channelOutlineView() const { return _channelOVContainer; }
    QTreeView* outline() const { return _channelOV; }
    /// The outline's model; null without an outline.
    KWOutlineModel* outlineModel() const { return _model; }

    // --- What it shows.

    const std::vector<std::shared_ptr<KWChannelElement>>& elements() const { return _elements; }
    /// Null elements are left out. Shown with the next pass of the event loop, or by update().
    void setElements(std::vector<std::shared_ptr<KWChannelElement>> elements);
    /// Seconds: where typed values are stored. The outline shows the channels' values as they are
    /// kept (KWChannel::value()), which is the host's business to update.
    float currentTime() const { return _currentTime; }
    void setCurrentTime(float time);

    /// Reloads the outline at once.
    void update();
    /// True only while a typed value is being stored: for handlers of notices that want to tell the
    /// controller's own edits from those of others.
    bool ignoresChannelChanged() const { return _ignoreChannelChanged; }

    // Hooks for hosts and subclasses, which do nothing; nobody registers them here.
    virtual void selectionChangedCallback(const KWNotification& notification);
    virtual void timeChangedCallback(const KWNotification& notification);
    virtual void channelChangedCallback(const KWNotification& notification);

    /// Expands every group of the only element, or every element with all it holds.
    void expandOutlineView(QTreeView* view);
    KWTextAttributes textAttributesForIndex(std::uint32_t index) const;

    // --- The outline's data source.

    int outlineViewNumberOfChildrenOfItem(const QTreeView* view,
                                          const std::shared_ptr<KWObject>& item) override;
    std::shared_ptr<KWObject>
    outlineViewChildOfItem(const QTreeView* view, int index,
                           const std::shared_ptr<KWObject>& item) override;
    bool outlineViewIsItemExpandable(const QTreeView* view,
                                     const std::shared_ptr<KWObject>& item) override;
    /// "channels": the item's name; "values": a channel's value, a float, and nothing for other
    /// items; any other column: "".
    QVariant
    outlineViewObjectValueForTableColumnByItem(const QTreeView* view, std::string_view column,
                                               const std::shared_ptr<KWObject>& item) override;
    /// The values of channels alone.
    bool outlineViewShouldEditTableColumnItem(const QTreeView* view, std::string_view column,
                                              const std::shared_ptr<KWObject>& item) override;
    /// Stores a number as the value of a channel at the current time.
    void
    outlineViewSetObjectValueForTableColumnByItem(const QTreeView* view, const QVariant& value,
                                                  std::string_view column,
                                                  const std::shared_ptr<KWObject>& item) override;
    /// Elements have a pale blue ground.
    void
    outlineViewWillDisplayCellForTableColumnItem(const QTreeView* view, KWOutlineCell& cell,
                                                 std::string_view column,
                                                 const std::shared_ptr<KWObject>& item) override;

    /// Return, Enter and F2 edit the value of the selected channel.
    bool eventFilter(QObject* object, QEvent* event) override;

  private:
    void awakeFromNib();
    void releaseOutline();
    /// Of the only element for the root; null where there is none.
    std::shared_ptr<KWChannelArray> channelArrayOf(const std::shared_ptr<KWObject>& item) const;
    bool editSelectedValue();

    QPointer<QTreeView> _channelOV;
    QPointer<QWidget> _channelOVContainer;
    std::vector<std::shared_ptr<KWChannelElement>> _elements;
    float _currentTime = 0;
    bool _ignoreChannelChanged = false;
    QPointer<KWOutlineModel> _model;
    QString _interfaceError;
};
