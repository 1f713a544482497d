#pragma once

#include <QObject>
#include <QPointer>
#include <QRect>
#include <QSize>
#include <cstddef>
#include <functional>
#include <optional>
#include <unordered_map>
#include <vector>

class QWidget;

/// The views that a layout holds for its host. Those that are not to be seen are children of a
/// hidden child of the layout, not of nobody: they have an owner all the time, and what belongs to
/// their window, an OpenGL context above all, outlives their being hidden. To the layout they have
/// no superview there.
///
/// A held view can have any size: its minimum and maximum are lifted, and given back when it is let
/// go. It is let go when the host takes it away, by giving it another parent or none.
class KWHeldViews : public QObject {
  public:
    enum class Lifted { sizes, widths };

    /// `didLetGo` is called for a view that the host has taken away, or deleted: it is then null.
    KWHeldViews(QWidget& layout, Lifted lifted, std::function<void(QWidget*)> didLetGo);
    ~KWHeldViews() override;

    /// Holds a view, and once more lifts limits that the host has set since. A view with no parent
    /// gets an owner.
    void adopt(QWidget& view);
    /// The same, as part of a pass. Answers how many others were held in the pass before it.
    /// Nothing when the view has been deleted by what was told of its new parent.
    std::optional<std::size_t> hold(QWidget& view);
    void beginPass();
    /// Lets those go that have not been held in this pass; they stay where they are.
    void endPass();

    bool hasSuperview(const QWidget& view) const;
    /// Makes the view a child of the layout with this geometry, and shows it if the host has not
    /// hidden it itself.
    void addSubview(QWidget& view, const QRect& geometry);
    void removeFromSuperview(QWidget& view);

    bool eventFilter(QObject* watched, QEvent* event) override;

  private:
    struct Held {
        QPointer<QWidget> view;
        QSize minimum;
        QSize maximum;
        std::size_t pass = 0; ///< the last one
        std::optional<std::size_t> place;
    };

    Held* find(QWidget& view);
    void liftLimits(Held& held) const;
    void giveBack(const Held& held) const;
    QWidget& parking();
    void move(QWidget& view, QWidget& parent);
    void childRemoved(QObject* child);

    QWidget& _layout;
    Lifted _lifted;
    std::function<void(QWidget*)> _didLetGo;
    QPointer<QWidget> _parking;
    std::unordered_map<QObject*, Held> _held;
    std::size_t _pass = 1;
    std::size_t _placeCount = 0;
    bool _isMoving = false;
};

/// Has the tab key go through the children of a container in this order, and through what is in
/// each as before.
void KWOrderFocus(QWidget& container, const std::vector<QWidget*>& children);
