include(host/tests_${KVX_HOST})

# A precompiled header serves programs and libraries only where both leave position independence to the compiler.
set(CMAKE_POSITION_INDEPENDENT_CODE OFF)

# What every test program has beside its cases.
set(support ${PROJECT_SOURCE_DIR}/tests/support)
add_library(test_frame OBJECT EXCLUDE_FROM_ALL ${support}/running_case.cpp ${support}/time_limit_${KVX_HOST}.cpp)
target_link_libraries(test_frame PUBLIC kvx_test_options GTest::gmock_main)
# Their common headers, compiled once; sources still include what they use.
target_precompile_headers(test_frame PRIVATE
    <gmock/gmock.h> <gtest/gtest.h>
    <algorithm> <array> <chrono> <cstddef> <cstdlib> <filesystem> <functional> <limits> <map> <memory> <optional>
    <ostream> <random> <set> <sstream> <stdexcept> <string> <string_view> <thread> <utility> <vector>)

# All that ThreadSanitizer runs.
add_custom_target(thread_tests)

# kvx_add_test(<name> [THREADS] SOURCES <file>... [ONE_THREAD <file>...] [LIBRARIES <target>...] [SHARDS <number>])
# One test program, which is one test of ctest. It names the case that fails, crashes or hangs; if it hangs, it is ended.
# THREADS: its tests run code in several threads; under ThreadSanitizer only those programs are built and run.
# ONE_THREAD: more sources of such a program, whose tests need no second thread; under ThreadSanitizer it is without them.
# SHARDS: its cases take so long that as many processes share them, which begin first.
function(kvx_add_test name)
    cmake_parse_arguments(ARG "THREADS" "SHARDS" "SOURCES;ONE_THREAD;LIBRARIES" ${ARGN})
    add_executable(${name} ${ARG_SOURCES})
    if(NOT KVX_SANITIZE STREQUAL "thread")
        target_sources(${name} PRIVATE ${ARG_ONE_THREAD})
    endif()
    target_link_libraries(${name} PRIVATE test_frame ${ARG_LIBRARIES})
    target_precompile_headers(${name} REUSE_FROM test_frame)
    if(KVX_SANITIZE STREQUAL "thread" AND NOT ARG_THREADS)
        set_target_properties(${name} PROPERTIES EXCLUDE_FROM_ALL ON)
        return()
    endif()
    if(ARG_THREADS)
        add_dependencies(thread_tests ${name})
    endif()
    kvx_run_test(${name} "${ARG_SHARDS}")
endfunction()
