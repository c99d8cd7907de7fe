#include "runtime/source_mode.h"

#include "runtime/tick_clock.h"

#include <optional>

namespace drivekit
{
namespace
{

std::optional<TSRO::SourceMode> requiredMode(ViInt32 channel)
{
    switch (channel) {
    case 3:
    case 4:
        return std::nullopt;
    case 5:
        return TSRO::SourceMode::Series;
    case 6:
        return TSRO::SourceMode::Parallel;
    default:
        return TSRO::SourceMode::Normal;
    }
}

} // namespace

ViStatus ensureSourceMode(TSRO::InstBase& instrument, ViInt32 channel)
{
    const auto required = requiredMode(channel);
    return required ? changeSourceMode(instrument, *required) : VI_SUCCESS;
}

ViStatus changeSourceMode(TSRO::InstBase& instrument, TSRO::SourceMode required)
{
    auto mode = TSRO::SourceMode::Normal;
    ViStatus status = instrument.sourceMode(mode);
    if (status != VI_SUCCESS || mode == required)
        return status;
    status = instrument.setSourceMode(required);
    if (status == VI_SUCCESS)
        busyWait(kTicksPerSecond);
    return status;
}

} // namespace drivekit
