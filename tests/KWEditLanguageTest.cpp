#include "EditWindowTestSupport.h"

#include <apps/kwedit/window/KWEditAppearance.h>
#include <apps/kwedit/window/KWEditLanguage.h>
#include <apps/kwedit/window/KWShortcutsDialog.h>
#include <apps/kwedit/window/KWTour.h>

#include <QComboBox>
#include <QDir>
#include <QGroupBox>
#include <QHeaderView>
#include <QLabel>
#include <QMap>
#include <QMenuBar>
#include <QProcess>
#include <QPushButton>
#include <QRegularExpression>
#include <QSet>
#include <QTabWidget>
#include <QTemporaryDir>
#include <QTranslator>
#include <QXmlStreamReader>

namespace {

struct Message {
    QString context;
    QString source;
    QString comment;
    QStringList translations; ///< several for a text with a number
    bool isFinished = true;

    QString key() const { return context + u'|' + source + u'|' + comment; }
};

QString sourceFolder() {
    return QStringLiteral(KWBASE_TEST_SOURCES);
}

QString fileOf(const QString& code) {
    return sourceFolder() +
           QStringLiteral("/apps/kwedit/window/translations/kwedit_%1.ts").arg(code);
}

Message readMessage(QXmlStreamReader& xml, const QString& context) {
    Message message{context, {}, {}, {}};
    while (xml.readNextStartElement()) {
        if (xml.name() == QLatin1String("source")) {
            message.source = xml.readElementText();
        } else if (xml.name() == QLatin1String("comment")) {
            message.comment = xml.readElementText();
        } else if (xml.name() == QLatin1String("translation")) {
            message.isFinished = !xml.attributes().hasAttribute(QLatin1String("type"));
            QString text;
            while (!xml.atEnd() && xml.readNext() != QXmlStreamReader::EndElement) {
                if (xml.isStartElement())
                    message.translations << xml.readElementText();
                else
                    text += xml.text();
            }
            if (message.translations.isEmpty())
                message.translations << text;
        } else {
            xml.skipCurrentElement();
        }
    }
    return message;
}

QList<Message> messagesIn(const QString& path) {
    QFile file(path);
    EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << qUtf8Printable(path);
    QXmlStreamReader xml(&file);
    QList<Message> messages;
    xml.readNextStartElement();
    while (xml.readNextStartElement()) {
        QString context;
        while (xml.readNextStartElement()) {
            if (xml.name() == QLatin1String("name"))
                context = xml.readElementText();
            else if (xml.name() == QLatin1String("message"))
                messages << readMessage(xml, context);
            else
                xml.skipCurrentElement();
        }
    }
    EXPECT_FALSE(xml.hasError()) << qUtf8Printable(xml.errorString());
    return messages;
}

QStringList placeholdersIn(const QString& text) {
    static const QRegularExpression pattern(QStringLiteral("%L?(\\d|n)"));
    QStringList found;
    for (auto match = pattern.globalMatch(text); match.hasNext();)
        found << match.next().captured();
    found.sort();
    return found;
}

QChar accessKey(const QString& text) {
    const qsizetype mark = text.indexOf(u'&');
    return mark < 0 || mark + 1 == text.size() ? QChar() : text[mark + 1].toLower();
}

bool isOurs(const char* context) {
    return QByteArrayView(context).startsWith("KW") ||
           QByteArrayView(context) == QByteArrayView("channelEditorPanel");
}

/// Notes what is asked for; knows nothing.
class Listener final : public QTranslator {
  public:
    QString translate(const char* context, const char* source, const char* comment,
                      int) const override {
        if (isOurs(context))
            _asked.insert(QString::fromUtf8(context) + u'|' + QString::fromUtf8(source) + u'|' +
                          QString::fromUtf8(comment));
        return {};
    }
    bool isEmpty() const override { return false; }
    const QSet<QString>& asked() const { return _asked; }

  private:
    mutable QSet<QString> _asked;
};

/// Marks what it is asked for, so that what was not asked for shows.
class Marker final : public QTranslator {
  public:
    QString translate(const char* context, const char* source, const char*, int) const override {
        return isOurs(context) ? u'\u2039' + QString::fromUtf8(source) + u'\u203a' : QString();
    }
    bool isEmpty() const override { return false; }
};

template <class Translator>
class Installed {
  public:
    Installed() { QCoreApplication::installTranslator(&translator); }
    ~Installed() { QCoreApplication::removeTranslator(&translator); }
    Installed(const Installed&) = delete;
    Installed& operator=(const Installed&) = delete;

