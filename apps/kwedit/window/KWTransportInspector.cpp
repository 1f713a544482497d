#include <KWBase/KWChannel.h>
#include <KWDesktop/KWValueField.h>

#include <apps/kwedit/window/KWTimeField.h>
#include <apps/kwedit/window/KWTimeText.h>
#include <apps/kwedit/window/KWTransportInspector.h>

#include <QCheckBox>
#include <QSignalBlocker>

namespace {

KWTimeField* timeField(const char* name, const QString& title, const QString& tip) {
    auto* const field = new KWTimeField;
    field->setObjectName(QLatin1String(name));
    field->setAccessibleName(title);
    field->setToolTip(tip);
    field->setMinimumWidth(50);
    field->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Fixed);
    return field;
}

} // namespace

KWTransportInspector::KWTransportInspector(KWEditDocument& document, KWEditTransport& transport,
                                           KWEditStageTiming& timing, QWidget* parent)
    : KWInspector(parent), _document(&document), _transport(&transport),
      _rate(valueField(tr("Frame rate"), tr("Frames a second"), KWUnitTypeNone)),
      _from(timeField("from", tr("From"), tr("Where the range to play and to export begins"))),
      _to(timeField("to", tr("To"), tr("Where the range to play and to export ends"))),
      _length(new QLabel), _loop(new QCheckBox(tr("Loop"))), _measured(new QLabel),
      _dropped(new QLabel) {
    setObjectName(QStringLiteral("transportInspector"));
    _rate->setObjectName(QStringLiteral("rate"));
    _loop->setObjectName(QStringLiteral("loop"));
    _loop->setToolTip(tr("Begin again at the end of the range"));
    _length->setObjectName(QStringLiteral("length"));
    _measured->setObjectName(QStringLiteral("measured"));
    _dropped->setObjectName(QStringLiteral("dropped"));
    auto* const fps = new QLabel(tr("fps"));
    fps->setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Preferred);
    addRow(tr("Rate"), {_rate, fps});
    auto* const to = new QLabel(tr("to"));
    to->setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Preferred);
    addRow(tr("Range"), {_from, to, _to});
    addRow(tr("Length"), {_length});
    addRow(QString(), {_loop});
    addRow(tr("Playback"), {_measured});
    addRow(tr("Dropped"), {_dropped});

    connect(_rate, &KWValueField::valueEdited, this, [this, &timing](float rate) {
        timing.setRate(static_cast<double>(rate));
        follow();
    });
    connect(_from, &KWTimeField::secondsEdited, this, [this, &timing](double seconds) {
        timing.setRange(seconds, _document->stage().to);
        follow();
    });
    connect(_to, &KWTimeField::secondsEdited, this, [this, &timing](double seconds) {
        timing.setRange(_document->stage().from, seconds);
        follow();
    });
    connect(_from, &KWTimeField::stepped, this, [this, &timing](int frames) {
        const KWStage stage = _document->stage();
        timing.setRange(stage.from + frames / stage.rate, stage.to);
    });
    connect(_to, &KWTimeField::stepped, this, [this, &timing](int frames) {
        const KWStage stage = _document->stage();
        timing.setRange(stage.from, stage.to + frames / stage.rate);
    });
    connect(_loop, &QCheckBox::toggled, &transport, &KWEditTransport::setLooping);
    for (const auto signal : {&KWEditDocument::replaced, &KWEditDocument::structureChanged})
        connect(&document, signal, this, &KWTransportInspector::follow);
    connect(&transport, &KWEditTransport::loopingChanged, this, &KWTransportInspector::follow);
    connect(&transport, &KWEditTransport::rangeChanged, this, &KWTransportInspector::follow);
    connect(&transport, &KWEditTransport::framesPerSecondChanged, this,
            &KWTransportInspector::follow);
    connect(&transport, &KWEditTransport::playingChanged, this, [this](bool isPlaying) {
        if (isPlaying)
            _timer.start();
        else
            _timer.stop();
        showMeasured();
    });
    _timer.setInterval(250);
    connect(&_timer, &QTimer::timeout, this, &KWTransportInspector::showMeasured);
    follow();
    showMeasured();
}

void KWTransportInspector::setShowsFrames(bool showsFrames) {
    _from->setShowsFrames(showsFrames);
    _to->setShowsFrames(showsFrames);
}

void KWTransportInspector::follow() {
    const KWStage stage = _document->stage();
    _rate->setValue(static_cast<float>(stage.rate));
    for (KWTimeField* const field : {_from, _to}) {
        field->setFramesPerSecond(stage.rate);
        field->setSeconds(field == _from ? stage.from : stage.to);
    }
    const qint64 frames = stage.lastFrame() - stage.firstFrame() + 1;
    _length->setText(tr("%1 s, %2 frames")
                         .arg(kwTimeText(static_cast<double>(frames) / stage.rate, 2))
                         .arg(frames));
    const QSignalBlocker blocker(_loop);
    _loop->setChecked(_transport->isLooping());
    const bool canChange = _document->takesElements() || _document->stageElement();
    for (QWidget* const field : std::initializer_list<QWidget*>{_rate, _from, _to})
        field->setEnabled(canChange);
}

void KWTransportInspector::showMeasured() {
    const bool isPlaying = _transport->isPlaying();
    const double rate = _transport->measuredFramesPerSecond();
    _measured->setText(!isPlaying ? tr("Stopped")
                       : rate > 0 ? tr("%1 of %2 fps")
                                        .arg(QString::number(rate, 'f', 1))
                                        .arg(_transport->framesPerSecond())
                                  : QString());
    const qint64 dropped = _transport->droppedFrameCount();
    _dropped->setText(dropped > 0 ? tr("%1 frames").arg(dropped) : tr("None"));
}
