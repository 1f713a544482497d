#include <KWDesktop/KWValueField.h>

#include <apps/kwedit/window/KWEditIcons.h>
#include <apps/kwedit/window/KWTimeField.h>
#include <apps/kwedit/window/KWTransportBar.h>
#include <apps/kwedit/window/KWTransportRuler.h>

#include <QEvent>
#include <QHBoxLayout>
#include <QLabel>
#include <QSignalBlocker>
#include <QToolButton>
#include <algorithm>

namespace {

// Points of width from which there is room.
constexpr int widthForMeasured = 720;
constexpr int widthForRate = 520;

void setName(QWidget& widget, const QString& name, const QString& tip) {
    widget.setAccessibleName(name);
    widget.setToolTip(tip);
}

} // namespace

KWTransportBar::KWTransportBar(KWEditTransport& transport, QWidget* parent)
    : QWidget(parent), _transport(&transport) {
    auto* const row = new QHBoxLayout(this);
    row->setContentsMargins(6, 4, 6, 4);
    row->setSpacing(2);
    row->setSizeConstraint(QLayout::SetNoConstraint);
    makeButtons();

    row->addSpacing(6);
    _time = new KWTimeField;
    _time->setObjectName(QStringLiteral("time"));
    setName(*_time, tr("Time"),
            tr("The current time. Type seconds, minutes:seconds, or frames with an f"));
    row->addWidget(_time);
    _unit = new QToolButton;
    _unit->setObjectName(QStringLiteral("unit"));
    _unit->setAutoRaise(true);
    _unit->setFocusPolicy(Qt::TabFocus);
    connect(_unit, &QToolButton::clicked, this, [this] { setShowsFrames(!showsFrames()); });
    row->addWidget(_unit);

    row->addSpacing(4);
    _ruler = new KWTransportRuler(transport);
    _ruler->setObjectName(QStringLiteral("ruler"));
    row->addWidget(_ruler, 1);
    row->addSpacing(6);

    _rateBox = new QWidget;
    auto* const rateRow = new QHBoxLayout(_rateBox);
    rateRow->setContentsMargins(0, 0, 0, 0);
    rateRow->setSpacing(4);
    _rate = new KWValueField;
    _rate->setObjectName(QStringLiteral("rate"));
    setName(*_rate, tr("Frame rate"), tr("Frames a second"));
    _rate->setFixedWidth(_rate->fontMetrics().horizontalAdvance(QStringLiteral("000.000")) + 14);
    rateRow->addWidget(_rate);
    rateRow->addWidget(new QLabel(tr("fps")));
    row->addWidget(_rateBox);
    row->addSpacing(8);
    _measured = new QLabel;
    _measured->setObjectName(QStringLiteral("measured"));
    setName(*_measured, tr("Measured rate"),
            tr("Frames shown a second, and frames left out since playing began"));
    // The widest text, so that nothing moves while it plays.
    _measured->setFixedWidth(
        _measured->fontMetrics().horizontalAdvance(tr("%1 fps, %2 dropped").arg(100.0).arg(999)));
    row->addWidget(_measured);

    connect(_time, &KWTimeField::secondsEdited, this,
            [this](double seconds) { _transport->scrub(static_cast<float>(seconds)); });
    connect(_time, &KWTimeField::stepped, this, [this](int frames) { _transport->step(frames); });
    connect(_rate, &KWValueField::valueEdited, this, [this](float rate) {
        _transport->setFramesPerSecond(static_cast<double>(rate));
        // What was typed may be out of bounds.
        follow();
        Q_EMIT framesPerSecondEdited(_transport->framesPerSecond());
    });
    connect(&transport, &KWEditTransport::timeChanged, this,
            [this](float time) { _time->setSeconds(static_cast<double>(time)); });
    connect(&transport, &KWEditTransport::playingChanged, this, &KWTransportBar::follow);
    connect(&transport, &KWEditTransport::loopingChanged, this, &KWTransportBar::follow);
    connect(&transport, &KWEditTransport::framesPerSecondChanged, this, &KWTransportBar::follow);
    _timer.setInterval(250);
    connect(&_timer, &QTimer::timeout, this, &KWTransportBar::showMeasured);
    setShowsFrames(false);
    follow();
}

QToolButton* KWTransportBar::addButton(const QString& name) {
    auto* const button = new QToolButton;
    button->setObjectName(name);
    button->setAutoRaise(true);
    button->setFocusPolicy(Qt::TabFocus);
    button->setIconSize({16, 16});
    layout()->addWidget(button);
    return button;
}

