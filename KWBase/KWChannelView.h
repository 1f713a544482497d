#pragma once

#include <KWBase/KWChannel.h>
#include <KWBase/KWChannelViewDelegate.h>
#include <KWBase/KWChannelViewGeometry.h>
#include <KWBase/KWKeyCell.h>
#include <KWFoundation/KWExport.h>
#include <KWFoundation/KWKeyObserving.h>
#include <KWFoundation/KWObject.h>

#include <QColor>
#include <QCursor>
#include <QPointF>
#include <QRectF>
#include <QVariant>
#include <QWidget>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

class KWFirstException;
class QMouseEvent;
class QPainter;
struct KWChannelViewBindings;
struct KWChannelViewGesture;

/// What a view tells its delegate with when the selected keys may have changed.
inline constexpr std::string_view KWChannelKeySelectionChangedNotification =
    "KWChannelKeySelectionChangedNotification";

/// What a press of the mouse does in a curve view. Any other code does nothing.
enum KWChannelViewMode : std::int32_t {
    KWChannelViewModeSelect = 0, ///< selects keys and moves them, or selects with a rubber band
    KWChannelViewModeAddKey = 1, ///< makes a key, and moves it
    KWChannelViewModePan = 2,    ///< moves what is displayed, or zooms with the shift key held
};

/// The curve editor: draws one channel to be edited with its keys, other channels for reference, a
/// line at the current time and a graduated grid, and lets the user edit the keys with the mouse.
///
/// Times are in seconds, values in the user's unit. Where a point of the view is spoken of, it is
/// in logical pixels from the lower left corner, y upwards; a position is Qt's, y downwards.
///
/// A setter draws the view anew only where that is said; others take effect with the next drawing,
/// which setNeedsDisplay() brings about. The view observes its primary channel and draws itself
/// anew when that is invalidated.
///
/// The view is the object of its notices. As a widget it belongs to its parent, not to a
/// std::shared_ptr. One thread, that of the user interface.
class KW_EXPORT KWChannelView : public QWidget, public KWObject, public KWKeyObserver {
    Q_OBJECT
    Q_PROPERTY(float currentTime READ currentTime WRITE setCurrentTime NOTIFY currentTimeChanged)
    Q_PROPERTY(QRectF displayedBounds READ displayedRectangle WRITE setDisplayedRectangle NOTIFY
                   displayedBoundsChanged)
    Q_PROPERTY(int editingMode READ editingMode WRITE setEditingMode NOTIFY settingsChanged)
    Q_PROPERTY(int stepCount READ stepCount WRITE setStepCount NOTIFY settingsChanged)
    Q_PROPERTY(int xGridCount READ xGridCount WRITE setXGridCount NOTIFY settingsChanged)
    Q_PROPERTY(int yGridCount READ yGridCount WRITE setYGridCount NOTIFY settingsChanged)
    Q_PROPERTY(bool showsGrid READ showsGrid WRITE setShowsGrid NOTIFY settingsChanged)
    Q_PROPERTY(bool showsTwoLevelGrid READ showsTwoLevelGrid WRITE setShowsTwoLevelGrid NOTIFY
                   settingsChanged)
    Q_PROPERTY(bool showsLegend READ showsLegend WRITE setShowsLegend NOTIFY settingsChanged)
    Q_PROPERTY(bool showsPointCoordinates READ showsPointCoordinates WRITE setShowsPointCoordinates
                   NOTIFY settingsChanged)
    Q_PROPERTY(bool showsTransientPointCoordinates READ showsTransientPointCoordinates WRITE
                   setShowsTransientPointCoordinates NOTIFY settingsChanged)
    Q_PROPERTY(bool snaps READ snaps WRITE setSnaps NOTIFY settingsChanged)
    Q_PROPERTY(bool clampsValues READ clampsValues WRITE setClampsValues NOTIFY settingsChanged)
    Q_PROPERTY(bool liveUpdate READ liveUpdate WRITE setLiveUpdate NOTIFY settingsChanged)
    Q_PROPERTY(
        QColor backgroundColor READ backgroundColor WRITE setBackgroundColor NOTIFY settingsChanged)
    Q_PROPERTY(QColor gridColor READ gridColor WRITE setGridColor NOTIFY settingsChanged)

