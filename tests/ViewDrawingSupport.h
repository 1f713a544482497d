#pragma once

#include "RecordingPainter.h"

#include <KWBase/KWChannelView.h>

#include <QPainter>
#include <vector>

inline const QColor gridColor = rgb(0.35, 0.35, 0.5);
inline const QColor gray = rgb(0.5, 0.5, 0.5);
inline const QColor lightGray = rgb(2 / 3.0, 2 / 3.0, 2 / 3.0);

/// What a view draws at this size.
inline std::vector<Drawn> drawnBy(KWChannelView& view, int width = 500, int height = 200) {
    RecordingDevice device(width, height);
    QPainter painter(&device);
    view.drawInto(painter, QRectF(0, 0, width, height));
    painter.end();
    return device.drawn;
}

inline std::vector<Drawn> only(Drawn::Kind kind, const std::vector<Drawn>& drawn) {
    std::vector<Drawn> found;
    for (const Drawn& one : drawn)
        if (one.kind == kind)
            found.push_back(one);
    return found;
}

inline std::vector<Drawn> linesInColor(const QColor& color, const std::vector<Drawn>& drawn) {
    std::vector<Drawn> found;
    for (const Drawn& one : only(Drawn::line, drawn))
        if (one.stroke == color)
            found.push_back(one);
    return found;
}
