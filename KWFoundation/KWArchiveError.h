#pragma once

#include <KWFoundation/KWExport.h>

#include <cstdint>
#include <exception>
#include <optional>
#include <string>

/// Why an archive could not be read or written: which file, where in it, and the reason.
class KW_EXPORT KWArchiveError : public std::exception {
  public:
    enum class Kind : std::uint8_t {
        damaged,     ///< the bytes are no archive, or not a whole one, or contradict themselves
        unsupported, ///< well-formed, but of a kind, class or depth that this program does not take
        cannotRead,  ///< the file could not be opened or read
        cannotWrite, ///< the file could not be made or written
    };

    /// `file` is a path or "" for bytes from elsewhere; `offset` counts bytes from the start of the
    /// file; `keyPath` names the object's place in the archive, such as "root.channels[3].keys".
    KWArchiveError(Kind kind, std::string file, std::optional<std::uint64_t> offset,
                   std::string keyPath, std::string reason);
    ~KWArchiveError() override;

    Kind kind() const noexcept { return _kind; }
    const std::string& file() const noexcept { return _file; }
    const std::optional<std::uint64_t>& offset() const noexcept { return _offset; }
    const std::string& keyPath() const noexcept { return _keyPath; }
    const std::string& reason() const noexcept { return _reason; }

    /// One line: file, place and reason.
    const char* what() const noexcept override { return _text.c_str(); }

  private:
    Kind _kind;
    std::string _file;
    std::optional<std::uint64_t> _offset;
    std::string _keyPath;
    std::string _reason;
    std::string _text;
};
