#pragma once

#include <KWFoundation/KWExport.h>

#include <QPointer>
#include <QString>
#include <QWidget>
#include <cstddef>
#include <memory>
#include <vector>

class KWHeldViews;
class KWStackedLabelView;
class KWStackedView;

/// One view of a stack, and its label bar. The stack owns it; a host that keeps it has null
/// pointers once the stack is gone.
class KW_EXPORT KWStackedItem : public QObject {
    Q_OBJECT
    Q_PROPERTY(bool collapsed READ isCollapsed WRITE setCollapsed NOTIFY collapsedChanged)

  public:
    /// Expanded, without a separator, with a new bar; in no stack's list yet. Either may be null. A
    /// view without a parent belongs to the stack from now on.
    KWStackedItem(KWStackedView* stackedView, QWidget* contentView, const QString& label);
    /// Deletes the bar. The view stays with its parent.
    ~KWStackedItem() override;

    bool isCollapsed() const { return _collapsed; }
    /// Lays the stack out, also when nothing changes.
    void setCollapsed(bool isCollapsed);
    void toggleCollapsed() { setCollapsed(!isCollapsed()); }
    bool drawsSeparator() const { return _drawsSeparator; }
    /// Seen with the next drawing.
    void setDrawsSeparator(bool draws) { _drawsSeparator = draws; }
    /// Null for none, once it is deleted, and once the host has given it another parent.
    QWidget* contentView() const { return _contentView; }
    KWStackedLabelView* labelView() const;
    KWStackedView* stackedView() const;

  Q_SIGNALS:
    void collapsedChanged(bool isCollapsed);

  private:
    friend class KWStackedView;

    QPointer<KWStackedView> _stackedView;
    QPointer<QWidget> _contentView;
    QPointer<KWStackedLabelView> _labelView;
    bool _collapsed = false;
    bool _drawsSeparator = false;
};

/// Stacks a host's views one under the other, each under a bar with a label. A press of the bar's
/// triangle collapses or expands the view, and the stack closes up: its height is that of what it
/// shows. Views keep their height and their distance from the left, and are as wide as the stack.
///
/// The stack sets its own height. Put it into a QScrollArea, or into any layout, which learn its
/// height from its size hints; in a parent without a layout its width follows the parent's. It lays
/// itself out once more when a view changes its height or is deleted. Points are in logical
/// pixels from the upper left corner, and nothing is mirrored where the text runs from right to
/// left.
///
/// The stack owns its views, as a parent does its children, also collapsed ones, which keep their
/// window. A view that nobody has given a size comes in its preferred one. As long as it is in the
/// stack the limits of its width are lifted; it leaves it, and has them again, when the host gives
/// it another parent or none. Items are never removed.
class KW_EXPORT KWStackedView : public QWidget {
    Q_OBJECT

  public:
    explicit KWStackedView(QWidget* parent = nullptr);
    explicit KWStackedView(const QRect& frame, QWidget* parent = nullptr);
    ~KWStackedView() override;

    bool isFlipped() const { return true; }

    /// Adds an item at the end and lays the stack out. The view may be null: there is but the bar.
    /// Throws std::invalid_argument when it is the stack itself or around it.
    void addViewLabel(QWidget* view, const QString& label);
    /// Adds an item for each view, with the label at its place, and lays the stack out once. With
    /// fewer labels than views throws std::out_of_range. Adds nothing when it throws.
    void addViewsLabels(const std::vector<QWidget*>& views, const std::vector<QString>& labels);
    /// Adds an item without laying the stack out. Every item but the first draws a separator.
    void _addViewNoUpdateLabel(QWidget* view, // NOLINT(readability-identifier-naming)
                               const QString& label);

    const std::vector<std::shared_ptr<KWStackedItem>>& items() const { return _items; }
    std::size_t viewCount() const { return _items.size(); }
    // Throw std::out_of_range.
    void toggleViewAtIndex(std::size_t index);
    bool isCollapsedAtIndex(std::size_t index) const;

    /// Gives bars and views their frames from the top, takes collapsed views out of the view tree
    /// and the others into it, and sets the height of the stack.
    void updateLayout();
    /// Makes bars and views as wide as the stack.
    void resizeStackedViews();
    /// Takes on the parent's width. Called when the parent's size has changed, if the parent has no
    /// layout of its own.
    virtual void resizeWithOldSuperviewSize(const QSize& oldSize);
    /// Sets the geometry, as any widget's.
    void setFrame(const QRect& frame) { setGeometry(frame); }

    /// Draws nothing: what is behind the stack shows through.
    virtual void drawRect(QPainter& painter, const QRectF& rect);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;
    bool eventFilter(QObject* watched, QEvent* event) override;

  Q_SIGNALS:
    /// An item has been collapsed or expanded, and the stack is laid out.
    void collapsedChanged(int index, bool isCollapsed);
    /// A layout has changed the height of the stack.
    void heightChanged(int height);

  protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    bool event(QEvent* event) override;
    /// The tab key goes from each bar to the view under it, then to the next bar.
    bool focusNextPrevChild(bool next) override;

  private:
    friend class KWStackedItem;

    void checkCanHold(const QWidget* view) const;
    bool placeBar(KWStackedItem& item, const QRect& frame);
    bool placeContent(KWStackedItem& item, const QRect& frame);
    void followSuperview();
    void orderFocus();
    void forget(const QWidget* view);
    void layOutLater();
    int heightOfItems() const;

    std::vector<std::shared_ptr<KWStackedItem>> _items;
    std::unique_ptr<KWHeldViews> _held;
    QPointer<QWidget> _superview;
    unsigned _layoutCount = 0;
    bool _followsSuperview = false;
};
