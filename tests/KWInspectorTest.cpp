#include "EditTestSupport.h"
#include "ViewTestSupport.h"

#include <KWBase/KWConstantChannel.h>
#include <KWBase/KWKeyFramedChannel.h>
#include <KWBase/KWStackedView.h>
#include <KWBase/KWUnitController.h>
#include <KWDesktop/KWValueField.h>

#include <apps/kwedit/window/KWDocumentInspector.h>
#include <apps/kwedit/window/KWElementChannelsView.h>
#include <apps/kwedit/window/KWElementInspector.h>
#include <apps/kwedit/window/KWInspectorPanel.h>
#include <apps/kwedit/window/KWTimeField.h>
#include <apps/kwedit/window/KWTransportInspector.h>
#include <apps/kwedit/window/KWUnitsInspector.h>
#include <gtest/gtest.h>

#include <QAbstractButton>
#include <QCheckBox>
#include <QColorDialog>
#include <QComboBox>
#include <QMenu>
#include <QPushButton>
#include <QScrollBar>
#include <QSignalSpy>
#include <QSlider>
#include <QSpinBox>
#include <QTreeWidget>
#include <QtTest>

namespace {

struct Inspecting {
    Inspecting() {
        document.setAutosaveFolder({});
        panel.resize(270, 900);
        panel.show();
        EXPECT_TRUE(QTest::qWaitForWindowActive(&panel));
        turn();
    }
    ~Inspecting() {
        KWUnitController::sharedUnitController().setDefaultLengthUnit(KWLengthUnitMeter);
        KWUnitController::sharedUnitController().setDefaultAngleUnit(KWAngleUnitDegree);
    }
    static void turn() {
        for (int k = 0; k < 5; ++k)
            QCoreApplication::processEvents();
    }
    template <class W>
    W* find(QWidget& inspector, const char* name) {
        W* const found = inspector.findChild<W*>(QLatin1String(name));
        EXPECT_NE(found, nullptr) << name;
        return found;
    }
    template <class W>
    W* inElement(const char* name) {
        return find<W>(panel.elementInspector(), name);
    }
    template <class W>
    W* inDocument(const char* name) {
        return find<W>(panel.documentInspector(), name);
    }
    template <class W>
    W* inTransport(const char* name) {
        return find<W>(panel.transportInspector(), name);
    }
    void type(QWidget* field, const char* text) {
        field->setFocus();
        QTest::keyClick(field, Qt::Key_A, Qt::ControlModifier);
        QTest::keyClicks(field, QLatin1String(text));
        QTest::keyClick(field, Qt::Key_Return);
        turn();
    }
    /// As a user does by the keyboard.
    void choose(QComboBox* box, int index) {
        box->setFocus();
        QTest::keyClick(box, Qt::Key_Home);
        while (box->currentIndex() < index)
            QTest::keyClick(box, Qt::Key_Down);
        turn();
    }
    std::shared_ptr<KWElement> addSprite(const char* name, const char* shape = "star") {
        KWSpriteContent content;
        content.kind = KWSpriteContent::Kind::shape;
        content.shape = QLatin1String(shape);
        return document.addSprite(QLatin1String(name), content);
    }
    void select(const KWElementInspector::Elements& elements) {
        panel.elementInspector().setElements(elements);
        turn();
    }
    KWElementChannelsView& channels() { return panel.elementInspector().channelsView(); }
    static KWSpriteContent contentOf(const std::shared_ptr<KWElement>& element) {
        return KWSpriteContent::of(*element);
    }

    Folder folder;
    KWEditDocument document;
    KWEditTransport transport;
    KWEditStageTiming timing{document, transport};
    KWInspectorPanel panel{document, transport, timing};
};

} // namespace

// --- The document.

