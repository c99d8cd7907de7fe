set(triple i686-w64-mingw32)
set(CMAKE_SYSTEM_PROCESSOR X86)
set(extra_hardening "")
include(${CMAKE_CURRENT_LIST_DIR}/mingw-w64.cmake)
