# Reads the files with binutils, on the machine that builds. The programs are linked with one import library each.
set(msc_library ${CMAKE_ARCHIVE_OUTPUT_DIRECTORY}/KVX2800T.lib)
add_executable(links_msc_library ${PROJECT_SOURCE_DIR}/examples/first_session.c)
target_include_directories(links_msc_library PRIVATE ${PROJECT_SOURCE_DIR}/api)
target_link_libraries(links_msc_library PRIVATE platform_headers ${msc_library})
add_dependencies(links_msc_library KVX2800T)

add_test(NAME exports.dll COMMAND /usr/bin/python3 -B ${CMAKE_CURRENT_SOURCE_DIR}/dll_test.py)
set_tests_properties(exports.dll PROPERTIES ENVIRONMENT
    "OBJDUMP=${CMAKE_OBJDUMP};NM=${CMAKE_NM};DLL=$<TARGET_FILE:KVX2800T>;IMPORT_LIBRARIES=$<TARGET_LINKER_FILE:KVX2800T>\\;${msc_library};PROGRAMS=$<TARGET_FILE:first_session>\\;$<TARGET_FILE:links_msc_library>;HEADER=${PROJECT_SOURCE_DIR}/api/KVX2800T.h;INSTRUMENT_HEADER=${PROJECT_SOURCE_DIR}/api/KVX2800TInstrument.h;EXPORTS=${PROJECT_SOURCE_DIR}/api/exports.txt;TYPE_LIBRARY=${PROJECT_BINARY_DIR}/bindings/KVX2800T.tlb")
