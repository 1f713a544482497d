#include <GL/gl.h>
#include <apps/kwedit/window/KWEditStageSurface.h>
#include <apps/kwedit/window/KWEditStageView.h>

#include <QPainter>
#include <cmath>

KWEditStageSurface::KWEditStageSurface(QWidget* parent) : KWImageEditorView(parent) {
    setAttribute(Qt::WA_TransparentForMouseEvents);
    ungrabGesture(Qt::PinchGesture);
    setFocusPolicy(Qt::NoFocus);
}

void KWEditStageSurface::show(const QImage& image, const QRect& seen, const QRect& frame,
                              const QColor& surround) {
    _frame = frame;
    _surround = surround;
    setImage(image);
    if (!image.isNull()) {
        const double ratio = devicePixelRatioF();
        const QPointF middle =
            QPointF(width() * ratio / 2, height() * ratio / 2) - QPointF(seen.topLeft());
        setZoomOffset({middle.x() / image.width(), middle.y() / image.height()});
        KWImageEditorViewGeometry fitted = geometry();
        setZoom(1 / ratio / fitted.fitScale());
    }
    update();
}

void KWEditStageSurface::renderTransparencyGrid() {
    const double ratio = devicePixelRatioF();
    glClearColor(static_cast<float>(_surround.redF()), static_cast<float>(_surround.greenF()),
                 static_cast<float>(_surround.blueF()), 1);
    glClear(GL_COLOR_BUFFER_BIT);
    if (_frame.isEmpty())
        return;
    const int height = static_cast<int>(std::lround(this->height() * ratio));
    glPushAttrib(GL_SCISSOR_BIT);
    glEnable(GL_SCISSOR_TEST);
    glScissor(_frame.x(), height - _frame.y() - _frame.height(), _frame.width(), _frame.height());
    KWImageEditorView::renderTransparencyGrid();
    glPopAttrib();
}

KWEditStageOverlay::KWEditStageOverlay(KWEditStageView& stage) : QWidget(&stage), _stage(stage) {
    setAttribute(Qt::WA_TransparentForMouseEvents);
    setFocusPolicy(Qt::NoFocus);
}

void KWEditStageOverlay::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    _stage.drawOver(painter);
}
