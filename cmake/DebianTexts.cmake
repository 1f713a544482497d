# Run by cpack in the folder of what it is going to pack: adds copyright and changelog to each Debian
# package, and compresses what Debian wants compressed.
if(NOT CPACK_GENERATOR STREQUAL DEB)
    return()
endif()
find_program(GZIP gzip REQUIRED)

foreach(component IN LISTS CPACK_COMPONENTS_ALL)
    string(TOUPPER ${component} upper)
    set(package ${CPACK_DEBIAN_${upper}_PACKAGE_NAME})
    set(root ${CPACK_TEMPORARY_INSTALL_DIRECTORY}/${component}/usr)
    if(NOT package OR NOT EXISTS ${root})
        continue()
    endif()
    set(texts ${root}/share/doc/${package})
    configure_file(${CMAKE_CURRENT_LIST_DIR}/debian-copyright ${texts}/copyright COPYONLY)
    string(TIMESTAMP date "%a, %d %b %Y %H:%M:%S +0000" UTC)
    file(WRITE ${texts}/changelog
        "kwbase (${CPACK_PACKAGE_VERSION}) unstable; urgency=medium\n\n"
        "  * See CHANGELOG.md in the source tree.\n\n"
        " -- ${CPACK_PACKAGE_CONTACT}  ${date}\n")
    file(CHMOD ${texts}/changelog PERMISSIONS OWNER_READ OWNER_WRITE GROUP_READ WORLD_READ)
    file(GLOB compressed ${texts}/changelog ${root}/share/man/man1/*.1)
    execute_process(COMMAND ${GZIP} -9nf ${compressed} COMMAND_ERROR_IS_FATAL ANY)
endforeach()
