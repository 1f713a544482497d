#include <KWBase/KWImageEditorView.h>

#include <apps/kwedit/window/KWEditSpriteMove.h>
#include <apps/kwedit/window/KWEditStageSurface.h>
#include <apps/kwedit/window/KWEditStageView.h>

#include <QEvent>
#include <QThread>
#include <algorithm>
#include <array>
#include <cmath>

// What is shown, and how large. KWEditStageViewDrawing.cpp has how it is drawn,
// KWEditStageViewGestures.cpp what the hand does.

namespace {

constexpr double zoomLimit = 1e6;
// As far as users get: KWImageEditorView's own.
constexpr double leastZoom = 0.05;
constexpr double mostZoom = 32;
constexpr double pointsForPixel = 64;

constexpr std::array magnifications{1 / 32.0, 1 / 24.0, 1 / 16.0, 1 / 12.0, 1 / 8.0, 1 / 6.0,
                                    1 / 4.0,  1 / 3.0,  1 / 2.0,  2 / 3.0,  1.0,     1.5,
                                    2.0,      3.0,      4.0,      6.0,      8.0,     12.0,
                                    16.0,     24.0,     32.0,     48.0,     64.0};

} // namespace

KWEditStageView::KWEditStageView(KWEditDocument& document, KWEditTransport& transport,
                                 QWidget* parent)
    : QWidget(parent), _document(&document), _transport(&transport),
      _threadCount(std::clamp(QThread::idealThreadCount(), 1, 4)) {
    setAttribute(Qt::WA_OpaquePaintEvent);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
    setFocusPolicy(Qt::StrongFocus);
    setAcceptDrops(true);
    grabGesture(Qt::PinchGesture);
    setAccessibleName(tr("Stage"));
    setAccessibleDescription(tr("The frame of the document at the current time"));
    connect(&document, &KWEditDocument::replaced, this, &KWEditStageView::documentReplaced);
    connect(&document, &KWEditDocument::fileChanged, this, &KWEditStageView::reloadContent);
    connect(&document, &KWEditDocument::structureChanged, this, &KWEditStageView::structureChanged);
    connect(&document, &KWEditDocument::channelChanged, this, &KWEditStageView::setNeedsFrame);
    connect(&transport, &KWEditTransport::timeChanged, this, [this] {
        // What the hand moves, it moves at one time.
        if (_move && _move->time() != _transport->time())
            endMove();
        setNeedsFrame();
    });
    applyRenderer();
}

KWEditStageView::~KWEditStageView() = default;

// --- The document.

KWEditScene& KWEditStageView::scene() {
    if (!_scene) {
        _scene = std::make_unique<KWEditScene>(_document->model(), _document->folder());
        _scene->setThreadCount(_threadCount);
        _needsRefresh = false;
        _told = 0;
    }
    if (_needsRefresh) {
        _needsRefresh = false;
        _scene->refresh();
    }
    return *_scene;
}

void KWEditStageView::documentReplaced() {
    // Its channels are gone; there is nothing to put back.
    _move.reset();
    _press = Press::none;
    _selected.clear();
    reloadContent();
    zoomToFit();
}

void KWEditStageView::reloadContent() {
    _scene.reset();
    setNeedsFrame();
}

void KWEditStageView::structureChanged() {
    _needsRefresh = true;
    setNeedsFrame();
    tellMagnification();
}

void KWEditStageView::setNeedsFrame() {
    _needsFrame = true;
    showSoon();
}

/// The surface under the overlay is not drawn by this view's own paint events.
void KWEditStageView::showSoon() {
    if (!_surface)
        return update();
    if (_isShowing)
        return;
    _isShowing = true;
    QMetaObject::invokeMethod(this, &KWEditStageView::showOnSurface, Qt::QueuedConnection);
}

void KWEditStageView::setThreadCount(int count) {
    _threadCount = std::max(1, count);
    if (_scene)
        _scene->setThreadCount(_threadCount);
}

QStringList KWEditStageView::problems() const {
    return _scene ? _scene->problems() : QStringList();
}

void KWEditStageView::setSelectedElements(const std::vector<std::shared_ptr<KWElement>>& elements) {
    if (_selected == elements)
        return;
    _selected = elements;
    updateCursor();
    showOver();
}

/// What lies over the frame, which stays.
void KWEditStageView::showOver() {
    if (_overlay)
        _overlay->update();
    else
        update();
}

// --- The renderer.

void KWEditStageView::setRenderer(Renderer renderer) {
    if (renderer == _renderer)
        return;
    _renderer = renderer;
    applyRenderer();
}

