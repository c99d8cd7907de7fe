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

# Asio looks for std::aligned_alloc in what is included before it: sources would disagree on how memory is given back.
set(asio_definitions ASIO_STANDALONE ASIO_NO_DEPRECATED ASIO_DISABLE_STD_ALIGNED_ALLOC)
if(WIN32)
    kvx_header_library(kvx_asio asio.hpp asio.hpp asio)
    target_compile_definitions(kvx_asio INTERFACE ${asio_definitions})
    target_link_libraries(kvx_asio INTERFACE Threads::Threads ws2_32 mswsock)
else()
    # What of Asio is no template is compiled once: it is half of what a source that includes it takes. On Windows it would
    # bring much of the C++ library, which is linked in there.
    kvx_header_library(asio_headers asio.hpp asio.hpp asio)
    file(CONFIGURE OUTPUT ${PROJECT_BINARY_DIR}/asio.cpp CONTENT "#include <asio/impl/src.hpp>\n")
    add_library(kvx_asio STATIC EXCLUDE_FROM_ALL ${PROJECT_BINARY_DIR}/asio.cpp)
    target_compile_definitions(kvx_asio PUBLIC ${asio_definitions} ASIO_SEPARATE_COMPILATION)
    target_link_libraries(kvx_asio PUBLIC asio_headers Threads::Threads PRIVATE kvx_options)
    set_target_properties(kvx_asio PROPERTIES CXX_VISIBILITY_PRESET hidden VISIBILITY_INLINES_HIDDEN ON)
    if(NOT KVX_SANITIZE)
        # It is one object: programs leave out what they do not use of it.
        target_compile_options(kvx_asio PRIVATE -ffunction-sections -fdata-sections)
        target_link_options(kvx_asio INTERFACE LINKER:--gc-sections)
    endif()
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
