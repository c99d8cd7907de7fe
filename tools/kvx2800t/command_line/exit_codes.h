#pragma once

#include <IviVisaType.h>

#include <span>
#include <string_view>

namespace command_line
{

/// How the program ends, by the kind of failure.
enum class ExitCode
{
    Success = 0,
    Internal = 1,        ///< what should not happen, lack of memory among it
    Usage = 2,           ///< the command line makes no sense
    Unreachable = 3,     ///< the session could not be opened: nobody answers there
    LinkFailed = 4,      ///< the instrument was there, and does not answer any more, or not in time
    WrongInstrument = 5, ///< something answers that is no instrument of this driver, or not in its language
    Refused = 6,         ///< the driver takes no such value or operation
    UnknownChannel = 7,  ///< the channels that are named are none
    InstrumentError = 8, ///< the instrument has noted an error
    File = 9,            ///< a file cannot be read or written, or is not what it should be
    Configuration = 10,  ///< the configuration store, the options or the libraries that the driver needs
};

struct ExitCodeMeaning
{
    ExitCode code;
    std::string_view meaning;
};

/// All of them in their order, for the help.
std::span<const ExitCodeMeaning> exitCodeMeanings();

/// When something happened: the same status means one thing while a session is opened and another one later.
enum class Phase
{
    Opening,
    Working
};

/// What a failure of the driver is to the shell.
ExitCode exitCodeOf(ViStatus status, Phase phase);

} // namespace command_line
