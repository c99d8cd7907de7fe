# cmake -P script: makes the import library of a DLL.
#   EXPORTS         the module definition file that the DLL was linked with
#   IMPORTS         to be written: the same with the names that callers use, which __stdcall decorates on x86
#   LIBRARY         the DLL, with its symbol table
#   IMPORT_LIBRARY  to be written, in the format of GNU's linker
#   MSC_LIBRARY     to be written in that of Microsoft's, for MACHINE
execute_process(COMMAND ${NM} --defined-only ${LIBRARY} OUTPUT_VARIABLE symbols COMMAND_ERROR_IS_FATAL ANY)
file(STRINGS ${EXPORTS} lines)
set(definitions "")
foreach(line IN LISTS lines)
    if(line MATCHES "^    ([A-Za-z0-9_]+)(.*)$")
        set(name ${CMAKE_MATCH_1})
        set(ordinal ${CMAKE_MATCH_2})
        if(symbols MATCHES " _(${name}@[0-9]+)\n")
            set(name ${CMAKE_MATCH_1})
        endif()
        set(line "    ${name}${ordinal}")
    endif()
    string(APPEND definitions "${line}\n")
endforeach()
file(WRITE ${IMPORTS} "${definitions}")
execute_process(COMMAND ${DLLTOOL} --kill-at --input-def ${IMPORTS} --output-lib ${IMPORT_LIBRARY} COMMAND_ERROR_IS_FATAL ANY)
execute_process(COMMAND ${LLVM_DLLTOOL} -m ${MACHINE} -k -d ${IMPORTS} -l ${MSC_LIBRARY} COMMAND_ERROR_IS_FATAL ANY)
