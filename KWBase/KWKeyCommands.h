#pragma once

#include <KWBase/KWKeyFramedChannel.h>
#include <KWDesktop/KWChannelEditSource.h>
#include <KWFoundation/KWExport.h>
#include <KWFoundation/KWKeyObserving.h>

#include <QMimeData>
#include <QPointer>
#include <QString>
#include <memory>
#include <vector>

class KWChannelView;
class QKeyEvent;
struct KWKey;
struct KWKeyChange;

/// A part of a key's shape.
enum class KWKeyShape { tension, bias, continuity };

/// What is done to the keys of a curve view's primary channel with the keyboard, from a menu or by
/// exact entry: selecting, moving by steps, copying and pasting, deleting, setting numbers.
///
/// The commands are slots for actions. Each answers whether it has changed anything, be it no more
/// than the selection. One that is refused for what it was given, such as a clipboard without keys,
/// changes nothing, and fault() is one sentence that says why, which failed() tells, too. Without a
/// view with a keyframed channel, with nothing to act on, and while the view has a gesture under
/// way (KWChannelView::isGestureActive()), they do nothing and have no fault. Nor do they in a
/// channel whose keys are out of order or incomplete, which only an archive can bring.
///
/// "The selected keys" are those of the view's selection that are keys. A command that changes the
/// selection tells the view's delegate, as the view does.
///
/// Each command is one step of the channel's undo manager, with the command's name, and undoing it
/// brings back the selection, too; a KWChannelUndoRecorder attached to this is told of each and
/// adds nothing to that. Keys keep their shapes to the bit in all of them, reserved floats and
/// blocks of odd length too, and values that are not moved keep their bits. A key that comes to a
/// time at which there is another replaces it, as when it is dragged there; of several that come to
/// one time the one selected last stays. Times and values that would not be finite are refused.
///
/// What others throw when they are told is logged. One thread, that of the user interface.
class KW_EXPORT KWKeyCommands : public KWChannelEditSource, private KWKeyObserver {
    Q_OBJECT
    Q_PROPERTY(double timeStep READ timeStep WRITE setTimeStep)
    Q_PROPERTY(double valueStep READ valueStep WRITE setValueStep)
    Q_PROPERTY(bool handlesArrowKeys READ handlesArrowKeys WRITE setHandlesArrowKeys)

  public:
    /// The view is not owned; nothing is done any more once it is gone.
    explicit KWKeyCommands(KWChannelView& view, QObject* parent = nullptr);
    ~KWKeyCommands() override;

    /// Null when it is gone.
    KWChannelView* view() const;

    // --- Settings. A step that is not positive and finite is not taken.

    /// By how many seconds keys are nudged: a frame's length. 1 / 25 at first.
    double timeStep() const { return _timeStep; }
    void setTimeStep(double seconds);
    /// By how much of the user's unit; 0.1 at first.
    double valueStep() const { return _valueStep; }
    void setValueStep(double step);
    /// Whether the arrow keys nudge the selected keys while the view has the focus, with Shift held
    /// ten times as far. Off at first.
    bool handlesArrowKeys() const { return _handlesArrowKeys; }
    void setHandlesArrowKeys(bool handles);

    // --- What can be done now. changed() tells when the answers may have become others.

    bool canSelectAll() const;
    bool canSelectNone() const;
    bool canInvertSelection() const;
    bool canSelectNextKey() const;
    bool canSelectPreviousKey() const;
    /// Whether there are selected keys. So it is with those that follow, for menus that ask one
    /// question for each command.
    bool canCopy() const;
    bool canCut() const { return canCopy(); }
    bool canDuplicate() const { return canCopy(); }
    bool canDelete() const { return canCopy(); }
    /// Also offsetTimes().
    bool canNudge() const { return canCopy(); }
    /// Also offsetValues(), setShapes() and resetShapes().
    bool canSetValues() const { return canCopy(); }
    /// Whether exactly one key is selected.
    bool canSetTime() const;
    /// Whether the clipboard has keys or text, for which there is a channel.
    bool canPaste() const;

