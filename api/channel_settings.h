#pragma once

#include "api/channels.h"

#include <functional>
#include <type_traits>

/// Settings of channels: the operations behind an attribute and behind the function of the same purpose.
namespace api
{

/// A value that operations of a kind take.
template <Refusable::Kind kind, class Value>
Refusable refusable(Value value)
{
    if constexpr (std::is_same_v<Value, ViReal64>)
        return {.kind = kind, .level = value};
    else
        return {.kind = kind, .number = value};
}

/// Sets every channel that a selector names, each in the source mode it needs. `operation`, an operation of the
/// instrument or a function on it, takes the channel and the value; to one that takes a bool, everything but VI_FALSE
/// is true.
template <auto operation, Refusable::Kind kind = Refusable::Kind::None, class Value>
ViStatus _VI_FUNC setEach(ViSession vi, ViConstString channels, Value value)
{
    return configureChannels(vi, channels, refusable<kind>(value),
                             [value](TSRO::InstBase& instrument, ViInt32 channel) {
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
