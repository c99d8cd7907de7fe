#include "virtual_instrument/common/channel_limits.h"

#include <array>
#include <cstddef>

namespace kvxvirtual
{
namespace
{

constexpr double kLongestOverCurrentDelay = 10.0;

/// Protection levels go to 1.1 times what the channel delivers; written out, so that the limits are exact.
constexpr std::array<ChannelLimits, kChannelCount> kLimits = {{
    {33.0, 3.2, 36.3, 3.52, kLongestOverCurrentDelay},
    {33.0, 3.2, 36.3, 3.52, kLongestOverCurrentDelay},
    {16.0, 3.2, 17.6, 3.52, kLongestOverCurrentDelay},
    {6.2, 10.5, 6.82, 11.55, kLongestOverCurrentDelay},
    {66.0, 3.2, 72.6, 3.52, kLongestOverCurrentDelay},
    {33.0, 6.4, 36.3, 7.04, kLongestOverCurrentDelay},
}};

} // namespace

const ChannelLimits& limitsOf(int channel)
{
    return kLimits[static_cast<std::size_t>(channel - 1)];
}

} // namespace kvxvirtual
