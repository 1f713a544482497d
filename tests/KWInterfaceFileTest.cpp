#include "PanelTestSupport.h"

#include <KWBase/KWInterfaceFile.h>

#include <QFile>
#include <QRegularExpression>
#include <QTemporaryDir>

namespace {

/// The panel's own file, changed and tried.
class KWInterfaceFile : public testing::Test {
  protected:
    KWInterfaceFile() {
        EXPECT_TRUE(editor.loadInterface()); // makes the resource known
        QFile file(editor.interfaceFile());
        EXPECT_TRUE(file.open(QIODevice::ReadOnly));
        text = QString::fromUtf8(file.readAll());
        log.lines.clear();
    }

    bool load(const QString& changed) {
        const QString path = folder.filePath(QStringLiteral("Host.ui"));
        QFile file(path);
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(changed.toUtf8());
        file.close();
        editor.setInterfaceFile(path);
        return editor.loadInterface();
    }
    /// Without what speaks of its widgets' names, or of what only their own classes have.
    static QString plain(QString changed) {
        for (const char* const part :
             {"<connections>.*</connections>", "<tabstops>.*</tabstops>",
              "<property name=\"(editTriggers|tickPosition)\">[^/]*</\\w+>\\s*</property>"})
            changed.remove(QRegularExpression(QLatin1String(part),
                                              QRegularExpression::DotMatchesEverythingOption));
        return changed;
    }
    std::string error() const { return editor.interfaceError().toStdString(); }
    /// The same with another class for the widget of that name; its own class is in `was`.
    QString withClass(const QString& name, const QString& className, QString& was) const {
        const QRegularExpression widget(
            QStringLiteral("<widget class=\"(\\w+)\" name=\"%1\"").arg(name));
        was = widget.match(text).captured(1);
        EXPECT_FALSE(was.isEmpty()) << name.toStdString();
        QString changed = text;
        return changed.replace(
            widget, QStringLiteral("<widget class=\"%1\" name=\"%2\"").arg(className, name));
    }

    LogLines log;
    QTemporaryDir folder;
    KWChannelEditorController editor;
    QString text;
};

const char* const outletNames[] = {"channelEditorPanel", "channelEditorContainer",
                                   "elementOV",          "channelView",
                                   "liveCheckBox",       "gridSlider",
                                   "toolsMatrix",        "channelTypePU",
                                   "optionsBox",         "copyButton",
                                   "pasteButton",        "keyframedView",
                                   "interpModePU",       "repeatPU",
                                   "tensionSlider",      "continuitySlider",
                                   "biasSlider",         "resetHermButton",
                                   "constantView",       "constantValueTF",
                                   "algebricView",       "expressionTF"};

} // namespace

TEST_F(KWInterfaceFile, OfAHostIsLoadedInPlaceOfTheFrameworks) {
    EXPECT_TRUE(
        load(QString(text).replace(QStringLiteral("Reset S&amp;hape"), QStringLiteral("Neutral"))))
        << error();
    const auto* const button =
        editor.channelEditorPanel()->findChild<QAbstractButton*>(QStringLiteral("resetHermButton"));
    EXPECT_EQ(button->text(), QStringLiteral("Neutral"));
    EXPECT_EQ(error(), "");
    EXPECT_TRUE(log.lines.empty());
}

TEST_F(KWInterfaceFile, WithoutAnOutletGivesOneErrorThatNamesIt) {
    for (const char* const each : outletNames) {
        const QString name = QLatin1String(each);
        log.lines.clear();
        const QWidget* const before = editor.channelEditorPanel();
        EXPECT_FALSE(load(plain(text).replace(QStringLiteral("name=\"%1\"").arg(name),
                                              QStringLiteral("name=\"other\""))));
        EXPECT_EQ(error(), "Host.ui: there is no widget named \"" + std::string(each) + "\"");
        EXPECT_EQ(log.lines, std::vector<std::string>{error()});
        EXPECT_EQ(editor.channelEditorPanel(), before);
    }
}

TEST_F(KWInterfaceFile, WithAnOutletOfAnotherClassGivesOneErrorThatNamesIt) {
    const std::pair<const char*, const char*> table[] = {{"elementOV", "QTreeView"},
                                                         {"channelView", "KWChannelView"},
                                                         {"liveCheckBox", "QAbstractButton"},
                                                         {"gridSlider", "QAbstractSlider"},
                                                         {"channelTypePU", "QComboBox"},
                                                         {"copyButton", "QAbstractButton"},
                                                         {"pasteButton", "QAbstractButton"},
                                                         {"interpModePU", "QComboBox"},
                                                         {"repeatPU", "QComboBox"},
                                                         {"tensionSlider", "QAbstractSlider"},
                                                         {"biasSlider", "QAbstractSlider"},
                                                         {"continuitySlider", "QAbstractSlider"},
                                                         {"resetHermButton", "QAbstractButton"},
                                                         {"constantValueTF", "QLineEdit"},
                                                         {"expressionTF", "QLineEdit"}};
    for (const auto& [name, wanted] : table) {
        QString was;
        log.lines.clear();
        EXPECT_FALSE(load(plain(withClass(QLatin1String(name), QStringLiteral("QFrame"), was))));
        EXPECT_EQ(error(), "Host.ui: \"" + std::string(name) + "\" is a QFrame, not a " + wanted);
        EXPECT_EQ(log.lines.size(), 1U);
    }
}

