#include <KWBase/KWConstantChannel.h>
#include <KWBase/KWKeyFramedChannel.h>

#include <apps/kwedit/KWSpriteChannels.h>
#include <apps/kwedit/window/KWEditSpriteMove.h>

#include <QTimer>
#include <algorithm>
#include <cmath>

namespace {

float rounded(float start, double by, double step) {
    if (by == 0)
        return start;
    return static_cast<float>(std::round((static_cast<double>(start) + by) / step) * step);
}

} // namespace

/// One channel that moves.
struct KWEditSpriteMove::Axis {
    std::shared_ptr<KWChannel> channel;
    std::shared_ptr<KWKeyFramedChannel> keyFramed; ///< the same, or null
    bool isX;
    float start;
    float value;
    bool hadKey = false;
    bool wasManipulating = false;
    KWData shape; ///< of the key that was there, or of one that is new

    void set(float newValue, KWTime time) {
        value = newValue;
        if (keyFramed)
            keyFramed->setValueHermiteValueForKeyframe(newValue, shape, time);
        else
            channel->setValueForTime(newValue, time);
    }
    void putBack(KWTime time) {
        if (value == start)
            return;
        set(start, time);
        if (keyFramed && !hadKey)
            keyFramed->removeValueForKeyframe(time);
    }
    /// The channel registers nothing while its flag says that it is being manipulated. Its own
    /// recording of manipulations is not for this: it keeps no shapes.
    void setManipulating(bool isManipulating) {
        if (isManipulating) {
            wasManipulating = channel->isManipulating();
            channel->KWChannel::startManipulation();
        } else if (!wasManipulating) {
            channel->KWChannel::stopManipulation();
        }
    }
};

KWEditSpriteMove::KWEditSpriteMove(KWEditDocument& document,
                                   const std::vector<std::shared_ptr<KWElement>>& elements,
                                   KWTime time)
    : _document(document), _time(time),
      _step(std::make_shared<KWEditDocument::Step>(document, tr("Move"))) {
    for (const std::shared_ptr<KWElement>& element : elements) {
        const KWSpriteChannels channels(element->name(), element->channelArray().get());
        QStringList missing;
        QStringList computed;
        add(*element, channels.channel(KWSpriteRole::x), true, missing, computed);
        add(*element, channels.channel(KWSpriteRole::y), false, missing, computed);
        const QString name = QString::fromStdString(element->name());
        if (missing.size() == 2)
            _refusals << tr("“%1” has no channels x and y to move it with.").arg(name);
        else if (!missing.isEmpty())
            _refusals << tr("“%1” has no channel %2 to move it with.").arg(name, missing.front());
        if (!computed.isEmpty())
            _refusals
                << tr("%1 of “%2” cannot be set by hand.").arg(computed.join(tr(" and ")), name);
    }
}

void KWEditSpriteMove::add(const KWElement& element, const std::shared_ptr<KWChannel>& channel,
                           bool isX, QStringList& missing, QStringList& computed) {
    if (!channel) {
        missing << (isX ? QStringLiteral("x") : QStringLiteral("y"));
        return;
    }
    const auto keyFramed = std::dynamic_pointer_cast<KWKeyFramedChannel>(channel);
    const bool isSettable = keyFramed
                                ? keyFramed->isRegular()
                                : std::dynamic_pointer_cast<KWConstantChannel>(channel) != nullptr;
    if (!isSettable || channel->owner() != &element) {
        computed << (isX ? QStringLiteral("x") : QStringLiteral("y"));
        return;
    }
    const bool isThere = std::any_of(_axes.begin(), _axes.end(),
                                     [&](const auto& axis) { return axis->channel == channel; });
    if (isThere)
        return;
    auto axis = std::make_unique<Axis>();
    axis->channel = channel;
    axis->keyFramed = keyFramed;
    axis->isX = isX;
    axis->start = axis->value = channel->valueForTime(_time);
    if (!std::isfinite(axis->start))
        return;
    if (keyFramed) {
        axis->hadKey = keyFramed->isKeyframe(_time);
        axis->shape =
            keyFramed->hermiteValueForKeyframe(_time).value_or(KWKeyFramedChannel::hermiteData());
    }
    axis->setManipulating(true);
    _axes.push_back(std::move(axis));
}

KWEditSpriteMove::~KWEditSpriteMove() {
    putBack();
    release();
}

void KWEditSpriteMove::moveBy(const QPointF& metres, double step) {
    for (const auto& axis : _axes) {
        const float value = rounded(axis->start, axis->isX ? metres.x() : metres.y(), step);
        if (value == axis->start)
            axis->putBack(_time);
        else if (value != axis->value)
            axis->set(value, _time);
    }
}

void KWEditSpriteMove::putBack() {
    for (const auto& axis : _axes)
        axis->putBack(_time);
}

/// The document takes an edit that nobody could undo for one that has to be saved. It looks when
/// the event loop runs, and must find a group still open.
void KWEditSpriteMove::release() {
    QTimer::singleShot(
        0, &_document,
        [axes = std::make_shared<decltype(_axes)>(std::move(_axes)), step = std::move(_step)] {
            for (const auto& axis : *axes)
                axis->setManipulating(false);
        });
    _axes.clear();
}

/// Back first, and then again as any edit that is recorded.
void KWEditSpriteMove::commit() {
    std::vector<std::pair<Axis*, float>> moved;
    for (const auto& axis : _axes)
        if (axis->value != axis->start)
            moved.emplace_back(axis.get(), axis->value);
    putBack();
    if (moved.empty())
        return;
    for (const auto& [axis, value] : moved) {
        if (axis->keyFramed) {
            axis->setManipulating(false);
            axis->set(value, _time);
            continue;
        }
        const auto set = [channel = axis->channel, time = _time](float to) {
            channel->setValueForTime(to, time);
        };
        _document.perform(
            tr("Move"), [set, value = value] { set(value); },
            [set, start = axis->start] { set(start); });
    }
    for (const auto& axis : _axes)
        axis->setManipulating(false);
    _axes.clear();
    _step.reset();
}
