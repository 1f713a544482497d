#pragma once

#include <KWBase/KWChannelViewGeometry.h>
#include <KWFoundation/KWExport.h>

#include <QObject>
#include <QPointF>
#include <QPointer>

class KWChannelView;
class QKeyEvent;
class QMouseEvent;
class QNativeGestureEvent;
class QWheelEvent;

/// Moves about in a curve view, and moves its current time, beside what the view's own tools do:
///
/// - The wheel zooms; the time and the value under the pointer stay there. With Ctrl held it zooms
///   the times only, with Shift the values only. A wheel that tilts pans in time.
/// - Two fingers on a trackpad pan, and with Ctrl or Shift held zoom as the wheel does. A pinch
///   zooms around the pointer.
/// - A drag with the middle button pans.
/// - In select mode, the line of the current time can be dragged by what is near to it and no
///   handle of a key; and in any mode a press in the ruler, a strip along an edge that the host may
///   set aside, takes the line there and drags it.
///
/// Escape ends a drag and puts back what it has changed. While the view has a gesture of its own
/// under way (KWChannelView::isGestureActive()), nothing here interferes with it, be it an event or
/// a call. A disabled view is not navigated by the user.
///
/// What is displayed changes only when the user or the host asks for it, with one exception that
/// the host has to turn on: setFramesFirstChannel(). Ranges stay such that single precision can
/// show them: zooming ends at a few hundred floats, and at 1e30. A range that the host has made
/// empty or infinite gives way to a usual one at the first zoom.
///
/// Positions are Qt's, in the view. One thread, that of the user interface.
class KW_EXPORT KWChannelViewNavigator : public QObject {
    Q_OBJECT
    Q_PROPERTY(bool framesFirstChannel READ framesFirstChannel WRITE setFramesFirstChannel)
    Q_PROPERTY(double timeStep READ timeStep WRITE setTimeStep)
    Q_PROPERTY(int grabDistance READ grabDistance WRITE setGrabDistance)

  public:
    /// Installs itself as event filter of the view, which is not owned; it does nothing more once
    /// the view is gone.
    explicit KWChannelViewNavigator(KWChannelView& view, QObject* parent = nullptr);
    /// A drag under way ends where it is.
    ~KWChannelViewNavigator() override;

    /// Null when it is gone.
    KWChannelView* view() const;

    // --- Settings.

    /// Whether the view frames all, once, when it gets its first channel with something to show
    /// after rearm() or after this was turned on. Whoever navigates or begins a gesture before that
    /// has settled what to see, and nothing is framed. Off at first.
    bool framesFirstChannel() const { return _framesFirstChannel; }
    void setFramesFirstChannel(bool frames);
    /// For a host that is about to show a document that it has just opened.
    void rearm() { _isArmed = true; }

    /// Of what a dragged current time is a multiple, in seconds: a frame's length. 0, as at first,
    /// for any time. What is not positive and finite counts as 0.
    double timeStep() const { return _timeStep; }
    void setTimeStep(double seconds);

    /// How far from the line of the current time it can be grabbed, in logical pixels; 4 at first.
    int grabDistance() const { return _grabDistance; }
    void setGrabDistance(int pixels);

    /// A strip along the upper or the lower edge of the view in which a press takes the current
    /// time to the pointer. It is not drawn. A height of 0, as at first, for none.
    void setRuler(Qt::Edge edge, int height);

    bool isScrubbing() const { return _drag == Drag::scrub; }
    bool isPanning() const { return _drag == Drag::pan; }

  public Q_SLOTS:
    // --- What a menu offers. Each answers whether it has found something to show or to do.

    /// Shows all keys of the primary and the secondary channels, with a tenth of what they span on
    /// each side; where they share one time or one value, a sensible part of the axis around it.
    /// Where there are no keys but curves, the times stay and the values are those of the curves.
    bool frameAll();
    /// The same for the selected keys.
    bool frameSelection();
    /// Shows 1 / factor of the times and of the values; what is at the position stays there. A
    /// factor of 1, and one that is not positive and finite, leaves its axis alone.
    bool zoomAt(const QPointF& position, double timeFactor, double valueFactor);
    /// The same at the middle of the view.
    bool zoomBy(double timeFactor, double valueFactor);
    /// Moves the curves by a distance in logical pixels, to the right and down.
    bool panBy(const QPointF& distance);

  Q_SIGNALS:
    // A drag of the current time begins and ends with these, exactly once each, also when the view
    // or this goes meanwhile. The view has the time already when timeScrubbed() tells of it; a host
    // that plays the document by another clock sets that one. After Escape the time is told once
    // more, as it was at the press.
    void scrubbingBegan();
    void timeScrubbed(float time);
    void scrubbingEnded();

  protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

  private:
    enum class Drag { none, pan, scrub };
    enum class Cursor { own, pan, scrub };

    bool isFree() const;
    bool canDragTimeAt(const QPointF& position) const;
    bool isInRuler(const QPointF& position) const;
    void show(const KWDisplayedRange& range);
    void frameFirstChannel();

    /// Whether the view must not get it.
    bool takeEvent(QEvent& event);
    bool wheel(QWheelEvent& event);
    bool pinch(QNativeGestureEvent& event);
    bool press(QMouseEvent& event);
    bool move(QMouseEvent& event);
    bool release(QMouseEvent& event);
    bool key(QKeyEvent& event);
    void beginPan(const QPointF& position);
    void beginScrub(const QPointF& position);
    void dragTo(const QPointF& position);
    void scrubTo(const QPointF& position);
    void setTime(float time);
    void endDrag();
    void cancelDrag();
    void showCursor(Cursor cursor);
    void showCursorAt(const QPointF& position);

    QPointer<KWChannelView> _view;
    bool _framesFirstChannel = false;
    bool _isArmed = false;
    double _timeStep = 0;
    int _grabDistance = 4;
    Qt::Edge _rulerEdge = Qt::TopEdge;
    int _rulerHeight = 0;
    Cursor _cursor = Cursor::own;

    Drag _drag = Drag::none;
    QPointF _from; ///< the press
    // As they were at the press.
    HJRect _bounds;
    KWDisplayedRange _range;
    float _time = 0;
    double _grabOffset = 0; ///< from the pointer to the line, in pixels
};
