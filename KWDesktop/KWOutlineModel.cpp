#include <KWBase/KWChannel.h>
#include <KWBase/KWUnitController.h>
#include <KWDesktop/KWOutlineDelegate.h>
#include <KWDesktop/KWOutlineNode.h>
#include <KWDesktop/KWValueText.h>
#include <KWFoundation/KWLog.h>
#include <KWFoundation/KWUndoManager.h>

#include <QBrush>
#include <QItemSelectionModel>
#include <QTreeView>
#include <algorithm>
#include <stdexcept>

namespace {

constexpr std::string_view valuesIdentifier = "values";
/// How many rows that are not on the screen are remembered.
constexpr std::size_t rememberedRows = 4096;

/// What a source's question raises must not pass through Qt.
template <class Answer, class Question>
Answer answerOr(Answer otherwise, const Question& question) {
    try {
        return question();
    } catch (const std::exception& exception) {
        KWLog(std::string("An outline's row could not be read: ") + exception.what());
    }
    return otherwise;
}

bool isNumber(const QVariant& value) {
    const int type = value.metaType().id();
    return type == QMetaType::Float || type == QMetaType::Double || type == QMetaType::Int;
}

} // namespace

KWOutlineModel::KWOutlineModel(QTreeView& view, std::vector<KWOutlineColumn> columns)
    : QAbstractItemModel(&view), _view(&view), _columns(std::move(columns)),
      _root(std::make_unique<Node>()) {
    if (_columns.empty())
        throw std::invalid_argument("an outline needs a column");
    _root->isExpandable = true;
    _valuesColumn = columnWithIdentifier(valuesIdentifier);

    view.setModel(this);
    view.setUniformRowHeights(true);
    view.setSelectionMode(QAbstractItemView::SingleSelection);
    view.setSelectionBehavior(QAbstractItemView::SelectRows);
    view.setItemDelegate(new KWOutlineDelegate(&view));
    connect(view.selectionModel(), &QItemSelectionModel::selectionChanged, this,
            &KWOutlineModel::selectionChanged);

    for (const std::string_view name :
         {KWChannelChangedNotification, KWUndoManagerDidChangeNotification,
          KWUnitControllerDefaultUnitDidChangeNotification})
        _tokens.push_back(KWNotificationCenter::defaultCenter().addObserver(
            name, nullptr, [this](const KWNotification&) { setValuesNeedRefresh(); }));
}

KWOutlineModel::~KWOutlineModel() {
    resign();
}

QTreeView* KWOutlineModel::view() const {
    return _view;
}

KWOutlineDataSource* KWOutlineModel::dataSource() const {
    const auto link = _source.lock();
    return link ? link->source : nullptr;
}

int KWOutlineModel::columnWithIdentifier(std::string_view identifier) const {
    const auto found = std::find_if(_columns.begin(), _columns.end(), [=](const auto& column) {
        return column.identifier == identifier;
    });
    return found == _columns.end() ? -1 : static_cast<int>(found - _columns.begin());
}

// --- Rows.

KWOutlineModel::Node* KWOutlineModel::nodeAt(const QModelIndex& index) const {
    if (!index.isValid())
        return _root.get();
    return static_cast<Node*>(index.internalPointer());
}

QModelIndex KWOutlineModel::indexOfNode(const Node& node, int column) const {
    return &node == _root.get() ? QModelIndex() : createIndex(node.row, column, &node);
}

KWOutlineModel::Node* KWOutlineModel::nodeOfItem(const Node& under, const KWObject* item) const {
    // Elements are asked for more often than what is deep inside them.
    for (const auto& child : under.children)
        if (child->item.get() == item)
            return child.get();
    for (const auto& child : under.children)
        if (Node* const found = nodeOfItem(*child, item))
            return found;
    return nullptr;
}

KWOutlineModel::Item KWOutlineModel::itemForIndex(const QModelIndex& index) const {
    return index.isValid() ? nodeAt(index)->item : nullptr;
}

