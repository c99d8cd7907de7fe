#pragma once

#include "instrument/keyword_table.h"
#include "runtime/driver_session.h"

#include <IviVisaType.h>

#include <string_view>

/// What exported functions refuse of their arguments: 0, or the status that has been recorded with what is wrong.
namespace api
{

/// Records a count or a size that a function cannot use, with the function's name as it is without prefix.
ViStatus refuseCount(drivekit::DriverSession& session, ViInt64 count, std::string_view function,
                     std::string_view parameter);

/// Refuses a number that is not finite.
ViStatus checkNumber(drivekit::DriverSession& session, ViReal64 number);

/// Refuses a number that is none of an enumeration.
ViStatus checkMember(drivekit::DriverSession& session, const TSRO::KeywordTable& members, ViInt32 number);

/// Refuse a level that a channel does not take, in volts or amperes; the record names channel, level and limits.
ViStatus checkVoltage(drivekit::DriverSession& session, ViInt32 channel, ViReal64 volts);
ViStatus checkCurrent(drivekit::DriverSession& session, ViInt32 channel, ViReal64 amperes);

/// What a function sets or asks for, for the record of a value that is refused; nothing to tell by default.
struct Refusable
{
    enum class Kind
    {
        None,
        Member,
        Volts,
        Amperes,
    };

    Kind kind = Kind::None;
    /// Of a member.
    ViInt32 number = 0;
    /// Volts or amperes.
    ViReal64 level = 0.0;

    bool isLevel() const { return kind == Kind::Volts || kind == Kind::Amperes; }
};

/// Records a failure that a channel's operation has returned. Of a value out of range, sessions with detailed errors
/// are told the value and, for a level, the channel and its limits.
ViStatus recordRefusal(drivekit::DriverSession& session, ViInt32 channel, const Refusable& value, ViStatus status);

/// Refuses a level that is no finite number, in sessions that check.
ViStatus checkFinite(drivekit::DriverSession& session, const Refusable& value);

} // namespace api
