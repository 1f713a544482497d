#pragma once

#include <apps/common/Bake.h>
#include <apps/common/KWDocument.h>

#include <QImage>
#include <QString>
#include <QStringList>
#include <atomic>
#include <functional>
#include <memory>

// Frames, movies and values of a document, written into files. Each function runs until it is done,
// on the calling thread and others; nobody may edit the document meanwhile. What fails raises
// KWArchiveError (cannotWrite) or DataError, with the file and the reason, and leaves no half file.

/// What is told about an export while it runs, on any of its threads, one call at a time.
struct KWExportWatch {
    /// How many of the frames or times are done.
    std::function<void(quint64 done, quint64 total)> progress;
    /// A sentence for each thing that is missing or broken, once.
    std::function<void(const QString&)> problem;
    /// Set to end the export soon. May be null.
    const std::atomic<bool>* isCanceled = nullptr;
};

/// Which frames of which document, and how large.
struct KWFrameJob {
    std::shared_ptr<const KWDocument> document;
    QString folder; ///< where relative names of content start from
    qint64 first = 0;
    qint64 last = 0;            ///< the last one belongs to them
    QSize size;                 ///< the document's own when empty
    double framesPerSecond = 0; ///< the document's own when 0
    int threadCount = 1;        ///< how many frames are drawn at once
};

/// "name.0012.png": at least four digits, the sign in front of them.
QString kwFrameFileName(const QString& name, qint64 frame);

/// Writes each frame as a PNG into `directory`, which is made where it is not there. A file takes
/// its place when it is whole. `skipsExisting` leaves alone what is there already. Answers false
/// when it was canceled; the frames that were done by then stay.
bool kwExportFrames(const KWFrameJob& job, const QString& directory, const QString& name,
                    bool skipsExisting, const KWExportWatch& watch);

/// Writes the frames as a movie, by the ffmpeg program, in the kind that the ending of the file
/// says. Transparent parts are black where the kind has none. The file takes its place when it is
/// whole; answers false, and leaves nothing, when it was canceled.
bool kwExportMovie(const KWFrameJob& job, const QString& file, const KWExportWatch& watch);

/// Where the ffmpeg program is; "" when there is none.
QString kwMovieProgram();
/// Whether the ending of a file is one of a movie that can be written, such as ".mp4".
bool kwIsMovieName(const QString& file);

/// Writes the values of the channels into a file, as CSV, JSON or JSON lines by its ending. Answers
/// false, and leaves nothing, when it was canceled.
bool kwExportValues(const std::vector<Place>& places, const TimeSteps& steps, const QString& file,
                    const KWExportWatch& watch);
