#pragma once

#include <IviVisaType.h>

namespace TSRO
{

/// What a channel can be set to, in volts and amperes; both ends belong to the range.
struct ChannelLimits
{
    double voltageMin;
    double voltageMax;
    double currentMin;
    double currentMax;
};

/// The limits of channel 1 to 6. The records are constants; any thread may read them.
/// @throws std::out_of_range "invalid map<K, T> key" for any other number.
const ChannelLimits& channelLimitsOf(ViInt32 channel);

} // namespace TSRO
