#pragma once

#include <QImage>
#include <QTransform>
#include <memory>

struct AVFrame;

/// Makes upright pictures of decoded frames. One thread at a time; the pictures may live on and end
/// anywhere, and their memory is used again for later ones.
class KWFrameConverter {
  public:
    /// `orientation` has ones and zeros only: how a coded frame is turned and mirrored to stand
    /// upright, y downwards.
    explicit KWFrameConverter(const QTransform& orientation);
    ~KWFrameConverter();

    /// Format_RGB32, or Format_ARGB32_Premultiplied where the frame has an alpha channel. Null when
    /// there is no memory, or no way to convert the frame.
    QImage imageOfFrame(const AVFrame& frame);

  private:
    struct Pool;
    struct Scaler;

    QImage turned(QImage image) const;

    QTransform _orientation;
    std::shared_ptr<Pool> _pool;
    std::unique_ptr<Scaler> _scaler;
};
