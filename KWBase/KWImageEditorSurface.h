#pragma once

#include <KWBase/KWImageEditorView.h>
#include <KWBase/KWImageTextures.h>

#include <QMetaObject>
#include <QOpenGLWidget>
#include <optional>

/// What a view keeps in its context of OpenGL.
struct KWImageEditorViewPictures {
    KWCheckerTexture checkers;
    KWStillTextures still;
    bool isStillWanted = true; ///< whether the image is yet to be handed over
    KWFrameTexture frame;
    std::optional<double> frameTime; ///< of the frame handed over last
    QMetaObject::Connection contextEnd;
};

/// The part of an image view that is drawn with OpenGL, all over it.
class KWImageEditorView::Surface final : public QOpenGLWidget {
  public:
    explicit Surface(KWImageEditorView& view);

  protected:
    void initializeGL() override;
    void paintGL() override;

  private:
    KWImageEditorView& _view;
};
