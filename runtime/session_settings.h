#pragma once

#include "instrument/connection_setup.h"

#include <IviVisaType.h>

#include <optional>
#include <string_view>

/// What a session does differently because its DriverSetup text asks for it. A text without any of the keys asks for
/// nothing; keys that are none of them are not looked at.
namespace drivekit
{

struct SessionSettings
{
    /// Exceptions become recorded statuses.
    bool safeErrors = false;
    /// Recorded texts tell the resource and VISA's status, the channel and its limits, the item of a selector.
    bool detailedErrors = false;
    /// Functions of the instrument class tell what is, not what is set, and do not pretend.
    bool trueReadings = false;
    /// Option strings are checked to the letter, the instrument must have a model, levels must be numbers.
    bool checkedOptions = false;
    /// The simulated instrument remembers.
    bool statefulSimulation = false;
    /// How many of its last messages the session remembers; 0: it writes none down.
    ViInt32 messageLog = 0;
    /// FreshReplies, and the parameters of the connection.
    TSRO::ConnectionSetup connection = {};
};

/// Why an option text is refused: the status, and the name or the value that the message quotes. A view of the text.
struct OptionFault
{
    ViStatus status;
    std::string_view quoted;
};

/// Takes the settings from a DriverSetup text. Names are compared ignoring case, trailing blanks of values do not
/// count. A value that a key does not take, and a key without one, is base::kErrorBadOptionValue, a key in two
/// spellings base::kErrorCannotRecover; settings in front of it, in the order of the table, have been taken. Allocates
/// nothing.
std::optional<OptionFault> takeSettings(std::string_view driverSetup, SessionSettings& settings);

/// Reads what a session was opened with to the letter: the inherent options of its option string are name=value,
/// separated by commas, and the DriverSetup text that holds for it has none of them. What is wrong first; nothing where
/// all is well. Allocates nothing.
std::optional<OptionFault> findOptionFault(std::string_view optionString, std::string_view driverSetup);

} // namespace drivekit
