#pragma once

#include <KWBase/KWImageBackground.h>
#include <KWBase/KWLayoutRecords.h>
#include <KWFoundation/KWExport.h>

#include <QWidget>
#include <cstdint>
#include <memory>

class KWHeldViews;

/// Arranges a host's views in columns, each a stack of panes. Widths of columns and heights of
/// panes are in points, or weights that share what those leave. Both can be hidden and shown; what
/// is hidden leaves its space to the others. A gap lies between columns, between panes and around
/// them all, and an image may fill the view behind the panes.
///
/// A host sets the gap and the background, adds columns, adds panes to them and calls
/// finishedAddingPanes(). From then on the view lays itself out when its size changes and when
/// something is hidden or shown. What fixed sizes ask for is never cut: when they are too large,
/// relative ones become negative, and what is in them gets the size 0. Frames are rounded down to
/// whole points, from the left edge and, for the vertical, from the lower one. Nothing is mirrored
/// where the text runs from right to left.
///
/// The view owns the views in its panes, as a parent does its children, from when they are added;
/// those of hidden panes too, which keep their window. One that has a parent already stays there
/// and is given its frame there, until it has been hidden once. As long as a view is in a pane its
/// minimum and maximum size are lifted. It leaves its pane, which is then empty, when the host
/// gives it another parent or none, and has its limits again; so it does, with the next layout,
/// when the host changes the records. A view that is in two panes is where the last of them says.
///
/// An index is counted from 0; one that is out of range throws std::out_of_range.
class KW_EXPORT KWLayoutView : public QWidget {
    Q_OBJECT
    Q_PROPERTY(
        int interpaneSpace READ interpaneSpace WRITE setInterpaneSpace NOTIFY settingsChanged)
    Q_PROPERTY(std::shared_ptr<KWImageBackground> imageBackground READ imageBackground WRITE
                   setImageBackground NOTIFY settingsChanged)

  public:
    /// No columns, no gap, no background.
    explicit KWLayoutView(QWidget* parent = nullptr);
    explicit KWLayoutView(const QRect& frame, QWidget* parent = nullptr);
    ~KWLayoutView() override;

    /// The gap in points. Any number is taken; a negative one has its neighbours overlap.
    std::int32_t interpaneSpace() const { return _interpaneSpace; }
    /// Takes effect with the next layout.
    void setInterpaneSpace(std::int32_t space);

    /// Null for none.
    const std::shared_ptr<KWImageBackground>& imageBackground() const { return _bkg; }
    /// Draws the view anew.
    void setImageBackground(const std::shared_ptr<KWImageBackground>& background);

    /// The columns, left to right. The list is live, as are its records: what a host changes in
    /// them takes effect with the next layout. A null column is not there.
    const std::shared_ptr<KWLayoutColumnList>& columns() const { return _columns; }

    /// Adds a visible column without panes at the right, and lays the view out. The width is in
    /// points, or a weight when it is a percentage.
    void addColumnWithWidthPercent(float width, bool isPercent);
    /// Adds a visible pane at the bottom of a column; does not lay the view out. The view may be
    /// null: the pane is then empty space. Throws std::invalid_argument when it is the layout view
    /// itself or around it.
    void addPaneHeightPercentColumn(QWidget* view, float height, bool isPercent,
                                    std::int32_t column);
    /// Lays the view out.
    void finishedAddingPanes();

    // A pane index of -1 is the column itself.

    /// Lays the view out, and draws it anew.
    void setVisibleColumnPane(bool isVisible, std::int32_t column, std::int32_t pane);
    /// Its own flag: a visible pane of a hidden column is visible.
    bool isVisibleColumnPane(std::int32_t column, std::int32_t pane) const;
    void toggleVisibleColumnPane(std::int32_t column, std::int32_t pane);
    void setVisibleColumn(bool isVisible, std::int32_t column);
    bool isVisibleColumn(std::int32_t column) const;
    void toggleVisibleColumn(std::int32_t column);

    /// Lays the view out: stores offsets and sizes in the records of what is visible, and gives
    /// each view its frame; hidden ones that of the last layout they were visible in.
    void updateSubviewSizes();
    /// Called when the size of the view has changed. Lays it out.
    virtual void resizeSubviewsWithOldSize(const QSize& oldSize);

    /// Draws the background into the view's whole bounds; nothing when they are too small for it.
    virtual void drawRect(QPainter& painter, const QRectF& rect);

  Q_SIGNALS:
    void settingsChanged();
    /// A column, with pane -1, or a pane has been hidden or shown.
    void visibilityChanged(int column, int pane, bool isVisible);

  protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    /// The tab key goes down a column, then to the next.
    bool focusNextPrevChild(bool next) override;

  private:
    struct Placement;

    KWLayoutColumn& columnAt(std::int32_t index) const;
    KWLayoutRecord& recordAt(std::int32_t column, std::int32_t pane) const;
    bool canHold(const QWidget* view) const;
    void computeShares();
    std::vector<Placement> wantedPlacements() const;
    bool holdViews(std::vector<Placement>& placements, unsigned layout);
    bool place(const Placement& placement);
    void orderFocus();
    void forget(const QWidget* view);

    std::shared_ptr<KWLayoutColumnList> _columns;
    std::int32_t _interpaneSpace = 0;
    std::shared_ptr<KWImageBackground> _bkg;
    std::unique_ptr<KWHeldViews> _held;
    unsigned _layoutCount = 0;
};
