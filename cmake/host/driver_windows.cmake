# The driver on Windows: it binds the platform's libraries itself, when it needs them.
target_sources(KVX2800T PRIVATE
    ${PROJECT_SOURCE_DIR}/binding/binding_windows.cpp ${PROJECT_SOURCE_DIR}/binding/platform_library_windows.cpp)
target_link_libraries(KVX2800T PRIVATE platform_headers)
if(MINGW)
    target_sources(KVX2800T PRIVATE ${PROJECT_SOURCE_DIR}/binding/unload_mingw.cpp)
endif()

if(CMAKE_SIZEOF_VOID_P EQUAL 8)
    set(file_name KVX2800T_64)
else()
    set(file_name KVX2800T)
endif()
set_target_properties(KVX2800T PROPERTIES PREFIX "" OUTPUT_NAME ${file_name})

# The version resource, with the identity that the driver reports, and the type library, which tools/bindings makes.
set(KVX_TYPE_LIBRARY ${PROJECT_BINARY_DIR}/bindings/KVX2800T.tlb)
configure_file(${PROJECT_SOURCE_DIR}/packaging/windows/KVX2800T.rc.in ${PROJECT_BINARY_DIR}/KVX2800T.rc @ONLY)
set_source_files_properties(${PROJECT_BINARY_DIR}/KVX2800T.rc PROPERTIES OBJECT_DEPENDS ${KVX_TYPE_LIBRARY})
target_sources(KVX2800T PRIVATE ${PROJECT_BINARY_DIR}/KVX2800T.rc)
