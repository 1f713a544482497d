#include <KWBase/KWImageEditorSurface.h>
#include <KWBase/KWOpenGLProbe.h>

#include <GL/gl.h>

#include <QOpenGLContext>
#include <algorithm>
#include <cmath>

void KW_glDrawSquare(double centerX, double centerY, double side) {
    const double half = side / 2;
    glBegin(GL_LINE_LOOP);
    glVertex2d(centerX - half, centerY - half);
    glVertex2d(centerX + half, centerY - half);
    glVertex2d(centerX + half, centerY + half);
    glVertex2d(centerX - half, centerY + half);
    glVertex2d(centerX - half, centerY - half);
    glEnd();
}

KWImageEditorView::Surface::Surface(KWImageEditorView& view) : QOpenGLWidget(&view), _view(view) {
    setFormat(KWImageSurfaceFormat());
    setAttribute(Qt::WA_TransparentForMouseEvents);
    setGeometry(view.rect());
}

void KWImageEditorView::Surface::initializeGL() {
    _view.initializeOpenGL();
}

void KWImageEditorView::Surface::paintGL() {
    std::unique_lock<std::recursive_mutex> held;
    const std::shared_ptr<std::recursive_mutex> lock = _view._lock;
    if (lock)
        held = std::unique_lock(*lock);
    _view.renderWithPickingFlush(false, true);
}

bool KWImageEditorView::makeCurrent() {
    if (!_surface || !_surface->isValid())
        return false;
    if (QOpenGLContext::currentContext() != _surface->context())
        _surface->makeCurrent();
    return true;
}

void KWImageEditorView::initializeOpenGL() {
    QOpenGLContext* const context = QOpenGLContext::currentContext();
    if (!_surface || !context)
        return;
    // A window that the view is moved to may bring another context.
    disconnect(_pictures->contextEnd);
    _pictures->contextEnd = connect(context, &QOpenGLContext::aboutToBeDestroyed, this,
                                    &KWImageEditorView::releaseOpenGL, Qt::DirectConnection);
    _pictures->isStillWanted = true;
    _pictures->frameTime.reset();
    prepareTransparentTexture();
    _hasContext = true;
    if (_waitingMovie)
        QMetaObject::invokeMethod(
            this,
            [this] {
                if (const auto movie = std::move(_waitingMovie))
                    setMovie(movie);
            },
            Qt::QueuedConnection);
}

void KWImageEditorView::releaseOpenGL() {
    disconnect(_pictures->contextEnd);
    if (!_surface || !_surface->context())
        return;
    _surface->makeCurrent();
    _pictures->checkers.release();
    _pictures->still.release();
    _pictures->frame.release();
    _surface->doneCurrent();
}

void KWImageEditorView::prepareTransparentTexture() {
    if (QOpenGLContext::currentContext())
        _pictures->checkers.prepare();
}

void KWImageEditorView::renderTransparencyGrid() {
    if (QOpenGLContext::currentContext())
        _pictures->checkers.draw(width(), height());
}

void KWImageEditorView::renderWithPickingFlush(bool picking, bool flushes) {
    if (!makeCurrent())
        return;
    const KWImageEditorViewGeometry layout = geometry();
    const KWImageMatrices matrices = layout.matrices();
    glDepthMask(GL_FALSE);
    glDisable(GL_DEPTH_TEST);
    // Each time: the surface sets it as well. Before it is shown, it may differ from the view.
    const double ratio = _surface->devicePixelRatioF();
    glViewport(0, 0, static_cast<GLsizei>(std::lround(width() * ratio)),
               static_cast<GLsizei>(std::lround(height() * ratio)));
    _previousSize = layout.viewSize;
    glMatrixMode(GL_PROJECTION);
    glLoadMatrixd(matrices.projection.data());
    glMatrixMode(GL_MODELVIEW);
    glLoadMatrixd(matrices.modelview.data());
    if (!picking)
        _imageMat = matrices;
    glClearColor(0, 0, 0, 0);
    glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
    uploadImage();
    uploadMovie();
    renderGridAround(layout);
    _pictures->still.draw(layout.scale() * ratio);
    if (_movie)
        _pictures->frame.draw(static_cast<int>(_movieSize.width()),
                              static_cast<int>(_movieSize.height()));
    _needToRender = false;
    _needToFlush = true;
    if (flushes)
        flush();
}

void KWImageEditorView::uploadImage() {
    if (!_pictures->isStillWanted)
        return;
    _pictures->isStillWanted = false;
    if (!_pictures->still.upload(_image))
        sendError(tr("The image of %1 x %2 pixels is too large for OpenGL here.")
                      .arg(_image.width())
                      .arg(_image.height()));
}

void KWImageEditorView::uploadMovie() {
    if (!_movie)
        return;
    const KWMovieFrame& frame = _movie->currentFrame();
    if (!frame || _pictures->frameTime == frame.time)
        return;
    const auto lock = _lock;
    std::unique_lock<std::recursive_mutex> held;
    if (lock)
        held = std::unique_lock(*lock);
    _pictures->frameTime = frame.time;
    if (!_pictures->frame.upload(frame.image))
        sendError(tr("The movie of %1 x %2 pixels is too large for OpenGL here.")
                      .arg(frame.image.width())
                      .arg(frame.image.height()));
}

/// Opaque content hides the checkerboard, which is then drawn only where there is none: with a
/// movie, that is much of the work of a frame.
void KWImageEditorView::renderGridAround(const KWImageEditorViewGeometry& layout) {
    if (!_pictures->still.isOpaque() && !(_movie && _pictures->frame.isOpaque()))
        return renderTransparencyGrid();
    const double ratio = _surface->devicePixelRatioF();
    const QRectF content = layout.contentRect();
    // In pixels of the screen, and well inside of the content but for the view's own edges.
    const auto lower = [&](double edge) {
        return edge <= 0 ? 0 : static_cast<int>(std::ceil(std::min(edge * ratio, 1e6))) + 1;
    };
    const auto upper = [&](double edge, int end) {
        return edge * ratio >= end ? end
                                   : static_cast<int>(std::floor(std::max(edge * ratio, 0.0))) - 1;
    };
    const int width = static_cast<int>(std::lround(layout.viewSize.width() * ratio));
    const int height = static_cast<int>(std::lround(layout.viewSize.height() * ratio));
    const int left = lower(content.left());
    const int bottom = lower(content.top());
    const int right = upper(content.right(), width);
    const int top = upper(content.bottom(), height);
    if (left >= right || bottom >= top)
        return renderTransparencyGrid();
    glEnable(GL_SCISSOR_TEST);
    for (const QRect& band :
         {QRect(0, 0, left, height), QRect(right, 0, width - right, height),
          QRect(left, 0, right - left, bottom), QRect(left, top, right - left, height - top)}) {
        if (band.isEmpty())
            continue;
        glScissor(band.x(), band.y(), band.width(), band.height());
        renderTransparencyGrid();
    }
    glDisable(GL_SCISSOR_TEST);
}

void KWImageEditorView::flush() {
    if (!makeCurrent())
        return;
    // The surface hands the picture to its window itself.
    glFlush();
    _needToFlush = false;
}
