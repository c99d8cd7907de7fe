# Reads the files with binutils, on the machine that builds.
set(libraries $<TARGET_LINKER_FILE:KVX2800T>)
if(KVX_LLVM_DLLTOOL)
    string(APPEND libraries "\\;$<TARGET_LINKER_FILE_DIR:KVX2800T>/KVX2800T.lib")
endif()
add_test(NAME exports.dll COMMAND /usr/bin/python3 -B ${CMAKE_CURRENT_SOURCE_DIR}/dll_test.py)
set_tests_properties(exports.dll PROPERTIES ENVIRONMENT
    "OBJDUMP=${CMAKE_OBJDUMP};NM=${CMAKE_NM};DLL=$<TARGET_FILE:KVX2800T>;IMPORT_LIBRARIES=${libraries};HEADER=${PROJECT_SOURCE_DIR}/api/KVX2800T.h;EXPORTS=${PROJECT_SOURCE_DIR}/api/exports.txt")
