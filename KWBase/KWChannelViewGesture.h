#pragma once

#include <KWBase/KWChannelViewGeometry.h>
#include <KWBase/KWKeyMove.h>
#include <KWFoundation/KWNotificationCenter.h>

#include <QPointF>
#include <functional>
#include <memory>
#include <optional>
#include <string_view>
#include <unordered_set>
#include <vector>

class QWidget;

inline KWPlotPoint KWPlotPointFromPoint(const QPointF& point) {
    return {static_cast<float>(point.x()), static_cast<float>(point.y())};
}

/// A gesture under way, from the press on. Whoever is told of what it does may end it or delete the
/// view; so each function that tells somebody holds the gesture and looks at isOver afterwards.
struct KWChannelViewGesture {
    enum class Kind {
        pressed, ///< it is not settled yet what this is
        moving,
        selecting,
        scrolling,
        zooming
    };

    Kind kind = Kind::pressed;
    /// The view does nothing for it any more, and may be gone. It may still have to be announced.
    bool isOver = false;
    /// The press, and the latest event.
    KWPlotPoint from;
    KWPlotPoint to;

    // As they were at the press.
    KWDisplayedRange range;
    std::vector<KWTime> selection;

    /// Null when keys have no part in it.
    std::unique_ptr<KWKeyMove> move;
    KWNotificationToken notices;
    bool isCancelled = false;   ///< in the middle of a write; it is to be done after it
    bool isToBeChecked = false; ///< for edits of others, when the one under way is done

    // Who had the mouse at the press, and the popup that was open. Only to be compared.
    const QWidget* grabber = nullptr;
    const QWidget* popup = nullptr;

    // Moving.
    HJKeyMoveRange room;
    KWKeyMove::Lattice lattice{0, 0};

    // Selecting: what is kept with the shift key held.
    std::vector<KWTime> kept;
    std::unordered_set<KWTime> keptSet;

    /// Zooming: the time and value that stay where they are.
    KWPlotPoint fixed;
};

/// Runs it. What is thrown is logged behind those words: through Qt, which calls the view, it must
/// not pass.
void KWRunAndLog(std::string_view words, const std::function<void()>& work) noexcept;
/// The same for what tells others of a gesture.
void KWRunGesture(const std::function<void()>& work) noexcept;
