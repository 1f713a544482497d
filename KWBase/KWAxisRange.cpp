#include <KWBase/KWAxisRange.h>

#include <algorithm>
#include <cmath>

namespace {

/// What 256 floats span at that distance from 0, at most.
double narrowestSpan(double low, double high, KWAxisKind kind) {
    constexpr double spacing = 1.0 / (1 << 23);
    return std::max(kind.narrowest, std::max(std::fabs(low), std::fabs(high)) * spacing * 256);
}

/// Moved to where both bounds are near enough; it spans no more than there is.
KWAxisRange heldNear(KWAxisRange range) {
    const double low = std::min(range.low, range.high);
    const double high = std::max(range.low, range.high);
    double offset = 0;
    if (low < -KWFarthestBound)
        offset = -KWFarthestBound - low;
    else if (high > KWFarthestBound)
        offset = KWFarthestBound - high;
    return offset == 0 ? range : KWAxisRange{range.low + offset, range.high + offset};
}

bool isUsable(KWAxisRange range, KWAxisKind kind) {
    return std::isfinite(range.low) && std::isfinite(range.high) &&
           std::fabs(range.low) <= KWFarthestBound && std::fabs(range.high) <= KWFarthestBound &&
           std::fabs(range.span()) >= kind.narrowest;
}

/// The same middle, wide enough.
KWAxisRange widened(KWAxisRange range, KWAxisKind kind) {
    const double least = narrowestSpan(range.low, range.high, kind);
    if (range.span() >= least)
        return range;
    const double middle = range.low + range.span() / 2;
    return {middle - least / 2, middle + least / 2};
}

} // namespace

KWAxisRange KWUsableAxisRange(KWAxisRange range, KWAxisKind kind) {
    if (isUsable(range, kind))
        return range;
    const KWAxisRange nearer{std::clamp(range.low, -KWFarthestBound, KWFarthestBound),
                             std::clamp(range.high, -KWFarthestBound, KWFarthestBound)};
    const bool isInfinite = std::isinf(range.low) || std::isinf(range.high);
    if (!isInfinite && isUsable(nearer, kind))
        return nearer;
    const bool hasLow = std::isfinite(range.low);
    const bool hasHigh = std::isfinite(range.high);
    double middle = 0;
    if (hasLow && hasHigh)
        middle = range.low / 2 + range.high / 2;
    else if (hasLow || hasHigh)
        middle = hasLow ? range.low : range.high;
    middle = std::clamp(middle, -KWFarthestBound, KWFarthestBound);
    const KWAxisRange usual{middle - kind.usual / 2, middle + kind.usual / 2};
    return heldNear(widened(usual, kind));
}

KWAxisRange KWZoomedAxisRange(KWAxisRange range, double fixed, double factor, KWAxisKind kind) {
    range = KWUsableAxisRange(range, kind);
    if (!(factor > 0) || !std::isfinite(factor) || !std::isfinite(fixed))
        return range;
    const double span = std::fabs(range.span());
    // A range that the host has made narrower than the limit is not widened by zooming in.
    const double least = std::min(span, narrowestSpan(fixed, fixed, kind));
    const double zoomed = std::clamp(span / factor, least, 2 * KWFarthestBound);
    const double share = (fixed - range.low) / range.span();
    if (zoomed == span)
        return range;
    const double signedSpan = std::copysign(zoomed, range.span());
    const double low = fixed - share * signedSpan;
    return heldNear({low, low + signedSpan});
}

KWAxisRange KWPannedAxisRange(KWAxisRange range, double distance, KWAxisKind kind) {
    const KWAxisRange panned{range.low + distance, range.high + distance};
    const double least = narrowestSpan(panned.low, panned.high, kind);
    const bool isNearer = std::fabs(panned.low + panned.high) < std::fabs(range.low + range.high);
    if (!isUsable(panned, kind) || (!isNearer && std::fabs(panned.span()) < least))
        return range;
    return panned;
}

KWAxisRange KWFramedAxisRange(double low, double high, KWAxisKind kind) {
    double margin = (high - low) / 10;
    if (low == high) {
        const bool isTime = kind.usual == KWTimeAxis.usual;
        margin = isTime || low == 0 ? 1 : std::fabs(low) / 2;
    }
    const KWAxisRange framed{std::max(low - margin, -KWFarthestBound),
                             std::min(high + margin, KWFarthestBound)};
    // What lies beyond is not shown.
    if (!(framed.low < framed.high))
        return KWUsableAxisRange({low, high}, kind);
    return heldNear(widened(framed, kind));
}
