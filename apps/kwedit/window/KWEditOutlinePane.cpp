#include <KWBase/KWChannelArray.h>

#include <apps/kwedit/window/KWEditOutlinePane.h>

#include <QAction>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QScopedValueRollback>
#include <QToolButton>
#include <QVBoxLayout>
#include <algorithm>

KWEditOutlinePane::KWEditOutlinePane(KWEditSession& session, std::span<QAction* const> actions,
                                     QWidget* parent)
    : QWidget(parent), _session(session) {
    _controller.makeOutline();
    QTreeView& tree = outline();
    tree.setObjectName(QStringLiteral("elements"));
    tree.setAccessibleName(tr("Elements"));
    tree.setFrameShape(QFrame::NoFrame);
    tree.setContextMenuPolicy(Qt::ActionsContextMenu);

    auto* const buttons = new QHBoxLayout;
    buttons->setContentsMargins(4, 2, 4, 2);
    buttons->setSpacing(2);
    for (QAction* const action : actions) {
        tree.addAction(action);
        if (action->icon().isNull())
            continue;
        auto* const button = new QToolButton;
        button->setDefaultAction(action);
        button->setAutoRaise(true);
        button->setAccessibleName(QString(action->text()).remove(QLatin1Char('&')));
        buttons->addWidget(button);
    }
    buttons->addStretch();
    auto* const column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(0);
    column->addWidget(_controller.channelOutlineView());
    column->addLayout(buttons);

    connect(&session.elements(), &KWArrayController::arrangedObjectsChanged, this,
            &KWEditOutlinePane::reload);
    connect(&session, &KWEditSession::elementsChanged, this, [this] {
        _controller.outlineModel()->setNeedsReload(); // names, and channels that came or went
    });
    connect(&session, &KWEditSession::channelsUpdated, this, [this] {
        _controller.setCurrentTime(_session.transport().currentTime());
        _controller.outlineModel()->setValuesNeedRefresh();
    });
    connect(&session, &KWEditSession::selectionChanged, this, &KWEditOutlinePane::followSelection);
    connect(tree.selectionModel(), &QItemSelectionModel::selectionChanged, this,
            &KWEditOutlinePane::itemSelected);
    reload();
}

KWEditOutlinePane::~KWEditOutlinePane() = default;

void KWEditOutlinePane::reload() {
    std::vector<std::shared_ptr<KWChannelElement>> elements;
    for (const auto& object : _session.elements().arrangedObjects())
        elements.push_back(std::dynamic_pointer_cast<KWChannelElement>(object));
    const auto& old = _controller.elements();
    const bool isNew = std::none_of(elements.begin(), elements.end(), [&old](const auto& element) {
        return std::find(old.begin(), old.end(), element) != old.end();
    });
    _controller.setElements(std::move(elements));
    _controller.update();
    // A small document is seen at a glance; of a large one only the elements.
    if (isNew && _controller.elements().size() <= 12)
        _controller.expandOutlineView(_controller.outline());
    followSelection();
}

std::shared_ptr<KWObject> KWEditOutlinePane::selectedItem() const {
    return _controller.outlineModel()->selectedItem();
}

void KWEditOutlinePane::selectItem(const std::shared_ptr<KWObject>& item) {
    if (item != selectedItem())
        _controller.outlineModel()->selectItem(item);
}

std::shared_ptr<KWElement>
KWEditOutlinePane::elementOf(const std::shared_ptr<KWObject>& item) const {
    if (auto element = std::dynamic_pointer_cast<KWElement>(item))
        return element;
    for (const auto& object : _controller.elements()) {
        const auto element = std::dynamic_pointer_cast<KWElement>(object);
        const auto array = element ? element->channelArray() : nullptr;
        if (!array || !item)
            continue;
        if (const auto groups = array->channelGroups();
            groups && std::find(groups->begin(), groups->end(), item) != groups->end())
            return element;
        const auto channels = array->channelEnumerator();
        if (std::find(channels.begin(), channels.end(), item) != channels.end())
            return element;
    }
    return nullptr;
}

void KWEditOutlinePane::itemSelected() {
    if (_isFollowing)
        return;
    const QScopedValueRollback following(_isFollowing, true);
    const auto item = selectedItem();
    // A single element has no row of its own that could be selected.
    if (item || _controller.elements().size() != 1)
        _session.selectElement(elementOf(item));
    if (const auto channel = std::dynamic_pointer_cast<KWChannel>(item))
        Q_EMIT channelSelected(channel);
}

/// What is selected inside the element stays so.
void KWEditOutlinePane::followSelection() {
    if (_isFollowing)
        return;
    const QScopedValueRollback following(_isFollowing, true);
    const auto& selected = _session.selectedElements();
    const auto wanted = selected.empty() ? nullptr : selected.front();
    if (elementOf(selectedItem()) != wanted)
        _controller.outlineModel()->selectItem(wanted);
}
