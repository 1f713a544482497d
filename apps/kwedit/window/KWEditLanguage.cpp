#include <KWFoundation/KWBundle.h>

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
    const QString translators = QStringLiteral("kweditTranslator");
    qDeleteAll(application.findChildren<QTranslator*>(translators, Qt::FindDirectChildrenOnly));
    KWBundle::frameworkBundle().setLanguage(code.toStdString());
    const QString name = code.isEmpty() ? QLocale::system().name() : code;
    if (name.startsWith(QLatin1String("en")))
        return;
    const auto add = [&](const QString& file, const QString& folder) {
        auto* const translator = new QTranslator(&application);
        translator->setObjectName(translators);
        if (translator->load(file, folder))
            QCoreApplication::installTranslator(translator);
    };
    // Qt's own texts, such as those of buttons, where they are installed.
    add(QStringLiteral("qtbase_") + name, QLibraryInfo::path(QLibraryInfo::TranslationsPath));
    add(QStringLiteral("kwedit_") + name, QStringLiteral(":/translations"));
}
