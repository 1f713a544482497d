#include <KWBase/KWImageEditorSurface.h>
#include <KWBase/KWOpenGLProbe.h>

#include <QFileInfo>
#include <QImageReader>
#include <QPaintEvent>
#include <QPainter>
#include <QPointer>
#include <algorithm>
#include <cmath>

namespace {

constexpr double zoomLimit = 1e6;

QString sentence(const QString& file, const QString& reason) {
    return KWImageEditorView::tr("The image \u201c%1\u201d cannot be shown: %2.")
        .arg(QFileInfo(file).fileName(), reason);
}

bool isMoving(const QString& file) {
    if (!QFileInfo(file).isFile())
        return false;
    QImageReader reader(file);
    reader.setDecideFormatFromContent(true);
    return reader.canRead() && reader.supportsAnimation() && reader.imageCount() != 1;
}

} // namespace

KWImageEditorView::KWImageEditorView(QWidget* parent)
    : QWidget(parent), _pictures(std::make_unique<KWImageEditorViewPictures>()) {
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
    grabGesture(Qt::PinchGesture);
    // A child of this kind brings windows down where OpenGL does not work.
    if (isOpenGLAvailable())
        _surface = new Surface(*this);
}

KWImageEditorView::~KWImageEditorView() {
    detachMovie();
    releaseOpenGL();
    delete _surface;
}

bool KWImageEditorView::isOpenGLAvailable() {
    return KWOpenGLWorks();
}

bool KWImageEditorView::isOpenGLAccelerated() {
    return KWOpenGLIsAccelerated();
}

void KWImageEditorView::awakeFromNib() {
    setAcceptDrops(true);
}

QSize KWImageEditorView::sizeHint() const {
    return {320, 240};
}

// --- The content.

void KWImageEditorView::setImage(const QImage& image) {
    // The caller's may be the one that goes.
    const QImage wanted = image;
    const QPointer<KWImageEditorView> self(this);
    if (!wanted.isNull() && _movie)
        setMovie(nullptr);
    if (!self)
        return;
    _image = wanted;
    _pictures->isStillWanted = true;
    setNeedsDisplay();
    Q_EMIT contentChanged();
}

void KWImageEditorView::setMovie(const std::shared_ptr<KWMovie>& movie) {
    // The caller's may be the one that is about to go.
    const std::shared_ptr<KWMovie> wanted = movie;
    const QPointer<KWImageEditorView> self(this);
    _waitingMovie.reset();
    if (wanted && !_image.isNull())
        setImage({});
    if (!self || !_hasContext || wanted == _movie)
        return;
    detachMovie();
    _movie = wanted;
    _movieSize = wanted ? QSizeF(wanted->naturalSize()) : QSizeF(0, 0);
    _pictures->frame.clear();
    _pictures->frameTime.reset();
    if (wanted) {
        _movieFrames =
            connect(wanted.get(), &KWMovie::frameChanged, this, [this] { setNeedsDisplay(); });
        _movieErrors =
            connect(wanted.get(), &KWMovie::errorOccurred, this, &KWImageEditorView::errorOccurred);
        wanted->setRate(1);
        wanted->stop();
        wanted->gotoBeginning();
    }
    if (!self)
        return;
    setNeedsDisplay();
    Q_EMIT contentChanged();
}

void KWImageEditorView::detachMovie() {
    disconnect(_movieFrames);
    disconnect(_movieErrors);
    _movie.reset();
}

QSizeF KWImageEditorView::contentSize() const {
    if (!_image.isNull())
        return _image.size();
    return _movie ? _movieSize : QSizeF(0, 0);
}

QImage KWImageEditorView::imageWithFile(const QString& file, QString* error) {
    QString reason;
    QImage image;
    if (QFileInfo(file).exists() && !QFileInfo(file).isFile())
        reason = tr("it is not a file");
    else {
        QImageReader reader(file);
        reader.setAutoTransform(true);
        reader.setDecideFormatFromContent(true);
        if (!reader.read(&image) || image.isNull()) {
            image = {};
            reason = reader.errorString();
        }
    }
    if (error && image.isNull())
        *error = sentence(file, reason);
    return image;
}

