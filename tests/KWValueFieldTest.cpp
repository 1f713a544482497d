#include "ViewTestSupport.h"

#include <KWBase/KWChannel.h>
#include <KWBase/KWUnitController.h>
#include <KWDesktop/KWOutlineModel.h>
#include <KWDesktop/KWValueDelegate.h>
#include <KWDesktop/KWValueField.h>
#include <KWDesktop/KWValueText.h>
#include <KWFoundation/KWBundle.h>

#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QLineEdit>
#include <QSignalSpy>
#include <QStandardItemModel>
#include <QTableView>
#include <QTest>
#include <QToolTip>

namespace {

class KWValueFieldTest : public testing::Test {
  protected:
    KWValueFieldTest() {
        KWBundle::frameworkBundle().setLanguage("en");
        restore();
        QToolTip::hideText();
    }
    ~KWValueFieldTest() override { restore(); }

    void restore() {
        units.setDefaultLengthUnit(KWLengthUnitMeter);
        units.setDefaultAngleUnit(KWAngleUnitDegree);
    }
    void show(QWidget& widget) {
        widget.show();
        widget.activateWindow();
        ASSERT_TRUE(QTest::qWaitForWindowActive(&widget));
    }
    static void type(QLineEdit& field, const QString& text, Qt::Key end = Qt::Key_Return) {
        field.setFocus();
        field.selectAll();
        QTest::keyClick(&field, Qt::Key_Backspace);
        QTest::keyClicks(&field, text);
        QTest::keyClick(&field, end);
    }

    KWUnitController& units = KWUnitController::sharedUnitController();
};

constexpr const char* nonsense[] = {
    "",       "abc", "1e999", "-1e999", "1 furlong", "2,5",     "1 m 2", "0x10", "inf", "nan",
    "infant", "--1", "1 cm2", "1 deg",  "1e39",      "1e38 mi", "5 5",   "%n",   "1;2", "1 M"};

} // namespace

TEST_F(KWValueFieldTest, ValuesAreTextInTheUsersUnit) {
    units.setDefaultLengthUnit(KWLengthUnitCentimeter);
    EXPECT_EQ(KWTextFromValue(2.5f, KWUnitTypeLength), "250 cm");
    EXPECT_EQ(KWTextFromValue(0.5f, KWUnitTypeNone), "0.5");
    EXPECT_EQ(KWTextFromValue(0.5f, 7), "0.5");
    EXPECT_EQ(KWValueFromText("250", KWUnitTypeLength), 2.5f);
    EXPECT_EQ(KWValueFromText(" 2.5 m ", KWUnitTypeLength), 2.5f);
    EXPECT_EQ(KWValueFromText("180 degree", KWUnitTypeAngle), 3.14159265f);
    EXPECT_EQ(KWValueFromText("-1e-3", KWUnitTypeNone), -0.001f);
    EXPECT_EQ(KWValueFromText("1 m", KWUnitTypeNone), std::nullopt);
    EXPECT_EQ(KWValueFromText("1 m", KWUnitTypeAngle), std::nullopt);
}

TEST_F(KWValueFieldTest, TextThatMeansNoFiniteValueIsRefusedWithASentence) {
    for (const char* text : nonsense) {
        EXPECT_EQ(KWValueFromText(text, KWUnitTypeLength), std::nullopt) << text;
        EXPECT_GT(KWValueTextFault(text, KWUnitTypeLength).size(), 10u) << text;
    }
    const std::string longText(5000, 'x');
    EXPECT_LT(KWValueTextFault(longText, KWUnitTypeNone).size(), 200u);
    EXPECT_NE(KWValueTextFault("2,5", KWUnitTypeNone).find("point"), std::string::npos);
}

