# What the two cross compilers of MinGW-w64 have in common; the including file sets `triple`.
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_C_COMPILER ${triple}-gcc-posix)
set(CMAKE_CXX_COMPILER ${triple}-g++-posix)
set(CMAKE_RC_COMPILER ${triple}-windres)

set(CMAKE_FIND_ROOT_PATH /usr/${triple})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)

# The runtimes of C, C++ and threads are linked in: what is built needs system DLLs only.
set(hardening "-static -Wl,--dynamicbase,--nxcompat${extra_hardening}")
set(CMAKE_EXE_LINKER_FLAGS_INIT ${hardening})
set(CMAKE_SHARED_LINKER_FLAGS_INIT ${hardening})

# Tests run under Wine.
set(CMAKE_CROSSCOMPILING_EMULATOR ${CMAKE_CURRENT_LIST_DIR}/../host/wine.sh)