    Translator translator;
};

class KWEditLanguageTest : public EditWindowTest {
  protected:
    ~KWEditLanguageTest() override { KWEditLanguage::install(*qApp, QStringLiteral("en")); }

    /// Everything that has texts, once.
    void openAll() {
        open(samplePath("bouncing-ball.kwdoc"));
        select(element(1));
        select(document().model().channels().front().channel);
        window->startTour();
        settle();
        for (const auto kind : {KWExportDialog::Kind::frames, KWExportDialog::Kind::movie,
                                KWExportDialog::Kind::values})
            window->showExport(kind);
        auto* const dialog = new KWShortcutsDialog(window);
        dialog->show();
        settle();
    }
};

QStringList textsOf(const QWidget& widget) {
    QStringList texts{widget.toolTip(), widget.statusTip(), widget.accessibleName(),
                      widget.accessibleDescription()};
    if (const auto* label = qobject_cast<const QLabel*>(&widget))
        texts << label->text();
    if (const auto* button = qobject_cast<const QAbstractButton*>(&widget))
        texts << button->text();
    if (const auto* group = qobject_cast<const QGroupBox*>(&widget))
        texts << group->title();
    if (const auto* field = qobject_cast<const QLineEdit*>(&widget))
        texts << field->placeholderText();
    if (const auto* box = qobject_cast<const QComboBox*>(&widget))
        for (int k = 0; k < box->count(); ++k)
            texts << box->itemText(k);
    if (const auto* tabs = qobject_cast<const QTabWidget*>(&widget))
        for (int k = 0; k < tabs->count(); ++k)
            texts << tabs->tabText(k);
    if (const auto* header = qobject_cast<const QHeaderView*>(&widget); header && header->model())
        for (int k = 0; k < header->count(); ++k)
            texts << header->model()->headerData(k, header->orientation()).toString();
    if (const auto* menu = qobject_cast<const QMenu*>(&widget))
        texts << menu->title();
    const auto actions = widget.actions();
    for (const QAction* action : actions)
        texts << action->text() << action->toolTip() << action->statusTip();
    return texts;
}

} // namespace

class KWEditTranslations : public testing::TestWithParam<const char*> {
  protected:
    QString code() const { return QString::fromLatin1(GetParam()); }
    QList<Message> messages = messagesIn(fileOf(code()));
};

TEST_P(KWEditTranslations, EveryMessageIsFinishedAndNoneIsEmpty) {
    ASSERT_GT(messages.size(), 500);
    for (const Message& message : messages) {
        EXPECT_TRUE(message.isFinished) << qUtf8Printable(message.key());
        for (const QString& text : message.translations)
            EXPECT_FALSE(text.trimmed().isEmpty()) << qUtf8Printable(message.key());
    }
}

TEST_P(KWEditTranslations, EveryMessageIsBuiltIntoTheProgram) {
    QTranslator translator;
    ASSERT_TRUE(
        translator.load(QStringLiteral("kwedit_") + code(), QStringLiteral(":/translations")));
    for (const Message& message : messages) {
        const QByteArray comment = message.comment.toUtf8();
        for (int form = 0; form < message.translations.size(); ++form)
            EXPECT_EQ(translator.translate(message.context.toUtf8(), message.source.toUtf8(),
                                           comment.isEmpty() ? nullptr : comment.constData(),
                                           message.translations.size() == 1 ? -1 : form + 1),
                      message.translations[form])
                << qUtf8Printable(message.key());
    }
}

TEST_P(KWEditTranslations, PlaceholdersAccessKeysAndDotsAreThoseOfTheSource) {
    for (const Message& message : messages)
        for (const QString& text : message.translations) {
            EXPECT_EQ(placeholdersIn(text), placeholdersIn(message.source))
                << qUtf8Printable(message.key());
            EXPECT_EQ(text.count(u'&'), message.source.count(u'&'))
                << qUtf8Printable(message.key());
            EXPECT_EQ(text.endsWith(QLatin1String("...")),
                      message.source.endsWith(QLatin1String("...")))
                << qUtf8Printable(message.key());
            EXPECT_EQ(text.count(u'<'), message.source.count(u'<'))
                << qUtf8Printable(message.key());
        }
}

TEST_P(KWEditTranslations, ATextOfOneSourceHasOneTranslationInAContext) {
    QSet<QString> keys;
    for (const Message& message : messages) {
        EXPECT_FALSE(keys.contains(message.key())) << qUtf8Printable(message.key());
        keys.insert(message.key());
    }
}

