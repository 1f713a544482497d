#pragma once

#include <apps/kwedit/window/KWEditWindow.h>

#include <QObject>
#include <QPointer>
#include <QSettings>
#include <QStringList>

class QCommandLineOption;

/// The windows of one run of the editor: opens them, offers what a crash has left, and keeps what
/// they share.
class KWEditApplication : public QObject {
    Q_OBJECT

  public:
    /// Both must outlive this.
    KWEditApplication(QSettings& settings, KWEditQuestions& questions);
    ~KWEditApplication() override;

    /// A window on a document; on an empty stage for "". Null when it cannot be opened and there is
    /// another window already.
    KWEditWindow* openWindow(const QString& path);
    /// A window for each document that a crash has left and that the user wants back. How many.
    int offerLeftovers();

    QList<KWEditWindow*> windows() const;

  private:
    void put(KWEditWindow& window) const;

    QSettings& _settings;
    KWRecentFiles _recentFiles;
    KWEditSurroundings _around;
    QList<QPointer<KWEditWindow>> _windows;
};

/// What is to be seen in a picture of a window: with the first bubble of the tour, or without.
enum class KWDrawnWindow { plain, withTour };

/// Draws the window on a document, as it looks when it has been opened, into a PNG. No screen is
/// needed. False, and the reason, when the document cannot be opened or the file not be written.
bool kwDrawWindow(const QString& path, const QString& picture, const QSize& size, QString* error,
                  KWDrawnWindow drawn = KWDrawnWindow::plain);
