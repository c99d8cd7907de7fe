# Test frames as the system's packages have built them.
find_package(GTest REQUIRED)
find_package(rapidcheck REQUIRED)

# Each test case is a test.
include(GoogleTest)
function(kvx_run_test name prefix)
    gtest_discover_tests(${name} TEST_PREFIX "${prefix}" DISCOVERY_MODE PRE_TEST PROPERTIES TIMEOUT 120)
endfunction()
