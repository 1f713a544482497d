#include <apps/kwedit/window/KWEditIcons.h>

#include <QGuiApplication>
#include <QIconEngine>
#include <QPainter>
#include <QPainterPath>
#include <QPalette>
#include <QPixmap>
#include <QPointer>
#include <QWidget>
#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <string_view>

namespace {

/// Lines of a pen one wide, and areas, in a square of 16. "M", "L", "H", "V", "C" and "Z" as in
/// usual path data with absolute coordinates; "O" is a circle by centre and radius, "R" a rectangle
/// by corner, size and radius.
struct Symbol {
    KWEditIcon icon;
    std::string_view lines;
    std::string_view areas;
};

constexpr double side = 16;

constexpr std::array symbols{
    Symbol{KWEditIcon::newDocument, "M3.5 1.5 H9.5 L12.5 4.5 V14.5 H3.5 Z M9.5 1.5 V4.5 H12.5", ""},
    Symbol{KWEditIcon::open,
           "M1.5 13.5 V3.5 H6 L7.5 5.5 H12.5 V7.5 M1.5 13.5 L3.9 7.5 H14.9 L12.5 13.5 Z", ""},
    Symbol{KWEditIcon::save,
           "M2.5 2.5 H11 L13.5 5 V13.5 H2.5 Z M4.5 13.5 V8.5 H11.5 V13.5 M5.5 2.5 V5.5 H9.5 V2.5",
           ""},
    Symbol{KWEditIcon::saveAs,
           "M6.5 13.5 H2.5 V2.5 H11 L13.5 5 V6.5 M5.5 2.5 V5.5 H9.5 V2.5 "
           "M8.5 14.5 L9 12.4 L13 8.4 L14.6 10 L10.6 14 Z",
           ""},
    Symbol{KWEditIcon::undo,
           "M6 3 L2.5 6.5 L6 10 M2.5 6.5 H10 C12 6.5 13.5 8 13.5 10 C13.5 12 12 13.5 10 13.5 H6",
           ""},
    Symbol{KWEditIcon::redo,
           "M10 3 L13.5 6.5 L10 10 M13.5 6.5 H6 C4 6.5 2.5 8 2.5 10 C2.5 12 4 13.5 6 13.5 H10", ""},
    Symbol{KWEditIcon::cut, "O4 12 1.9 O12 12 1.9 M5.1 10.4 L11.3 1.8 M10.9 10.4 L4.7 1.8", ""},
    Symbol{KWEditIcon::copy, "R5.5 5.5 8 9 1 M3.5 10.5 H2.5 V1.5 H10.5 V3.5", ""},
    Symbol{KWEditIcon::paste, "M5.5 2.5 H3.5 V14.5 H12.5 V2.5 H10.5 M5.5 7.5 H10.5 M5.5 10.5 H10.5",
           "R5.5 1.2 5 2.8 0.8"},
    Symbol{KWEditIcon::duplicate,
           "R5.5 5.5 8 9 1 M3.5 10.5 H2.5 V1.5 H10.5 V3.5 M7.5 10 H11.5 M9.5 8 V12", ""},
    Symbol{KWEditIcon::trash,
           "M2.5 4.5 H13.5 M5.5 4.5 V2.5 H10.5 V4.5 M3.9 4.5 L4.6 14.5 H11.4 L12.1 4.5 "
           "M6.5 7 V12 M9.5 7 V12",
           ""},
    Symbol{KWEditIcon::add, "", "M7.2 3 H8.8 V7.2 H13 V8.8 H8.8 V13 H7.2 V8.8 H3 V7.2 H7.2 Z"},
    Symbol{KWEditIcon::remove, "", "M3 7.2 H13 V8.8 H3 Z"},
    Symbol{KWEditIcon::play, "", "M4 2.5 L13.5 8 L4 13.5 Z"},
    Symbol{KWEditIcon::pause, "", "M4 3 H7 V13 H4 Z M9 3 H12 V13 H9 Z"},
    Symbol{KWEditIcon::toBeginning, "", "M3 3 H5 V13 H3 Z M13 3 V13 L6 8 Z"},
    Symbol{KWEditIcon::stepBack, "", "M10 3 V13 L3 8 Z M11 3 H13 V13 H11 Z"},
    Symbol{KWEditIcon::stepForward, "", "M6 3 L13 8 L6 13 Z M3 3 H5 V13 H3 Z"},
    Symbol{KWEditIcon::toEnd, "", "M11 3 H13 V13 H11 Z M3 3 L10 8 L3 13 Z"},
    Symbol{KWEditIcon::loop,
           "M2.5 8 V7 C2.5 5.3 3.8 4.5 5.5 4.5 H13 M10.5 2 L13 4.5 L10.5 7 "
           "M13.5 8 V9 C13.5 10.7 12.2 11.5 10.5 11.5 H3 M5.5 9 L3 11.5 L5.5 14",
           ""},
    Symbol{KWEditIcon::eye,
           "M1.3 8 C3.3 4.8 5.6 3.5 8 3.5 C10.4 3.5 12.7 4.8 14.7 8 "
           "C12.7 11.2 10.4 12.5 8 12.5 C5.6 12.5 3.3 11.2 1.3 8 Z",
           "O8 8 2.2"},
    Symbol{KWEditIcon::eyeClosed,
           "M1.3 6.5 C3.3 9.7 5.6 11 8 11 C10.4 11 12.7 9.7 14.7 6.5 "
           "M3.9 9.4 L2.5 11.6 M8 11 V13.6 M12.1 9.4 L13.5 11.6",
           ""},
    Symbol{KWEditIcon::key, "", "M8 2.8 L13.2 8 L8 13.2 L2.8 8 Z"},
    Symbol{KWEditIcon::lock, "M5 7.5 V5 C5 3.2 6.3 1.9 8 1.9 C9.7 1.9 11 3.2 11 5 V7.5",
           "R3 7 10 7.5 1"},
    Symbol{KWEditIcon::unlock, "M5 7.5 V4.6 C5 2.9 6.2 1.6 7.8 1.6 C9.2 1.6 10.3 2.5 10.7 3.8",
           "R3 7 10 7.5 1"},
    Symbol{KWEditIcon::text, "",
           "M2.8 2.5 H13.2 V5.6 H12.2 C12 4.5 11.6 4 10.6 4 H8.9 V12 C8.9 12.7 9.3 12.9 10.2 13 "
           "V13.8 H5.8 V13 C6.7 12.9 7.1 12.7 7.1 12 V4 H5.4 C4.4 4 4 4.5 3.8 5.6 H2.8 Z"},
    Symbol{KWEditIcon::star, "",
           "M8 1.4 L10 5.8 L14.8 6.3 L11.2 9.5 L12.2 14.2 L8 11.8 L3.8 14.2 L4.8 9.5 "
           "L1.2 6.3 L6 5.8 Z"},
    Symbol{KWEditIcon::shape, "R1.5 1.5 8 8 0.5 O10 10 4.5", ""},
    Symbol{KWEditIcon::picture, "R1.5 2.5 13 11 1 M1.5 11 L5.5 7.8 L8.5 10.6 L11 8.3 L14.5 11.5",
           "O10.6 5.6 1.2"},
    Symbol{KWEditIcon::movie,
           "R1.5 2.5 13 11 1 M4.5 2.5 V13.5 M11.5 2.5 V13.5 M1.5 6.2 H4.5 M1.5 9.8 H4.5 "
           "M11.5 6.2 H14.5 M11.5 9.8 H14.5",
           ""},
    Symbol{KWEditIcon::stage, "R1.5 2.5 13 9 1 M5 14.5 H11 M8 11.5 V14.5", ""},
    Symbol{KWEditIcon::camera, "R1.5 4.5 9 8 1", "M10.8 8 L14.6 5 V12 L10.8 9 Z"},
    Symbol{KWEditIcon::curve, "M1.5 13 C6 13 4.5 3.5 8 3.5 C11.5 3.5 10 9.5 14.5 9.5",
           "M8 1.6 L9.9 3.5 L8 5.4 L6.1 3.5 Z"},
    Symbol{KWEditIcon::layers,
           "M8 2 L14.5 5.5 L8 9 L1.5 5.5 Z M1.5 8.3 L8 11.8 L14.5 8.3 M1.5 11.1 L8 14.6 L14.5 11.1",
           ""},
    Symbol{KWEditIcon::zoomIn, "O6.5 6.5 4.8 M10 10 L14.4 14.4 M4.3 6.5 H8.7 M6.5 4.3 V8.7", ""},
    Symbol{KWEditIcon::zoomOut, "O6.5 6.5 4.8 M10 10 L14.4 14.4 M4.3 6.5 H8.7", ""},
    Symbol{KWEditIcon::fit,
           "M1.5 5 V2.5 H4.5 M11.5 2.5 H14.5 V5 M14.5 11 V13.5 H11.5 M4.5 13.5 H1.5 V11 "
           "R4.5 5.5 7 5 0.5",
           ""},
    Symbol{KWEditIcon::actualSize, "M2.2 5.2 L4.5 3.5 V12.5 M11.2 5.2 L13.5 3.5 V12.5",
           "O8 6 0.9 O8 10.5 0.9"},
    Symbol{KWEditIcon::search, "O6.5 6.5 4.8 M10 10 L14.4 14.4", ""},
    Symbol{KWEditIcon::settings, "M1.5 4.5 H14.5 M1.5 8.5 H14.5 M1.5 12.5 H14.5",
           "O5 4.5 1.8 O11 8.5 1.8 O6.5 12.5 1.8"},
    Symbol{KWEditIcon::exportFile,
           "M9.5 2.5 H13.5 V6.5 M13.3 2.7 L7.5 8.5 M6.5 3.5 H2.5 V13.5 H12.5 V9.5", ""},
    Symbol{KWEditIcon::moveUp, "M8 13.5 V3 M3.5 7.2 L8 2.7 L12.5 7.2", ""},
    Symbol{KWEditIcon::moveDown, "M8 2.5 V13 M3.5 8.8 L8 13.3 L12.5 8.8", ""},
    Symbol{KWEditIcon::rename, "M2 14 L2.8 10.8 L11 2.6 L13.4 5 L5.2 13.2 Z M9.3 4.3 L11.7 6.7",
           ""},
    Symbol{KWEditIcon::more, "", "O3.5 8 1.3 O8 8 1.3 O12.5 8 1.3"},
    Symbol{KWEditIcon::warning, "M8 1.8 L14.8 13.8 H1.2 Z M8 6 V9.8", "O8 11.8 0.8"},
    Symbol{KWEditIcon::information, "O8 8 6.5 M8 7.3 V11.6", "O8 4.9 0.9"},
};
static_assert(symbols.size() == static_cast<std::size_t>(KWEditIcon::count));

constexpr bool areInOrder() {
    for (std::size_t k = 0; k < symbols.size(); ++k)
        if (symbols[k].icon != static_cast<KWEditIcon>(k))
            return false;
    return true;
}
static_assert(areInOrder());

/// Reads the data of one path.
class PathReader {
  public:
    explicit PathReader(std::string_view text) : _text(text) {}

