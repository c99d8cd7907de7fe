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

# kvx_add_test(<name> [THREADS] SOURCES <file>... [LIBRARIES <target>...] [SHARDS <number>])
# One test program, which is one test of ctest. It names the case that fails, crashes or hangs; if it hangs, it is ended.
# THREADS: its tests run code in several threads; under ThreadSanitizer only those programs are built and run.
# SHARDS: its cases take so long that as many processes share them, which begin first.
function(kvx_add_test name)
    cmake_parse_arguments(ARG "THREADS" "SHARDS" "SOURCES;LIBRARIES" ${ARGN})
    add_executable(${name} ${ARG_SOURCES})
    target_link_libraries(${name} PRIVATE test_frame ${ARG_LIBRARIES})
    target_precompile_headers(${name} REUSE_FROM test_frame)
    if(KVX_SANITIZE STREQUAL "thread" AND NOT ARG_THREADS)
        set_target_properties(${name} PROPERTIES EXCLUDE_FROM_ALL ON)
        return()
    endif()
    kvx_run_test(${name} "${ARG_SHARDS}")
endfunction()
