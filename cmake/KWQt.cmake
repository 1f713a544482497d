# Finds Qt for the views, and says how its users are compiled.

find_package(Qt6 6.4 QUIET COMPONENTS Core Gui Widgets UiTools)
if(NOT Qt6_FOUND)
    message(FATAL_ERROR
        "The views of KWBase need Qt 6.4 or later, which was not found. Install it (Debian: "
        "qt6-base-dev, libqt6opengl6-dev and qt6-tools-dev), name its folder in CMAKE_PREFIX_PATH, or leave the views out: "
        "cmake --preset headless, or -DKWBASE_VIEWS=OFF.")
endif()

# What movies are decoded with, and what the image viewer draws with. Global, for the host that links
# the libraries when they are static.
find_package(PkgConfig QUIET)
if(PkgConfig_FOUND)
    pkg_check_modules(KWBASE_LIBAV QUIET IMPORTED_TARGET GLOBAL
        libavformat libavcodec libavutil libswscale)
endif()
if(NOT TARGET PkgConfig::KWBASE_LIBAV)
    message(FATAL_ERROR
        "The views of KWBase decode movies with FFmpeg, which pkg-config did not find. Install it "
        "(Debian: pkg-config libavformat-dev libavcodec-dev libavutil-dev libswscale-dev), or leave "
        "the views out: cmake --preset headless, or -DKWBASE_VIEWS=OFF.")
endif()
find_package(OpenGL QUIET GLOBAL)
find_package(Qt6 6.4 QUIET GLOBAL COMPONENTS OpenGLWidgets)
if(NOT TARGET OpenGL::GL OR NOT TARGET OpenGL::GLU OR NOT TARGET Qt6::OpenGLWidgets)
    message(FATAL_ERROR
        "The image viewer of KWBase needs OpenGL, GLU and Qt's OpenGL widgets, which were not found. "
        "Install them (Debian: qt6-base-dev libqt6opengl6-dev libgl1-mesa-dev libglu1-mesa-dev), or leave the views "
        "out: cmake --preset headless, or -DKWBASE_VIEWS=OFF.")
endif()

# kw_use_qt(<target> [REUSES_HEADERS])
#
# Has the target's own classes read by moc, and keeps Qt's short keywords and its silent conversions
# from char* out of it. Qt's headers are most of what its sources read, so they are read once; with
# REUSES_HEADERS the target has precompiled ones of another already.
function(kw_use_qt target)
    cmake_parse_arguments(PARSE_ARGV 1 arg "REUSES_HEADERS" "" "")
    target_compile_definitions(${target} PRIVATE QT_NO_KEYWORDS QT_NO_CAST_FROM_ASCII)
    set_target_properties(${target} PROPERTIES AUTOMOC ON)
    if(NOT arg_REUSES_HEADERS)
        target_precompile_headers(${target} PRIVATE <QApplication> <QMouseEvent> <QPainter>)
    endif()
endfunction()
