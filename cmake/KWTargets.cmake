# How this project's own targets are compiled. Everything here is set on targets, so that nothing
# reaches a project that adds this one as a subdirectory.

# A result is the float that the formula gives: no fused multiply-add, no fast maths.
set(KWBASE_COMPILE_OPTIONS
    -ffp-contract=off
    -Wall -Wextra -Wpedantic -Wconversion -Wsign-conversion -Wshadow
    -Wnon-virtual-dtor -Woverloaded-virtual -Wold-style-cast
    $<$<CXX_COMPILER_ID:GNU>:-Wno-restrict> # false alarms about string additions in gcc 12
)

# kw_target_defaults(<target>)
function(kw_target_defaults target)
    target_compile_features(${target} PUBLIC cxx_std_20)
    target_compile_options(${target} PRIVATE ${KWBASE_COMPILE_OPTIONS})
    if(KWBASE_WARNINGS_AS_ERRORS)
        target_compile_options(${target} PRIVATE -Werror)
    endif()
    set_target_properties(${target} PROPERTIES
        CXX_EXTENSIONS OFF
        CXX_VISIBILITY_PRESET hidden
        VISIBILITY_INLINES_HIDDEN ON
        POSITION_INDEPENDENT_CODE ON
    )
    if(KWBASE_CCACHE)
        set_target_properties(${target} PROPERTIES CXX_COMPILER_LAUNCHER ${KWBASE_CCACHE})
    endif()
endfunction()

# kw_unite(<target> [ALONE <file>...])
#
# Compiles so many of a target's sources at once as KWBASE_UNITE says, which takes a fraction of the
# time as long as all of them are compiled. What two sources call by the same name clashes then; such
# a source is one of ALONE.
function(kw_unite target)
    cmake_parse_arguments(PARSE_ARGV 1 arg "" "" "ALONE")
    if(KWBASE_UNITE)
        # Here one source shadows names of another, and what it keeps to itself seems part of a header.
        target_compile_options(${target} PRIVATE
            -Wno-shadow $<$<CXX_COMPILER_ID:GNU>:-Wno-subobject-linkage>)
        set_target_properties(${target} PROPERTIES UNITY_BUILD ON UNITY_BUILD_BATCH_SIZE ${KWBASE_UNITE})
        set_source_files_properties(${arg_ALONE} PROPERTIES SKIP_UNITY_BUILD_INCLUSION ON)
    endif()
endfunction()

# kw_add_library(<component> SOURCES <file>... [ALONE <file>...] HEADERS <file>...)
#
# Makes the library KW<component>, known as KWBase::<component> here and to those who find the
# installed package. HEADERS are the public ones: they, and no others, are installed.
# ALONE are those of the sources that kw_unite leaves alone.
function(kw_add_library component)
    cmake_parse_arguments(PARSE_ARGV 1 arg "" "" "SOURCES;ALONE;HEADERS")
    set(target KW${component})
    add_library(${target})
    add_library(KWBase::${component} ALIAS ${target})
    kw_target_defaults(${target})
    kw_unite(${target} ALONE ${arg_ALONE})
    target_sources(${target} PRIVATE ${arg_SOURCES})
    target_sources(${target} PUBLIC
        FILE_SET HEADERS BASE_DIRS ${PROJECT_SOURCE_DIR} FILES ${arg_HEADERS})
    set_target_properties(${target} PROPERTIES
        EXPORT_NAME ${component}
        VERSION ${PROJECT_VERSION}
        SOVERSION ${PROJECT_VERSION_MAJOR}.${PROJECT_VERSION_MINOR}
    )
    if(KWBASE_INSTALL)
        install(TARGETS ${target} EXPORT KWBase${component}Targets
            LIBRARY COMPONENT libraries NAMELINK_COMPONENT development
            ARCHIVE COMPONENT development
            FILE_SET HEADERS COMPONENT development)
        install(EXPORT KWBase${component}Targets
            NAMESPACE KWBase:: DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/KWBase
            COMPONENT development)
    endif()
endfunction()

# kw_add_program(<name> <file>...)
#
# Makes a program; it is installed next to the libraries that it needs, and belongs to the installed
# component of its name.
function(kw_add_program name)
    add_executable(${name} ${ARGN})
    kw_target_defaults(${name})
    if(BUILD_SHARED_LIBS)
        file(RELATIVE_PATH libraries
            ${CMAKE_INSTALL_FULL_BINDIR} ${CMAKE_INSTALL_FULL_LIBDIR})
        set_target_properties(${name} PROPERTIES INSTALL_RPATH "$ORIGIN/${libraries}")
    endif()
    if(KWBASE_INSTALL)
        install(TARGETS ${name} COMPONENT ${name})
    endif()
endfunction()

# kw_add_manual(<program>)
#
# The manual page and the completion for bash, which come from the program's own declarations. Makes
# the target <program>_docs.
function(kw_add_manual name)
    set(manual ${CMAKE_CURRENT_BINARY_DIR}/${name}.1)
    set(completion ${CMAKE_CURRENT_BINARY_DIR}/${name}.bash)
    add_custom_command(
        OUTPUT ${manual} ${completion}
        COMMAND ${name} --generate-man > ${manual}
        COMMAND ${name} --generate-completion bash > ${completion}
        DEPENDS ${name}
        COMMENT "Writing the manual page and the shell completion of ${name}"
        VERBATIM
    )
    add_custom_target(${name}_docs ALL DEPENDS ${manual} ${completion})
    if(KWBASE_INSTALL)
        install(FILES ${manual} DESTINATION ${CMAKE_INSTALL_MANDIR}/man1 COMPONENT ${name})
        install(FILES ${completion}
            DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions
            RENAME ${name} COMPONENT ${name})
    endif()
endfunction()

find_program(KWBASE_CCACHE ccache)
mark_as_advanced(KWBASE_CCACHE)
