#pragma once

#include <KWBase/KWChannelViewDelegate.h>
#include <KWFoundation/KWExport.h>

#include <QColor>
#include <QImage>
#include <QRectF>

class QPainter;

/// The handle of one key in a curve view: a small square with a thin border.
class KW_EXPORT KWKeyCell {
  public:
    /// What a host may call on the target. The cell itself never does.
    using Action = void (KWChannelViewDelegate::*)(const KWKeyCell&);

    // The colours of all key cells, for the thread that draws: a black border, white inside, and
    // white inside when selected. A curve view sets others before each of its passes.

    static const QColor& borderColor();
    static void setBorderColor(const QColor& color);
    static const QColor& interiorColor();
    static void setInteriorColor(const QColor& color);
    static const QColor& selectedInteriorColor();
    static void setSelectedInteriorColor(const QColor& color);

    /// Time 0, value 0, an empty frame, not selected, no target. The image is kept and not drawn.
    explicit KWKeyCell(QImage image = {});

    const QImage& image() const { return _image; }
    /// Seconds.
    float time() const { return _time; }
    void setTime(float time) { _time = time; }
    /// In the user's unit.
    float value() const { return _value; }
    void setValue(float value) { _value = value; }
    /// Where a press means this key: points of the view, y upwards.
    QRectF controlPointFrame() const { return _cpFrame; }
    void setControlPointFrame(const QRectF& frame) { _cpFrame = frame; }
    bool isSelected() const { return _selected; }
    void setSelected(bool selected) { _selected = selected; }

    /// Null for none. Not kept alive: it reads as null once it is gone.
    KWChannelViewDelegate* target() const;
    void setTarget(KWChannelViewDelegate* target);
    /// Null for none.
    Action action() const { return _action; }
    void setAction(Action called) { _action = called; }

    /// Fills the frame and draws a border half a point wide inside it. `view` is the painter of the
    /// view to draw in.
    void drawWithFrameInView(const QRectF& frame, QPainter& view) const;

  private:
    QImage _image;
    float _time = 0;
    float _value = 0;
    QRectF _cpFrame;
    std::weak_ptr<const KWChannelViewDelegate::Link> _target;
    Action _action = nullptr;
    bool _selected = false;
};
