#include <KWBase/KWAlgebricChannel.h>
#include <KWBase/KWConstantChannel.h>
#include <KWBase/KWKeyFramedChannel.h>

#include <apps/kwedit/window/KWEditIcons.h>
#include <apps/kwedit/window/KWElementChannelsView.h>

#include <QComboBox>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLineEdit>
#include <QMenu>
#include <QPainter>
#include <QPushButton>
#include <QToolButton>
#include <QTreeWidget>
#include <algorithm>
#include <array>

namespace {

using Role = KWSpriteRole;

constexpr int channelRole = Qt::UserRole;
constexpr int mostRows = 9;

constexpr std::array spriteRoles{Role::x,      Role::y,      Role::rotation, Role::scale,
                                 Role::scaleX, Role::scaleY, Role::width,    Role::height,
                                 Role::radius, Role::shear,  Role::squash,   Role::opacity,
                                 Role::red,    Role::green,  Role::blue,     Role::movieTime};
constexpr std::array stageRoles{Role::x,   Role::y,    Role::height,  Role::zoom,
                                Role::pan, Role::tilt, Role::rotation};

int unitTypeOf(Role role) {
    switch (role) {
    case Role::x:
    case Role::y:
    case Role::radius:
    case Role::width:
    case Role::height:
        return KWUnitTypeLength;
    case Role::rotation:
    case Role::shear:
    case Role::pan:
    case Role::tilt:
        return KWUnitTypeAngle;
    default:
        return KWUnitTypeNone;
    }
}

/// With which the element looks as it does without the channel.
float valueOf(Role role, const KWElement& element) {
    const KWSpriteContent content = KWSpriteContent::of(element);
    switch (role) {
    case Role::scale:
    case Role::scaleX:
    case Role::scaleY:
    case Role::squash:
    case Role::opacity:
    case Role::zoom:
        return 1;
    case Role::red:
        return content.color.redF();
    case Role::green:
        return content.color.greenF();
    case Role::blue:
        return content.color.blueF();
    case Role::radius:
        return content.width > 0 ? static_cast<float>(content.width / 2) : 0.5F;
    case Role::width:
        return content.width > 0 ? static_cast<float>(content.width) : 1;
    case Role::height:
        return KWStage::isStage(element) ? 0
               : content.height > 0      ? static_cast<float>(content.height)
                                         : 1;
    default:
        return 0;
    }
}

QString kindOf(const KWChannel& channel) {
    if (const auto* const keys = dynamic_cast<const KWKeyFramedChannel*>(&channel))
        return keys->keyframeCount() == 1
                   ? KWElementChannelsView::tr("1 key")
                   : KWElementChannelsView::tr("%1 keys").arg(keys->keyframeCount());
    if (dynamic_cast<const KWConstantChannel*>(&channel))
        return KWElementChannelsView::tr("Constant");
    if (dynamic_cast<const KWAlgebricChannel*>(&channel))
        return KWElementChannelsView::tr("Expression");
    return {};
}

QIcon dot(const KWColor& color) {
    QIcon icon;
    for (const double ratio : {1.0, 2.0}) {
        QPixmap pixmap(QSize(12, 12) * ratio);
        pixmap.setDevicePixelRatio(ratio);
        pixmap.fill(Qt::transparent);
        QPainter painter(&pixmap);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setPen(QPen(QColor(128, 128, 128, 200), 1));
        painter.setBrush(QColor::fromRgbF(color.red, color.green, color.blue));
        painter.drawEllipse(QRectF(2, 2, 8, 8));
        painter.end();
        icon.addPixmap(pixmap);
    }
    return icon;
}

QToolButton* button(const char* name, KWEditIcon icon, const QString& text) {
    auto* const made = new QToolButton;
    made->setObjectName(QLatin1String(name));
    made->setIcon(kwEditIcon(icon, made));
    made->setIconSize({14, 14});
    made->setAutoRaise(true);
    made->setFocusPolicy(Qt::TabFocus);
    made->setAccessibleName(text);
    made->setToolTip(text);
    return made;
}

} // namespace

// --- The dialog.

