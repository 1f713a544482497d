#pragma once

#include "GestureTestSupport.h"

#include <KWBase/KWKeyCommands.h>
#include <KWBase/KWUnitController.h>
#include <KWDesktop/KWChannelUndoRecorder.h>

#include <QClipboard>
#include <QGuiApplication>
#include <QStringList>
#include <string>
#include <vector>

/// Four keys, of which none is selected, steps of a quarter of a second and of half a value, and a
/// recorder of undo.
class KWKeyCommandsTest : public GestureTest {
  protected:
    KWKeyCommandsTest() {
        commands.setTimeStep(0.25);
        commands.setValueStep(0.5);
        setKeys({{1, 0}, {2, 1}, {4, 2}, {8, -1}});
        delegate.count = 0;
        QObject::connect(&commands, &KWKeyCommands::failed,
                         [this](const QString& sentence) { failures << sentence; });
    }

    void select(const std::vector<float>& times) {
        std::vector<KWTime> keys;
        for (const float time : times)
            keys.emplace_back(time);
        view->setSelectedKeys(keys);
    }
    std::string contents() const { return contentsOf(*channel); }
    std::vector<float> values() const {
        return channel->valuesForKeyframes(channel->allKeyframes());
    }
    KWData recordAt(float time) const {
        return channel->hermiteValueForKeyframe(KWTime(time)).value_or(KWData());
    }
    /// Runs a command that is to be one step of undo, and goes back and forth over it.
    template <class Command>
    void expectStep(const std::string& name, const Command& command) {
        manager->removeAllActions();
        const std::string before = contents();
        const std::vector<float> selectedBefore = selection();
        EXPECT_TRUE(command());
        EXPECT_TRUE(commands.fault().isEmpty());
        const std::string after = contents();
        const std::vector<float> selectedAfter = selection();
        EXPECT_NE(before, after);
        EXPECT_EQ(manager->undoActionName(), name);
        EXPECT_EQ(manager->groupingLevel(), 0);
        EXPECT_FALSE(channel->isManipulating());
        for (int round = 0; round < 2; ++round) {
            manager->undo();
            EXPECT_FALSE(manager->canUndo());
            EXPECT_EQ(contents(), before);
            EXPECT_EQ(selection(), selectedBefore);
            manager->redo();
            EXPECT_FALSE(manager->canRedo());
            EXPECT_EQ(contents(), after);
            EXPECT_EQ(selection(), selectedAfter);
        }
    }
    template <class Command>
    void expectRefused(const Command& command) {
        manager->removeAllActions();
        failures.clear();
        const std::string before = contents();
        const std::vector<float> selected = selection();
        EXPECT_FALSE(command());
        EXPECT_FALSE(commands.fault().isEmpty());
        EXPECT_TRUE(commands.fault().endsWith(QLatin1Char('.')));
        EXPECT_EQ(failures, QStringList{commands.fault()});
        EXPECT_EQ(contents(), before);
        EXPECT_EQ(selection(), selected);
        EXPECT_FALSE(manager->canUndo());
    }
    void setClipboardText(const char* text) {
        QGuiApplication::clipboard()->setText(QString::fromUtf8(text));
    }
    std::string clipboardText() const { return QGuiApplication::clipboard()->text().toStdString(); }
    void setUnit(std::int32_t type) { channel->setUnitType(type); }

    KWKeyCommands commands{*view};
    KWChannelUndoRecorder recorder{commands};
    QStringList failures;
};

/// Makes the units what they were.
class Centimeters {
  public:
    Centimeters() { units().setDefaultLengthUnit(KWLengthUnitCentimeter); }
    ~Centimeters() { units().setDefaultLengthUnit(KWLengthUnitMeter); }
    Centimeters(const Centimeters&) = delete;
    Centimeters& operator=(const Centimeters&) = delete;

  private:
    static KWUnitController& units() { return KWUnitController::sharedUnitController(); }
};
