# The driver on hosts with ELF: the dynamic linker binds the platform's libraries by the names of their functions.
target_link_libraries(KVX2800T PRIVATE IviCShared IviConfigServer visa)
if(NOT KVX_SANITIZE)
    # clang leaves its sanitizers' functions to the program.
    target_link_options(KVX2800T PRIVATE LINKER:--no-undefined)
endif()
set_target_properties(KVX2800T PROPERTIES VERSION ${PROJECT_VERSION} SOVERSION 1 INSTALL_RPATH "$ORIGIN/kvx2800t")