KWNewChannelDialog::KWNewChannelDialog(const QStringList& groups, QWidget* parent)
    : QDialog(parent), _name(new QLineEdit), _group(new QComboBox), _unit(new QComboBox) {
    setWindowTitle(tr("New Channel"));
    auto* const form = new QFormLayout(this);
    form->setLabelAlignment(Qt::AlignRight | Qt::AlignVCenter);
    _name->setObjectName(QStringLiteral("name"));
    _group->setObjectName(QStringLiteral("group"));
    _unit->setObjectName(QStringLiteral("unit"));
    _group->setEditable(true);
    _group->addItem(QString());
    _group->addItems(groups);
    _group->lineEdit()->setPlaceholderText(tr("None"));
    _unit->addItem(tr("None"), KWUnitTypeNone);
    _unit->addItem(tr("Length"), KWUnitTypeLength);
    _unit->addItem(tr("Angle"), KWUnitTypeAngle);
    form->addRow(tr("&Name"), _name);
    form->addRow(tr("&Group"), _group);
    form->addRow(tr("&Unit"), _unit);
    auto* const buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel);
    QPushButton* const ok = buttons->button(QDialogButtonBox::Ok);
    ok->setText(tr("Add"));
    ok->setEnabled(false);
    connect(_name, &QLineEdit::textChanged, ok,
            [this, ok] { ok->setEnabled(!channelName().isEmpty()); });
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    form->addRow(buttons);
}

QString KWNewChannelDialog::channelName() const {
    return _name->text().trimmed();
}

QString KWNewChannelDialog::groupName() const {
    return _group->currentText().trimmed();
}

int KWNewChannelDialog::unitType() const {
    return _unit->currentData().toInt();
}

// --- The outline.

KWElementChannelsView::KWElementChannelsView(KWEditDocument& document, QWidget* parent)
    : QWidget(parent), _document(&document), _tree(new QTreeWidget), _menu(new QMenu(this)),
      _add(button("addChannel", KWEditIcon::add, tr("Add Channel"))),
      _remove(button("removeChannel", KWEditIcon::remove, tr("Remove Channel"))),
      _rename(button("renameChannel", KWEditIcon::rename, tr("Rename Channel"))) {
    auto* const column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(2);
    _tree->setObjectName(QStringLiteral("channels"));
    _tree->setAccessibleName(tr("Channels"));
    _tree->setColumnCount(2);
    _tree->setHeaderHidden(true);
    _tree->setRootIsDecorated(true);
    _tree->setIndentation(14);
    _tree->setIconSize({12, 12});
    _tree->setUniformRowHeights(true);
    _tree->setEditTriggers(QAbstractItemView::DoubleClicked | QAbstractItemView::EditKeyPressed);
    _tree->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    _tree->header()->setStretchLastSection(false);
    _tree->header()->setMinimumSectionSize(20);
    _tree->header()->setSectionResizeMode(0, QHeaderView::Stretch);
    _tree->header()->setSectionResizeMode(1, QHeaderView::ResizeToContents);
    column->addWidget(_tree);
    auto* const row = new QHBoxLayout;
    row->setSpacing(0);
    _add->setMenu(_menu);
    _add->setPopupMode(QToolButton::InstantPopup);
    _add->setStyleSheet(QStringLiteral("QToolButton::menu-indicator { image: none; }"));
    for (QToolButton* const each : {_add, _remove, _rename})
        row->addWidget(each);
    row->addStretch(1);
    column->addLayout(row);

    connect(_menu, &QMenu::aboutToShow, this, &KWElementChannelsView::fillMenu);
    connect(_remove, &QToolButton::clicked, this, &KWElementChannelsView::removeCurrentChannel);
    connect(_rename, &QToolButton::clicked, this, &KWElementChannelsView::renameCurrentChannel);
    connect(_tree, &QTreeWidget::currentItemChanged, this, [this] {
        updateButtons();
        if (!_isFollowing)
            Q_EMIT currentChannelChanged(currentChannel());
    });
    connect(_tree, &QTreeWidget::itemChanged, this, [this](QTreeWidgetItem* item, int) {
        const auto channel = _isFollowing ? nullptr : channelOf(item);
        if (!channel)
            return;
        const QString name = item->text(0).trimmed();
        if (!name.isEmpty())
            _document->renameChannel(channel, name);
        followSoon();
    });
    // Keys may have come or gone.
    connect(&document, &KWEditDocument::structureChanged, this, &KWElementChannelsView::followSoon);
    updateButtons();
    updateHeight();
}

