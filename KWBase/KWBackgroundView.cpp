#include <KWBase/KWBackgroundView.h>

#include <QPaintEvent>
#include <QPainter>

KWBackgroundView::KWBackgroundView(QWidget* parent) : QWidget(parent) {}

KWBackgroundView::KWBackgroundView(const QRect& frame, QWidget* parent) : QWidget(parent) {
    setGeometry(frame);
}

void KWBackgroundView::setBackground(const std::shared_ptr<KWImageBackground>& background) {
    const bool changes = background != _background;
    _background = background;
    update();
    if (changes)
        Q_EMIT backgroundChanged();
}

void KWBackgroundView::setImageCutsDrawsCenterRegion(const QImage& image,
                                                     const std::array<std::int32_t, 4>& cuts,
                                                     bool drawsCenterRegion) {
    setBackground(std::make_shared<KWImageBackground>(image, cuts, drawsCenterRegion));
}

void KWBackgroundView::drawRect(QPainter& painter, const QRectF&) {
    if (_background)
        _background->drawInRect(painter, QRectF(this->rect()));
}

void KWBackgroundView::paintEvent(QPaintEvent* event) {
    QPainter painter(this);
    drawRect(painter, QRectF(event->rect()));
}
