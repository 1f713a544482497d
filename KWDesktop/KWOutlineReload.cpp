#include <KWDesktop/KWOutlineNode.h>
#include <KWFoundation/KWLog.h>

#include <QAbstractItemDelegate>
#include <QItemSelectionModel>
#include <QTreeView>
#include <algorithm>
#include <stdexcept>
#include <utility>

void KWOutlineModel::setDataSource(KWOutlineDataSource* source) {
    beginResetModel();
    _source = source ? source->outlineLink() : std::weak_ptr<const KWOutlineDataSource::Link>();
    _shownTexts.clear();
    unwatchAll();
    _root->children.clear();
    _root->isLoaded = false;
    _toldItem.reset();
    _hadItem = false;
    _needsReload = false;
    endResetModel();
}

// --- Asking.

std::vector<KWOutlineModel::Item> KWOutlineModel::askForChildren(const Node& node) const {
    std::vector<Item> items;
    KWOutlineDataSource* const source = dataSource();
    if (!source || !_view || !node.isExpandable)
        return items;
    const auto isAbove = [&node](const Item& item) {
        for (const Node* above = &node; above; above = above->parent)
            if (above->item == item)
                return true;
        return false;
    };
    ++_asking;
    try {
        const int count = source->outlineViewNumberOfChildrenOfItem(_view, node.item);
        for (int k = 0; k < count; ++k) {
            try {
                Item item = source->outlineViewChildOfItem(_view, k, node.item);
                if (item && !isAbove(item))
                    items.push_back(std::move(item));
            } catch (const std::out_of_range&) {
                // There is no such row.
            }
        }
    } catch (const std::exception& exception) {
        KWLog(std::string("An outline's rows could not be read: ") + exception.what());
    }
    --_asking;
    return items;
}

bool KWOutlineModel::askIfExpandable(const Item& item) const {
    KWOutlineDataSource* const source = dataSource();
    try {
        return source && source->outlineViewIsItemExpandable(_view, item);
    } catch (const std::exception& exception) {
        KWLog(std::string("An outline's row could not be read: ") + exception.what());
    }
    return false;
}

std::unique_ptr<KWOutlineModel::Node> KWOutlineModel::makeNode(Node& parent, Item item) const {
    auto node = std::make_unique<Node>();
    node->isExpandable = askIfExpandable(item);
    node->item = std::move(item);
    node->parent = &parent;
    return node;
}

void KWOutlineModel::load(Node& node) const {
    node.isLoaded = true;
    std::vector<Item> items = askForChildren(node);
    node.children.reserve(items.size());
    for (Item& item : items)
        node.children.push_back(makeNode(node, std::move(item)));
    node.renumber();
}

// --- Reloading.

void KWOutlineModel::reloadData() {
    if (_asking > 0 || _reloading) {
        setNeedsReload();
        return;
    }
    _needsReload = false;
    _needsRefresh = false;
    reload(*_root);
    // Rows keep their places, and may have other names and values.
    for (const QModelIndex& row : rowsOnScreen())
        tellRow(*nodeAt(row));
    Q_EMIT reloaded();
}

void KWOutlineModel::reloadItem(const Item& item, bool reloadChildren) {
    if (_asking > 0 || _reloading) {
        setNeedsReload();
        return;
    }
    Node* const node = item ? nodeOfItem(*_root, item.get()) : nullptr;
    if (!node)
        return;
    node->isExpandable = askIfExpandable(item);
    if (reloadChildren)
        reload(*node);
    tellRow(*node);
}

void KWOutlineModel::reload(Node& node) {
    _reloading = true;
    const Item selected = selectedItem();
    const QPersistentModelIndex where =
        _view && selected ? QPersistentModelIndex(_view->selectionModel()->selectedRows().first())
                          : QPersistentModelIndex();
    unwatchAll();
    sync(node);
    expandAgain();
    if (_view)
        keepSelected(selected, where);
    _reloading = false;
    tellSelection();
}

/// A view selects a neighbour of a row that goes.
void KWOutlineModel::keepSelected(const Item& selected, const QModelIndex& where) {
    QItemSelectionModel& selection = *_view->selectionModel();
    const QModelIndex now = where.isValid() ? where : indexForItem(selected);
    if (!now.isValid()) {
        if (selected || selection.hasSelection())
            selection.clear();
    } else if (!selection.isRowSelected(now.row(), now.parent())) {
        selection.setCurrentIndex(now,
                                  QItemSelectionModel::ClearAndSelect | QItemSelectionModel::Rows);
    }
}

void KWOutlineModel::sync(Node& node) {
    if (!node.isLoaded)
        return;
    syncRows(node, askForChildren(node));
    for (const auto& child : node.children)
        sync(*child);
}

void KWOutlineModel::syncRows(Node& node, const std::vector<Item>& items) {
    auto& rows = node.children;
    const std::size_t count = rows.size();
    // Which old row each item takes: first its own, then the one at its place if nobody has it.
    std::unordered_multimap<const KWObject*, std::size_t> rowsOfItems;
    for (std::size_t k = count; k-- > 0;)
        rowsOfItems.emplace(rows[k]->item.get(), k);
    std::vector<Node*> wanted(items.size(), nullptr);
    std::vector<bool> isKept(count, false);
    for (std::size_t k = 0; k < items.size(); ++k) {
        // Where an item stands more than once, its rows are taken in order.
        const auto [first, last] = rowsOfItems.equal_range(items[k].get());
        auto found = last;
        for (auto row = first; row != last; ++row)
            if (found == last || row->second < found->second)
                found = row;
        if (found == last)
            continue;
        wanted[k] = rows[found->second].get();
        isKept[found->second] = true;
        rowsOfItems.erase(found);
    }
    std::vector<Node*> replaced;
    for (std::size_t k = 0; k < std::min(items.size(), count); ++k) {
        if (wanted[k] || isKept[k])
            continue;
        wanted[k] = rows[k].get();
        isKept[k] = true;
        rows[k]->item = items[k];
        replaced.push_back(rows[k].get());
    }

    removeUnmatched(node, isKept);
    reorder(node, wanted);
    insertMissing(node, wanted, items);
    for (Node* const row : replaced) {
        row->isExpandable = askIfExpandable(row->item);
        _shownTexts.erase(row);
        closeEditors(*row);
        sync(*row);
        tellRow(*row);
    }
}

