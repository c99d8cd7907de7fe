#include "instrument/channel_limits.h"

#include "base/failures.h"

#include <array>

namespace TSRO
{
namespace
{

// Channels 1 to 6. Series doubles the voltage of outputs 1 and 2, parallel their current.
constexpr std::array<ChannelLimits, 6> kLimits = {{
    {0.0, 33.0, 0.0, 3.2},
    {0.0, 33.0, 0.0, 3.2},
    {0.0, 16.0, 0.0, 3.2},
    {0.0, 6.2, 0.0, 10.5},
    {0.0, 66.0, 0.0, 3.2},
    {0.0, 33.0, 0.0, 6.4},
}};

} // namespace

const ChannelLimits& channelLimitsOf(ViInt32 channel)
{
    if (channel < 1 || channel > static_cast<ViInt32>(kLimits.size()))
        base::throwInvalidKey();
    return kLimits[static_cast<std::size_t>(channel) - 1];
}

} // namespace TSRO
