set(triple i686-w64-mingw32)
set(CMAKE_SYSTEM_PROCESSOR X86)
set(extra_hardening "")
# Doubles are computed as doubles, as on every other host; every processor that Windows 10 runs on can.
set(CMAKE_C_FLAGS_INIT "-msse2 -mfpmath=sse")
set(CMAKE_CXX_FLAGS_INIT ${CMAKE_C_FLAGS_INIT})
include(${CMAKE_CURRENT_LIST_DIR}/mingw-w64.cmake)
