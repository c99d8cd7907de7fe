#pragma once

#include <IviVisaType.h>

/// The functions behind the attributes. Each resolves and locks the session itself; `channel` is a repeated capability
/// selector that must name exactly one output.
namespace api
{

ViStatus _VI_FUNC KVX2800T_get_VOLTAGE_LEVEL(ViSession vi, ViConstString channel, ViReal64* value);
ViStatus _VI_FUNC KVX2800T_get_CURRENT_LIMIT_BEHAVIOR(ViSession vi, ViConstString channel, ViInt32* value);
ViStatus _VI_FUNC KVX2800T_get_CURRENT_LIMIT(ViSession vi, ViConstString channel, ViReal64* value);
ViStatus _VI_FUNC KVX2800T_get_OUTPUT_ENABLED(ViSession vi, ViConstString channel, ViBoolean* value);

} // namespace api
