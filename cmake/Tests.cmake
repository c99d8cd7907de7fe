include(host/tests_${KVX_HOST})

# kvx_add_test(<name> [THREADS] SOURCES <file>... [LIBRARIES <target>...] [PREFIX <text>])
# One test program, which ctest runs under names that begin with the prefix. A case that hangs is ended.
# THREADS: its tests run code in several threads; under ThreadSanitizer only those programs are built and run.
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
    kvx_run_test(${name} "${ARG_PREFIX}")
endfunction()
