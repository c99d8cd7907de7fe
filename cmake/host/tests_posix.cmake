# Test frames as the system's packages have built them.
find_package(GTest REQUIRED)
find_package(rapidcheck REQUIRED)
