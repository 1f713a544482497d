#pragma once

#include "MovieTestSupport.h"
#include "ViewTestSupport.h"

#include <KWBase/KWImageEditorView.h>

#include <gtest/gtest.h>

#include <QImage>
#include <QPainter>
#include <string>
#include <vector>

inline QImage filled(int width, int height, const QColor& color,
                     QImage::Format format = QImage::Format_RGB32) {
    QImage image(width, height, format);
    image.fill(color);
    return image;
}

/// Each pixel has its place in its color: the column in red, the row from the top in green.
inline QImage numbered(int width, int height) {
    QImage image(width, height, QImage::Format_RGB32);
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x)
            image.setPixel(x, y, qRgb(x, y, 77));
    return image;
}

/// What a view says of errors.
struct ViewErrors {
    explicit ViewErrors(KWImageEditorView& view) {
        QObject::connect(&view, &KWImageEditorView::errorOccurred,
                         [this](const QString& text) { texts.push_back(text.toStdString()); });
    }
    std::vector<std::string> texts;
};
