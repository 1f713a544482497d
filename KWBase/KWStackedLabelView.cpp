#include <KWBase/KWLayoutArithmetic.h>
#include <KWBase/KWStackedLabelView.h>
#include <KWBase/KWStackedView.h>
#include <KWFoundation/KWLog.h>

#include <QAccessible>
#include <QAccessibleWidget>
#include <QFontDatabase>
#include <QFontMetrics>
#include <QHelpEvent>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPaintEvent>
#include <QPainter>
#include <QPolygonF>
#include <QStyle>
#include <QStyleOptionFocusRect>
#include <QToolTip>
#include <cmath>

namespace {

constexpr int labelFontSize = 11;

QRectF qtRect(const KWLayoutFrame& frame) {
    return {static_cast<double>(frame.x), static_cast<double>(frame.y),
            static_cast<double>(frame.width), static_cast<double>(frame.height)};
}

KWLayoutFrame layoutFrame(const QRect& rect) {
    return {static_cast<float>(rect.x()), static_cast<float>(rect.y()),
            static_cast<float>(rect.width()), static_cast<float>(rect.height())};
}

bool isDark(const QPalette& palette) {
    return palette.color(QPalette::Window).lightness() <
           palette.color(QPalette::WindowText).lightness();
}

/// A bar as assistive technology sees it.
class LabelViewInterface final : public QAccessibleWidget {
  public:
    explicit LabelViewInterface(KWStackedLabelView& view)
        : QAccessibleWidget(&view, QAccessible::TreeItem) {}

    QString text(QAccessible::Text which) const override {
        const QString given = QAccessibleWidget::text(which);
        return which == QAccessible::Name && widget()->accessibleName().isEmpty() ? view().label()
                                                                                  : given;
    }
    QAccessible::State state() const override {
        QAccessible::State state = QAccessibleWidget::state();
        const KWStackedItem* const item = view().item();
        state.expandable = true;
        state.collapsed = item && item->isCollapsed();
        state.expanded = !state.collapsed;
        return state;
    }
    QStringList actionNames() const override {
        return QStringList{toggleAction()} + QAccessibleWidget::actionNames();
    }
    void doAction(const QString& name) override {
        if (name != toggleAction())
            QAccessibleWidget::doAction(name);
        else if (KWStackedItem* const item = view().item())
            item->toggleCollapsed();
    }

  private:
    KWStackedLabelView& view() const { return *static_cast<KWStackedLabelView*>(widget()); }
};

QAccessibleInterface* labelViewInterface(const QString&, QObject* object) {
    auto* const view = qobject_cast<KWStackedLabelView*>(object);
    return view ? new LabelViewInterface(*view) : nullptr;
}

} // namespace

inline namespace kwbase {

QFont getLabelFont() {
    QFont font = QFontDatabase::systemFont(QFontDatabase::GeneralFont);
    font.setBold(true);
    font.setPixelSize(labelFontSize);
    return font;
}

} // namespace kwbase

KWStackedLabelView::KWStackedLabelView(const QString& label, KWStackedItem* item)
    : _item(item), _label(label) {
    static const bool installed = [] {
        QAccessible::installFactory(labelViewInterface);
        return true;
    }();
    static_cast<void>(installed);
    setFocusPolicy(Qt::TabFocus);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    resize(100, 100);
}

KWStackedLabelView* KWStackedLabelView::initWithFrame(const QRect&) {
    KWLog("use initWithLabel: instead");
    return nullptr;
}

KWStackedItem* KWStackedLabelView::item() const {
    return _item;
}

QRectF KWStackedLabelView::frameForLabel() const {
    const auto lineHeight = static_cast<float>(QFontMetrics(getLabelFont()).height());
    return qtRect(KWLabelFrame(layoutFrame(rect()), lineHeight));
}

QRectF KWStackedLabelView::frameForTriangle() const {
    return qtRect(KWTriangleFrame(layoutFrame(rect())));
}

/// A label that is cut leaves a little space after it.
QRectF KWStackedLabelView::frameForText() const {
    return frameForLabel().translated(0, 2).adjusted(0, 0, -4, 0);
}

QSize KWStackedLabelView::sizeHint() const {
    const QRectF frame = frameForLabel();
    const int text = QFontMetrics(getLabelFont()).horizontalAdvance(_label);
    return {static_cast<int>(frame.x()) + text, static_cast<int>(std::ceil(frame.height()))};
}

