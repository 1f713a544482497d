#include <apps/common/Errors.h>
#include <apps/kwedit/KWFrameThreads.h>

#include <QCoreApplication>
#include <algorithm>
#include <map>
#include <thread>

KWFrameThreads::KWFrameThreads(const KWFrameJob& job, const KWExportWatch& watch)
    : _job(job), _watch(watch), _next(job.first) {
    const qint64 count = std::max<qint64>(1, job.last - job.first + 1);
    const auto threads = static_cast<std::size_t>(std::clamp<qint64>(job.threadCount, 1, count));
    // All made here, as movies want to be made on one thread.
    for (std::size_t k = 0; k < threads; ++k)
        _workers.push_back({std::make_unique<KWEditScene>(*job.document, job.folder), 0});
    const KWStage& stage = _workers.front().scene->stage();
    _size = job.size.isEmpty() ? stage.size : job.size;
    _rate = job.framesPerSecond > 0 ? job.framesPerSecond : stage.rate;
}

bool KWFrameThreads::mayGoOn() const {
    return !_failure && !(_watch.isCanceled && _watch.isCanceled->load());
}

std::optional<qint64> KWFrameThreads::nextFrame() {
    const std::lock_guard lock(_mutex);
    if (_next > _job.last || !mayGoOn())
        return std::nullopt;
    return _next++;
}

QImage KWFrameThreads::draw(Worker& worker, qint64 frame) {
    const auto time = static_cast<float>(static_cast<double>(frame) / _rate);
    QImage image = worker.scene->frame(KWTime(time), _size);
    if (image.isNull())
        throw DataError(QCoreApplication::translate("KWFrameExport",
                                                    "there is no memory for a frame of that size")
                            .toStdString());
    const QStringList problems = worker.scene->problems();
    const std::lock_guard lock(_mutex);
    for (; worker.told < problems.size(); ++worker.told)
        if (_said.insert(problems[worker.told]).second && _watch.problem)
            _watch.problem(problems[worker.told]);
    return image;
}

void KWFrameThreads::done() {
    const std::lock_guard lock(_mutex);
    ++_done;
    if (_watch.progress)
        _watch.progress(_done, static_cast<quint64>(_job.last - _job.first + 1));
}

void KWFrameThreads::failed() {
    const std::lock_guard lock(_mutex);
    if (!_failure)
        _failure = std::current_exception();
    _changed.notify_all();
}

bool KWFrameThreads::run(const std::function<bool(qint64)>& isWanted,
                         const std::function<void(qint64, const QImage&)>& take) {
    const auto work = [&](Worker& worker) {
        try {
            while (const auto frame = nextFrame()) {
                if (isWanted(*frame))
                    take(*frame, draw(worker, *frame));
                done();
            }
        } catch (...) {
            failed();
        }
    };
    {
        std::vector<std::jthread> others;
        for (std::size_t k = 1; k < _workers.size(); ++k)
            others.emplace_back(work, std::ref(_workers[k]));
        work(_workers.front());
    }
    if (_failure)
        std::rethrow_exception(_failure);
    return _next > _job.last && mayGoOn();
}

bool KWFrameThreads::runInOrder(const std::function<void(qint64, const QImage&)>& take) {
    std::map<qint64, QImage> waiting;
    qint64 wanted = _job.first;
    const auto work = [&](Worker& worker) {
        try {
            while (const auto frame = nextFrame()) {
                {
                    // Not too far ahead of what is taken.
                    std::unique_lock lock(_mutex);
                    _changed.wait(lock, [&] {
                        return !mayGoOn() || *frame - wanted <= qint64(_workers.size());
                    });
                    if (!mayGoOn())
                        return;
                }
                QImage image = draw(worker, *frame);
                const std::lock_guard lock(_mutex);
                waiting.emplace(*frame, std::move(image));
                _changed.notify_all();
            }
        } catch (...) {
            failed();
        }
    };
    std::vector<std::jthread> others;
    for (Worker& worker : _workers)
        others.emplace_back(work, std::ref(worker));
    try {
        while (wanted <= _job.last) {
            std::unique_lock lock(_mutex);
            // Nobody rings when it is canceled from outside.
            while (mayGoOn() && !waiting.contains(wanted))
                _changed.wait_for(lock, std::chrono::milliseconds(50));
            if (!mayGoOn())
                break;
            const QImage image = std::move(waiting.extract(wanted).mapped());
            lock.unlock();
            take(wanted, image);
            done();
            lock.lock();
            ++wanted;
            _changed.notify_all();
        }
    } catch (...) {
        failed();
    }
    _changed.notify_all();
    others.clear();
    if (_failure)
        std::rethrow_exception(_failure);
    return wanted > _job.last;
}
