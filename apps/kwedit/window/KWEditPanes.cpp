#include <apps/kwedit/window/KWEditPanes.h>

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QMouseEvent>
#include <QResizeEvent>
#include <algorithm>

namespace {

constexpr int gap = 6;
constexpr float leastWidth = 150;
constexpr float leastHeight = 70;

struct Usual {
    int column;
    int pane;
    float height;
    bool isWeight;
};
// By the order of KWEditPanes::Pane. The transport bar keeps its height.
constexpr Usual usual[] = {{0, 0, 3, true},   {0, 1, 2, true}, {1, 0, 1, true},
                           {1, 1, 44, false}, {1, 2, 1, true}, {2, 0, 1, true}};
constexpr float usualWidths[] = {256, 1, 288};
constexpr bool isWidthWeight[] = {false, true, false};

/// The columns at the sides leave a narrow window's middle more.
float usualWidth(int column, int total) {
    const auto width = static_cast<float>(total);
    return column == 0   ? std::clamp(width / 5, 190.f, usualWidths[0])
           : column == 2 ? std::clamp(width / 4, 250.f, usualWidths[2])
                         : usualWidths[column];
}

float sizeOf(const KWLayoutRecord& record, std::string_view key) {
    return record.objectForKey(key).toFloat();
}

bool isWeight(const KWLayoutRecord& record) {
    return record.objectForKey(KWPaneHeightIsPercentKey).toBool();
}

} // namespace

KWEditPanes::KWEditPanes(const std::array<QWidget*, paneCount>& views, QWidget* parent)
    : KWLayoutView(parent) {
    setMouseTracking(true);
    setInterpaneSpace(gap);
    for (int index = 0; index < 3; ++index)
        addColumnWithWidthPercent(usualWidths[index], isWidthWeight[index]);
    for (std::size_t index = 0; index < views.size(); ++index)
        addPaneHeightPercentColumn(views[index], usual[index].height, usual[index].isWeight,
                                   usual[index].column);
    _isShown.fill(true);
    _isShown[std::size_t(Pane::history)] = false;
    apply();
    finishedAddingPanes();
}

KWEditPanes::Place KWEditPanes::placeOf(Pane pane) {
    const Usual& place = usual[std::size_t(pane)];
    return {place.column, place.pane};
}

KWLayoutPane& KWEditPanes::pane(Place place) const {
    return *(*column(place.column).panes())[std::size_t(place.pane)];
}

bool KWEditPanes::isPaneVisible(Pane pane) const {
    return _isShown[std::size_t(pane)];
}

void KWEditPanes::setPaneVisible(Pane pane, bool isVisible) {
    if (std::exchange(_isShown[std::size_t(pane)], isVisible) == isVisible)
        return;
    apply();
    updateSubviewSizes();
    Q_EMIT paneVisibilityChanged(pane, isVisible);
}

void KWEditPanes::setPaneEmptied(Pane pane, bool isEmptied) {
    _isEmptied[std::size_t(pane)] = isEmptied;
    apply();
    updateSubviewSizes();
}

void KWEditPanes::putBack(Pane pane, QWidget* view) {
    this->pane(placeOf(pane)).setView(view);
    setPaneEmptied(pane, false);
    view->show();
}

/// A column without a visible pane is hidden, so that the others take its width.
void KWEditPanes::apply() {
    std::array<bool, 3> isNeeded{};
    for (int index = 0; index < paneCount; ++index) {
        const Place place = placeOf(static_cast<Pane>(index));
        const bool isVisible = _isShown[std::size_t(index)] && !_isEmptied[std::size_t(index)];
        pane(place).setVisible(isVisible);
        isNeeded[std::size_t(place.column)] |= isVisible;
    }
    for (int index = 0; index < 3; ++index)
        column(index).setVisible(isNeeded[std::size_t(index)]);
}

// --- Dividers.

std::optional<KWEditPanes::Divider> KWEditPanes::columnDividerAt(int x) const {
    int left = -1;
    for (int index = 0; index < 3; ++index) {
        const KWLayoutColumn& record = column(index);
        if (!record.isVisible())
            continue;
        const float offset = sizeOf(record, KWColumnActualOffsetKey);
        if (left >= 0 && static_cast<float>(x) >= offset - gap && static_cast<float>(x) < offset)
            return Divider{true, left, -1, -1};
        left = index;
    }
    return std::nullopt;
}