    /// The selected keys in order of time, each once; none while the commands do nothing.
    std::vector<KWTime> keys() const;

    /// Of the latest command; empty where it was not refused.
    const QString& fault() const { return _fault; }

    /// The selected keys for the clipboard or a drag, with a type of our own that keeps every bit,
    /// and as text, a line with time and value in the user's unit for each. Null with none.
    std::unique_ptr<QMimeData> mimeData() const;
    /// Sets the keys that are in it, the first one at a time, and selects them. Values of a channel
    /// with the same type of unit are taken over to the bit; others are taken for what they were in
    /// the user's unit. Text of two columns, time and value, is understood as well.
    bool pasteMimeData(const QMimeData& data, KWTime time);
    /// The same, each at the time that it had.
    bool pasteMimeDataInPlace(const QMimeData& data);

  public Q_SLOTS:
    bool selectAll();
    bool selectNone();
    /// Selects the keys that are not selected.
    bool selectInverse();
    /// Selects the first key after those that are selected, in their place or, when it extends the
    /// selection, with them. With none selected it is the first one at the current time or after.
    bool selectNextKey(bool extends = false);
    /// The same towards the beginning.
    bool selectPreviousKey(bool extends = false);

    /// Moves the selected keys by so many steps in time and value. Keys that are on a multiple of
    /// the time step, a frame, come to be on others exactly, so that steps do not add up their
    /// errors. So do they with the other commands.
    bool nudge(int timeSteps, int valueSteps);

    bool copy();
    bool cut();
    /// Pastes what is on the clipboard, its first key at the view's current time.
    bool paste();
    /// Pastes each key at the time at which it was copied.
    bool pasteInPlace();
    /// Sets the same keys once more behind the last selected one, a time step after it, and selects
    /// them.
    bool duplicate();
    bool deleteKeys();

    // --- Exact entry, for the selected keys.

    /// In seconds; for one key alone.
    bool setTime(float seconds);
    bool offsetTimes(float seconds);
    /// In the user's unit.
    bool setValues(float value);
    /// As the channel stores it.
    bool setStoredValues(float value);
    /// In the user's unit.
    bool offsetValues(float value);
    bool setShapes(KWKeyShape part, float number);
    /// Makes tension, bias and continuity 0.
    bool resetShapes();

  Q_SIGNALS:
    /// What can be done, or the selected keys themselves, may have become others. Sent once for
    /// many changes, in the next pass of the event loop.
    void changed();
    void failed(const QString& sentence);

  protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

  private:
    void observeValueForKeyPathOfObjectChangeContext(std::string_view keyPath, KWObject* object,
                                                     const KWKeyValueChange& change,
                                                     const void* context) override;
    void observeChannel();
    void noteChange();
    bool arrowKey(QKeyEvent& event);

    std::shared_ptr<KWKeyFramedChannel> channel() const;
    std::vector<KWTime> selection() const;
    bool canStep(bool forwards) const;
    bool step(bool forwards, bool extends);
    bool refuse(const QString& sentence);
    bool select(std::vector<KWTime> keys);
    bool perform(KWKeyChange change, std::vector<KWTime> selection, const QString& name);
    bool replace(const std::vector<KWKey>& keys, const QString& name);
    bool remove(const QString& name);
    bool pasteFrom(const QMimeData& data, const KWTime* time);
    bool insert(std::vector<KWKey> keys, const QString& name);

    QPointer<KWChannelView> _view;
    std::weak_ptr<KWChannel> _observed;
    double _timeStep = 1.0 / 25;
    double _valueStep = 0.1;
    bool _handlesArrowKeys = false;
    bool _isPerforming = false;
    bool _isChangeNoted = false;
    QString _fault;
};
