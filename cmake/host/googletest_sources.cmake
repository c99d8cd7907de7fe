# GoogleTest from the sources that Debian's package has for other compilers.
set(KVX_GOOGLETEST_SOURCES /usr/src/googletest CACHE PATH "GoogleTest's sources")
set(INSTALL_GTEST OFF CACHE BOOL "" FORCE)
set(BUILD_GMOCK ON CACHE BOOL "" FORCE)
add_subdirectory(${KVX_GOOGLETEST_SOURCES} ${PROJECT_BINARY_DIR}/googletest EXCLUDE_FROM_ALL)
foreach(library gtest gtest_main gmock gmock_main)
    get_target_property(includes ${library} INTERFACE_INCLUDE_DIRECTORIES)
    set_target_properties(${library} PROPERTIES INTERFACE_SYSTEM_INCLUDE_DIRECTORIES "${includes}")
endforeach()
