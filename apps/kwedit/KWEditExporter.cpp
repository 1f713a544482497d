#include <apps/kwedit/KWEditExporter.h>

#include <QFileInfo>
#include <algorithm>

namespace {

int coresOr(int count) {
    return count > 0 ? count : std::max(1, static_cast<int>(std::thread::hardware_concurrency()));
}

bool fail(QString* error, const QString& text) {
    if (error)
        *error = text;
    return false;
}

} // namespace

KWEditExporter::KWEditExporter(QObject* parent) : QObject(parent) {}

KWEditExporter::~KWEditExporter() {
    _isCanceled = true;
}

KWFrameJob KWEditExporter::jobOf(const KWEditDocument& document, qint64 first, qint64 last,
                                 const QSize& size, int threadCount) {
    return {document.snapshot(), document.folder(), first, last, size, 0, coresOr(threadCount)};
}

bool KWEditExporter::start(Work work, QString* error) {
    if (_isRunning)
        return fail(error, tr("another export is under way"));
    if (_thread.joinable())
        _thread.join();
    _isRunning = true;
    _isCanceled = false;
    _elapsed.start();
    _thread = std::jthread([this, work = std::move(work)] {
        KWExportWatch watch;
        watch.isCanceled = &_isCanceled;
        watch.problem = [this](const QString& sentence) { Q_EMIT problem(sentence); };
        qint64 told = -1000;
        watch.progress = [this, told](quint64 done, quint64 total) mutable {
            const qint64 now = _elapsed.elapsed();
            if (now - told < 50 && done < total)
                return;
            told = now;
            const double each = static_cast<double>(now) / 1000 / static_cast<double>(done);
            Q_EMIT progress(static_cast<qint64>(done), static_cast<qint64>(total),
                            now < 200 ? -1 : each * static_cast<double>(total - done));
        };
        bool isDone = false;
        QString reason;
        try {
            isDone = work(watch);
        } catch (const std::exception& failure) {
            reason = QString::fromUtf8(failure.what());
        }
        QMetaObject::invokeMethod(
            this,
            [this, isDone, reason] {
                _isRunning = false;
                Q_EMIT finished(isDone, reason);
            },
            Qt::QueuedConnection);
    });
    return true;
}

bool KWEditExporter::exportFrames(const KWEditDocument& document, qint64 first, qint64 last,
                                  const QSize& size, const QString& directory, QString* error,
                                  int threadCount) {
    try {
        const QString base = QFileInfo(document.fileName()).completeBaseName();
        return start(
            [job = jobOf(document, first, last, size, threadCount), directory,
             name = base.isEmpty() ? QStringLiteral("frame") : base](const KWExportWatch& watch) {
                return kwExportFrames(job, directory, name, false, watch);
            },
            error);
    } catch (const std::exception& failure) {
        return fail(error, QString::fromUtf8(failure.what()));
    }
}

bool KWEditExporter::exportMovie(const KWEditDocument& document, qint64 first, qint64 last,
                                 const QSize& size, const QString& file, QString* error,
                                 int threadCount) {
    try {
        return start([job = jobOf(document, first, last, size, threadCount),
                      file](const KWExportWatch& watch) { return kwExportMovie(job, file, watch); },
                     error);
    } catch (const std::exception& failure) {
        return fail(error, QString::fromUtf8(failure.what()));
    }
}

bool KWEditExporter::exportValues(const KWEditDocument& document, qint64 first, qint64 last,
                                  const QString& file, QString* error) {
    try {
        const auto snapshot = document.snapshot();
        std::vector<Place> places = snapshot->channels();
        std::erase_if(places, [](const Place& place) {
            return kwIsOfUnknownKind(*place.channel) || !kwIrregularity(*place.channel).empty();
        });
        const double rate = document.stage().rate;
        const TimeSteps steps = TimeSteps::atRate(static_cast<double>(first) / rate,
                                                  static_cast<double>(last) / rate, rate);
        return start(
            [snapshot, places, steps, file](const KWExportWatch& watch) {
                return kwExportValues(places, steps, file, watch);
            },
            error);
    } catch (const std::exception& failure) {
        return fail(error, QString::fromUtf8(failure.what()));
    }
}
