#include <KWFoundation/KWArchiveError.h>
#include <KWFoundation/KWFile.h>

#include <apps/kwedit/KWEditAutosave.h>
#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QJsonDocument>
#include <QJsonObject>
#include <QUuid>
#include <algorithm>

namespace {

const QLatin1String copySuffix(".kwdoc");
const QLatin1String noteSuffix(".json");
const QLatin1String lockSuffix(".lock");

/// -1 when somebody else has it.
int lockFile(const QString& path, int flags) {
    const int descriptor =
        ::open(QFile::encodeName(path).constData(), O_RDWR | O_CLOEXEC | flags, 0600);
    if (descriptor < 0 || ::flock(descriptor, LOCK_EX | LOCK_NB) == 0)
        return descriptor;
    ::close(descriptor);
    errno = EWOULDBLOCK;
    return -1;
}

std::filesystem::path systemPath(const QString& path) {
    return QFile::encodeName(path).toStdString();
}

void say(QString* error, const QString& text) {
    if (error)
        *error = text;
}

/// Without its suffix.
QStringList basesIn(const QString& folder) {
    QStringList bases;
    for (const QString& name : QDir(folder).entryList({QStringLiteral("*.lock")}, QDir::Files))
        bases << QDir(folder).filePath(name.chopped(lockSuffix.size()));
    return bases;
}

} // namespace

QString KWEditAutosave::defaultFolder() {
    QString state = qEnvironmentVariable("XDG_STATE_HOME");
    if (!QDir::isAbsolutePath(state))
        state = QDir::homePath() + QStringLiteral("/.local/state");
    return state + QStringLiteral("/kwedit/autosave");
}

KWEditAutosave::KWEditAutosave(QString path, int lock) : _path(std::move(path)), _lock(lock) {}

KWEditAutosave::~KWEditAutosave() {
    const QString base = _path.chopped(copySuffix.size());
    if (!QFile::exists(_path)) {
        QFile::remove(base + noteSuffix);
        QFile::remove(base + lockSuffix);
    }
    ::close(_lock);
}

std::shared_ptr<KWEditAutosave> KWEditAutosave::create(const QString& folder, QString* error) {
    if (!QDir().mkpath(folder)) {
        say(error, QCoreApplication::translate("KWEditAutosave", "%1: the folder cannot be made")
                       .arg(folder));
        return nullptr;
    }
    // Nobody else needs to read what somebody works on.
    QFile::setPermissions(folder, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    const QString base = QDir(folder).filePath(QUuid::createUuid().toString(QUuid::WithoutBraces));
    const int lock = lockFile(base + lockSuffix, O_CREAT | O_EXCL);
    if (lock < 0) {
        say(error, QStringLiteral("%1: %2").arg(folder, qt_error_string(errno)));
        return nullptr;
    }
    return std::shared_ptr<KWEditAutosave>(new KWEditAutosave(base + copySuffix, lock));
}

QList<KWEditAutosave::Leftover> KWEditAutosave::leftovers(const QString& folder) {
    QList<Leftover> found;
    for (const QString& base : basesIn(folder)) {
        const int lock = lockFile(base + lockSuffix, 0);
        if (lock < 0)
            continue;
        // It takes away the lock and the note itself where there is no copy.
        std::shared_ptr<KWEditAutosave> file(new KWEditAutosave(base + copySuffix, lock));
        QFile note(base + noteSuffix);
        if (!QFile::exists(file->path()) || !note.open(QIODevice::ReadOnly)) {
            file->remove();
            continue;
        }
        const QJsonObject said = QJsonDocument::fromJson(note.readAll()).object();
        found.append({said[QLatin1String("document")].toString(),
                      said[QLatin1String("form")].toString(),
                      QFileInfo(file->path()).lastModified(), std::move(file)});
    }
    std::sort(found.begin(), found.end(),
              [](const Leftover& a, const Leftover& b) { return a.time > b.time; });
    return found;
}

bool KWEditAutosave::write(const KWData& bytes, const QString& documentPath,
                           const QString& documentForm, QString* error) {
    const QByteArray note = QJsonDocument(QJsonObject{{QStringLiteral("document"), documentPath},
                                                      {QStringLiteral("form"), documentForm}})
                                .toJson();
    try {
        // The note first: a copy without one would not be found.
        KWWriteFileAtomically(systemPath(_path.chopped(copySuffix.size()) + noteSuffix),
                              std::as_bytes(std::span(note.constData(), std::size_t(note.size()))));
        KWWriteFileAtomically(systemPath(_path), bytes);
        return true;
    } catch (const KWArchiveError& failure) {
        say(error, QString::fromUtf8(failure.what()));
        return false;
    }
}

void KWEditAutosave::remove() {
    QFile::remove(_path);
    QFile::remove(_path.chopped(copySuffix.size()) + noteSuffix);
}