  public:
    /// No channel; times 0 to 10 and values -2 to 2; no grid, labels, coordinates or snapping.
    explicit KWChannelView(QWidget* parent = nullptr);
    ~KWChannelView() override;

    /// Called when the view comes out of an interface file: sets the editing mode to 0.
    void awakeFromNib();

    /// Null for none. Not owned; reads as null once it is gone.
    KWChannelViewDelegate* delegate() const;
    void setDelegate(KWChannelViewDelegate* delegate);

    // --- Channels.

    /// Null for none.
    const std::shared_ptr<KWChannel>& primaryChannel() const { return _primaryChannel; }
    /// Empties the selection, tells the delegate so and draws the view anew, also when it is the
    /// same channel. A gesture under way ends unless it is the same; moving keys or selecting them
    /// sets the selection anew with the next event. What is thrown by those who are told is
    /// rethrown when all is done.
    void setPrimaryChannel(const std::shared_ptr<KWChannel>& channel);

    // Drawn in the order of their adding, each once. None is observed: what changes them, or inside
    // them, has to draw the view anew. Null is not added.

    const std::vector<std::shared_ptr<KWChannel>>& secondaryChannels() const {
        return _secondaryChannels;
    }
    void addSecondaryChannel(const std::shared_ptr<KWChannel>& channel);
    void removeSecondaryChannel(const std::shared_ptr<KWChannel>& channel);
    void removeAllSecondaryChannels();
    bool isSecondaryChannel(const std::shared_ptr<KWChannel>& channel) const;

    // --- Bindings. A property of a host's object, named by a dotted path of property names, is
    // followed as it changes; nothing is ever written back to it.

    /// "channel", whose property holds a std::shared_ptr to a channel and sets the primary channel,
    /// or none when it holds anything else; and "currentTime", whose property is a number.
    static std::vector<std::string> exposedBindings();
    /// Other names, and a null object, are ignored. The object is not owned; a binding ends with
    /// it. To bind what is bound logs a warning and leaves the earlier observation in place. The
    /// options are not used.
    void bindToObjectWithKeyPathOptions(std::string_view binding, QObject* object,
                                        std::string_view keyPath, const QVariantMap& options = {});
    /// Unbinding "channel" also sets the primary channel to none; the current time stays. Nothing
    /// happens to what is not bound but that.
    void unbind(std::string_view binding);
    void observeValueForKeyPathOfObjectChangeContext(std::string_view keyPath, KWObject* object,
                                                     const KWKeyValueChange& change,
                                                     const void* context) override;
    /// Have the view drawn anew each time the channel's validity is set, and no more. Null is
    /// ignored.
    void startObservingChannel(const std::shared_ptr<KWChannel>& channel);
    void stopObservingChannel(const std::shared_ptr<KWChannel>& channel);

    // --- What is displayed.

    /// Start time, lowest value, span of time, span of values.
    HJRect displayedBounds() const;
    /// Nothing is checked; with an empty, inverted or infinite span little can be drawn. Draws the
    /// view anew.
    void setDisplayedBounds(const HJRect& bounds);
    QRectF displayedRectangle() const;
    void setDisplayedRectangle(const QRectF& bounds);
    /// Displays all keys of a keyframed primary channel, with a tenth of the span around them.
    /// Draws the view anew. Nothing happens with another channel or none, nor with one out of order
    /// whose keys have no values; the sender is not used.
    Q_SLOT void fitChannel(const QObject* sender = nullptr);
    /// Remembers what is displayed, for the pan or zoom that follows.
    void setAnchor();
    const KWDisplayedRange& anchor() const { return _anchor; }

    float currentTime() const { return _currentTime; }
    /// Draws the view anew.
    void setCurrentTime(float time);

    /// The mapping from times and values to points and back, as last drawn; before the first
    /// drawing, that of the widget as it is. Where the widget stands is QWidget::geometry().
    KWChannelViewGeometry plotGeometry() const;
    float timeAtPosition(const QPointF& position) const;
    float valueAtPosition(const QPointF& position) const;
    QPointF positionOfTimeAndValue(float time, float value) const;

    // --- Curves and grid.

