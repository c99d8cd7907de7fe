# Third-party code comes from the system's packages only (packages.txt); nothing is downloaded or copied in.
find_package(Threads REQUIRED)

find_path(KVX_ASIO_INCLUDE_DIR asio.hpp REQUIRED)
add_library(kvx_asio INTERFACE)
target_include_directories(kvx_asio SYSTEM INTERFACE ${KVX_ASIO_INCLUDE_DIR})
target_compile_definitions(kvx_asio INTERFACE ASIO_STANDALONE ASIO_NO_DEPRECATED)
target_link_libraries(kvx_asio INTERFACE Threads::Threads)
if(KVX_SANITIZE MATCHES thread)
    # g++ warns of Asio's fences, which ThreadSanitizer does not model.
    target_compile_options(kvx_asio INTERFACE -Wno-tsan)
endif()

find_path(KVX_RAPIDXML_INCLUDE_DIR rapidxml/rapidxml.hpp REQUIRED)
add_library(kvx_rapidxml INTERFACE)
target_include_directories(kvx_rapidxml SYSTEM INTERFACE ${KVX_RAPIDXML_INCLUDE_DIR})

find_package(CLI11 REQUIRED)
