#pragma once

#include <apps/common/KWDocument.h>

#include <QImage>
#include <QString>

/// Frames of a document on one sheet, row after row, each with its time below: `count` of them, at
/// equal distances from the frame `first` to the frame `last`, each `width` pixels wide. Relative
/// names of content start from `folder`.
QImage kwFilmstrip(const KWDocument& document, const QString& folder, qint64 first, qint64 last,
                   int count, int width);
