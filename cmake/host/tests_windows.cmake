# There are no sources of RapidCheck.
include(host/googletest_sources)

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