TEST_F(KWInterfaceFile, WithoutATagGivesOneErrorThatNamesTheOutlet) {
    QString changed = text;
    changed.replace(QRegularExpression(QStringLiteral("<number>2</number>(?!.*<number>2</number>)"),
                                       QRegularExpression::DotMatchesEverythingOption),
                    QStringLiteral("<number>5</number>"));
    ASSERT_NE(changed, text);
    EXPECT_FALSE(load(changed));
    EXPECT_EQ(error(), "Host.ui: \"biasSlider\" has no property \"tag\" of 2");
}

TEST_F(KWInterfaceFile, ThatIsNoneGivesOneError) {
    const std::pair<QString, std::string> table[] = {
        {QString(), "Host.ui: line 1, column 0: "},
        {QStringLiteral("<html></html>"),
         "Host.ui: it is no interface file, its outermost element is \"html\""},
        {QStringLiteral("<ui version=\"4.0\"></ui>"), "Host.ui: "},
        {text.left(text.size() / 2), "Host.ui: line "},
        {text.chopped(8), "Host.ui: line "},
        {QStringLiteral("<ui>") + QStringLiteral("<widget class=\"QWidget\">").repeated(100000),
         "Host.ui: line 1 is nested more than 200 deep"},
        {QStringLiteral("\x01\x02 binary"), "Host.ui: line 1"},
        {QString(5 * 1024 * 1024, QLatin1Char(' ')),
         "Host.ui: it is too large for an interface file"}};
    for (const auto& [changed, expected] : table) {
        log.lines.clear();
        EXPECT_FALSE(load(changed));
        EXPECT_TRUE(error().starts_with(expected)) << error();
        EXPECT_GT(error().size(), std::string("Host.ui: ").size());
        EXPECT_EQ(log.lines.size(), 1U);
    }
}

TEST_F(KWInterfaceFile, ThatIsNotThereGivesOneError) {
    editor.setInterfaceFile(folder.filePath(QStringLiteral("Nowhere.ui")));
    EXPECT_FALSE(editor.loadInterface());
    EXPECT_EQ(error(), "Nowhere.ui: No such file or directory");
    editor.setInterfaceFile(folder.path());
    EXPECT_FALSE(editor.loadInterface());
    EXPECT_NE(error(), "");
}

TEST_F(KWInterfaceFile, ThatCannotBeLoadedShowsNothing) {
    KWChannelEditorController other;
    other.setInterfaceFile(QStringLiteral("/nowhere/Nowhere.ui"));
    other.showChannelEditor();
    EXPECT_EQ(other.channelEditorPanel(), nullptr);
    // Everything else can still be called.
    other.copyChannel();
    other.pasteChannel();
    other.changeEditingMode();
    other.changeLiveUpdate();
    other.changeGridResolution();
    other.toggleShowSecondaryChannel();
    other.changeChannelType();
    other.changeInterpolation();
    other.changeRepeat();
    other.changeHermiteParam(nullptr);
    other.changeConstantValue();
    other.changeAlgebricExpression();
    other.redrawChannelView();
    other.updateView(nullptr);
    other.expandOutlineView(nullptr);
}

TEST_F(KWInterfaceFile, MayHaveTheOptionsViewsInALayoutInPlaceOfAStack) {
    QString was;
    QString changed = withClass(QStringLiteral("optionsStack"), QStringLiteral("QWidget"), was);
    changed.remove(QRegularExpression(
        QStringLiteral("<property name=\"currentIndex\">\\s*<number>0</number>\\s*</property>")));
    ASSERT_TRUE(load(changed)) << error();
    const auto shown = [&](const char* name) {
        return !editor.channelEditorPanel()->findChild<QWidget*>(QLatin1String(name))->isHidden();
    };
    EXPECT_FALSE(shown("keyframedView") || shown("constantView") || shown("algebricView"));
    const auto element = std::make_shared<KWElement>("Lamp");
    const auto glow = std::make_shared<KWConstantChannel>("glow");
    element->addChannelToGroupNamed(glow);
    KWArrayController list;
    list.setContent({element, std::make_shared<KWElement>("Other")});
    editor.setChannelsController(&list);
    auto* const tree = editor.channelEditorPanel()->findChild<QTreeView*>();
    editor.expandOutlineView(tree);
    static_cast<KWOutlineModel*>(tree->model())->selectItem(glow);
    EXPECT_TRUE(shown("constantView"));
    EXPECT_FALSE(shown("keyframedView") || shown("algebricView"));
}