TEST(KWInspector, TheStagesSizeIsTypedAndUndoneAndHeldInBounds) {
    Inspecting it;
    auto* const width = it.inDocument<QSpinBox>("stageWidth");
    it.type(width, "640");
    EXPECT_EQ(it.document.stage().size, QSize(640, 720));
    EXPECT_EQ(it.document.undoName(), QStringLiteral("Change Stage Size"));
    it.document.undo();
    EXPECT_EQ(width->value(), 1280);
    it.type(width, "16384");
    it.type(it.inDocument<QSpinBox>("stageHeight"), "16384");
    EXPECT_EQ(it.document.stage().size, QSize(16384, 4096));
    EXPECT_EQ(it.inDocument<QSpinBox>("stageHeight")->value(), 4096);
}

TEST(KWInspector, TheScaleAndTheCamerasDistanceAreTyped) {
    Inspecting it;
    it.type(it.inDocument<KWValueField>("scale"), "270");
    EXPECT_EQ(it.document.stage().scale, 270);
    it.type(it.inDocument<KWValueField>("scale"), "-4");
    EXPECT_GT(it.document.stage().scale, 0);
    it.type(it.inDocument<KWValueField>("distance"), "450 cm");
    EXPECT_FLOAT_EQ(static_cast<float>(it.document.stage().distance), 4.5F);
    EXPECT_EQ(it.document.undoName(), QStringLiteral("Change Camera Distance"));
}

TEST(KWInspector, ABackdropHasTheColorsItNeeds) {
    Inspecting it;
    auto* const backdrop = it.inDocument<QComboBox>("backdrop");
    const auto shown = [&] {
        QStringList names;
        for (const char* name : {"color", "color2", "floor"})
            if (it.inDocument<KWColorWell>(name)->isVisible())
                names << QLatin1String(name);
        return names.join(QLatin1Char(' '));
    };
    EXPECT_EQ(shown(), QStringLiteral("color"));
    it.choose(backdrop, 2);
    EXPECT_EQ(it.document.stage().backdrop, KWStage::Backdrop::room);
    EXPECT_EQ(shown(), QStringLiteral("color color2 floor"));
    it.choose(backdrop, 0);
    EXPECT_EQ(it.document.stage().backdrop, KWStage::Backdrop::none);
    EXPECT_EQ(shown(), QString());
}

TEST(KWInspector, AColorIsChosenInADialog) {
    Inspecting it;
    auto* const well = it.inDocument<KWColorWell>("color");
    QTest::mouseClick(well, Qt::LeftButton);
    auto* const dialog = well->findChild<QColorDialog*>();
    ASSERT_NE(dialog, nullptr);
    dialog->setCurrentColor(QColor(1, 2, 3, 128));
    dialog->accept();
    EXPECT_EQ(it.document.stage().color, QColor(1, 2, 3, 128));
    EXPECT_EQ(it.document.undoName(), QStringLiteral("Change Backdrop Color"));
    it.document.undo();
    EXPECT_EQ(well->color(), KWStage().color);
}

TEST(KWInspector, TheFileAndItsFormAreShown) {
    Inspecting it;
    auto* const file = it.inDocument<KWElidedLabel>("file");
    EXPECT_EQ(file->fullText(), QStringLiteral("Not saved yet"));
    const QString path = it.folder.path("a document.kwdoc");
    ASSERT_TRUE(it.document.saveAs(path, KWDocument::Form::xml));
    EXPECT_EQ(file->fullText(), path);
    EXPECT_EQ(it.inDocument<QLabel>("form")->text(), QStringLiteral("Keyed archive, XML"));
    ASSERT_TRUE(it.document.open(path, nullptr, KWEditDocument::Access::readOnly));
    EXPECT_EQ(it.inDocument<QLabel>("form")->text(),
              QStringLiteral("Keyed archive, XML, read-only"));
}

// --- Units.