bool KWImageEditorView::showImageFile(const QString& file) {
    QString error;
    const QImage image = imageWithFile(file, &error);
    if (image.isNull()) {
        Q_EMIT errorOccurred(error);
        return false;
    }
    _waitingMovie.reset();
    setImage(image);
    return true;
}

bool KWImageEditorView::showMovieFile(const QString& file) {
    QString error;
    const std::shared_ptr<KWMovie> movie = KWMovie::movieWithFile(file, &error);
    if (!movie) {
        Q_EMIT errorOccurred(error);
        return false;
    }
    const QPointer<KWImageEditorView> self(this);
    setMovie(movie);
    if (self && !_hasContext && _surface)
        _waitingMovie = movie;
    return true;
}

bool KWImageEditorView::showFile(const QString& file) {
    if (isMoving(file) && KWMovie::movieWithFile(file))
        return showMovieFile(file);
    const QImage image = imageWithFile(file);
    if (image.isNull())
        return showMovieFile(file);
    _waitingMovie.reset();
    setImage(image);
    return true;
}

void KWImageEditorView::sendError(const QString& message) {
    // Not in the middle of drawing.
    QMetaObject::invokeMethod(
        this, [this, message] { Q_EMIT errorOccurred(message); }, Qt::QueuedConnection);
}

// --- Zoom and points.

KWImageEditorViewGeometry KWImageEditorView::geometry() const {
    return {QSizeF(size()), contentSize(), _zoom, _zoomOffset};
}

void KWImageEditorView::setZoom(double zoom) {
    setLayout(zoom, _zoomOffset);
}

void KWImageEditorView::setZoomOffset(const QPointF& offset) {
    setLayout(_zoom, offset);
}

void KWImageEditorView::fit() {
    setLayout(1, {0.5, 0.5});
}

void KWImageEditorView::setLayout(double zoom, const QPointF& offset) {
    if (std::isnan(zoom) || !std::isfinite(offset.x()) || !std::isfinite(offset.y()))
        return;
    const double held = std::clamp(zoom, 1 / zoomLimit, zoomLimit);
    const bool changesZoom = _zoom != held;
    const bool changesOffset = _zoomOffset.x() != offset.x() || _zoomOffset.y() != offset.y();
    _zoom = held;
    _zoomOffset = offset;
    setNeedsDisplay();
    const QPointer<KWImageEditorView> self(this);
    if (changesZoom)
        Q_EMIT zoomChanged(held);
    if (self && changesOffset)
        Q_EMIT zoomOffsetChanged(_zoomOffset);
}

void KWImageEditorView::view2image(const double view[2], double image[2]) const {
    const QPointF point = view2image(QPointF(view[0], view[1]));
    image[0] = point.x();
    image[1] = point.y();
}

void KWImageEditorView::image2view(const double image[2], double view[2]) const {
    const QPointF point = image2view(QPointF(image[0], image[1]));
    view[0] = point.x();
    view[1] = point.y();
}

// --- The widget.

void KWImageEditorView::setNeedsDisplay() {
    _needToRender = true;
    // The view itself is under the surface; painting it would send the whole window to OpenGL
    // again.
    if (_surface)
        _surface->update();
    else
        update();
}

void KWImageEditorView::update(const KWNotification&) {
    std::unique_lock<std::recursive_mutex> held;
    if (_lock)
        held = std::unique_lock(*_lock);
    setNeedsDisplay();
}

void KWImageEditorView::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    if (_surface)
        _surface->setGeometry(rect());
}

/// The surface covers the view, unless OpenGL does not work after all.
void KWImageEditorView::paintEvent(QPaintEvent* event) {
    if (_surface && _surface->isValid())
        return;
    QPainter painter(this);
    for (const QRect& rect : event->region())
        painter.fillRect(rect, Qt::red);
}

QImage KWImageEditorView::picture() {
    // Without a window a child does not know how many pixels a point has.
    if (_surface && !window()->windowHandle())
        window()->winId();
    return grab().toImage().convertToFormat(QImage::Format_RGB32);
}
