#pragma once

#include <KWDesktop/KWMovieFile.h>

#include <QSize>
#include <QString>
#include <QTransform>
#include <atomic>
#include <cstdint>
#include <memory>
#include <vector>

struct AVFrame;

struct KWAVFrameDeleter {
    void operator()(AVFrame* frame) const;
};
using KWAVFrame = std::unique_ptr<AVFrame, KWAVFrameDeleter>;

/// A decoded frame and its place in the movie.
struct KWDecodedFrame {
    KWAVFrame frame;
    /// In units of the stream's time base, as the file counts.
    std::int64_t ticks = 0;
    /// Seconds from the movie's first frame.
    double time = 0;

    explicit operator bool() const { return frame != nullptr; }
};

/// What is known of a movie once it is open.
struct KWMovieDescription {
    double duration = 0;  ///< seconds
    double frameRate = 0; ///< frames a second on the average; 0 when the file does not tell
    QSize codedSize;      ///< of a frame as it is stored
    QSize naturalSize;    ///< with square pixels, and upright
    QTransform orientation;
};

/// Decodes the first video stream of a file, exactly: the frame for a time is the last one that
/// begins at or before it, however one came there. One thread at a time.
///
/// It reads nothing but that file: what the file says of others, or of the network, is not
/// followed.
class KWMovieDecoder {
  public:
    enum class Access {
        sequential, ///< mostly one frame after the other
        random,     ///< mostly single frames
    };

    /// Null, and the reason, when nothing in the file can be shown. Decoding is given up, here and
    /// later, when `isCancelled` becomes true, which has to live as long as the decoder.
    static std::unique_ptr<KWMovieDecoder> open(std::shared_ptr<const KWMovieFile> file,
                                                Access access, const std::atomic<bool>& isCancelled,
                                                QString& reason);
    ~KWMovieDecoder();

    const KWMovieDescription& description() const { return _description; }

    /// The frame for a time in seconds: the first one before the movie, the last one after it. Null
    /// when nothing can be decoded. Valid until the next call.
    const KWDecodedFrame* frameAt(double time);
    /// The one after the frame answered last; null at the end of the movie.
    const KWDecodedFrame* nextFrame();
    /// When the frame after the one answered last begins; infinity when there is none.
    double timeOfNextFrame();
    /// The frames before the one that begins at `ticks`, in their order: the last ones of them, as
    /// many as fit into so many bytes, and one at least. Empty at the movie's beginning. Null
    /// frames do not occur.
    std::vector<KWDecodedFrame> framesBefore(std::int64_t ticks, std::size_t bytes);
    /// Whether decoding would come to a time sooner from a key frame than from where it is.
    bool isKeyFrameBefore(double time);

    /// What has gone wrong since it was opened and was passed over, in words; empty for nothing.
    const QString& fault() const { return _fault; }

  private:
    struct Libav;

    KWMovieDecoder(std::shared_ptr<const KWMovieFile> file, Access access,
                   const std::atomic<bool>& isCancelled);
    bool openInput(QString& reason);
    bool openCodec(QString& reason);
    bool decodeFirstFrame(QString& reason);
    void describe();
    double durationByReading();
    double durationByLastFrame();

    std::int64_t ticksAt(double time) const;
    double timeOf(std::int64_t ticks) const;
    bool seekTo(std::int64_t ticks);
    bool startOver();
    void seekBefore(std::int64_t ticks);
    void walkTo(std::int64_t ticks);
    /// Whether the frame after the current one is known to begin after that, without decoding it.
    bool isNextPacketAfter(std::int64_t ticks);
    void fillNext();
    void noteEarlyEnd();
    void step();

    bool readPacket();
    KWDecodedFrame decode();
    KWDecodedFrame frameOf(KWAVFrame frame);
    void noteFault(int code);

    const std::shared_ptr<const KWMovieFile> _file;
    const Access _access;
    const std::atomic<bool>& _isCancelled;
    std::unique_ptr<Libav> _av;
    KWMovieDescription _description;
    QString _fault;

    std::int64_t _firstTicks = 0;
    /// The frame answered last, and the one after it where it is decoded already.
    KWDecodedFrame _current;
    KWDecodedFrame _next;
    bool _isEnded = false; ///< whether no frame comes after those
};
