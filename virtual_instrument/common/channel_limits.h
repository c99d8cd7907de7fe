#pragma once

namespace kvxvirtual
{

/// Channels 1 to 4 are the outputs, 5 is the series and 6 the parallel combination of outputs 1 and 2.
inline constexpr int kChannelCount = 6;
inline constexpr int kSeriesChannel = 5;
inline constexpr int kParallelChannel = 6;

/// The largest values a channel takes; the smallest are all 0.
struct ChannelLimits
{
    double volts;
    double amperes;
    double overVoltageLevel;
    double overCurrentLevel;
    /// Seconds.
    double overCurrentDelay;
};

/// `channel` is 1 to 6.
const ChannelLimits& limitsOf(int channel);

} // namespace kvxvirtual
