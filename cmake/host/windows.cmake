# Shared libraries on Windows.
find_program(KVX_LLVM_DLLTOOL llvm-dlltool REQUIRED)
if(CMAKE_SIZEOF_VOID_P EQUAL 4)
    set(KVX_MACHINE i386)
else()
    set(KVX_MACHINE i386:x86-64)
endif()

# kvx_export_only(<target> <file> [<version>])
# The library exports exactly the functions that the file names, one a line, undecorated; a number behind a name is its
# ordinal, and the version is for other hosts. Beside the import library are <target>.def, and <target>.lib for Microsoft's linker.
function(kvx_export_only target file)
    file(STRINGS ${file} functions)
    list(TRANSFORM functions REPLACE " " " @")
    list(JOIN functions "\n    " functions)
    set(definitions ${CMAKE_CURRENT_BINARY_DIR}/${target}.def)
    file(GENERATE OUTPUT ${definitions} CONTENT "LIBRARY $<TARGET_FILE_NAME:${target}>\nEXPORTS\n    ${functions}\n")
    set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${file})
    target_link_options(${target} PRIVATE ${definitions})
    set_property(TARGET ${target} APPEND PROPERTY LINK_DEPENDS ${definitions})

    # The linker's own import library knows the plain names; callers on x86 use the decorated ones.
    if(CMAKE_SIZEOF_VOID_P EQUAL 4)
        target_link_options(${target} PRIVATE LINKER:--enable-stdcall-fixup)
    endif()
    set(imports ${CMAKE_ARCHIVE_OUTPUT_DIRECTORY}/${target})
    add_custom_command(TARGET ${target} POST_BUILD VERBATIM
        BYPRODUCTS ${imports}.def ${imports}.lib
        COMMAND ${CMAKE_COMMAND} -D NM=${CMAKE_NM} -D DLLTOOL=${CMAKE_DLLTOOL} -D LIBRARY=$<TARGET_FILE:${target}>
                -D EXPORTS=${definitions} -D IMPORTS=${imports}.def
                -D IMPORT_LIBRARY=$<TARGET_LINKER_FILE:${target}>
                -D LLVM_DLLTOOL=${KVX_LLVM_DLLTOOL} -D MACHINE=${KVX_MACHINE}
                -D MSC_LIBRARY=${imports}.lib
                -P ${PROJECT_SOURCE_DIR}/cmake/host/import_library.cmake)
endfunction()

# kvx_stays_loaded(<target>)
# Nothing to do here: who binds such a library at run time, as the driver does, never frees it.
function(kvx_stays_loaded target)
endfunction()

# kvx_platform_name(<target> <64-bit name> <32-bit name>)
# The file name by which programs find a platform library.
function(kvx_platform_name target name64 name32)
    if(CMAKE_SIZEOF_VOID_P EQUAL 8)
        set(name ${name64})
    else()
        set(name ${name32})
    endif()
    set_target_properties(${target} PROPERTIES PREFIX "" OUTPUT_NAME ${name})
endfunction()
