#include <apps/kwedit/window/KWTimeField.h>
#include <apps/kwedit/window/KWTimeText.h>

#include <QKeyEvent>
#include <QStyle>
#include <QStyleOptionFrame>
#include <cmath>

KWTimeField::KWTimeField(QWidget* parent) : QLineEdit(parent) {
    setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    connect(this, &QLineEdit::editingFinished, this, &KWTimeField::commit);
    showTime();
}

void KWTimeField::setSeconds(double seconds) {
    _seconds = seconds;
    if (!isModified())
        showTime();
}

void KWTimeField::setFramesPerSecond(double rate) {
    _rate = rate;
    if (!isModified())
        showTime();
}

void KWTimeField::setShowsFrames(bool showsFrames) {
    _showsFrames = showsFrames;
    showTime();
}

void KWTimeField::showTime() {
    const double frames = _seconds * _rate;
    const bool isWhole = std::abs(frames - std::round(frames)) < 1e-3;
    if (!_showsFrames)
        setText(kwTimeText(_seconds, 3));
    else if (isWhole)
        setText(QString::number(std::llround(frames)));
    else
        setText(QString::number(frames, 'f', 2));
    setModified(false);
}

void KWTimeField::commit() {
    if (!isModified())
        return;
    const auto seconds = kwSecondsFromText(text(), _rate, _showsFrames);
    setModified(false);
    if (!seconds)
        return showTime();
    _seconds = *seconds;
    showTime();
    Q_EMIT secondsEdited(*seconds);
}

void KWTimeField::keyPressEvent(QKeyEvent* event) {
    const int far = event->modifiers() & Qt::ShiftModifier ? 10 : 1;
    if (event->key() == Qt::Key_Escape && isModified()) {
        showTime();
        return selectAll();
    }
    if (event->key() == Qt::Key_Up || event->key() == Qt::Key_Down) {
        commit();
        Q_EMIT stepped(event->key() == Qt::Key_Up ? far : -far);
        return;
    }
    QLineEdit::keyPressEvent(event);
}

QSize KWTimeField::sizeFor(const QString& text) const {
    QStyleOptionFrame option;
    initStyleOption(&option);
    const QSize inside(fontMetrics().horizontalAdvance(text) + 6, fontMetrics().height());
    const QSize size = style()->sizeFromContents(QStyle::CT_LineEdit, &option, inside, this);
    return {size.width(), QLineEdit::sizeHint().height()};
}

/// As wide as an hour is.
QSize KWTimeField::sizeHint() const {
    return sizeFor(QStringLiteral("0:00:00.000"));
}

QSize KWTimeField::minimumSizeHint() const {
    return sizeFor(QStringLiteral("00.000"));
}