QModelIndex KWOutlineModel::indexForItem(const Item& item, int column) const {
    rowCount();
    const Node* const node = item ? nodeOfItem(*_root, item.get()) : nullptr;
    return node ? indexOfNode(*node, column) : QModelIndex();
}

KWOutlineModel::Item KWOutlineModel::selectedItem() const {
    if (!_view || !_view->selectionModel())
        return nullptr;
    const QModelIndexList rows = _view->selectionModel()->selectedRows();
    return rows.isEmpty() ? nullptr : itemForIndex(rows.first());
}

bool KWOutlineModel::selectItem(const Item& item) {
    if (!_view)
        return false;
    if (!item) {
        _view->selectionModel()->clear();
        return true;
    }
    // One level after the other is asked for until the item turns up.
    std::vector<const Node*> level{_root.get()};
    QModelIndex index = indexForItem(item);
    while (!index.isValid() && !level.empty()) {
        std::vector<const Node*> next;
        for (const Node* const node : level) {
            rowCount(indexOfNode(*node));
            for (const auto& child : node->children)
                next.push_back(child.get());
        }
        level = std::move(next);
        index = indexForItem(item);
    }
    if (!index.isValid())
        return false;
    for (QModelIndex above = index.parent(); above.isValid(); above = above.parent())
        _view->expand(above);
    _view->selectionModel()->setCurrentIndex(index, QItemSelectionModel::ClearAndSelect |
                                                        QItemSelectionModel::Rows);
    return true;
}

void KWOutlineModel::expandItem(const Item& item, bool expandChildren) {
    if (!_view)
        return;
    if (!item) {
        for (int row = 0; row < rowCount(); ++row)
            expandItem(_root->children[static_cast<std::size_t>(row)]->item, expandChildren);
        return;
    }
    if (const QModelIndex index = indexForItem(item); index.isValid())
        expandNode(*nodeAt(index), expandChildren);
}

void KWOutlineModel::expandNode(const Node& node, bool expandChildren) {
    if (!node.isExpandable)
        return;
    // A view asks only when it is drawn, which may be later than somebody looks for a row below.
    const QModelIndex index = indexOfNode(node);
    rowCount(index);
    // In this way the view puts off its layout, and is not asked about leaves.
    _view->expandRecursively(index, 0);
    if (expandChildren)
        for (const auto& child : node.children)
            expandNode(*child, true);
}

// --- Qt's questions.

QModelIndex KWOutlineModel::index(int row, int column, const QModelIndex& parent) const {
    if (row < 0 || column < 0 || column >= columnCount(parent) || row >= rowCount(parent))
        return {};
    return createIndex(row, column, nodeAt(parent)->children[static_cast<std::size_t>(row)].get());
}

QModelIndex KWOutlineModel::parent(const QModelIndex& index) const {
    return index.isValid() ? indexOfNode(*nodeAt(index)->parent) : QModelIndex();
}

int KWOutlineModel::rowCount(const QModelIndex& parent) const {
    if (parent.column() > 0)
        return 0;
    Node& node = *nodeAt(parent);
    if (!node.isLoaded)
        load(node);
    return static_cast<int>(node.children.size());
}

int KWOutlineModel::columnCount(const QModelIndex&) const {
    return static_cast<int>(_columns.size());
}

bool KWOutlineModel::hasChildren(const QModelIndex& parent) const {
    if (parent.column() > 0)
        return false;
    if (!parent.isValid())
        return rowCount() > 0;
    const Node& node = *nodeAt(parent);
    return node.isExpandable || !node.children.empty();
}

Qt::ItemFlags KWOutlineModel::flags(const QModelIndex& index) const {
    if (!index.isValid())
        return Qt::NoItemFlags;
    const Node& node = *nodeAt(index);
    Qt::ItemFlags flags = Qt::ItemIsEnabled | Qt::ItemIsSelectable;
    if (!node.isExpandable && node.children.empty())
        flags |= Qt::ItemNeverHasChildren;
    KWOutlineDataSource* const source = dataSource();
    const std::string_view column = _columns[static_cast<std::size_t>(index.column())].identifier;
    if (source && answerOr(false, [&] {
            return source->outlineViewShouldEditTableColumnItem(_view, column, node.item);
        }))
        flags |= Qt::ItemIsEditable;
    return flags;
}

