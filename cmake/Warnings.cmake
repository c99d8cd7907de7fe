# The one place that says how strict the compiler is and where headers are; every target of this project links kvx_options.
add_library(kvx_options INTERFACE)
# Includes are rooted at the project's folder.
target_include_directories(kvx_options INTERFACE ${PROJECT_SOURCE_DIR})
target_compile_features(kvx_options INTERFACE cxx_std_20)
target_compile_options(kvx_options INTERFACE -Wall -Wextra -Wpedantic -Wconversion -Wshadow -Werror)
# g++ 12 takes any optimised operator+(const char*, std::string&&) for an overlapping copy (GCC bug 105651).
target_compile_options(kvx_options INTERFACE $<$<COMPILE_LANG_AND_ID:CXX,GNU>:-Wno-restrict>)
if(CMAKE_UNITY_BUILD)
    # Several sources are one: to g++ none of them is the main file, whose types may stay its own.
    target_compile_options(kvx_options INTERFACE $<$<COMPILE_LANG_AND_ID:CXX,GNU>:-Wno-subobject-linkage>)
endif()

set(KVX_SANITIZE "" CACHE STRING "Sanitizers to build with, as -fsanitize takes them (address,undefined or thread)")
if(KVX_SANITIZE)
    # -g1: enough for the lines of a report, and half the size.
    target_compile_options(kvx_options INTERFACE -fsanitize=${KVX_SANITIZE} -fno-sanitize-recover=all
                                                 -fno-omit-frame-pointer -g1)
    if(KVX_SANITIZE MATCHES fuzzer)
        # A call for each comparison makes the tests of long texts take four times as long.
        target_compile_options(kvx_options INTERFACE -fno-sanitize-coverage=trace-cmp,indirect-calls)
    endif()
    # clang's programs in C bring the runtime that libraries in C++ need.
    target_link_options(kvx_options INTERFACE
        -fsanitize=${KVX_SANITIZE} "$<$<LINK_LANG_AND_ID:C,Clang>:-fsanitize-link-c++-runtime;-lstdc++>")
    # What sanitizers add makes programs of many megabytes, for which LLVM's linker needs a fifth of the time.
    find_program(KVX_LLD ld.lld)
    if(KVX_LLD)
        target_link_options(kvx_options INTERFACE -fuse-ld=lld)
    endif()
endif()

option(KVX_COVERAGE "Build for gcov" OFF)
if(KVX_COVERAGE)
    target_compile_options(kvx_options INTERFACE --coverage -fprofile-update=atomic)
    target_link_options(kvx_options INTERFACE --coverage)
endif()
if(WIN32)
    # Windows 10, its wide functions, and none of its macros that are in the way of C++.
    target_compile_definitions(kvx_options INTERFACE _WIN32_WINNT=0x0A00 UNICODE NOMINMAX WIN32_LEAN_AND_MEAN)
elseif(CMAKE_SIZEOF_VOID_P EQUAL 4)
    # Without it files are missing whose size, or whose number in the file system, needs more than 32 bits.
    target_compile_definitions(kvx_options INTERFACE _FILE_OFFSET_BITS=64)
endif()

# What is tested is optimised; the tests themselves need not be. AddressSanitizer watches the buffers that they hand out.
# What else there is to look for is looked for in what is tested: in tests it doubles the time to compile them, and makes
# their regular expressions 25 times slower.
add_library(kvx_test_options INTERFACE)
target_link_libraries(kvx_test_options INTERFACE kvx_options)
target_compile_options(kvx_test_options INTERFACE -O0)
if(KVX_SANITIZE MATCHES undefined)
    target_compile_options(kvx_test_options INTERFACE
        -fno-sanitize=undefined -fno-sanitize-coverage=inline-8bit-counters,pc-table)
endif()
if(WIN32 AND CMAKE_UNITY_BUILD)
    # Eight tests in one have more sections than a plain object has room for.
    target_compile_options(kvx_test_options INTERFACE -Wa,-mbig-obj)
endif()
