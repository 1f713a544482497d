# "cmake --build build/dev --target docs": the guide in docs/guide and what the public headers say, as
# web pages in docs/html of the build. A warning of Doxygen's ends the build.

find_program(KWBASE_DOXYGEN doxygen)
mark_as_advanced(KWBASE_DOXYGEN)
if(NOT KWBASE_DOXYGEN)
    return()
endif()

set(inputs ${PROJECT_SOURCE_DIR}/docs/guide)
foreach(component Foundation Channels Desktop Views)
    if(TARGET KW${component})
        get_target_property(headers KW${component} HEADER_SET_HEADERS)
        list(APPEND inputs ${headers})
    endif()
endforeach()
list(JOIN inputs " \\\n    " KWBASE_DOCS_INPUT)
configure_file(${PROJECT_SOURCE_DIR}/docs/Doxyfile.in ${PROJECT_BINARY_DIR}/docs/Doxyfile @ONLY)
add_custom_target(docs
    COMMAND ${KWBASE_DOXYGEN} ${PROJECT_BINARY_DIR}/docs/Doxyfile
    COMMENT "Writing ${PROJECT_BINARY_DIR}/docs/html/index.html"
    VERBATIM)
