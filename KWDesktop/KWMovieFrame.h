#pragma once

#include <QImage>

/// A frame of a movie, as it is shown.
struct KWMovieFrame {
    /// Upright, one pixel for each of the file's; Format_RGB32, or Format_ARGB32_Premultiplied for
    /// movies with an alpha channel. Null when there is none.
    QImage image;
    /// When it begins, in seconds from the movie's first frame.
    double time = 0;

    explicit operator bool() const { return !image.isNull(); }
};
