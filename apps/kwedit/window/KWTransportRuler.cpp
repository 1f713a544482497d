#include <apps/kwedit/window/KWTimeText.h>
#include <apps/kwedit/window/KWTransportRuler.h>

#include <QEvent>
#include <QKeyEvent>
#include <QPainterPath>
#include <QWheelEvent>
#include <algorithm>
#include <cmath>

namespace {

constexpr double margin = 12;
constexpr double labelGap = 10;
constexpr double closestTicks = 4;
constexpr double closestMiddle = 8;
constexpr int notch = 120;

/// The least of 1, 2, 5, 10, 20, ... that is no less than wanted.
double roundedUp(double wanted) {
    const double power = std::pow(10, std::floor(std::log10(wanted) + 1e-9));
    for (const double digit : {1.0, 2.0, 5.0})
        if (digit * power >= wanted * (1 - 1e-9))
            return digit * power;
    return 10 * power;
}

/// The same for seconds, which are counted in sixties from a minute on.
double roundedUpSeconds(double wanted) {
    if (wanted <= 5)
        return roundedUp(wanted);
    for (const double step : {10., 15., 30., 60., 120., 300., 600., 900., 1800., 3600., 7200.})
        if (step >= wanted)
            return step;
    return roundedUp(wanted / 3600) * 3600;
}

int decimalsOf(double step) {
    return std::clamp(static_cast<int>(std::ceil(-std::log10(step) - 1e-6)), 0, 6);
}

} // namespace

KWTransportRuler::KWTransportRuler(KWEditTransport& transport, QWidget* parent)
    : QAbstractSlider(parent), _transport(&transport) {
    setOrientation(Qt::Horizontal);
    setFocusPolicy(Qt::StrongFocus);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    setAccessibleName(tr("Time"));
    setToolTip(tr("Drag to scrub; with Alt between frames"));
    connect(&transport, &KWEditTransport::timeChanged, this, &KWTransportRuler::transportChanged);
    connect(&transport, &KWEditTransport::rangeChanged, this, &KWTransportRuler::transportChanged);
    connect(&transport, &KWEditTransport::framesPerSecondChanged, this,
            &KWTransportRuler::transportChanged);
    // By assistive technology.
    connect(this, &QAbstractSlider::valueChanged, this, [this](int frame) {
        if (!_isFollowing)
            _transport->scrub(_transport->timeOfFrame(frame));
    });
    transportChanged();
}

void KWTransportRuler::transportChanged() {
    const auto toInt = [](qint64 frame) {
        return static_cast<int>(std::clamp<qint64>(frame, INT_MIN, INT_MAX));
    };
    _isFollowing = true;
    setRange(toInt(_transport->firstFrame()), toInt(_transport->lastFrame()));
    setValue(toInt(_transport->frame()));
    _isFollowing = false;
    update();
}

void KWTransportRuler::setShowsFrames(bool showsFrames) {
    _showsFrames = showsFrames;
    update();
}

void KWTransportRuler::setKeyTimes(std::vector<float> times) {
    if (_keyTimes == times)
        return;
    _keyTimes = std::move(times);
    update();
}

// --- Where things are.

QFont KWTransportRuler::labelFont() const {
    QFont smaller = font();
    if (smaller.pointSizeF() > 0)
        smaller.setPointSizeF(smaller.pointSizeF() * 0.85);
    else
        smaller.setPixelSize(std::max(8, smaller.pixelSize() * 85 / 100));
    return smaller;
}

QSize KWTransportRuler::sizeHint() const {
    return {360, static_cast<int>(std::ceil(QFontMetricsF(labelFont()).height())) + 18};
}

QSize KWTransportRuler::minimumSizeHint() const {
    return {120, sizeHint().height()};
}

double KWTransportRuler::first() const {
    return static_cast<double>(_transport->firstFrame()) / _transport->framesPerSecond();
}

double KWTransportRuler::last() const {
    return static_cast<double>(std::max(_transport->lastFrame(), _transport->firstFrame() + 1)) /
           _transport->framesPerSecond();
}

double KWTransportRuler::positionOfTime(double seconds) const {
    const double length = std::max(1.0, width() - 2 * margin);
    return margin + (seconds - first()) / (last() - first()) * length;
}

double KWTransportRuler::timeAtPosition(double x) const {
    const double length = std::max(1.0, width() - 2 * margin);
    return first() + (x - margin) / length * (last() - first());
}

QString KWTransportRuler::labelText(double seconds, const Scale& scale) const {
    if (_showsFrames)
        return QString::number(std::llround(seconds * _transport->framesPerSecond()));
    return kwTimeText(seconds, decimalsOf(scale.major));
}