    QPainterPath path() {
        QPainterPath path;
        path.setFillRule(Qt::WindingFill);
        while (!_text.empty())
            step(path);
        return path;
    }

  private:
    double number() {
        skipSpace();
        double value = 0;
        const auto read = std::from_chars(_text.data(), _text.data() + _text.size(), value);
        _text.remove_prefix(static_cast<std::size_t>(read.ptr - _text.data()));
        return value;
    }
    QPointF point() {
        const double x = number();
        return {x, number()};
    }
    void skipSpace() { _text.remove_prefix(std::min(_text.find_first_not_of(' '), _text.size())); }

    void step(QPainterPath& path) {
        skipSpace();
        if (_text.empty())
            return;
        const char letter = _text.front();
        _text.remove_prefix(1);
        if (letter == 'M') {
            path.moveTo(point());
        } else if (letter == 'L') {
            path.lineTo(point());
        } else if (letter == 'H') {
            path.lineTo(number(), path.currentPosition().y());
        } else if (letter == 'V') {
            path.lineTo(path.currentPosition().x(), number());
        } else if (letter == 'C') {
            const QPointF first = point();
            const QPointF second = point();
            path.cubicTo(first, second, point());
        } else if (letter == 'Z') {
            path.closeSubpath();
        } else if (letter == 'O') {
            const QPointF centre = point();
            const double radius = number();
            path.addEllipse(centre, radius, radius);
        } else if (letter == 'R') {
            const QPointF corner = point();
            const QPointF size = point();
            const double radius = number();
            path.addRoundedRect(QRectF(corner, QSizeF(size.x(), size.y())), radius, radius);
        } else {
            _text = {};
        }
    }