TEST(KWInspector, UnitsAreThoseOfAllFields) {
    Inspecting it;
    QSignalSpy told(&it.panel.unitsInspector(), &KWUnitsInspector::unitsEdited);
    auto* const length = it.find<QComboBox>(it.panel.unitsInspector(), "lengthUnit");
    EXPECT_EQ(length->count(), 7);
    it.choose(length, 2);
    EXPECT_EQ(KWUnitController::sharedUnitController().defaultLengthUnit(), KWLengthUnitCentimeter);
    EXPECT_EQ(it.inDocument<KWValueField>("distance")->text(), QStringLiteral("300 cm"));
    EXPECT_GE(told.count(), 1);
    KWUnitController::sharedUnitController().setDefaultLengthUnit(KWLengthUnitFoot);
    EXPECT_EQ(length->currentData().toInt(), KWLengthUnitFoot);
    it.choose(it.find<QComboBox>(it.panel.unitsInspector(), "angleUnit"), 2);
    EXPECT_EQ(KWUnitController::sharedUnitController().defaultAngleUnit(), KWAngleUnitGrade);
    EXPECT_FALSE(it.document.isModified());
}

// --- Elements.

TEST(KWInspector, WithNothingSelectedItSaysSo) {
    Inspecting it;
    EXPECT_FALSE(it.inElement<QLineEdit>("name")->isVisible());
    EXPECT_FALSE(it.channels().isVisible());
    const auto sprite = it.addSprite("Star");
    it.select({sprite});
    EXPECT_TRUE(it.inElement<QLineEdit>("name")->isVisible());
    it.document.undo();
    Inspecting::turn();
    EXPECT_TRUE(it.panel.elementInspector().elements().empty());
    EXPECT_FALSE(it.inElement<QLineEdit>("name")->isVisible());
}

TEST(KWInspector, AnElementIsRenamed) {
    Inspecting it;
    const auto sprite = it.addSprite("Star");
    it.select({sprite});
    auto* const name = it.inElement<QLineEdit>("name");
    EXPECT_EQ(name->text(), QStringLiteral("Star"));
    it.type(name, "Sun");
    EXPECT_EQ(sprite->name(), "Sun");
    it.document.undo();
    EXPECT_EQ(name->text(), QStringLiteral("Star"));
    it.type(name, " ");
    EXPECT_EQ(sprite->name(), "Star");
    EXPECT_EQ(name->text(), QStringLiteral("Star"));
}

TEST(KWInspector, TheContentIsAShapeOrAFile) {
    Inspecting it;
    ASSERT_TRUE(it.document.saveAs(it.folder.path("doc.kwdoc"), KWDocument::Form::binary));
    const auto sprite = it.addSprite("Star");
    it.select({sprite});
    auto* const content = it.inElement<QComboBox>("content");
    EXPECT_EQ(content->currentText(), QStringLiteral("Star"));
    QString chosen;
    it.panel.elementInspector().setFileChooser([&](QWidget*, const QString&) { return chosen; });
    it.choose(content, content->findData(QStringLiteral("ball")));
    EXPECT_EQ(Inspecting::contentOf(sprite).shape, QStringLiteral("ball"));
    EXPECT_TRUE(it.inElement<KWColorWell>("color2")->isVisible());
    // Nothing was chosen: it is what it was.
    content->setFocus();
    QTest::keyClick(content, Qt::Key_End);
    Inspecting::turn();
    EXPECT_EQ(content->currentText(), QStringLiteral("Ball"));
    chosen = it.folder.path("pictures/lamp.png");
    QTest::keyClick(content, Qt::Key_End);
    Inspecting::turn();
    EXPECT_EQ(Inspecting::contentOf(sprite).kind, KWSpriteContent::Kind::file);
    EXPECT_EQ(Inspecting::contentOf(sprite).file, QStringLiteral("pictures/lamp.png"));
    EXPECT_EQ(it.inElement<KWElidedLabel>("file")->fullText(), QStringLiteral("pictures/lamp.png"));
    chosen = QStringLiteral("/elsewhere/film.mp4");
    QTest::mouseClick(it.inElement<QToolButton>("choose"), Qt::LeftButton);
    EXPECT_EQ(Inspecting::contentOf(sprite).file, chosen);
    EXPECT_EQ(it.document.undoName(), QStringLiteral("Change Content"));
    EXPECT_FALSE(it.inElement<KWColorWell>("color")->isVisible());
    EXPECT_TRUE(it.inElement<QCheckBox>("loop")->isVisible());
    QTest::mouseClick(it.inElement<QCheckBox>("loop"), Qt::LeftButton, {}, {8, 8});
    EXPECT_FALSE(Inspecting::contentOf(sprite).isLooping);
}

