#pragma once

#include "virtual_instrument/common/channel_limits.h"
#include "virtual_instrument/common/error_code.h"

#include <vector>

namespace kvxvirtual
{

/// One step of a list: what the output delivers, and for how long.
struct ListGroup
{
    double volts = 0.0;
    double amperes = 0.1;
    double seconds = 1.0;
};

/// In the order of the instrument's keywords.
enum class Waveform
{
    Sine,
    Pulse,
    Ramp,
    Up,
    Down,
    UpDown,
    Rise,
    Fall
};

enum class TemplateObject
{
    Voltage,
    Current
};

/// A waveform between two levels from which the groups of a list are made. Any values may stand here together; what
/// does not go together, or not with a channel, is found by check().
struct ListTemplate
{
    /// A Waveform.
    int waveform = 0;
    /// A TemplateObject: the quantity that follows the waveform.
    int object = 0;
    /// Of the other quantity, the same in all groups.
    double fixedLevel = 0.1;
    double maximum = 1.0;
    double minimum = 0.0;
    double periodSeconds = 1.0;
    /// Of one group.
    double intervalSeconds = 0.1;
    /// Of the list that is made.
    int cycles = 1;
    /// Upside down.
    bool inverted = false;
    double pulseSeconds = 0.5;
    int pulseCount = 1;
    /// The part of a ramp's period in which it rises.
    int symmetryPercent = 50;
    /// The point that becomes the first group.
    int start = 1;
    /// Of a rise or fall.
    int curvePoints = 10;
    /// The time constants that a rise or fall lasts; 0: a straight line.
    int curveRate = 3;

    /// How many groups it gives, at least 1.
    int points() const;

    /// SettingsConflict when the minimum is above the maximum or a pulse leaves no time for its pause; DataOutOfRange
    /// when a level is beyond the channel's.
    ErrorCode check(const ChannelLimits& limits) const;

    /// The groups, when check() finds nothing.
    std::vector<ListGroup> groups() const;
};

} // namespace kvxvirtual
