#pragma once

#include <QSurfaceFormat>

/// What the image view asks OpenGL for.
QSurfaceFormat KWImageSurfaceFormat();

/// Whether a widget that draws with OpenGL 2.1 can be put into a window here. Found out once;
/// false, and not remembered, as long as there is no application.
bool KWOpenGLWorks();

/// Whether what works is also drawn by a graphics processor: false for drivers that have the main
/// processor draw, and where nothing works.
bool KWOpenGLIsAccelerated();
