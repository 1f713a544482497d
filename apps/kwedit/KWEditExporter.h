#pragma once

#include <apps/kwedit/KWEditDocument.h>
#include <apps/kwedit/KWFrameExport.h>

#include <QElapsedTimer>
#include <QObject>
#include <atomic>
#include <optional>
#include <thread>

/// Exports a document in the background, as it was when the export began; it can be edited
/// meanwhile. One export at a time.
class KWEditExporter : public QObject {
    Q_OBJECT

  public:
    explicit KWEditExporter(QObject* parent = nullptr);
    /// Cancels, and waits for that.
    ~KWEditExporter() override;

    bool isRunning() const { return _isRunning; }

    // False, and the reason, when the document cannot be exported or an export runs already. All
    // else is told by finished().

    /// `threadCount` 0 for as many as there are cores.
    bool exportFrames(const KWEditDocument& document, qint64 first, qint64 last, const QSize& size,
                      const QString& directory, QString* error = nullptr, int threadCount = 0);
    bool exportMovie(const KWEditDocument& document, qint64 first, qint64 last, const QSize& size,
                     const QString& file, QString* error = nullptr, int threadCount = 0);
    /// All channels that can be evaluated, in meters and radians, at each frame.
    bool exportValues(const KWEditDocument& document, qint64 first, qint64 last,
                      const QString& file, QString* error = nullptr);

    /// finished() follows soon.
    void cancel() { _isCanceled = true; }

  Q_SIGNALS:
    /// `secondsLeft` is negative until it can be told.
    void progress(qint64 done, qint64 total, double secondsLeft);
    void problem(const QString& sentence);
    /// `error` is empty unless it failed; a canceled export has neither succeeded nor failed.
    void finished(bool isDone, const QString& error);

  private:
    using Work = std::function<bool(const KWExportWatch&)>;
    bool start(Work work, QString* error);
    static KWFrameJob jobOf(const KWEditDocument& document, qint64 first, qint64 last,
                            const QSize& size, int threadCount);

    std::jthread _thread;
    std::atomic<bool> _isCanceled = false;
    bool _isRunning = false;
    QElapsedTimer _elapsed;
};
