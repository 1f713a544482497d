#pragma once

#include <KWBase/KWImageEditorViewGeometry.h>

#include <apps/kwedit/KWEditDocument.h>
#include <apps/kwedit/KWEditScene.h>
#include <apps/kwedit/KWEditTransport.h>

#include <QImage>
#include <QPointer>
#include <QWidget>
#include <memory>
#include <optional>
#include <vector>

class KWEditSpriteMove;
class KWEditStageOverlay;
class KWEditStageSurface;
class QNativeGestureEvent;
class QPinchGesture;

/// Shows the frame of a document at a transport's time, as large as it fits, zoomed and panned as
/// an image in KWImageEditorView, over the same checkerboard where it is transparent. The frame is
/// drawn anew once for each turn of the event loop in which the time, a channel or the document has
/// changed, in the pixels of the screen, and only the part of it that is seen.
///
/// A click picks the foremost sprite under the pointer, and a drag moves the selected ones. The
/// wheel and a pinch zoom at the pointer; the middle button, the space bar with the left one, and
/// two fingers on a trackpad pan. By keys: + and - zoom, 0 fits, 1 is actual size, the arrows move
/// the selected sprites by a pixel of the stage, by ten with Shift, and pan when none is selected;
/// Page Up and Page Down pick the next sprite in front and behind, Escape none. The space bar alone
/// plays and pauses.
///
/// The host decides what is selected: it takes elementPicked() and calls setSelectedElements(). The
/// document and the transport must outlive the view. Positions are in logical pixels from the upper
/// left corner, stage points in metres.
class KWEditStageView : public QWidget {
    Q_OBJECT
    Q_PROPERTY(double zoom READ zoom WRITE setZoom NOTIFY zoomChanged)
    Q_PROPERTY(Renderer renderer READ renderer WRITE setRenderer)

  public:
    /// How the frame gets to the screen. `automatic` takes OpenGL where a graphics processor draws
    /// it: drawn by the main processor, it would make every repaint of the window dear.
    enum class Renderer { automatic, raster, openGL };
    Q_ENUM(Renderer)

    KWEditStageView(KWEditDocument& document, KWEditTransport& transport,
                    QWidget* parent = nullptr);
    ~KWEditStageView() override;

    Renderer renderer() const { return _renderer; }
    /// At any time. Where OpenGL does not work at all, raster is what is used.
    void setRenderer(Renderer renderer);
    bool isUsingOpenGL() const { return _surface != nullptr; }

    /// How many threads draw a frame; as many as there are cores, but four at most, at first.
    void setThreadCount(int count);

    // --- Zoom.

    /// 1 for fitted, larger for closer.
    double zoom() const { return _zoom; }
    /// Held between a millionth and a million; what is not a number is ignored.
    void setZoom(double zoom);
    /// What is in the middle of the view: fractions of the frame from its left and its top.
    QPointF zoomOffset() const { return _zoomOffset; }
    void setZoomOffset(const QPointF& offset);
    /// Pixels of the screen for each pixel of the stage. Other than the zoom, it stays when the
    /// view is resized, unless the frame is fitted.
    double magnification() const;
    /// Zooms about the middle of the view.
    void setMagnification(double magnification);
    KWImageEditorViewGeometry geometryOfStage() const;

    // --- What is seen.

    /// The frame in the pixels of the screen as it is shown, cut off where the view ends; null when
    /// none of it is seen.
    const QImage& shownFrame();
    /// How many frames have been drawn, to measure by.
    qint64 drawnFrameCount() const { return _drawnCount; }
    /// Where in the view the whole frame lies.
    QRectF frameRect() const;
    QPointF stagePoint(const QPointF& position);
    QPointF positionOfStagePoint(const QPointF& metres);
    /// What is missing or broken in the document, a sentence each.
    QStringList problems() const;

    /// The foremost sprite there; null for none.
    std::shared_ptr<KWElement> elementAt(const QPointF& position);
    /// Where its content's corners are in the view; empty for what is no sprite or not drawn.
    QPolygonF outlineOf(const KWElement& element);

    const std::vector<std::shared_ptr<KWElement>>& selectedElements() const { return _selected; }
    void setSelectedElements(const std::vector<std::shared_ptr<KWElement>>& elements);

    /// Whether the hand is moving sprites: undo and redo wait until it has let go.
    bool isGestureActive() const { return _move != nullptr; }

