#include <KWBase/KWAlgebricChannel.h>
#include <KWBase/KWChannelArray.h>
#include <KWBase/KWConstantChannel.h>
#include <KWBase/KWKeyFramedChannel.h>
#include <KWBase/KWUnitController.h>

#include <apps/kwedit/KWSpriteChannels.h>
#include <apps/kwedit/window/KWChannelDialog.h>

#include <QComboBox>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QLineEdit>
#include <QPushButton>

namespace {

enum Kind { keyFramed, constant, algebric };

/// The unit that the channel of a role is measured in.
std::int32_t unitOf(KWSpriteRole role) {
    switch (role) {
    case KWSpriteRole::x:
    case KWSpriteRole::y:
    case KWSpriteRole::radius:
    case KWSpriteRole::width:
    case KWSpriteRole::height:
        return KWUnitTypeLength;
    case KWSpriteRole::rotation:
    case KWSpriteRole::shear:
    case KWSpriteRole::pan:
    case KWSpriteRole::tilt:
        return KWUnitTypeAngle;
    default:
        return KWUnitTypeNone;
    }
}

bool isNeutralOne(KWSpriteRole role) {
    return role == KWSpriteRole::scale || role == KWSpriteRole::scaleX ||
           role == KWSpriteRole::scaleY || role == KWSpriteRole::squash ||
           role == KWSpriteRole::opacity || role == KWSpriteRole::zoom;
}

std::optional<KWSpriteRole> roleNamed(const QString& name) {
    for (int index = 0; index < static_cast<int>(KWSpriteRole::count); ++index) {
        const auto role = static_cast<KWSpriteRole>(index);
        if (name == QString::fromStdString(KWSpriteChannels::usualPlace(role).first))
            return role;
    }
    return std::nullopt;
}

} // namespace

KWChannelDialog::KWChannelDialog(const KWElement& element, QWidget* parent) : QDialog(parent) {
    setWindowTitle(tr("New Channel"));
    _name = new QComboBox;
    _name->setEditable(true);
    _name->setAccessibleName(tr("Name"));
    for (int index = 0; index < static_cast<int>(KWSpriteRole::count); ++index) {
        const auto place = KWSpriteChannels::usualPlace(static_cast<KWSpriteRole>(index));
        _name->addItem(QString::fromStdString(place.first));
    }
    _name->setCurrentText(tr("channel"));
    _group = new QComboBox;
    _group->setEditable(true);
    _group->setAccessibleName(tr("Group"));
    _group->addItem(QString());
    if (const auto array = element.channelArray(); array && array->channelGroups())
        for (const auto& group : *array->channelGroups())
            if (group)
                _group->addItem(QString::fromStdString(group->name()));
    _kind = new QComboBox;
    _kind->addItems({tr("Keyframed"), tr("Constant"), tr("Expression")});
    _kind->setAccessibleName(tr("Kind"));
    _unit = new QComboBox;
    _unit->addItem(tr("None"), KWUnitTypeNone);
    _unit->addItem(tr("Length"), KWUnitTypeLength);
    _unit->addItem(tr("Angle"), KWUnitTypeAngle);
    _unit->setAccessibleName(tr("Unit"));
    auto* const buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel);
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    connect(_name, &QComboBox::currentTextChanged, this, &KWChannelDialog::nameChosen);
    connect(_name, &QComboBox::currentTextChanged, buttons, [buttons](const QString& name) {
        buttons->button(QDialogButtonBox::Ok)->setEnabled(!name.trimmed().isEmpty());
    });
    auto* const form = new QFormLayout(this);
    form->addRow(tr("&Name:"), _name);
    form->addRow(tr("&Group:"), _group);
    form->addRow(tr("&Kind:"), _kind);
    form->addRow(tr("&Unit:"), _unit);
    form->addRow(buttons);
    _name->lineEdit()->selectAll();
}

void KWChannelDialog::nameChosen(const QString& name) {
    if (const auto role = roleNamed(name)) {
        _unit->setCurrentIndex(_unit->findData(unitOf(*role)));
        _group->setCurrentText(QString::fromStdString(KWSpriteChannels::usualPlace(*role).second));
    }
}

QString KWChannelDialog::group() const {
    return _group->currentText().trimmed();
}

std::shared_ptr<KWChannel> KWChannelDialog::makeChannel() const {
    const QString text = _name->currentText().trimmed();
    const std::string name = text.toStdString();
    const auto role = roleNamed(text);
    const float initial = role && isNeutralOne(*role) ? 1 : 0;
    std::shared_ptr<KWChannel> channel;
    switch (_kind->currentIndex()) {
    case constant:
        channel = channelWithNameInitialValueColor<KWConstantChannel>(name, initial, 0);
        break;
    case algebric:
        channel = channelWithNameInitialValueColor<KWAlgebricChannel>(name, initial, 0);
        break;
    default:
        channel = channelWithNameInitialValueColor<KWKeyFramedChannel>(name, initial, 0);
    }
    channel->setUnitType(_unit->currentData().toInt());
    return channel;
}

std::shared_ptr<KWChannel> KWChannelDialog::addChannel(KWEditDocument& document,
                                                       const std::shared_ptr<KWElement>& element,
                                                       QWidget* parent) {
    KWChannelDialog dialog(*element, parent);
    if (dialog.exec() != QDialog::Accepted)
        return nullptr;
    const auto channel = dialog.makeChannel();
    // A colour of its own, as far as there are any.
    const auto array = element->channelArray();
    channel->setChannelColorIndex(
        array ? static_cast<std::int32_t>(array->channelEnumerator().size()) + 2 : 2);
    return document.addChannel(element, channel, dialog.group()) ? channel : nullptr;
}