    std::string_view _text;
};

class Engine final : public QIconEngine {
  public:
    Engine(KWEditIcon icon, const QWidget* widget)
        : _icon(icon), _widget(widget), _isBound(widget != nullptr) {}

    void paint(QPainter* painter, const QRect& rect, QIcon::Mode mode, QIcon::State) override {
        const QPalette palette =
            _isBound && _widget ? _widget->palette() : QGuiApplication::palette();
        const QColor color =
            mode == QIcon::Disabled   ? palette.color(QPalette::Disabled, QPalette::ButtonText)
            : mode == QIcon::Selected ? palette.color(QPalette::Active, QPalette::HighlightedText)
                                      : palette.color(QPalette::Active, QPalette::ButtonText);
        kwDrawEditIcon(*painter, rect, _icon, color);
    }
    QPixmap pixmap(const QSize& size, QIcon::Mode mode, QIcon::State state) override {
        QPixmap pixmap(size);
        pixmap.fill(Qt::transparent);
        QPainter painter(&pixmap);
        paint(&painter, QRect(QPoint(0, 0), size), mode, state);
        return pixmap;
    }
    QIconEngine* clone() const override { return new Engine(*this); }
    QString key() const override { return QStringLiteral("KWEditIcon"); }

  private:
    KWEditIcon _icon;
    QPointer<const QWidget> _widget;
    bool _isBound;
};

} // namespace

QIcon kwEditIcon(KWEditIcon icon, const QWidget* widget) {
    return QIcon(new Engine(icon, widget));
}

void kwDrawEditIcon(QPainter& painter, const QRectF& rect, KWEditIcon icon, const QColor& color) {
    if (icon >= KWEditIcon::count)
        return;
    const Symbol& symbol = symbols[static_cast<std::size_t>(icon)];
    const double length = std::min(rect.width(), rect.height());
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.translate(rect.center() - QPointF(length, length) / 2);
    painter.scale(length / side, length / side);
    painter.fillPath(PathReader(symbol.areas).path(), color);
    painter.setBrush(Qt::NoBrush);
    painter.setPen(QPen(color, 1.2, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    painter.drawPath(PathReader(symbol.lines).path());
    painter.restore();
}
