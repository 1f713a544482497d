#pragma once

#include <QString>
#include <cstddef>
#include <cstdint>
#include <memory>

/// A movie's file, opened once and read by several decoders, each from where it likes; it stays
/// readable when its name is deleted. Any thread.
class KWMovieFile {
  public:
    /// Null, and the reason, when it cannot be opened or is no file: a folder, a pipe, a device.
    static std::shared_ptr<const KWMovieFile> open(const QString& path, QString& reason);
    ~KWMovieFile();
    KWMovieFile(const KWMovieFile&) = delete;
    KWMovieFile& operator=(const KWMovieFile&) = delete;

    /// Without its folders, to name it to people.
    const QString& name() const { return _name; }
    /// In bytes, as it is now; -1 when that cannot be told.
    std::int64_t size() const;
    /// How many bytes were read, 0 at the end; -1 on failure.
    std::ptrdiff_t read(std::int64_t position, void* bytes, std::size_t count) const;

  private:
    KWMovieFile(int descriptor, QString name);

    int _descriptor;
    QString _name;
};
