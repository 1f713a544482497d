#include <KWBase/KWHeldViews.h>
#include <KWBase/KWLayoutArithmetic.h>
#include <KWBase/KWStackedLabelView.h>
#include <KWBase/KWStackedView.h>

#include <QAccessible>
#include <QCoreApplication>
#include <QEvent>
#include <QLayout>
#include <QPaintEvent>
#include <QPainter>
#include <QResizeEvent>
#include <algorithm>
#include <stdexcept>
#include <string>

namespace {

QRect qtRect(const KWLayoutFrame& frame) {
    const KWWidgetRect rect = KWWidgetRectForFrame(frame);
    return {rect.x, rect.y, rect.width, rect.height};
}

std::vector<KWStackEntry> entriesOf(const std::vector<std::shared_ptr<KWStackedItem>>& items) {
    std::vector<KWStackEntry> entries;
    entries.reserve(items.size());
    for (const auto& item : items) {
        KWStackEntry entry;
        if (const KWStackedLabelView* const bar = item->labelView())
            entry.labelHeight = static_cast<float>(bar->frameForLabel().height());
        if (const QWidget* const content = item->contentView()) {
            entry.contentX = static_cast<float>(content->x());
            entry.contentHeight = static_cast<float>(content->height());
        }
        entry.isCollapsed = item->isCollapsed();
        entries.push_back(entry);
    }
    return entries;
}

void setWidth(QWidget* view, int width) {
    if (!view)
        return;
    const QPointer<QWidget> alive(view);
    view->resize(width, view->height());
    if (alive)
        view->update();
}

} // namespace

// --- Items.

KWStackedItem::KWStackedItem(KWStackedView* stackedView, QWidget* contentView, const QString& label)
    : _stackedView(stackedView), _contentView(contentView),
      _labelView(new KWStackedLabelView(label, this)) {
    if (stackedView && contentView)
        stackedView->_held->adopt(*contentView);
}

KWStackedItem::~KWStackedItem() {
    delete _labelView.data();
}

KWStackedLabelView* KWStackedItem::labelView() const {
    return _labelView;
}

KWStackedView* KWStackedItem::stackedView() const {
    return _stackedView;
}

void KWStackedItem::setCollapsed(bool isCollapsed) {
    const bool changes = isCollapsed != _collapsed;
    _collapsed = isCollapsed;
    const QPointer<KWStackedItem> self(this);
    if (_stackedView)
        _stackedView->updateLayout();
    if (!self || !changes)
        return;
    if (_labelView) {
        _labelView->update();
        QAccessible::State changed;
        changed.expanded = true;
        changed.collapsed = true;
        QAccessibleStateChangeEvent event(_labelView, changed);
        QAccessible::updateAccessibility(&event);
    }
    Q_EMIT collapsedChanged(isCollapsed);
}

// --- The stack.

KWStackedView::KWStackedView(QWidget* parent)
    : QWidget(parent),
      _held(std::make_unique<KWHeldViews>(*this, KWHeldViews::Lifted::widths,
                                          [this](const QWidget* view) { forget(view); })) {
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    followSuperview();
}

KWStackedView::KWStackedView(const QRect& frame, QWidget* parent) : KWStackedView(parent) {
    setGeometry(frame);
}

KWStackedView::~KWStackedView() {
    ++_layoutCount;
    _held.reset();
    _items.clear();
}

void KWStackedView::checkCanHold(const QWidget* view) const {
    if (view && (view == this || view->isAncestorOf(this)))
        throw std::invalid_argument("A stack cannot hold itself");
}

void KWStackedView::_addViewNoUpdateLabel(QWidget* view, const QString& label) {
    checkCanHold(view);
    // What nobody has given a size has one that means nothing.
    if (view && !view->testAttribute(Qt::WA_Resized))
        view->adjustSize();
    auto item = std::make_shared<KWStackedItem>(this, view, label);
    connect(item.get(), &KWStackedItem::collapsedChanged, this,
            [this, changed = item.get()](bool isCollapsed) {
                const auto isIt = [=](const auto& one) { return one.get() == changed; };
                const auto found = std::find_if(_items.begin(), _items.end(), isIt);
                if (found != _items.end())
                    Q_EMIT collapsedChanged(static_cast<int>(found - _items.begin()), isCollapsed);
            });
    if (view)
        view->installEventFilter(this);
    _items.push_back(item);
    item->setDrawsSeparator(_items.size() > 1);
}

void KWStackedView::addViewLabel(QWidget* view, const QString& label) {
    _addViewNoUpdateLabel(view, label);
    updateLayout();
}

void KWStackedView::addViewsLabels(const std::vector<QWidget*>& views,
                                   const std::vector<QString>& labels) {
    if (labels.size() < views.size())
        throw std::out_of_range("There is no label " + std::to_string(labels.size()));
    for (const QWidget* const view : views)
        checkCanHold(view);
    for (std::size_t i = 0; i < views.size(); ++i)
        _addViewNoUpdateLabel(views[i], labels[i]);
    updateLayout();
}

void KWStackedView::toggleViewAtIndex(std::size_t index) {
    const std::shared_ptr<KWStackedItem> item = _items.at(index);
    item->toggleCollapsed();
}

bool KWStackedView::isCollapsedAtIndex(std::size_t index) const {
    return _items.at(index)->isCollapsed();
}

/// The host has taken the view away; null for one that has been deleted.
void KWStackedView::forget(const QWidget* view) {
    for (const auto& item : _items) {
        if (view && item->_contentView == view) {
            item->_contentView->removeEventFilter(this);
            item->_contentView = nullptr;
        }
    }
    layOutLater();
}

// --- Layout.

