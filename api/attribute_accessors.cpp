#include "api/attribute_accessors.h"

#include "api/KVX2800T.h"
#include "api/arguments.h"
#include "api/frame.h"
#include "runtime/selector.h"

namespace api
{
namespace
{

using drivekit::DriverSession;
using TSRO::InstBase;

/// An instrument query of one channel.
template <class Setting>
using ChannelQuery = ViStatus (InstBase::*)(ViInt32 channel, Setting& value);

constexpr ViReal64 toAttributeValue(double value)
{
    return value;
}

constexpr ViBoolean toAttributeValue(bool value)
{
    return value ? VI_TRUE : VI_FALSE;
}

/// Reads one channel's setting. `value` changes only on success.
template <class Value, class Setting>
ViStatus getChannelSetting(ViSession vi, ViConstString channel, Value* value, std::string_view function,
                           ChannelQuery<Setting> query)
{
    return framedSession(vi, [&](DriverSession& session) {
        ViStatus status = checkPointers(vi, function, "AttributeValue", value);
        if (status < 0)
            return status;
        drivekit::PhysicalName<drivekit::OutputChannel> name;
        status = drivekit::resolveSingleSelector(session, channel, name);
        if (status < 0)
            return status;
        InstBase& instrument = *session.instrument();
        Setting setting{};
        status = (instrument.*query)(drivekit::channelOf(name), setting);
        if (status == VI_SUCCESS)
            *value = toAttributeValue(setting);
        return recordFailure(session, status);
    });
}

} // namespace

ViStatus _VI_FUNC KVX2800T_get_VOLTAGE_LEVEL(ViSession vi, ViConstString channel, ViReal64* value)
{
    return getChannelSetting(vi, channel, value, "KVX2800T_get_VOLTAGE_LEVEL", &InstBase::voltageLevel);
}

ViStatus _VI_FUNC KVX2800T_get_CURRENT_LIMIT_BEHAVIOR(ViSession vi, ViConstString channel, ViInt32* value)
{
    static_assert(KVX2800T_VAL_CURRENT_REGULATE == VI_FALSE && KVX2800T_VAL_CURRENT_TRIP == VI_TRUE);
    return getChannelSetting(vi, channel, value, "KVX2800T_get_CURRENT_LIMIT_BEHAVIOR",
                             &InstBase::currentProtectionEnabled);
}

ViStatus _VI_FUNC KVX2800T_get_CURRENT_LIMIT(ViSession vi, ViConstString channel, ViReal64* value)
{
    return getChannelSetting(vi, channel, value, "KVX2800T_get_CURRENT_LIMIT", &InstBase::currentLevel);
}

ViStatus _VI_FUNC KVX2800T_get_OUTPUT_ENABLED(ViSession vi, ViConstString channel, ViBoolean* value)
{
    return getChannelSetting(vi, channel, value, "KVX2800T_get_OUTPUT_ENABLED", &InstBase::outputEnabled);
}

} // namespace api
