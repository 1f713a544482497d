#include <KWBase/KWFrameRect.h>
#include <KWBase/KWKeyCell.h>

#include <QPainter>
#include <utility>

namespace {

struct CellColors {
    QColor border = Qt::black;
    QColor interior = Qt::white;
    QColor selectedInterior = Qt::white;
};

CellColors& cellColors() {
    static CellColors colors;
    return colors;
}

} // namespace

const QColor& KWKeyCell::borderColor() {
    return cellColors().border;
}

void KWKeyCell::setBorderColor(const QColor& color) {
    cellColors().border = color;
}

const QColor& KWKeyCell::interiorColor() {
    return cellColors().interior;
}

void KWKeyCell::setInteriorColor(const QColor& color) {
    cellColors().interior = color;
}

const QColor& KWKeyCell::selectedInteriorColor() {
    return cellColors().selectedInterior;
}

void KWKeyCell::setSelectedInteriorColor(const QColor& color) {
    cellColors().selectedInterior = color;
}

KWKeyCell::KWKeyCell(QImage image) : _image(std::move(image)) {}

KWChannelViewDelegate* KWKeyCell::target() const {
    const auto link = _target.lock();
    return link ? link->delegate : nullptr;
}

void KWKeyCell::setTarget(KWChannelViewDelegate* target) {
    _target = target ? target->link() : std::weak_ptr<const KWChannelViewDelegate::Link>();
}

void KWKeyCell::drawWithFrameInView(const QRectF& frame, QPainter& view) const {
    view.fillRect(frame, _selected ? selectedInteriorColor() : interiorColor());
    KWFrameRectWithWidth(view, frame, 0.5, borderColor());
}
