# GoogleTest from the sources that Debian's package has for other compilers. There are none of RapidCheck.
set(KVX_GOOGLETEST_SOURCES /usr/src/googletest CACHE PATH "GoogleTest's sources")
set(INSTALL_GTEST OFF CACHE BOOL "" FORCE)
set(BUILD_GMOCK ON CACHE BOOL "" FORCE)
add_subdirectory(${KVX_GOOGLETEST_SOURCES} ${PROJECT_BINARY_DIR}/googletest EXCLUDE_FROM_ALL)
foreach(library gtest gtest_main gmock gmock_main)
    get_target_property(includes ${library} INTERFACE_INCLUDE_DIRECTORIES)
    set_target_properties(${library} PROPERTIES INTERFACE_SYSTEM_INCLUDE_DIRECTORIES "${includes}")
endforeach()

# GNU's linker goes through all sections of an object for each of its symbols, and tests have ten thousands of both: it
# takes a minute where LLVM's, which links the tests if it is there, takes a second.
if(CMAKE_CROSSCOMPILING)
    find_program(KVX_LLD ld.lld)
endif()

# kvx_run_test(<program> <shards, or empty>)
# Processes under Wine start too slowly to share a program's cases: those that would begin first. Programs of 32 bits need
# a Wine that is not in every Debian; without it they are built only when they are asked for.
function(kvx_run_test program shards)
    if(CMAKE_CROSSCOMPILING)
        if(CMAKE_SIZEOF_VOID_P EQUAL 4 AND NOT EXISTS /usr/lib/wine/wine)
            set_target_properties(${program} PROPERTIES EXCLUDE_FROM_ALL ON)
            return()
        endif()
        if(KVX_LLD)
            target_link_options(${program} PRIVATE "SHELL:-wrapper ${PROJECT_SOURCE_DIR}/cmake/host/lld.sh")
        endif()
        set(run ${PROJECT_SOURCE_DIR}/tests/support/processes/beside_wine.py ${CMAKE_CROSSCOMPILING_EMULATOR})
    endif()
    add_test(NAME ${program} COMMAND ${run} $<TARGET_FILE:${program}> --gtest_brief=1)
    set_tests_properties(${program} PROPERTIES TIMEOUT 600)
    if(shards)
        set_tests_properties(${program} PROPERTIES COST ${shards})
    endif()
endfunction()
