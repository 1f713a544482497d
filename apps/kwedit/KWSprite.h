#pragma once

#include <apps/common/KWElement.h>

#include <QColor>
#include <QPainter>
#include <QPointF>
#include <QSize>
#include <QString>
#include <QStringList>
#include <optional>

/// What an element shows as a sprite, as its attributes say it. An element without the attribute
/// "content" shows nothing.
///
/// | attribute | text | when it is not there, or no such text |
/// | --- | --- | --- |
/// | content | "shape:" and a name of shapeNames(), or "file:" and a path | shows nothing |
/// | width, height | metres | natural size: a shape 1 m, of a picture 1 pixel of the stage each |
/// | color, color 2 | "#rrggbb" or "#aarrggbb" | white, a darker color |
/// | pivot | two fractions of the content from its left and top, about which it turns | "0.5 0.5" |
/// | shadow | 0 to 1, how dark a shadow it throws on the ground at height 0 | 0 |
/// | blend | "add", "multiply" or "screen" | covers what is behind it |
/// | loop | "no": a movie stands still at its end | a movie begins again |
struct KWSpriteContent {
    enum class Kind { none, shape, file };

    Kind kind = Kind::none;
    QString shape;
    QString file; ///< relative to the folder of the document, or absolute
    double width = 0;
    double height = 0; ///< 0 for natural, in proportion where the other one is given
    QColor color = Qt::white;
    QColor color2;
    QPointF pivot{0.5, 0.5};
    double shadow = 0;
    QPainter::CompositionMode blend = QPainter::CompositionMode_SourceOver;
    bool isLooping = true;

    bool operator==(const KWSpriteContent&) const = default;

    /// rectangle, rounded, ellipse, triangle, diamond, star, glow and ball.
    static QStringList shapeNames();
    static KWSpriteContent of(const KWElement& element);
    /// The element's attributes with these in place of what they said of a sprite.
    KWElement::Attributes appliedTo(const KWElement& element) const;
};

/// What a document is shown on, and the camera that looks at it: attributes of the first element
/// that has the attribute "stage", and that element's channels.
///
/// | attribute | text | otherwise |
/// | --- | --- | --- |
/// | stage | width and height in pixels, such as "1280x720" | 1280x720 |
/// | scale | pixels for a metre | 100 |
/// | rate | frames a second, above 0 to 1000 | 25 |
/// | from, to | seconds, the range to play and to render | 0, 10 |
/// | backdrop | "plain", or "room": a wall that stands on a floor at height 0 | transparent |
/// | color, color 2, floor | of the plain or the wall's top, the wall's foot, the floor | greys |
/// | distance | metres from the camera to the sprites | 3 |
struct KWStage {
    enum class Backdrop { none, plain, room };

    QSize size{1280, 720};
    double scale = 100;
    double rate = 25;
    double from = 0;
    double to = 10;
    Backdrop backdrop = Backdrop::none;
    QColor color{0xd8, 0xde, 0xe8};
    QColor color2{0xf4, 0xf5, 0xf7};
    QColor floor{0xb4, 0xb8, 0xc2};
    double distance = 3;

    bool operator==(const KWStage&) const = default;

    static bool isStage(const KWElement& element) { return !element.attribute("stage").empty(); }
    /// The defaults for null.
    static KWStage of(const KWElement* element);
    KWElement::Attributes appliedTo(const KWElement& element) const;

    /// Frame k is shown at k / rate seconds.
    float timeOfFrame(qint64 frame) const;
    /// The nearest one; halves go to the later.
    qint64 frameOfTime(double time) const;
    qint64 firstFrame() const { return frameOfTime(from); }
    qint64 lastFrame() const { return std::max(firstFrame(), frameOfTime(to)); }
};

/// Two whole numbers with an x between them, 1 to 16384 each and no more than 2^26 pixels; none for
/// any other text.
std::optional<QSize> kwSizeFromText(std::string_view text);