void KWElementChannelsView::setElement(const std::shared_ptr<KWElement>& element) {
    if (element == _element)
        return;
    _element = element;
    _changes.disconnect();
    if (element)
        _changes = KWNotificationCenter::defaultCenter().addObserver(
            KWElementChannelsDidChangeNotification, element.get(),
            [this](const KWNotification&) { followSoon(); });
    follow();
}

std::shared_ptr<KWChannel> KWElementChannelsView::channelOf(const QTreeWidgetItem* item) const {
    if (!item)
        return nullptr;
    bool isChannel = false;
    const int index = item->data(0, channelRole).toInt(&isChannel);
    return isChannel ? _channels[static_cast<std::size_t>(index)] : nullptr;
}

QTreeWidgetItem* KWElementChannelsView::itemOf(const std::shared_ptr<KWChannel>& channel) const {
    for (QTreeWidgetItemIterator it(_tree); *it; ++it)
        if (channel && channelOf(*it) == channel)
            return *it;
    return nullptr;
}

std::shared_ptr<KWChannel> KWElementChannelsView::currentChannel() const {
    return channelOf(_tree->currentItem());
}

void KWElementChannelsView::setCurrentChannel(const std::shared_ptr<KWChannel>& channel) {
    _isFollowing = true;
    _tree->setCurrentItem(itemOf(channel));
    _isFollowing = false;
    updateButtons();
}

void KWElementChannelsView::addItem(QTreeWidgetItem* parent,
                                    const std::shared_ptr<KWChannel>& channel) {
    auto* const item = new QTreeWidgetItem(parent);
    item->setText(0, QString::fromStdString(channel->name()));
    item->setText(1, kindOf(*channel));
    QColor faint = palette().color(QPalette::Text);
    faint.setAlpha(150);
    item->setForeground(1, faint);
    item->setIcon(0, dot(channel->channelColor()));
    item->setData(0, channelRole, static_cast<int>(_channels.size()));
    item->setFlags(item->flags() | Qt::ItemIsEditable);
    _channels.push_back(channel);
}

/// In the middle of an edit, the items stay.
void KWElementChannelsView::followSoon() {
    if (_isFollowPending)
        return;
    _isFollowPending = true;
    QMetaObject::invokeMethod(this, &KWElementChannelsView::follow, Qt::QueuedConnection);
}

void KWElementChannelsView::follow() {
    _isFollowPending = false;
    const auto current = currentChannel();
    const auto array = _element ? _element->channelArray() : nullptr;
    _isFollowing = true;
    _tree->clear();
    _channels.clear();
    if (array && array->ungroupedChannels())
        for (const auto& channel : *array->ungroupedChannels())
            if (channel)
                addItem(_tree->invisibleRootItem(), channel);
    if (array && array->channelGroups())
        for (const auto& group : *array->channelGroups()) {
            if (!group || !group->channels())
                continue;
            auto* const item = new QTreeWidgetItem(_tree);
            item->setText(0, QString::fromStdString(group->name()));
            item->setFlags(Qt::ItemIsEnabled);
            item->setFirstColumnSpanned(true);
            for (const auto& channel : *group->channels())
                if (channel)
                    addItem(item, channel);
            item->setExpanded(true);
        }
    _tree->setCurrentItem(itemOf(current));
    _isFollowing = false;
    updateButtons();
    updateHeight();
}

void KWElementChannelsView::updateButtons() {
    const bool hasArray = _element && _element->channelArray();
    _add->setEnabled(hasArray);
    _remove->setEnabled(currentChannel() != nullptr);
    _rename->setEnabled(currentChannel() != nullptr);
}

/// As high as its rows, within reason.
void KWElementChannelsView::updateHeight() {
    int rows = 0;
    for (QTreeWidgetItemIterator it(_tree); *it; ++it)
        ++rows;
    const int row = rows > 0 ? _tree->sizeHintForRow(0) : fontMetrics().height() + 2;
    _tree->setFixedHeight(std::clamp(rows, 2, mostRows) * row + 2 * _tree->frameWidth() + 2);
}

