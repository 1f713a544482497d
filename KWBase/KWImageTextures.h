#pragma once

#include <QImage>
#include <QSize>
#include <vector>

// What an image view keeps in OpenGL. Each belongs to the context that is current when it is made,
// draws with that, and is given up while that is current.

/// The checkerboard that reveals transparency: one texel for each square.
class KWCheckerTexture {
  public:
    /// The texture's name; 0 when there is none.
    unsigned name() const { return _name; }
    void prepare();
    void release();
    /// Squares of 30 points over a view of this size, from its upper left corner.
    void draw(double width, double height) const;

  private:
    unsigned _name = 0;
};

/// A still image, at the depth that it has as far as OpenGL keeps it, cut into pieces where it is
/// too large for one texture.
class KWStillTextures {
  public:
    bool isOpaque() const { return !_pieces.empty() && !_isTranslucent; }
    /// Replaces what is there. False when OpenGL has no room for the image; there is nothing then.
    bool upload(const QImage& image);
    void release();
    /// Into the rectangle from the origin to the image's size, y upwards. `scale` tells how many
    /// pixels of the screen one of the image covers.
    void draw(double scale) const;

  private:
    struct Piece {
        unsigned name;
        QRect shown; ///< of the image, y downwards
        QRect held;  ///< the same with what neighbours share
    };

    bool uploadPiece(const QImage& image, const QRect& shown);

    std::vector<Piece> _pieces;
    int _height = 0;
    bool _isTranslucent = false;
};

/// The current frame of a movie; one texture for all frames of a size.
class KWFrameTexture {
  public:
    /// Whether there is a frame.
    explicit operator bool() const { return _hasFrame; }
    bool isOpaque() const { return _hasFrame && !_isTranslucent; }
    /// False when OpenGL has no room for it.
    bool upload(const QImage& image);
    /// Forgets the frame; the texture stays.
    void clear() { _hasFrame = false; }
    void release();
    /// Into the rectangle from the origin to this size, y upwards.
    void draw(int width, int height) const;

  private:
    unsigned _name = 0;
    QSize _size;
    bool _hasFrame = false;
    bool _isTranslucent = false;
};
