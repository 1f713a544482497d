#pragma once

#include <KWFoundation/KWNotificationCenter.h>

#include <apps/kwedit/window/KWInspector.h>

/// The units in which lengths and angles are shown and typed everywhere: the default ones of the
/// shared unit controller. What is stored stays as it is.
class KWUnitsInspector : public KWInspector {
    Q_OBJECT

  public:
    explicit KWUnitsInspector(QWidget* parent = nullptr);

  Q_SIGNALS:
    /// Chosen by the user, for who keeps it for the next time.
    void unitsEdited(int lengthUnit, int angleUnit);

  private:
    void follow();
    void edited();

    QComboBox* _length;
    QComboBox* _angle;
    KWNotificationToken _changes;
};
