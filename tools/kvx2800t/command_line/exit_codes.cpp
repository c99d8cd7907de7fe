#include "tools/kvx2800t/command_line/exit_codes.h"

#include <KVX2800T.h>

#include <algorithm>
#include <array>
#include <cstdint>

namespace command_line
{
namespace
{

constexpr std::array<ExitCodeMeaning, 11> kMeanings = {{
    {ExitCode::Success, "done"},
    {ExitCode::Internal, "something that should not happen"},
    {ExitCode::Usage, "the command line is wrong"},
    {ExitCode::Unreachable, "the instrument cannot be reached"},
    {ExitCode::LinkFailed, "the instrument does not answer any more"},
    {ExitCode::WrongInstrument, "what answers is no KVX2800T"},
    {ExitCode::Refused, "a value or an operation is refused"},
    {ExitCode::UnknownChannel, "no such channel"},
    {ExitCode::InstrumentError, "the instrument has noted an error"},
    {ExitCode::File, "a file cannot be read or written, or is wrong"},
    {ExitCode::Configuration, "configuration store, options or libraries of the driver"},
}};

struct StatusCode
{
    ViStatus status;
    ExitCode code;
};

// The session service of the driver is missing: the one status of VISA that Windows' binding returns of its own.
constexpr ViStatus kLibraryNotFound = static_cast<ViStatus>(0xBFFF009EUL);

constexpr std::array kStatusCodes = std::to_array<StatusCode>({
    {KVX2800T_ERROR_IO, ExitCode::LinkFailed},
    {KVX2800T_ERROR_IO_TIMEOUT, ExitCode::LinkFailed},
    {IVI_ERROR_NOT_INITIALIZED, ExitCode::LinkFailed},
    {IVI_ERROR_ID_QUERY_FAILED, ExitCode::WrongInstrument},
    {IVI_ERROR_UNEXPECTED_RESPONSE, ExitCode::WrongInstrument},
    {KVX2800T_ERROR_VALUE_OUT_OF_RANGE, ExitCode::Refused},
    {KVX2800T_ERROR_OPERATION_NOT_SUPPORTED, ExitCode::Refused},
    {IVI_ERROR_INVALID_VALUE, ExitCode::Refused},
    {IVI_ERROR_CHANNEL_NAME_REQUIRED, ExitCode::UnknownChannel},
    {IVI_ERROR_INVALID_NUMBER_OF_LEVELS_IN_SELECTOR, ExitCode::UnknownChannel},
    {IVI_ERROR_INVALID_RANGE_IN_SELECTOR, ExitCode::UnknownChannel},
    {IVI_ERROR_UNKNOWN_NAME_IN_SELECTOR, ExitCode::UnknownChannel},
    {IVI_ERROR_BADLY_FORMED_SELECTOR, ExitCode::UnknownChannel},
    {IVI_ERROR_UNKNOWN_PHYSICAL_IDENTIFIER, ExitCode::UnknownChannel},
    {IVI_ERROR_INSTRUMENT_STATUS, ExitCode::InstrumentError},
    {IVI_ERROR_MISSING_OPTION_NAME, ExitCode::Configuration},
    {IVI_ERROR_MISSING_OPTION_VALUE, ExitCode::Configuration},
    {IVI_ERROR_BAD_OPTION_NAME, ExitCode::Configuration},
    {IVI_ERROR_BAD_OPTION_VALUE, ExitCode::Configuration},
    {kLibraryNotFound, ExitCode::Configuration},
});

constexpr std::uint32_t bitsOf(ViStatus status)
{
    return static_cast<std::uint32_t>(status);
}

/// Those of the configuration server: 0xBFFA1200 to 0xBFFA12FF.
constexpr bool isOfConfigServer(ViStatus status)
{
    return bitsOf(status) >> 8 == 0xBFFA12;
}

constexpr bool isOfVisa(ViStatus status)
{
    return bitsOf(status) >> 16 == 0xBFFF;
}

} // namespace

std::span<const ExitCodeMeaning> exitCodeMeanings()
{
    return kMeanings;
}

ExitCode exitCodeOf(ViStatus status, Phase phase)
{
    const auto* const row = std::find_if(kStatusCodes.begin(), kStatusCodes.end(),
                                         [status](const StatusCode& known) { return known.status == status; });
    ExitCode code = ExitCode::Internal;
    if (row != kStatusCodes.end())
        code = row->code;
    else if (isOfConfigServer(status))
        code = ExitCode::Configuration;
    else if (isOfVisa(status))
        code = ExitCode::LinkFailed;
    return code == ExitCode::LinkFailed && phase == Phase::Opening ? ExitCode::Unreachable : code;
}

} // namespace command_line
