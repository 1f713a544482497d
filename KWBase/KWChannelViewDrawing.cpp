#include <KWBase/KWChannelView.h>
#include <KWBase/KWChannelViewGesture.h>
#include <KWBase/KWCurvePainter.h>
#include <KWBase/KWDevicePixels.h>
#include <KWBase/KWFrameRect.h>

#include <QFontMetricsF>
#include <QGuiApplication>
#include <QPaintEvent>
#include <QPainter>
#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <limits>
#include <utility>

namespace {

const QColor gray = QColor::fromRgbF(0.5f, 0.5f, 0.5f);
const QColor lightGray = QColor::fromRgbF(2 / 3.0f, 2 / 3.0f, 2 / 3.0f);
constexpr double curveWidth = 2.5;
constexpr double referenceWidth = 1.5;

/// As C's "%.*g" in the "C" locale.
QString generalText(float number, int digits) {
    std::array<char, 32> buffer;
    const auto result =
        std::to_chars(buffer.data(), buffer.data() + buffer.size(), static_cast<double>(number),
                      std::chars_format::general, digits);
    return QString::fromLatin1(buffer.data(), result.ptr - buffer.data());
}

QFont userFont(int pixels) {
    QFont font = QGuiApplication::font();
    font.setPixelSize(pixels);
    return font;
}

QPen linePen(const QColor& color, double width) {
    QPen pen(color, width, Qt::SolidLine, Qt::FlatCap, Qt::MiterJoin);
    pen.setMiterLimit(1);
    return pen;
}

/// Keeps a painter's state, and puts it back also when something is thrown.
class SavedState {
  public:
    explicit SavedState(QPainter& painter) : _painter(painter) { _painter.save(); }
    ~SavedState() { _painter.restore(); }
    SavedState(const SavedState&) = delete;
    SavedState& operator=(const SavedState&) = delete;

  private:
    QPainter& _painter;
};

/// Gives a field back the value that it has now.
template <class T>
class SavedField {
  public:
    explicit SavedField(T& field) : _field(field), _value(std::exchange(field, T())) {}
    ~SavedField() { _field = std::move(_value); }
    SavedField(const SavedField&) = delete;
    SavedField& operator=(const SavedField&) = delete;

  private:
    T& _field;
    T _value;
};

/// On the half points, where a line one point wide fills whole ones.
double halfPoint(float coordinate) {
    return std::floor(static_cast<double>(coordinate)) + 0.5;
}

/// Draws an upright line of text with its lower left corner at a point of a painter that is y
/// upwards.
void drawTextAt(QPainter& painter, const QPointF& corner, const QString& text) {
    const SavedState saved(painter);
    painter.translate(corner);
    painter.scale(1, -1);
    painter.drawText(QPointF(0, -painter.fontMetrics().descent()), text);
}

/// Bit for bit what valueInUserUnitForTime answers for each time; not a number where it raises.
std::vector<float> valuesInUserUnit(const KWChannel& channel, const std::vector<float>& times) {
    std::vector<float> values(times.size());
    try {
        channel.valuesForTimes(times, values);
    } catch (...) {
        std::transform(times.begin(), times.end(), values.begin(), [&](float time) {
            try {
                return channel.valueForTime(KWTime(time));
            } catch (...) {
                return std::numeric_limits<float>::quiet_NaN();
            }
        });
    }
    for (float& value : values)
        value = channel.convertValueToUserUnit(value);
    return values;
}

} // namespace

// --- A pass.

void KWChannelView::paintEvent(QPaintEvent*) {
    KWRunAndLog("A drawing of a curve view has failed: ", [this] {
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.translate(0, height());
        painter.scale(1, -1);
        drawRect(painter, QRectF(rect()));
    });
}

void KWChannelView::drawInto(QPainter& painter, const QRectF& rect) {
    constexpr double limit = 1'000'000;
    if (!std::isfinite(rect.x()) || !std::isfinite(rect.y()) || !rect.isValid() ||
        !(rect.width() <= limit && rect.height() <= limit))
        return;
    const SavedField plot(_plot);
    const SavedField keys(_keyCells);
    const SavedState saved(painter);
    painter.setClipRect(rect, Qt::IntersectClip);
    painter.setRenderHints(QPainter::Antialiasing | QPainter::TextAntialiasing);
    painter.translate(rect.left(), rect.bottom());
    painter.scale(1, -1);
    drawRect(painter, QRectF(0, 0, rect.width(), rect.height()));
}

