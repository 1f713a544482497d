#pragma once

#include <KWFoundation/KWExport.h>

#include <QFont>
#include <QPointer>
#include <QRectF>
#include <QString>
#include <QWidget>

class KWStackedItem;

inline namespace kwbase {

/// The font of label bars: the bold system font, 11 points high.
KW_EXPORT QFont getLabelFont();

} // namespace kwbase

/// The bar over a view in a stack: a triangle that collapses and expands the view, and a label. All
/// points are in logical pixels from the upper left corner, and are not mirrored where the text
/// runs from right to left.
///
/// The tab key comes to it. The space bar collapses and expands, the left arrow collapses, the
/// right arrow expands. To assistive technology it is an item of a tree, with the label as its
/// name.
class KW_EXPORT KWStackedLabelView : public QWidget {
    Q_OBJECT

  public:
    /// 100 points wide and high. The item owns the bar, as long as nobody else does; null for none,
    /// which is never collapsed.
    KWStackedLabelView(const QString& label, KWStackedItem* item);
    /// A bar is not made this way: logs "use initWithLabel: instead" and answers null.
    static KWStackedLabelView* initWithFrame(const QRect& frame);

    bool isFlipped() const { return true; }
    const QString& label() const { return _label; }
    /// Null for none, and once it is gone.
    KWStackedItem* item() const;

    /// Where the label is. Its height is the one that the stack gives the bar.
    QRectF frameForLabel() const;
    /// Where a press collapses and expands; the left and the upper edge belong to it, the others do
    /// not.
    QRectF frameForTriangle() const;

    /// Draws the separator along the upper edge if the item has one, the triangle and the label.
    virtual void drawRect(QPainter& painter, const QRectF& rect);
    /// A press inside of the triangle collapses or expands; others are left to whoever is behind.
    /// What is told of it may delete the bar.
    virtual void mouseDown(QMouseEvent& event);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

  protected:
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    bool event(QEvent* event) override;

  private:
    void setCollapsed(bool isCollapsed);
    QRectF frameForText() const;

    QPointer<KWStackedItem> _item;
    QString _label;
};
