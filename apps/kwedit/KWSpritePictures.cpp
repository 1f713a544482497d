#include <KWDesktop/KWMovie.h>

#include <apps/kwedit/KWSpritePictures.h>
#include <apps/kwedit/KWSpriteShapes.h>

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QImageReader>
#include <algorithm>
#include <cmath>

namespace {

constexpr qsizetype mostKeptBytes = 256 << 20;
constexpr int largestPictureMegabytes = 1024;
// Around shapes, so that their edges are smooth in the picture already.
constexpr double margin = 1.0 / 16;

/// The side halved as often as it stays no shorter than what is wanted.
int halved(int side, double wanted) {
    int result = side;
    while (result > 1 && (result + 1) / 2 >= wanted)
        result = (result + 1) / 2;
    return result;
}

int powerOfTwo(double wanted) {
    int side = 16;
    while (side < wanted && side < 2048)
        side *= 2;
    return side;
}

QImage paintable(QImage image) {
    return std::move(image).convertToFormat(
        image.hasAlphaChannel() ? QImage::Format_ARGB32_Premultiplied : QImage::Format_RGB32);
}

QImage tinted(const QImage& image, QRgb tint) {
    QImage result = image.convertToFormat(QImage::Format_ARGB32_Premultiplied);
    QPainter painter(&result);
    painter.setCompositionMode(QPainter::CompositionMode_Multiply);
    painter.fillRect(result.rect(), QColor::fromRgb(tint));
    painter.setCompositionMode(QPainter::CompositionMode_DestinationIn);
    painter.drawImage(0, 0, image);
    painter.end();
    return result;
}

QString sizeKey(int width, int height) {
    return QStringLiteral("|%1x%2|").arg(width).arg(height);
}

QImage scaledTo(const QImage& image, int width, int height) {
    if (image.width() == width && image.height() == height)
        return image;
    return paintable(image.scaled(width, height, Qt::IgnoreAspectRatio, Qt::SmoothTransformation));
}

} // namespace

struct KWSpritePictures::File {
    QString path;
    QImage still;
    std::shared_ptr<KWMovie> movie;
    QSize size;
};

KWSpritePictures::KWSpritePictures(QString folder) : _folder(std::move(folder)) {}
KWSpritePictures::~KWSpritePictures() = default;

QString KWSpritePictures::absolutePath(const QString& file) const {
    return QDir::isAbsolutePath(file) ? file : QDir(_folder).filePath(file);
}

void KWSpritePictures::loadInto(File& entry, const QString& file) {
    entry.path = absolutePath(file);
    if (!QFileInfo(entry.path).isFile()) {
        _problems << QCoreApplication::translate("KWSprite", "%1: there is no such file").arg(file);
        return;
    }
    QImageReader::setAllocationLimit(largestPictureMegabytes);
    QImageReader reader(entry.path);
    reader.setDecideFormatFromContent(true);
    reader.setAutoTransform(true);
    const bool isStill =
        reader.canRead() && !(reader.supportsAnimation() && reader.imageCount() != 1);
    if (isStill) {
        const QImage image = reader.read();
        if (image.isNull()) {
            _problems << QStringLiteral("%1: %2").arg(file, reader.errorString());
            return;
        }
        entry.still = paintable(image);
        entry.size = entry.still.size();
        return;
    }
    QString error;
    entry.movie = KWMovie::movieWithFile(entry.path, &error);
    if (entry.movie)
        entry.size = entry.movie->naturalSize();
    else
        _problems << QStringLiteral("%1: %2").arg(file, error);
}

KWSpritePictures::File& KWSpritePictures::fileNamed(const QString& file) {
    std::shared_ptr<File>& entry = _files[file];
    if (!entry) {
        entry = std::make_shared<File>();
        loadInto(*entry, file);
    }
    return *entry;
}

QSize KWSpritePictures::naturalSize(const QString& file) {
    return fileNamed(file).size;
}

QImage KWSpritePictures::kept(const QString& key, const std::function<QImage()>& make) {
    Kept& entry = _kept[key];
    entry.lastUse = ++_clock;
    if (!entry.image.isNull())
        return entry.image;
    entry.image = make();
    const QImage image = entry.image;
    _keptBytes += image.sizeInBytes();
    while (_keptBytes > mostKeptBytes && _kept.size() > 1) {
        const auto oldest =
            std::min_element(_kept.begin(), _kept.end(),
                             [](const Kept& a, const Kept& b) { return a.lastUse < b.lastUse; });
        _keptBytes -= oldest->image.sizeInBytes();
        _kept.erase(oldest);
    }
    return image;
}

KWSpritePictures::Picture KWSpritePictures::file(const QString& file, double time, bool isLooping,
                                                 double width, double height, QRgb tint) {
    File& entry = fileNamed(file);
    QImage original = entry.still;
    QString frame;
    if (entry.movie) {
        const double duration = entry.movie->duration();
        if (isLooping && duration > 0)
            time -= duration * std::floor(time / duration);
        const KWMovieFrame shown = entry.movie->frameAt(time);
        original = shown.image;
        frame = QString::number(shown.time, 'g', 17);
    }
    if (original.isNull())
        return {};
    const int w = halved(original.width(), width);
    const int h = halved(original.height(), height);
    if (w == original.width() && h == original.height() && tint == qRgb(255, 255, 255))
        return {original, {0, 0, 1, 1}};
    const QString key = file + QLatin1Char('|') + frame + sizeKey(w, h) + QString::number(tint);
    return {kept(key,
                 [&] {
                     const QImage scaled = scaledTo(original, w, h);
                     return tint == qRgb(255, 255, 255) ? scaled : tinted(scaled, tint);
                 }),
            {0, 0, 1, 1}};
}

KWSpritePictures::Picture KWSpritePictures::shape(const QString& shape, const QColor& color,
                                                  const QColor& second, bool isLight, double width,
                                                  double height) {
    const int w = powerOfTwo(width * (1 + 2 * margin));
    const int h = powerOfTwo(height * (1 + 2 * margin));
    const QString key = QLatin1Char(':') + shape + sizeKey(w, h) +
                        QStringLiteral("%1|%2|%3")
                            .arg(color.rgba())
                            .arg(second.isValid() ? second.rgba() : 0)
                            .arg(isLight);
    const QRectF area(-margin, -margin, 1 + 2 * margin, 1 + 2 * margin);
    return {kept(key,
                 [&] {
                     QImage image(w, h, QImage::Format_ARGB32_Premultiplied);
                     image.fill(Qt::transparent);
                     QPainter painter(&image);
                     painter.setRenderHint(QPainter::Antialiasing);
                     painter.scale(w / area.width(), h / area.height());
                     painter.translate(-area.topLeft());
                     if (isLight)
                         kwDrawShapeLight(painter, shape);
                     else
                         kwDrawShape(painter, shape, color, second);
                     painter.end();
                     return image;
                 }),
            area};
}
