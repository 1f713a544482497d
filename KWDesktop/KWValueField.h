#pragma once

#include <KWFoundation/KWExport.h>
#include <KWFoundation/KWNotificationCenter.h>

#include <QLineEdit>

/// A line edit for the value of a channel: shows and reads it in the user's unit, and follows when
/// that becomes another one.
///
/// What is typed is taken with Return, or when the field is left, and only when it means a finite
/// value: otherwise the field shows its value again, and a tool tip that says why. Escape shows the
/// value again, too. A text that was not touched changes nothing, not even the digits of the value
/// that are not shown.
class KW_EXPORT KWValueField : public QLineEdit {
    Q_OBJECT
    Q_PROPERTY(float value READ value WRITE setValue NOTIFY valueChanged USER true)
    Q_PROPERTY(int unitType READ unitType WRITE setUnitType)

  public:
    /// 0, without a unit.
    explicit KWValueField(QWidget* parent = nullptr);

    /// In meters, radians, or without a unit.
    float value() const { return _value; }
    /// Shows it also when it is the same, in place of what is being typed.
    void setValue(float value);

    /// A channel's unit type.
    int unitType() const { return _unitType; }
    void setUnitType(int unitType);

    /// Takes what was typed, if it can be taken. Whether the value is another one than before.
    bool commit();

  Q_SIGNALS:
    /// Set, by whomever, to another value.
    void valueChanged(float value);
    /// Typed by the user, and another than before.
    void valueEdited(float value);

  protected:
    void keyPressEvent(QKeyEvent* event) override;

  private:
    void showValue();
    void showFault(const QString& fault);

    float _value = 0;
    int _unitType = 32;
    KWNotificationToken _units;
};
