#include "api/attribute_table.h"

#include "api/KVX2800T.h"
#include "api/arguments.h"
#include "api/channel_settings.h"
#include "runtime/driver_identity.h"

#include <algorithm>
#include <array>
#include <functional>

namespace api
{
namespace
{

using drivekit::Accessors;
using drivekit::AttributeInfo;
using drivekit::DriverSession;
using TSRO::Identity;
using TSRO::InstBase;

// What attributes read: an instrument's operation on one channel, or anything that a session can be asked.

template <class Setting>
using ChannelQuery = ViStatus (InstBase::*)(ViInt32 channel, Setting& value);

template <auto value>
auto fixed(const DriverSession& /*session*/)
{
    return value;
}

template <const std::string_view& text>
std::string_view fixedText(const DriverSession& /*session*/)
{
    return text;
}

template <std::string Identity::*part>
std::string_view identity(const DriverSession& session)
{
    return (*session.instrument()->identity()).*part;
}

/// The version of the IviDCPwr class specification (IVI-4.4) that the driver follows.
constexpr ViInt32 kClassSpecMajorVersion = 3;
constexpr ViInt32 kClassSpecMinorVersion = 0;

constexpr auto kMember = Refusable::Kind::Member;
constexpr auto kVolts = Refusable::Kind::Volts;
constexpr auto kAmperes = Refusable::Kind::Amperes;

constexpr auto kChannelCount = static_cast<ViInt32>(drivekit::RepCapBase<drivekit::OutputChannel>::kCount);

static_assert(KVX2800T_VAL_CURRENT_REGULATE == VI_FALSE && KVX2800T_VAL_CURRENT_TRIP == VI_TRUE,
              "the behavior at the limit is the protection's switch");

// How they are read. `value` changes only on success.

template <class Value, class Read>
ViStatus readInto(Value& value, Read read, DriverSession& session, ViConstString /*channel*/)
{
    value = Value{std::invoke(read, session)};
    return VI_SUCCESS;
}

template <class Value, class Setting>
ViStatus readInto(Value& value, ChannelQuery<Setting> query, DriverSession& session, ViConstString channel)
{
    drivekit::PhysicalName<drivekit::OutputChannel> name;
    ViStatus status = drivekit::resolveSingleSelector(session, channel, name);
    if (status < 0)
        return status;
    Setting setting{};
    status = std::invoke(query, *session.instrument(), drivekit::channelOf(name), setting);
    if (status == VI_SUCCESS)
        value = Value{setting};
    return recordFailure(session, status);
}

/// A string literal as an argument of a template.
template <std::size_t size>
struct Literal
{
    consteval Literal(const char (&literal)[size]) { std::copy_n(literal, size, text); }

