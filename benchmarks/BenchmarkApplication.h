#pragma once

#include <QApplication>

/// The application that widgets need; made when it is first asked for, with no screen unless
/// QT_QPA_PLATFORM names one.
inline QApplication& KWBenchmarkApplication() {
    static int count = 1;
    static char name[] = "kwbase_benchmarks";
    static char* arguments[] = {name, nullptr};
    static QApplication& application = [&]() -> QApplication& {
        if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM"))
            qputenv("QT_QPA_PLATFORM", "offscreen");
        return *new QApplication(count, arguments);
    }();
    return application;
}