void KWEditStageView::applyRenderer() {
    const bool wantsOpenGL =
        _renderer == Renderer::openGL
            ? KWImageEditorView::isOpenGLAvailable()
            : _renderer == Renderer::automatic && KWImageEditorView::isOpenGLAccelerated();
    if (wantsOpenGL == isUsingOpenGL())
        return;
    if (wantsOpenGL) {
        _surface = new KWEditStageSurface(this);
        _overlay = new KWEditStageOverlay(*this);
        for (QWidget* const child :
             {static_cast<QWidget*>(_surface), static_cast<QWidget*>(_overlay)}) {
            child->setGeometry(rect());
            child->setVisible(true);
        }
    } else {
        delete _overlay;
        delete _surface;
        _overlay = nullptr;
        _surface = nullptr;
    }
    setNeedsFrame();
}

// --- Zoom.

KWImageEditorViewGeometry KWEditStageView::geometryOfStage() const {
    const QSize stage = _document ? _document->stage().size : QSize(1, 1);
    return {QSizeF(size()), QSizeF(stage), _zoom, _zoomOffset};
}

double KWEditStageView::magnification() const {
    return geometryOfStage().scale() * ratio();
}

void KWEditStageView::setMagnification(double magnification) {
    const double fit = geometryOfStage().fitScale() * ratio();
    if (magnification > 0 && fit > 0)
        setZoom(std::clamp(magnification / fit, std::min(_zoom, leastZoom),
                           std::max({_zoom, mostZoom, pointsForPixel * ratio() / fit})));
}

void KWEditStageView::setZoom(double zoom) {
    setLayout(zoom, _zoomOffset);
}

void KWEditStageView::setZoomOffset(const QPointF& offset) {
    setLayout(_zoom, offset);
}

void KWEditStageView::setLayout(double zoom, const QPointF& offset) {
    if (std::isnan(zoom) || !std::isfinite(offset.x()) || !std::isfinite(offset.y()))
        return;
    const double held = std::clamp(zoom, 1 / zoomLimit, zoomLimit);
    const bool changesZoom = _zoom != held;
    if (!changesZoom && _zoomOffset.x() == offset.x() && _zoomOffset.y() == offset.y())
        return;
    _zoom = held;
    _zoomOffset = offset;
    setNeedsFrame();
    const QPointer<KWEditStageView> self(this);
    if (changesZoom)
        Q_EMIT zoomChanged(held);
    if (self)
        tellMagnification();
}

void KWEditStageView::tellMagnification() {
    const double now = magnification();
    if (now == _toldMagnification)
        return;
    _toldMagnification = now;
    Q_EMIT magnificationChanged(now);
}

void KWEditStageView::zoomToFit() {
    setLayout(1, {0.5, 0.5});
}

void KWEditStageView::actualSize() {
    setMagnification(1);
}

void KWEditStageView::zoomIn() {
    const double now = magnification() * 1.001;
    const auto* const next = std::upper_bound(magnifications.begin(), magnifications.end(), now);
    setMagnification(next != magnifications.end() ? *next : magnification() * 1.5);
}

void KWEditStageView::zoomOut() {
    const double now = magnification() * 0.999;
    const auto* const next = std::lower_bound(magnifications.begin(), magnifications.end(), now);
    setMagnification(next != magnifications.begin() ? *(next - 1) : magnification() / 1.5);
}

void KWEditStageView::zoomAt(const QPointF& position, double factor) {
    const KWImageEditorViewGeometry layout = geometryOfStage();
    if (layout.viewSize.isEmpty() || !(factor > 0))
        return;
    const double most = std::max(mostZoom, pointsForPixel / layout.fitScale());
    const double zoomed =
        std::clamp(_zoom * factor, std::min(_zoom, leastZoom), std::max(_zoom, most));
    // Beside the frame, it is the frame's edge that stays.
    QPointF anchor = layout.view2image({position.x(), height() - position.y()});
    anchor.setX(std::clamp(anchor.x(), 0.0, layout.contentSize.width()));
    anchor.setY(std::clamp(anchor.y(), 0.0, layout.contentSize.height()));
    setLayout(zoomed, layout.zoomedAround(anchor, zoomed).zoomOffset);
}

void KWEditStageView::panBy(const QPointF& delta) {
    const QPointF before = _zoomOffset;
    const QPointF offset = geometryOfStage().pannedBy({delta.x(), -delta.y()}).zoomOffset;
    // The frame stays in sight.
    const auto held = [](double wanted, double was) {
        return std::clamp(wanted, std::min(0.0, was), std::max(1.0, was));
    };
    setLayout(_zoom, {held(offset.x(), before.x()), held(offset.y(), before.y())});
}

