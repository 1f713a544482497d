#pragma once

#include <KWBase/KWLayoutView.h>

#include <QByteArray>
#include <QPointer>
#include <array>
#include <optional>

/// The panes of the window: elements and history at the left, the stage over the transport bar over
/// the curves in the middle, the inspectors at the right. Each can be hidden and shown, and the
/// gaps between them are dragged to resize them; a double click on a gap gives back the sizes that
/// it parts as they were at first.
class KWEditPanes : public KWLayoutView {
    Q_OBJECT

  public:
    enum class Pane { elements, history, stage, transport, curves, inspectors };
    static constexpr int paneCount = 6;

    /// Takes over the views, by the order of Pane. The history is hidden at first.
    explicit KWEditPanes(const std::array<QWidget*, paneCount>& views, QWidget* parent = nullptr);

    bool isPaneVisible(Pane pane) const;
    void setPaneVisible(Pane pane, bool isVisible);

    /// A pane whose content has a window of its own takes no space, without counting as hidden.
    void setPaneEmptied(Pane pane, bool isEmptied);
    /// Puts a view back into its pane.
    void putBack(Pane pane, QWidget* view);

    /// Sizes and what is visible, for restore(). False, and nothing changed, for other bytes.
    QByteArray state() const;
    bool restore(const QByteArray& state);

  Q_SIGNALS:
    void paneVisibilityChanged(KWEditPanes::Pane pane, bool isVisible);

  protected:
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void leaveEvent(QEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

  private:
    struct Place {
        int column;
        int pane;
    };
    /// A gap, and what lies at its two sides.
    struct Divider {
        bool isBetweenColumns;
        int column; ///< the one at its left, or the one that it is in
        int above;  ///< the panes that it parts
        int below;
    };
    static Place placeOf(Pane pane);

    void apply();
    std::optional<Divider> dividerAt(const QPoint& position) const;
    std::optional<Divider> columnDividerAt(int x) const;
    std::optional<Divider> paneDividerAt(int column, int y) const;
    void drag(const Divider& divider, float distance);
    void resetSizes(const Divider& divider);
    KWLayoutColumn& column(int index) const { return *(*columns())[std::size_t(index)]; }
    KWLayoutPane& pane(Place place) const;
    void showCursor(const std::optional<Divider>& divider);

    std::array<bool, paneCount> _isShown;
    std::array<bool, paneCount> _isEmptied{};
    std::optional<Divider> _dragged;
    QPoint _grabbed;
    std::array<float, 3> _grabbedWidths{};
    std::array<float, 2> _grabbedHeights{};
};
