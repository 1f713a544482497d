#include <KWBase/KWChannelArray.h>
#include <KWBase/KWEmbeddedChannelController.h>
#include <KWBase/KWInterfaceFile.h>
#include <KWDesktop/KWValueDelegate.h>

#include <QFontMetrics>
#include <QHeaderView>
#include <QKeyEvent>
#include <QVBoxLayout>
#include <stdexcept>
#include <utility>

namespace {

constexpr std::string_view channelsIdentifier = "channels";
constexpr std::string_view valuesIdentifier = "values";

std::shared_ptr<KWChannel> channelFrom(const std::shared_ptr<KWObject>& item) {
    return std::dynamic_pointer_cast<KWChannel>(item);
}

std::shared_ptr<KWChannelGroup> groupFrom(const std::shared_ptr<KWObject>& item) {
    return std::dynamic_pointer_cast<KWChannelGroup>(item);
}

std::uint32_t ungroupedCount(const KWChannelArray& array) {
    const auto& channels = array.ungroupedChannels();
    return channels ? static_cast<std::uint32_t>(channels->size()) : 0;
}

} // namespace

KWEmbeddedChannelController::KWEmbeddedChannelController(QObject* parent)
    : KWChannelEditSource(parent) {}

KWEmbeddedChannelController::~KWEmbeddedChannelController() {
    resignAsDataSource();
    releaseOutline();
}

// --- The outline.

void KWEmbeddedChannelController::makeOutline() {
    auto* const container = new QWidget;
    auto* const layout = new QVBoxLayout(container);
    layout->setContentsMargins(0, 0, 0, 0);
    auto* const outline = new QTreeView(container);
    outline->setObjectName(QStringLiteral("channelOV"));
    container->setObjectName(QStringLiteral("channelOVContainer"));
    layout->addWidget(outline);
    setOutlets(outline, container);
}

bool KWEmbeddedChannelController::loadInterface(const QString& path) {
    KWLoadedInterface loaded = KWLoadInterfaceFile(path);
    _interfaceError = loaded.error;
    if (!loaded.root)
        return false;
    QPointer<QTreeView> outline;
    QPointer<QWidget> container;
    const KWOutlet outlets[] = {{"channelOV", outline}, {"channelOVContainer", container}};
    _interfaceError = KWConnectOutlets(*loaded.root, outlets, path);
    if (_interfaceError.isEmpty() && container != loaded.root.get())
        _interfaceError = tr("%1: channelOVContainer is not the outermost widget").arg(path);
    if (!_interfaceError.isEmpty())
        return false;
    loaded.root.release();
    setOutlets(outline, container);
    return true;
}

void KWEmbeddedChannelController::setOutlets(QTreeView* outline, QWidget* container) {
    if (!outline || !container)
        throw std::invalid_argument("an embedded outline needs a view and a container");
    if (container != _channelOVContainer)
        releaseOutline();
    delete _model;
    _channelOV = outline;
    _channelOVContainer = container;
    awakeFromNib();
}

void KWEmbeddedChannelController::releaseOutline() {
    if (_channelOV)
        _channelOV->removeEventFilter(this);
    delete _model;
    if (_channelOVContainer && !_channelOVContainer->parent())
        delete _channelOVContainer;
    _channelOV = nullptr;
    _channelOVContainer = nullptr;
}

