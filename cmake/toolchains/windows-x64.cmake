set(triple x86_64-w64-mingw32)
set(CMAKE_SYSTEM_PROCESSOR AMD64)
set(extra_hardening ",--high-entropy-va")
include(${CMAKE_CURRENT_LIST_DIR}/mingw-w64.cmake)
