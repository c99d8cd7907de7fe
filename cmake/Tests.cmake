include(GoogleTest)
find_package(GTest REQUIRED)

# kvx_add_test(<name> SOURCES <file>... [LIBRARIES <target>...])
# One test program; ctest runs each of its test cases by name. A case that hangs is ended after two minutes.
function(kvx_add_test name)
    cmake_parse_arguments(ARG "" "" "SOURCES;LIBRARIES" ${ARGN})
    add_executable(${name} ${ARG_SOURCES})
    target_link_libraries(${name} PRIVATE kvx_options ${ARG_LIBRARIES} GTest::gmock_main)
    gtest_discover_tests(${name} DISCOVERY_MODE PRE_TEST PROPERTIES TIMEOUT 120)
endfunction()
