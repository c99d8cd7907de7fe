# Shared libraries on hosts with ELF.

# kvx_export_only(<target> <file> [<version>])
# The library exports exactly the functions that the file names, one a line; a number behind a name is for other hosts.
# With a version each has it behind its name: a program is told when it starts, not when it calls, that a library is no
# longer the one it was linked with.
function(kvx_export_only target file)
    file(STRINGS ${file} functions)
    list(TRANSFORM functions REPLACE " .*" "")
    list(JOIN functions "; " functions)
    set(script ${CMAKE_CURRENT_BINARY_DIR}/${target}.map)
    file(CONFIGURE OUTPUT ${script} CONTENT "@ARGN@ { global: @functions@; local: *; };\n" @ONLY)
    set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${file})
    target_link_options(${target} PRIVATE LINKER:--version-script=${script})
    set_property(TARGET ${target} APPEND PROPERTY LINK_DEPENDS ${script})
endfunction()

# kvx_stays_loaded(<target>)
# Objects that are never destroyed stay reachable when the program unloads the library and loads it again.
function(kvx_stays_loaded target)
    target_link_options(${target} PRIVATE LINKER:-z,nodelete)
endfunction()

# kvx_platform_name(<target> <64-bit name> <32-bit name>)
# The file name by which programs find a platform library; here it is that of the target.
function(kvx_platform_name target)
endfunction()