    /// In how many straight lines a curve is drawn from left to right; 100 at first. Hosts keep it
    /// at about the width in device pixels, or curves turn into polygons. Draws the view anew.
    int stepCount() const { return static_cast<int>(_stepCount); }
    /// Held between 1 and a million.
    void setStepCount(int count);

    /// About how many lines of the grid are wanted across the range. Draws the view anew.
    int xGridCount() const { return static_cast<int>(_xGridWanted); }
    int yGridCount() const { return static_cast<int>(_yGridWanted); }
    /// Less than 0 counts as 0, which draws none.
    void setXGridCount(int count);
    void setYGridCount(int count);
    /// The integer part of 40 times the resolution plus 1. Not a number counts as 0 lines. Draws
    /// the view anew.
    void setXGridResolution(float resolution);
    void setYGridResolution(float resolution);
    void setGridResolution(float resolution);

    bool showsGrid() const { return _showsGrid; }
    void setShowsGrid(bool shows);
    /// Whether every fifth or so of the range has a thicker line.
    bool showsTwoLevelGrid() const { return _showsTwoLevelGrid; }
    void setShowsTwoLevelGrid(bool shows);
    /// Whether those lines have a number.
    bool showsLegend() const { return _showsLegend; }
    void setShowsLegend(bool shows);
    QColor backgroundColor() const { return _backgroundColor; }
    void setBackgroundColor(const QColor& color);
    QColor gridColor() const { return _gridColor; }
    void setGridColor(const QColor& color);

    // --- Coordinates of a point.

    bool showsPointCoordinates() const { return _showPointCoords; }
    void setShowsPointCoordinates(bool shows);
    /// Whether the coordinates are shown while keys are moved, and hidden after that.
    bool showsTransientPointCoordinates() const { return _showTransient; }
    void setShowsTransientPointCoordinates(bool shows);
    /// The value is mapped to the view as it is, and shown converted to the user's unit.
    void setPointTimeValue(float time, float value);
    float pointTime() const { return _spTime; }
    float pointValue() const { return _spValue; }

    // --- Editing.

    /// One of KWChannelViewMode; the cursor shows it.
    std::int32_t editingMode() const { return _channelViewMode; }
    void setEditingMode(std::int32_t mode);
    /// Whether moved keys jump to half the steps of the grid.
    bool snaps() const { return _snap; }
    Q_SLOT void setSnaps(bool snaps);
    // Kept for the host; the view does not act on them.
    bool clampsValues() const { return _clampsValues; }
    void setClampsValues(bool clamps);
    bool liveUpdate() const { return _liveUpdate; }
    void setLiveUpdate(bool live);

    /// The times of the selected keys, in the order of their selection.
    std::vector<KWTime> selectedKeys() const { return _selectedKeys; }
    /// Draws the view anew. The delegate is not told. Times that are no keys are harmless.
    void setSelectedKeys(const std::vector<KWTime>& keys);

    // A gesture begins with a press of the left button and ends with its release. Until then other
    // keys and buttons do nothing. It also ends, as if the button had been released, when the view
    // is hidden or disabled, loses its channel or the mouse, when its window is left or a popup
    // opens, and when somebody else edits the keys that it moves or selects: once that edit is
    // done, and not by another write. That the mouse has been taken by another widget shows with
    // the next event that comes to anybody.
    //
    // Outside of a gesture Delete and Backspace remove the selected keys, Tab and Backtab move the
    // focus as everywhere, and every other key is swallowed.

    /// Whether a press has begun something that the release will end.
    bool isGestureActive() const;
    /// Ends it and puts back the keys with their shapes, the selection and what is displayed as
    /// they were at the press; Escape does the same. The delegate is not told. Nothing happens when
    /// there is none. When it is called by someone whom the view's own edit of the channel tells of
    /// that edit, it happens as soon as the edit is done. No step of undo is left only where the
    /// host brackets gestures as told at gestureWillBegin(): without that each removal and each
    /// setting of keys has been registered already, those of putting them back too.
    void cancelGesture();
    /// Whether a rubber band is being dragged, and from where how far: the size may be negative.
    bool isSelecting() const { return _selecting; }
    QRectF selectionRect() const { return _selectionRect; }

