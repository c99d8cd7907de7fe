# Makes the platform's targets from a vendor's folder: headers in include/, libraries in lib/.
add_library(platform_headers INTERFACE)
target_include_directories(platform_headers SYSTEM INTERFACE ${KVX_VENDOR_PLATFORM}/include)

foreach(library IviCShared visa IviConfigServer)
    find_library(KVX_VENDOR_${library} NAMES ${library} PATHS ${KVX_VENDOR_PLATFORM}/lib NO_DEFAULT_PATH REQUIRED)
    # Linked as a file, since a vendor's library may be a shared one, a static one or a Windows import library.
    add_library(${library} UNKNOWN IMPORTED GLOBAL)
    set_target_properties(${library} PROPERTIES IMPORTED_LOCATION ${KVX_VENDOR_${library}})
    target_link_libraries(${library} INTERFACE platform_headers)
endforeach()
