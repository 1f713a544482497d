#pragma once

#include <KWBase/KWKeyCommands.h>
#include <KWFoundation/KWNotificationCenter.h>

#include <QPointer>
#include <QWidget>
#include <vector>

class KWKeyEntryField;
class QGridLayout;
class QLabel;
class QToolButton;

/// The numbers of the selected keys, to be read and typed: how many keys there are, their time with
/// its frame, their value in the user's unit, and the parts of their shape. What differs from key
/// to key is left empty. Without selected keys it is disabled.
///
/// What is typed goes through KWKeyCommands, a step of undo each:
///
/// - A time is seconds, or frames with an "f" behind it. Of several keys the first one comes to be
///   there, and the others keep their distance from it.
/// - A value may have a unit's name behind it. All the keys get it.
/// - With "+=" or "-=" before it, a time or value moves each key by so much.
///
/// It follows the selection, edits by whomever and the user's units in the next pass of the event
/// loop. What is being typed stays until other keys are selected.
class KWKeyEntryPanel : public QWidget {
    Q_OBJECT

  public:
    /// The commands are not owned; without them the panel is empty.
    explicit KWKeyEntryPanel(KWKeyCommands& commands, QWidget* parent = nullptr);
    ~KWKeyEntryPanel() override;

    /// What frames are counted in; 25 at first. What is not positive and finite is not taken.
    void setFramesPerSecond(double rate);
    /// A strip, as at first, or a form. A strip that is narrow has no fields for shapes.
    void setOrientation(Qt::Orientation orientation);

  protected:
    void resizeEvent(QResizeEvent* event) override;

  private:
    void addFields();
    void addField(KWKeyEntryField* field, const QString& name, const QString& toolTip);
    void fill();
    void fillFields(const KWKeyFramedChannel* channel, const std::vector<KWTime>& keys);
    QString frameText(const std::vector<KWTime>& keys) const;
    QString enterTime(const QString& text);
    QString enterValue(const QString& text);
    QString enterShape(KWKeyShape part, const QString& text);

    QPointer<KWKeyCommands> _commands;
    double _rate = 25;
    /// The keys that the fields are for.
    std::vector<KWTime> _keys;
    const KWChannel* _channel = nullptr; ///< only to be compared
    KWNotificationToken _units;

    QGridLayout* _grid;
    bool _isStrip = true;
    QLabel* _count;
    QLabel* _frame;
    KWKeyEntryField* _time;
    KWKeyEntryField* _value;
    KWKeyEntryField* _shapes[3];
    QToolButton* _reset;
    /// In the order of the fields: time, value, shapes.
    std::vector<QLabel*> _labels;
};