QVariant KWOutlineModel::objectValue(const Node& node, int column) const {
    KWOutlineDataSource* const source = dataSource();
    if (!source)
        return {};
    ++_asking;
    QVariant value = answerOr(QVariant(), [&] {
        return source->outlineViewObjectValueForTableColumnByItem(
            _view, _columns[static_cast<std::size_t>(column)].identifier, node.item);
    });
    --_asking;
    return value;
}

KWOutlineCell KWOutlineModel::cell(const Node& node, int column) const {
    KWOutlineCell cell;
    if (KWOutlineDataSource* const source = dataSource())
        return answerOr(cell, [&] {
            source->outlineViewWillDisplayCellForTableColumnItem(
                _view, cell, _columns[static_cast<std::size_t>(column)].identifier, node.item);
            return cell;
        });
    return cell;
}

QString KWOutlineModel::textOf(const QVariant& value, const Node& node, int column) const {
    if (value.metaType() == QMetaType::fromType<KWAttributedString>())
        return value.value<KWAttributedString>().string;
    if (isNumber(value))
        return QString::fromStdString(
            KWTextFromValue(value.toFloat(), cell(node, column).unitType));
    return value.metaType().id() == QMetaType::QString ? value.toString() : QString();
}

QVariant KWOutlineModel::data(const QModelIndex& index, int role) const {
    if (!index.isValid())
        return {};
    const Node& node = *nodeAt(index);
    const int column = index.column();
    if (role == UnitTypeRole)
        return cell(node, column).unitType;
    if (role == Qt::BackgroundRole) {
        const KWOutlineCell dressed = cell(node, column);
        return dressed.drawsBackground ? QBrush(dressed.backgroundColor) : QVariant();
    }
    if (role != ObjectValueRole && role != Qt::DisplayRole && role != Qt::EditRole &&
        role != Qt::FontRole && role != Qt::ForegroundRole && role != Qt::TextAlignmentRole)
        return {};

    const QVariant value = objectValue(node, column);
    if (role == ObjectValueRole)
        return value;
    if (role == Qt::EditRole && isNumber(value))
        return value;
    if (role == Qt::DisplayRole || role == Qt::EditRole) {
        const QString text = textOf(value, node, column);
        if (column == _valuesColumn) {
            watch(node);
            _shownTexts[&node] = text;
        }
        return text.isEmpty() ? QVariant() : text;
    }
    KWTextAttributes attributes;
    if (value.metaType() == QMetaType::fromType<KWAttributedString>())
        attributes = value.value<KWAttributedString>().attributes;
    else if (isNumber(value))
        attributes = KWOutlineTextAttributesForIndex(KWOutlineTextValue);
    else
        return {};
    if (role == Qt::FontRole)
        return attributes.font;
    if (role == Qt::ForegroundRole)
        return QBrush(attributes.foreground);
    return static_cast<int>(attributes.alignment);
}

QVariant KWOutlineModel::headerData(int section, Qt::Orientation orientation, int role) const {
    if (orientation != Qt::Horizontal || section < 0 || section >= columnCount())
        return {};
    if (role == Qt::DisplayRole)
        return _columns[static_cast<std::size_t>(section)].title;
    if (role == Qt::TextAlignmentRole)
        return static_cast<int>((section == _valuesColumn ? Qt::AlignRight : Qt::AlignLeft) |
                                Qt::AlignVCenter);
    return {};
}

