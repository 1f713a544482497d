#include <KWFoundation/KWArchiveError.h>
#include <KWFoundation/KWFile.h>

#include <apps/common/Errors.h>
#include <apps/kwedit/KWEditScene.h>
#include <apps/kwedit/KWFrameExport.h>
#include <apps/kwedit/KWFrameThreads.h>

#include <QBuffer>
#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <cmath>

namespace {

std::filesystem::path systemPath(const QString& path) {
    return QFile::encodeName(path).toStdString();
}

[[noreturn]] void cannotWrite(const QString& file, const QString& reason) {
    throw KWArchiveError(KWArchiveError::Kind::cannotWrite, file.toStdString(), std::nullopt, {},
                         reason.toStdString());
}

QString sentence(const char* text) {
    return QCoreApplication::translate("KWFrameExport", text);
}

QByteArray png(const QImage& image) {
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    // Packed a little less than at the best, in a fifth of the time.
    constexpr int quality = 70;
    if (!image.save(&buffer, "PNG", quality))
        throw DataError(
            sentence(QT_TRANSLATE_NOOP("KWFrameExport", "a frame could not be packed as PNG"))
                .toStdString());
    return bytes;
}

bool isCanceled(const KWExportWatch& watch) {
    return watch.isCanceled && watch.isCanceled->load();
}

/// The file beside it until it is whole, with the same ending, by which its kind is told.
class UnfinishedFile {
  public:
    explicit UnfinishedFile(const QString& file)
        : _target(file),
          _folder(QFileInfo(file).absolutePath() + QStringLiteral("/.kwedit-XXXXXX")) {
        if (!_folder.isValid())
            cannotWrite(file, _folder.errorString());
    }
    QString path() const {
        return _folder.filePath(QStringLiteral("movie.") + QFileInfo(_target).suffix());
    }
    void finish() {
        if (::rename(QFile::encodeName(path()).constData(),
                     QFile::encodeName(_target).constData()) != 0)
            cannotWrite(_target, qt_error_string(errno));
    }

  private:
    QString _target;
    QTemporaryDir _folder;
};

QStringList movieArguments(const QSize& size, double rate, const QString& file) {
    const QString suffix = QFileInfo(file).suffix().toLower();
    QStringList arguments{QStringLiteral("-v"),
                          QStringLiteral("error"),
                          QStringLiteral("-y"),
                          QStringLiteral("-f"),
                          QStringLiteral("rawvideo"),
                          QStringLiteral("-pix_fmt"),
                          QStringLiteral("bgra"),
                          QStringLiteral("-s"),
                          QStringLiteral("%1x%2").arg(size.width()).arg(size.height()),
                          QStringLiteral("-r"),
                          QString::number(rate, 'g', 12),
                          QStringLiteral("-i"),
                          QStringLiteral("-"),
                          QStringLiteral("-an")};
    // These kinds halve the color's sides, which must be even for that.
    const QString even = QStringLiteral("pad=ceil(iw/2)*2:ceil(ih/2)*2");
    if (suffix == QLatin1String("webm"))
        arguments << QStringLiteral("-c:v") << QStringLiteral("libvpx-vp9")
                  << QStringLiteral("-crf") << QStringLiteral("24") << QStringLiteral("-b:v")
                  << QStringLiteral("0") << QStringLiteral("-vf") << even
                  << QStringLiteral("-pix_fmt") << QStringLiteral("yuv420p");
    else if (suffix == QLatin1String("gif"))
        arguments << QStringLiteral("-vf")
                  << QStringLiteral("split[a][b];[a]palettegen[p];[b][p]paletteuse");
    else
        arguments << QStringLiteral("-c:v") << QStringLiteral("libx264") << QStringLiteral("-crf")
                  << QStringLiteral("16") << QStringLiteral("-vf") << even
                  << QStringLiteral("-pix_fmt") << QStringLiteral("yuv420p");
    if (suffix == QLatin1String("mp4") || suffix == QLatin1String("mov"))
        arguments << QStringLiteral("-movflags") << QStringLiteral("+faststart");
    return arguments << file;
}

/// ffmpeg at work on frames that it is handed.
class MovieWriter {
  public:
    MovieWriter(const QSize& size, double rate, const QString& target, const QString& file)
        : _target(target) {
        const QString program = kwMovieProgram();
        if (program.isEmpty())
            cannotWrite(target, sentence(QT_TRANSLATE_NOOP(
                                    "KWFrameExport",
                                    "the program ffmpeg, which makes movies, is not here")));
        _process.setStandardOutputFile(QProcess::nullDevice());
        _process.start(program, movieArguments(size, rate, file));
        if (!_process.waitForStarted(-1))
            cannotWrite(target, _process.errorString());
    }
    ~MovieWriter() {
        if (_process.state() == QProcess::NotRunning)
            return;
        _process.kill();
        _process.waitForFinished(-1);
    }
    void write(const QImage& image) {
        for (int y = 0; y < image.height(); ++y)
            _process.write(reinterpret_cast<const char*>(image.constScanLine(y)),
                           qint64{image.width()} * 4);
        while (_process.bytesToWrite() > 0)
            if (!_process.waitForBytesWritten(-1))
                fail();
    }
    void finish() {
        _process.closeWriteChannel();
        _process.waitForFinished(-1);
        if (_process.exitStatus() != QProcess::NormalExit || _process.exitCode() != 0)
            fail();
    }