/// The gaps at both sides of a pane of fixed height part the same two.
std::optional<KWEditPanes::Divider> KWEditPanes::paneDividerAt(int index, int y) const {
    const auto& panes = *column(index).panes();
    int above = -1;
    int below = -1;
    bool isInGap = false;
    bool isFirst = true;
    for (int row = 0; row < static_cast<int>(panes.size()); ++row) {
        const KWLayoutPane& record = *panes[std::size_t(row)];
        if (!record.isVisible())
            continue;
        const float offset = sizeOf(record, KWPaneActualOffsetKey);
        if (!isFirst && static_cast<float>(y) >= offset - gap && static_cast<float>(y) < offset)
            isInGap = true;
        isFirst = false;
        if (!isWeight(record))
            continue;
        if (isInGap && below < 0)
            below = row;
        else if (!isInGap)
            above = row;
    }
    if (!isInGap || above < 0 || below < 0)
        return std::nullopt;
    return Divider{false, index, above, below};
}

std::optional<KWEditPanes::Divider> KWEditPanes::dividerAt(const QPoint& position) const {
    if (auto divider = columnDividerAt(position.x()))
        return divider;
    for (int index = 0; index < 3; ++index) {
        const KWLayoutColumn& record = column(index);
        const float left = sizeOf(record, KWColumnActualOffsetKey);
        const float width = sizeOf(record, KWColumnActualWidthKey);
        if (record.isVisible() && static_cast<float>(position.x()) >= left &&
            static_cast<float>(position.x()) < left + width)
            return paneDividerAt(index, position.y());
    }
    return std::nullopt;
}

void KWEditPanes::drag(const Divider& divider, float distance) {
    if (divider.isBetweenColumns) {
        // Of the two columns at a gap one has a fixed width: the left one, or else the right one.
        const bool isLeftFixed = !isWidthWeight[divider.column];
        const int index = isLeftFixed || !column(2).isVisible() ? divider.column : 2;
        const float wanted =
            _grabbedWidths[std::size_t(index)] + (isLeftFixed ? distance : -distance);
        const float most = std::max(leastWidth, static_cast<float>(width()) - 2 * leastWidth);
        if (!isWidthWeight[index])
            column(index).setObjectForKey(std::clamp(wanted, leastWidth, most), KWColumnWidthKey);
    } else {
        const float together = _grabbedHeights[0] + _grabbedHeights[1];
        const float least = std::min(leastHeight, together / 2);
        const float above = std::clamp(_grabbedHeights[0] + distance, least, together - least);
        pane({divider.column, divider.above}).setObjectForKey(above, KWPaneHeightKey);
        pane({divider.column, divider.below}).setObjectForKey(together - above, KWPaneHeightKey);
    }
    updateSubviewSizes();
}

void KWEditPanes::resetSizes(const Divider& divider) {
    if (divider.isBetweenColumns) {
        for (int index = divider.column; index < 3; ++index)
            if (!isWidthWeight[index])
                column(index).setObjectForKey(usualWidth(index, width()), KWColumnWidthKey);
        column(divider.column)
            .setObjectForKey(usualWidth(divider.column, width()), KWColumnWidthKey);
    } else {
        for (const Usual& place : usual)
            if (place.column == divider.column)
                pane({place.column, place.pane}).setObjectForKey(place.height, KWPaneHeightKey);
    }
    updateSubviewSizes();
}

void KWEditPanes::showCursor(const std::optional<Divider>& divider) {
    if (divider)
        setCursor(divider->isBetweenColumns ? Qt::SplitHCursor : Qt::SplitVCursor);
    else
        unsetCursor();
}

