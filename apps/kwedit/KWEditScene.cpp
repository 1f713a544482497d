#include <apps/kwedit/KWEditScene.h>
#include <apps/kwedit/KWSpriteShapes.h>

#include <QLinearGradient>
#include <QPainterPath>
#include <algorithm>
#include <atomic>
#include <cmath>
#include <numbers>
#include <stdexcept>
#include <thread>

namespace {

using Role = KWSpriteRole;

// Farther out, painters cannot be trusted to reckon.
constexpr double farthest = 1e6;
// Frames are drawn in bands of so many rows, always the same ones: where a painter is cut off it
// may round in another way, which must not tell how many threads there were.
constexpr int bandHeight = 128;

float valueOr(const KWSpriteChannels::Values& values, Role role, float otherwise) {
    return values[static_cast<std::size_t>(role)].value_or(otherwise);
}

double degrees(float radians) {
    return static_cast<double>(radians) * 180 / std::numbers::pi;
}

float channelOf(const KWSpriteChannels::Values& values, Role role, float otherwise) {
    return std::clamp(valueOr(values, role, otherwise), 0.0F, 1.0F);
}

/// The content's color, where there are channels by these.
QColor colorOf(const KWSpriteChannels::Values& values, const QColor& color) {
    return QColor::fromRgbF(channelOf(values, Role::red, color.redF()),
                            channelOf(values, Role::green, color.greenF()),
                            channelOf(values, Role::blue, color.blueF()), color.alphaF());
}

bool hasColor(const KWSpriteChannels::Values& values) {
    const auto has = [&values](Role role) {
        return values[static_cast<std::size_t>(role)].has_value();
    };
    return has(Role::red) || has(Role::green) || has(Role::blue);
}

double lengthOf(const QTransform& transform, double x, double y) {
    const QPointF moved = transform.map(QPointF(x, y)) - transform.map(QPointF(0, 0));
    return std::hypot(moved.x(), moved.y());
}

} // namespace

KWEditScene::KWEditScene(const KWDocument& document, const QString& folder)
    : _document(document), _pictures(folder) {
    refresh();
}

void KWEditScene::refresh() {
    _sprites.clear();
    _camera.reset();
    const KWElement* stage = nullptr;
    for (const KWDocument::Element& each : _document.elements()) {
        auto element = std::dynamic_pointer_cast<KWElement>(each.object);
        if (!element)
            continue;
        if (!stage && KWStage::isStage(*element)) {
            stage = element.get();
            _camera.emplace(element->name(), element->channelArray().get());
        }
        const KWSpriteContent content = KWSpriteContent::of(*element);
        if (content.kind == KWSpriteContent::Kind::none)
            continue;
        KWSpriteChannels channels(element->name(), element->channelArray().get());
        _sprites.push_back({std::move(element), content, std::move(channels), {}, {}});
    }
    _stage = KWStage::of(stage);
}

QImage KWEditScene::frame(KWTime time, const QSize& size) {
    QImage image(size, QImage::Format_ARGB32_Premultiplied);
    if (!image.isNull())
        render(time, image);
    return image;
}

void KWEditScene::render(KWTime time, QImage& image) {
    const QSize size = image.size();
    evaluate(time);
    const double fit = std::min(size.width() / static_cast<double>(_stage.size.width()),
                                size.height() / static_cast<double>(_stage.size.height()));
    _toPixels = cameraTransform(fit, QPointF(size.width() / 2.0, size.height() / 2.0));
    const QSizeF shown = QSizeF(_stage.size).scaled(size, Qt::KeepAspectRatio);
    _frame = QRectF(
        QPointF((size.width() - shown.width()) / 2, (size.height() - shown.height()) / 2), shown);
    _seen = _frame;
    prepare(time);
    renderPrepared(image);
}

void KWEditScene::render(KWTime time, QImage& image, const QRectF& frame) {
    evaluate(time);
    _toPixels = cameraTransform(frame.width() / _stage.size.width(), frame.center());
    _frame = frame;
    _seen = frame & QRectF(image.rect());
    prepare(time);
    renderPrepared(image);
}

