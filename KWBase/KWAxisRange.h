#pragma once

#include <KWFoundation/KWExport.h>

// The arithmetic of navigating in a view, one axis at a time and in double precision. Whatever goes
// in, the range that comes out of zooming and framing can be displayed in single precision: its
// bounds are finite and it spans at least a few hundred floats.

/// What one axis of a view displays. Upside down where `high` is less than `low`.
struct KWAxisRange {
    double low = 0;
    double high = 0;

    double span() const { return high - low; }
    friend bool operator==(const KWAxisRange&, const KWAxisRange&) = default;
};

/// What distinguishes an axis of times from one of values.
struct KWAxisKind {
    /// No range is narrower than this, however near it is to 0.
    double narrowest;
    /// How much is shown where nothing says how much.
    double usual;
};
inline constexpr KWAxisKind KWTimeAxis{1e-9, 10};
inline constexpr KWAxisKind KWValueAxis{1e-30, 4};

/// No bound is farther from 0. Beyond, products with the size of a view leave single precision.
inline constexpr double KWFarthestBound = 1e30;

/// The range itself where things can be told apart in it; else the usual span around what can be
/// made of its bounds.
KW_EXPORT KWAxisRange KWUsableAxisRange(KWAxisRange range, KWAxisKind kind);

/// Shows 1 / factor of what the range spans, as near to it as the limits allow; `fixed`, which is
/// in the range, stays where it is displayed, but where the range would reach beyond the farthest
/// bound. A factor that is not positive or not finite changes nothing.
KW_EXPORT KWAxisRange KWZoomedAxisRange(KWAxisRange range, double fixed, double factor,
                                        KWAxisKind kind);

/// Moved; the range itself where it would get too far away or where floats lie too far apart.
KW_EXPORT KWAxisRange KWPannedAxisRange(KWAxisRange range, double distance, KWAxisKind kind);

/// Shows everything from `low` to `high`, finite and in order, with a tenth of it on each side.
/// Around a single time it shows a second to each side, around a single value half of that value
/// or, where it is 0, 1.
KW_EXPORT KWAxisRange KWFramedAxisRange(double low, double high, KWAxisKind kind);
