#pragma once

#include <QColor>
#include <QIcon>
#include <QRectF>

class QPainter;
class QWidget;

/// The symbols of the editor's window, drawn as paths: crisp in every size, in the color of the
/// text around them.
enum class KWEditIcon {
    newDocument,
    open,
    save,
    saveAs,
    undo,
    redo,
    cut,
    copy,
    paste,
    duplicate,
    trash,
    add,
    remove, ///< a minus
    play,
    pause,
    toBeginning,
    stepBack,
    stepForward,
    toEnd,
    loop,
    eye,
    eyeClosed,
    key, ///< a keyframe's diamond
    lock,
    unlock,
    text,
    star,
    shape,
    picture,
    movie,
    stage,
    camera,
    curve,
    layers,
    zoomIn,
    zoomOut,
    fit,
    actualSize,
    search,
    settings,
    exportFile,
    moveUp,
    moveDown,
    rename,
    more, ///< three dots
    warning,
    information,
    count
};

/// Follows the palette of the widget, as long as there is one, else that of the application:
/// pictures are drawn when they are asked for.
QIcon kwEditIcon(KWEditIcon icon, const QWidget* widget = nullptr);

/// Into the largest square in the middle of `rect`.
void kwDrawEditIcon(QPainter& painter, const QRectF& rect, KWEditIcon icon, const QColor& color);
