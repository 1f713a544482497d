#include <apps/common/ExitCodes.h>
#include <apps/common/Output.h>
#include <apps/common/Text.h>
#include <apps/kwedit/OpenEditor.h>
#include <apps/kwedit/window/KWEditAppearance.h>
#include <apps/kwedit/window/KWEditApplication.h>
#include <apps/kwedit/window/KWEditLanguage.h>

#include <QApplication>
#include <QFile>
#include <QIcon>
#include <clocale>
#include <cstdlib>

namespace {

bool isSet(const char* variable) {
    const char* const value = std::getenv(variable);
    return value && *value;
}

/// Qt ends the program where there is none.
bool isScreenThere() {
#ifdef Q_OS_LINUX
    return isSet("QT_QPA_PLATFORM") || isSet("DISPLAY") || isSet("WAYLAND_DISPLAY");
#else
    return true;
#endif
}

int drawScreenshot(const KWEditArguments& arguments) {
    if (arguments.documents.size() > 1) {
        complain("--screenshot takes one document; see kwedit --help");
        return exitWrongUse;
    }
    const auto size = arguments.size.empty() ? QSize(1440, 900) : kwSizeFromText(arguments.size);
    if (!size) {
        complain("--size: " + inQuotes(arguments.size) +
                 " is no size; two whole numbers from 1 to 16384 are wanted, such as 1440x900");
        return exitWrongUse;
    }
    const QString path = arguments.documents.empty()
                             ? QString()
                             : QFile::decodeName(arguments.documents.front().c_str());
    QString error;
    if (kwDrawWindow(path, QFile::decodeName(arguments.screenshot.c_str()), *size, &error,
                     arguments.isTour ? KWDrawnWindow::withTour : KWDrawnWindow::plain))
        return exitDone;
    complain(printable(error.toStdString()));
    return exitBadData;
}

int runWindows(const KWEditArguments& arguments, QSettings& settings) {
    KWEditQuestions questions;
    KWEditApplication windows(settings, questions);
    windows.offerLeftovers();
    for (const std::string& document : arguments.documents)
        windows.openWindow(QFile::decodeName(document.c_str()));
    if (windows.windows().isEmpty())
        windows.openWindow({});
    if (arguments.isTour)
        windows.windows().constFirst()->startTour();
    return QApplication::exec() == 0 ? exitDone : exitBadData;
}

} // namespace

int openEditor(int argc, char** argv, const KWEditArguments& arguments) {
    const bool isPicture = !arguments.screenshot.empty();
    if (isPicture && !isSet("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    if (!isScreenThere()) {
        complain("there is no screen here to open a window on; kwedit --screenshot FILE and kwedit "
                 "--render need none");
        return exitInputOutput;
    }
    if (isPicture)
        qInstallMessageHandler([](QtMsgType, const QMessageLogContext&, const QString&) {});
    QCoreApplication::setOrganizationName(QStringLiteral("KWBase"));
    QCoreApplication::setApplicationName(QStringLiteral("kwedit"));
    QCoreApplication::setApplicationVersion(QStringLiteral(KWEDIT_VERSION));
    QGuiApplication::setDesktopFileName(QStringLiteral("org.kwbase.kwedit"));
    QApplication application(argc, argv);
    // Numbers in documents and in what is exported have a point in every country.
    std::setlocale(LC_NUMERIC, "C");
    QSettings settings(QSettings::IniFormat, QSettings::UserScope, QStringLiteral("KWBase"),
                       QStringLiteral("kwedit"));
    const QString language =
        arguments.language.empty()
            ? (isPicture ? QStringLiteral("en")
                         : settings.value(QStringLiteral("language")).toString())
            : QString::fromStdString(arguments.language);
    KWEditLanguage::install(application, language);
    const QString appearance =
        isPicture ? QString() : settings.value(QStringLiteral("appearance")).toString();
    KWEditAppearance::named(arguments.palette.empty() ? appearance
                                                      : QString::fromStdString(arguments.palette))
        .apply();
    return isPicture ? drawScreenshot(arguments) : runWindows(arguments, settings);
}
