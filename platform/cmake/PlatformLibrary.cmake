# kvx_platform_library(<name> FACE <source> [SOURCES <file>...] [LIBRARIES <target>...])
# A shared library that exports exactly the functions named in exports.txt beside it, one a line. FACE is the source
# that defines them; everything else has hidden visibility.
function(kvx_platform_library name)
    cmake_parse_arguments(ARG "" "FACE" "SOURCES;LIBRARIES" ${ARGN})
    set(exports ${CMAKE_CURRENT_SOURCE_DIR}/exports.txt)
    set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${exports})
    file(STRINGS ${exports} functions)
    list(JOIN functions ";\n        " functions)
    set(script ${CMAKE_CURRENT_BINARY_DIR}/${name}.map)
    file(CONFIGURE OUTPUT ${script} CONTENT "{\n    global:\n        @functions@;\n    local:\n        *;\n};\n" @ONLY)

    add_library(${name} SHARED ${ARG_FACE} ${ARG_SOURCES})
    target_link_libraries(${name} PUBLIC platform_headers PRIVATE kvx_options platform_common ${ARG_LIBRARIES})
    # nodelete: the objects that are never destroyed must stay reachable when a driver is unloaded and loaded again.
    target_link_options(${name} PRIVATE LINKER:--version-script=${script} LINKER:-z,nodelete)
    set_target_properties(${name} PROPERTIES CXX_VISIBILITY_PRESET hidden VISIBILITY_INLINES_HIDDEN ON
                                             LINK_DEPENDS ${script} INSTALL_RPATH $ORIGIN)
    set_source_files_properties(${ARG_FACE} PROPERTIES COMPILE_OPTIONS -fvisibility=default)
endfunction()
