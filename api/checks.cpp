#include "api/checks.h"

#include "runtime/repeated_capability.h"

#include <cmath>

namespace api
{
namespace
{

using drivekit::DriverSession;
using drivekit::NumberArgument;

ViStatus checkLevel(DriverSession& session, ViInt32 channel, double level, double lowest, double highest,
                    std::string_view unit)
{
    // Not so for NaN.
    if (level >= lowest && level <= highest)
        return VI_SUCCESS;
    return session.ReportErrorWithElaboration(base::kErrorValueOutOfRange, drivekit::elaborations::kLevelBeyondLimits,
                                              {drivekit::OutputChannel::kName, drivekit::DecimalArgument(channel),
                                               NumberArgument(lowest), unit, NumberArgument(highest), unit,
                                               NumberArgument(level), unit});
}

ViStatus refuseMember(DriverSession& session, ViInt32 number)
{
    return session.ReportErrorWithElaboration(base::kErrorValueOutOfRange, drivekit::elaborations::kNoMember,
                                              {drivekit::DecimalArgument(number)});
}

/// Records a value as what it is; 0 when nothing is wrong with it.
ViStatus checkValue(DriverSession& session, ViInt32 channel, const Refusable& value)
{
    switch (value.kind) {
    case Refusable::Kind::Volts:
        return checkVoltage(session, channel, value.level);
    case Refusable::Kind::Amperes:
        return checkCurrent(session, channel, value.level);
    case Refusable::Kind::Member:
        return refuseMember(session, value.number);
    case Refusable::Kind::None:
        break;
    }
    return VI_SUCCESS;
}

} // namespace

ViStatus refuseCount(DriverSession& session, ViInt64 count, std::string_view function, std::string_view parameter)
{
    return session.ReportError(base::kErrorInvalidValue, {drivekit::DecimalArgument(count), function, parameter});
}

ViStatus checkNumber(DriverSession& session, ViReal64 number)
{
    if (std::isfinite(number))
        return VI_SUCCESS;
    return session.ReportErrorWithElaboration(base::kErrorValueOutOfRange, drivekit::elaborations::kNotFinite,
                                              {NumberArgument(number)});
}

ViStatus checkMember(DriverSession& session, const TSRO::KeywordTable& members, ViInt32 number)
{
    for (const TSRO::KeywordEntry& entry : members.entries())
        if (entry.value == number)
            return VI_SUCCESS;
    return refuseMember(session, number);
}

ViStatus checkVoltage(DriverSession& session, ViInt32 channel, ViReal64 volts)
{
    const TSRO::ChannelLimits& limits = session.instrument()->channelLimits(channel);
    return checkLevel(session, channel, volts, limits.voltageMin, limits.voltageMax, "V");
}

ViStatus checkCurrent(DriverSession& session, ViInt32 channel, ViReal64 amperes)
{
    const TSRO::ChannelLimits& limits = session.instrument()->channelLimits(channel);
    return checkLevel(session, channel, amperes, limits.currentMin, limits.currentMax, "A");
}

ViStatus recordRefusal(DriverSession& session, ViInt32 channel, const Refusable& value, ViStatus status)
{
    const bool isTold = status == base::kErrorValueOutOfRange && session.settings().detailedErrors;
    const ViStatus refused = isTold ? checkValue(session, channel, value) : VI_SUCCESS;
    return refused < 0 ? refused : session.ReportInstrumentFailure(status);
}

ViStatus checkFinite(DriverSession& session, const Refusable& value)
{
    return session.settings().checkedOptions && value.isLevel() ? checkNumber(session, value.level) : VI_SUCCESS;
}

} // namespace api
