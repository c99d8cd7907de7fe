#include "api/attribute_accessors.h"

#include "api/KVX2800T.h"
#include "api/arguments.h"
#include "api/channels.h"
#include "runtime/driver_identity.h"

// The message of a null pointer names the getter, by its own name.

namespace api
{
namespace
{

using drivekit::DriverSession;
using TSRO::InstBase;

/// The version of the IviDCPwr class specification (IVI-4.4) that the driver follows.
constexpr ViInt32 kClassSpecMajorVersion = 3;
constexpr ViInt32 kClassSpecMinorVersion = 0;

constexpr ViReal64 toAttributeValue(double value)
{
    return value;
}

constexpr ViBoolean toAttributeValue(bool value)
{
    return value ? VI_TRUE : VI_FALSE;
}

/// Reads what the session knows.
template <class Value, class Read>
ViStatus getValue(ViSession vi, Value* value, std::string_view function, Read read)
{
    return framedSession(vi, [&](const DriverSession& session) {
        const ViStatus status = checkPointers(vi, function, "AttributeValue", value);
        if (status >= 0)
            *value = read(session);
        return status;
    });
}

template <class Read>
ViStatus getText(ViSession vi, ViInt32 bufferSize, ViChar value[], std::string_view function, Read read)
{
    return framedSession(vi, [&](const DriverSession& session) {
        const ViStatus status = checkPointers(vi, function, "AttributeValue", value);
        if (status >= 0)
            copyText(value, static_cast<std::size_t>(bufferSize), read(session));
        return status;
    });
}

/// An instrument query of one channel.
template <class Setting>
using ChannelQuery = ViStatus (InstBase::*)(ViInt32 channel, Setting& value);

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

/// Writes a setting of every channel that a selector names.
template <class Setting>
ViStatus setChannelSetting(ViSession vi, ViConstString channel, Setting setting,
                           ViStatus (InstBase::*set)(ViInt32 channel, Setting value))
{
    return configureChannels(vi, channel, [set, setting](InstBase& instrument, ViInt32 number) {
        return (instrument.*set)(number, setting);
    });
}

} // namespace

ViStatus _VI_FUNC KVX2800T_get_SPECIFIC_DRIVER_DESCRIPTION(ViSession vi, ViConstString /*channel*/, ViInt32 bufferSize,
                                                           ViChar value[])
{
    return getText(vi, bufferSize, value, __func__,
                   [](const DriverSession& /*session*/) -> std::string_view { return drivekit::kDriverDescription; });
}

ViStatus _VI_FUNC KVX2800T_get_SPECIFIC_DRIVER_PREFIX(ViSession vi, ViConstString /*channel*/, ViInt32 bufferSize,
                                                      ViChar value[])
{
    return getText(vi, bufferSize, value, __func__,
                   [](const DriverSession& /*session*/) -> std::string_view { return drivekit::kDriverPrefix; });
}

ViStatus _VI_FUNC KVX2800T_get_SPECIFIC_DRIVER_VENDOR(ViSession vi, ViConstString /*channel*/, ViInt32 bufferSize,
                                                      ViChar value[])
{
    return getText(vi, bufferSize, value, __func__,
                   [](const DriverSession& /*session*/) -> std::string_view { return drivekit::kDriverVendor; });
}

ViStatus _VI_FUNC KVX2800T_get_SPECIFIC_DRIVER_REVISION(ViSession vi, ViConstString /*channel*/, ViInt32 bufferSize,
                                                        ViChar value[])
{
    return getText(vi, bufferSize, value, __func__,
                   [](const DriverSession& /*session*/) -> std::string_view { return drivekit::kDriverRevision; });
}

ViStatus _VI_FUNC KVX2800T_get_SPECIFIC_DRIVER_CLASS_SPEC_MAJOR_VERSION(ViSession vi, ViConstString /*channel*/,
                                                                        ViInt32* value)
{
    return getValue(vi, value, __func__,
                    [](const DriverSession& /*session*/) -> ViInt32 { return kClassSpecMajorVersion; });
}

ViStatus _VI_FUNC KVX2800T_get_SPECIFIC_DRIVER_CLASS_SPEC_MINOR_VERSION(ViSession vi, ViConstString /*channel*/,
                                                                        ViInt32* value)
{
    return getValue(vi, value, __func__,
                    [](const DriverSession& /*session*/) -> ViInt32 { return kClassSpecMinorVersion; });
}

ViStatus _VI_FUNC KVX2800T_get_RANGE_CHECK(ViSession vi, ViConstString /*channel*/, ViBoolean* value)
{
    return getValue(vi, value, __func__, [](const DriverSession& /*session*/) -> ViBoolean { return VI_TRUE; });
}

ViStatus _VI_FUNC KVX2800T_get_QUERY_INSTRUMENT_STATUS(ViSession vi, ViConstString /*channel*/, ViBoolean* value)
{
    return getValue(vi, value, __func__, [](const DriverSession& session) -> ViBoolean {
        return toAttributeValue(session.queryInstrumentStatus());
    });
}

ViStatus _VI_FUNC KVX2800T_get_CACHE(ViSession vi, ViConstString /*channel*/, ViBoolean* value)
{
    return getValue(vi, value, __func__, [](const DriverSession& /*session*/) -> ViBoolean { return VI_FALSE; });
}

ViStatus _VI_FUNC KVX2800T_get_SIMULATE(ViSession vi, ViConstString /*channel*/, ViBoolean* value)
{
    return getValue(vi, value, __func__,
                    [](const DriverSession& session) -> ViBoolean { return toAttributeValue(session.simulate()); });
}

ViStatus _VI_FUNC KVX2800T_get_RECORD_COERCIONS(ViSession vi, ViConstString /*channel*/, ViBoolean* value)
{
    return getValue(vi, value, __func__, [](const DriverSession& /*session*/) -> ViBoolean { return VI_FALSE; });
}

ViStatus _VI_FUNC KVX2800T_get_INTERCHANGE_CHECK(ViSession vi, ViConstString /*channel*/, ViBoolean* value)
{
    return getValue(vi, value, __func__, [](const DriverSession& /*session*/) -> ViBoolean { return VI_FALSE; });
}

ViStatus _VI_FUNC KVX2800T_get_LOGICAL_NAME(ViSession vi, ViConstString /*channel*/, ViInt32 bufferSize, ViChar value[])
{
    return getText(vi, bufferSize, value, __func__,
                   [](const DriverSession& session) -> std::string_view { return session.logicalName(); });
}

ViStatus _VI_FUNC KVX2800T_get_IO_RESOURCE_DESCRIPTOR(ViSession vi, ViConstString /*channel*/, ViInt32 bufferSize,
                                                      ViChar value[])
{
    return getText(vi, bufferSize, value, __func__,
                   [](const DriverSession& session) -> std::string_view { return session.connectionDescriptor(); });
}

ViStatus _VI_FUNC KVX2800T_get_DRIVER_SETUP(ViSession vi, ViConstString /*channel*/, ViInt32 bufferSize, ViChar value[])
{
    return getText(vi, bufferSize, value, __func__,
                   [](const DriverSession& session) -> std::string_view { return session.driverSetup(); });
}

ViStatus _VI_FUNC KVX2800T_get_GROUP_CAPABILITIES(ViSession vi, ViConstString /*channel*/, ViInt32 bufferSize,
                                                  ViChar value[])
{
    return getText(vi, bufferSize, value, __func__,
                   [](const DriverSession& /*session*/) -> std::string_view { return drivekit::kGroupCapabilities; });
}

ViStatus _VI_FUNC KVX2800T_get_SUPPORTED_INSTRUMENT_MODELS(ViSession vi, ViConstString /*channel*/, ViInt32 bufferSize,
                                                           ViChar value[])
{
    return getText(vi, bufferSize, value, __func__,
                   [](const DriverSession& /*session*/) -> std::string_view { return drivekit::kSupportedModels; });
}

ViStatus _VI_FUNC KVX2800T_get_INSTRUMENT_FIRMWARE_REVISION(ViSession vi, ViConstString /*channel*/, ViInt32 bufferSize,
                                                            ViChar value[])
{
    return getText(vi, bufferSize, value, __func__, [](const DriverSession& session) -> std::string_view {
        return session.instrument()->identity()->firmwareRevision;
    });
}

ViStatus _VI_FUNC KVX2800T_get_INSTRUMENT_MANUFACTURER(ViSession vi, ViConstString /*channel*/, ViInt32 bufferSize,
                                                       ViChar value[])
{
    return getText(vi, bufferSize, value, __func__, [](const DriverSession& session) -> std::string_view {
        return session.instrument()->identity()->manufacturer;
    });
}

ViStatus _VI_FUNC KVX2800T_get_INSTRUMENT_MODEL(ViSession vi, ViConstString /*channel*/, ViInt32 bufferSize,
                                                ViChar value[])
{
    return getText(vi, bufferSize, value, __func__, [](const DriverSession& session) -> std::string_view {
        return session.instrument()->identity()->model;
    });
}

ViStatus _VI_FUNC KVX2800T_get_CHANNEL_COUNT(ViSession vi, ViConstString /*channel*/, ViInt32* value)
{
    return getValue(vi, value, __func__, [](const DriverSession& /*session*/) -> ViInt32 {
        return static_cast<ViInt32>(drivekit::RepCapBase<drivekit::OutputChannel>::kCount);
    });
}

ViStatus _VI_FUNC ignoreValue(ViSession vi, ViConstString /*channel*/, ViBoolean /*value*/)
{
    return framed(vi, []() -> ViStatus { return VI_SUCCESS; });
}

ViStatus _VI_FUNC KVX2800T_set_QUERY_INSTRUMENT_STATUS(ViSession vi, ViConstString /*channel*/, ViBoolean value)
{
    return framedSession(vi, [value](DriverSession& session) -> ViStatus {
        session.setQueryInstrumentStatus(value != VI_FALSE);
        return VI_SUCCESS;
    });
}

ViStatus _VI_FUNC KVX2800T_set_SIMULATE(ViSession vi, ViConstString /*channel*/, ViBoolean value)
{
    return framedSession(vi, [value](DriverSession& session) -> ViStatus {
        if (session.runsSimulated() && value == VI_FALSE)
            return session.ReportError(base::kErrorCannotChangeSimulationState);
        session.setSimulate(value == VI_TRUE);
        if (session.runsSimulated() || value != VI_TRUE)
            return VI_SUCCESS;
        return recordFailure(session, session.StartSimulation());
    });
}

ViStatus _VI_FUNC KVX2800T_get_VOLTAGE_LEVEL(ViSession vi, ViConstString channel, ViReal64* value)
{
    return getChannelSetting(vi, channel, value, __func__, &InstBase::voltageLevel);
}

ViStatus _VI_FUNC KVX2800T_get_OVP_ENABLED(ViSession vi, ViConstString channel, ViBoolean* value)
{
    return getChannelSetting(vi, channel, value, __func__, &InstBase::voltageProtectionEnabled);
}

ViStatus _VI_FUNC KVX2800T_get_OVP_LIMIT(ViSession vi, ViConstString channel, ViReal64* value)
{
    return getChannelSetting(vi, channel, value, __func__, &InstBase::voltageProtectionLevel);
}

ViStatus _VI_FUNC KVX2800T_get_CURRENT_LIMIT_BEHAVIOR(ViSession vi, ViConstString channel, ViInt32* value)
{
    static_assert(KVX2800T_VAL_CURRENT_REGULATE == VI_FALSE && KVX2800T_VAL_CURRENT_TRIP == VI_TRUE);
    return getChannelSetting(vi, channel, value, __func__, &InstBase::currentProtectionEnabled);
}

ViStatus _VI_FUNC KVX2800T_get_CURRENT_LIMIT(ViSession vi, ViConstString channel, ViReal64* value)
{
    return getChannelSetting(vi, channel, value, __func__, &InstBase::currentLevel);
}

ViStatus _VI_FUNC KVX2800T_get_OUTPUT_ENABLED(ViSession vi, ViConstString channel, ViBoolean* value)
{
    return getChannelSetting(vi, channel, value, __func__, &InstBase::outputEnabled);
}

ViStatus _VI_FUNC KVX2800T_set_VOLTAGE_LEVEL(ViSession vi, ViConstString channel, ViReal64 value)
{
    return setChannelSetting(vi, channel, value, &InstBase::setVoltageLevel);
}

ViStatus _VI_FUNC KVX2800T_set_OVP_ENABLED(ViSession vi, ViConstString channel, ViBoolean value)
{
    return setChannelSetting(vi, channel, value != VI_FALSE, &InstBase::setVoltageProtectionEnabled);
}

ViStatus _VI_FUNC KVX2800T_set_OVP_LIMIT(ViSession vi, ViConstString channel, ViReal64 value)
{
    return setChannelSetting(vi, channel, value, &InstBase::setVoltageProtectionLevel);
}

ViStatus _VI_FUNC KVX2800T_set_CURRENT_LIMIT_BEHAVIOR(ViSession vi, ViConstString channel, ViInt32 value)
{
    // A bad value is refused only here, when the channel's source mode has been set already.
    return configureChannels(vi, channel, [value](InstBase& instrument, ViInt32 number) {
        if (value != KVX2800T_VAL_CURRENT_REGULATE && value != KVX2800T_VAL_CURRENT_TRIP)
            return base::kErrorValueOutOfRange;
        return instrument.setCurrentProtectionEnabled(number, value == KVX2800T_VAL_CURRENT_TRIP);
    });
}

ViStatus _VI_FUNC KVX2800T_set_CURRENT_LIMIT(ViSession vi, ViConstString channel, ViReal64 value)
{
    return configureChannels(vi, channel, [value](InstBase& instrument, ViInt32 number) {
        const ViStatus status = instrument.setCurrentLevel(number, value);
        return status == VI_SUCCESS ? instrument.setCurrentProtectionLevel(number, value) : status;
    });
}

ViStatus _VI_FUNC KVX2800T_set_OUTPUT_ENABLED(ViSession vi, ViConstString channel, ViBoolean value)
{
    return setChannelSetting(vi, channel, value != VI_FALSE, &InstBase::setOutputEnabled);
}

} // namespace api
