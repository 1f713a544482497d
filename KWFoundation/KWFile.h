#pragma once

#include <KWFoundation/KWExport.h>

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <span>
#include <string>

/// The bytes of a file, read in one go.
class KW_EXPORT KWFileContents {
  public:
    KWFileContents() = default;
    KWFileContents(KWFileContents&&) noexcept = default;
    KWFileContents& operator=(KWFileContents&&) noexcept = default;

    /// Reads a whole regular file, pipe or device. Raises KWArchiveError (cannotRead) with the
    /// system's reason.
    static KWFileContents read(const std::filesystem::path& path);

    std::span<const std::byte> bytes() const { return {_bytes.get(), _size}; }

  private:
    std::unique_ptr<std::byte[]> _bytes;
    std::size_t _size = 0;
};

/// A file that takes its place when it is whole, or never: until commit() the old file stays as it
/// was, and without commit() nothing is left behind. A link is followed, and an existing file keeps
/// its permissions. Everything that fails raises KWArchiveError (cannotWrite).
class KW_EXPORT KWAtomicFile {
  public:
    explicit KWAtomicFile(const std::filesystem::path& path);
    ~KWAtomicFile();
    KWAtomicFile(const KWAtomicFile&) = delete;
    KWAtomicFile& operator=(const KWAtomicFile&) = delete;

    void write(std::span<const std::byte> bytes);
    void commit();

  private:
    std::filesystem::path _path;
    std::filesystem::path _target;
    std::string _temporary;
    int _descriptor = -1;
};

/// Puts the bytes in the file's place: all of them, or the old file stays as it was. As
/// KWAtomicFile.
KW_EXPORT void KWWriteFileAtomically(const std::filesystem::path& path,
                                     std::span<const std::byte> bytes);
