#include <apps/kwedit/window/KWKeyEntryField.h>

#include <QKeyEvent>
#include <QStyle>
#include <QStyleOptionFrame>
#include <QToolTip>

KWKeyEntryField::KWKeyEntryField(const QString& widest, QWidget* parent)
    : QLineEdit(parent), _widest(widest) {
    setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Fixed);
    connect(this, &QLineEdit::editingFinished, this, &KWKeyEntryField::commit);
}

void KWKeyEntryField::showText(const QString& text) {
    setPlaceholderText({});
    _shown = text;
    showAgain();
}

void KWKeyEntryField::showMixed() {
    setPlaceholderText(tr("mixed"));
    _shown.clear();
    showAgain();
}

void KWKeyEntryField::showAgain() {
    // What is selected in it stays selected where it can.
    if (text() != _shown)
        setText(_shown);
    setModified(false);
}

void KWKeyEntryField::refuse(const QString& sentence) {
    showAgain();
    // Once the focus, whose moves hide tool tips, is where it goes.
    const QPoint where = mapToGlobal(QPoint(0, height()));
    QWidget* const window = this->window();
    QMetaObject::invokeMethod(
        window, [=] { QToolTip::showText(where, sentence, window); }, Qt::QueuedConnection);
}

void KWKeyEntryField::commit() {
    if (!isModified())
        return;
    const QString typed = text().trimmed();
    setModified(false);
    if (typed.isEmpty() || typed == _shown)
        return showAgain();
    Q_EMIT entered(typed);
}

void KWKeyEntryField::keyPressEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_Escape && isModified()) {
        showAgain();
        selectAll();
        event->accept();
        return;
    }
    QLineEdit::keyPressEvent(event);
}

QSize KWKeyEntryField::sizeHint() const {
    QStyleOptionFrame option;
    initStyleOption(&option);
    const QMargins margins = textMargins() + contentsMargins();
    // The cursor, and what the style leaves free on each side.
    const QSize text(fontMetrics().horizontalAdvance(_widest) + 10, QLineEdit::sizeHint().height());
    const QSize framed = style()->sizeFromContents(QStyle::CT_LineEdit, &option, text, this);
    return {framed.width() + margins.left() + margins.right(), text.height()};
}

QSize KWKeyEntryField::minimumSizeHint() const {
    const QSize hint = sizeHint();
    return {hint.width() * 2 / 3, hint.height()};
}