TEST(KWInspector, SizePivotAndBlendingAreTypedAndChosen) {
    Inspecting it;
    const auto sprite = it.addSprite("Star");
    it.select({sprite});
    auto* const width = it.inElement<KWValueField>("width");
    EXPECT_EQ(width->text(), QString());
    EXPECT_EQ(width->placeholderText(), QStringLiteral("Natural"));
    it.type(width, "25 cm");
    EXPECT_FLOAT_EQ(static_cast<float>(Inspecting::contentOf(sprite).width), 0.25F);
    EXPECT_EQ(Inspecting::contentOf(sprite).height, 0);
    EXPECT_EQ(it.document.undoName(), QStringLiteral("Change Size"));
    EXPECT_EQ(width->text(), QStringLiteral("0.25 m"));
    it.type(width, "0");
    EXPECT_EQ(width->text(), QString());
    it.type(it.inElement<KWValueField>("pivotY"), "1");
    EXPECT_EQ(Inspecting::contentOf(sprite).pivot, QPointF(0.5, 1));
    it.choose(it.inElement<QComboBox>("blend"), 2);
    EXPECT_EQ(Inspecting::contentOf(sprite).blend, QPainter::CompositionMode_Multiply);
    it.document.undo();
    it.document.undo();
    EXPECT_EQ(it.inElement<QComboBox>("blend")->currentIndex(), 0);
}

TEST(KWInspector, ADragOfTheShadowIsOneStep) {
    Inspecting it;
    const auto sprite = it.addSprite("Star");
    it.select({sprite});
    auto* const shadow = it.inElement<QSlider>("shadow");
    shadow->setSliderDown(true);
    for (const int value : {10, 30, 60}) {
        shadow->setSliderPosition(value);
        EXPECT_NEAR(Inspecting::contentOf(sprite).shadow, value / 100.0, 1e-6);
        EXPECT_FALSE(it.document.canUndo());
    }
    shadow->setSliderDown(false);
    EXPECT_EQ(it.document.undoName(), QStringLiteral("Change Shadow"));
    it.document.undo();
    EXPECT_EQ(Inspecting::contentOf(sprite).shadow, 0);
    EXPECT_EQ(shadow->value(), 0);
    EXPECT_EQ(it.document.undoName(), QStringLiteral("Add Sprite"));
}

TEST(KWInspector, OfSeveralElementsItShowsWhatIsCommonAndChangesAll) {
    Inspecting it;
    const auto star = it.addSprite("Star");
    const auto ball = it.addSprite("Ball", "ball");
    KWSpriteContent content = Inspecting::contentOf(star);
    content.width = 2;
    it.document.setContent(star, content);
    it.select({star, ball});
    EXPECT_FALSE(it.inElement<QLineEdit>("name")->isEnabled());
    EXPECT_EQ(it.inElement<QComboBox>("content")->currentIndex(), -1);
    auto* const width = it.inElement<KWValueField>("width");
    EXPECT_EQ(width->placeholderText(), QStringLiteral("Mixed"));
    EXPECT_FALSE(it.channels().isVisible());
    // Left without a word, it leaves them different.
    width->setFocus();
    it.inElement<KWValueField>("height")->setFocus();
    EXPECT_EQ(Inspecting::contentOf(ball).width, 0);
    it.type(width, "2");
    EXPECT_EQ(Inspecting::contentOf(star).width, 2);
    EXPECT_EQ(Inspecting::contentOf(ball).width, 2);
    it.document.undo();
    EXPECT_EQ(Inspecting::contentOf(ball).width, 0);
    EXPECT_EQ(Inspecting::contentOf(star).width, 2);
}