    /// Makes a key of a keyframed primary channel at a point, with the neutral shape, and answers
    /// its time; the time also when no key could be made. None is made where time or value are not
    /// finite.
    KWTime createKeyForMouseLocation(const QPointF& point);
    /// The first key, in order of time, whose handle as last drawn contains the point. The left and
    /// the upper edge belong to a handle, the others do not.
    std::optional<KWKeyCell> findKeyCellForMouseLocation(const QPointF& point) const;
    /// Removes a key of a keyframed primary channel and draws the view anew.
    void deleteKeyForTime(KWTime time);

    // What a press of the mouse leads to, once it is clear what was pressed. Each returns at once;
    // the events that follow do the rest until the button is released. Nothing happens while
    // another gesture is under way.

    /// Moves the selected keys of a keyframed primary channel. In time they keep a point away from
    /// their neighbours, unless snapping takes them there. Times that are no keys leave the
    /// selection first. The channel changes with each event; in it keys keep their shapes, and a
    /// key that another comes to lie on is overwritten.
    void startMovingWithEvent(const QMouseEvent& event);
    /// Selects the keys inside a rubber band; with the shift key held at the press, besides those
    /// that were selected. Tells the delegate when it ends.
    void startSelectingWithEvent(const QMouseEvent& event);
    // Both start from the range of setAnchor().
    void startScrollingWithEvent(const QMouseEvent& event);
    void startZoomingWithEvent(const QMouseEvent& event);

    /// Gives the widget the cursor of its editing mode: an arrow, an arrow with a plus, a hand;
    /// none of its own in any other.
    void resetCursorRects();

    // --- Drawing.

    /// Draws the view anew with the next pass of the event loop.
    virtual void setNeedsDisplay(bool needs);

    /// Draws the view as it is into a rectangle of any painter, at the size of that rectangle; no
    /// screen is needed. Neither the painter's state nor the view's changes. Nothing is drawn into
    /// a rectangle that is empty, not finite, or longer on a side than a million.
    void drawInto(QPainter& painter, const QRectF& rect);

    /// The handles as last drawn, in order of time. One for each key inside the displayed times,
    /// whether or not its value can be seen.
    std::vector<KWKeyCell> keyCells() const;

    bool isOpaque() const { return true; }
    bool acceptsFirstResponder() const { return true; }
    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

  public Q_SLOTS:
    /// Snapping is on exactly when the sender, a button or an action, is checked.
    void changeSnap(const QObject* sender);

  Q_SIGNALS:
    void primaryChannelChanged();
    void currentTimeChanged(float time);
    void displayedBoundsChanged();
    /// The selected times have really changed.
    void selectedKeysChanged();
    /// One of the other properties has changed.
    void settingsChanged();
    /// The pointer is over the view, or drags from it, at this time and value; and no more. With
    /// nothing displayed they are not finite.
    void pointerMoved(float time, float value);
    void pointerLeft();
    // The first is sent before the first change that a gesture makes, the second once, when it has
    // ended in whatever way; before the primary channel is replaced, and also by the destructor. A
    // host that calls startManipulation() and stopManipulation() of the primary channel on them
    // gets one step of undo for a gesture that has changed keys, and none for others. Removing keys
    // by the Delete key is a gesture too.
    void gestureWillBegin();
    void gestureDidEnd();