void KWTransportBar::makeButtons() {
    const auto add = [this](const char* name, KWEditIcon icon, const QString& text,
                            const QString& tip, auto slot) {
        QToolButton* const button = addButton(QLatin1String(name));
        button->setIcon(kwEditIcon(icon, button));
        setName(*button, text, tip);
        connect(button, &QToolButton::clicked, _transport.data(), slot);
        return button;
    };
    add("toBeginning", KWEditIcon::toBeginning, tr("To Beginning"), tr("Go to the first frame"),
        &KWEditTransport::gotoBeginning);
    add("stepBack", KWEditIcon::stepBack, tr("Step Back"), tr("Go one frame back"),
        &KWEditTransport::stepBack);
    _play = add("play", KWEditIcon::play, tr("Play"), tr("Play"), &KWEditTransport::togglePlaying);
    add("stepForward", KWEditIcon::stepForward, tr("Step Forward"), tr("Go one frame forward"),
        [transport = _transport] { transport->step(1); });
    add("toEnd", KWEditIcon::toEnd, tr("To End"), tr("Go to the last frame"),
        &KWEditTransport::gotoEnd);
    _loop = addButton(QStringLiteral("loop"));
    _loop->setIcon(kwEditIcon(KWEditIcon::loop, _loop));
    _loop->setCheckable(true);
    setName(*_loop, tr("Loop"), tr("Begin again at the end of the range"));
    connect(_loop, &QToolButton::toggled, _transport.data(), &KWEditTransport::setLooping);
}

void KWTransportBar::follow() {
    const bool isPlaying = _transport->isPlaying();
    _play->setIcon(kwEditIcon(isPlaying ? KWEditIcon::pause : KWEditIcon::play, _play));
    setName(*_play, isPlaying ? tr("Pause") : tr("Play"), isPlaying ? tr("Pause") : tr("Play"));
    const QSignalBlocker blocker(_loop);
    _loop->setChecked(_transport->isLooping());
    _rate->setValue(static_cast<float>(_transport->framesPerSecond()));
    _time->setFramesPerSecond(_transport->framesPerSecond());
    _time->setSeconds(static_cast<double>(_transport->currentTime()));
    if (isPlaying == _timer.isActive())
        return;
    if (isPlaying)
        _timer.start();
    else
        _timer.stop();
    showMeasured();
}

void KWTransportBar::showMeasured() {
    const double rate = _transport->measuredFramesPerSecond();
    if (!_transport->isPlaying() || rate <= 0)
        return _measured->clear();
    const QString shown = QString::number(rate, 'f', 1);
    const qint64 dropped = _transport->droppedFrameCount();
    _measured->setText(dropped > 0 ? tr("%1 fps, %2 dropped").arg(shown).arg(dropped)
                                   : tr("%1 fps").arg(shown));
}

bool KWTransportBar::showsFrames() const {
    return _ruler->showsFrames();
}

void KWTransportBar::setShowsFrames(bool showsFrames) {
    const bool isOther = showsFrames != _ruler->showsFrames();
    _ruler->setShowsFrames(showsFrames);
    _time->setShowsFrames(showsFrames);
    _unit->setText(showsFrames ? tr("f") : tr("s"));
    setName(*_unit, showsFrames ? tr("Frames") : tr("Seconds"),
            showsFrames ? tr("Times are frames; click for seconds")
                        : tr("Times are seconds; click for frames"));
    if (isOther)
        Q_EMIT showsFramesChanged(showsFrames);
}

void KWTransportBar::setKeyTimes(std::vector<float> times) {
    _ruler->setKeyTimes(std::move(times));
}

/// Without what goes where it is narrow.
QSize KWTransportBar::minimumSizeHint() const {
    QSize size = layout()->totalMinimumSize();
    for (const QWidget* const each : {_rateBox, static_cast<QWidget*>(_measured)})
        if (!each->isHidden())
            size.rwidth() -= std::max(each->minimumWidth(), each->minimumSizeHint().width());
    return size;
}

void KWTransportBar::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    _measured->setVisible(width() >= widthForMeasured);
    _rateBox->setVisible(width() >= widthForRate);
}

void KWTransportBar::changeEvent(QEvent* event) {
    QWidget::changeEvent(event);
    // Icons are drawn anew in the new palette.
    if (event->type() == QEvent::PaletteChange)
        for (QToolButton* const button : findChildren<QToolButton*>())
            button->update();
}
