#include "TestSurroundings.h"
#include "ViewTestSupport.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <clocale>
#include <cstdio>
#include <string>

namespace {

void setIfMissing(const char* name, const char* value) {
    setenv(name, value, 0);
}

/// A screen of known size and resolution that nobody sees, and none of the user's own settings.
void makeViewSurroundings() {
    setIfMissing("QT_QPA_PLATFORM", "offscreen");
    setIfMissing("QT_SCALE_FACTOR", "1");
    setenv("XDG_RUNTIME_DIR", KWBASE_TEST_RUNTIME_DIR, 1);
    for (const char* name : {"QT_STYLE_OVERRIDE", "QT_QPA_PLATFORMTHEME", "QT_FONT_DPI",
                             "QT_SCREEN_SCALE_FACTORS", "QT_LOGGING_RULES"})
        unsetenv(name);
    // A Qt application takes on the user's locale: here one that writes a comma for the point.
    setenv("LC_ALL", "de_DE.UTF-8", 1);
}

void hearQt(QtMsgType type, const QMessageLogContext&, const QString& message) {
    const std::string text = message.toStdString();
    // What the platform without a screen says of windows that are raised or sized.
    const bool isHarmless = text.starts_with("This plugin does not support ");
    const bool isWarning = type == QtWarningMsg || type == QtCriticalMsg;
    if (isWarning && !isHarmless && !QtWarningExpected::take(text))
        ADD_FAILURE() << "Qt warns: " << text;
    else if (type == QtFatalMsg)
        std::fprintf(stderr, "%s\n", text.c_str());
}

} // namespace

int main(int argc, char** argv) {
    makeTestSurroundings();
    makeViewSurroundings();
    testing::InitGoogleTest(&argc, argv);
    qInstallMessageHandler(hearQt);
    // Other plugins than Qt's own.
    if (const char* const plugins = std::getenv("KWBASE_TEST_PLUGINS"))
        QCoreApplication::setLibraryPaths({QString::fromLocal8Bit(plugins)});
    int status = 0;
    {
        QApplication application(argc, argv);
        if (*std::localeconv()->decimal_point != ',') {
            std::fputs("The tests of the views want a locale with a decimal comma\n", stderr);
            return 1;
        }
        status = RUN_ALL_TESTS();
    }
    qInstallMessageHandler(nullptr);
    return status;
}
