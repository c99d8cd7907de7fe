# The fakes are a DLL, and beside it are libraries of the platform's names, whose functions are the fakes'.
set(fakes_folder ${CMAKE_RUNTIME_OUTPUT_DIRECTORY}/fakes CACHE INTERNAL "")

add_library(platform_fakes_shared SHARED
    fakes/config_server_fakes.cpp fakes/fake_platform.cpp fakes/platform_fakes.cpp)
target_link_libraries(platform_fakes_shared PUBLIC platform_headers PRIVATE kvx_test_options)
set_target_properties(platform_fakes_shared PROPERTIES
    PREFIX "" RUNTIME_OUTPUT_DIRECTORY ${fakes_folder})
# Everything of its own, and nothing of the compiler's libraries.
target_link_options(platform_fakes_shared PRIVATE
    LINKER:--export-all-symbols,--exclude-libs,ALL $<$<EQUAL:${CMAKE_SIZEOF_VOID_P},4>:LINKER:--add-stdcall-alias>)

file(WRITE ${CMAKE_CURRENT_BINARY_DIR}/no_code.c "typedef int NoCode;\n")
function(add_fake_library target folder)
    file(STRINGS ${PROJECT_SOURCE_DIR}/${folder}/exports.txt functions)
    list(TRANSFORM functions REPLACE "^([A-Za-z0-9_]+).*" "    \\1 = platform_fakes_shared.\\1")
    list(JOIN functions "\n" functions)
    set(definitions ${CMAKE_CURRENT_BINARY_DIR}/${target}.def)
    file(CONFIGURE OUTPUT ${definitions} CONTENT "EXPORTS\n@functions@\n" @ONLY)
    add_library(${target} SHARED ${CMAKE_CURRENT_BINARY_DIR}/no_code.c ${definitions})
    kvx_platform_name(${target} ${ARGN})
    set_target_properties(${target} PROPERTIES
        RUNTIME_OUTPUT_DIRECTORY ${fakes_folder} ARCHIVE_OUTPUT_DIRECTORY ${fakes_folder})
    add_dependencies(platform_fakes_shared ${target})
endfunction()
add_fake_library(fake_session_service platform/ivi_c_shared IviCShared_64 IviCShared)
add_fake_library(fake_visa visa visa64 visa32)
add_fake_library(fake_config_server platform/config_server IviConfigServerCAPI IviConfigServerCAPI)

# The folder of the program is the first that its libraries are searched for in.
function(kvx_runs_beside_fakes program)
    # The fakes export what they have of std::, too, where LLVM's linker sees duplicates.
    set_property(TARGET ${program} PROPERTY LINK_OPTIONS "")
    set_target_properties(${program} PROPERTIES RUNTIME_OUTPUT_DIRECTORY ${fakes_folder})
    add_custom_command(TARGET ${program} POST_BUILD VERBATIM
        COMMAND ${CMAKE_COMMAND} -E copy_if_different $<TARGET_FILE:KVX2800T> ${fakes_folder})
endfunction()
