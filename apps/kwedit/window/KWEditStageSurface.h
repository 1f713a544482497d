#pragma once

#include <KWBase/KWImageEditorView.h>

#include <QRect>

class KWEditStageView;

/// What shows a stage's frame by OpenGL: a picture at a place of its own, in pixels of the screen.
/// The pointer goes through it to the stage.
class KWEditStageSurface final : public KWImageEditorView {
  public:
    explicit KWEditStageSurface(QWidget* parent);

    /// `seen` is where the picture lies, from the upper left corner, `frame` what the checkerboard
    /// is under; both in pixels of the screen.
    void show(const QImage& image, const QRect& seen, const QRect& frame, const QColor& surround);

    void renderTransparencyGrid() override;

  private:
    QRect _frame;
    QColor _surround;
};

/// What is drawn over the surface: the same as over a frame that is drawn without it.
class KWEditStageOverlay final : public QWidget {
  public:
    explicit KWEditStageOverlay(KWEditStageView& stage);

  protected:
    void paintEvent(QPaintEvent* event) override;

  private:
    KWEditStageView& _stage;
};
