# The driver: one object library for each layer, the shared library of all of them, and a static library of the same
# objects for the unit tests.
function(kvx_add_layer name)
    add_library(kvx_${name} OBJECT ${ARGN})
    target_link_libraries(kvx_${name} PUBLIC platform_headers PRIVATE kvx_options)
    set_target_properties(kvx_${name} PROPERTIES VISIBILITY_INLINES_HIDDEN ON)
endfunction()

kvx_add_layer(base base/option_grammar.cpp)
kvx_add_layer(io io/connect.cpp io/message_log.cpp io/visa_io.cpp)
kvx_add_layer(instrument
    instrument/channel_limits.cpp
    instrument/command_port.cpp
    instrument/command_text.cpp
    instrument/fixed_point.cpp
    instrument/fresh_replies.cpp
    instrument/keyword_table.cpp
    instrument/kvx2800t.cpp
    instrument/kvx2800t_delay.cpp
    instrument/kvx2800t_list.cpp
    instrument/kvx2800t_measurement.cpp
    instrument/kvx2800t_output.cpp
    instrument/kvx2800t_source.cpp
    instrument/kvx2800t_status.cpp
    instrument/reply_parsing.cpp)
kvx_add_layer(simulator
    simulator/kvx2800t_simulator.cpp
    simulator/random_source.cpp
    simulator/stateful_simulator.cpp
    simulator/virtual_connection.cpp)
kvx_add_layer(runtime
    runtime/attribute_dispatch.cpp
    runtime/close_listeners.cpp
    runtime/driver_identity.cpp
    runtime/driver_session.cpp
    runtime/driver_session_options.cpp
    runtime/driver_session_store.cpp
    runtime/error_messages.cpp
    runtime/kvx2800t_driver_session.cpp
    runtime/selector.cpp
    runtime/selector_grammar.cpp
    runtime/session_settings.cpp
    runtime/source_mode.cpp
    runtime/text_list.cpp
    runtime/tick_clock.cpp
    runtime/virtual_names.cpp)
kvx_add_layer(api
    api/arguments.cpp
    api/attribute_functions.cpp
    api/attribute_table.cpp
    api/channel_functions.cpp
    api/checks.cpp
    api/delay_functions.cpp
    api/direct_io_functions.cpp
    api/frame.cpp
    api/guarded_frame.cpp
    api/inherent_functions.cpp
    api/list_functions.cpp
    api/measurement_functions.cpp
    api/output_functions.cpp
    api/query_functions.cpp
    api/session_functions.cpp
    api/source_functions.cpp
    api/status_functions.cpp)
# The stateful simulation drives the virtual instrument.
set(KVX_LAYERS kvx_base kvx_io kvx_instrument kvx_simulator virtual_instrument_core kvx_runtime kvx_api)
list(TRANSFORM KVX_LAYERS REPLACE "(.+)" "$<TARGET_OBJECTS:\\1>" OUTPUT_VARIABLE driver_objects)

# What a host needs beyond these sources, and how its libraries are linked.
add_library(KVX2800T SHARED ${driver_objects})
target_link_libraries(KVX2800T PRIVATE kvx_options)
# The functions' version in ELF changes with the library's major version.
set(KVX_DRIVER_NODE KVX2800T_1)
kvx_export_only(KVX2800T ${PROJECT_SOURCE_DIR}/api/exports.txt ${KVX_DRIVER_NODE})
include(host/driver_${KVX_HOST})
target_include_directories(KVX2800T INTERFACE ${PROJECT_SOURCE_DIR}/api)
target_link_libraries(KVX2800T INTERFACE platform_headers)

# The platform's functions are left to the program that links it: the libraries of platform/ and visa/, or a test's own.
add_library(kvx2800t_static STATIC ${driver_objects})
target_link_libraries(kvx2800t_static INTERFACE platform_headers)
