#pragma once

#include <IviVisaType.h>

/// The functions behind the attributes. Each resolves and locks the session itself. What an attribute means is said at
/// its constant in KVX2800T.h.
namespace api
{

// Attributes of the driver, the session and the instrument; `channel` is ignored. A text is cut to the buffer.

ViStatus _VI_FUNC KVX2800T_get_SPECIFIC_DRIVER_DESCRIPTION(ViSession vi, ViConstString channel, ViInt32 bufferSize,
                                                           ViChar value[]);
ViStatus _VI_FUNC KVX2800T_get_SPECIFIC_DRIVER_PREFIX(ViSession vi, ViConstString channel, ViInt32 bufferSize,
                                                      ViChar value[]);
ViStatus _VI_FUNC KVX2800T_get_SPECIFIC_DRIVER_VENDOR(ViSession vi, ViConstString channel, ViInt32 bufferSize,
                                                      ViChar value[]);
ViStatus _VI_FUNC KVX2800T_get_SPECIFIC_DRIVER_REVISION(ViSession vi, ViConstString channel, ViInt32 bufferSize,
                                                        ViChar value[]);
ViStatus _VI_FUNC KVX2800T_get_SPECIFIC_DRIVER_CLASS_SPEC_MAJOR_VERSION(ViSession vi, ViConstString channel,
                                                                        ViInt32* value);
ViStatus _VI_FUNC KVX2800T_get_SPECIFIC_DRIVER_CLASS_SPEC_MINOR_VERSION(ViSession vi, ViConstString channel,
                                                                        ViInt32* value);
ViStatus _VI_FUNC KVX2800T_get_RANGE_CHECK(ViSession vi, ViConstString channel, ViBoolean* value);
ViStatus _VI_FUNC KVX2800T_get_QUERY_INSTRUMENT_STATUS(ViSession vi, ViConstString channel, ViBoolean* value);
ViStatus _VI_FUNC KVX2800T_get_CACHE(ViSession vi, ViConstString channel, ViBoolean* value);
ViStatus _VI_FUNC KVX2800T_get_SIMULATE(ViSession vi, ViConstString channel, ViBoolean* value);
ViStatus _VI_FUNC KVX2800T_get_RECORD_COERCIONS(ViSession vi, ViConstString channel, ViBoolean* value);
ViStatus _VI_FUNC KVX2800T_get_INTERCHANGE_CHECK(ViSession vi, ViConstString channel, ViBoolean* value);
ViStatus _VI_FUNC KVX2800T_get_LOGICAL_NAME(ViSession vi, ViConstString channel, ViInt32 bufferSize, ViChar value[]);
ViStatus _VI_FUNC KVX2800T_get_IO_RESOURCE_DESCRIPTOR(ViSession vi, ViConstString channel, ViInt32 bufferSize,
                                                      ViChar value[]);
ViStatus _VI_FUNC KVX2800T_get_DRIVER_SETUP(ViSession vi, ViConstString channel, ViInt32 bufferSize, ViChar value[]);
ViStatus _VI_FUNC KVX2800T_get_GROUP_CAPABILITIES(ViSession vi, ViConstString channel, ViInt32 bufferSize,
                                                  ViChar value[]);
ViStatus _VI_FUNC KVX2800T_get_SUPPORTED_INSTRUMENT_MODELS(ViSession vi, ViConstString channel, ViInt32 bufferSize,
                                                           ViChar value[]);
ViStatus _VI_FUNC KVX2800T_get_INSTRUMENT_FIRMWARE_REVISION(ViSession vi, ViConstString channel, ViInt32 bufferSize,
                                                            ViChar value[]);
ViStatus _VI_FUNC KVX2800T_get_INSTRUMENT_MANUFACTURER(ViSession vi, ViConstString channel, ViInt32 bufferSize,
                                                       ViChar value[]);
ViStatus _VI_FUNC KVX2800T_get_INSTRUMENT_MODEL(ViSession vi, ViConstString channel, ViInt32 bufferSize,
                                                ViChar value[]);
ViStatus _VI_FUNC KVX2800T_get_CHANNEL_COUNT(ViSession vi, ViConstString channel, ViInt32* value);

/// Accepts any value and forgets it: for switches of things that the driver does not do.
ViStatus _VI_FUNC ignoreValue(ViSession vi, ViConstString channel, ViBoolean value);
ViStatus _VI_FUNC KVX2800T_set_QUERY_INSTRUMENT_STATUS(ViSession vi, ViConstString channel, ViBoolean value);
ViStatus _VI_FUNC KVX2800T_set_SIMULATE(ViSession vi, ViConstString channel, ViBoolean value);

// Attributes of the channels: `channel` is a repeated capability selector, which for a getter names exactly one.

ViStatus _VI_FUNC KVX2800T_get_VOLTAGE_LEVEL(ViSession vi, ViConstString channel, ViReal64* value);
ViStatus _VI_FUNC KVX2800T_get_OVP_ENABLED(ViSession vi, ViConstString channel, ViBoolean* value);
ViStatus _VI_FUNC KVX2800T_get_OVP_LIMIT(ViSession vi, ViConstString channel, ViReal64* value);
ViStatus _VI_FUNC KVX2800T_get_CURRENT_LIMIT_BEHAVIOR(ViSession vi, ViConstString channel, ViInt32* value);
ViStatus _VI_FUNC KVX2800T_get_CURRENT_LIMIT(ViSession vi, ViConstString channel, ViReal64* value);
ViStatus _VI_FUNC KVX2800T_get_OUTPUT_ENABLED(ViSession vi, ViConstString channel, ViBoolean* value);

ViStatus _VI_FUNC KVX2800T_set_VOLTAGE_LEVEL(ViSession vi, ViConstString channel, ViReal64 value);
ViStatus _VI_FUNC KVX2800T_set_OVP_ENABLED(ViSession vi, ViConstString channel, ViBoolean value);
ViStatus _VI_FUNC KVX2800T_set_OVP_LIMIT(ViSession vi, ViConstString channel, ViReal64 value);
ViStatus _VI_FUNC KVX2800T_set_CURRENT_LIMIT_BEHAVIOR(ViSession vi, ViConstString channel, ViInt32 value);
ViStatus _VI_FUNC KVX2800T_set_CURRENT_LIMIT(ViSession vi, ViConstString channel, ViReal64 value);
ViStatus _VI_FUNC KVX2800T_set_OUTPUT_ENABLED(ViSession vi, ViConstString channel, ViBoolean value);

} // namespace api
