#pragma once

namespace kvxvirtual
{

/// The values that a setting takes.
template <class Value>
struct ValueRange
{
    Value least;
    Value most;

    constexpr bool holds(Value value) const { return value >= least && value <= most; }
};

/// The ranges of list and delay programs, their templates and generators.
namespace ranges
{
/// 0: no end.
inline constexpr ValueRange<int> kCycles{0, 99'999};
inline constexpr ValueRange<int> kPoints{1, 512};
inline constexpr ValueRange<int> kPulses{1, 256};
inline constexpr ValueRange<int> kPercent{0, 100};
inline constexpr ValueRange<int> kCurveRate{0, 10};
inline constexpr ValueRange<double> kSeconds{0.001, 3'600.0};
} // namespace ranges

} // namespace kvxvirtual