void KWOutlineModel::removeUnmatched(Node& node, const std::vector<bool>& isKept) {
    for (std::size_t end = isKept.size(); end > 0;) {
        std::size_t begin = end - 1;
        if (!isKept[begin]) {
            while (begin > 0 && !isKept[begin - 1])
                --begin;
            for (std::size_t k = begin; k < end; ++k) {
                noteExpanded(*node.children[k]);
                closeEditors(*node.children[k]);
            }
            beginRemoveRows(indexOfNode(node), static_cast<int>(begin), static_cast<int>(end) - 1);
            const auto first = node.children.begin() + static_cast<std::ptrdiff_t>(begin);
            const auto last = node.children.begin() + static_cast<std::ptrdiff_t>(end);
            // They must outlive the signal, for views may still hold indexes to them.
            const std::vector<std::unique_ptr<Node>> removed(std::make_move_iterator(first),
                                                             std::make_move_iterator(last));
            node.children.erase(first, last);
            node.renumber();
            _shownTexts.clear();
            endRemoveRows();
        }
        end = begin;
    }
}

/// Puts the rows that stay in the order in which they are wanted.
void KWOutlineModel::reorder(Node& node, const std::vector<Node*>& wanted) {
    std::vector<Node*> order;
    std::copy_if(wanted.begin(), wanted.end(), std::back_inserter(order),
                 [](const Node* row) { return row != nullptr; });
    if (std::equal(order.begin(), order.end(), node.children.begin(), node.children.end(),
                   [](const Node* a, const auto& b) { return a == b.get(); }))
        return;
    const QList<QPersistentModelIndex> parents{QPersistentModelIndex(indexOfNode(node))};
    Q_EMIT layoutAboutToBeChanged(parents);
    QModelIndexList before;
    for (const QModelIndex& index : persistentIndexList())
        if (nodeAt(index)->parent == &node)
            before.push_back(index);
    std::vector<std::unique_ptr<Node>> rows;
    for (const Node* const row : order)
        rows.push_back(std::move(node.children[static_cast<std::size_t>(row->row)]));
    node.children = std::move(rows);
    node.renumber();
    QModelIndexList after;
    for (const QModelIndex& index : before)
        after.push_back(indexOfNode(*nodeAt(index), index.column()));
    changePersistentIndexList(before, after);
    Q_EMIT layoutChanged(parents);
}

void KWOutlineModel::insertMissing(Node& node, const std::vector<Node*>& wanted,
                                   const std::vector<Item>& items) {
    for (std::size_t begin = 0; begin < wanted.size();) {
        std::size_t end = begin;
        std::vector<std::unique_ptr<Node>> made;
        for (; end < wanted.size() && !wanted[end]; ++end)
            made.push_back(makeNode(node, items[end]));
        if (end == begin) {
            ++begin;
            continue;
        }
        beginInsertRows(indexOfNode(node), static_cast<int>(begin), static_cast<int>(end) - 1);
        node.children.insert(node.children.begin() + static_cast<std::ptrdiff_t>(begin),
                             std::make_move_iterator(made.begin()),
                             std::make_move_iterator(made.end()));
        node.renumber();
        endInsertRows();
        begin = end;
    }
}

/// Of a row that goes and the rows below it.
void KWOutlineModel::noteExpanded(const Node& node) {
    if (_view && node.isExpandable && _view->isExpanded(indexOfNode(node)))
        _lostExpanded.push_back(node.item);
    for (const auto& child : node.children)
        noteExpanded(*child);
}

/// Of a row whose item goes and the rows below it, without taking what was typed.
void KWOutlineModel::closeEditors(const Node& node) {
    if (!_view || !_view->viewport()->findChild<QWidget*>({}, Qt::FindDirectChildrenOnly))
        return;
    for (int column = 0; column < columnCount(); ++column) {
        const QModelIndex index = indexOfNode(node, column);
        QAbstractItemDelegate* const delegate = _view->itemDelegateForIndex(index);
        QWidget* const editor = _view->indexWidget(index);
        if (editor && delegate)
            Q_EMIT delegate->closeEditor(editor, QAbstractItemDelegate::RevertModelCache);
    }
    for (const auto& child : node.children)
        closeEditors(*child);
}

/// Rows whose items have moved elsewhere.
void KWOutlineModel::expandAgain() {
    for (const Item& item : std::exchange(_lostExpanded, {}))
        expandItem(item);
}

/// Has the view read a row again, but for a cell that is being edited.
void KWOutlineModel::tellRow(const Node& node) {
    int first = 0;
    for (int column = 0; column <= columnCount(); ++column) {
        const bool isLast = column == columnCount();
        if (!isLast && !(_view && _view->isPersistentEditorOpen(indexOfNode(node, column))))
            continue;
        if (first < column)
            Q_EMIT dataChanged(indexOfNode(node, first), indexOfNode(node, column - 1));
        first = column + 1;
    }
}