void KWEditScene::renderPrepared(QImage& image) {
    if (image.format() != QImage::Format_ARGB32_Premultiplied)
        throw std::invalid_argument("a frame is drawn into a premultiplied picture");
    image.setDevicePixelRatio(1);
    image.bits(); // shared with nobody from here on
    std::atomic<int> next = 0;
    const auto work = [&] {
        for (int top; (top = bandHeight * next++) < image.height();)
            draw(image, top, std::min(top + bandHeight, image.height()));
    };
    std::vector<std::jthread> others;
    for (int k = 1; k < _threadCount && k * bandHeight < image.height(); ++k)
        others.emplace_back(work);
    work();
}

/// All channels first, one after the other, while their keys are what the cache holds.
void KWEditScene::evaluate(KWTime time) {
    if (_camera)
        _camera->evaluate(time, _cameraValues, _channelProblems);
    else
        _cameraValues.fill(std::nullopt);
    for (Sprite& sprite : _sprites)
        sprite.channels.evaluate(time, sprite.values, _channelProblems);
}

/// `fit` pixels are one of the stage.
QTransform KWEditScene::cameraTransform(double fit, const QPointF& middle) const {
    const auto angle = [this](Role role) {
        return std::clamp(static_cast<double>(valueOr(_cameraValues, role, 0)), -1.5, 1.5);
    };
    const double x = static_cast<double>(valueOr(_cameraValues, Role::x, 0)) +
                     _stage.distance * std::tan(angle(Role::pan));
    const double y = static_cast<double>(
                         valueOr(_cameraValues, Role::y, valueOr(_cameraValues, Role::height, 0))) +
                     _stage.distance * std::tan(angle(Role::tilt));
    const double scale =
        fit * _stage.scale * static_cast<double>(valueOr(_cameraValues, Role::zoom, 1));
    QTransform transform;
    transform.translate(middle.x(), middle.y());
    transform.scale(scale, -scale);
    transform.rotate(-degrees(valueOr(_cameraValues, Role::rotation, 0)));
    transform.translate(-x, -y);
    return transform;
}

void KWEditScene::prepare(KWTime time) {
    _items.clear();
    for (Sprite& sprite : _sprites) {
        sprite.outline.clear();
        prepareSprite(sprite, time);
    }
}

/// In metres.
QSizeF KWEditScene::sizeOf(Sprite& sprite) {
    const KWSpriteContent& content = sprite.content;
    QSizeF natural(1, 1);
    if (content.kind == KWSpriteContent::Kind::file) {
        const QSize pixels = _pictures.naturalSize(content.file);
        if (!pixels.isEmpty())
            natural = QSizeF(pixels) / _stage.scale;
    }
    QSizeF size = natural;
    if (content.width > 0 && content.height > 0)
        size = QSizeF(content.width, content.height);
    else if (content.width > 0)
        size *= content.width / natural.width();
    else if (content.height > 0)
        size *= content.height / natural.height();
    const auto& values = sprite.values;
    if (const auto radius = values[static_cast<std::size_t>(Role::radius)])
        size = QSizeF(2, 2) * static_cast<double>(*radius);
    size.setWidth(
        static_cast<double>(valueOr(values, Role::width, static_cast<float>(size.width()))));
    size.setHeight(
        static_cast<double>(valueOr(values, Role::height, static_cast<float>(size.height()))));
    return size;
}

bool KWEditScene::isVisible(const QTransform& transform) const {
    const QRectF bounds = transform.mapRect(QRectF(0, 0, 1, 1));
    for (const double edge : {bounds.left(), bounds.right(), bounds.top(), bounds.bottom()})
        if (!(std::abs(edge) <= farthest))
            return false;
    return transform.determinant() != 0;
}