bool KWOutlineModel::setData(const QModelIndex& index, const QVariant& value, int role) {
    KWOutlineDataSource* const source = dataSource();
    // An editor whose row is being taken out has nothing to say any more.
    if (!index.isValid() || role != Qt::EditRole || !source || _reloading ||
        !(flags(index) & Qt::ItemIsEditable))
        return false;
    // The row may be gone when the source is done.
    const QPersistentModelIndex where = index;
    const Item item = itemForIndex(index);
    const std::string column = _columns[static_cast<std::size_t>(index.column())].identifier;
    const bool isSet = answerOr(false, [&] {
        source->outlineViewSetObjectValueForTableColumnByItem(_view, value, column, item);
        return true;
    });
    if (where.isValid())
        Q_EMIT dataChanged(where, where);
    return isSet;
}

// --- What may change values.

void KWOutlineModel::watch(const Node& node) const {
    if (!std::dynamic_pointer_cast<KWChannel>(node.item))
        return;
    auto& self = const_cast<KWOutlineModel&>(*this);
    if (_watched.size() >= rememberedRows)
        self.unwatchAll();
    if (_watched.insert(node.item).second)
        node.item->addObserverForKeyPathOptionsContext(self, "valid", 0, this);
}

void KWOutlineModel::unwatchAll() {
    for (const auto& watched : _watched)
        if (const Item item = watched.lock())
            item->removeObserverForKeyPath(*this, "valid");
    _watched.clear();
}

void KWOutlineModel::observeValueForKeyPathOfObjectChangeContext(std::string_view, KWObject*,
                                                                 const KWKeyValueChange&,
                                                                 const void*) {
    setValuesNeedRefresh();
}

void KWOutlineModel::setValuesNeedRefresh() {
    _needsRefresh = true;
    schedule();
}

void KWOutlineModel::setNeedsReload() {
    _needsReload = true;
    schedule();
}

void KWOutlineModel::schedule() {
    if (_scheduled)
        return;
    _scheduled = true;
    QMetaObject::invokeMethod(this, &KWOutlineModel::refreshIfNeeded, Qt::QueuedConnection);
}

void KWOutlineModel::refreshIfNeeded() {
    _scheduled = false;
    if (_needsReload) {
        reloadData();
        return;
    }
    if (_needsRefresh)
        refreshValues();
}

std::vector<QModelIndex> KWOutlineModel::rowsOnScreen() const {
    std::vector<QModelIndex> rows;
    if (!_view)
        return rows;
    const int edge = _view->isRightToLeft() ? _view->viewport()->width() - 1 : 0;
    const int height = _view->viewport()->height();
    for (QModelIndex row = _view->indexAt({edge, 0});
         row.isValid() && _view->visualRect(row).top() < height; row = _view->indexBelow(row))
        rows.push_back(row.siblingAtColumn(0));
    return rows;
}

void KWOutlineModel::refreshValues() {
    _needsRefresh = false;
    int changed = 0;
    if (_valuesColumn >= 0 && _view) {
        for (const QModelIndex& row : rowsOnScreen()) {
            const QModelIndex where = row.siblingAtColumn(_valuesColumn);
            if (_view->isPersistentEditorOpen(where))
                continue;
            const Node& node = *nodeAt(where);
            const QString text = textOf(objectValue(node, _valuesColumn), node, _valuesColumn);
            const auto shown = _shownTexts.find(&node);
            if (shown != _shownTexts.end() && shown->second == text)
                continue;
            _shownTexts[&node] = text;
            Q_EMIT dataChanged(where, where);
            ++changed;
        }
        if (_shownTexts.size() > rememberedRows)
            _shownTexts.clear();
    }
    Q_EMIT valuesRefreshed(changed);
}

// --- Selection.

void KWOutlineModel::selectionChanged() {
    if (!_reloading)
        tellSelection();
}

void KWOutlineModel::tellSelection() {
    const Item item = selectedItem();
    if (item == _toldItem.lock() && (item || !_hadItem))
        return;
    _toldItem = item;
    _hadItem = item != nullptr;
    if (KWOutlineDataSource* const source = dataSource())
        answerOr(0, [&] {
            source->outlineViewSelectionDidChange(_view);
            return 0;
        });
}
