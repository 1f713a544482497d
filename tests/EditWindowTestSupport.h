#pragma once

#include "EditTestSupport.h"
#include "ViewTestSupport.h"

#include <KWBase/KWChannelView.h>
#include <KWBase/KWKeyFramedChannel.h>

#include <apps/kwedit/window/KWEditApplication.h>
#include <apps/kwedit/window/KWEditCurvesPane.h>
#include <apps/kwedit/window/KWEditOutlinePane.h>
#include <apps/kwedit/window/KWEditStageView.h>
#include <apps/kwedit/window/KWEditWindow.h>
#include <gtest/gtest.h>

#include <QAbstractButton>
#include <QAbstractItemView>
#include <QApplication>
#include <QComboBox>
#include <QLineEdit>
#include <QSettings>
#include <QTest>
#include <QTreeView>
#include <deque>

/// Answers what a window asks from lists; what is asked without an answer there fails the test.
class ScriptedQuestions final : public KWEditQuestions {
  public:
    QStringList documentsToOpen(QWidget*, const QString&) override {
        return take(opened, "which documents to open");
    }
    std::optional<Target> whereToSave(QWidget*, const QString&, const QString&,
                                      KWEditDocument::Form) override {
        return take(targets, "where to save");
    }
    QStringList filesToPlace(QWidget*, const QString&) override {
        return take(placed, "which files to place");
    }
    Unsaved whatOfUnsaved(QWidget*, const QString&) override {
        return take(unsaved, "what of unsaved changes");
    }
    bool mayGoOn(QWidget*, const QString& text, const QString&, const QString&) override {
        asked << text;
        return take(goesOn, text.toUtf8().constData());
    }
    Copy whatOfCopy(QWidget*, const QString&, const QString&) override {
        return take(copies, "what of a copy");
    }
    QString name(QWidget*, const QString&, const QString&, const QString&) override {
        return take(names, "a name");
    }
    void complain(QWidget*, const QString& text, const QString& reason) override {
        complaints << text + QLatin1Char(' ') + reason;
    }

    std::deque<QStringList> opened;
    std::deque<std::optional<Target>> targets;
    std::deque<QStringList> placed;
    std::deque<Unsaved> unsaved;
    std::deque<bool> goesOn;
    std::deque<Copy> copies;
    std::deque<QString> names;
    QStringList asked;
    QStringList complaints;

  private:
    template <class T>
    static T take(std::deque<T>& answers, const char* question) {
        if (answers.empty()) {
            ADD_FAILURE() << "nobody expected to be asked: " << question;
            return T();
        }
        T answer = std::move(answers.front());
        answers.pop_front();
        return answer;
    }
};

/// A window on the screen, driven by events of mouse and keyboard.
class EditWindowTest : public testing::Test {
  protected:
    EditWindowTest() {
        settings.setValue(QStringLiteral("autosave/folder"), folder.path("autosave"));
    }
    ~EditWindowTest() override { EXPECT_EQ(questions.complaints, expectedComplaints); }

    KWEditWindow& open(const QString& path = {}) {
        window = application.openWindow(path);
        window->resize(1440, 900);
        window->activateWindow();
        EXPECT_TRUE(QTest::qWaitForWindowActive(window));
        settle();
        return *window;
    }
    static void settle() {
        for (int pass = 0; pass < 4; ++pass)
            QCoreApplication::processEvents();
    }
    KWEditDocument& document() const { return window->session().document(); }
    KWChannelView& view() const { return window->curves().view(); }

    template <class T>
    T* widget(const char* name) const {
        T* const found = window->findChild<T*>(QLatin1String(name));
        EXPECT_NE(found, nullptr) << name;
        return found;
    }
    /// By its shortcut, as a user presses it, in whatever has the focus.
    void press(const char* keys) const {
        const QKeySequence sequence = QKeySequence::fromString(QLatin1String(keys));
        QWidget* const focus = QApplication::focusWidget() ? QApplication::focusWidget() : window;
        QTest::keyClick(focus, sequence[0].key(), sequence[0].keyboardModifiers());
        settle();
    }
    void select(const std::shared_ptr<KWObject>& item) const {
        window->outline().selectItem(item);
        settle();
    }
    std::shared_ptr<KWElement> element(std::size_t index) const {
        return std::dynamic_pointer_cast<KWElement>(document().model().elements().at(index).object);
    }
    std::shared_ptr<KWChannel> channel(const char* address) const {
        const auto places = document().model().channels();
        return KWDocument::placeAt(places, address).channel;
    }
    QPoint at(float time, float value) const {
        view().grab();
        return view().positionOfTimeAndValue(time, value).toPoint();
    }
    void drag(QWidget& widget, const QPoint& from, const QPoint& to) const {
        press(widget, from);
        moveTo(widget, from + (to - from) / 2);
        moveTo(widget, to);
        QTest::mouseRelease(&widget, Qt::LeftButton, {}, to);
        settle();
    }
    static void press(QWidget& widget, const QPoint& at) {
        QTest::mousePress(&widget, Qt::LeftButton, {}, at);
    }
    static void moveTo(QWidget& widget, const QPoint& where) {
        QMouseEvent move(QEvent::MouseMove, where, widget.mapToGlobal(where), Qt::NoButton,
                         Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(&widget, &move);
    }
    void click(const char* button) const {
        auto* const found = widget<QAbstractButton>(button);
        QTest::mouseClick(found, Qt::LeftButton, {}, found->rect().center());
        settle();
    }
    void choose(const char* popup, int item) const {
        auto* const combo = widget<QComboBox>(popup);
        combo->setFocus();
        QTest::keyClick(combo, Qt::Key_Space);
        QAbstractItemView* const items = combo->view();
        QTest::keyClick(items, Qt::Key_Home);
        for (int guard = 0; items->currentIndex().row() != item && guard < 10; ++guard)
            QTest::keyClick(items, Qt::Key_Down);
        QTest::keyClick(items, Qt::Key_Return);
        settle();
        // The platform without a screen leaves no window active once a popup has closed.
        window->activateWindow();
        ASSERT_TRUE(QTest::qWaitForWindowActive(window));
    }
    void type(const char* field, const QString& text) const {
        auto* const edit = widget<QLineEdit>(field);
        edit->setFocus();
        edit->selectAll();
        QTest::keyClicks(edit, text);
        QTest::keyClick(edit, Qt::Key_Return);
        settle();
    }
    KWData bytes() const { return document().model().data(KWEditDocument::Form::binary); }

    Folder folder;
    LogLines log;
    QSettings settings{folder.path("settings.ini"), QSettings::IniFormat};
    ScriptedQuestions questions;
    KWEditApplication application{settings, questions};
    KWEditWindow* window = nullptr;
    QStringList expectedComplaints;
};
