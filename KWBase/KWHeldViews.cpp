#include <KWBase/KWHeldViews.h>

#include <QChildEvent>
#include <QWidget>
#include <algorithm>
#include <utility>

namespace {

constexpr QSize noMinimum(0, 0);
constexpr QSize noMaximum(QWIDGETSIZE_MAX, QWIDGETSIZE_MAX);

bool isHiddenByHost(const QWidget& view) {
    return view.testAttribute(Qt::WA_WState_ExplicitShowHide) && view.isHidden();
}

} // namespace

KWHeldViews::KWHeldViews(QWidget& layout, Lifted lifted, std::function<void(QWidget*)> didLetGo)
    : _layout(layout), _lifted(lifted), _didLetGo(std::move(didLetGo)) {
    layout.installEventFilter(this);
}

KWHeldViews::~KWHeldViews() {
    for (const auto& [key, held] : _held)
        if (held.view && !_layout.isAncestorOf(held.view))
            giveBack(held);
}

/// Null when there is none any more.
KWHeldViews::Held* KWHeldViews::find(QWidget& view) {
    const auto found = _held.find(&view);
    if (found != _held.end() && found->second.view)
        return &found->second;
    const QPointer<QWidget> alive(&view);
    const QPointer<KWHeldViews> self(this);
    if (!view.parentWidget())
        move(view, parking());
    if (!self || !alive)
        return nullptr;
    Held& held = _held[&view];
    held = {&view, noMinimum, noMaximum, 0, std::nullopt};
    return &held;
}

void KWHeldViews::adopt(QWidget& view) {
    if (Held* const held = find(view)) {
        held->pass = _pass;
        liftLimits(*held);
    }
}

std::optional<std::size_t> KWHeldViews::hold(QWidget& view) {
    Held* const held = find(view);
    if (!held)
        return std::nullopt;
    if (held->pass != _pass)
        held->place.reset();
    held->pass = _pass;
    if (!held->place)
        held->place = _placeCount++;
    liftLimits(*held);
    return held->place;
}

void KWHeldViews::liftLimits(Held& held) const {
    QWidget& view = *held.view;
    const bool liftsHeights = _lifted == Lifted::sizes;
    const QSize minimum = view.minimumSize();
    const QSize maximum = view.maximumSize();
    if (minimum.width() != 0) {
        held.minimum.setWidth(minimum.width());
        view.setMinimumWidth(0);
    }
    if (maximum.width() != QWIDGETSIZE_MAX) {
        held.maximum.setWidth(maximum.width());
        view.setMaximumWidth(QWIDGETSIZE_MAX);
    }
    if (liftsHeights && minimum.height() != 0) {
        held.minimum.setHeight(minimum.height());
        view.setMinimumHeight(0);
    }
    if (liftsHeights && maximum.height() != QWIDGETSIZE_MAX) {
        held.maximum.setHeight(maximum.height());
        view.setMaximumHeight(QWIDGETSIZE_MAX);
    }
}

/// What the host has set since stands.
void KWHeldViews::giveBack(const Held& held) const {
    QWidget& view = *held.view;
    if (view.minimumWidth() == 0)
        view.setMinimumWidth(held.minimum.width());
    if (view.maximumWidth() == QWIDGETSIZE_MAX)
        view.setMaximumWidth(held.maximum.width());
    if (_lifted == Lifted::widths)
        return;
    if (view.minimumHeight() == 0)
        view.setMinimumHeight(held.minimum.height());
    if (view.maximumHeight() == QWIDGETSIZE_MAX)
        view.setMaximumHeight(held.maximum.height());
}

void KWHeldViews::beginPass() {
    ++_pass;
    _placeCount = 0;
}

void KWHeldViews::endPass() {
    std::vector<Held> left;
    for (auto held = _held.begin(); held != _held.end();) {
        if (held->second.pass == _pass) {
            ++held;
            continue;
        }
        left.push_back(held->second);
        held = _held.erase(held);
    }
    for (const Held& held : left)
        if (held.view)
            giveBack(held);
}

bool KWHeldViews::hasSuperview(const QWidget& view) const {
    const QWidget* const parent = view.parentWidget();
    return parent && parent != _parking;
}

void KWHeldViews::addSubview(QWidget& view, const QRect& geometry) {
    const QPointer<QWidget> alive(&view);
    move(view, _layout);
    if (alive)
        view.setGeometry(geometry);
    if (alive && !isHiddenByHost(view))
        view.show();
}

void KWHeldViews::removeFromSuperview(QWidget& view) {
    move(view, parking());
}

QWidget& KWHeldViews::parking() {
    if (!_parking) {
        _parking = new QWidget(&_layout);
        _parking->hide();
        _parking->installEventFilter(this);
    }
    return *_parking;
}

void KWHeldViews::move(QWidget& view, QWidget& parent) {
    const bool wasMoving = std::exchange(_isMoving, true);
    const QPointer<KWHeldViews> self(this);
    // A view cannot become a child of what is inside it.
    if (!view.isAncestorOf(&parent) && &view != &parent)
        view.setParent(&parent);
    if (self)
        _isMoving = wasMoving;
}

bool KWHeldViews::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::ChildRemoved && !_isMoving &&
        (watched == &_layout || watched == _parking)) {
        childRemoved(static_cast<QChildEvent*>(event)->child());
    } else if (event->type() == QEvent::ParentChange && watched != &_layout) {
        watched->removeEventFilter(this);
        const auto found = _held.find(watched);
        if (found != _held.end()) {
            const Held held = found->second;
            _held.erase(found);
            giveBack(held);
            _didLetGo(held.view);
        }
    }
    return false;
}

void KWHeldViews::childRemoved(QObject* child) {
    const auto found = _held.find(child);
    if (found == _held.end())
        return;
    if (found->second.view) {
        // It is on its way to another parent, and will say when it is there.
        child->installEventFilter(this);
        return;
    }
    _held.erase(found);
    _didLetGo(nullptr);
}

void KWOrderFocus(QWidget& container, const std::vector<QWidget*>& children) {
    std::unordered_map<const QWidget*, std::size_t> places;
    for (std::size_t i = 0; i < children.size(); ++i)
        places.emplace(children[i], i);
    std::vector<std::pair<std::size_t, QWidget*>> stops;
    for (QWidget* stop = container.nextInFocusChain(); stop != &container;
         stop = stop->nextInFocusChain()) {
        if (!(stop->focusPolicy() & Qt::TabFocus) || stop->focusProxy())
            continue;
        const QWidget* child = stop;
        while (child && !child->isWindow() && child->parentWidget() != &container)
            child = child->parentWidget();
        if (const auto found = places.find(child); found != places.end())
            stops.emplace_back(found->second, stop);
    }
    const auto isBefore = [](const auto& a, const auto& b) { return a.first < b.first; };
    if (std::is_sorted(stops.begin(), stops.end(), isBefore))
        return;
    std::stable_sort(stops.begin(), stops.end(), isBefore);
    for (std::size_t i = 1; i < stops.size(); ++i)
        QWidget::setTabOrder(stops[i - 1].second, stops[i].second);
}
