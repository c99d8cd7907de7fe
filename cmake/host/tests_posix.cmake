# Test frames as the system's packages have built them.
find_package(GTest REQUIRED)
find_package(rapidcheck REQUIRED)

# kvx_run_test(<program> <shards, or empty>)
function(kvx_run_test program shards)
    if(NOT shards)
        add_test(NAME ${program} COMMAND ${program} --gtest_brief=1)
        set_tests_properties(${program} PROPERTIES TIMEOUT 1200)
        return()
    endif()
    foreach(shard RANGE 1 ${shards})
        math(EXPR index "${shard} - 1")
        add_test(NAME ${program}.${shard} COMMAND ${program} --gtest_brief=1)
        set_tests_properties(${program}.${shard} PROPERTIES
            TIMEOUT 1200 COST ${shards} ENVIRONMENT "GTEST_TOTAL_SHARDS=${shards};GTEST_SHARD_INDEX=${index}")
    endforeach()
endfunction()
