#pragma once

#include <KWFoundation/KWExport.h>

#include <QColor>
#include <QSize>
#include <QStyledItemDelegate>

/// Draws the rows of an outline. The colours that a model answers are meant for a light ground: on
/// a dark one, black text takes the palette's colour, coloured text is lightened, and pale grounds
/// are darkened, each keeping its hue.
class KW_EXPORT KWOutlineDelegate : public QStyledItemDelegate {
    Q_OBJECT

  public:
    explicit KWOutlineDelegate(QObject* parent = nullptr);

    /// What is left free between cells, in logical pixels; nothing at first.
    QSize intercellSpacing() const { return _spacing; }
    void setIntercellSpacing(const QSize& spacing) { _spacing = spacing; }

    /// A stated colour as it is to be drawn with that palette.
    static QColor textColorForPalette(const QColor& color, const QPalette& palette);
    static QColor backgroundColorForPalette(const QColor& color, const QPalette& palette);

    /// Shows the whole of a text that is cut short, where the model has no tool tip of its own.
    bool helpEvent(QHelpEvent* event, QAbstractItemView* view, const QStyleOptionViewItem& option,
                   const QModelIndex& index) override;

    QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override;

  protected:
    void initStyleOption(QStyleOptionViewItem* option, const QModelIndex& index) const override;

  private:
    QSize _spacing{0, 0};
};
