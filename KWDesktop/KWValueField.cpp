#include <KWBase/KWUnitController.h>
#include <KWDesktop/KWValueField.h>
#include <KWDesktop/KWValueText.h>

#include <QKeyEvent>
#include <QToolTip>
#include <bit>
#include <cstdint>

KWValueField::KWValueField(QWidget* parent) : QLineEdit(parent) {
    setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    showValue();
    connect(this, &QLineEdit::editingFinished, this, &KWValueField::commit);
    _units = KWNotificationCenter::defaultCenter().addObserver(
        KWUnitControllerDefaultUnitDidChangeNotification, &KWUnitController::sharedUnitController(),
        [this](const KWNotification&) {
            if (!isModified())
                showValue();
        });
}

void KWValueField::setValue(float value) {
    const bool isOther =
        std::bit_cast<std::uint32_t>(value) != std::bit_cast<std::uint32_t>(_value);
    _value = value;
    showValue();
    if (isOther)
        Q_EMIT valueChanged(value);
}

void KWValueField::setUnitType(int unitType) {
    _unitType = unitType;
    showValue();
}

void KWValueField::showValue() {
    setText(QString::fromStdString(KWTextFromValue(_value, _unitType)));
    setModified(false);
}

bool KWValueField::commit() {
    if (!isModified())
        return false;
    const std::string typed = text().toStdString();
    if (typed == KWTextFromValue(_value, _unitType)) {
        setModified(false);
        return false;
    }
    const auto value = KWValueFromText(typed, _unitType);
    if (!value) {
        showValue();
        showFault(QString::fromStdString(KWValueTextFault(typed, _unitType)));
        return false;
    }
    const bool isOther =
        std::bit_cast<std::uint32_t>(*value) != std::bit_cast<std::uint32_t>(_value);
    setValue(*value);
    if (isOther)
        Q_EMIT valueEdited(*value);
    return isOther;
}

/// Once the focus, whose moves hide tool tips, is where it goes, and whether or not the field is
/// still there by then.
void KWValueField::showFault(const QString& fault) {
    const QPoint where = mapToGlobal(QPoint(0, height()));
    QWidget* const window = this->window();
    QMetaObject::invokeMethod(
        window, [=] { QToolTip::showText(where, fault, window); }, Qt::QueuedConnection);
}

void KWValueField::keyPressEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_Escape && isModified()) {
        showValue();
        selectAll();
        event->accept();
        return;
    }
    QLineEdit::keyPressEvent(event);
}
