# "cmake --build --preset dev --target tidy": clang-tidy over every source, by .clang-tidy.
# "... --target format": clang-format over every source, in place.

find_program(KWBASE_RUN_CLANG_TIDY NAMES run-clang-tidy run-clang-tidy-14)
find_program(KWBASE_CLANG_FORMAT NAMES clang-format-14 clang-format)
mark_as_advanced(KWBASE_RUN_CLANG_TIDY KWBASE_CLANG_FORMAT)

if(KWBASE_RUN_CLANG_TIDY AND CMAKE_EXPORT_COMPILE_COMMANDS)
    add_custom_target(tidy
        COMMAND ${KWBASE_RUN_CLANG_TIDY} -quiet -p ${PROJECT_BINARY_DIR}
            "^${PROJECT_SOURCE_DIR}/(KWFoundation|KWBase|KWDesktop|apps|tests|benchmarks)/"
        WORKING_DIRECTORY ${PROJECT_SOURCE_DIR}
        USES_TERMINAL VERBATIM
    )
endif()
if(KWBASE_CLANG_FORMAT)
    add_custom_target(format
        COMMAND sh ${PROJECT_SOURCE_DIR}/tests/tree/format.sh
            ${PROJECT_SOURCE_DIR} ${KWBASE_CLANG_FORMAT} -i
        VERBATIM
    )
endif()