    char text[size]{};
};

/// The getter of an attribute; `function` is what the message of a null pointer calls it.
template <Literal function, auto read, class Value>
ViStatus _VI_FUNC get(ViSession vi, ViConstString channel, Value* value)
{
    return framedSession(vi, [&](DriverSession& session) {
        const ViStatus status = checkPointers(vi, function.text, "AttributeValue", value);
        return status < 0 ? status : readInto(*value, read, session, channel);
    });
}

template <Literal function, auto read>
ViStatus _VI_FUNC get(ViSession vi, ViConstString /*channel*/, ViInt32 bufferSize, ViChar value[])
{
    return framedSession(vi, [&](const DriverSession& session) {
        const ViStatus status = checkPointers(vi, function.text, "AttributeValue", value);
        if (status >= 0)
            copyText(value, static_cast<std::size_t>(bufferSize), std::invoke(read, session));
        return status;
    });
}

// The setters of attributes that setEach() does not set.

/// Accepts any value and forgets it: for switches of things that the driver does not do.
ViStatus _VI_FUNC ignore(ViSession vi, ViConstString /*channel*/, ViBoolean /*value*/)
{
    return framed(vi, []() -> ViStatus { return VI_SUCCESS; });
}

ViStatus _VI_FUNC setQueryInstrumentStatus(ViSession vi, ViConstString /*channel*/, ViBoolean value)
{
    return framedSession(vi, [value](DriverSession& session) -> ViStatus {
        session.setQueryInstrumentStatus(value != VI_FALSE);
        return VI_SUCCESS;
    });
}

ViStatus _VI_FUNC setSimulate(ViSession vi, ViConstString /*channel*/, ViBoolean value)
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

/// Refuses a bad value channel by channel: the source mode of the first has been set by then.
ViStatus setCurrentLimitBehavior(InstBase& instrument, ViInt32 channel, ViInt32 behavior)
{
    if (behavior != KVX2800T_VAL_CURRENT_REGULATE && behavior != KVX2800T_VAL_CURRENT_TRIP)
        return base::kErrorValueOutOfRange;
    return instrument.setCurrentProtectionEnabled(channel, behavior == KVX2800T_VAL_CURRENT_TRIP);
}

template <std::size_t count>
constexpr std::array<AttributeInfo, count> sortedById(std::array<AttributeInfo, count> attributes)
{
    std::sort(attributes.begin(), attributes.end(),
              [](const AttributeInfo& left, const AttributeInfo& right) { return left.id < right.id; });
    return attributes;
}

template <class Value>
constexpr AttributeInfo row(ViAttr id, std::string_view name, Accessors<Value> accessors)
{
    return {id, name, accessors};
}

/// An attribute: its name, the type of its values, what it reads, and its setter unless it is read-only.
#define ROW(NAME, Value, read, ...)                                                                                    \
    row(KVX2800T_ATTR_##NAME, "KVX2800T_ATTR_" #NAME, Accessors<Value>{get<"KVX2800T_get_" #NAME, read>, __VA_ARGS__})

constexpr auto kAttributes = sortedById(std::array{
    ROW(SPECIFIC_DRIVER_DESCRIPTION, ViString, fixedText<drivekit::kDriverDescription>),
    ROW(SPECIFIC_DRIVER_PREFIX, ViString, fixedText<drivekit::kDriverPrefix>),
    ROW(SPECIFIC_DRIVER_VENDOR, ViString, fixedText<drivekit::kDriverVendor>),
    ROW(SPECIFIC_DRIVER_REVISION, ViString, fixedText<drivekit::kDriverRevision>),
    ROW(SPECIFIC_DRIVER_CLASS_SPEC_MAJOR_VERSION, ViInt32, fixed<kClassSpecMajorVersion>),
    ROW(SPECIFIC_DRIVER_CLASS_SPEC_MINOR_VERSION, ViInt32, fixed<kClassSpecMinorVersion>),
    ROW(RANGE_CHECK, ViBoolean, fixed<true>, ignore),
    ROW(QUERY_INSTRUMENT_STATUS, ViBoolean, &DriverSession::queryInstrumentStatus, setQueryInstrumentStatus),
    ROW(CACHE, ViBoolean, fixed<false>, ignore),
    ROW(SIMULATE, ViBoolean, &DriverSession::simulate, setSimulate),
    ROW(RECORD_COERCIONS, ViBoolean, fixed<false>, ignore),
    ROW(INTERCHANGE_CHECK, ViBoolean, fixed<false>, ignore),
    ROW(LOGICAL_NAME, ViString, &DriverSession::logicalName),
    ROW(IO_RESOURCE_DESCRIPTOR, ViString, &DriverSession::connectionDescriptor),
    ROW(DRIVER_SETUP, ViString, &DriverSession::driverSetup),
    ROW(GROUP_CAPABILITIES, ViString, fixedText<drivekit::kGroupCapabilities>),
    ROW(SUPPORTED_INSTRUMENT_MODELS, ViString, fixedText<drivekit::kSupportedModels>),
    ROW(INSTRUMENT_FIRMWARE_REVISION, ViString, identity<&Identity::firmwareRevision>),
    ROW(INSTRUMENT_MANUFACTURER, ViString, identity<&Identity::manufacturer>),
    ROW(INSTRUMENT_MODEL, ViString, identity<&Identity::model>),
    ROW(CURRENT_LIMIT_BEHAVIOR, ViInt32, &InstBase::currentProtectionEnabled,
        setEach<setCurrentLimitBehavior, kMember>),
    ROW(CURRENT_LIMIT, ViReal64, &InstBase::currentLevel, setEach<setCurrentLimit, kAmperes>),
    ROW(OUTPUT_ENABLED, ViBoolean, &InstBase::outputEnabled, setEach<&InstBase::setOutputEnabled>),
    ROW(OVP_ENABLED, ViBoolean, &InstBase::voltageProtectionEnabled, setEach<&InstBase::setVoltageProtectionEnabled>),
    ROW(OVP_LIMIT, ViReal64, &InstBase::voltageProtectionLevel, setEach<&InstBase::setVoltageProtectionLevel, kVolts>),
    ROW(VOLTAGE_LEVEL, ViReal64, &InstBase::voltageLevel, setEach<&InstBase::setVoltageLevel, kVolts>),
    ROW(CHANNEL_COUNT, ViInt32, fixed<kChannelCount>),
});

#undef ROW

constexpr drivekit::AttributeRegistry kRegistry{kAttributes};

} // namespace

const drivekit::AttributeRegistry& attributeRegistry()
{
    return kRegistry;
}

} // namespace api
