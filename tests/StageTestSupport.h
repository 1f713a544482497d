#pragma once

#include "EditTestSupport.h"
#include "ViewTestSupport.h"

#include <KWBase/KWConstantChannel.h>
#include <KWBase/KWKeyFramedChannel.h>

#include <apps/kwedit/window/KWEditStageView.h>

#include <QApplication>
#include <QtTest>
#include <memory>
#include <string>
#include <vector>

/// A stage of 160 x 90 pixels, 10 for a metre, without a backdrop, in a view of that size: a metre
/// is 10 points, the middle at (80, 45).
struct StageTest {
    StageTest() {
        document.setAutosaveFolder({});
        KWStage stage;
        stage.size = {160, 90};
        stage.scale = 10;
        document.setStage(stage);
        view = std::make_unique<KWEditStageView>(document, transport);
        // The picked one is the selected one, as in a window.
        QObject::connect(view.get(), &KWEditStageView::elementPicked,
                         [this](const std::shared_ptr<KWElement>& element) {
                             picked.push_back(element);
                             if (selectsWhatIsPicked)
                                 view->setSelectedElements(element ? std::vector{element}
                                                                   : decltype(picked)());
                         });
        QObject::connect(view.get(), &KWEditStageView::statusMessage,
                         [this](const QString& text) { messages << text; });
        view->resize(160, 90);
        view->show();
        turn();
    }
    /// Lets the event loop run, as often as something is left for later.
    static void turn() {
        for (int k = 0; k < 5; ++k)
            QCoreApplication::processEvents();
    }

    /// A square of a metre.
    std::shared_ptr<KWElement> addSprite(const char* name, const char* color = "#ff0000") {
        return document.addElement(QLatin1String(name),
                                   {{"content", "shape:rectangle"}, {"color", color}});
    }
    template <class C>
    std::shared_ptr<C> addChannel(const std::shared_ptr<KWElement>& element, const char* name,
                                  float value = 0) {
        auto channel = channelWithNameInitialValueColor<C>(name, value, 0);
        document.addChannel(element, channel);
        return channel;
    }
    /// A sprite with constant channels x and y.
    std::shared_ptr<KWElement> addSpriteAt(float x, float y, const char* name = "Square",
                                           const char* color = "#ff0000") {
        auto element = addSprite(name, color);
        addChannel<KWConstantChannel>(element, "x", x);
        addChannel<KWConstantChannel>(element, "y", y);
        return element;
    }
    static float valueOf(const KWElement& element, const char* name, float time = 0) {
        for (const auto& channel : element.channelArray()->channelEnumerator())
            if (channel->name() == name)
                return channel->valueForTime(KWTime(time));
        ADD_FAILURE() << "no channel " << name;
        return 0;
    }
    /// Nothing to undo, nothing to save.
    void settle() {
        turn();
        ASSERT_TRUE(document.saveAs(folder.path("saved"), KWDocument::Form::binary));
        document.undoManager()->removeAllActions();
        ASSERT_TRUE(document.saveAs(folder.path("saved"), KWDocument::Form::binary));
        turn();
    }

    void press(const QPoint& at, Qt::MouseButton button = Qt::LeftButton,
               Qt::KeyboardModifiers modifiers = Qt::NoModifier) {
        QTest::mousePress(view.get(), button, modifiers, at);
    }
    /// QTest's own moves hold no button.
    void dragTo(const QPoint& at, Qt::MouseButton button = Qt::LeftButton,
                Qt::KeyboardModifiers modifiers = Qt::NoModifier) {
        QMouseEvent move(QEvent::MouseMove, at, view->mapToGlobal(at), Qt::NoButton, button,
                         modifiers);
        QApplication::sendEvent(view.get(), &move);
    }
    void release(const QPoint& at, Qt::MouseButton button = Qt::LeftButton) {
        QTest::mouseRelease(view.get(), button, Qt::NoModifier, at);
    }
    void drag(const QPoint& from, const QPoint& to) {
        press(from);
        dragTo((from + to) / 2);
        dragTo(to);
        release(to);
        turn();
    }
    void wheel(const QPointF& at, const QPoint& angle,
               Qt::KeyboardModifiers modifiers = Qt::NoModifier,
               Qt::ScrollPhase phase = Qt::NoScrollPhase, const QPoint& pixels = {}) {
        sendWheel(*view, at, angle, modifiers, phase, pixels);
    }
    static void sendWheel(QWidget& widget, const QPointF& at, const QPoint& angle,
                          Qt::KeyboardModifiers modifiers = Qt::NoModifier,
                          Qt::ScrollPhase phase = Qt::NoScrollPhase, const QPoint& pixels = {}) {
        QWheelEvent event(at, widget.mapToGlobal(at), pixels, angle, Qt::NoButton, modifiers, phase,
                          false);
        QApplication::sendEvent(&widget, &event);
    }
    QColor shown(int x, int y) const {
        const QImage image = view->grab().toImage();
        const double ratio = image.devicePixelRatio();
        return image.pixelColor(static_cast<int>(x * ratio), static_cast<int>(y * ratio));
    }

    Folder folder;
    KWEditDocument document;
    double now = 0;
    KWEditTransport transport{nullptr, [this] { return now; }};
    std::unique_ptr<KWEditStageView> view;
    std::vector<std::shared_ptr<KWElement>> picked;
    QStringList messages;
    bool selectsWhatIsPicked = true;
};
