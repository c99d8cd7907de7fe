#pragma once

#include "api/channels.h"

#include <functional>

/// Settings of channels: the operations behind an attribute and behind the function of the same purpose.
namespace api
{

/// Sets every channel that a selector names, each in the source mode it needs. `operation`, an operation of the
/// instrument or a function on it, takes the channel and the value; to one that takes a bool, everything but VI_FALSE
/// is true.
template <auto operation, class Value>
ViStatus _VI_FUNC setEach(ViSession vi, ViConstString channels, Value value)
{
    return configureChannels(vi, channels, [value](TSRO::InstBase& instrument, ViInt32 channel) {
        return std::invoke(operation, instrument, channel, value);
    });
}

/// Sets the level at which a channel's current is held, and then the one at which its protection trips.
inline ViStatus setCurrentLimit(TSRO::InstBase& instrument, ViInt32 channel, ViReal64 amperes)
{
    const ViStatus status = instrument.setCurrentLevel(channel, amperes);
    return status == VI_SUCCESS ? instrument.setCurrentProtectionLevel(channel, amperes) : status;
}

} // namespace api
