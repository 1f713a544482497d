#pragma once

#include <KWBase/KWChannelViewDelegate.h>
#include <KWBase/KWKeyFramedChannel.h>
#include <KWDesktop/KWArrayController.h>
#include <KWDesktop/KWChannelEditSource.h>
#include <KWDesktop/KWOutlineModel.h>
#include <KWFoundation/KWExport.h>
#include <KWFoundation/KWKeyObserving.h>
#include <KWFoundation/KWNotificationCenter.h>

#include <QPointer>
#include <QString>
#include <memory>
#include <optional>
#include <string_view>
#include <vector>

class KWAlgebricChannel;
class KWChannelView;
class QAbstractSlider;
class QMessageBox;
class QWidget;
struct KWChannelEditorOutlets;

/// The channel editor: a panel with an outline of a host's elements, their groups and channels, and
/// a curve editor with all that is needed to edit the channel that is selected in the outline.
///
/// The host gives it the list of elements, each a KWChannelElement, and calls showChannelEditor().
/// The panel comes from an interface file, a form of Qt Designer; a host may bring a file of its
/// own with the same outlets, widgets that are found by their object names:
///
///     channelEditorPanel (QWidget, the outermost)   channelEditorContainer (QWidget)
///     elementOV (QTreeView)       channelView (KWChannelView)   toolsMatrix (QWidget)
///     liveCheckBox (QAbstractButton)   gridSlider (QAbstractSlider)   optionsBox (QWidget)
///     channelTypePU (QComboBox)   copyButton, pasteButton (QAbstractButton)
///     keyframedView, constantView, algebricView (QWidget)
///     interpModePU, repeatPU (QComboBox)   resetHermButton (QAbstractButton, tag 3)
///     tensionSlider, continuitySlider, biasSlider (QAbstractSlider, tags 0, 1, 2)
///     constantValueTF, expressionTF (QLineEdit)
///
/// Inside toolsMatrix each QAbstractButton with a tag is a tool, and the tag the editing mode of
/// the curve editor. Tags are dynamic properties "tag"; sliders stand for the numbers between their
/// dynamic properties "minimumValue" and "maximumValue". The three views are what the options box
/// shows, one at a time: pages of a QStackedWidget or widgets of a layout. A third item of
/// channelTypePU becomes a separator. QLabels named tensionReadout, continuityReadout, biasReadout
/// and noOptionsLabel are filled where there are any.
///
/// Channels are edited only through their own operations, and replaced through their owner's
/// replaceChannelWith(). Each action that edits is bracketed by willEdit() and didEdit(), a drag of
/// the mouse or of a slider as a whole. An action for which there is no channel, or none of the
/// right class, does nothing. Controls act when the user moves them and not when the panel is
/// filled.
///
/// The panel follows what others do to channels: it marks itself as out of date and reads in the
/// next pass of the event loop. The thread of the user interface only.
class KW_EXPORT KWChannelEditorController : public KWChannelEditSource,
                                            public KWChannelViewDelegate,
                                            public KWOutlineDataSource,
                                            public KWKeyObserver {
    Q_OBJECT

  public:
    explicit KWChannelEditorController(QObject* parent = nullptr);
    /// Destroys the panel. A container that the host has taken out of it stays, with its tools
    /// disabled.
    ~KWChannelEditorController() override;

    // --- The panel.

    /// Where the panel is loaded from; the framework's own file at first. Takes effect with the
    /// next loadInterface().
    const QString& interfaceFile() const { return _interfaceFile; }
    void setInterfaceFile(const QString& path) { _interfaceFile = path; }

    /// Loads the panel, in place of one that was loaded before, without showing it. False when it
    /// cannot be loaded, or when an outlet is missing, of another class or without its tag: the
    /// panel that was loaded before stays, there is a line in the log, and interfaceError() tells
    /// why.
    bool loadInterface();
    /// One sentence with the name of the file and, where it is an outlet, of the first one that is
    /// at fault; "" when all was well.
    const QString& interfaceError() const { return _interfaceError; }

    /// Null before it is loaded. The controller owns it.
    QWidget* channelEditorPanel() const;
    /// All of the panel's contents, for hosts that embed them in a window of their own; a host that
    /// does owns it from then on. Null before the panel is loaded.
    QWidget* channelEditorContainer() const;
    KWChannelView* channelView() const;
    /// What the options box shows: one of the three views, or null.
    QWidget* optionsView() const;

    // --- The elements.

    /// Not owned; null for none.
    KWArrayController* channelsController() const { return _channelsController; }
    void setChannelsController(KWArrayController* controller);
    /// The channels controller's objects; empty without one.
    std::vector<std::shared_ptr<KWObject>> elements() const;
    /// Expands every element, with all it holds.
    void expandOutlineView(QTreeView* view);

    // --- State.

    const std::shared_ptr<KWChannel>& channelBeingEdited() const { return _channelBeingEdited; }
    /// What copyChannel() has copied; null for nothing.
    const std::shared_ptr<KWChannel>& copiedChannel() const { return _copiedChannel; }

    // A list of keys that the controller keeps for its host; it is not the view's selection.
    const std::vector<KWTime>& selectedKeys() const { return _selectedKeys; }
    /// Nothing happens when the list has the key.
    void extendSelectionWithKey(KWTime key);
    void resetSelection() { _selectedKeys.clear(); }

    // --- What a host calls, or registers, when something has changed.

    /// Draws the curves anew.
    void timeChangedCallback(const KWNotification* notification = nullptr);
    /// Does nothing; for subclasses.
    virtual void selectionChangedCallback(const KWNotification* notification = nullptr);
    /// Reloads the outline when the notice's object is one of the elements. For whatever notice the
    /// host posts when channels or groups of an element have come or gone; the controller does not
    /// observe it by itself.
    void channelStructChangedCallback(const KWNotification& notification);
    void redrawChannelView();

    /// Fills the part of the panel that is `view` from the channel being edited: the options box,
    /// which also turns to the view of the channel's class, or one of the three views, which does
    /// nothing when the channel is not of its class.
    void updateView(QWidget* view);

    KWTextAttributes textAttributesForIndex(std::uint32_t index) const;

    // --- The curve editor's delegate.

    std::optional<QColor> colorForChannel(const std::shared_ptr<KWChannel>& channel) override;
    void selectionDidChange(const KWNotification& notification) override;

    // --- The outline's data source. The root's children are the elements. A single element counts
    // as many children as it has groups and ungrouped channels, though each is looked up among the
    // elements; the outline leaves out the rows that are not there.

    int outlineViewNumberOfChildrenOfItem(const QTreeView* view,
                                          const std::shared_ptr<KWObject>& item) override;
    std::shared_ptr<KWObject>
    outlineViewChildOfItem(const QTreeView* view, int index,
                           const std::shared_ptr<KWObject>& item) override;
    bool outlineViewIsItemExpandable(const QTreeView* view,
                                     const std::shared_ptr<KWObject>& item) override;
    /// "channels": the name. "view": the colour of a channel whose curve is shown behind the one
    /// being edited. "values": the channel's current value.
    QVariant
    outlineViewObjectValueForTableColumnByItem(const QTreeView* view, std::string_view column,
                                               const std::shared_ptr<KWObject>& item) override;
    void outlineViewSelectionDidChange(QTreeView* view) override;

    void observeValueForKeyPathOfObjectChangeContext(std::string_view keyPath, KWObject* object,
                                                     const KWKeyValueChange& change,
                                                     const void* context) override;

    // --- Actions. The sender is the control; where it is null, the panel's own.

  public Q_SLOTS:
    /// Loads the panel where there is none, and brings it to the front.
    void showChannelEditor();
    void changeEditingMode(const QObject* sender = nullptr);
    void changeLiveUpdate(const QObject* sender = nullptr);
    void changeGridResolution(const QObject* sender = nullptr);
    /// Keeps a copy of the channel being edited, or nothing without one, and enables pasting.
    void copyChannel(const QObject* sender = nullptr);
    /// Puts a copy of the copied channel in the place of the one being edited.
    void pasteChannel(const QObject* sender = nullptr);
    /// Shows the curve of the channel that is selected in the outline behind the one being edited,
    /// or no longer.
    void toggleShowSecondaryChannel(const QObject* sender = nullptr);
    /// Puts a new channel of the class that the popup names in the place of the one being edited.
    void changeChannelType(const QObject* sender = nullptr);
    void changeInterpolation(const QObject* sender = nullptr);
    void changeRepeat(const QObject* sender = nullptr);
    /// Gives the sender's number to every selected key: its tension (tag 0), continuity (1) or bias
    /// (2), or sets all three to 0 (3).
    void changeHermiteParam(const QObject* sender);
    /// A text that is no number puts the old one back, and its tool tip says why.
    void changeConstantValue(const QObject* sender = nullptr);
    /// A text that is no expression changes nothing but brings up an alert.
    void changeAlgebricExpression(const QObject* sender = nullptr);

  protected:
    /// Called when the outlets are connected.
    virtual void awakeFromNib();
    bool eventFilter(QObject* watched, QEvent* event) override;

  private:
    template <class C>
    std::shared_ptr<C> edited() const {
        return std::dynamic_pointer_cast<C>(_channelBeingEdited);
    }

    // Life.
    void closeInterface();
    void makeOutline();
    void connectActions();
    void connectFields();
    void connectSlider(QAbstractSlider* slider);
    void connectView();
    void observeElements();

    // Editing.
    void setChannelBeingEdited(std::shared_ptr<KWChannel> channel);
    bool replaceChannelBeingEdited(KWChannelEdit kind, const std::shared_ptr<KWChannel>& channel);
    void channelChanged();
    void openEdit(KWChannelEdit kind);
    void closeEdit();
    void changeShapesOfSelectedKeys(int tag, float value);
    void runBadExpressionAlert();
    void commitConstantValue();
    void commitExpression();

    // Filling the panel.
    void setNeedsUpdate();
    void updateIfNeeded();
    void updateOptionsBox();
    void updateKeyframedView();
    void updateConstantView();
    void updateAlgebricView();
    void updateShapeControls(const KWKeyFramedChannel& channel);
    void enableTool(int tag, bool isEnabled);
    void pruneSecondaryChannels();
    void fitStepCount();
    void unitDidChange();

    std::unique_ptr<KWChannelEditorOutlets> _outlets;
    QPointer<KWArrayController> _channelsController;
    QPointer<KWOutlineModel> _outline;
    std::vector<KWTime> _selectedKeys;
    std::shared_ptr<KWChannel> _channelBeingEdited;
    std::shared_ptr<KWChannel> _copiedChannel;

    QString _interfaceFile;
    QString _interfaceError;
    std::vector<KWNotificationToken> _notices;
    QPointer<QMessageBox> _alert;
    /// A drag under way, of whose end nobody has been told.
    struct OpenEdit {
        KWChannelEdit kind;
        std::shared_ptr<KWChannel> channel;
    };
    std::optional<OpenEdit> _openEdit;
    /// What the type popup shows when it is not in the middle of a choice.
    int _shownType = -1;
    /// What the expression field was last filled with.
    std::optional<std::string> _filledExpression;
    /// The user's units in one of the channel's, as the range of the curve editor was made for.
    float _unitScale = 1;
    bool _needsUpdate = false;
};
