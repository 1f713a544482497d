#pragma once

#include <KWFoundation/KWExport.h>

#include <QCursor>

/// The framework's own cursors.
enum class KWCursorName {
    hand,    ///< hot at (8, 8)
    arrowAdd ///< an arrow with a plus, hot at its point, (1, 1)
};

/// The cursor for the pan tool or for the tool that adds keys, sharp on a screen with so many
/// pixels a point. Needs a QGuiApplication. The images are TIFF files: where Qt has no plugin to
/// read them, the platform's open hand and cross stand in, which is logged once.
KW_EXPORT QCursor KWCursorImage(KWCursorName name, qreal devicePixelRatio);

/// The same for the sharpest screen there is.
KW_EXPORT QCursor KWCursorImage(KWCursorName name);
