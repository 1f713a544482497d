# The package files; the targets are installed where they are made.

include(CMakePackageConfigHelpers)

set(packageDir ${CMAKE_INSTALL_LIBDIR}/cmake/KWBase)
get_target_property(foundationType KWFoundation TYPE)
if(foundationType STREQUAL STATIC_LIBRARY)
    set(KWBASE_STATIC TRUE)
    # A static library's users link what it needs, also without "pkg-config --static".
    set(KWBASE_PC_PRIVATE "")
    set(KWBASE_PC_DESKTOP " libavformat libavcodec libavutil libswscale")
    set(KWBASE_PC_DESKTOP_PRIVATE "")
    set(KWBASE_PC_VIEWS " Qt6UiTools Qt6OpenGLWidgets gl glu")
    set(KWBASE_PC_VIEWS_PRIVATE "")
else()
    set(KWBASE_STATIC FALSE)
    set(KWBASE_PC_PRIVATE ".private")
    set(KWBASE_PC_DESKTOP "")
    set(KWBASE_PC_DESKTOP_PRIVATE " libavformat libavcodec libavutil libswscale")
    set(KWBASE_PC_VIEWS "")
    set(KWBASE_PC_VIEWS_PRIVATE " Qt6UiTools Qt6OpenGLWidgets gl glu")
endif()

configure_package_config_file(
    ${CMAKE_CURRENT_LIST_DIR}/KWBaseConfig.cmake.in ${PROJECT_BINARY_DIR}/KWBaseConfig.cmake
    INSTALL_DESTINATION ${packageDir}
    NO_SET_AND_CHECK_MACRO
)
# Until 1.0 each minor version may break what the one before promised.
write_basic_package_version_file(${PROJECT_BINARY_DIR}/KWBaseConfigVersion.cmake
    COMPATIBILITY SameMinorVersion)
install(FILES
    ${PROJECT_BINARY_DIR}/KWBaseConfig.cmake
    ${PROJECT_BINARY_DIR}/KWBaseConfigVersion.cmake
    DESTINATION ${packageDir} COMPONENT development
)

# Paths in the .pc files start from the file itself, so that the installed tree can be moved.
file(RELATIVE_PATH KWBASE_PC_PREFIX
    ${CMAKE_INSTALL_FULL_LIBDIR}/pkgconfig ${CMAKE_INSTALL_PREFIX})
set(packages kwbase-foundation kwbase-channels)
if(KWBASE_VIEWS)
    list(APPEND packages kwbase-desktop kwbase-views)
endif()
foreach(package IN LISTS packages)
    configure_file(${CMAKE_CURRENT_LIST_DIR}/${package}.pc.in
        ${PROJECT_BINARY_DIR}/${package}.pc @ONLY)
    install(FILES ${PROJECT_BINARY_DIR}/${package}.pc
        DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig COMPONENT development)
endforeach()