void KWEditPanes::mousePressEvent(QMouseEvent* event) {
    _dragged =
        event->button() == Qt::LeftButton ? dividerAt(event->position().toPoint()) : std::nullopt;
    if (!_dragged)
        return;
    _grabbed = event->position().toPoint();
    for (int index = 0; index < 3; ++index)
        _grabbedWidths[std::size_t(index)] = sizeOf(column(index), KWColumnActualWidthKey);
    if (_dragged->isBetweenColumns)
        return;
    // Weights become heights, so that the others keep theirs while these two change.
    for (const auto& record : *column(_dragged->column).panes())
        if (record->isVisible() && isWeight(*record))
            record->setObjectForKey(sizeOf(*record, KWPaneActualHeightKey), KWPaneHeightKey);
    _grabbedHeights = {sizeOf(pane({_dragged->column, _dragged->above}), KWPaneHeightKey),
                       sizeOf(pane({_dragged->column, _dragged->below}), KWPaneHeightKey)};
}

void KWEditPanes::mouseMoveEvent(QMouseEvent* event) {
    const QPoint position = event->position().toPoint();
    if (!_dragged)
        return showCursor(dividerAt(position));
    const QPoint moved = position - _grabbed;
    drag(*_dragged, static_cast<float>(_dragged->isBetweenColumns ? moved.x() : moved.y()));
}

void KWEditPanes::mouseReleaseEvent(QMouseEvent* event) {
    _dragged.reset();
    showCursor(dividerAt(event->position().toPoint()));
}

void KWEditPanes::mouseDoubleClickEvent(QMouseEvent* event) {
    if (const auto divider = dividerAt(event->position().toPoint()))
        resetSizes(*divider);
}

void KWEditPanes::resizeEvent(QResizeEvent* event) {
    // Columns of the usual width follow the window; others stay as somebody has made them.
    for (int index = 0; index < 3; ++index) {
        const float now = sizeOf(column(index), KWColumnWidthKey);
        const bool isUsual =
            now == usualWidths[index] || now == usualWidth(index, event->oldSize().width());
        if (isUsual && !isWidthWeight[index])
            column(index).setObjectForKey(usualWidth(index, width()), KWColumnWidthKey);
    }
    KWLayoutView::resizeEvent(event);
}

void KWEditPanes::leaveEvent(QEvent* event) {
    if (!_dragged)
        unsetCursor();
    KWLayoutView::leaveEvent(event);
}

// --- State.

QByteArray KWEditPanes::state() const {
    QJsonArray widths;
    for (int index = 0; index < 3; ++index)
        widths.append(double(sizeOf(column(index), KWColumnWidthKey)));
    QJsonArray heights;
    QJsonArray shown;
    for (int index = 0; index < paneCount; ++index) {
        heights.append(double(sizeOf(pane(placeOf(static_cast<Pane>(index))), KWPaneHeightKey)));
        shown.append(_isShown[std::size_t(index)]);
    }
    const QJsonObject state{{QStringLiteral("widths"), widths},
                            {QStringLiteral("heights"), heights},
                            {QStringLiteral("shown"), shown}};
    return QJsonDocument(state).toJson(QJsonDocument::Compact);
}

bool KWEditPanes::restore(const QByteArray& state) {
    const QJsonObject object = QJsonDocument::fromJson(state).object();
    const QJsonArray widths = object[QStringLiteral("widths")].toArray();
    const QJsonArray heights = object[QStringLiteral("heights")].toArray();
    const QJsonArray shown = object[QStringLiteral("shown")].toArray();
    if (widths.size() != 3 || heights.size() != paneCount || shown.size() != paneCount)
        return false;
    const auto isSize = [](const QJsonValue& value) {
        return value.toDouble() > 0 && value.toDouble() < 10000;
    };
    if (!std::all_of(widths.begin(), widths.end(), isSize) ||
        !std::all_of(heights.begin(), heights.end(), isSize))
        return false;
    for (int index = 0; index < 3; ++index)
        if (!isWidthWeight[index])
            column(index).setObjectForKey(widths[index].toDouble(), KWColumnWidthKey);
    for (int index = 0; index < paneCount; ++index) {
        const Usual& place = usual[index];
        if (place.isWeight)
            pane({place.column, place.pane})
                .setObjectForKey(heights[index].toDouble(), KWPaneHeightKey);
        setPaneVisible(static_cast<Pane>(index), shown[index].toBool());
    }
    updateSubviewSizes();
    return true;
}