  protected:
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;
    void hideEvent(QHideEvent* event) override;
    void leaveEvent(QEvent* event) override;
    bool event(QEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

    // The layers of a drawing, from the bottom to the top. They draw in points, y upwards, where
    // the pass under way says that the view is.

    /// One pass: the geometry, the colours of the key cells, every layer that is wanted, the frame.
    virtual void drawRect(QPainter& painter, const QRectF& bounds);
    virtual void drawBackGround(QPainter& painter);
    virtual void drawGrid(QPainter& painter);
    /// The number of a major line in the painter's pen and font, its lower left at a point.
    virtual void drawGridLabel(QPainter& painter, const QPointF& corner, const QString& text);
    virtual void drawTimeLine(QPainter& painter);
    virtual void drawSecondaryChannels(QPainter& painter);
    virtual void drawPrimaryChannel(QPainter& painter);
    /// One curve, in the colour and width of the painter's pen. Where a value is not finite there
    /// is a gap.
    virtual void drawChannel(QPainter& painter, const std::shared_ptr<KWChannel>& channel);
    virtual void drawKeys(QPainter& painter);
    virtual void drawPointCoords(QPainter& painter);
    virtual void drawSelectionRectangle(QPainter& painter);

  private:
    /// A handle as it was drawn, without what is the same for all.
    struct DrawnKey {
        float time;
        float value;
        KWPlotPoint origin;
        bool isSelected;
    };

    template <class T>
    void setSetting(T& field, T value);
    /// Draws the view anew, and says so when the range is another.
    void setDisplayedRange(const KWDisplayedRange& range);
    /// Replaces the selection and says so when it is another.
    void replaceSelectedKeys(std::vector<KWTime> keys);
    void notifyDelegateOfSelection();

    // The life of a gesture.
    std::shared_ptr<KWKeyFramedChannel> keyFramedChannel() const;
    std::shared_ptr<KWChannelViewGesture> beginGesture(const QPointF& point);
    std::shared_ptr<KWChannelViewGesture> gestureForStart(const QMouseEvent& event);
    void watchKeys(const std::shared_ptr<KWChannelViewGesture>& gesture);
    void endGestureIfDisturbed();
    bool hasLostMouse() const;
    void endGesture(bool tellsDelegate = true);
    /// Ends a gesture as it stands, without a word to the delegate.
    void cutGestureShort();
    void announceGestureEnd();
    void putBack(const KWChannelViewGesture& gesture, KWFirstException& raised);

    // What it does.
    void press(const QMouseEvent& event);
    void pressToSelect(const QMouseEvent& event);
    void pressToAddKey(const QMouseEvent& event);
    void selectPressedKey(KWTime key, bool adds, KWFirstException& raised);
    void dropDeadKeys();
    void drag(KWChannelViewGesture& gesture, const QPointF& point);
    void dragKeys(KWChannelViewGesture& gesture);
    void dragRubberBand(KWChannelViewGesture& gesture);
    void dragRange(KWDisplayedRange range);
    void deleteSelectedKeys();
    QPointF viewPoint(const QMouseEvent& event) const;

    void drawGridLines(QPainter& painter, Qt::Orientation orientation);
    void drawGridLine(QPainter& painter, const KWGridLine& line, const QLineF& where,
                      const QPointF& labelCorner);
    bool isSelectedTime(float time) const;
    /// Fills _keyCells.
    void findDrawnKeys(const KWKeyFramedChannel& channel);
    void paintDrawnKeys(QPainter& painter) const;
    bool stampHandles(QPainter& painter, const std::vector<const DrawnKey*>& keys) const;
    KWKeyCell cellOfDrawnKey(const DrawnKey& key) const;

    std::shared_ptr<KWChannel> _primaryChannel;
    std::vector<std::shared_ptr<KWChannel>> _secondaryChannels;
    std::vector<DrawnKey> _keyCells;
    float _currentTime = 0;
    KWDisplayedRange _range;
    KWDisplayedRange _anchor{0, 0, 0, 0};
    /// Nothing before the first drawing.
    std::optional<KWPlotRect> _plot;
    std::int32_t _stepMode = 3;
    std::uint32_t _xGridWanted = 42;
    std::uint32_t _yGridWanted = 21;
    std::uint32_t _stepCount = 100;
    QRectF _selectionRect;
    std::vector<KWTime> _selectedKeys;
    /// The same, ascending.
    std::vector<float> _selectedTimes;
    float _spTime = 0;
    float _spValue = 0;
    std::int32_t _channelViewMode = KWChannelViewModeSelect;
    bool _snap = false;
    bool _clampsValues = false;
    bool _showPointCoords = false;
    bool _showTransient = false;
    bool _selecting = false;
    bool _liveUpdate = false;
    bool _showsLegend = false;
    bool _showsGrid = false;
    bool _showsTwoLevelGrid = true;
    std::weak_ptr<const KWChannelViewDelegate::Link> _delegate;
    QColor _backgroundColor;
    QColor _gridColor;
    std::unique_ptr<KWChannelViewBindings> _bindings;
    /// Null when there is none.
    std::shared_ptr<KWChannelViewGesture> _gesture;
};
