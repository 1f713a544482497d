#pragma once

#include <QObject>
#include <QSettings>
#include <QStringList>

/// The documents that were opened or saved last, kept in the user's settings under "recentFiles".
class KWRecentFiles : public QObject {
    Q_OBJECT

  public:
    static constexpr int mostFiles = 10;

    /// The settings must outlive this.
    explicit KWRecentFiles(QSettings& settings, QObject* parent = nullptr);

    /// Absolute paths, the latest first; as other windows and programs have left them.
    QStringList files() const;
    /// Puts the file in front; without symbolic links, each file counts once.
    void add(const QString& file);
    /// For one that could not be opened.
    void remove(const QString& file);
    void clear();

  Q_SIGNALS:
    void changed();

  private:
    void store(const QStringList& files);

    QSettings& _settings;
};
