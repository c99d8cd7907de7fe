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
kvx_header_library(kvx_beast boost/beast.hpp boost)
target_link_libraries(kvx_beast INTERFACE Threads::Threads)
if(WIN32)
    target_link_libraries(kvx_beast INTERFACE ws2_32 mswsock)
endif()

# kvx_optional_library(<variable> <header> <folder of headers> <library> <what is said without it> [<program>])
# What is built without it, too: the variable is an interface library of that name in lower case, or empty where the
# header, the library or a program that it takes is missing.
function(kvx_optional_library variable header folder library without)
    set(${variable} "" PARENT_SCOPE)
    if(WIN32)
        return()
    endif()
    find_path(${variable}_HEADERS ${header} PATH_SUFFIXES ${folder})
    find_library(${variable}_LIBRARY ${library})
    foreach(program ${ARGN})
        string(TOUPPER KVX_${program} found)
        find_program(${found} ${program})
        if(NOT ${found})
            set(${variable}_LIBRARY "")
        endif()
    endforeach()
    if(NOT ${variable}_HEADERS OR NOT ${variable}_LIBRARY)
        message(STATUS "${without}")
        return()
    endif()
    string(TOLOWER ${variable} name)
    add_library(${name} INTERFACE)
    target_include_directories(${name} SYSTEM INTERFACE ${${variable}_HEADERS})
    target_link_libraries(${name} INTERFACE ${${variable}_LIBRARY})
    set(${variable} ${name} PARENT_SCOPE)
endfunction()

# libusb reaches USB instruments.
kvx_optional_library(KVX_LIBUSB libusb.h libusb-1.0 usb-1.0
    "No libusb-1.0 (libusb-1.0-0-dev): VISA is built without USB instruments")
# TI-RPC has the XDR of VXI-11, and rpcgen makes what is written in it.
kvx_optional_library(KVX_LIBTIRPC rpc/xdr.h tirpc tirpc
    "No TI-RPC or rpcgen (libtirpc-dev, rpcsvc-proto): VISA is built without VXI-11" rpcgen)
# libedit edits lines and remembers them: where a person types messages.
kvx_optional_library(KVX_LIBEDIT editline/readline.h "" edit
    "No libedit (libedit-dev): kvx2800t does not remember the lines that are typed")