TEST_F(KWValueFieldTest, TheNameThatIsShownIsKnownInEveryLanguage) {
    for (const char* language : {"en", "fr", "de", "ja"}) {
        KWBundle::frameworkBundle().setLanguage(language);
        for (const std::int32_t unit : {0, 1, 2, 3, 32, 33, 34}) {
            units.setDefaultLengthUnit(unit);
            EXPECT_TRUE(KWValueFromText(KWTextFromValue(1, KWUnitTypeLength), KWUnitTypeLength));
        }
    }
    KWBundle::frameworkBundle().setLanguage("en");
}

TEST_F(KWValueFieldTest, ShowsItsValueAndTakesATypedOne) {
    KWValueField field;
    field.setUnitType(KWUnitTypeLength);
    field.setValue(2.5f);
    EXPECT_EQ(field.text(), QStringLiteral("2.5 m"));
    show(field);
    QSignalSpy edits(&field, &KWValueField::valueEdited);
    QSignalSpy changes(&field, &KWValueField::valueChanged);
    type(field, QStringLiteral("30 cm"));
    EXPECT_EQ(field.value(), 0.3f);
    EXPECT_EQ(field.text(), QStringLiteral("0.3 m"));
    EXPECT_EQ(edits.count(), 1);
    EXPECT_EQ(changes.count(), 1);
    field.setValue(1);
    EXPECT_EQ(edits.count(), 1);
    EXPECT_EQ(changes.count(), 2);
}

TEST_F(KWValueFieldTest, PutsTheOldTextBackWithAToolTip) {
    KWValueField field;
    field.setUnitType(KWUnitTypeLength);
    field.setValue(2.5f);
    show(field);
    QSignalSpy edits(&field, &KWValueField::valueEdited);
    for (const char* text : nonsense) {
        QToolTip::hideText();
        type(field, QString::fromUtf8(text));
        QCoreApplication::processEvents();
        EXPECT_EQ(field.text(), QStringLiteral("2.5 m")) << text;
        EXPECT_EQ(field.value(), 2.5f) << text;
        EXPECT_EQ(QToolTip::text().toStdString(), KWValueTextFault(text, KWUnitTypeLength));
    }
    EXPECT_EQ(edits.count(), 0);
    QToolTip::hideText();
}

TEST_F(KWValueFieldTest, TheToolTipStaysWhenTheFieldIsLeft) {
    QWidget window;
    auto* const first = new KWValueField(&window);
    auto* const second = new KWValueField(&window);
    second->move(0, 40);
    show(window);
    type(*first, QStringLiteral("abc"), Qt::Key_Tab);
    EXPECT_TRUE(second->hasFocus());
    QCoreApplication::processEvents();
    EXPECT_EQ(QToolTip::text().toStdString(), KWValueTextFault("abc", KWUnitTypeNone));
    EXPECT_EQ(first->text(), QStringLiteral("0"));
    QToolTip::hideText();
}

TEST_F(KWValueFieldTest, KeepsTheDigitsThatAreNotShown) {
    const float value = 0.123456789f;
    KWValueField field;
    field.setValue(value);
    show(field);
    QSignalSpy edits(&field, &KWValueField::valueEdited);
    QTest::keyClick(&field, Qt::Key_Return);
    type(field, field.text());
    EXPECT_EQ(field.value(), value);
    EXPECT_EQ(edits.count(), 0);
}

TEST_F(KWValueFieldTest, EscapeShowsTheValueAgain) {
    KWValueField field;
    field.setValue(3);
    show(field);
    type(field, QStringLiteral("77"), Qt::Key_Escape);
    EXPECT_EQ(field.text(), QStringLiteral("3"));
    QTest::keyClick(&field, Qt::Key_Return);
    EXPECT_EQ(field.value(), 3.0f);
}

