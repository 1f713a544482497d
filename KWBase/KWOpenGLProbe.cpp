#include <KWBase/KWOpenGLProbe.h>

#include <GL/gl.h>

#include <QGuiApplication>
#include <QOffscreenSurface>
#include <QOpenGLContext>

namespace {

bool tryOut() {
    // On these a window with a widget for OpenGL in it crashes, also where contexts can be had.
    for (const char* const platform : {"offscreen", "minimal", "vnc", "linuxfb"})
        if (QGuiApplication::platformName() == QLatin1String(platform))
            return false;
    QOpenGLContext context;
    context.setFormat(KWImageSurfaceFormat());
    if (!context.create() || context.isOpenGLES())
        return false;
    QOffscreenSurface surface;
    surface.setFormat(context.format());
    surface.create();
    if (!surface.isValid() || !context.makeCurrent(&surface))
        return false;
    const bool isNewEnough = context.format().version() >= qMakePair(2, 1);
    const bool hasRectangles = context.hasExtension("GL_ARB_texture_rectangle") ||
                               context.format().version() >= qMakePair(3, 1);
    // A context without what 2.1 had answers with an error.
    while (glGetError() != GL_NO_ERROR)
        continue;
    glMatrixMode(GL_PROJECTION);
    const bool isCompatible = glGetError() == GL_NO_ERROR;
    context.doneCurrent();
    return isNewEnough && hasRectangles && isCompatible;
}

} // namespace

QSurfaceFormat KWImageSurfaceFormat() {
    QSurfaceFormat format;
    format.setRenderableType(QSurfaceFormat::OpenGL);
    format.setVersion(2, 1);
    format.setProfile(QSurfaceFormat::CompatibilityProfile);
    format.setRedBufferSize(8);
    format.setGreenBufferSize(8);
    format.setBlueBufferSize(8);
    format.setAlphaBufferSize(8);
    format.setDepthBufferSize(32);
    format.setSwapInterval(1);
    return format;
}

bool KWOpenGLWorks() {
    if (!qobject_cast<QGuiApplication*>(QCoreApplication::instance()))
        return false;
    static const bool works = tryOut();
    return works;
}
