#include <KWFoundation/KWText.h>

#include <apps/kwedit/KWSprite.h>

#include <algorithm>
#include <charconv>
#include <cmath>

namespace {

double number(const KWElement& element, const char* key, double low, double high,
              double otherwise) {
    const std::optional<double> value = KWDoubleFromString(element.attribute(key));
    return value && *value >= low && *value <= high ? *value : otherwise;
}

QColor colorAttribute(const KWElement& element, const char* key, const QColor& otherwise) {
    const std::string& text = element.attribute(key);
    const QColor value = text.starts_with('#') ? QColor(QString::fromStdString(text)) : QColor();
    return value.isValid() ? value : otherwise;
}

std::string textOf(const QColor& color) {
    return color.name(color.alpha() == 255 ? QColor::HexRgb : QColor::HexArgb).toStdString();
}

std::optional<QPointF> pointFromText(const std::string& text) {
    const std::size_t space = text.find(' ');
    if (space == std::string::npos)
        return {};
    const auto x = KWDoubleFromString(text.substr(0, space));
    const auto y = KWDoubleFromString(text.substr(space + 1));
    if (!x || !y || !(std::abs(*x) <= 1000) || !(std::abs(*y) <= 1000))
        return {};
    return QPointF(*x, *y);
}

constexpr std::pair<const char*, QPainter::CompositionMode> blends[] = {
    {"add", QPainter::CompositionMode_Plus},
    {"multiply", QPainter::CompositionMode_Multiply},
    {"screen", QPainter::CompositionMode_Screen},
};

/// Puts texts among an element's attributes, "" for what is as when nothing is said.
class Editor {
  public:
    explicit Editor(const KWElement& element) { _copy.setAttributes(element.attributes()); }
    void put(const char* key, const std::string& text) { _copy.setAttribute(key, text); }
    void put(const char* key, double value, double otherwise) {
        put(key, value == otherwise ? "" : KWExactStringFromDouble(value));
    }
    void put(const char* key, const QColor& value, const QColor& otherwise) {
        put(key, !value.isValid() || value == otherwise ? "" : textOf(value));
    }
    const KWElement::Attributes& attributes() const { return _copy.attributes(); }

  private:
    KWElement _copy;
};

} // namespace

QStringList KWSpriteContent::shapeNames() {
    return {QStringLiteral("rectangle"), QStringLiteral("rounded"), QStringLiteral("ellipse"),
            QStringLiteral("triangle"),  QStringLiteral("diamond"), QStringLiteral("star"),
            QStringLiteral("glow"),      QStringLiteral("ball")};
}

KWSpriteContent KWSpriteContent::of(const KWElement& element) {
    KWSpriteContent content;
    const QString text = QString::fromStdString(element.attribute("content"));
    if (text.startsWith(QLatin1String("shape:")) && shapeNames().contains(text.mid(6))) {
        content.kind = Kind::shape;
        content.shape = text.mid(6);
    } else if (text.startsWith(QLatin1String("file:")) && text.size() > 5) {
        content.kind = Kind::file;
        content.file = text.mid(5);
    }
    content.width = number(element, "width", 0, 1e6, 0);
    content.height = number(element, "height", 0, 1e6, 0);
    content.color = colorAttribute(element, "color", content.color);
    content.color2 = colorAttribute(element, "color 2", {});
    content.pivot = pointFromText(element.attribute("pivot")).value_or(content.pivot);
    content.shadow = number(element, "shadow", 0, 1, 0);
    for (const auto& [name, mode] : blends)
        if (element.attribute("blend") == name)
            content.blend = mode;
    content.isLooping = element.attribute("loop") != "no";
    return content;
}

KWElement::Attributes KWSpriteContent::appliedTo(const KWElement& element) const {
    const KWSpriteContent plain;
    Editor editor(element);
    editor.put("content", kind == Kind::shape  ? "shape:" + shape.toStdString()
                          : kind == Kind::file ? "file:" + file.toStdString()
                                               : "");
    editor.put("width", width, plain.width);
    editor.put("height", height, plain.height);
    editor.put("color", color, plain.color);
    editor.put("color 2", color2, plain.color2);
    editor.put("pivot", pivot == plain.pivot ? std::string()
                                             : KWExactStringFromDouble(pivot.x()) + " " +
                                                   KWExactStringFromDouble(pivot.y()));
    editor.put("shadow", shadow, plain.shadow);
    std::string blendName;
    for (const auto& [name, mode] : blends)
        if (blend == mode)
            blendName = name;
    editor.put("blend", blendName);
    editor.put("loop", isLooping ? "" : "no");
    return editor.attributes();
}

KWStage KWStage::of(const KWElement* element) {
    KWStage stage;
    if (!element)
        return stage;
    stage.size = kwSizeFromText(element->attribute("stage")).value_or(stage.size);
    stage.scale = number(*element, "scale", 1e-6, 1e6, stage.scale);
    stage.rate = number(*element, "rate", 1e-3, 1000, stage.rate);
    stage.from = number(*element, "from", -1e6, 1e6, stage.from);
    stage.to = number(*element, "to", -1e6, 1e6, std::max(stage.to, stage.from));
    stage.to = std::max(stage.to, stage.from);
    if (element->attribute("backdrop") == "plain")
        stage.backdrop = Backdrop::plain;
    if (element->attribute("backdrop") == "room")
        stage.backdrop = Backdrop::room;
    stage.color = colorAttribute(*element, "color", stage.color);
    stage.color2 = colorAttribute(*element, "color 2", stage.color2);
    stage.floor = colorAttribute(*element, "floor", stage.floor);
    stage.distance = number(*element, "distance", 0, 1e6, stage.distance);
    return stage;
}

KWElement::Attributes KWStage::appliedTo(const KWElement& element) const {
    const KWStage plain;
    Editor editor(element);
    editor.put("stage", std::to_string(size.width()) + "x" + std::to_string(size.height()));
    editor.put("scale", scale, plain.scale);
    editor.put("rate", rate, plain.rate);
    editor.put("from", from, plain.from);
    editor.put("to", KWExactStringFromDouble(to));
    editor.put("backdrop", backdrop == Backdrop::plain  ? "plain"
                           : backdrop == Backdrop::room ? "room"
                                                        : "");
    editor.put("color", color, plain.color);
    editor.put("color 2", color2, plain.color2);
    editor.put("floor", floor, plain.floor);
    editor.put("distance", distance, plain.distance);
    return editor.attributes();
}

float KWStage::timeOfFrame(qint64 frame) const {
    return static_cast<float>(static_cast<double>(frame) / rate);
}

qint64 KWStage::frameOfTime(double time) const {
    const double frame = std::floor(time * rate + 0.5);
    constexpr double largest = 1e15;
    return std::isnan(frame) ? 0 : static_cast<qint64>(std::clamp(frame, -largest, largest));
}

std::optional<QSize> kwSizeFromText(std::string_view text) {
    constexpr int largest = 16384;
    constexpr qint64 mostPixels = qint64{1} << 26;
    int width = 0;
    int height = 0;
    const char* const end = text.data() + text.size();
    const auto first = std::from_chars(text.data(), end, width);
    if (first.ec != std::errc() || first.ptr == end || (*first.ptr != 'x' && *first.ptr != 'X'))
        return {};
    const auto second = std::from_chars(first.ptr + 1, end, height);
    if (second.ec != std::errc() || second.ptr != end || width < 1 || height < 1 ||
        width > largest || height > largest || qint64{width} * height > mostPixels)
        return {};
    return QSize(width, height);
}
