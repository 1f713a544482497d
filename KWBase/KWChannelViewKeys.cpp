#include <KWBase/KWChannelView.h>
#include <KWBase/KWDevicePixels.h>

#include <QImage>
#include <QPainter>
#include <algorithm>
#include <cmath>
#include <limits>
#include <stdexcept>
#include <unordered_map>

namespace {

/// Calls `each` with the time and the stored value of every key between two times. In a regular
/// channel they are found by search, and only they are looked at.
template <class Function>
void forKeysBetween(const KWKeyFramedChannel& channel, float first, float last, Function each) {
    if (!(first <= last))
        return;
    const std::uint32_t count = channel.keyframeCount();
    if (channel.isRegular()) {
        std::uint32_t index = channel.keyframeIndexPrecedingTime(KWTime(first));
        if (index >= count)
            index = 0;
        for (; index < count; ++index) {
            const float time = channel.keyframeAtIndex(index)->time();
            if (time > last)
                return;
            if (time >= first)
                each(time, channel.valueForKeyframeAtIndex(index));
        }
        return;
    }
    // Of keys at one time the first one's value counts, and a key without a value has no handle.
    std::unordered_map<float, std::uint32_t> firstAt;
    for (std::uint32_t index = 0; index < count; ++index)
        firstAt.emplace(channel.keyframeAtIndex(index)->time(), index);
    for (const KWTime key : channel.keyframesBetweenAnd(KWTime(first), KWTime(last)))
        if (const std::uint32_t index = firstAt.at(key.time()); index < channel.valueCount())
            each(key.time(), channel.valueForKeyframeAtIndex(index));
}

} // namespace

void KWChannelView::drawKeys(QPainter& painter) {
    _keyCells.clear();
    const auto* channel = dynamic_cast<const KWKeyFramedChannel*>(_primaryChannel.get());
    if (!channel)
        return;
    findDrawnKeys(*channel);
    paintDrawnKeys(painter);
}

void KWChannelView::findDrawnKeys(const KWKeyFramedChannel& channel) {
    const KWChannelViewGeometry view = plotGeometry();
    forKeysBetween(channel, view.range.hMin, view.range.hMax, [&](float time, float stored) {
        const float value = channel.convertValueToUserUnit(stored);
        const KWPlotPoint origin = KWKeyCellOrigin({view.xForTime(time), view.yForValue(value)});
        _keyCells.push_back({time, value, origin, isSelectedTime(time)});
    });
}

/// Handles hide those drawn before them at the same place, which are left out.
void KWChannelView::paintDrawnKeys(QPainter& painter) const {
    const KWPlotRect plot = plotGeometry().plot;
    const float left = plot.xMin - KWKeyCellSize - 1;
    const float bottom = plot.yMin - KWKeyCellSize - 1;
    // At each height the place of the handle last seen there; handles come from right to left.
    std::vector<float> lastAt(static_cast<std::size_t>(plot.yMax - bottom) + 2,
                              std::numeric_limits<float>::quiet_NaN());
    std::vector<const DrawnKey*> seen;
    for (auto key = _keyCells.rbegin(); key != _keyCells.rend(); ++key) {
        const KWPlotPoint& origin = key->origin;
        if (!(origin.x > left && origin.x < plot.xMax && origin.y > bottom && origin.y < plot.yMax))
            continue;
        float& last = lastAt[static_cast<std::size_t>(origin.y - bottom)];
        if (last == origin.x)
            continue;
        last = origin.x;
        seen.push_back(&*key);
    }
    std::reverse(seen.begin(), seen.end());
    if (stampHandles(painter, seen))
        return;
    for (const DrawnKey* const key : seen) {
        const KWKeyCell cell = cellOfDrawnKey(*key);
        cell.drawWithFrameInView(cell.controlPointFrame(), painter);
    }
}

/// Draws handles from a picture of one, which costs a tenth. False where that would not be the
/// same: where pixels are not what is drawn, or points do not stand on pixels.
bool KWChannelView::stampHandles(QPainter& painter,
                                 const std::vector<const DrawnKey*>& keys) const {
    KWDevicePixels pixels(painter);
    const double scale = pixels.scale();
    if (!pixels || scale != std::floor(scale))
        return false;
    const QPointF zero = pixels.transform().map(QPointF(0, 0));
    if (zero.x() != std::floor(zero.x()) || zero.y() != std::floor(zero.y()))
        return false;
    // Handles stand on half points: each covers one point more than it is wide.
    const auto side = static_cast<int>((KWKeyCellSize + 1) * scale);
    QImage stamps[2];
    for (const bool isSelected : {false, true}) {
        QImage& stamp = stamps[isSelected];
        stamp = QImage(side, side, QImage::Format_ARGB32_Premultiplied);
        stamp.fill(Qt::transparent);
        QPainter into(&stamp);
        into.setRenderHint(QPainter::Antialiasing);
        into.scale(scale, scale);
        KWKeyCell cell;
        cell.setSelected(isSelected);
        cell.drawWithFrameInView(QRectF(0.5, 0.5, KWKeyCellSize, KWKeyCellSize), into);
    }
    for (const DrawnKey* const key : keys) {
        const QPointF origin(static_cast<double>(key->origin.x) - 0.5,
                             static_cast<double>(key->origin.y) - 0.5);
        const QRectF place = pixels.transform().mapRect(
            QRectF(origin, QSizeF(KWKeyCellSize + 1, KWKeyCellSize + 1)));
        painter.drawImage(place.topLeft().toPoint(), stamps[key->isSelected]);
    }
    return true;
}

KWKeyCell KWChannelView::cellOfDrawnKey(const DrawnKey& key) const {
    KWKeyCell cell;
    cell.setTime(key.time);
    cell.setValue(key.value);
    cell.setSelected(key.isSelected);
    cell.setControlPointFrame({static_cast<double>(key.origin.x), static_cast<double>(key.origin.y),
                               static_cast<double>(KWKeyCellSize),
                               static_cast<double>(KWKeyCellSize)});
    cell.setTarget(delegate());
    cell.setAction(&KWChannelViewDelegate::keyAction);
    return cell;
}

std::vector<KWKeyCell> KWChannelView::keyCells() const {
    std::vector<KWKeyCell> cells;
    cells.reserve(_keyCells.size());
    for (const DrawnKey& key : _keyCells)
        cells.push_back(cellOfDrawnKey(key));
    return cells;
}
