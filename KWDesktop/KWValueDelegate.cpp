#include <KWBase/KWUnitController.h>
#include <KWDesktop/KWOutlineModel.h>
#include <KWDesktop/KWValueDelegate.h>
#include <KWDesktop/KWValueField.h>
#include <KWDesktop/KWValueText.h>

#include <QAbstractItemView>

namespace {

constexpr const char* isFilled = "kwIsFilled";
constexpr const char* isEdited = "kwIsEdited";

bool isNumber(const QVariant& value) {
    const int type = value.metaType().id();
    return type == QMetaType::Float || type == QMetaType::Double || type == QMetaType::Int;
}

} // namespace

KWValueDelegate::KWValueDelegate(QObject* parent) : KWOutlineDelegate(parent) {
    _units = KWNotificationCenter::defaultCenter().addObserver(
        KWUnitControllerDefaultUnitDidChangeNotification, &KWUnitController::sharedUnitController(),
        [this](const KWNotification&) {
            if (auto* const view = qobject_cast<QAbstractItemView*>(this->parent()))
                view->viewport()->update();
        });
}

int KWValueDelegate::unitTypeOf(const QModelIndex& index) const {
    const QVariant answered = index.data(KWOutlineModel::UnitTypeRole);
    return answered.isValid() ? answered.toInt() : _unitType;
}

QWidget* KWValueDelegate::createEditor(QWidget* parent, const QStyleOptionViewItem& option,
                                       const QModelIndex& index) const {
    if (!isNumber(index.data(Qt::EditRole)))
        return KWOutlineDelegate::createEditor(parent, option, index);
    auto* const field = new KWValueField(parent);
    field->setFrame(false);
    field->setAutoFillBackground(true);
    field->setUnitType(unitTypeOf(index));
    if (const QVariant font = index.data(Qt::FontRole); font.canConvert<QFont>())
        field->setFont(font.value<QFont>());
    connect(field, &KWValueField::valueEdited, field,
            [field] { field->setProperty(isEdited, true); });
    return field;
}

void KWValueDelegate::setEditorData(QWidget* editor, const QModelIndex& index) const {
    auto* const field = qobject_cast<KWValueField*>(editor);
    if (!field) {
        KWOutlineDelegate::setEditorData(editor, index);
    } else if (!field->property(isFilled).toBool()) {
        field->setValue(index.data(Qt::EditRole).toFloat());
        field->setProperty(isFilled, true);
    }
}

void KWValueDelegate::setModelData(QWidget* editor, QAbstractItemModel* model,
                                   const QModelIndex& index) const {
    auto* const field = qobject_cast<KWValueField*>(editor);
    if (!field)
        return KWOutlineDelegate::setModelData(editor, model, index);
    field->commit();
    if (field->property(isEdited).toBool()) {
        field->setProperty(isEdited, false);
        model->setData(index, field->value(), Qt::EditRole);
    }
}

void KWValueDelegate::initStyleOption(QStyleOptionViewItem* option,
                                      const QModelIndex& index) const {
    KWOutlineDelegate::initStyleOption(option, index);
    if (const QVariant value = index.data(Qt::EditRole); isNumber(value)) {
        option->features |= QStyleOptionViewItem::HasDisplay;
        option->text = QString::fromStdString(KWTextFromValue(value.toFloat(), unitTypeOf(index)));
    }
}
