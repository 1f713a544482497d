#include <KWBase/KWChannelArray.h>
#include <KWBase/KWChannelColorCell.h>
#include <KWBase/KWChannelEditorController.h>
#include <KWBase/KWChannelEditorOutlets.h>
#include <KWBase/KWChannelElement.h>
#include <KWBase/KWPanelControls.h>
#include <KWDesktop/KWOutlineDelegate.h>
#include <KWDesktop/KWOutlineModel.h>
#include <KWFoundation/KWText.h>

#include <QHeaderView>
#include <QPainter>
#include <algorithm>
#include <unordered_set>

// The outline: what it is made of, and what it asks.

namespace {

constexpr std::string_view channelsColumn = "channels";
constexpr std::string_view viewColumn = "view";
constexpr std::string_view valuesColumn = "values";

/// The colour of a channel whose curve is shown; where it is not, a faint square to click on.
class SwatchDelegate final : public KWOutlineDelegate {
  public:
    using KWOutlineDelegate::KWOutlineDelegate;

    void paint(QPainter* painter, const QStyleOptionViewItem& option,
               const QModelIndex& index) const override {
        QStyleOptionViewItem plain = option;
        initStyleOption(&plain, index);
        KWOutlineDelegate::paint(painter, option, index);
        const QVariant value = index.data(KWOutlineModel::ObjectValueRole);
        const auto* const model = qobject_cast<const KWOutlineModel*>(index.model());
        KWChannelColorCell cell;
        cell.setObjectValue(value);
        painter->save();
        painter->setClipRect(option.rect);
        cell.drawWithFrameInView(QRectF(option.rect), *painter);
        if (!value.isValid() && model &&
            std::dynamic_pointer_cast<KWChannel>(model->itemForIndex(index)))
            drawEmptySquare(*painter, QRectF(option.rect), plain);
        painter->restore();
    }

  private:
    static void drawEmptySquare(QPainter& painter, const QRectF& frame,
                                const QStyleOptionViewItem& option) {
        const bool isSelected = option.state & QStyle::State_Selected;
        QColor color =
            option.palette.color(isSelected ? QPalette::HighlightedText : QPalette::Text);
        color.setAlphaF(0.35f);
        painter.setPen(QPen(color, 1));
        painter.setBrush(Qt::NoBrush);
        painter.drawRect(QRectF(frame.center().x() - 4.5, frame.center().y() - 4.5, 9, 9));
    }
};

std::shared_ptr<KWChannelArray> arrayOf(const std::shared_ptr<KWObject>& item) {
    const auto element = std::dynamic_pointer_cast<KWChannelElement>(item);
    return element ? element->channelArray() : nullptr;
}

int countOf(const std::shared_ptr<KWChannelArray>& array) {
    if (!array)
        return 0;
    std::size_t count = array->channelGroupCount();
    if (array->ungroupedChannels())
        count += array->ungroupedChannels()->size();
    return static_cast<int>(count);
}

template <class List>
std::shared_ptr<KWObject> elementAt(const std::shared_ptr<List>& list, std::size_t index) {
    return list && index < list->size() ? (*list)[index] : nullptr;
}

std::shared_ptr<KWObject> childOfArray(const KWChannelArray& array, std::size_t index) {
    const std::size_t groups = array.channelGroupCount();
    if (index < groups)
        return array.channelGroupAtIndex(static_cast<std::uint32_t>(index));
    return elementAt(array.ungroupedChannels(), index - groups);
}

KWAttributedString attributed(const std::string& text, std::uint32_t index) {
    return {KWQString(text), KWOutlineTextAttributesForIndex(index)};
}

QVariant nameOf(const std::shared_ptr<KWObject>& item) {
    if (const auto group = std::dynamic_pointer_cast<KWChannelGroup>(item))
        return QVariant::fromValue(attributed(group->name(), KWOutlineTextGroup));
    if (const auto channel = std::dynamic_pointer_cast<KWChannel>(item))
        return QVariant::fromValue(attributed(channel->name(), KWOutlineTextChannel));
    const auto element = std::dynamic_pointer_cast<KWChannelElement>(item);
    return QVariant::fromValue(
        attributed(element ? element->name() : std::string(), KWOutlineTextElement));
}

/// A channel out of order may have no value at all.
std::string valueTextOf(const KWChannel& channel) {
    try {
        return KWStringFromFloat(channel.value());
    } catch (const std::exception&) {
        return "?";
    }
}

QVariant valueOf(const KWChannel& channel) {
    return QVariant::fromValue(attributed(valueTextOf(channel), KWOutlineTextValue));
}

} // namespace