TEST(KWInspector, TheStagesElementHasChannelsAndNoContent) {
    Inspecting it;
    it.select({it.document.stageElement()});
    EXPECT_FALSE(it.inElement<QComboBox>("content")->isVisible());
    EXPECT_FALSE(it.inElement<KWValueField>("width")->isVisible());
    EXPECT_TRUE(it.channels().isVisible());
}

// --- Channels.

TEST(KWInspector, ChannelsAreAddedForRolesAndOnesOfAnyName) {
    Inspecting it;
    const auto element =
        it.document.addElement(QStringLiteral("Lamp"), {{"content", "shape:glow"}});
    it.select({element});
    QSignalSpy told(&it.channels(), &KWElementChannelsView::currentChannelChanged);
    auto* const add = it.inElement<QToolButton>("addChannel");
    Q_EMIT add->menu()->aboutToShow();
    QAction* opacity = nullptr;
    QAction* other = nullptr;
    for (QAction* const action : add->menu()->actions()) {
        if (action->text() == QStringLiteral("Opacity"))
            opacity = action;
        if (action->text() == QStringLiteral("Other…"))
            other = action;
    }
    ASSERT_NE(opacity, nullptr);
    ASSERT_NE(other, nullptr);
    opacity->trigger();
    const auto channel = it.channels().currentChannel();
    ASSERT_NE(channel, nullptr);
    EXPECT_EQ(channel->name(), "opacity");
    EXPECT_EQ(channel->valueForTime(KWTime(0)), 1);
    EXPECT_GE(told.count(), 1);
    EXPECT_EQ(it.document.undoName(), QStringLiteral("Add Channel"));
    Q_EMIT add->menu()->aboutToShow();
    for (QAction* const action : add->menu()->actions()) {
        if (action->text() == QStringLiteral("Opacity")) {
            EXPECT_FALSE(action->isEnabled());
        }
        if (action->text() == QStringLiteral("Other…"))
            other = action;
    }
    other->trigger();
    auto* const dialog = it.channels().findChild<KWNewChannelDialog*>();
    ASSERT_NE(dialog, nullptr);
    QTest::keyClicks(dialog->findChild<QLineEdit*>(QStringLiteral("name")),
                     QStringLiteral("dimming"));
    dialog->findChild<QComboBox*>(QStringLiteral("group"))->setEditText(QStringLiteral("Light"));
    dialog->findChild<QComboBox*>(QStringLiteral("unit"))->setCurrentIndex(2);
    dialog->accept();
    const auto dimming = it.channels().currentChannel();
    ASSERT_NE(dimming, nullptr);
    EXPECT_EQ(dimming->name(), "dimming");
    EXPECT_EQ(dimming->unitType(), KWUnitTypeAngle);
    EXPECT_EQ(dimming->channelGroup()->name(), "Light");
}

TEST(KWInspector, EveryRoleHasATitleAndAddsTheChannelItReads) {
    Inspecting it;
    const auto sprite = it.document.addElement(QStringLiteral("S"), {{"content", "shape:star"}});
    it.select({sprite});
    for (int k = 0; k < static_cast<int>(KWSpriteRole::count); ++k) {
        const auto role = static_cast<KWSpriteRole>(k);
        EXPECT_FALSE(KWElementChannelsView::roleTitle(role).isEmpty());
        const auto channel = it.channels().addChannelForRole(role);
        ASSERT_NE(channel, nullptr);
        const KWSpriteChannels bound(sprite->name(), sprite->channelArray().get());
        EXPECT_EQ(bound.channel(role), channel) << k;
    }
}