  private:
    [[noreturn]] void fail() {
        _process.waitForFinished(1000);
        const QString said = QString::fromLocal8Bit(_process.readAllStandardError()).trimmed();
        cannotWrite(_target,
                    said.isEmpty()
                        ? sentence(QT_TRANSLATE_NOOP("KWFrameExport", "ffmpeg failed"))
                        : QStringLiteral("ffmpeg: ") + said.section(QLatin1Char('\n'), 0, 0));
    }

    QString _target;
    QProcess _process;
};

} // namespace

QString kwFrameFileName(const QString& name, qint64 frame) {
    const QString digits = QString::number(std::abs(frame)).rightJustified(4, QLatin1Char('0'));
    return QStringLiteral("%1.%2%3.png")
        .arg(name, frame < 0 ? QStringLiteral("-") : QString(), digits);
}

bool kwExportFrames(const KWFrameJob& job, const QString& directory, const QString& name,
                    bool skipsExisting, const KWExportWatch& watch) {
    if (!QDir().mkpath(directory))
        cannotWrite(directory,
                    sentence(QT_TRANSLATE_NOOP("KWFrameExport", "the folder cannot be made")));
    const auto fileOf = [&](qint64 frame) {
        return QDir(directory).filePath(kwFrameFileName(name, frame));
    };
    KWFrameThreads threads(job, watch);
    return threads.run(
        [&](qint64 frame) { return !skipsExisting || !QFileInfo::exists(fileOf(frame)); },
        [&](qint64 frame, const QImage& image) {
            const QByteArray bytes = png(image);
            KWWriteFileAtomically(
                systemPath(fileOf(frame)),
                std::as_bytes(std::span(bytes.constData(), std::size_t(bytes.size()))));
        });
}

bool kwExportMovie(const KWFrameJob& job, const QString& file, const KWExportWatch& watch) {
    UnfinishedFile unfinished(file);
    KWFrameThreads threads(job, watch);
    MovieWriter writer(threads.size(), threads.framesPerSecond(), file, unfinished.path());
    if (!threads.runInOrder([&](qint64, const QImage& image) { writer.write(image); }))
        return false;
    writer.finish();
    unfinished.finish();
    return true;
}

QString kwMovieProgram() {
    return QStandardPaths::findExecutable(QStringLiteral("ffmpeg"));
}

bool kwIsMovieName(const QString& file) {
    const QString suffix = QFileInfo(file).suffix().toLower();
    return QStringList{QStringLiteral("mp4"), QStringLiteral("mov"), QStringLiteral("mkv"),
                       QStringLiteral("webm"), QStringLiteral("gif")}
        .contains(suffix);
}

bool kwExportValues(const std::vector<Place>& places, const TimeSteps& steps, const QString& file,
                    const KWExportWatch& watch) {
    const BakeFormat format = file.endsWith(QLatin1String(".jsonl"))  ? BakeFormat::jsonl
                              : file.endsWith(QLatin1String(".json")) ? BakeFormat::json
                                                                      : BakeFormat::csv;
    KWAtomicFile output(systemPath(file));
    const bool isDone = bake(
        places, steps, format,
        [&output](std::string_view text) {
            output.write(std::as_bytes(std::span(text.data(), text.size())));
        },
        [&](std::uint64_t done) {
            if (watch.progress)
                watch.progress(done, steps.count());
            return done == steps.count() || !isCanceled(watch);
        });
    if (isDone)
        output.commit();
    return isDone;
}
