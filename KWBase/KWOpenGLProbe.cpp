#include <KWBase/KWOpenGLProbe.h>

#include <GL/gl.h>

#include <QGuiApplication>
#include <QOffscreenSurface>
#include <QOpenGLContext>
#include <algorithm>
#include <array>

namespace {

struct Probe {
    bool works = false;
    bool isAccelerated = false;
};

/// What the renderers call themselves that draw without a graphics processor.
bool isSoftware(const QByteArray& renderer) {
    constexpr std::array names{"llvmpipe", "softpipe", "swrast",  "software",    "swiftshader",
                               "openswr",  "soft gl",  "generic", "basic render"};
    const QByteArray lowered = renderer.toLower();
    return std::any_of(names.begin(), names.end(),
                       [&](const char* name) { return lowered.contains(name); });
}

Probe tryOut() {
    // On these a window with a widget for OpenGL in it crashes, also where contexts can be had.
    for (const char* const platform : {"offscreen", "minimal", "vnc", "linuxfb"})
        if (QGuiApplication::platformName() == QLatin1String(platform))
            return {};
    QOpenGLContext context;
    context.setFormat(KWImageSurfaceFormat());
    if (!context.create() || context.isOpenGLES())
        return {};
    QOffscreenSurface surface;
    surface.setFormat(context.format());
    surface.create();
    if (!surface.isValid() || !context.makeCurrent(&surface))
        return {};
    const bool isNewEnough = context.format().version() >= qMakePair(2, 1);
    const bool hasRectangles = context.hasExtension("GL_ARB_texture_rectangle") ||
                               context.format().version() >= qMakePair(3, 1);
    // A context without what 2.1 had answers with an error.
    while (glGetError() != GL_NO_ERROR)
        continue;
    glMatrixMode(GL_PROJECTION);
    const bool isCompatible = glGetError() == GL_NO_ERROR;
    const auto* const renderer = reinterpret_cast<const char*>(glGetString(GL_RENDERER));
    const bool isAccelerated = renderer && !isSoftware(renderer);
    context.doneCurrent();
    const bool works = isNewEnough && hasRectangles && isCompatible;
    return {works, works && isAccelerated};
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

namespace {

Probe probe() {
    if (!qobject_cast<QGuiApplication*>(QCoreApplication::instance()))
        return {};
    static const Probe found = tryOut();
    return found;
}

} // namespace

bool KWOpenGLWorks() {
    return probe().works;
}

bool KWOpenGLIsAccelerated() {
    return probe().isAccelerated;
}
