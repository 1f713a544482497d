#pragma once

#include <KWBase/KWTime.h>

#include <QObject>
#include <QTimer>
#include <functional>

/// The time that a document is shown at: at rest, under the hand, or running.
///
/// Frame k is shown at k / framesPerSecond seconds. While it plays, the frame is the one that the
/// clock has come to: frames that are late are left out, and the time does not fall behind. Playing
/// begins where the time is, or at the beginning of the range when it is not in it or at its end.
/// Without looping it stops on the last frame; with it, the last frame is shown for as long as any
/// other, and then the first.
class KWEditTransport : public QObject {
    Q_OBJECT
    Q_PROPERTY(bool playing READ isPlaying WRITE setPlaying NOTIFY playingChanged)
    Q_PROPERTY(bool looping READ isLooping WRITE setLooping NOTIFY loopingChanged)
    Q_PROPERTY(double framesPerSecond READ framesPerSecond WRITE setFramesPerSecond NOTIFY
                   framesPerSecondChanged)
    Q_PROPERTY(float currentTime READ currentTime WRITE scrub NOTIFY timeChanged)

  public:
    /// Seconds that only go forward. The system's steady clock when none is given.
    using Clock = std::function<double()>;
    explicit KWEditTransport(QObject* parent = nullptr, Clock clock = {});
    ~KWEditTransport() override;

    KWTime time() const { return KWTime(_time); }
    float currentTime() const { return _time; }
    /// The nearest frame.
    qint64 frame() const;
    float timeOfFrame(qint64 frame) const;

    double framesPerSecond() const { return _rate; }
    /// 25 at first. Held to 0.001 to 1000; not a number changes nothing. The time stays, the range
    /// goes to the nearest frames.
    void setFramesPerSecond(double rate);

    qint64 firstFrame() const { return _first; }
    qint64 lastFrame() const { return _last; }
    /// 0 to 250 at first. The time stays, also outside of it; `last` before `first` counts as it.
    void setRange(qint64 first, qint64 last);

    bool isPlaying() const { return _isPlaying; }
    bool isLooping() const { return _isLooping; }

    /// Whether the user's hand holds the time; the clock waits meanwhile.
    bool isScrubbing() const { return _isScrubbing; }

    /// Frames that were left out since playing began.
    qint64 droppedFrameCount() const { return _dropped; }
    /// Frames shown in the last second or so of playing; 0 at rest.
    double measuredFramesPerSecond() const { return _isPlaying ? _measured : 0; }

    /// Shows what the clock has come to. Called by a timer as often as frames are due.
    void tick();

  public Q_SLOTS:
    void setPlaying(bool isPlaying);
    void play() { setPlaying(true); }
    void pause() { setPlaying(false); }
    void togglePlaying() { setPlaying(!_isPlaying); }
    void setLooping(bool isLooping);
    /// By whole frames from the nearest one to the time; stops playing. Goes round in the range
    /// when it loops, else holds at its ends; from outside of it, goes to the nearer end.
    void step(qint64 frames = 1);
    void stepBack() { step(-1); }
    void gotoBeginning();
    void gotoEnd();
    /// Any time, not only a frame's; not finite counts as 0. Playing goes on from there.
    void scrub(float time);
    void beginScrubbing();
    void endScrubbing();

  Q_SIGNALS:
    void timeChanged(float time);
    void playingChanged(bool isPlaying);
    void loopingChanged(bool isLooping);
    void framesPerSecondChanged(double rate);
    void rangeChanged(qint64 first, qint64 last);

  private:
    void setTime(float time);
    void restartClock(double position);
    void stopAt(qint64 frame);

    Clock _clock;
    QTimer _timer;
    float _time = 0;
    double _rate = 25;
    qint64 _first = 0;
    qint64 _last = 250;
    bool _isPlaying = false;
    bool _isLooping = true;
    bool _isScrubbing = false;
    double _origin = 0;   ///< of the clock
    double _position = 0; ///< in frames, when the clock stood there
    qint64 _shown = 0;    ///< frames since then, when one was shown last
    qint64 _dropped = 0;
    double _measured = 0;
    double _lastShown = 0;
};
