#pragma once

#include <apps/common/KWDocument.h>
#include <apps/kwedit/KWSprite.h>
#include <apps/kwedit/KWSpriteChannels.h>
#include <apps/kwedit/KWSpritePictures.h>

#include <QImage>
#include <QPolygonF>
#include <QTransform>
#include <vector>

/// Draws a document: the backdrop, and over it the sprites in the order of the document, each where
/// its channels put it at the time.
///
/// A sprite's content stands on its pivot. It is scaled, turned, leant and squashed, in this order,
/// and then moved; metres go to the right and upwards from the middle of the stage, where a camera
/// without channels looks.
///
/// What is drawn depends on the document and the time alone: not on the frames drawn before, nor on
/// the number of threads, to the bit. A sprite of no size, or with a place that is not finite, is
/// left out; content that is missing is drawn as a placeholder.
///
/// Edits of the channels' values show in the next frame. After other changes of the document, of
/// its elements or of which channels there are, call refresh(). The document must outlive the
/// scene, and nobody edits it while a frame is being drawn. One thread; several scenes may share a
/// document.
class KWEditScene {
  public:
    /// Relative names of content start from `folder`.
    KWEditScene(const KWDocument& document, const QString& folder);

    /// Reads elements, attributes and channels anew. Pictures that were read stay.
    void refresh();

    const KWStage& stage() const { return _stage; }
    std::size_t spriteCount() const { return _sprites.size(); }
    /// The element of a sprite, from the back to the front.
    const std::shared_ptr<KWElement>& element(std::size_t sprite) const {
        return _sprites[sprite].element;
    }

    /// The frame in the document's size, premultiplied.
    QImage frame(KWTime time) { return frame(time, _stage.size); }
    /// In another size: as large as fits, in the middle, with nothing around it. A null image when
    /// there is no memory for that many pixels.
    QImage frame(KWTime time, const QSize& size);
    /// Into a picture that is there, so that none is made for each frame. std::invalid_argument
    /// unless it is in Format_ARGB32_Premultiplied.
    void render(KWTime time, QImage& image);
    /// A part of a larger frame: all of it lies in `frame`, in pixels from the picture's upper left
    /// corner, as wide and high in proportion as the stage. What reaches out of the picture is not
    /// drawn; an empty `frame` leaves the picture transparent.
    void render(KWTime time, QImage& image, const QRectF& frame);

    /// How many threads draw one frame; 1 at first.
    void setThreadCount(int count) { _threadCount = std::max(1, count); }

    /// What is missing or broken, a sentence each, said once.
    QStringList problems() const { return _pictures.problems() + _channelProblems; }

    /// The corners of a sprite's content in the latest frame, in pixels of its image from the upper
    /// left; empty for one that was left out.
    QPolygonF outline(std::size_t sprite) const { return _sprites[sprite].outline; }
    /// The foremost sprite whose content's corners enclose a point of the latest frame.
    std::optional<std::size_t> spriteAt(const QPointF& point) const;
    /// From metres on the stage to pixels of the latest frame.
    const QTransform& stageTransform() const { return _toPixels; }

  private:
    struct Sprite {
        std::shared_ptr<KWElement> element;
        KWSpriteContent content;
        KWSpriteChannels channels;
        KWSpriteChannels::Values values;
        QPolygonF outline;
    };
    /// One thing to draw, in the order of drawing.
    struct Item {
        enum class What { picture, shape, placeholder };
        What what;
        QTransform transform; ///< from the unit square of the content
        QRectF reach;         ///< what it may draw on, in pixels
        KWSpritePictures::Picture picture;
        QString shape;
        QColor color;
        QColor color2;
        double opacity = 1;
        QPainter::CompositionMode blend = QPainter::CompositionMode_SourceOver;
        bool isWhole = false; ///< the backdrop, for which `transform` is not used
    };

    void evaluate(KWTime time);
    void renderPrepared(QImage& image);
    void prepare(KWTime time);
    void prepareSprite(Sprite& sprite, KWTime time);
    void addShadow(const Sprite& sprite, double x, double foot, const QSizeF& size, double opacity);
    QSizeF sizeOf(Sprite& sprite);
    QTransform cameraTransform(double fit, const QPointF& middle) const;
    bool isVisible(const QTransform& transform) const;
    void add(const QTransform& transform, Item item);
    void drawBackdrop(QPainter& painter) const;
    void draw(QImage& image, int top, int bottom) const;

    const KWDocument& _document;
    KWStage _stage;
    std::optional<KWSpriteChannels> _camera;
    KWSpriteChannels::Values _cameraValues;
    std::vector<Sprite> _sprites;
    KWSpritePictures _pictures;
    QStringList _channelProblems;
    int _threadCount = 1;

    QTransform _toPixels;
    QRectF _frame;
    QRectF _seen; ///< the part of it that is in the picture
    std::vector<Item> _items;
};
