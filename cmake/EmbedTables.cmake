# Builds the tables of texts into a library.
#
#   kwbase_embed_tables(<target> FUNCTION <name> FILES <directory>/<language>.lproj/<table>.strings...)
#
# adds a source to the target that defines `void <name>(KWBundle&)`, which adds all the tables. It is
# made anew when one of the files changes. This file is also the script that makes it.

if(CMAKE_SCRIPT_MODE_FILE)
    set(source "// Made from the strings files; changes belong there.\n")
    string(APPEND source "#include <KWFoundation/KWBundle.h>\n\n")
    string(APPEND source "void ${FUNCTION}(KWBundle& bundle);\n\n")
    string(APPEND source "void ${FUNCTION}(KWBundle& bundle) {\n")
    string(REPLACE "|" ";" FILES "${FILES}")
    foreach(file IN LISTS FILES)
        if(NOT file MATCHES "([^/]+)\\.lproj/([^/]+)\\.strings$")
            message(FATAL_ERROR "${file} does not end in <language>.lproj/<table>.strings")
        endif()
        set(names "\"${CMAKE_MATCH_1}\", \"${CMAKE_MATCH_2}\"")
        # As numbers, so that no text can end the literal and no length is too long for one.
        file(READ "${file}" bytes HEX)
        string(REGEX REPLACE "(..)" "'\\\\x\\1'," bytes "${bytes}")
        string(REGEX REPLACE
               "(......,......,......,......,......,......,......,......,......,......,......,......,)"
               "\\1\n        " bytes "${bytes}")
        string(APPEND source
               "    {\n        static constexpr char text[] = {\n        ${bytes}'\\0'};\n"
               "        bundle.addTable(${names}, {text, sizeof text - 1});\n    }\n")
    endforeach()
    string(APPEND source "}\n")
    file(WRITE "${OUTPUT}" "${source}")
    return()
endif()

function(kwbase_embed_tables target)
    cmake_parse_arguments(PARSE_ARGV 1 arg "" "FUNCTION" "FILES")
    set(files "")
    foreach(file IN LISTS arg_FILES)
        get_filename_component(file "${file}" ABSOLUTE)
        list(APPEND files "${file}")
    endforeach()
    # A list would be taken apart on the command line.
    string(REPLACE ";" "|" joined "${files}")
    set(output "${CMAKE_CURRENT_BINARY_DIR}/${arg_FUNCTION}.cpp")
    add_custom_command(
        OUTPUT "${output}"
        COMMAND "${CMAKE_COMMAND}" "-DFUNCTION=${arg_FUNCTION}" "-DFILES=${joined}"
                "-DOUTPUT=${output}" -P "${CMAKE_CURRENT_FUNCTION_LIST_FILE}"
        DEPENDS ${files} "${CMAKE_CURRENT_FUNCTION_LIST_FILE}"
        COMMENT "Embedding the tables of texts"
        VERBATIM)
    target_sources(${target} PRIVATE "${output}")
endfunction()
