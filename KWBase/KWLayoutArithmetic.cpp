#include <KWBase/KWLayoutArithmetic.h>

#include <algorithm>
#include <cmath>
#include <limits>

namespace {

constexpr float int32Limit = 2147483648.0f;

/// Towards zero; what is out of range goes to its end, NaN to 0.
std::int32_t truncated(float value) {
    if (std::isnan(value))
        return 0;
    if (value >= int32Limit)
        return std::numeric_limits<std::int32_t>::max();
    if (value <= -int32Limit)
        return std::numeric_limits<std::int32_t>::min();
    return static_cast<std::int32_t>(value);
}

bool hasNumber(float value) {
    return std::fabs(value) < int32Limit;
}

std::int32_t difference(std::int32_t to, std::int32_t from) {
    return static_cast<std::int32_t>(std::int64_t{to} - from);
}

int widgetNumber(double value, double lowest) {
    constexpr double limit = KWWidgetSizeLimit;
    return std::isnan(value) ? 0 : static_cast<int>(std::clamp(value, lowest, limit));
}

} // namespace

KWSliceGrid KWSliceGridForCuts(float imageWidth, float imageHeight,
                               const std::array<std::int32_t, 4>& cuts) {
    const auto row = [&](std::int32_t cut) {
        return truncated(imageHeight - 1.0f - static_cast<float>(cut));
    };
    KWSliceGrid grid;
    grid.x = {0, cuts[0], cuts[1], truncated(imageWidth)};
    grid.y = {0, row(cuts[3]), row(cuts[2]), truncated(imageHeight)};
    for (std::size_t i = 0; i < 3; ++i) {
        grid.widths[i] = difference(grid.x[i + 1], grid.x[i]);
        grid.heights[i] = difference(grid.y[i + 1], grid.y[i]);
    }
    return grid;
}

std::optional<std::array<KWSlice, 9>> KWSlicesForRect(const KWSliceGrid& grid,
                                                      const KWLayoutFrame& rect) {
    if (!hasNumber(rect.x) || !hasNumber(rect.y) || !hasNumber(rect.width) ||
        !hasNumber(rect.height))
        return std::nullopt;
    const std::int64_t sides = std::int64_t{grid.widths[0]} + grid.widths[2];
    const std::int64_t ends = std::int64_t{grid.heights[0]} + grid.heights[2];
    const std::int64_t width = truncated(rect.width);
    const std::int64_t height = truncated(rect.height);
    if (width < sides + 1 || height < ends + 1)
        return std::nullopt;
    std::array<KWSlice, 9> slices;
    std::int64_t y = truncated(rect.y);
    for (std::size_t r = 0; r < 3; ++r) {
        const std::int64_t rowHeight = r == 1 ? height - ends : grid.heights[r];
        std::int64_t x = truncated(rect.x);
        for (std::size_t c = 0; c < 3; ++c) {
            const std::int64_t columnWidth = c == 1 ? width - sides : grid.widths[c];
            slices[3 * r + c] = {{grid.x[c], grid.y[r], grid.widths[c], grid.heights[r]},
                                 {x, y, columnWidth, rowHeight}};
            x += columnWidth;
        }
        y += rowHeight;
    }
    return slices;
}

void KWDivideSpace(std::span<KWLayoutShare> shares, float total, float space) {
    float available = total - space;
    float weights = 0;
    for (const KWLayoutShare& share : shares) {
        if (!share.isVisible)
            continue;
        if (share.isPercent)
            weights += share.size;
        else
            available -= share.size;
        available -= space;
    }
    float offset = 0;
    for (KWLayoutShare& share : shares) {
        if (!share.isVisible)
            continue;
        share.actualOffset = offset + space;
        if (!share.isPercent)
            share.actualSize = share.size;
        else if (weights > 0)
            share.actualSize = share.size * available / weights;
        else
            share.actualSize = available;
        offset = share.actualOffset + share.actualSize;
    }
}

KWLayoutFrame KWFrameOfPane(const KWLayoutShare& column, const KWLayoutShare& pane,
                            float viewHeight) {
    const float height = std::floor(pane.actualSize);
    return {std::floor(column.actualOffset), std::floor(viewHeight - height - pane.actualOffset),
            std::floor(column.actualSize), height};
}

KWWidgetRect KWWidgetRectForFrame(const KWLayoutFrame& frame) {
    constexpr double lowest = -KWWidgetSizeLimit;
    return {widgetNumber(double{frame.x}, lowest), widgetNumber(double{frame.y}, lowest),
            widgetNumber(double{frame.width}, 0), widgetNumber(double{frame.height}, 0)};
}

KWWidgetRect KWWidgetRectForFrame(const KWLayoutFrame& frame, float viewHeight) {
    KWWidgetRect rect = KWWidgetRectForFrame(frame);
    rect.y = widgetNumber(double{viewHeight} - double{frame.y} - double{frame.height},
                          -KWWidgetSizeLimit);
    return rect;
}

float KWStackEntries(std::span<KWStackEntry> entries, float width) {
    constexpr float gap = 4;
    float y = 0;
    for (KWStackEntry& entry : entries) {
        entry.label = {0, y, width, entry.labelHeight};
        y += entry.labelHeight;
        if (!entry.isCollapsed) {
            entry.content = {entry.contentX, y, width, entry.contentHeight};
            y += entry.contentHeight;
        }
        y += gap;
    }
    return y;
}

KWLayoutFrame KWLabelFrame(const KWLayoutFrame& bounds, float lineHeight) {
    constexpr float indent = 19;
    const double middle = double{bounds.y} + double{bounds.height - lineHeight} * 0.5;
    return {bounds.x + indent, static_cast<float>(middle), bounds.width - indent,
            lineHeight + 4.0f};
}

KWLayoutFrame KWTriangleFrame(const KWLayoutFrame& bounds) {
    const double y = (2.0 + double{bounds.y}) + (double{bounds.height} - 9.0) * 0.5 + 1.0;
    return {5, static_cast<float>(y), 9, 9};
}

std::array<KWLayoutPoint, 3> KWTrianglePath(const KWLayoutFrame& triangle, bool isCollapsed) {
    const auto [x, y, width, height] = triangle;
    if (isCollapsed)
        return {{{x, y + 1}, {x, y + height}, {x + width - 1, y + (height - 1) * 0.5f + 1}}};
    return {{{x, y + 1}, {x + width - 1, y + 1}, {x + (width - 1) * 0.5f, y + height}}};
}