// --- Editing.

QString KWElementChannelsView::roleTitle(KWSpriteRole role) {
    switch (role) {
    case Role::x:
        return tr("Position x");
    case Role::y:
        return tr("Position y");
    case Role::rotation:
        return tr("Rotation");
    case Role::scale:
        return tr("Scale");
    case Role::scaleX:
        return tr("Scale x");
    case Role::scaleY:
        return tr("Scale y");
    case Role::squash:
        return tr("Squash");
    case Role::shear:
        return tr("Shear");
    case Role::opacity:
        return tr("Opacity");
    case Role::red:
        return tr("Red");
    case Role::green:
        return tr("Green");
    case Role::blue:
        return tr("Blue");
    case Role::radius:
        return tr("Radius");
    case Role::width:
        return tr("Width");
    case Role::height:
        return tr("Height");
    case Role::movieTime:
        return tr("Movie time");
    case Role::zoom:
        return tr("Zoom");
    case Role::pan:
        return tr("Pan");
    case Role::tilt:
        return tr("Tilt");
    default:
        return {};
    }
}

/// What the element has already is there, but cannot be chosen.
void KWElementChannelsView::fillMenu() {
    _menu->clear();
    if (!_element)
        return;
    const KWSpriteChannels bound(_element->name(), _element->channelArray().get());
    const auto add = [&](Role role) {
        QAction* const action = _menu->addAction(roleTitle(role));
        action->setEnabled(!bound.channel(role));
        connect(action, &QAction::triggered, this, [this, role] { addChannelForRole(role); });
    };
    if (KWStage::isStage(*_element))
        std::for_each(stageRoles.begin(), stageRoles.end(), add);
    else
        std::for_each(spriteRoles.begin(), spriteRoles.end(), add);
    _menu->addSeparator();
    connect(_menu->addAction(tr("Other…")), &QAction::triggered, this,
            &KWElementChannelsView::askForChannel);
}

std::shared_ptr<KWChannel> KWElementChannelsView::addKeyFramed(const QString& name,
                                                               const QString& group, int unitType,
                                                               float value) {
    const auto array = _element ? _element->channelArray() : nullptr;
    if (!array)
        return nullptr;
    constexpr std::uint32_t colors = 6; // black is hard to see
    auto channel = channelWithNameInitialValueColor<KWKeyFramedChannel>(
        name.toStdString(), value, static_cast<std::int32_t>((array->channelCount() + 2) % colors));
    channel->setUnitType(unitType);
    if (!_document->addChannel(_element, channel, group))
        return nullptr;
    follow();
    setCurrentChannel(channel);
    Q_EMIT currentChannelChanged(channel);
    return channel;
}

std::shared_ptr<KWChannel> KWElementChannelsView::addChannelForRole(KWSpriteRole role) {
    if (!_element)
        return nullptr;
    const auto [name, group] = KWSpriteChannels::usualPlace(role);
    return addKeyFramed(QString::fromStdString(name), QString::fromStdString(group),
                        unitTypeOf(role), valueOf(role, *_element));
}

std::shared_ptr<KWChannel> KWElementChannelsView::addChannel(const QString& name,
                                                             const QString& group, int unitType) {
    return addKeyFramed(name, group, unitType, 0);
}

void KWElementChannelsView::askForChannel() {
    QStringList groups;
    if (const auto array = _element ? _element->channelArray() : nullptr;
        array && array->channelGroups())
        for (const auto& group : *array->channelGroups())
            if (group && !group->name().empty())
                groups << QString::fromStdString(group->name());
    auto* const dialog = new KWNewChannelDialog(groups, this);
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    connect(dialog, &QDialog::accepted, this, [this, dialog] {
        addChannel(dialog->channelName(), dialog->groupName(), dialog->unitType());
    });
    dialog->open();
}

void KWElementChannelsView::removeCurrentChannel() {
    const auto channel = currentChannel();
    if (!channel)
        return;
    _document->removeChannel(_element, channel);
    follow();
    Q_EMIT currentChannelChanged(currentChannel());
}

void KWElementChannelsView::renameCurrentChannel() {
    if (QTreeWidgetItem* const item = _tree->currentItem(); item && currentChannel())
        _tree->editItem(item, 0);
}
