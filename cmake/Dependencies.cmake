# Third-party code comes from the system's packages only (packages.txt); nothing is downloaded or copied in.
find_package(Threads REQUIRED)

# kvx_header_library(<name> <file to find> [<folder or file beside it>...])
# An interface library for the headers of a package. When compiling for another host, the folder they are in holds that
# of this machine's C library, too: a folder of links has those named alone.
function(kvx_header_library name file)
    find_path(${name}_dir ${file} REQUIRED NO_CMAKE_FIND_ROOT_PATH)
    set(folder ${${name}_dir})
    if(CMAKE_CROSSCOMPILING)
        set(folder ${PROJECT_BINARY_DIR}/host_headers/${name})
        file(MAKE_DIRECTORY ${folder})
        foreach(entry ${ARGN})
            file(CREATE_LINK ${${name}_dir}/${entry} ${folder}/${entry} SYMBOLIC)
        endforeach()
    endif()
    add_library(${name} INTERFACE)
    target_include_directories(${name} SYSTEM INTERFACE ${folder})
endfunction()

kvx_header_library(kvx_asio asio.hpp asio.hpp asio)
# Asio looks for std::aligned_alloc in what is included before it: sources would disagree on how memory is given back.
target_compile_definitions(kvx_asio INTERFACE ASIO_STANDALONE ASIO_NO_DEPRECATED ASIO_DISABLE_STD_ALIGNED_ALLOC)
target_link_libraries(kvx_asio INTERFACE Threads::Threads)
if(WIN32)
    target_link_libraries(kvx_asio INTERFACE ws2_32 mswsock)
endif()

kvx_header_library(kvx_rapidxml rapidxml/rapidxml.hpp rapidxml)
kvx_header_library(kvx_cli11 CLI/CLI.hpp CLI)
kvx_header_library(kvx_json nlohmann/json.hpp nlohmann)

# libusb reaches USB instruments. VISA is built without it, too: KVX_LIBUSB is the library, empty where there is none.
set(KVX_LIBUSB "")
if(NOT WIN32)
    find_path(KVX_LIBUSB_HEADERS libusb.h PATH_SUFFIXES libusb-1.0)
    find_library(KVX_LIBUSB_LIBRARY usb-1.0)
    if(KVX_LIBUSB_HEADERS AND KVX_LIBUSB_LIBRARY)
        set(KVX_LIBUSB kvx_libusb)
        add_library(kvx_libusb INTERFACE)
        target_include_directories(kvx_libusb SYSTEM INTERFACE ${KVX_LIBUSB_HEADERS})
        target_link_libraries(kvx_libusb INTERFACE ${KVX_LIBUSB_LIBRARY})
    else()
        message(STATUS "No libusb-1.0 (libusb-1.0-0-dev): VISA is built without USB instruments")
    endif()
endif()

# TI-RPC has the XDR of VXI-11, and rpcgen makes what is written in it. VISA is built without them, too: KVX_LIBTIRPC is
# the library, empty where there is none.
set(KVX_LIBTIRPC "")
if(NOT WIN32)
    find_program(KVX_RPCGEN rpcgen)
    find_path(KVX_LIBTIRPC_HEADERS rpc/xdr.h PATH_SUFFIXES tirpc)
    find_library(KVX_LIBTIRPC_LIBRARY tirpc)
    if(KVX_RPCGEN AND KVX_LIBTIRPC_HEADERS AND KVX_LIBTIRPC_LIBRARY)
        set(KVX_LIBTIRPC kvx_libtirpc)
        add_library(kvx_libtirpc INTERFACE)
        target_include_directories(kvx_libtirpc SYSTEM INTERFACE ${KVX_LIBTIRPC_HEADERS})
        target_link_libraries(kvx_libtirpc INTERFACE ${KVX_LIBTIRPC_LIBRARY})
    else()
        message(STATUS "No TI-RPC or rpcgen (libtirpc-dev, rpcsvc-proto): VISA is built without VXI-11")
    endif()
endif()
