#pragma once

#include <apps/kwedit/KWSprite.h>

#include <QHash>
#include <QImage>
#include <QString>
#include <QStringList>
#include <functional>
#include <memory>

class KWMovie;

/// The pictures of a scene: files, read once, and shapes that are drawn into a picture, in the
/// sizes that are wanted. Which picture is answered depends on what is asked for alone, never on
/// what was asked for before. One thread.
class KWSpritePictures {
  public:
    /// A picture, and which part of the unit square of the content it covers.
    struct Picture {
        QImage image; ///< premultiplied or opaque; null when the file cannot be shown
        QRectF area{0, 0, 1, 1};
    };

    /// `folder` is the one that relative paths start from.
    explicit KWSpritePictures(QString folder);
    ~KWSpritePictures();

    /// In pixels; empty when the file cannot be shown, which problems() then says.
    QSize naturalSize(const QString& file);

    /// `width` and `height` are the pixels it will cover along its own sides. The picture has at
    /// least as many where the file does, and fewer than twice as many. `time` is for movies.
    /// `tint` is multiplied in; white for none.
    Picture file(const QString& file, double time, bool isLooping, double width, double height,
                 QRgb tint);
    Picture shape(const QString& shape, const QColor& color, const QColor& second, bool isLight,
                  double width, double height);

    /// A sentence for each file that cannot be shown, in the order they were met.
    const QStringList& problems() const { return _problems; }

    QString absolutePath(const QString& file) const;

  private:
    struct File;
    File& fileNamed(const QString& file);
    void loadInto(File& entry, const QString& file);
    QImage kept(const QString& key, const std::function<QImage()>& make);

    QString _folder;
    QHash<QString, std::shared_ptr<File>> _files;
    struct Kept {
        QImage image;
        quint64 lastUse = 0;
    };
    QHash<QString, Kept> _kept;
    qsizetype _keptBytes = 0;
    quint64 _clock = 0;
    QStringList _problems;
};