/// The closest labels that stand apart, and as many ticks between as there is room for.
KWTransportRuler::Scale KWTransportRuler::scale() const {
    const double rate = _transport->framesPerSecond();
    const double frame = 1 / rate;
    const double pointsForSecond =
        std::max(1.0, width() - 2 * margin) / std::max(last() - first(), 1e-9);
    const QFontMetricsF metrics(labelFont());
    Scale scale;
    // No finer than frames, as long as there are several.
    double wanted = std::max(std::min(frame, (last() - first()) / 5), 1 / pointsForSecond);
    for (int round = 0; round < 8; ++round) {
        scale.major = _showsFrames ? roundedUp(std::max(1.0, wanted * rate)) * frame
                                   : roundedUpSeconds(wanted);
        double widest = 0;
        for (const double end : {first(), last(), (first() + last()) / 2})
            widest = std::max(widest, metrics.horizontalAdvance(labelText(end, scale)));
        const double needed = (widest + labelGap) / pointsForSecond;
        if (scale.major >= needed)
            break;
        wanted = needed;
    }
    const auto fits = [&](double distance, double closest) {
        return distance * pointsForSecond >= closest ? distance : 0;
    };
    const double digit = scale.major / std::pow(10, std::floor(std::log10(scale.major) + 1e-9));
    const bool isTwo = std::abs(digit - 2) < 1e-6;
    scale.middle = fits(scale.major / (isTwo ? 2 : 5), closestMiddle);
    if (scale.middle < frame * 0.999)
        scale.middle = 0;
    for (const double minor : {frame, scale.major / 10, scale.major / (isTwo ? 4 : 5)})
        if (scale.minor == 0 && minor >= frame * 0.999)
            scale.minor = fits(minor, closestTicks);
    return scale;
}

QList<KWTransportRuler::Label> KWTransportRuler::labels() const {
    const Scale ticks = scale();
    const QFontMetricsF metrics(labelFont());
    QList<Label> list;
    double taken = 0;
    const auto from = static_cast<qint64>(std::ceil(first() / ticks.major - 1e-6));
    const auto to = static_cast<qint64>(std::floor(last() / ticks.major + 1e-6));
    for (qint64 k = from; k <= to; ++k) {
        const double seconds = static_cast<double>(k) * ticks.major;
        const QString text = labelText(seconds, ticks);
        const double width = metrics.horizontalAdvance(text);
        // Those at the ends lean inwards.
        const double left = std::clamp(positionOfTime(seconds) - width / 2, 1.0,
                                       std::max(1.0, this->width() - width - 1));
        if (left < taken || left + width > this->width())
            continue;
        list << Label{text, QRectF(left, 2, width, metrics.height())};
        taken = left + width + labelGap / 2;
    }
    return list;
}

// --- Drawing.

void KWTransportRuler::drawTicks(QPainter& painter, double distance, double length,
                                 double bottom) const {
    if (distance <= 0)
        return;
    const auto from = static_cast<qint64>(std::ceil(first() / distance - 1e-6));
    const auto to = static_cast<qint64>(std::floor(last() / distance + 1e-6));
    const double ratio = devicePixelRatioF();
    for (qint64 k = from; k <= to; ++k) {
        // In the middle of a pixel of the screen.
        const double x =
            (std::floor(positionOfTime(static_cast<double>(k) * distance) * ratio) + 0.5) / ratio;
        painter.drawLine(QPointF(x, bottom), QPointF(x, bottom - length));
    }
}

/// Held in sight where the time is outside of the range, and in the middle of a pixel.
double KWTransportRuler::playheadPosition() const {
    const double ratio = devicePixelRatioF();
    const double x = positionOfTime(static_cast<double>(_transport->currentTime()));
    return (std::floor(std::clamp(x, 6.0, width() - 6.0) * ratio) + 0.5) / ratio;
}

QColor KWTransportRuler::playheadColor() const {
    return palette().color(isEnabled() ? QPalette::Active : QPalette::Disabled,
                           QPalette::Highlight);
}

void KWTransportRuler::drawPlayhead(QPainter& painter) const {
    const double x = playheadPosition();
    const double bottom = height() - 1;
    QPainterPath head;
    head.moveTo(x - 5, bottom);
    head.lineTo(x - 5, bottom - 6);
    head.lineTo(x, bottom - 11);
    head.lineTo(x + 5, bottom - 6);
    head.lineTo(x + 5, bottom);
    head.closeSubpath();
    painter.setPen(QPen(palette().color(QPalette::Base), 1));
    painter.setBrush(playheadColor());
    painter.drawPath(head);
}

