#pragma once

#include "ViewTestSupport.h"

#include <KWBase/KWAlgebricChannel.h>
#include <KWBase/KWChannelEditorController.h>
#include <KWBase/KWChannelView.h>
#include <KWBase/KWConstantChannel.h>
#include <KWDesktop/KWChannelUndoRecorder.h>
#include <KWDesktop/KWOutlineModel.h>
#include <KWFoundation/KWKeyedArchiver.h>

#include <apps/common/KWElement.h>
#include <gtest/gtest.h>

#include <QAbstractButton>
#include <QAbstractItemView>
#include <QApplication>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QSlider>
#include <QStyle>
#include <QStyleOptionSlider>
#include <QTest>
#include <QTreeView>
#include <algorithm>
#include <cstring>
#include <memory>
#include <string>
#include <vector>

/// A panel on the screen with two elements: "Ball" with the keyframed "x" and the constant "y" in
/// its group "Position" and the algebraic "angle" in none; "Lamp" with the keyframed "glow". The
/// log's "Elements changed" is taken for granted.
class PanelTest : public testing::Test {
  protected:
    PanelTest() {
        ball = makeElement("Ball");
        lamp = makeElement("Lamp");
        x->setChannelColorIndex(3);
        glow->setChannelColorIndex(1);
        angle->setChannelColorIndex(2);
        y->setValueForTime(2.5f, std::nullopt);
        y->setChannelColorIndex(4);
        angle->setExpression("sin(t)");
        float tension = 0;
        for (const auto& [time, value] :
             std::vector<std::pair<float, float>>{{1, -1}, {3, 1.5f}, {6, 0.5f}, {9, 1}}) {
            x->setValueForKeyframe(value, KWTime(time));
            glow->setValueForKeyframe(-value, KWTime(time));
            const HJHermiteParam shape{tension += 0.125f, 0.25f, -0.5f, {1, 2, 3, 4, 5, 6}};
            x->modifyHermiteParamForKeyframe(&shape, KWTime(time));
        }
        ball->addChannelToGroupNamed(x, "Position");
        ball->addChannelToGroupNamed(y, "Position");
        ball->addChannelToGroupNamed(angle);
        lamp->addChannelToGroupNamed(glow);
        list.setContent({ball, lamp});
        manager->removeAllActions();
    }

    void SetUp() override {
        open();
        QObject::connect(&editor, &KWChannelEditSource::willEdit,
                         [this](KWChannelEdit edit) { note("will", edit); });
        QObject::connect(&editor, &KWChannelEditSource::didEdit,
                         [this](KWChannelEdit edit) { note("did", edit); });
    }

    void open() {
        editor.setChannelsController(&list);
        editor.showChannelEditor();
        ASSERT_NE(editor.channelEditorPanel(), nullptr) << editor.interfaceError().toStdString();
        editor.channelEditorPanel()->activateWindow();
        ASSERT_TRUE(QTest::qWaitForWindowActive(editor.channelEditorPanel()));
        editor.expandOutlineView(tree());
        settle();
    }
    std::shared_ptr<KWElement> makeElement(const std::string& name) {
        auto element = std::make_shared<KWElement>(name);
        element->setUndoManager(manager);
        return element;
    }

    /// Has the outline hear of the elements' channels, as a host does.
    void followStructure() {
        structure = KWNotificationCenter::defaultCenter().addObserver(
            KWElementChannelsDidChangeNotification, nullptr,
            [this](const KWNotification& notice) { editor.channelStructChangedCallback(notice); });
    }

    // --- The panel.

    template <class T>
    T* widget(const char* name) const {
        T* const found = editor.channelEditorContainer()->findChild<T*>(QLatin1String(name));
        EXPECT_NE(found, nullptr) << name;
        return found;
    }
    QTreeView* tree() const { return widget<QTreeView>("elementOV"); }
    KWOutlineModel* outline() const { return static_cast<KWOutlineModel*>(tree()->model()); }
    KWChannelView* view() const { return editor.channelView(); }
    QComboBox* popup(const char* name) const { return widget<QComboBox>(name); }
    QSlider* slider(const char* name) const { return widget<QSlider>(name); }
    QLineEdit* field(const char* name) const { return widget<QLineEdit>(name); }
    QAbstractButton* button(const char* name) const { return widget<QAbstractButton>(name); }
    QString typed() const { return popup("channelTypePU")->currentText(); }
    bool isEnabled(const char* name) const { return widget<QWidget>(name)->isEnabled(); }

    /// The passes of the event loop in which everything marked is read.
    static void settle() {
        QCoreApplication::processEvents();
        QCoreApplication::processEvents();
    }

    // --- What a user does.