void KWStackedView::updateLayout() {
    const QPointer<KWStackedView> self(this);
    const unsigned layout = ++_layoutCount;
    // What follows calls the views, which may do anything: lay the stack out once more, too, and
    // then that layout counts.
    const auto isOver = [&] { return !self || layout != _layoutCount; };
    const std::vector<std::shared_ptr<KWStackedItem>> items = _items;
    std::vector<KWStackEntry> entries = entriesOf(items);
    const QRect frame = qtRect(
        {0, 0, static_cast<float>(width()), KWStackEntries(entries, static_cast<float>(width()))});
    bool treeChanges = false;
    for (std::size_t i = 0; i < items.size(); ++i) {
        treeChanges |= placeBar(*items[i], qtRect(entries[i].label));
        if (isOver())
            return;
        treeChanges |= placeContent(*items[i], qtRect(entries[i].content));
        if (isOver())
            return;
    }
    if (treeChanges)
        orderFocus();
    const bool changesHeight = height() != frame.height();
    resize(width(), frame.height());
    if (isOver())
        return;
    update();
    updateGeometry();
    if (changesHeight)
        Q_EMIT heightChanged(frame.height());
}

/// Answers whether the bar has come into the tree.
bool KWStackedView::placeBar(KWStackedItem& item, const QRect& frame) {
    KWStackedLabelView* const bar = item.labelView();
    if (!bar)
        return false;
    const bool isAdded = bar->parentWidget() != this;
    if (isAdded)
        bar->setParent(this);
    bar->setGeometry(frame);
    if (isAdded)
        bar->show();
    return isAdded;
}

bool KWStackedView::placeContent(KWStackedItem& item, const QRect& frame) {
    QWidget* const content = item.contentView();
    if (!content)
        return false;
    const QPointer<KWStackedItem> alive(&item);
    _held->adopt(*content);
    if (!alive || item.contentView() != content)
        return false;
    if (item.isCollapsed()) {
        if (content->parentWidget() == this)
            _held->removeFromSuperview(*content);
        return false;
    }
    if (content->parentWidget() == this) {
        content->setGeometry(frame);
        return false;
    }
    _held->addSubview(*content, frame);
    return true;
}

void KWStackedView::resizeStackedViews() {
    const QPointer<KWStackedView> self(this);
    const std::vector<std::shared_ptr<KWStackedItem>> items = _items;
    const int wanted = width();
    for (const auto& item : items) {
        setWidth(item->labelView(), wanted);
        if (self)
            setWidth(item->contentView(), wanted);
        if (!self)
            return;
    }
}

void KWStackedView::resizeWithOldSuperviewSize(const QSize&) {
    if (!parentWidget())
        return;
    const QPointer<KWStackedView> self(this);
    _followsSuperview = true;
    resize(parentWidget()->width(), height());
    if (!self)
        return;
    _followsSuperview = false;
    resizeStackedViews();
}

void KWStackedView::resizeEvent(QResizeEvent* event) {
    if (!_followsSuperview && event->size().width() != event->oldSize().width())
        resizeStackedViews();
}

void KWStackedView::followSuperview() {
    if (_superview == parentWidget())
        return;
    if (_superview)
        _superview->removeEventFilter(this);
    _superview = parentWidget();
    if (_superview)
        _superview->installEventFilter(this);
}

void KWStackedView::layOutLater() {
    QCoreApplication::postEvent(this, new QEvent(QEvent::LayoutRequest));
}

bool KWStackedView::event(QEvent* event) {
    switch (event->type()) {
    case QEvent::ParentChange:
        followSuperview();
        break;
    case QEvent::LayoutRequest:
    case QEvent::ApplicationFontChange:
        updateLayout();
        return true;
    default:
        break;
    }
    return QWidget::event(event);
}

bool KWStackedView::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() != QEvent::Resize)
        return false;
    const auto& resized = *static_cast<QResizeEvent*>(event);
    if (watched == _superview) {
        if (!_superview->layout())
            resizeWithOldSuperviewSize(resized.oldSize());
    } else if (resized.size().height() != resized.oldSize().height()) {
        layOutLater();
    }
    return false;
}

QSize KWStackedView::sizeHint() const {
    QSize size = minimumSizeHint();
    for (const auto& item : _items) {
        if (const KWStackedLabelView* const bar = item->labelView())
            size = size.expandedTo({bar->sizeHint().width(), 0});
        if (const QWidget* const content = item->contentView())
            size = size.expandedTo({content->x() + content->sizeHint().width(), 0});
    }
    return size;
}

QSize KWStackedView::minimumSizeHint() const {
    QSize size(0, heightOfItems());
    for (const auto& item : _items)
        if (const KWStackedLabelView* const bar = item->labelView())
            size = size.expandedTo({bar->minimumSizeHint().width(), 0});
    return size;
}

int KWStackedView::heightOfItems() const {
    std::vector<KWStackEntry> entries = entriesOf(_items);
    return qtRect({0, 0, 0, KWStackEntries(entries, 0)}).height();
}

void KWStackedView::orderFocus() {
    std::vector<QWidget*> views;
    for (const auto& item : _items)
        for (QWidget* const view : {static_cast<QWidget*>(item->labelView()), item->contentView()})
            if (view && view->parentWidget() == this)
                views.push_back(view);
    KWOrderFocus(*this, views);
}

bool KWStackedView::focusNextPrevChild(bool next) {
    // Something may have been added inside of a view since the last layout.
    orderFocus();
    return QWidget::focusNextPrevChild(next);
}

// --- Drawing.

void KWStackedView::drawRect(QPainter&, const QRectF&) {}

void KWStackedView::paintEvent(QPaintEvent* event) {
    QPainter painter(this);
    drawRect(painter, QRectF(event->rect()));
}
