#pragma once

#include <KWBase/KWImageEditorViewGeometry.h>
#include <KWBase/KWTime.h>
#include <KWDesktop/KWMovie.h>
#include <KWFoundation/KWExport.h>
#include <KWFoundation/KWNotificationCenter.h>

#include <QImage>
#include <QPointF>
#include <QSizeF>
#include <QString>
#include <QWidget>
#include <memory>
#include <mutex>

class QNativeGestureEvent;
class QPinchGesture;
struct KWImageEditorViewPictures;

/// Draws the outline of an axis-aligned square around a centre into the current OpenGL context, as
/// one line loop.
KW_EXPORT void KW_glDrawSquare(double centerX, double centerY, double side);

/// Shows one still image or one movie over a checkerboard, which is seen where the content is
/// transparent and around it. At zoom 1 the whole content is fitted into the view.
///
/// It draws with OpenGL 2.1. Where that does not work, as on a platform without a screen, the view
/// is red and shows nothing; isOpenGLAvailable() tells beforehand.
///
/// For users, the wheel and a pinch zoom at the pointer, a drag with the left or the middle button
/// pans, and a double click fits the content again.
///
/// View points are in logical pixels from the lower left corner; image points in the pixels of an
/// image, or in those of a movie's natural size, from its lower left corner. One thread, that of
/// the user interface.
class KW_EXPORT KWImageEditorView : public QWidget {
    Q_OBJECT
    Q_PROPERTY(double zoom READ zoom WRITE setZoom NOTIFY zoomChanged)
    Q_PROPERTY(QPointF zoomOffset READ zoomOffset WRITE setZoomOffset NOTIFY zoomOffsetChanged)

  public:
    /// No content, fitted.
    explicit KWImageEditorView(QWidget* parent = nullptr);
    ~KWImageEditorView() override;

    /// Whether such views can draw here. It is found out once, by trying; false as long as there is
    /// no application.
    static bool isOpenGLAvailable();
    /// Whether a graphics processor draws them. Where the main processor does, the window that such
    /// a view is in is dear to draw, all of it.
    static bool isOpenGLAccelerated();

    /// Called when the view comes out of an interface file: registers it for files that are dropped
    /// on it. To accept them is left to subclasses.
    void awakeFromNib();

    // --- The content: an image, a movie, or none.

    /// A null image for none.
    const QImage& image() const { return _image; }
    /// Removes a movie, unless the image is null. Draws the view anew. Depth, premultiplied or
    /// straight alpha and colour space are honoured as far as OpenGL can show them; 16 bits and
    /// floats stay what they are. One pixel of the image is one unit, whatever its device ratio.
    void setImage(const QImage& image);
    /// Null for none.
    const std::shared_ptr<KWMovie>& movie() const { return _movie; }
    /// Removes an image, unless the movie is null. Another movie than the one there is put at rest
    /// at its beginning, and the view is drawn anew; after that whoever owns the movie plays it,
    /// and the view follows.
    ///
    /// Before the view has been drawn once, and without OpenGL, there is nothing that could show a
    /// movie: it is ignored, while the image is removed all the same. The owner sets it again
    /// later.
    void setMovie(const std::shared_ptr<KWMovie>& movie);
    /// Empty for none.
    QSizeF contentSize() const;

    // What a user has chosen. Each answers whether the file can be shown. Where it cannot,
    // errorOccurred() is sent with the reason and the view shows what it showed before.

    /// Any format that Qt has a reader for, told by its contents, upright.
    bool showImageFile(const QString& file);
    /// Before the view has been drawn once, the movie is set then.
    bool showMovieFile(const QString& file);
    /// A movie for what moves, such as an animated image.
    bool showFile(const QString& file);
    /// Upright, at its full depth. Null where it cannot be read; `error` is then one sentence for
    /// people, which names the file and what is wrong.
    static QImage imageWithFile(const QString& file, QString* error = nullptr);

    // --- Zoom.

