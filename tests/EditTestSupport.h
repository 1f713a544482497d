#pragma once

#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <cstdlib>
#include <string>

/// A folder of the test's own.
class Folder {
  public:
    QString path(const char* name = "") const { return _folder.filePath(QLatin1String(name)); }
    QStringList names() const {
        return QDir(_folder.path())
            .entryList(QDir::Files | QDir::Dirs | QDir::Hidden | QDir::NoDotAndDotDot, QDir::Name);
    }

  private:
    QTemporaryDir _folder;
};

inline QByteArray contentsOf(const QString& path) {
    QFile file(path);
    EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << path.toStdString();
    return file.readAll();
}

inline void writeContents(const QString& path, const QByteArray& bytes) {
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly)) << path.toStdString();
    file.write(bytes);
}

inline QString samplePath(const char* name) {
    return QDir(QString::fromLocal8Bit(std::getenv("KWBASE_SAMPLES")))
        .filePath(QLatin1String(name));
}