TEST(KWInspector, ChannelsAreRenamedInPlaceAndRemoved) {
    Inspecting it;
    const auto sprite = it.addSprite("Star");
    it.select({sprite});
    auto* const tree = it.inElement<QTreeWidget>("channels");
    std::shared_ptr<KWChannel> x;
    for (const auto& channel : sprite->channelArray()->channelEnumerator())
        if (channel->name() == "x")
            x = channel;
    it.channels().setCurrentChannel(x);
    ASSERT_EQ(it.channels().currentChannel(), x);
    tree->setFocus();
    QTest::keyClick(tree, Qt::Key_F2);
    auto* const editor = tree->viewport()->findChild<QLineEdit*>();
    ASSERT_NE(editor, nullptr);
    editor->setText(QStringLiteral("across"));
    QTest::keyClick(editor, Qt::Key_Return);
    Inspecting::turn();
    EXPECT_EQ(x->name(), "across");
    EXPECT_EQ(tree->currentItem()->text(0), QStringLiteral("across"));
    it.document.undo();
    Inspecting::turn();
    EXPECT_EQ(x->name(), "x");
    EXPECT_EQ(it.channels().currentChannel(), x);
    EXPECT_EQ(tree->currentItem()->text(0), QStringLiteral("x"));
    QTest::mouseClick(it.inElement<QToolButton>("removeChannel"), Qt::LeftButton);
    Inspecting::turn();
    EXPECT_EQ(sprite->channelArray()->channelCount(), 4U);
    EXPECT_EQ(it.document.undoName(), QStringLiteral("Remove Channel"));
    it.document.undo();
    EXPECT_EQ(sprite->channelArray()->channelCount(), 5U);
}

TEST(KWInspector, TheChannelsOutlineFollowsKeysAndReplacements) {
    Inspecting it;
    const auto sprite = it.document.addElement(QStringLiteral("S"));
    it.select({sprite});
    const auto channel = std::dynamic_pointer_cast<KWKeyFramedChannel>(
        it.channels().addChannel(QStringLiteral("a"), {}, KWUnitTypeNone));
    auto* const tree = it.inElement<QTreeWidget>("channels");
    EXPECT_EQ(tree->topLevelItem(0)->text(1), QStringLiteral("1 key"));
    channel->setValueForKeyframe(3, KWTime(4));
    Inspecting::turn();
    EXPECT_EQ(tree->topLevelItem(0)->text(1), QStringLiteral("2 keys"));
    sprite->replaceChannelWith(channel, std::make_shared<KWConstantChannel>("b"));
    Inspecting::turn();
    EXPECT_EQ(tree->topLevelItem(0)->text(1), QStringLiteral("Constant"));
}

// --- The transport.

TEST(KWInspector, RateAndRangeAreTheStagesAndTheTransports) {
    Inspecting it;
    EXPECT_EQ(it.transport.lastFrame(), 250);
    it.type(it.inTransport<KWValueField>("rate"), "50");
    EXPECT_EQ(it.document.stage().rate, 50);
    EXPECT_EQ(it.transport.framesPerSecond(), 50);
    EXPECT_EQ(it.transport.lastFrame(), 500);
    EXPECT_EQ(it.document.undoName(), QStringLiteral("Change Frame Rate"));
    it.type(it.inTransport<KWTimeField>("from"), "1");
    it.type(it.inTransport<KWTimeField>("to"), "100f");
    EXPECT_EQ(it.transport.firstFrame(), 50);
    EXPECT_EQ(it.transport.lastFrame(), 100);
    EXPECT_EQ(it.document.stage().to, 2);
    EXPECT_EQ(it.inTransport<QLabel>("length")->text(), QStringLiteral("1.02 s, 51 frames"));
    it.document.undo();
    it.document.undo();
    it.document.undo();
    EXPECT_EQ(it.transport.framesPerSecond(), 25);
    EXPECT_EQ(it.transport.lastFrame(), 250);
    it.type(it.inTransport<KWTimeField>("from"), "20");
    EXPECT_EQ(it.document.stage().to, 20);
    auto* const loop = it.inTransport<QCheckBox>("loop");
    EXPECT_TRUE(loop->isChecked());
    it.transport.setLooping(false);
    EXPECT_FALSE(loop->isChecked());
}

