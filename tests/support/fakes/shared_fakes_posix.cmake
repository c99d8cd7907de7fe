# The fakes are functions of the program, which a shared library's calls lead to before those of other libraries.
add_library(platform_fakes_shared INTERFACE)
target_link_libraries(platform_fakes_shared INTERFACE $<LINK_LIBRARY:WHOLE_ARCHIVE,platform_fakes>)

function(kvx_runs_beside_fakes program)
endfunction()
