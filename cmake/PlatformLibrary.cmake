# kvx_platform_library(<name> FACE <source>... [SOURCES <file>...] [LIBRARIES <target>...])
# A shared library that exports exactly the functions named in exports.txt beside it, one a line. FACE are the
# sources that define them; everything else has hidden visibility.
function(kvx_platform_library name)
    cmake_parse_arguments(ARG "" "" "FACE;SOURCES;LIBRARIES" ${ARGN})
    add_library(${name} SHARED ${ARG_FACE} ${ARG_SOURCES})
    target_link_libraries(${name} PUBLIC platform_headers PRIVATE kvx_options platform_common ${ARG_LIBRARIES})
    kvx_export_only(${name} ${CMAKE_CURRENT_SOURCE_DIR}/exports.txt)
    kvx_stays_loaded(${name})
    set_target_properties(${name} PROPERTIES CXX_VISIBILITY_PRESET hidden VISIBILITY_INLINES_HIDDEN ON INSTALL_RPATH $ORIGIN)
    set_source_files_properties(${ARG_FACE} PROPERTIES COMPILE_OPTIONS -fvisibility=default)
endfunction()