void KWEmbeddedChannelController::awakeFromNib() {
    QTreeView& outline = *_channelOV;
    _model = new KWOutlineModel(outline, {{std::string(channelsIdentifier), tr("Channel")},
                                          {std::string(valuesIdentifier), tr("Value")}});
    auto* const delegate = new KWOutlineDelegate(_model);
    delegate->setIntercellSpacing({0, 1});
    outline.setItemDelegate(delegate);
    auto* const values = new KWValueDelegate(_model);
    values->setIntercellSpacing({0, 1});
    outline.setItemDelegateForColumn(1, values);
    outline.setIndentation(9);
    outline.setEditTriggers(QAbstractItemView::DoubleClicked);
    outline.setAllColumnsShowFocus(true);
    if (outline.accessibleName().isEmpty())
        outline.setAccessibleName(tr("Channels"));

    QHeaderView& header = *outline.header();
    header.setStretchLastSection(false);
    header.setSectionsMovable(false);
    header.setMinimumSectionSize(24);
    header.setSectionResizeMode(0, QHeaderView::Stretch);
    header.setSectionResizeMode(1, QHeaderView::Interactive);
    const QFontMetrics metrics(textAttributesForIndex(KWOutlineTextValue).font);
    header.resizeSection(1, metrics.horizontalAdvance(QStringLiteral("-0.0000000e+00 mm")));

    outline.installEventFilter(this);
    _model->setDataSource(this);
}

// --- What it shows.

void KWEmbeddedChannelController::setElements(
    std::vector<std::shared_ptr<KWChannelElement>> elements) {
    std::erase(elements, nullptr);
    _elements = std::move(elements);
    if (_model)
        _model->setNeedsReload();
}

void KWEmbeddedChannelController::setCurrentTime(float time) {
    _currentTime = time;
    if (_model)
        _model->setValuesNeedRefresh();
}

void KWEmbeddedChannelController::update() {
    if (_model)
        _model->reloadData();
}

void KWEmbeddedChannelController::selectionChangedCallback(const KWNotification&) {}

void KWEmbeddedChannelController::timeChangedCallback(const KWNotification&) {}

void KWEmbeddedChannelController::channelChangedCallback(const KWNotification&) {}

void KWEmbeddedChannelController::expandOutlineView(QTreeView* view) {
    if (!view || view != _channelOV || !_model)
        return;
    if (_elements.size() != 1) {
        for (const auto& element : _elements)
            _model->expandItem(element, true);
        return;
    }
    const auto array = _elements.front()->channelArray();
    if (!array || !array->channelGroups())
        return;
    const KWChannelGroupList groups = *array->channelGroups();
    for (const auto& group : groups)
        if (group)
            _model->expandItem(group, true);
}

KWTextAttributes KWEmbeddedChannelController::textAttributesForIndex(std::uint32_t index) const {
    return KWOutlineTextAttributesForIndex(index);
}

// --- The data source.

std::shared_ptr<KWChannelArray>
KWEmbeddedChannelController::channelArrayOf(const std::shared_ptr<KWObject>& item) const {
    const auto element =
        item ? std::dynamic_pointer_cast<KWChannelElement>(item) : _elements.front();
    return element ? element->channelArray() : nullptr;
}

int KWEmbeddedChannelController::outlineViewNumberOfChildrenOfItem(
    const QTreeView* view, const std::shared_ptr<KWObject>& item) {
    if (!view || view != _channelOV)
        return 0;
    if (!item && _elements.size() != 1)
        return static_cast<int>(_elements.size());
    if (const auto group = groupFrom(item))
        return static_cast<int>(group->count());
    const auto array = channelArrayOf(item);
    return array ? static_cast<int>(array->channelGroupCount() + ungroupedCount(*array)) : 0;
}

std::shared_ptr<KWObject>
KWEmbeddedChannelController::outlineViewChildOfItem(const QTreeView* view, int index,
                                                    const std::shared_ptr<KWObject>& item) {
    if (!view || view != _channelOV || index < 0)
        return nullptr;
    const auto place = static_cast<std::uint32_t>(index);
    if (!item && _elements.size() != 1)
        return _elements.at(place);
    if (const auto group = groupFrom(item))
        return group->channels() ? group->channels()->at(place) : nullptr;
    const auto array = channelArrayOf(item);
    if (!array)
        return nullptr;
    const std::uint32_t groups = array->channelGroupCount();
    if (place < groups)
        return array->channelGroupAtIndex(place);
    return array->ungroupedChannels() ? array->ungroupedChannels()->at(place - groups) : nullptr;
}

