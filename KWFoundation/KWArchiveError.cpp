#include <KWFoundation/KWArchiveError.h>

namespace {

std::string describe(const std::string& file, const std::optional<std::uint64_t>& offset,
                     const std::string& keyPath, const std::string& reason) {
    std::string text = file;
    if (!text.empty())
        text += ": ";
    if (offset)
        text += "at byte " + std::to_string(*offset);
    if (!keyPath.empty())
        text += (offset ? ", in " : "in ") + keyPath;
    if (offset || !keyPath.empty())
        text += ": ";
    return text + reason;
}

} // namespace

KWArchiveError::KWArchiveError(Kind kind, std::string file, std::optional<std::uint64_t> offset,
                               std::string keyPath, std::string reason)
    : _kind(kind), _file(std::move(file)), _offset(offset), _keyPath(std::move(keyPath)),
      _reason(std::move(reason)), _text(describe(_file, _offset, _keyPath, _reason)) {}

KWArchiveError::~KWArchiveError() = default;