    QSize sizeHint() const override { return {640, 360}; }
    QSize minimumSizeHint() const override { return {120, 80}; }

  public Q_SLOTS:
    /// To the next of a row of round magnifications.
    void zoomIn();
    void zoomOut();
    void zoomToFit();
    /// One pixel of the stage is one of the screen.
    void actualSize();
    /// Reads pictures and movies anew from their files.
    void reloadContent();
    /// Puts back what the hand has moved, and lets go of it.
    void cancelGesture();

  Q_SIGNALS:
    void zoomChanged(double zoom);
    /// By zooming, by a new size of the view, or by another size of the stage.
    void magnificationChanged(double magnification);
    /// Null for none.
    void elementPicked(const std::shared_ptr<KWElement>& element);
    /// `point` is where on the stage, in metres.
    void filesDropped(const QStringList& files, const QPointF& point);
    /// One sentence on why something was not done.
    void statusMessage(const QString& message);
    /// Began, or ended.
    void gestureActiveChanged(bool isActive);
    /// A frame was drawn that shows something missing that was not missing before.
    void problemsChanged();

  protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void changeEvent(QEvent* event) override;
    void showEvent(QShowEvent* event) override;
    void hideEvent(QHideEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void keyReleaseEvent(QKeyEvent* event) override;
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dragLeaveEvent(QDragLeaveEvent* event) override;
    void dropEvent(QDropEvent* event) override;
    bool event(QEvent* event) override;

  private:
    friend class KWEditStageOverlay;
    enum class Press { none, pan, armed, move, click };

    // What is shown.
    void documentReplaced();
    void structureChanged();
    void setNeedsFrame();
    void showSoon();
    void showOver();
    void showOnSurface();
    void applyRenderer();
    KWEditScene& scene();
    void ensureFrame();
    QRect framePixels() const;
    double ratio() const { return devicePixelRatioF(); }
    QPointF imagePoint(const QPointF& position) const;

    // Drawing.
    QColor surround() const;
    void drawCheckers(QPainter& painter, const QRect& pixels) const;
    void drawFrame(QPainter& painter) const;
    void drawOver(QPainter& painter);
    void drawOutline(QPainter& painter, const KWElement& element);

    // Zooming and panning.
    void setLayout(double zoom, const QPointF& offset);
    void zoomAt(const QPointF& position, double factor);
    void panBy(const QPointF& delta);
    void tellMagnification();
    bool nativeGesture(const QNativeGestureEvent& event);
    void pinch(const QPinchGesture& gesture);

    // Picking and moving.
    bool isSelected(const KWElement& element) const;
    void pickNext(int step);
    bool beginMove();
    void continueMove(const QPointF& position, Qt::KeyboardModifiers modifiers);
    void endMove();
    void nudge(const QPointF& pixels);
    void tellRefusals(const KWEditSpriteMove& move);
    void updateCursor();

    QPointer<KWEditDocument> _document;
    QPointer<KWEditTransport> _transport;
    std::unique_ptr<KWEditScene> _scene;
    int _threadCount;
    qint64 _drawnCount = 0;
    bool _needsFrame = true;
    bool _needsRefresh = false;
    bool _isShowing = false; ///< whether the surface will be told when the event loop runs
    QImage _image;
    QImage _spare; ///< the one that OpenGL holds is not drawn into
    QRect _frame;  ///< the whole frame as drawn last, in pixels of the screen
    QRect _seen;   ///< the part of it that _image has
    qsizetype _told = 0;

    Renderer _renderer = Renderer::automatic;
    KWEditStageSurface* _surface = nullptr; ///< null for raster
    KWEditStageOverlay* _overlay = nullptr; ///< over the surface

    double _zoom = 1;
    QPointF _zoomOffset{0.5, 0.5};
    double _toldMagnification = 0;

    std::vector<std::shared_ptr<KWElement>> _selected;
    Press _press = Press::none;
    Qt::MouseButton _pressButton = Qt::NoButton;
    bool _picksOnRelease = false; ///< what was pressed on was selected already
    QPointF _pressPosition;
    QPointF _lastPosition;
    std::unique_ptr<KWEditSpriteMove> _move;
    bool _isSpaceDown = false;
    bool _hasSpacePanned = false;
    bool _isDropTarget = false;
    bool _showsFocus = false; ///< which came by the keyboard
};