void KWEditScene::add(const QTransform& transform, Item item) {
    // A picture may reach a little beyond its content, and smooth edges by a pixel.
    const QRectF area = item.what == Item::What::picture ? item.picture.area : QRectF(0, 0, 1, 1);
    item.reach = transform.mapRect(area).adjusted(-2, -2, 2, 2);
    if (item.opacity <= 0 || !item.reach.intersects(_seen))
        return;
    item.transform = transform;
    _items.push_back(std::move(item));
}

void KWEditScene::prepareSprite(Sprite& sprite, KWTime time) {
    const auto& values = sprite.values;
    const KWSpriteContent& content = sprite.content;
    const auto value = [&values](Role role, float otherwise) {
        return static_cast<double>(valueOr(values, role, otherwise));
    };
    const QSizeF size = sizeOf(sprite);
    const double scaleX = value(Role::scale, 1) * value(Role::scaleX, 1);
    const double scaleY = value(Role::scale, 1) * value(Role::scaleY, 1);
    const double squash = value(Role::squash, 1);
    const double lean = std::tan(std::clamp(value(Role::shear, 0), -1.5, 1.5));
    const double foot = -(1 - content.pivot.y()) * size.height() * std::abs(scaleY);
    const double opacity = std::clamp(value(Role::opacity, 1), 0.0, 1.0);
    if (squash == 0)
        return;

    QTransform standing = _toPixels;
    standing.translate(value(Role::x, 0), value(Role::y, 0) + foot);
    standing.scale(1 / squash, squash);
    standing.shear(lean, 0);
    standing.translate(0, -foot);
    QTransform turned = standing;
    turned.rotate(degrees(valueOr(values, Role::rotation, 0)));
    const auto ofContent = [&](QTransform transform) {
        transform.scale(scaleX * size.width(), -scaleY * size.height());
        transform.translate(-content.pivot.x(), -content.pivot.y());
        return transform;
    };
    const QTransform transform = ofContent(turned);
    if (!isVisible(transform))
        return;
    sprite.outline = transform.map(QPolygonF(QRectF(0, 0, 1, 1)));
    sprite.outline.pop_back(); // closed by whoever draws it

    if (content.shadow > 0)
        addShadow(sprite, value(Role::x, 0), value(Role::y, 0) + foot,
                  {size.width() * std::abs(scaleX / squash), size.height()}, opacity);

    Item item{};
    item.opacity = opacity;
    item.blend = content.blend;
    const double width = lengthOf(transform, 1, 0);
    const double height = lengthOf(transform, 0, 1);
    if (content.kind == KWSpriteContent::Kind::file) {
        const QRgb tint = hasColor(values) ? colorOf(values, Qt::white).rgb() : qRgb(255, 255, 255);
        item.what = Item::What::picture;
        item.picture = _pictures.file(content.file, value(Role::movieTime, time.time()),
                                      content.isLooping, width, height, tint);
        if (item.picture.image.isNull())
            item.what = Item::What::placeholder;
        add(transform, std::move(item));
        return;
    }
    item.color = colorOf(values, content.color);
    item.color2 = content.color2;
    item.shape = content.shape;
    item.what = kwIsPlainShape(content.shape) ? Item::What::shape : Item::What::picture;
    if (item.what == Item::What::picture)
        item.picture =
            _pictures.shape(content.shape, item.color, item.color2, false, width, height);
    const bool hasLight = content.shape == QLatin1String("ball");
    Item light = item;
    add(transform, std::move(item));
    if (!hasLight)
        return;
    light.picture = _pictures.shape(content.shape, {}, {}, true, width, height);
    add(ofContent(standing), std::move(light));
}