/// Closer or farther than fitted, a pixel of the stage stays as large as it is.
void KWEditStageView::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    if (_zoom != 1 && !event->oldSize().isEmpty() && !size().isEmpty()) {
        KWImageEditorViewGeometry before = geometryOfStage();
        before.viewSize = QSizeF(event->oldSize());
        setLayout(before.scale() / geometryOfStage().fitScale(), _zoomOffset);
    }
    for (QWidget* const child : {static_cast<QWidget*>(_surface), static_cast<QWidget*>(_overlay)})
        if (child)
            child->setGeometry(rect());
    setNeedsFrame();
    tellMagnification();
}

// --- The frame.

/// The whole frame, in pixels of the screen.
QRect KWEditStageView::framePixels() const {
    const QRectF content = geometryOfStage().contentRect();
    const double left = std::round(content.left() * ratio());
    const double top = std::round((height() - content.bottom()) * ratio());
    return {static_cast<int>(left), static_cast<int>(top),
            std::max(1, static_cast<int>(std::round(content.width() * ratio()))),
            std::max(1, static_cast<int>(std::round(content.height() * ratio())))};
}

void KWEditStageView::ensureFrame() {
    if (!_needsFrame || !_document || !_transport)
        return;
    _needsFrame = false;
    const QRect view(0, 0, static_cast<int>(std::lround(width() * ratio())),
                     static_cast<int>(std::lround(height() * ratio())));
    _frame = framePixels();
    _seen = _frame & view;
    // What OpenGL was handed is left alone, rather than copied.
    if (_surface)
        _image.swap(_spare);
    if (_seen.isEmpty()) {
        _image = {};
        return;
    }
    if (_image.size() != _seen.size())
        _image = QImage(_seen.size(), QImage::Format_ARGB32_Premultiplied);
    if (_image.isNull())
        return;
    KWEditScene& shown = scene();
    ++_drawnCount;
    shown.render(_transport->time(), _image, QRectF(_frame.translated(-_seen.topLeft())));
    if (const qsizetype count = shown.problems().size(); count != _told) {
        _told = count;
        // Not in the middle of drawing.
        QMetaObject::invokeMethod(this, &KWEditStageView::problemsChanged, Qt::QueuedConnection);
    }
}

void KWEditStageView::showOnSurface() {
    _isShowing = false;
    if (!_surface || !isVisible())
        return;
    ensureFrame();
    _surface->show(_image, _seen, _frame, surround());
    _overlay->update();
}

const QImage& KWEditStageView::shownFrame() {
    ensureFrame();
    return _image;
}

QRectF KWEditStageView::frameRect() const {
    const QRect pixels = framePixels();
    return {QPointF(pixels.topLeft()) / ratio(), QSizeF(pixels.size()) / ratio()};
}

// --- Points.

QPointF KWEditStageView::imagePoint(const QPointF& position) const {
    return position * ratio() - QPointF(_seen.topLeft());
}

QPointF KWEditStageView::stagePoint(const QPointF& position) {
    ensureFrame();
    return scene().stageTransform().inverted().map(imagePoint(position));
}

QPointF KWEditStageView::positionOfStagePoint(const QPointF& metres) {
    ensureFrame();
    return (scene().stageTransform().map(metres) + QPointF(_seen.topLeft())) / ratio();
}

std::shared_ptr<KWElement> KWEditStageView::elementAt(const QPointF& position) {
    ensureFrame();
    const QPointF pixel = position * ratio();
    // What reaches out of the frame is not drawn there.
    if (!QRectF(_frame).contains(pixel))
        return nullptr;
    const auto sprite = scene().spriteAt(imagePoint(position));
    return sprite ? scene().element(*sprite) : nullptr;
}

QPolygonF KWEditStageView::outlineOf(const KWElement& element) {
    ensureFrame();
    for (std::size_t k = 0; k < scene().spriteCount(); ++k)
        if (scene().element(k).get() == &element) {
            QPolygonF outline = scene().outline(k);
            for (QPointF& corner : outline)
                corner = (corner + QPointF(_seen.topLeft())) / ratio();
            return outline;
        }
    return {};
}

bool KWEditStageView::isSelected(const KWElement& element) const {
    return std::any_of(_selected.begin(), _selected.end(),
                       [&](const auto& each) { return each.get() == &element; });
}
