#pragma once

#include "virtual_instrument/common/error_code.h"

#include <vector>

namespace kvxvirtual
{

/// One step of a delay program: whether the output is on, and for how long.
struct DelayGroup
{
    bool on = false;
    double seconds = 1.0;
};

/// In the order of the instrument's keywords.
enum class DelayMode
{
    Fixed,
    Increasing,
    Decreasing
};

enum class DelayPattern
{
    OffOn,
    OnOff
};

/// A pattern from which the groups of a delay program are made. Any values may stand here together; what does not go
/// together is found by check().
struct DelayGenerator
{
    /// A DelayMode.
    int mode = 0;
    /// A DelayPattern.
    int pattern = 0;
    int pointCount = 2;
    /// Of the groups that are on, when the times are fixed.
    double onSeconds = 1.0;
    double offSeconds = 1.0;
    /// Of the first group, when the times increase or decrease, and by how much from group to group.
    double baseSeconds = 1.0;
    double stepSeconds = 0.1;

    int points() const { return pointCount; }

    /// DataOutOfRange when the times run out of what a group may last.
    ErrorCode check() const;

    /// The groups, when check() finds nothing.
    std::vector<DelayGroup> groups() const;
};

} // namespace kvxvirtual