void KWChannelEditorController::makeOutline() {
    QTreeView* const view = _outlets->elementOV;
    _outline = new KWOutlineModel(*view, {{std::string(channelsColumn), tr("Channels")},
                                          {std::string(viewColumn), tr("View")},
                                          {std::string(valuesColumn), tr("Value")}});
    const int swatches = _outline->columnWithIdentifier(viewColumn);
    view->setItemDelegateForColumn(swatches, new SwatchDelegate(view));
    QHeaderView* const header = view->header();
    header->setStretchLastSection(false);
    header->setSectionsMovable(false);
    header->setMinimumSectionSize(header->fontMetrics().horizontalAdvance(tr("View")) + 12);
    header->setSectionResizeMode(0, QHeaderView::Stretch);
    header->resizeSection(swatches, header->minimumSectionSize());
    const QFontMetrics digits(KWOutlineTextAttributesForIndex(KWOutlineTextValue).font);
    header->resizeSection(_outline->columnWithIdentifier(valuesColumn),
                          digits.horizontalAdvance(QStringLiteral("-0.0000000")) + 10);
    view->installEventFilter(this);
    connect(view, &QTreeView::clicked, this, [this, swatches](const QModelIndex& index) {
        if (index.column() == swatches)
            KWRunAction([this] { toggleShowSecondaryChannel(_outlets->elementOV); });
    });
    connect(_outline, &KWOutlineModel::reloaded, this,
            &KWChannelEditorController::pruneSecondaryChannels);
    _outline->setDataSource(this);
}

/// A curve whose channel is in the outline no more could never be switched off.
void KWChannelEditorController::pruneSecondaryChannels() {
    KWChannelView* const view = _outlets->channelView;
    if (!view || view->secondaryChannels().empty())
        return;
    std::unordered_set<const KWChannel*> all;
    for (const auto& element : elements())
        if (const auto array = arrayOf(element))
            for (const auto& channel : array->channelEnumerator())
                all.insert(channel.get());
    const auto shown = view->secondaryChannels();
    for (const auto& channel : shown)
        if (!all.contains(channel.get()))
            view->removeSecondaryChannel(channel);
    view->setNeedsDisplay(true);
}

void KWChannelEditorController::expandOutlineView(QTreeView* view) {
    if (!_outline || !view || _outline->view() != view)
        return;
    for (const auto& element : elements())
        _outline->expandItem(element, true);
}

KWTextAttributes KWChannelEditorController::textAttributesForIndex(std::uint32_t index) const {
    return KWOutlineTextAttributesForIndex(index);
}

int KWChannelEditorController::outlineViewNumberOfChildrenOfItem(
    const QTreeView* view, const std::shared_ptr<KWObject>& item) {
    if (!view || view != _outlets->elementOV)
        return 0;
    if (!item) {
        const auto all = elements();
        return all.size() == 1 ? countOf(arrayOf(all.front())) : static_cast<int>(all.size());
    }
    if (const auto group = std::dynamic_pointer_cast<KWChannelGroup>(item))
        return static_cast<int>(group->count());
    return countOf(arrayOf(item));
}

std::shared_ptr<KWObject>
KWChannelEditorController::outlineViewChildOfItem(const QTreeView* view, int index,
                                                  const std::shared_ptr<KWObject>& item) {
    if (!view || view != _outlets->elementOV || index < 0)
        return nullptr;
    const auto place = static_cast<std::size_t>(index);
    if (!item) {
        const auto all = elements();
        return place < all.size() ? all[place] : nullptr;
    }
    if (const auto group = std::dynamic_pointer_cast<KWChannelGroup>(item))
        return elementAt(group->channels(), place);
    const auto array = arrayOf(item);
    return array ? childOfArray(*array, place) : nullptr;
}

bool KWChannelEditorController::outlineViewIsItemExpandable(const QTreeView* view,
                                                            const std::shared_ptr<KWObject>& item) {
    return view && view == _outlets->elementOV && !std::dynamic_pointer_cast<KWChannel>(item);
}

QVariant KWChannelEditorController::outlineViewObjectValueForTableColumnByItem(
    const QTreeView* view, std::string_view column, const std::shared_ptr<KWObject>& item) {
    if (!view || view != _outlets->elementOV)
        return QString();
    if (column == channelsColumn)
        return nameOf(item);
    const auto channel = std::dynamic_pointer_cast<KWChannel>(item);
    if (column == viewColumn) {
        if (!channel || !_outlets->channelView ||
            !_outlets->channelView->isSecondaryChannel(channel))
            return {};
        return colorForChannel(channel).value();
    }
    if (column == valuesColumn)
        return channel ? valueOf(*channel) : QVariant();
    return QString();
}

void KWChannelEditorController::outlineViewSelectionDidChange(QTreeView* view) {
    if (view && view == _outlets->elementOV && _outline)
        setChannelBeingEdited(std::dynamic_pointer_cast<KWChannel>(_outline->selectedItem()));
}
