#include <KWDesktop/KWValueField.h>

#include <apps/kwedit/window/KWInspector.h>

#include <QColorDialog>
#include <QComboBox>
#include <QEvent>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QPainter>
#include <QSpinBox>
#include <QStyleOptionFrame>
#include <QStyleOptionToolButton>
#include <algorithm>

// --- Fields.

KWElidedLabel::KWElidedLabel(QWidget* parent) : QLabel(parent) {
    setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
    setTextInteractionFlags(Qt::NoTextInteraction);
}

void KWElidedLabel::setFullText(const QString& text) {
    _fullText = text;
    setText(text);
    setToolTip(text);
    setAccessibleDescription(text);
    update();
}

QSize KWElidedLabel::minimumSizeHint() const {
    return {fontMetrics().horizontalAdvance(QLatin1Char('M')) * 3,
            QLabel::minimumSizeHint().height()};
}

void KWElidedLabel::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setPen(
        palette().color(isEnabled() ? QPalette::Active : QPalette::Disabled, QPalette::WindowText));
    painter.drawText(contentsRect(), static_cast<int>(Qt::AlignVCenter | Qt::AlignLeft),
                     fontMetrics().elidedText(_fullText, Qt::ElideMiddle, contentsRect().width()));
}

KWColorWell::KWColorWell(QWidget* parent) : QToolButton(parent) {
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    setFocusPolicy(Qt::StrongFocus);
    connect(this, &QToolButton::clicked, this, &KWColorWell::choose);
}

void KWColorWell::setColor(const QColor& color) {
    _color = color;
    setAccessibleDescription(color.isValid() ? color.name(QColor::HexArgb) : QString());
    update();
}

QSize KWColorWell::sizeHint() const {
    return {36, fontMetrics().height() + 8};
}

void KWColorWell::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const QPalette::ColorGroup group = isEnabled() ? QPalette::Active : QPalette::Disabled;
    const QRectF frame = QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5);
    QColor line = palette().color(group, QPalette::WindowText);
    line.setAlpha(90);
    painter.setPen(QPen(hasFocus() ? palette().color(QPalette::Highlight) : line, 1));
    painter.setBrush(palette().color(group, QPalette::Base));
    painter.drawRoundedRect(frame, 3, 3);
    if (!_color.isValid() || !isEnabled())
        return;
    const QRectF inside = frame.adjusted(2.5, 2.5, -2.5, -2.5);
    painter.setPen(Qt::NoPen);
    // The right half shows how transparent it is.
    painter.fillRect(inside, Qt::white);
    if (_color.alpha() < 255) {
        const double half = inside.height() / 2;
        for (int k = 0; k * half < inside.width(); ++k)
            painter.fillRect(
                QRectF(inside.left() + k * half, inside.top() + (k % 2) * half, half, half) &
                    inside,
                QColor(190, 190, 190));
    }
    painter.fillRect(inside, _color);
    QColor opaque = _color;
    opaque.setAlpha(255);
    painter.fillRect(QRectF(inside.topLeft(), QSizeF(inside.width() / 2, inside.height())), opaque);
}

void KWColorWell::choose() {
    auto* const dialog = new QColorDialog(_color.isValid() ? _color : QColor(Qt::white), this);
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->setOption(QColorDialog::ShowAlphaChannel);
    dialog->setWindowTitle(accessibleName());
    connect(dialog, &QColorDialog::colorSelected, this, [this](const QColor& color) {
        if (!color.isValid() || color == _color)
            return;
        setColor(color);
        Q_EMIT colorEdited(color);
    });
    dialog->open();
}

// --- The form.

KWInspector::KWInspector(QWidget* parent) : QWidget(parent), _form(new QFormLayout(this)) {
    _form->setContentsMargins(10, 4, 10, 10);
    _form->setHorizontalSpacing(8);
    _form->setVerticalSpacing(5);
    _form->setLabelAlignment(Qt::AlignRight | Qt::AlignVCenter);
    _form->setFormAlignment(Qt::AlignLeft | Qt::AlignTop);
    _form->setFieldGrowthPolicy(QFormLayout::AllNonFixedFieldsGrow);
    _form->setRowWrapPolicy(QFormLayout::DontWrapRows);
}

QWidget* KWInspector::addRow(const QString& name, std::initializer_list<QWidget*> fields) {
    auto* const label = new QLabel(name);
    // The same in all inspectors, unless one needs more.
    label->setMinimumWidth(fontMetrics().horizontalAdvance(QStringLiteral("Background")));
    label->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    auto* const row = new QWidget;
    auto* const line = new QHBoxLayout(row);
    line->setContentsMargins(0, 0, 0, 0);
    line->setSpacing(4);
    for (QWidget* const field : fields) {
        line->addWidget(field,
                        field->sizePolicy().horizontalPolicy() == QSizePolicy::Fixed ? 0 : 1);
        if (field->accessibleName().isEmpty() && !qobject_cast<QLabel*>(field))
            field->setAccessibleName(name);
    }
    label->setBuddy(*fields.begin());
    _form->addRow(label, row);
    return row;
}

void KWInspector::addWide(QWidget* widget) {
    _form->addRow(widget);
}

void KWInspector::setRowVisible(QWidget* row, bool isVisible) {
    row->setVisible(isVisible);
    if (QWidget* const label = _form->labelForField(row))
        label->setVisible(isVisible);
}

KWValueField* KWInspector::valueField(const QString& name, const QString& tip, int unitType) {
    auto* const field = new KWValueField;
    field->setUnitType(unitType);
    field->setAccessibleName(name);
    field->setToolTip(tip);
    field->setMinimumWidth(44);
    field->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Fixed);
    return field;
}

QSpinBox* KWInspector::spinBox(const QString& name, const QString& tip, int least, int most) {
    auto* const box = new QSpinBox;
    box->setRange(least, most);
    box->setKeyboardTracking(false);
    box->setAccelerated(true);
    box->setAlignment(Qt::AlignRight);
    box->setAccessibleName(name);
    box->setToolTip(tip);
    box->setMinimumWidth(60);
    box->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Fixed);
    return box;
}

QComboBox* KWInspector::comboBox(const QString& tip) {
    auto* const box = new QComboBox;
    box->setToolTip(tip);
    box->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    box->setMinimumContentsLength(6);
    box->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Fixed);
    return box;
}

KWColorWell* KWInspector::colorWell(const QString& name, const QString& tip) {
    auto* const well = new KWColorWell;
    well->setAccessibleName(name);
    well->setToolTip(tip);
    return well;
}

/// In a stack of views, which takes each as high as it is.
bool KWInspector::event(QEvent* event) {
    const bool result = QWidget::event(event);
    const bool isFree = parentWidget() && !parentWidget()->layout();
    if (event->type() == QEvent::LayoutRequest && isFree && height() != sizeHint().height())
        resize(width(), sizeHint().height());
    return result;
}