void KWChannelView::drawRect(QPainter& painter, const QRectF& bounds) {
    _plot = {static_cast<float>(bounds.left()), static_cast<float>(bounds.right()),
             static_cast<float>(bounds.top()), static_cast<float>(bounds.bottom())};
    painter.setBrush(Qt::NoBrush);
    KWKeyCell::setBorderColor(Qt::white);
    KWKeyCell::setInteriorColor(Qt::black);
    KWKeyCell::setSelectedInteriorColor(QColor::fromRgbF(0.7f, 0.0f, 0.0f));
    drawBackGround(painter);
    if (_showsGrid)
        drawGrid(painter);
    drawTimeLine(painter);
    drawSecondaryChannels(painter);
    drawPrimaryChannel(painter);
    if (dynamic_cast<const KWKeyFramedChannel*>(_primaryChannel.get()))
        drawKeys(painter);
    else
        _keyCells.clear();
    if (_showPointCoords)
        drawPointCoords(painter);
    if (_selecting)
        drawSelectionRectangle(painter);
    KWFrameRectWithWidth(painter, bounds, 1, gray);
}

void KWChannelView::drawBackGround(QPainter& painter) {
    const KWPlotRect plot = plotGeometry().plot;
    painter.fillRect(
        QRectF(QPointF(static_cast<double>(plot.xMin), static_cast<double>(plot.yMin)),
               QPointF(static_cast<double>(plot.xMax), static_cast<double>(plot.yMax))),
        _backgroundColor);
}

// --- The grid.

void KWChannelView::drawGrid(QPainter& painter) {
    painter.setFont(userFont(10));
    drawGridLines(painter, Qt::Vertical);
    drawGridLines(painter, Qt::Horizontal);
    const KWChannelViewGeometry view = plotGeometry();
    if (!(view.range.vMin <= 0 && view.range.vMax >= 0))
        return;
    const float zero = convertLinear(0, view.range.vMin, view.range.vMax - view.range.vMin,
                                     view.plot.yMin, view.plot.yMax - view.plot.yMin);
    if (!std::isfinite(zero))
        return;
    painter.setPen(linePen(QColor::fromRgbF(0.7f, 0.7f, 1.0f, 0.5f), 1));
    const auto y = static_cast<double>(zero);
    KWDrawStraightLine(painter, QLineF(static_cast<double>(view.plot.xMin), y,
                                       static_cast<double>(view.plot.xMax), y));
}

/// Upright lines at times, or level ones at values.
void KWChannelView::drawGridLines(QPainter& painter, Qt::Orientation orientation) {
    const KWChannelViewGeometry view = plotGeometry();
    const bool isUpright = orientation == Qt::Vertical;
    const double first = halfPoint(isUpright ? view.plot.yMin : view.plot.xMin);
    const double last = halfPoint(isUpright ? view.plot.yMax : view.plot.xMax);
    double before = -1e9;
    for (const KWGridLine& line : isUpright ? view.timeLines(_stepMode, _xGridWanted)
                                            : view.valueLines(_stepMode, _yGridWanted)) {
        const float at = isUpright ? view.xForTime(line.at) : view.yForValue(line.at);
        const double place = halfPoint(at);
        // Where lines are denser than points one of them fills its points.
        if (!std::isfinite(place) || (place == before && !line.isMajor))
            continue;
        if (isUpright)
            drawGridLine(painter, line, QLineF(place, first, place, last),
                         {static_cast<double>(at), 0});
        else
            drawGridLine(painter, line, QLineF(first, place, last, place),
                         {3, static_cast<double>(at)});
        before = place;
    }
}

void KWChannelView::drawGridLine(QPainter& painter, const KWGridLine& line, const QLineF& where,
                                 const QPointF& labelCorner) {
    if (line.isMajor && _showsLegend) {
        painter.setPen(lightGray);
        drawGridLabel(painter, labelCorner, generalText(line.at, 4));
    }
    painter.setPen(linePen(_gridColor, line.isMajor && _showsTwoLevelGrid ? 1.5 : 0.5));
    KWDrawStraightLine(painter, where);
}

void KWChannelView::drawGridLabel(QPainter& painter, const QPointF& corner, const QString& text) {
    drawTextAt(painter, corner, text);
}

// --- The time line and the curves.

void KWChannelView::drawTimeLine(QPainter& painter) {
    const KWChannelViewGeometry view = plotGeometry();
    const auto x = static_cast<double>(view.timeLineX(_currentTime));
    constexpr double farAway = 1e6;
    if (!(std::fabs(x) < farAway))
        return;
    painter.setPen(linePen(QColor::fromRgbF(0.3f, 0.5f, 0.7f), 1));
    KWDrawStraightLine(painter, QLineF(x, halfPoint(view.plot.yMin), x, halfPoint(view.plot.yMax)));
}

