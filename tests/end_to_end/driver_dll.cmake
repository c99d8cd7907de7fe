# The driver as a DLL. The program's folder has no library of the platform, which the driver would find there.
kvx_add_test(driver_dll_test
    SOURCES driver_dll_test_windows.cpp held_allocations_windows.cpp open_descriptors_windows.cpp
    LIBRARIES platform_headers shared_library virtual_instrument_process version)
set_target_properties(driver_dll_test PROPERTIES RUNTIME_OUTPUT_DIRECTORY ${CMAKE_RUNTIME_OUTPUT_DIRECTORY}/alone)
target_include_directories(driver_dll_test PRIVATE ${PROJECT_SOURCE_DIR}/api)
add_dependencies(driver_dll_test KVX2800T IviCShared IviConfigServer visa)

if(CMAKE_SIZEOF_VOID_P EQUAL 8)
    set(other_config_server IviConfigServerCapi64.dll)
else()
    set(other_config_server IviConfigServerCAPI.dll)
endif()
target_compile_definitions(driver_dll_test PRIVATE
    KVX_FOLDER="${CMAKE_RUNTIME_OUTPUT_DIRECTORY}/alone"
    KVX_DRIVER_FILE="$<TARGET_FILE:KVX2800T>"
    KVX_SESSION_SERVICE="$<TARGET_FILE:IviCShared>"
    KVX_CONFIG_SERVER="$<TARGET_FILE:IviConfigServer>"
    KVX_OTHER_CONFIG_SERVER_NAME="${other_config_server}"
    KVX_VISA="$<TARGET_FILE:visa>")
