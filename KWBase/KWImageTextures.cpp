#include <KWBase/KWImageTextures.h>

#define GL_GLEXT_PROTOTYPES
#include <GL/gl.h>
#include <GL/glext.h>

#include <QColorSpace>
#include <QOpenGLContext>
#include <QRgba64>
#include <algorithm>
#include <array>
#include <vector>

namespace {

constexpr GLenum rectangleTarget = 0x84F5;
constexpr int checkerTexels = 256;
constexpr double checkerPoints = 30;
/// Neighbouring pieces share this many pixels, so that filtering finds the same on both sides.
constexpr int pieceBorder = 8;
constexpr int largestPiece = 4096;

void clearErrors() {
    while (glGetError() != GL_NO_ERROR)
        continue;
}

void setFilters(GLenum target, GLint smaller, GLint larger) {
    glTexParameteri(target, GL_TEXTURE_MIN_FILTER, smaller);
    glTexParameteri(target, GL_TEXTURE_MAG_FILTER, larger);
    glTexParameteri(target, GL_TEXTURE_WRAP_S, GL_CLAMP_TO_EDGE);
    glTexParameteri(target, GL_TEXTURE_WRAP_T, GL_CLAMP_TO_EDGE);
}

void beginTexture(GLenum target, unsigned name, bool blends) {
    if (blends) {
        // The colours have their alpha in them already.
        glEnable(GL_BLEND);
        glBlendFunc(GL_ONE, GL_ONE_MINUS_SRC_ALPHA);
    }
    glEnable(target);
    glBindTexture(target, name);
    glTexEnvi(GL_TEXTURE_ENV, GL_TEXTURE_ENV_MODE, GL_MODULATE);
    glColor4f(1, 1, 1, 1);
}

void endTexture(GLenum target, bool blends) {
    glDisable(target);
    if (blends)
        glDisable(GL_BLEND);
}

/// How the pixels of an image are handed over, and kept.
struct PixelForm {
    QImage::Format format;
    GLint internalFormat;
    GLenum order;
    GLenum type;
};

PixelForm formOf(const QImage& image) {
    const QPixelFormat pixels = image.pixelFormat();
    const bool isFloat = pixels.typeInterpretation() == QPixelFormat::FloatingPoint;
    const int deepest =
        std::max({pixels.redSize(), pixels.greenSize(), pixels.blueSize(), pixels.alphaSize()});
    const bool isDeepGray = image.format() == QImage::Format_Grayscale16;
    if (isFloat && QOpenGLContext::currentContext()->hasExtension("GL_ARB_texture_float")) {
        if (deepest > 16)
            return {QImage::Format_RGBA32FPx4_Premultiplied, GL_RGBA32F_ARB, GL_RGBA, GL_FLOAT};
        return {QImage::Format_RGBA16FPx4_Premultiplied, GL_RGBA16F_ARB, GL_RGBA,
                GL_HALF_FLOAT_ARB};
    }
    if (isFloat || isDeepGray || deepest > 8)
        return {QImage::Format_RGBA64_Premultiplied, GL_RGBA16, GL_RGBA, GL_UNSIGNED_SHORT};
    if (image.hasAlphaChannel())
        return {QImage::Format_ARGB32_Premultiplied, GL_RGBA8, GL_BGRA,
                GL_UNSIGNED_INT_8_8_8_8_REV};
    return {QImage::Format_RGB32, GL_RGBA8, GL_BGRA, GL_UNSIGNED_INT_8_8_8_8_REV};
}

/// Qt's own conversion multiplies the alpha with itself as well.
QImage deepPremultiplied(QImage image) {
    if (image.pixelFormat().premultiplied() == QPixelFormat::Premultiplied ||
        !image.hasAlphaChannel())
        return std::move(image).convertToFormat(QImage::Format_RGBA64_Premultiplied);
    image = std::move(image).convertToFormat(QImage::Format_RGBA64);
    for (int y = 0; y < image.height(); ++y) {
        auto* const line = reinterpret_cast<QRgba64*>(image.scanLine(y));
        std::transform(line, line + image.width(), line,
                       [](QRgba64 pixel) { return pixel.premultiplied(); });
    }
    return image;
}

} // namespace

// --- The checkerboard.

