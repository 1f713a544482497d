#pragma once

#include "TestFiles.h"

#include <KWDesktop/KWMovie.h>

#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QThread>
#include <cmath>
#include <cstdlib>
#include <filesystem>
#include <functional>
#include <string>
#include <vector>

/// Runs the event loop until something holds, or far too long has passed.
inline bool waitFor(const std::function<bool()>& holds, int seconds = 30) {
    QElapsedTimer timer;
    timer.start();
    while (!holds()) {
        if (timer.elapsed() > seconds * 1000)
            return false;
        QCoreApplication::processEvents(QEventLoop::AllEvents, 5);
        QThread::msleep(1);
    }
    return true;
}

/// Movies made by the ffmpeg program, in a folder that goes with the test. Each frame of a numbered
/// movie shows its number, from 0 to 255.
class MovieFolder {
  public:
    QString path(const std::string& name) const {
        return QString::fromStdString((folder.path() / name).string());
    }

    /// The input, filter, encoder and container as ffmpeg's command line has them.
    QString make(const std::string& name, const std::string& arguments) const {
        const std::string file = (folder.path() / name).string();
        const std::string command = "ffmpeg -nostdin -v error -y " + arguments + " '" + file + "'";
        EXPECT_EQ(std::system(command.c_str()), 0) << command;
        return QString::fromStdString(file);
    }

    /// 64 x 48, 25 frames a second.
    QString makeNumbered(const std::string& name, const std::string& codec, int frames = 50,
                         const std::string& filter = "") const {
        const std::string number =
            "format=yuv444p,geq=lum='32+12*if(lt(X,W/2),mod(N,16),floor(N/16))':cb=128:cr=128";
        return make(name, "-f lavfi -i color=c=black:r=25:s=64x48 -vf \"" + number +
                              (filter.empty() ? "" : "," + filter) + "\" -frames:v " +
                              std::to_string(frames) + " " + codec);
    }

    TemporaryFolder folder;
};

inline const std::string h264 =
    "-pix_fmt yuv420p -c:v libx264 -preset ultrafast -crf 1 -g 12 -bf 2";

/// -1 for no picture.
inline int numberIn(const QImage& image) {
    if (image.isNull())
        return -1;
    const auto digit = [&](int x) {
        const double gray = qGray(image.pixel(x, image.height() / 2));
        return static_cast<int>(std::lround((gray * 219 / 255 + 16 - 32) / 12));
    };
    return digit(image.width() / 4) + 16 * digit(image.width() * 3 / 4);
}

/// The movie, and what it says of faults.
struct OpenMovie {
    explicit OpenMovie(const QString& file) : movie(KWMovie::movieWithFile(file, &error)) {
        if (movie)
            QObject::connect(movie.get(), &KWMovie::errorOccurred,
                             [this](const QString& text) { faults.push_back(text.toStdString()); });
    }
    KWMovie* operator->() const { return movie.get(); }
    explicit operator bool() const { return movie != nullptr; }

    QString error;
    std::shared_ptr<KWMovie> movie;
    std::vector<std::string> faults;
};