    /// 1 for fitted, larger for closer.
    double zoom() const { return _zoom; }
    /// Held between a millionth and a million; what is not a number is ignored. Draws the view
    /// anew.
    void setZoom(double zoom);
    /// What is in the middle of the view: fractions of the content's width, from its left, and of
    /// its height, from its top.
    QPointF zoomOffset() const { return _zoomOffset; }
    /// May lie outside of the content; what is not finite is ignored. Draws the view anew.
    void setZoomOffset(const QPointF& offset);
    /// Zoom 1 and the middle of the content.
    void fit();
    /// Zooms so that what is seen at a view point stays there.
    void zoomAt(const QPointF& viewPoint, double factor);

    // --- Points.

    /// The layout as it will be drawn next. It needs neither a window nor OpenGL.
    KWImageEditorViewGeometry geometry() const;
    /// How the last frame was drawn, all zero before the first one.
    const KWImageMatrices& imageMatrices() const { return _imageMat; }
    // With the matrices of the last frame; before it, no number comes out. The array's form may be
    // given the same pair twice.
    QPointF view2image(const QPointF& view) const { return _imageMat.view2image(view); }
    QPointF image2view(const QPointF& image) const { return _imageMat.image2view(image); }
    void view2image(const double view[2], double image[2]) const;
    void image2view(const double image[2], double view[2]) const;

    // --- Drawing. What follows does nothing without a context of OpenGL, which the view has from
    // its first drawing on, and again after it was moved into another window.

    /// Makes what the view draws with. Called when there is a new context, which is current.
    virtual void initializeOpenGL();
    virtual void prepareTransparentTexture();
    /// One frame. When picking, imageMatrices() stay what they are.
    virtual void renderWithPickingFlush(bool picking, bool flush);
    /// Called with OpenGL held to the parts of the view where the checkerboard can be seen.
    virtual void renderTransparencyGrid();
    virtual void flush();
    /// Draws the view anew, whatever the notice.
    void update(const KWNotification& notification);
    using QWidget::update;

    /// Held while the view draws; null for none, as at first.
    void setLock(std::shared_ptr<std::recursive_mutex> lock) { _lock = std::move(lock); }

    /// Kept for the host; the view does not act on it.
    KWTimeValue currentTime() const { return _currentTime; }
    void setCurrentTime(const KWTimeValue& time) { _currentTime = time; }

    /// What is shown, in device pixels, also while the view is in no window; red without OpenGL.
    QImage picture();
    QSize sizeHint() const override;

  Q_SIGNALS:
    void contentChanged();
    void zoomChanged(double zoom);
    void zoomOffsetChanged(const QPointF& offset);
    /// A file cannot be shown, or a movie turned out to be damaged, or OpenGL has no room for an
    /// image: one sentence for people.
    void errorOccurred(const QString& message);

  protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    bool event(QEvent* event) override;

  private:
    class Surface;

    void setNeedsDisplay();
    void setLayout(double zoom, const QPointF& offset);
    void releaseOpenGL();
    bool makeCurrent();
    void uploadImage();
    void uploadMovie();
    void renderGridAround(const KWImageEditorViewGeometry& layout);
    void detachMovie();
    void sendError(const QString& message);
    void pinch(const QPinchGesture& gesture);
    bool nativeGesture(const QNativeGestureEvent& event);
    void panBy(const QPointF& delta);

    Surface* _surface = nullptr; ///< a child; null without OpenGL
    bool _hasContext = false;    ///< whether the view has been able to draw
    std::shared_ptr<std::recursive_mutex> _lock;
    KWImageMatrices _imageMat;
    QSizeF _previousSize;
    bool _needToRender = true;
    bool _needToFlush = false;
    QImage _image;
    KWTimeValue _currentTime;
    std::shared_ptr<KWMovie> _movie;
    QSizeF _movieSize;
    QMetaObject::Connection _movieFrames;
    QMetaObject::Connection _movieErrors;
    std::shared_ptr<KWMovie> _waitingMovie; ///< for the first drawing
    std::unique_ptr<KWImageEditorViewPictures> _pictures;
    double _zoom = 1;
    QPointF _zoomOffset{0.5, 0.5};
    QPointF _panPosition;
    Qt::MouseButton _panButton = Qt::NoButton;
};
