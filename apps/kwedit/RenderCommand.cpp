#include <KWFoundation/KWArchiveError.h>

#include <apps/common/Errors.h>
#include <apps/common/ExitCodes.h>
#include <apps/common/KWProgress.h>
#include <apps/common/Output.h>
#include <apps/common/Text.h>
#include <apps/kwedit/KWEditScene.h>
#include <apps/kwedit/KWFilmstrip.h>
#include <apps/kwedit/KWFrameExport.h>
#include <apps/kwedit/RenderCommand.h>

#include <QFile>
#include <QFileInfo>
#include <QGuiApplication>
#include <QSaveFile>
#include <atomic>
#include <charconv>
#include <csignal>
#include <thread>

namespace {

std::atomic<bool> isInterrupted = false;

/// Once it ends as soon as the frames under way are done; twice, at once.
void interrupt(int number) {
    isInterrupted = true;
    std::signal(number, SIG_DFL);
}

struct FrameRange {
    qint64 first;
    qint64 last;
};

/// "7", "0-99" or "-10--1".
FrameRange rangeArgument(const std::string& text) {
    const char* const end = text.data() + text.size();
    FrameRange range{};
    const auto first = std::from_chars(text.data(), end, range.first);
    if (first.ec == std::errc() && first.ptr == end)
        return {range.first, range.first};
    constexpr qint64 largest = 1'000'000'000;
    if (first.ec == std::errc() && *first.ptr == '-') {
        const auto second = std::from_chars(first.ptr + 1, end, range.last);
        if (second.ec == std::errc() && second.ptr == end && range.first <= range.last &&
            range.first >= -largest && range.last <= largest)
            return range;
    }
    throw UseError("--frames: " + inQuotes(text) +
                   " is no range; two frames are wanted, the lower one first, such as 0-99");
}

int jobsArgument(const std::string& text) {
    if (text.empty())
        return std::max(1, static_cast<int>(std::thread::hardware_concurrency()));
    int jobs = 0;
    const char* const end = text.data() + text.size();
    const auto read = std::from_chars(text.data(), end, jobs);
    if (read.ec != std::errc() || read.ptr != end || jobs < 1 || jobs > 1024)
        throw UseError("--jobs: a whole number from 1 to 1024 is wanted, not " + inQuotes(text));
    return jobs;
}

KWFrameJob jobOf(const KWEditArguments& arguments) {
    if (arguments.documents.size() != 1)
        throw UseError("--render needs one document");
    if (arguments.output.empty())
        throw UseError("--render needs -o, a folder for the frames or a file for a movie");
    KWFrameJob job;
    if (!arguments.size.empty()) {
        const auto size = kwSizeFromText(arguments.size);
        if (!size)
            throw UseError("--size: " + inQuotes(arguments.size) +
                           " is no size; two whole numbers from 1 to 16384 are wanted, such as "
                           "1280x720");
        job.size = *size;
    }
    if (!arguments.framesPerSecond.empty()) {
        job.framesPerSecond = finiteArgument("--fps", arguments.framesPerSecond);
        if (!(job.framesPerSecond >= 0.001 && job.framesPerSecond <= 1000))
            throw UseError("--fps: a number from 0.001 to 1000 is wanted, not " +
                           inQuotes(arguments.framesPerSecond));
    }
    job.threadCount = jobsArgument(arguments.jobs);
    std::optional<FrameRange> range;
    if (!arguments.frames.empty())
        range = rangeArgument(arguments.frames);

    const std::string& path = arguments.documents.front();
    const auto document = std::make_shared<KWDocument>(KWDocument::open(path));
    job.document = document;
    job.folder = QFileInfo(QFile::decodeName(path.c_str())).absolutePath();
    KWStage stage = KWEditScene(*document, job.folder).stage();
    if (job.framesPerSecond > 0)
        stage.rate = job.framesPerSecond;
    job.first = range ? range->first : stage.firstFrame();
    job.last = range ? range->last : stage.lastFrame();
    return job;
}

/// Everything that is missing is met before anything is written.
void checkContent(const KWFrameJob& job, const std::string& document) {
    KWEditScene scene(*job.document, job.folder);
    scene.frame(KWTime(0), QSize(16, 16));
    if (!scene.problems().isEmpty())
        throw DataError(document + ": " + scene.problems().front().toStdString());
}

int drawFilmstrip(const KWFrameJob& job, const KWEditArguments& arguments) {
    int count = 0;
    const char* const end = arguments.filmstrip.data() + arguments.filmstrip.size();
    const auto read = std::from_chars(arguments.filmstrip.data(), end, count);
    if (read.ec != std::errc() || read.ptr != end || count < 1 || count > 1000)
        throw UseError("--filmstrip: a whole number from 1 to 1000 is wanted, not " +
                       inQuotes(arguments.filmstrip));
    const int width = job.size.isEmpty() ? 320 : job.size.width();
    const QImage sheet = kwFilmstrip(*job.document, job.folder, job.first, job.last, count, width);
    const QString file = QFile::decodeName(arguments.output.c_str());
    QSaveFile target(file);
    if (!target.open(QIODevice::WriteOnly) || !sheet.save(&target, "PNG") || !target.commit())
        throw KWArchiveError(KWArchiveError::Kind::cannotWrite, arguments.output, {}, {},
                             target.errorString().toStdString());
    return exitDone;
}

int render(const KWEditArguments& arguments) {
    const KWFrameJob job = jobOf(arguments);
    const std::string& document = arguments.documents.front();
    if (arguments.isStrict)
        checkContent(job, document);
    if (!arguments.filmstrip.empty())
        return drawFilmstrip(job, arguments);
    const QString output = QFile::decodeName(arguments.output.c_str());
    const QString name = arguments.name.empty()
                             ? QFileInfo(QFile::decodeName(document.c_str())).completeBaseName()
                             : QString::fromStdString(arguments.name);
    KWProgress bar("Rendering", "frames", static_cast<std::uint64_t>(job.last - job.first + 1));
    KWExportWatch watch;
    watch.isCanceled = &isInterrupted;
    watch.progress = [&bar](quint64 done, quint64) { bar.update(done); };
    watch.problem = [&](const QString& problem) {
        bar.clear();
        complain(printable(document + ": " + problem.toStdString() +
                           "; a placeholder is drawn in its place"));
    };
    const bool isDone = kwIsMovieName(output)
                            ? kwExportMovie(job, output, watch)
                            : kwExportFrames(job, output, name, arguments.skipsExisting, watch);
    bar.clear();
    if (isDone)
        return exitDone;
    complain("interrupted; " + printable(arguments.output) +
             (kwIsMovieName(output) ? " is not written" : " has the frames that were done"));
    return exitInterrupted;
}

} // namespace

int runRender(const KWEditArguments& arguments) {
    for (const int number : {SIGINT, SIGTERM, SIGHUP})
        if (std::signal(number, interrupt) == SIG_IGN)
            std::signal(number, SIG_IGN);
    // Pictures need no screen; what Qt says of a session that it misses is nobody's concern here.
    qInstallMessageHandler([](QtMsgType, const QMessageLogContext&, const QString&) {});
    qputenv("QT_QPA_PLATFORM", "offscreen");
    int count = 1;
    char program[] = "kwedit";
    char* words[] = {program, nullptr};
    const QGuiApplication application(count, words);
    try {
        return render(arguments);
    } catch (const UseError& error) {
        complain(printable(error.what()) + "; see kwedit --help");
        return exitWrongUse;
    } catch (const KWArchiveError& error) {
        complain(printable(error.what()));
        const bool isInputOutput = error.kind() == KWArchiveError::Kind::cannotRead ||
                                   error.kind() == KWArchiveError::Kind::cannotWrite;
        return isInputOutput ? exitInputOutput : exitBadData;
    } catch (const std::exception& error) {
        complain(printable(error.what()));
        return exitBadData;
    }
}
