# What Debian's cross compilers for Linux have in common; the including file sets `triple` and `emulator`.
set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_C_COMPILER ${triple}-gcc)
set(CMAKE_CXX_COMPILER ${triple}-g++)

# The C library of the cross compiler's packages, then the target's packages where Debian's multiarch has installed any:
# this machine's own libraries are in folders of another name.
set(sysroot /usr/${triple})
set(CMAKE_LIBRARY_ARCHITECTURE ${triple})
set(CMAKE_FIND_ROOT_PATH ${sysroot} /)
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)
set(ENV{PKG_CONFIG_LIBDIR} /usr/lib/${triple}/pkgconfig:/usr/share/pkgconfig)

# Programs run in QEMU's user mode, with the libraries of the sysroot.
set(CMAKE_CROSSCOMPILING_EMULATOR ${emulator} -L ${sysroot})