TEST_P(KWEditTranslations, AccessKeysOfTheFormAreDifferent) {
    QMap<QChar, QString> seen;
    for (const Message& message : messages) {
        const QChar key = accessKey(message.translations.front());
        if (message.context != QLatin1String("channelEditorPanel") || key.isNull())
            continue;
        EXPECT_FALSE(seen.contains(key))
            << qUtf8Printable(message.key()) << " and " << qUtf8Printable(seen.value(key));
        seen.insert(key, message.source);
    }
}

#ifdef KWBASE_TEST_LUPDATE
TEST_P(KWEditTranslations, TheFileHasTheTextsOfTheSources) {
    const QTemporaryDir folder;
    const QString copy = folder.filePath(QStringLiteral("kwedit_%1.ts").arg(code()));
    ASSERT_TRUE(QFile::copy(fileOf(code()), copy));
    QProcess lupdate;
    lupdate.setWorkingDirectory(sourceFolder());
    lupdate.setStandardErrorFile(QProcess::nullDevice());
    const QStringList all{QStringLiteral("-silent"),
                          QStringLiteral("-I"),
                          QStringLiteral("."),
                          QStringLiteral("-locations"),
                          QStringLiteral("none"),
                          QStringLiteral("-no-obsolete"),
                          QStringLiteral("apps/kwedit"),
                          QStringLiteral("KWBase"),
                          QStringLiteral("KWDesktop"),
                          QStringLiteral("-ts"),
                          copy};
    lupdate.start(QStringLiteral(KWBASE_TEST_LUPDATE), all);
    ASSERT_TRUE(lupdate.waitForFinished(60'000));
    ASSERT_EQ(lupdate.exitCode(), 0);
    QStringList wanted;
    for (const Message& message : messagesIn(copy))
        wanted << message.key();
    QStringList present;
    for (const Message& message : messages)
        present << message.key();
    wanted.sort();
    present.sort();
    EXPECT_EQ(present, wanted) << "build the target kwedit_messages_update";
}
#endif

INSTANTIATE_TEST_SUITE_P(Languages, KWEditTranslations, testing::Values("de", "fr"));

TEST_F(KWEditLanguageTest, AllThatAWindowAsksForIsInTheFiles) {
    const Installed<Listener> listener;
    openAll();
    QSet<QString> known;
    for (const Message& message : messagesIn(fileOf(QStringLiteral("de"))))
        known.insert(message.key());
    EXPECT_GT(listener.translator.asked().size(), 300);
    for (const QString& key : listener.translator.asked())
        EXPECT_TRUE(known.contains(key) || key.endsWith(QLatin1String("||")))
            << qUtf8Printable(key);
}

TEST_F(KWEditLanguageTest, EveryTextOfAWindowIsTranslated) {
    const Installed<Marker> marker;
    openAll();
    // Qt's own, and the languages by their own names.
    QSet<QString> exempt{QStringLiteral("Cancel"), QStringLiteral("Close")};
    for (const KWEditLanguage& language : KWEditLanguage::all())
        exempt << language.title();
    for (const auto& entry : document().model().elements())
        exempt << QString::fromStdString(entry.name);
    static const QRegularExpression letters(QStringLiteral("\\p{L}{2,}"));
    int count = 0;
    for (const QWidget* widget : QApplication::allWidgets())
        for (const QString& text : textsOf(*widget)) {
            const bool isOfUnit = widget->objectName().endsWith(QLatin1String("Unit"));
            const bool isData = text.startsWith(u'#') || text.endsWith(QLatin1String(".kwdoc"));
            if (!text.contains(letters) || exempt.contains(text) || isOfUnit || isData)
                continue;
            ++count;
            EXPECT_TRUE(text.contains(u'\u2039'))
                << qUtf8Printable(text) << " of a " << widget->metaObject()->className() << ' '
                << qUtf8Printable(widget->objectName());
        }
    EXPECT_GT(count, 300);
}

class KWEditLanguageMenus : public KWEditLanguageTest,
                            public testing::WithParamInterface<const char*> {};

TEST_P(KWEditLanguageMenus, AccessKeysOfAMenuAreDifferent) {
    KWEditLanguage::install(*qApp, QString::fromLatin1(GetParam()));
    open();
    QList<QWidget*> menus{window->menuBar()};
    for (QMenu* menu : window->findChildren<QMenu*>())
        menus << menu;
    int count = 0;
    for (const QWidget* menu : menus) {
        QMap<QChar, QString> seen;
        for (const QAction* action : menu->actions()) {
            const QChar key = accessKey(action->text());
            if (key.isNull())
                continue;
            EXPECT_FALSE(seen.contains(key))
                << qUtf8Printable(action->text()) << " and " << qUtf8Printable(seen.value(key));
            seen.insert(key, action->text());
            ++count;
        }
    }
    EXPECT_GT(count, 60);
}

TEST_P(KWEditLanguageMenus, AccessKeysOfADialogAreDifferent) {
    KWEditLanguage::install(*qApp, QString::fromLatin1(GetParam()));
    open();
    for (const auto kind : {KWExportDialog::Kind::frames, KWExportDialog::Kind::movie,
                            KWExportDialog::Kind::values}) {
        const KWExportDialog* const dialog = window->showExport(kind);
        QMap<QChar, QString> seen;
        for (const QWidget* widget : dialog->findChildren<QWidget*>())
            for (const QString& text : textsOf(*widget)) {
                const QChar key = accessKey(text);
                if (key.isNull() || !widget->isVisibleTo(dialog))
                    continue;
                EXPECT_FALSE(seen.contains(key))
                    << qUtf8Printable(text) << " and " << qUtf8Printable(seen.value(key));
                seen.insert(key, text);
            }
        EXPECT_GE(seen.size(), 3);
        for (const QLabel* label : dialog->findChildren<QLabel*>())
            EXPECT_TRUE(label->buddy() || accessKey(label->text()).isNull())
                << qUtf8Printable(label->text()) << " leads nowhere";
    }
}

INSTANTIATE_TEST_SUITE_P(Languages, KWEditLanguageMenus, testing::Values("en", "de", "fr"));

TEST_F(KWEditLanguageTest, AWindowMadeInGermanShowsGerman) {
    KWEditLanguage::install(*qApp, QStringLiteral("de"));
    open();
    EXPECT_EQ(window->menuBar()->actions().front()->text(), QStringLiteral("&Datei"));
    // The form is loaded while the program runs.
    QStringList buttons;
    for (const QAbstractButton* button : window->curves().findChildren<QAbstractButton*>())
        buttons << button->text();
    EXPECT_TRUE(buttons.contains(QStringLiteral("S&chieben")))
        << qUtf8Printable(buttons.join(u'\n'));
    // Names of units come from a table of their own.
    const auto* const unit = widget<QComboBox>("angleUnit");
    EXPECT_EQ(unit->itemText(1), QStringLiteral("Grad (\u00b0)"));
}

TEST_F(KWEditLanguageTest, AnotherLanguageTakesThePlaceOfTheOneBefore) {
    KWEditLanguage::install(*qApp, QStringLiteral("de"));
    KWEditLanguage::install(*qApp, QStringLiteral("fr"));
    EXPECT_EQ(KWEditCommands::title(KWEditMenu::file), QStringLiteral("&Fichier"));
    KWEditLanguage::install(*qApp, QStringLiteral("en"));
    EXPECT_EQ(KWEditCommands::title(KWEditMenu::file), QStringLiteral("&File"));
    KWEditLanguage::install(*qApp, QStringLiteral("xx"));
    EXPECT_EQ(KWEditCommands::title(KWEditMenu::file), QStringLiteral("&File"));
}

TEST_F(KWEditLanguageTest, AnAppearanceIsKnownByItsNameAndChangesTheColors) {
    for (const KWEditAppearance& each : KWEditAppearance::all())
        EXPECT_EQ(KWEditAppearance::named(each.name()), each);
    EXPECT_EQ(KWEditAppearance::named(QStringLiteral("pink")), KWEditAppearance());
    const QColor before = QApplication::palette().color(QPalette::Window);
    KWEditAppearance::named(QStringLiteral("dark")).apply();
    EXPECT_LT(QApplication::palette().color(QPalette::Window).lightness(), 80);
    EXPECT_GT(QApplication::palette().color(QPalette::WindowText).lightness(), 180);
    KWEditAppearance().apply();
    EXPECT_EQ(QApplication::palette().color(QPalette::Window), before);
}

TEST_F(KWEditLanguageTest, EnterExportsAndDoesNotCancel) {
    open();
    const auto* const dialog = window->showExport(KWExportDialog::Kind::frames);
    settle();
    QStringList defaults;
    for (const QPushButton* button : dialog->findChildren<QPushButton*>())
        if (button->isDefault())
            defaults << button->text();
    EXPECT_EQ(defaults, QStringList{QStringLiteral("&Export")});
}