TEST(KWInspector, TheTransportFollowsAnotherDocumentsStage) {
    Inspecting it;
    ASSERT_TRUE(it.document.open(samplePath("bouncing-ball.kwdoc")));
    EXPECT_EQ(it.transport.lastFrame(), it.document.stage().lastFrame());
    // What the transport was told elsewhere stays through other edits.
    it.transport.setFramesPerSecond(12);
    it.document.addElement(QStringLiteral("Another"));
    EXPECT_EQ(it.transport.framesPerSecond(), 12);
}

// --- The panel.

TEST(KWInspector, ThePanelKeepsWhatIsCollapsed) {
    Inspecting it;
    it.panel.stack().toggleViewAtIndex(1);
    it.panel.stack().toggleViewAtIndex(3);
    const QByteArray state = it.panel.saveState();
    Inspecting other;
    QSignalSpy told(&other.panel, &KWInspectorPanel::stateChanged);
    EXPECT_TRUE(other.panel.restoreState(state));
    EXPECT_EQ(told.count(), 2);
    for (std::size_t k = 0; k < 4; ++k)
        EXPECT_EQ(other.panel.stack().isCollapsedAtIndex(k), k % 2 == 1);
    EXPECT_FALSE(other.panel.restoreState({}));
    EXPECT_FALSE(other.panel.restoreState("no state at all, but long enough to be one"));
    EXPECT_FALSE(other.panel.restoreState(state.left(state.size() - 3)));
    EXPECT_TRUE(other.panel.stack().isCollapsedAtIndex(1));
}

TEST(KWInspector, TheStackGrowsAndShrinksWithItsInspectors) {
    Inspecting it;
    const int before = it.panel.stack().height();
    it.select({it.addSprite("Star")});
    const int with = it.panel.elementInspector().height();
    EXPECT_EQ(with, it.panel.elementInspector().sizeHint().height());
    it.select({});
    EXPECT_LT(it.panel.elementInspector().height(), with);
    EXPECT_EQ(it.panel.stack().height(), before);
}

TEST(KWInspector, NothingIsCutOffFromTwoHundredAndFiftyPointsOn) {
    Inspecting it;
    it.choose(it.inDocument<QComboBox>("backdrop"), 2);
    for (const int width : {250, 260, 300}) {
        it.panel.resize(width, 1200);
        for (const char* shape : {"ball", "star"}) {
            it.select({it.addSprite("A sprite with quite a long name", shape)});
            for (QWidget* const each : it.panel.findChildren<QWidget*>()) {
                if (!each->isVisible() || each->window() != &it.panel ||
                    qobject_cast<QScrollBar*>(each) ||
                    each->parentWidget()->objectName() == QStringLiteral("qt_scrollarea_viewport"))
                    continue;
                EXPECT_GE(each->width(), each->minimumSizeHint().width())
                    << each->metaObject()->className() << " " << each->objectName().toStdString()
                    << " at " << width;
                const QPoint right = each->mapTo(&it.panel, QPoint(each->width(), 0));
                EXPECT_LE(right.x(), width) << each->objectName().toStdString();
            }
        }
    }
}

TEST(KWInspector, EveryFieldHasANameAndATip) {
    Inspecting it;
    it.select({it.addSprite("Star")});
    int count = 0;
    for (QWidget* const each : it.panel.stack().findChildren<QWidget*>()) {
        const bool isField = qobject_cast<QLineEdit*>(each) || qobject_cast<QComboBox*>(each) ||
                             qobject_cast<QAbstractSpinBox*>(each) ||
                             qobject_cast<QAbstractButton*>(each) || qobject_cast<QSlider*>(each);
        if (!isField || qobject_cast<QAbstractSpinBox*>(each->parentWidget()))
            continue;
        ++count;
        EXPECT_FALSE(each->accessibleName().isEmpty() &&
                     (!qobject_cast<QAbstractButton*>(each) ||
                      qobject_cast<QAbstractButton*>(each)->text().isEmpty()))
            << each->objectName().toStdString();
        EXPECT_FALSE(each->toolTip().isEmpty()) << each->objectName().toStdString();
    }
    EXPECT_GT(count, 20);
}