bool KWEmbeddedChannelController::outlineViewIsItemExpandable(
    const QTreeView* view, const std::shared_ptr<KWObject>& item) {
    return view && view == _channelOV && !channelFrom(item);
}

QVariant KWEmbeddedChannelController::outlineViewObjectValueForTableColumnByItem(
    const QTreeView* view, std::string_view column, const std::shared_ptr<KWObject>& item) {
    const auto channel = channelFrom(item);
    if (view && view == _channelOV && column == valuesIdentifier)
        return channel ? QVariant(channel->value()) : QVariant();
    if (!view || view != _channelOV || column != channelsIdentifier)
        return QString();
    std::string name;
    std::uint32_t index = KWOutlineTextElement;
    if (channel) {
        name = channel->name();
        index = KWOutlineTextChannel;
    } else if (const auto group = groupFrom(item)) {
        name = group->name();
        index = KWOutlineTextGroup;
    } else if (const auto element = std::dynamic_pointer_cast<KWChannelElement>(item)) {
        name = element->name();
    }
    return QVariant::fromValue(
        KWAttributedString{QString::fromStdString(name), textAttributesForIndex(index)});
}

bool KWEmbeddedChannelController::outlineViewShouldEditTableColumnItem(
    const QTreeView* view, std::string_view column, const std::shared_ptr<KWObject>& item) {
    return view && view == _channelOV && column == valuesIdentifier && channelFrom(item);
}

void KWEmbeddedChannelController::outlineViewSetObjectValueForTableColumnByItem(
    const QTreeView* view, const QVariant& value, std::string_view column,
    const std::shared_ptr<KWObject>& item) {
    const auto channel = channelFrom(item);
    if (!view || view != _channelOV || column != valuesIdentifier || !channel ||
        !value.canConvert<float>())
        return;
    {
        const Edit edit(*this, KWChannelEdit::value, channel);
        _ignoreChannelChanged = true;
        const QPointer<KWEmbeddedChannelController> alive = this;
        const auto stop = [&alive] {
            if (alive)
                alive->_ignoreChannelChanged = false;
        };
        try {
            channel->setValueForTime(value.toFloat(), KWTime::timeWithReal(_currentTime));
        } catch (...) {
            stop();
            throw;
        }
        stop();
        if (!alive)
            return;
    }
    if (_model)
        _model->reloadItem(item);
}

void KWEmbeddedChannelController::outlineViewWillDisplayCellForTableColumnItem(
    const QTreeView*, KWOutlineCell& cell, std::string_view,
    const std::shared_ptr<KWObject>& item) {
    const auto channel = channelFrom(item);
    cell.drawsBackground = !channel && !groupFrom(item);
    if (cell.drawsBackground)
        cell.backgroundColor = QColor::fromRgbF(0.8f, 0.8f, 0.9f);
    if (channel)
        cell.unitType = channel->unitType();
}

// --- The keyboard.

bool KWEmbeddedChannelController::eventFilter(QObject* object, QEvent* event) {
    // The type comes first: a widget in its destructor is no tree any more.
    if (event->type() == QEvent::KeyPress && object == _channelOV) {
        const int key = static_cast<QKeyEvent*>(event)->key();
        if ((key == Qt::Key_Return || key == Qt::Key_Enter || key == Qt::Key_F2) &&
            editSelectedValue())
            return true;
    }
    return KWChannelEditSource::eventFilter(object, event);
}

bool KWEmbeddedChannelController::editSelectedValue() {
    if (!_model)
        return false;
    const QModelIndex where = _channelOV->currentIndex().siblingAtColumn(1);
    if (!where.isValid() || !(_model->flags(where) & Qt::ItemIsEditable))
        return false;
    // The key that ends an edit comes here, too.
    if (!_channelOV->isPersistentEditorOpen(where))
        _channelOV->edit(where);
    return true;
}