/// Wider, paler and softer the higher the sprite is over the ground.
void KWEditScene::addShadow(const Sprite& sprite, double x, double foot, const QSizeF& size,
                            double opacity) {
    const double height = std::max(0.0, foot);
    const double width = size.width() * (1.35 + 0.55 * height);
    QTransform transform = _toPixels;
    transform.translate(x, 0);
    transform.scale(width, -width * 0.2);
    transform.translate(-0.5, -0.5);
    if (!isVisible(transform))
        return;
    Item item{};
    item.what = Item::What::picture;
    item.opacity = opacity * sprite.content.shadow / (1 + 1.6 * height);
    item.picture = _pictures.shape(QStringLiteral("glow"), QColor(10, 12, 24), {}, false,
                                   lengthOf(transform, 1, 0), lengthOf(transform, 0, 1));
    add(transform, std::move(item));
}

void KWEditScene::drawBackdrop(QPainter& painter) const {
    if (_stage.backdrop == KWStage::Backdrop::none)
        return;
    if (_stage.backdrop == KWStage::Backdrop::plain) {
        painter.fillRect(_frame, _stage.color);
        return;
    }
    // The ground goes through the whole picture, wherever the camera is and however it rolls.
    QTransform level = _toPixels;
    const double reach =
        4 * std::hypot(_frame.width(), _frame.height()) / std::max(1e-9, lengthOf(_toPixels, 1, 0));
    bool canInvert = false;
    const QPointF middle = level.inverted(&canInvert).map(_frame.center());
    painter.fillRect(_frame, _stage.color);
    if (!canInvert || !(reach < farthest) || !(std::abs(middle.y()) < farthest))
        return;
    painter.save();
    painter.setTransform(level);
    const double visible = _frame.height() / std::max(1e-9, lengthOf(_toPixels, 0, 1));
    QLinearGradient wall(QPointF(0, visible), QPointF(0, 0));
    wall.setColorAt(0, _stage.color);
    wall.setColorAt(1, _stage.color2);
    painter.fillRect(QRectF(middle.x() - reach, 0, 2 * reach, reach + std::abs(middle.y())), wall);
    QLinearGradient floor(QPointF(0, 0), QPointF(0, -visible * 0.35));
    floor.setColorAt(0, _stage.floor.darker(112));
    floor.setColorAt(0.25, _stage.floor);
    floor.setColorAt(1, _stage.floor.lighter(112));
    // The floor begins a little behind where the sprites stand, so that shadows lie on it.
    const double behind = visible * 0.035;
    painter.fillRect(
        QRectF(middle.x() - reach, behind, 2 * reach, -(reach + std::abs(middle.y()) + behind)),
        floor);
    painter.restore();
}

/// The rows from `top` on, and before `bottom`.
void KWEditScene::draw(QImage& image, int top, int bottom) const {
    const QRect rows(0, top, image.width(), bottom - top);
    for (int y = top; y < bottom; ++y)
        std::fill_n(reinterpret_cast<QRgb*>(const_cast<uchar*>(image.constScanLine(y))),
                    image.width(), QRgb(0));
    QImage sameBytes(const_cast<uchar*>(image.constBits()), image.width(), image.height(),
                     image.bytesPerLine(), image.format());
    QPainter painter(&sameBytes);
    painter.setClipRect(QRectF(rows) & _frame.toAlignedRect());
    painter.setRenderHints(QPainter::Antialiasing | QPainter::SmoothPixmapTransform);
    drawBackdrop(painter);
    const QRectF reached = QRectF(rows);
    for (const Item& item : _items) {
        if (!item.reach.intersects(reached))
            continue;
        painter.setOpacity(item.opacity);
        painter.setCompositionMode(item.blend);
        painter.setTransform(item.transform);
        switch (item.what) {
        case Item::What::picture:
            painter.drawImage(item.picture.area, item.picture.image);
            break;
        case Item::What::shape:
            kwDrawShape(painter, item.shape, item.color, item.color2);
            break;
        case Item::What::placeholder:
            kwDrawPlaceholder(painter);
            break;
        }
    }
}

std::optional<std::size_t> KWEditScene::spriteAt(const QPointF& point) const {
    for (std::size_t k = _sprites.size(); k-- > 0;)
        if (_sprites[k].outline.containsPoint(point, Qt::OddEvenFill))
            return k;
    return std::nullopt;
}