QSize KWStackedLabelView::minimumSizeHint() const {
    const QRectF frame = frameForLabel();
    return {static_cast<int>(frame.x()), static_cast<int>(std::ceil(frame.height()))};
}

// --- Drawing.

void KWStackedLabelView::drawRect(QPainter& painter, const QRectF&) {
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    if (_item && _item->drawsSeparator()) {
        // On a dark palette the light line would be the brightest thing in the window.
        const float gray = isDark(palette()) ? 1 / 3.0f : 2 / 3.0f;
        painter.setPen(QPen(QColor::fromRgbF(gray, gray, gray), 1, Qt::SolidLine, Qt::FlatCap));
        painter.setClipRect(rect(), Qt::IntersectClip);
        painter.drawLine(QPointF(0, 0), QPointF(width(), 0));
    }
    QPolygonF triangle;
    const KWLayoutFrame frame = KWTriangleFrame(layoutFrame(rect()));
    for (const KWLayoutPoint& corner : KWTrianglePath(frame, _item && _item->isCollapsed()))
        triangle << QPointF(static_cast<double>(corner.x), static_cast<double>(corner.y));
    painter.setPen(Qt::NoPen);
    painter.setBrush(QColor::fromRgbF(0.5f, 0.5f, 0.5f));
    painter.drawPolygon(triangle);
    if (!_label.isEmpty()) {
        const QFont font = getLabelFont();
        const QRectF where = frameForText();
        painter.setFont(font);
        painter.setPen(palette().color(QPalette::WindowText));
        painter.drawText(where,
                         Qt::AlignLeft | Qt::AlignAbsolute | Qt::AlignTop | Qt::TextSingleLine,
                         QFontMetricsF(font).elidedText(_label, Qt::ElideRight, where.width()));
    }
    painter.restore();
}

void KWStackedLabelView::paintEvent(QPaintEvent* event) {
    QPainter painter(this);
    if (hasFocus()) {
        QStyleOptionFocusRect focus;
        focus.initFrom(this);
        focus.state |= QStyle::State_KeyboardFocusChange; // nothing but the keyboard brings it here
        focus.rect = rect().adjusted(1, 1, -1, 0);
        focus.backgroundColor = palette().color(QPalette::Window);
        style()->drawPrimitive(QStyle::PE_FrameFocusRect, &focus, &painter, this);
    }
    drawRect(painter, QRectF(event->rect()));
}

// --- Events.

void KWStackedLabelView::mouseDown(QMouseEvent& event) {
    const QRectF triangle = frameForTriangle();
    const QPointF point = event.position();
    const bool isInside = point.x() >= triangle.left() && point.x() < triangle.right() &&
                          point.y() >= triangle.top() && point.y() < triangle.bottom();
    event.setAccepted(isInside);
    if (isInside && _item)
        setCollapsed(!_item->isCollapsed());
}

void KWStackedLabelView::mousePressEvent(QMouseEvent* event) {
    if (event->button() == Qt::LeftButton)
        mouseDown(*event);
    else
        event->ignore();
}

void KWStackedLabelView::keyPressEvent(QKeyEvent* event) {
    const Qt::KeyboardModifiers held = event->modifiers() & ~Qt::KeypadModifier;
    const bool isCollapsed = _item && _item->isCollapsed();
    if (!_item || held != Qt::NoModifier)
        QWidget::keyPressEvent(event);
    else if (event->key() == Qt::Key_Left)
        setCollapsed(true);
    else if (event->key() == Qt::Key_Right)
        setCollapsed(false);
    else if (event->key() != Qt::Key_Space)
        QWidget::keyPressEvent(event);
    else if (!event->isAutoRepeat())
        setCollapsed(!isCollapsed);
}

void KWStackedLabelView::setCollapsed(bool isCollapsed) {
    const QPointer<KWStackedLabelView> self(this);
    if (_item->isCollapsed() != isCollapsed)
        _item->setCollapsed(isCollapsed);
    if (self)
        update(frameForTriangle().toAlignedRect());
}

bool KWStackedLabelView::event(QEvent* event) {
    if (event->type() == QEvent::ToolTip && toolTip().isEmpty()) {
        const int needed = QFontMetrics(getLabelFont()).horizontalAdvance(_label);
        const bool isCut = needed > frameForText().width();
        QToolTip::showText(static_cast<QHelpEvent*>(event)->globalPos(), isCut ? _label : QString(),
                           this);
        return true;
    }
    return QWidget::event(event);
}
