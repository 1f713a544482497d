#include <KWBase/KWHeldViews.h>
#include <KWBase/KWLayoutView.h>

#include <QPaintEvent>
#include <QPainter>
#include <QPointer>
#include <QResizeEvent>
#include <stdexcept>
#include <string>
#include <utility>

/// Where a pane wants its view. What happens to the views may change the panes, so this is noted
/// before anything happens.
struct KWLayoutView::Placement {
    QPointer<QWidget> view;
    KWLayoutFrame frame;
    bool isVisible;
    bool leavesSuperview = false; ///< another pane with the same view, before this one, is hidden
};

namespace {

template <class List>
auto& elementAt(const List& list, std::int32_t index, const char* what) {
    if (index < 0 || static_cast<std::size_t>(index) >= list.size() ||
        !list[static_cast<std::size_t>(index)])
        throw std::out_of_range(std::string("There is no ") + what + " " + std::to_string(index));
    return *list[static_cast<std::size_t>(index)];
}

QRect qtRect(const KWWidgetRect& rect) {
    return {rect.x, rect.y, rect.width, rect.height};
}

/// Moves a child without Qt working out what has to be drawn: the child is drawn anew, and what was
/// behind it with its parent. Qt would compare each that moves with all its siblings, and join
/// thousands of regions. What is inside of a child it has to work out itself, and a window of the
/// platform's own it has to move.
void moveSilently(QWidget& child, const QRect& rect) {
    if (child.internalWinId() || !child.children().isEmpty()) {
        child.setGeometry(rect);
        return;
    }
    const QPointer<QWidget> alive(&child);
    child.setAttribute(Qt::WA_OutsideWSRange);
    child.setGeometry(rect);
    if (!alive)
        return;
    child.setAttribute(Qt::WA_OutsideWSRange, false);
    child.update(); // what is opaque is not drawn with its parent
}

template <class List>
void divide(const List& records, float total, float space) {
    std::vector<KWLayoutShare> shares;
    shares.reserve(records.size());
    for (const auto& record : records)
        shares.push_back(record ? record->share() : KWLayoutShare{.isVisible = false});
    KWDivideSpace(shares, total, space);
    for (std::size_t i = 0; i < records.size(); ++i)
        if (shares[i].isVisible)
            records[i]->setActual(shares[i].actualOffset, shares[i].actualSize);
}

} // namespace

KWLayoutView::KWLayoutView(QWidget* parent)
    : QWidget(parent), _columns(std::make_shared<KWLayoutColumnList>()),
      _held(std::make_unique<KWHeldViews>(*this, KWHeldViews::Lifted::sizes,
                                          [this](const QWidget* view) { forget(view); })) {
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
}

KWLayoutView::KWLayoutView(const QRect& frame, QWidget* parent) : KWLayoutView(parent) {
    setGeometry(frame);
}

KWLayoutView::~KWLayoutView() {
    ++_layoutCount;
    _held.reset();
}

void KWLayoutView::setInterpaneSpace(std::int32_t space) {
    if (std::exchange(_interpaneSpace, space) != space)
        Q_EMIT settingsChanged();
}

void KWLayoutView::setImageBackground(const std::shared_ptr<KWImageBackground>& background) {
    const bool changes = background != _bkg;
    _bkg = background;
    update();
    if (changes)
        Q_EMIT settingsChanged();
}

// --- Columns and panes.

KWLayoutColumn& KWLayoutView::columnAt(std::int32_t index) const {
    return elementAt(*_columns, index, "column");
}

KWLayoutRecord& KWLayoutView::recordAt(std::int32_t column, std::int32_t pane) const {
    KWLayoutColumn& record = columnAt(column);
    if (pane == -1)
        return record;
    static const KWLayoutPaneList none;
    return elementAt(record.panes() ? *record.panes() : none, pane, "pane");
}

bool KWLayoutView::canHold(const QWidget* view) const {
    return view != this && !view->isAncestorOf(this);
}

void KWLayoutView::addColumnWithWidthPercent(float width, bool isPercent) {
    _columns->push_back(std::make_shared<KWLayoutColumn>(width, isPercent));
    updateSubviewSizes();
}

void KWLayoutView::addPaneHeightPercentColumn(QWidget* view, float height, bool isPercent,
                                              std::int32_t column) {
    KWLayoutColumn& record = columnAt(column);
    if (view && !canHold(view))
        throw std::invalid_argument("A layout view cannot hold itself");
    if (!record.panes())
        record.setPanes(std::make_shared<KWLayoutPaneList>());
    record.panes()->push_back(std::make_shared<KWLayoutPane>(view, height, isPercent));
    if (view)
        _held->adopt(*view);
}

void KWLayoutView::finishedAddingPanes() {
    updateSubviewSizes();
}

void KWLayoutView::setVisibleColumnPane(bool isVisible, std::int32_t column, std::int32_t pane) {
    KWLayoutRecord& record = recordAt(column, pane);
    const bool changes = record.isVisible() != isVisible;
    record.setVisible(isVisible);
    const QPointer<KWLayoutView> self(this);
    updateSubviewSizes();
    if (!self)
        return;
    update();
    if (changes)
        Q_EMIT visibilityChanged(column, pane, isVisible);
}

bool KWLayoutView::isVisibleColumnPane(std::int32_t column, std::int32_t pane) const {
    return recordAt(column, pane).isVisible();
}

void KWLayoutView::toggleVisibleColumnPane(std::int32_t column, std::int32_t pane) {
    setVisibleColumnPane(!isVisibleColumnPane(column, pane), column, pane);
}

