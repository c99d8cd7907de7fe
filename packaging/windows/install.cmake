# The folders of an IVI installation (IVI-3.17), to be unpacked over <IviStandardRootDir>; CPack makes a zip of them.
if(CMAKE_SIZEOF_VOID_P EQUAL 8)
    set(width x64)
    set(libraries Lib_x64)
else()
    set(width x86)
    set(libraries Lib)
endif()
set(import_libraries ${CMAKE_ARCHIVE_OUTPUT_DIRECTORY})
set(own_folder Drivers/KVX2800T)

install(TARGETS KVX2800T RUNTIME DESTINATION Bin)
install(FILES ${PROJECT_SOURCE_DIR}/api/KVX2800T.h ${PROJECT_SOURCE_DIR}/api/KVX2800TInstrument.h DESTINATION Include)
# Both widths share the folder, and the name.
if(CMAKE_SIZEOF_VOID_P EQUAL 8)
    install(TARGETS kvx2800t RUNTIME DESTINATION Bin)
endif()
install(FILES ${import_libraries}/KVX2800T.lib ${import_libraries}/KVX2800T.def DESTINATION ${libraries}/msc)
install(FILES $<TARGET_LINKER_FILE:KVX2800T> DESTINATION ${libraries}/mingw RENAME libKVX2800T.dll.a)

configure_file(windows/readme.txt.in ${CMAKE_CURRENT_BINARY_DIR}/readme.txt @ONLY NEWLINE_STYLE CRLF)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/readme.txt DESTINATION ${own_folder})
configure_file(${PROJECT_SOURCE_DIR}/LICENSE ${CMAKE_CURRENT_BINARY_DIR}/license.txt COPYONLY)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/license.txt DESTINATION ${own_folder})
install(FILES ${PROJECT_BINARY_DIR}/bindings/KVX2800T.sub DESTINATION ${own_folder})
install(DIRECTORY ${PROJECT_BINARY_DIR}/help/ DESTINATION ${own_folder} OPTIONAL)
install(DIRECTORY ${PROJECT_SOURCE_DIR}/examples/ DESTINATION ${own_folder}/Examples
    PATTERN CMakeLists.txt EXCLUDE PATTERN README.md EXCLUDE PATTERN __pycache__ EXCLUDE)
configure_file(windows/examples_readme.txt ${CMAKE_CURRENT_BINARY_DIR}/README.txt @ONLY NEWLINE_STYLE CRLF)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/README.txt DESTINATION ${own_folder}/Examples)

install(DIRECTORY ${PROJECT_BINARY_DIR}/python_package/kvx2800t DESTINATION ${own_folder}/Python)

# With the sources, for a .NET that takes no assembly of mono's.
set(csharp_folder ${own_folder}/CSharp)
if(TARGET csharp)
    install(FILES ${KVX_ASSEMBLY} ${PROJECT_BINARY_DIR}/csharp/Kvx2800t.xml DESTINATION ${csharp_folder})
endif()
install(FILES ${PROJECT_SOURCE_DIR}/csharp/README.md ${PROJECT_SOURCE_DIR}/csharp/Kvx2800t.csproj
    DESTINATION ${csharp_folder})
install(DIRECTORY ${PROJECT_SOURCE_DIR}/csharp/Kvx2800t DESTINATION ${csharp_folder})
install(FILES ${PROJECT_BINARY_DIR}/bindings/Interface.cs DESTINATION ${csharp_folder}/Kvx2800t)

# For a machine without the IVI components or VISA.
if(NOT KVX_VENDOR_IVI)
    install(TARGETS IviCShared IviConfigServer RUNTIME DESTINATION ${own_folder}/Platform/${width})
    install(TARGETS kvx2800t-store RUNTIME DESTINATION ${own_folder}/Platform/${width})
    install(DIRECTORY ${PROJECT_SOURCE_DIR}/platform/include/ DESTINATION ${own_folder}/Platform/Include)
endif()
if(NOT KVX_VENDOR_VISA)
    install(TARGETS visa RUNTIME DESTINATION ${own_folder}/Platform/${width})
    install(DIRECTORY ${PROJECT_SOURCE_DIR}/visa/include/ DESTINATION ${own_folder}/Platform/Include)
endif()
if(NOT KVX_VENDOR_IVI OR NOT KVX_VENDOR_VISA)
    install(TARGETS kvx2800t-virtual RUNTIME DESTINATION ${own_folder}/Platform/${width})
endif()

set(CPACK_GENERATOR ZIP)
set(CPACK_PACKAGE_FILE_NAME KVX2800T-${PROJECT_VERSION}-windows-${width})
set(CPACK_INCLUDE_TOPLEVEL_DIRECTORY OFF)
set(CPACK_STRIP_FILES ON)
set(CPACK_VERBATIM_VARIABLES ON)
include(CPack)
