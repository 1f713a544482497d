#include <KWFoundation/KWArchiveError.h>
#include <KWFoundation/KWFile.h>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <random>
#include <string>
#include <system_error>

namespace fs = std::filesystem;

namespace {

/// The system's words for an error, in English in every country where the system allows it.
std::string systemReason(int code) {
#ifdef __GLIBC__
    const char* text = ::strerrordesc_np(code);
    return text ? text : "error " + std::to_string(code);
#else
    return std::generic_category().message(code);
#endif
}

[[noreturn]] void fail(KWArchiveError::Kind kind, const fs::path& path, std::string reason) {
    throw KWArchiveError(kind, path.string(), std::nullopt, {}, std::move(reason));
}

/// Closed whatever happens.
class Descriptor {
  public:
    explicit Descriptor(int number) : _number(number) {}
    ~Descriptor() {
        if (_number >= 0)
            ::close(_number);
    }
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;

    int number() const { return _number; }

  private:
    int _number;
};

/// Where a path leads when links are followed to their end, also to a file that is not there yet.
fs::path followed(const fs::path& path) {
    fs::path target = path;
    for (int hops = 0; hops < 40; ++hops) {
        std::error_code code;
        const fs::path next = fs::read_symlink(target, code);
        if (code)
            break;
        target = next.is_absolute() ? next : target.parent_path() / next;
    }
    return target;
}

} // namespace

KWFileContents KWFileContents::read(const fs::path& path) {
    using enum KWArchiveError::Kind;
    const Descriptor file(::open(path.c_str(), O_RDONLY | O_CLOEXEC));
    struct stat status {};
    if (file.number() < 0 || ::fstat(file.number(), &status) != 0)
        fail(cannotRead, path, systemReason(errno));
    if (S_ISDIR(status.st_mode))
        fail(cannotRead, path, systemReason(EISDIR));

    KWFileContents contents;
    // One byte more than the file claims shows whether it ends there; what cannot tell its size,
    // such as a pipe, is read in growing pieces.
    std::size_t capacity = static_cast<std::size_t>(status.st_size) + 1;
    if (!S_ISREG(status.st_mode))
        capacity = 1 << 16;
    contents._bytes = std::make_unique_for_overwrite<std::byte[]>(capacity);
    for (;;) {
        if (contents._size == capacity) {
            auto larger = std::make_unique_for_overwrite<std::byte[]>(2 * capacity);
            std::memcpy(larger.get(), contents._bytes.get(), capacity);
            contents._bytes = std::move(larger);
            capacity *= 2;
        }
        const ssize_t count = ::read(file.number(), contents._bytes.get() + contents._size,
                                     capacity - contents._size);
        if (count < 0 && errno == EINTR)
            continue;
        if (count < 0)
            fail(cannotRead, path, systemReason(errno));
        if (count == 0)
            return contents;
        contents._size += static_cast<std::size_t>(count);
    }
}

KWAtomicFile::KWAtomicFile(const fs::path& path) : _path(path), _target(followed(path)) {
    using enum KWArchiveError::Kind;
    struct stat status {};
    const bool exists = ::stat(_target.c_str(), &status) == 0;
    if (exists && !S_ISREG(status.st_mode)) {
        // A device or a pipe cannot be replaced; it takes the bytes as they come.
        _descriptor = ::open(_target.c_str(), O_WRONLY | O_CLOEXEC);
        if (_descriptor < 0)
            fail(cannotWrite, _path, systemReason(errno));
        return;
    }
    // A new file gets what the process's mask leaves of the usual permissions; one that takes
    // another's place is closed to others until it has that one's.
    std::random_device random;
    do {
        _temporary = _target.string() + "." + std::to_string(random());
        _descriptor = ::open(_temporary.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC,
                             exists ? 0600 : 0666);
    } while (_descriptor < 0 && errno == EEXIST);
    if (_descriptor < 0) {
        _temporary.clear();
        fail(cannotWrite, _path, systemReason(errno));
    }
    if (exists)
        ::fchmod(_descriptor, status.st_mode & 07777);
}

KWAtomicFile::~KWAtomicFile() {
    if (_descriptor >= 0)
        ::close(_descriptor);
    if (!_temporary.empty())
        ::unlink(_temporary.c_str());
}

void KWAtomicFile::write(std::span<const std::byte> bytes) {
    while (!bytes.empty()) {
        const ssize_t count = ::write(_descriptor, bytes.data(), bytes.size());
        if (count < 0 && errno == EINTR)
            continue;
        if (count < 0)
            fail(KWArchiveError::Kind::cannotWrite, _path, systemReason(errno));
        bytes = bytes.subspan(static_cast<std::size_t>(count));
    }
}

void KWAtomicFile::commit() {
    using enum KWArchiveError::Kind;
    if (::fsync(_descriptor) != 0 && errno != EINVAL && errno != EROFS)
        fail(cannotWrite, _path, systemReason(errno));
    const int closed = ::close(_descriptor);
    _descriptor = -1;
    if (closed != 0 || (!_temporary.empty() && ::rename(_temporary.c_str(), _target.c_str()) != 0))
        fail(cannotWrite, _path, systemReason(errno));
    _temporary.clear();
}

void KWWriteFileAtomically(const fs::path& path, std::span<const std::byte> bytes) {
    KWAtomicFile file(path);
    file.write(bytes);
    file.commit();
}
