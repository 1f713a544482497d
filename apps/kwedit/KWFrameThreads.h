#pragma once

#include <apps/kwedit/KWEditScene.h>
#include <apps/kwedit/KWFrameExport.h>

#include <condition_variable>
#include <exception>
#include <functional>
#include <memory>
#include <mutex>
#include <set>
#include <vector>

/// Draws the frames of a job on several threads, each with a scene of its own.
class KWFrameThreads {
  public:
    /// DataError when there is no memory for frames of that size.
    KWFrameThreads(const KWFrameJob& job, const KWExportWatch& watch);

    QSize size() const { return _size; }
    double framesPerSecond() const { return _rate; }

    /// Calls `take` on the thread that has drawn the frame, in any order; frames that `isWanted`
    /// refuses count as done. False when it was canceled. The first exception ends all and passes
    /// through.
    bool run(const std::function<bool(qint64)>& isWanted,
             const std::function<void(qint64, const QImage&)>& take);
    /// Calls `take` on this thread, in order. No more frames wait than there are threads.
    bool runInOrder(const std::function<void(qint64, const QImage&)>& take);

  private:
    struct Worker {
        std::unique_ptr<KWEditScene> scene;
        qsizetype told = 0; ///< problems
    };

    bool mayGoOn() const;
    std::optional<qint64> nextFrame();
    QImage draw(Worker& worker, qint64 frame);
    void done();
    void failed();

    const KWFrameJob& _job;
    const KWExportWatch& _watch;
    QSize _size;
    double _rate = 0;
    std::vector<Worker> _workers;

    mutable std::mutex _mutex;
    std::condition_variable _changed;
    qint64 _next;
    quint64 _done = 0;
    std::exception_ptr _failure;
    std::set<QString> _said;
};