void KWCheckerTexture::prepare() {
    release();
    glGenTextures(1, &_name);
    if (_name == 0)
        return;
    std::vector<std::array<GLubyte, 4>> texels;
    texels.reserve(checkerTexels * checkerTexels);
    for (int y = 0; y < checkerTexels; ++y)
        for (int x = 0; x < checkerTexels; ++x) {
            const GLubyte gray = (x + y) % 2 != 0 ? 200 : 255;
            texels.push_back({gray, gray, gray, 255});
        }
    glEnable(rectangleTarget);
    glBindTexture(rectangleTarget, _name);
    glPixelStorei(GL_UNPACK_ALIGNMENT, 1);
    // A rectangle texture cannot repeat; draw() does that. It is always magnified, and some drivers
    // take the filter for minifying all the same.
    setFilters(rectangleTarget, GL_NEAREST, GL_NEAREST);
    glTexEnvi(GL_TEXTURE_ENV, GL_TEXTURE_ENV_MODE, GL_MODULATE);
    glTexImage2D(rectangleTarget, 0, GL_RGBA, checkerTexels, checkerTexels, 0, GL_RGBA,
                 GL_UNSIGNED_BYTE, texels.data());
    glDisable(rectangleTarget);
}

void KWCheckerTexture::release() {
    if (_name != 0)
        glDeleteTextures(1, &_name);
    _name = 0;
}

void KWCheckerTexture::draw(double width, double height) const {
    glMatrixMode(GL_PROJECTION);
    glPushMatrix();
    glLoadIdentity();
    glOrtho(0, width, 0, height, -2, 1);
    if (_name != 0) {
        beginTexture(rectangleTarget, _name, false);
        glBegin(GL_QUADS);
        constexpr double step = checkerTexels * checkerPoints;
        for (double down = 0; down < height; down += step)
            for (double left = 0; left < width; left += step) {
                const double right = std::min(width, left + step);
                const double below = std::min(height, down + step);
                const double s = (right - left) / checkerPoints;
                const double t = (below - down) / checkerPoints;
                glTexCoord2d(0, t);
                glVertex2d(left, height - below);
                glTexCoord2d(s, t);
                glVertex2d(right, height - below);
                glTexCoord2d(s, 0);
                glVertex2d(right, height - down);
                glTexCoord2d(0, 0);
                glVertex2d(left, height - down);
            }
        glEnd();
        endTexture(rectangleTarget, false);
    }
    glMatrixMode(GL_PROJECTION);
    glPopMatrix();
}

// --- Stills.

bool KWStillTextures::upload(const QImage& image) {
    release();
    GLint limit = 0;
    glGetIntegerv(GL_MAX_TEXTURE_SIZE, &limit);
    limit = std::clamp(limit, 64, largestPiece);
    _height = image.height();
    _isTranslucent = image.hasAlphaChannel();
    const bool isWhole = image.width() <= limit && image.height() <= limit;
    const int step = isWhole ? limit : limit - 2 * pieceBorder;
    for (int y = 0; y < image.height(); y += step)
        for (int x = 0; x < image.width(); x += step) {
            const QRect shown = QRect(x, y, step, step) & image.rect();
            if (!uploadPiece(image, shown)) {
                release();
                return false;
            }
        }
    return true;
}

bool KWStillTextures::uploadPiece(const QImage& image, const QRect& shown) {
    const QRect held =
        shown.adjusted(-pieceBorder, -pieceBorder, pieceBorder, pieceBorder) & image.rect();
    QImage piece = held == image.rect() ? image : image.copy(held);
    if (piece.isNull())
        return false;
    if (piece.colorSpace().isValid() && piece.colorSpace() != QColorSpace(QColorSpace::SRgb))
        piece.convertToColorSpace(QColorSpace::SRgb);
    const PixelForm form = formOf(piece);
    piece = form.format == QImage::Format_RGBA64_Premultiplied
                ? deepPremultiplied(std::move(piece))
                : std::move(piece).convertToFormat(form.format);
    if (piece.isNull())
        return false;
    unsigned name = 0;
    clearErrors();
    glGenTextures(1, &name);
    glBindTexture(GL_TEXTURE_2D, name);
    setFilters(GL_TEXTURE_2D, GL_LINEAR_MIPMAP_LINEAR, GL_LINEAR);
    glTexParameteri(GL_TEXTURE_2D, GL_GENERATE_MIPMAP, GL_TRUE);
    glPixelStorei(GL_UNPACK_ALIGNMENT, 4);
    glPixelStorei(GL_UNPACK_ROW_LENGTH,
                  static_cast<GLint>(piece.bytesPerLine() / (piece.depth() / 8)));
    glTexImage2D(GL_TEXTURE_2D, 0, form.internalFormat, piece.width(), piece.height(), 0,
                 form.order, form.type, piece.constBits());
    glPixelStorei(GL_UNPACK_ROW_LENGTH, 0);
    glBindTexture(GL_TEXTURE_2D, 0);
    _pieces.push_back({name, shown, held});
    return glGetError() == GL_NO_ERROR;
}