TEST_F(KWValueFieldTest, FollowsTheDefaultUnitButLeavesATextThatIsBeingTyped) {
    KWValueField field;
    field.setUnitType(KWUnitTypeLength);
    field.setValue(2.5f);
    units.setDefaultLengthUnit(KWLengthUnitCentimeter);
    EXPECT_EQ(field.text(), QStringLiteral("250 cm"));
    show(field);
    field.selectAll();
    QTest::keyClicks(&field, QStringLiteral("4"));
    units.setDefaultLengthUnit(KWLengthUnitMeter);
    EXPECT_EQ(field.text(), QStringLiteral("4"));
    QTest::keyClick(&field, Qt::Key_Return);
    EXPECT_EQ(field.text(), QStringLiteral("4 m"));
    EXPECT_EQ(field.value(), 4.0f);
}

namespace {

class KWValueDelegateTest : public KWValueFieldTest {
  protected:
    KWValueDelegateTest() {
        for (int row = 0; row < 2; ++row) {
            auto* const item = new QStandardItem;
            item->setData(2.5f, Qt::EditRole);
            model.appendRow(item);
        }
        model.item(1)->setData(KWUnitTypeAngle, KWOutlineModel::UnitTypeRole);
        delegate->setUnitType(KWUnitTypeLength);
        view.setModel(&model);
        view.setItemDelegate(delegate);
        view.resize(200, 120);
    }
    QLineEdit* open(int row) {
        view.setCurrentIndex(model.index(row, 0));
        view.edit(model.index(row, 0));
        return view.findChild<QLineEdit*>();
    }
    void close() {
        QCoreApplication::processEvents();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }

    QStandardItemModel model;
    QTableView view;
    KWValueDelegate* delegate = new KWValueDelegate(&view);
};

} // namespace

TEST_F(KWValueDelegateTest, EditsInTheUnitOfTheCellOrElseItsOwn) {
    show(view);
    QLineEdit* editor = open(0);
    ASSERT_NE(editor, nullptr);
    EXPECT_EQ(editor->text(), QStringLiteral("2.5 m"));
    type(*editor, QStringLiteral("40 cm"));
    close();
    EXPECT_EQ(model.item(0)->data(Qt::EditRole).toFloat(), 0.4f);
    editor = open(1);
    ASSERT_NE(editor, nullptr);
    EXPECT_EQ(editor->text(), QStringLiteral("143.2395 deg"));
    type(*editor, QStringLiteral("180"));
    close();
    EXPECT_EQ(model.item(1)->data(Qt::EditRole).toFloat(), 3.14159265f);
}

TEST_F(KWValueDelegateTest, ARefusedTextLeavesTheModelAlone) {
    show(view);
    QSignalSpy changes(&model, &QAbstractItemModel::dataChanged);
    for (const char* text : nonsense) {
        QToolTip::hideText();
        QLineEdit* const editor = open(0);
        ASSERT_NE(editor, nullptr);
        type(*editor, QString::fromUtf8(text));
        close();
        EXPECT_FALSE(QToolTip::text().isEmpty()) << text;
        EXPECT_EQ(view.findChild<QLineEdit*>(), nullptr);
    }
    EXPECT_EQ(changes.count(), 0);
    EXPECT_EQ(model.item(0)->data(Qt::EditRole).toFloat(), 2.5f);
    QToolTip::hideText();
}

TEST_F(KWValueDelegateTest, EscapeAndAnUntouchedTextChangeNothing) {
    model.item(0)->setData(0.123456789f, Qt::EditRole);
    show(view);
    QSignalSpy changes(&model, &QAbstractItemModel::dataChanged);
    type(*open(0), QStringLiteral("9"), Qt::Key_Escape);
    close();
    QTest::keyClick(open(0), Qt::Key_Return);
    close();
    EXPECT_EQ(changes.count(), 0);
}

TEST_F(KWValueDelegateTest, DrawsAnewWhenTheDefaultUnitChanges) {
    show(view);
    const QImage before = view.grab().toImage();
    units.setDefaultLengthUnit(KWLengthUnitMillimeter);
    EXPECT_NE(view.grab().toImage(), before);
    units.setDefaultLengthUnit(KWLengthUnitMeter);
    EXPECT_EQ(view.grab().toImage(), before);
}
