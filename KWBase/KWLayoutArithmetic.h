#pragma once

#include <KWFoundation/KWExport.h>

#include <array>
#include <cstdint>
#include <optional>
#include <span>

// The arithmetic of the layout views. Nothing here needs a window. Where not said otherwise it is
// done in single precision, each operation rounded, in the order in which it is described.

/// A rectangle of a view, in points; which corner is its origin depends on the view.
struct KWLayoutFrame {
    float x = 0;
    float y = 0;
    float width = 0;
    float height = 0;

    friend bool operator==(const KWLayoutFrame&, const KWLayoutFrame&) = default;
};

/// A rectangle of whole points.
struct KWSliceRect {
    std::int64_t x = 0;
    std::int64_t y = 0;
    std::int64_t width = 0;
    std::int64_t height = 0;

    friend bool operator==(const KWSliceRect&, const KWSliceRect&) = default;
};

// --- Nine slices of an image.

/// Where an image is cut, in its points; y upwards, from the lower left corner.
struct KWSliceGrid {
    std::array<std::int32_t, 4> x{};       ///< boundaries, left to right
    std::array<std::int32_t, 4> y{};       ///< boundaries, bottom to top
    std::array<std::int32_t, 3> widths{};  ///< of the columns
    std::array<std::int32_t, 3> heights{}; ///< of the rows, the bottom one first

    friend bool operator==(const KWSliceGrid&, const KWSliceGrid&) = default;
};

/// One of the nine cells: what of the image is drawn, and where.
struct KWSlice {
    KWSliceRect source;      ///< in the image, y upwards
    KWSliceRect destination; ///< where it is drawn, y upwards
};

/// The cuts are the left and the right line, from the left edge, then the upper and the lower line,
/// from the upper edge; these two name the last row of points above the line. Nothing is checked:
/// cuts out of order make columns or rows with a negative size.
KW_EXPORT KWSliceGrid KWSliceGridForCuts(float imageWidth, float imageHeight,
                                         const std::array<std::int32_t, 4>& cuts);

/// The nine cells that fill a rectangle, row by row from the bottom, each from left to right; the
/// fifth is the centre. Fractions of the rectangle are dropped. Nothing when it leaves less than a
/// point for the middle column or row, or has no 32-bit numbers.
KW_EXPORT std::optional<std::array<KWSlice, 9>> KWSlicesForRect(const KWSliceGrid& grid,
                                                                const KWLayoutFrame& rect);

// --- Columns and panes.

/// What a column takes of the width, or a pane of its column's height.
struct KWLayoutShare {
    float size = 0; ///< in points; a weight when it is relative
    bool isPercent = false;
    bool isVisible = true;
    float actualOffset = 0; ///< from the left or upper edge; kept while it is not visible
    float actualSize = 0;   ///< kept likewise
};

/// Divides a width or height among those that are visible, in their order: a gap before each and
/// after the last, fixed sizes as they are, and what remains by weight. When the weights do not sum
/// to more than 0 each relative share gets all that remains, which is negative when the fixed ones
/// ask for too much.
KW_EXPORT void KWDivideSpace(std::span<KWLayoutShare> shares, float total, float space);

/// Where a pane's view belongs: y upwards, the origin in the lower left corner, each number rounded
/// down. Sizes may be negative and anything may be not finite.
KW_EXPORT KWLayoutFrame KWFrameOfPane(const KWLayoutShare& column, const KWLayoutShare& pane,
                                      float viewHeight);

/// Whole points from the upper left corner, as a widget takes them.
struct KWWidgetRect {
    int x = 0;
    int y = 0;
    int width = 0;
    int height = 0;

    friend bool operator==(const KWWidgetRect&, const KWWidgetRect&) = default;
};

/// No widget is larger than this.
inline constexpr int KWWidgetSizeLimit = 16'777'215;

/// What comes closest to a frame whose y grows downwards: negative sizes and NaN become 0, and
/// nothing is further than KWWidgetSizeLimit from 0.
KW_EXPORT KWWidgetRect KWWidgetRectForFrame(const KWLayoutFrame& frame);
/// The same for a frame whose y grows upwards, in a view of this height.
KW_EXPORT KWWidgetRect KWWidgetRectForFrame(const KWLayoutFrame& frame, float viewHeight);

// --- The stack. Here y grows downwards.

/// One item: the bar with its label, and the view under it.
struct KWStackEntry {
    float labelHeight = 0;
    float contentX = 0;
    float contentHeight = 0;
    bool isCollapsed = false;
    KWLayoutFrame label;
    KWLayoutFrame content; ///< as it was when collapsed
};

/// Fills in the frames of bars and views from the top, each as wide as the stack, with 4 points
/// after every item. Answers the height of the stack.
KW_EXPORT float KWStackEntries(std::span<KWStackEntry> entries, float width);

/// Where the label of a bar with these bounds is, in a font with this height of a line. The height
/// of this is also the bar's own.
KW_EXPORT KWLayoutFrame KWLabelFrame(const KWLayoutFrame& bounds, float lineHeight);

/// Where the bar's triangle is, 9 points wide and high.
KW_EXPORT KWLayoutFrame KWTriangleFrame(const KWLayoutFrame& bounds);

struct KWLayoutPoint {
    float x = 0;
    float y = 0;

    friend bool operator==(const KWLayoutPoint&, const KWLayoutPoint&) = default;
};

/// The corners of the triangle: it points to the right when collapsed, else down.
KW_EXPORT std::array<KWLayoutPoint, 3> KWTrianglePath(const KWLayoutFrame& triangle,
                                                      bool isCollapsed);
