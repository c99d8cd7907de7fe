set(triple arm-linux-gnueabihf)
set(CMAKE_SYSTEM_PROCESSOR armv7l)
set(emulator qemu-arm)
# g++ tells for each such argument that its place has changed since version 7, which only objects of that age would notice.
set(CMAKE_CXX_FLAGS_INIT -Wno-psabi)
include(${CMAKE_CURRENT_LIST_DIR}/linux-gnu.cmake)