void KWChannelView::drawSecondaryChannels(QPainter& painter) {
    const QColor usual = QColor::fromRgbF(0.3f, 0.1f, 0.5f);
    // The delegate may change the list.
    const std::vector<std::shared_ptr<KWChannel>> channels = _secondaryChannels;
    for (const std::shared_ptr<KWChannel>& channel : channels) {
        std::optional<QColor> color;
        KWRunAndLog("The delegate of a curve view has thrown when asked for a colour: ", [&] {
            if (KWChannelViewDelegate* const asked = delegate())
                color = asked->colorForChannel(channel);
        });
        QColor stroke = color && color->isValid() ? color->toRgb() : usual;
        stroke.setAlphaF(0.5f);
        painter.setPen(linePen(stroke, referenceWidth));
        drawChannel(painter, channel);
    }
}

void KWChannelView::drawPrimaryChannel(QPainter& painter) {
    if (!_primaryChannel)
        return;
    const KWColor color = _primaryChannel->channelColor();
    painter.setPen(linePen(QColor::fromRgbF(color.red, color.green, color.blue), curveWidth));
    drawChannel(painter, _primaryChannel);
}

void KWChannelView::drawChannel(QPainter& painter, const std::shared_ptr<KWChannel>& channel) {
    if (!channel)
        return;
    const KWChannelViewGeometry view = plotGeometry();
    const std::size_t count = _stepCount + std::size_t{1};
    const auto steps = static_cast<float>(_stepCount);
    std::vector<float> times(count);
    for (std::size_t i = 0; i < count; ++i)
        times[i] =
            view.range.hMin + (view.range.hMax - view.range.hMin) * static_cast<float>(i) / steps;
    const std::vector<float> values = valuesInUserUnit(*channel, times);
    std::vector<QPointF> points(count);
    for (std::size_t i = 0; i < count; ++i) {
        const float x =
            view.plot.xMin + (view.plot.xMax - view.plot.xMin) * static_cast<float>(i) / steps;
        points[i] = {static_cast<double>(x), static_cast<double>(view.yForValue(values[i]))};
    }
    KWDrawCurve(painter, points, static_cast<double>(view.plot.yMin),
                static_cast<double>(view.plot.yMax));
}

// --- What lies over the curves.

void KWChannelView::drawPointCoords(QPainter& painter) {
    const KWChannelViewGeometry view = plotGeometry();
    const float value = _primaryChannel ? _primaryChannel->convertValueToUserUnit(_spValue) : 0;
    const QString first = QStringLiteral("Time: ") + generalText(_spTime, 6);
    const QString second = QStringLiteral("Value: ") + generalText(value, 6);
    const QFont font = userFont(12);
    const QFontMetricsF metrics(font);
    const double width =
        std::max(metrics.horizontalAdvance(first), metrics.horizontalAdvance(second));
    const double height = metrics.height() + metrics.lineSpacing();
    const KWPlotPoint origin =
        KWCoordinatesOrigin({view.xForTime(_spTime), view.yForValue(_spValue)},
                            static_cast<float>(width), static_cast<float>(height), view.plot);
    if (!std::isfinite(origin.x) || !std::isfinite(origin.y))
        return;
    const QPointF corner(static_cast<double>(origin.x), static_cast<double>(origin.y));
    painter.setFont(font);
    painter.setPen(gray);
    drawTextAt(painter, corner + QPointF(0, metrics.lineSpacing()), first);
    drawTextAt(painter, corner, second);
}

void KWChannelView::drawSelectionRectangle(QPainter& painter) {
    const KWPlotRect plot = plotGeometry().plot;
    // An edge that is out of sight may be anywhere.
    const QRectF seen(QPointF(static_cast<double>(plot.xMin), static_cast<double>(plot.yMin)),
                      QPointF(static_cast<double>(plot.xMax), static_cast<double>(plot.yMax)));
    const QRectF limits = seen.adjusted(-9, -9, 9, 9);
    const auto at = [&limits](const QPointF& corner) {
        return QPointF(std::clamp(corner.x(), limits.left(), limits.right()),
                       std::clamp(corner.y(), limits.top(), limits.bottom()));
    };
    // An intersection would lose a band without width or height, which is but its edge.
    const QRectF whole = _selectionRect.normalized();
    const QRectF band(at(whole.topLeft()), at(whole.bottomRight()));
    painter.setPen(linePen(QColor::fromRgbF(0.9f, 0.9f, 1.0f), 0.5));
    painter.setBrush(QColor::fromRgbF(0.7f, 0.7f, 0.9f, 0.2f));
    painter.drawRect(band);
    painter.setBrush(Qt::NoBrush);
}
