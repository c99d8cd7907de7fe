# The platform that the driver stands on: a vendor's components where KVX_VENDOR_PLATFORM has them, and ours for the rest.
# KVX_VENDOR_VISA and KVX_VENDOR_IVI say which are the vendor's.
include(PlatformLibrary)

# SYSTEM: names such as _VI_FUNC are the standards', not this project's.
add_library(platform_headers INTERFACE)

set(KVX_VENDOR_VISA OFF)
set(KVX_VENDOR_IVI OFF)
if(KVX_VENDOR_PLATFORM)
    include(VendorPlatform)
endif()

# With a vendor's platform, too: its tests and the store tool use them.
add_subdirectory(platform/common)
add_subdirectory(visa/resource)
if(NOT KVX_VENDOR_IVI)
    target_include_directories(platform_headers SYSTEM INTERFACE ${PROJECT_SOURCE_DIR}/platform/include)
    add_subdirectory(platform)
    add_subdirectory(tools/store)
endif()
if(NOT KVX_VENDOR_VISA)
    target_include_directories(platform_headers SYSTEM INTERFACE ${PROJECT_SOURCE_DIR}/visa/include)
    add_subdirectory(visa)
endif()
