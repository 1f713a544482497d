#include <apps/kwedit/window/KWEditLanguage.h>

#include <QCoreApplication>
#include <QLibraryInfo>
#include <QLocale>
#include <QTranslator>

QString KWEditLanguage::title() const {
    if (code.isEmpty())
        return QCoreApplication::translate("KWEditLanguage", "As the System");
    if (code == QLatin1String("en"))
        return QStringLiteral("English");
    return code == QLatin1String("de") ? QStringLiteral("Deutsch") : QStringLiteral("Français");
}

QList<KWEditLanguage> KWEditLanguage::all() {
    return {{QString()}, {QStringLiteral("en")}, {QStringLiteral("de")}, {QStringLiteral("fr")}};
}

void KWEditLanguage::install(QCoreApplication& application, const QString& code) {
    const QString name = code.isEmpty() ? QLocale::system().name() : code;
    if (name.startsWith(QLatin1String("en")))
        return;
    // Qt's own texts, such as those of buttons, where they are installed.
    auto* const ofQt = new QTranslator(&application);
    if (ofQt->load(QStringLiteral("qtbase_") + name,
                   QLibraryInfo::path(QLibraryInfo::TranslationsPath)))
        QCoreApplication::installTranslator(ofQt);
    auto* const own = new QTranslator(&application);
    if (own->load(QStringLiteral(":/translations/kwedit_") + name))
        QCoreApplication::installTranslator(own);
}