void KWTransportRuler::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    const QPalette::ColorGroup group = isEnabled() ? QPalette::Active : QPalette::Disabled;
    const QColor text = palette().color(group, QPalette::Text);
    const auto faint = [&text](int alpha) {
        QColor color = text;
        color.setAlpha(alpha);
        return color;
    };
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(hasFocus() ? palette().color(QPalette::Highlight) : faint(60), 1));
    painter.setBrush(palette().color(group, QPalette::Base));
    painter.drawRoundedRect(QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5), 3, 3);
    painter.setRenderHint(QPainter::Antialiasing, false);

    const Scale ticks = scale();
    const double bottom = height() - 1;
    for (const auto& [distance, length, alpha] :
         {std::tuple{ticks.minor, 4.0, 80}, std::tuple{ticks.middle, 7.0, 120},
          std::tuple{ticks.major, 12.0, 190}}) {
        painter.setPen(QPen(faint(alpha), 0));
        drawTicks(painter, distance, length, bottom);
    }
    // Under the labels, which stay legible.
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(playheadColor(), 1.5));
    painter.drawLine(QPointF(playheadPosition(), 1), QPointF(playheadPosition(), bottom - 1));
    painter.setPen(faint(220));
    painter.setFont(labelFont());
    for (const Label& label : labels())
        painter.drawText(label.rect, Qt::AlignCenter | Qt::TextDontClip, label.text);

    painter.setPen(QPen(palette().color(QPalette::Base), 0.8));
    painter.setBrush(faint(230));
    for (const float time : _keyTimes) {
        const double x = positionOfTime(static_cast<double>(time));
        if (!(x >= 2 && x <= width() - 2))
            continue;
        const double y = bottom - 6;
        painter.drawPolygon(QPolygonF({{x, y - 4}, {x + 4, y}, {x, y + 4}, {x - 4, y}}));
    }
    drawPlayhead(painter);
}

void KWTransportRuler::changeEvent(QEvent* event) {
    QAbstractSlider::changeEvent(event);
    if (event->type() == QEvent::FontChange)
        updateGeometry();
    update();
}

// --- The hand.

void KWTransportRuler::scrubTo(double x, bool isFree) {
    const double rate = _transport->framesPerSecond();
    const double seconds =
        std::clamp(timeAtPosition(x), first(), static_cast<double>(_transport->lastFrame()) / rate);
    _transport->scrub(isFree ? static_cast<float>(seconds)
                             : _transport->timeOfFrame(std::llround(seconds * rate)));
}

void KWTransportRuler::mousePressEvent(QMouseEvent* event) {
    if (event->button() != Qt::LeftButton)
        return event->ignore();
    _isDragging = true;
    _timeBefore = _transport->currentTime();
    _transport->beginScrubbing();
    scrubTo(event->position().x(), event->modifiers() & Qt::AltModifier);
}

void KWTransportRuler::mouseMoveEvent(QMouseEvent* event) {
    if (!_isDragging)
        return event->ignore();
    if (!(event->buttons() & Qt::LeftButton))
        return endScrub();
    scrubTo(event->position().x(), event->modifiers() & Qt::AltModifier);
}

void KWTransportRuler::mouseReleaseEvent(QMouseEvent* event) {
    if (event->button() == Qt::LeftButton)
        endScrub();
}

void KWTransportRuler::endScrub() {
    if (!_isDragging)
        return;
    _isDragging = false;
    _transport->endScrubbing();
}

void KWTransportRuler::hideEvent(QHideEvent* event) {
    endScrub();
    QAbstractSlider::hideEvent(event);
}

void KWTransportRuler::wheelEvent(QWheelEvent* event) {
    const QPoint turned = event->angleDelta();
    _wheel += turned.y() != 0 ? turned.y() : turned.x();
    const int steps = _wheel / notch;
    _wheel -= steps * notch;
    if (steps != 0)
        _transport->step(steps);
    event->accept();
}

void KWTransportRuler::keyPressEvent(QKeyEvent* event) {
    if (event->modifiers() & ~(Qt::ShiftModifier | Qt::KeypadModifier))
        return QWidget::keyPressEvent(event);
    const qint64 far = event->modifiers() & Qt::ShiftModifier ? 10 : 1;
    const auto second = std::max<qint64>(1, std::llround(_transport->framesPerSecond()));
    switch (event->key()) {
    case Qt::Key_Left:
    case Qt::Key_Down:
        return _transport->step(-far);
    case Qt::Key_Right:
    case Qt::Key_Up:
        return _transport->step(far);
    case Qt::Key_PageDown:
        return _transport->step(-second);
    case Qt::Key_PageUp:
        return _transport->step(second);
    case Qt::Key_Home:
        return _transport->gotoBeginning();
    case Qt::Key_End:
        return _transport->gotoEnd();
    case Qt::Key_Escape:
        if (!_isDragging)
            break;
        endScrub();
        return _transport->scrub(_timeBefore);
    default:
        break;
    }
    QWidget::keyPressEvent(event);
}

bool KWTransportRuler::event(QEvent* event) {
    // Escape lets go of a drag, also where the window has it as a shortcut.
    if (event->type() == QEvent::ShortcutOverride && _isDragging &&
        static_cast<QKeyEvent*>(event)->key() == Qt::Key_Escape) {
        event->accept();
        return true;
    }
    return QAbstractSlider::event(event);
}
