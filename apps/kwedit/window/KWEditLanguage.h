#pragma once

#include <QList>
#include <QString>

class QCoreApplication;

/// A language of the menus.
struct KWEditLanguage {
    QString code; ///< such as "de"; "" for the system's

    /// As its own speakers write it.
    QString title() const;

    /// The system's, then each that there is a translation for.
    static QList<KWEditLanguage> all();
    /// Installs the translations of a code into the application, for what is made from then on, in
    /// place of those that were; English where there is none. Names of units follow.
    static void install(QCoreApplication& application, const QString& code);
};
