#include <KWDesktop/KWMovieFile.h>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <QCoreApplication>
#include <QFile>
#include <QFileInfo>
#include <cerrno>
#include <cstring>

KWMovieFile::KWMovieFile(int descriptor, QString name)
    : _descriptor(descriptor), _name(std::move(name)) {}

KWMovieFile::~KWMovieFile() {
    ::close(_descriptor);
}

std::shared_ptr<const KWMovieFile> KWMovieFile::open(const QString& path, QString& reason) {
    // A pipe would keep one waiting for whoever writes into it.
    const int descriptor =
        ::open(QFile::encodeName(path).constData(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
    if (descriptor < 0) {
        reason = QString::fromLocal8Bit(std::strerror(errno));
        return nullptr;
    }
    std::shared_ptr<const KWMovieFile> file(
        new KWMovieFile(descriptor, QFileInfo(path).fileName()));
    struct stat status {};
    if (::fstat(descriptor, &status) != 0 || !S_ISREG(status.st_mode)) {
        reason = QCoreApplication::translate("KWMovie", "it is not a file");
        return nullptr;
    }
    if (status.st_size == 0) {
        reason = QCoreApplication::translate("KWMovie", "the file is empty");
        return nullptr;
    }
    return file;
}

std::int64_t KWMovieFile::size() const {
    struct stat status {};
    return ::fstat(_descriptor, &status) == 0 ? status.st_size : -1;
}

std::ptrdiff_t KWMovieFile::read(std::int64_t position, void* bytes, std::size_t count) const {
    if (position < 0)
        return -1;
    std::ptrdiff_t got = 0;
    do
        got = ::pread(_descriptor, bytes, count, position);
    while (got < 0 && errno == EINTR);
    return got;
}
