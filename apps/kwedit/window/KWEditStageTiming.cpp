#include <apps/kwedit/window/KWEditStageTiming.h>

#include <algorithm>
#include <cmath>

KWEditStageTiming::KWEditStageTiming(KWEditDocument& document, KWEditTransport& transport,
                                     QObject* parent)
    : QObject(parent), _document(&document), _transport(&transport) {
    connect(&document, &KWEditDocument::structureChanged, this, &KWEditStageTiming::follow);
    connect(&document, &KWEditDocument::replaced, this, [this] {
        _applied.reset();
        follow();
    });
    follow();
}

/// Other edits leave alone what the transport was told elsewhere.
void KWEditStageTiming::follow() {
    const KWStage stage = _document->stage();
    const bool isSame = _applied && _applied->rate == stage.rate && _applied->from == stage.from &&
                        _applied->to == stage.to;
    if (isSame)
        return;
    _applied = stage;
    _transport->setFramesPerSecond(stage.rate);
    _transport->setRange(stage.firstFrame(), stage.lastFrame());
}

void KWEditStageTiming::change(const KWStage& stage, const QString& name) {
    if (const auto element = _document->stageElement())
        _document->setAttributes(element, stage.appliedTo(*element), name);
    else
        _document->setStage(stage);
}

void KWEditStageTiming::setRate(double framesPerSecond) {
    if (std::isnan(framesPerSecond))
        return;
    KWStage stage = _document->stage();
    stage.rate = std::clamp(framesPerSecond, 0.001, 1000.0);
    change(stage, tr("Change Frame Rate"));
}

void KWEditStageTiming::setRange(double from, double to) {
    if (!std::isfinite(from) || !std::isfinite(to))
        return;
    KWStage stage = _document->stage();
    stage.from = from;
    stage.to = std::max(from, to);
    change(stage, tr("Change Range"));
}
