# The preset "debian" makes Debian packages: kwchannel and kwedit, which stand alone, and libkwbase-dev,
# which has the headers and the static libraries.

set(CPACK_PACKAGE_NAME kwbase)
set(CPACK_PACKAGE_VENDOR "KWBase")
set(CPACK_PACKAGE_CONTACT "KWBase maintainers <kwbase@example.org>")
# CPack's own text, which alone it does not put before the synopses of the Debian packages.
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "${PROJECT_NAME} built using CMake")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
    OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)

set(CPACK_COMPONENTS_ALL development)
foreach(program kwchannel kwedit)
    if(TARGET ${program})
        list(APPEND CPACK_COMPONENTS_ALL ${program})
    endif()
endforeach()
if(BUILD_SHARED_LIBS)
    list(APPEND CPACK_COMPONENTS_ALL libraries)
endif()
set(CPACK_COMPONENTS_GROUPING IGNORE)

set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_COMPRESSION_TYPE xz)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)

set(CPACK_DEBIAN_KWCHANNEL_PACKAGE_NAME kwchannel)
set(CPACK_DEBIAN_KWCHANNEL_PACKAGE_SECTION graphics)
set(CPACK_DEBIAN_KWCHANNEL_PACKAGE_RECOMMENDS fonts-dejavu-core)
set(CPACK_DEBIAN_KWCHANNEL_DESCRIPTION
"animation channels on the command line
kwchannel inspects, evaluates, bakes, draws, converts, validates and
edits documents of animation channels: functions of time that are
constant, curves through keys, or expressions.")

set(CPACK_DEBIAN_KWEDIT_PACKAGE_NAME kwedit)
set(CPACK_DEBIAN_KWEDIT_PACKAGE_SECTION graphics)
set(CPACK_DEBIAN_KWEDIT_PACKAGE_RECOMMENDS
    "ffmpeg, qt6-image-formats-plugins, libqt6svg6, fonts-dejavu-core")
set(CPACK_DEBIAN_KWEDIT_DESCRIPTION
"editor and renderer of animated sprites
KWEdit edits documents of sprites whose numbers are animated by keys,
curves and expressions, and renders their frames and movies, also
without a screen.")

# What the headers show and what the static libraries are linked with.
set(packagesOfDevelopment libexpat1-dev libhwy-dev)
if(KWBASE_VIEWS)
    list(APPEND packagesOfDevelopment
        qt6-base-dev libqt6opengl6-dev qt6-tools-dev
        libavformat-dev libavcodec-dev libavutil-dev libswscale-dev
        libgl-dev libglu1-mesa-dev)
endif()
list(JOIN packagesOfDevelopment ", " CPACK_DEBIAN_DEVELOPMENT_PACKAGE_DEPENDS)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_NAME libkwbase-dev)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SHLIBDEPS OFF)
set(CPACK_DEBIAN_DEVELOPMENT_DESCRIPTION
"animatable parameters for C++ hosts
KWBase gives C++ programs channels: functions of time that are constant,
curves through keys, or expressions, with undo and archives, and with
Qt views that draw and edit them.")

# The texts that Debian wants beside each package, and manual pages as it wants them.
set(CPACK_PRE_BUILD_SCRIPTS ${CMAKE_CURRENT_LIST_DIR}/DebianTexts.cmake)
include(CPack)
