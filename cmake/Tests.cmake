include(GoogleTest)
include(host/tests_${KVX_HOST})

# kvx_add_test(<name> [THREADS] SOURCES <file>... [LIBRARIES <target>...] [PREFIX <text>])
# One test program; ctest runs each of its test cases by name, behind the prefix. A case that hangs is ended after two
# minutes. THREADS: its tests run code in several threads; under ThreadSanitizer only those programs are built and run.
function(kvx_add_test name)
    cmake_parse_arguments(ARG "THREADS" "PREFIX" "SOURCES;LIBRARIES" ${ARGN})
    add_executable(${name} ${ARG_SOURCES})
    target_link_libraries(${name} PRIVATE kvx_options ${ARG_LIBRARIES} GTest::gmock_main)
    # What is tested is optimised; the tests themselves need not be.
    target_compile_options(${name} PRIVATE $<$<CONFIG:Release>:-O0>)
    if(KVX_SANITIZE STREQUAL "thread" AND NOT ARG_THREADS)
        set_target_properties(${name} PROPERTIES EXCLUDE_FROM_ALL ON)
        return()
    endif()
    gtest_discover_tests(${name} TEST_PREFIX "${ARG_PREFIX}" DISCOVERY_MODE PRE_TEST PROPERTIES TIMEOUT 120)
endfunction()
