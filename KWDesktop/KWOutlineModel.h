#pragma once

#include <KWDesktop/KWOutlineDataSource.h>
#include <KWFoundation/KWKeyObserving.h>
#include <KWFoundation/KWNotificationCenter.h>

#include <QAbstractItemModel>
#include <QPointer>
#include <memory>
#include <set>
#include <string>
#include <unordered_map>
#include <vector>

/// A column of an outline. Values of channels are in the one called "values".
struct KWOutlineColumn {
    std::string identifier;
    QString title;
};

/// Shows in a QTreeView what a data source answers to an outline's questions.
///
/// A row stays the same row for the view through every reload in which its item is still there
/// under the same parent, or, where it is gone, another new item stands at its place: expansion,
/// selection, scrolling and an open editor survive. A row whose item is null, cannot be looked up,
/// or is one of its own ancestors is left out. Children are asked for when a view first wants them,
/// and kept, with a reference to each, until the next reload.
///
/// The model hears by itself of everything that may change a channel's value - notices of change,
/// validity of the channels that are shown, undo managers, the default unit - and reads again in
/// the next pass of the event loop, once for any number of them. Only values that are on the screen
/// and differ from what is shown there are told to the view, and never one that is being edited.
class KW_EXPORT KWOutlineModel : public QAbstractItemModel, public KWKeyObserver {
    Q_OBJECT

  public:
    using Item = std::shared_ptr<KWObject>;

    /// Roles besides Qt's. The first answers what the data source answered, as it is; the second
    /// the cell's unit type, an int.
    enum Role { ObjectValueRole = Qt::UserRole, UnitTypeRole = Qt::UserRole + 1 };

    /// Becomes the model, and a child, of `view`, which shows one selected row at a time and rows
    /// of one height from then on. std::invalid_argument without a column.
    KWOutlineModel(QTreeView& view, std::vector<KWOutlineColumn> columns);
    ~KWOutlineModel() override;

    /// Null once the view is being destroyed.
    QTreeView* view() const;
    /// Reloads. Null empties the outline.
    void setDataSource(KWOutlineDataSource* source);
    KWOutlineDataSource* dataSource() const;

    const std::vector<KWOutlineColumn>& columns() const { return _columns; }
    /// -1 when there is none of that identifier.
    int columnWithIdentifier(std::string_view identifier) const;

    // --- Reloading. The source hears of a selection change only when the selected item is another
    // one after it. When the selected item is gone it is looked for elsewhere in the outline; when
    // nothing has taken its place either, nothing is selected.

    /// Asks for everything again, at once. From within a question of this model, later.
    void reloadData();
    /// That item's row and what is below it; nothing happens when the item is not shown.
    void reloadItem(const Item& item, bool reloadChildren = false);

    // For listeners: mark now, read in the next pass of the event loop. Any number of calls cost
    // one reload, or one refresh of the values.

    void setNeedsReload();
    void setValuesNeedRefresh();
    /// Does what is marked now rather than in the next pass.
    void refreshIfNeeded();

    // --- Rows.

    /// Null for an invalid index.
    Item itemForIndex(const QModelIndex& index) const;
    /// The first row of the item among those asked for so far; invalid when there is none.
    QModelIndex indexForItem(const Item& item, int column = 0) const;

    /// Null when nothing is selected.
    Item selectedItem() const;
    /// Null for none. The source is told as for a click. Rows are asked for until the item is
    /// found, and those above it expanded. False when it is nowhere in the outline.
    bool selectItem(const Item& item);

    /// Nothing happens when the item is not shown, or is a leaf. A null item stands for the root.
    void expandItem(const Item& item, bool expandChildren = false);

    // --- Qt's questions.

    QModelIndex index(int row, int column, const QModelIndex& parent = {}) const override;
    QModelIndex parent(const QModelIndex& index) const override;
    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    bool hasChildren(const QModelIndex& parent = {}) const override;
    Qt::ItemFlags flags(const QModelIndex& index) const override;
    QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;
    QVariant headerData(int section, Qt::Orientation orientation,
                        int role = Qt::DisplayRole) const override;
    /// The EditRole of a cell that the source lets edit. False when it does not.
    bool setData(const QModelIndex& index, const QVariant& value, int role = Qt::EditRole) override;

    void observeValueForKeyPathOfObjectChangeContext(std::string_view keyPath, KWObject* object,
                                                     const KWKeyValueChange& change,
                                                     const void* context) override;

  Q_SIGNALS:
    /// Marked values have been read again; how many of them were told to the view as changed.
    void valuesRefreshed(int changed);
    /// A reload is done.
    void reloaded();

  private:
    struct Node;

    Node* nodeAt(const QModelIndex& index) const;
    QModelIndex indexOfNode(const Node& node, int column = 0) const;
    Node* nodeOfItem(const Node& under, const KWObject* item) const;
    std::vector<QModelIndex> rowsOnScreen() const;

    // Asking the source.
    QVariant objectValue(const Node& node, int column) const;
    KWOutlineCell cell(const Node& node, int column) const;
    QString textOf(const QVariant& value, const Node& node, int column) const;
    std::vector<Item> askForChildren(const Node& node) const;
    bool askIfExpandable(const Item& item) const;
    std::unique_ptr<Node> makeNode(Node& parent, Item item) const;
    void load(Node& node) const;

    // Reloading.
    void reload(Node& node);
    void keepSelected(const Item& selected, const QModelIndex& where);
    void sync(Node& node);
    void syncRows(Node& node, const std::vector<Item>& items);
    void removeUnmatched(Node& node, const std::vector<bool>& isKept);
    void reorder(Node& node, const std::vector<Node*>& wanted);
    void insertMissing(Node& node, const std::vector<Node*>& wanted,
                       const std::vector<Item>& items);
    void noteExpanded(const Node& node);
    void closeEditors(const Node& node);
    void expandAgain();
    void expandNode(const Node& node, bool expandChildren);
    void tellRow(const Node& node);

    void tellSelection();
    void selectionChanged();
    void schedule();
    void refreshValues();
    void watch(const Node& node) const;
    void unwatchAll();

    QPointer<QTreeView> _view;
    std::vector<KWOutlineColumn> _columns;
    int _valuesColumn = -1;
    std::weak_ptr<const KWOutlineDataSource::Link> _source;
    std::unique_ptr<Node> _root;
    /// The item that the source was last told of.
    std::weak_ptr<KWObject> _toldItem;
    bool _hadItem = false;
    mutable int _asking = 0; ///< questions of the source under way
    bool _reloading = false;
    bool _needsReload = false;
    bool _needsRefresh = false;
    bool _scheduled = false;
    /// Items of expanded rows that a reload has taken out, in case they stand elsewhere now.
    std::vector<Item> _lostExpanded;
    /// The text last handed out for the value of a row.
    mutable std::unordered_map<const Node*, QString> _shownTexts;
    /// Channels whose validity is observed.
    mutable std::set<std::weak_ptr<KWObject>, std::owner_less<>> _watched;
    std::vector<KWNotificationToken> _tokens;
};