void KWLayoutView::setVisibleColumn(bool isVisible, std::int32_t column) {
    setVisibleColumnPane(isVisible, column, -1);
}

bool KWLayoutView::isVisibleColumn(std::int32_t column) const {
    return isVisibleColumnPane(column, -1);
}

void KWLayoutView::toggleVisibleColumn(std::int32_t column) {
    toggleVisibleColumnPane(column, -1);
}

/// The host has taken the view away; null for one that has been deleted.
void KWLayoutView::forget(const QWidget* view) {
    if (!view)
        return;
    for (const auto& column : *_columns)
        if (column && column->panes())
            for (const auto& pane : *column->panes())
                if (pane && pane->view() == view)
                    pane->setView(nullptr);
}

// --- Layout.

void KWLayoutView::updateSubviewSizes() {
    const QPointer<KWLayoutView> self(this);
    const unsigned layout = ++_layoutCount;
    // What follows calls the views, which may do anything: lay the view out once more, too, and
    // then that layout counts.
    const auto isOver = [&] { return !self || layout != _layoutCount; };
    computeShares();
    std::vector<Placement> placements = wantedPlacements();
    if (!holdViews(placements, layout))
        return;
    bool treeChanges = false;
    for (const Placement& placement : placements) {
        treeChanges |= place(placement);
        if (isOver())
            return;
    }
    if (treeChanges)
        orderFocus();
}

void KWLayoutView::computeShares() {
    const auto space = static_cast<float>(_interpaneSpace);
    divide(*_columns, static_cast<float>(width()), space);
    for (const auto& column : *_columns)
        if (column && column->isVisible() && column->panes())
            divide(*column->panes(), static_cast<float>(height()), space);
}

std::vector<KWLayoutView::Placement> KWLayoutView::wantedPlacements() const {
    std::vector<Placement> placements;
    for (const auto& column : *_columns) {
        if (!column || !column->panes())
            continue;
        const KWLayoutShare share = column->share();
        for (const auto& pane : *column->panes()) {
            QWidget* const view = pane ? pane->view() : nullptr;
            if (!view || !canHold(view))
                continue;
            placements.push_back({view,
                                  KWFrameOfPane(share, pane->share(), static_cast<float>(height())),
                                  share.isVisible && pane->isVisible()});
        }
    }
    return placements;
}

/// Holds the views, and leaves one placement for each. False when another layout, or nothing at
/// all, takes over.
bool KWLayoutView::holdViews(std::vector<Placement>& placements, unsigned layout) {
    const QPointer<KWLayoutView> self(this);
    std::size_t count = 0;
    _held->beginPass();
    for (Placement& placement : placements) {
        if (!placement.view)
            continue;
        const std::optional<std::size_t> at = _held->hold(*placement.view);
        if (!self || layout != _layoutCount)
            return false;
        if (!at)
            continue;
        if (*at < count) {
            Placement& first = placements[*at];
            placement.leavesSuperview = first.leavesSuperview || !first.isVisible;
            first = placement;
        } else {
            if (&placements[count] != &placement)
                placements[count] = std::move(placement);
            ++count;
        }
    }
    placements.resize(count);
    _held->endPass();
    return self && layout == _layoutCount;
}

/// Answers whether the view has come into the tree.
bool KWLayoutView::place(const Placement& placement) {
    QWidget* const view = placement.view;
    if (!view)
        return false;
    const bool hasSuperview = _held->hasSuperview(*view);
    const bool isAdded = placement.isVisible && (!hasSuperview || placement.leavesSuperview) &&
                         view->parentWidget() != this;
    const bool isElsewhere =
        placement.isVisible && hasSuperview && !isAdded && view->parentWidget() != this;
    const int superviewHeight = isElsewhere ? view->parentWidget()->height() : height();
    const QRect rect =
        qtRect(KWWidgetRectForFrame(placement.frame, static_cast<float>(superviewHeight)));
    if (isAdded) {
        _held->addSubview(*view, rect);
        return true;
    }
    if (!placement.isVisible && hasSuperview)
        _held->removeFromSuperview(*view);
    if (!placement.view || view->geometry() == rect)
        return false;
    if (view->parentWidget() == this && isVisible()) {
        update();
        moveSilently(*view, rect);
    } else {
        view->setGeometry(rect);
    }
    return false;
}

void KWLayoutView::orderFocus() {
    std::vector<QWidget*> views;
    for (const auto& column : *_columns)
        if (column && column->panes())
            for (const auto& pane : *column->panes())
                if (pane && pane->view() && pane->view()->parentWidget() == this)
                    views.push_back(pane->view());
    KWOrderFocus(*this, views);
}

bool KWLayoutView::focusNextPrevChild(bool next) {
    // Views may have been added inside of panes since the last layout.
    orderFocus();
    return QWidget::focusNextPrevChild(next);
}

void KWLayoutView::resizeSubviewsWithOldSize(const QSize&) {
    updateSubviewSizes();
}

void KWLayoutView::resizeEvent(QResizeEvent* event) {
    resizeSubviewsWithOldSize(event->oldSize());
}

// --- Drawing.

void KWLayoutView::drawRect(QPainter& painter, const QRectF&) {
    if (_bkg)
        _bkg->drawInRect(painter, QRectF(this->rect()));
}

void KWLayoutView::paintEvent(QPaintEvent* event) {
    QPainter painter(this);
    drawRect(painter, QRectF(event->rect()));
}