void KWStillTextures::release() {
    for (const Piece& piece : _pieces)
        glDeleteTextures(1, &piece.name);
    _pieces.clear();
}

void KWStillTextures::draw(double scale) const {
    // Enlarged so far, pixels are what one wants to see.
    constexpr double pixelsAreSeen = 8;
    for (const Piece& piece : _pieces) {
        beginTexture(GL_TEXTURE_2D, piece.name, _isTranslucent);
        glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER,
                        scale >= pixelsAreSeen ? GL_NEAREST : GL_LINEAR);
        const double width = piece.held.width();
        const double height = piece.held.height();
        const QRect shown = piece.shown.translated(-piece.held.topLeft());
        const double s0 = shown.x() / width;
        const double t0 = shown.y() / height;
        const double s1 = (shown.x() + shown.width()) / width;
        const double t1 = (shown.y() + shown.height()) / height;
        const double left = piece.shown.x();
        const double right = left + piece.shown.width();
        const double top = _height - piece.shown.y();
        const double bottom = top - piece.shown.height();
        glBegin(GL_QUADS);
        glTexCoord2d(s0, t1);
        glVertex2d(left, bottom);
        glTexCoord2d(s0, t0);
        glVertex2d(left, top);
        glTexCoord2d(s1, t0);
        glVertex2d(right, top);
        glTexCoord2d(s1, t1);
        glVertex2d(right, bottom);
        glEnd();
        endTexture(GL_TEXTURE_2D, _isTranslucent);
    }
}

// --- Frames of movies.

bool KWFrameTexture::upload(const QImage& image) {
    clearErrors();
    if (_name == 0)
        glGenTextures(1, &_name);
    glBindTexture(rectangleTarget, _name);
    glPixelStorei(GL_UNPACK_ALIGNMENT, 4);
    glPixelStorei(GL_UNPACK_ROW_LENGTH, static_cast<GLint>(image.bytesPerLine() / 4));
    constexpr GLenum order = GL_BGRA;
    constexpr GLenum type = GL_UNSIGNED_INT_8_8_8_8_REV;
    if (_size == image.size())
        glTexSubImage2D(rectangleTarget, 0, 0, 0, image.width(), image.height(), order, type,
                        image.constBits());
    else {
        setFilters(rectangleTarget, GL_LINEAR, GL_LINEAR);
        glTexImage2D(rectangleTarget, 0, GL_RGBA8, image.width(), image.height(), 0, order, type,
                     image.constBits());
        _size = image.size();
    }
    glPixelStorei(GL_UNPACK_ROW_LENGTH, 0);
    glBindTexture(rectangleTarget, 0);
    _hasFrame = glGetError() == GL_NO_ERROR;
    _isTranslucent = image.hasAlphaChannel();
    if (!_hasFrame)
        _size = {};
    return _hasFrame;
}

void KWFrameTexture::release() {
    if (_name != 0)
        glDeleteTextures(1, &_name);
    *this = {};
}

void KWFrameTexture::draw(int width, int height) const {
    if (!_hasFrame)
        return;
    beginTexture(rectangleTarget, _name, _isTranslucent);
    glBegin(GL_QUADS);
    glTexCoord2d(0, _size.height());
    glVertex2i(0, 0);
    glTexCoord2d(0, 0);
    glVertex2i(0, height);
    glTexCoord2d(_size.width(), 0);
    glVertex2i(width, height);
    glTexCoord2d(_size.width(), _size.height());
    glVertex2i(width, 0);
    glEnd();
    endTexture(rectangleTarget, _isTranslucent);
}
