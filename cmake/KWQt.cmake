# Finds Qt for the views, and says how its users are compiled.

find_package(Qt6 6.4 QUIET COMPONENTS Core Gui Widgets)
if(NOT Qt6_FOUND)
    message(FATAL_ERROR
        "The views of KWBase need Qt 6.4 or later, which was not found. Install it (Debian: "
        "qt6-base-dev), name its folder in CMAKE_PREFIX_PATH, or leave the views out: "
        "cmake --preset headless, or -DKWBASE_VIEWS=OFF.")
endif()

# kw_use_qt(<target>)
#
# Has the target's own classes read by moc, and keeps Qt's short keywords and its silent conversions
# from char* out of it. Qt's headers are most of what its sources read, so they are read once.
function(kw_use_qt target)
    target_compile_definitions(${target} PRIVATE QT_NO_KEYWORDS QT_NO_CAST_FROM_ASCII)
    set_target_properties(${target} PROPERTIES AUTOMOC ON)
    target_precompile_headers(${target} PRIVATE <QtWidgets/QtWidgets>)
endfunction()
