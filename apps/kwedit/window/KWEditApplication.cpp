#include <KWBase/KWChannelView.h>

#include <apps/kwedit/window/KWEditApplication.h>
#include <apps/kwedit/window/KWEditCurvesPane.h>

#include <QCoreApplication>
#include <QFileInfo>
#include <QLocale>
#include <QTemporaryDir>
#include <algorithm>

KWEditApplication::KWEditApplication(QSettings& settings, KWEditQuestions& questions)
    : _settings(settings),
      _recentFiles(settings), _around{settings, _recentFiles, questions,
                                      [this](const QString& path) { openWindow(path); }} {}

KWEditApplication::~KWEditApplication() {
    for (const auto& window : _windows)
        delete window;
}

QList<KWEditWindow*> KWEditApplication::windows() const {
    QList<KWEditWindow*> windows;
    for (const auto& window : _windows)
        if (window)
            windows << window;
    return windows;
}

/// Each a little below the one before, so that none is hidden.
void KWEditApplication::put(KWEditWindow& window) const {
    const auto others = windows();
    if (others.size() > 1)
        window.move(others[others.size() - 2]->pos() + QPoint(28, 28));
    window.show();
}

KWEditWindow* KWEditApplication::openWindow(const QString& path) {
    _windows.removeAll(nullptr);
    const bool isFirst = _windows.isEmpty();
    auto* const window = new KWEditWindow(_around);
    _windows << window;
    if (!path.isEmpty() && !window->open(path) && !isFirst) {
        delete window;
        _windows.removeAll(nullptr);
        return nullptr;
    }
    put(*window);
    return window;
}

int KWEditApplication::offerLeftovers() {
    int count = 0;
    const auto leftovers = KWEditAutosave::leftovers(_around.autosaveFolder());
    for (const auto& leftover : leftovers) {
        const QString name = leftover.documentPath.isEmpty()
                                 ? tr("a document without a name")
                                 : QFileInfo(leftover.documentPath).fileName();
        const QString time = QLocale().toString(leftover.time, QLocale::ShortFormat);
        const auto answer = _around.questions.whatOfCopy(
            nullptr, tr("Recover the changes to %1?").arg(name),
            tr("kwedit ended before they were saved. The copy is of %1.").arg(time));
        if (answer == KWEditQuestions::Copy::discard)
            leftover.file->remove();
        if (answer != KWEditQuestions::Copy::recover)
            continue;
        auto* const window = new KWEditWindow(_around);
        _windows << window;
        if (!window->recover(leftover)) {
            delete window;
            continue;
        }
        put(*window);
        ++count;
    }
    return count;
}

bool kwDrawWindow(const QString& path, const QString& picture, const QSize& size, QString* error,
                  KWDrawnWindow drawn) {
    // A picture of a window asks nothing, and leaves nothing behind.
    struct Silence final : KWEditQuestions {
        void complain(QWidget*, const QString& text, const QString& reason) override {
            complaint = reason.isEmpty() ? text : reason;
        }
        Unsaved whatOfUnsaved(QWidget*, const QString&) override { return Unsaved::discard; }
        bool mayGoOn(QWidget*, const QString&, const QString&, const QString&) override {
            return false;
        }
        Copy whatOfCopy(QWidget*, const QString&, const QString&) override { return Copy::later; }
        QString complaint;
    };
    const QTemporaryDir folder;
    QSettings settings(folder.filePath(QStringLiteral("settings.ini")), QSettings::IniFormat);
    settings.setValue(QStringLiteral("autosave/folder"), QString());
    Silence questions;
    KWEditApplication application(settings, questions);
    KWEditWindow* const window = application.openWindow({});
    window->resize(size);
    if (!path.isEmpty() && !window->open(path)) {
        *error = questions.complaint;
        return false;
    }
    window->session().refresh();
    if (drawn == KWDrawnWindow::withTour)
        window->startTour();
    for (int pass = 0; pass < 8; ++pass)
        QCoreApplication::processEvents();
    if (!window->grab().save(picture)) {
        *error = KWEditApplication::tr("%1: the picture cannot be written").arg(picture);
        return false;
    }
    return true;
}
