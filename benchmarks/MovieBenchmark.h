#pragma once

#include <QString>
#include <cstdlib>
#include <filesystem>
#include <string>

/// A movie of moving patterns, made once by the ffmpeg program, which goes with this one. Empty
/// where that cannot be done.
class KWBenchmarkMovie {
  public:
    KWBenchmarkMovie(const std::string& size, int seconds, int group) {
        std::string pattern =
            (std::filesystem::temp_directory_path() / "kwbenchmark.XXXXXX").string();
        if (!mkdtemp(pattern.data()))
            return;
        _folder = pattern;
        const std::string file = pattern + "/movie.mp4";
        const std::string command = "ffmpeg -nostdin -v error -f lavfi -i testsrc2=r=60:s=" + size +
                                    ":d=" + std::to_string(seconds) +
                                    " -pix_fmt yuv420p -c:v libx264 -preset veryfast -bf 2 -g " +
                                    std::to_string(group) + " " + file;
        if (std::system(command.c_str()) == 0)
            _file = QString::fromStdString(file);
    }
    ~KWBenchmarkMovie() {
        std::error_code ignored;
        if (!_folder.empty())
            std::filesystem::remove_all(_folder, ignored);
    }
    KWBenchmarkMovie(const KWBenchmarkMovie&) = delete;
    KWBenchmarkMovie& operator=(const KWBenchmarkMovie&) = delete;

    const QString& file() const { return _file; }

  private:
    std::filesystem::path _folder;
    QString _file;
};

/// 1920 x 1080, 60 frames a second, 4 s, a key frame each second.
inline const KWBenchmarkMovie& KWLargeBenchmarkMovie() {
    static const KWBenchmarkMovie movie("1920x1080", 4, 60);
    return movie;
}
