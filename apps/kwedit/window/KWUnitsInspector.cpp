#include <KWBase/KWUnitController.h>

#include <apps/kwedit/window/KWUnitsInspector.h>

#include <QComboBox>

namespace {

KWUnitController& units() {
    return KWUnitController::sharedUnitController();
}

QString title(const std::string& longName, const std::string& shortName) {
    return QStringLiteral("%1 (%2)").arg(QString::fromStdString(longName),
                                         QString::fromStdString(shortName));
}

} // namespace

KWUnitsInspector::KWUnitsInspector(QWidget* parent)
    : KWInspector(parent), _length(comboBox(tr("The unit that lengths are shown in"))),
      _angle(comboBox(tr("The unit that angles are shown in"))) {
    setObjectName(QStringLiteral("unitsInspector"));
    _length->setObjectName(QStringLiteral("lengthUnit"));
    _angle->setObjectName(QStringLiteral("angleUnit"));
    for (const int unit :
         {KWLengthUnitMeter, KWLengthUnitDecimeter, KWLengthUnitCentimeter, KWLengthUnitMillimeter,
          KWLengthUnitInch, KWLengthUnitFoot, KWLengthUnitMile})
        _length->addItem(title(units().longLengthUnitRepresentation(unit),
                               units().shortLengthUnitRepresentation(unit)),
                         unit);
    for (const int unit : {KWAngleUnitRadian, KWAngleUnitDegree, KWAngleUnitGrade})
        _angle->addItem(title(units().longAngleUnitRepresentation(unit),
                              units().shortAngleUnitRepresentation(unit)),
                        unit);
    addRow(tr("Lengths"), {_length});
    addRow(tr("Angles"), {_angle});
    connect(_length, &QComboBox::activated, this, &KWUnitsInspector::edited);
    connect(_angle, &QComboBox::activated, this, &KWUnitsInspector::edited);
    _changes = KWNotificationCenter::defaultCenter().addObserver(
        KWUnitControllerDefaultUnitDidChangeNotification, &units(),
        [this](const KWNotification&) { follow(); });
    follow();
}

void KWUnitsInspector::follow() {
    _length->setCurrentIndex(_length->findData(units().defaultLengthUnit()));
    _angle->setCurrentIndex(_angle->findData(units().defaultAngleUnit()));
}

void KWUnitsInspector::edited() {
    const int length = _length->currentData().toInt();
    const int angle = _angle->currentData().toInt();
    units().setDefaultLengthUnit(length);
    units().setDefaultAngleUnit(angle);
    Q_EMIT unitsEdited(length, angle);
}
