# There are no sources of RapidCheck.
include(host/googletest_sources)

# kvx_run_test(<program> <shards>)
# Processes under Wine start too slowly to share a program's cases. Programs of 32 bits need a Wine that is not in every
# Debian; without it they are built only when they are asked for.
function(kvx_run_test program)
    if(CMAKE_CROSSCOMPILING)
        if(CMAKE_SIZEOF_VOID_P EQUAL 4 AND NOT EXISTS /usr/lib/wine/wine)
            set_target_properties(${program} PROPERTIES EXCLUDE_FROM_ALL ON)
            return()
        endif()
        set(run ${PROJECT_SOURCE_DIR}/tests/support/processes/beside_wine.py ${CMAKE_CROSSCOMPILING_EMULATOR})
    endif()
    add_test(NAME ${program} COMMAND ${run} $<TARGET_FILE:${program}> --gtest_brief=1)
    set_tests_properties(${program} PROPERTIES TIMEOUT 600)
endfunction()
