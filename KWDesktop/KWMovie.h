#pragma once

#include <KWBase/KWTime.h>
#include <KWDesktop/KWMovieFrame.h>
#include <KWFoundation/KWExport.h>

#include <QObject>
#include <QSize>
#include <QString>
#include <memory>

struct KWMovieState;

/// A movie from a file, with a clock of its own. It has no sound and needs no screen: it says when
/// another frame is due, and whoever shows it takes that frame.
///
/// Every kind of file is read that FFmpeg decodes; of several videos in a file, the one that FFmpeg
/// holds for the best. Frames are exact: at a time the movie shows the last frame that begins at or
/// before it, and a time within the precision of a float before a frame counts as that frame's.
/// Times are in seconds from the beginning of the first frame.
///
/// Decoding ahead, for currentFrame(), happens on a thread of the movie's own. A movie that cannot
/// be decoded or shown in time drops frames and stays in time.
///
/// One thread, that of the user interface, with an event loop for the signals; but frameAt() may be
/// called from any.
class KW_EXPORT KWMovie : public QObject {
    Q_OBJECT
    Q_PROPERTY(double rate READ rate WRITE setRate NOTIFY rateChanged)
    Q_PROPERTY(double currentTime READ currentTime WRITE setCurrentTime NOTIFY frameChanged)
    Q_PROPERTY(double duration READ duration CONSTANT)
    Q_PROPERTY(QSize naturalSize READ naturalSize CONSTANT)

  public:
    /// Null when the file cannot be read, or nothing in it can be shown; `error` is then one
    /// sentence for people, which names the file and what is wrong. The movie is at rest at its
    /// beginning. A file that is deleted or renamed later can still be played.
    static std::shared_ptr<KWMovie> movieWithFile(const QString& file, QString* error = nullptr);
    ~KWMovie() override;

    /// As it was given.
    const QString& file() const;
    /// Seconds, until the last frame ends. What the file says; where it says nothing, what its
    /// frames say.
    double duration() const;
    /// How large it is meant to be seen: upright, with square pixels. Never empty.
    QSize naturalSize() const;
    /// Frames a second on the average, 0 when the file does not tell.
    double frameRate() const;

    // --- The clock. It goes from 0 to the duration, and stops by itself where it comes to the end
    // or, at a negative rate, to the beginning; the last frame, or the first, stays.

    /// 0 at rest, 1 for as fast as it was made, negative for backwards.
    double rate() const;
    /// Not finite counts as 0. At the end that it runs to a movie stops again at once.
    void setRate(double rate);
    /// Sets the rate to 1.
    void start();
    /// Sets the rate to 0.
    void stop();
    void gotoBeginning();
    /// The last frame begins before this.
    void gotoEnd();
    double currentTime() const;
    /// Held between 0 and the duration; not a number counts as 0. The rate stays.
    void setCurrentTime(double time);
    KWTimeValue currentTimeValue() const;

    // --- Frames.

    /// The frame for the current time, or, until that is decoded, the one shown before: never
    /// waits. Null before the first frame is there.
    const KWMovieFrame& currentFrame() const;
    /// The frame for any time: before the beginning the first, after the end the last, for not a
    /// number the first. Decodes on the calling thread, from the last key frame before unless the
    /// frame asked for before is nearer, and leaves clock and current frame alone. A null image
    /// when it cannot be decoded, which errorOccurred() then says.
    KWMovieFrame frameAt(double time) const;
    QImage imageAt(double time) const { return frameAt(time).image; }

  Q_SIGNALS:
    /// currentFrame() is another one.
    void frameChanged();
    void rateChanged(double rate);
    /// The clock has come to the end that it ran to, and has stopped.
    void ended();
    /// The file turned out to be damaged, in words for people; what can be shown of it still is.
    /// Sent once at the most.
    void errorOccurred(const QString& message) const;

  private:
    explicit KWMovie(std::unique_ptr<KWMovieState> state);
    void restart();
    void advance();
    void schedule();
    void noteFault(const QString& fault) const;

    const std::unique_ptr<KWMovieState> _state;
};