    void clickRow(const std::shared_ptr<KWObject>& item, int column = 0) const {
        const QModelIndex index = outline()->indexForItem(item, column);
        ASSERT_TRUE(index.isValid());
        tree()->scrollTo(index);
        QTest::mouseClick(tree()->viewport(), Qt::LeftButton, {},
                          tree()->visualRect(index).center());
        settle();
    }
    void click(const char* name) const {
        QTest::mouseClick(button(name), Qt::LeftButton, {}, button(name)->rect().center());
    }
    /// Opens the popup and goes to the item by the arrow keys.
    void choose(const char* name, int item) const {
        QComboBox* const combo = popup(name);
        combo->setFocus();
        QTest::keyClick(combo, Qt::Key_Space);
        QAbstractItemView* const items = combo->view();
        QTest::keyClick(items, Qt::Key_Home);
        for (int guard = 0; items->currentIndex().row() != item && guard < 10; ++guard)
            QTest::keyClick(items, Qt::Key_Down);
        QTest::keyClick(items, Qt::Key_Return);
        settle();
    }
    void type(const char* name, const QString& text, bool commits = true) const {
        QLineEdit* const edit = field(name);
        QTest::mouseClick(edit, Qt::LeftButton, {}, edit->rect().center());
        edit->selectAll();
        QTest::keyClick(edit, Qt::Key_Backspace);
        // Keys that are on no keyboard here are pasted.
        if (std::all_of(text.begin(), text.end(), [](QChar c) { return c < QChar(128); }))
            QTest::keyClicks(edit, text);
        else
            edit->insert(text);
        if (commits)
            QTest::keyClick(edit, Qt::Key_Return);
    }

    QPoint at(float time, float value) const {
        view()->grab();
        return view()->positionOfTimeAndValue(time, value).toPoint();
    }
    void clickKey(float time, float value, Qt::KeyboardModifiers modifiers = {}) const {
        QTest::mouseClick(view(), Qt::LeftButton, modifiers, at(time, value));
        settle();
    }
    void dragInView(const QPoint& from, const QPoint& to) const {
        QTest::mousePress(view(), Qt::LeftButton, {}, from);
        for (const int step : {1, 2, 3, 4}) {
            const QPoint where = from + (to - from) * step / 4;
            QMouseEvent move(QEvent::MouseMove, where, view()->mapToGlobal(where), Qt::NoButton,
                             Qt::LeftButton, Qt::NoModifier);
            QApplication::sendEvent(view(), &move);
        }
        QTest::mouseRelease(view(), Qt::LeftButton, {}, to);
        settle();
    }

    static QPoint handleOf(const QSlider& slider) {
        QStyleOptionSlider option;
        option.initFrom(&slider);
        option.orientation = slider.orientation();
        option.minimum = slider.minimum();
        option.maximum = slider.maximum();
        option.sliderPosition = slider.sliderPosition();
        option.sliderValue = slider.value();
        option.upsideDown = slider.invertedAppearance();
        return slider.style()
            ->subControlRect(QStyle::CC_Slider, &option, QStyle::SC_SliderHandle, &slider)
            .center();
    }
    void dragSlider(const char* name, int points) const {
        QSlider* const moved = slider(name);
        const QPoint from = handleOf(*moved);
        QTest::mousePress(moved, Qt::LeftButton, {}, from);
        for (const int step : {1, 2, 3, 4}) {
            const QPointF where = from + QPoint(points * step / 4, 0);
            QMouseEvent move(QEvent::MouseMove, where, moved->mapToGlobal(where), Qt::NoButton,
                             Qt::LeftButton, Qt::NoModifier);
            QApplication::sendEvent(moved, &move);
        }
        QTest::mouseRelease(moved, Qt::LeftButton, {}, from + QPoint(points, 0));
    }

    // --- What has become of it.

    static HJHermiteParam shapeOf(const KWKeyFramedChannel& channel, float time) {
        HJHermiteParam shape;
        const auto record = channel.hermiteValueForKeyframe(KWTime(time));
        EXPECT_TRUE(record);
        if (record)
            std::memcpy(&shape, record->data(), sizeof shape);
        return shape;
    }
    static KWData bytesOf(const std::shared_ptr<KWObject>& object) {
        return KWKeyedArchiver::archivedDataWithRootObject(object);
    }
    std::shared_ptr<KWChannel> positionAt(std::size_t index) const {
        return ball->channelArray()->groupWithName("Position")->channels()->at(index);
    }
    static QMessageBox* alert() {
        return qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
    }
    static void dismissAlert() {
        QMessageBox* const shown = alert();
        ASSERT_NE(shown, nullptr);
        QTest::mouseClick(shown->button(QMessageBox::Ok), Qt::LeftButton);
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        EXPECT_EQ(alert(), nullptr);
    }
    /// What was told of edits since this was asked last, such as "will 1, did 1".
    std::string takeTold() { return std::exchange(told, {}); }
    static std::string pairOf(KWChannelEdit edit) {
        const std::string kind = std::to_string(static_cast<int>(edit));
        return "will " + kind + ", did " + kind;
    }

    LogLines log;
    std::shared_ptr<KWUndoManager> manager = std::make_shared<KWUndoManager>();
    std::shared_ptr<KWElement> ball;
    std::shared_ptr<KWElement> lamp;
    std::shared_ptr<KWKeyFramedChannel> x = std::make_shared<KWKeyFramedChannel>("x");
    std::shared_ptr<KWConstantChannel> y = std::make_shared<KWConstantChannel>("y");
    std::shared_ptr<KWAlgebricChannel> angle = std::make_shared<KWAlgebricChannel>("angle");
    std::shared_ptr<KWKeyFramedChannel> glow = std::make_shared<KWKeyFramedChannel>("glow");
    KWArrayController list;
    KWChannelEditorController editor;
    KWChannelUndoRecorder recorder{editor};
    std::string told;
    KWNotificationToken structure;

  private:
    void note(const char* what, KWChannelEdit edit) {
        told += (told.empty() ? "" : ", ") + std::string(what) + ' ' +
                std::to_string(static_cast<int>(edit));
    }
};
