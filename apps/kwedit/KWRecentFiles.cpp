#include <apps/kwedit/KWRecentFiles.h>

#include <QFileInfo>

namespace {

const QString key = QStringLiteral("recentFiles");

QString uniquePath(const QString& file) {
    const QFileInfo info(file);
    const QString canonical = info.canonicalFilePath();
    return canonical.isEmpty() ? info.absoluteFilePath() : canonical;
}

} // namespace

KWRecentFiles::KWRecentFiles(QSettings& settings, QObject* parent)
    : QObject(parent), _settings(settings) {}

QStringList KWRecentFiles::files() const {
    QStringList files = _settings.value(key).toStringList();
    files.removeAll(QString());
    return files.mid(0, mostFiles);
}

void KWRecentFiles::add(const QString& file) {
    QStringList list = files();
    const QString path = uniquePath(file);
    list.removeAll(path);
    list.prepend(path);
    store(list.mid(0, mostFiles));
}

void KWRecentFiles::remove(const QString& file) {
    QStringList list = files();
    if (list.removeAll(uniquePath(file)) + list.removeAll(file) > 0)
        store(list);
}

void KWRecentFiles::clear() {
    store({});
}

void KWRecentFiles::store(const QStringList& files) {
    if (files == this->files())
        return;
    _settings.setValue(key, files);
    Q_EMIT changed();
}
